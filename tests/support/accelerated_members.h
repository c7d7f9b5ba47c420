// The members that draw through the image primitives, each with its plain twin.
#pragma once

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsbicubic.h"
#include "zolcs/ccsbilinear.h"
#include "zolcs/ccsnearest.h"
#include "zolcs/ccsraster.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace zoltest {

constexpr unsigned char acceleratedBackground = 77;
constexpr unsigned long greyBackground = acceleratedBackground * 0x010101UL;

/// One accelerated member. The largest differences that its pictures may have from those of the plain member count
/// steps of the smallest value, 4095 or 255 being white.
struct AcceleratedCase {
    std::string name;
    int type;  ///< of both images
    double meanLimit;
    double largestLimit;
    std::function<int(CCsRaster&, CCsImage&, CCs2dTrafo&)> accelerated;
    std::function<int(CCsRaster&, CCsImage&, CCs2dTrafo&)> plain;

    [[nodiscard]] std::wstring wideName() const { return {name.begin(), name.end()}; }
    [[nodiscard]] bool isColour() const { return type == CCS_RGB8; }
};

inline std::ostream& operator<<(std::ostream& out, const AcceleratedCase& c) { return out << c.name; }

/// Plain bilinear interpolation of 12-bit images deliberately ignores most of the vertical position: its 16-bit form is
/// the one to compare with.
inline const std::vector<AcceleratedCase>& acceleratedCases() {
    static const std::vector<AcceleratedCase> cases{
        {"nearestIPPGrey12Grey12", CCS_GREY12, 5.0, 300,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsNearest().nearestIPPGrey12Grey12(s, d, t, acceleratedBackground);
         },
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsNearest().nearestGrey12Grey12(s, d, t, acceleratedBackground, false);
         }},
        {"nearestIPPRgb8Rgb8", CCS_RGB8, 0.4, 30,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsNearest().nearestIPPRgb8Rgb8(s, d, t, acceleratedBackground);
         },
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsNearest().nearestRgb8Rgb8(s, d, t, greyBackground);
         }},
        {"bilinearIPPGrey12Grey12", CCS_GREY16, 2.0, 8,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBilinear().bilinearIPPGrey12Grey12(s, d, t, acceleratedBackground);
         },
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBilinear().bilinearGrey12Grey12(s, d, t, acceleratedBackground, false);
         }},
        {"bilinearIPPRgb8Rgb8", CCS_RGB8, 1.1, 4,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBilinear().bilinearIPPRgb8Rgb8(s, d, t, acceleratedBackground);
         },
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBilinear().bilinearRgb8Rgb8(s, d, t, greyBackground, false);
         }},
        {"bicubicIPPGrey12Grey12", CCS_GREY12, 8.0, 40,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBicubic().bicubicIPPGrey12Grey12(s, d, t, acceleratedBackground);
         },
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBicubic().bicubicGrey12Grey12(s, d, t, acceleratedBackground, true, false);
         }},
        {"bicubicIPPRgb8Rgb8", CCS_RGB8, 1.2, 5,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBicubic().bicubicIPPRgb8Rgb8(s, d, t, acceleratedBackground);
         },
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBicubic().bicubicRgb8Rgb8(s, d, t, greyBackground);
         }},
    };
    return cases;
}

}  // namespace zoltest
