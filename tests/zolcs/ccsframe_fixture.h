// What the tests of frames share.
#pragma once

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsframe.h"
#include "zolcs/pixels/imagelock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#include "support/gdi_canvas.h"
#include "support/new_failure.h"
#include "support/overlay_double.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "support/vtable_slots.h"

#if defined(_WIN32)
#include "support/import_table.h"
#endif

namespace zoltest::frame {

using zoltest::CallLog;
using zoltest::Canvas;
using zoltest::errorReport;
using zoltest::OverlayDouble;
using zoltest::RenderCall;
using zoltest::Report;
using zoltest::ReportCapture;
using zoltest::TestFont;

inline constexpr const wchar_t* module = L"source\\zolcs\\ccsframe";
inline constexpr const wchar_t* paintModule = L"source\\zolcs\\ccsframe_safety";
inline constexpr const wchar_t* notInitialised = L"Initialization of frame object not performed";
inline constexpr const wchar_t* noDc = L"Cannot get DC for window";

/// A frame that shows its fields.
class OpenFrame : public CCsFrame {
public:
    using CCsFrame::CCsFrame;
    using CCsFrame::hBitmap;
    using CCsFrame::height;
    using CCsFrame::hwnd;
    using CCsFrame::mMemBuffer;
    using CCsFrame::origin;
    using CCsFrame::pitch;
    using CCsFrame::ratioYx;
    using CCsFrame::type;
    using CCsFrame::valid_;
    using CCsFrame::wbitmapinfoPtr_;
    using CCsFrame::width;
    using CCsFrame::x;
    using CCsFrame::y;
};

template <typename Field>
inline std::size_t offsetIn(const OpenFrame& frame, const Field& field) {
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&frame));
}

inline std::uint32_t pixelOf(CCsFrame& frame, int x, int y) {
    const zolcs::ImageLock lock(frame);
    std::uint32_t value = 0;
    std::memcpy(&value, lock.origin() + 4 * (y * frame.getPitch() + x), sizeof value);
    return value;
}

inline void setPixel(CCsFrame& frame, int x, int y, std::uint32_t value) {
    const zolcs::ImageLock lock(frame);
    std::memcpy(lock.origin() + 4 * (y * frame.getPitch() + x), &value, sizeof value);
}

/// A value for every place, with a fourth byte that is not 0.
inline std::uint32_t pattern(int x, int y) {
    return 0xA5000000U + static_cast<std::uint32_t>(y) * 0x10000U + static_cast<std::uint32_t>(x) * 0x101U + 0x30405U;
}

/// Fills the whole memory, padding included.
inline void fillPattern(CCsFrame& frame) {
    for (int y = 0; y < frame.getHeight(); ++y) {
        for (int x = 0; x < frame.getPitch(); ++x) setPixel(frame, x, y, pattern(x, y));
    }
}

/// Objects and pixel memory are the same after each test as before.
class CCsFrameTest : public ::testing::Test {
protected:
    void SetUp() override {
        static_cast<void>(Canvas(1, 1));  // what the system makes once and for all
        objects = zoltest::gdiObjectCount();
        bytes = manager.getBytesInUse();
    }
    void TearDown() override {
        EXPECT_EQ(zoltest::gdiObjectCount(), objects);
        EXPECT_EQ(manager.getBytesInUse(), bytes);
        EXPECT_EQ(OverlayDouble::living, 0);
    }

    void expectReport(const wchar_t* message, long number, const wchar_t* file, int line) {
        EXPECT_EQ(ReportCapture::take(), (std::vector<Report>{errorReport(message, number, file, line)}));
    }
    static void expectNoReport() { EXPECT_TRUE(ReportCapture::take().empty()); }

    ZolMemMappedManager& manager = *ZolMemMappedManager::getIntance();
    ReportCapture capture;
    CallLog log;
    unsigned int objects = 0;
    std::size_t bytes = 0;
};

/// Everything on mappings and on plain memory.
class CCsFrameMemoryTest : public CCsFrameTest, public ::testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        CCsFrameTest::SetUp();
        manager.setUseMappings(GetParam());
    }
    void TearDown() override {
        CCsFrameTest::TearDown();
        manager.setUseMappings(true);
    }
};

/// Lets no pixel memory be had while it lives.
class NoPixelMemory {
public:
    NoPixelMemory() { manager_.setLimit(manager_.getBytesInUse()); }
    ~NoPixelMemory() { manager_.setLimit(static_cast<std::size_t>(-1)); }
    NoPixelMemory(const NoPixelMemory&) = delete;
    NoPixelMemory& operator=(const NoPixelMemory&) = delete;

private:
    ZolMemMappedManager& manager_ = *ZolMemMappedManager::getIntance();
};

#if defined(_WIN32)
/// A window that writes down what the library wants painted again. One at a time.
class TestWindow {
public:
    TestWindow()
        : handle(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 64, 48, nullptr, nullptr, nullptr, nullptr)) {
        static const bool noted =
            zoltest::redirectLibraryImport(zoltest::addressOf(&InvalidateRect), zoltest::addressOf(&TestWindow::note));
        EXPECT_TRUE(noted);
        EXPECT_NE(handle, nullptr) << "a screen is needed";
        current_ = this;
    }
    ~TestWindow() {
        current_ = nullptr;
        DestroyWindow(handle);
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    HWND handle;
    std::vector<std::vector<LONG>> areas;

private:
    static BOOL WINAPI note(HWND window, const RECT* area, BOOL erase) {
        if (current_ != nullptr && area != nullptr) {
            current_->areas.push_back({area->left, area->top, area->right, area->bottom});
        }
        return InvalidateRect(window, area, erase);
    }

    inline static TestWindow* current_ = nullptr;
};
#else
/// A window that writes down what must be painted again.
class TestWindow : public ZolHostWindow {
public:
    TestWindow() : handle(ZolCreateHostWindow(this)) {}
    ~TestWindow() override { ZolDestroyHostWindow(handle); }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    SIZE clientSize() override { return {64, 48}; }
    ZolPixelSurface surface() override { return {}; }
    void present() override {}
    void invalidate(const RECT& area) override { areas.push_back({area.left, area.top, area.right, area.bottom}); }

    HWND handle;
    std::vector<std::vector<LONG>> areas;
};
#endif

}  // namespace zoltest::frame
