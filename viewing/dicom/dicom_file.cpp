#include "viewing/dicom/dicom_file.h"

#include "viewing/dicom/colour_conversion.h"
#include "viewing/dicom/dicom_attributes.h"
#include "viewing/dicom/dicom_frame.h"
#include "viewing/dicom/dicom_geometry.h"
#include "viewing/dicom/dicom_luts.h"
#include "viewing/dicom/dicom_overlays.h"
#include "viewing/dicom/dicom_palette.h"
#include "viewing/dicom/sample_conversion.h"
#include "viewing/dicom/stack_growth.h"
#include "zolipp/zolipp.h"

#include <dcmtk/dcmdata/dcistrmf.h>
#include <dcmtk/dcmjpls/djdecode.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>

namespace viewing {

namespace {

/// The decoder that the toolkit keeps to itself, and silence from it: what is wrong is said once, in our words.
class Codecs {
public:
    Codecs() {
        OFLog::configure(OFLogger::OFF_LOG_LEVEL);
        DJLSDecoderRegistration::registerCodecs(EJLSUC_default, EJLSPC_colorByPixel);
    }
    Codecs(const Codecs&) = delete;
    Codecs& operator=(const Codecs&) = delete;
    ~Codecs() { DJLSDecoderRegistration::cleanup(); }
};

void prepareToolkit() { static const Codecs codecs; }

std::string sopClassName(const Attributes& attributes) {
    const std::string uid = attributes.text(DCM_SOPClassUID);
    return uid.empty() ? "data set without a class" : dcmFindNameOfUID(uid.c_str(), uid.c_str());
}

void refuseUnless(bool accepted, const std::string& otherwise) {
    if (!accepted) throw Refusal(otherwise);
}

/// What the pixels of an image are.
enum class PixelKind { Grey, Palette, Colour };

PixelKind readKind(const Attributes& attributes) {
    const std::string photometric = attributes.text(DCM_PhotometricInterpretation);
    refuseUnless(attributes.has(DCM_PixelData), "contains no image (it is a " + sopClassName(attributes) + ")");
    const int samples = std::max(attributes.count(DCM_SamplesPerPixel), 1);
    PixelKind kind = PixelKind::Grey;
    if (photometric == "PALETTE COLOR") {
        kind = PixelKind::Palette;
    } else if (photometric == "RGB" || photometric == "YBR_FULL" || photometric == "YBR_FULL_422" ||
               photometric == "YBR_RCT" || photometric == "YBR_ICT") {
        kind = PixelKind::Colour;
    } else {
        refuseUnless(photometric == "MONOCHROME1" || photometric == "MONOCHROME2",
                     "has the photometric interpretation '" + photometric + "', which zolview cannot show");
    }
    refuseUnless(samples == (kind == PixelKind::Colour ? 3 : 1),
                 "has " + std::to_string(samples) + " samples a pixel, which does not go with " + photometric);
    return kind;
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

int readFrames(const Attributes& attributes) {
    const double frames = attributes.number(DCM_NumberOfFrames).value_or(1.0);
    return frames >= 1.0 && frames <= std::numeric_limits<int>::max() ? static_cast<int>(frames) : 1;
}

FrameShape readShape(const Attributes& attributes, const StoredImage& image, const PixelFormat& format) {
    FrameShape shape;
    shape.width = image.width;
    shape.height = image.height;
    shape.samples = std::max(attributes.count(DCM_SamplesPerPixel), 1);
    shape.bitsAllocated = format.bitsAllocated;
    shape.bitsStored = format.bitsStored;
    shape.isSigned = format.isSigned;
    shape.photometric = attributes.text(DCM_PhotometricInterpretation);
    shape.planar = attributes.count(DCM_PlanarConfiguration) == 1;
    shape.frames = readFrames(attributes);
    return shape;
}

ColourLayout layoutOf(const Frame& frame, const StoredImage& image) {
    ColourLayout layout;
    layout.planar = frame.planar;
    // Only where two pixels share their colour are there fewer than three words for each.
    const std::size_t pixels = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    if (frame.photometric == "RGB") {
        layout.model = ColourModel::Rgb;
    } else if (frame.photometric == "YBR_FULL" || frame.words.size() == pixels * 3) {
        layout.model = ColourModel::YbrFull;
    } else {
        refuseUnless(image.width % 2 == 0, "has YBR_FULL_422 pixels in rows of an odd length, which cannot be");
        layout.model = ColourModel::YbrFull422;
    }
    return layout;
}

/// The palette's colours for all words, looked up pixel by pixel. A grey map's palette would do for 256 colours; an
/// image's may have 65536.
void convertPalette(StoredImage& image, const std::vector<std::uint16_t>& words, const PixelFormat& format,
                    const PaletteTables& tables, const std::optional<PaddingRange>& padding) {
    std::vector<std::uint32_t> colours(levels16);
    for (std::size_t word = 0; word < colours.size(); ++word) {
        const int stored = format.value(static_cast<std::uint16_t>(word));
        colours[word] = padding && padding->contains(stored) ? 0 : tables.colour(stored);
    }
    Rgb8Pixels pixels(words.size());
    const IppiSize size{image.width, image.height};
    ZOLippiLUTPalette_16u32u_C1R(words.data(), image.width * 2, pixels.data(), image.width * 4, size, colours.data(),
                                 16);
    image.pixels = ColourImage{std::move(pixels)};
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
    // Each row of pixels is tested against every edge.
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

namespace {

/// Ends when sequences lie within sequences so deeply that the toolkit, which calls itself for each of them, would use
/// up the stack.
class ShallowStream : public DcmInputFileStream {
public:
    explicit ShallowStream(const std::string& path) : DcmInputFileStream(OFFilename(path.c_str())) {}

    [[nodiscard]] bool isTooDeep() const { return tooDeep_; }

    /// The toolkit asks before it reads an item or a sequence.
    [[nodiscard]] OFCondition status() const override {
        constexpr std::uintptr_t room = std::uintptr_t{2} << 20U;
        tooDeep_ = tooDeep_ || stack_.bytes() > room;
        return tooDeep_ ? EC_CorruptedData : DcmInputFileStream::status();
    }
    [[nodiscard]] OFBool good() const override { return status().good(); }

private:
    StackGrowth stack_;
    mutable bool tooDeep_ = false;
};

OFCondition readFile(const std::string& path, DcmFileFormat& file) {
    ShallowStream stream(path);
    OFCondition read = stream.status();
    if (read.bad()) return read;
    file.transferInit();
    read = file.read(stream);
    file.transferEnd();
    refuseUnless(!stream.isTooDeep(), "holds sequences within sequences, too many to be read");
    // Names that cannot be converted stay as they are.
    if (read.good()) static_cast<void>(file.getDataset()->convertToUTF8());
    return read;
}

}  // namespace

DicomFile::DicomFile(const std::string& path) {
    prepareToolkit();
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) throw Refusal("there is no such file");
    if (!std::filesystem::is_regular_file(status)) throw Refusal("is not a file");
    parts_ = std::make_unique<Parts>();
    const OFCondition loaded = readFile(path, parts_->file);
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
    const int frames = readFrames(attributes);
    if (frames != 1) out.emplace_back("frames", std::to_string(frames));
    return out;
}

StoredImage DicomFile::image(int frame) const {
    DcmDataset& dataset = *parts_->file.getDataset();
    const Attributes attributes(dataset, frame - 1);
    StoredImage image;
    const PixelKind kind = readKind(attributes);
    readSize(attributes, image);
    const PixelFormat format = readFormat(attributes);
    const FrameShape shape = readShape(attributes, image, format);
    refuseUnless(frame >= 1 && frame <= shape.frames, "has " + std::to_string(shape.frames) +
                                                          (shape.frames == 1 ? " frame" : " frames") +
                                                          "; there is no frame " + std::to_string(frame));
    readPixelShape(attributes, image);
    readShutters(attributes, image);

    const Frame pixels = readFrame(dataset, shape, frame - 1);
    image.notes.insert(image.notes.end(), pixels.notes.begin(), pixels.notes.end());
    if (kind == PixelKind::Colour) {
        refuseUnless(!format.isSigned, "has signed colours, which cannot be");
        image.pixels = toColours(static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height),
                                 pixels.words, format, layoutOf(pixels, image));
        readOverlays(image, dataset, frame - 1, {}, format);
        return image;
    }
    const std::optional<PaddingRange> padding = readPadding(attributes, format);
    if (kind == PixelKind::Palette) {
        convertPalette(image, pixels.words, format, readPaletteTables(attributes, format.isSigned), padding);
        readOverlays(image, dataset, frame - 1, pixels.words, format);
        return image;
    }
    readOverlays(image, dataset, frame - 1, pixels.words, format);
    convertSamples(image, pixels.words, format, padding, embeddedBits(image.grey()));
    if (attributes.has(DCM_RedPaletteColorLookupTableDescriptor))
        image.notes.emplace_back("the palette that it has beside its greys is not applied");
    // MONOCHROME1 and the presentation shape INVERSE say the same thing; an image that has both is inverted once.
    GreyImage& grey = image.grey();
    grey.modality = readModality(attributes, format.isSigned, image.notes).value_or(Modality());
    grey.presentation = readPresentation(attributes).value_or(Presentation());
    if (shape.photometric == "MONOCHROME1") grey.presentation.inverse = true;
    grey.voiChoices = readVoi(attributes, outputMayBeNegative(grey));
    return image;
}

DisplayTables DicomFile::tables(bool signedStored, bool signedOutput) const {
    DcmDataset& dataset = *parts_->file.getDataset();
    const Attributes attributes(dataset);
    DisplayTables tables;
    std::vector<std::string> notes;
    tables.modality = readModality(attributes, signedStored, notes);
    if (!notes.empty()) throw Refusal("has a rescale slope or intercept that makes no sense");
    tables.voi = readVoi(attributes, signedOutput);
    // Presentation states keep theirs in a sequence, an item for each group of images.
    for (DcmItem* const item : attributes.items(DCM_SoftcopyVOILUTSequence)) {
        std::vector<VoiChoice> more = readVoi(Attributes(*item), signedOutput);
        tables.voi.insert(tables.voi.end(), more.begin(), more.end());
    }
    tables.presentation = readPresentation(attributes);
    return tables;
}

Palette DicomFile::palette() const {
    const Attributes attributes(*parts_->file.getDataset());
    refuseUnless(attributes.has(DCM_RedPaletteColorLookupTableDescriptor), "contains no palette");
    return toPalette(readPaletteTables(attributes, false));
}

}  // namespace viewing
