// What the tests of both grey value maps share: the maps' differences as data, and a fixture for either.
#pragma once

#include "support/map_support.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace zoltest {

using Pixels = std::vector<std::uint32_t>;
using Values = std::vector<std::uint16_t>;

/// In what one grey map differs from the other, as far as their common tests need to know.
struct GreyMapKind {
    const char* name;
    MapFactory::MapType type;
    int imageType;
    int depth;           ///< entries of its table
    int sigmoidEntries;  ///< of them filled by a sigmoid
    bool hasEmbeddedOverlays;
    const wchar_t* module;
    const wchar_t* sourceRefused;
    const wchar_t* nonLinearMissing;
    const wchar_t* windowedMissing;  ///< null where nothing of the kind is reported
};

inline std::ostream& operator<<(std::ostream& out, const GreyMapKind& kind) { return out << kind.name; }

inline constexpr GreyMapKind grey12Kind = {"Grey12",
                                           MapFactory::Grey12,
                                           CCS_GREY12,
                                           4096,
                                           4096,
                                           true,
                                           L"source\\zolcs\\ccsmap",
                                           L"Source type must be CCS_GREY12, is",
                                           L"Memory not allocated for origNonLinearLut12_",
                                           nullptr};
inline constexpr GreyMapKind grey16Kind = {"Grey16",
                                           MapFactory::Grey16,
                                           CCS_GREY16,
                                           65536,
                                           65535,
                                           false,
                                           L"source\\zolcs\\ccsmap16",
                                           L"Source type must be CCS_GREY16, is",
                                           L"Memory not allocated for origNonLinearLut16_",
                                           L"Memory not allocated for windowedNonLinearLut16_"};

/// Level of a window, straight from its definition.
inline int windowLevel(int v, int centre, int width) {
    const std::int64_t low = std::int64_t{centre} - width / 2;
    if (v < low) return 0;
    if (v >= low + width) return 255;
    return static_cast<int>(((v - low) * 256 / width) & 255);
}

inline std::array<unsigned char, 256> testRemap() {
    std::array<unsigned char, 256> remap{};
    for (unsigned i = 0; i < 256; ++i) remap[i] = static_cast<unsigned char>(i * 11 + 5);
    return remap;
}

inline Values ramp(int count, int step, int start = 0) {
    Values values(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) values[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(start + i * step);
    return values;
}

inline int set(IGreyMap& map, const Values& values, bool exact, unsigned first = 0) {
    return map.setNonLinearLut(values.data(), first, static_cast<int>(values.size()), exact);
}

inline int present(IGreyMap& map, const Values& values, unsigned first = 0) {
    return map.setPresentationLut(values.data(), first, static_cast<int>(values.size()));
}

/// A new map with a palette of 256 different colours.
class GreyMapTest : public ::testing::Test {
protected:
    explicit GreyMapTest(const GreyMapKind& kind) : kind_(kind), map_(MapFactory::CreateMap(kind.type)) {
        map().setColorMapIndex(&palette_.map);
    }

    IGreyMap& map() { return static_cast<IGreyMap&>(*map_); }
    [[nodiscard]] const auto& colours() const { return palette_.colours; }
    [[nodiscard]] int depth() const { return kind_.depth; }

    /// The map's entries; none where there is no table.
    Pixels lutOf(IGreyMap& map) const {
        const auto* lut = static_cast<const std::uint32_t*>(map.getLut());
        return lut == nullptr ? Pixels() : Pixels(lut, lut + kind_.depth);
    }
    Pixels lut() { return lutOf(map()); }

    /// Whether the next getLut builds the table anew: only then does it see a changed palette.
    bool isStale() {
        palette_.colours.fill(++unusedColour_);
        const bool stale = lut().at(0) == unusedColour_;
        palette_.colours = TestPalette().colours;
        return stale;
    }

    template <typename Level>
    void expectLut(Level levelOf, const char* what) {
        const Pixels table = lut();
        ASSERT_EQ(table.size(), static_cast<std::size_t>(depth())) << what;
        for (int v = 0; v < depth(); ++v) {
            ASSERT_EQ(table[static_cast<std::size_t>(v)], colours()[static_cast<std::size_t>(levelOf(v))])
                << what << ", value " << v;
        }
    }

    /// A report of the map's own module.
    [[nodiscard]] Report report(const wchar_t* text, int number, int line) const {
        return errorReport(text, number, kind_.module, line);
    }
    [[nodiscard]] Report widthReport(int width) const { return report(L"Window width = negativ or zero", width, 301); }
    [[nodiscard]] Report colourMapReport() const { return report(L"Memory not allocated for colorMapIndex_", 0, 306); }

    const GreyMapKind& kind_;
    TestPalette palette_;
    std::uint32_t unusedColour_ = 0xFF000000U;
    const ReportCapture capture_;
    std::unique_ptr<IMap> map_;
};

/// For TEST_P over both kinds.
class GreyMaps : public GreyMapTest, public ::testing::WithParamInterface<GreyMapKind> {
protected:
    GreyMaps() : GreyMapTest(GetParam()) {}
};

inline constexpr RECT everything = {0, 0, 100000, 100000};

/// A map with overlay colours and a window over the whole depth, and what it takes to map rasters.
class GreyRasterTest : public GreyMapTest {
protected:
    explicit GreyRasterTest(const GreyMapKind& kind) : GreyMapTest(kind) {
        for (unsigned i = 0; i < 16; ++i) {
            planeColours_[i] = 0x0100A000U + i;
            groupColours_[i] = 0x0200B000U + i;
        }
        map().setOverlayColors(planeColours_, groupColours_);
        map().setWindow(2048, 4000);
    }

    [[nodiscard]] CCsRaster source(int width, int height) const {
        return {width, height, kind_.imageType, 1.0, false, false};
    }
    static CCsRaster display(int width, int height) {
        CCsRaster raster(width, height, CCS_RGB8, 1.0, false, false);
        std::memset(raster.getOrigin(), 0x11, static_cast<std::size_t>(raster.getPitch() * height * 4));
        raster.unlock();
        return raster;
    }
    static std::uint16_t* stored(CCsRaster& raster) { return reinterpret_cast<std::uint16_t*>(raster.getOrigin()); }
    static void scribble(CCsRaster& raster, std::uint64_t seed, int low, int high) {
        Random random(seed);
        auto* line = stored(raster);
        for (int y = 0; y < raster.getHeight(); ++y, line += raster.getPitch()) {
            for (int x = 0; x < raster.getWidth(); ++x) line[x] = static_cast<std::uint16_t>(random.integer(low, high));
        }
        raster.unlock();
    }
    /// The lines of a display with their padding.
    static Pixels pixelsOf(CCsRaster& raster) {
        const auto* origin = reinterpret_cast<const std::uint32_t*>(raster.getOrigin());
        Pixels pixels(origin, origin + raster.getPitch() * raster.getHeight());
        raster.unlock();
        return pixels;
    }

    /// What one pixel shows, rule by rule.
    std::uint32_t expectedPixel(CCsRaster& src, const unsigned char* padding, int x, int y) {
        const std::uint16_t value = stored(src)[y * src.getPitch() + x];
        src.unlock();
        const auto colours = map().getOverlayColors();
        unsigned short index = 0;
        if (map().isEnabled() && colours.second != nullptr &&
            CCsImageUtils::is60XXOverlayBitset(src.get60XXOverlayGroup(), index, x, y)) {
            return colours.second[std::min<unsigned>(index, 15)];
        }
        if (kind_.hasEmbeddedOverlays && map().isEnabled() && colours.first != nullptr &&
            src.isEmbeddedOverlayPresent() && value >> 12 != 0) {
            return colours.first[value >> 12];
        }
        const long bit = long{y} * src.getWidth() + x;
        if (bit >= 1 && CCsImageUtils::isPixePadBitSet(padding, bit)) return 0;
        const bool hidden =
            (src.isBitmapShutter() && CCsImageUtils::isBitmapShutterSet(src.getBitmapShutterInfo(), x, y)) ||
            !CCsImageUtils::isPointInsideDisplayShutter(src.getDisplayShutterInfo(), x, y);
        if (hidden) return static_cast<std::uint32_t>(src.getPresentationShutterValue() >> 8) * 0x010101U;
        return static_cast<const std::uint32_t*>(map().getLut())[std::min<int>(value, depth() - 1)];
    }

    void expectMapped(CCsRaster& src, const RECT& segment, bool whole, unsigned char* padding, CCs2dTrafo* trafo,
                      const char* what) {
        CCsRaster expected = display(src.getWidth(), src.getHeight());
        auto* pixels = reinterpret_cast<std::uint32_t*>(expected.getOrigin());
        CCsImageUtils::fillDisplayedRasterWithShutterPresentationValue(
            src, expected, reinterpret_cast<unsigned char*>(pixels), trafo, segment);
        for (int y = 0; y < src.getHeight(); ++y) {
            for (int x = 0; x < src.getWidth(); ++x) {
                if (x < segment.left || x >= segment.right || y < segment.top || y >= segment.bottom) continue;
                pixels[y * expected.getPitch() + x] = expectedPixel(src, padding, x, y);
            }
        }
        expected.unlock();
        CCsRaster dst = display(src.getWidth(), src.getHeight());
        const int sourceLocks = src.GetMemBuffer()->getLockCount();
        const int displayLocks = dst.GetMemBuffer()->getLockCount();
        EXPECT_EQ(map().mapRaster(src, dst, segment, whole, padding, trafo), 255) << what;
        EXPECT_EQ(src.GetMemBuffer()->getLockCount(), sourceLocks) << what;
        EXPECT_EQ(dst.GetMemBuffer()->getLockCount(), displayLocks) << what;
        EXPECT_EQ(pixelsOf(dst), pixelsOf(expected)) << what;
        EXPECT_TRUE(ReportCapture::take().empty()) << what;
    }

    unsigned planeColours_[16];
    unsigned groupColours_[16];
};

}  // namespace zoltest
