#include "zolcs/ccsrecords.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace {

constexpr bool wide = sizeof(void*) == 8;
static_assert(wide || sizeof(void*) == 4);

static_assert(sizeof(RECT) == 16);

static_assert(offsetof(CCsBitmapShutterInfo, tag) == 0);
static_assert(offsetof(CCsBitmapShutterInfo, originX) == 4);
static_assert(offsetof(CCsBitmapShutterInfo, originY) == 8);
static_assert(offsetof(CCsBitmapShutterInfo, rows) == 12);
static_assert(offsetof(CCsBitmapShutterInfo, columns) == 14);
static_assert(offsetof(CCsBitmapShutterInfo, data) == 16);
static_assert(offsetof(CCsBitmapShutterInfo, group) == (wide ? 24 : 20));
static_assert(offsetof(CCsBitmapShutterInfo, unused32) == (wide ? 28 : 24));
static_assert(offsetof(CCsBitmapShutterInfo, unused8a) == (wide ? 32 : 28));
static_assert(offsetof(CCsBitmapShutterInfo, unused8b) == (wide ? 33 : 29));
static_assert(offsetof(CCsBitmapShutterInfo, reserved16) == (wide ? 34 : 30));
static_assert(offsetof(CCsBitmapShutterInfo, shutterValueAux) == (wide ? 36 : 32));
static_assert(offsetof(CCsBitmapShutterInfo, presentationValue) == (wide ? 38 : 34));
static_assert(sizeof(CCsBitmapShutterInfo) == (wide ? 40 : 36));

static_assert(offsetof(CCs60XXOverlay, leading) == 0);
static_assert(offsetof(CCs60XXOverlay, originX) == 4);
static_assert(offsetof(CCs60XXOverlay, originY) == 8);
static_assert(offsetof(CCs60XXOverlay, rows) == 12);
static_assert(offsetof(CCs60XXOverlay, columns) == 14);
static_assert(offsetof(CCs60XXOverlay, data) == 16);
static_assert(offsetof(CCs60XXOverlay, trailing) == (wide ? 24 : 20));
static_assert(sizeof(CCs60XXOverlay) == (wide ? 40 : 32));

static_assert(offsetof(CCsRectangularShutterInfo, present) == 0);
static_assert(offsetof(CCsRectangularShutterInfo, rect) == 4);
static_assert(sizeof(CCsRectangularShutterInfo) == 20);

template <typename Record>
std::size_t offset(const Record& record, const void* member) {
    return static_cast<std::size_t>(static_cast<const char*>(member) - reinterpret_cast<const char*>(&record));
}

TEST(CCsRecords, CircularShutterLayout) {
    const CCsCircularShutterInfo info;
    EXPECT_EQ(offset(info, &info.present), 0U);
    EXPECT_EQ(offset(info, &info.center), wide ? 8U : 4U);
    EXPECT_EQ(offset(info, &info.radius), wide ? 24U : 16U);
    EXPECT_EQ(offset(info, &info.bounds), wide ? 28U : 20U);
    EXPECT_EQ(sizeof info, wide ? 48U : 36U);
}

TEST(CCsRecords, DisplayShutterOrder) {
    const CCsDisplayShutterInfo info;
    EXPECT_EQ(offset(info, &info.rectangular), 0U);
    EXPECT_EQ(offset(info, &info.circular), wide ? 24U : 20U);
    EXPECT_EQ(offset(info, &info.polygonPresent), wide ? 72U : 56U);
    EXPECT_GT(offset(info, &info.polygon), offset(info, &info.polygonPresent));
    EXPECT_EQ(offset(info, &info.unused[0]), offset(info, &info.polygon) + sizeof info.polygon);
    EXPECT_EQ(offset(info, &info.presentationValue), offset(info, &info.unused[0]) + 16);
}

TEST(CCsRecords, NewRecordsAreEmpty) {
    const CCsDisplayShutterInfo info;
    EXPECT_EQ(info.rectangular.present, 0);
    EXPECT_EQ(info.rectangular.rect.left, 0);
    EXPECT_EQ(info.rectangular.rect.top, 0);
    EXPECT_EQ(info.rectangular.rect.right, 0);
    EXPECT_EQ(info.rectangular.rect.bottom, 0);
    EXPECT_EQ(info.circular.present, 0);
    EXPECT_EQ(info.circular.center.x, 0);
    EXPECT_EQ(info.circular.center.y, 0);
    EXPECT_EQ(info.circular.radius, 0.0F);
    EXPECT_EQ(info.circular.bounds.right, 0);
    EXPECT_EQ(info.polygonPresent, 0);
    EXPECT_TRUE(info.polygon.empty());
    for (const std::uint32_t value : info.unused) EXPECT_EQ(value, 0U);
    EXPECT_EQ(info.presentationValue, 0);

    const CCsBitmapShutterInfo bitmap;
    EXPECT_EQ(bitmap.tag, 0U);
    EXPECT_EQ(bitmap.data, nullptr);
    EXPECT_EQ(bitmap.group, 0x6000U);
    EXPECT_EQ(bitmap.unused32, 0U);
    EXPECT_EQ(bitmap.unused8a, 0);
    EXPECT_EQ(bitmap.unused8b, 0);
    EXPECT_EQ(bitmap.reserved16, 0);
    EXPECT_EQ(bitmap.shutterValueAux, 0);
    EXPECT_EQ(bitmap.presentationValue, 0);
}

}  // namespace
