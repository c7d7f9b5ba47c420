// Nearest neighbour, 12-bit grey through the window table to 32-bit display pixels, without and with shutters, a plane
// and padding, beside OpenCV.
#include "view_scenes.h"

#include "zolcs/ccsnearest.h"

#include <opencv2/imgproc.hpp>

namespace {

using zolbench::background;
using zolbench::sourceSize;
using zolbench::View;

/// The grey scene, with more and more to look at.
class PlainScene : public zolbench::GreyScene {
public:
    PlainScene() {
        groupColours_.fill(0x00FF00U);
        greyMap().setOverlayColors(planeColours_.data(), groupColours_.data());
    }

    void ours(const View& view) {
        CCs2dTrafo trafo = view.trafo();
        CCsNearest().nearestGrey12IndexMap(source, frame, trafo, map.get(),
                                           paddingBits_.empty() ? nullptr : paddingBits_.data(), background);
    }

    /// What a user of OpenCV would write; where there are rules, with masks that were made beforehand.
    void openCv(const View& view) {
        GreyScene::openCv(view, cv::INTER_NEAREST);
        for (const Mask& mask : masks_) {
            if (view.isOblique()) {
                cvFrame.setTo(mask.colour, maskView_.oblique(view, mask.source, cv::INTER_NEAREST, cv::Scalar(0)));
            } else {
                cvFrame(view.target()).setTo(mask.colour, maskView_.upright(view, mask.source, cv::INTER_NEAREST));
            }
        }
    }

protected:
    struct Mask {
        cv::Mat source;
        cv::Scalar colour;
    };

    std::vector<Mask> masks_;
    std::vector<unsigned char> planeBits_;
    std::vector<unsigned char> paddingBits_;

private:
    std::array<unsigned int, 16> planeColours_{};
    std::array<unsigned int, 16> groupColours_{};
    zolbench::OpenCvView maskView_;
};

class ShutteredScene : public PlainScene {
public:
    ShutteredScene() {
        const cv::Rect rectangle(100, 150, 1800, 1750);
        const cv::Rect circle(60, 80, 1900, 1900);
        source.setRectShutter(
            {rectangle.x, rectangle.y, rectangle.x + rectangle.width, rectangle.y + rectangle.height});
        source.setCircShutter({circle.x, circle.y, circle.x + circle.width, circle.y + circle.height});
        source.setPresentationShutterValue(0x4000);
        cv::Mat hidden(sourceSize, sourceSize, CV_8U, cv::Scalar(255));
        cv::Mat inside(sourceSize, sourceSize, CV_8U, cv::Scalar(0));
        cv::circle(inside, {circle.x + circle.width / 2, circle.y + circle.height / 2}, circle.width / 2, 255, -1);
        hidden(rectangle).setTo(0);
        hidden.setTo(255, inside == 0);
        masks_ = {{hidden, cv::Scalar(0x40, 0x40, 0x40, 0)}};
    }
};

/// A plane with a dozen lines across the image and a dozen lines of text, and padding along one side.
class FullScene : public ShutteredScene {
public:
    FullScene() {
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
        source.add60XXOverlayInfo(plane);
        paddingBits_ = bitsOf(padded);
        masks_.insert(masks_.begin(), {padded, border()});
        masks_.push_back({drawn, cv::Scalar(0, 0xFF, 0, 0)});
    }

private:
    static std::vector<unsigned char> bitsOf(const cv::Mat& mask) {
        std::vector<unsigned char> bits(mask.total() / 8);
        for (std::size_t i = 0; i < bits.size() * 8; ++i) {
            if (mask.data[i] != 0) bits[i / 8] = static_cast<unsigned char>(bits[i / 8] | 1 << i % 8);
        }
        return bits;
    }
};

template <typename Wanted>
zolbench::Side ours(const std::string& name, const View& view) {
    return {name + "/zolwebcs", [=] { zolbench::scene<Wanted>().ours(view); }};
}

template <typename Wanted>
void besideOpenCv(const std::string& name, double bar, const View& view) {
    zolbench::compare(name, bar, ours<Wanted>(name, view),
                      {name + "/OpenCV", [=] { zolbench::scene<Wanted>().openCv(view); }});
}

const zolbench::Registration registration([] {
    for (const View& view : zolbench::views()) {
        const double bar = view.angle == 90 ? 0.6 : 0.5;
        const std::string plain = "nearest grey " + view.name;
        const std::string shutters = plain + ", shutters";
        const std::string all = plain + ", shutters, plane, padding";
        besideOpenCv<PlainScene>(plain, bar, view);
        besideOpenCv<ShutteredScene>(shutters, bar, view);
        besideOpenCv<FullScene>(all, bar, view);
        zolbench::compare(shutters + " : plain", 1.5, ours<ShutteredScene>(shutters, view),
                          ours<PlainScene>(plain, view));
        zolbench::compare(all + " : plain", 1.5, ours<FullScene>(all, view), ours<PlainScene>(plain, view));
    }
});

}  // namespace
