// Views as a user of OpenCV would make them: resize (with rotate for quarter turns) or warpAffine.
#pragma once

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace zolbench {

/// A square source in the middle of a frame that is wider than high.
struct ViewShape {
    int sourceSize;
    int frameWidth;
    int frameHeight;
    double zoom;  ///< 1: the source fits the frame
    int angle;    ///< degrees

    [[nodiscard]] bool isOblique() const { return angle % 90 != 0; }
    [[nodiscard]] bool isTurned() const { return angle % 180 != 0; }
    [[nodiscard]] double pixelsPerPixel() const { return zoom * frameHeight / sourceSize; }

    /// The part of the frame that the source fills.
    [[nodiscard]] cv::Rect target() const {
        const int width = std::min(frameWidth, static_cast<int>(sourceSize * pixelsPerPixel()));
        const int height = std::min(frameHeight, static_cast<int>(sourceSize * pixelsPerPixel()));
        return {(frameWidth - width) / 2, (frameHeight - height) / 2, width, height};
    }

    /// The part of the source that is seen.
    [[nodiscard]] cv::Rect seen() const {
        const cv::Rect shown = target();
        const int width = static_cast<int>((isTurned() ? shown.height : shown.width) / pixelsPerPixel());
        const int height = static_cast<int>((isTurned() ? shown.width : shown.height) / pixelsPerPixel());
        return {(sourceSize - width) / 2, (sourceSize - height) / 2, width, height};
    }

    [[nodiscard]] cv::Mat displayToImage() const {
        const double radians = angle * CV_PI / 180.0;
        const double c = std::cos(radians) / pixelsPerPixel();
        const double s = std::sin(radians) / pixelsPerPixel();
        const double centre = sourceSize / 2.0;
        return (cv::Mat_<double>(2, 3) << c, s, centre - c * frameWidth / 2 - s * frameHeight / 2, -s, c,
                centre + s * frameWidth / 2 - c * frameHeight / 2);
    }
};

/// Keeps OpenCV's intermediate images, so that no call allocates.
class OpenCvView {
public:
    /// What fills `shape.target()` at 0 and 90 degrees. Pixels keep their type.
    const cv::Mat& upright(const ViewShape& shape, const cv::Mat& source, int interpolation) {
        const cv::Size target = shape.target().size();
        const cv::Size size = shape.isTurned() ? cv::Size(target.height, target.width) : target;
        cv::resize(source(shape.seen()), scaled_, size, 0, 0, interpolation);
        if (!shape.isTurned()) return scaled_;
        cv::rotate(scaled_, rotated_, cv::ROTATE_90_CLOCKWISE);
        return rotated_;
    }

    /// What fills the whole frame at any angle, `border` beside the source.
    static void oblique(const ViewShape& shape, const cv::Mat& source, int interpolation, const cv::Scalar& border,
                        cv::Mat& frame) {
        cv::warpAffine(source, frame, shape.displayToImage(), cv::Size(shape.frameWidth, shape.frameHeight),
                       interpolation | cv::WARP_INVERSE_MAP, cv::BORDER_CONSTANT, border);
    }

    const cv::Mat& oblique(const ViewShape& shape, const cv::Mat& source, int interpolation, const cv::Scalar& border) {
        oblique(shape, source, interpolation, border, scaled_);
        return scaled_;
    }

private:
    cv::Mat scaled_;
    cv::Mat rotated_;
};

}  // namespace zolbench
