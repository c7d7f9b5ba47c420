// A random bitmap of the kind that graphics are rendered into.
#pragma once

#include "platform/platform.h"
#include "support/test_data.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace zoltest {

/// A bitmap as graphics are rendered into it: its 40-byte header and its words.
struct Rendered {
    int width;
    int height;
    std::vector<std::uint32_t> memory;

    Rendered(Random& random, int w, int h)
        : width(w), height(h), memory(10 + static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {
        BITMAPINFOHEADER header = {};
        header.biSize = 40;
        header.biWidth = w;
        header.biHeight = -h;
        header.biPlanes = 1;
        header.biBitCount = 32;
        std::memcpy(memory.data(), &header, 40);
        for (std::size_t i = 10; i < memory.size(); ++i) {
            const std::uint32_t usual[] = {0, 0, 0x00010101, 0x00FFFF00, 0x00FFFFFF, 0xFF010101, 1};
            memory[i] = random.chance(0.9) ? usual[random.integer(0, 6)] : static_cast<std::uint32_t>(random.bits());
        }
    }
    [[nodiscard]] const std::uint32_t* words() const { return memory.data() + 10; }
    [[nodiscard]] BITMAPINFO* info() { return reinterpret_cast<BITMAPINFO*>(memory.data()); }
};

}  // namespace zoltest
