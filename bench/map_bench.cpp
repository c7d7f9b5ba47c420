// Mapping whole rasters of every kind to 32-bit display pixels, beside OpenCV, grey on one thread and on two.
//
// OpenCV has no look-up for 16-bit samples. Its quickest way to a grey picture scales to 8 bits and spreads those over
// the channels; for any other palette a look-up of the four channels follows. Both are measured, the first in strips
// that stay in the cache too. What the memory allows is shown by moving as many bytes without mapping them.
#include "compare.h"

#include "zolcs/ccscolorman.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"

#include <emmintrin.h>
#include <omp.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <utility>

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

int imageTypeOf(MapFactory::MapType type) {
    constexpr std::array<int, 4> types = {CCS_GREY12, CCS_GREY16, CCS_RGB12, CCS_RGB8};
    return types.at(static_cast<std::size_t>(type));
}

/// A map of a kind, a raster for it, and the same data as OpenCV wants it.
class Scene {
public:
    explicit Scene(MapFactory::MapType type)
        : map_(MapFactory::CreateMap(type)),
          plain_(side, side, imageTypeOf(type), 1.0, false, false),
          shuttered_(side, side, imageTypeOf(type), 1.0, false, false) {
        palette_.getColorMap(colours_);
        map_->setColorMapIndex(&colours_);
        map_->setWindow(centre, width);
        constexpr std::array<int, 4> cvTypes = {CV_16U, CV_16U, CV_16UC4, CV_8UC4};
        cvSource_ = cv::Mat(side, side, cvTypes.at(static_cast<std::size_t>(type)), plain_.getOrigin());
        cvFrame_.create(side, side, CV_8UC4);
        fill();
        shuttered_.setCircShutter({0, 0, side, side});
        cvTable_.create(1, 256, CV_8UC4);
        for (int i = 0; i < 256; ++i) {
            const auto level = static_cast<unsigned char>(255 - i);
            cvTable_.at<cv::Vec4b>(i) = {level, level, level, 0};
        }
    }

    /// Any colours: nothing that can be computed.
    void usePseudocolour() {
        std::array<RGBQUAD, 256> quads{};
        for (std::size_t i = 0; i < quads.size(); ++i) {
            const auto level = static_cast<BYTE>(i);
            quads[i] = {level, static_cast<BYTE>(255 - level), static_cast<BYTE>(level / 2), 0};
        }
        palette_.convertToColor(quads.data());
        map_->setColorMapIndex(&colours_);
    }

    void mapRaster(bool shuttered, bool wholeImageAllowed, int threads) {
        const Threads limit(threads);
        map_->mapRaster(shuttered ? shuttered_ : plain_, frame_, {0, 0, side, side}, wholeImageAllowed, nullptr,
                        nullptr);
    }
    void mapSeparate() { dynamic_cast<IColorMap&>(*map_).mapRasterSeparate(plain_, frame_); }

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

    /// What every mapping has to do at least: read each value and write each pixel, here past the cache.
    void onlyMove(int threads) {
        const Threads limit(threads);
        const auto* from = cvSource_.ptr<std::uint16_t>();
        auto* to = cvFrame_.ptr<std::uint32_t>();
#pragma omp parallel for
        for (int n = 0; n < side / stripRows; ++n) {
            constexpr std::ptrdiff_t pixels = std::ptrdiff_t{side} * stripRows;
            move(from + n * pixels, to + n * pixels, pixels);
        }
    }

    void scaleChannels() { cvSource_.convertTo(cvFrame_, CV_8U, slope, offset); }
    void lookUpChannels() { cv::LUT(cvSource_, cvTable_, cvFrame_); }

private:
    static void move(const std::uint16_t* from, std::uint32_t* to, std::ptrdiff_t count) {
        for (std::ptrdiff_t i = 0; i < count; i += 8) {
            const __m128i values = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i));
            const __m128i zero = _mm_setzero_si128();
            _mm_prefetch(reinterpret_cast<const char*>(from + i) + 4096, _MM_HINT_T0);
            _mm_stream_si128(reinterpret_cast<__m128i*>(to + i), _mm_unpacklo_epi16(values, zero));
            _mm_stream_si128(reinterpret_cast<__m128i*>(to + i + 4), _mm_unpackhi_epi16(values, zero));
        }
        _mm_sfence();
    }

    void fill() {
        const std::size_t bytes = cvSource_.total() * cvSource_.elemSize();
        unsigned char* stored = plain_.getOrigin();
        std::uint32_t noise = 1;
        const auto next = [&](std::size_t position) {
            noise = noise * 1664525U + 1013904223U;
            return (static_cast<std::uint32_t>(position / 8) + (noise >> 25U)) & 4095U;
        };
        if (cvSource_.depth() == CV_8U) {
            for (std::size_t i = 0; i < bytes; ++i) stored[i] = static_cast<unsigned char>(next(i));
        } else {
            auto* words = reinterpret_cast<std::uint16_t*>(stored);
            for (std::size_t i = 0; i < bytes / 2; ++i) words[i] = static_cast<std::uint16_t>(next(i));
        }
        std::memcpy(shuttered_.getOrigin(), stored, bytes);
    }

    CCsColorMan palette_;
    CCsColorMapT colours_;
    std::unique_ptr<IMap> map_;
    CCsRaster plain_;
    CCsRaster shuttered_;
    CCsRaster frame_{side, side, CCS_RGB8, 1.0, false, false};
    cv::Mat cvSource_;
    cv::Mat cvGrey_;
    cv::Mat cvFrame_;
    cv::Mat cvTable_;
};

enum class Palette { Grey, Colours };

/// Made when first used; one at a time, so that a whole run does not hold them all.
Scene& scene(MapFactory::MapType type, Palette palette = Palette::Grey) {
    static std::optional<std::pair<MapFactory::MapType, Palette>> key;
    static std::unique_ptr<Scene> current;
    if (key != std::pair(type, palette)) {
        current.reset();
        current = std::make_unique<Scene>(type);
        if (palette == Palette::Colours) current->usePseudocolour();
        key = {type, palette};
    }
    return *current;
}

void registerGrey(MapFactory::MapType type, const std::string& name, int threads) {
    const std::string prefix = name + ": ";
    const std::string suffix = threads == 1 ? ", 1 thread" : ", 2 threads";
    const zolbench::Clock clock = threads == 1 ? zolbench::Clock::Processor : zolbench::Clock::Wall;
    const double bar = threads == 1 ? 0.7 : 0.5;
    const auto ours = [=](bool shuttered, bool whole, Palette palette) {
        return zolbench::Side{"zolwebcs", [=] { scene(type, palette).mapRaster(shuttered, whole, threads); }};
    };
    const auto spread = [=](Palette palette) {
        return zolbench::Side{"OpenCV", [=] { scene(type, palette).scaleAndSpread(threads); }};
    };
    const zolbench::Side strips{"OpenCV", [=] { scene(type).scaleAndSpreadInStrips(threads); }};
    const zolbench::Side lookUp{"OpenCV", [=] { scene(type, Palette::Colours).throughPalette(threads); }};
    const auto compare = [&](const char* what, double limit, const zolbench::Side& one, const zolbench::Side& other) {
        zolbench::compare(prefix + what + suffix, limit, one, other, clock);
    };
    compare("map / OpenCV grey", bar, ours(false, true, Palette::Grey), spread(Palette::Grey));
    // On two threads there is no bar: the memory can be as slow as one thread, which the last comparison shows.
    compare("map / OpenCV grey in strips", threads == 1 ? bar : 0.0, ours(false, true, Palette::Grey), strips);
    compare("map in colours / OpenCV grey", 0.0, ours(false, true, Palette::Colours), spread(Palette::Colours));
    compare("map in colours / OpenCV in colours", bar, ours(false, true, Palette::Colours), lookUp);
    compare("map, plain way / OpenCV grey", 0.0, ours(false, false, Palette::Grey), spread(Palette::Grey));
    compare("map behind a circle / OpenCV grey", 0.0, ours(true, true, Palette::Grey), spread(Palette::Grey));
    compare("map / moving without mapping", 0.0, ours(false, true, Palette::Grey),
            {"moving", [=] { scene(type).onlyMove(threads); }});
}

const zolbench::Registration registration([] {
    for (const int threads : {1, 2}) {
        registerGrey(MapFactory::Grey12, "grey 12 4096x4096", threads);
        registerGrey(MapFactory::Grey16, "grey 16 4096x4096", threads);
    }
    zolbench::compare("rgb 12 4096x4096: map / OpenCV scale", 0.0,
                      {"zolwebcs", [] { scene(MapFactory::Rgb12).mapRaster(false, true, 1); }},
                      {"OpenCV", [] { scene(MapFactory::Rgb12).scaleChannels(); }});
    zolbench::compare("rgb 8 4096x4096: map / OpenCV LUT", 0.0,
                      {"zolwebcs", [] { scene(MapFactory::Rgb8).mapRaster(false, true, 1); }},
                      {"OpenCV", [] { scene(MapFactory::Rgb8).lookUpChannels(); }});
    zolbench::compare("rgb 8 4096x4096: map separate channels / OpenCV LUT", 0.0,
                      {"zolwebcs", [] { scene(MapFactory::Rgb8).mapSeparate(); }},
                      {"OpenCV", [] { scene(MapFactory::Rgb8).lookUpChannels(); }});
});

}  // namespace
