#include "viewing/averaging/area_average.h"

#include "viewing/averaging/axis_sums.h"
#include "viewing/averaging/block_average.h"
#include "viewing/averaging/oblique_sums.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <limits>
#include <span>

namespace viewing::averaging {

namespace {

template <typename Sample, std::size_t Channels>
AxisSums<Sample, Channels> sumsOf(const Grid<Sample, Channels>& source, const AxisCoverage& coverage) {
    return {source, coverage};
}

template <typename Sample, std::size_t Channels>
ObliqueSums<Sample, Channels> sumsOf(const Grid<Sample, Channels>& source, const ObliqueCoverage& coverage) {
    return {source, coverage};
}

/// The quotient rounded to the nearest whole number, halves up; 0 for no weight at all.
template <typename Sample>
Sample exactMean(std::uint64_t sum, std::uint64_t weight) {
    if (weight == 0) return 0;
    return static_cast<Sample>(
        std::min<std::uint64_t>((sum + weight / 2) / weight, std::numeric_limits<Sample>::max()));
}

/// For weights below this, double precision gives the same as exactMean: with sums of at most 2^48, a product with the
/// reciprocal (or with two of them) is off by less than 2^-34, and quotients that are no halves are 2^-33 away from
/// them or more.
constexpr std::uint64_t lightWeight = std::uint64_t{1} << 32U;

/// In steps of which the compiler makes vectors.
template <typename Sample>
Sample lightMean(std::uint64_t sum, double reciprocal) {
    constexpr double wholes = 0x1.0p52;  // beyond which a double has no fraction: adding it rounds
    constexpr double halvesUp = 0x1.0p-34;
    const double value = std::bit_cast<double>(sum | std::bit_cast<std::uint64_t>(wholes)) - wholes;
    const double rounded = std::min(value * reciprocal, double{std::numeric_limits<Sample>::max()}) + halvesUp + wholes;
    return static_cast<Sample>(std::bit_cast<std::uint64_t>(rounded));
}

/// 0 for no weight at all.
double reciprocalOf(std::uint64_t weight) {
    return weight == 0 ? 0.0 : 1.0 / static_cast<double>(static_cast<std::int64_t>(weight));
}

/// A row of means by weights that differ from pixel to pixel.
template <typename Sample, std::size_t Channels>
void divide(std::span<const std::uint64_t> sums, std::span<const std::uint64_t> weights, Sample* out) {
    if (*std::max_element(weights.begin(), weights.end()) >= lightWeight) {
        for (std::size_t i = 0; i < sums.size(); ++i) out[i] = exactMean<Sample>(sums[i], weights[i / Channels]);
        return;
    }
    for (std::size_t x = 0; x < weights.size(); ++x) {
        const double reciprocal = reciprocalOf(weights[x]);
        for (std::size_t k = 0; k < Channels; ++k)
            out[x * Channels + k] = lightMean<Sample>(sums[x * Channels + k], reciprocal);
    }
}

/// Calls `use(sums, areas, row)` for each row of the reduced raster.
template <typename Sample, std::size_t Channels, typename Use>
void forEachRow(const Grid<Sample, Channels>& source, const Coverage& coverage, Use use) {
    std::visit(
        [&](const auto& shape) {
            if (widthOf(shape) == 0 || heightOf(shape) == 0) return;
            auto sums = sumsOf(source, shape);
            for (int y = 0; y < heightOf(shape); ++y) {
                const auto row = sums.next();
                use(row, sums.areas(), static_cast<std::size_t>(y));
            }
        },
        coverage);
}

template <typename Sample, std::size_t Channels>
void fillMeans(const Grid<Sample, Channels>& source, const ObliqueCoverage& coverage, Sample* out) {
    ObliqueSums<Sample, Channels> sums(source, coverage);
    for (int y = 0; y < coverage.height; ++y) {
        const auto row = sums.next();
        divide<Sample, Channels>(row, sums.areas(), out);
        out += row.size();
    }
}

/// The weight of a cell is the product of its sides, and so is its reciprocal.
template <typename Sample, std::size_t Channels>
void fillMeans(const Grid<Sample, Channels>& source, const AxisCoverage& coverage, Sample* out) {
    if (BlockMeans<Sample, Channels>::canDo(coverage)) {
        BlockMeans<Sample, Channels>(source, coverage).fill(out);
        return;
    }
    AxisSums<Sample, Channels> sums(source, coverage);
    std::vector<double> reciprocals;
    std::int64_t widest = 0;
    for (int x = 0; x < coverage.columns.count(); ++x) {
        const std::int64_t length = coverage.columns.length(x);
        widest = std::max(widest, length);
        reciprocals.insert(reciprocals.end(), Channels, reciprocalOf(static_cast<std::uint64_t>(length)));
    }
    for (int y = 0; y < coverage.rows.count(); ++y) {
        const auto row = sums.next();
        const auto length = static_cast<std::uint64_t>(coverage.rows.length(y));
        if (static_cast<std::uint64_t>(widest) * length < lightWeight) {
            const double reciprocal = reciprocalOf(length);
            for (std::size_t i = 0; i < row.size(); ++i)
                out[i] = lightMean<Sample>(row[i], reciprocals[i] * reciprocal);
        } else {
            divide<Sample, Channels>(row, sums.areas(), out);
        }
        out += row.size();
    }
}

/// The source with zeros in place of what takes no part.
template <typename Sample, std::size_t Channels>
std::vector<Sample> blanked(const Grid<Sample, Channels>& source, const Marks& takesPart) {
    std::vector<Sample> out;
    out.reserve(takesPart.size() * Channels);
    auto part = takesPart.begin();
    for (int y = 0; y < source.height; ++y) {
        const Sample* in = source.row(y);
        for (int x = 0; x < source.width; ++x, ++part)
            for (std::size_t k = 0; k < Channels; ++k, ++in) out.push_back(static_cast<Sample>(*in * *part));
    }
    return out;
}

/// As fillMeans, with the areas of what takes part for weights.
template <typename Sample, std::size_t Channels>
void fillMeansOfParts(const Grid<Sample, Channels>& source, const Marks& takesPart, const Coverage& coverage,
                      Sample* out) {
    const std::vector<Sample> samples = blanked(source, takesPart);
    const Grid<Sample, Channels> blank{samples.data(),
                                       static_cast<std::ptrdiff_t>(static_cast<std::size_t>(source.width) * Channels),
                                       source.width, source.height};
    const Grid<std::uint8_t, 1> parts{takesPart.data(), source.width, source.width, source.height};
    std::visit(
        [&](const auto& shape) {
            if (widthOf(shape) == 0 || heightOf(shape) == 0) return;
            auto sums = sumsOf(blank, shape);
            auto weights = sumsOf(parts, shape);
            for (int y = 0; y < heightOf(shape); ++y) {
                const auto row = sums.next();
                divide<Sample, Channels>(row, weights.next(), out);
                out += row.size();
            }
        },
        coverage);
}

}  // namespace

template <typename Sample, std::size_t Channels>
void average(const Grid<Sample, Channels>& source, const Marks& takesPart, const Coverage& coverage, Sample* out) {
    if (takesPart.empty()) {
        std::visit(
            [&](const auto& shape) {
                if (widthOf(shape) > 0 && heightOf(shape) > 0) fillMeans(source, shape, out);
            },
            coverage);
    } else {
        fillMeansOfParts(source, takesPart, coverage, out);
    }
}

template void average(const Grid<std::uint8_t, 1>&, const Marks&, const Coverage&, std::uint8_t*);
template void average(const Grid<std::uint8_t, 4>&, const Marks&, const Coverage&, std::uint8_t*);
template void average(const Grid<std::uint16_t, 1>&, const Marks&, const Coverage&, std::uint16_t*);
template void average(const Grid<std::uint16_t, 4>&, const Marks&, const Coverage&, std::uint16_t*);

Marks touched(const Grid<std::uint8_t, 1>& marks, const Coverage& coverage) {
    Marks out;
    forEachRow(marks, coverage, [&out](auto sums, auto /*areas*/, std::size_t /*y*/) {
        for (const std::uint64_t sum : sums) out.push_back(sum != 0 ? 1 : 0);
    });
    return out;
}

Marks onSource(int width, int height, const Coverage& coverage) {
    Marks out;
    // No channels: areas are all that is wanted.
    forEachRow(Grid<std::uint8_t, 0>{nullptr, 0, width, height}, coverage,
               [&out](auto /*sums*/, auto areas, std::size_t /*y*/) {
                   for (const std::uint64_t area : areas) out.push_back(area != 0 ? 1 : 0);
               });
    return out;
}

}  // namespace viewing::averaging
