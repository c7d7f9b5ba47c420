#include "viewing/dicom/codestream.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <map>
#include <vector>

namespace viewing {

namespace {

constexpr std::uint32_t startOfImage = 0xFFD8;
constexpr std::uint32_t endOfImage = 0xD9;
constexpr std::uint32_t startOfScan = 0xDA;
constexpr std::uint32_t jpegLsFrame = 0xF7;

bool isFrameHeader(std::uint32_t marker) {
    // Among the frame headers lie the markers of Huffman and arithmetic tables and one that is reserved.
    return (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC) ||
           marker == jpegLsFrame;
}

bool isProgressive(std::uint32_t marker) { return (marker & 0x3U) == 2; }

bool isRestart(std::uint32_t marker) { return marker >= 0xD0 && marker <= 0xD7; }

/// The next marker, behind entropy-coded data and fill bytes. Below 0xC0 lie stuffed bytes, of JPEG-LS stuffed bits.
/// 0 at the end.
std::uint32_t nextMarker(BigEndianReader& in) {
    while (in.left() > 1) {
        if (in.u8() != 0xFF) continue;
        std::uint32_t code = in.u8();
        while (code == 0xFF && in.left() > 0) code = in.u8();
        if (code >= 0xC0 && code != 0xFF && !isRestart(code)) return code;
    }
    return 0;
}

CodestreamHeader readFrameHeader(BigEndianReader& in) {
    CodestreamHeader header;
    header.bits = in.u8();
    header.height = in.u16();
    header.width = in.u16();
    header.samples = in.u8();
    return header;
}

/// What the scans of a frame leave open. A progressive scan sends some coefficients of its samples, down to some bit
/// (ISO/IEC 10918-1, G.1.1.1).
class ScanCoverage {
public:
    explicit ScanCoverage(const JpegOutline& outline) : progressive_(outline.progressive) {}

    void read(BigEndianReader in) {
        std::vector<std::uint32_t> selected(in.u8());
        for (std::uint32_t& sample : selected) {
            sample = in.u8();
            in.skip(1);
        }
        const std::uint32_t first = in.u8();
        const std::uint32_t last = progressive_ ? in.u8() : first;
        const std::uint32_t lowestBit = in.u8() & 0xFU;
        if (in.overrun()) return;
        for (const std::uint32_t sample : selected)
            for (std::uint32_t c = first; c <= last && c < coefficients; ++c)
                if (!progressive_ || lowestBit == 0) sent_[sample].set(c);
    }

    [[nodiscard]] bool isComplete(std::size_t samples) const {
        const auto isWhole = [this](const auto& entry) { return progressive_ ? entry.second.all() : true; };
        return sent_.size() >= samples && std::all_of(sent_.begin(), sent_.end(), isWhole);
    }

private:
    static constexpr std::uint32_t coefficients = 64;

    bool progressive_;
    std::map<std::uint32_t, std::bitset<coefficients>> sent_;
};

}  // namespace

std::optional<JpegOutline> outlineJpeg(std::span<const std::uint8_t> codestream) {
    BigEndianReader in(codestream);
    if (in.u16() != startOfImage) return std::nullopt;
    JpegOutline outline;
    std::optional<ScanCoverage> coverage;
    for (std::uint32_t marker = nextMarker(in); marker != 0; marker = nextMarker(in)) {
        outline.ended = marker == endOfImage;
        if (outline.ended) break;
        const std::size_t segment = in.at();
        const std::size_t length = in.u16();
        if (isFrameHeader(marker) && !coverage) {
            outline.header = readFrameHeader(in);
            outline.progressive = marker != jpegLsFrame && isProgressive(marker);
            if (!in.overrun()) coverage.emplace(outline);
        }
        if (marker == startOfScan) {
            ++outline.scans;
            if (coverage) coverage->read(in);
        }
        in.seek(segment + length);
        if (in.overrun()) break;
    }
    if (!coverage) return std::nullopt;
    outline.complete = coverage->isComplete(outline.header.samples);
    return outline;
}

bool isJp2File(std::span<const std::uint8_t> bytes) {
    // The length and type of the first box (ISO/IEC 15444-1, I.5.1).
    constexpr std::array<std::uint8_t, 8> signature{0, 0, 0, 12, 'j', 'P', ' ', ' '};
    return bytes.size() >= signature.size() && std::equal(signature.begin(), signature.end(), bytes.begin());
}

}  // namespace viewing
