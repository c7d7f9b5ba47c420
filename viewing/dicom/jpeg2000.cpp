#include "viewing/dicom/jpeg2000.h"

#include "viewing/dicom/jpeg2000_layout.h"
#include "viewing/image/refusal.h"

#include <openjpeg.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace viewing {

namespace {

using Bytes = std::span<const std::uint8_t>;

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

void refuseUnless(bool accepted) {
    if (!accepted) throw Refusal("has Pixel Data that cannot be decoded (a broken JPEG 2000 codestream)");
}

/// What the library leaves out without a word: tiles, and what it sets up before it looks at the first sample.
Jpeg2000Layout checkLayout(Bytes codestream, const CodestreamHeader& header) {
    constexpr double megabyte = 1 << 20;
    constexpr double bytesPerSample = 2.0;
    const double samples = static_cast<double>(header.width) * header.height * header.samples;
    // Code-blocks are 64 x 64 mostly, and never smaller than 4 x 4.
    const Jpeg2000Limits limits{32.0 * megabyte + samples * bytesPerSample / 2.0, megabyte + samples / 8.0};
    const auto layout = readJpeg2000Layout(codestream, limits);
    refuseUnless(layout.has_value());
    if (!limits.admit(*layout))
        throw Refusal(
            "has a JPEG 2000 codestream cut into so small parts that decoding it would take far more memory "
            "or time than the image is worth");
    if (layout->completeTiles.size() < layout->tiles)
        throw Refusal("is truncated: its JPEG 2000 codestream has " + std::to_string(layout->completeTiles.size()) +
                      " of " + std::to_string(layout->tiles) + " tiles");
    return *layout;
}

bool areAlike(std::span<const opj_image_comp_t> components) {
    return std::all_of(components.begin(), components.end(), [&](const opj_image_comp_t& component) {
        return component.w == components[0].w && component.h == components[0].h && component.prec >= 1 &&
               component.prec <= 16;
    });
}

/// The samples with so many of the largest resolutions left out; null where the library cannot decode them.
Image decode(Bytes codestream, std::uint32_t leftOut) {
    Source source(codestream);
    const Stream stream(source.open());
    const Codec codec(opj_create_decompress(OPJ_CODEC_J2K));
    if (stream == nullptr || codec == nullptr) throw Refusal("not enough memory");
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    parameters.cp_reduce = leftOut;
    if (opj_setup_decoder(codec.get(), &parameters) == OPJ_FALSE ||
        opj_decoder_set_strict_mode(codec.get(), OPJ_TRUE) == OPJ_FALSE)
        return nullptr;
    opj_image_t* header = nullptr;
    const bool read = opj_read_header(stream.get(), codec.get(), &header) != OPJ_FALSE;
    Image image(header);
    if (!read || image == nullptr || image->comps == nullptr || image->numcomps == 0) return nullptr;
    if (!areAlike({image->comps, image->numcomps}))
        throw Refusal("has a JPEG 2000 codestream with components of different sizes or of more than 16 bits");
    const bool decoded = opj_decode(codec.get(), stream.get(), image.get()) != OPJ_FALSE &&
                         opj_end_decompress(codec.get(), stream.get()) != OPJ_FALSE;
    return decoded ? std::move(image) : nullptr;
}

/// The codestream with bytes behind each tile that no decoder accepts as a packet: 32 ones in a row announce a length
/// of more bits than lengths can have (ISO/IEC 15444-1, B.10.7.1).
std::vector<std::uint8_t> withImpossiblePackets(Bytes codestream, std::vector<TileEnd> tiles) {
    // A decoder drops the highest bit of each byte behind 0xFF. Packets of precincts without code-blocks take two
    // bytes.
    constexpr std::size_t pairs = 128;
    std::sort(tiles.begin(), tiles.end(), [](const TileEnd& a, const TileEnd& b) { return a.end < b.end; });
    std::vector<std::uint8_t> out;
    out.reserve(codestream.size() + tiles.size() * 2 * pairs);
    std::size_t at = 0;
    for (const TileEnd& tile : tiles) {
        // The part's length has been copied with its header.
        const std::size_t lengthAt = out.size() + (tile.length - at);
        out.insert(out.end(), codestream.begin() + static_cast<std::ptrdiff_t>(at),
                   codestream.begin() + static_cast<std::ptrdiff_t>(tile.end));
        for (std::size_t i = 0; i < pairs; ++i) out.insert(out.end(), {0xFF, 0x7F});
        std::uint32_t length = BigEndianReader(Bytes(out).subspan(lengthAt)).u32();
        if (length != 0) length += 2 * pairs;
        for (std::size_t i = 0; i < 4; ++i) out[lengthAt + i] = static_cast<std::uint8_t>(length >> (24 - 8 * i));
        at = tile.end;
    }
    out.insert(out.end(), codestream.begin() + static_cast<std::ptrdiff_t>(at), codestream.end());
    return out;
}

/// Where a tile ends behind a whole packet, the library takes all further packets for empty ones. It must not look for
/// any there: the least that can be decoded shows whether it does, for it reads the headers of all packets.
void refuseMissingPackets(Bytes codestream, const Jpeg2000Layout& layout) {
    if (decode(withImpossiblePackets(codestream, layout.completeTiles), layout.levels) == nullptr)
        throw Refusal("is truncated: packets are missing at the end of a tile of its JPEG 2000 codestream");
}

}  // namespace

std::vector<std::uint16_t> decodeJpeg2000(std::span<const std::uint8_t> codestream) {
    const auto header = readJpeg2000Header(codestream);
    refuseUnless(header.has_value());
    const Jpeg2000Layout layout = checkLayout(codestream, *header);
    const Image image = decode(codestream, 0);
    refuseUnless(image != nullptr);
    refuseMissingPackets(codestream, layout);
    const std::span<const opj_image_comp_t> components(image->comps, image->numcomps);
    refuseUnless(areAlike(components) && std::all_of(components.begin(), components.end(),
                                                     [](const auto& component) { return component.data != nullptr; }));
    const std::size_t pixels = std::size_t{components[0].w} * components[0].h;
    std::vector<std::uint16_t> out;
    out.reserve(pixels * components.size());
    for (std::size_t i = 0; i < pixels; ++i)
        for (const opj_image_comp_t& component : components)
            out.push_back(static_cast<std::uint16_t>(static_cast<std::uint32_t>(component.data[i])));
    return out;
}

}  // namespace viewing
