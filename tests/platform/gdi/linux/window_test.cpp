// Windows of the host: drawing into their surface, presenting, invalidating, and handles that outlive them.
#include "platform/gdi/device.h"

namespace zoltest {
namespace {

class TestWindow : public ZolHostWindow {
public:
    TestWindow(int width, int height) : width_(width), height_(height) {
        pixels.resize(static_cast<std::size_t>(width * height));
    }
    SIZE clientSize() override { return {width_, height_}; }
    ZolPixelSurface surface() override {
        ++surfaces;
        if (bottomUp) return {&pixels[static_cast<std::size_t>(width_ * (height_ - 1))], width_, height_, -4 * width_};
        return {pixels.data(), width_, height_, 4 * width_};
    }
    void present() override { ++presented; }
    void invalidate(const RECT& area) override { dirty.push_back(area); }

    std::vector<std::uint32_t> pixels;
    std::vector<RECT> dirty;
    int surfaces = 0;
    int presented = 0;
    bool bottomUp = false;

private:
    int width_;
    int height_;
};

class PlacedWindow : public TestWindow {
public:
    using TestWindow::TestWindow;
    RECT windowRect() override { return {100, 200, 310, 420}; }
    int dpi() override { return 144; }
};

class WindowTest : public GdiTest {};

bool sameRect(const RECT& a, const RECT& b) { return std::memcmp(&a, &b, sizeof(RECT)) == 0; }

TEST_F(WindowTest, DrawingGoesToTheSurfaceAndIsPresentedAtTheEnd) {
    TestWindow host(6, 4);
    HWND window = ZolCreateHostWindow(&host);
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(IsWindow(window));
    HDC dc = GetDC(window);
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(host.surfaces, 1);
    Device image(3, 2);
    fillPattern(image);
    EXPECT_TRUE(BitBlt(dc, 2, 1, 3, 2, image, 0, 0, SRCCOPY));
    EXPECT_EQ(host.presented, 0);
    EXPECT_EQ(ReleaseDC(window, dc), 1);
    EXPECT_EQ(host.presented, 1);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 6; ++x) {
            const bool covered = x >= 2 && x < 5 && y >= 1 && y < 3;
            EXPECT_EQ(host.pixels[static_cast<std::size_t>(y * 6 + x)], covered ? image.pixel(x - 2, y - 1) : 0U);
        }
    }
    EXPECT_TRUE(ZolDestroyHostWindow(window));
}

TEST_F(WindowTest, ASurfaceMayBeStoredBottomRowFirst) {
    TestWindow host(3, 2);
    host.bottomUp = true;
    HWND window = ZolCreateHostWindow(&host);
    HDC dc = GetDC(window);
    EXPECT_TRUE(PatBlt(dc, 0, 0, 3, 1, WHITENESS));
    EXPECT_EQ(ReleaseDC(window, dc), 1);
    EXPECT_EQ(host.pixels[0], 0U);
    EXPECT_EQ(host.pixels[3], 0xFFFFFFFFU);
    EXPECT_TRUE(ZolDestroyHostWindow(window));
}

TEST_F(WindowTest, PixelsCanBeCopiedFromAWindow) {
    TestWindow host(4, 4);
    host.pixels[5] = 0x123456;
    HWND window = ZolCreateHostWindow(&host);
    HDC dc = GetDC(window);
    Device image(2, 2);
    EXPECT_TRUE(BitBlt(image, 0, 0, 2, 2, dc, 1, 1, SRCCOPY));
    EXPECT_EQ(image.pixel(0, 0), 0x123456U);
    EXPECT_EQ(ReleaseDC(window, dc), 1);
    EXPECT_TRUE(ZolDestroyHostWindow(window));
}

TEST_F(WindowTest, MetricsAreTheHosts) {
    PlacedWindow host(200, 100);
    HWND window = ZolCreateHostWindow(&host);
    RECT rect{};
    EXPECT_TRUE(GetClientRect(window, &rect));
    EXPECT_TRUE(sameRect(rect, {0, 0, 200, 100}));
    EXPECT_TRUE(GetWindowRect(window, &rect));
    EXPECT_TRUE(sameRect(rect, {100, 200, 310, 420}));
    HDC dc = GetDC(window);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSX), 144);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSY), 144);
    EXPECT_EQ(GetDeviceCaps(dc, HORZRES), 200);
    EXPECT_EQ(GetDeviceCaps(dc, VERTRES), 100);
    EXPECT_EQ(GetDeviceCaps(dc, HORZSIZE), 35);  // 200 / 144 inches
    HDC memory = CreateCompatibleDC(dc);
    EXPECT_EQ(GetDeviceCaps(memory, LOGPIXELSY), 144);
    EXPECT_TRUE(DeleteDC(memory));
    EXPECT_EQ(ReleaseDC(window, dc), 1);
    EXPECT_TRUE(ZolDestroyHostWindow(window));

    TestWindow plain(20, 10);
    window = ZolCreateHostWindow(&plain);
    EXPECT_TRUE(GetWindowRect(window, &rect));
    EXPECT_TRUE(sameRect(rect, {0, 0, 20, 10}));
    EXPECT_FALSE(GetClientRect(window, nullptr));
    EXPECT_FALSE(GetWindowRect(window, nullptr));
    EXPECT_TRUE(ZolDestroyHostWindow(window));
}

TEST_F(WindowTest, InvalidAreasAreCutToTheClient) {
    TestWindow host(20, 10);
    HWND window = ZolCreateHostWindow(&host);
    const RECT part{3, 4, 8, 6};
    const RECT beyond{-5, 4, 80, 60};
    const RECT outside{20, 0, 30, 10};
    EXPECT_TRUE(InvalidateRect(window, &part, FALSE));
    EXPECT_TRUE(InvalidateRect(window, &beyond, FALSE));
    EXPECT_TRUE(InvalidateRect(window, nullptr, FALSE));
    EXPECT_TRUE(InvalidateRect(window, &outside, FALSE));
    ASSERT_EQ(host.dirty.size(), 3U);
    EXPECT_TRUE(sameRect(host.dirty[0], {3, 4, 8, 6}));
    EXPECT_TRUE(sameRect(host.dirty[1], {0, 4, 20, 10}));
    EXPECT_TRUE(sameRect(host.dirty[2], {0, 0, 20, 10}));
    EXPECT_TRUE(ZolDestroyHostWindow(window));
}

TEST_F(WindowTest, ContextsAreReleasedToTheirOwnWindowOnly) {
    TestWindow host(4, 4);
    TestWindow otherHost(4, 4);
    HWND window = ZolCreateHostWindow(&host);
    HWND other = ZolCreateHostWindow(&otherHost);
    HDC dc = GetDC(window);
    EXPECT_EQ(ReleaseDC(other, dc), 0);
    EXPECT_EQ(ReleaseDC(nullptr, dc), 0);
    EXPECT_FALSE(DeleteDC(dc));
    EXPECT_EQ(ReleaseDC(window, dc), 1);
    EXPECT_EQ(ReleaseDC(window, dc), 0);
    HDC memory = CreateCompatibleDC(nullptr);
    EXPECT_EQ(ReleaseDC(nullptr, memory), 0);
    EXPECT_TRUE(DeleteDC(memory));
    EXPECT_EQ(host.presented, 1);
    EXPECT_EQ(otherHost.presented, 0);
    EXPECT_TRUE(ZolDestroyHostWindow(window));
    EXPECT_TRUE(ZolDestroyHostWindow(other));
}

TEST_F(WindowTest, ADestroyedWindowIsNotTouchedAnyMore) {
    HDC dc = nullptr;
    HWND window = nullptr;
    {
        TestWindow host(4, 4);
        window = ZolCreateHostWindow(&host);
        dc = GetDC(window);
        EXPECT_TRUE(ZolDestroyHostWindow(window));
    }
    EXPECT_FALSE(ZolDestroyHostWindow(window));
    EXPECT_FALSE(IsWindow(window));
    EXPECT_TRUE(PatBlt(dc, 0, 0, 4, 4, WHITENESS));  // draws nothing
    RECT rect{};
    EXPECT_FALSE(GetClientRect(window, &rect));
    EXPECT_FALSE(GetWindowRect(window, &rect));
    EXPECT_FALSE(InvalidateRect(window, nullptr, FALSE));
    EXPECT_EQ(GetDC(window), nullptr);
    EXPECT_EQ(ReleaseDC(window, dc), 1);
}

TEST_F(WindowTest, TheScreenHasMetricsButNoPixels) {
    HDC dc = GetDC(nullptr);
    ASSERT_NE(dc, nullptr);
    EXPECT_GT(GetDeviceCaps(dc, HORZRES), 0);
    EXPECT_EQ(GetDeviceCaps(dc, ASPECTX), GetDeviceCaps(dc, ASPECTY));
    EXPECT_TRUE(PatBlt(dc, 0, 0, 4, 4, WHITENESS));
    EXPECT_EQ(ReleaseDC(nullptr, dc), 1);
}

TEST_F(WindowTest, AWindowWithoutASurfaceDrawsNothing) {
    TestWindow host(0, 0);
    HWND window = ZolCreateHostWindow(&host);
    HDC dc = GetDC(window);
    EXPECT_TRUE(PatBlt(dc, 0, 0, 4, 4, WHITENESS));
    Device image(2, 2);
    EXPECT_TRUE(BitBlt(image, 0, 0, 2, 2, dc, 0, 0, SRCCOPY));
    EXPECT_EQ(ReleaseDC(window, dc), 1);
    EXPECT_TRUE(ZolDestroyHostWindow(window));
    EXPECT_EQ(ZolCreateHostWindow(nullptr), nullptr);
    EXPECT_EQ(GetDC(reinterpret_cast<HWND>(std::uintptr_t{0x1234})), nullptr);
}

}  // namespace
}  // namespace zoltest
