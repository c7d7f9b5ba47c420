// Calls that no sane host makes: whatever the arguments are, a primitive returns one of its statuses, touches nothing
// but the pixels of its destination, and gives the same in every variant. The memory is exactly as large as the valid
// arguments say, so that a sanitizer sees every access beyond.
#include <cmath>
#include <limits>

#include "zolipp/zolipp_images.h"

namespace {

using zoltest::Random;

constexpr int largest = std::numeric_limits<int>::max();
constexpr int least = std::numeric_limits<int>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();
const double hostileNumbers[] = {0.0,    -0.0,    1.0,      -1.0,      0.5,         2.0,      1e-9,
                                 -1e9,   1e18,    1e99,     -1e300,    1.7e308,     -1.7e308, 1e-99,
                                 5e-324, -5e-324, infinity, -infinity, std::nan("")};

/// Mostly a valid number, sometimes one of the others.
template <typename Number, std::size_t count>
Number mostly(Random& random, Number valid, const Number (&others)[count]) {
    return random.chance(0.8) ? valid : others[random.integer(0, static_cast<int>(count) - 1)];
}

/// Sides that an image cannot have or that are smaller than its own; a width beyond it is one beyond any step.
int hostileWidth(Random& random, int width) {
    return mostly(random, width, {0, -1, least, 1, largest, largest / 2 + 1});
}
int hostileHeight(Random& random, int height) { return mostly(random, height, {0, -1, least, 1}); }
IppiSize hostileSize(Random& random, IppiSize size) {
    return {hostileWidth(random, size.width), hostileHeight(random, size.height)};
}
/// Steps that are too short for rows of so many pixels; there are no others that lead nowhere beyond the image's rows.
int hostileStep(Random& random, int step, int width, int pixelBytes) {
    const auto rowBytes = static_cast<int>(std::clamp<std::int64_t>(std::int64_t{width} * pixelBytes, 1, largest));
    return mostly(random, step, {0, 1, -1, -step, rowBytes - 1, least});
}
IppiRect hostileRegion(Random& random, IppiSize size) {
    const auto start = [&](int length) { return mostly(random, 0, {-1, 1, length - 1, length, largest, least}); };
    const auto extent = [&](int length) { return mostly(random, length, {0, 1, -1, largest, least, length + 9}); };
    return {start(size.width), start(size.height), extent(size.width), extent(size.height)};
}
int hostileInterpolation(Random& random) {
    return mostly(random, zoltest::allInterpolations[random.integer(0, 2)], {0, 3, -1, least, largest});
}

template <typename Primitives>
class HostileCalls : public ::testing::Test {
protected:
    using Image = typename Primitives::Image;

    static constexpr int pixelBytes = Primitives::channels * static_cast<int>(sizeof(typename Primitives::Sample));

    static Image anyImage(Random& random) {
        return zoltest::randomImage<Primitives>(random, random.integer(1, 20), random.integer(1, 9),
                                                random.integer(0, 5), static_cast<std::size_t>(random.integer(0, 3)));
    }

    /// What an interpolating primitive is told of its source.
    struct Source {
        explicit Source(Random& random)
            : image(anyImage(random)),
              size(hostileSize(random, image.size())),
              step(hostileStep(random, image.step(), size.width, pixelBytes)),
              region(hostileRegion(random, image.size())),
              interpolation(hostileInterpolation(random)) {}

        Image image;
        IppiSize size;
        int step;
        IppiRect region;
        int interpolation;
    };

    /// Makes the call in every variant on a copy of the destination.
    template <typename Call>
    static void expectHarmless(const Image& before, std::initializer_list<IppStatus> known, Call call) {
        IppStatus status = 1;
        const Image after = zoltest::sameInEveryVariant([&] {
            Image target = before;
            const IppStatus got = call(target);
            EXPECT_TRUE(status == 1 || got == status);
            status = got;
            return target;
        });
        if (status == ippStsNoErr) return;
        EXPECT_NE(std::find(known.begin(), known.end(), status), known.end()) << status;
        EXPECT_TRUE(after == before) << "status " << status;
    }
};
TYPED_TEST_SUITE(HostileCalls, zoltest::AllFormats);

TYPED_TEST(HostileCalls, Resizing) {
    Random random(601);
    for (int round = 0; round < 1500 && !this->HasFailure(); ++round) {
        const typename TestFixture::Source source(random);
        const auto before = this->anyImage(random);
        const IppiSize targetSize = hostileSize(random, before.size());
        const int targetStep = hostileStep(random, before.step(), targetSize.width, this->pixelBytes);
        const double xFactor = mostly(random, random.real(0.1, 5.0), hostileNumbers);
        const double yFactor = mostly(random, random.real(0.1, 5.0), hostileNumbers);
        const double xCentre = mostly(random, random.real(-9.0, 29.0), hostileNumbers);
        const double yCentre = mostly(random, random.real(-9.0, 19.0), hostileNumbers);
        this->expectHarmless(before,
                             {ippStsSizeErr, ippStsStepErr, ippStsInterpolationErr, ippStsResizeFactorErr,
                              ippStsBadArgErr, ippStsWrongIntersectROI},
                             [&](auto& target) {
                                 return TypeParam::resizeCenter(
                                     source.image.data(), source.size, source.step, source.region, target.data(),
                                     targetStep, targetSize, xFactor, yFactor, xCentre, yCentre, source.interpolation);
                             });
    }
}

TYPED_TEST(HostileCalls, Warping) {
    Random random(602);
    for (int round = 0; round < 1500 && !this->HasFailure(); ++round) {
        const typename TestFixture::Source source(random);
        // No pixel more fits its rows: a region that takes one is refused.
        const auto before =
            zoltest::randomImage<TypeParam>(random, random.integer(1, 20), random.integer(1, 9), random.integer(0, 1));
        // A destination's region is the host's promise of memory below its last row.
        IppiRect target = hostileRegion(random, before.size());
        if (std::int64_t{target.y} + target.height > before.height()) target = before.whole();
        const auto right =
            static_cast<int>(std::clamp<std::int64_t>(std::int64_t{target.x} + target.width, 1, largest));
        const int targetStep = hostileStep(random, before.step(), right, this->pixelBytes);
        double coefficients[2][3];
        for (auto& row : coefficients) {
            for (double& c : row) c = mostly(random, random.real(-3.0, 3.0), hostileNumbers);
        }
        if (random.chance(0.2)) std::copy_n(coefficients[0], 2, coefficients[1]);
        this->expectHarmless(before,
                             {ippStsSizeErr, ippStsStepErr, ippStsInterpolationErr, ippStsCoeffErr, ippStsRectErr,
                              ippStsWrongIntersectROI, ippStsWrongIntersectQuad},
                             [&](auto& drawn) {
                                 return TypeParam::warpAffine(source.image.data(), source.size, source.step,
                                                              source.region, drawn.data(), targetStep, target,
                                                              coefficients, source.interpolation);
                             });
    }
}

TYPED_TEST(HostileCalls, Mirroring) {
    Random random(603);
    for (int round = 0; round < 1500 && !this->HasFailure(); ++round) {
        const auto before = this->anyImage(random);
        const IppiSize size = hostileSize(random, before.size());
        const int step = hostileStep(random, before.step(), size.width, this->pixelBytes);
        const IppiAxis axis = mostly(random, random.integer(0, 2), {-1, 3, least, largest});
        this->expectHarmless(before, {ippStsSizeErr, ippStsStepErr, ippStsMirrorFlipErr},
                             [&](auto& image) { return TypeParam::mirror(image.data(), step, size, axis); });
    }
}

// A mirror is told apart from its neighbours: a part of an image is turned, what lies around stays.
TYPED_TEST(HostileCalls, MirroringAPartOfAnImage) {
    Random random(604);
    for (int round = 0; round < 200 && !this->HasFailure(); ++round) {
        const auto before = zoltest::randomImage<TypeParam>(random, random.integer(1, 90), random.integer(1, 12));
        const int width = random.integer(1, before.width());
        const int height = random.integer(1, before.height());
        const int left = random.integer(0, before.width() - width);
        const int top = random.integer(0, before.height() - height);
        const IppiAxis axis = random.integer(0, 2);
        const auto turned = zoltest::sameInEveryVariant([&] {
            auto image = before;
            auto* const row = reinterpret_cast<std::byte*>(image.data()) + std::ptrdiff_t{top} * image.step();
            auto* const first = reinterpret_cast<typename TypeParam::Sample*>(row) + left * TypeParam::channels;
            EXPECT_EQ(TypeParam::mirror(first, image.step(), {width, height}, axis), ippStsNoErr);
            return image;
        });
        for (int y = 0; y < before.height(); ++y) {
            for (int x = 0; x < before.width(); ++x) {
                const bool inside = x >= left && x < left + width && y >= top && y < top + height;
                const int fromX = inside && axis != ippAxsHorizontal ? 2 * left + width - 1 - x : x;
                const int fromY = inside && axis != ippAxsVertical ? 2 * top + height - 1 - y : y;
                for (int channel = 0; channel < TypeParam::channels; ++channel) {
                    const bool written = channel < TypeParam::written;
                    ASSERT_EQ(turned.at(x, y, channel),
                              written ? before.at(fromX, fromY, channel) : before.at(x, y, channel))
                        << x << ", " << y;
                }
            }
        }
    }
}

template <typename Primitives>
class HostileTransposes : public HostileCalls<Primitives> {};
using TransposedFormats = ::testing::Types<zoltest::Grey16Primitives, zoltest::FourBytePrimitives>;
TYPED_TEST_SUITE(HostileTransposes, TransposedFormats);

TYPED_TEST(HostileTransposes, Transposing) {
    Random random(605);
    for (int round = 0; round < 1500 && !this->HasFailure(); ++round) {
        const auto source = this->anyImage(random);
        const auto before = zoltest::randomImage<TypeParam>(random, source.height(), source.width(), round % 3);
        const IppiSize size = hostileSize(random, source.size());
        const int step = hostileStep(random, source.step(), size.width, this->pixelBytes);
        const int targetStep = hostileStep(random, before.step(), size.height, this->pixelBytes);
        this->expectHarmless(before, {ippStsSizeErr, ippStsStepErr}, [&](auto& target) {
            return TypeParam::transpose(source.data(), step, target.data(), targetStep, size);
        });
    }
}

// Not allowed, and nobody knows what comes out; but it stays inside the memory.
TYPED_TEST(HostileTransposes, OverlappingImagesStayInsideTheirMemory) {
    Random random(606);
    for (int round = 0; round < 60; ++round) {
        const int side = random.integer(1, 80);
        auto image = zoltest::randomImage<TypeParam>(random, side, side);
        EXPECT_EQ(TypeParam::transpose(image.data(), image.step(), image.data(), image.step(), image.size()),
                  ippStsNoErr);
        EXPECT_TRUE(image.isIntactAround());
    }
}

TYPED_TEST(HostileCalls, OverlappingImagesStayInsideTheirMemory) {
    Random random(607);
    const double coefficients[2][3] = {{1.3, 0.4, -2.0}, {-0.4, 1.3, 3.0}};
    for (const int interpolation : zoltest::allInterpolations) {
        for (const std::string& variant : zolipp::RowOperations::variants()) {
            const zoltest::ChosenVariant chosen(variant);
            auto image = zoltest::randomImage<TypeParam>(random, 75, 20);
            EXPECT_EQ(TypeParam::resizeCenter(image.data(), image.size(), image.step(), image.whole(), image.data(),
                                              image.step(), image.size(), 1.7, 0.8, 30.0, 9.0, interpolation),
                      ippStsNoErr);
            EXPECT_EQ(TypeParam::warpAffine(image.data(), image.size(), image.step(), image.whole(), image.data(),
                                            image.step(), image.whole(), coefficients, interpolation),
                      ippStsNoErr);
            EXPECT_TRUE(image.isIntactAround());
        }
    }
}

// The last rows of images with steps that would pass 32 bits if all their bytes were there.
TYPED_TEST(HostileCalls, StepsOfASingleRowMayBeAsLargeAsTheyGet) {
    Random random(608);
    const auto source = zoltest::randomImage<TypeParam>(random, 33, 1);
    const auto before = zoltest::randomImage<TypeParam>(random, 33, 1);
    for (const int interpolation : zoltest::allInterpolations) {
        const auto drawn = zoltest::sameInEveryVariant([&] {
            auto target = before;
            EXPECT_EQ(TypeParam::resizeCenter(source.data(), source.size(), largest, source.whole(), target.data(),
                                              largest, target.size(), 1.0, 1.0, 16.0, 0.0, interpolation),
                      ippStsNoErr);
            return target;
        });
        zoltest::expectCopied<TypeParam>(source, before, drawn);
    }
    for (const IppiAxis axis : {ippAxsHorizontal, ippAxsVertical, ippAxsBoth}) {
        this->expectHarmless(before, {}, [&](auto& image) {
            const IppStatus status = TypeParam::mirror(image.data(), largest, image.size(), axis);
            EXPECT_EQ(status, ippStsNoErr);
            return status;
        });
    }
}

TEST(HostileBounds, AreFiniteOrRefused) {
    Random random(609);
    for (int round = 0; round < 20000; ++round) {
        double coefficients[2][3];
        for (auto& row : coefficients) {
            for (double& c : row) c = mostly(random, random.real(-3.0, 3.0), hostileNumbers);
        }
        double bound[2][2] = {{7.0, 7.0}, {7.0, 7.0}};
        const IppStatus status = ZOLippiGetAffineBound(hostileRegion(random, {40, 30}), bound, coefficients);
        if (status == ippStsNoErr) {
            EXPECT_LE(bound[0][0], bound[1][0]);
            EXPECT_LE(bound[0][1], bound[1][1]);
        } else {
            EXPECT_TRUE(status == ippStsSizeErr || status == ippStsCoeffErr || status == ippStsRectErr) << status;
            EXPECT_TRUE(bound[0][0] == 7.0 && bound[0][1] == 7.0 && bound[1][0] == 7.0 && bound[1][1] == 7.0);
        }
    }
}

TEST(HostileBounds, CornersBeyondAllNumbersAreRefused) {
    const double far[2][3] = {{1e308, 0.0, 0.0}, {0.0, 1.0, 0.0}};
    double bound[2][2] = {{7.0, 7.0}, {7.0, 7.0}};
    EXPECT_EQ(ZOLippiGetAffineBound({-9, 0, 5, 5}, bound, far), ippStsCoeffErr);
    EXPECT_EQ(ZOLippiGetAffineBound({4, 0, 5, 5}, bound, far), ippStsCoeffErr);
    EXPECT_TRUE(bound[0][0] == 7.0 && bound[0][1] == 7.0 && bound[1][0] == 7.0 && bound[1][1] == 7.0);
    EXPECT_EQ(ZOLippiGetAffineBound({-1, 0, 2, 2}, bound, far), ippStsNoErr);
    EXPECT_TRUE(bound[0][0] == -1e308 && bound[1][0] == 1e308);
}

TEST(HostileLookUps, ReturnAStatusAndStayInsideTheirMemory) {
    Random random(610);
    const std::vector<Ipp32u> table(65536, 5);
    for (int round = 0; round < 3000; ++round) {
        const int width = random.integer(1, 40);
        const int height = random.integer(1, 4);
        zoltest::GreyImage source(width, height, 1, round % 3, static_cast<std::size_t>(round % 5));
        source.fillRandom(random);
        zoltest::PrimitiveImage<Ipp32u> target(width, height, 1, round % 7, static_cast<std::size_t>(round % 4));
        const auto before = target;
        const IppiSize size = hostileSize(random, source.size());
        const int bits = mostly(random, random.integer(1, 16), {0, -1, 17, 32, largest, least});
        const IppStatus status = ZOLippiLUTPalette_16u32u_C1R(
            source.data(), hostileStep(random, source.step(), size.width, 2), target.data(),
            hostileStep(random, target.step(), size.width, 4), size, table.data(), bits);
        EXPECT_TRUE(target.isIntactAround());
        if (status == ippStsNoErr) continue;
        EXPECT_TRUE(status == ippStsSizeErr || status == ippStsStepErr || status == ippStsBadArgErr) << status;
        EXPECT_TRUE(target == before);
    }
}

}  // namespace
