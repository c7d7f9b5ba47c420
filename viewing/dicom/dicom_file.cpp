#include "viewing/dicom/dicom_file.h"

#include "viewing/dicom/colour_conversion.h"
#include "viewing/dicom/dicom_attributes.h"
#include "viewing/dicom/dicom_frame.h"
#include "viewing/dicom/dicom_luts.h"
#include "viewing/dicom/dicom_overlays.h"
#include "viewing/dicom/dicom_palette.h"
#include "viewing/dicom/dicom_reader.h"
#include "viewing/dicom/dicom_shutters.h"
#include "viewing/dicom/pixel_description.h"
#include "viewing/dicom/pixel_spacing.h"
#include "viewing/dicom/sample_conversion.h"

#include <cstddef>

namespace viewing {

namespace {

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
        if (image.width % 2 != 0) throw Refusal("has YBR_FULL_422 pixels in rows of an odd length, which cannot be");
        layout.model = ColourModel::YbrFull422;
    }
    return layout;
}

/// What makes grey of the samples of a grey image, and the windows and tables that there are to choose from.
void readGreyTables(const Attributes& attributes, const PixelDescription& description, StoredImage& image) {
    if (attributes.has(DCM_RedPaletteColorLookupTableDescriptor))
        image.notes.emplace_back("has a palette although it is grey; the palette is not applied");
    GreyImage& grey = image.grey();
    grey.modality = readModality(attributes, description.format.isSigned, image.notes).value_or(Modality());
    grey.presentation = readPresentation(attributes).value_or(Presentation());
    // MONOCHROME1 and the presentation shape INVERSE say the same thing; an image that has both is inverted once.
    if (description.shape.photometric == "MONOCHROME1") grey.presentation.inverse = true;
    grey.voiChoices = readVoi(attributes, outputMayBeNegative(grey));
}

}  // namespace

struct DicomFile::Parts {
    std::unique_ptr<DcmFileFormat> file;
};

DicomFile::DicomFile(const std::string& path) : parts_(new Parts{readDicomFile(path)}) {}

DicomFile::~DicomFile() = default;

std::vector<std::pair<std::string, std::string>> DicomFile::summary() const {
    DcmDataset& dataset = *parts_->file->getDataset();
    const Attributes attributes(dataset);
    std::vector<std::pair<std::string, std::string>> out;
    out.emplace_back("object", sopClassName(attributes));
    out.emplace_back("transfer syntax", DcmXfer(dataset.getOriginalXfer()).getXferName());
    if (!attributes.has(DCM_PixelData)) return out;
    out.emplace_back("size", attributes.text(DCM_Columns) + " x " + attributes.text(DCM_Rows));
    out.emplace_back("photometric", attributes.text(DCM_PhotometricInterpretation));
    out.emplace_back("bits", attributes.text(DCM_BitsStored) + " stored in " + attributes.text(DCM_BitsAllocated) +
                                 (attributes.count(DCM_PixelRepresentation) == 1 ? ", signed" : ", unsigned"));
    const int frames = readFrameCount(attributes);
    if (frames != 1) out.emplace_back("frames", std::to_string(frames));
    return out;
}

StoredImage DicomFile::image(int frame) const {
    DcmDataset& dataset = *parts_->file->getDataset();
    const Attributes attributes(dataset, frame - 1);
    const PixelDescription description = readPixelDescription(attributes);
    const FrameShape& shape = description.shape;
    if (frame < 1 || frame > shape.frames)
        throw Refusal("has " + std::to_string(shape.frames) + (shape.frames == 1 ? " frame" : " frames") +
                      "; there is no frame " + std::to_string(frame));
    StoredImage image;
    image.width = shape.width;
    image.height = shape.height;
    const PixelSpacing spacing = readPixelSpacing(attributes, image.notes);
    image.ratioYx = spacing.ratioYx;
    image.pixelWidth = spacing.width;
    image.spacingIsUncalibrated = spacing.isUncalibrated;
    image.shutters = readShutters(attributes, image.notes);

    const Frame pixels = readFrame(dataset, shape, frame - 1);
    image.notes.insert(image.notes.end(), pixels.notes.begin(), pixels.notes.end());
    const PixelFormat& format = description.format;
    switch (description.kind) {
        case PixelKind::Colour:
            if (format.isSigned) throw Refusal("has signed colours, which cannot be");
            image.pixels = toColours(static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height),
                                     pixels.words, format, layoutOf(pixels, image));
            readOverlays(image, dataset, frame - 1, {}, format);
            break;
        case PixelKind::Palette:
            image.pixels = ColourImage{toColours(readPaletteTables(attributes, format.isSigned), pixels.words,
                                                 image.width, format, description.padding)};
            readOverlays(image, dataset, frame - 1, pixels.words, format);
            break;
        case PixelKind::Grey:
            readOverlays(image, dataset, frame - 1, pixels.words, format);
            convertSamples(image, pixels.words, format, description.padding, embeddedBits(image.grey()));
            readGreyTables(attributes, description, image);
            break;
    }
    return image;
}

DisplayTables DicomFile::tables(bool signedStored, bool signedOutput) const {
    DcmDataset& dataset = *parts_->file->getDataset();
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
    const Attributes attributes(*parts_->file->getDataset());
    if (!attributes.has(DCM_RedPaletteColorLookupTableDescriptor)) throw Refusal("contains no palette");
    return toPalette(readPaletteTables(attributes, false));
}

}  // namespace viewing
