// Sizes and memory of rasters.
#include "zolcs/ccsraster.h"

#include "zolcs/ccsraster_fixture.h"

namespace {

using namespace zoltest::raster;
using zoltest::errorReport;
using zoltest::ReportCapture;

// ------------------------------------------------------------------------------------------------ sizes

TEST_F(CCsRasterTest, PitchBytesAndGuardsOfEveryType) {
    const ReportCapture capture;
    for (const TypeRow& row : typeRows) {
        for (const int width : {0, 1, 2, 3, 4, 5, 7, 8, 9, 16, 513}) {
            for (const int height : {0, 1, 3, 64}) {
                const Raster raster(width, height, row.type, 1.25, false, false);
                EXPECT_EQ(raster.getWidth(), width);
                EXPECT_EQ(raster.getHeight(), height);
                EXPECT_EQ(raster.getType(), row.type);
                EXPECT_EQ(raster.getRatioYx(), 1.25);
                EXPECT_EQ(raster.getPitch(), pitchOf(row, width));
                ASSERT_NE(raster.GetMemBuffer(), nullptr);
                EXPECT_EQ(raster.GetMemBuffer()->getSize(), static_cast<std::size_t>(totalOf(row, width, height)));
                EXPECT_EQ(inUse(), static_cast<std::size_t>(totalOf(row, width, height) + 2 * guardOf(row, width)));
                EXPECT_TRUE(raster.isValid());
                EXPECT_NE(raster.lastOrigin(), nullptr);
                EXPECT_EQ(raster.GetMemBuffer()->getLockCount(), 1);
            }
        }
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsRasterTest, KnownSizes) {
    const CCsRaster grey(5, 3, CCS_GREY12, 1.0, false, false);
    EXPECT_EQ(grey.getPitch(), 8);
    EXPECT_EQ(grey.GetMemBuffer()->getSize(), 66U);
    const CCsRaster colour(5, 3, CCS_RGB8, 1.0, false, false);
    EXPECT_EQ(colour.getPitch(), 6);
}

TEST_F(CCsRasterTest, NewPixelsAreZero) {
    for (const TypeRow& row : typeRows) {
        const CCsRaster raster(5, 3, row.type, 1.0, false, false);
        const std::vector<unsigned char> bytes = contents(raster);
        EXPECT_EQ(bytes, std::vector<unsigned char>(bytes.size(), 0));
    }
}

TEST_F(CCsRasterTest, TheFlagChoosesMappedMemory) {
    for (const TypeRow& row : typeRows) {
        const Raster heap(5, 3, row.type, 1.0, false, false);
        EXPECT_EQ(heap.GetMemBuffer()->getMapHandle(), nullptr);
        Raster mapped(5, 3, row.type, 1.0, true, false);
        EXPECT_NE(mapped.GetMemBuffer()->getMapHandle(), nullptr);
        EXPECT_TRUE(mapped.isMapped());
        EXPECT_EQ(mapped.setSize(4, 4, -1, 0.0, false), 255);
        EXPECT_EQ(mapped.GetMemBuffer()->getMapHandle(), nullptr);
        EXPECT_FALSE(mapped.isMapped());
    }
}

TEST_F(CCsRasterTest, ExhaustedMemoryIsReportedWithTheTypesLine) {
    const ReportCapture capture;
    for (const TypeRow& row : typeRows) {
        for (const bool mapped : {false, true}) {
            Raster raster(1, 1, CCS_GREY8, 1.0, false, false);
            const auto needed = static_cast<std::size_t>(totalOf(row, 9, 5) + 2 * guardOf(row, 9));
            allow(needed - 1);
            EXPECT_EQ(raster.setSize(9, 5, row.type, 2.0, mapped), 1);
            EXPECT_EQ(ReportCapture::take(),
                      Reports{errorReport(L"Memory allocation failed", 0, module, row.failureLine)});
            EXPECT_EQ(raster.GetMemBuffer(), nullptr);
            EXPECT_EQ(raster.lastOrigin(), nullptr);
            EXPECT_EQ(inUse(), 0U);
            EXPECT_FALSE(raster.isValid());
            EXPECT_EQ(raster.getWidth(), 9);
            EXPECT_EQ(raster.getHeight(), 5);
            EXPECT_EQ(raster.getType(), row.type);
            EXPECT_EQ(raster.getRatioYx(), 2.0);

            EXPECT_EQ(resultThrownBy(9, 5, row.type), 1);
            EXPECT_EQ(ReportCapture::take(),
                      Reports{errorReport(L"Memory allocation failed", 0, module, row.failureLine)});

            allow(needed);
            EXPECT_EQ(raster.setSize(9, 5, row.type, 2.0, mapped), 255);
            EXPECT_TRUE(raster.isValid());
            EXPECT_EQ(inUse(), needed);
            EXPECT_EQ(ReportCapture::take(), Reports{});
            allowAll();
        }
    }
}

TEST_F(CCsRasterTest, UnknownTypesAreRefused) {
    const ReportCapture capture;
    Raster raster(5, 3, CCS_GREY12, 1.0, false, false);
    for (const int type : {0, 8, -2, 1000}) {
        EXPECT_EQ(raster.setSize(4, 4, type, 1.0, false), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 394)});
        EXPECT_EQ(raster.GetMemBuffer(), nullptr);
        EXPECT_FALSE(raster.isValid());
        EXPECT_EQ(inUse(), 0U);
        EXPECT_EQ(resultThrownBy(4, 4, type), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 394)});
        EXPECT_EQ(resultThrownBy(4, 4, type, true), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 394)});
    }
    EXPECT_EQ(resultThrownBy(4, 4, -1), 0);
    EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", -1, module, 394)});
    EXPECT_EQ(raster.setSize(4, 4, CCS_GREY8, 0.0, false), 255);
    EXPECT_TRUE(raster.isValid());
}

TEST_F(CCsRasterTest, ARasterWhoseConstructorFailedIsNeverSized) {
    const ReportCapture capture;
    Raster raster(5, 3, CCS_GREY12, 1.5, false, false);
    raster.failConstruction();
    EXPECT_FALSE(raster.isValid());
    const ZolMemMappedBuffer* const buffer = raster.GetMemBuffer();
    EXPECT_EQ(raster.setSize(9, 9, CCS_GREY8, 2.0, true), 0);
    EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Constructor is invalid", 0, module, 401)});
    EXPECT_EQ(raster.getWidth(), 5);
    EXPECT_EQ(raster.getHeight(), 3);
    EXPECT_EQ(raster.getType(), CCS_GREY12);
    EXPECT_EQ(raster.getRatioYx(), 1.5);
    EXPECT_EQ(raster.GetMemBuffer(), buffer);
}

TEST_F(CCsRasterTest, MinusOneAndZeroKeepTypeAndRatio) {
    CCsRaster raster(5, 3, CCS_RGB8, 1.5, false, false);
    EXPECT_EQ(raster.setSize(7, 2, -1, 0.0, false), 255);
    EXPECT_EQ(raster.getType(), CCS_RGB8);
    EXPECT_EQ(raster.getRatioYx(), 1.5);
    EXPECT_EQ(raster.getPitch(), 8);
    EXPECT_EQ(raster.setSize(7, 2, CCS_GREY8, 0.5, false), 255);
    EXPECT_EQ(raster.getType(), CCS_GREY8);
    EXPECT_EQ(raster.getRatioYx(), 0.5);
    raster.setAspectRatio(0.0);
    EXPECT_EQ(raster.getRatioYx(), 0.5);
    raster.setAspectRatio(0.75);
    EXPECT_EQ(raster.getRatioYx(), 0.75);
}

TEST_F(CCsRasterTest, SetSizeReplacesTheMemory) {
    Raster raster(100, 100, CCS_RGB12, 1.0, true, false);
    EXPECT_EQ(raster.setSize(8, 1, CCS_GREY8, 1.0, false), 255);
    EXPECT_EQ(inUse(), 17U + 2 * 9);
    EXPECT_EQ(raster.lastOrigin(), raster.getOrigin());
    raster.unlock();
}

TEST_F(CCsRasterTest, SizesBeyond32BitsAreExhaustedMemory) {
    const ReportCapture capture;
    constexpr int most = std::numeric_limits<int>::max();
    for (const TypeRow& row : typeRows) {
        for (const auto& [width, height] :
             {std::pair(65536, 65536), std::pair(65536, 65535), std::pair(most, most), std::pair(most, 1),
              std::pair(1, most), std::pair(most, 0), std::pair(most - 7, 2), std::pair(0x8000, 0x7FFFFFFF / 4)}) {
            if (row.type == 6 && height == 0) continue;  // no pixels, no spare line: nothing to allocate
            if (totalOf(row, 1, 1) != 0 && row.elemSize <= 2 && width == 1) continue;  // fits 32 bits
            EXPECT_EQ(resultThrownBy(width, height, row.type), 1) << row.type << ' ' << width << ' ' << height;
            EXPECT_EQ(ReportCapture::take(),
                      Reports{errorReport(L"Memory allocation failed", 0, module, row.failureLine)});
        }
    }
    EXPECT_EQ(inUse(), 0U);
}

TEST_F(CCsRasterTest, TheLargestByteCountIsAskedForAndOneMoreIsNot) {
    // The limit shows what was asked for without any of it being allocated: total and guards, or nothing.
    const ReportCapture capture;
    allow(1000);
    // 4294967295 = 3 * 5 * 17 * 257 * 65537, so one row of that many third pixels is exactly the most.
    EXPECT_EQ(resultThrownBy(1431655765, 1, CCS_RGB24), 1);
    EXPECT_EQ(resultThrownBy(1431655766, 1, CCS_RGB24), 1);
    EXPECT_EQ(ReportCapture::take().size(), 2U);
}

TEST_F(CCsRasterTest, NegativeSizesAreExhaustedMemory) {
    const ReportCapture capture;
    constexpr int least = std::numeric_limits<int>::min();
    for (const TypeRow& row : typeRows) {
        for (const auto& [width, height] : {std::pair(-1, 4), std::pair(4, -1), std::pair(-4, -4), std::pair(-9, -9),
                                            std::pair(least, least), std::pair(least, 1), std::pair(1, least)}) {
            EXPECT_EQ(resultThrownBy(width, height, row.type), 1) << row.type << ' ' << width << ' ' << height;
            EXPECT_EQ(ReportCapture::take(),
                      Reports{errorReport(L"Memory allocation failed", 0, module, row.failureLine)});
        }
    }
}

TEST_F(CCsRasterTest, SidesOf32768AndMoreAreAllocated) {
    const CCsRaster wide(40000, 2, CCS_GREY12, 1.0, false, false);
    EXPECT_EQ(wide.getPitch(), 40000);
    const CCsRaster high(2, 40000, CCS_GREY12, 1.0, false, false);
    EXPECT_EQ(high.GetMemBuffer()->getSize(), (40001U * 4U) * 2U + 2U);
}

TEST_F(CCsRasterTest, TheSpareLineAndPixelAndTheGuardsCanBeUsed) {
    for (const TypeRow& row : typeRows) {
        CCsRaster raster(5, 3, row.type, 1.0, false, false);
        unsigned char* const origin = raster.getOrigin();
        const std::int64_t guard = guardOf(row, 5);
        for (std::int64_t i = -guard; i < totalOf(row, 5, 3) + guard; ++i) origin[i] = static_cast<unsigned char>(i);
        for (std::int64_t i = -guard; i < totalOf(row, 5, 3) + guard; ++i) {
            ASSERT_EQ(origin[i], static_cast<unsigned char>(i));
        }
        raster.unlock();
    }
}

// ------------------------------------------------------------------------------------------------ deferred allocation

TEST_F(CCsRasterTest, DeferredAllocationHappensAtTheFirstGetOrigin) {
    for (const TypeRow& row : typeRows) {
        Raster raster(9, 5, row.type, 1.0, true, true);
        EXPECT_TRUE(raster.isValid());
        EXPECT_TRUE(raster.isDeferred());
        EXPECT_EQ(raster.getPitch(), pitchOf(row, 9));
        EXPECT_EQ(raster.GetMemBuffer(), nullptr);
        EXPECT_EQ(inUse(), 0U);
        unsigned char* const origin = raster.getOrigin();
        ASSERT_NE(origin, nullptr);
        EXPECT_FALSE(raster.isDeferred());
        EXPECT_NE(raster.GetMemBuffer()->getMapHandle(), nullptr);
        EXPECT_EQ(inUse(), static_cast<std::size_t>(totalOf(row, 9, 5) + 2 * guardOf(row, 9)));
        raster.unlock();
        EXPECT_EQ(raster.getOrigin(), origin);
        raster.unlock();
    }
}

TEST_F(CCsRasterTest, ADeferredSetSizeDropsTheMemoryAndKeepsTheFlagOfTheLastCall) {
    Raster raster(9, 5, CCS_GREY8, 1.0, true, true);
    EXPECT_EQ(raster.setSize(4, 4, CCS_RGB8, 2.0, false), 255);
    EXPECT_EQ(raster.GetMemBuffer(), nullptr);
    EXPECT_EQ(raster.getPitch(), 4);
    ASSERT_NE(raster.getOrigin(), nullptr);
    EXPECT_EQ(raster.GetMemBuffer()->getMapHandle(), nullptr);
    EXPECT_EQ(raster.GetMemBuffer()->getSize(), 5U * 4 * 4 + 4);
    raster.unlock();
}

TEST_F(CCsRasterTest, ALateAllocationThatFailsGivesANullOriginAndIsTriedAgain) {
    const ReportCapture capture;
    for (const TypeRow& row : typeRows) {
        Raster raster(9, 5, row.type, 1.0, false, true);
        allow(0);
        EXPECT_EQ(raster.getOrigin(), nullptr);
        raster.unlock();
        EXPECT_FALSE(raster.isValid());
        EXPECT_FALSE(raster.isDeferred());
        EXPECT_EQ(raster.getOrigin(), nullptr);
        const auto report = errorReport(L"Memory allocation failed", 0, module, row.failureLine);
        EXPECT_EQ(ReportCapture::take(), (Reports{report, report}));
        allowAll();
        EXPECT_NE(raster.getOrigin(), nullptr);
        EXPECT_TRUE(raster.isValid());
        raster.unlock();
    }
}

TEST_F(CCsRasterTest, WholeBufferOperationsDoNotAllocateADeferredRaster) {
    CCsRaster raster(9, 5, CCS_GREY8, 1.0, false, true);
    EXPECT_EQ(raster.clear(), 0);
    EXPECT_EQ(raster.fill(1), 0);
    EXPECT_EQ(raster.GetMemBuffer(), nullptr);
}

TEST_F(CCsRasterTest, LocksAndUnlocksAreBalanced) {
    CCsRaster raster(9, 5, CCS_GREY8, 1.0, false, false);
    const int locks = raster.GetMemBuffer()->getLockCount();
    raster.getOrigin();
    EXPECT_EQ(raster.GetMemBuffer()->getLockCount(), locks + 1);
    raster.unlock();
    raster.fill(3);
    raster.shiftRight(1);
    raster.clear();
    EXPECT_EQ(raster.GetMemBuffer()->getLockCount(), locks);
}

// ------------------------------------------------------------------------------------------------ adopted buffers

TEST_F(CCsRasterTest, AnAdoptedBufferHasNoPadding) {
    const ReportCapture capture;
    ZolMemMappedBuffer* const buffer = newBuffer(5 * 3 * 2);
    {
        Raster raster(buffer, 5, 3, CCS_GREY12, 1.5);
        EXPECT_EQ(raster.GetMemBuffer(), buffer);
        EXPECT_EQ(raster.getWidth(), 5);
        EXPECT_EQ(raster.getHeight(), 3);
        EXPECT_EQ(raster.getPitch(), 5);
        EXPECT_EQ(raster.getType(), CCS_GREY12);
        EXPECT_EQ(raster.getRatioYx(), 1.5);
        EXPECT_TRUE(raster.isValid());
        EXPECT_TRUE(raster.isExternal());
        EXPECT_TRUE(raster.isMapped());
        EXPECT_FALSE(raster.isDeferred());
        EXPECT_EQ(buffer->getLockCount(), 0);
        EXPECT_EQ(raster.getOrigin(), buffer->lock());
        raster.unlock();
        raster.unlock();
    }
    EXPECT_EQ(inUse(), 0U);
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsRasterTest, AnAdoptedBufferMayLeaveTypeAndRatioUnset) {
    const Raster raster(newBuffer(15), 5, 3, -1, 0.0);
    EXPECT_EQ(raster.getType(), -1);
    EXPECT_EQ(raster.getRatioYx(), 0.0);
}

TEST_F(CCsRasterTest, SetSizeOfAnAdoptedRasterAllocatesItsOwn) {
    Raster raster(newBuffer(15), 5, 3, CCS_GREY8, 1.0);
    EXPECT_EQ(raster.setSize(5, 3, -1, 0.0, false), 255);
    EXPECT_FALSE(raster.isExternal());
    EXPECT_EQ(raster.getPitch(), 8);
    EXPECT_EQ(inUse(), 4U * 8 + 1 + 2 * 9);
}

TEST_F(CCsRasterTest, ANullBufferIsAllocatedAtTheFirstGetOrigin) {
    Raster raster(nullptr, 5, 3, CCS_GREY8, 1.0);
    EXPECT_TRUE(raster.isValid());
    EXPECT_EQ(raster.GetMemBuffer(), nullptr);
    const Raster copy(raster);
    EXPECT_NE(copy.GetMemBuffer(), nullptr);
    EXPECT_EQ(copy.getPitch(), 8);
    EXPECT_NE(raster.getOrigin(), nullptr);
    EXPECT_EQ(raster.getPitch(), 8);
    EXPECT_FALSE(raster.isExternal());
    raster.unlock();
}

}  // namespace
