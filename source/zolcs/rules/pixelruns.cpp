#include "zolcs/rules/pixelruns.h"

#include <algorithm>

namespace zolcs {

void PixelRuns::reset(ColumnRange columns) {
    runs_.clear();
    layer_.clear();
    if (!columns.empty()) runs_.push_back({columns.begin, columns.end, PixelRun::Shows::Image, 0});
}

void PixelRuns::add(const PixelRun& run) {
    if (run.end <= run.begin) return;
    if (!layer_.empty() && layer_.back().end == run.begin && layer_.back().showsTheSameAs(run)) {
        layer_.back().end = run.end;
    } else {
        layer_.push_back(run);
    }
}

void PixelRuns::reverseLayer() { std::reverse(layer_.begin(), layer_.end()); }

void PixelRuns::merge() {
    if (layer_.empty()) return;
    merged_.clear();
    const auto append = [this](const PixelRun& run) {
        if (!merged_.empty() && merged_.back().showsTheSameAs(run)) {
            merged_.back().end = run.end;
        } else {
            merged_.push_back(run);
        }
    };
    auto above = layer_.begin();
    for (PixelRun below : runs_) {
        while (below.begin < below.end) {
            while (above != layer_.end() && above->end <= below.begin) ++above;
            PixelRun piece = below;
            if (above == layer_.end() || above->begin >= below.end) {
                below.begin = below.end;
            } else if (above->begin > below.begin) {
                piece.end = above->begin;
                below.begin = piece.end;
            } else {
                piece = *above;
                piece.begin = below.begin;
                piece.end = std::min(above->end, below.end);
                below.begin = piece.end;
            }
            append(piece);
        }
    }
    runs_.swap(merged_);
    layer_.clear();
}

}  // namespace zolcs
