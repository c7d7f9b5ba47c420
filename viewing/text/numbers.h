// Numbers as people and files write them.
#pragma once

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace viewing {

/// The decimal number of which a text consists, with or without a sign; null for any other text, and for a number that
/// does not fit or is not finite. The decimal separator is a full stop whatever the locale.
template <typename Number>
std::optional<Number> parseAs(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    if constexpr (std::is_floating_point_v<Number>)
        if (!std::isfinite(value)) return std::nullopt;
    return value;
}

}  // namespace viewing
