// The members of CCsBicubic, with arguments and restatements.
#pragma once

#include "reference/bicubic_reference.h"
#include "support/resampler_members.h"
#include "zolcs/ccsbicubic.h"

namespace zoltest {

inline ResamplerMembers<CCsBicubic> bicubicMembers() {
    using zolref::Pixels;
    ResamplerMembers<CCsBicubic> list;
    for (const auto& [src, dst] : {std::pair{CCS_GREY12, CCS_GREY12}, std::pair{CCS_GREY16, CCS_GREY16},
                                   std::pair{CCS_GREY12, CCS_GREY16}, std::pair{CCS_GREY16, CCS_GREY12}}) {
        for (const bool keep : {false, true}) {
            const bool twelveBit = src == CCS_GREY12;
            // Keeping bits and being stopped have nothing to do with one another.
            const bool ignoreAbort = keep;
            list.push_back({L"bicubicGrey12Grey12", src, dst, bothGrey16Bit, !ignoreAbort,
                            [=](CCsBicubic& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
                                return b.bicubicGrey12Grey12(s, d, t, 0xBEEF, ignoreAbort, keep);
                            },
                            nullptr,
                            [=](const double* m, const Pixels& s, const Pixels& d) {
                                zolref::bicubicGrey(m, s, d, 0xBEEF, twelveBit, keep);
                            }});
        }
    }
    list.push_back(
        {L"bicubicGrey12Grey12_ForMagicGlass", CCS_GREY12, CCS_GREY12, bothGrey12, true,
         [](CCsBicubic& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return b.bicubicGrey12Grey12_ForMagicGlass(s, d, t, 0xBEEF);
         },
         nullptr,
         [](const double* m, const Pixels& s, const Pixels& d) { zolref::bicubicGrey(m, s, d, 0xBEEF, true, false); }});
    for (const int src : {CCS_GREY12, CCS_GREY16}) {
        list.push_back({L"bicubicGrey12IndexMap", src, CCS_RGB8, greyToDisplay, true,
                        [](CCsBicubic& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
                            return b.bicubicGrey12IndexMap(s, d, t, &sharedMap(), nullptr, 0xA5);
                        },
                        nullptr,
                        [src](const double* m, const Pixels& s, const Pixels& d) {
                            zolref::bicubicMapped(m, s, d, plainGreyView(src == CCS_GREY12, 0xA5));
                        }});
    }
    list.push_back(
        {L"bicubicRgb8Rgb8", CCS_RGB8, CCS_RGB8, bothRgb8, true,
         [](CCsBicubic& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return b.bicubicRgb8Rgb8(s, d, t, 0x89ABCDEFUL);
         },
         nullptr,
         [](const double* m, const Pixels& s, const Pixels& d) { zolref::bicubicRgb(m, s, d, 0x89ABCDEF, nullptr); }});
    list.push_back({L"bicubicRgb8Rgb8Map", CCS_RGB8, CCS_RGB8, bothRgb8, true,
                    [](CCsBicubic& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
                        return b.bicubicRgb8Rgb8Map(s, d, t, byteTableArgument(), 0x89ABCDEFUL);
                    },
                    [](CCsBicubic& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
                        return b.bicubicRgb8Rgb8Map(s, d, t, nullptr, 0);
                    },
                    [](const double* m, const Pixels& s, const Pixels& d) {
                        zolref::bicubicRgb(m, s, d, 0x89ABCDEF, byteTable().data());
                    }});
    return list;
}

}  // namespace zoltest
