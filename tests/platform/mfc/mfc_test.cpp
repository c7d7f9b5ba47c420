// The value classes of MFC: strings, points, sizes, rectangles, fonts and locks.
#include "platform/platform.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <limits>
#include <thread>

namespace {

// ------------------------------------------------------------------------------------------------ CStringW

TEST(CStringWTest, HoldsAndCopiesText) {
    CStringW empty;
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_EQ(empty.GetLength(), 0);
    EXPECT_STREQ(empty.GetString(), L"");
    CStringW text(L"abc");
    CStringW copy = text;
    copy += L"d";
    EXPECT_STREQ(text.GetString(), L"abc");
    EXPECT_STREQ(copy.GetString(), L"abcd");
    EXPECT_EQ(copy.GetLength(), 4);
    const wchar_t* pointer = copy;
    EXPECT_EQ(pointer, copy.GetString());
    EXPECT_EQ(copy[1], L'b');
    EXPECT_EQ(copy.GetAt(3), L'd');
    copy = L"new";
    EXPECT_TRUE(copy == L"new");
    copy.Empty();
    EXPECT_TRUE(copy.IsEmpty());
    EXPECT_TRUE(CStringW(static_cast<const wchar_t*>(nullptr)).IsEmpty());
    EXPECT_STREQ(CStringW(L"abcdef", 3).GetString(), L"abc");
}

TEST(CStringWTest, Joins) {
    const CStringW a(L"a");
    const CStringW b(L"b");
    EXPECT_STREQ((a + b).GetString(), L"ab");
    EXPECT_STREQ((a + L"c").GetString(), L"ac");
    EXPECT_STREQ((L"c" + a).GetString(), L"ca");
    EXPECT_STREQ((a + L'd').GetString(), L"ad");
    CStringW c(a);
    c += b;
    c += L'!';
    c += L"?";
    EXPECT_STREQ(c.GetString(), L"ab!?");
    c += c;
    EXPECT_STREQ(c.GetString(), L"ab!?ab!?");
}

TEST(CStringWTest, Compares) {
    const CStringW a(L"abc");
    const CStringW b(L"abd");
    EXPECT_TRUE(a == CStringW(L"abc"));
    EXPECT_TRUE(a == L"abc");
    EXPECT_TRUE(L"abc" == a);
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(a != L"ab");
    EXPECT_TRUE(L"ab" != a);
    EXPECT_TRUE(a < b);
    EXPECT_TRUE(a < L"abd");
    EXPECT_TRUE(L"abb" < a);
    EXPECT_FALSE(b < a);
    EXPECT_EQ(a.Compare(L"abc"), 0);
    EXPECT_LT(a.Compare(L"abd"), 0);
    EXPECT_GT(a.Compare(L"ab"), 0);
}

TEST(CStringWTest, FindsAndCuts) {
    const CStringW path(L"source\\zolcs\\file");
    EXPECT_EQ(path.Find(L'\\'), 6);
    EXPECT_EQ(path.Find(L'\\', 7), 12);
    EXPECT_EQ(path.Find(L'?'), -1);
    EXPECT_EQ(path.Find(L"zol"), 7);
    EXPECT_EQ(path.Find(L"zol", 8), -1);
    EXPECT_EQ(path.Find(L"zol", 99), -1);
    EXPECT_EQ(path.Find(L'z', -1), -1);
    EXPECT_STREQ(path.Left(6).GetString(), L"source");
    EXPECT_STREQ(path.Left(99).GetString(), path.GetString());
    EXPECT_STREQ(path.Right(4).GetString(), L"file");
    EXPECT_STREQ(path.Right(99).GetString(), path.GetString());
    EXPECT_STREQ(path.Right(-1).GetString(), L"");
    EXPECT_STREQ(path.Mid(7, 5).GetString(), L"zolcs");
    EXPECT_STREQ(path.Mid(13).GetString(), L"file");
    EXPECT_STREQ(path.Mid(99).GetString(), L"");
    EXPECT_STREQ(path.Mid(-3, 2).GetString(), L"so");
    EXPECT_STREQ(path.Mid(1, -1).GetString(), L"");
}

template <typename... Arguments>
std::wstring format(const wchar_t* text, const Arguments&... arguments) {
    CStringW out;
    out.Format(text, arguments...);
    return out.GetString();
}

TEST(CStringWTest, FormatsNumbers) {
    EXPECT_EQ(format(L"%d", 42), L"42");
    EXPECT_EQ(format(L"%d %i", -7, 8), L"-7 8");
    EXPECT_EQ(format(L"%ld", -5L), L"-5");
    EXPECT_EQ(format(L"%lu", 4000000000UL), L"4000000000");
    EXPECT_EQ(format(L"%u", -1), L"4294967295");
    EXPECT_EQ(format(L"%u", static_cast<unsigned int>(-1)), L"4294967295");
    EXPECT_EQ(format(L"%d", static_cast<unsigned int>(-1)), L"-1");
    EXPECT_EQ(format(L"%lld", std::numeric_limits<long long>::min()), L"-9223372036854775808");
    EXPECT_EQ(format(L"%I64u", std::numeric_limits<unsigned long long>::max()), L"18446744073709551615");
    EXPECT_EQ(format(L"%I32d", 5), L"5");
    EXPECT_EQ(format(L"%hd", 65537), L"1");
    EXPECT_EQ(format(L"%x %X %o", 255, 255, 8), L"ff FF 10");
    EXPECT_EQ(format(L"%#x", 255), L"0xff");
    EXPECT_EQ(format(L"[%5d] [%-5d] [%05d] [%+d]", 42, 42, 42, 42), L"[   42] [42   ] [00042] [+42]");
    EXPECT_EQ(format(L"[%*d] [%-*d] [%*d]", 4, 1, 4, 2, -4, 3), L"[   1] [2   ] [3   ]");
    EXPECT_EQ(format(L"%.3d", 7), L"007");
    EXPECT_EQ(format(L"%f %.2f %e %g", 1.5, 2.345, 1500.0, 0.25), L"1.500000 2.35 1.500000e+03 0.25");
    EXPECT_EQ(format(L"%.1f", 2.5F), L"2.5");
}

TEST(CStringWTest, FormatsText) {
    EXPECT_EQ(format(L"%s %d ", L"message", 3), L"message 3 ");
    EXPECT_EQ(format(L"%s", CStringW(L"string")), L"string");
    EXPECT_EQ(format(L"%ls|%S|%hs", L"wide", "narrow", "narrow"), L"wide|narrow|narrow");
    EXPECT_EQ(format(L"[%6s] [%-6s] [%.2s]", L"abc", L"abc", L"abc"), L"[   abc] [abc   ] [ab]");
    EXPECT_EQ(format(L"%s", static_cast<const wchar_t*>(nullptr)), L"(null)");
    EXPECT_EQ(format(L"%c%c", L'a', 98), L"ab");
    EXPECT_EQ(format(L"100%%"), L"100%");
    EXPECT_EQ(format(L"plain \u00E4\u4E2D"), L"plain \u00E4\u4E2D");
    wchar_t buffer[] = L"buffer";
    EXPECT_EQ(format(L"%s", static_cast<wchar_t*>(buffer)), L"buffer");
}

TEST(CStringWTest, FormatsWhateverTheFormatSays) {
    EXPECT_EQ(format(L"%"), L"");
    EXPECT_EQ(format(L"%d"), L"0");
    EXPECT_EQ(format(L"%s"), L"(null)");
    EXPECT_EQ(format(L"%s", 5), L"(null)");
    EXPECT_EQ(format(L"%d", 1.5), L"0");
    EXPECT_EQ(format(L"%y"), L"y");
    EXPECT_EQ(format(L"%999999999d", 1).size(), 4096U);
    EXPECT_EQ(format(nullptr), L"");
}

TEST(CStringWTest, FormatsPartsOfItself) {
    CStringW text(L"x");
    text.Format(L"<%s>", text);
    EXPECT_STREQ(text.GetString(), L"<x>");
}

// ------------------------------------------------------------------------------------------------ geometry

TEST(CPointTest, AddsAndSubtracts) {
    CPoint p(1, 2);
    p += CSize(3, 4);
    EXPECT_TRUE(p == CPoint(4, 6));
    p -= CPoint(1, 1);
    EXPECT_TRUE(p == CPoint(3, 5));
    p.Offset(1, -1);
    EXPECT_TRUE(p == CPoint(4, 4));
    EXPECT_TRUE(p != CPoint(4, 5));
    const CSize distance = CPoint(5, 7) - CPoint(2, 3);
    EXPECT_TRUE(distance == CSize(3, 4));
    EXPECT_TRUE(CPoint(1, 1) + CSize(2, 3) == CPoint(3, 4));
    EXPECT_TRUE(CPoint(1, 1) - CSize(2, 3) == CPoint(-1, -2));
    EXPECT_TRUE(-CPoint(1, -2) == CPoint(-1, 2));
    const POINT plain = p;
    EXPECT_EQ(plain.y, 4);
    EXPECT_TRUE(p == plain);
    EXPECT_TRUE(plain == p);
    EXPECT_TRUE(CPoint() == CPoint(0, 0));
}

TEST(CSizeTest, AddsAndSubtracts) {
    CSize s(1, 2);
    s += CSize(1, 1);
    s -= CSize(0, 1);
    EXPECT_TRUE(s == CSize(2, 2));
    EXPECT_TRUE(s != CSize(2, 3));
    EXPECT_TRUE(s + CSize(1, 2) == CSize(3, 4));
    EXPECT_TRUE(s - CSize(1, 2) == CSize(1, 0));
    EXPECT_TRUE(-s == CSize(-2, -2));
}

TEST(CRectTest, HasEdgesAndExtents) {
    const CRect r(1, 2, 11, 22);
    EXPECT_EQ(r.Width(), 10);
    EXPECT_EQ(r.Height(), 20);
    EXPECT_TRUE(r.Size() == CSize(10, 20));
    EXPECT_TRUE(r.TopLeft() == CPoint(1, 2));
    EXPECT_TRUE(r.BottomRight() == CPoint(11, 22));
    EXPECT_TRUE(r.CenterPoint() == CPoint(6, 12));
    EXPECT_TRUE(CRect(CPoint(1, 2), CSize(10, 20)) == r);
    EXPECT_TRUE(CRect(CPoint(1, 2), CPoint(11, 22)) == r);
    const RECT plain{1, 2, 11, 22};
    EXPECT_TRUE(CRect(plain) == r);
    EXPECT_TRUE(CRect(&plain) == r);
    EXPECT_TRUE(r == plain);
    EXPECT_FALSE(plain != r);
    EXPECT_TRUE(CRect().IsRectNull());
}

TEST(CRectTest, LeftAndTopAreInside) {
    const CRect r(1, 2, 4, 5);
    EXPECT_TRUE(r.PtInRect(CPoint(1, 2)));
    EXPECT_TRUE(r.PtInRect(CPoint(3, 4)));
    EXPECT_FALSE(r.PtInRect(CPoint(4, 2)));
    EXPECT_FALSE(r.PtInRect(CPoint(1, 5)));
    EXPECT_FALSE(r.PtInRect(CPoint(0, 2)));
}

TEST(CRectTest, EmptyMeansNoPixels) {
    EXPECT_TRUE(CRect(1, 1, 1, 5).IsRectEmpty());
    EXPECT_TRUE(CRect(5, 1, 1, 5).IsRectEmpty());
    EXPECT_FALSE(CRect(1, 1, 2, 2).IsRectEmpty());
    EXPECT_FALSE(CRect(1, 1, 1, 5).IsRectNull());
}

TEST(CRectTest, Normalises) {
    CRect r(9, 8, 1, 2);
    r.NormalizeRect();
    EXPECT_TRUE(r == CRect(1, 2, 9, 8));
    r.NormalizeRect();
    EXPECT_TRUE(r == CRect(1, 2, 9, 8));
    r.SetRect(1, 8, 9, 2);
    r.NormalizeRect();
    EXPECT_TRUE(r == CRect(1, 2, 9, 8));
}

TEST(CRectTest, IntersectsAndUnites) {
    CRect r;
    EXPECT_TRUE(r.IntersectRect(CRect(0, 0, 5, 5), CRect(3, 2, 9, 9)));
    EXPECT_TRUE(r == CRect(3, 2, 5, 5));
    EXPECT_FALSE(r.IntersectRect(CRect(0, 0, 5, 5), CRect(5, 0, 9, 9)));
    EXPECT_TRUE(r.IsRectNull());
    EXPECT_FALSE(r.IntersectRect(CRect(0, 0, 5, 5), CRect(4, 4, 2, 2)));
    EXPECT_TRUE(r.IsRectNull());
    CRect self(0, 0, 5, 5);
    EXPECT_TRUE(self.IntersectRect(self, CRect(2, 2, 9, 9)));
    EXPECT_TRUE(self == CRect(2, 2, 5, 5));
    EXPECT_TRUE(r.UnionRect(CRect(0, 0, 1, 1), CRect(3, 2, 9, 9)));
    EXPECT_TRUE(r == CRect(0, 0, 9, 9));
    EXPECT_TRUE(r.UnionRect(CRect(7, 7, 7, 9), CRect(3, 2, 9, 9)));
    EXPECT_TRUE(r == CRect(3, 2, 9, 9));
    EXPECT_TRUE(r.UnionRect(CRect(3, 2, 9, 9), CRect()));
    EXPECT_TRUE(r == CRect(3, 2, 9, 9));
    EXPECT_FALSE(r.UnionRect(CRect(5, 5, 5, 5), CRect()));
    EXPECT_TRUE(r.IsRectNull());
    EXPECT_TRUE((CRect(0, 0, 5, 5) & CRect(3, 2, 9, 9)) == CRect(3, 2, 5, 5));
    EXPECT_TRUE((CRect(0, 0, 5, 5) | CRect(3, 2, 9, 9)) == CRect(0, 0, 9, 9));
    CRect both(0, 0, 5, 5);
    both &= CRect(1, 1, 9, 9);
    EXPECT_TRUE(both == CRect(1, 1, 5, 5));
    both |= CRect(0, 0, 2, 2);
    EXPECT_TRUE(both == CRect(0, 0, 5, 5));
}

TEST(CRectTest, MovesAndGrows) {
    CRect r(1, 2, 5, 6);
    r.OffsetRect(10, 20);
    EXPECT_TRUE(r == CRect(11, 22, 15, 26));
    r.OffsetRect(CPoint(-10, -20));
    r.InflateRect(1, 2);
    EXPECT_TRUE(r == CRect(0, 0, 6, 8));
    r.DeflateRect(1, 2);
    EXPECT_TRUE(r == CRect(1, 2, 5, 6));
    r.InflateRect(1, 2, 3, 4);
    EXPECT_TRUE(r == CRect(0, 0, 8, 10));
    r.DeflateRect(1, 2, 3, 4);
    EXPECT_TRUE(r == CRect(1, 2, 5, 6));
    r += CPoint(0, 1);
    r -= CSize(0, 3);
    EXPECT_TRUE(r == CRect(1, 0, 5, 4));
    EXPECT_TRUE(r + CSize(1, 1) == CRect(2, 1, 6, 5));
    EXPECT_TRUE(r - CPoint(1, 0) == CRect(0, 0, 4, 4));
    r.SetRectEmpty();
    EXPECT_TRUE(r.IsRectNull());
    EXPECT_TRUE(r != CRect(1, 2, 3, 5));
}

TEST(CRectTest, PassesAsARecordPointer) {
    CRect r(1, 2, 3, 4);
    EXPECT_TRUE(::SetRect(r, 5, 6, 7, 8));
    EXPECT_EQ(r.left, 5);
    const CRect& constant = r;
    EXPECT_FALSE(::IsRectEmpty(constant));
}

TEST(CRectTest, ExtremeCoordinatesWrap) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    EXPECT_EQ(CRect(least, 0, most, 1).Width(), -1);
    CRect r(most, most, most, most);
    r.InflateRect(1, 1);
    EXPECT_EQ(r.right, least);
    EXPECT_TRUE(CRect(most, most, most, most).CenterPoint() == CPoint(most, most));
    EXPECT_TRUE(CPoint(most, 0) + CSize(1, 0) == CPoint(least, 0));
}

// ------------------------------------------------------------------------------------------------ CFont

LOGFONTW describe(LONG height) {
    LOGFONTW font{};
    font.lfHeight = height;
    return font;
}

TEST(CFontTest, OwnsItsFont) {
    HGDIOBJ handle = nullptr;
    {
        CFont font;
        EXPECT_EQ(font.GetSafeHandle(), nullptr);
        EXPECT_EQ(static_cast<HFONT>(font), nullptr);
        const LOGFONTW wanted = describe(-17);
        EXPECT_TRUE(font.CreateFontIndirectW(&wanted));
        handle = font.GetSafeHandle();
        EXPECT_NE(handle, nullptr);
        EXPECT_EQ(static_cast<HFONT>(font), handle);
        LOGFONTW told{};
        EXPECT_NE(font.GetLogFont(&told), 0);
        EXPECT_EQ(told.lfHeight, -17);
        // A second font is refused; the first one stays.
        EXPECT_FALSE(font.CreateFontIndirectW(&wanted));
        EXPECT_EQ(font.GetSafeHandle(), handle);
    }
    LOGFONTW told{};
    EXPECT_EQ(::GetObjectW(handle, sizeof(told), &told), 0);
}

TEST(CFontTest, AttachesAndDetaches) {
    const LOGFONTW wanted = describe(-18);
    HFONT handle = ::CreateFontIndirectW(&wanted);
    CFont font;
    EXPECT_FALSE(font.Attach(nullptr));
    EXPECT_TRUE(font.Attach(handle));
    EXPECT_FALSE(font.Attach(handle));
    EXPECT_EQ(font.Detach(), handle);
    EXPECT_EQ(font.Detach(), nullptr);
    LOGFONTW told{};
    EXPECT_NE(::GetObjectW(handle, sizeof(told), &told), 0);
    EXPECT_TRUE(font.Attach(handle));
    EXPECT_TRUE(font.DeleteObject());
    EXPECT_FALSE(font.DeleteObject());
    EXPECT_EQ(::GetObjectW(handle, sizeof(told), &told), 0);
    EXPECT_EQ(font.GetLogFont(&told), 0);
}

// ------------------------------------------------------------------------------------------------ locks

TEST(CSingleLockTest, HoldsUntilItsEnd) {
    CCriticalSection section;
    int counter = 0;
    const auto count = [&] {
        for (int i = 0; i < 10000; ++i) {
            const CSingleLock lock(&section, TRUE);
            ++counter;
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 20000);
}

TEST(CSingleLockTest, TellsWhetherItIsLocked) {
    CCriticalSection section;
    CSingleLock lock(&section);
    EXPECT_FALSE(lock.IsLocked());
    EXPECT_FALSE(lock.Unlock());
    EXPECT_TRUE(lock.Lock());
    EXPECT_TRUE(lock.IsLocked());
    EXPECT_TRUE(lock.Lock());
    // The holder may enter again.
    EXPECT_TRUE(section.Lock());
    EXPECT_TRUE(section.Unlock());
    EXPECT_TRUE(lock.Unlock());
    EXPECT_FALSE(lock.IsLocked());
    EXPECT_FALSE(lock.Unlock());
    CSingleLock none(nullptr, TRUE);
    EXPECT_FALSE(none.IsLocked());
}

}  // namespace
