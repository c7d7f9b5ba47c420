// The members of the three resamplers that draw through the image primitives.
#include "zolcs/resample/accelerated.h"

#include "zolcs/resample/accelerated_fixture.h"

namespace {

using namespace zoltest::accelerated;
using zoltest::AcceleratedCase;
using zoltest::acceleratedCases;
using zoltest::errorReport;
using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::Problem;
using zoltest::Random;
using zoltest::Report;
using zoltest::ReportCapture;

TEST_P(AcceleratedTest, PicturesAgreeWithThePlainMembers) {
    double mean = 0.0;
    double largest = 0.0;
    for (const ViewCase& view : viewCases()) {
        Pictures pictures(member_, view);
        const Difference difference = differenceOf(pictures.accelerated, pictures.plain);
        ASSERT_GT(difference.shown, 1000) << view;
        EXPECT_TRUE(agree(member_, difference, pictures.accelerated))
            << view << ": mean " << difference.mean << ", largest " << difference.largest << ", coverage "
            << difference.coverage;
        mean = std::max(mean, difference.mean);
        largest = std::max(largest, difference.largest);
    }
    RecordProperty("mean", std::to_string(mean));
    RecordProperty("largest", std::to_string(largest));
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_P(AcceleratedTest, TheLimitsDetectShiftsAndFlips) {
    double least = std::numeric_limits<double>::max();
    for (const ViewCase& view : viewCases()) {
        Pictures pictures(member_, view);
        const int w = view.width;
        const int h = view.height;
        const auto expectRejected = [&](const Difference& difference, const std::string& what) {
            EXPECT_FALSE(agree(member_, difference, pictures.accelerated)) << what << ' ' << view;
            least = std::min(least, difference.mean);
        };
        GuardedImage& plain = pictures.plain;
        const auto flipped = [&](bool x, bool y) {
            return differenceOf(pictures.accelerated, [&, x, y](int column, int row, int channel) {
                return sampleAt(plain, x ? w - 1 - column : column, y ? h - 1 - row : row, channel);
            });
        };
        expectRejected(flipped(true, false), "left and right exchanged");
        expectRejected(flipped(false, true), "top and bottom exchanged");
        expectRejected(flipped(true, true), "half a turn");
        for (const auto& [right, down] : {std::pair{1, 0}, std::pair{-1, 0}, std::pair{0, 1}, std::pair{0, -1}}) {
            expectRejected(differenceOf(pictures.accelerated,
                                        [&, right, down](int column, int row, int channel) {
                                            return sampleAt(plain, std::clamp(column - right, 0, w - 1),
                                                            std::clamp(row - down, 0, h - 1), channel);
                                        }),
                           "a pixel to the right " + std::to_string(right) + " and down " + std::to_string(down));
        }
        // The view moved by half a display pixel in each direction, drawn by the plain member.
        for (const auto& [x, y] :
             {std::pair{0.5, 0.0}, std::pair{-0.5, 0.0}, std::pair{0.0, 0.5}, std::pair{0.0, -0.5}}) {
            CCs2dTrafo trafo = trafoOf(view);
            trafo.setSizes(pictures.src, plain);
            // A pan of 1 moves by the extent that limits the fit; measured, since quarter turns exchange it.
            double m[6];
            double moved[6];
            trafo.getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            CCs2dTrafo probe(trafo);
            probe.translate(1.0, 1.0);
            probe.getImgToDsp(moved[0], moved[1], moved[2], moved[3], moved[4], moved[5]);
            trafo.translate(x / (moved[4] - m[4]), y / (moved[5] - m[5]));
            GuardedImage shifted(w, h, member_.type, w, view.destinationRatio);
            ASSERT_EQ(member_.plain(pictures.src, shifted, trafo), 255);
            expectRejected(differenceOf(pictures.accelerated, shifted), "half a pixel");
        }
    }
    RecordProperty("least mean of a wrong picture", std::to_string(least));
}

TEST_P(AcceleratedTest, NothingButTheDestinationsPixelsIsWritten) {
    Random random(71);
    for (const ViewCase& view : viewCases()) {
        GuardedRaster src(view.sourceWidth, view.sourceHeight, member_.type, view.sourceWidth + 3, view.sourceRatio);
        GuardedImage dst(view.width, view.height, member_.type, view.width + 3, 1.0);
        src.memory.randomise(random);
        dst.memory.randomise(random);
        const std::vector<unsigned char> before = dst.memory.all();
        const std::vector<unsigned char> source = src.memory.all();
        CCs2dTrafo trafo = trafoOf(view);
        ASSERT_EQ(member_.accelerated(src, dst, trafo), 255);
        EXPECT_EQ(src.GetMemBuffer()->getLockCount(), 0);
        EXPECT_EQ(dst.GetMemBuffer()->getLockCount(), 0);
        ASSERT_TRUE(src.memory.all() == source);
        std::vector<unsigned char> after = dst.memory.all();
        for (int y = 0; y < view.height; ++y) {
            const std::ptrdiff_t start = pixelAt(dst.memory, dst, 0, y) - dst.memory.all().data();
            const std::ptrdiff_t count = view.width * zoltest::bytesOfType(member_.type);
            std::copy_n(before.begin() + start, count, after.begin() + start);
        }
        ASSERT_TRUE(after == before) << view;
    }
}

TEST_P(AcceleratedTest, WhatLiesBesideTheImageIsBackground) {
    GuardedRaster src(10, 10, member_.type, 12, 1.0);
    paint(src);
    for (const double degrees : {0.0, 90.0, 180.0, 270.0, 30.0}) {
        for (const bool mirrored : {false, true}) {
            GuardedImage dst(60, 20, member_.type, 60, 1.0);
            std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0xEE));
            CCs2dTrafo trafo = trafoOf({degrees, mirrored, 1.0, 0, 0, 1, 1, 10, 10, 60, 20});
            ASSERT_EQ(member_.accelerated(src, dst, trafo), 255);
            for (const int x : {0, 5, 59}) {
                const unsigned char* pixel = pixelAt(dst.memory, dst, x, 10);
                if (member_.isColour()) {
                    for (int c = 0; c < 4; ++c) EXPECT_EQ(pixel[c], c == 3 ? 0 : zoltest::acceleratedBackground);
                } else {
                    EXPECT_EQ(sampleAt(dst, x, 10, 0), zoltest::acceleratedBackground);
                }
            }
            EXPECT_NE(sampleAt(dst, 30, 10, 0), zoltest::acceleratedBackground);
        }
    }
}

TEST_P(AcceleratedTest, ShuttersNarrowTheImageToTheirCommonBox) {
    struct Shutters {
        bool rectangle;
        bool circle;
        bool polygon;
        CRect region;
    };
    const std::array<Shutters, 4> kinds{
        Shutters{true, false, false, CRect(10, 8, 60, 50)}, Shutters{false, true, false, CRect(20, 12, 52, 44)},
        Shutters{false, false, true, CRect(15, 5, 70, 40)}, Shutters{true, true, true, CRect(20, 12, 52, 40)}};
    std::size_t round = 0;
    for (const ViewCase& view : viewCases()) {
        Pictures open(member_, view);
        const Shutters& shutters = kinds[(round + round / 4) % 4];
        ++round;
        GuardedRaster src(view.sourceWidth, view.sourceHeight, member_.type, view.sourceWidth, view.sourceRatio);
        paint(src);
        if (shutters.rectangle) src.setRectShutter(RECT{60, 50, 10, 8});  // in any order
        if (shutters.circle) src.setCircShutter(RECT{20, 12, 52, 44});
        if (shutters.polygon) src.setPolygonalShutter({CPoint(15, 30), CPoint(40, 5), CPoint(70, 40)});
        unsigned char bits[1] = {0xFF};
        CCsBitmapShutterInfo bitmap;  // does not count
        bitmap.tag = 1;
        bitmap.rows = 2;
        bitmap.columns = 4;
        bitmap.data = bits;
        src.setBitmapShutterInfo(bitmap);
        GuardedImage dst(view.width, view.height, member_.type, view.width, view.destinationRatio);
        CCs2dTrafo trafo = trafoOf(view);
        ASSERT_EQ(member_.accelerated(src, dst, trafo), 255) << view;
        double m[6];
        trafo.getTransformation(m[0], m[1], m[2], m[3], m[4], m[5]);
        int shown = 0;
        for (int i = 0; i < view.width * view.height; ++i) {
            const int x = i % view.width;
            const int y = i / view.width;
            const double u = m[0] * (x + 0.5) + m[2] * (y + 0.5) + m[4];
            const double v = m[1] * (x + 0.5) + m[3] * (y + 0.5) + m[5];
            const double inside = std::min({u - shutters.region.left, shutters.region.right - u,
                                            v - shutters.region.top, shutters.region.bottom - v});
            if (std::abs(inside) < 1e-6) continue;  // either will do
            const int expected = inside > 0 ? sampleAt(open.accelerated, x, y, 0) : int{zoltest::acceleratedBackground};
            ASSERT_EQ(sampleAt(dst, x, y, 0), expected) << view << " at " << x << ' ' << y;
            if (inside > 0) ++shown;
        }
        EXPECT_GT(shown, 100) << view;
    }
}

TEST_P(AcceleratedTest, ShuttersWithoutACommonRegionAreReported) {
    const auto expectReported = [&](const std::function<void(GuardedRaster&)>& setShutters) {
        for (const double degrees : {0.0, 90.0, 45.0}) {
            GuardedRaster src(40, 30, member_.type, 40, 1.0);
            setShutters(src);
            GuardedImage dst(50, 50, member_.type, 50, 1.0);
            const std::vector<unsigned char> before = dst.memory.all();
            CCs2dTrafo trafo;
            trafo.rotate(degrees);
            EXPECT_EQ(member_.accelerated(src, dst, trafo), 0);
            EXPECT_EQ(ReportCapture::take(), only(Problem::Region));
            EXPECT_EQ(dst.memory.all(), before);
            EXPECT_EQ(src.GetMemBuffer()->getLockCount(), 0);
        }
    };
    expectReported([](GuardedRaster& src) { src.setRectShutter(RECT{100, 100, 120, 120}); });
    expectReported([](GuardedRaster& src) { src.setRectShutter(RECT{-20, 3, 0, 20}); });
    expectReported([](GuardedRaster& src) {
        src.setRectShutter(RECT{0, 0, 10, 10});
        src.setCircShutter(RECT{20, 10, 30, 20});
    });
    expectReported([](GuardedRaster& src) {
        src.setCircShutter(RECT{0, 0, 10, 10});
        src.setPolygonalShutter({CPoint(20, 20), CPoint(30, 20), CPoint(25, 29)});
    });
}

TEST_P(AcceleratedTest, RastersWithEmbeddedOverlaysAreLeftToThePlainMembers) {
    GuardedRaster src(40, 30, member_.type, 40, 1.0);
    src.setEmbeddedOverlayStatus(true);
    src.setRectShutter(RECT{100, 100, 120, 120});  // not even looked at
    GuardedImage dst(50, 50, member_.type, 50, 1.0);
    const std::vector<unsigned char> before = dst.memory.all();
    CCs2dTrafo trafo;
    EXPECT_EQ(member_.accelerated(src, dst, trafo), 0);
    EXPECT_EQ(dst.memory.all(), before);
    EXPECT_TRUE(ReportCapture::take().empty());
    // The transformation has been told the sizes all the same.
    EXPECT_EQ(trafo.getSrcSize(), CSize(40, 30));
    EXPECT_EQ(trafo.getDstSize(), CSize(50, 50));
}

TEST_P(AcceleratedTest, OtherTypesAreReported) {
    const auto fits = [&](int type) {
        return member_.isColour() ? type == CCS_RGB8 : type == CCS_GREY12 || type == CCS_GREY16;
    };
    for (int from = CCS_INDEX8; from <= CCS_GREY16; ++from) {
        for (int to = CCS_INDEX8; to <= CCS_GREY16; ++to) {
            GuardedRaster src(7, 5, from, 8, 1.0);
            GuardedImage dst(9, 6, to, 10, 1.0);
            std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0x69));
            const std::vector<unsigned char> before = dst.memory.all();
            CCs2dTrafo trafo;
            const int result = member_.accelerated(src, dst, trafo);
            const std::vector<Report> reports = ReportCapture::take();
            SCOPED_TRACE(std::to_string(from) + " to " + std::to_string(to));
            if (fits(from) && fits(to)) {
                EXPECT_EQ(result, 255);
                EXPECT_TRUE(reports.empty());
                EXPECT_NE(dst.memory.all(), before);
            } else {
                EXPECT_EQ(result, 0);
                EXPECT_EQ(reports, only(Problem::Type));
                EXPECT_EQ(dst.memory.all(), before);
            }
        }
    }
}

TEST_P(AcceleratedTest, MissingMemoryIsReportedAsANullPointer) {
    auto* manager = ZolMemMappedManager::getIntance();
    for (const double degrees : {0.0, 90.0, 180.0, 270.0, 45.0}) {
        GuardedImage dst(50, 40, member_.type, 50, 1.0);
        {
            CCsRaster deferred(30, 30, member_.type, 1.0, false, true);
            CCs2dTrafo trafo;
            trafo.rotate(degrees);
            manager->setLimit(0);
            EXPECT_EQ(member_.accelerated(deferred, dst, trafo), 0);
            manager->setLimit(static_cast<std::size_t>(-1));
            EXPECT_EQ(takeOwn(), only(Problem::NullPointer, -8));
            EXPECT_EQ(dst.GetMemBuffer()->getLockCount(), 0);
            EXPECT_EQ(sampleAt(dst, 25, 20, 0), zoltest::acceleratedBackground);
        }
        GuardedRaster src(30, 30, member_.type, 30, 1.0);
        CCsImage& image = src;
        class NoMemory : public CCsImage {
        public:
            explicit NoMemory(int imageType) {
                width = 50;
                height = 40;
                type = imageType;
                pitch = 50;
                ratioYx = 1.0;
            }
        } nowhere(member_.type);
        CCs2dTrafo trafo;
        trafo.rotate(degrees);
        EXPECT_EQ(member_.accelerated(src, nowhere, trafo), 0);
        EXPECT_EQ(takeOwn(), only(Problem::NullPointer, -8));
        EXPECT_EQ(image.GetMemBuffer()->getLockCount(), 0);
    }
}

TEST_P(AcceleratedTest, FailedPrimitivesAreReportedWithTheirStatus) {
    GuardedImage dst(50, 40, member_.type, 50, 1.0);
    const auto expectStatus = [&](GuardedRaster& src, CCs2dTrafo trafo, long status) {
        std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(1));
        EXPECT_EQ(member_.accelerated(src, dst, trafo), 0);
        EXPECT_EQ(takeOwn(), only(Problem::Status, status));
        EXPECT_EQ(sampleAt(dst, 25, 20, 0), zoltest::acceleratedBackground);
        EXPECT_EQ(src.GetMemBuffer()->getLockCount(), 0);
        EXPECT_EQ(dst.GetMemBuffer()->getLockCount(), 0);
    };
    CCs2dTrafo oblique;
    oblique.rotate(30.0);
    GuardedRaster column(1, 20, member_.type, 1, 1.0);
    expectStatus(column, oblique, ippStsRectErr);
    GuardedRaster src(20, 20, member_.type, 20, 1.0);
    CCs2dTrafo away = oblique;
    away.setDspPanFactor(50.0, 0.0);
    expectStatus(src, away, ippStsWrongIntersectQuad);
    CCs2dTrafo unbounded;
    unbounded.setDspPanFactor(std::numeric_limits<double>::infinity(), 0.0);
    expectStatus(src, unbounded, ippStsBadArgErr);
    CCs2dTrafo nothing;
    nothing.scale(std::numeric_limits<double>::quiet_NaN());
    expectStatus(src, nothing, ippStsCoeffErr);
    expectStatus(src, CCs2dTrafo(0, 0, 0, 0, 0, 0), ippStsResizeFactorErr);
    GuardedRaster none(0, 0, member_.type, 1, 1.0);
    expectStatus(none, CCs2dTrafo(), ippStsSizeErr);
}

TEST_P(AcceleratedTest, ExceptionsAreReported) {
    class ThrowingRaster : public GuardedRaster {
    public:
        using GuardedRaster::GuardedRaster;
        unsigned char* getOrigin() override { throw std::runtime_error("no pixels today"); }
    } src(20, 20, member_.type, 20, 1.0);
    GuardedImage dst(50, 40, member_.type, 50, 1.0);
    const std::vector<unsigned char> before = dst.memory.all();
    for (const double degrees : {0.0, 90.0, 45.0}) {
        CCs2dTrafo trafo;
        trafo.rotate(degrees);
        EXPECT_EQ(member_.accelerated(src, dst, trafo), 0);
        EXPECT_EQ(ReportCapture::take(), only(Problem::Exception));
        EXPECT_EQ(dst.memory.all(), before);
    }
}

TEST_P(AcceleratedTest, ATransposedImageWithoutMemoryIsReported) {
    auto* manager = ZolMemMappedManager::getIntance();
    GuardedRaster src(20, 20, member_.type, 20, 1.0);
    GuardedImage dst(50, 40, member_.type, 50, 1.0);
    CCs2dTrafo trafo;
    trafo.rotate(90.0);
    manager->setLimit(0);
    EXPECT_EQ(member_.accelerated(src, dst, trafo), 0);
    manager->setLimit(static_cast<std::size_t>(-1));
    EXPECT_EQ(takeOwn(), only(Problem::Exception));
    EXPECT_EQ(sampleAt(dst, 25, 20, 0), zoltest::acceleratedBackground);
    EXPECT_EQ(src.GetMemBuffer()->getLockCount(), 0);
    EXPECT_EQ(dst.GetMemBuffer()->getLockCount(), 0);
}

using AcceleratedGreyTest = AcceleratedTest;

TEST_P(AcceleratedGreyTest, TwelveBitPicturesStayWithinTwelveBits) {
    for (const double degrees : {0.0, 90.0, 180.0, 30.0}) {
        for (const int type : {CCS_GREY12, CCS_GREY16}) {
            GuardedRaster src(12, 12, type, 12, 1.0);
            for (int i = 0; i < 144; ++i) {
                const std::uint16_t value = (i / 3 + i / 36) % 2 == 0 ? 4095 : 300;
                std::memcpy(src.memory.pixels() + std::ptrdiff_t{2} * i, &value, sizeof value);
            }
            GuardedImage dst(90, 90, CCS_GREY12, 90, 1.0);
            CCs2dTrafo trafo;
            trafo.rotate(degrees);
            ASSERT_EQ(member_.accelerated(src, dst, trafo), 255);
            int largest = 0;
            for (int i = 0; i < 8100; ++i) largest = std::max(largest, sampleAt(dst, i % 90, i / 90, 0));
            const bool overshoots = type == CCS_GREY16 && member_.name.starts_with("bicubic");
            EXPECT_EQ(largest > 4095, overshoots) << degrees << " type " << type << " largest " << largest;
            EXPECT_GE(largest, 4095);
        }
    }
}

TEST_P(AcceleratedGreyTest, TwelveAndSixteenBitsMix) {
    Random random(72);
    for (const ViewCase& view : viewCases()) {
        const auto drawn = [&](int from, int to, std::uint64_t seed) {
            GuardedRaster src(view.sourceWidth, view.sourceHeight, from, view.sourceWidth + 1, view.sourceRatio);
            GuardedImage dst(view.width, view.height, to, view.width + 2, view.destinationRatio);
            Random pixels(seed);
            src.memory.randomise(pixels);
            CCs2dTrafo trafo = trafoOf(view);
            EXPECT_EQ(member_.accelerated(src, dst, trafo), 255);
            return dst.memory.all();
        };
        const std::uint64_t seed = random.bits();
        const std::vector<unsigned char> deep = drawn(CCS_GREY16, CCS_GREY16, seed);
        EXPECT_TRUE(drawn(CCS_GREY16, CCS_GREY12, seed) == deep) << view;
        const std::vector<unsigned char> twelve = drawn(CCS_GREY12, CCS_GREY12, seed);
        EXPECT_TRUE(drawn(CCS_GREY12, CCS_GREY16, seed) == twelve) << view;
        // All 16 bits count, whatever the source calls itself, until cubic results are limited.
        std::vector<unsigned char> limited = deep;
        if (member_.name.starts_with("bicubic")) {
            for (std::size_t i = 0; i < limited.size(); i += 2) {
                if (limited[i + 1] < 0x10) continue;
                limited[i] = 0xFF;
                limited[i + 1] = 0x0F;
            }
        }
        EXPECT_TRUE(twelve == limited) << view;
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_P(AcceleratedTest, TheClassesOfAnglesEndWhereTheyShould) {
    // A single column can be resized and transposed, and cannot be warped: what a call does tells how it takes a view.
    GuardedRaster column(1, 20, member_.type, 3, 1.0);
    paint(column);
    GuardedImage dst(20, 20, member_.type, 20, 1.0);
    const auto isWarped = [&](CCs2dTrafo trafo) {
        const int result = member_.accelerated(column, dst, trafo);
        EXPECT_EQ(takeOwn(), result == 255 ? std::vector<Report>{} : only(Problem::Status, ippStsRectErr));
        return result == 0;
    };
    const auto isOblique = [](double angle) {
        const bool upright = static_cast<int>(angle) % 360 < 1;
        return !upright && !(std::abs(angle - 180.0) < 1.0) && !(std::abs(angle - 90.0) < 1.0) &&
               !(std::abs(angle - 270.0) < 1.0);
    };
    for (const bool mirrored : {false, true}) {
        const auto turned = [&](double degrees) {
            CCs2dTrafo trafo;
            if (mirrored) trafo.mirror(CCS_HORIZONTAL);
            trafo.rotate(mirrored ? -degrees : degrees);  // the angle is counted before the mirror
            return trafo;
        };
        for (const double border : {1.0, 89.0, 91.0, 179.0, 181.0, 269.0, 271.0, 359.0}) {
            // The smallest steps that the angle of a matrix can take, on both sides of the border.
            int warped = 0;
            int others = 0;
            for (int step = -6; step <= 6; ++step) {
                const CCs2dTrafo trafo = turned(border + step * 4e-13);
                const double angle = Orientation(trafo).angle;
                const bool oblique = isOblique(angle);
                EXPECT_EQ(isWarped(trafo), oblique) << std::setprecision(17) << angle;
                ++(oblique ? warped : others);
            }
            EXPECT_GT(warped, 0) << border;
            EXPECT_TRUE(others > 0 || border == 359.0) << border;  // what lies below a whole turn is oblique
        }
        for (const double degrees : {0.0, 0.5, 360.0, 360.5, 720.25, -90.0, -90.5, -180.0, -270.0, -360.0, -359.5,
                                     -1e-9, 450.0, 450.9, 540.0, 630.0, 3690.0}) {
            EXPECT_FALSE(isWarped(turned(degrees))) << degrees;
        }
        for (const double degrees : {45.0, -45.0, 405.0, -0.5, 359.5, -720.5, 358.0, 361.5, 3645.0}) {
            EXPECT_TRUE(isWarped(turned(degrees))) << degrees;
        }
    }
}

TEST_P(AcceleratedTest, WholeTurnsMoreOrLessShowTheSame) {
    GuardedRaster src(41, 30, member_.type, 44, 1.0);
    paint(src);
    const auto drawn = [&](double degrees, bool mirrored) {
        GuardedImage dst(50, 47, member_.type, 50, 1.0);
        CCs2dTrafo trafo = trafoOf({degrees, mirrored, 0.9731, 0.0517, 0.1043, 1, 1, 41, 30, 50, 47});
        EXPECT_EQ(member_.accelerated(src, dst, trafo), 255);
        return dst;
    };
    for (const bool mirrored : {false, true}) {
        for (const double degrees : {0.0, 90.0, 180.0, 270.0, 33.0}) {
            GuardedImage once = drawn(degrees, mirrored);
            for (const double more : {-720.0, -360.0, 360.0, 1080.0}) {
                GuardedImage other = drawn(degrees + more, mirrored);
                const Difference difference = differenceOf(once, other);
                EXPECT_LE(difference.mean, 0.5) << degrees << " and " << more;
                EXPECT_LE(difference.coverage, 0);
            }
        }
    }
}

TEST_P(AcceleratedTest, SourcesOfAFewPixels) {
    for (const auto& [width, height] : {std::pair{1, 1}, std::pair{1, 2}, std::pair{2, 1}, std::pair{2, 2}}) {
        for (const double degrees : {0.0, 90.0, 180.0, 270.0}) {
            for (const bool mirrored : {false, true}) {
                GuardedRaster src(width, height, member_.type, width, 1.0);
                paint(src);
                for (int i = 0; i < width * height; ++i) {
                    std::memcpy(pixelAt(src.memory, src, i % width, i / width), "\xAB\x0B\x11", 2);
                }
                GuardedImage dst(9, 7, member_.type, 9, 1.0);
                CCs2dTrafo trafo = trafoOf({degrees, mirrored, 1.0, 0, 0, 1, 1, width, height, 9, 7});
                EXPECT_EQ(member_.accelerated(src, dst, trafo), 255);
                EXPECT_EQ(sampleAt(dst, 4, 3, 0), member_.isColour() ? 0xAB : 0xBAB) << degrees;
            }
        }
    }
}

std::string nameOf(const ::testing::TestParamInfo<AcceleratedCase>& instance) { return instance.param.name; }

std::vector<AcceleratedCase> greyCases() {
    std::vector<AcceleratedCase> grey = acceleratedCases();
    std::erase_if(grey, [](const AcceleratedCase& member) { return member.isColour(); });
    return grey;
}

INSTANTIATE_TEST_SUITE_P(Members, AcceleratedTest, ::testing::ValuesIn(acceleratedCases()), nameOf);
INSTANTIATE_TEST_SUITE_P(Members, AcceleratedGreyTest, ::testing::ValuesIn(greyCases()), nameOf);

}  // namespace
