// Pictures of display pixels (0x00RRGGBB) as files, for people to look at.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/folders.h"

#if defined(ZOL_HAVE_PNG)
#include <png.h>
#endif

namespace zoltest {

#if defined(ZOL_HAVE_PNG)

/// Writes an RGB file; false when it cannot be written.
inline bool writePng(const std::filesystem::path& path, int width, int height,
                     const std::vector<std::uint32_t>& pixels) {
    std::vector<unsigned char> rgb;
    rgb.reserve(pixels.size() * 3);
    for (const std::uint32_t p : pixels) {
        for (const int shift : {16, 8, 0}) rgb.push_back(static_cast<unsigned char>(p >> shift));
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, path.string().c_str(), 0, rgb.data(), 0, nullptr) != 0;
}

/// Reads an RGB file back; empty unless it has the given size.
inline std::vector<std::uint32_t> readPng(const std::filesystem::path& path, int width, int height) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.string().c_str()) == 0) return {};
    image.format = PNG_FORMAT_RGB;
    std::vector<unsigned char> rgb(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr) == 0) return {};
    if (image.width != static_cast<png_uint_32>(width) || image.height != static_cast<png_uint_32>(height)) return {};
    std::vector<std::uint32_t> pixels;
    for (std::size_t i = 0; i + 2 < rgb.size(); i += 3) {
        pixels.push_back((static_cast<std::uint32_t>(rgb[i]) << 16) | (static_cast<std::uint32_t>(rgb[i + 1]) << 8) |
                         rgb[i + 2]);
    }
    return pixels;
}

/// Leaves the actual picture, the expected one and their difference in the build folder; says where.
inline std::string leavePictures(const std::string& name, int width, int height,
                                 const std::vector<std::uint32_t>& actual) {
    namespace fs = std::filesystem;
    const fs::path folder = buildFolder() / "scenes";
    fs::create_directories(folder);
    writePng(folder / (name + "-actual.png"), width, height, actual);
    const fs::path stored = sourceFolder() / "tests" / "scenes" / "pictures" / (name + ".png");
    const std::vector<std::uint32_t> expected = readPng(stored, width, height);
    if (expected.size() == actual.size()) {
        std::vector<std::uint32_t> difference(actual.size());
        for (std::size_t i = 0; i < actual.size(); ++i) difference[i] = actual[i] == expected[i] ? 0x202020 : 0xFF0000;
        writePng(folder / (name + "-expected.png"), width, height, expected);
        writePng(folder / (name + "-difference.png"), width, height, difference);
    }
    return "see " + (folder / (name + "-*.png")).string();
}

#else

inline std::string leavePictures(const std::string&, int, int, const std::vector<std::uint32_t>&) {
    return "no PNG library: no pictures were left";
}

#endif

}  // namespace zoltest
