#include "viewing/dicom/jpeg.h"

#include "viewing/image/refusal.h"

#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <dcmtk/dcmjpeg/djcparam.h>
#include <dcmtk/dcmjpeg/djdijg12.h>
#include <dcmtk/dcmjpeg/djdijg16.h>
#include <dcmtk/dcmjpeg/djdijg8.h>

#include <algorithm>
#include <cstring>

namespace viewing {

namespace {

using Bytes = std::span<const std::uint8_t>;

std::size_t samplesOf(const CodestreamHeader& header) {
    return std::size_t{header.width} * header.height * header.samples;
}

/// One of the toolkit's decoders, which goes on after what it warns of: with grey in place of what is missing.
template <typename Decoder>
class WarningDecoder : public Decoder {
public:
    using Decoder::Decoder;

    void emitMessage(int level) const override { warned_ = warned_ || level < 0; }

    [[nodiscard]] bool warned() const { return warned_; }

private:
    mutable bool warned_ = false;
};

std::string colourModel(EP_Interpretation model) {
    switch (model) {
        case EPI_RGB:
            return "RGB";
        case EPI_YBR_Full:
            return "YBR_FULL";
        default:
            return {};
    }
}

/// Samples of `Sample` by the toolkit's decoder for them.
template <typename Decoder, typename Sample>
JpegSamples decodeBy(Bytes codestream, const CodestreamHeader& header, bool isYbr, bool isSigned) {
    const DJCodecParameter parameters(ECC_lossyYCbCr, EDC_photometricInterpretation, EUC_default, EPC_colorByPixel);
    WarningDecoder<Decoder> decoder(parameters, isYbr ? OFTrue : OFFalse);
    std::vector<Sample> samples(samplesOf(header));
    OFCondition result = decoder.init();
    if (result.good())
        // The bytes are only read.
        result = decoder.decode(const_cast<Uint8*>(codestream.data()), static_cast<Uint32>(codestream.size()),
                                reinterpret_cast<Uint8*>(samples.data()),
                                static_cast<Uint32>(samples.size() * sizeof(Sample)), isSigned ? OFTrue : OFFalse);
    if (result == EJ_Suspension) throw Refusal("is truncated: its JPEG codestream ends before the image does");
    if (result.bad()) throw Refusal("has Pixel Data that cannot be decoded (" + std::string(result.text()) + ")");
    if (decoder.warned())
        throw Refusal("has a damaged JPEG codestream: a part of the image is missing or cannot be decoded");
    return {{samples.begin(), samples.end()}, colourModel(decoder.getDecompressedColorModel())};
}

/// Each scan is a pass over the whole frame, however little it holds.
void refuseTooManyScans(const JpegOutline& outline) {
    // The usual progressions have about ten; more than a hundred refine nothing.
    constexpr std::size_t mostProgressive = 100;
    const std::size_t most = outline.progressive ? mostProgressive : outline.header.samples;
    if (outline.scans > most)
        throw Refusal("has a JPEG codestream of " + std::to_string(outline.scans) + " scans; zolview reads up to " +
                      std::to_string(most) + " of such a one");
}

}  // namespace

JpegSamples decodeJpeg(Bytes codestream, const JpegOutline& outline, const std::string& photometric, bool isSigned) {
    refuseTooManyScans(outline);
    const bool isYbr = photometric == "YBR_FULL" || photometric == "YBR_FULL_422";
    constexpr std::uint32_t eight = 8;
    constexpr std::uint32_t twelve = 12;
    if (outline.header.bits <= eight)
        return decodeBy<DJDecompressIJG8Bit, std::uint8_t>(codestream, outline.header, isYbr, isSigned);
    if (outline.header.bits <= twelve)
        return decodeBy<DJDecompressIJG12Bit, std::uint16_t>(codestream, outline.header, isYbr, isSigned);
    return decodeBy<DJDecompressIJG16Bit, std::uint16_t>(codestream, outline.header, isYbr, isSigned);
}

JpegSamples decodeJpegLs(Bytes codestream, const CodestreamHeader& header, E_TransferSyntax syntax) {
    // The toolkit decodes data sets alone, and takes a codestream for broken that has fewer bits than are allocated for
    // it. So it gets a data set that says what the codestream says.
    const bool wide = header.bits > 8;
    DcmDataset dataset;
    const auto put = [&dataset](const DcmTagKey& tag, std::uint32_t value) {
        dataset.putAndInsertUint16(tag, static_cast<Uint16>(value));
    };
    put(DCM_SamplesPerPixel, header.samples);
    dataset.putAndInsertString(DCM_PhotometricInterpretation, header.samples == 3 ? "RGB" : "MONOCHROME2");
    if (header.samples > 1) put(DCM_PlanarConfiguration, 0);
    put(DCM_Rows, header.height);
    put(DCM_Columns, header.width);
    put(DCM_BitsAllocated, wide ? 16 : 8);
    put(DCM_BitsStored, header.bits);
    put(DCM_HighBit, header.bits - 1);
    put(DCM_PixelRepresentation, 0);

    auto sequence = std::make_unique<DcmPixelSequence>(DCM_PixelSequenceTag);
    sequence->insert(new DcmPixelItem(DCM_PixelItemTag));
    auto item = std::make_unique<DcmPixelItem>(DCM_PixelItemTag);
    item->putUint8Array(codestream.data(), codestream.size());
    sequence->insert(item.release());
    auto data = std::make_unique<DcmPixelData>(DCM_PixelData);
    DcmPixelData& pixels = *data;
    pixels.putOriginalRepresentation(syntax, nullptr, sequence.release());
    if (dataset.insert(data.get()).bad()) throw Refusal("has Pixel Data that cannot be read");
    static_cast<void>(data.release());

    const std::size_t count = samplesOf(header);
    const std::size_t size = count * (wide ? 2 : 1);
    std::vector<std::uint8_t> bytes(size + size % 2);
    Uint32 fragment = 1;
    OFString model;
    const OFCondition read =
        pixels.getUncompressedFrame(&dataset, 0, fragment, bytes.data(), static_cast<Uint32>(bytes.size()), model);
    if (read.bad()) throw Refusal("has Pixel Data that cannot be decoded (" + std::string(read.text()) + ")");
    JpegSamples out;
    out.words.resize(count);
    if (wide)
        std::memcpy(out.words.data(), bytes.data(), size);
    else
        std::copy_n(bytes.begin(), count, out.words.begin());
    return out;
}

}  // namespace viewing
