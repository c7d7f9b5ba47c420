// A host on Windows' own calls: a window that shows the test picture, whose annotation can be dragged, and whose wheel
// zooms; the letter P prints into print.emf.
// usage: win32_host [--script FOLDER]   (drives itself, leaves pictures in FOLDER and ends)
#include "script.h"
#include "view.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <string>

namespace {

using win32host::View;

std::unique_ptr<View> view;

POINT placeOf(LPARAM parameter) {
    return {static_cast<short>(LOWORD(parameter)), static_cast<short>(HIWORD(parameter))};
}

void print(HWND window) {
    RECT area{};
    GetClientRect(window, &area);
    HDC const dc = CreateEnhMetaFileW(nullptr, L"print.emf", nullptr, nullptr);
    if (dc == nullptr) return;
    view->print(dc, area.right, area.bottom);
    DeleteEnhMetaFile(CloseEnhMetaFile(dc));
}

LRESULT CALLBACK onMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    const POINT at = placeOf(second);
    switch (message) {
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        case WM_ERASEBKGND:
            return 1;  // the frame covers the window
        case WM_PAINT: {
            PAINTSTRUCT paint{};
            HDC const dc = BeginPaint(window, &paint);
            if (view != nullptr) view->paint(dc);
            EndPaint(window, &paint);
            return 0;
        }
        default:
            break;
    }
    if (view != nullptr) {
        switch (message) {
            case WM_SIZE:
                view->resize(LOWORD(second), HIWORD(second));
                return 0;
            case WM_LBUTTONDOWN:
                SetCapture(window);
                view->press(at.x, at.y);
                return 0;
            case WM_MOUSEMOVE:
                view->drag(at.x, at.y);
                return 0;
            case WM_LBUTTONUP:
                ReleaseCapture();
                view->release(at.x, at.y);
                return 0;
            case WM_MOUSEWHEEL:
                view->turnWheel(GET_WHEEL_DELTA_WPARAM(first) / WHEEL_DELTA);
                return 0;
            case WM_CHAR:
                if (first == 'p') print(window);
                return 0;
            default:
                break;
        }
    }
    return DefWindowProcW(window, message, first, second);
}

HWND openWindow() {
    WNDCLASSW kind{};
    kind.lpfnWndProc = &onMessage;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.hCursor = LoadCursor(nullptr, IDC_ARROW);
    kind.lpszClassName = L"zolwebcs win32_host";
    RegisterClassW(&kind);
    RECT area{0, 0, 800, 640};
    AdjustWindowRect(&area, WS_OVERLAPPEDWINDOW, FALSE);
    return CreateWindowExW(0, kind.lpszClassName, L"zolwebcs", WS_OVERLAPPEDWINDOW, 20, 20, area.right - area.left,
                           area.bottom - area.top, nullptr, nullptr, kind.hInstance, nullptr);
}

int run(const std::optional<std::string>& scriptFolder) {
    HWND const window = openWindow();
    if (window == nullptr) {
        std::fprintf(stderr, "no window can be made\n");
        return 1;
    }
    view = std::make_unique<View>(window);
    ShowWindow(window, SW_SHOWNORMAL);
    int result = 0;
    if (scriptFolder) {
        result = win32host::runScript(window, *view, *scriptFolder) ? 0 : 1;
        DestroyWindow(window);
    } else {
        for (MSG message{}; GetMessageW(&message, nullptr, 0, 0) > 0;) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    view.reset();
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 3 && std::string(argv[1]) == "--script") return run(argv[2]);
        if (argc == 1) return run(std::nullopt);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    } catch (int) {
        std::fprintf(stderr, "the library cannot make a frame for the window\n");
        return 1;
    }
    std::fprintf(stderr, "usage: win32_host [--script FOLDER]\n");
    return 2;
}
