// The plain loop: position by position.
#pragma once

#include "zolcs/resample/spanfiller.h"
#include "zolcs/resample/stopflag.h"
#include "zolcs/view/stepping.h"

#include <type_traits>

namespace zolcs {

/// What a conversion makes of a kernel's values.
template <typename Kernel, typename Convert>
using DisplayPixel = std::invoke_result_t<const Convert&, typename Kernel::Pixel>;

/// The obvious filler, which every other one for the same kernel and conversion must equal bit for bit.
template <typename Kernel, typename Convert>
class PlainFiller final : public SpanFiller<DisplayPixel<Kernel, Convert>> {
public:
    using Pixel = DisplayPixel<Kernel, Convert>;

    static constexpr const char* name = "plain";
    static bool isUsableFor(const Kernel& /*kernel*/, const Stepping& /*stepping*/) { return true; }

    /// The conversion must outlive the filler. Looks at `stop` before each pixel.
    PlainFiller(const Kernel& kernel, const Convert& convert, StopFlag stop)
        : kernel_(kernel), convert_(convert), stop_(stop) {}

    void beginView(const Stepping& /*stepping*/) override {}
    void beginColumns(ColumnRange /*columns*/) override {}

    bool fill(const DisplayRow& row, ColumnRange columns, Pixel* out) override {
        const StopFlag stop = stop_;
        Fixed16 u = row.uAt(columns.begin);
        Fixed16 v = row.vAt(columns.begin);
        for (int x = columns.begin; x < columns.end; ++x, u += row.du, v += row.dv) {
            if (stop.isRaised()) return false;
            *out++ = convert_(kernel_(u, v));
        }
        return true;
    }

private:
    Kernel kernel_;
    const Convert& convert_;
    StopFlag stop_;
};

}  // namespace zolcs
