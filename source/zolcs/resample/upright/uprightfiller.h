// The fast filler of interpolation in upright views.
//
// There a pixel's horizontal position depends on its column alone and its vertical one on its row alone. So the
// columns' offsets and weights are tabulated once a call, source rows are filtered across once and kept for the next
// display rows, and what remains is to weigh filtered rows down.
#pragma once

#include "zolcs/resample/bicubic/bicubic.h"
#include "zolcs/resample/bilinear/bilinear.h"
#include "zolcs/resample/conversions.h"
#include "zolcs/resample/plainfiller.h"
#include "zolcs/resample/spanfiller.h"
#include "zolcs/resample/stopflag.h"
#include "zolcs/resample/upright/uprightoperations.h"
#include "zolcs/simd/variant.h"
#include "zolcs/view/stepping.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace zolcs {

/// Where the pixels of one axis are weighed for a position.
template <std::size_t Taps, typename Weights>
struct AxisTaps {
    std::array<std::int64_t, Taps> pixels;
    Weights weights;
};

/// Both axes of a bilinear kernel: two pixels, and the fraction between them.
template <typename KernelType>
struct BilinearAxes {
    using Kernel = KernelType;
    static constexpr std::size_t taps = 2;
    static constexpr std::size_t centre = 0;  ///< the tap on which a shifted position falls

    static AxisTaps<taps, std::uint32_t> axis(Fixed16 position, Fixed16 last) {
        const Fixed16 at = std::clamp<Fixed16>(position - fixed16One / 2, 0, last);
        const std::int64_t pixel = pixelOf(at);
        return {{pixel, at < last ? pixel + 1 : pixel}, static_cast<std::uint32_t>(at & 0xFFFF)};
    }
    static auto column(const Kernel& kernel, Fixed16 u) { return axis(u, kernel.source().lastU()); }
    static auto row(const Kernel& kernel, Fixed16 v) { return axis(v, kernel.source().lastV()); }
    static std::int64_t lastColumn(const Kernel& kernel) { return pixelOf(kernel.source().lastU()); }
    static std::int64_t lastRow(const Kernel& kernel) { return pixelOf(kernel.source().lastV()); }

    /// The fraction between the pixels at `offset` and behind it.
    static std::int32_t fraction(const AxisTaps<taps, std::uint32_t>& column, std::int64_t offset) {
        return column.pixels[0] > offset ? fixed16One : static_cast<std::int32_t>(column.weights & blendFraction);
    }
};

/// Both axes of a cubic kernel: four pixels, the outermost ones of the image repeated, and their weights.
template <typename KernelType>
struct CubicAxes {
    using Kernel = KernelType;
    static constexpr std::size_t taps = 4;
    static constexpr std::size_t centre = 1;

    static AxisTaps<taps, const CubicWeights&> axis(const Kernel& kernel, Fixed16 position, std::int64_t last) {
        const Fixed16 at = position - fixed16One / 2;
        std::array<std::int64_t, taps> pixels;
        std::int64_t pixel = pixelOf(at) - 1;
        for (std::int64_t& tap : pixels) tap = std::clamp<std::int64_t>(pixel++, 0, last);
        return {pixels, kernel.source().weightsFor(at)};
    }
    static auto column(const Kernel& kernel, Fixed16 u) { return axis(kernel, u, kernel.source().lastColumn()); }
    static auto row(const Kernel& kernel, Fixed16 v) { return axis(kernel, v, kernel.source().lastRow()); }
    static std::int64_t lastColumn(const Kernel& kernel) { return kernel.source().lastColumn(); }
    static std::int64_t lastRow(const Kernel& kernel) { return kernel.source().lastRow(); }

    static constexpr int weightsPerColumn = 4;
    /// A pixel that is repeated gets the sum of its weights.
    static void tabulate(const AxisTaps<taps, const CubicWeights&>& column, std::int64_t offset, std::int16_t* weights,
                         std::int16_t* remainders) {
        CubicWeights sums{};
        for (std::size_t i = 0; i < taps; ++i) {
            sums[static_cast<std::size_t>(column.pixels[i] - offset)] += column.weights[i];
        }
        for (std::size_t i = 0; i < taps; ++i) {
            weights[i] = static_cast<std::int16_t>(sums[i] >> 2);
            remainders[i] = static_cast<std::int16_t>(sums[i] & 3);
        }
    }
};

inline constexpr std::int32_t twelveBitMask = 0x0FFF;

struct BilinearGrey12Rows : BilinearAxes<BilinearGrey> {
    static constexpr const char* name = "upright, 12 bits";
    using Sample = std::int16_t;
    static constexpr int samplesPerPixel = 1;
    static bool takes(const BilinearGrey& kernel) { return kernel.mask() == twelveBitMask; }
    static constexpr int weightsPerColumn = 2;
    static void tabulate(const AxisTaps<2, std::uint32_t>& column, std::int64_t offset, std::int16_t* weights,
                         std::int16_t* /*remainders*/) {
        const std::int32_t half = fraction(column, offset) / 2;
        weights[0] = static_cast<std::int16_t>(half - 0x8000);
        weights[1] = static_cast<std::int16_t>(-half);
    }
    static std::uint32_t rowWeights(std::uint32_t fractionV) { return fractionV & 0x0FFF; }
    static auto across(const UprightOperations& operations) { return operations.bilinearGrey12Across; }
    static auto down(const UprightOperations& operations) { return operations.bilinearGrey12Down; }
};

struct BilinearGrey16Rows : BilinearAxes<BilinearGrey> {
    static constexpr const char* name = "upright, 16 bits";
    using Sample = std::int32_t;
    static constexpr int samplesPerPixel = 1;
    static bool takes(const BilinearGrey& kernel) { return kernel.mask() != twelveBitMask; }
    static constexpr int weightsPerColumn = 2;
    static void tabulate(const AxisTaps<2, std::uint32_t>& column, std::int64_t offset, std::int16_t* weights,
                         std::int16_t* /*remainders*/) {
        const std::int32_t whole = fraction(column, offset);
        weights[0] = static_cast<std::int16_t>(whole & 0xFFFF);
        weights[1] = static_cast<std::int16_t>(whole >> 16);
    }
    static std::uint32_t rowWeights(std::uint32_t fractionV) { return fractionV; }
    static auto across(const UprightOperations& operations) { return operations.bilinearGrey16Across; }
    static auto down(const UprightOperations& operations) { return operations.bilinearGrey16Down; }
};

struct BilinearRgbRows : BilinearAxes<BilinearRgb> {
    static constexpr const char* name = "upright";
    using Sample = std::uint32_t;
    static constexpr int samplesPerPixel = 1;
    static bool takes(const BilinearRgb& /*kernel*/) { return true; }
    static constexpr int weightsPerColumn = 4;
    static void tabulate(const AxisTaps<2, std::uint32_t>& column, std::int64_t offset, std::int16_t* weights,
                         std::int16_t* /*remainders*/) {
        std::fill_n(weights, weightsPerColumn, static_cast<std::int16_t>(-fraction(column, offset) / 2));
    }
    static std::uint32_t rowWeights(std::uint32_t fractionV) { return fractionV & blendFraction; }
    static auto across(const UprightOperations& operations) { return operations.bilinearRgbAcross; }
    static auto down(const UprightOperations& operations) { return operations.bilinearRgbDown; }
};

struct CubicGrey12Rows : CubicAxes<CubicGrey> {
    static constexpr const char* name = "upright, 12 bits";
    using Sample = std::int16_t;
    static constexpr int samplesPerPixel = 1;
    static bool takes(const CubicGrey& kernel) { return kernel.mask() == twelveBitMask; }
    static const CubicWeights& rowWeights(const CubicWeights& weights) { return weights; }
    static auto across(const UprightOperations& operations) { return operations.cubicGrey12Across; }
    static auto down(const UprightOperations& operations) { return operations.cubicGrey12Down; }
};

struct CubicGrey16Rows : CubicAxes<CubicGrey> {
    static constexpr const char* name = "upright, 16 bits";
    using Sample = std::int32_t;
    static constexpr int samplesPerPixel = 1;
    static bool takes(const CubicGrey& kernel) { return kernel.mask() != twelveBitMask; }
    static const CubicWeights& rowWeights(const CubicWeights& weights) { return weights; }
    static auto across(const UprightOperations& operations) { return operations.cubicGrey16Across; }
    static auto down(const UprightOperations& operations) { return operations.cubicGrey16Down; }
};

struct CubicRgbRows : CubicAxes<CubicRgb> {
    static constexpr const char* name = "upright";
    using Sample = std::int16_t;
    static constexpr int samplesPerPixel = 4;
    static bool takes(const CubicRgb& /*kernel*/) { return true; }
    static const CubicWeights& rowWeights(const CubicWeights& weights) { return weights; }
    static auto across(const UprightOperations& operations) { return operations.cubicRgbAcross; }
    static auto down(const UprightOperations& operations) { return operations.cubicRgbDown; }
};

/// What the columns of a display are made of, and of some more up to the end of a block.
template <typename Rows>
class UprightColumns {
public:
    void tabulate(const typename Rows::Kernel& kernel, const Stepping& stepping) {
        const auto width = static_cast<std::size_t>(stepping.width);
        const std::size_t blocks = width / StopFlag::block + 1;
        offsets_.assign(blocks * StopFlag::block, 0);
        centres_.assign(size(), 0);
        weights_.assign(size() * Rows::weightsPerColumn, 0);
        remainders_.assign(weights_.size(), 0);
        const std::int64_t lastOffset = Rows::lastColumn(kernel) - (std::int64_t{Rows::taps} - 1);
        Fixed16 u = stepping.startU;
        for (std::size_t x = 0; x < width; ++x, u += stepping.stepXu) {
            const auto column = Rows::column(kernel, u);
            const std::int64_t offset = std::min(column.pixels[0], lastOffset);
            const std::size_t weight = x * Rows::weightsPerColumn;
            offsets_[x] = static_cast<std::int32_t>(offset);
            centres_[x] = static_cast<std::int32_t>(column.pixels[Rows::centre]);
            Rows::tabulate(column, offset, &weights_[weight], &remainders_[weight]);
        }
        if (width > 0) std::fill(offsets_.begin() + stepping.width, offsets_.end(), offsets_[width - 1]);
        if constexpr (sizeof(typename Rows::Kernel::Pixel) == 2) group(Rows::lastColumn(kernel));
    }

    [[nodiscard]] std::size_t size() const { return offsets_.size(); }

    /// The taps from a block's first column on.
    [[nodiscard]] ColumnTaps from(int x) const {
        const std::ptrdiff_t weight = static_cast<std::ptrdiff_t>(x) * Rows::weightsPerColumn;
        ColumnTaps taps{
            offsets_.data() + x, weights_.data() + weight, remainders_.data() + weight, false, nullptr, nullptr};
        if (!groups_.empty()) {
            taps.isGrouped = true;
            taps.groups = groups_.data() + x / groupColumns;
            taps.groupBytes = groupBytes_.data() + static_cast<std::ptrdiff_t>(x) * bytesPerColumn;
        }
        return taps;
    }

    /// The source columns on which shifted positions fall, from a display column on.
    [[nodiscard]] const std::int32_t* centres(int x) const { return centres_.data() + x; }

private:
    static constexpr int groupPixels = 8;
    static constexpr int groupColumns = groupPixels / static_cast<int>(Rows::taps);
    static constexpr int bytesPerColumn = 2 * static_cast<int>(Rows::taps);

    /// Groups neighbouring columns, unless some lie too far apart.
    void group(std::int64_t lastColumn) {
        groups_.clear();
        groupBytes_.clear();
        const std::int64_t lastGroup = lastColumn - (groupPixels - 1);
        if (lastGroup < 0) return;
        groups_.reserve(size() / groupColumns);
        groupBytes_.reserve(size() * bytesPerColumn);
        for (auto first = offsets_.begin(); first != offsets_.end(); first += groupColumns) {
            const auto [least, most] = std::minmax_element(first, first + groupColumns);
            const std::int32_t begin = static_cast<std::int32_t>(std::min<std::int64_t>(*least, lastGroup));
            if (*most - begin > groupPixels - static_cast<int>(Rows::taps)) {
                groups_.clear();
                return;
            }
            groups_.push_back(begin);
            for (auto column = first; column != first + groupColumns; ++column) {
                for (int byte = 0; byte < bytesPerColumn; ++byte) {
                    groupBytes_.push_back(static_cast<std::uint8_t>(2 * (*column - begin) + byte));
                }
            }
        }
    }

    std::vector<std::int32_t> offsets_;
    std::vector<std::int32_t> centres_;
    std::vector<std::int16_t> weights_;
    std::vector<std::int16_t> remainders_;
    std::vector<std::int32_t> groups_;  ///< empty when columns cannot be grouped
    std::vector<std::uint8_t> groupBytes_;
};

/// Filters source rows across once and weighs them down for each display row.
template <typename Rows, typename Convert>
class UprightFiller final : public SpanFiller<DisplayPixel<typename Rows::Kernel, Convert>> {
public:
    using Kernel = typename Rows::Kernel;
    using Value = typename Kernel::Pixel;
    using Pixel = DisplayPixel<Kernel, Convert>;
    using Sample = typename Rows::Sample;

    static constexpr const char* name = Rows::name;

    /// True for upright views and quarter turns of sources that are wide enough for every kernel.
    static bool isUsableFor(const Kernel& kernel, const Stepping& stepping) {
        return !simd::isPlain() && Rows::takes(kernel) && pixelOf(stepping.limitU) >= 4 &&
               (stepping.isUpright() || stepping.isQuarterTurn());
    }

    /// The conversion must outlive the filler. Looks at `stop` before each block.
    UprightFiller(const Kernel& kernel, const Convert& convert, StopFlag stop)
        : kernel_(kernel), convert_(convert), stop_(stop), operations_(UprightOperations::chosen()) {}

    void beginView(const Stepping& stepping) override {
        columns_.tabulate(kernel_, stepping);
        // Weighing down takes whole blocks, too, but from the first column on that is asked for.
        const std::size_t filteredColumns = columns_.size() + StopFlag::block;
        for (FilteredRow& row : rows_) row.samples.resize(filteredColumns * Rows::samplesPerPixel);
        values_.resize(columns_.size());
        const auto rowsForward = static_cast<std::int64_t>(std::clamp<Fixed16>(pixelOf(stepping.stepYv), -1000, 1000));
        nextRow_ =
            stepping.stepYv < 0 ? std::min<std::int64_t>(rowsForward, -1) : std::max<std::int64_t>(rowsForward, 1);
        beginColumns({});
    }

    void beginColumns(ColumnRange columns) override {
        if (columns == columnRange_) return;
        columnRange_ = columns;
        filteredBegin_ = columns.begin - columns.begin % StopFlag::block;
        for (FilteredRow& row : rows_) row.number = -1;
    }

    bool fill(const DisplayRow& row, ColumnRange columns, Pixel* out) override {
        const auto taps = Rows::row(kernel_, row.v);
        std::array<const Sample*, Rows::taps> rows;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const Sample* samples = filtered(taps.pixels[i]);
            if (samples == nullptr) return false;
            rows[i] = samples + (columns.begin - filteredBegin_) * Rows::samplesPerPixel;
        }
        const auto down = [&](Value* values) {
            const int count = columns.size();
            return Rows::down(operations_)(rows, Rows::rowWeights(taps.weights), count, values, stop_);
        };
        if constexpr (std::is_same_v<Convert, Copy<Value>>) {
            if (keptBits() == 0) return down(out);
        }
        return down(values_.data()) && finish(taps.pixels[Rows::centre], columns, out);
    }

private:
    /// A source row that has been filtered across, from the block of the first expected column on.
    struct FilteredRow {
        std::int64_t number = -1;
        std::vector<Sample> samples;
    };

    [[nodiscard]] std::uint32_t keptBits() const {
        if constexpr (std::is_same_v<Value, std::uint16_t>) {
            return static_cast<std::uint32_t>(kernel_.keptBits());
        } else {
            return 0;
        }
    }

    /// The samples of a source row; null when stopped. The rows that one position weighs have different places.
    const Sample* filtered(std::int64_t number) {
        FilteredRow& row = rows_[static_cast<std::size_t>(number) % Rows::taps];
        if (row.number != number) {
            row.number = -1;
            const ImageView<const Value>& pixels = kernel_.source().pixels();
            const std::int64_t next = std::clamp<std::int64_t>(number + nextRow_, 0, Rows::lastRow(kernel_));
            if (!Rows::across(operations_)(pixels.row(number), pixels.row(next), columns_.from(filteredBegin_),
                                           columnRange_.end - filteredBegin_, row.samples.data(), stop_)) {
                return nullptr;
            }
            row.number = number;
        }
        return row.samples.data();
    }

    /// Makes display pixels of the values.
    bool finish(std::int64_t centreRow, ColumnRange columns, Pixel* out) const {
        const Value* values = values_.data();
        const int count = columns.size();
        if (keptBits() == 0) {
            if constexpr (std::is_same_v<Convert, GreyTable>) {
                return lookUpRow(values, count, convert_.entries, out, stop_);
            } else {
                return forBlocks(count, [&](int i) { out[i] = convert_(values[i]); });
            }
        }
        const Value* centres = kernel_.source().pixels().row(centreRow);
        const std::int32_t* offsets = columns_.centres(columns.begin);
        return forBlocks(count, [&](int i) {
            out[i] = convert_(static_cast<Value>(values[i] | (centres[offsets[i]] & keptBits())));
        });
    }

    /// Calls pixel(i) for i below `count`; whole blocks have a constant length, which compilers unroll.
    template <typename PerPixel>
    bool forBlocks(int count, const PerPixel& pixel) const {
        int begin = 0;
        for (; begin + StopFlag::block <= count; begin += StopFlag::block) {
            if (stop_.isRaised()) return false;
            for (int i = 0; i < StopFlag::block; ++i) pixel(begin + i);
        }
        if (begin < count && stop_.isRaised()) return false;
        for (; begin < count; ++begin) pixel(begin);
        return true;
    }

    Kernel kernel_;
    const Convert& convert_;
    StopFlag stop_;
    const UprightOperations& operations_;
    UprightColumns<Rows> columns_;
    std::vector<Value> values_;
    std::array<FilteredRow, Rows::taps> rows_;
    ColumnRange columnRange_;
    int filteredBegin_ = 0;     ///< the first column of filtered rows, where a block begins
    std::int64_t nextRow_ = 1;  ///< source rows from one filtered row to the next
};

}  // namespace zolcs
