// Texts from files, made safe to print.
#pragma once

#include <string>
#include <string_view>

namespace viewing {

/// The text as one line of UTF-8 without control characters, so that a file cannot control a terminal: line ends and
/// tabs become blanks, all other control characters and each byte that is not UTF-8 a question mark.
std::string plainText(std::string_view text);

}  // namespace viewing
