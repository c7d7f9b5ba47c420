// Sums over parallelograms: what the pixels of a turned raster cover.
//
// With F(x, y) the sum of row y's samples from its left end to x, the sum over an area is the integral of F dy around
// it (Green's theorem). Neighbours share their edges, so that each edge is walked once, from one pixel of the source to
// the next, and whatever one neighbour loses to rounding the other one gains.
#pragma once

#include "viewing/averaging/coverage.h"
#include "viewing/averaging/grid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace viewing::averaging {

/// As AxisSums, in 2^-21 of a pixel. Sums are exact for areas whose corners, and whose edges' crossings with the
/// source's rows and columns, are rounded to positions.
template <typename Sample, std::size_t Channels>
class ObliqueSums {
public:
    ObliqueSums(const Grid<Sample, Channels>& source, const ObliqueCoverage& coverage)
        : coverage_(coverage),
          width_(source.width),
          height_(source.height),
          rowLength_((static_cast<std::size_t>(source.width) + 2) * Channels),
          sums_(static_cast<std::size_t>(coverage.width) * Channels),
          areas_(static_cast<std::size_t>(coverage.width)),
          above_(static_cast<std::size_t>(coverage.width)),
          below_(above_.size()),
          across_(above_.size() + 1) {
        const auto& [a, b, c, d, e, f] = coverage.toSource;
        mirrored_ = a * d - b * c < 0.0;
        addUp(source);
        edgesAlong(0, below_);
    }

    std::span<const std::uint64_t> next() {
        std::swap(above_, below_);
        edgesAlong(row_ + 1, below_);
        for (int x = 0; x <= coverage_.width; ++x)
            across_[static_cast<std::size_t>(x)] = integrate(corner(x, row_), corner(x, row_ + 1));
        for (std::size_t x = 0; x < areas_.size(); ++x) {
            const auto around = [&](auto member) {
                const std::uint64_t sum =
                    member(above_[x]) + member(across_[x + 1]) - member(below_[x]) - member(across_[x]);
                return mirrored_ ? std::uint64_t{0} - sum : sum;
            };
            areas_[x] = around([](const Integral& edge) { return edge.area; });
            for (std::size_t k = 0; k < Channels; ++k)
                sums_[x * Channels + k] = around([k](const Integral& edge) { return edge.values[k]; });
            // Rounded edges can cross where next to nothing is covered.
            constexpr std::uint64_t negative = std::uint64_t{1} << 63U;
            if (areas_[x] >= negative) areas_[x] = 0;
            for (std::size_t k = 0; k < Channels; ++k)
                if (sums_[x * Channels + k] >= negative) sums_[x * Channels + k] = 0;
        }
        ++row_;
        return sums_;
    }

    [[nodiscard]] std::span<const std::uint64_t> areas() const { return areas_; }

private:
    struct Position {
        std::int64_t x;
        std::int64_t y;
    };
    /// Integrals along an edge, modulo 2^64: differences that fit are exact.
    struct Integral {
        std::array<std::uint64_t, Channels> values{};
        std::uint64_t area = 0;
    };

    /// rowSums_[x] is the sum of a row's samples left of x; the last one stands for all positions to the right.
    void addUp(const Grid<Sample, Channels>& source) {
        rowSums_.resize(rowLength_ * static_cast<std::size_t>(height_));
        for (int y = 0; y < height_; ++y) {
            std::uint32_t* out = rowSums_.data() + rowLength_ * static_cast<std::size_t>(y);
            const Sample* in = source.row(y);
            std::array<std::uint32_t, Channels> running{};
            for (int x = 0; x < width_; ++x) {
                for (std::size_t k = 0; k < Channels; ++k) {
                    *out++ = running[k];
                    running[k] += *in++;
                }
            }
            for (int times = 0; times < 2; ++times) out = std::copy(running.begin(), running.end(), out);
        }
    }

    [[nodiscard]] Position corner(int x, int y) const {
        const auto& [a, b, c, d, e, f] = coverage_.toSource;
        const double column = coverage_.left + x;
        const double row = coverage_.top + y;
        return {rounded((a * column + c * row + e) * onePixel), rounded((b * column + d * row + f) * onePixel)};
    }

    static std::int64_t rounded(double position) {
        const auto whole = static_cast<std::int64_t>(position + 0.5);
        return whole - (static_cast<double>(whole) > position + 0.5 ? 1 : 0);
    }

    void edgesAlong(int y, std::vector<Integral>& edges) const {
        Position from = corner(0, y);
        for (int x = 0; x < coverage_.width; ++x) {
            const Position to = corner(x + 1, y);
            edges[static_cast<std::size_t>(x)] = integrate(from, to);
            from = to;
        }
    }

    [[nodiscard]] Integral integrate(Position from, Position to) const {
        Integral sum;
        if (from.y <= to.y) {
            integrateDown(from, to, sum);
            return sum;
        }
        integrateDown(to, from, sum);
        for (std::uint64_t& value : sum.values) value = std::uint64_t{0} - value;
        sum.area = std::uint64_t{0} - sum.area;
        return sum;
    }

    /// From row to row. The edge does not rise.
    void integrateDown(Position from, Position to, Integral& sum) const {
        const std::int64_t end = std::min(to.y, height_ * onePixel);
        if (from.y >= end || to.y <= 0) return;
        const double slope = static_cast<double>(to.x - from.x) / static_cast<double>(to.y - from.y);
        const auto [low, high] = std::minmax(from.x, to.x);
        const auto crossing = [&, lowest = low, highest = high](std::int64_t y) {
            const double x = static_cast<double>(from.x) + static_cast<double>(y - from.y) * slope;
            return std::clamp(rounded(x), lowest, highest);
        };
        Position at = from.y < 0 ? Position{crossing(0), 0} : from;
        while (at.y < end) {
            const std::int64_t row = at.y >> positionBits;
            const std::int64_t y = std::min((row + 1) << positionBits, end);
            const Position next{y == to.y ? to.x : crossing(y), y};
            integrateWithinRow(static_cast<int>(row), std::minmax(at.x, next.x), y - at.y, sum);
            at = next;
        }
    }

    /// From column to column, over so much of a row's height; whether the edge leans left or right makes no difference.
    void integrateWithinRow(int row, std::pair<std::int64_t, std::int64_t> between, std::int64_t height,
                            Integral& sum) const {
        const auto [left, right] = between;
        if (right <= 0) return;
        const std::uint32_t* const sums = rowSums_.data() + rowLength_ * static_cast<std::size_t>(row);
        const std::int64_t last = std::min(right, width_ * onePixel);
        std::int64_t column = left >> positionBits;
        if (left >= 0 && right <= std::min(column + 1, std::int64_t{width_}) * onePixel) {
            add(sums, column, left + right, height, sum);
            return;
        }
        const double slope = left == right ? 0.0 : static_cast<double>(height) / static_cast<double>(right - left);
        const auto heightAt = [&, from = left, to = right](std::int64_t x) {
            return x == to ? height : static_cast<std::int64_t>(static_cast<double>(x - from) * slope + 0.5);
        };
        std::int64_t x = std::max(left, std::int64_t{0});
        std::int64_t done = left < 0 ? heightAt(0) : 0;
        for (column = x >> positionBits; x < last; ++column) {
            const std::int64_t to = std::min((column + 1) << positionBits, last);
            const std::int64_t reached = heightAt(to);
            add(sums, column, x + to, reached - done, sum);
            x = to;
            done = reached;
        }
        add(sums, width_, 2 * width_ * onePixel, height - done, sum);
    }

    /// Over so much height within one pixel of the source; `ends` is the sum of both ends' x.
    static void add(const std::uint32_t* sums, std::int64_t column, std::int64_t ends, std::int64_t height,
                    Integral& sum) {
        const std::uint32_t* const left = sums + static_cast<std::size_t>(column) * Channels;
        const auto down = static_cast<std::uint64_t>(height);
        const auto part = static_cast<std::uint64_t>(ends - column * 2 * onePixel);
        for (std::size_t k = 0; k < Channels; ++k) {
            const std::uint64_t before = left[k];
            sum.values[k] += down * ((before << (positionBits + 1)) + part * (left[k + Channels] - before));
        }
        sum.area += down * static_cast<std::uint64_t>(ends);
    }

    ObliqueCoverage coverage_;
    int width_;
    int height_;
    bool mirrored_ = false;
    std::size_t rowLength_;
    int row_ = 0;
    std::vector<std::uint32_t> rowSums_;
    std::vector<std::uint64_t> sums_;
    std::vector<std::uint64_t> areas_;
    std::vector<Integral> above_;
    std::vector<Integral> below_;
    std::vector<Integral> across_;
};

}  // namespace viewing::averaging
