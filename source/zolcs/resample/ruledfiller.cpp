#include "zolcs/resample/ruledfiller.h"

#include <algorithm>

namespace zolcs {

bool EmbeddedFiller::fill(const DisplayRow& row, ColumnRange columns, std::uint32_t* out) {
    if (!below().fill(row, columns, out)) return false;
    for (int x = columns.begin; x < columns.end; ++x, ++out) {
        *out = overlay_.over(raw_(row.uAt(x), row.vAt(x)), *out);
    }
    return true;
}

bool RuledFiller::fill(const DisplayRow& row, ColumnRange columns, std::uint32_t* out) {
    const auto isShort = [](const PixelRun& run) { return run.end - run.begin < 32; };
    rules_.cutCovers(row, columns, runs_);
    for (auto run = runs_.begin(); run != runs_.end();) {
        if (run->shows != PixelRun::Shows::Image) {
            paint(row, *run, out + (run->begin - columns.begin));
            ++run;
            continue;
        }
        // What covers a few pixels only is painted over the image: beginning a new run would cost more.
        auto last = run;
        for (auto next = run; next != runs_.end() && (next->shows == PixelRun::Shows::Image || isShort(*next));
             ++next) {
            if (next->shows == PixelRun::Shows::Image) last = next;
        }
        if (!below().fill(row, {run->begin, last->end}, out + (run->begin - columns.begin))) return false;
        for (; run != last; ++run) {
            if (run->shows != PixelRun::Shows::Image) paint(row, *run, out + (run->begin - columns.begin));
        }
        ++run;
    }
    rules_.paintPlanes(row, columns, out);
    return true;
}

void RuledFiller::paint(const DisplayRow& row, const PixelRun& run, std::uint32_t* out) const {
    const EmbeddedOverlay& overlay = rules_.embedded();
    if (!overlay.isShown()) {
        std::fill_n(out, run.end - run.begin, run.colour);
        return;
    }
    for (int x = run.begin; x < run.end; ++x) *out++ = overlay.over(raw_(row.uAt(x), row.vAt(x)), run.colour);
}

}  // namespace zolcs
