// The host's image primitives with any arguments, in every variant: within their buffers, and all to the same bytes.
#include "fuzz_input.h"

#include "zolipp/rowoperations.h"
#include "zolipp/zolipp.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

/// Any address, any step; exactly as many bytes as the rows take, so that an access beyond them is seen.
class Image {
public:
    Image(zolfuzz::Bytes& in, int bytesOfPixel)
        : size_{in.ConsumeIntegralInRange(1, 90), in.ConsumeIntegralInRange(1, 40)},
          step_(size_.width * bytesOfPixel + in.ConsumeIntegralInRange(0, 5)),
          offset_(in.ConsumeIntegralInRange<std::size_t>(0, 3)),
          bytes_(offset_ + static_cast<std::size_t>(step_) * static_cast<std::size_t>(size_.height - 1) +
                 static_cast<std::size_t>(size_.width) * static_cast<std::size_t>(bytesOfPixel)) {
        const auto pattern = in.ConsumeBytes<unsigned char>(32);
        if (pattern.empty()) return;
        for (std::size_t i = 0; i < bytes_.size(); ++i) bytes_[i] = pattern[i % pattern.size()];
    }

    template <typename Sample>
    Sample* data() {
        return static_cast<Sample*>(static_cast<void*>(bytes_.data() + offset_));
    }
    [[nodiscard]] IppiSize size() const { return size_; }
    [[nodiscard]] int step() const { return step_; }

    friend bool operator==(const Image& a, const Image& b) { return a.bytes_ == b.bytes_; }

private:
    IppiSize size_;
    int step_;
    std::size_t offset_;
    std::vector<unsigned char> bytes_;
};

/// Mostly an argument that is true of an image, now and then any other one that keeps within it.
int spoilt(zolfuzz::Bytes& in, int value) {
    return in.ConsumeIntegralInRange(0, 30) == 0 ? in.ConsumeIntegralInRange(-3, value) : value;
}

IppiRect rect(zolfuzz::Bytes& in) {
    const int x = zolfuzz::coordinate(in);
    const int y = zolfuzz::coordinate(in);
    const int width = zolfuzz::coordinate(in);
    return {x, y, width, zolfuzz::coordinate(in)};
}

struct Arguments {
    IppiSize sourceSize;
    int sourceStep;
    IppiRect sourceRegion;
    IppiSize targetSize;
    int targetStep;
    IppiRect targetRegion;
    double numbers[6];
    int interpolation;
    IppiAxis axis;
};

template <typename Sample, typename Resize, typename Warp, typename Mirror, typename Transpose>
void call(int primitive, Image& source, Image& target, const Arguments& a, Resize resize, Warp warp, Mirror mirror,
          Transpose transpose) {
    const double coefficients[2][3] = {{a.numbers[0], a.numbers[1], a.numbers[2]},
                                       {a.numbers[3], a.numbers[4], a.numbers[5]}};
    switch (primitive) {
        case 0:
            resize(source.data<Sample>(), a.sourceSize, a.sourceStep, a.sourceRegion, target.data<Sample>(),
                   a.targetStep, a.targetSize, a.numbers[0], a.numbers[1], a.numbers[2], a.numbers[3], a.interpolation);
            break;
        case 1:
            warp(source.data<Sample>(), a.sourceSize, a.sourceStep, a.sourceRegion, target.data<Sample>(), a.targetStep,
                 a.targetRegion, coefficients, a.interpolation);
            break;
        case 2:
            mirror(target.data<Sample>(), a.targetStep, a.targetSize, a.axis);
            break;
        default: {
            const IppiSize size{std::min(a.sourceSize.width, a.targetSize.height),
                                std::min(a.sourceSize.height, a.targetSize.width)};
            transpose(source.data<Sample>(), a.sourceStep, target.data<Sample>(), a.targetStep, size);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolfuzz::Bytes in(data, size);
    const int format = in.ConsumeIntegralInRange(0, 2);
    const int primitive = in.ConsumeIntegralInRange(0, 3);
    const int bytesOfPixel = format == 0 ? 2 : 4;
    Image source(in, bytesOfPixel);
    const Image before(in, bytesOfPixel);
    Arguments a{};
    a.sourceSize = {spoilt(in, source.size().width), spoilt(in, source.size().height)};
    a.sourceStep = spoilt(in, source.step());
    a.sourceRegion = in.ConsumeBool() ? rect(in) : IppiRect{0, 0, source.size().width, source.size().height};
    a.targetSize = {spoilt(in, before.size().width), spoilt(in, before.size().height)};
    a.targetStep = spoilt(in, before.step());
    a.targetRegion = {zolfuzz::coordinate(in), zolfuzz::coordinate(in), before.size().width, before.size().height};
    // The destination's height is the caller's promise; its width is checked against the step, which may be longer.
    a.targetRegion.x = std::clamp(a.targetRegion.x, -100, 0);
    a.targetRegion.y = std::clamp(a.targetRegion.y, -100, 0);
    for (double& number : a.numbers) number = zolfuzz::number(in);
    const int choices[] = {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC, in.ConsumeIntegral<int>()};
    a.interpolation = choices[in.ConsumeIntegralInRange(0, 3)];
    a.axis = in.ConsumeIntegralInRange(-1, 3);

    const auto draw = [&](const std::string& variant) {
        zolipp::RowOperations::choose(variant);
        Image target = before;
        if (format == 0) {
            call<Ipp16u>(primitive, source, target, a, ZOLippiResizeCenter_16u_C1R, ZOLippiWarpAffine_16u_C1R,
                         ZOLippiMirror_16u_C1IR, ZOLippiTranspose_16u_C1R);
        } else if (format == 1) {
            call<Ipp8u>(primitive, source, target, a, ZOLippiResizeCenter_8u_C4R, ZOLippiWarpAffine_8u_C4R,
                        ZOLippiMirror_8u_C4IR, ZOLippiTranspose_8u_C4R);
        } else {
            call<Ipp8u>(primitive, source, target, a, ZOLippiResizeCenter_8u_AC4R, ZOLippiWarpAffine_8u_AC4R,
                        ZOLippiMirror_8u_AC4IR, ZOLippiTranspose_8u_C4R);
        }
        return target;
    };
    const Image plain = draw("plain");
    for (const std::string& variant : zolipp::RowOperations::variants()) {
        if (!(draw(variant) == plain)) std::abort();
    }
    return 0;
}
