// Look-up tables (DICOM PS3.3 C.11.1.1.1 and C.11.2.1.1).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace viewing {

/// A table of outputs by input. Inputs before the first entry take the first entry, inputs behind the last one the last
/// entry.
struct LookupTable {
    int first = 0;  ///< the input of the first entry
    int bits = 16;  ///< bits of an entry, 1 to 16: outputs are 0 to 2^bits - 1
    std::vector<std::uint16_t> entries;

    bool operator==(const LookupTable&) const = default;

    /// The input of the last entry.
    [[nodiscard]] int last() const { return first + static_cast<int>(entries.size()) - 1; }
    /// The largest output that `bits` allow.
    [[nodiscard]] int top() const { return (1 << bits) - 1; }
    /// The output for an input. The table must have an entry.
    [[nodiscard]] std::uint16_t at(int input) const {
        return entries[static_cast<std::size_t>(std::clamp(input, first, last()) - first)];
    }
};

}  // namespace viewing
