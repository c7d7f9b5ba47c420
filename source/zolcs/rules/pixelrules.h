// Which pixels of a row do not simply show the image: overlay planes, embedded overlay bits, shutters and padding.
//
// The order of precedence is written here and nowhere else. The rules are decided once per call; each row is then cut
// into runs of pixels that all show the same, so that no loop over pixels asks about shutters or planes.
#pragma once

#include "zolcs/ccsrecords.h"
#include "zolcs/pixels/embeddedoverlay.h"
#include "zolcs/rules/bitplane.h"
#include "zolcs/rules/pixelruns.h"
#include "zolcs/view/spans.h"
#include "zolcs/view/stepping.h"

#include <array>
#include <cstdint>
#include <vector>

class CCsRaster;
class IGreyMap;

namespace zolcs {

/// What one call shows beside the image itself.
class PixelRules {
public:
    /// No rules: every pixel shows the image.
    PixelRules() = default;

    /// The rules of a resampling call. `map` may be null (a map without grey tables: no overlays). `padding` may be
    /// null, else it holds one bit per source pixel; both it and the planes' data stay the caller's and must live as
    /// long as the rules. Any row may be cut; those of `stepping`, and of its transposition for a quarter turn, are
    /// prepared for.
    static PixelRules forResampling(CCsRaster& source, IGreyMap* map, const unsigned char* padding,
                                    std::uint32_t background, const Stepping& stepping);

    /// The rules of mapping a whole raster pixel by pixel: row y is walked with wholeRasterRow(y). Padding is tested
    /// before the shutters here, never for the first pixel, and shows 0; a bitmap shutter adds to the other kinds.
    /// 16-bit grey values carry no embedded overlay bits.
    static PixelRules forWholeRaster(CCsRaster& source, IGreyMap* map, const unsigned char* padding);

    static DisplayRow wholeRasterRow(int y) { return {0, static_cast<Fixed16>(y) << fixed16Bits, fixed16One, 0}; }

    /// True when no position needs a rule: every row is one run of image.
    [[nodiscard]] bool empty() const { return layers_.empty(); }

    /// The embedded overlay bits that are shown, if any.
    [[nodiscard]] const EmbeddedOverlay& embedded() const { return embedded_; }

    /// Cuts the columns of a row into runs. Every column's position must lie on the source.
    void cut(const DisplayRow& row, ColumnRange columns, PixelRuns& runs) const;

    /// The same without the overlay planes.
    void cutCovers(const DisplayRow& row, ColumnRange columns, PixelRuns& runs) const;

    /// Paints the overlay planes over a row of pixels that show everything else. The figures of a plane are many short
    /// runs, for which this is faster than cutting. `out` is the pixel of columns.begin.
    void paintPlanes(const DisplayRow& row, ColumnRange columns, std::uint32_t* out) const;

private:
    /// A shutter's circle: decided pixel by pixel only close to its edge.
    struct Circle {
        double centerX = 0.0;
        double centerY = 0.0;
        float radius = 0.0F;
    };

    /// Which columns of the rows (u0 + x du, constant v) show which source column. Looking that up spares the
    /// divisions.
    struct ColumnLookup {
        /// For positions as they choose a bit: through single precision, or exact.
        void build(const Stepping& upright, bool roundedPositions);
        /// The display columns that show the source columns first to last, which lie on or directly beside the source.
        [[nodiscard]] ColumnRange columnsOf(std::int64_t first, std::int64_t last) const {
            const int begin = before[static_cast<std::size_t>(first)];
            const int end = before[static_cast<std::size_t>(last) + 1];
            return mirrored ? ColumnRange{width - end, width - begin} : ColumnRange{begin, end};
        }

        std::vector<int> before;  ///< [c]: number of display columns that show a source column below c
        bool mirrored = false;    ///< counted from the right
        int width = 0;
    };

    enum class Kind : std::uint8_t { Rectangle, Circle, Polygon, Bits };

    /// One rule; later layers take precedence over earlier ones.
    struct Layer {
        Kind kind = Kind::Bits;
        PixelRun::Shows shows = PixelRun::Shows::Covered;
        std::uint32_t colour = 0;
        BitPlane plane;
        BitSummary summary;
        bool roundedPositions = false;  ///< positions go through single precision before they choose a bit

        [[nodiscard]] PixelRun run(int begin, int end) const { return {begin, end, shows, colour}; }
    };

    void addOverlays(CCsRaster& source, IGreyMap* map);
    void addBitmapShutter(CCsRaster& source, std::uint32_t colour);
    void addShutterGeometry(CCsRaster& source, std::uint32_t colour);
    void addBits(const BitPlane& plane, bool roundedPositions, PixelRun::Shows shows, std::uint32_t colour);
    void prepareFor(const Stepping& stepping);

    void cutRectangle(const DisplayRow& row, ColumnRange columns, const Layer& layer, PixelRuns& runs) const;
    void cutCircle(const DisplayRow& row, ColumnRange columns, const Layer& layer, PixelRuns& runs) const;
    void cutPolygon(const DisplayRow& row, ColumnRange columns, const Layer& layer, PixelRuns& runs) const;
    void cutBits(const DisplayRow& row, ColumnRange columns, const Layer& layer, PixelRuns& runs) const;
    void cutLayer(const DisplayRow& row, ColumnRange columns, const Layer& layer, PixelRuns& runs) const;

    /// Call visit(run) for the columns that show set bits: from left to right, or from right to left for prepared rows
    /// of a mirrored view.
    template <typename Visit>
    void visitBits(const DisplayRow& row, ColumnRange columns, const Layer& layer, const Visit& visit) const;
    template <typename Visit>
    void visitPreparedBits(const DisplayRow& row, ColumnRange columns, const Layer& layer, const Visit& visit) const;
    template <typename Visit>
    static void visitObliqueBits(const DisplayRow& row, ColumnRange columns, const Layer& layer, const Visit& visit);
    static ColumnRange columnsOfWords(const DisplayRow& row, ColumnRange columns, const Layer& layer);
    static void testBits(const DisplayRow& row, int left, const Layer& layer, std::uint64_t pieces, std::uint16_t* set);
    static std::uint16_t testBitsOneByOne(const DisplayRow& row, ColumnRange columns, const Layer& layer);

    [[nodiscard]] bool isInsideCircle(Fixed16 u, Fixed16 v) const;

    /// True for rows that the column lookups are made for.
    [[nodiscard]] bool isPrepared(const DisplayRow& row) const {
        return !exactColumns_.before.empty() && row.dv == 0 && row.du == preparedStep_ && row.u == preparedStart_;
    }

    std::vector<Layer> layers_;
    EmbeddedOverlay embedded_;
    bool wholeRaster_ = false;
    CCsDisplayShutterInfo shutter_;
    Circle circle_;
    CCsDisplayShutterInfo circleAlone_;  ///< of a whole raster, whose circle the utilities decide
    double sourceExtent_ = 0.0;          ///< the largest source coordinate that a row can have
    Fixed16 preparedStart_ = 0;
    Fixed16 preparedStep_ = 0;
    ColumnLookup exactColumns_;
    ColumnLookup roundedColumns_;
};

}  // namespace zolcs
