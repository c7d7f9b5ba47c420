// Makes JPEG 2000 codestreams for tests.
#pragma once

#include <gtest/gtest.h>
#include <openjpeg.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace zoltest {

/// What a codestream is made of.
struct CodestreamShape {
    int width = 1;
    int height = 1;
    int samples = 1;
    int bits = 8;
    bool isSigned = false;
    bool colourTransformation = false;
    int tile = 0;  ///< side; 0 for one tile
    int resolutions = 1;
    int layers = 1;
    int precinct = 0;  ///< side of the largest ones; 0 for the greatest possible
    OPJ_PROG_ORDER order = OPJ_LRCP;
};

/// A lossless codestream of samples that follow one another pixel by pixel.
inline std::vector<std::uint8_t> encodeJpeg2000(const CodestreamShape& shape, const std::vector<int>& samples) {
    std::vector<opj_image_cmptparm_t> parts(static_cast<std::size_t>(shape.samples));
    for (opj_image_cmptparm_t& part : parts) {
        part = {};
        part.dx = part.dy = 1;
        part.w = static_cast<OPJ_UINT32>(shape.width);
        part.h = static_cast<OPJ_UINT32>(shape.height);
        part.prec = static_cast<OPJ_UINT32>(shape.bits);
        part.sgnd = shape.isSigned ? 1 : 0;
    }
    opj_image_t* const image = opj_image_create(static_cast<OPJ_UINT32>(parts.size()), parts.data(),
                                                shape.samples == 3 ? OPJ_CLRSPC_SRGB : OPJ_CLRSPC_GRAY);
    image->x1 = static_cast<OPJ_UINT32>(shape.width);
    image->y1 = static_cast<OPJ_UINT32>(shape.height);
    for (std::size_t i = 0; i < samples.size(); ++i) image->comps[i % parts.size()].data[i / parts.size()] = samples[i];

    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.tcp_numlayers = shape.layers;
    // Each layer has half of what is left out of the one before; the last one leaves out nothing.
    for (int layer = 0; layer < shape.layers; ++layer)
        parameters.tcp_rates[layer] = static_cast<float>(1 << (shape.layers - 1 - layer));
    parameters.cp_disto_alloc = 1;
    parameters.numresolution = shape.resolutions;
    parameters.prog_order = shape.order;
    if (shape.tile != 0) {
        parameters.tile_size_on = OPJ_TRUE;
        parameters.cp_tdx = parameters.cp_tdy = shape.tile;
    }
    if (shape.precinct != 0) {
        parameters.csty |= 1;
        parameters.res_spec = 1;
        parameters.prcw_init[0] = parameters.prch_init[0] = shape.precinct;
    }
    parameters.tcp_mct = shape.colourTransformation ? 1 : 0;
    opj_codec_t* const codec = opj_create_compress(OPJ_CODEC_J2K);
    EXPECT_TRUE(opj_setup_encoder(codec, &parameters, image));

    struct Sink {
        std::vector<std::uint8_t> bytes;
        std::size_t at = 0;
    } sink;
    opj_stream_t* const stream = opj_stream_default_create(OPJ_FALSE);
    opj_stream_set_user_data(stream, &sink, nullptr);
    opj_stream_set_write_function(stream, [](void* bytes, OPJ_SIZE_T count, void* user) {
        auto& out = *static_cast<Sink*>(user);
        out.bytes.resize(std::max(out.bytes.size(), out.at + count));
        std::memcpy(out.bytes.data() + out.at, bytes, count);
        out.at += count;
        return count;
    });
    opj_stream_set_seek_function(stream, [](OPJ_OFF_T place, void* user) -> OPJ_BOOL {
        static_cast<Sink*>(user)->at = static_cast<std::size_t>(place);
        return OPJ_TRUE;
    });
    opj_stream_set_skip_function(stream, [](OPJ_OFF_T count, void* user) {
        static_cast<Sink*>(user)->at += static_cast<std::size_t>(count);
        return count;
    });
    EXPECT_TRUE(opj_start_compress(codec, image, stream));
    EXPECT_TRUE(opj_encode(codec, stream));
    EXPECT_TRUE(opj_end_compress(codec, stream));
    opj_stream_destroy(stream);
    opj_destroy_codec(codec);
    opj_image_destroy(image);
    return sink.bytes;
}

}  // namespace zoltest
