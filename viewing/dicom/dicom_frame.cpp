#include "viewing/dicom/dicom_frame.h"

#include "viewing/dicom/jpeg2000.h"
#include "viewing/image/stored_image.h"

#include <dcmtk/dcmdata/dccodec.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>

#include <algorithm>
#include <cstring>

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
    return {toWords(bytes, count, shape.bitsAllocated), shape.photometric, shape.planar};
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

/// The compressed bytes of a frame.
Bytes compressedFrame(DcmPixelData& data, E_TransferSyntax syntax, const FrameShape& shape, int frame) {
    DcmPixelSequence& fragments = fragmentsOf(data, syntax);
    Bytes out;
    const Uint32 end = startOf(fragments, shape, frame + 1);
    for (Uint32 i = startOf(fragments, shape, frame); i < end; ++i) {
        DcmPixelItem* item = nullptr;
        Uint8* bytes = nullptr;
        if (fragments.getItem(item, i).bad() || item == nullptr) throw Refusal(unreadable);
        if (item->getLength() == 0) continue;
        if (item->getUint8Array(bytes).bad() || bytes == nullptr) throw Refusal(unreadable);
        out.insert(out.end(), bytes, bytes + item->getLength());
    }
    return out;
}

/// Bytes that a run-length coded segment expands to.
std::size_t expandedLength(const Bytes& bytes, std::size_t at, std::size_t end) {
    std::size_t length = 0;
    while (at < end) {
        const std::size_t control = bytes[at];
        if (control == 128) {
            at += 1;
        } else if (control > 128) {
            length += at + 1 < end ? 257 - control : 0;
            at += 2;
        } else {
            length += std::min(control + 1, end - at - 1);
            at += control + 2;
        }
    }
    return length;
}

/// The toolkit's decoder trusts the header of a run-length coded frame and fills up what is missing of it, so both are
/// looked at before.
void checkRunLengths(const Bytes& bytes, const FrameShape& shape) {
    constexpr std::size_t headerLength = 64;
    const auto number = [&bytes](std::size_t i) -> std::size_t {
        const auto byte = [&](std::size_t k) { return std::size_t{bytes[4 * i + k]}; };
        return byte(0) | (byte(1) << 8U) | (byte(2) << 16U) | (byte(3) << 24U);
    };
    const Refusal broken("has Pixel Data that cannot be decoded (broken run lengths)");
    if (bytes.size() < headerLength) throw broken;
    const auto segments = static_cast<std::size_t>(shape.samples * shape.bitsAllocated / 8);
    if (number(0) != segments) throw broken;
    for (std::size_t i = 1; i <= segments; ++i) {
        const std::size_t start = number(i);
        const std::size_t end = i == segments ? bytes.size() : number(i + 1);
        if (start < headerLength || start > end || end > bytes.size()) throw broken;
        if (expandedLength(bytes, start, end) < pixelsOf(shape))
            throw Refusal("is truncated: its run lengths end before the image does");
    }
}

Frame readJpeg2000(DcmPixelData& data, E_TransferSyntax syntax, const FrameShape& shape, int frame) {
    const Bytes bytes = compressedFrame(data, syntax, shape, frame);
    Frame out{decodeJpeg2000(bytes, {shape.width, shape.height, shape.samples}), shape.photometric, false};
    // The codestream's own colour transformations have been undone.
    if (shape.photometric == "YBR_RCT" || shape.photometric == "YBR_ICT") out.photometric = "RGB";
    return out;
}

Frame readEncapsulated(DcmDataset& dataset, DcmPixelData& data, E_TransferSyntax syntax, const FrameShape& shape,
                       int frame) {
    if (syntax == EXS_RLELossless) checkRunLengths(compressedFrame(data, syntax, shape, frame), shape);
    const std::size_t count = pixelsOf(shape) * static_cast<std::size_t>(shape.samples);
    const std::size_t size = count * static_cast<std::size_t>(shape.bitsAllocated / 8);
    Bytes bytes(size + size % 2);
    Uint32 fragment = 0;
    OFString model;
    const OFCondition read = data.getUncompressedFrame(&dataset, static_cast<Uint32>(frame), fragment, bytes.data(),
                                                       static_cast<Uint32>(bytes.size()), model);
    if (read.bad()) throw Refusal("has Pixel Data that cannot be decoded (" + std::string(read.text()) + ")");
    // All decoders but that of run lengths are asked for pixel after pixel.
    return {toWords(bytes, count, shape.bitsAllocated), std::string(model.c_str(), model.length()),
            syntax == EXS_RLELossless && shape.planar};
}

}  // namespace

Frame readFrame(DcmDataset& dataset, const FrameShape& shape, int frame) {
    const DcmXfer syntax(dataset.getOriginalXfer());
    DcmElement* element = nullptr;
    dataset.findAndGetElement(DCM_PixelData, element);
    auto* const data = dynamic_cast<DcmPixelData*>(element);
    if (data == nullptr) throw Refusal(unreadable);
    if (!syntax.isEncapsulated()) return readUncompressed(*data, syntax.getXfer(), shape, frame);
    if (syntax.getXfer() == EXS_JPEG2000LosslessOnly || syntax.getXfer() == EXS_JPEG2000)
        return readJpeg2000(*data, syntax.getXfer(), shape, frame);
    if (!DcmCodecList::canChangeCoding(syntax.getXfer(), EXS_LittleEndianExplicit))
        throw Refusal("is compressed as " + std::string(syntax.getXferName()) + ", which zolview cannot read yet");
    return readEncapsulated(dataset, *data, syntax.getXfer(), shape, frame);
}

}  // namespace viewing
