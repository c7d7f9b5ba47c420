// What the tests of the accelerated members share.
#pragma once

#include "zolcs/ccsimageutils.h"
#include "zolcs/resample/accelerated.h"

#include <array>
#include <cmath>
#include <cstring>
#include <iomanip>
#include <limits>
#include <stdexcept>

#include "reference/guarded_image.h"
#include "support/accelerated_members.h"
#include "support/capability_guard.h"
#include "support/resampler_reports.h"

namespace zoltest::accelerated {

using zoltest::AcceleratedCase;
using zoltest::acceleratedCases;
using zoltest::errorReport;
using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::Problem;
using zoltest::Random;
using zoltest::Report;
using zoltest::ReportCapture;

inline unsigned char* pixelAt(zoltest::GuardedMemory& memory, const CCsImage& image, int x, int y) {
    const int index = y * image.getPitch() + x;
    return memory.pixels() + static_cast<std::ptrdiff_t>(index) * zoltest::bytesOfType(image.getType());
}

template <typename Image>
inline int sampleAt(Image& image, int x, int y, int channel) {
    const unsigned char* pixel = pixelAt(image.memory, image, x, y);
    return image.getType() == CCS_RGB8 ? pixel[channel] : pixel[0] | pixel[1] << 8;
}

inline int channelsOf(const CCsImage& image) { return image.getType() == CCS_RGB8 ? 3 : 1; }

/// A smooth picture that no flip and no turn maps onto itself, steep enough everywhere for half a pixel to show, and
/// without the background's value.
inline void paint(GuardedRaster& image) {
    for (int y = 0; y < image.getHeight(); ++y) {
        for (int x = 0; x < image.getWidth(); ++x) {
            unsigned char* pixel = pixelAt(image.memory, image, x, y);
            for (int channel = 0; channel < channelsOf(image); ++channel) {
                const double wave = std::sin(x * 0.21 + y * 0.06 + channel) + std::sin(y * 0.27 - x * 0.04);
                const double value = 2300.0 + 700.0 * wave + 5.0 * x - 3.0 * y;  // 600 to 4200 up to 100 pixels a side
                if (image.getType() == CCS_RGB8) {
                    pixel[channel] = static_cast<unsigned char>(std::clamp(value / 16.0, 80.0, 255.0));
                } else {
                    const auto stored = static_cast<std::uint16_t>(std::clamp(value, 200.0, 4095.0));
                    std::memcpy(pixel, &stored, sizeof stored);
                }
            }
        }
    }
}

/// How two pictures of one view differ.
struct Difference {
    double mean = 0.0;
    double largest = 0.0;
    int coverage = 0;  ///< pixels that are background in one of them only
    int shown = 0;     ///< samples that are compared
};

template <typename Sample>
inline Difference differenceOf(GuardedImage& a, const Sample& other) {
    Difference result;
    double sum = 0.0;
    for (int y = 0; y < a.getHeight(); ++y) {
        for (int x = 0; x < a.getWidth(); ++x) {
            const auto isBackground = [](int value) { return value == zoltest::acceleratedBackground; };
            if (isBackground(sampleAt(a, x, y, 0)) != isBackground(other(x, y, 0))) {
                ++result.coverage;
                continue;
            }
            for (int channel = 0; channel < channelsOf(a); ++channel) {
                const double difference = std::abs(sampleAt(a, x, y, channel) - other(x, y, channel));
                if (isBackground(sampleAt(a, x, y, 0))) continue;
                sum += difference;
                result.largest = std::max(result.largest, difference);
                ++result.shown;
            }
        }
    }
    result.mean = result.shown > 0 ? sum / result.shown : 0.0;
    return result;
}

inline Difference differenceOf(GuardedImage& a, GuardedImage& b) {
    return differenceOf(a, [&](int x, int y, int channel) { return sampleAt(b, x, y, channel); });
}

/// Where plain members and primitives may decide differently: a pixel's centre on the very edge of the image.
inline int edgePixels(const CCsImage& dst) { return (dst.getWidth() + dst.getHeight()) * 2; }

inline bool agree(const AcceleratedCase& member, const Difference& difference, const CCsImage& dst) {
    return difference.mean <= member.meanLimit && difference.largest <= member.largestLimit &&
           difference.coverage <= edgePixels(dst);
}

struct ViewCase {
    double degrees;
    bool mirrored;
    double zoom;
    double panX;
    double panY;
    double sourceRatio;
    double destinationRatio;
    int sourceWidth;
    int sourceHeight;
    int width;
    int height;
};

inline std::ostream& operator<<(std::ostream& out, const ViewCase& v) {
    return out << v.degrees << " degrees" << (v.mirrored ? ", mirrored" : "") << ", zoom " << v.zoom << ", pan "
               << v.panX << ' ' << v.panY << ", ratios " << v.sourceRatio << ' ' << v.destinationRatio << ", "
               << v.sourceWidth << 'x' << v.sourceHeight << " to " << v.width << 'x' << v.height;
}

inline CCs2dTrafo trafoOf(const ViewCase& view) {
    CCs2dTrafo trafo;
    if (view.mirrored) trafo.mirror(CCS_HORIZONTAL);
    trafo.rotate(view.degrees);
    trafo.scale(view.zoom);
    trafo.setDspPanFactor(view.panX, view.panY);
    return trafo;
}

/// One view drawn by both members.
struct Pictures {
    Pictures(const AcceleratedCase& member, const ViewCase& view)
        : src(view.sourceWidth, view.sourceHeight, member.type, view.sourceWidth + 3, view.sourceRatio),
          accelerated(view.width, view.height, member.type, view.width + 1, view.destinationRatio),
          plain(view.width, view.height, member.type, view.width + 2, view.destinationRatio) {
        paint(src);
        CCs2dTrafo first = trafoOf(view);
        CCs2dTrafo second = trafoOf(view);
        EXPECT_EQ(member.accelerated(src, accelerated, first), 255) << member << ' ' << view;
        EXPECT_EQ(member.plain(src, plain, second), 255);
    }

    GuardedRaster src;
    GuardedImage accelerated;
    GuardedImage plain;
};

/// All angle classes with and without mirror, both kinds of pixels, odd and even sizes, in and out of the middle.
inline std::vector<ViewCase> viewCases() {
    std::vector<ViewCase> views;
    for (const double degrees : {0.0, 90.0, 180.0, 270.0, 17.0, 200.5, 310.0}) {
        for (const bool mirrored : {false, true}) {
            const auto add = [&](double zoom, double pan, double ratio, double displayRatio, CSize source, CSize size) {
                views.push_back({degrees, mirrored, zoom, pan, -0.7 * pan, ratio, displayRatio,
                                 static_cast<int>(source.cx), static_cast<int>(source.cy), static_cast<int>(size.cx),
                                 static_cast<int>(size.cy)});
            };
            add(1.0, 0.0, 1.0, 1.0, CSize(101, 83), CSize(91, 80));
            add(1.5, 0.13, 1.7, 1.0, CSize(90, 84), CSize(77, 81));
            add(0.7, -0.1, 0.6, 1.0, CSize(77, 96), CSize(100, 78));
            add(1.2, 0.0, 1.0, 1.25, CSize(80, 61), CSize(70, 63));
        }
    }
    return views;
}

class AcceleratedTest : public ::testing::TestWithParam<AcceleratedCase> {
protected:
    ReportCapture reports_;
    zoltest::CapabilityGuard plain_{0};
    const AcceleratedCase& member_ = GetParam();

    /// The report that this member makes of a problem.
    [[nodiscard]] std::vector<Report> only(Problem problem, long number = 0) const {
        return {zoltest::statedReport(member_.wideName(), problem, number)};
    }

    [[nodiscard]] std::vector<Report> takeOwn() const { return zoltest::reportsOf(only(Problem::Type).front().file); }
};

/// What the members are told of a view.
struct Orientation {
    explicit Orientation(CCs2dTrafo trafo) {
        double scale = 0.0;
        double panX = 0.0;
        double panY = 0.0;
        trafo.getOperations(angle, mirrored, scale, panX, panY);
    }
    double angle = 0.0;
    int mirrored = 0;
};

}  // namespace zoltest::accelerated
