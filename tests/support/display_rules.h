// What a grey pixel shows, told pixel by pixel, and rasters with random overlays, shutters and padding to try it on.
#pragma once

#include "support/test_data.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace zoltest {

/// A grey map of which only the table and the overlay colours are real.
class TableMap : public IGreyMap {
public:
    explicit TableMap(std::uint32_t seed = 1) : table_(0x10000) {
        for (std::size_t i = 0; i < table_.size(); ++i) {
            table_[i] = static_cast<unsigned int>(i * 2654435761U + seed) & 0xFFFFFFU;
        }
        for (std::size_t i = 0; i < 16; ++i) {
            planeColours[i] = 0x01000000U + static_cast<unsigned int>(i);
            groupColours[i] = 0x02000000U + static_cast<unsigned int>(i);
        }
    }

    [[nodiscard]] unsigned int entry(std::size_t i) const { return table_[i]; }

    std::array<unsigned int, 16> planeColours{};
    std::array<unsigned int, 16> groupColours{};
    bool enabled = true;
    bool hasPlaneColours = true;
    bool hasGroupColours = true;
    bool throwsOnCopy = false;

    bool isEnabled() override { return enabled; }
    std::pair<unsigned int*, unsigned int*> getOverlayColors() override {
        return {hasPlaneColours ? planeColours.data() : nullptr, hasGroupColours ? groupColours.data() : nullptr};
    }
    void copyLut(unsigned int** dst) override {
        if (throwsOnCopy) throw std::runtime_error("no table");
        std::copy(table_.begin(), table_.end(), *dst);
    }

    void setColorMapIndex(CCsColorMapT*) override {}
    int mapRaster(CCsRaster&, CCsImage&, RECT, bool, unsigned char*, CCs2dTrafo*) override { return 0; }
    void* getLut() override { return table_.data(); }
    int setWindow(unsigned int, int) override { return 255; }
    IMap* clone() override { return nullptr; }
    int allocateLut() override { return 255; }
    int setNonLinearLut(const unsigned short*, unsigned int, int, bool) override { return 255; }
    void setIndexRemap(const unsigned char*) override {}
    int setPresentationLut(const unsigned short*, unsigned int, int) override { return 255; }
    int getWindowedNonLinearLut(unsigned short**, unsigned int*, unsigned int*, bool) override { return 0; }
    void setEnabled(bool on) override { enabled = on; }
    void clearNonLinearLut() override {}
    void enableSigmoid() override {}
    void setSigmoidBits(int) override {}
    void setExactNonLinearWindow(bool) override {}
    unsigned short getNonLinearShift() override { return 0; }
    unsigned int applyPresentationLut(unsigned int, unsigned int) override { return 0; }
    bool hasPresentationLut() override { return false; }
    void setOverlayColors(unsigned int*, unsigned int*) override {}
    void releaseLut() override {}
    void setMapFlags(int) override {}
    int getMapFlags() override { return 0; }

private:
    std::vector<unsigned int> table_;
};

/// A raster with its bits, which only the test owns.
struct RuledRaster {
    std::unique_ptr<CCsRaster> raster;
    std::vector<std::vector<unsigned char>> bits;  ///< of planes and shutter
    std::vector<unsigned char> padding;            ///< empty: none given

    [[nodiscard]] unsigned char* paddingData() { return padding.empty() ? nullptr : padding.data(); }
};

/// Which of the rules a raster gets.
struct RuleChoice {
    bool planes = false;
    bool embedded = false;
    bool bitmapShutter = false;
    bool rectangle = false;
    bool circle = false;
    bool polygon = false;
    bool padding = false;

    static RuleChoice random(Random& random) {
        const auto some = [&] { return random.chance(0.3); };
        return {some(), some(), some(), some(), some(), some(), some()};
    }
};

inline std::vector<unsigned char> randomBits(Random& random, int columns, int rows) {
    std::vector<unsigned char> data(static_cast<std::size_t>((columns * rows + 7) / 8));
    const auto set = [&](int k) {
        auto& byte = data[static_cast<std::size_t>(k / 8)];
        byte = static_cast<unsigned char>(byte | 1 << k % 8);
    };
    if (random.chance(0.3)) {  // dense
        for (unsigned char& byte : data) byte = static_cast<unsigned char>(random.bits());
    } else {  // an area and some pixels
        const int x0 = random.integer(0, columns - 1);
        const int x1 = random.integer(x0, columns - 1);
        const int y0 = random.integer(0, rows - 1);
        const int y1 = random.integer(y0, rows - 1);
        for (int y = y0; y <= y1; ++y) {
            for (int x = x0; x <= x1; ++x) set(y * columns + x);
        }
        for (int i = random.integer(0, 5); i > 0; --i) set(random.integer(0, columns * rows - 1));
    }
    return data;
}

inline RECT randomBox(Random& random, int width, int height) {
    const auto one = [&](int size) { return random.integer(-size / 4, size + size / 4); };
    RECT box;
    box.left = one(width);
    box.top = one(height);
    box.right = random.chance(0.9) ? random.integer(static_cast<int>(box.left), width + width / 4) : one(width);
    box.bottom = random.chance(0.9) ? random.integer(static_cast<int>(box.top), height + height / 4) : one(height);
    return box;
}

/// Gives a raster what was chosen, at random places, and random pixels.
inline RuledRaster makeRuledRaster(Random& random, int width, int height, int type, double ratioYx,
                                   const RuleChoice& choice) {
    RuledRaster result;
    result.raster = std::make_unique<CCsRaster>(width, height, type, ratioYx, false, false);
    CCsRaster& raster = *result.raster;
    if (random.chance(0.8)) raster.setPresentationShutterValue(static_cast<unsigned short>(random.bits()));
    if (choice.planes) {
        for (int i = random.chance(0.1) ? 18 : random.integer(1, 3); i > 0; --i) {
            CCs60XXOverlay plane;
            const int columns = random.chance(0.4) ? width : random.integer(1, width + 5);
            const int rows = random.chance(0.4) ? height : random.integer(1, height + 5);
            result.bits.push_back(randomBits(random, columns, rows));
            plane.columns = static_cast<std::uint16_t>(columns);
            plane.rows = static_cast<std::uint16_t>(rows);
            plane.originX = columns == width ? 1 : random.integer(-5, width);
            plane.originY = rows == height ? 1 : random.integer(-5, height);
            plane.data = random.chance(0.1) ? nullptr : result.bits.back().data();
            raster.add60XXOverlayInfo(plane);
        }
    }
    raster.setEmbeddedOverlayStatus(choice.embedded);
    if (choice.rectangle) raster.setRectShutter(randomBox(random, width, height));
    if (choice.circle) {
        RECT box = randomBox(random, width, height);
        if (random.chance(0.1)) box.right = box.left;
        raster.setCircShutter(box);
    }
    if (choice.polygon) {
        std::vector<CPoint> vertices;
        for (int i = random.integer(0, 7); i > 0; --i) {
            vertices.emplace_back(random.integer(-width / 4, width + width / 4),
                                  random.integer(-height / 4, height + height / 4));
        }
        raster.setPolygonalShutter(vertices);
    }
    if (choice.bitmapShutter) {
        CCsBitmapShutterInfo info;
        const int columns = random.integer(1, width + 3);
        const int rows = random.integer(1, height + 3);
        result.bits.push_back(randomBits(random, columns, rows));
        info.tag = 1;
        info.columns = static_cast<std::uint16_t>(columns);
        info.rows = static_cast<std::uint16_t>(rows);
        info.originX = random.integer(-5, 5);
        info.originY = random.integer(-5, 5);
        info.data = random.chance(0.05) ? nullptr : result.bits.back().data();
        info.presentationValue = static_cast<unsigned short>(random.bits());
        raster.setBitmapShutterInfo(info);
    }
    if (choice.padding) result.padding = randomBits(random, width, height);
    return result;
}

/// The overlay plane hit at a source pixel.
inline std::optional<std::size_t> planeHit(CCsRaster& raster, int x, int y) {
    CCs60XXOverlayInfo readable;
    const std::vector<CCs60XXOverlay>& planes = raster.get60XXOverlayGroup().planes;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        if (planes[i].data == nullptr) continue;
        readable.planes = {planes[i]};
        unsigned short index = 0;
        if (CCsImageUtils::is60XXOverlayBitset(readable, index, x, y)) return i;
    }
    return std::nullopt;
}

inline std::uint32_t greyOf(unsigned short presentationValue) {
    return static_cast<std::uint32_t>(presentationValue >> 8U) * 0x10101U;
}

/// Resampling, one pixel: what is shown instead of the mapped value at the 16.16 source position (u, v), if anything.
inline std::optional<std::uint32_t> shownInstead(CCsRaster& raster, IGreyMap* map, const unsigned char* padding,
                                                 std::uint32_t background, int displayWidth, std::int64_t u,
                                                 std::int64_t v, unsigned stored) {
    const float uf = static_cast<float>(u) * 1.5258789e-5F;
    const float vf = static_cast<float>(v) * 1.5258789e-5F;
    if (map != nullptr && map->isEnabled()) {
        const auto [planeColours, groupColours] = map->getOverlayColors();
        if (groupColours != nullptr) {
            if (const auto hit = planeHit(raster, static_cast<int>(uf), static_cast<int>(vf))) {
                return groupColours[std::min<std::size_t>(*hit, 15)];
            }
        }
        if (planeColours != nullptr && raster.isEmbeddedOverlayPresent() && stored > 4095) {
            return planeColours[stored >> 12U];
        }
    }
    bool outside = false;
    if (raster.isDisplayShutter()) {
        if (raster.isRectShutter()) {
            const RECT rect = raster.getRectShutterRect();
            outside =
                outside || u >> 16 < rect.left || u >> 16 > rect.right || v >> 16 < rect.top || v >> 16 > rect.bottom;
        }
        if (raster.isCircShutter()) {
            const RECT box = raster.getCircShutterRect();
            const auto w = static_cast<float>(std::abs(static_cast<long long>(box.left) - box.right));
            const auto h = static_cast<float>(std::abs(static_cast<long long>(box.top) - box.bottom));
            float r = (w < h ? w : h) / 2.0F;
            const float dx = uf - static_cast<float>(box.left + static_cast<int>(r));
            const float dy = vf - static_cast<float>(box.top + static_cast<int>(r));
            if (r == 0.0F) r = static_cast<float>(displayWidth - 1);
            outside = outside || std::sqrt(dx * dx + dy * dy) > r;
        }
        if (raster.isPolygonalShutter()) {
            const auto vertices = raster.getPolygonalShutterCoordinates();
            outside = outside || !CCsImageUtils::isPointInsidePolygon(vertices, uf, vf);
        }
    } else if (raster.isBitmapShutter()) {
        outside = CCsImageUtils::isBitmapShutterSet(raster.getBitmapShutterInfo(), static_cast<int>(u / 65536),
                                                    static_cast<int>(v / 65536));
    }
    if (outside) return greyOf(raster.getPresentationShutterValue());
    if (padding != nullptr) {
        const int iu = static_cast<int>(uf);
        const int iv = static_cast<int>(vf);
        const bool inside = iu >= 0 && iv >= 0 && iu < raster.getWidth() && iv < raster.getHeight();
        if (inside && CCsImageUtils::isPixePadBitSet(padding, static_cast<long>(iv) * raster.getWidth() + iu)) {
            return background;
        }
    }
    return std::nullopt;
}

/// Mapping of a whole raster, one pixel: what is shown instead of the mapped value at (x, y), if anything.
inline std::optional<std::uint32_t> shownInsteadOnRaster(CCsRaster& raster, IGreyMap* map, const unsigned char* padding,
                                                         int x, int y, unsigned stored) {
    if (map != nullptr && map->isEnabled()) {
        const auto [planeColours, groupColours] = map->getOverlayColors();
        if (groupColours != nullptr) {
            if (const auto hit = planeHit(raster, x, y)) return groupColours[std::min<std::size_t>(*hit, 15)];
        }
        if (planeColours != nullptr && raster.isEmbeddedOverlayPresent() && stored >> 12U != 0) {
            return planeColours[stored >> 12U];
        }
    }
    if (padding != nullptr) {
        const long index = static_cast<long>(y) * raster.getWidth() + x;
        if (index >= 1 && CCsImageUtils::isPixePadBitSet(padding, index)) return 0;
    }
    const bool hidden =
        (raster.isBitmapShutter() && CCsImageUtils::isBitmapShutterSet(raster.getBitmapShutterInfo(), x, y)) ||
        !CCsImageUtils::isPointInsideDisplayShutter(raster.getDisplayShutterInfo(), x, y);
    if (hidden) return greyOf(raster.getPresentationShutterValue());
    return std::nullopt;
}

}  // namespace zoltest
