// Copies and fills of rectangles: exact pixels, raster operations, clipping, stretching, mirroring.
#include "platform/gdi/device.h"
#include "support/test_data.h"

namespace zoltest {
namespace {

class BlitTest : public GdiTest {};

// ------------------------------------------------------------------------------------------------ fills

TEST_F(BlitTest, PatBltWritesBlackWhiteAndTheBrush) {
    for (const Layout& layout : layouts) {
        Device device(9, 7, layout);
        const Using brush(device, CreateSolidBrush(RGB(0x11, 0x22, 0x33)));
        const struct {
            DWORD rop;
            std::uint32_t value;
        } cases[] = {{BLACKNESS, 0}, {WHITENESS, 0xFFFFFFFF}, {PATCOPY, 0x00112233}};
        for (const auto& c : cases) {
            fillPattern(device);
            Expected expected(device);
            EXPECT_TRUE(PatBlt(device, 2, 1, 5, 4, c.rop));
            for (int y = 1; y < 5; ++y) {
                for (int x = 2; x < 7; ++x) expected.at(x, y) = device.trimmed(c.value);
            }
            EXPECT_TRUE(expected.holds(device));
        }
    }
}

TEST_F(BlitTest, PatBltCombinesWithWhatIsThere) {
    for (const Layout& layout : layouts) {
        Device device(4, 3, layout);
        const Using brush(device, CreateSolidBrush(RGB(0x11, 0x22, 0x33)));
        fillPattern(device);
        Expected expected(device);
        EXPECT_TRUE(PatBlt(device, 0, 0, 2, 3, DSTINVERT));
        EXPECT_TRUE(PatBlt(device, 2, 0, 2, 3, PATINVERT));
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 2; ++x) expected.at(x, y) = device.trimmed(~expected.at(x, y));
            for (int x = 2; x < 4; ++x) expected.at(x, y) ^= 0x112233U;
        }
        EXPECT_TRUE(expected.holds(device));
    }
}

TEST_F(BlitTest, PatBltIsCutAtAllSides) {
    for (const Layout& layout : layouts) {
        const RECT areas[] = {{-3, 1, 2, 3},    {4, -9, 5, 2},  {3, 2, 99, 3}, {1, 3, 2, 99},
                              {-9, -9, 99, 99}, {-9, -9, 0, 0}, {6, 5, 9, 9}};
        for (const RECT& area : areas) {
            Device device(6, 5, layout);
            Expected expected(device);
            EXPECT_TRUE(PatBlt(device, area.left, area.top, area.right - area.left, area.bottom - area.top, WHITENESS));
            for (int y = 0; y < 5; ++y) {
                for (int x = 0; x < 6; ++x) {
                    if (x >= area.left && x < area.right && y >= area.top && y < area.bottom) {
                        expected.at(x, y) = device.trimmed(0xFFFFFFFF);
                    }
                }
            }
            EXPECT_TRUE(expected.holds(device));
        }
    }
}

TEST_F(BlitTest, PaddingBytesOfRowsStayUntouched) {
    Device device(3, 2, {24, Rows::topDown});
    std::memset(device.bits(), 0x5A, device.size());
    EXPECT_TRUE(PatBlt(device, -5, -5, 50, 50, BLACKNESS));
    GdiFlush();
    for (std::size_t y = 0; y < 2; ++y) {
        for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(device.bits()[y * 12 + i], 0);
        for (std::size_t i = 9; i < 12; ++i) EXPECT_EQ(device.bits()[y * 12 + i], 0x5A);
    }
}

TEST_F(BlitTest, NegativeExtentsCountBackwardFromTheFirstPixel) {
    Device device(8, 6);
    Expected expected(device);
    EXPECT_TRUE(PatBlt(device, 5, 4, -3, -2, WHITENESS));
    for (int y = 3; y <= 4; ++y) {
        for (int x = 3; x <= 5; ++x) expected.at(x, y) = 0xFFFFFFFF;
    }
    EXPECT_TRUE(expected.holds(device));
}

TEST_F(BlitTest, EmptyFillsChangeNothing) {
    Device device(4, 4);
    fillPattern(device);
    Expected expected(device);
    PatBlt(device, 1, 1, 0, 2, WHITENESS);
    PatBlt(device, 1, 1, 2, 0, WHITENESS);
    EXPECT_TRUE(expected.holds(device));
}

TEST_F(BlitTest, AHollowBrushFillsNothing) {
    Device device(4, 4);
    fillPattern(device);
    Expected expected(device);
    SelectObject(device, GetStockObject(NULL_BRUSH));
    const RECT area{0, 0, 3, 3};
    EXPECT_TRUE(PatBlt(device, 0, 0, 3, 3, PATCOPY));
    EXPECT_NE(FillRect(device, &area, static_cast<HBRUSH>(GetStockObject(NULL_BRUSH))), 0);
    EXPECT_TRUE(expected.holds(device));
    EXPECT_TRUE(PatBlt(device, 0, 0, 1, 1, BLACKNESS));  // which needs no brush
    EXPECT_EQ(device.pixel(0, 0), 0U);
}

TEST_F(BlitTest, FillRectUsesTheGivenBrush) {
    Device device(6, 5);
    Expected expected(device);
    HBRUSH brush = CreateSolidBrush(RGB(9, 8, 7));
    const RECT area{1, 2, 4, 4};
    EXPECT_NE(FillRect(device, &area, brush), 0);
    for (int y = 2; y < 4; ++y) {
        for (int x = 1; x < 4; ++x) expected.at(x, y) = 0x090807;
    }
    EXPECT_TRUE(expected.holds(device));
    EXPECT_TRUE(DeleteObject(brush));
}

// ------------------------------------------------------------------------------------------------ copies

TEST_F(BlitTest, CopiesBetweenAllLayouts) {
    for (const Layout& from : layouts) {
        for (const Layout& to : layouts) {
            Device source(7, 5, from);
            Device device(9, 8, to);
            fillPattern(source, 3);
            fillPattern(device, 4);
            Expected expected(device);
            EXPECT_TRUE(BitBlt(device, 3, 2, 4, 3, source, 1, 1, SRCCOPY));
            for (int y = 0; y < 3; ++y) {
                for (int x = 0; x < 4; ++x) expected.at(3 + x, 2 + y) = device.trimmed(source.pixel(1 + x, 1 + y));
            }
            EXPECT_TRUE(expected.holds(device)) << "from " << from;
        }
    }
}

TEST_F(BlitTest, CopiesAreCutAtBothBitmaps) {
    Random random(20240901);
    for (int round = 0; round < 300; ++round) {
        Device source(random.integer(1, 9), random.integer(1, 9), layouts[random.integer(0, 3)]);
        Device device(random.integer(1, 9), random.integer(1, 9), layouts[random.integer(0, 3)]);
        fillPattern(source, 5);
        fillPattern(device, 6);
        Expected expected(device);
        const int x = random.integer(-5, 10);
        const int y = random.integer(-5, 10);
        const int width = random.integer(1, 12);
        const int height = random.integer(1, 12);
        const int sourceX = random.integer(-5, 10);
        const int sourceY = random.integer(-5, 10);
        EXPECT_TRUE(BitBlt(device, x, y, width, height, source, sourceX, sourceY, SRCCOPY));
        for (int j = 0; j < height; ++j) {
            for (int i = 0; i < width; ++i) {
                const int fromX = sourceX + i;
                const int fromY = sourceY + j;
                const bool inSource = fromX >= 0 && fromX < source.width() && fromY >= 0 && fromY < source.height();
                const bool inDevice = x + i >= 0 && x + i < device.width() && y + j >= 0 && y + j < device.height();
                if (inSource && inDevice) expected.at(x + i, y + j) = device.trimmed(source.pixel(fromX, fromY));
            }
        }
        ASSERT_TRUE(expected.holds(device)) << "round " << round;
    }
}

TEST_F(BlitTest, CopiesWithinABitmapDoNotReadWhatTheyWrote) {
    for (const Layout& layout : layouts) {
        for (const POINT shift : {POINT{1, 0}, POINT{-1, 0}, POINT{0, 1}, POINT{0, -1}, POINT{2, 1}, POINT{-2, -1}}) {
            Device device(9, 8, layout);
            fillPattern(device);
            const Expected before(device);
            Expected old = before;
            Expected expected = before;
            EXPECT_TRUE(BitBlt(device, 2 + shift.x, 2 + shift.y, 5, 4, device, 2, 2, SRCCOPY));
            for (int y = 2; y < 6; ++y) {
                for (int x = 2; x < 7; ++x) expected.at(x + shift.x, y + shift.y) = old.at(x, y);
            }
            EXPECT_TRUE(expected.holds(device)) << shift.x << ", " << shift.y;
        }
    }
}

TEST_F(BlitTest, RasterOperationsWorkBitByBit) {
    Device source(3, 2);
    Device device(3, 2);
    const Using brush(device, CreateSolidBrush(RGB(0x0F, 0xF0, 0x55)));
    const std::uint32_t p = 0x0FF055;
    const auto check = [&](DWORD rop, auto operation) {
        fillPattern(source, 8);
        fillPattern(device, 9);
        Expected expected(device);
        EXPECT_TRUE(BitBlt(device, 0, 0, 3, 2, source, 0, 0, rop));
        for (int y = 0; y < 2; ++y) {
            for (int x = 0; x < 3; ++x) expected.at(x, y) = operation(source.pixel(x, y), expected.at(x, y));
        }
        EXPECT_TRUE(expected.holds(device)) << std::hex << rop;
    };
    using U = std::uint32_t;
    check(SRCPAINT, [](U s, U d) { return s | d; });
    check(SRCAND, [](U s, U d) { return s & d; });
    check(SRCINVERT, [](U s, U d) { return s ^ d; });
    check(SRCERASE, [](U s, U d) { return s & ~d; });
    check(NOTSRCCOPY, [](U s, U) { return ~s; });
    check(NOTSRCERASE, [](U s, U d) { return ~(s | d); });
    check(MERGEPAINT, [](U s, U d) { return ~s | d; });
    check(MERGECOPY, [&](U s, U) { return s & p; });
    check(PATPAINT, [&](U s, U d) { return p | ~s | d; });
    check(BLACKNESS, [](U, U) { return U{0}; });
    check(WHITENESS, [](U, U) { return ~U{0}; });
    check(DSTINVERT, [](U, U d) { return ~d; });
}

TEST_F(BlitTest, OperationsWithoutASourceNeedNone) {
    Device device(2, 2);
    EXPECT_TRUE(BitBlt(device, 0, 0, 2, 2, nullptr, 0, 0, WHITENESS));
    EXPECT_EQ(device.pixel(1, 1), 0xFFFFFFFFU);
    EXPECT_FALSE(BitBlt(device, 0, 0, 2, 2, nullptr, 0, 0, SRCCOPY));
}

TEST_F(BlitTest, TheClipRegionBoundsEveryCopy) {
    Device source(8, 8);
    Device device(8, 8);
    fillPattern(source);
    HRGN clip = CreateRectRgn(1, 2, 4, 7);
    HRGN hole = CreateRectRgn(2, 3, 3, 5);
    EXPECT_EQ(CombineRgn(clip, clip, hole, RGN_DIFF), COMPLEXREGION);
    EXPECT_EQ(SelectClipRgn(device, clip), COMPLEXREGION);
    EXPECT_TRUE(BitBlt(device, 0, 0, 8, 8, source, 0, 0, SRCCOPY));
    Expected expected(device);
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            expected.at(x, y) = PtInRegion(clip, x, y) ? source.pixel(x, y) : 0;
        }
    }
    EXPECT_TRUE(expected.holds(device));
    EXPECT_EQ(SelectClipRgn(device, nullptr), SIMPLEREGION);
    EXPECT_TRUE(BitBlt(device, 0, 0, 8, 8, source, 0, 0, SRCCOPY));
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) expected.at(x, y) = source.pixel(x, y);
    }
    EXPECT_TRUE(expected.holds(device));
    DeleteObject(clip);
    DeleteObject(hole);
}

// ------------------------------------------------------------------------------------------------ stretches

/// For each of `to` destination pixels the source pixel of `from`, in the plainest words: enlarging, the pixel under
/// the destination pixel's middle; shrinking, every source pixel goes to the destination pixel under its middle (where
/// two meet, to the first), and the last column or the first row that goes there stays.
std::vector<int> sampled(int from, int to, bool lastStays) {
    const auto under = [](int index, int extent, int otherExtent) {
        const int middle = (2 * index + 1) * otherExtent;  // in units of half a pixel / extent
        const int whole = middle / (2 * extent);
        return middle % (2 * extent) == 0 ? whole - 1 : whole;
    };
    std::vector<int> out(static_cast<std::size_t>(to), -1);
    if (to >= from) {
        for (int i = 0; i < to; ++i) out[static_cast<std::size_t>(i)] = under(i, to, from);
        return out;
    }
    for (int i = 0; i < from; ++i) {
        int& at = out[static_cast<std::size_t>(under(i, from, to))];
        if (lastStays || at < 0) at = i;
    }
    return out;
}

TEST_F(BlitTest, StretchesTakeTheNearestPixel) {
    Random random(20240902);
    for (int round = 0; round < 400; ++round) {
        const int width = random.integer(1, 12);
        const int height = random.integer(1, 12);
        Device source(width, height, layouts[random.integer(0, 3)]);
        Device device(random.integer(1, 20), random.integer(1, 20), layouts[random.integer(0, 3)]);
        fillPattern(source, static_cast<std::uint32_t>(round));
        const bool mirrorX = random.chance(0.3);
        const bool mirrorY = random.chance(0.3);
        const int toWidth = random.integer(1, 25);
        const int toHeight = random.integer(1, 25);
        const int left = random.integer(-8, 8);
        const int top = random.integer(-8, 8);
        EXPECT_NE(SetStretchBltMode(device, COLORONCOLOR), 0);
        Expected expected(device);
        const int lines = StretchDIBits(device, mirrorX ? left + toWidth - 1 : left, mirrorY ? top + toHeight - 1 : top,
                                        mirrorX ? -toWidth : toWidth, mirrorY ? -toHeight : toHeight, 0, 0, width,
                                        height, source.bits(), &source.info(), DIB_RGB_COLORS, SRCCOPY);
        EXPECT_EQ(lines, height);
        const std::vector<int> columns = sampled(width, toWidth, true);
        const std::vector<int> rows = sampled(height, toHeight, false);
        for (int j = 0; j < toHeight; ++j) {
            for (int i = 0; i < toWidth; ++i) {
                const int x = left + i;
                const int y = top + j;
                if (x < 0 || x >= device.width() || y < 0 || y >= device.height()) continue;
                const int column = columns[static_cast<std::size_t>(mirrorX ? toWidth - 1 - i : i)];
                const int row = rows[static_cast<std::size_t>(mirrorY ? toHeight - 1 - j : j)];
                expected.at(x, y) = device.trimmed(source.pixel(column, row));
            }
        }
        ASSERT_TRUE(expected.holds(device))
            << "round " << round << ": " << width << " x " << height << " to " << toWidth << " x " << toHeight
            << (mirrorX ? " mirrored" : "") << (mirrorY ? " upside down" : "");
    }
}

TEST_F(BlitTest, StretchBltDoesTheSame) {
    Device source(4, 3);
    fillPattern(source);
    Device device(9, 7);
    Device other(9, 7);
    SetStretchBltMode(device, COLORONCOLOR);
    SetStretchBltMode(other, COLORONCOLOR);
    EXPECT_TRUE(StretchBlt(device, 1, 1, 7, 5, source, 0, 0, 4, 3, SRCCOPY));
    EXPECT_EQ(StretchDIBits(other, 1, 1, 7, 5, 0, 0, 4, 3, source.bits(), &source.info(), DIB_RGB_COLORS, SRCCOPY), 3);
    EXPECT_TRUE(Expected(device).holds(other));
}

TEST_F(BlitTest, SourceRowsOfABottomUpDibCountFromTheBottom) {
    Device source(1, 4, {32, Rows::bottomUp});
    for (int y = 0; y < 4; ++y) source.setPixel(0, y, static_cast<std::uint32_t>(y + 1));
    Device device(1, 6);
    SetStretchBltMode(device, COLORONCOLOR);
    EXPECT_EQ(StretchDIBits(device, 0, 0, 1, 2, 0, 1, 1, 2, source.bits(), &source.info(), DIB_RGB_COLORS, SRCCOPY), 4);
    EXPECT_EQ(device.pixel(0, 0), 2U);
    EXPECT_EQ(device.pixel(0, 1), 3U);
    EXPECT_EQ(StretchDIBits(device, 0, 0, 1, 4, 0, 0, 1, 2, source.bits(), &source.info(), DIB_RGB_COLORS, SRCCOPY), 4);
    EXPECT_EQ(device.pixel(0, 0), 3U);
    EXPECT_EQ(device.pixel(0, 1), 3U);
    EXPECT_EQ(device.pixel(0, 2), 4U);
    EXPECT_EQ(device.pixel(0, 3), 4U);
}

TEST_F(BlitTest, SourceRowsOfATopDownDibCountFromTheTopOnlyFromTheOriginOrWithAnOperation) {
    Device source(1, 5);
    for (int y = 0; y < 5; ++y) source.setPixel(0, y, static_cast<std::uint32_t>(y + 1));
    const struct {
        int row, height, sourceHeight;
        DWORD rop;
        std::vector<std::uint32_t> rows;
    } cases[] = {{0, 2, 2, SRCCOPY, {1, 2, 0, 0}},  {1, 2, 2, SRCCOPY, {3, 4, 0, 0}},
                 {0, 4, 2, SRCCOPY, {4, 4, 5, 5}},  {0, 2, 2, SRCPAINT, {1, 2, 0, 0}},
                 {1, 2, 2, SRCPAINT, {2, 3, 0, 0}}, {1, 4, 2, SRCPAINT, {2, 2, 3, 3}}};
    for (const auto& c : cases) {
        Device device(1, 4);
        SetStretchBltMode(device, COLORONCOLOR);
        EXPECT_NE(StretchDIBits(device, 0, 0, 1, c.height, 0, c.row, 1, c.sourceHeight, source.bits(), &source.info(),
                                DIB_RGB_COLORS, c.rop),
                  0);
        for (int y = 0; y < 4; ++y) {
            EXPECT_EQ(device.pixel(0, y), c.rows[static_cast<std::size_t>(y)])
                << c.row << ", " << c.height << ", " << std::hex << c.rop << " at " << y;
        }
    }
}

TEST_F(BlitTest, WhatShrinksToASinglePixelLeavesItsLastOneOut) {
    Device source(5, 5);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 5; ++x) source.setPixel(x, y, static_cast<std::uint32_t>(10 * y + x + 1));
    }
    Device device(1, 1);
    SetStretchBltMode(device, COLORONCOLOR);
    const auto blit = [&](DWORD rop) {
        device.setPixel(0, 0, 0);
        EXPECT_TRUE(StretchBlt(device, 0, 0, 1, 1, source, 1, 2, 3, 2, rop));
        return device.pixel(0, 0);
    };
    const auto dib = [&](DWORD rop) {
        device.setPixel(0, 0, 0);
        EXPECT_NE(StretchDIBits(device, 0, 0, 1, 1, 1, 2, 3, 2, source.bits(), &source.info(), DIB_RGB_COLORS, rop), 0);
        return device.pixel(0, 0);
    };
    // Of the columns the last one that takes part, of the rows the first one.
    EXPECT_EQ(blit(SRCCOPY), 23U);
    EXPECT_EQ(blit(SRCPAINT), 23U);
    EXPECT_EQ(dib(SRCPAINT), 23U);
    EXPECT_EQ(dib(SRCCOPY), 14U);  // rows counted from the bottom; here all three columns take part
}

TEST_F(BlitTest, AWideImageOfWhichLittleShowsIsDrawnAtOnce) {
    Device source(1000, 1000);
    fillPattern(source);
    Device device(5, 5);
    SetStretchBltMode(device, COLORONCOLOR);
    EXPECT_EQ(StretchDIBits(device, -500000, -500000, 1000000, 1000000, 0, 0, 1000, 1000, source.bits(), &source.info(),
                            DIB_RGB_COLORS, SRCCOPY),
              1000);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 5; ++x) EXPECT_EQ(device.pixel(x, y), source.pixel(500, 500));
    }
}

TEST_F(BlitTest, UnusableBitsAreRefused) {
    Device device(4, 4);
    std::uint32_t pixels[16] = {};
    BITMAPINFO info = dibInfo(4, 4);
    EXPECT_EQ(StretchDIBits(device, 0, 0, 4, 4, 0, 0, 4, 4, nullptr, &info, DIB_RGB_COLORS, SRCCOPY), 0);
    EXPECT_EQ(StretchDIBits(device, 0, 0, 4, 4, 0, 0, 4, 4, pixels, nullptr, DIB_RGB_COLORS, SRCCOPY), 0);
    info.bmiHeader.biWidth = 0;
    EXPECT_EQ(StretchDIBits(device, 0, 0, 4, 4, 0, 0, 4, 4, pixels, &info, DIB_RGB_COLORS, SRCCOPY), 0);
}

TEST_F(BlitTest, StretchModesAreKept) {
    Device device(1, 1);
    EXPECT_EQ(GetStretchBltMode(device), BLACKONWHITE);
    EXPECT_EQ(SetStretchBltMode(device, COLORONCOLOR), BLACKONWHITE);
    EXPECT_EQ(GetStretchBltMode(device), COLORONCOLOR);
    EXPECT_EQ(SetStretchBltMode(device, 0), 0);
    EXPECT_EQ(SetStretchBltMode(device, 5), 0);
    EXPECT_EQ(GetStretchBltMode(device), COLORONCOLOR);
}

}  // namespace
}  // namespace zoltest
