#include "script.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <vector>

namespace win32host {

namespace {

/// Pixels that GDI can draw on and the script can look at, bottom line first as bitmap files want them.
class Picture {
public:
    Picture(int width, int height) : width_(width), height_(height) {
        header_.biSize = sizeof header_;
        header_.biWidth = width;
        header_.biHeight = height;
        header_.biPlanes = 1;
        header_.biBitCount = 32;
        BITMAPINFO info{};
        info.bmiHeader = header_;
        bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits_, nullptr, 0);
        dc_ = CreateCompatibleDC(nullptr);
        before_ = SelectObject(dc_, bitmap_);
    }
    ~Picture() {
        SelectObject(dc_, before_);
        DeleteDC(dc_);
        DeleteObject(bitmap_);
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    [[nodiscard]] HDC dc() const { return dc_; }

    [[nodiscard]] std::uint32_t at(int x, int y) const {
        GdiFlush();
        std::uint32_t value = 0;
        const std::size_t index =
            static_cast<std::size_t>(height_ - 1 - y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
        std::memcpy(&value, static_cast<const unsigned char*>(bits_) + index * sizeof value, sizeof value);
        return value & 0xFFFFFF;
    }

    void save(const std::filesystem::path& path) const {
        GdiFlush();
        const std::size_t bytes = static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_) * 4;
        BITMAPFILEHEADER file{};
        file.bfType = 0x4D42;
        file.bfOffBits = sizeof file + sizeof header_;
        file.bfSize = file.bfOffBits + static_cast<DWORD>(bytes);
        std::ofstream out(path, std::ios::binary);
        out.write(reinterpret_cast<const char*>(&file), sizeof file);
        out.write(reinterpret_cast<const char*>(&header_), sizeof header_);
        out.write(static_cast<const char*>(bits_), static_cast<std::streamsize>(bytes));
    }

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }

private:
    int width_;
    int height_;
    BITMAPINFOHEADER header_{};
    void* bits_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HDC dc_ = nullptr;
    HGDIOBJ before_ = nullptr;
};

constexpr std::uint32_t annotationPixel = 0xFFFF00;  // the bytes of a DIB are the other way round than a COLORREF's

bool isGrey(std::uint32_t pixel) { return (pixel & 0xFF) == ((pixel >> 8) & 0xFF) && (pixel & 0xFF) == pixel >> 16; }

bool check(bool holds, const char* what) {
    std::printf("%s: %s\n", holds ? "good" : "WRONG", what);
    return holds;
}

void handleMessages(HWND window) {
    UpdateWindow(window);
    for (MSG message{}; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    UpdateWindow(window);
}

LPARAM place(POINT p) { return MAKELPARAM(p.x, p.y); }

/// Copies what the window shows.
void capture(HWND window, const Picture& picture) {
    HDC const dc = GetDC(window);
    BitBlt(picture.dc(), 0, 0, picture.width(), picture.height(), dc, 0, 0, SRCCOPY);
    ReleaseDC(window, dc);
}

bool hasImage(const Picture& picture) {
    std::set<std::uint32_t> greys;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (isGrey(picture.at(x, y))) greys.insert(picture.at(x, y));
        }
    }
    return greys.size() > 200;  // the picture has a wedge of all levels
}

/// Whether the annotation's colour is found within two pixels of the point.
bool hasAnnotationAt(const Picture& picture, POINT p) {
    for (int y = p.y - 2; y <= p.y + 2; ++y) {
        for (int x = p.x - 2; x <= p.x + 2; ++x) {
            const bool inside = x >= 0 && x < picture.width() && y >= 0 && y < picture.height();
            if (inside && picture.at(x, y) == annotationPixel) return true;
        }
    }
    return false;
}

bool printToMetafile(View& view, const std::filesystem::path& path, const Picture& played) {
    HDC const reference = GetDC(nullptr);
    HDC const dc = CreateEnhMetaFileW(reference, path.c_str(), nullptr, L"win32_host\0the test picture\0");
    ReleaseDC(nullptr, reference);
    const bool printed = view.print(dc, played.width(), played.height());
    HENHMETAFILE const file = CloseEnhMetaFile(dc);
    const RECT all{0, 0, played.width(), played.height()};
    const bool plays = PlayEnhMetaFile(played.dc(), file, &all) != FALSE;
    DeleteEnhMetaFile(file);
    return printed && plays;
}

bool hasColour(const Picture& picture, std::uint32_t colour) {
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.at(x, y) == colour) return true;
        }
    }
    return false;
}

}  // namespace

bool runScript(HWND window, View& view, const std::filesystem::path& folder) {
    RECT client{};
    GetClientRect(window, &client);
    const Picture picture(client.right, client.bottom);
    bool good = true;

    handleMessages(window);
    capture(window, picture);
    const POINT start = view.annotationStart();
    good &= check(hasImage(picture), "the image is shown");
    good &= check(hasAnnotationAt(picture, start), "the annotation is shown");

    // A drag by (70, 40) that takes hold of the line itself, beside its handles.
    const POINT hold{start.x + 50, start.y + 30};
    const POINT drop{hold.x + 70, hold.y + 40};
    SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, place(hold));
    SendMessageW(window, WM_MOUSEMOVE, MK_LBUTTON, place({hold.x + 30, hold.y + 10}));
    SendMessageW(window, WM_MOUSEMOVE, MK_LBUTTON, place(drop));
    SendMessageW(window, WM_LBUTTONUP, 0, place(drop));
    handleMessages(window);
    capture(window, picture);
    const POINT moved = view.annotationStart();
    good &= check(moved.x == start.x + 70 && moved.y == start.y + 40, "the annotation follows the drag");
    good &= check(hasAnnotationAt(picture, moved) && !hasAnnotationAt(picture, start), "it is shown there alone");

    SendMessageW(window, WM_MOUSEWHEEL, MAKEWPARAM(0, 2 * WHEEL_DELTA), 0);
    handleMessages(window);
    capture(window, picture);
    const POINT zoomed = view.annotationStart();
    const POINT centre{client.right / 2, client.bottom / 2};
    const bool outward = std::abs(zoomed.x - centre.x) > std::abs(moved.x - centre.x) &&
                         std::abs(zoomed.y - centre.y) > std::abs(moved.y - centre.y);
    good &= check(outward, "the wheel enlarges");
    good &=
        check(hasImage(picture) && hasAnnotationAt(picture, zoomed), "the annotation stays on its place in the image");
    picture.save(folder / "screenshot.bmp");

    const Picture played(client.right, client.bottom);
    good &= check(printToMetafile(view, folder / "metafile.emf", played), "a metafile is printed and plays");
    good &= check(hasImage(played) && hasColour(played, annotationPixel), "it shows the image and the annotation");
    played.save(folder / "metafile.bmp");
    return good;
}

}  // namespace win32host
