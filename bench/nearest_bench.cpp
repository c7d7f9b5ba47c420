// Nearest neighbour, 12-bit grey through the window table to 32-bit display pixels, beside OpenCV.
#include "compare.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsnearest.h"
#include "zolcs/ccsraster.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int sourceSize = 2048;
constexpr int frameWidth = 1920;
constexpr int frameHeight = 1080;
constexpr unsigned char background = 0x20;
constexpr std::uint16_t outsideMark = 0xFFFF;  ///< a value that no 12-bit image holds

struct View {
    std::string name;
    double zoom;  ///< 1: the image fits the frame
    int angle;
    double bar;
};

enum class Rules { None, Shutters, All };

/// Everything that a host holds: source, map, frame; and the same data as OpenCV wants it.
class Scene {
public:
    explicit Scene(Rules rules)
        : source_(sourceSize, sourceSize, CCS_GREY12, 1.0, false, false),
          frame_(frameWidth, frameHeight, CCS_RGB8, 1.0, false, false),
          map_(MapFactory::CreateMap(MapFactory::Grey12)) {
        fillSource();
        for (std::uint32_t i = 0; i < 256; ++i) palette_[i] = i * 0x010101U;
        colours_.entries = palette_.data();
        auto* grey = dynamic_cast<IGreyMap*>(map_.get());
        grey->setColorMapIndex(&colours_);
        grey->setWindow(2048, 3000);
        groupColours_.fill(0x00FF00U);
        grey->setOverlayColors(planeColours_.data(), groupColours_.data());
        table_.resize(0x10000);
        const auto* lut = static_cast<const std::uint32_t*>(grey->getLut());
        std::copy_n(lut, 4096, table_.begin());
        table_[outsideMark] = background;

        cvSource_ = cv::Mat(sourceSize, sourceSize, CV_16U, source_.getOrigin());
        cvFrame_.create(frameHeight, frameWidth, CV_8UC4);
        if (rules != Rules::None) addShutters();
        if (rules == Rules::All) addPlaneAndPadding();
    }

    void ours(const View& view) {
        CCs2dTrafo trafo;
        trafo.scale(view.zoom);
        trafo.rotate(view.angle);
        CCsNearest().nearestGrey12IndexMap(source_, frame_, trafo, map_.get(),
                                           paddingBits_.empty() ? nullptr : paddingBits_.data(), background);
    }

    /// What a user of OpenCV would write; where there are rules, with masks that were made beforehand.
    void openCv(const View& view) {
        if (view.angle % 90 != 0) {
            const cv::Mat matrix = displayToImage(view);
            cv::warpAffine(cvSource_, scaled_, matrix, cvFrame_.size(), cv::INTER_NEAREST | cv::WARP_INVERSE_MAP,
                           cv::BORDER_CONSTANT, cv::Scalar(outsideMark));
            lookUp(scaled_, cvFrame_);
            for (const Mask& mask : masks_) {
                cv::warpAffine(mask.source, scaledMask_, matrix, cvFrame_.size(),
                               cv::INTER_NEAREST | cv::WARP_INVERSE_MAP, cv::BORDER_CONSTANT, cv::Scalar(0));
                cvFrame_.setTo(mask.colour, scaledMask_);
            }
            return;
        }
        // The part of the image that is seen, and the part of the frame that it fills.
        const double pixelsPerPixel = view.zoom * frameHeight / sourceSize;
        const bool turned = view.angle % 180 != 0;
        const int width = std::min(frameWidth, static_cast<int>(sourceSize * pixelsPerPixel));
        const int height = std::min(frameHeight, static_cast<int>(sourceSize * pixelsPerPixel));
        const cv::Rect target((frameWidth - width) / 2, (frameHeight - height) / 2, width, height);
        const cv::Size seen(static_cast<int>((turned ? height : width) / pixelsPerPixel),
                            static_cast<int>((turned ? width : height) / pixelsPerPixel));
        const cv::Rect part((sourceSize - seen.width) / 2, (sourceSize - seen.height) / 2, seen.width, seen.height);
        const cv::Size size(turned ? height : width, turned ? width : height);
        const auto fetch = [&](const cv::Mat& from, cv::Mat& scaled, cv::Mat& rotated) -> cv::Mat& {
            cv::resize(from(part), scaled, size, 0, 0, cv::INTER_NEAREST);
            if (!turned) return scaled;
            cv::rotate(scaled, rotated, cv::ROTATE_90_CLOCKWISE);
            return rotated;
        };
        const cv::Scalar border(background, 0, 0, 0);
        cvFrame_.colRange(0, target.x).setTo(border);
        cvFrame_.colRange(target.x + width, frameWidth).setTo(border);
        cv::Mat shown = cvFrame_(target);
        lookUp(fetch(cvSource_, scaled_, rotated_), shown);
        for (const Mask& mask : masks_) {
            shown.setTo(mask.colour, fetch(mask.source, scaledMask_, rotatedMask_));
        }
    }

private:
    struct Mask {
        cv::Mat source;
        cv::Scalar colour;
    };

    void fillSource() {
        auto* pixels = reinterpret_cast<std::uint16_t*>(source_.getOrigin());
        std::uint32_t noise = 1;
        for (int y = 0; y < sourceSize; ++y) {
            for (int x = 0; x < sourceSize; ++x) {
                noise = noise * 1664525U + 1013904223U;
                const double wave = 1900.0 + 1500.0 * std::sin(x * 0.011) * std::cos(y * 0.007);
                pixels[y * source_.getPitch() + x] =
                    static_cast<std::uint16_t>(std::clamp(wave + (noise >> 26U), 0.0, 4095.0));
            }
        }
    }

    void addShutters() {
        const cv::Rect rectangle(100, 150, 1800, 1750);
        const cv::Rect circle(60, 80, 1900, 1900);
        source_.setRectShutter(
            {rectangle.x, rectangle.y, rectangle.x + rectangle.width, rectangle.y + rectangle.height});
        source_.setCircShutter({circle.x, circle.y, circle.x + circle.width, circle.y + circle.height});
        source_.setPresentationShutterValue(0x4000);
        cv::Mat hidden(sourceSize, sourceSize, CV_8U, cv::Scalar(255));
        cv::Mat inside(sourceSize, sourceSize, CV_8U, cv::Scalar(0));
        cv::circle(inside, {circle.x + circle.width / 2, circle.y + circle.height / 2}, circle.width / 2, 255, -1);
        hidden(rectangle).setTo(0);
        hidden.setTo(255, inside == 0);
        masks_ = {{hidden, cv::Scalar(0x40, 0x40, 0x40, 0)}};
    }

    /// A plane with a dozen lines across the image and a dozen lines of text, and padding along one side.
    void addPlaneAndPadding() {
        cv::Mat drawn(sourceSize, sourceSize, CV_8U, cv::Scalar(0));
        for (int i = 0; i < 12; ++i) {
            cv::line(drawn, {150 + i * 140, 300}, {300 + i * 120, 1700}, 255, 3);
            cv::putText(drawn, "R 12.5 cm", {400, 300 + 100 * i}, cv::FONT_HERSHEY_SIMPLEX, 1.5, 255, 2);
        }
        cv::Mat padded(sourceSize, sourceSize, CV_8U, cv::Scalar(0));
        padded.colRange(1700, sourceSize).setTo(255);

        planeBits_ = bitsOf(drawn);
        CCs60XXOverlay plane;
        plane.originX = 1;
        plane.originY = 1;
        plane.rows = sourceSize;
        plane.columns = sourceSize;
        plane.data = planeBits_.data();
        source_.add60XXOverlayInfo(plane);
        paddingBits_ = bitsOf(padded);
        masks_.insert(masks_.begin(), {padded, cv::Scalar(background, 0, 0, 0)});
        masks_.push_back({drawn, cv::Scalar(0, 0xFF, 0, 0)});
    }

    static std::vector<unsigned char> bitsOf(const cv::Mat& mask) {
        std::vector<unsigned char> bits(mask.total() / 8);
        for (std::size_t i = 0; i < mask.total(); ++i) {
            if (mask.data[i] != 0) bits[i / 8] = static_cast<unsigned char>(bits[i / 8] | 1 << i % 8);
        }
        return bits;
    }

    static cv::Mat displayToImage(const View& view) {
        const double scale = sourceSize / (view.zoom * frameHeight);
        const double angle = view.angle * CV_PI / 180.0;
        const double c = std::cos(angle) * scale;
        const double s = std::sin(angle) * scale;
        const double centre = sourceSize / 2.0;
        return (cv::Mat_<double>(2, 3) << c, s, centre - c * frameWidth / 2 - s * frameHeight / 2, -s, c,
                centre + s * frameWidth / 2 - c * frameHeight / 2);
    }

    void lookUp(const cv::Mat& values, cv::Mat& out) const {
        const std::uint32_t* table = table_.data();
        for (int y = 0; y < values.rows; ++y) {
            const auto* from = values.ptr<std::uint16_t>(y);
            auto* to = out.ptr<std::uint32_t>(y);
            for (int x = 0; x < values.cols; ++x) to[x] = table[from[x]];
        }
    }

    CCsRaster source_;
    CCsRaster frame_;
    std::unique_ptr<IMap> map_;
    std::array<std::uint32_t, 256> palette_{};
    std::array<unsigned int, 16> planeColours_{};
    std::array<unsigned int, 16> groupColours_{};
    CCsColorMapT colours_;
    std::vector<std::uint32_t> table_;
    std::vector<unsigned char> planeBits_;
    std::vector<unsigned char> paddingBits_;
    std::vector<Mask> masks_;
    cv::Mat cvSource_;
    cv::Mat cvFrame_;
    cv::Mat scaled_;
    cv::Mat rotated_;
    cv::Mat scaledMask_;
    cv::Mat rotatedMask_;
};

/// Made when first used: a run that selects other benchmarks does not pay for it.
Scene& scene(Rules rules) {
    static std::array<std::unique_ptr<Scene>, 3> scenes;
    auto& wanted = scenes.at(static_cast<std::size_t>(rules));
    if (!wanted) wanted = std::make_unique<Scene>(rules);
    return *wanted;
}

const zolbench::Registration registration([] {
    for (const View& view : {View{"fit", 1.0, 0, 0.5}, View{"zoom 3", 3.0, 0, 0.5}, View{"fit 90", 1.0, 90, 0.6},
                             View{"zoom 1.7 at 30", 1.7, 30, 0.5}}) {
        const std::string plain = "nearest grey " + view.name;
        const std::string shutters = plain + ", shutters";
        const std::string all = plain + ", shutters, plane, padding";
        const auto ours = [&](const std::string& name, Rules rules) {
            return zolbench::Side{name + "/zolwebcs", [=] { scene(rules).ours(view); }};
        };
        const auto openCv = [&](const std::string& name, Rules rules) {
            return zolbench::Side{name + "/OpenCV", [=] { scene(rules).openCv(view); }};
        };
        zolbench::compare(plain, view.bar, ours(plain, Rules::None), openCv(plain, Rules::None));
        zolbench::compare(shutters, view.bar, ours(shutters, Rules::Shutters), openCv(shutters, Rules::Shutters));
        zolbench::compare(all, view.bar, ours(all, Rules::All), openCv(all, Rules::All));
        zolbench::compare(shutters + " : plain", 1.5, ours(shutters, Rules::Shutters), ours(plain, Rules::None));
        zolbench::compare(all + " : plain", 1.5, ours(all, Rules::All), ours(plain, Rules::None));
    }
});

}  // namespace
