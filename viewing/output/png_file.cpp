#include "viewing/output/png_file.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

namespace viewing {

namespace {

bool isGrey(std::uint32_t pixel) {
    const std::uint32_t level = pixel & 0xFFU;
    return (pixel & 0xFFFFFFU) == level * 0x010101U;
}

std::vector<png_byte> toBytes(const Picture& picture, bool grey) {
    std::vector<png_byte> bytes;
    bytes.reserve(picture.pixels.size() * (grey ? 1 : 3));
    for (const std::uint32_t pixel : picture.pixels) {
        if (!grey) {
            bytes.push_back(static_cast<png_byte>(pixel >> 16U));
            bytes.push_back(static_cast<png_byte>(pixel >> 8U));
        }
        bytes.push_back(static_cast<png_byte>(pixel));
    }
    return bytes;
}

/// Closing reports what writing did not: a full disk, for one.
struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// The system's words for what just failed.
std::string lastError() { return std::generic_category().message(errno); }

[[noreturn]] void refuse(const std::string& path, const std::string& why) {
    throw Refusal("cannot write " + path + ": " + why);
}

}  // namespace

void writePng(const Picture& picture, const std::string& path) {
    const bool grey = std::all_of(picture.pixels.begin(), picture.pixels.end(), isGrey);
    const std::vector<png_byte> bytes = toBytes(picture, grey);

    png_image header{};
    header.version = PNG_IMAGE_VERSION;
    header.width = static_cast<png_uint_32>(picture.width);
    header.height = static_cast<png_uint_32>(picture.height);
    header.format = grey ? PNG_FORMAT_GRAY : PNG_FORMAT_RGB;

    std::unique_ptr<std::FILE, Closer> file(std::fopen(path.c_str(), "wb"));
    if (!file) refuse(path, lastError());
    const bool written = png_image_write_to_stdio(&header, file.get(), 0, bytes.data(), 0, nullptr) != 0;
    const bool closed = std::fclose(file.release()) == 0;
    if (written && closed) return;
    const std::string why = written ? lastError() : header.message;
    // What stands for a device stays.
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored)) std::remove(path.c_str());
    refuse(path, why);
}

}  // namespace viewing
