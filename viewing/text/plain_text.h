// Texts from files, made fit to be printed.
#pragma once

#include <string>
#include <string_view>

namespace viewing {

/// The text as one line of UTF-8 that tells a terminal nothing but letters: line ends and tabs become blanks, all other
/// control characters and what is no UTF-8 question marks.
std::string plainText(std::string_view text);

}  // namespace viewing
