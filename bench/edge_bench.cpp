// Unsharp masking with square boxes, beside OpenCV's box filter and weighted sum.
#include "compare.h"

#include "zolcs/ccsedgeenhancement.h"
#include "zolcs/ccsraster.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstdint>
#include <memory>
#include <string>

namespace {

constexpr int size = 2048;
constexpr int strength = 2;

/// The same picture for both sides: grey, or four bytes of colour.
class Scene {
public:
    explicit Scene(int type)
        : source_(size, size, type, 1.0, false, false), result_(size, size, type, 1.0, false, false) {
        const int cvType = type == CCS_RGB8 ? CV_8UC4 : CV_16U;
        cvSource_ = cv::Mat(size, size, cvType, source_.getOrigin());
        cvResult_.create(size, size, cvType);
        fill(type);
    }

    void ours(int box) {
        if (source_.getType() == CCS_RGB8) {
            CCsEdgeEnhancement().edgeEnhancementRGB8(source_, result_, box, strength);
        } else {
            const int highestBit = source_.getType() == CCS_GREY12 ? 11 : 15;
            CCsEdgeEnhancement().edgeEnhancementGrey12(source_, result_, box, strength, highestBit);
        }
    }

    void openCv(int box) {
        cv::blur(cvSource_, cvMean_, cv::Size(box, box));
        cv::addWeighted(cvSource_, strength + 1.0, cvMean_, -strength, 0.0, cvResult_);
    }

private:
    void fill(int type) {
        std::uint32_t noise = 1;
        const auto next = [&noise] { return (noise = noise * 1664525U + 1013904223U) >> 26U; };
        const std::uint32_t steepness = type == CCS_GREY16 ? 31 : 1;
        for (int y = 0; y < size; ++y) {
            auto* bytes = cvSource_.ptr<std::uint8_t>(y);
            auto* words = cvSource_.ptr<std::uint16_t>(y);
            for (int x = 0; x < size; ++x) {
                const auto wave = static_cast<std::uint32_t>(x + (y ^ x) % size / 2);
                if (type != CCS_RGB8) words[x] = static_cast<std::uint16_t>(wave * steepness + next());
                for (int c = 0; type == CCS_RGB8 && c < 3; ++c) {
                    bytes[4 * x + c] = static_cast<std::uint8_t>(wave / 16U + next() / 4U);
                }
            }
        }
    }

    CCsRaster source_;
    CCsRaster result_;
    cv::Mat cvSource_;
    cv::Mat cvMean_;
    cv::Mat cvResult_;
};

/// Made when first used: a run that selects other benchmarks does not pay for it.
template <int type>
Scene& scene() {
    static const std::unique_ptr<Scene> made = std::make_unique<Scene>(type);
    return *made;
}

template <int type>
void registerBoxes(const std::string& name, double bar, std::initializer_list<int> boxes) {
    for (const int box : boxes) {
        const std::string title = "unsharp " + name + " box " + std::to_string(box);
        zolbench::compare(title, bar, {title + "/zolwebcs", [box] { scene<type>().ours(box); }},
                          {title + "/OpenCV", [box] { scene<type>().openCv(box); }});
    }
}

const zolbench::Registration registration([] {
    registerBoxes<CCS_GREY12>("grey 12", 0.8, {1, 3, 8, 15, 41, 101, 255, 601});
    registerBoxes<CCS_GREY16>("grey 16", 0.8, {3, 15, 101, 255, 601});
    registerBoxes<CCS_RGB8>("RGB8", 0.0, {3, 15, 101});
});

}  // namespace
