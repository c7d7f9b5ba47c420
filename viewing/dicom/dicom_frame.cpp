#include "viewing/dicom/dicom_frame.h"

#include "viewing/dicom/codestream.h"
#include "viewing/dicom/jpeg.h"
#include "viewing/dicom/jpeg2000.h"
#include "viewing/dicom/jpeg2000_layout.h"
#include "viewing/dicom/run_lengths.h"
#include "viewing/image/refusal.h"

#include <dcmtk/dcmdata/dccodec.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace viewing {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr const char* unreadable = "has Pixel Data that cannot be read";

std::size_t pixelsOf(const FrameShape& shape) {
    return static_cast<std::size_t>(shape.width) * static_cast<std::size_t>(shape.height);
}

std::vector<std::uint16_t> toWords(const Bytes& bytes, std::size_t count, int bitsAllocated) {
    if (bitsAllocated == 8) return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)};
    std::vector<std::uint16_t> words(count);
    std::memcpy(words.data(), bytes.data(), count * 2);
    return words;
}

Frame readUncompressed(DcmPixelData& data, E_TransferSyntax syntax, const FrameShape& shape, int frame) {
    const bool shared = shape.photometric == "YBR_FULL_422";
    const std::size_t count = pixelsOf(shape) * (shared ? 2U : static_cast<std::size_t>(shape.samples));
    const std::size_t size = count * static_cast<std::size_t>(shape.bitsAllocated / 8);
    const std::size_t offset = size * static_cast<std::size_t>(frame);
    const std::size_t there = data.getLength(syntax);
    if (there < offset + size)
        throw Refusal("is truncated: its Pixel Data has " + std::to_string(there) + " of " +
                      std::to_string(offset + size) + " bytes");
    Bytes bytes(size);
    const OFCondition read =
        data.getPartialValue(bytes.data(), static_cast<Uint32>(offset), static_cast<Uint32>(size), nullptr);
    if (read.bad()) throw Refusal(unreadable);
    return {toWords(bytes, count, shape.bitsAllocated), shape.photometric, shape.planar, {}};
}

DcmPixelSequence& fragmentsOf(DcmPixelData& data, E_TransferSyntax syntax) {
    DcmPixelSequence* sequence = nullptr;
    if (data.getEncapsulatedRepresentation(syntax, nullptr, sequence).bad() || sequence == nullptr)
        throw Refusal(unreadable);
    return *sequence;
}

/// The number of the fragment with which a frame begins; one more than the last fragment's behind the last frame.
Uint32 startOf(DcmPixelSequence& fragments, const FrameShape& shape, int frame) {
    if (frame == shape.frames) return static_cast<Uint32>(fragments.card());
    Uint32 start = 0;
    if (DcmCodec::determineStartFragment(static_cast<Uint32>(frame), shape.frames, &fragments, start).bad())
        throw Refusal("has Pixel Data in which frame " + std::to_string(frame + 1) + " cannot be found");
    return start;
}

DcmPixelItem& fragment(DcmPixelSequence& fragments, Uint32 number) {
    DcmPixelItem* item = nullptr;
    if (fragments.getItem(item, number).bad() || item == nullptr) throw Refusal(unreadable);
    return *item;
}

/// What is compressed may grow by a little, but not by much.
void refuseTooLong(std::size_t length, const FrameShape& shape) {
    constexpr std::size_t spare = std::size_t{16} << 20U;
    const std::size_t decoded = pixelsOf(shape) * static_cast<std::size_t>(shape.samples * shape.bitsAllocated / 8);
    if (length > decoded + spare)
        throw Refusal("has " + std::to_string(length) + " bytes of compressed data for a frame of " +
                      std::to_string(decoded));
}

/// The compressed bytes of a frame, whose fragments are joined.
Bytes compressedFrame(DcmPixelData& data, E_TransferSyntax syntax, const FrameShape& shape, int frame) {
    DcmPixelSequence& fragments = fragmentsOf(data, syntax);
    const Uint32 begin = startOf(fragments, shape, frame);
    const Uint32 end = startOf(fragments, shape, frame + 1);
    std::size_t length = 0;
    for (Uint32 i = begin; i < end; ++i) length += fragment(fragments, i).getLength();
    refuseTooLong(length, shape);
    Bytes out;
    out.reserve(length);
    for (Uint32 i = begin; i < end; ++i) {
        DcmPixelItem& item = fragment(fragments, i);
        Uint8* bytes = nullptr;
        if (item.getLength() == 0) continue;
        if (item.getUint8Array(bytes).bad() || bytes == nullptr) throw Refusal(unreadable);
        out.insert(out.end(), bytes, bytes + item.getLength());
        // The file has them still.
        item.compact();
    }
    return out;
}

/// Whether what a codestream says of itself goes with what the data set says of it. The codestream may have fewer bits
/// than are allocated, and more than are stored: planes may lie above them.
void checkHeader(const std::string& coding, const CodestreamHeader& found, const FrameShape& shape,
                 std::vector<std::string>& notes) {
    const auto size = [](auto width, auto height) { return std::to_string(width) + " x " + std::to_string(height); };
    const auto refuse = [&coding](const std::string& there, const std::string& attribute, const std::string& said) {
        throw Refusal("has a " + coding + " codestream of " + there + " where " + attribute + " " + said);
    };
    if (found.width != static_cast<std::uint32_t>(shape.width) ||
        found.height != static_cast<std::uint32_t>(shape.height))
        refuse(size(found.width, found.height) + " pixels", "Columns and Rows say", size(shape.width, shape.height));
    if (found.samples != static_cast<std::uint32_t>(shape.samples))
        refuse(std::to_string(found.samples) + (found.samples == 1 ? " sample" : " samples") + " a pixel",
               "Samples per Pixel says", std::to_string(shape.samples));
    const std::string bits = std::to_string(found.bits) + " bits a sample";
    constexpr std::uint32_t byte = 8;
    const auto allocated = static_cast<std::uint32_t>(shape.bitsAllocated);
    const auto stored = static_cast<std::uint32_t>(shape.bitsStored);
    if (found.bits > allocated) refuse(bits, "Bits Allocated says", std::to_string(allocated));
    if (found.bits <= byte && stored > byte) refuse(bits, "Bits Stored says", std::to_string(stored));
    if (found.bits < stored)
        notes.push_back("its " + coding + " codestream has " + bits + ", Bits Stored says " + std::to_string(stored) +
                        "; shown as the codestream has them");
}

[[noreturn]] void refuseCoding(const Bytes& codestream, const std::string& coding) {
    if (isJp2File(codestream))
        throw Refusal("has a JP2 file where a bare " + coding + " codestream must be; zolview does not read such");
    throw Refusal("has Pixel Data that is no " + coding + " codestream");
}

Frame readJpeg2000(const Bytes& codestream, const FrameShape& shape) {
    const std::string coding = "JPEG 2000";
    const auto header = readJpeg2000Header(codestream);
    if (!header) refuseCoding(codestream, coding);
    Frame out{{}, shape.photometric, false, {}};
    checkHeader(coding, *header, shape, out.notes);
    out.words = decodeJpeg2000(codestream);
    // The codestream's own colour transformations have been undone.
    if (shape.photometric == "YBR_RCT" || shape.photometric == "YBR_ICT") out.photometric = "RGB";
    return out;
}

Frame readJpeg(const Bytes& codestream, E_TransferSyntax syntax, const FrameShape& shape) {
    const bool isLs = syntax == EXS_JPEGLSLossless || syntax == EXS_JPEGLSLossy;
    const std::string coding = isLs ? "JPEG-LS" : "JPEG";
    const auto outline = outlineJpeg(codestream);
    if (!outline) refuseCoding(codestream, coding);
    Frame out{{}, shape.photometric, false, {}};
    checkHeader(coding, outline->header, shape, out.notes);
    if (!outline->ended) throw Refusal("is truncated: its " + coding + " codestream has no end");
    if (!outline->complete)
        throw Refusal("is truncated: its " + coding + " codestream lacks scans that the image needs");
    JpegSamples samples = isLs ? decodeJpegLs(codestream, outline->header, syntax)
                               : decodeJpeg(codestream, *outline, shape.photometric, shape.isSigned);
    out.words = std::move(samples.words);
    if (!samples.photometric.empty()) out.photometric = samples.photometric;
    return out;
}

/// Decodes by the transfer syntax; null where nobody here can.
std::optional<Frame> decodeFrame(const Bytes& codestream, E_TransferSyntax syntax, const FrameShape& shape) {
    switch (syntax) {
        case EXS_RLELossless:
            return Frame{decodeRunLengths(codestream, pixelsOf(shape), shape.samples, shape.bitsAllocated / 8),
                         shape.photometric,
                         true,
                         {}};
        case EXS_JPEGProcess1:
        case EXS_JPEGProcess2_4:
        case EXS_JPEGProcess6_8:
        case EXS_JPEGProcess10_12:
        case EXS_JPEGProcess14:
        case EXS_JPEGProcess14SV1:
        case EXS_JPEGLSLossless:
        case EXS_JPEGLSLossy:
            return readJpeg(codestream, syntax, shape);
        case EXS_JPEG2000LosslessOnly:
        case EXS_JPEG2000:
            return readJpeg2000(codestream, shape);
        default:
            return std::nullopt;
    }
}

}  // namespace

Frame readFrame(DcmDataset& dataset, const FrameShape& shape, int frame) {
    const DcmXfer syntax(dataset.getOriginalXfer());
    DcmElement* element = nullptr;
    dataset.findAndGetElement(DCM_PixelData, element);
    auto* const data = dynamic_cast<DcmPixelData*>(element);
    if (data == nullptr) throw Refusal(unreadable);
    if (!syntax.isEncapsulated()) return readUncompressed(*data, syntax.getXfer(), shape, frame);
    auto decoded = decodeFrame(compressedFrame(*data, syntax.getXfer(), shape, frame), syntax.getXfer(), shape);
    if (!decoded)
        throw Refusal("is compressed as " + std::string(syntax.getXferName()) + ", which zolview cannot read yet");
    const std::size_t expected = pixelsOf(shape) * static_cast<std::size_t>(shape.samples);
    if (decoded->words.size() != expected)
        throw Refusal("has Pixel Data that decodes to " + std::to_string(decoded->words.size()) + " samples where " +
                      std::to_string(expected) + " must be");
    return std::move(*decoded);
}

}  // namespace viewing
