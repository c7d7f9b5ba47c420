// Long random programs of calls that are exact to the pixel, told by the digests of what they leave. The same programs
// give the same digests on every system; what the numbers are worth was seen on the system's own GDI.
#include "platform/gdi/device.h"
#include "support/test_data.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace zoltest {
namespace {

// Chance is asked in an order that no compiler may change: never twice among the arguments of one call.

/// One program: a device to draw on, a picture to copy from, and calls that chance chooses.
class RandomProgram {
public:
    explicit RandomProgram(std::uint64_t seed)
        : random_(seed),
          device_{between(1, 40), between(1, 30), layouts[between(0, 3)]},
          source_{between(1, 30), between(1, 30), layouts[between(0, 3)]} {
        fillPattern(device_, static_cast<std::uint32_t>(seed));
        fillPattern(source_, static_cast<std::uint32_t>(seed + 1));
        SetStretchBltMode(device_, COLORONCOLOR);
    }
    ~RandomProgram() {
        while (RestoreDC(device_, -1) != FALSE) {
        }
        for (const int stock : {BLACK_PEN, WHITE_BRUSH}) SelectObject(device_, GetStockObject(stock));
        for (HGDIOBJ object : objects_) DeleteObject(object);
    }
    RandomProgram(const RandomProgram&) = delete;
    RandomProgram& operator=(const RandomProgram&) = delete;

    void run(int steps) {
        static constexpr std::array actions{
            &RandomProgram::lines,  &RandomProgram::polyline,   &RandomProgram::polygon,  &RandomProgram::rectangle,
            &RandomProgram::fill,   &RandomProgram::copy,       &RandomProgram::stretch,  &RandomProgram::stretchBits,
            &RandomProgram::region, &RandomProgram::path,       &RandomProgram::clip,     &RandomProgram::pen,
            &RandomProgram::brush,  &RandomProgram::background, &RandomProgram::fillMode, &RandomProgram::origin,
            &RandomProgram::extent, &RandomProgram::world,      &RandomProgram::level};
        for (int i = 0; i < steps; ++i) {
            const auto action = static_cast<std::size_t>(between(0, static_cast<int>(actions.size()) - 1));
            (this->*actions[action])();
            digestPixels();
            trace_ += std::to_string(action) + " -> " + std::to_string(digest_) + '\n';
        }
    }
    [[nodiscard]] std::uint64_t digest() const { return digest_; }
    /// The action and the digest after each step, to find the first that differs from another system's.
    [[nodiscard]] const std::string& trace() const { return trace_; }

private:
    int between(int low, int high) { return random_.integer(low, high); }
    bool chance(int percent) { return between(0, 99) < percent; }
    int column() { return chance(85) ? between(-10, device_.width() + 10) : between(-300, 300); }
    int row() { return chance(85) ? between(-10, device_.height() + 10) : between(-300, 300); }
    POINT point() {
        const int x = column();
        return {x, row()};
    }
    RECT rect() {
        const POINT a = point();
        const POINT b = point();
        return {a.x, a.y, b.x, b.y};
    }
    std::vector<POINT> points(int least) {
        std::vector<POINT> out(static_cast<std::size_t>(between(least, 9)));
        for (POINT& p : out) p = point();
        return out;
    }
    COLORREF color() { return static_cast<COLORREF>(between(0, 0xFFFFFF)); }
    /// A part of the source: x, y, width and height.
    RECT part() {
        const int x = between(0, source_.width() - 1);
        const int y = between(0, source_.height() - 1);
        const int width = between(1, source_.width() - x);
        return {x, y, width, between(1, source_.height() - y)};
    }
    HGDIOBJ kept(HGDIOBJ object) {
        objects_.push_back(object);
        return object;
    }
    HRGN newRegion() {
        const RECT a = rect();
        const RECT b = rect();
        HRGN out = CreateRectRgnIndirect(&a);
        HRGN other = CreateRectRgnIndirect(&b);
        CombineRgn(out, out, other, between(RGN_AND, RGN_DIFF));
        DeleteObject(other);
        return out;
    }

    void digestBytes(const void* bytes, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            digest_ = (digest_ ^ static_cast<const unsigned char*>(bytes)[i]) * 1099511628211U;
        }
    }
    void digestValue(std::int64_t value) { digestBytes(&value, sizeof(value)); }
    void digestPixels() {
        for (int y = 0; y < device_.height(); ++y) {
            for (int x = 0; x < device_.width(); ++x) digestValue(device_.pixel(x, y));
        }
    }

    // -------------------------------------------------------------------------------------------- what draws

    void lines() {
        const POINT a = point();
        const POINT b = point();
        if (chance(40)) digestValue(MoveToEx(device_, a.x, a.y, nullptr));
        digestValue(LineTo(device_, b.x, b.y));
    }
    void polyline() {
        const auto list = points(2);
        digestValue(Polyline(device_, list.data(), static_cast<int>(list.size())));
    }
    void polygon() {
        const auto list = points(2);
        digestValue(Polygon(device_, list.data(), static_cast<int>(list.size())));
    }
    void rectangle() {
        const RECT r = rect();
        const HGDIOBJ before = SelectObject(device_, GetStockObject(chance(50) ? WHITE_PEN : NULL_PEN));
        digestValue(Rectangle(device_, r.left, r.top, r.right, r.bottom));
        SelectObject(device_, before);
    }
    void fill() {
        static constexpr DWORD rops[] = {PATCOPY, PATINVERT, DSTINVERT, BLACKNESS, WHITENESS};
        const POINT at = point();
        const int width = between(-20, 30);
        const int height = between(-20, 30);
        digestValue(PatBlt(device_, at.x, at.y, width, height, rops[between(0, 4)]));
    }
    void copy() {
        static constexpr DWORD rops[] = {SRCCOPY,     SRCPAINT,  SRCAND,     SRCINVERT, NOTSRCCOPY,
                                         NOTSRCERASE, MERGECOPY, MERGEPAINT, PATPAINT,  SRCERASE};
        const POINT at = point();
        const RECT from = part();
        digestValue(BitBlt(device_, at.x, at.y, from.right, from.bottom, source_, from.left, from.top,
                           rops[chance(50) ? 0 : between(1, 9)]));
    }
    void stretch() {
        const POINT at = point();
        const RECT from = part();
        const int width = between(-40, 40);
        const int height = between(-40, 40);
        digestValue(StretchBlt(device_, at.x, at.y, width, height, source_, from.left, from.top, from.right,
                               from.bottom, chance(70) ? SRCCOPY : SRCINVERT));
    }
    void stretchBits() {
        const POINT at = point();
        const RECT from = part();
        const bool same = chance(30);
        const int width = same ? from.right : between(-40, 40);
        const int height = same ? from.bottom : between(-40, 40);
        StretchDIBits(device_, at.x, at.y, width, height, from.left, from.top, from.right, from.bottom, source_.bits(),
                      &source_.info(), DIB_RGB_COLORS, chance(70) ? SRCCOPY : SRCINVERT);
    }
    void region() {
        HRGN area = newRegion();
        RECT box{};
        const int dx = between(-5, 5);
        digestValue(OffsetRgn(area, dx, between(-5, 5)));
        digestValue(GetRgnBox(area, &box));
        for (const LONG side : {box.left, box.top, box.right, box.bottom}) digestValue(side);
        HBRUSH with = CreateSolidBrush(color());
        digestValue(chance(50) ? FillRgn(device_, area, with) : PaintRgn(device_, area));
        DeleteObject(with);
        DeleteObject(area);
    }
    /// Figures of several kinds; open ones are not stroked and filled at once, as systems differ in closing them.
    void path() {
        const int drawing = between(0, 2);
        digestValue(BeginPath(device_));
        for (int i = between(1, 8); i > 0; --i) {
            const POINT at = point();
            const RECT box = rect();
            const auto list = points(3);
            switch (drawing == 2 ? between(0, 1) : between(0, 6)) {
                case 0:
                    Polygon(device_, list.data(), static_cast<int>(list.size()));
                    break;
                case 1:
                    Rectangle(device_, box.left, box.top, box.right, box.bottom);
                    break;
                case 2:
                    Polyline(device_, list.data(), static_cast<int>(list.size()));
                    break;
                case 3:
                    MoveToEx(device_, at.x, at.y, nullptr);
                    break;
                case 4:
                    CloseFigure(device_);
                    break;
                default:
                    LineTo(device_, at.x, at.y);
                    break;
            }
        }
        digestValue(EndPath(device_));
        static constexpr std::array draw{&StrokePath, &FillPath, &StrokeAndFillPath};
        digestValue(draw[static_cast<std::size_t>(drawing)](device_));
    }

    // -------------------------------------------------------------------------------------------- what it draws with

    void clip() {
        const RECT r = rect();
        const int kind = between(0, 2);
        if (kind == 0) {
            SelectClipRgn(device_, nullptr);
        } else if (kind == 1) {
            HRGN area = newRegion();
            SelectClipRgn(device_, area);
            DeleteObject(area);
        } else {
            IntersectClipRect(device_, r.left, r.top, r.right, r.bottom);
        }
    }
    void pen() {
        const int style = chance(60) ? PS_SOLID : between(PS_DASH, PS_NULL);
        SelectObject(device_, kept(CreatePen(style, 0, color())));
    }
    void brush() { SelectObject(device_, chance(20) ? GetStockObject(NULL_BRUSH) : kept(CreateSolidBrush(color()))); }
    void background() {
        digestValue(SetBkMode(device_, between(TRANSPARENT, OPAQUE)));
        digestValue(SetBkColor(device_, color()));
    }
    void fillMode() { digestValue(SetPolyFillMode(device_, between(ALTERNATE, WINDING))); }
    void origin() {
        POINT before{};
        const int x = between(-8, 8);
        const int y = between(-8, 8);
        digestValue(chance(50) ? SetViewportOrgEx(device_, x, y, &before) : SetWindowOrgEx(device_, x, y, &before));
        digestValue(before.x);
        digestValue(before.y);
    }
    void extent() {
        const int x = 1 << between(0, 2);
        const int y = 1 << between(0, 2);
        digestValue(SetMapMode(device_, chance(30) ? MM_TEXT : MM_ANISOTROPIC));
        digestValue(chance(50) ? SetWindowExtEx(device_, x, y, nullptr) : SetViewportExtEx(device_, x, y, nullptr));
    }
    void world() {
        static constexpr FLOAT scales[] = {1.0F, 2.0F, 0.5F, -1.0F, 1.5F};
        XFORM told{};
        XFORM next{};
        next.eM11 = scales[between(0, 4)];
        next.eM22 = scales[between(0, 4)];
        next.eDx = static_cast<FLOAT>(between(-5, 5));
        next.eDy = static_cast<FLOAT>(between(-5, 5));
        SetGraphicsMode(device_, GM_ADVANCED);
        const int kind = between(0, 2);
        digestValue(kind == 0   ? SetWorldTransform(device_, &next)
                    : kind == 1 ? ModifyWorldTransform(device_, &next, MWT_LEFTMULTIPLY)
                                : ModifyWorldTransform(device_, nullptr, MWT_IDENTITY));
        digestValue(GetWorldTransform(device_, &told));
        for (const FLOAT value : {told.eM11, told.eM22, told.eDx, told.eDy}) {
            digestValue(static_cast<std::int64_t>(value * 64.0F));
        }
    }
    void level() {
        POINT at{};
        digestValue(chance(50) ? SaveDC(device_) : RestoreDC(device_, between(-3, 3)));
        digestValue(GetCurrentPositionEx(device_, &at));
        for (const LONG value : {at.x, at.y, LONG{GetMapMode(device_)}, LONG{GetBkMode(device_)}}) digestValue(value);
    }

    Random random_;
    Device device_;
    Device source_;
    std::vector<HGDIOBJ> objects_;
    std::uint64_t digest_ = 1469598103934665603U;
    std::string trace_;
};

class RandomTest : public GdiTest {};

TEST_F(RandomTest, ProgramsLeaveTheSamePixelsOnEverySystem) {
    static constexpr std::uint64_t expected[] = {
        0x7E561F889B339D8C, 0xF9B4172C0162A3A2, 0xAE85EAC98585BA25, 0xA12E435C697108E1, 0x806195A317513A2E,
        0xCB69704135535AA7, 0x45459E2AE54249B1, 0x65002589D927D1AE, 0x95A11C33220013AF, 0x375A42ABD85E14AB,
        0x8541A94CB886D6FC, 0x15964B1882E9D471, 0x5FDC7DABE59292D1, 0x5FC14A85BE1460F9, 0x2163C51201227D9F,
        0x09BAD9F9FEF4D3AA, 0x763FA9F90ED5E5F1, 0xDA40DFB2C6089C6C, 0x7B426BA017694C7D, 0xFB327DE6078881C1,
        0x4CFC02EA793ED081, 0x155277725F996315, 0x346A08E4078A43C1, 0x85531FE59AAD2F57, 0x38C5604F201F65A6,
        0x0D4C334DFD851641, 0xDB8C66423187BB38, 0xB92DAA064E11D989, 0x4563A2C012A955BA, 0x1590296BA3FD4C4C,
        0x6EE9D814083F28C3, 0xAF5E2C17875CBFF1, 0x119E157C353E5FC4, 0xDE3C9E941CEC89F9, 0xCC32FDC966CF5B5E,
        0x8C586F90835BD9E5, 0x9162488013A377D6, 0x1B92DC20382C8371, 0xA18406D8AF6B1748, 0x871C09E4184C788D,
    };
    if (std::getenv("ZOL_TEST_SEED") != nullptr) GTEST_SKIP() << "the digests are those of the fixed seeds";
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        RandomProgram program(20250601 + i);
        program.run(60);
        EXPECT_EQ(program.digest(), expected[i]) << "program " << i << '\n' << program.trace();
    }
}

}  // namespace
}  // namespace zoltest
