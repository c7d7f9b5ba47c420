// Reducing by averaging, beside OpenCV's resize by area. At oblique angles OpenCV has nothing of the kind: its nearest
// is resizing by area and turning the result.
#include "compare.h"

#include "viewing/averaging/area_average.h"
#include "viewing/averaging/reduction.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <numbers>
#include <string>
#include <utility>

namespace {

using namespace viewing::averaging;

/// A square picture, and the place where both sides put what they make of it.
template <typename Sample, std::size_t Channels>
class Scene {
public:
    Scene(int size, int reduced, double degrees)
        : size_(reduced),
          degrees_(degrees),
          source_(size, size, CV_MAKETYPE(cv::DataType<Sample>::depth, Channels)),
          ours_(reduced, reduced, source_.type()),
          reduction_(reductionOf(viewOf(size), {size, size}, {reduced, reduced})) {
        cv::randu(source_, 0, sizeof(Sample) == 1 ? 256 : 4096);
    }

    void ours() {
        const Grid<Sample, Channels> grid{source_.ptr<Sample>(0), static_cast<std::ptrdiff_t>(source_.step1()),
                                          source_.cols, source_.rows};
        average(grid, {}, reduction_.coverage, ours_.ptr<Sample>(0));
    }

    void openCv() {
        cv::resize(source_, reduced_, cv::Size(size_, size_), 0.0, 0.0, cv::INTER_AREA);
        if (degrees_ == 0.0) return;
        const float middle = static_cast<float>(size_) / 2.0F;
        cv::warpAffine(reduced_, turned_, cv::getRotationMatrix2D({middle, middle}, -degrees_, 1.0),
                       cv::Size(size_, size_), cv::INTER_CUBIC);
    }

private:
    [[nodiscard]] Matrix viewOf(int size) const {
        const double angle = degrees_ * std::numbers::pi / 180.0;
        const double scale = static_cast<double>(size_) / size;
        const double k = scale * std::cos(angle);
        const double s = scale * std::sin(angle);
        const double middle = size_ / 2.0;
        return {k, s, -s, k, middle - (k - s) * size / 2.0, middle - (s + k) * size / 2.0};
    }

    int size_;
    double degrees_;
    cv::Mat source_;
    cv::Mat ours_;
    cv::Mat reduced_;
    cv::Mat turned_;
    Reduction reduction_;
};

template <typename Sample, std::size_t Channels>
void registerScene(const std::string& name, int size, int reduced, double degrees, double bar) {
    // Made when first used: a run that selects other benchmarks does not pay for it.
    const auto made = std::make_shared<std::unique_ptr<Scene<Sample, Channels>>>();
    const auto scene = [made, size, reduced, degrees]() -> Scene<Sample, Channels>& {
        if (*made == nullptr) *made = std::make_unique<Scene<Sample, Channels>>(size, reduced, degrees);
        return **made;
    };
    const std::string title = "average " + name + " " + std::to_string(size) + " to " + std::to_string(reduced) +
                              (degrees == 0.0 ? "" : " at " + std::to_string(std::lround(degrees)) + " degrees");
    zolbench::compare(title, bar, {title + "/zolwebcs", [scene] { scene().ours(); }},
                      {title + "/OpenCV", [scene] { scene().openCv(); }});
}

const zolbench::Registration registration([] {
    for (const auto& [size, reduced] : {std::pair(3000, 512), std::pair(3000, 1024), std::pair(3000, 2048),
                                        std::pair(2048, 1024), std::pair(3072, 1024), std::pair(2048, 1920)}) {
        registerScene<std::uint16_t, 1>("grey", size, reduced, 0.0, 1.0);
        registerScene<std::uint8_t, 4>("RGB8", size, reduced, 0.0, 1.0);
    }
    registerScene<std::uint16_t, 4>("RGB12", 3000, 1024, 0.0, 1.0);
    for (const auto& [size, reduced] : {std::pair(3000, 512), std::pair(3000, 2048)}) {
        registerScene<std::uint16_t, 1>("grey", size, reduced, 30.0, 0.0);
        registerScene<std::uint8_t, 4>("RGB8", size, reduced, 30.0, 0.0);
    }
});

}  // namespace
