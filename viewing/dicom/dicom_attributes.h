// Typed, checked access to the attributes of a data set.
#pragma once

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace viewing {

/// Attributes of one frame: those of the data set itself, and where it has none of that name, those of the frame's
/// functional groups.
class Attributes {
public:
    /// Frames count from 0.
    explicit Attributes(DcmItem& dataset, int frame = 0);

    /// The attribute is there and has a value.
    [[nodiscard]] bool has(const DcmTagKey& tag) const;

    /// All values as one text without surrounding blanks; empty where absent.
    [[nodiscard]] std::string text(const DcmTagKey& tag) const;

    /// The values one by one, without surrounding blanks.
    [[nodiscard]] std::vector<std::string> texts(const DcmTagKey& tag) const;

    /// The values as numbers; empty where absent or where any of them is not a finite number.
    [[nodiscard]] std::vector<double> numbers(const DcmTagKey& tag) const;

    /// The first of the numbers.
    [[nodiscard]] std::optional<double> number(const DcmTagKey& tag) const;

    /// The first value as the 16 bits in which it is stored, whether it is declared signed or not.
    [[nodiscard]] std::optional<std::uint16_t> word(const DcmTagKey& tag) const;

    /// The first value as an unsigned 16-bit number, 0 where absent.
    [[nodiscard]] int count(const DcmTagKey& tag) const { return word(tag).value_or(0); }

    /// All values as 16-bit words, whether they are declared bytes (two to a word, the first one low), words, signed
    /// or not; empty where absent.
    [[nodiscard]] std::vector<std::uint16_t> words(const DcmTagKey& tag) const;

    /// The values are declared as signed 16-bit numbers.
    [[nodiscard]] bool isSigned(const DcmTagKey& tag) const;

    /// The items of a sequence.
    [[nodiscard]] std::vector<DcmItem*> items(const DcmTagKey& tag) const;

private:
    /// The first of the items that has a value for the tag, or null.
    [[nodiscard]] DcmItem* find(const DcmTagKey& tag) const;

    std::vector<DcmItem*> items_;
};

}  // namespace viewing
