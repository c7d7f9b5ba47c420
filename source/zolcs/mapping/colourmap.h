// The maps of colour channels. Their sample type, depth and reports are parameters; there is one implementation.
#pragma once

#include "platform/cache.h"
#include "zolcs/ccsexport.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/ccsresults.h"
#include "zolcs/mapping/levelramp.h"
#include "zolcs/mapping/windowlut.h"
#include "zolcs/pixels/imagepair.h"
#include "zolcs/view/spans.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <type_traits>

namespace zolcs::mapping {

/// In what one colour map differs from another.
struct ColourMapKind {
    bool windowIsSeenAtOnce;  ///< whether a window that is set makes the table stale
    ReportSite widthRefused;
    ImagePairRules images;
};

/// Fills a table of levels. False, reported, for a window without width, which leaves the table as it is.
bool buildLevels(std::span<unsigned char> table, const Window& window, const ReportSite& widthRefused);

/// ORs a rendered bitmap into 32-bit pixels; the mark of blanked pixels clears them. Results as mergeDIBtoData.
int burnIntoColours(CCsRaster& raster, const BITMAPINFO* dib);

/// The columns of a row that a circle lets through; all of them without a circle.
ColumnRange columnsInCircle(const CCsCircularShutterInfo& circle, int y);

/// The pixels of a locked image of four channels a pixel.
template <typename Channel>
Channel* channelsAt(unsigned char* origin, const CCsImage& image, LONG x, LONG y) {
    return reinterpret_cast<Channel*>(origin) + (std::int64_t{y} * image.getPitch() + x) * 4;
}

/// Maps that many pixels of four channels, each of the first three through a table of its own. Channels beyond a table
/// take its last entry; the fourth byte becomes 0.
template <typename Channel, std::size_t entries>
void mapSpan(const Channel* from, unsigned char* to, std::int64_t pixels,
             const std::array<unsigned char, entries>& first, const std::array<unsigned char, entries>& second,
             const std::array<unsigned char, entries>& third) {
    const auto level = [](const std::array<unsigned char, entries>& table, Channel value) {
        return std::uint32_t{table[std::min<std::size_t>(value, entries - 1)]};
    };
    constexpr std::int64_t pagePixels = 1024;
    for (std::int64_t i = 0; i < pixels; ++i, from += 4, to += 4) {
        // The processor's own prefetching stops at every page.
        if (i % pagePixels == 0 && i + pagePixels < pixels) {
            zolplatform::prefetchRow(from + pagePixels * 4);
            zolplatform::prefetchRow(to + pagePixels * 4);
        }
        const std::uint32_t pixel = level(first, from[0]) | level(second, from[1]) << 8U | level(third, from[2]) << 16U;
        std::memcpy(to, &pixel, sizeof pixel);  // one store takes less time than four of a byte
    }
}

/// A map of channels through one table of levels. The operations are documented at IMap and IColorMap.
template <typename ChannelType, std::size_t entries>
class ColourMap : public IColorMap {
public:
    ColourMap& operator=(const ColourMap&) = delete;

    void setColorMapIndex(CCsColorMapT* /*colorMap*/) override {}

    int mapRaster(CCsRaster& src, CCsImage& dst, RECT segment, bool /*wholeImageAllowed*/,
                  unsigned char* /*pixelPadding*/, CCs2dTrafo* /*trafo*/) override {
        if (!acceptImages(src, dst, kind_.images) || getLut() == nullptr) return CCS_FAILED;
        const ImagePairLock images(src, dst);
        if (!acceptMemory(images, kind_.images)) return CCS_FAILED;
        CCsCircularShutterInfo circle;
        CCsImageUtils::findCircShutterInfo(circle, src);
        const bool isLarge = zolplatform::isTooLargeForTheCache(std::int64_t{dst.getWidth()} * dst.getHeight() * 4);
        const LONG bottom = std::min<LONG>(segment.bottom, src.getHeight());
        const LONG right = std::min<LONG>(segment.right, src.getWidth());
        for (LONG y = std::max<LONG>(segment.top, 0); y < bottom; ++y) {
            const ColumnRange shown = columnsInCircle(circle, static_cast<int>(y));
            const LONG begin = std::max<LONG>({segment.left, 0, shown.begin});
            const LONG end = std::min<LONG>(shown.end, right);
            if (begin >= end) continue;
            show(channelsAt<Channel>(images.source(), src, begin, y),
                 channelsAt<unsigned char>(images.destination(), dst, begin, y), end - begin, isLarge);
        }
        return CCS_DONE;
    }

    void* getLut() override {
        if (!lutValid_) {
            lutValid_ = buildLevels(lut_, window_, kind_.widthRefused);
            if (lutValid_) ramp_ = LevelRamp::of(window_, entries);
        }
        return lutValid_ ? lut_.data() : nullptr;
    }

    int setWindow(unsigned int centre, int width) override {
        // As in the grey maps, a negative centre arrives as its 32-bit pattern.
        window_ = {static_cast<std::int32_t>(centre), width};
        if (kind_.windowIsSeenAtOnce) lutValid_ = false;
        return CCS_DONE;
    }

    int mergeDIBtoData(CCsRaster& raster, BITMAPINFO* dib, unsigned int /*depth*/, int /*bits*/,
                       bool /*blankToMax*/) override {
        return burnIntoColours(raster, dib);
    }

    void reserved1(void* /*first*/, void* /*second*/) override {}
    void reserved2(void* /*first*/, void* /*second*/) override {}
    void reserved3(void* /*first*/, void* /*second*/) override {}

protected:
    using Channel = ChannelType;
    using Table = std::array<unsigned char, entries>;

    /// `kind` must outlive the map.
    explicit ColourMap(const ColourMapKind& kind) : kind_(kind) {}
    ColourMap(const ColourMap& other) = default;

    /// The table is built anew when it is next asked for.
    void makeStale() { lutValid_ = false; }

private:
    void show(const Channel* from, unsigned char* to, std::int64_t pixels, bool isLarge) const {
        // A table for bytes is small enough to be quick.
        if constexpr (std::is_same_v<Channel, std::uint16_t>) {
            const bool nonTemporal = isLarge && pixels >= zolplatform::shortestNonTemporalRun;
            if (ramp_ && fillLevelRamp(*ramp_, from, to, static_cast<std::size_t>(pixels), nonTemporal)) return;
        }
        mapSpan(from, to, pixels, lut_, lut_, lut_);
    }

    const ColourMapKind& kind_;
    bool lutValid_ = false;
    Table lut_{};
    std::optional<LevelRamp> ramp_;  ///< gives what the table holds
    Window window_{2048, 2048};
};

}  // namespace zolcs::mapping

/// The map of colours with 12 bits a channel.
class CCsRgb12Map final : public zolcs::mapping::ColourMap<std::uint16_t, 4096> {
public:
    CCsRgb12Map();
    /// The copy's table is stale: that is how a window that was set after the table was built reaches a clone.
    CCsRgb12Map(const CCsRgb12Map& other);
    CCsRgb12Map& operator=(const CCsRgb12Map&) = delete;
    ~CCsRgb12Map() override = default;
    IMap* clone() override;
    int mapRasterSeparate(CCsImage& src, CCsImage& dst) override;
};

/// The map of colours with 8 bits a channel.
class ZOLWEBCS_API CCsRgb8Map : public zolcs::mapping::ColourMap<std::uint8_t, 256> {
public:
    CCsRgb8Map();
    CCsRgb8Map(const CCsRgb8Map& other);
    CCsRgb8Map& operator=(const CCsRgb8Map&) = delete;
    ~CCsRgb8Map() override = default;
    IMap* clone() override;
    int mapRasterSeparate(CCsImage& src, CCsImage& dst) override;

protected:
    /// A channel's table and what it is built from. No operation of the interface changes the window.
    struct ChannelTable {
        bool valid = false;
        Table levels{};
        zolcs::mapping::Window window{127, 256};
    };
    std::array<ChannelTable, 3> channels_;

private:
    bool buildChannels();

    CCriticalSection channelLock_;
};
