// The host's image primitives beside OpenCV's functions of the same purpose.
#include "compare.h"

#include "zolipp/zolipp.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace {

constexpr int sourceSide = 2048;
constexpr int resizedSide = 3072;

enum class Pixels { Grey16, Bgra8 };

constexpr int typeOf(Pixels pixels) { return pixels == Pixels::Grey16 ? CV_16UC1 : CV_8UC4; }

/// A source and destinations of both sizes, which our side and OpenCV's share.
struct Images {
    cv::Mat source;
    cv::Mat sameSize;
    cv::Mat resized;

    explicit Images(Pixels pixels)
        : source(sourceSide, sourceSide, typeOf(pixels)),
          sameSize(sourceSide, sourceSide, typeOf(pixels)),
          resized(resizedSide, resizedSide, typeOf(pixels)) {
        std::uint32_t noise = 1;
        for (std::size_t i = 0; i < source.total() * source.elemSize(); ++i) {
            noise = noise * 1664525U + 1013904223U;
            source.data[i] = static_cast<unsigned char>(noise >> 24U);
        }
    }
};

/// Made when first used: a run that selects other benchmarks does not pay for it.
Images& images(Pixels pixels) {
    static std::map<Pixels, std::unique_ptr<Images>> made;
    auto& wanted = made[pixels];
    if (!wanted) wanted = std::make_unique<Images>(pixels);
    return *wanted;
}

int stepOf(const cv::Mat& image) { return static_cast<int>(image.step); }
IppiSize sizeOf(const cv::Mat& image) { return {image.cols, image.rows}; }
IppiRect rectOf(const cv::Mat& image) { return {0, 0, image.cols, image.rows}; }

void transpose(Pixels pixels, const Images& all) {
    if (pixels == Pixels::Grey16) {
        ZOLippiTranspose_16u_C1R(all.source.ptr<std::uint16_t>(), stepOf(all.source),
                                 const_cast<std::uint16_t*>(all.sameSize.ptr<std::uint16_t>()), stepOf(all.sameSize),
                                 sizeOf(all.source));
    } else {
        ZOLippiTranspose_8u_C4R(all.source.data, stepOf(all.source), all.sameSize.data, stepOf(all.sameSize),
                                sizeOf(all.source));
    }
}

void mirror(Pixels pixels, Images& all, IppiAxis axis) {
    if (pixels == Pixels::Grey16) {
        ZOLippiMirror_16u_C1IR(all.source.ptr<std::uint16_t>(), stepOf(all.source), sizeOf(all.source), axis);
    } else {
        ZOLippiMirror_8u_C4IR(all.source.data, stepOf(all.source), sizeOf(all.source), axis);
    }
}

void resize(Pixels pixels, Images& all, int interpolation) {
    constexpr double factor = static_cast<double>(resizedSide) / sourceSide;
    constexpr double centre = sourceSide / 2.0;
    if (pixels == Pixels::Grey16) {
        ZOLippiResizeCenter_16u_C1R(all.source.ptr<std::uint16_t>(), sizeOf(all.source), stepOf(all.source),
                                    rectOf(all.source), all.resized.ptr<std::uint16_t>(), stepOf(all.resized),
                                    sizeOf(all.resized), factor, factor, centre, centre, interpolation);
    } else {
        ZOLippiResizeCenter_8u_C4R(all.source.data, sizeOf(all.source), stepOf(all.source), rectOf(all.source),
                                   all.resized.data, stepOf(all.resized), sizeOf(all.resized), factor, factor, centre,
                                   centre, interpolation);
    }
}

/// An enlargement by half as much again, turned by 30 degrees about the centre.
cv::Mat oblique() { return cv::getRotationMatrix2D({sourceSide / 2.0F, sourceSide / 2.0F}, 30.0, 1.5); }

void warp(Pixels pixels, Images& all, int interpolation) {
    const cv::Mat matrix = oblique();
    const auto* coefficients = matrix.ptr<double[3]>();
    if (pixels == Pixels::Grey16) {
        ZOLippiWarpAffine_16u_C1R(all.source.ptr<std::uint16_t>(), sizeOf(all.source), stepOf(all.source),
                                  rectOf(all.source), all.resized.ptr<std::uint16_t>(), stepOf(all.resized),
                                  rectOf(all.resized), coefficients, interpolation);
    } else {
        ZOLippiWarpAffine_8u_C4R(all.source.data, sizeOf(all.source), stepOf(all.source), rectOf(all.source),
                                 all.resized.data, stepOf(all.resized), rectOf(all.resized), coefficients,
                                 interpolation);
    }
}

using Work = void (*)(Pixels pixels, Images& all, int argument);

void comparePair(const std::string& title, double bar, Pixels pixels, int argument, Work ours, Work openCv) {
    zolbench::compare(title, bar, {title + "/zolwebcs", [=] { ours(pixels, images(pixels), argument); }},
                      {title + "/OpenCV", [=] { openCv(pixels, images(pixels), argument); }});
}

struct Bars {
    double transpose;
    double mirror;
    double nearest;
    double linear;
    double cubic;
};

void registerPixels(Pixels pixels, const std::string& name, const Bars& bars) {
    comparePair(
        "transpose " + name, bars.transpose, pixels, 0, [](Pixels p, Images& all, int) { transpose(p, all); },
        [](Pixels, Images& all, int) { cv::transpose(all.source, all.sameSize); });
    for (const auto& [axisName, axis] :
         {std::pair{"top to bottom", ippAxsHorizontal}, {"left to right", ippAxsVertical}, {"both", ippAxsBoth}}) {
        comparePair(
            std::string("mirror ") + axisName + " " + name, bars.mirror, pixels, axis, mirror,
            [](Pixels, Images& all, int flip) { cv::flip(all.source, all.source, flip == ippAxsBoth ? -1 : flip); });
    }
    struct Kind {
        std::string name;
        int interpolation;
        double bar;
    };
    for (const Kind& kind :
         {Kind{"nearest", IPPI_INTER_NN, bars.nearest}, Kind{"linear", IPPI_INTER_LINEAR, bars.linear},
          Kind{"cubic", IPPI_INTER_CUBIC, bars.cubic}}) {
        static constexpr auto flagOf = [](int interpolation) {
            return interpolation == IPPI_INTER_NN       ? cv::INTER_NEAREST
                   : interpolation == IPPI_INTER_LINEAR ? cv::INTER_LINEAR
                                                        : cv::INTER_CUBIC;
        };
        comparePair("resize " + kind.name + " " + name, kind.bar, pixels, kind.interpolation, resize,
                    [](Pixels, Images& all, int interpolation) {
                        cv::resize(all.source, all.resized, all.resized.size(), 0, 0, flagOf(interpolation));
                    });
        comparePair("warp " + kind.name + " " + name, 0.0, pixels, kind.interpolation, warp,
                    [](Pixels, Images& all, int interpolation) {
                        cv::warpAffine(all.source, all.resized, oblique(), all.resized.size(), flagOf(interpolation),
                                       cv::BORDER_TRANSPARENT);
                    });
    }
}

const zolbench::Registration registration([] {
    registerPixels(Pixels::Grey16, "16 bit", {0.35, 0.8, 0.7, 0.5, 0.4});
    registerPixels(Pixels::Bgra8, "4 x 8 bit", {0.6, 0.8, 0.0, 0.0, 0.0});
});

}  // namespace
