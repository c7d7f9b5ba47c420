#include "zolcs/drawing/gdiscope.h"

#include <gtest/gtest.h>

#include "support/gdi_count.h"

namespace {

using zoltest::gdiObjectCount;

class GdiScope : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(gdiObjectCount(), before_); }
    void expectLiving(unsigned int expected) const {
        if (zoltest::canCountGdiObjects()) {
            EXPECT_EQ(gdiObjectCount() - before_, expected);
        }
    }

private:
    unsigned int before_ = gdiObjectCount();
};

HBITMAP newSection(int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    return CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
}

TEST_F(GdiScope, ObjectsAreDeletedAtTheEndOfTheirScope) {
    {
        const zolcs::Pen pen(CreatePen(PS_SOLID, 1, RGB(1, 2, 3)));
        const zolcs::Brush brush(CreateSolidBrush(RGB(1, 2, 3)));
        const zolcs::Region region(CreateRectRgn(0, 0, 5, 5));
        const zolcs::Bitmap bitmap(newSection(4, 4));
        EXPECT_TRUE(pen && brush && region && bitmap);
        expectLiving(4);
    }
    expectLiving(0);
}

TEST_F(GdiScope, AnEmptyScopeOwnsNothing) {
    const zolcs::Pen pen;
    EXPECT_FALSE(pen);
    EXPECT_EQ(pen.get(), nullptr);
}

TEST_F(GdiScope, MemoryContextsAreDeleted) {
    {
        const zolcs::MemoryDC dc(nullptr);
        EXPECT_TRUE(dc);
        EXPECT_NE(GetCurrentObject(dc.get(), OBJ_BITMAP), nullptr);
        const zolcs::MemoryDC other(dc.get());
        EXPECT_TRUE(other);
        expectLiving(2);
    }
    expectLiving(0);
}

TEST_F(GdiScope, WindowContextsAreReleased) {
    {
        const zolcs::WindowDC screen(nullptr);
        EXPECT_TRUE(screen);
        EXPECT_NE(GetCurrentObject(screen.get(), OBJ_FONT), nullptr);
    }
    expectLiving(0);
}

TEST_F(GdiScope, SelectionsEndBeforeWhatTheySelect) {
    {
        const zolcs::Bitmap section(newSection(4, 4));
        const zolcs::Pen pen(CreatePen(PS_SOLID, 1, RGB(9, 9, 9)));
        const zolcs::MemoryDC dc(nullptr);
        HGDIOBJ const bitmapBefore = GetCurrentObject(dc.get(), OBJ_BITMAP);
        HGDIOBJ const penBefore = GetCurrentObject(dc.get(), OBJ_PEN);
        {
            const zolcs::SelectGuard selectedSection(dc.get(), section.get());
            const zolcs::SelectGuard selectedPen(dc.get(), pen.get());
            EXPECT_TRUE(selectedSection && selectedPen);
            EXPECT_EQ(GetCurrentObject(dc.get(), OBJ_BITMAP), static_cast<HGDIOBJ>(section.get()));
            EXPECT_EQ(GetCurrentObject(dc.get(), OBJ_PEN), static_cast<HGDIOBJ>(pen.get()));
        }
        EXPECT_EQ(GetCurrentObject(dc.get(), OBJ_BITMAP), bitmapBefore);
        EXPECT_EQ(GetCurrentObject(dc.get(), OBJ_PEN), penBefore);
    }
    expectLiving(0);
}

TEST_F(GdiScope, OfSeveralSelectionsTheFirstComesBack) {
    {
        const zolcs::Pen first(CreatePen(PS_SOLID, 1, RGB(1, 1, 1)));
        const zolcs::Pen second(CreatePen(PS_SOLID, 1, RGB(2, 2, 2)));
        const zolcs::MemoryDC dc(nullptr);
        HGDIOBJ const before = GetCurrentObject(dc.get(), OBJ_PEN);
        for (HGDIOBJ const begin : {static_cast<HGDIOBJ>(first.get()), static_cast<HGDIOBJ>(nullptr)}) {
            zolcs::SelectGuard selection(dc.get(), begin);
            selection.change(second.get());
            EXPECT_EQ(GetCurrentObject(dc.get(), OBJ_PEN), static_cast<HGDIOBJ>(second.get()));
            selection.change(nullptr);
            EXPECT_EQ(GetCurrentObject(dc.get(), OBJ_PEN), static_cast<HGDIOBJ>(second.get()));
            selection.change(first.get());
        }
        EXPECT_EQ(GetCurrentObject(dc.get(), OBJ_PEN), before);
    }
    expectLiving(0);
}

TEST_F(GdiScope, SelectingNothingOrInNothingDoesNothing) {
    const zolcs::MemoryDC dc(nullptr);
    HGDIOBJ const before = GetCurrentObject(dc.get(), OBJ_PEN);
    {
        const zolcs::SelectGuard none(dc.get(), nullptr);
        EXPECT_FALSE(none);
        EXPECT_EQ(GetCurrentObject(dc.get(), OBJ_PEN), before);
    }
    EXPECT_EQ(GetCurrentObject(dc.get(), OBJ_PEN), before);
    const zolcs::Pen pen(CreatePen(PS_SOLID, 1, 0));
    const zolcs::SelectGuard nowhere(nullptr, pen.get());
    EXPECT_FALSE(nowhere);
}

}  // namespace
