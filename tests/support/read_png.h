// Reads PNG files back.
#pragma once

#include "viewing/image/picture.h"

#include <gtest/gtest.h>
#include <png.h>

#include <string>
#include <vector>

namespace zoltest {

struct PngFile {
    bool colour = false;
    viewing::Picture picture;
};

inline PngFile readPng(const std::string& path) {
    PngFile out;
    png_image header{};
    header.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_file(&header, path.c_str()), 0) << header.message;
    out.colour = (header.format & PNG_FORMAT_FLAG_COLOR) != 0;
    header.format = PNG_FORMAT_RGB;
    std::vector<png_byte> bytes(PNG_IMAGE_SIZE(header));
    EXPECT_NE(png_image_finish_read(&header, nullptr, bytes.data(), 0, nullptr), 0) << header.message;
    out.picture.width = static_cast<int>(header.width);
    out.picture.height = static_cast<int>(header.height);
    for (std::size_t i = 0; i + 2 < bytes.size(); i += 3)
        out.picture.pixels.push_back((static_cast<unsigned int>(bytes[i]) << 16U) |
                                     (static_cast<unsigned int>(bytes[i + 1]) << 8U) | bytes[i + 2]);
    return out;
}

}  // namespace zoltest
