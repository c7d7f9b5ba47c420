#include "viewing/dicom/dicom_overlays.h"

#include "viewing/dicom/dicom_geometry.h"

#include <algorithm>
#include <string>
#include <vector>

namespace viewing {

namespace {

/// Overlay Data as bytes, lowest bit first, whatever the data set declares it to be.
std::vector<unsigned char> overlayBytes(DcmItem& dataset, const DcmTagKey& tag) {
    DcmElement* element = nullptr;
    if (dataset.findAndGetElement(tag, element).bad() || element == nullptr) return {};
    const std::size_t length = element->getLength();
    Uint8* bytes = nullptr;
    if (element->ident() == EVR_OB && element->getUint8Array(bytes).good() && bytes != nullptr)
        return {bytes, bytes + length};
    Uint16* words = nullptr;
    std::vector<unsigned char> out;
    if (element->getUint16Array(words).good() && words != nullptr) {
        for (std::size_t i = 0; i < length / 2; ++i) {
            out.push_back(static_cast<unsigned char>(words[i] & 0xFF));
            out.push_back(static_cast<unsigned char>(words[i] >> 8));
        }
    }
    return out;
}

class GroupReader {
public:
    GroupReader(StoredImage& image, DcmItem& dataset, int frame, std::span<const std::uint16_t> words,
                const PixelFormat& format)
        : image_(image), dataset_(dataset), attributes_(dataset), frame_(frame), words_(words), format_(format) {}

    void read(std::uint16_t group) {
        group_ = group;
        if (!attributes_.has(tag(0x0010)) && !attributes_.has(tag(0x0100))) return;
        const PlaneKind kind = attributes_.text(tag(0x0040)) == "R" ? PlaneKind::RegionOfInterest : PlaneKind::Graphics;
        if (dataset_.tagExists(tag(0x3000))) {
            readSeparate(kind);
        } else {
            readEmbedded(kind);
        }
    }

private:
    [[nodiscard]] DcmTagKey tag(std::uint16_t element) const { return {group_, element}; }

    void note(const std::string& what) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        std::string name = "60";
        name += digits[(group_ >> 4) & 15];
        name += digits[group_ & 15];
        image_.notes.push_back("overlay " + name + " " + what);
    }

    void readSeparate(PlaneKind kind) {
        const int rows = attributes_.count(tag(0x0010));
        const int columns = attributes_.count(tag(0x0011));
        if (rows == 0 || columns == 0) return note("has no rows or no columns; not drawn");
        const std::optional<int> part = partForFrame();
        if (!part) return note("belongs to other frames; not drawn");

        std::vector<double> origin = attributes_.numbers(tag(0x0050));
        if (origin.size() < 2) {
            note("has no origin; taken as 1\\1");
            origin = {1.0, 1.0};
        }
        const std::vector<unsigned char> bytes = overlayBytes(dataset_, tag(0x3000));
        const std::size_t bits = static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
        const std::size_t firstBit = bits * static_cast<std::size_t>(*part);
        if (bytes.size() * 8 < firstBit + bits)
            note("is shorter than its rows and columns need; the missing part is empty");
        std::optional<OverlayPlane> plane = placePlane(fromRowColumn(origin[0], origin[1]), rows, columns, bytes,
                                                       firstBit, image_.width, image_.height);
        if (!plane) return note("lies outside the image");
        plane->kind = kind;
        image_.overlays.push_back(std::move(*plane));
    }

    /// Which of its parts a plane has for the frame: of a plane of several frames, which go with the image's frames
    /// from its Image Frame Origin on, one of these. A plane that says nothing about frames goes with all of them.
    [[nodiscard]] std::optional<int> partForFrame() const {
        const std::optional<double> count = attributes_.number(tag(0x0015));
        const std::optional<double> origin = attributes_.number(tag(0x0051));
        if (!count && !origin) return 0;
        const double part = frame_ + 1 - origin.value_or(1.0);
        constexpr double most = 1e6;
        if (part < 0.0 || part >= std::min(count.value_or(1.0), most)) return std::nullopt;
        return static_cast<int>(part);
    }

    void readEmbedded(PlaneKind kind) {
        const int bit = attributes_.count(tag(0x0102));
        if (words_.empty() || bit >= format_.bitsAllocated || ((format_.valueBits() >> bit) & 1) != 0)
            return note("is said to be in bit " + std::to_string(bit) + " of the pixels, which is not free; not drawn");
        if (bit >= 12 && format_.bitsStored <= 12 && !image_.isColour()) {
            image_.grey().embedded.push_back({bit, kind});
            return;
        }
        image_.overlays.push_back({{0, 0}, planeOfBit(words_, bit, image_.width, image_.height), kind});
    }

    StoredImage& image_;
    DcmItem& dataset_;
    Attributes attributes_;
    int frame_;
    std::span<const std::uint16_t> words_;
    PixelFormat format_;
    std::uint16_t group_ = 0;
};

}  // namespace

void readOverlays(StoredImage& image, DcmItem& dataset, int frame, std::span<const std::uint16_t> words,
                  const PixelFormat& format) {
    GroupReader reader(image, dataset, frame, words, format);
    for (int group = 0x6000; group <= 0x601E; group += 2) reader.read(static_cast<std::uint16_t>(group));
}

std::uint16_t embeddedBits(const GreyImage& image) {
    unsigned int bits = 0;
    for (const EmbeddedPlane& plane : image.embedded) bits |= 1U << plane.bit;
    return static_cast<std::uint16_t>(bits);
}

}  // namespace viewing
