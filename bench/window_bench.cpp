// Dragging the window of a mammogram: a new table, the view resampled into the frame, the frame painted. What counts is
// pictures per second, 1000 / the milliseconds shown. OpenCV scales the stored values, then levels, then spreads.
#include "compare.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsbilinear.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsnearest.h"
#include "zolcs/ccsraster.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

constexpr int sourceWidth = 2394;
constexpr int sourceHeight = 3062;
constexpr int frameWidth = 1920;
constexpr int frameHeight = 1080;

/// What the frame is painted on.
class Screen {
public:
    Screen() {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
        info.bmiHeader.biWidth = frameWidth;
        info.bmiHeader.biHeight = -frameHeight;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        void* bits = nullptr;
        bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        dc_ = CreateCompatibleDC(nullptr);
        previous_ = SelectObject(dc_, bitmap_);
    }
    ~Screen() {
        SelectObject(dc_, previous_);
        DeleteDC(dc_);
        DeleteObject(bitmap_);
    }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    [[nodiscard]] HDC dc() const { return dc_; }

private:
    HBITMAP bitmap_ = nullptr;
    HDC dc_ = nullptr;
    HGDIOBJ previous_ = nullptr;
};

class Mammogram {
public:
    explicit Mammogram(bool deep)
        : deep_(deep),
          map_(MapFactory::CreateMap(deep ? MapFactory::Grey16 : MapFactory::Grey12)),
          source_(sourceWidth, sourceHeight, deep ? CCS_GREY16 : CCS_GREY12, 1.0, false, false) {
        palette_.getColorMap(colours_);
        map_->setColorMapIndex(&colours_);
        const double scale = deep ? 16.0 : 1.0;
        auto* stored = reinterpret_cast<std::uint16_t*>(source_.getOrigin());
        std::uint32_t noise = 1;
        for (int y = 0; y < sourceHeight; ++y) {
            for (int x = 0; x < sourceWidth; ++x) {
                noise = noise * 1664525U + 1013904223U;
                const double tissue = 2200.0 * std::exp(-x / 900.0) + 600.0 * std::sin(x * 0.01) * std::cos(y * 0.013);
                stored[y * source_.getPitch() + x] =
                    static_cast<std::uint16_t>(std::clamp(tissue + (noise >> 26U), 0.0, 4095.0) * scale);
            }
        }
        cvSource_ =
            cv::Mat(sourceHeight, sourceWidth, CV_16U, stored, static_cast<std::size_t>(source_.getPitch()) * 2);
        cvScreen_.create(frameHeight, frameWidth, CV_8UC4);
        if (frame_.init() != CCS_DONE) throw std::runtime_error("no frame");
    }

    void ours(bool smooth, double zoom) {
        nextWindow();
        map_->setWindow(static_cast<unsigned>(centre_), width_);
        CCs2dTrafo trafo;
        trafo.scale(zoom);
        if (smooth) {
            CCsBilinear().bilinearGrey12IndexMap(source_, frame_, trafo, map_.get(), false, nullptr, 0);
        } else {
            CCsNearest().nearestGrey12IndexMap(source_, frame_, trafo, map_.get(), nullptr, 0);
        }
        if (frame_.paint(screen_.dc(), nullptr, &trafo, 0, -1, -1, -1, -1, nullptr, 0, nullptr, nullptr) != CCS_DONE) {
            throw std::runtime_error("the frame cannot be painted");
        }
    }

    void openCv(bool smooth, double zoom) {
        nextWindow();
        const double pixelsPerPixel = zoom * frameHeight / sourceHeight;
        const cv::Size shown(std::min(frameWidth, static_cast<int>(sourceWidth * pixelsPerPixel)),
                             std::min(frameHeight, static_cast<int>(sourceHeight * pixelsPerPixel)));
        const cv::Size seen(static_cast<int>(shown.width / pixelsPerPixel),
                            static_cast<int>(shown.height / pixelsPerPixel));
        const cv::Rect part((sourceWidth - seen.width) / 2, (sourceHeight - seen.height) / 2, seen.width, seen.height);
        const cv::Rect target((frameWidth - shown.width) / 2, 0, shown.width, shown.height);
        cv::resize(cvSource_(part), cvScaled_, shown, 0, 0, smooth ? cv::INTER_LINEAR : cv::INTER_NEAREST);
        const double slope = 256.0 / width_;
        cvScaled_.convertTo(cvLevels_, CV_8U, slope, -slope * (centre_ - width_ / 2));
        cvFrame_.create(frameHeight, frameWidth, CV_8UC4);
        cvFrame_.colRange(0, target.x).setTo(0);
        cvFrame_.colRange(target.x + shown.width, frameWidth).setTo(0);
        cv::Mat inside = cvFrame_(target);
        cv::cvtColor(cvLevels_, inside, cv::COLOR_GRAY2BGRA);
        cvFrame_.copyTo(cvScreen_);
    }

private:
    void nextWindow() {
        step_ = (step_ + 1) % 500;
        const int scale = deep_ ? 16 : 1;
        centre_ = (800 + step_) * scale;
        width_ = (1500 + 2 * step_) * scale;
    }

    bool deep_;
    int step_ = 0;
    int centre_ = 0;
    int width_ = 1;
    CCsColorMan palette_;
    CCsColorMapT colours_;
    std::unique_ptr<IMap> map_;
    CCsRaster source_;
    CCsFrame frame_{frameWidth, frameHeight};
    Screen screen_;
    cv::Mat cvSource_;
    cv::Mat cvScaled_;
    cv::Mat cvLevels_;
    cv::Mat cvFrame_;
    cv::Mat cvScreen_;
};

/// Made when first used.
Mammogram& mammogram(bool deep) {
    static std::unique_ptr<Mammogram> images[2];
    auto& image = images[deep ? 1 : 0];
    if (!image) image = std::make_unique<Mammogram>(deep);
    return *image;
}

const zolbench::Registration registration([] {
    for (const bool deep : {false, true}) {
        for (const bool smooth : {false, true}) {
            for (const double zoom : {1.0, 3.0}) {
                const std::string title = std::string("drag window, mammogram ") + (deep ? "16-bit" : "12-bit") + ", " +
                                          (smooth ? "bilinear" : "nearest") + (zoom > 1.0 ? ", zoom 3" : ", fit");
                zolbench::compare(title, 0.0, {title + "/zolwebcs", [=] { mammogram(deep).ours(smooth, zoom); }},
                                  {title + "/OpenCV", [=] { mammogram(deep).openCv(smooth, zoom); }});
            }
        }
    }
});

}  // namespace
