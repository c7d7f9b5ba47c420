#include "dicom_input.h"

#include "dicom_attributes.h"
#include "dicom_geometry.h"
#include "dicom_overlays.h"
#include "sample_conversion.h"
#include "windowing.h"

#include <dcmtk/dcmdata/dccodec.h>
#include <dcmtk/dcmdata/dcrledrg.h>
#include <dcmtk/dcmjpeg/djdecode.h>
#include <dcmtk/dcmjpls/djdecode.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>

namespace zolview {

namespace {

/// The decoders, and silence from the toolkit: what is wrong is said once, in our words.
class Codecs {
public:
    Codecs() {
        OFLog::configure(OFLogger::OFF_LOG_LEVEL);
        DcmRLEDecoderRegistration::registerCodecs();
        DJDecoderRegistration::registerCodecs();
        DJLSDecoderRegistration::registerCodecs();
    }
    Codecs(const Codecs&) = delete;
    Codecs& operator=(const Codecs&) = delete;
    ~Codecs() {
        DJLSDecoderRegistration::cleanup();
        DJDecoderRegistration::cleanup();
        DcmRLEDecoderRegistration::cleanup();
    }
};

void prepareToolkit() { static const Codecs codecs; }

std::string sopClassName(const Attributes& attributes) {
    const std::string uid = attributes.text(DCM_SOPClassUID);
    return uid.empty() ? "object without a class" : dcmFindNameOfUID(uid.c_str(), uid.c_str());
}

void refuseUnless(bool accepted, const std::string& otherwise) {
    if (!accepted) throw Refusal(otherwise);
}

void checkKind(const Attributes& attributes) {
    const std::string photometric = attributes.text(DCM_PhotometricInterpretation);
    refuseUnless(attributes.has(DCM_PixelData), "contains no image (it is a " + sopClassName(attributes) + ")");
    refuseUnless(attributes.count(DCM_SamplesPerPixel) <= 1 && photometric != "PALETTE COLOR",
                 "is a colour image (" + photometric + "), which zolview cannot show yet");
    refuseUnless(photometric == "MONOCHROME1" || photometric == "MONOCHROME2",
                 "has the photometric interpretation '" + photometric + "', which zolview cannot show");
}

void readSize(const Attributes& attributes, StoredImage& image) {
    image.width = attributes.count(DCM_Columns);
    image.height = attributes.count(DCM_Rows);
    const std::string size = std::to_string(image.width) + " x " + std::to_string(image.height) + " pixels";
    refuseUnless(image.width > 0 && image.height > 0, "has no rows or no columns");
    refuseUnless(image.width <= maxSide && image.height <= maxSide,
                 "has " + size + "; zolview shows up to " + std::to_string(maxSide) + " a side");
    refuseUnless(std::int64_t{image.width} * image.height <= maxPixels,
                 "has " + size + "; zolview shows up to " + std::to_string(maxPixels) + " in all");
}

PixelFormat readFormat(const Attributes& attributes) {
    PixelFormat format;
    format.bitsAllocated = attributes.count(DCM_BitsAllocated);
    format.bitsStored = attributes.count(DCM_BitsStored);
    format.highBit = attributes.word(DCM_HighBit).value_or(static_cast<std::uint16_t>(format.bitsStored - 1));
    const int representation = attributes.count(DCM_PixelRepresentation);
    refuseUnless(format.bitsAllocated == 8 || format.bitsAllocated == 16,
                 "has pixels of " + std::to_string(format.bitsAllocated) + " bits allocated; zolview reads 8 and 16");
    refuseUnless(format.bitsStored >= 1 && format.bitsStored <= format.highBit + 1 &&
                     format.highBit < format.bitsAllocated && representation <= 1,
                 "describes its pixels in a way that cannot be (bits allocated " +
                     std::to_string(format.bitsAllocated) + ", bits stored " + std::to_string(format.bitsStored) +
                     ", high bit " + std::to_string(format.highBit) + ", representation " +
                     std::to_string(representation) + ")");
    format.isSigned = representation == 1;
    return format;
}

/// The first frame's pixels, a word each.
std::vector<std::uint16_t> readWords(DcmDataset& dataset, const StoredImage& image, const PixelFormat& format) {
    const DcmXfer syntax(dataset.getOriginalXfer());
    if (syntax.isEncapsulated() && !DcmCodecList::canChangeCoding(syntax.getXfer(), EXS_LittleEndianExplicit))
        throw Refusal("is compressed as " + std::string(syntax.getXferName()) + ", which zolview cannot read yet");

    DcmElement* element = nullptr;
    dataset.findAndGetElement(DCM_PixelData, element);
    auto* const pixelData = dynamic_cast<DcmPixelData*>(element);
    if (pixelData == nullptr) throw Refusal("has Pixel Data that cannot be read");

    const std::size_t pixels = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    const std::size_t needed = pixels * (format.bitsAllocated == 8 ? 1 : 2);
    if (!syntax.isEncapsulated() && pixelData->getLength(syntax.getXfer()) < needed)
        throw Refusal("is truncated: its Pixel Data has " + std::to_string(pixelData->getLength(syntax.getXfer())) +
                      " of " + std::to_string(needed) + " bytes");

    std::vector<Uint8> bytes(needed + needed % 2);
    Uint32 fragment = 0;
    OFString colourModel;
    const OFCondition read = pixelData->getUncompressedFrame(&dataset, 0, fragment, bytes.data(),
                                                             static_cast<Uint32>(bytes.size()), colourModel);
    if (read.bad()) throw Refusal("has Pixel Data that cannot be decoded (" + std::string(read.text()) + ")");

    if (format.bitsAllocated == 8) return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(pixels)};
    std::vector<std::uint16_t> words(pixels);
    std::memcpy(words.data(), bytes.data(), needed);
    return words;
}

std::optional<PaddingRange> readPadding(const Attributes& attributes, const PixelFormat& format) {
    const std::optional<std::uint16_t> value = attributes.word(DCM_PixelPaddingValue);
    if (!value) return std::nullopt;
    const auto asStored = [&format](std::uint16_t word) -> int {
        return format.isSigned ? static_cast<std::int16_t>(word) : word;
    };
    const int one = asStored(*value);
    const int other = asStored(attributes.word(DCM_PixelPaddingRangeLimit).value_or(*value));
    return PaddingRange{std::min(one, other), std::max(one, other)};
}

void readRescale(const Attributes& attributes, StoredImage& image) {
    refuseUnless(!attributes.hasItems(DCM_ModalityLUTSequence),
                 "needs a Modality LUT Sequence, which zolview cannot apply yet");
    const double slope = attributes.number(DCM_RescaleSlope).value_or(1.0);
    const double intercept = attributes.number(DCM_RescaleIntercept).value_or(0.0);
    if (std::abs(slope) < 1e-9 || std::abs(slope) > 1e9 || std::abs(intercept) > 1e9) {
        image.notes.emplace_back("the rescale slope or intercept makes no sense; shown without them");
        return;
    }
    image.slope = slope;
    image.intercept = intercept;
}

void readWindow(const Attributes& attributes, StoredImage& image) {
    const std::string function = attributes.text(DCM_VOILUTFunction);
    if (function == "SIGMOID") image.function = WindowFunction::Sigmoid;
    if (function == "LINEAR_EXACT") image.function = WindowFunction::LinearExact;

    const std::optional<double> centre = attributes.number(DCM_WindowCenter);
    const std::optional<double> width = attributes.number(DCM_WindowWidth);
    if (centre && width) {
        const Window window{*centre, *width};
        if (isUsable(window, image.function)) {
            image.window = window;
        } else {
            image.notes.push_back("the file's window has a width of " + attributes.texts(DCM_WindowWidth).front() +
                                  "; shown with the full range of values instead");
        }
    } else if (attributes.has(DCM_WindowCenter) || attributes.has(DCM_WindowWidth)) {
        image.notes.emplace_back("the file's window cannot be read; shown with the full range of values instead");
    } else {
        image.needsWindow = attributes.hasItems(DCM_VOILUTSequence);
    }
}

/// Whichever attribute gives the shape of a pixel: the spacings are measured, and give its size too; the ratio is what
/// remains without them.
void readPixelShape(const Attributes& attributes, StoredImage& image) {
    for (const DcmTagKey& tag :
         {DCM_PixelSpacing, DCM_ImagerPixelSpacing, DCM_NominalScannedPixelSpacing, DCM_PixelAspectRatio}) {
        const std::vector<double> sides = attributes.numbers(tag);
        if (!attributes.has(tag)) continue;
        // Vertical first in all four of them.
        constexpr double extreme = 100.0;
        if (sides.size() == 2 && sides[0] > 0.0 && sides[1] > 0.0 && sides[0] <= sides[1] * extreme &&
            sides[1] <= sides[0] * extreme) {
            image.ratioYx = sides[0] / sides[1];
            if (tag != DCM_PixelAspectRatio) image.pixelWidth = sides[1];
            image.spacingIsUncalibrated = tag != DCM_PixelSpacing;
            return;
        }
        image.notes.push_back("the attribute " + std::string(DcmTag(tag).getTagName()) +
                              " makes no sense and is not used");
    }
}

void readShutters(const Attributes& attributes, StoredImage& image) {
    // Each output pixel is tested against every edge.
    constexpr std::size_t maxVertices = 1024;

    const auto number = [&attributes](const DcmTagKey& tag) { return attributes.number(tag); };
    for (const std::string& shape : attributes.texts(DCM_ShutterShape)) {
        bool usable = false;
        if (shape == "RECTANGULAR") {
            const auto left = number(DCM_ShutterLeftVerticalEdge);
            const auto right = number(DCM_ShutterRightVerticalEdge);
            const auto upper = number(DCM_ShutterUpperHorizontalEdge);
            const auto lower = number(DCM_ShutterLowerHorizontalEdge);
            if (left && right && upper && lower) image.shutters.rectangle = fromEdges(*left, *right, *upper, *lower);
            usable = image.shutters.rectangle.has_value();
        } else if (shape == "CIRCULAR") {
            const std::vector<double> centre = attributes.numbers(DCM_CenterOfCircularShutter);
            const auto radius = number(DCM_RadiusOfCircularShutter);
            if (centre.size() == 2 && radius) image.shutters.circle = fromCentre(centre[0], centre[1], *radius);
            usable = image.shutters.circle.has_value();
        } else if (shape == "POLYGONAL") {
            const std::vector<double> numbers = attributes.numbers(DCM_VerticesOfThePolygonalShutter);
            refuseUnless(numbers.size() / 2 <= maxVertices,
                         "has a polygonal shutter of " + std::to_string(numbers.size() / 2) +
                             " vertices; zolview takes up to " + std::to_string(maxVertices));
            if (auto vertices = fromVertices(numbers)) image.shutters.polygon = std::move(*vertices);
            usable = !image.shutters.polygon.empty();
        }
        if (!usable) image.notes.push_back("the shutter '" + shape + "' cannot be read and is not applied");
    }
    image.shutters.presentationValue = attributes.word(DCM_ShutterPresentationValue).value_or(0);
}

}  // namespace

struct DicomFile::Parts {
    DcmFileFormat file;
};

DicomFile::DicomFile(const std::string& path) {
    prepareToolkit();
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) throw Refusal("there is no such file");
    if (!std::filesystem::is_regular_file(status)) throw Refusal("is not a file");
    parts_ = std::make_unique<Parts>();
    const OFCondition loaded = parts_->file.loadFile(OFFilename(path.c_str()));
    if (loaded == EC_InvalidStream || loaded == EC_StreamNotifyClient)
        throw Refusal("is truncated, or is not a DICOM file");
    if (loaded.bad()) throw Refusal("is not a DICOM file that can be read (" + std::string(loaded.text()) + ")");
    if (parts_->file.getDataset()->card() == 0) throw Refusal("is not a DICOM file");
}

DicomFile::~DicomFile() = default;

std::vector<std::pair<std::string, std::string>> DicomFile::summary() const {
    DcmDataset& dataset = *parts_->file.getDataset();
    const Attributes attributes(dataset);
    std::vector<std::pair<std::string, std::string>> out;
    out.emplace_back("object", sopClassName(attributes));
    out.emplace_back("transfer syntax", DcmXfer(dataset.getOriginalXfer()).getXferName());
    if (!attributes.has(DCM_PixelData)) return out;
    out.emplace_back("size", attributes.text(DCM_Columns) + " x " + attributes.text(DCM_Rows));
    out.emplace_back("photometric", attributes.text(DCM_PhotometricInterpretation));
    out.emplace_back("bits", attributes.text(DCM_BitsStored) + " stored in " + attributes.text(DCM_BitsAllocated) +
                                 (attributes.count(DCM_PixelRepresentation) == 1 ? ", signed" : ", unsigned"));
    const std::string frames = attributes.text(DCM_NumberOfFrames);
    if (!frames.empty() && frames != "1") out.emplace_back("frames", frames + " (the first one is shown)");
    return out;
}

StoredImage DicomFile::image() const {
    DcmDataset& dataset = *parts_->file.getDataset();
    const Attributes attributes(dataset);
    StoredImage image;
    checkKind(attributes);
    readSize(attributes, image);
    const PixelFormat format = readFormat(attributes);
    readRescale(attributes, image);
    readWindow(attributes, image);
    readPixelShape(attributes, image);
    // MONOCHROME1 and the presentation shape INVERSE say the same thing; an image that has both is inverted once.
    image.inverted = attributes.text(DCM_PhotometricInterpretation) == "MONOCHROME1" ||
                     attributes.text(DCM_PresentationLUTShape) == "INVERSE";
    readShutters(attributes, image);

    const std::vector<std::uint16_t> words = readWords(dataset, image, format);
    readOverlays(image, dataset, words, format);
    convertSamples(image, words, format, readPadding(attributes, format), embeddedBits(image));
    return image;
}

}  // namespace zolview
