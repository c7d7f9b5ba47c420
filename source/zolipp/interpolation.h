// Which source pixels a position needs, and how much of each. Private to the library.
//
// All arithmetic is single precision in the order in which it stands here, without contraction, so that every variant
// on every platform gives the same bits. Its 24 bits are enough: what rounding loses is below a hundredth of a 16-bit
// step.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zolipp {

template <typename T, int taps>
using PerNeighbour = std::array<T, static_cast<std::size_t>(taps)>;

template <int taps>
using Weights = PerNeighbour<float, taps>;

/// The pixels along one axis that a position needs: as many as there are weights, from `first` on. They may lie outside
/// the image.
template <int taps>
struct Neighbours {
    std::int64_t first;
    Weights<taps> weights;
};

/// For a position at the fraction t between two pixels.
///
/// The cubic ones are Keys' convolution with the parameter -1/2 (R. Keys, Cubic convolution interpolation for digital
/// image processing, 1981), which is the Catmull-Rom spline: the one of its family that reproduces quadratics. In this
/// form they are exactly 0, 1, 0, 0 at t = 0 and 0, 0, 1, 0 at t = 1.
template <int taps>
Weights<taps> weightsAt(float t) {
    if constexpr (taps == 1) {
        return {1.0F};
    } else if constexpr (taps == 2) {
        return {1.0F - t, t};
    } else {
        return {((1.0F - 0.5F * t) * t - 0.5F) * t, ((1.5F * t - 2.5F) * t) * t + 1.0F,
                ((2.0F - 1.5F * t) * t + 0.5F) * t, ((0.5F * t - 0.5F) * t) * t};
    }
}

/// Of a position at which column k reaches from k to k + 1, so that sample k lies at k + 0.5.
template <int taps>
Neighbours<taps> neighboursAt(double position) {
    if constexpr (taps == 1) {
        return {static_cast<std::int64_t>(std::floor(position)), weightsAt<1>(0.0F)};
    } else {
        const double fromSample = position - 0.5;
        const double whole = std::floor(fromSample);
        return {static_cast<std::int64_t>(whole) - (taps / 2 - 1),
                weightsAt<taps>(static_cast<float>(fromSample - whole))};
    }
}

/// Calls `run` with the number of neighbours along an axis as a constant.
template <typename Run>
void withTaps(int interpolation, Run run) {
    switch (interpolation) {
        case 1:
            run(std::integral_constant<int, 1>{});
            break;
        case 2:
            run(std::integral_constant<int, 2>{});
            break;
        default:
            run(std::integral_constant<int, 4>{});
    }
}

/// The first index in [begin, end) at which a condition holds that, once it holds, holds for all that follow; `end`
/// when it never does.
template <typename Condition>
int firstWhere(int begin, int end, Condition condition) {
    while (begin < end) {
        const int middle = begin + (end - begin) / 2;
        if (condition(middle)) {
            end = middle;
        } else {
            begin = middle + 1;
        }
    }
    return begin;
}

}  // namespace zolipp
