// Stopping a call between the rows of its picture.
#pragma once

#include "zolcs/resample/spanfiller.h"
#include "zolcs/resample/stopflag.h"

#include <cstdint>

namespace zolcs {

/// Where a call looks for a request to stop.
struct Polling {
    StopFlag rows;    ///< before each row
    StopFlag pixels;  ///< before each pixel of the plain loop, each block of vector loops

    static Polling never() { return {}; }
    static Polling everyRow(std::int32_t& flag) { return {StopFlag(flag), StopFlag()}; }
    static Polling everyPixel(std::int32_t& flag) { return {StopFlag(flag), StopFlag(flag)}; }
};

/// Looks at a flag before each fill of another filler.
template <typename Pixel>
class PollingFiller final : public FillerLayer<Pixel> {
public:
    PollingFiller(SpanFillerPtr<Pixel> below, StopFlag stop) : FillerLayer<Pixel>(std::move(below)), stop_(stop) {}

    bool fill(const DisplayRow& row, ColumnRange columns, Pixel* out) override {
        return !stop_.isRaised() && this->below().fill(row, columns, out);
    }

private:
    StopFlag stop_;
};

/// The filler itself where nothing is to be looked at.
template <typename Pixel>
SpanFillerPtr<Pixel> polled(SpanFillerPtr<Pixel> filler, StopFlag stop) {
    if (!stop.isThere()) return filler;
    return std::make_unique<PollingFiller<Pixel>>(std::move(filler), stop);
}

}  // namespace zolcs
