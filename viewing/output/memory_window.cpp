#include "viewing/output/memory_window.h"

#include "viewing/image/refusal.h"

namespace viewing {

MemoryWindow::MemoryWindow(int width, int height)
    : picture_{width, height,
               std::vector<std::uint32_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))},
      handle_(ZolCreateHostWindow(this)) {
    if (handle_ == nullptr) throw Refusal("the picture's window could not be made");
}

MemoryWindow::~MemoryWindow() { ZolDestroyHostWindow(handle_); }

SIZE MemoryWindow::clientSize() { return {picture_.width, picture_.height}; }

ZolPixelSurface MemoryWindow::surface() {
    if (picture_.pixels.empty()) return {};
    return {picture_.pixels.data(), picture_.width, picture_.height, std::ptrdiff_t{4} * picture_.width};
}

}  // namespace viewing
