#include "viewing/dicom/run_lengths.h"

#include "viewing/image/refusal.h"

#include <algorithm>
#include <string>

namespace viewing {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t headerLength = 64;

/// One of the numbers of the header, lowest byte first.
std::size_t headerNumber(Bytes frame, std::size_t i) {
    std::size_t number = 0;
    for (std::size_t k = 4; k > 0; --k) number = (number << 8U) | frame[4 * i + k - 1];
    return number;
}

Bytes segmentOf(Bytes frame, std::size_t number, std::size_t count) {
    const std::size_t start = headerNumber(frame, number + 1);
    const std::size_t end = number + 1 == count ? frame.size() : headerNumber(frame, number + 2);
    if (start < headerLength || start > end || end > frame.size())
        throw Refusal("has Pixel Data that cannot be decoded (broken run lengths)");
    return frame.subspan(start, end - start);
}

/// Calls `put` with each byte that the segment expands to and how often it follows.
template <typename Put>
void expand(Bytes segment, Put put) {
    std::size_t at = 0;
    while (at + 1 < segment.size()) {
        const std::size_t control = segment[at++];
        if (control == 128) continue;
        if (control > 128) {
            put(segment[at++], 257 - control);
        } else {
            for (std::size_t i = 0; i <= control && at < segment.size(); ++i) put(segment[at++], 1);
        }
    }
}

}  // namespace

std::vector<std::uint16_t> decodeRunLengths(std::span<const std::uint8_t> frame, std::size_t pixels, int samples,
                                            int bytesPerSample) {
    if (frame.size() < headerLength) throw Refusal("has Pixel Data that cannot be decoded (broken run lengths)");
    const auto segments = static_cast<std::size_t>(samples) * static_cast<std::size_t>(bytesPerSample);
    const std::size_t there = headerNumber(frame, 0);
    if (there != segments)
        throw Refusal("has " + std::to_string(there) + " run-length coded segments where Samples per Pixel and Bits " +
                      "Allocated ask for " + std::to_string(segments));
    std::vector<std::uint16_t> words(pixels * static_cast<std::size_t>(samples));
    for (std::size_t i = 0; i < segments; ++i) {
        std::uint16_t* const plane = words.data() + i / static_cast<std::size_t>(bytesPerSample) * pixels;
        std::size_t count = 0;
        bool padded = true;
        expand(segmentOf(frame, i, segments), [&](std::uint8_t byte, std::size_t times) {
            const std::size_t end = std::min(count + times, pixels);
            for (std::size_t at = count; at < end; ++at)
                plane[at] = static_cast<std::uint16_t>((plane[at] << 8U) | byte);
            count += times;
            padded = padded && (count <= pixels || byte == 0);
        });
        // A segment may be filled up with zeroes, of which two read as one more byte.
        const std::size_t filling = padded && count > pixels ? count - pixels : 0;
        if (count - filling != pixels || filling > 1)
            throw Refusal(std::string(count < pixels ? "is truncated: its run lengths hold " : "has run lengths of ") +
                          std::to_string(count) + " pixels where Rows and Columns ask for " + std::to_string(pixels));
    }
    return words;
}

}  // namespace viewing
