#include "viewing/dicom/jpeg2000.h"

#include "viewing/image/stored_image.h"

#include <openjpeg.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace viewing {

namespace {

/// A codestream in memory as the library reads it.
class Source {
public:
    explicit Source(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    opj_stream_t* open() {
        opj_stream_t* const stream = opj_stream_default_create(OPJ_TRUE);
        if (stream == nullptr) return nullptr;
        opj_stream_set_user_data(stream, this, nullptr);
        opj_stream_set_user_data_length(stream, bytes_.size());
        opj_stream_set_read_function(stream, &Source::read);
        opj_stream_set_skip_function(stream, &Source::skip);
        opj_stream_set_seek_function(stream, &Source::seek);
        return stream;
    }

private:
    static OPJ_SIZE_T read(void* buffer, OPJ_SIZE_T count, void* self) {
        auto& source = *static_cast<Source*>(self);
        const std::size_t left = source.bytes_.size() - source.at_;
        if (left == 0) return static_cast<OPJ_SIZE_T>(-1);
        const std::size_t taken = std::min<std::size_t>(count, left);
        std::memcpy(buffer, source.bytes_.data() + source.at_, taken);
        source.at_ += taken;
        return taken;
    }
    static OPJ_OFF_T skip(OPJ_OFF_T count, void* self) {
        auto& source = *static_cast<Source*>(self);
        const std::size_t left = source.bytes_.size() - source.at_;
        if (count < 0 || static_cast<std::uint64_t>(count) > left) return -1;
        source.at_ += static_cast<std::size_t>(count);
        return count;
    }
    static OPJ_BOOL seek(OPJ_OFF_T place, void* self) {
        auto& source = *static_cast<Source*>(self);
        if (place < 0 || static_cast<std::uint64_t>(place) > source.bytes_.size()) return OPJ_FALSE;
        source.at_ = static_cast<std::size_t>(place);
        return OPJ_TRUE;
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
};

template <auto destroy>
struct Destroy {
    template <typename Thing>
    void operator()(Thing* thing) const {
        destroy(thing);
    }
};

using Stream = std::unique_ptr<opj_stream_t, Destroy<opj_stream_destroy>>;
using Codec = std::unique_ptr<opj_codec_t, Destroy<opj_destroy_codec>>;
using Image = std::unique_ptr<opj_image_t, Destroy<opj_image_destroy>>;

bool fits(const opj_image_t& image, const ImageExtent& extent) {
    const auto width = static_cast<OPJ_UINT32>(extent.width);
    const auto height = static_cast<OPJ_UINT32>(extent.height);
    if (image.numcomps != static_cast<OPJ_UINT32>(extent.samples) || image.comps == nullptr) return false;
    return std::all_of(image.comps, image.comps + image.numcomps, [&](const opj_image_comp_t& component) {
        return component.w == width && component.h == height && component.prec >= 1 && component.prec <= 16;
    });
}

void refuseUnless(bool accepted) {
    if (!accepted) throw Refusal("has Pixel Data that cannot be decoded (a broken JPEG 2000 codestream)");
}

}  // namespace

std::vector<std::uint16_t> decodeJpeg2000(std::span<const std::uint8_t> codestream, const ImageExtent& extent) {
    Source source(codestream);
    const Stream stream(source.open());
    const Codec codec(opj_create_decompress(OPJ_CODEC_J2K));
    if (stream == nullptr || codec == nullptr) throw Refusal("not enough memory");
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    refuseUnless(opj_setup_decoder(codec.get(), &parameters) != OPJ_FALSE);
    refuseUnless(opj_decoder_set_strict_mode(codec.get(), OPJ_TRUE) != OPJ_FALSE);

    opj_image_t* header = nullptr;
    const bool read = opj_read_header(stream.get(), codec.get(), &header) != OPJ_FALSE;
    const Image image(header);
    refuseUnless(read && image != nullptr);
    // Before anything is allocated for the pixels: the size is the file's to claim.
    if (!fits(*image, extent)) throw Refusal("has a JPEG 2000 codestream that does not fit what the file says of it");
    refuseUnless(opj_decode(codec.get(), stream.get(), image.get()) != OPJ_FALSE &&
                 opj_end_decompress(codec.get(), stream.get()) != OPJ_FALSE && fits(*image, extent));

    const std::size_t pixels = static_cast<std::size_t>(extent.width) * static_cast<std::size_t>(extent.height);
    std::vector<std::uint16_t> out;
    out.reserve(pixels * image->numcomps);
    refuseUnless(std::all_of(image->comps, image->comps + image->numcomps,
                             [](const opj_image_comp_t& component) { return component.data != nullptr; }));
    for (std::size_t i = 0; i < pixels; ++i)
        for (OPJ_UINT32 c = 0; c < image->numcomps; ++c)
            out.push_back(static_cast<std::uint16_t>(static_cast<std::uint32_t>(image->comps[c].data[i])));
    return out;
}

}  // namespace viewing
