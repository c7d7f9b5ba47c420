// Embedded overlays: the top four bits of a stored value, and the colours that show them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zolcs {

/// What shows the embedded overlay bits of stored values: sixteen display pixels by a value's top four bits, of which
/// the first is never asked for.
class EmbeddedOverlay {
public:
    /// Stored values below this carry no overlay bits.
    static constexpr std::size_t plainValues = 0x1000;

    /// Shows nothing.
    EmbeddedOverlay() = default;
    /// The colours stay the caller's; null shows nothing.
    explicit EmbeddedOverlay(const std::uint32_t* colours) : colours_(colours) {}

    [[nodiscard]] bool isShown() const { return colours_ != nullptr; }

    /// The colour of a stored value's overlay bits, or what lies `below` where it has none. Only for what is shown.
    [[nodiscard]] std::uint32_t over(std::uint16_t stored, std::uint32_t below) const {
        const unsigned bits = stored >> 12U;
        return bits != 0 ? colours_[bits] : below;
    }

    /// Makes a table by stored value, of 65536 display pixels, show the bits. Only for what is shown.
    void coverTable(std::uint32_t* table) const {
        for (std::size_t bits = 1; bits < 16; ++bits) {
            std::fill_n(table + bits * plainValues, plainValues, colours_[bits]);
        }
    }

private:
    const std::uint32_t* colours_ = nullptr;
};

}  // namespace zolcs
