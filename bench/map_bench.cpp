// Mapping a whole 12-bit grey raster to 32-bit display pixels, beside OpenCV, on one thread and on two.
//
// OpenCV has no look-up for 16-bit samples. Its quickest way to a grey picture scales to 8 bits and spreads those over
// the channels; for any other palette a look-up of the four channels follows. Both are measured, the first in strips
// that stay in the cache too.
#include "compare.h"

#include "zolcs/ccscolorman.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"

#include <omp.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstdint>
#include <memory>
#include <string>

namespace {

constexpr int side = 4096;
constexpr int stripRows = 16;
constexpr int centre = 1000;
constexpr int width = 1800;
constexpr double slope = 256.0 / width;
constexpr double offset = -slope * (centre - width / 2);

/// Restricts both libraries to a number of threads while it lives.
class Threads {
public:
    explicit Threads(int count) : saved_(omp_get_max_threads()) {
        omp_set_num_threads(count);
        cv::setNumThreads(count);
    }
    ~Threads() {
        omp_set_num_threads(saved_);
        cv::setNumThreads(1);
    }
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;

private:
    int saved_;
};

class Scene {
public:
    Scene() : map_(MapFactory::CreateMap(MapFactory::Grey12)) {
        palette_.getColorMap(colours_);
        map_->setColorMapIndex(&colours_);
        map_->setWindow(centre, width);
        fill();
        shuttered_.setCircShutter({0, 0, side, side});
        cvTable_.create(1, 256, CV_8UC4);
        for (int i = 0; i < 256; ++i) {
            const auto level = static_cast<unsigned char>(255 - i);
            cvTable_.at<cv::Vec4b>(i) = {level, level, level, 0};
        }
    }

    void mapRaster(CCsRaster& source, bool wholeImageAllowed, int threads) {
        const Threads limit(threads);
        map_->mapRaster(source, frame_, {0, 0, side, side}, wholeImageAllowed, nullptr, nullptr);
    }
    void scaleAndSpread(int threads) {
        const Threads limit(threads);
        cvSource_.convertTo(cvGrey_, CV_8U, slope, offset);
        cv::cvtColor(cvGrey_, cvFrame_, cv::COLOR_GRAY2BGRA);
    }
    void scaleAndSpreadInStrips(int threads) {
        const Threads limit(threads);
        cv::parallel_for_(cv::Range(0, side / stripRows), [&](const cv::Range& strips) {
            cv::Mat grey;
            for (int n = strips.start; n < strips.end; ++n) {
                const cv::Range rows(n * stripRows, (n + 1) * stripRows);
                cv::Mat target = cvFrame_.rowRange(rows);
                cvSource_.rowRange(rows).convertTo(grey, CV_8U, slope, offset);
                cv::cvtColor(grey, target, cv::COLOR_GRAY2BGRA);
            }
        });
    }
    void throughPalette(int threads) {
        scaleAndSpread(threads);
        const Threads limit(threads);
        cv::LUT(cvFrame_, cvTable_, cvFrame_);
    }
    void newTable(bool sigmoid) {
        IMap& map = sigmoid ? *sigmoidMap_ : *map_;
        map.setWindow(centre, width);
        map.getLut();
    }
    void useSigmoid() {
        sigmoidMap_.reset(map_->clone());
        sigmoidMap_->setColorMapIndex(&colours_);
        static_cast<IGreyMap&>(*sigmoidMap_).enableSigmoid();
    }

    CCsRaster& plain() { return plain_; }
    CCsRaster& shuttered() { return shuttered_; }

private:
    void fill() {
        auto* stored = reinterpret_cast<std::uint16_t*>(plain_.getOrigin());
        auto* copy = reinterpret_cast<std::uint16_t*>(shuttered_.getOrigin());
        cvSource_ = cv::Mat(side, side, CV_16U, stored);
        cvFrame_.create(side, side, CV_8UC4);
        std::uint32_t noise = 1;
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                noise = noise * 1664525U + 1013904223U;
                *copy++ = *stored++ = static_cast<std::uint16_t>(((x + y) / 4 + static_cast<int>(noise >> 25U)) & 4095);
            }
        }
    }

    CCsRaster plain_{side, side, CCS_GREY12, 1.0, false, false};
    CCsRaster shuttered_{side, side, CCS_GREY12, 1.0, false, false};
    CCsRaster frame_{side, side, CCS_RGB8, 1.0, false, false};
    CCsColorMan palette_;
    CCsColorMapT colours_;
    std::unique_ptr<IMap> map_;
    std::unique_ptr<IMap> sigmoidMap_;
    cv::Mat cvSource_;
    cv::Mat cvGrey_;
    cv::Mat cvFrame_;
    cv::Mat cvTable_;
};

std::shared_ptr<Scene> scene() {
    static const auto shared = std::make_shared<Scene>();
    return shared;
}

const zolbench::Registration registration([] {
    for (const int threads : {1, 2}) {
        const std::string suffix = threads == 1 ? ", 1 thread" : ", 2 threads";
        const std::string prefix = "map 4096x4096/" + std::to_string(threads) + "/";
        const double bar = threads == 1 ? 0.7 : 0.5;
        const zolbench::Side whole{prefix + "zolwebcs", [=] { scene()->mapRaster(scene()->plain(), true, threads); }};
        const zolbench::Side plain{prefix + "zolwebcs plain way",
                                   [=] { scene()->mapRaster(scene()->plain(), false, threads); }};
        const zolbench::Side shuttered{prefix + "zolwebcs circular shutter",
                                       [=] { scene()->mapRaster(scene()->shuttered(), true, threads); }};
        const zolbench::Side spread{prefix + "OpenCV scale, spread", [=] { scene()->scaleAndSpread(threads); }};
        const zolbench::Side strips{prefix + "OpenCV in strips", [=] { scene()->scaleAndSpreadInStrips(threads); }};
        const zolbench::Side palette{prefix + "OpenCV scale, spread, LUT", [=] { scene()->throughPalette(threads); }};
        zolbench::compare("map whole raster / OpenCV grey" + suffix, bar, whole, spread);
        zolbench::compare("map whole raster / OpenCV grey in strips" + suffix, bar, whole, strips);
        zolbench::compare("map whole raster / OpenCV any palette" + suffix, bar, whole, palette);
        zolbench::compare("map whole raster, plain way / OpenCV any palette" + suffix, 0.0, plain, palette);
        zolbench::compare("map behind a circular shutter / OpenCV any palette" + suffix, 0.0, shuttered, palette);
    }
    zolbench::compare("new sigmoid table / new linear table", 0.0,
                      {"table/sigmoid",
                       [] {
                           static const bool ready = (scene()->useSigmoid(), true);
                           if (ready) scene()->newTable(true);
                       }},
                      {"table/linear", [] { scene()->newTable(false); }});
});

}  // namespace
