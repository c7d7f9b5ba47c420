// Copies of rasters.
#include "zolcs/ccsraster.h"

#include "zolcs/ccsraster_fixture.h"

namespace {

using namespace zoltest::raster;
using zoltest::errorReport;
using zoltest::ReportCapture;

// ------------------------------------------------------------------------------------------------ copies

TEST_F(CCsRasterTest, CopiesHaveTheirOwnPixelsAndAllState) {
    const ReportCapture capture;
    unsigned char bits[8] = {};
    for (const TypeRow& row : typeRows) {
        for (const bool mapped : {false, true}) {
            Raster source(5, 3, row.type, 1.5, mapped, false);
            fillRandomly(source, 31);
            decorate(source, bits);
            Raster copy(source);
            EXPECT_EQ(copy.getWidth(), 5);
            EXPECT_EQ(copy.getHeight(), 3);
            EXPECT_EQ(copy.getType(), row.type);
            EXPECT_EQ(copy.getPitch(), source.getPitch());
            EXPECT_EQ(copy.getRatioYx(), 1.5);
            EXPECT_EQ(copy.isMapped(), mapped);
            EXPECT_FALSE(copy.isExternal());
            EXPECT_TRUE(copy.isValid());
            ASSERT_NE(copy.GetMemBuffer(), source.GetMemBuffer());
            EXPECT_EQ(copy.GetMemBuffer()->getMapHandle() != nullptr, mapped);
            // The spare line and the spare pixel come along.
            EXPECT_EQ(contents(copy), contents(source));
            expectDecorated(copy, bits);
            const std::vector<unsigned char> before = contents(source);
            fillRandomly(copy, 32);
            EXPECT_EQ(contents(source), before);
        }
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsRasterTest, CopiesOfAdoptedBuffersKeepTheLayoutAndGetASpareLine) {
    const ReportCapture capture;
    unsigned char bits[8] = {};
    for (const TypeRow& row : typeRows) {
        const auto elem = static_cast<std::size_t>(row.elemSize);
        const std::size_t bytes = 5 * 3 * elem;
        Raster source(newBuffer(bytes), 5, 3, row.type, 1.5);
        fillRandomly(source, 33);
        decorate(source, bits);
        const std::size_t before = inUse();
        Raster copy(source);
        EXPECT_EQ(copy.getPitch(), 5);
        EXPECT_TRUE(copy.isExternal());
        EXPECT_EQ(copy.GetMemBuffer()->getSize(), bytes + 6 * elem);
        EXPECT_EQ(copy.GetMemBuffer()->getMapHandle(), nullptr);
        EXPECT_EQ(inUse() - before, bytes + 6 * elem + 2 * 6 * elem);
        EXPECT_EQ(copy.GetMemBuffer()->getLockCount(), row.type == 1 ? 1 : 0);
        EXPECT_EQ(copy.lastOrigin() != nullptr, row.type == 1);
        std::vector<unsigned char> expected = contents(source);
        expected.resize(bytes + 6 * elem, 0);
        EXPECT_EQ(contents(copy), expected);
        const Raster second(copy);
        EXPECT_EQ(second.getPitch(), 5);
        expected.resize(bytes + 12 * elem, 0);
        EXPECT_EQ(contents(second), expected);
        expectDecorated(copy, bits);
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsRasterTest, ACopyThatFindsNoMemoryThrows1) {
    const ReportCapture capture;
    for (const TypeRow& row : typeRows) {
        const Raster own(9, 5, row.type, 1.0, false, false);
        const auto total = static_cast<std::size_t>(totalOf(row, 9, 5) + 2 * guardOf(row, 9));
        allow(2 * total - 1);
        const auto copy = [](const Raster& source) {
            try {
                const Raster other(source);
            } catch (int result) {
                return result;
            }
            return 255;
        };
        EXPECT_EQ(copy(own), 1);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Memory allocation failed", 0, module, row.failureLine)});
        EXPECT_EQ(inUse(), total);
        allow(2 * total);
        EXPECT_EQ(copy(own), 255);
        allowAll();

        const auto elem = static_cast<std::size_t>(row.elemSize);
        const Raster external(newBuffer(9 * 5 * elem), 9, 5, row.type, 1.0);
        allow(total + 9 * 5 * elem + (9 * 5 + 10) * elem + 20 * elem - 1);
        EXPECT_EQ(copy(external), 1);
        // An adopted buffer's copy fails silently.
        EXPECT_EQ(ReportCapture::take(), Reports{});
        EXPECT_EQ(inUse(), total + 9 * 5 * elem);
        allowAll();
        EXPECT_EQ(copy(external), 255);
    }
}

TEST_F(CCsRasterTest, ACopyOfAnUnknownTypeIsReportedAndHasNoPixels) {
    const ReportCapture capture;
    for (const int type : {-1, 0, 8}) {
        const Raster source(newBuffer(15), 5, 3, type, 1.0);
        fillRandomly(source, 34);
        const Raster copy(source);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 221)});
        EXPECT_EQ(contents(copy), std::vector<unsigned char>(15, 0));
        EXPECT_TRUE(copy.isValid());
    }
}

TEST_F(CCsRasterTest, ACopyOfARasterWhoseConstructorFailedThrows0) {
    const ReportCapture capture;
    Raster source(5, 3, CCS_GREY8, 1.0, false, false);
    source.failConstruction();
    EXPECT_THROW(
        {
            try {
                const Raster copy(source);
            } catch (int result) {
                EXPECT_EQ(result, 0);
                throw;
            }
        },
        int);
    EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Constructor is invalid", 0, module, 401)});
}

TEST_F(CCsRasterTest, ADeferredCopyIsDeferred) {
    const Raster source(5, 3, CCS_GREY12, 1.0, false, true);
    Raster copy(source);
    EXPECT_EQ(copy.GetMemBuffer(), nullptr);
    EXPECT_TRUE(copy.isDeferred());
    EXPECT_EQ(copy.getPitch(), 8);
    EXPECT_NE(copy.getOrigin(), nullptr);
    copy.unlock();
    EXPECT_EQ(source.GetMemBuffer(), nullptr);
}

TEST_F(CCsRasterTest, ACopyOfATooSmallAdoptedBufferStaysInside) {
    for (const TypeRow& row : typeRows) {
        const Raster source(newBuffer(4), 50, 30, row.type, 1.0);
        fillRandomly(source, 35);
        const Raster copy(source);
        std::vector<unsigned char> expected = contents(source);
        expected.resize(4 + static_cast<std::size_t>(51 * row.elemSize), 0);
        EXPECT_EQ(contents(copy), expected);
    }
}

TEST_F(CCsRasterTest, CopiesOfAdoptedBuffersWithImpossibleGeometry) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    for (const auto& [width, height, type] :
         {std::tuple(most, 1, 2), std::tuple(most, most, 4), std::tuple(-2, 3, 1), std::tuple(least, least, 5)}) {
        const Raster source(newBuffer(15), width, height, type, 1.0);
        try {
            const Raster copy(source);
            ADD_FAILURE() << width << ' ' << height;
        } catch (int result) {
            EXPECT_EQ(result, 1);
        }
    }
}

TEST_F(CCsRasterTest, NewInstanceIsACopy) {
    Raster source(5, 3, CCS_GREY12, 1.0, false, false);
    fillRandomly(source, 36);
    source.setRectShutter({1, 2, 3, 4});
    CCsImage& image = source;
    const std::unique_ptr<CCsImage> copy(image.NewInstance());
    auto* const raster = dynamic_cast<CCsRaster*>(copy.get());
    ASSERT_NE(raster, nullptr);
    EXPECT_EQ(contents(*raster), contents(source));
    EXPECT_TRUE(raster->isRectShutter());
}

TEST_F(CCsRasterTest, AssignmentDeliberatelySharesThePixels) {
    unsigned char bits[8] = {};
    Raster source(5, 3, CCS_GREY12, 1.5, true, false);
    decorate(source, bits);
    // The copy's destructor would destroy the shared buffer, so it never runs with it.
    alignas(Raster) unsigned char storage[sizeof(Raster)];
    auto* const copy = new (storage) Raster(1, 1, CCS_GREY8, 1.0, false, false);
    delete copy->GetMemBuffer();
    *copy = source;
    EXPECT_EQ(copy->GetMemBuffer(), source.GetMemBuffer());
    EXPECT_EQ(copy->getPitch(), 8);
    EXPECT_EQ(copy->lastOrigin(), source.lastOrigin());
    EXPECT_TRUE(copy->isMapped());
    expectDecorated(*copy, bits);
    // What the copy owns besides the pixels is released by hand.
    copy->setPolygonalShutter({});
    *copy = Raster(nullptr, 0, 0, CCS_GREY8, 1.0);
    copy->~Raster();
}

}  // namespace
