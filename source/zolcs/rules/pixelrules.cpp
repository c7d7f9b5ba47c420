#include "zolcs/rules/pixelrules.h"

#include "zolcs/ccsimageutils.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/view/samplingoffsets.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace zolcs {

namespace {

double pixels(Fixed16 coordinate) { return static_cast<double>(coordinate) * fixed16Unit; }

/// The grey display pixel of a shutter's 16-bit presentation value: its high byte in all three channels.
std::uint32_t shutterColour(unsigned short value) { return (value >> 8U) * 0x010101U; }

/// Columns of `within` at which low <= a + x b <= high, widened to whole columns; used to bound, never to decide.
ColumnRange columnsNear(double a, double b, double low, double high, ColumnRange within) {
    const ColumnRange none{within.begin, within.begin};
    if (b == 0.0) return low <= a && a <= high ? within : none;
    const double t0 = (low - a) / b;
    const double t1 = (high - a) / b;
    const auto clamped = [&](double t) {
        return static_cast<int>(std::clamp(t, static_cast<double>(within.begin), static_cast<double>(within.end)));
    };
    const ColumnRange result{std::max(clamped(std::floor(std::min(t0, t1)) - 1.0), within.begin),
                             std::min(clamped(std::ceil(std::max(t0, t1)) + 2.0), within.end)};
    return result.empty() ? none : result;
}

/// Paints `count` of the `room` pixels from `out` on. Runs of a few pixels, which figures mostly are, cost no branch
/// that depends on their length.
void paintRun(std::uint32_t* out, int count, int room, std::uint32_t colour) {
    constexpr std::size_t few = 8;
    static constexpr std::array<std::uint32_t, 2 * few> window{~0U, ~0U, ~0U, ~0U, ~0U, ~0U, ~0U, ~0U};
    if (count > static_cast<int>(few) || room < static_cast<int>(few)) {
        std::fill_n(out, count, colour);
        return;
    }
    const std::uint32_t* painted = window.data() + few - count;
    std::array<std::uint32_t, few> pixels;
    std::memcpy(pixels.data(), out, sizeof pixels);
    for (std::size_t i = 0; i < few; ++i) pixels[i] = (pixels[i] & ~painted[i]) | (colour & painted[i]);
    std::memcpy(out, pixels.data(), sizeof pixels);
}

/// A bit for each piece of a block that some of the block's columns belong to.
std::uint64_t piecesOf(ColumnRange columns) {
    const int first = columns.begin / BitSummary::pieceColumns;
    const int last = (columns.end - 1) / BitSummary::pieceColumns;
    return (~std::uint64_t{0} << first) & (~std::uint64_t{0} >> (BitSummary::blockPieces - 1 - last));
}

}  // namespace

PixelRules PixelRules::forResampling(CCsRaster& source, IGreyMap* map, const unsigned char* padding,
                                     std::uint32_t background, const Stepping& stepping) {
    PixelRules rules;
    rules.sourceExtent_ = std::max(source.getWidth(), source.getHeight());
    const std::uint32_t colour = shutterColour(source.getPresentationShutterValue());

    rules.addBits(BitPlane(padding, 0, 0, source.getWidth(), source.getHeight()), true, PixelRun::Shows::Covered,
                  background);
    if (source.isDisplayShutter()) {
        rules.shutter_ = source.getDisplayShutterInfo();
        // The centre follows from the radius before a degenerate one is replaced.
        const RECT box = source.getCircShutterRect();
        const auto side = [](LONG a, LONG b) {
            return static_cast<float>(std::abs(static_cast<std::int64_t>(a) - static_cast<std::int64_t>(b)));
        };
        float radius = std::min(side(box.left, box.right), side(box.top, box.bottom)) * 0.5F;
        rules.circle_.centerX = static_cast<double>(box.left + static_cast<std::int64_t>(radius));
        rules.circle_.centerY = static_cast<double>(box.top + static_cast<std::int64_t>(radius));
        if (radius == 0.0F) radius = static_cast<float>(stepping.width - 1);
        rules.circle_.radius = radius;
        rules.addShutterGeometry(source, colour);
    } else if (source.isBitmapShutter()) {
        rules.addBitmapShutter(source, colour);
    }
    rules.addOverlays(source, map);
    rules.prepareFor(stepping);
    return rules;
}

PixelRules PixelRules::forWholeRaster(CCsRaster& source, IGreyMap* map, const unsigned char* padding) {
    PixelRules rules;
    rules.wholeRaster_ = true;
    rules.sourceExtent_ = std::max(source.getWidth(), source.getHeight());
    const std::uint32_t colour = shutterColour(source.getPresentationShutterValue());

    if (source.isDisplayShutter()) {
        rules.shutter_ = source.getDisplayShutterInfo();
        rules.circle_ = {static_cast<double>(rules.shutter_.circular.center.x),
                         static_cast<double>(rules.shutter_.circular.center.y), rules.shutter_.circular.radius};
        rules.circleAlone_.circular = rules.shutter_.circular;
        rules.circleAlone_.circular.present = 1;
        rules.addShutterGeometry(source, colour);
    }
    if (source.isBitmapShutter()) rules.addBitmapShutter(source, colour);
    rules.addBits(BitPlane(padding, 0, 0, source.getWidth(), source.getHeight(), 1), false, PixelRun::Shows::Covered,
                  0);
    rules.addOverlays(source, map);
    // All sixteen bits of such a value are grey.
    if (source.getType() == CCS_GREY16) rules.embedded_ = EmbeddedOverlay();
    rules.prepareFor(makeStepping({1.0, 0.0, 0.0, 1.0, -0.5, -0.5}, source.getWidth(), source.getHeight(),
                                  source.getWidth(), source.getHeight()));
    return rules;
}

void PixelRules::addBitmapShutter(CCsRaster& source, std::uint32_t colour) {
    const CCsBitmapShutterInfo& bits = source.getBitmapShutterInfo();
    addBits(planeOf(bits), false, PixelRun::Shows::Covered, colour);
}

void PixelRules::addOverlays(CCsRaster& source, IGreyMap* map) {
    if (map == nullptr || !map->isEnabled()) return;
    const auto [planeColours, groupColours] = map->getOverlayColors();
    if (source.isEmbeddedOverlayPresent()) embedded_ = EmbeddedOverlay(planeColours);
    if (groupColours == nullptr) return;
    // The first plane whose bit is set wins, so it is laid on last.
    const std::vector<CCs60XXOverlay>& planes = source.get60XXOverlayGroup().planes;
    for (std::size_t i = planes.size(); i-- > 0;) {
        addBits(planeOf(planes[i]), !wholeRaster_, PixelRun::Shows::Plane, groupColours[std::min<std::size_t>(i, 15)]);
    }
}

void PixelRules::addShutterGeometry(CCsRaster& source, std::uint32_t colour) {
    const auto addIf = [&](bool present, Kind kind) {
        if (!present) return;
        Layer layer;
        layer.kind = kind;
        layer.colour = colour;
        layers_.push_back(std::move(layer));
    };
    addIf(source.isRectShutter(), Kind::Rectangle);
    addIf(source.isCircShutter(), Kind::Circle);
    addIf(source.isPolygonalShutter(), Kind::Polygon);
}

void PixelRules::addBits(const BitPlane& plane, bool roundedPositions, PixelRun::Shows shows, std::uint32_t colour) {
    if (!plane.isBlank()) layers_.push_back({Kind::Bits, shows, colour, plane, {}, roundedPositions});
}

void PixelRules::ColumnLookup::build(const Stepping& upright, bool roundedPositions) {
    width = upright.width;
    mirrored = upright.stepXu < 0;
    // Rounding can reach the column behind the source's last one.
    const std::int64_t beyond = pixelOf(upright.limitU) + 1;
    before.assign(static_cast<std::size_t>(beyond) + 1, 0);
    Fixed16 u = upright.startU;
    for (int x = 0; x < width; ++x, u += upright.stepXu) {
        const Fixed16 position = std::clamp<Fixed16>(u, 0, upright.limitU);
        const std::int64_t column = roundedPositions ? roundedPixel(position) : pixelOf(position);
        ++before[static_cast<std::size_t>(std::min(column + 1, beyond))];
    }
    for (std::size_t c = 1; c < before.size(); ++c) before[c] += before[c - 1];
}

void PixelRules::prepareFor(const Stepping& stepping) {
    const auto hasBits = [](const Layer& layer) { return layer.kind == Kind::Bits; };
    if (!stepping.hasSource() || std::none_of(layers_.begin(), layers_.end(), hasBits)) return;
    if (stepping.isUpright() || stepping.isQuarterTurn()) {
        const Stepping upright = stepping.isUpright() ? stepping : stepping.transposed();
        preparedStart_ = upright.startU;
        preparedStep_ = upright.stepXu;
        exactColumns_.build(upright, false);
        roundedColumns_.build(upright, true);
    } else {
        for (Layer& layer : layers_) layer.summary = BitSummary(layer.plane, stepping);
    }
}

void PixelRules::cut(const DisplayRow& row, ColumnRange columns, PixelRuns& runs) const {
    runs.reset(columns);
    for (const Layer& layer : layers_) cutLayer(row, columns, layer, runs);
}

void PixelRules::cutCovers(const DisplayRow& row, ColumnRange columns, PixelRuns& runs) const {
    runs.reset(columns);
    for (const Layer& layer : layers_) {
        if (layer.shows == PixelRun::Shows::Covered) cutLayer(row, columns, layer, runs);
    }
}

void PixelRules::paintPlanes(const DisplayRow& row, ColumnRange columns, std::uint32_t* out) const {
    for (const Layer& layer : layers_) {
        if (layer.shows != PixelRun::Shows::Plane) continue;
        visitBits(row, columns, layer, [&](ColumnRange run) {
            paintRun(out + (run.begin - columns.begin), run.end - run.begin, columns.end - run.begin, layer.colour);
        });
    }
}

void PixelRules::cutLayer(const DisplayRow& row, ColumnRange columns, const Layer& layer, PixelRuns& runs) const {
    if (columns.empty()) return;
    switch (layer.kind) {
        case Kind::Rectangle:
            cutRectangle(row, columns, layer, runs);
            break;
        case Kind::Circle:
            cutCircle(row, columns, layer, runs);
            break;
        case Kind::Polygon:
            cutPolygon(row, columns, layer, runs);
            break;
        case Kind::Bits:
            cutBits(row, columns, layer, runs);
            break;
    }
    runs.merge();
}

void PixelRules::cutRectangle(const DisplayRow& row, ColumnRange columns, const Layer& layer, PixelRuns& runs) const {
    const RECT& rect = shutter_.rectangular.rect;
    const auto inside = [&](Fixed16 start, Fixed16 step, LONG low, LONG high, ColumnRange within) {
        const Fixed16 beyond = (static_cast<Fixed16>(high) + 1) * fixed16One;
        return columnsBetween(start, step, low * fixed16One, beyond - 1, within);
    };
    ColumnRange visible = inside(row.u, row.du, rect.left, rect.right, columns);
    visible = inside(row.v, row.dv, rect.top, rect.bottom, visible);
    runs.add(layer.run(columns.begin, visible.begin));
    runs.add(layer.run(std::max(visible.begin, visible.end), columns.end));
}

bool PixelRules::isInsideCircle(Fixed16 u, Fixed16 v) const {
    if (wholeRaster_) {
        return CCsImageUtils::isPointInsideDisplayShutter(circleAlone_, static_cast<int>(pixelOf(u)),
                                                          static_cast<int>(pixelOf(v)));
    }
    const float dx = singlePosition(u) - static_cast<float>(circle_.centerX);
    const float dy = singlePosition(v) - static_cast<float>(circle_.centerY);
    return std::sqrt(dx * dx + dy * dy) <= circle_.radius;
}

void PixelRules::cutCircle(const DisplayRow& row, ColumnRange columns, const Layer& layer, PixelRuns& runs) const {
    // Well inside and well outside, the row is cut by geometry; what lies within the rounding of the distance is
    // tested pixel by pixel.
    const double du = pixels(row.du);
    const double dv = pixels(row.dv);
    const double x0 = pixels(row.uAt(columns.begin)) - circle_.centerX;
    const double y0 = pixels(row.vAt(columns.begin)) - circle_.centerY;
    const double extent = sourceExtent_ + std::fabs(circle_.centerX) + std::fabs(circle_.centerY) + circle_.radius;
    const double margin = (extent + 1.0) * 0x1.0p-18;
    const double stepSquared = du * du + dv * dv;
    const double nearest = stepSquared > 0.0 ? -(x0 * du + y0 * dv) / stepSquared : 0.0;
    const double atNearestX = x0 + nearest * du;
    const double atNearestY = y0 + nearest * dv;
    const double nearestSquared = atNearestX * atNearestX + atNearestY * atNearestY;
    const auto chord = [&](double radius) -> double {  // half, in columns; negative when the row misses
        const double rest = radius * radius - nearestSquared;
        if (radius < 0.0 || rest < 0.0) return -1.0;
        return stepSquared > 0.0 ? std::sqrt(rest / stepSquared) : 0x1.0p31;
    };
    const auto column = [&](double t) {
        return static_cast<int>(
            std::clamp(t + columns.begin, static_cast<double>(columns.begin), static_cast<double>(columns.end)));
    };
    const double outer = chord(circle_.radius + margin);
    const double inner = chord(circle_.radius - margin);
    ColumnRange maybe{columns.begin, columns.begin};
    if (outer >= 0.0) maybe = {column(std::floor(nearest - outer) - 1.0), column(std::ceil(nearest + outer) + 2.0)};
    ColumnRange surely{maybe.end, maybe.end};
    if (inner >= 0.0) {
        surely = common(maybe, {column(std::ceil(nearest - inner) + 1.0), column(std::floor(nearest + inner))});
    }
    if (surely.empty()) surely = {maybe.end, maybe.end};

    const auto testEach = [&](int begin, int end) {
        for (int x = begin; x < end; ++x) {
            if (!isInsideCircle(row.uAt(x), row.vAt(x))) runs.add(layer.run(x, x + 1));
        }
    };
    runs.add(layer.run(columns.begin, maybe.begin));
    testEach(maybe.begin, surely.begin);
    testEach(surely.end, maybe.end);
    runs.add(layer.run(maybe.end, columns.end));
}

void PixelRules::cutPolygon(const DisplayRow& row, ColumnRange columns, const Layer& layer, PixelRuns& runs) const {
    // Between the columns at which the row comes close to an edge of the polygon, one pixel stands for all.
    const std::vector<CPoint>& vertices = shutter_.polygon;
    const double margin = (sourceExtent_ + 1.0) * 0x1.0p-18;
    const double du = pixels(row.du);
    const double dv = pixels(row.dv);
    const double u0 = pixels(row.u);
    const double v0 = pixels(row.v);

    std::vector<ColumnRange>& close = runs.close_;
    close.clear();
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const CPoint& a = vertices[i];
        const CPoint& b = vertices[i + 1 < vertices.size() ? i + 1 : 0];
        const auto [lowX, highX] = std::minmax({static_cast<double>(a.x), static_cast<double>(b.x)});
        const auto [lowY, highY] = std::minmax({static_cast<double>(a.y), static_cast<double>(b.y)});
        ColumnRange reach = columnsNear(u0, du, lowX - margin, highX + margin, columns);
        if (reach.empty()) continue;
        reach = common(reach, columnsNear(v0, dv, lowY - margin, highY + margin, columns));
        if (reach.empty()) continue;
        const double edgeX = static_cast<double>(b.x) - static_cast<double>(a.x);
        const double edgeY = static_cast<double>(b.y) - static_cast<double>(a.y);
        const double length = std::hypot(edgeX, edgeY);
        if (length > 0.0) {
            const double across = ((u0 - a.x) * edgeY - (v0 - a.y) * edgeX) / length;
            const double acrossStep = (du * edgeY - dv * edgeX) / length;
            reach = common(reach, columnsNear(across, acrossStep, -margin, margin, columns));
        }
        if (!reach.empty()) close.push_back(reach);
    }
    std::sort(close.begin(), close.end(), [](ColumnRange a, ColumnRange b) { return a.begin < b.begin; });

    const auto isOutside = [&](int x) {
        return !CCsImageUtils::isPointInsidePolygon(vertices, singlePosition(row.uAt(x)), singlePosition(row.vAt(x)));
    };
    int done = columns.begin;
    const auto clearUntil = [&](int end) {
        if (done < end && isOutside(done)) runs.add(layer.run(done, end));
        done = std::max(done, end);
    };
    for (const ColumnRange reach : close) {
        clearUntil(reach.begin);
        for (; done < reach.end; ++done) {
            if (isOutside(done)) runs.add(layer.run(done, done + 1));
        }
    }
    clearUntil(columns.end);
}

void PixelRules::cutBits(const DisplayRow& row, ColumnRange columns, const Layer& layer, PixelRuns& runs) const {
    visitBits(row, columns, layer, [&](ColumnRange run) { runs.add(layer.run(run.begin, run.end)); });
    if (isPrepared(row) && exactColumns_.mirrored) runs.reverseLayer();
}

template <typename Visit>
void PixelRules::visitBits(const DisplayRow& row, ColumnRange columns, const Layer& layer, const Visit& visit) const {
    if (columns.empty()) return;
    if (isPrepared(row)) {
        visitPreparedBits(row, columns, layer, visit);
    } else {
        visitObliqueBits(row, columns, layer, visit);
    }
}

template <typename Visit>
void PixelRules::visitPreparedBits(const DisplayRow& row, ColumnRange columns, const Layer& layer,
                                   const Visit& visit) const {
    const ColumnLookup& lookup = layer.roundedPositions ? roundedColumns_ : exactColumns_;
    const auto bitAt = [&](Fixed16 position) {
        return layer.roundedPositions ? roundedPixel(position) : pixelOf(position);
    };
    const auto [from, to] = std::minmax({bitAt(row.uAt(columns.begin)), bitAt(row.uAt(columns.end - 1))});
    layer.plane.visitRuns(bitAt(row.v), from, to, [&](std::int64_t first, std::int64_t last) {
        const ColumnRange shown = common(columns, lookup.columnsOf(first, last));
        if (!shown.empty()) visit(shown);
    });
}

template <typename Visit>
void PixelRules::visitObliqueBits(const DisplayRow& row, ColumnRange columns, const Layer& layer, const Visit& visit) {
    const BitPlane& plane = layer.plane;
    const std::int64_t slack = layer.roundedPositions ? 1 : 0;
    columns = columnsBetween(row.u, row.du, (plane.left() - slack) * fixed16One,
                             (plane.right() + slack + 1) * fixed16One - 1, columns);
    columns = columnsBetween(row.v, row.dv, (plane.top() - slack) * fixed16One,
                             (plane.bottom() + slack + 1) * fixed16One - 1, columns);
    if (columns.empty()) return;
    const ColumnRange together = columnsOfWords(row, columns, layer);
    constexpr int piece = BitSummary::pieceColumns;
    std::array<std::uint16_t, BitSummary::blockPieces> set{};
    for (int block = columns.begin / BitSummary::blockColumns; block * BitSummary::blockColumns < columns.end;
         ++block) {
        const int left = block * BitSummary::blockColumns;
        const ColumnRange part = common(columns, {left, left + BitSummary::blockColumns});
        std::uint64_t maySet = layer.summary.mayBeSet(row, block) & piecesOf({part.begin - left, part.end - left});
        const std::uint64_t unknown = maySet & layer.summary.mayBeClear(row, block);
        testBits(row, left, layer, unknown, set.data());
        while (maySet != 0) {
            const int at = std::countr_zero(maySet);
            int x = left + at * piece;
            const int full = std::countr_one((maySet & ~unknown) >> at);
            if (full > 0) {
                visit(common(part, {x, x + full * piece}));
                maySet = at + full < BitSummary::blockPieces ? maySet & ~std::uint64_t{0} << (at + full) : 0;
                continue;
            }
            maySet &= maySet - 1;
            const ColumnRange tested = common(part, {x, x + piece});
            const bool atOnce = tested.begin >= together.begin && tested.end <= together.end;
            const auto lowest = [](int count) { return (1U << count) - 1U; };
            unsigned bits = atOnce ? unsigned{set[static_cast<std::size_t>(at)]}
                                   : unsigned{testBitsOneByOne(row, tested, layer)} << (tested.begin - x);
            bits &= lowest(tested.end - x) & ~lowest(tested.begin - x);
            while (bits != 0) {
                const int clear = std::countr_zero(bits);
                bits >>= clear;
                const int run = std::countr_one(bits);
                bits >>= run;
                visit(ColumnRange{x + clear, x + clear + run});
                x += clear + run;
            }
        }
    }
}

/// The columns whose bits may be tested together: they lie on the plane, in whole words, at positions and with bit
/// numbers of 31 bits.
ColumnRange PixelRules::columnsOfWords(const DisplayRow& row, ColumnRange columns, const Layer& layer) {
    const BitPlane& plane = layer.plane;
    const std::int64_t slack = layer.roundedPositions ? 1 : 0;
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    const Fixed16 endU = (plane.right() + 1 - slack) * fixed16One;
    const Fixed16 endV = (plane.lastRowInWords() + 1 - slack) * fixed16One;
    const bool fits = endU < most && endV < most && plane.rows() * plane.columns() < most &&
                      (plane.bottom() + 1) * plane.columns() + plane.right() < most;
    if (!fits) return {columns.begin, columns.begin};
    columns = columnsBetween(row.u, row.du, std::max<Fixed16>(plane.left() * fixed16One, 0), endU - 1, columns);
    return columnsBetween(row.v, row.dv, std::max<Fixed16>(plane.top() * fixed16One, 0), endV - 1, columns);
}

/// Tests pieces of columns from `left` on; the results hold only where columnsOfWords says that they can.
void PixelRules::testBits(const DisplayRow& row, int left, const Layer& layer, std::uint64_t pieces,
                          std::uint16_t* set) {
    const BitPlane& plane = layer.plane;
    const std::int64_t bits = (plane.lastRowInWords() - plane.top() + 1) * plane.columns();
    if (bits <= 0) return;
    const SamplePositions positions = samplePositions(row, left, plane.columns());
    const SamplingOperations& operations = SamplingOperations::chosen();
    const auto test = layer.roundedPositions ? operations.testRoundedBits : operations.testBits;
    const std::int64_t first = plane.top() * plane.columns() + plane.left();
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    test(positions, {plane.data(), static_cast<std::int32_t>(first), static_cast<std::uint32_t>(std::min(bits, most))},
         pieces, set);
}

/// Bit i tells whether column columns.begin + i, of a single piece, shows a set bit.
std::uint16_t PixelRules::testBitsOneByOne(const DisplayRow& row, ColumnRange columns, const Layer& layer) {
    const auto bitAt = [&](Fixed16 position) {
        return layer.roundedPositions ? roundedPixel(position) : pixelOf(position);
    };
    unsigned set = 0;
    for (int x = columns.begin; x < columns.end; ++x) {
        if (layer.plane.isSet(bitAt(row.uAt(x)), bitAt(row.vAt(x)))) set |= 1U << (x - columns.begin);
    }
    return static_cast<std::uint16_t>(set);
}

}  // namespace zolcs
