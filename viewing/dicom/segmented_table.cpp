#include "viewing/dicom/segmented_table.h"

#include "viewing/image/stored_image.h"

namespace viewing {

namespace {

class Expansion {
public:
    Expansion(const std::vector<std::uint16_t>& words, std::size_t count, int bits, const std::string& name)
        : bytesPerUnit_(bits > 8 ? 2 : 1), count_(count), name_(name) {
        if (bytesPerUnit_ == 2) {
            units_ = words;
            return;
        }
        for (const std::uint16_t word : words) {
            units_.push_back(static_cast<std::uint16_t>(word & 0xFF));
            units_.push_back(static_cast<std::uint16_t>(word >> 8));
        }
    }

    std::vector<std::uint16_t> run() {
        std::size_t at = 0;
        while (entries_.size() < count_) expandSegment(at, true);
        entries_.resize(count_);
        return std::move(entries_);
    }

private:
    enum Opcode { Discrete = 0, Linear = 1, Indirect = 2 };

    [[noreturn]] void refuse() const { throw Refusal("has a " + name_ + " whose segments cannot be read"); }

    std::uint16_t next(std::size_t& at) const {
        if (at >= units_.size()) refuse();
        return units_[at++];
    }

    void expandSegment(std::size_t& at, bool mayRepeat) {
        const std::uint16_t opcode = next(at);
        const std::uint16_t length = next(at);
        if (opcode == Discrete) {
            for (int i = 0; i < length; ++i) entries_.push_back(next(at));
        } else if (opcode == Linear && !entries_.empty()) {
            addLine(length, next(at));
        } else if (opcode == Indirect && mayRepeat) {
            repeat(at, length);
        } else {
            refuse();
        }
    }

    /// From the entry before, which is no part of the segment, to `end`, which is its last one.
    void addLine(int length, int end) {
        const int start = entries_.back();
        for (int i = 1; i <= length; ++i)
            entries_.push_back(static_cast<std::uint16_t>(
                (2 * std::int64_t{start} * (length - i) + 2 * std::int64_t{end} * i + length) /
                (2 * std::int64_t{length})));
    }

    /// The segments from a place that is given in bytes, in 32 bits with the low ones first.
    void repeat(std::size_t& at, int segments) {
        std::size_t place = 0;
        for (unsigned int shift = 0; shift < 32U; shift += 8U * bytesPerUnit_) place |= std::size_t{next(at)} << shift;
        place /= bytesPerUnit_;
        for (int i = 0; i < segments && entries_.size() < count_; ++i) {
            const std::size_t before = entries_.size();
            expandSegment(place, false);
            // Repeating nothing over and over could take for ever.
            if (entries_.size() == before) refuse();
        }
    }

    unsigned int bytesPerUnit_;
    std::size_t count_;
    const std::string& name_;
    std::vector<std::uint16_t> units_;
    std::vector<std::uint16_t> entries_;
};

}  // namespace

std::vector<std::uint16_t> expandSegments(const std::vector<std::uint16_t>& words, std::size_t count, int bits,
                                          const std::string& name) {
    return Expansion(words, count, bits, name).run();
}

}  // namespace viewing
