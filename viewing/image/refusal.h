// How everything in viewing refuses.
#pragma once

#include <stdexcept>

namespace viewing {

/// Thrown for input that cannot be read, shown or written. The words are for a person: what is wrong, in lower case,
/// so that they can follow the name of the file ("scan.dcm: " + what()). They may quote texts from files; plainText
/// makes these fit to be printed.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace viewing
