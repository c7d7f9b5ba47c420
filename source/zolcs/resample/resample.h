// The loop over the display, once for all resamplers.
//
// A *filler* fills neighbouring pixels of a display line whose positions all lie on the source:
//
//     bool fill(const SourceLine& line, ColumnRange columns, Pixel* out);    // out is the pixel of columns.begin
//     void prepare(const Stepping&);                                          // before the first line of a call
//     void expect(ColumnRange columns);                                       // the fills that follow lie within them
//
// and returns false to stop the call (an abort flag). It may only depend on the positions, so that one filler serves
// rows and, for quarter turns, columns of the display.
#pragma once

#include "zolcs/pixels/imageview.h"
#include "zolcs/resample/kernels.h"
#include "zolcs/resample/spanoperations.h"
#include "zolcs/rules/pixelrules.h"
#include "zolcs/view/stepping.h"

#include <algorithm>
#include <concepts>
#include <cstring>
#include <type_traits>
#include <vector>

namespace zolcs {

template <typename F, typename Pixel>
concept Filler = requires(F filler, const Stepping& stepping, const SourceLine& line, ColumnRange columns, Pixel* out) {
    filler.prepare(stepping);
    filler.expect(columns);
    { filler.fill(line, columns, out) } -> std::same_as<bool>;
};

/// Calls visit(y, line, span) for every display row, top down; stops and returns false when the visitor does.
template <typename Visitor>
bool walkRows(const Stepping& stepping, Visitor&& visit) {
    for (int y = 0; y < stepping.height; ++y) {
        if (!visit(y, stepping.line(y), stepping.span(y))) return false;
    }
    return true;
}

/// A display and what is shown beside the source.
template <typename Pixel>
struct Display {
    ImageView<Pixel> image;
    Pixel background;

    void fillBackground(int y, int begin, int end) const {
        if (begin < end) std::fill(image.line(y) + begin, image.line(y) + end, background);
    }
};

/// The plain loop: position by position. The obvious twin that every other filler must equal.
template <typename Kernel, typename Convert>
class PlainFiller {
public:
    PlainFiller(Kernel kernel, const Convert& convert) : kernel_(kernel), convert_(convert) {}

    void prepare(const Stepping& /*stepping*/) {}
    void expect(ColumnRange /*columns*/) {}

    template <typename Pixel>
    bool fill(const SourceLine& line, ColumnRange columns, Pixel* out) {
        Fixed16 u = line.uAt(columns.begin);
        Fixed16 v = line.vAt(columns.begin);
        for (int x = columns.begin; x < columns.end; ++x, u += line.du, v += line.dv) *out++ = convert_(kernel_(u, v));
        return true;
    }

private:
    Kernel kernel_;
    const Convert& convert_;
};

/// Lays overlays, shutters and padding over another filler; pixels that shutters or padding hide are not fetched.
template <typename Inner>
class RuledFiller {
public:
    /// `raw` gives stored values by position, for embedded overlay bits below shutters and padding.
    RuledFiller(Inner& inner, const PixelRules& rules, NearestKernel<std::uint16_t> raw)
        : inner_(inner), rules_(rules), raw_(raw) {}

    void prepare(const Stepping& stepping) { inner_.prepare(stepping); }
    void expect(ColumnRange columns) { inner_.expect(columns); }

    bool fill(const SourceLine& line, ColumnRange columns, std::uint32_t* out) {
        rules_.cutCovers(line, columns, runs_);
        for (auto run = runs_.begin(); run != runs_.end();) {
            if (run->shows != PixelRun::Shows::Image) {
                paint(line, *run, out + (run->begin - columns.begin));
                ++run;
                continue;
            }
            // What covers a few pixels only is painted over the image: beginning a new run would cost more.
            auto last = run;
            for (auto next = run; next != runs_.end() && (next->shows == PixelRun::Shows::Image || isShort(*next));
                 ++next) {
                if (next->shows == PixelRun::Shows::Image) last = next;
            }
            if (!inner_.fill(line, {run->begin, last->end}, out + (run->begin - columns.begin))) return false;
            for (; run != last; ++run) {
                if (run->shows != PixelRun::Shows::Image) paint(line, *run, out + (run->begin - columns.begin));
            }
            ++run;
        }
        rules_.paintPlanes(line, columns, out);
        return true;
    }

private:
    static bool isShort(const PixelRun& run) { return run.end - run.begin < 32; }

    void paint(const SourceLine& line, const PixelRun& run, std::uint32_t* out) const {
        if (rules_.embeddedColours() != nullptr) {
            fillBelowEmbedded(line, run, out);
        } else {
            std::fill_n(out, run.end - run.begin, run.colour);
        }
    }

    void fillBelowEmbedded(const SourceLine& line, const PixelRun& run, std::uint32_t* out) const {
        const std::uint32_t* embedded = rules_.embeddedColours();
        for (int x = run.begin; x < run.end; ++x) {
            const unsigned bits = raw_(line.uAt(x), line.vAt(x)) >> 12U;
            *out++ = bits != 0 ? embedded[bits] : run.colour;
        }
    }

    Inner& inner_;
    const PixelRules& rules_;
    NearestKernel<std::uint16_t> raw_;
    PixelRuns runs_;
};

/// Fills the display row by row.
template <typename Pixel, Filler<Pixel> F>
bool fillRows(const Stepping& stepping, const Display<Pixel>& display, F& filler) {
    filler.prepare(stepping);
    return walkRows(stepping, [&](int y, const SourceLine& line, Span span) {
        display.fillBackground(y, 0, span.begin());
        const ColumnRange columns{span.begin(), span.end()};
        if (!columns.empty()) {
            filler.expect(columns);
            if (!filler.fill(line, columns, display.image.line(y) + columns.begin)) return false;
        }
        display.fillBackground(y, span.end(), stepping.width);
        return true;
    });
}

/// Fills the display of a quarter turn. Walking its rows would walk down the source's columns, so strips of display
/// columns are filled along the source's rows into a small buffer and turned into place.
template <typename Pixel, Filler<Pixel> F>
bool fillStrips(const Stepping& stepping, const Display<Pixel>& display, F& filler) {
    constexpr int stripWidth = 32;
    constexpr int tileHeight = 1200;
    // Not a power of two, so that the lines of the buffer do not share a few cache sets.
    constexpr int tilePitch = tileHeight + 16;

    // In a quarter turn the span is the same in all rows that have one, and those rows follow one another.
    ColumnRange rows;
    ColumnRange columns;
    walkRows(stepping, [&](int y, const SourceLine&, Span span) {
        display.fillBackground(y, 0, span.begin());
        display.fillBackground(y, span.end(), stepping.width);
        if (span.empty()) return true;
        if (rows.empty()) rows.begin = y;
        rows.end = y + 1;
        columns = {span.begin(), span.end()};
        return true;
    });

    const Stepping turned = stepping.transposed();
    filler.prepare(turned);
    std::vector<Pixel> tile(static_cast<std::size_t>(stripWidth) * tilePitch);
    for (int left = columns.begin; left < columns.end; left += stripWidth) {
        const int right = std::min(left + stripWidth, columns.end);
        for (int top = rows.begin; top < rows.end; top += tileHeight) {
            const int bottom = std::min(top + tileHeight, rows.end);
            filler.expect({top, bottom});
            for (int x = left; x < right; ++x) {
                Pixel* out = tile.data() + static_cast<std::ptrdiff_t>(x - left) * tilePitch;
                if (!filler.fill(turned.line(x), {top, bottom}, out)) return false;
            }
            transposeTile(tile.data(), {tilePitch, right - left, bottom - top, display.image.pitch()},
                          display.image.line(top) + left);
        }
    }
    return true;
}

/// Fills the display along the source's rows as far as the view allows.
template <typename Pixel, Filler<Pixel> F>
bool fillDisplay(const Stepping& stepping, const Display<Pixel>& display, F& filler) {
    const bool strips = stepping.isQuarterTurn() && !stepping.isUpright() && !SpanOperations::isPlain();
    return strips ? fillStrips(stepping, display, filler) : fillRows(stepping, display, filler);
}

}  // namespace zolcs
