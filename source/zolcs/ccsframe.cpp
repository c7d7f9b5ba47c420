#include "zolcs/ccsframe.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsoverlay.h"
#include "zolcs/drawing/gdiscope.h"
#include "zolcs/drawing/modes.h"
#include "zolcs/pixels/imagelock.h"
#include "zolcs/support/conversion.h"
#include "zolcs/support/report.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace {

using zolcs::fail;
using zolcs::ReportSite;
using zolcs::saturated;
using zolcs::truncated;

constexpr const wchar_t* module = L"source\\zolcs\\ccsframe";
constexpr const wchar_t* noDeviceContext = L"Cannot get DC for window";
constexpr const wchar_t* notInitialised = L"Initialization of frame object not performed";
constexpr const wchar_t* stretchModeFailed = L"SetStretchBltMode function failed";
constexpr const wchar_t* stretchFailed = L"StretchDIBits didn't set all scanlines";

constexpr ReportSite windowWithoutDc{noDeviceContext, module, 227};
constexpr ReportSite windowWithoutPixels{noDeviceContext, module, 242};
constexpr ReportSite deviceWithoutDc{noDeviceContext, module, 275};
constexpr ReportSite deviceWithoutPixels{noDeviceContext, module, 289};
constexpr ReportSite nothingWithoutPixels{noDeviceContext, module, 323};
constexpr ReportSite setSizeNotInitialised{notInitialised, module, 377};
constexpr ReportSite bitmapRefused{L"CreateDIBSection failed", module, 441};
constexpr ReportSite invalidateFailed{L"InvalidateRect failed", module, 541};
constexpr ReportSite printNotInitialised{notInitialised, module, 581};
constexpr ReportSite printStretchMode{stretchModeFailed, module, 606};
constexpr ReportSite printStretch{stretchFailed, module, 615};
constexpr ReportSite printColorNotInitialised{notInitialised, module, 680};
constexpr ReportSite printColorStretchMode{stretchModeFailed, module, 705};
constexpr ReportSite printColorHeader{L"Bitmap info variable wbitmapinfoPtr_ is NULL", module, 724};
constexpr ReportSite printColorStretch{stretchFailed, module, 734};
constexpr ReportSite dibRefused{L"CreateDIBSection failed", module, 821};

static_assert(sizeof(BITMAPINFO) == 44, "a header and one colour entry");

constexpr unsigned long yellow = 0x00FFFF;

double aspectOf(HDC dc) {
    return static_cast<double>(GetDeviceCaps(dc, ASPECTX)) / static_cast<double>(GetDeviceCaps(dc, ASPECTY));
}

/// What the headers of all bitmaps here have in common.
void fillHeader(BITMAPINFOHEADER& header, WORD bitCount) {
    header = {};
    header.biSize = sizeof(BITMAPINFOHEADER);
    header.biPlanes = 1;
    header.biBitCount = bitCount;
    header.biCompression = BI_RGB;
    header.biXPelsPerMeter = 3000;
    header.biYPelsPerMeter = 3000;
}

/// Where a frame comes to lie on a page.
struct Placement {
    CCs2dTrafo frameTrafo;
    double aspect = 1.0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

Placement placeOnPage(const CCsImage& frame, HDC dc, int width, int height, int x, int y) {
    Placement place;
    place.aspect = aspectOf(dc);
    place.frameTrafo.setSizes(frame, width, height, place.aspect, x, y);
    place.frameTrafo.setDstSmallerSide(0);
    double xScale = 0.0;
    double yScale = 0.0;
    double cross[2] = {0.0, 0.0};
    double translation[2] = {0.0, 0.0};
    place.frameTrafo.getImgToDsp(xScale, cross[0], cross[1], yScale, translation[0], translation[1]);
    place.x = truncated(translation[0]);
    place.y = truncated(translation[1]);
    place.width = truncated(frame.getWidth() * xScale);
    place.height = truncated(frame.getHeight() * yScale);
    return place;
}

/// The caller's transformation, with the printed frame as its display.
CCs2dTrafo onPage(const CCs2dTrafo& trafo, const Placement& place) {
    CCs2dTrafo copy(trafo);
    copy.setDestSizes(place.width, place.height, place.aspect, place.x, place.y);
    return copy;
}

/// False when nothing could be brought out.
bool stretch(HDC dc, const Placement& place, const CCsImage& frame, const void* bits, const BITMAPINFO* header) {
    if (bits == nullptr || header == nullptr) return false;
    const int lines = StretchDIBits(dc, place.x, place.y, place.width, place.height, 0, 0, frame.getWidth(),
                                    frame.getHeight(), bits, header, DIB_RGB_COLORS, SRCCOPY);
    return static_cast<DWORD>(lines) != GDI_ERROR;
}

/// The frame with its padding in 24 bits a pixel, with the channels deliberately rotated: blue gets green, green gets
/// red, red gets blue. Null when the frame has no pixels or memory is exhausted.
std::unique_ptr<unsigned char[]> rotatedCopy(CCsImage& frame) {
    const zolcs::ImageLock lock(frame);
    const unsigned char* source = lock.origin();
    if (source == nullptr) return nullptr;
    const std::size_t pixels = frame.GetMemBuffer()->getSize() / 4;
    std::unique_ptr<unsigned char[]> copy(new (std::nothrow) unsigned char[3 * pixels]);
    if (copy == nullptr) return nullptr;
    for (std::size_t i = 0; i < pixels; ++i) {
        copy[3 * i] = source[4 * i + 1];
        copy[3 * i + 1] = source[4 * i + 2];
        copy[3 * i + 2] = source[4 * i];
    }
    return copy;
}

/// A header and room for the pixels behind it, all zero; null when memory is exhausted.
BITMAPINFO* allocateDib(int width, int height, WORD bitCount) {
    const bool hasPixels = width > 0 && height > 0;
    const std::uint64_t pixels = hasPixels ? static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) : 0;
    constexpr std::uint64_t most = std::numeric_limits<std::ptrdiff_t>::max() - sizeof(BITMAPINFO);
    if (pixels > most / 4) return nullptr;
    const std::size_t bytes = static_cast<std::size_t>(pixels) * bitCount / 8 + sizeof(BITMAPINFO);
    auto* const info = reinterpret_cast<BITMAPINFO*>(new (std::nothrow) unsigned char[bytes]());
    if (info == nullptr) return nullptr;
    fillHeader(info->bmiHeader, bitCount);
    info->bmiHeader.biWidth = width;
    info->bmiHeader.biHeight = height;
    return info;
}

}  // namespace

CCsFrame::CCsFrame() : CCsFrame(0, 0) {}

CCsFrame::CCsFrame(int width, int height) {
    this->width = width;
    this->height = height;
    type = CCS_RGB8;
    pitch = 0;
}

CCsFrame::CCsFrame(HWND window, int width, int height, int x, int y) : CCsFrame() {
    // A constructor that delegates has made an object, whose destructor cleans up.
    if (CCsFrame::init(window, width, height, x, y) == CCS_FAILED) throw int{CCS_FAILED};
}

CCsFrame::CCsFrame(const CCsFrame& other) : CCsFrame(other.width, other.height) {
    if (other.wbitmapinfoPtr_ != nullptr) wbitmapinfoPtr_ = new BITMAPINFO(*other.wbitmapinfoPtr_);
    x = other.x;
    y = other.y;
    valid_ = other.valid_;
    hwnd = other.hwnd;
    type = other.type;
    CCsFrame::setSize(width, height, x, y);
}

CCsFrame& CCsFrame::operator=(const CCsFrame& other) = default;

CCsFrame* CCsFrame::NewInstance() {
    try {
        return new CCsFrame(*this);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

CCsFrame::~CCsFrame() {
    delete wbitmapinfoPtr_;
    deleteBitmap_();
    hwnd = nullptr;
}

unsigned char* CCsFrame::getOrigin() {
    GdiFlush();
    return CCsImage::getOrigin();
}

int CCsFrame::valid() const { return valid_ == 1 ? 1 : 0; }

/// Deletes the bitmap. Plain memory belongs to it and goes with it; a mapping stays in the buffer.
void CCsFrame::deleteBitmap_() {
    if (hBitmap == nullptr) return;
    DeleteObject(hBitmap);
    hBitmap = nullptr;
    origin = nullptr;
    if (mMemBuffer != nullptr && mMemBuffer->getMapHandle() == nullptr) mMemBuffer->setHeapBuffer(nullptr);
}

/// What every init begins with.
void CCsFrame::prepareInit_(HWND window) {
    hwnd = window;
    type = CCS_RGB8;
    deleteBitmap_();
    valid_ = 0;
}

/// What every init that knows its aspect ratio ends with.
int CCsFrame::finishInit_(int newWidth, int newHeight, int newX, int newY, const ReportSite& failure) {
    valid_ = 1;
    if (setSize(newWidth, newHeight, newX, newY) == CCS_DONE) return CCS_DONE;
    valid_ = 0;
    return fail(failure, 0, CCS_FAILED);
}

int CCsFrame::init(HWND window, int newWidth, int newHeight, int newX, int newY) {
    prepareInit_(window);
    {
        const zolcs::WindowDC dc(window);
        if (!dc) return fail(windowWithoutDc, 0, CCS_FAILED);
        ratioYx = aspectOf(dc.get());
    }
    return finishInit_(newWidth, newHeight, newX, newY, windowWithoutPixels);
}

int CCsFrame::init(HDC dc) {
    prepareInit_(nullptr);
    if (dc == nullptr) return fail(deviceWithoutDc, 0, CCS_FAILED);
    ratioYx = aspectOf(dc);
    return finishInit_(width, height, x, y, deviceWithoutPixels);
}

int CCsFrame::init() {
    prepareInit_(nullptr);
    ratioYx = 1.0;
    return finishInit_(width, height, x, y, nothingWithoutPixels);
}

int CCsFrame::setSize(int newWidth, int newHeight, int newX, int newY) {
    if (valid_ != 1) return fail(setSizeNotInitialised, 0, CCS_INVALID);
    if (wbitmapinfoPtr_ == nullptr) {
        wbitmapinfoPtr_ = new (std::nothrow) BITMAPINFO{};
        if (wbitmapinfoPtr_ == nullptr) return CCS_FAILED;
        fillHeader(wbitmapinfoPtr_->bmiHeader, 32);
    }
    if (newWidth != -1) {
        width = newWidth;
        pitch = saturated((std::int64_t{newWidth} + 3) / 4 * 4);
    }
    if (newHeight != -1) height = newHeight;
    if (newX != -1) x = newX;
    if (newY != -1) y = newY;

    deleteBitmap_();
    delete mMemBuffer;
    mMemBuffer = nullptr;
    origin = nullptr;

    const std::int64_t pixels = std::int64_t{pitch} * height;
    const auto bytes = static_cast<DWORD>(static_cast<std::uint64_t>(pixels) * 4);
    wbitmapinfoPtr_->bmiHeader.biWidth = pitch;
    wbitmapinfoPtr_->bmiHeader.biHeight = static_cast<LONG>(-std::int64_t{height});
    wbitmapinfoPtr_->bmiHeader.biSizeImage = bytes;
    if (pixels < 0 || pixels > std::numeric_limits<DWORD>::max() / 4) return CCS_FAILED;  // no memory for that many
    mMemBuffer = ZolMemMappedManager::getIntance()->allocateMemoryOnlyOnMap(bytes);
    if (mMemBuffer == nullptr) return CCS_FAILED;

    const bool made = createBitmap_();
    if (mMemBuffer->getMapHandle() == nullptr) mMemBuffer->setHeapBuffer(origin);
    if (made) return CCS_DONE;
    delete wbitmapinfoPtr_;
    wbitmapinfoPtr_ = nullptr;
    return fail(bitmapRefused, 0, CCS_FAILED);
}

/// Makes the bitmap on the buffer's mapping, or with memory of its own where there is none, and takes its bits.
bool CCsFrame::createBitmap_() {
    if (wbitmapinfoPtr_ == nullptr) return false;
    void* bits = nullptr;
    hBitmap = CreateDIBSection(nullptr, wbitmapinfoPtr_, DIB_RGB_COLORS, &bits, mMemBuffer->getMapHandle(), 0);
    origin = static_cast<unsigned char*>(bits);
    return hBitmap != nullptr;
}

HBITMAP CCsFrame::getHBitmap() {
    if (hBitmap == nullptr && mMemBuffer != nullptr && mMemBuffer->getMapHandle() != nullptr) createBitmap_();
    return hBitmap;
}

void CCsFrame::unmapBitmap() {
    if (mMemBuffer != nullptr && mMemBuffer->getMapHandle() != nullptr) deleteBitmap_();
}

int CCsFrame::invalidate(int areaWidth, int areaHeight, int left, int top) {
    if (areaWidth == -1) areaWidth = width;
    if (areaHeight == -1) areaHeight = height;
    if (left == -1) left = x;
    if (top == -1) top = y;
    const RECT area{left, top, saturated(std::int64_t{left} + areaWidth), saturated(std::int64_t{top} + areaHeight)};
    // To the system no window would mean all windows.
    const BOOL done = hwnd != nullptr ? InvalidateRect(hwnd, &area, FALSE) : FALSE;
    return done != FALSE ? CCS_DONE : fail(invalidateFailed, done, CCS_FAILED);
}

int CCsFrame::print(HDC dc, RECT area, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo,
                    unsigned long color, unsigned long textColor, int pageWidth, int pageHeight, int left, int top,
                    HFONT font, int mode) {
    if (valid_ != 1) return fail(printNotInitialised, 0, CCS_INVALID);
    if (pageWidth < 1 || pageHeight < 1) return CCS_DONE;
    Placement place = placeOnPage(*this, dc, pageWidth, pageHeight, left, top);
    if (SetStretchBltMode(dc, COLORONCOLOR) == 0) return fail(printStretchMode, 0, CCS_FAILED);
    // Deliberately without the unlock that would end this access.
    if (!stretch(dc, place, *this, getOrigin(), wbitmapinfoPtr_)) return fail(printStretch, -1, CCS_FAILED);

    if (trafo == nullptr) return CCS_DONE;
    CCs2dTrafo pageTrafo = onPage(*trafo, place);
    const int areaWidth = saturated(std::int64_t{area.right} - area.left);
    const int areaHeight = saturated(std::int64_t{area.bottom} - area.top);
    if (overlay != nullptr) {
        overlay->render(&pageTrafo, &place.frameTrafo, color, dc, mode, areaWidth, areaHeight, area.left, area.top);
    }
    if (textOverlay != nullptr) {
        const zolcs::SelectGuard selected(dc, font);
        textOverlay->render(&pageTrafo, &place.frameTrafo, zolcs::textColor(mode, textColor), dc, mode, areaWidth,
                            areaHeight, area.left, area.top);
    }
    return CCS_DONE;
}

int CCsFrame::printColor(HDC dc, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo, unsigned long color,
                         int pageWidth, int pageHeight, int left, int top, HFONT font, int mode) {
    if (valid_ != 1) return fail(printColorNotInitialised, 0, CCS_INVALID);
    if (pageWidth < 1 || pageHeight < 1) return CCS_DONE;
    Placement place = placeOnPage(*this, dc, pageWidth, pageHeight, left, top);
    if (SetStretchBltMode(dc, COLORONCOLOR) == 0) return fail(printColorStretchMode, 0, CCS_FAILED);
    {
        const auto copy = rotatedCopy(*this);
        if (wbitmapinfoPtr_ == nullptr) return fail(printColorHeader, 0, CCS_FAILED);
        wbitmapinfoPtr_->bmiHeader.biBitCount = 24;
        const bool printed = stretch(dc, place, *this, copy.get(), wbitmapinfoPtr_);
        wbitmapinfoPtr_->bmiHeader.biBitCount = 32;
        if (!printed) return fail(printColorStretch, -1, CCS_FAILED);
    }

    if (trafo == nullptr) return CCS_DONE;
    CCs2dTrafo pageTrafo = onPage(*trafo, place);
    if (overlay != nullptr) {
        overlay->render(&pageTrafo, &place.frameTrafo, color, dc, mode, place.width, place.height, 0, 0);
    }
    if (textOverlay != nullptr && font != nullptr) {
        const zolcs::SelectGuard selected(dc, font);
        textOverlay->render(&pageTrafo, &place.frameTrafo, zolcs::textColor(mode, yellow), dc, mode, place.width,
                            place.height, 0, 0);
    }
    return CCS_DONE;
}

int CCsFrame::MakeDIB(BITMAPINFO*& result, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo,
                      int dibWidth, int dibHeight, HFONT selectFont, HFONT textFont, bool thirtyTwoBit,
                      unsigned long color, unsigned long textColor) {
    result = allocateDib(dibWidth, dibHeight, thirtyTwoBit ? 32 : 24);
    // GDI would take a negative height for a bitmap with its top line first.
    if (result == nullptr || dibHeight < 1) return fail(dibRefused, 0, CCS_FAILED);
    void* bits = nullptr;
    const zolcs::Bitmap bitmap(CreateDIBSection(nullptr, result, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!bitmap) return fail(dibRefused, 0, CCS_FAILED);

    const zolcs::MemoryDC memory(nullptr);
    const zolcs::SelectGuard selectedFont(memory.get(), selectFont);
    const zolcs::SelectGuard selectedBitmap(memory.get(), bitmap.get());
    print(memory.get(), RECT{0, 0, dibWidth, dibHeight}, overlay, textOverlay, trafo, color, textColor, dibWidth,
          dibHeight, 0, 0, textFont, CCS_MODE_BITMAP_PRINTER);
    GdiFlush();
    // Deliberately three bytes a pixel, whatever the bitmap has.
    std::memcpy(reinterpret_cast<unsigned char*>(result) + sizeof(BITMAPINFO), bits,
                static_cast<std::size_t>(dibWidth) * static_cast<std::size_t>(dibHeight) * 3);
    return CCS_DONE;
}
