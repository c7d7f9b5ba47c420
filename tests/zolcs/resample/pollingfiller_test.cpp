// Stopping in the midst of a picture: the flag is raised by the conversion of one of the pixels, so that nothing
// depends on how fast anything is.
#include "zolcs/resample/pollingfiller.h"

#include "support/same_as_plain.h"
#include "zolcs/resample/fillers.h"

namespace {

using zolcs::Polling;
using zoltest::RaisingTable;

constexpr int sourceSize = 60;
constexpr int width = 41;
constexpr int height = 37;
constexpr std::uint32_t shown = 501;  // what the table makes of the flat source
constexpr std::uint32_t background = 7;
constexpr std::uint32_t held = 0x69;

Polling never(std::int32_t& /*flag*/) { return Polling::never(); }

struct Drawn {
    bool done = false;
    int written = 0;
    std::vector<std::uint32_t> pixels;
};

template <typename Kernel>
Drawn draw(const Kernel& kernel, const zolcs::Stepping& stepping, Polling (*pollingOf)(std::int32_t&), int raiseAfter) {
    Drawn drawn;
    drawn.pixels.assign(static_cast<std::size_t>(width) * height, held);
    std::int32_t flag = 0;
    const RaisingTable convert{raiseAfter, drawn.written, flag};
    const zolcs::Display<std::uint32_t> display{{drawn.pixels.data(), width}, background};
    const Polling polling = pollingOf(flag);
    const auto filler = zolcs::polled(zolcs::makeFiller(stepping, kernel, convert, polling.pixels), polling.rows);
    drawn.done = zolcs::fillDisplay(stepping, display, *filler);
    return drawn;
}

/// Calls check(kernel, stepping) for both kinds of interpolation, upright and oblique.
template <typename Check>
void forEachKernel(const Check& check) {
    const CCsBicubic buildsTheWeights;
    const std::vector<std::uint16_t> pixels(static_cast<std::size_t>(sourceSize) * sourceSize, 500);
    for (const zolcs::DisplayToImage& matrix :
         {zolcs::DisplayToImage{1.0, 0.0, 0.0, 1.0, 7.3, 9.1}, zolcs::DisplayToImage{0.9, 0.2, -0.2, 0.9, 10.0, 5.0}}) {
        const zolcs::Stepping stepping = zolcs::makeStepping(matrix, sourceSize, sourceSize, width, height);
        check(zolcs::BilinearGrey({{pixels.data(), sourceSize}, stepping}, 0x0FFF, 0), stepping);
        check(zolcs::CubicGrey({{pixels.data(), sourceSize}, stepping, zolcs::fineCubicWeights()}, 0x0FFF, 0),
              stepping);
    }
}

TEST(StoppingInterpolation, WithoutPollingARaisedFlagChangesNothing) {
    zoltest::forEachVariant([](const std::string&) {
        forEachKernel([](const auto& kernel, const zolcs::Stepping& stepping) {
            const Drawn drawn = draw(kernel, stepping, never, 5);
            EXPECT_TRUE(drawn.done);
            EXPECT_EQ(drawn.written, width * height);
            EXPECT_EQ(std::count(drawn.pixels.begin(), drawn.pixels.end(), shown), width * height);
        });
    });
}

TEST(StoppingInterpolation, PollingRowsFinishesTheRowThatIsBeingDrawn) {
    zoltest::forEachVariant([](const std::string&) {
        for (const int raiseAfter : {1, 17, width, width + 1, 10 * width - 1, (height - 1) * width}) {
            forEachKernel([&](const auto& kernel, const zolcs::Stepping& stepping) {
                const Drawn drawn = draw(kernel, stepping, Polling::everyRow, raiseAfter);
                const int rows = (raiseAfter + width - 1) / width;
                EXPECT_FALSE(drawn.done);
                EXPECT_EQ(drawn.written, rows * width);
                for (int i = 0; i < width * height; ++i) {
                    ASSERT_EQ(drawn.pixels[static_cast<std::size_t>(i)], i < rows * width ? shown : held) << i;
                }
            });
        }
    });
}

TEST(StoppingInterpolation, AFlagThatIsRaisedInTheLastRowIsNotSeen) {
    zoltest::forEachVariant([](const std::string&) {
        forEachKernel([](const auto& kernel, const zolcs::Stepping& stepping) {
            const Drawn drawn = draw(kernel, stepping, Polling::everyRow, (height - 1) * width + 1);
            EXPECT_TRUE(drawn.done);
            EXPECT_EQ(drawn.written, width * height);
        });
    });
}

TEST(StoppingInterpolation, PollingPixelsStopsBeforeTheNextOneOrItsBlock) {
    zoltest::forEachVariant([](const std::string& variant) {
        for (const int raiseAfter : {1, 2, 16, 17, width, width + 1, 700}) {
            forEachKernel([&](const auto& kernel, const zolcs::Stepping& stepping) {
                const Drawn drawn = draw(kernel, stepping, Polling::everyPixel, raiseAfter);
                EXPECT_FALSE(drawn.done);
                EXPECT_GE(drawn.written, raiseAfter);
                EXPECT_LE(drawn.written, variant == "plain" ? raiseAfter : raiseAfter + zolcs::StopFlag::block - 1);
                for (int i = 0; i < width * height; ++i) {
                    ASSERT_EQ(drawn.pixels[static_cast<std::size_t>(i)], i < drawn.written ? shown : held) << i;
                }
            });
        }
    });
}

}  // namespace
