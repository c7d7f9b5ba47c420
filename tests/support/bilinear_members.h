// The members of CCsBilinear, with arguments and restatements.
#pragma once

#include "reference/bilinear_reference.h"
#include "support/resampler_members.h"
#include "zolcs/ccsbilinear.h"
#include "zolcs/simd/capability.h"

namespace zoltest {

inline ResamplerMembers<CCsBilinear> bilinearMembers() {
    using zolref::Pixels;
    ResamplerMembers<CCsBilinear> list;
    for (const auto& [src, dst] : {std::pair{CCS_GREY12, CCS_GREY12}, std::pair{CCS_GREY16, CCS_GREY16},
                                   std::pair{CCS_GREY12, CCS_GREY16}, std::pair{CCS_GREY16, CCS_GREY12}}) {
        const bool twelveBit = src == CCS_GREY12;
        list.push_back({L"bilinearGrey12Grey12", src, dst, bothGrey16Bit, false,
                        [](CCsBilinear& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
                            return b.bilinearGrey12Grey12(s, d, t, 0xBEEF, false);
                        },
                        nullptr,
                        [twelveBit](const double* m, const Pixels& s, const Pixels& d) {
                            if (zolcs::processorCapability() != 0) {
                                zolref::bilinearPacked(m, s, d, 0xBEEF);
                            } else {
                                zolref::bilinearGrey(m, s, d, 0xBEEF, twelveBit, false);
                            }
                        }});
        // Kept bits are the plain path's, whatever the processor can do.
        list.push_back({L"bilinearGrey12Grey12", src, dst, bothGrey16Bit, false,
                        [](CCsBilinear& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
                            s.setEmbeddedOverlayStatus(true);
                            return b.bilinearGrey12Grey12(s, d, t, 0xBEEF, true);
                        },
                        nullptr,
                        [twelveBit](const double* m, const Pixels& s, const Pixels& d) {
                            zolref::bilinearGrey(m, s, d, 0xBEEF, twelveBit, true);
                        }});
    }
    for (const int src : {CCS_GREY12, CCS_GREY16}) {
        list.push_back({L"bilinearGrey12IndexMap", src, CCS_RGB8, greyToDisplay, true,
                        [](CCsBilinear& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
                            return b.bilinearGrey12IndexMap(s, d, t, &sharedMap(), true, nullptr, 0xA5);
                        },
                        nullptr,
                        [src](const double* m, const Pixels& s, const Pixels& d) {
                            zolref::bilinearMapped(m, s, d, plainGreyView(src == CCS_GREY12, 0xA5));
                        }});
    }
    list.push_back(
        {L"bilinearRgb8Rgb8", CCS_RGB8, CCS_RGB8, bothRgb8, true,
         [](CCsBilinear& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return b.bilinearRgb8Rgb8(s, d, t, 0x89ABCDEFUL, true);
         },
         nullptr,
         [](const double* m, const Pixels& s, const Pixels& d) { zolref::bilinearRgb(m, s, d, 0x89ABCDEF, nullptr); }});
    list.push_back({L"bilinearRgb8Rgb8Map", CCS_RGB8, CCS_RGB8, bothRgb8, true,
                    [](CCsBilinear& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
                        return b.bilinearRgb8Rgb8Map(s, d, t, byteTableArgument(), 0x89ABCDEFUL);
                    },
                    [](CCsBilinear& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
                        return b.bilinearRgb8Rgb8Map(s, d, t, nullptr, 0);
                    },
                    [](const double* m, const Pixels& s, const Pixels& d) {
                        zolref::bilinearRgb(m, s, d, 0x89ABCDEF, byteTable().data());
                    }});
    list.push_back(
        {L"bilinearRgb8Rgb8_ForMagicGlass", CCS_RGB8, CCS_RGB8, bothRgb8, true,
         [](CCsBilinear& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return b.bilinearRgb8Rgb8_ForMagicGlass(s, d, t, 0x89ABCDEFUL);
         },
         nullptr,
         [](const double* m, const Pixels& s, const Pixels& d) { zolref::bilinearRgb(m, s, d, 0x89ABCDEF, nullptr); }});
    return list;
}

}  // namespace zoltest
