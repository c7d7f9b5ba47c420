#include "zolcs/ccsframe.h"

#include "support/gdi_canvas.h"
#include "support/new_failure.h"
#include "support/overlay_double.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "support/vtable_slots.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/pixels/imagelock.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#if defined(_WIN32)
#include "support/import_table.h"
#endif

namespace {

using zoltest::CallLog;
using zoltest::Canvas;
using zoltest::errorReport;
using zoltest::OverlayDouble;
using zoltest::RenderCall;
using zoltest::Report;
using zoltest::ReportCapture;
using zoltest::TestFont;

constexpr const wchar_t* module = L"source\\zolcs\\ccsframe";
constexpr const wchar_t* paintModule = L"source\\zolcs\\ccsframe_safety";
constexpr const wchar_t* notInitialised = L"Initialization of frame object not performed";
constexpr const wchar_t* noDc = L"Cannot get DC for window";

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
std::size_t offsetIn(const OpenFrame& frame, const Field& field) {
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&frame));
}

std::uint32_t pixelOf(CCsFrame& frame, int x, int y) {
    const zolcs::ImageLock lock(frame);
    std::uint32_t value = 0;
    std::memcpy(&value, lock.origin() + 4 * (y * frame.getPitch() + x), sizeof value);
    return value;
}

void setPixel(CCsFrame& frame, int x, int y, std::uint32_t value) {
    const zolcs::ImageLock lock(frame);
    std::memcpy(lock.origin() + 4 * (y * frame.getPitch() + x), &value, sizeof value);
}

/// A value for every place, with a fourth byte that is not 0.
std::uint32_t pattern(int x, int y) {
    return 0xA5000000U + static_cast<std::uint32_t>(y) * 0x10000U + static_cast<std::uint32_t>(x) * 0x101U + 0x30405U;
}

/// Fills the whole memory, padding included.
void fillPattern(CCsFrame& frame) {
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

INSTANTIATE_TEST_SUITE_P(Memory, CCsFrameMemoryTest, ::testing::Values(true, false),
                         [](const auto& each) { return each.param ? "Mapped" : "Plain"; });

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

}  // namespace

// ---------------------------------------------------------------------------------------- data model

TEST_F(CCsFrameTest, StartsEmpty) {
    const OpenFrame frame;
    EXPECT_EQ(frame.getWidth(), 0);
    EXPECT_EQ(frame.getHeight(), 0);
    EXPECT_EQ(frame.getPitch(), 0);
    EXPECT_EQ(frame.getType(), CCS_RGB8);
    EXPECT_EQ(frame.getRatioYx(), 0.0);
    EXPECT_EQ(frame.x, 0);
    EXPECT_EQ(frame.y, 0);
    EXPECT_EQ(frame.hwnd, nullptr);
    EXPECT_EQ(frame.wbitmapinfoPtr_, nullptr);
    EXPECT_EQ(frame.hBitmap, nullptr);
    EXPECT_EQ(frame.GetMemBuffer(), nullptr);
    EXPECT_EQ(frame.valid(), 0);

    const OpenFrame sized(30, 20);
    EXPECT_EQ(sized.getWidth(), 30);
    EXPECT_EQ(sized.getHeight(), 20);
    EXPECT_EQ(sized.valid(), 0);
    EXPECT_EQ(sized.GetMemBuffer(), nullptr);
}

TEST_F(CCsFrameTest, FieldsLieWhereTheyAlwaysDid) {
    const OpenFrame frame;
    constexpr std::size_t pointer = sizeof(void*);
    // On 32 bits the image ends with 4 bytes that only align it; what derives from it begins there.
    constexpr std::size_t start = pointer == 4 ? sizeof(CCsImage) - 4 : sizeof(CCsImage);
    EXPECT_EQ(offsetIn(frame, frame.x), start);
    EXPECT_EQ(offsetIn(frame, frame.y), start + 4);
    EXPECT_EQ(offsetIn(frame, frame.hwnd), start + 8);
    EXPECT_EQ(offsetIn(frame, frame.wbitmapinfoPtr_), start + 8 + pointer);
    EXPECT_EQ(offsetIn(frame, frame.hBitmap), start + 8 + 2 * pointer);
    EXPECT_EQ(offsetIn(frame, frame.valid_), start + 8 + 3 * pointer);
}

TEST_F(CCsFrameTest, VirtualOperationsStandInTheirOrder) {
    using zoltest::tableEntry;
    EXPECT_EQ(tableEntry(&CCsFrame::NewInstance), 0U);
    EXPECT_EQ(tableEntry(&CCsFrame::getOrigin), 3U);  // behind the destructor's two
    EXPECT_EQ(tableEntry(&CCsFrame::unlock), 4U);
    EXPECT_EQ(tableEntry(&CCsFrame::getHBitmap), 5U);
    EXPECT_EQ(tableEntry(&CCsFrame::invalidate), 6U);
    EXPECT_EQ(tableEntry(&CCsFrame::paint), 7U);
    EXPECT_EQ(tableEntry(&CCsFrame::setSize), 8U);
    EXPECT_EQ(tableEntry(&CCsFrame::print), 9U);
    EXPECT_EQ(tableEntry(&CCsFrame::printColor), 10U);
}

// ---------------------------------------------------------------------------------------- before initialisation

TEST_F(CCsFrameTest, RefusesToWorkBeforeInitialisation) {
    CCsFrame frame(10, 10);
    Canvas canvas(10, 10);
    OverlayDouble overlay("o", &log);
    CCs2dTrafo trafo;
    EXPECT_EQ(frame.setSize(5, 3, 0, 0), 2);
    expectReport(notInitialised, 0, module, 377);
    EXPECT_EQ(frame.paint(canvas.dc(), &overlay, &trafo, 0, -1, -1, -1, -1, nullptr, 0, nullptr, &overlay), 2);
    expectReport(notInitialised, 0, paintModule, 73);
    EXPECT_EQ(frame.print(canvas.dc(), RECT{0, 0, 9, 9}, &overlay, &overlay, &trafo, 0, 0, 9, 9, 0, 0, nullptr, 1), 2);
    expectReport(notInitialised, 0, module, 581);
    EXPECT_EQ(frame.print(canvas.dc(), RECT{}, nullptr, nullptr, nullptr, 0, 0, 0, 0, 0, 0, nullptr, 1), 2);
    expectReport(notInitialised, 0, module, 581);
    EXPECT_EQ(frame.printColor(canvas.dc(), &overlay, &overlay, &trafo, 0, 9, 9, 0, 0, nullptr, 1), 2);
    expectReport(notInitialised, 0, module, 680);
    EXPECT_EQ(frame.getHBitmap(), nullptr);
    frame.unmapBitmap();
    EXPECT_EQ(frame.getOrigin(), nullptr);
    frame.unlock();
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(canvas.pixel(0, 0), 0xCDCDCDCDU);
    EXPECT_EQ(frame.getWidth(), 10);
}

// ---------------------------------------------------------------------------------------- initialisation

TEST_P(CCsFrameMemoryTest, InitWithoutADevice) {
    OpenFrame frame(30, 20);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.valid(), 1);
    EXPECT_EQ(frame.getRatioYx(), 1.0);
    EXPECT_EQ(frame.hwnd, nullptr);
    EXPECT_EQ(frame.getPitch(), 32);
    EXPECT_EQ(frame.GetMemBuffer()->getSize(), 32U * 20U * 4U);
    EXPECT_EQ(frame.GetMemBuffer()->getMapHandle() != nullptr, GetParam());
    EXPECT_NE(frame.hBitmap, nullptr);
    EXPECT_EQ(pixelOf(frame, 29, 19), 0U);
    expectNoReport();
}

TEST_P(CCsFrameMemoryTest, InitForADeviceContext) {
    Canvas canvas(4, 4);
    OpenFrame frame(30, 20);
    frame.hwnd = reinterpret_cast<HWND>(&frame);  // init forgets it
    EXPECT_EQ(frame.init(canvas.dc()), 255);
    EXPECT_EQ(frame.hwnd, nullptr);
    EXPECT_EQ(frame.getRatioYx(), static_cast<double>(GetDeviceCaps(canvas.dc(), ASPECTX)) /
                                      static_cast<double>(GetDeviceCaps(canvas.dc(), ASPECTY)));
    EXPECT_EQ(frame.valid(), 1);
    EXPECT_EQ(frame.getWidth(), 30);
    expectNoReport();
}

TEST_F(CCsFrameTest, HeaderIsOfATopDownBitmap) {
    OpenFrame frame(5, 3);
    EXPECT_EQ(frame.init(), 255);
    ASSERT_NE(frame.wbitmapinfoPtr_, nullptr);
    const BITMAPINFOHEADER& header = frame.wbitmapinfoPtr_->bmiHeader;
    EXPECT_EQ(header.biSize, 40U);
    EXPECT_EQ(header.biWidth, 8);
    EXPECT_EQ(header.biHeight, -3);
    EXPECT_EQ(header.biPlanes, 1);
    EXPECT_EQ(header.biBitCount, 32);
    EXPECT_EQ(header.biCompression, 0U);
    EXPECT_EQ(header.biSizeImage, 96U);
    EXPECT_EQ(header.biXPelsPerMeter, 3000);
    EXPECT_EQ(header.biYPelsPerMeter, 3000);
    EXPECT_EQ(header.biClrUsed, 0U);
    EXPECT_EQ(header.biClrImportant, 0U);
}

TEST_F(CCsFrameTest, InitWithoutADeviceContextFails) {
    OpenFrame frame(30, 20);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.init(static_cast<HDC>(nullptr)), 0);
    expectReport(noDc, 0, module, 275);
    EXPECT_EQ(frame.valid(), 0);
    EXPECT_EQ(frame.hBitmap, nullptr);
    EXPECT_EQ(frame.setSize(1, 1, 0, 0), 2);
    expectReport(notInitialised, 0, module, 377);
    EXPECT_EQ(frame.init(), 255);  // and it recovers
    EXPECT_EQ(frame.valid(), 1);
}

TEST_F(CCsFrameTest, InitWithoutPixelMemoryFails) {
    Canvas canvas(4, 4);
    OpenFrame frame(30, 20);
    const NoPixelMemory none;
    EXPECT_EQ(frame.init(canvas.dc()), 0);
    expectReport(noDc, 0, module, 289);
    EXPECT_EQ(frame.valid(), 0);
    EXPECT_EQ(frame.init(), 0);
    expectReport(noDc, 0, module, 323);
    EXPECT_EQ(frame.valid(), 0);
    EXPECT_EQ(frame.getHBitmap(), nullptr);
}

TEST_P(CCsFrameMemoryTest, RepeatedInitLeaksNothing) {
    Canvas canvas(4, 4);
    OpenFrame frame(30, 20);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(frame.init(), 255);
        EXPECT_EQ(frame.init(canvas.dc()), 255);
        EXPECT_EQ(frame.init(static_cast<HDC>(nullptr)), 0);
        // The pixels of a plain frame were the bitmap's; those of a mapped one live in its buffer.
        EXPECT_EQ(frame.getOrigin() != nullptr, GetParam());
        frame.unlock();
    }
    ReportCapture::take();
}

TEST_P(CCsFrameMemoryTest, InitForAWindow) {
    TestWindow window;
    OpenFrame frame(window.handle, 30, 20, 5, 6);
    EXPECT_EQ(frame.valid(), 1);
    EXPECT_EQ(frame.hwnd, window.handle);
    EXPECT_EQ(frame.getWidth(), 30);
    EXPECT_EQ(frame.getHeight(), 20);
    EXPECT_EQ(frame.x, 5);
    EXPECT_EQ(frame.y, 6);
    EXPECT_EQ(frame.getRatioYx(), 1.0);
    EXPECT_EQ(frame.init(window.handle, -1, 9, 7, -1), 255);  // -1 keeps here too
    EXPECT_EQ(frame.getWidth(), 30);
    EXPECT_EQ(frame.getHeight(), 9);
    EXPECT_EQ(frame.x, 7);
    EXPECT_EQ(frame.y, 6);
    expectNoReport();
}

TEST_F(CCsFrameTest, InitForAWindowFailsWithoutDeviceContextOrPixels) {
    HWND gone = nullptr;
    {
        TestWindow window;
        gone = window.handle;
        OpenFrame frame;
        const NoPixelMemory none;
        EXPECT_EQ(frame.init(window.handle, 30, 20, 0, 0), 0);
        expectReport(noDc, 0, module, 242);
        EXPECT_EQ(frame.valid(), 0);
    }
    OpenFrame frame;
    EXPECT_EQ(frame.init(gone, 30, 20, 0, 0), 0);
    expectReport(noDc, 0, module, 227);
    EXPECT_EQ(frame.valid(), 0);
    EXPECT_EQ(frame.getWidth(), 0);
}

TEST_F(CCsFrameTest, ConstructorForAWindowThrowsWhenInitFails) {
    TestWindow window;
    {
        const NoPixelMemory none;
        try {
            const CCsFrame frame(window.handle, 30, 20, 0, 0);
            FAIL();
        } catch (int value) {
            EXPECT_EQ(value, 0);
        }
    }
    expectReport(noDc, 0, module, 242);
    EXPECT_THROW(CCsFrame(window.handle, 0, 20, 0, 0), int);
    EXPECT_EQ(ReportCapture::take(), (std::vector<Report>{errorReport(L"CreateDIBSection failed", 0, module, 441),
                                                          errorReport(noDc, 0, module, 242)}));
}

TEST_F(CCsFrameTest, InvalidatesAnAreaOfTheWindow) {
    TestWindow window;
    OpenFrame frame(window.handle, 30, 20, 5, 6);
    using Areas = std::vector<std::vector<LONG>>;
    EXPECT_EQ(frame.invalidate(-1, -1, -1, -1), 255);
    EXPECT_EQ(frame.invalidate(3, -1, -1, -1), 255);
    EXPECT_EQ(frame.invalidate(-1, 4, -1, -1), 255);
    EXPECT_EQ(frame.invalidate(-1, -1, 10, -1), 255);
    EXPECT_EQ(frame.invalidate(-1, -1, -1, 11), 255);
    EXPECT_EQ(frame.invalidate(1, 2, 3, 4), 255);
    EXPECT_EQ(window.areas,
              (Areas{{5, 6, 35, 26}, {5, 6, 8, 26}, {5, 6, 35, 10}, {10, 6, 40, 26}, {5, 11, 35, 31}, {3, 4, 4, 6}}));
    constexpr int highest = std::numeric_limits<int>::max();
    EXPECT_EQ(frame.invalidate(highest, highest, 40, 40), 255);
    expectNoReport();
}

TEST_F(CCsFrameTest, InvalidateFailsForAWindowThatIsGone) {
    OpenFrame frame;
    {
        TestWindow window;
        EXPECT_EQ(frame.init(window.handle, 30, 20, 5, 6), 255);
    }
    EXPECT_EQ(frame.invalidate(-1, -1, -1, -1), 0);
    expectReport(L"InvalidateRect failed", 0, module, 541);
}

TEST_F(CCsFrameTest, InvalidateWithoutAWindowIsAFailure) {
    CCsFrame frame(30, 20);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.invalidate(-1, -1, -1, -1), 0);
    expectReport(L"InvalidateRect failed", 0, module, 541);
}

// ---------------------------------------------------------------------------------------- sizes

TEST_P(CCsFrameMemoryTest, SetSizeRoundsThePitchUpToFour) {
    OpenFrame frame(1, 1);
    EXPECT_EQ(frame.init(), 255);
    for (int width = 1; width <= 33; ++width) {
        EXPECT_EQ(frame.setSize(width, 3, -1, -1), 255);
        EXPECT_EQ(frame.getWidth(), width);
        EXPECT_EQ(frame.getPitch(), (width + 3) / 4 * 4);
        EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biWidth, frame.getPitch());
        EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biHeight, -3);
        EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biSizeImage, static_cast<DWORD>(frame.getPitch()) * 12U);
        EXPECT_EQ(frame.GetMemBuffer()->getSize(), static_cast<std::size_t>(frame.getPitch()) * 12U);
        fillPattern(frame);
    }
    EXPECT_EQ(frame.setSize(5, 3, -1, -1), 255);
    EXPECT_EQ(frame.getPitch(), 8);
    EXPECT_EQ(pixelOf(frame, 0, 0), 0U);  // new pixels, not the old ones
}

TEST_F(CCsFrameTest, SetSizeKeepsWhatIsMinusOne) {
    OpenFrame frame(30, 20);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.setSize(-1, -1, 4, 5), 255);
    EXPECT_EQ(frame.getWidth(), 30);
    EXPECT_EQ(frame.getPitch(), 32);
    EXPECT_EQ(frame.getHeight(), 20);
    EXPECT_EQ(frame.x, 4);
    EXPECT_EQ(frame.y, 5);
    EXPECT_EQ(frame.setSize(7, 8, -1, -1), 255);
    EXPECT_EQ(frame.x, 4);
    EXPECT_EQ(frame.y, 5);
    EXPECT_EQ(frame.setSize(-1, -1, -1, -2), 255);
    EXPECT_EQ(frame.getWidth(), 7);
    EXPECT_EQ(frame.getHeight(), 8);
    EXPECT_EQ(frame.y, -2);
}

TEST_P(CCsFrameMemoryTest, SetSizeOfNothingIsRefusedByGdi) {
    for (const bool zeroWidth : {true, false}) {
        OpenFrame frame(30, 20);
        EXPECT_EQ(frame.init(), 255);
        EXPECT_EQ(frame.setSize(zeroWidth ? 0 : 30, zeroWidth ? 20 : 0, -1, -1), 0);
        expectReport(L"CreateDIBSection failed", 0, module, 441);
        EXPECT_EQ(frame.valid(), 1);
        EXPECT_EQ(frame.wbitmapinfoPtr_, nullptr);
        EXPECT_EQ(frame.hBitmap, nullptr);
        EXPECT_EQ(frame.getHBitmap(), nullptr);
        EXPECT_EQ(frame.setSize(30, 20, -1, -1), 255);
        EXPECT_NE(frame.wbitmapinfoPtr_, nullptr);
        EXPECT_NE(frame.hBitmap, nullptr);
    }
}

TEST_P(CCsFrameMemoryTest, SetSizeWithoutMemoryLeavesAFrameWithoutPixels) {
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    struct Size {
        int width;
        int height;
    };
    for (const Size size : {Size{40, -2}, Size{-9, 20}, Size{lowest, 1}, Size{40, lowest}, Size{highest, highest},
                            Size{highest, 1}, Size{65536, 65536}, Size{lowest, highest}}) {
        OpenFrame frame(30, 20);
        EXPECT_EQ(frame.init(), 255);
        EXPECT_EQ(frame.setSize(size.width, size.height, -1, -1), 0);
        EXPECT_EQ(frame.valid(), 1);
        EXPECT_EQ(frame.getWidth(), size.width);
        EXPECT_EQ(frame.getHeight(), size.height);
        EXPECT_EQ(frame.hBitmap, nullptr);
        EXPECT_EQ(frame.getHBitmap(), nullptr);
        EXPECT_EQ(frame.GetMemBuffer(), nullptr);
        EXPECT_EQ(frame.getOrigin(), nullptr);
        expectNoReport();
        EXPECT_EQ(frame.setSize(30, 20, -1, -1), 255);
    }
}

TEST_F(CCsFrameTest, SetSizeWithExhaustedMemoryReportsNothing) {
    OpenFrame frame(30, 20);
    EXPECT_EQ(frame.init(), 255);
    {
        const NoPixelMemory none;
        EXPECT_EQ(frame.setSize(300, 200, -1, -1), 0);
    }
    expectNoReport();
    EXPECT_EQ(frame.valid(), 1);
    EXPECT_EQ(frame.GetMemBuffer(), nullptr);
    EXPECT_NE(frame.wbitmapinfoPtr_, nullptr);
    EXPECT_EQ(frame.setSize(300, 200, -1, -1), 255);
}

// ---------------------------------------------------------------------------------------- bitmaps

TEST_F(CCsFrameTest, MappedFrameHasABitmapOnlyWhileItIsDrawnOn) {
    OpenFrame frame(8, 2);
    EXPECT_EQ(frame.init(), 255);
    setPixel(frame, 3, 1, 0x123456);
    frame.unmapBitmap();
    EXPECT_EQ(frame.hBitmap, nullptr);
    EXPECT_EQ(frame.origin, nullptr);
    EXPECT_EQ(pixelOf(frame, 3, 1), 0x123456U);  // the pixels live in the mapping
    HBITMAP bitmap = frame.getHBitmap();
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(frame.getHBitmap(), bitmap);
    EXPECT_NE(frame.origin, nullptr);
    std::uint32_t seen = 0;
    std::memcpy(&seen, frame.origin + 4 * (8 + 3), sizeof seen);
    EXPECT_EQ(seen, 0x123456U);
    Canvas canvas(8, 2);
    EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, nullptr, nullptr), 255);
    EXPECT_EQ(frame.hBitmap, nullptr);
    EXPECT_EQ(canvas.pixel(3, 1), 0x123456U);
}

TEST_F(CCsFrameTest, PlainFrameKeepsItsBitmap) {
    manager.setUseMappings(false);
    OpenFrame frame(8, 2);
    EXPECT_EQ(frame.init(), 255);
    manager.setUseMappings(true);
    HBITMAP bitmap = frame.hBitmap;
    ASSERT_NE(bitmap, nullptr);
    setPixel(frame, 3, 1, 0x123456);
    frame.unmapBitmap();
    EXPECT_EQ(frame.getHBitmap(), bitmap);
    Canvas canvas(8, 2);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, nullptr, nullptr), 255);
        EXPECT_EQ(frame.hBitmap, bitmap);
        EXPECT_EQ(canvas.pixel(3, 1), 0x123456U);
    }
}

// ---------------------------------------------------------------------------------------- painting

TEST_P(CCsFrameMemoryTest, PaintCopiesTheAreaClippedToTheFrame) {
    OpenFrame frame(9, 7);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.setSize(9, 7, 10, 20), 255);
    fillPattern(frame);
    struct Area {
        int width, height, x, y;       // asked for
        int left, top, right, bottom;  // copied, in the client
    };
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    for (const Area area : {
             Area{-1, -1, -1, -1, 10, 20, 19, 27},
             Area{4, -1, -1, -1, 10, 20, 14, 27},
             Area{-1, 3, -1, -1, 10, 20, 19, 23},
             Area{-1, -1, 12, -1, 12, 20, 19, 27},
             Area{-1, -1, -1, 22, 10, 22, 19, 27},
             Area{3, 2, 12, 22, 12, 22, 15, 24},
             Area{100, 100, 0, 0, 10, 20, 19, 27},
             Area{12, 100, 0, 0, 10, 20, 12, 27},
             Area{100, 22, 0, 0, 10, 20, 19, 22},
             Area{100, 100, 18, 26, 18, 26, 19, 27},
             Area{highest, highest, 12, 22, 12, 22, 19, 27},
             Area{5, 5, 8, 18, 10, 20, 13, 23},
             Area{highest, highest, -50, -60, 10, 20, 19, 27},
         }) {
        Canvas canvas(40, 40);
        EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, area.width, area.height, area.x, area.y, nullptr, 0,
                              nullptr, nullptr),
                  255);
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 40; ++x) {
                const bool copied = x >= area.left && x < area.right && y >= area.top && y < area.bottom;
                ASSERT_EQ(canvas.pixel(x, y), copied ? pattern(x - 10, y - 20) : 0xCDCDCDCDU) << x << ' ' << y;
            }
        }
    }
    OverlayDouble overlay("o", &log);
    for (const Area area :
         {Area{0, 5, 12, 22, 0, 0, 0, 0}, Area{5, 0, 12, 22, 0, 0, 0, 0}, Area{-2, 5, 12, 22, 0, 0, 0, 0},
          Area{5, 5, 19, 22, 0, 0, 0, 0}, Area{5, 5, 12, 27, 0, 0, 0, 0}, Area{5, 5, 5, 22, 0, 0, 0, 0},
          Area{5, 5, 12, 15, 0, 0, 0, 0}, Area{highest, highest, highest, highest, 0, 0, 0, 0},
          Area{highest, highest, lowest, lowest, 0, 0, 0, 0}, Area{lowest, lowest, 5, 5, 0, 0, 0, 0}}) {
        // Nothing to draw is a success; even a device context is not needed.
        EXPECT_EQ(frame.paint(nullptr, &overlay, nullptr, 0, area.width, area.height, area.x, area.y, &overlay, 0,
                              nullptr, &overlay),
                  255);
    }
    EXPECT_TRUE(log.empty());
    expectNoReport();
}

TEST_P(CCsFrameMemoryTest, PaintDrawsTheOverlaysInOrderWithTheirFonts) {
    OpenFrame frame(20, 10);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.setSize(20, 10, 3, 4), 255);
    Canvas canvas(40, 40);
    const TestFont fontOfDc(-20);
    const TestFont textFont(-30);
    HGDIOBJ systemFont = SelectObject(canvas.dc(), fontOfDc.get());
    CCs2dTrafo trafo;
    OverlayDouble overlay("main", &log);
    OverlayDouble text("text", &log);
    OverlayDouble extra("extra", &log);
    overlay.setTransformable_(0);
    std::vector<HGDIOBJ> fonts;
    std::vector<HDC> contexts;
    for (OverlayDouble* each : {&overlay, &text, &extra}) {
        each->onRender = [&](const RenderCall& call) {
            fonts.push_back(GetCurrentObject(call.dc, OBJ_FONT));
            contexts.push_back(call.dc);
            ASSERT_NE(call.outputTrafo, nullptr);
            double m[6];
            call.outputTrafo->getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            EXPECT_EQ(std::vector<double>(m, m + 6), (std::vector<double>{1, 0, 0, 1, 0, 0}));
            EXPECT_EQ(GetCurrentObject(call.dc, OBJ_BITMAP), frame.hBitmap);
        };
    }
    EXPECT_EQ(frame.paint(canvas.dc(), &overlay, &trafo, 0x112233, 8, 5, 5, 6, &text, 0x445566, textFont.get(), &extra),
              255);
    EXPECT_EQ(log, (CallLog{"main.isTransformable", "main.render", "text.render", "extra.render"}));
    ASSERT_EQ(fonts.size(), 3U);
    EXPECT_EQ(fonts[0], fontOfDc.get());
    EXPECT_EQ(fonts[1], textFont.get());
    EXPECT_NE(fonts[2], fontOfDc.get());  // what the memory device context had to begin with
    EXPECT_NE(fonts[2], textFont.get());
    EXPECT_NE(contexts[0], canvas.dc());
    EXPECT_EQ(contexts[1], contexts[0]);
    EXPECT_EQ(contexts[2], contexts[0]);
    const auto expectCall = [&](const OverlayDouble& drawn, unsigned long color) {
        ASSERT_EQ(drawn.renders.size(), 1U);
        const RenderCall& call = drawn.renders.front();
        EXPECT_EQ(call.imageTrafo, &trafo);
        EXPECT_EQ(call.color, color);
        EXPECT_EQ(call.mode, 1);
        EXPECT_EQ(call.width, 8);
        EXPECT_EQ(call.height, 5);
        EXPECT_EQ(call.offsetX, 0);
        EXPECT_EQ(call.offsetY, 0);
    };
    expectCall(overlay, 0x112233);
    expectCall(text, 0x445566);
    expectCall(extra, 0x445566);
    EXPECT_EQ(GetCurrentObject(canvas.dc(), OBJ_FONT), fontOfDc.get());

    // Without the others the extra overlay finds the device context's font.
    fonts.clear();
    EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, textFont.get(), &extra), 255);
    ASSERT_EQ(fonts.size(), 1U);
    EXPECT_EQ(fonts[0], fontOfDc.get());
    EXPECT_EQ(extra.renders.back().imageTrafo, nullptr);
    EXPECT_EQ(extra.renders.back().width, 20);
    EXPECT_EQ(extra.renders.back().height, 10);
    SelectObject(canvas.dc(), systemFont);
    expectNoReport();
}

TEST_F(CCsFrameTest, PaintLeavesOverlaysOut) {
    CCsFrame frame(20, 10);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(20, 10);
    const TestFont font(-20);
    CCs2dTrafo trafo;
    OverlayDouble overlay("main", &log);
    OverlayDouble text("text", &log);
    const auto paint = [&](CCs2dTrafo* given, CCsOverlay* givenText, HFONT givenFont) {
        log.clear();
        EXPECT_EQ(frame.paint(canvas.dc(), &overlay, given, 0, -1, -1, -1, -1, givenText, 0, givenFont, nullptr), 255);
        return log;
    };
    EXPECT_EQ(paint(&trafo, nullptr, nullptr), (CallLog{"main.isTransformable"}));  // it is transformable
    overlay.setTransformable_(0);
    EXPECT_EQ(paint(&trafo, nullptr, nullptr), (CallLog{"main.isTransformable", "main.render"}));
    EXPECT_EQ(paint(nullptr, nullptr, nullptr), (CallLog{"main.isTransformable"}));
    EXPECT_EQ(paint(nullptr, &text, nullptr), (CallLog{"main.isTransformable"}));
    EXPECT_EQ(paint(nullptr, &text, font.get()), (CallLog{"main.isTransformable", "text.render"}));
    EXPECT_EQ(paint(nullptr, nullptr, font.get()), (CallLog{"main.isTransformable"}));
}

TEST_P(CCsFrameMemoryTest, PaintedOverlaysStayInTheFrame) {
    CCsFrame frame(8, 4);
    EXPECT_EQ(frame.init(), 255);
    fillPattern(frame);
    Canvas canvas(8, 4);
    OverlayDouble overlay;
    overlay.onRender = [](const RenderCall& call) {
        HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
        HRGN region = CreateRectRgn(2, 1, 5, 3);
        HGDIOBJ before = SelectObject(call.dc, brush);
        PaintRgn(call.dc, region);
        SelectObject(call.dc, before);
        DeleteObject(region);
        DeleteObject(brush);
    };
    EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, nullptr, &overlay), 255);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 8; ++x) {
            const bool drawn = x >= 2 && x < 5 && y >= 1 && y < 3;
            ASSERT_EQ(canvas.pixel(x, y), drawn ? 0x010203U : pattern(x, y));
            ASSERT_EQ(pixelOf(frame, x, y), drawn ? 0x010203U : pattern(x, y));
        }
    }
}

TEST_P(CCsFrameMemoryTest, PaintFailsWithoutDeviceContextOrPixels) {
    OpenFrame frame(20, 10);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.paint(nullptr, nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, nullptr, nullptr), 0);
    expectReport(L"BitBlt failed", 0, paintModule, 129);
    EXPECT_EQ(frame.hBitmap == nullptr, GetParam());

    Canvas canvas(20, 10);
    OverlayDouble overlay("o", &log);
    EXPECT_EQ(frame.setSize(0, 10, -1, -1), 0);
    ReportCapture::take();
    frame.width = 20;  // an area to paint, but no pixels
    EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, nullptr, &overlay), 0);
    expectReport(L"BitBlt failed", 0, paintModule, 129);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(canvas.pixel(0, 0), 0xCDCDCDCDU);
}

// ---------------------------------------------------------------------------------------- printing

namespace {

/// Where a printed frame lies: the larger extent of the frame (its height counted with its ratio) takes the larger
/// extent of the page, about the page's centre.
struct PagePlace {
    int x, y, width, height;
};

PagePlace placeOf(const CCsImage& frame, double width, double height, double aspect, double x, double y) {
    const double down = frame.getHeight() * frame.getRatioYx();
    const double s = frame.getWidth() > down ? frame.getWidth() : down;
    const double d = width > height * aspect ? width : height * aspect;
    const double xScale = d / s;
    const double yScale = frame.getRatioYx() * (d / aspect) / s;
    return {
        static_cast<int>((0.0 - 0.5 * frame.getWidth() / s) * d + 0.5 * width + x),
        static_cast<int>((0.0 - 0.5 * (frame.getRatioYx() * frame.getHeight()) / s) * (d / aspect) + 0.5 * height + y),
        static_cast<int>(frame.getWidth() * xScale), static_cast<int>(frame.getHeight() * yScale)};
}

double aspectOf(HDC dc) {
    return static_cast<double>(GetDeviceCaps(dc, ASPECTX)) / static_cast<double>(GetDeviceCaps(dc, ASPECTY));
}

}  // namespace

TEST_P(CCsFrameMemoryTest, PrintStretchesTheFrameOverThePage) {
    struct Page {
        int frameWidth, frameHeight;
        double ratio;
        int width, height, x, y;
        PagePlace place;
    };
    for (const Page& page : {
             Page{4, 4, 1.0, 8, 8, 0, 0, {0, 0, 8, 8}},
             Page{6, 3, 1.0, 12, 6, 2, 3, {2, 3, 12, 6}},
             Page{6, 3, 1.0, 12, 12, 0, 0, {0, 3, 12, 6}},
             Page{3, 6, 1.0, 12, 12, 1, 1, {4, 1, 6, 12}},
             Page{6, 3, 2.0, 12, 12, 0, 0, {0, 0, 12, 12}},
             Page{4, 4, 2.0, 16, 16, 0, 0, {4, 0, 8, 16}},
             Page{4, 4, 1.0, 8, 16, 4, 0, {0, 0, 16, 16}},  // the larger extents count: it hangs over
             Page{5, 3, 1.0, 10, 6, 0, 0, {0, 0, 10, 6}},
         }) {
        OpenFrame frame(page.frameWidth, page.frameHeight);
        EXPECT_EQ(frame.init(), 255);
        frame.ratioYx = page.ratio;
        fillPattern(frame);
        Canvas canvas(24, 24);
        ASSERT_EQ(aspectOf(canvas.dc()), 1.0);
        const PagePlace place = placeOf(frame, page.width, page.height, 1.0, page.x, page.y);
        EXPECT_EQ(place.x, page.place.x);
        EXPECT_EQ(place.y, page.place.y);
        EXPECT_EQ(place.width, page.place.width);
        EXPECT_EQ(place.height, page.place.height);
        EXPECT_EQ(frame.print(canvas.dc(), RECT{0, 0, 99, 99}, nullptr, nullptr, nullptr, 0, 0, page.width, page.height,
                              page.x, page.y, nullptr, 2),
                  255);
        for (int y = 0; y < 24; ++y) {
            for (int x = 0; x < 24; ++x) {
                const int u = x - place.x;
                const int v = y - place.y;
                const bool inside = u >= 0 && v >= 0 && u < place.width && v < place.height;
                const std::uint32_t expected =
                    inside ? pattern(u * page.frameWidth / place.width, v * page.frameHeight / place.height)
                           : 0xCDCDCDCDU;
                ASSERT_EQ(canvas.pixel(x, y) & 0xFFFFFFU, expected & 0xFFFFFFU)
                    << x << ' ' << y << ' ' << page.width << ' ' << page.height;
            }
        }
        frame.unlock();
    }
    expectNoReport();
}

TEST_F(CCsFrameTest, PrintOfNothingIsASuccess) {
    CCsFrame frame(4, 4);
    EXPECT_EQ(frame.init(), 255);
    OverlayDouble overlay("o", &log);
    CCs2dTrafo trafo;
    for (const int extent : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(frame.print(nullptr, RECT{}, &overlay, &overlay, &trafo, 0, 0, extent, 5, 0, 0, nullptr, 2), 255);
        EXPECT_EQ(frame.print(nullptr, RECT{}, &overlay, &overlay, &trafo, 0, 0, 5, extent, 0, 0, nullptr, 2), 255);
        EXPECT_EQ(frame.printColor(nullptr, &overlay, &overlay, &trafo, 0, extent, 5, 0, 0, nullptr, 2), 255);
        EXPECT_EQ(frame.printColor(nullptr, &overlay, &overlay, &trafo, 0, 5, extent, 0, 0, nullptr, 2), 255);
    }
    EXPECT_TRUE(log.empty());
    expectNoReport();
}

TEST_F(CCsFrameTest, PrintDrawsTheOverlaysOnThePage) {
    OpenFrame frame(6, 3);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(40, 40);
    const TestFont fontOfDc(-20);
    const TestFont textFont(-30);
    HGDIOBJ systemFont = SelectObject(canvas.dc(), fontOfDc.get());
    CCs2dTrafo trafo;
    trafo.setSizes(6, 3, 100, 50, 1.0, 1.0, 7, 8);
    trafo.setDspPanFactor(0.5, 0.25);
    OverlayDouble overlay("main", &log);
    OverlayDouble text("text", &log);
    std::vector<HGDIOBJ> fonts;
    for (OverlayDouble* each : {&overlay, &text}) {
        each->onRender = [&](const RenderCall& call) {
            fonts.push_back(GetCurrentObject(call.dc, OBJ_FONT));
            // A copy of the caller's transformation onto the printed frame, whose limiting extent stays.
            ASSERT_NE(call.imageTrafo, &trafo);
            EXPECT_EQ(call.imageTrafo->getDstSize().cx, 12);
            EXPECT_EQ(call.imageTrafo->getDstSize().cy, 6);
            EXPECT_EQ(call.imageTrafo->getDstMax(), trafo.getDstMax());
            CCs2dTrafo expected(trafo);
            expected.setDestSizes(12, 6, aspectOf(call.dc), 2, 6);
            double m[6];
            double e[6];
            call.imageTrafo->getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            expected.getImgToDsp(e[0], e[1], e[2], e[3], e[4], e[5]);
            EXPECT_EQ(std::vector<double>(m, m + 6), std::vector<double>(e, e + 6));
            // The frame's own way onto the page.
            call.outputTrafo->getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            EXPECT_EQ(std::vector<double>(m, m + 6), (std::vector<double>{2, 0, 0, 2, 2, 6}));
        };
    }
    const auto expectCall = [&](const OverlayDouble& drawn, unsigned long color, int mode) {
        const RenderCall& call = drawn.renders.back();
        EXPECT_EQ(call.color, color);
        EXPECT_EQ(call.dc, canvas.dc());
        EXPECT_EQ(call.mode, mode);
        EXPECT_EQ(call.width, 30);
        EXPECT_EQ(call.height, 20);
        EXPECT_EQ(call.offsetX, 5);
        EXPECT_EQ(call.offsetY, -7);
    };
    const RECT area{5, -7, 35, 13};
    const auto print = [&](CCsOverlay* drawn, CCsOverlay* drawnText, CCs2dTrafo* given, HFONT font, int mode) {
        log.clear();
        fonts.clear();
        EXPECT_EQ(frame.print(canvas.dc(), area, drawn, drawnText, given, 0x112233, 0x445566, 12, 12, 2, 3, font, mode),
                  255);
        frame.unlock();
        EXPECT_EQ(GetCurrentObject(canvas.dc(), OBJ_FONT), fontOfDc.get());
        return log;
    };
    EXPECT_EQ(print(&overlay, &text, &trafo, textFont.get(), 3), (CallLog{"main.render", "text.render"}));
    EXPECT_EQ(fonts, (std::vector<HGDIOBJ>{fontOfDc.get(), textFont.get()}));
    expectCall(overlay, 0x112233, 3);
    expectCall(text, 0x445566, 3);
    // A printer gets white text.
    EXPECT_EQ(print(&overlay, &text, &trafo, nullptr, 2), (CallLog{"main.render", "text.render"}));
    EXPECT_EQ(fonts, (std::vector<HGDIOBJ>{fontOfDc.get(), fontOfDc.get()}));
    expectCall(overlay, 0x112233, 2);
    expectCall(text, 0xFFFFFF, 2);
    EXPECT_EQ(print(nullptr, &text, &trafo, nullptr, 1), (CallLog{"text.render"}));
    expectCall(text, 0x445566, 1);
    EXPECT_EQ(print(&overlay, nullptr, &trafo, nullptr, 1), (CallLog{"main.render"}));
    EXPECT_EQ(print(&overlay, &text, nullptr, textFont.get(), 1), (CallLog{}));
    EXPECT_EQ(print(nullptr, nullptr, &trafo, textFont.get(), 1), (CallLog{}));
    EXPECT_EQ(trafo.getDstSize().cx, 100);
    SelectObject(canvas.dc(), systemFont);
    expectNoReport();
}

TEST_F(CCsFrameTest, PrintLimitsAHugeArea) {
    CCsFrame frame(4, 4);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(8, 8);
    CCs2dTrafo trafo;
    OverlayDouble overlay;
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    EXPECT_EQ(frame.print(canvas.dc(), RECT{lowest, highest, highest, lowest}, &overlay, nullptr, &trafo, 0, 0, 8, 8, 0,
                          0, nullptr, 2),
              255);
    frame.unlock();
    ASSERT_EQ(overlay.renders.size(), 1U);
    EXPECT_EQ(overlay.renders[0].width, highest);
    EXPECT_EQ(overlay.renders[0].height, lowest);
    EXPECT_EQ(overlay.renders[0].offsetX, lowest);
    EXPECT_EQ(overlay.renders[0].offsetY, highest);
}

TEST_F(CCsFrameTest, PrintDeliberatelyLeavesThePixelsLockedOnceMore) {
    CCsFrame frame(4, 4);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(8, 8);
    const int before = frame.GetMemBuffer()->getLockCount();
    EXPECT_EQ(frame.print(canvas.dc(), RECT{}, nullptr, nullptr, nullptr, 0, 0, 8, 8, 0, 0, nullptr, 2), 255);
    EXPECT_EQ(frame.GetMemBuffer()->getLockCount(), before + 1);
    EXPECT_EQ(frame.printColor(canvas.dc(), nullptr, nullptr, nullptr, 0, 8, 8, 0, 0, nullptr, 2), 255);
    EXPECT_EQ(frame.GetMemBuffer()->getLockCount(), before + 1);
    frame.unlock();
}

TEST_F(CCsFrameTest, PrintReportsItsFailures) {
    OpenFrame frame(4, 4);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(8, 8);
    OverlayDouble overlay("o", &log);
    CCs2dTrafo trafo;
    const auto print = [&](HDC dc) {
        return frame.print(dc, RECT{}, &overlay, &overlay, &trafo, 0, 0, 8, 8, 0, 0, nullptr, 2);
    };
    const auto printColor = [&](HDC dc) {
        return frame.printColor(dc, &overlay, &overlay, &trafo, 0, 8, 8, 0, 0, nullptr, 2);
    };
    EXPECT_EQ(print(nullptr), 0);
    expectReport(L"SetStretchBltMode function failed", 0, module, 606);
    EXPECT_EQ(printColor(nullptr), 0);
    expectReport(L"SetStretchBltMode function failed", 0, module, 705);

    // No header after a refused size.
    EXPECT_EQ(frame.setSize(0, 4, -1, -1), 0);
    ReportCapture::take();
    EXPECT_EQ(print(canvas.dc()), 0);
    expectReport(L"StretchDIBits didn't set all scanlines", -1, module, 615);
    EXPECT_EQ(printColor(canvas.dc()), 0);
    expectReport(L"Bitmap info variable wbitmapinfoPtr_ is NULL", 0, module, 724);

    // No pixels without memory.
    {
        const NoPixelMemory none;
        EXPECT_EQ(frame.setSize(4, 4, -1, -1), 0);
    }
    EXPECT_EQ(print(canvas.dc()), 0);
    expectReport(L"StretchDIBits didn't set all scanlines", -1, module, 615);
    EXPECT_EQ(printColor(canvas.dc()), 0);
    expectReport(L"StretchDIBits didn't set all scanlines", -1, module, 734);
    EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biBitCount, 32);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(canvas.pixel(0, 0), 0xCDCDCDCDU);
}

TEST_F(CCsFrameTest, PrintColorWithoutMemoryForTheCopyFails) {
    if (!zoltest::canFailNothrowNew()) GTEST_SKIP() << "the library has an operator new of its own";
    OpenFrame frame(64, 64);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(8, 8);
    const zoltest::NothrowNewLimit limit(64 * 64 * 3);
    EXPECT_EQ(frame.printColor(canvas.dc(), nullptr, nullptr, nullptr, 0, 8, 8, 0, 0, nullptr, 2), 0);
    expectReport(L"StretchDIBits didn't set all scanlines", -1, module, 734);
    EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biBitCount, 32);
}

TEST_F(CCsFrameTest, PrintSurvivesHostilePages) {
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    Canvas canvas(8, 8);
    for (const double ratio : {0.0, 1.0, -1.0, 1e300, 1e-300, std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity()}) {
        for (const int extent : {1, 7, highest}) {
            for (const int place : {0, highest, lowest}) {
                OpenFrame frame(5, 3);
                EXPECT_EQ(frame.init(), 255);
                frame.ratioYx = ratio;
                // Whatever becomes of it: neither undefined arithmetic nor pixels elsewhere.
                frame.print(canvas.dc(), RECT{}, nullptr, nullptr, nullptr, 0, 0, extent, extent, place, place, nullptr,
                            2);
                frame.printColor(canvas.dc(), nullptr, nullptr, nullptr, 0, extent, 1, place, 0, nullptr, 2);
                ReportCapture::take();
            }
        }
    }
}

TEST_P(CCsFrameMemoryTest, PrintColorRotatesTheChannels) {
    OpenFrame frame(5, 3);
    EXPECT_EQ(frame.init(), 255);
    fillPattern(frame);
    setPixel(frame, 0, 0, 0x000000FF);  // pure blue: bytes 255, 0, 0, 0
    Canvas canvas(5, 3);
    EXPECT_EQ(frame.printColor(canvas.dc(), nullptr, nullptr, nullptr, 0, 5, 3, 0, 0, nullptr, 2), 255);
    EXPECT_EQ(canvas.pixel(0, 0) & 0xFFFFFFU, 0xFF0000U);  // red
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            if (x == 0 && y == 0) continue;
            const std::uint32_t source = pattern(x, y);
            const std::uint32_t blue = source & 0xFFU;
            const std::uint32_t green = (source >> 8U) & 0xFFU;
            const std::uint32_t red = (source >> 16U) & 0xFFU;
            ASSERT_EQ(canvas.pixel(x, y) & 0xFFFFFFU, green | (red << 8U) | (blue << 16U)) << x << ' ' << y;
        }
    }
    EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biBitCount, 32);
    EXPECT_EQ(pixelOf(frame, 1, 1), pattern(1, 1));
    expectNoReport();
}

TEST_F(CCsFrameTest, PrintColorDrawsTheOverlaysOnThePage) {
    OpenFrame frame(6, 3);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(40, 40);
    const TestFont font(-30);
    HGDIOBJ before = GetCurrentObject(canvas.dc(), OBJ_FONT);
    CCs2dTrafo trafo;
    trafo.setSizes(6, 3, 100, 50, 1.0, 1.0, 7, 8);
    OverlayDouble overlay("main", &log);
    OverlayDouble text("text", &log);
    std::vector<HGDIOBJ> fonts;
    for (OverlayDouble* each : {&overlay, &text}) {
        each->onRender = [&](const RenderCall& call) {
            fonts.push_back(GetCurrentObject(call.dc, OBJ_FONT));
            CCs2dTrafo expected(trafo);
            expected.setDestSizes(12, 6, aspectOf(call.dc), 2, 6);
            double m[6];
            double e[6];
            call.imageTrafo->getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            expected.getImgToDsp(e[0], e[1], e[2], e[3], e[4], e[5]);
            EXPECT_EQ(std::vector<double>(m, m + 6), std::vector<double>(e, e + 6));
            call.outputTrafo->getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            EXPECT_EQ(std::vector<double>(m, m + 6), (std::vector<double>{2, 0, 0, 2, 2, 6}));
            EXPECT_EQ(call.width, 12);
            EXPECT_EQ(call.height, 6);
            EXPECT_EQ(call.offsetX, 0);
            EXPECT_EQ(call.offsetY, 0);
            EXPECT_EQ(call.dc, canvas.dc());
        };
    }
    const auto print = [&](CCsOverlay* drawn, CCsOverlay* drawnText, CCs2dTrafo* given, HFONT givenFont, int mode) {
        log.clear();
        fonts.clear();
        EXPECT_EQ(frame.printColor(canvas.dc(), drawn, drawnText, given, 0x112233, 12, 12, 2, 3, givenFont, mode), 255);
        EXPECT_EQ(GetCurrentObject(canvas.dc(), OBJ_FONT), before);
        return log;
    };
    EXPECT_EQ(print(&overlay, &text, &trafo, font.get(), 2), (CallLog{"main.render", "text.render"}));
    EXPECT_EQ(fonts, (std::vector<HGDIOBJ>{before, font.get()}));
    EXPECT_EQ(overlay.renders.back().color, 0x112233U);
    EXPECT_EQ(overlay.renders.back().mode, 2);
    EXPECT_EQ(text.renders.back().color, 0xFFFFFFU);
    EXPECT_EQ(text.renders.back().mode, 2);
    EXPECT_EQ(print(&overlay, &text, &trafo, font.get(), 3), (CallLog{"main.render", "text.render"}));
    EXPECT_EQ(text.renders.back().color, 0x00FFFFU);
    EXPECT_EQ(text.renders.back().mode, 3);
    EXPECT_EQ(print(&overlay, &text, &trafo, nullptr, 3), (CallLog{"main.render"}));
    EXPECT_EQ(print(nullptr, &text, &trafo, font.get(), 3), (CallLog{"text.render"}));
    EXPECT_EQ(print(&overlay, &text, nullptr, font.get(), 3), (CallLog{}));
    EXPECT_EQ(print(nullptr, nullptr, &trafo, font.get(), 3), (CallLog{}));
    expectNoReport();
}

// ---------------------------------------------------------------------------------------- free-standing bitmaps

namespace {

struct FreeBlock {
    void operator()(BITMAPINFO* block) const { delete[] reinterpret_cast<unsigned char*>(block); }
};
using Dib = std::unique_ptr<BITMAPINFO, FreeBlock>;

const unsigned char* pixelsOf(const Dib& dib) {
    return reinterpret_cast<const unsigned char*>(dib.get()) + sizeof(BITMAPINFO);
}

void expectHeader(const Dib& dib, int width, int height, int bits) {
    const BITMAPINFOHEADER& header = dib->bmiHeader;
    EXPECT_EQ(header.biSize, 40U);
    EXPECT_EQ(header.biWidth, width);
    EXPECT_EQ(header.biHeight, height);
    EXPECT_EQ(header.biPlanes, 1);
    EXPECT_EQ(header.biBitCount, bits);
    EXPECT_EQ(header.biCompression, 0U);
    EXPECT_EQ(header.biSizeImage, 0U);
    EXPECT_EQ(header.biXPelsPerMeter, 3000);
    EXPECT_EQ(header.biYPelsPerMeter, 3000);
    EXPECT_EQ(header.biClrUsed, 0U);
    EXPECT_EQ(header.biClrImportant, 0U);
}

}  // namespace

TEST_P(CCsFrameMemoryTest, MakeDibGivesThreeBytesAPixelBottomLineFirst) {
    CCsFrame frame(8, 3);
    EXPECT_EQ(frame.init(), 255);
    fillPattern(frame);
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(frame.MakeDIB(result, nullptr, nullptr, nullptr, 8, 3, nullptr, nullptr, false, 0, 0), 255);
    const Dib dib(result);
    expectHeader(dib, 8, 3, 24);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 8; ++x) {
            const unsigned char* pixel = pixelsOf(dib) + 3 * ((2 - y) * 8 + x);
            const std::uint32_t source = pattern(x, y);
            ASSERT_EQ(pixel[0], source & 0xFFU);
            ASSERT_EQ(pixel[1], (source >> 8U) & 0xFFU);
            ASSERT_EQ(pixel[2], (source >> 16U) & 0xFFU);
        }
    }
    expectNoReport();
}

TEST_F(CCsFrameTest, MakeDibCopiesThreeBytesAPixelAlsoOfRowsWithPadding) {
    CCsFrame frame(5, 3);
    EXPECT_EQ(frame.init(), 255);
    fillPattern(frame);
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(frame.MakeDIB(result, nullptr, nullptr, nullptr, 5, 3, nullptr, nullptr, false, 0, 0), 255);
    const Dib dib(result);
    expectHeader(dib, 5, 3, 24);
    // The bitmap's rows are 16 bytes long; the block holds its first 45 bytes as they lie.
    for (int i = 0; i < 45; ++i) {
        const int row = i / 16;
        const int column = i % 16;
        const std::uint32_t source = column < 15 ? pattern(column / 3, 2 - row) : 0;
        const std::uint32_t expected =
            column < 15 ? (source >> (8U * static_cast<unsigned int>(column % 3))) & 0xFFU : 0;
        ASSERT_EQ(pixelsOf(dib)[i], expected) << i;
    }
}

TEST_F(CCsFrameTest, MakeDibDeliberatelyCopiesThreeQuartersOf32Bits) {
    CCsFrame frame(8, 4);
    EXPECT_EQ(frame.init(), 255);
    fillPattern(frame);
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(frame.MakeDIB(result, nullptr, nullptr, nullptr, 8, 4, nullptr, nullptr, true, 0, 0), 255);
    const Dib dib(result);
    expectHeader(dib, 8, 4, 32);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 8; ++x) {
            std::uint32_t value = 0;
            std::memcpy(&value, pixelsOf(dib) + 4 * ((3 - y) * 8 + x), sizeof value);
            // The first three of the four rows in memory: the top one of the picture is missing.
            ASSERT_EQ(value & 0xFFFFFFU, y > 0 ? pattern(x, y) & 0xFFFFFFU : 0U) << x << ' ' << y;
        }
    }
}

TEST_F(CCsFrameTest, MakeDibPrintsWithTheOverlays) {
    CCsFrame frame(6, 3);
    EXPECT_EQ(frame.init(), 255);
    const TestFont selected(-20);
    const TestFont textFont(-30);
    CCs2dTrafo trafo;
    trafo.setSizes(6, 3, 100, 50, 1.0, 1.0, 7, 8);
    OverlayDouble overlay("main", &log);
    OverlayDouble text("text", &log);
    std::vector<HGDIOBJ> fonts;
    for (OverlayDouble* each : {&overlay, &text}) {
        each->onRender = [&](const RenderCall& call) {
            fonts.push_back(GetCurrentObject(call.dc, OBJ_FONT));
            EXPECT_EQ(call.mode, 3);
            EXPECT_EQ(call.width, 12);
            EXPECT_EQ(call.height, 8);
            EXPECT_EQ(call.offsetX, 0);
            EXPECT_EQ(call.offsetY, 0);
            HBRUSH brush = CreateSolidBrush(RGB(9, 8, 7));
            HRGN region = CreateRectRgn(0, 7, 2, 8);
            FillRgn(call.dc, region, brush);
            DeleteObject(region);
            DeleteObject(brush);
        };
    }
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(frame.MakeDIB(result, &overlay, &text, &trafo, 12, 8, selected.get(), textFont.get(), false, 0x112233,
                            0x445566),
              255);
    const Dib dib(result);
    EXPECT_EQ(log, (CallLog{"main.render", "text.render"}));
    EXPECT_EQ(fonts, (std::vector<HGDIOBJ>{selected.get(), textFont.get()}));
    EXPECT_EQ(overlay.renders[0].color, 0x112233U);
    EXPECT_EQ(text.renders[0].color, 0x445566U);
    // The drawn bottom left corner comes first: blue, green, red.
    const std::vector<unsigned char> start(pixelsOf(dib), pixelsOf(dib) + 7);
    EXPECT_EQ(start, (std::vector<unsigned char>{7, 8, 9, 7, 8, 9, 0}));
    expectNoReport();
}

TEST_F(CCsFrameTest, MakeDibOfAFrameThatIsNotValidIsBlack) {
    CCsFrame frame(8, 3);
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(frame.MakeDIB(result, nullptr, nullptr, nullptr, 8, 3, nullptr, nullptr, false, 0, 0), 255);
    const Dib dib(result);
    expectReport(notInitialised, 0, module, 581);
    expectHeader(dib, 8, 3, 24);
    for (int i = 0; i < 72; ++i) ASSERT_EQ(pixelsOf(dib)[i], 0);
}

TEST_F(CCsFrameTest, MakeDibRefusesSizesThatCannotBe) {
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    CCsFrame frame(8, 3);
    EXPECT_EQ(frame.init(), 255);
    struct Size {
        int width, height;
    };
    for (const Size size : {Size{0, 3}, Size{8, 0}, Size{-8, 3}, Size{8, -3}, Size{-8, -3}, Size{lowest, lowest},
                            Size{8, lowest}, Size{highest, -1}}) {
        BITMAPINFO* result = nullptr;
        EXPECT_EQ(
            frame.MakeDIB(result, nullptr, nullptr, nullptr, size.width, size.height, nullptr, nullptr, true, 0, 0), 0);
        const Dib dib(result);
        expectReport(L"CreateDIBSection failed", 0, module, 821);
        ASSERT_NE(dib, nullptr);
        expectHeader(dib, size.width, size.height, 32);
    }
    if (!zoltest::canFailNothrowNew()) return;
    const zoltest::NothrowNewLimit limit(1U << 30U);
    for (const Size size : {Size{highest, highest}, Size{65536, 65536}}) {
        BITMAPINFO* result = reinterpret_cast<BITMAPINFO*>(&frame);
        EXPECT_EQ(
            frame.MakeDIB(result, nullptr, nullptr, nullptr, size.width, size.height, nullptr, nullptr, true, 0, 0), 0);
        expectReport(L"CreateDIBSection failed", 0, module, 821);
        EXPECT_EQ(result, nullptr);
    }
}

// ---------------------------------------------------------------------------------------- copies

TEST_P(CCsFrameMemoryTest, CopyHasPixelsOfItsOwn) {
    OpenFrame frame(8, 3);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.setSize(8, 3, 5, 6), 255);
    fillPattern(frame);
    OpenFrame copy(frame);
    const std::unique_ptr<CCsFrame> clone(frame.NewInstance());
    EXPECT_EQ(copy.getWidth(), 8);
    EXPECT_EQ(copy.getHeight(), 3);
    EXPECT_EQ(copy.getPitch(), 8);
    EXPECT_EQ(copy.x, 5);
    EXPECT_EQ(copy.y, 6);
    EXPECT_EQ(copy.getType(), CCS_RGB8);
    EXPECT_EQ(copy.valid(), 1);
    EXPECT_EQ(copy.hwnd, frame.hwnd);
    EXPECT_EQ(copy.getRatioYx(), 0.0);  // deliberately not copied
    EXPECT_NE(copy.wbitmapinfoPtr_, frame.wbitmapinfoPtr_);
    EXPECT_EQ(std::memcmp(copy.wbitmapinfoPtr_, frame.wbitmapinfoPtr_, sizeof(BITMAPINFO)), 0);
    EXPECT_NE(copy.hBitmap, frame.hBitmap);
    EXPECT_NE(copy.GetMemBuffer(), frame.GetMemBuffer());
    setPixel(copy, 2, 1, 0x998877);
    EXPECT_EQ(pixelOf(frame, 2, 1), pattern(2, 1));
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->getWidth(), 8);
    EXPECT_EQ(clone->valid(), 1);
    expectNoReport();
}

TEST_F(CCsFrameTest, CopyOfAFrameThatIsNotValidReportsThat) {
    const OpenFrame frame(8, 3);
    const OpenFrame copy(frame);
    expectReport(notInitialised, 0, module, 377);
    EXPECT_EQ(copy.getWidth(), 8);
    EXPECT_EQ(copy.valid(), 0);
    EXPECT_EQ(copy.wbitmapinfoPtr_, nullptr);
    EXPECT_EQ(copy.GetMemBuffer(), nullptr);
}

TEST_F(CCsFrameTest, CopyWithoutMemoryHasNoPixels) {
    OpenFrame frame(8, 3);
    EXPECT_EQ(frame.init(), 255);
    const NoPixelMemory none;
    const OpenFrame copy(frame);
    EXPECT_EQ(copy.valid(), 1);
    EXPECT_EQ(copy.GetMemBuffer(), nullptr);
    expectNoReport();
}

TEST_F(CCsFrameTest, AssignmentIsDeliberatelyShallow) {
    OpenFrame frame(8, 3);
    EXPECT_EQ(frame.init(), 255);
    alignas(OpenFrame) unsigned char storage[sizeof(OpenFrame)];
    auto& copy = *new (storage) OpenFrame;  // its destructor never runs: everything is the source's
    copy = frame;
    EXPECT_EQ(copy.getWidth(), 8);
    EXPECT_EQ(copy.getHeight(), 3);
    EXPECT_EQ(copy.getPitch(), 8);
    EXPECT_EQ(copy.getRatioYx(), 1.0);
    EXPECT_EQ(copy.valid(), 1);
    EXPECT_EQ(copy.hBitmap, frame.hBitmap);
    EXPECT_EQ(copy.wbitmapinfoPtr_, frame.wbitmapinfoPtr_);
    EXPECT_EQ(copy.GetMemBuffer(), frame.GetMemBuffer());
}
