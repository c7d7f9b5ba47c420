// What a compressed frame says about itself, read from its own header without decoding it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace viewing {

/// Numbers with their most significant byte first, as JPEG's family writes them. What lies beyond the end reads as 0
/// and is remembered.
class BigEndianReader {
public:
    explicit BigEndianReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    std::uint32_t u8() { return number(1); }
    std::uint32_t u16() { return number(2); }
    std::uint32_t u32() { return number(4); }
    void skip(std::size_t count) { seek(at_ + count); }
    void seek(std::size_t place) {
        overrun_ = overrun_ || place > bytes_.size();
        at_ = overrun_ ? bytes_.size() : place;
    }

    [[nodiscard]] std::size_t at() const { return at_; }
    [[nodiscard]] std::size_t left() const { return bytes_.size() - at_; }
    [[nodiscard]] bool overrun() const { return overrun_; }

private:
    std::uint32_t number(std::size_t length) {
        std::uint32_t value = 0;
        const std::size_t start = at_;
        skip(length);
        for (std::size_t i = start; !overrun_ && i < at_; ++i) value = (value << 8U) | bytes_[i];
        return value;
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
    bool overrun_ = false;
};

/// The frame that a codestream declares. Nothing of it has been checked.
struct CodestreamHeader {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t samples = 0;  ///< of a pixel
    std::uint32_t bits = 0;     ///< of a sample
    bool operator==(const CodestreamHeader&) const = default;
};

/// A JPEG or JPEG-LS codestream (ISO/IEC 10918-1, B.1.1.2, and 14495-1, C.1: the same markers).
struct JpegOutline {
    CodestreamHeader header;
    bool progressive = false;
    /// Passes over the frame. A sequential codestream needs at most one for each sample of a pixel.
    std::size_t scans = 0;
    /// The last scan is followed by the marker of the end.
    bool ended = false;
    /// All samples have scans, in progressive codestreams for all coefficients down to their last bit.
    bool complete = false;
};

/// Walks the markers of a codestream. Null where it does not begin as one, or has no frame header.
std::optional<JpegOutline> outlineJpeg(std::span<const std::uint8_t> codestream);

/// The bytes begin as a JP2 file, which wraps a JPEG 2000 codestream in boxes.
bool isJp2File(std::span<const std::uint8_t> bytes);

}  // namespace viewing
