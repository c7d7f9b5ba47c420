#include "viewing/dicom/jpeg2000_layout.h"

#include <algorithm>
#include <array>
#include <map>
#include <vector>

namespace viewing {

namespace {

enum Marker : std::uint32_t {
    startOfCodestream = 0xFF4F,
    sizes = 0xFF51,
    codingStyle = 0xFF52,
    componentStyle = 0xFF53,
    startOfTilePart = 0xFF90,
    startOfData = 0xFF93,
    endOfCodestream = 0xFFD9
};

constexpr std::uint32_t maxLevels = 32;

std::uint64_t ceilDivided(std::uint64_t value, std::uint64_t divisor) { return (value + divisor - 1) / divisor; }

/// An interval of the reference grid or of one that is derived from it; the end lies outside.
struct Interval {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;

    [[nodiscard]] std::uint64_t length() const { return end > begin ? end - begin : 0; }
    [[nodiscard]] Interval divided(std::uint64_t divisor) const {
        return {ceilDivided(begin, divisor), ceilDivided(end, divisor)};
    }
    /// Cells of a grid of 2^exponent through 0 that the interval touches.
    [[nodiscard]] std::uint64_t cells(std::uint32_t exponent) const {
        return length() == 0 ? 0 : ceilDivided(end, std::uint64_t{1} << exponent) - (begin >> exponent);
    }
    /// The samples of a sub-band, high pass or low, after `level` decompositions (B-15).
    [[nodiscard]] Interval band(std::uint32_t level, bool high) const {
        if (level == 0) return *this;
        const std::uint64_t offset = high ? std::uint64_t{1} << (level - 1) : 0;
        const auto part = [&](std::uint64_t place) {
            return place > offset ? ceilDivided(place - offset, std::uint64_t{1} << level) : 0;
        };
        return {part(begin), part(end)};
    }
};

struct Component {
    std::uint32_t bits = 0;
    std::uint32_t stepX = 0;
    std::uint32_t stepY = 0;
};

/// One axis of the grid of tiles.
struct TileAxis {
    Interval image;
    std::uint64_t origin = 0;
    std::uint64_t length = 0;

    [[nodiscard]] bool sound() const {
        return length > 0 && image.length() > 0 && origin <= image.begin && origin + length > image.begin;
    }
    [[nodiscard]] std::uint64_t count() const { return ceilDivided(image.end - origin, length); }
    [[nodiscard]] Interval tile(std::uint64_t number) const {
        const std::uint64_t begin = origin + number * length;
        return {std::max(begin, image.begin), std::min(begin + length, image.end)};
    }
};

struct Sizes {
    TileAxis x;
    TileAxis y;
    std::vector<Component> components;

    [[nodiscard]] std::uint64_t tiles() const { return x.count() * y.count(); }
};

std::optional<Sizes> readSizes(BigEndianReader& in) {
    if (in.u16() != startOfCodestream || in.u16() != sizes) return std::nullopt;
    constexpr std::size_t lengthAndCapabilities = 4;
    in.skip(lengthAndCapabilities);
    Sizes out;
    out.x.image.end = in.u32();
    out.y.image.end = in.u32();
    out.x.image.begin = in.u32();
    out.y.image.begin = in.u32();
    out.x.length = in.u32();
    out.y.length = in.u32();
    out.x.origin = in.u32();
    out.y.origin = in.u32();
    const std::uint32_t count = in.u16();
    for (std::uint32_t i = 0; i < count && !in.overrun(); ++i) {
        // The highest bit of the depth says that samples are signed.
        Component component;
        component.bits = (in.u8() & 0x7FU) + 1;
        component.stepX = in.u8();
        component.stepY = in.u8();
        if (component.stepX == 0 || component.stepY == 0) return std::nullopt;
        out.components.push_back(component);
    }
    if (in.overrun() || out.components.empty() || !out.x.sound() || !out.y.sound()) return std::nullopt;
    return out;
}

/// How one component of a tile is decomposed (A.6.1).
struct Style {
    std::uint32_t levels = 0;
    std::uint32_t blockX = 0;
    std::uint32_t blockY = 0;
    /// Exponents of the precincts' sides for each resolution, the smallest first.
    std::array<std::uint32_t, maxLevels + 1> precinctX{};
    std::array<std::uint32_t, maxLevels + 1> precinctY{};
};

std::optional<Style> readStyle(BigEndianReader& in, bool ownPrecincts) {
    Style style;
    style.levels = in.u8();
    style.blockX = in.u8() + 2;
    style.blockY = in.u8() + 2;
    constexpr std::size_t passesAndTransformation = 2;
    in.skip(passesAndTransformation);
    constexpr std::uint32_t largestBlock = 10;
    if (style.levels > maxLevels || style.blockX > largestBlock || style.blockY > largestBlock) return std::nullopt;
    for (std::uint32_t r = 0; r <= style.levels; ++r) {
        const std::uint32_t both = ownPrecincts ? in.u8() : 0xFF;
        style.precinctX[r] = both & 0xFU;
        style.precinctY[r] = both >> 4U;
    }
    return in.overrun() ? std::nullopt : std::optional(style);
}

/// The styles that hold for a tile: what its own header leaves open comes from the main header, and what is said of a
/// component goes before what is said of all.
struct Styles {
    std::uint32_t layers = 1;
    std::optional<Style> common;
    std::map<std::uint32_t, Style> own;

    /// Null where nothing is said of the component.
    static const Style* find(const Styles& tile, const Styles& main, std::uint32_t component) {
        for (const Styles* styles : {&tile, &main}) {
            const auto found = styles->own.find(component);
            if (found != styles->own.end()) return &found->second;
            if (styles->common) return &*styles->common;
        }
        return nullptr;
    }

    /// Reads a segment if it concerns styles; false when it is broken.
    bool read(std::uint32_t marker, BigEndianReader in, std::size_t components) {
        if (marker == codingStyle) {
            const bool ownPrecincts = (in.u8() & 1U) != 0;
            in.skip(1);
            layers = in.u16();
            in.skip(1);
            common = readStyle(in, ownPrecincts);
            return common.has_value();
        }
        if (marker == componentStyle) {
            const std::uint32_t component = components < 257 ? in.u8() : in.u16();
            const bool ownPrecincts = (in.u8() & 1U) != 0;
            const auto style = readStyle(in, ownPrecincts);
            if (style) own[component] = *style;
            return style.has_value();
        }
        return true;
    }
};

/// Reads segments up to the given marker, behind which the reader stands then. False when there is none.
bool readSegments(BigEndianReader& in, Styles& styles, std::size_t components, std::uint32_t until) {
    while (true) {
        const std::uint32_t marker = in.u16();
        if (in.overrun() || marker < 0xFF00) return false;
        if (marker == until) return true;
        const std::size_t segment = in.at();
        const std::size_t length = in.u16();
        if (length < 2 || !styles.read(marker, in, components)) return false;
        in.seek(segment + length);
    }
}

struct Tile {
    Styles styles;
    std::uint32_t parts = 0;
    /// 0 while no part has told.
    std::uint32_t announced = 0;
    bool cut = false;
    TileEnd end;

    [[nodiscard]] bool isComplete() const { return parts > 0 && parts >= announced && !cut; }
};

/// Where the marker of the end stands, or the bytes end without it. Fragments of an odd length are filled up.
std::size_t endOfTiles(std::span<const std::uint8_t> codestream) {
    for (const std::size_t filling : {0U, 1U}) {
        constexpr std::size_t markerLength = 2;
        if (codestream.size() < markerLength + filling) break;
        const std::size_t at = codestream.size() - markerLength - filling;
        if (BigEndianReader(codestream.subspan(at)).u16() == endOfCodestream) return at;
    }
    return codestream.size();
}

/// The parts of all tiles, in any order. False when a header is broken.
bool readTileParts(BigEndianReader& in, std::span<const std::uint8_t> codestream, const Sizes& grid,
                   std::vector<Tile>& tiles) {
    // The marker of the first part has been read.
    while (true) {
        constexpr std::size_t markerLength = 2;
        const std::size_t begin = in.at() - markerLength;
        in.skip(2);
        const std::uint32_t number = in.u16();
        const std::size_t lengthAt = in.at();
        const std::size_t length = in.u32();
        in.skip(1);
        const std::uint32_t announced = in.u8();
        if (in.overrun() || number >= tiles.size()) return false;
        Tile& tile = tiles[number];
        ++tile.parts;
        tile.announced = std::max(tile.announced, announced);
        if (!readSegments(in, tile.styles, grid.components.size(), startOfData)) return false;
        // A length of 0 reaches to the end of the codestream, whose marker is no part of it.
        if (length == 0) {
            tile.end = {lengthAt, endOfTiles(codestream)};
            return true;
        }
        if (begin + length < in.at()) return false;
        tile.end = {lengthAt, begin + length};
        tile.cut = begin + length - in.at() > in.left();
        if (tile.cut) return true;
        in.seek(begin + length);
        const std::uint32_t marker = in.u16();
        // The end's own marker may be missing.
        if (in.overrun() || marker == endOfCodestream) return true;
        if (marker != startOfTilePart) return false;
    }
}

/// Counts what a decoder sets up. The sizes of its records are OpenJPEG's, rounded up.
class Counter {
public:
    Counter(Jpeg2000Layout& layout, const Jpeg2000Limits& limits) : layout_(layout), limits_(limits) {}

    void countTiles(double tiles, double components) {
        constexpr double tileRecord = 8192.0;
        constexpr double componentRecord = 1280.0;
        layout_.memory += tiles * (tileRecord + components * componentRecord);
    }

    /// One tile is set up at a time. False when there is no need to go on.
    bool countTile(const Interval& x, const Interval& y, const Sizes& grid, const Styles& tile, const Styles& main) {
        double memory = 0.0;
        double mostPrecincts = 0.0;
        double mostLevels = 0.0;
        const double layers = tile.common ? tile.layers : main.layers;
        for (std::size_t c = 0; c < grid.components.size(); ++c) {
            const Component& component = grid.components[c];
            const Style* const style = Styles::find(tile, main, static_cast<std::uint32_t>(c));
            if (style == nullptr) continue;
            mostLevels = std::max<double>(mostLevels, style->levels);
            layout_.levels = std::min(layout_.levels, style->levels);
            for (std::uint32_t r = 0; r <= style->levels; ++r) {
                const Interval columns = x.divided(component.stepX);
                const Interval rows = y.divided(component.stepY);
                const double precincts = countResolution(columns, rows, *style, r, memory);
                mostPrecincts = std::max(mostPrecincts, precincts);
                layout_.parts += precincts * layers;
            }
        }
        // A flag for each packet that there may be.
        constexpr double flag = 2.0;
        memory += flag * (layers + 1) * (mostLevels + 1) * static_cast<double>(grid.components.size()) * mostPrecincts;
        largest_ = std::max(largest_, memory);
        return limits_.admit(layout_) && layout_.memory + largest_ <= limits_.memory;
    }

    void finish() { layout_.memory += largest_; }

private:
    /// The number of precincts.
    double countResolution(const Interval& columns, const Interval& rows, const Style& style, std::uint32_t r,
                           double& memory) {
        constexpr double precinctRecord = 256.0;
        constexpr double blockRecord = 1024.0;
        // As far as doubles count exactly; beyond, nothing is admitted.
        const auto area = [](std::uint64_t across, std::uint64_t down) {
            return static_cast<double>(across) * static_cast<double>(down);
        };
        const std::uint32_t level = style.levels - r;
        const std::uint64_t scale = std::uint64_t{1} << level;
        const double precincts =
            area(columns.divided(scale).cells(style.precinctX[r]), rows.divided(scale).cells(style.precinctY[r]));
        // The smallest resolution is one band, each other one three: a band's precincts and blocks are half as wide.
        const std::uint32_t half = r == 0 ? 0 : 1;
        const std::uint32_t bandLevel = level + half;
        const auto exponent = [half](std::uint32_t block, std::uint32_t precinct) {
            return std::min(block, precinct > half ? precinct - half : 0);
        };
        const std::uint32_t blockX = exponent(style.blockX, style.precinctX[r]);
        const std::uint32_t blockY = exponent(style.blockY, style.precinctY[r]);
        double blocks = 0.0;
        for (const bool highX : {false, true})
            for (const bool highY : {false, true})
                if (r == 0 ? !highX && !highY : highX || highY)
                    blocks +=
                        area(columns.band(bandLevel, highX).cells(blockX), rows.band(bandLevel, highY).cells(blockY));
        const double bands = r == 0 ? 1.0 : 3.0;
        memory += precincts * bands * precinctRecord + blocks * blockRecord;
        layout_.parts += blocks;
        return precincts;
    }

    Jpeg2000Layout& layout_;
    const Jpeg2000Limits& limits_;
    double largest_ = 0.0;
};

}  // namespace

std::optional<CodestreamHeader> readJpeg2000Header(std::span<const std::uint8_t> codestream) {
    BigEndianReader in(codestream);
    const auto grid = readSizes(in);
    if (!grid) return std::nullopt;
    CodestreamHeader header;
    header.samples = static_cast<std::uint32_t>(grid->components.size());
    for (const Component& component : grid->components) {
        const auto largest = [](std::uint32_t before, const Interval& interval, std::uint32_t step) {
            return std::max(before, static_cast<std::uint32_t>(interval.divided(step).length()));
        };
        header.width = largest(header.width, grid->x.image, component.stepX);
        header.height = largest(header.height, grid->y.image, component.stepY);
        header.bits = std::max(header.bits, component.bits);
    }
    return header;
}

std::optional<Jpeg2000Layout> readJpeg2000Layout(std::span<const std::uint8_t> codestream,
                                                 const Jpeg2000Limits& limits) {
    BigEndianReader in(codestream);
    const auto grid = readSizes(in);
    if (!grid) return std::nullopt;
    // The next segment begins where the one of the sizes says that it ends.
    constexpr std::size_t sizesSegment = 4;
    in = BigEndianReader(codestream);
    in.seek(sizesSegment);
    in.seek(sizesSegment + in.u16());

    Jpeg2000Layout layout;
    layout.levels = maxLevels;
    layout.tiles = grid->tiles();
    Counter counter(layout, limits);
    counter.countTiles(static_cast<double>(layout.tiles), static_cast<double>(grid->components.size()));
    constexpr std::uint64_t mostTiles = 65535;
    if (layout.tiles > mostTiles) return std::nullopt;
    if (!limits.admit(layout)) return layout;

    Styles main;
    if (!readSegments(in, main, grid->components.size(), startOfTilePart) || !main.common) return std::nullopt;
    std::vector<Tile> tiles(layout.tiles);
    if (!readTileParts(in, codestream, *grid, tiles)) return std::nullopt;
    bool within = true;
    for (std::uint64_t i = 0; within && i < layout.tiles; ++i) {
        within = counter.countTile(grid->x.tile(i % grid->x.count()), grid->y.tile(i / grid->x.count()), *grid,
                                   tiles[i].styles, main);
    }
    counter.finish();
    for (const Tile& tile : tiles)
        if (tile.isComplete()) layout.completeTiles.push_back(tile.end);
    return layout;
}

}  // namespace viewing
