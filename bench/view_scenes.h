// What the benchmarks of resampling show: a square source in a frame that is wider than high, as we and as OpenCV and
// pixman hold it.
#pragma once

#include "compare.h"
#include "opencv_view.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"

#include <pixman.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zolbench {

inline constexpr int sourceSize = 2048;
inline constexpr int frameWidth = 1920;
inline constexpr int frameHeight = 1080;
inline constexpr unsigned char background = 0x20;

/// A view of that source in that frame.
struct View : ViewShape {
    View(std::string viewName, double viewZoom, int viewAngle)
        : ViewShape{zolbench::sourceSize, zolbench::frameWidth, zolbench::frameHeight, viewZoom, viewAngle},
          name(std::move(viewName)) {}

    [[nodiscard]] CCs2dTrafo trafo() const {
        CCs2dTrafo trafo;
        trafo.scale(zoom);
        trafo.rotate(angle);
        return trafo;
    }

    std::string name;
};

/// The views of which speed is told.
inline const std::array<View, 4>& views() {
    static const std::array all{View("fit", 1.0, 0), View("zoom 3", 3.0, 0), View("fit 90", 1.0, 90),
                                View("zoom 1.7 at 30", 1.7, 30)};
    return all;
}

/// Waves with some noise, from 0 to 1.
inline double brightness(int x, int y, std::uint32_t& noise) {
    noise = noise * 1664525U + 1013904223U;
    return 0.5 + 0.4 * std::sin(x * 0.011) * std::cos(y * 0.007) + 0.02 * (noise >> 26U) / 64.0;
}

/// Made when first used: a run that selects other benchmarks does not pay for it.
template <typename Wanted>
Wanted& scene() {
    static Wanted made;
    return made;
}

/// A source and the frame that shows it; what is beside the source is OpenCV's to fill, too.
class Scene {
public:
    Scene(int type, int cvType)
        : source(sourceSize, sourceSize, type, 1.0, false, false),
          frame(frameWidth, frameHeight, CCS_RGB8, 1.0, false, false),
          cvSource(sourceSize, sourceSize, cvType, source.getOrigin(),
                   static_cast<std::size_t>(source.getPitch()) * static_cast<std::size_t>(CV_ELEM_SIZE(cvType))) {
        cvFrame.create(frameHeight, frameWidth, CV_8UC4);
    }

    /// The part of OpenCV's frame that the source fills, after the rest has been filled with the background.
    cv::Mat openCvTarget(const View& view) {
        const cv::Rect target = view.target();
        cvFrame.colRange(0, target.x).setTo(border());
        cvFrame.colRange(target.x + target.width, frameWidth).setTo(border());
        return cvFrame(target);
    }

    static cv::Scalar border() { return {background, 0, 0, 0}; }

    CCsRaster source;
    CCsRaster frame;
    cv::Mat cvSource;
    cv::Mat cvFrame;
    OpenCvView cvView;
};

/// 12-bit grey through a window table.
class GreyScene : public Scene {
public:
    GreyScene() : Scene(CCS_GREY12, CV_16U), map(MapFactory::CreateMap(MapFactory::Grey12)) {
        auto* pixels = reinterpret_cast<std::uint16_t*>(source.getOrigin());
        std::uint32_t noise = 1;
        for (int y = 0; y < sourceSize; ++y) {
            for (int x = 0; x < sourceSize; ++x) {
                pixels[y * source.getPitch() + x] = static_cast<std::uint16_t>(4095.0 * brightness(x, y, noise));
            }
        }
        for (std::uint32_t i = 0; i < 256; ++i) palette_[i] = i * 0x010101U;
        colours_.entries = palette_.data();
        greyMap().setColorMapIndex(&colours_);
        greyMap().setWindow(2048, 3000);
        table_.assign(0x10000, 0);
        std::copy_n(static_cast<const std::uint32_t*>(greyMap().getLut()), 4096, table_.begin());
        table_[outsideMark] = background;
    }

    void openCv(const View& view, int interpolation) {
        const bool whole = view.isOblique();
        const cv::Mat& values = whole ? cvView.oblique(view, cvSource, interpolation, cv::Scalar(outsideMark))
                                      : cvView.upright(view, cvSource, interpolation);
        cv::Mat shown = whole ? cvFrame : openCvTarget(view);
        const std::uint32_t* table = table_.data();
        for (int y = 0; y < values.rows; ++y) {
            const auto* from = values.ptr<std::uint16_t>(y);
            auto* to = shown.ptr<std::uint32_t>(y);
            for (int x = 0; x < values.cols; ++x) to[x] = table[from[x]];
        }
    }

    [[nodiscard]] IGreyMap& greyMap() const { return dynamic_cast<IGreyMap&>(*map); }

    std::unique_ptr<IMap> map;

private:
    static constexpr std::uint16_t outsideMark = 0xFFFF;  ///< a value that no 12-bit image holds

    std::array<std::uint32_t, 256> palette_{};
    CCsColorMapT colours_;
    std::vector<std::uint32_t> table_;
};

class ColourScene : public Scene {
public:
    ColourScene() : Scene(CCS_RGB8, CV_8UC4) {
        auto* pixels = reinterpret_cast<std::uint32_t*>(source.getOrigin());
        std::uint32_t noise = 1;
        for (int y = 0; y < sourceSize; ++y) {
            for (int x = 0; x < sourceSize; ++x) {
                const auto level = static_cast<std::uint32_t>(255.0 * brightness(x, y, noise));
                pixels[y * source.getPitch() + x] = level | (255U - level) << 8U | (level / 2U + 64U) << 16U;
            }
        }
        const auto wrap = [](cv::Mat& image) {
            return pixman_image_create_bits(PIXMAN_x8r8g8b8, image.cols, image.rows, image.ptr<std::uint32_t>(),
                                            static_cast<int>(image.step));
        };
        pixmanSource_ = wrap(cvSource);
        pixmanFrame_ = wrap(cvFrame);
    }
    ~ColourScene() {
        pixman_image_unref(pixmanSource_);
        pixman_image_unref(pixmanFrame_);
    }
    ColourScene(const ColourScene&) = delete;
    ColourScene& operator=(const ColourScene&) = delete;

    void openCv(const View& view, int interpolation) {
        if (view.isOblique()) {
            cvView.oblique(view, cvSource, interpolation, border(), cvFrame);
        } else {
            cvView.upright(view, cvSource, interpolation).copyTo(openCvTarget(view));
        }
    }

    void pixman(const View& view, pixman_filter_t filter) {
        const cv::Mat matrix = view.displayToImage();
        pixman_transform_t transform{};
        for (int row = 0; row < 2; ++row) {
            for (int column = 0; column < 3; ++column) {
                transform.matrix[row][column] = pixman_double_to_fixed(matrix.at<double>(row, column));
            }
        }
        transform.matrix[2][2] = pixman_fixed_1;
        pixman_image_set_transform(pixmanSource_, &transform);
        pixman_image_set_filter(pixmanSource_, filter, nullptr, 0);
        pixman_image_composite32(PIXMAN_OP_SRC, pixmanSource_, nullptr, pixmanFrame_, 0, 0, 0, 0, 0, 0, frameWidth,
                                 frameHeight);
    }

private:
    pixman_image_t* pixmanSource_ = nullptr;
    pixman_image_t* pixmanFrame_ = nullptr;
};

}  // namespace zolbench
