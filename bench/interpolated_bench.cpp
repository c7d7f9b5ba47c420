// Bilinear and bicubic interpolation of upright views and quarter turns: 12-bit grey through the window table to 32-bit
// display pixels, and colour, beside OpenCV.
#include "compare.h"
#include "opencv_view.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsbicubic.h"
#include "zolcs/ccsbilinear.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using zolbench::ViewShape;

constexpr int sourceSize = 2048;
constexpr int frameWidth = 1920;
constexpr int frameHeight = 1080;
constexpr unsigned char background = 0x20;

ViewShape shapeOf(double zoom, int angle) { return {sourceSize, frameWidth, frameHeight, zoom, angle}; }

CCs2dTrafo trafoOf(const ViewShape& shape) {
    CCs2dTrafo trafo;
    trafo.scale(shape.zoom);
    trafo.rotate(shape.angle);
    return trafo;
}

/// Waves with some noise, from 0 to 1.
double brightness(int x, int y, std::uint32_t& noise) {
    noise = noise * 1664525U + 1013904223U;
    return 0.5 + 0.4 * std::sin(x * 0.011) * std::cos(y * 0.007) + 0.02 * (noise >> 26U) / 64.0;
}

/// A source and the frame that shows it; what is beside the source is OpenCV's to fill, too.
class Scene {
public:
    explicit Scene(int type)
        : source(sourceSize, sourceSize, type, 1.0, false, false),
          frame(frameWidth, frameHeight, CCS_RGB8, 1.0, false, false) {
        cvFrame.create(frameHeight, frameWidth, CV_8UC4);
    }

    /// The part of OpenCV's frame that the source fills; the rest has been filled with the background.
    cv::Mat openCvTarget(const ViewShape& shape) {
        const cv::Rect target = shape.target();
        cvFrame.colRange(0, target.x).setTo(cv::Scalar(background, 0, 0, 0));
        cvFrame.colRange(target.x + target.width, frameWidth).setTo(cv::Scalar(background, 0, 0, 0));
        return cvFrame(target);
    }

    CCsRaster source;
    CCsRaster frame;
    cv::Mat cvSource;
    cv::Mat cvFrame;
    zolbench::OpenCvView cvView;
};

class GreyScene : public Scene {
public:
    GreyScene() : Scene(CCS_GREY12), map(MapFactory::CreateMap(MapFactory::Grey12)) {
        auto* pixels = reinterpret_cast<std::uint16_t*>(source.getOrigin());
        std::uint32_t noise = 1;
        for (int y = 0; y < sourceSize; ++y) {
            for (int x = 0; x < sourceSize; ++x) {
                pixels[y * source.getPitch() + x] = static_cast<std::uint16_t>(4095.0 * brightness(x, y, noise));
            }
        }
        for (std::uint32_t i = 0; i < 256; ++i) palette_[i] = i * 0x010101U;
        colours_.entries = palette_.data();
        auto* grey = dynamic_cast<IGreyMap*>(map.get());
        grey->setColorMapIndex(&colours_);
        grey->setWindow(2048, 3000);
        const auto* lut = static_cast<const std::uint32_t*>(grey->getLut());
        table_.assign(0x10000, 0);
        std::copy_n(lut, 4096, table_.begin());
        cvSource = cv::Mat(sourceSize, sourceSize, CV_16U, source.getOrigin(),
                           static_cast<std::size_t>(source.getPitch()) * 2);
    }

    void openCv(const ViewShape& shape, int interpolation) {
        const cv::Mat& values = cvView.upright(shape, cvSource, interpolation);
        cv::Mat shown = openCvTarget(shape);
        const std::uint32_t* table = table_.data();
        for (int y = 0; y < values.rows; ++y) {
            const auto* from = values.ptr<std::uint16_t>(y);
            auto* to = shown.ptr<std::uint32_t>(y);
            for (int x = 0; x < values.cols; ++x) to[x] = table[from[x]];
        }
    }

    std::unique_ptr<IMap> map;

private:
    std::array<std::uint32_t, 256> palette_{};
    CCsColorMapT colours_;
    std::vector<std::uint32_t> table_;
};

class ColourScene : public Scene {
public:
    ColourScene() : Scene(CCS_RGB8) {
        auto* pixels = reinterpret_cast<std::uint32_t*>(source.getOrigin());
        std::uint32_t noise = 1;
        for (int y = 0; y < sourceSize; ++y) {
            for (int x = 0; x < sourceSize; ++x) {
                const auto level = static_cast<std::uint32_t>(255.0 * brightness(x, y, noise));
                pixels[y * source.getPitch() + x] = level | (255U - level) << 8U | (level / 2U + 64U) << 16U;
            }
        }
        cvSource = cv::Mat(sourceSize, sourceSize, CV_8UC4, source.getOrigin(),
                           static_cast<std::size_t>(source.getPitch()) * 4);
    }

    void openCv(const ViewShape& shape, int interpolation) {
        cvView.upright(shape, cvSource, interpolation).copyTo(openCvTarget(shape));
    }
};

/// Made when first used: a run that selects other benchmarks does not pay for it.
template <typename Wanted>
Wanted& scene() {
    static Wanted made;
    return made;
}

void bilinearGrey(const ViewShape& shape) {
    auto& s = scene<GreyScene>();
    CCs2dTrafo trafo = trafoOf(shape);
    CCsBilinear().bilinearGrey12IndexMap(s.source, s.frame, trafo, s.map.get(), false, nullptr, background);
}

void bicubicGrey(const ViewShape& shape) {
    auto& s = scene<GreyScene>();
    CCs2dTrafo trafo = trafoOf(shape);
    CCsBicubic().bicubicGrey12IndexMap(s.source, s.frame, trafo, s.map.get(), nullptr, background);
}

void bilinearColour(const ViewShape& shape) {
    auto& s = scene<ColourScene>();
    CCs2dTrafo trafo = trafoOf(shape);
    CCsBilinear().bilinearRgb8Rgb8(s.source, s.frame, trafo, background, false);
}

void bicubicColour(const ViewShape& shape) {
    auto& s = scene<ColourScene>();
    CCs2dTrafo trafo = trafoOf(shape);
    CCsBicubic().bicubicRgb8Rgb8(s.source, s.frame, trafo, background);
}

template <typename Wanted>
void besideOpenCv(const std::string& title, double bar, void (*ours)(const ViewShape&), int interpolation,
                  const ViewShape& shape) {
    zolbench::compare(title, bar, {title + "/zolwebcs", [=] { ours(shape); }},
                      {title + "/OpenCV", [=] { scene<Wanted>().openCv(shape, interpolation); }});
}

const zolbench::Registration registration([] {
    struct Row {
        std::string name;
        ViewShape shape;
        double grey;
        double bilinearColour;
        double bicubicColour;
    };
    const std::array rows{Row{"fit", shapeOf(1.0, 0), 0.5, 0.0, 0.3}, Row{"zoom 3", shapeOf(3.0, 0), 0.5, 0.0, 0.0},
                          Row{"fit 90", shapeOf(1.0, 90), 0.6, 0.8, 0.4}};
    for (const Row& row : rows) {
        besideOpenCv<GreyScene>("bilinear grey " + row.name, row.grey, bilinearGrey, cv::INTER_LINEAR, row.shape);
        besideOpenCv<GreyScene>("bicubic grey " + row.name, row.grey, bicubicGrey, cv::INTER_CUBIC, row.shape);
        besideOpenCv<ColourScene>("bilinear RGB8 " + row.name, row.bilinearColour, bilinearColour, cv::INTER_LINEAR,
                                  row.shape);
        besideOpenCv<ColourScene>("bicubic RGB8 " + row.name, row.bicubicColour, bicubicColour, cv::INTER_CUBIC,
                                  row.shape);
    }
});

}  // namespace
