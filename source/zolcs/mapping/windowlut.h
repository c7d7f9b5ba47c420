// The rules by which value maps turn settings into tables, as pure functions without a map: windows, presentation
// tables, sigmoids and windowed non-linear tables. The length of the table to fill is its depth (4096 entries for
// 12-bit values, 65536 for 16-bit ones, 256 for bytes); nothing here knows any other difference between the maps.
#pragma once

#include "zolcs/ccsimageutils.h"
#include "zolcs/mapping/storedtable.h"
#include "zolcs/support/portablemath.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace zolcs::mapping {

/// A window over stored values. Its ends are 64-bit, so that no centre and no width can overflow.
struct Window {
    std::int32_t centre = 1;  ///< signed: a window may lie below all stored values
    std::int32_t width = 2;

    /// The first stored value inside; negative for a window that begins below 0.
    [[nodiscard]] constexpr std::int64_t low() const { return std::int64_t{centre} - width / 2; }
    /// The first stored value above.
    [[nodiscard]] constexpr std::int64_t high() const { return low() + width; }
};

/// Fills a table: `below` for v < low, inside((v - low) * scale / width) up to low + width, `above` from there on.
/// `width` is at least 1, `low` and `width` come from a Window or from the table itself.
template <typename Entry, typename Inside>
void fillWindow(std::span<Entry> table, std::int64_t low, std::int64_t width, std::uint32_t scale, Entry below,
                Inside inside, Entry above) {
    const auto entries = static_cast<std::int64_t>(table.size());
    const std::int64_t begin = std::clamp<std::int64_t>(low, 0, entries);
    const std::int64_t end = std::clamp<std::int64_t>(low + width, 0, entries);
    const auto at = [&](std::int64_t v) { return table.begin() + static_cast<std::ptrdiff_t>(v); };
    std::fill(table.begin(), at(begin), below);
    std::fill(at(end), table.end(), above);
    // Quotient and remainder advance from entry to entry, instead of a division for each.
    const auto divisor = static_cast<std::uint64_t>(width);
    const std::uint64_t numerator = begin < end ? static_cast<std::uint64_t>(begin - low) * scale : 0;
    std::uint64_t quotient = numerator / divisor;
    std::uint64_t remainder = numerator % divisor;
    for (std::int64_t v = begin; v < end; ++v) {
        *at(v) = inside(quotient);
        quotient += scale / divisor;
        remainder += scale % divisor;
        if (remainder >= divisor) {
            remainder -= divisor;
            ++quotient;
        }
    }
}

/// Fills a table of levels: 0 below the window, 255 above, 256 even steps inside.
inline void fillLevels(std::span<unsigned char> table, const Window& window) {
    fillWindow<unsigned char>(
        table, window.low(), window.width, 256, 0, [](std::uint64_t q) { return static_cast<unsigned char>(q & 255U); },
        255);
}

/// What each of the 256 levels looks like: a palette, or a palette behind an index remap.
using ShownLevels = std::array<std::uint32_t, 256>;

/// `palette` has 256 display pixels; `remap` has 256 bytes, or is null for none.
inline ShownLevels shownLevels(const std::uint32_t* palette, const unsigned char* remap) {
    ShownLevels shown{};
    for (std::size_t level = 0; level < shown.size(); ++level) {
        shown[level] = palette[remap != nullptr ? remap[level] : level];
    }
    return shown;
}

/// A level that a shift did not bring into the palette takes the palette's last entry.
inline std::uint32_t shownLevel(const ShownLevels& shown, std::uint64_t level) {
    return shown[static_cast<std::size_t>(std::min<std::uint64_t>(level, shown.size() - 1))];
}

/// Fills a table of display pixels with `width` even steps through the 256 levels, starting at `low`.
inline void fillShownLevels(std::span<std::uint32_t> table, std::int64_t low, std::int64_t width,
                            const ShownLevels& shown) {
    fillWindow<std::uint32_t>(
        table, low, width, 256, shown.front(), [&](std::uint64_t q) { return shown[q & 255U]; }, shown.back());
}

/// numerator / (exp(-4 (v - centre) / width) + 1), truncated.
inline std::uint64_t sigmoidAt(const Window& window, double numerator, double value) {
    const double exponent = -4.0 * (value - static_cast<double>(window.centre)) / static_cast<double>(window.width);
    return static_cast<std::uint64_t>(numerator / (portable::exp(exponent) + 1.0));
}

/// Fills a table with a function that never falls from one value to the next. Where its ends are equal, a stretch is
/// filled without asking for what lies between: few levels over many values cost few calls.
template <typename Level>
void fillRising(std::span<std::uint32_t> table, const ShownLevels& shown, const Level& levelOf) {
    struct Stretch {
        std::size_t first;
        std::size_t last;
        std::size_t firstLevel;
        std::size_t lastLevel;
    };
    if (table.empty()) return;
    // Halving leaves one stretch waiting per bit of the table's size.
    std::array<Stretch, std::numeric_limits<std::size_t>::digits + 1> waiting{};
    std::size_t count = 0;
    waiting[count++] = {0, table.size() - 1, levelOf(0), levelOf(table.size() - 1)};
    while (count > 0) {
        const Stretch stretch = waiting[--count];
        if (stretch.firstLevel == stretch.lastLevel || stretch.last - stretch.first < 2) {
            std::fill(table.data() + stretch.first, table.data() + stretch.last, shown[stretch.firstLevel]);
            table[stretch.last] = shown[stretch.lastLevel];
            continue;
        }
        const std::size_t middle = (stretch.first + stretch.last) / 2;
        const std::size_t level = levelOf(middle);
        waiting[count++] = {stretch.first, middle, stretch.firstLevel, level};
        waiting[count++] = {middle, stretch.last, level, stretch.lastLevel};
    }
}

/// Fills a table with the sigmoid window of `bits` bits (0 to 31, others are limited to that range).
/// Deliberate: behind an index remap the numerator is 2^bits and the value is cut to 16 bits; without one the numerator
/// is 2^bits - 1. The maximum that the shift is taken from wraps at 16 bits in both.
inline void fillSigmoid(std::span<std::uint32_t> table, const Window& window, int bits, bool remapped,
                        const ShownLevels& shown) {
    const double top = std::ldexp(1.0, std::clamp(bits, 0, 31)) - 1.0;
    const double numerator = remapped ? top + 1.0 : top;
    const unsigned shift = CCsImageUtils::calculateBitShiftValueForGreyConversion(
        static_cast<std::uint16_t>(sigmoidAt(window, numerator, top)));
    const std::uint64_t mask = remapped ? 0xFFFFU : ~std::uint64_t{0};
    const auto levelOf = [&](std::size_t value) {
        const std::uint64_t level = (sigmoidAt(window, numerator, static_cast<double>(value)) & mask) >> shift;
        return static_cast<std::size_t>(std::min<std::uint64_t>(level, shown.size() - 1));
    };
    // It rises unless the cut to 16 bits wraps it: neighbouring exponents are 4 / width apart, at least 2^-29, which no
    // rounding turns round.
    if (numerator <= static_cast<double>(mask)) {
        fillRising(table, shown, levelOf);
    } else {
        for (std::size_t value = 0; value < table.size(); ++value) table[value] = shown[levelOf(value)];
    }
}

/// The 8-bit level of a value of `shift` + 8 bits through a presentation table, or without one (null).
class PresentationLevel {
public:
    PresentationLevel(const StoredTable* table, std::uint32_t shift)
        : table_(table),
          shift_(shift),
          tableShift_(table != nullptr ? CCsImageUtils::calculateBitShiftValueForGreyConversion(table->maximum()) : 0U),
          step_(table != nullptr
                    ? std::ldexp(static_cast<double>(table->count()), -8 - static_cast<int>(std::min(shift, 4096U)))
                    : 0.0) {}

    /// There ought to be a table, but there was no memory for it.
    [[nodiscard]] bool tableMissing() const { return table_ != nullptr && table_->missing(); }

    /// A missing table gives 1.
    unsigned int operator()(std::uint32_t value) const {
        if (table_ == nullptr) return shift_ < 32 ? (value >> shift_) & 255U : 0U;
        if (tableMissing()) return 1;
        const std::uint64_t index = static_cast<std::uint64_t>(step_ * static_cast<double>(value)) & 0xFFFFU;
        const std::uint64_t first = table_->firstMapped();
        return (static_cast<unsigned int>(index < first ? table_->first() : table_->at(index - first)) >> tableShift_) &
               255U;
    }

private:
    const StoredTable* table_;
    std::uint32_t shift_;
    unsigned tableShift_;
    double step_;
};

/// Fills a table with a presentation table behind the window: 4096 even steps inside, its ends outside.
inline void fillPresented(std::span<std::uint32_t> table, const Window& window, const StoredTable& presentation,
                          const ShownLevels& shown) {
    const PresentationLevel level(&presentation, 4);
    const unsigned shift = CCsImageUtils::calculateBitShiftValueForGreyConversion(presentation.maximum());
    const auto outside = [&](std::uint16_t entry) { return shownLevel(shown, std::uint64_t{entry} >> shift); };
    fillWindow<std::uint32_t>(
        table, window.low(), window.width, 4096, outside(presentation.first()),
        [&](std::uint64_t q) { return shown[level(static_cast<std::uint32_t>(q & 0xFFFFU))]; },
        outside(presentation.last()));
}

/// Fills a table with a presentation table that the stored value itself indexes inside the window: its ends outside,
/// and its last entry for values that it is too short for.
inline void fillPresentedStored(std::span<std::uint32_t> table, const Window& window, const StoredTable& presentation,
                                const ShownLevels& shown) {
    const unsigned shift = CCsImageUtils::calculateBitShiftValueForGreyConversion(presentation.maximum());
    for (std::size_t v = 0; v < table.size(); ++v) {
        const auto value = static_cast<std::int64_t>(v);
        const std::uint16_t entry = value < window.low()     ? presentation.first()
                                    : value >= window.high() ? presentation.last()
                                                             : presentation.at(v);
        table[v] = shownLevel(shown, std::uint64_t{entry} >> shift);
    }
}

/// The part of a non-linear table that a window shows: which stored values, and where in the table they fall.
struct WindowedExtent {
    std::uint32_t start = 0;  ///< first stored value inside the window
    std::uint32_t count = 0;  ///< stored values from there to the window's or the depth's end, at least 1
    double position = 0.0;    ///< where `start` falls in the non-linear table
    double step = 0.0;        ///< distance of two stored values in it
};

/// `window` is at least 1 wide; `tableCount` is the number of the non-linear table's values, `depth` that of all stored
/// values. A window that starts beyond the depth keeps a single entry, the table's first.
inline WindowedExtent windowedExtent(const Window& window, std::uint32_t tableCount, std::int64_t depth) {
    WindowedExtent extent;
    extent.step = static_cast<double>(tableCount) / static_cast<double>(window.width);
    if (window.low() < 0) {
        extent.position = static_cast<double>(-window.low()) * extent.step;
    } else {
        extent.start = static_cast<std::uint32_t>(window.low());
    }
    const std::int64_t count = std::min(window.high(), depth) - extent.start;
    if (count < 1) extent.position = 0.0;
    extent.count = static_cast<std::uint32_t>(std::max<std::int64_t>(count, 1));
    return extent;
}

/// Fills the windowed table (extent.count entries) by linear interpolation in the non-linear table.
inline void fillWindowed(std::span<std::uint16_t> windowed, const WindowedExtent& extent, const StoredTable& table) {
    // Repeated addition, not a product: the accumulated rounding is part of the defined result.
    double position = extent.position;
    for (std::uint16_t& entry : windowed) {
        const auto index = static_cast<std::uint64_t>(position);
        const double fraction = position - static_cast<double>(index);
        const double value = (1.0 - fraction) * table.at(index) + fraction * table.at(index + 1);
        entry = static_cast<std::uint16_t>(std::floor(value + 0.5));
        position += extent.step;
    }
}

/// The window that shows the steep part of a windowed table.
struct AutoWindow {
    std::int32_t centre = 0;
    std::int32_t width = 1;
};

/// Between 5 and 95 percent of the last entry of a rising curve; from 95 percent of its first entry down to the last
/// entry above 0 for a falling one. The table is not empty.
inline AutoWindow autoWindow(std::span<const std::uint16_t> windowed) {
    const auto percent = [](std::uint16_t value, double part) { return static_cast<int>(value * part); };
    auto lower = std::int32_t{0};
    auto upper = static_cast<std::int32_t>(windowed.size()) - 1;
    const auto at = [&](std::int32_t i) { return windowed[static_cast<std::size_t>(i)]; };
    if (windowed.front() > windowed.back()) {
        const int bound = percent(windowed.front(), 0.95);
        while (upper > 0 && at(upper) < 1) --upper;
        const auto* const found = std::find_if(windowed.data(), windowed.data() + windowed.size(),
                                               [&](std::uint16_t entry) { return entry <= bound; });
        // A curve that stays above the bound has no lower end; its own start serves.
        if (found != windowed.data() + windowed.size()) lower = static_cast<std::int32_t>(found - windowed.data());
    } else {
        const int high = percent(windowed.back(), 0.95);
        const int low = percent(windowed.back(), 0.05);
        while (at(lower) < low) ++lower;
        auto last = upper;
        while (last >= 0 && at(last) > high) --last;
        if (last >= 0) upper = last;
    }
    return {(upper - lower) / 2 + lower, upper - lower};
}

/// Fills a table with the levels of a windowed non-linear table; its ends continue outside the window.
template <typename Level>
void fillNonLinear(std::span<std::uint32_t> table, std::uint32_t start, std::span<const std::uint16_t> windowed,
                   const Level& level, const ShownLevels& shown) {
    const std::size_t begin = std::min<std::size_t>(start, table.size());
    const std::size_t end = std::min(begin + windowed.size(), table.size());
    std::fill_n(table.begin(), begin, shownLevel(shown, level(windowed.front())));
    for (std::size_t v = begin; v < end; ++v) table[v] = shownLevel(shown, level(windowed[v - begin]));
    std::fill(table.begin() + static_cast<std::ptrdiff_t>(end), table.end(), shownLevel(shown, level(windowed.back())));
}

}  // namespace zolcs::mapping
