// The fillers of every kernel, as one table, and the choice among them.
#pragma once

#include "zolcs/resample/bicubic/bicubic.h"
#include "zolcs/resample/bilinear/bilinear.h"
#include "zolcs/resample/nearest/nearestfiller.h"
#include "zolcs/resample/oblique/obliquefiller.h"
#include "zolcs/resample/plainfiller.h"
#include "zolcs/resample/spanfiller.h"
#include "zolcs/resample/stopflag.h"
#include "zolcs/resample/upright/uprightfiller.h"

#include <array>
#include <memory>

namespace zolcs {

/// One way to fill spans with what a kernel gives, through a conversion.
template <typename Kernel, typename Convert>
struct FillerChoice {
    using Pixel = DisplayPixel<Kernel, Convert>;

    const char* name;
    bool (*isUsableFor)(const Kernel& kernel, const Stepping& stepping);
    /// The conversion must outlive the filler.
    SpanFillerPtr<Pixel> (*make)(const Kernel& kernel, const Convert& convert, StopFlag stop);
};

/// The rows of these fillers, then that of the plain one.
template <typename Kernel, typename Convert, typename... Fillers>
class FillerTable {
    template <typename Filler>
    static constexpr FillerChoice<Kernel, Convert> row() {
        return {Filler::name, &Filler::isUsableFor,
                [](const Kernel& kernel, const Convert& convert,
                   StopFlag stop) -> SpanFillerPtr<DisplayPixel<Kernel, Convert>> {
                    return std::make_unique<Filler>(kernel, convert, stop);
                }};
    }

public:
    static constexpr std::array<FillerChoice<Kernel, Convert>, sizeof...(Fillers) + 1> rows{
        row<Fillers>()..., row<PlainFiller<Kernel, Convert>>()};
};

/// The fillers of a kernel, in the order in which they are asked whether they are usable. Each equals the last one, the
/// plain loop, bit for bit: fillers_test.cpp goes through the rows of every kernel and compares.
template <typename Kernel, typename Convert>
struct Fillers : FillerTable<Kernel, Convert> {};

template <typename Sample, typename Convert>
struct Fillers<NearestKernel<Sample>, Convert>
    : FillerTable<NearestKernel<Sample>, Convert, NearestFiller<Sample, Convert>> {};

template <typename Convert>
struct Fillers<BilinearGrey, Convert>
    : FillerTable<BilinearGrey, Convert, UprightFiller<BilinearGrey12Rows, Convert>,
                  UprightFiller<BilinearGrey16Rows, Convert>, ObliqueFiller<BilinearGrey, Convert>> {};

template <typename Convert>
struct Fillers<BilinearRgb, Convert>
    : FillerTable<BilinearRgb, Convert, UprightFiller<BilinearRgbRows, Convert>, ObliqueFiller<BilinearRgb, Convert>> {
};

template <typename Convert>
struct Fillers<CubicGrey, Convert>
    : FillerTable<CubicGrey, Convert, UprightFiller<CubicGrey12Rows, Convert>, UprightFiller<CubicGrey16Rows, Convert>,
                  ObliqueFiller<CubicGrey, Convert>> {};

template <typename Convert>
struct Fillers<CubicRgb, Convert>
    : FillerTable<CubicRgb, Convert, UprightFiller<CubicRgbRows, Convert>, ObliqueFiller<CubicRgb, Convert>> {};

/// The first filler that is usable for a view. The conversion must outlive it.
template <typename Kernel, typename Convert>
SpanFillerPtr<DisplayPixel<Kernel, Convert>> makeFiller(const Stepping& stepping, const Kernel& kernel,
                                                        const Convert& convert, StopFlag stop) {
    constexpr const auto& rows = Fillers<Kernel, Convert>::rows;
    const FillerChoice<Kernel, Convert>* row = rows.data();
    while (!row->isUsableFor(kernel, stepping)) ++row;  // the last one always is
    return row->make(kernel, convert, stop);
}

}  // namespace zolcs
