// DIB sections: layouts, sizes, pixels of their own and pixels on a file mapping.
#include "platform/gdi/device.h"

#include <limits>

namespace zoltest {
namespace {

class DibTest : public GdiTest {};

HBITMAP makeDib(LONG width, LONG height, WORD bits, void** pixels, HANDLE section = nullptr, DWORD offset = 0) {
    const BITMAPINFO info = dibInfo(width, height, bits);
    return CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, pixels, section, offset);
}

TEST_F(DibTest, RowsStartAtMultiplesOfFourBytes) {
    const struct {
        LONG width;
        WORD bits;
        LONG stride;
    } cases[] = {{1, 32, 4}, {5, 32, 20}, {1, 24, 4}, {2, 24, 8}, {3, 24, 12}, {4, 24, 12}, {5, 24, 16}};
    for (const auto& c : cases) {
        void* pixels = nullptr;
        HBITMAP bitmap = makeDib(c.width, 3, c.bits, &pixels);
        ASSERT_NE(bitmap, nullptr);
        BITMAP record{};
        ASSERT_EQ(GetObjectW(bitmap, sizeof(record), &record), static_cast<int>(sizeof(record)));
        EXPECT_EQ(record.bmType, 0);
        EXPECT_EQ(record.bmWidth, c.width);
        EXPECT_EQ(record.bmHeight, 3);
        EXPECT_EQ(record.bmWidthBytes, c.stride);
        EXPECT_EQ(record.bmPlanes, 1);
        EXPECT_EQ(record.bmBitsPixel, c.bits);
        EXPECT_EQ(record.bmBits, pixels);
        EXPECT_TRUE(DeleteObject(bitmap));
    }
}

TEST_F(DibTest, NewPixelsAreZero) {
    Device device(33, 7, {24, Rows::topDown});
    for (std::size_t i = 0; i < device.size(); ++i) ASSERT_EQ(device.bits()[i], 0);
}

TEST_F(DibTest, ARecordTellsTheWholeSection) {
    void* pixels = nullptr;
    HBITMAP bitmap = makeDib(5, -3, 32, &pixels);
    DIBSECTION record{};
    ASSERT_EQ(GetObjectW(bitmap, sizeof(record), &record), static_cast<int>(sizeof(record)));
    EXPECT_EQ(record.dsBm.bmHeight, 3);
    EXPECT_EQ(record.dsBmih.biSize, sizeof(BITMAPINFOHEADER));
    EXPECT_EQ(record.dsBmih.biWidth, 5);
    EXPECT_EQ(record.dsBmih.biBitCount, 32);
    EXPECT_EQ(record.dsBmih.biSizeImage, 60U);
    EXPECT_EQ(record.dshSection, nullptr);
    EXPECT_EQ(record.dsOffset, 0U);
    EXPECT_EQ(GetObjectW(bitmap, 0, nullptr), static_cast<int>(sizeof(BITMAP)));
    BITMAP part{};
    EXPECT_EQ(GetObjectW(bitmap, 3, &part), 0);
    EXPECT_TRUE(DeleteObject(bitmap));
}

TEST_F(DibTest, TheFirstRowInMemoryIsTheTopOrTheBottom) {
    for (const Layout& layout : layouts) {
        Device device(3, 4, layout);
        ASSERT_TRUE(PatBlt(device, 0, 0, 3, 1, WHITENESS));
        const std::size_t last = device.stride() * 3;
        const std::size_t top = layout.rows == Rows::topDown ? 0 : last;
        GdiFlush();
        EXPECT_EQ(device.bits()[top], 255) << layout;
        EXPECT_EQ(device.bits()[last - top], 0) << layout;
    }
}

TEST_F(DibTest, ImpossibleSizesAndFormatsAreRefused) {
    constexpr LONG most = std::numeric_limits<LONG>::max();
    constexpr LONG least = std::numeric_limits<LONG>::min();
    const struct {
        LONG width, height;
        WORD bits;
    } cases[] = {{0, 4, 32},         {4, 0, 32},         {-4, 4, 32},        {most, 4, 32},
                 {4, most, 32},      {most, most, 32},   {4, least, 32},     {least, 4, 32},
                 {least, least, 24}, {65536, 65536, 32}, {65536, -65536, 24}};
    for (const auto& c : cases) {
        void* pixels = &pixels;
        EXPECT_EQ(makeDib(c.width, c.height, c.bits, &pixels), nullptr) << c.width << " x " << c.height;
        EXPECT_EQ(pixels, nullptr);
    }
    EXPECT_EQ(CreateDIBSection(nullptr, nullptr, DIB_RGB_COLORS, nullptr, nullptr, 0), nullptr);
    BITMAPINFO info = dibInfo(4, 4);
    info.bmiHeader.biSize = 3;
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, nullptr, 0), nullptr);
}

TEST_F(DibTest, PixelsOnAMappingAreSeenThroughTheMapping) {
    constexpr DWORD offset = 16;
    HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 16 + 5 * 4 * 3, nullptr);
    ASSERT_NE(mapping, nullptr);
    auto* view = static_cast<unsigned char*>(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0));
    ASSERT_NE(view, nullptr);
    void* pixels = nullptr;
    HBITMAP bitmap = makeDib(5, -3, 32, &pixels, mapping, offset);
    ASSERT_NE(bitmap, nullptr);
    DIBSECTION record{};
    GetObjectW(bitmap, sizeof(record), &record);
    EXPECT_EQ(record.dshSection, mapping);
    EXPECT_EQ(record.dsOffset, offset);

    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ before = SelectObject(dc, bitmap);
    EXPECT_TRUE(PatBlt(dc, 1, 1, 1, 1, WHITENESS));
    GdiFlush();
    EXPECT_EQ(view[offset + 5 * 4 + 4], 255);
    EXPECT_EQ(view[offset + 5 * 4 + 3], 0);
    view[offset] = 77;
    EXPECT_EQ(static_cast<unsigned char*>(pixels)[0], 77);

    // The pixels outlive the view and the handle that made it.
    EXPECT_TRUE(UnmapViewOfFile(view));
    EXPECT_TRUE(CloseHandle(mapping));
    EXPECT_EQ(static_cast<unsigned char*>(pixels)[0], 77);
    SelectObject(dc, before);
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_TRUE(DeleteObject(bitmap));
}

TEST_F(DibTest, OneMappingMayCarryManyBitmapsInTurn) {
    HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4 * 4 * 4, nullptr);
    for (std::uint32_t i = 0; i < 20; ++i) {
        void* pixels = nullptr;
        HBITMAP bitmap = makeDib(4, -4, 32, &pixels, mapping);
        ASSERT_NE(bitmap, nullptr);
        std::uint32_t value = 0;
        std::memcpy(&value, pixels, sizeof(value));
        EXPECT_EQ(value, i);
        ++value;
        std::memcpy(pixels, &value, sizeof(value));
        EXPECT_TRUE(DeleteObject(bitmap));
    }
    EXPECT_TRUE(CloseHandle(mapping));
}

TEST_F(DibTest, ASectionMustFitItsMapping) {
    HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 65536, nullptr);
    void* pixels = nullptr;
    HBITMAP bitmap = makeDib(128, 128, 32, &pixels, mapping);
    EXPECT_NE(bitmap, nullptr);
    EXPECT_TRUE(DeleteObject(bitmap));
    EXPECT_EQ(makeDib(128, 1024, 32, &pixels, mapping), nullptr);
    EXPECT_EQ(pixels, nullptr);
    EXPECT_EQ(makeDib(128, 1, 32, &pixels, mapping, 131072), nullptr);
    EXPECT_TRUE(CloseHandle(mapping));
}

TEST_F(DibTest, MappingsRefuseWhatTheyCannotBe) {
    EXPECT_EQ(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0, nullptr), nullptr);
    EXPECT_EQ(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, 0, 0, 4096, nullptr), nullptr);
    EXPECT_FALSE(CloseHandle(nullptr));
    EXPECT_EQ(MapViewOfFile(nullptr, FILE_MAP_ALL_ACCESS, 0, 0, 0), nullptr);
    EXPECT_FALSE(UnmapViewOfFile(nullptr));
}

TEST_F(DibTest, ViewsBeginAtAnOffset) {
    HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 2 * 65536, nullptr);
    auto* whole = static_cast<unsigned char*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
    auto* part = static_cast<unsigned char*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 65536, 100));
    ASSERT_NE(whole, nullptr);
    ASSERT_NE(part, nullptr);
    EXPECT_EQ(part[99], 0);
    part[99] = 5;
    EXPECT_EQ(whole[65536 + 99], 5);
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 100, 100), nullptr);
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 65536, 2 * 65536), nullptr);
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_WRITE, 1, 0, 0), nullptr);
    EXPECT_TRUE(UnmapViewOfFile(part));
    EXPECT_FALSE(UnmapViewOfFile(part));
    EXPECT_TRUE(UnmapViewOfFile(whole));
    EXPECT_TRUE(CloseHandle(mapping));
}

}  // namespace
}  // namespace zoltest
