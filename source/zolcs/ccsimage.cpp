#include "zolcs/ccsimage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "zolcs/pixels/imagelock.h"
#include "zolcs/pixels/pixelsize.h"
#include "zolcs/simd/capability.h"
#include "zolcs/support/report.h"

namespace {

constexpr const wchar_t* module = L"source\\zolcs\\ccsimage";
constexpr zolcs::ReportSite greyFillType{L"Unknown raster type", module, 184};
constexpr zolcs::ReportSite colourFillType{L"Unknown raster type", module, 248};
constexpr zolcs::ReportSite clearType{L"Unknown raster type", module, 292};
constexpr zolcs::ReportSite shiftNoBuffer{L"ZolMemMappedBuffer mMemBuffer is NULL", module, 320};
constexpr zolcs::ReportSite shiftIndexed{L"raster type not allowed", module, 327};
constexpr zolcs::ReportSite shiftType{L"Unknown raster type", module, 459};
constexpr zolcs::ReportSite elemSizeType{L"Unknown image type", module, 495};

// Lines of an image's memory: `count` of them from line `first` on, `stride` bytes apart.
struct Lines {
    unsigned char* memory;
    std::size_t size;
    std::int64_t stride;
    int first;
    int count;
};

// Calls work(address, n) for each line, where n of its `units` elements of `unitSize` bytes lie inside the memory:
// an adopted buffer may be smaller than its geometry, and has no guard line.
template <typename Work>
void forEachLine(const Lines& lines, std::int64_t units, std::size_t unitSize, Work work) {
    if (lines.stride <= 0 || units <= 0) return;
    std::uint64_t offset = static_cast<std::uint64_t>(lines.first) * static_cast<std::uint64_t>(lines.stride);
    for (int y = 0; y < lines.count && offset < lines.size; ++y) {
        const auto start = static_cast<std::size_t>(offset);
        const std::size_t room = (lines.size - start) / unitSize;
        const bool fits = static_cast<std::uint64_t>(units) <= room;
        work(lines.memory + start, fits ? static_cast<std::size_t>(units) : room);
        offset += static_cast<std::uint64_t>(lines.stride);
    }
}

// Pixels of all lines with their padding.
std::int64_t wholePixels(int pitch, int height) { return std::int64_t{std::max(pitch, 0)} * std::max(height, 0); }

// Pixels of adopted buffers may lie at any address, hence the copies; compilers make plain loads and stores of them.
template <typename Value>
void store(unsigned char* target, Value value) {
    std::memcpy(target, &value, sizeof value);
}

template <typename Value>
void repeat(unsigned char* line, std::size_t count, Value value) {
    for (std::size_t i = 0; i < count; ++i) store(line + i * sizeof value, value);
}

template <typename Sample>
void shiftLine(unsigned char* line, std::size_t count, unsigned int bits) {
    for (std::size_t i = 0; i < count; ++i) {
        Sample sample;
        std::memcpy(&sample, line + i * sizeof sample, sizeof sample);
        store(line + i * sizeof sample, static_cast<Sample>(static_cast<std::uint32_t>(sample) >> bits));
    }
}

template <typename Sample>
void shiftLines(const Lines& lines, std::int64_t samples, unsigned int bits) {
    forEachLine(lines, samples, sizeof(Sample),
                [bits](unsigned char* line, std::size_t count) { shiftLine<Sample>(line, count, bits); });
}

// The packed form: all 16-bit samples of the memory in one go, line padding included. A count outside 0 to 15 (a
// negative one is a huge one) leaves nothing of a sample.
void shiftPacked(unsigned char* memory, std::size_t size, std::int64_t samples, int bits) {
    constexpr int allBits = 16;
    const bool inside = bits >= 0 && bits < allBits;
    const Lines all{memory, size, 1, 0, 1};
    shiftLines<std::uint16_t>(all, samples, static_cast<unsigned int>(inside ? bits : allBits));
}

}  // namespace

CCsImage::CCsImage(const CCsImage& /*other*/) {}

CCsImage& CCsImage::operator=(const CCsImage& other) = default;

CCsImage* CCsImage::NewInstance() { return nullptr; }

CCsImage::~CCsImage() {
    delete mMemBuffer;
    origin = nullptr;
}

unsigned char* CCsImage::getOrigin() {
    origin = mMemBuffer != nullptr ? mMemBuffer->lock() : nullptr;
    return origin;
}

void CCsImage::unlock() {
    if (mMemBuffer != nullptr) mMemBuffer->unlock(0, 1);
}

int CCsImage::getElemSize() const {
    const int size = type == CCS_GREY16 ? 0 : zolcs::pixelSize(type);
    return size != 0 ? size : zolcs::fail(elemSizeType, type, 0);
}

int CCsImage::padding(int value, int multiple) {
    const std::int64_t steps = (static_cast<std::int64_t>(value) - 1 + multiple) / multiple;
    return static_cast<int>(std::min<std::int64_t>(steps * multiple, std::numeric_limits<int>::max()));
}

int CCsImage::clear() {
    if (mMemBuffer == nullptr) return CCS_FAILED;
    if (type < CCS_INDEX8 || type > CCS_RGB8) return zolcs::fail(clearType, type, CCS_FAILED);
    const zolcs::ImageLock lock(*this);
    if (lock.origin() == nullptr) return CCS_FAILED;
    const std::int64_t pixels = wholePixels(pitch, height);
    const Lines all{lock.origin(), mMemBuffer->getSize(), 1, 0, 1};
    forEachLine(all, pixels, static_cast<std::size_t>(zolcs::pixelSize(type)),
                [this](unsigned char* line, std::size_t count) {
                    std::memset(line, 0, count * static_cast<std::size_t>(zolcs::pixelSize(type)));
                });
    return CCS_DONE;
}

int CCsImage::fill(long value) {
    if (mMemBuffer == nullptr) return CCS_FAILED;
    const zolcs::ImageLock lock(*this);
    const int size = zolcs::pixelSize(type);
    const bool grey = size == 1 || size == 2;
    if (!grey) return zolcs::fail(greyFillType, type, CCS_FAILED);
    if (lock.origin() == nullptr) return CCS_FAILED;
    const auto v = static_cast<std::uint32_t>(value);
    // Out-of-range values are not clamped: their upper bits run into the neighbouring pixels of the word.
    const std::uint32_t word = size == 1 ? ((v << 8U | v) << 8U | v) << 8U | v : v << 16U | v;
    const int pixelsOfWord = static_cast<int>(sizeof word) / size;
    const Lines lines{lock.origin(), mMemBuffer->getSize(), static_cast<std::int64_t>(pitch) * size, 0, height};
    forEachLine(lines, width / pixelsOfWord, sizeof word,
                [word](unsigned char* line, std::size_t count) { repeat(line, count, word); });
    return CCS_DONE;
}

int CCsImage::fill(long red, long green, long blue) {
    if (mMemBuffer == nullptr) return CCS_FAILED;
    const zolcs::ImageLock lock(*this);
    if (type != CCS_RGB12 && type != CCS_RGB8) return zolcs::fail(colourFillType, type, CCS_FAILED);
    if (lock.origin() == nullptr) return CCS_FAILED;
    const int size = zolcs::pixelSize(type);
    const Lines lines{lock.origin(), mMemBuffer->getSize(), static_cast<std::int64_t>(pitch) * size, 0, height};
    if (type == CCS_RGB12) {
        const auto wordOf = [](long channel) {
            return static_cast<std::uint64_t>(static_cast<std::uint16_t>(channel));
        };
        const std::uint64_t pixel = wordOf(red) << 32U | wordOf(green) << 16U | wordOf(blue);
        forEachLine(lines, width, sizeof pixel,
                    [pixel](unsigned char* line, std::size_t count) { repeat(line, count, pixel); });
    } else {
        const std::uint32_t pixel = static_cast<std::uint32_t>(red) << 16U | static_cast<std::uint32_t>(green) << 8U |
                                    static_cast<std::uint32_t>(blue);
        forEachLine(lines, width, sizeof pixel,
                    [pixel](unsigned char* line, std::size_t count) { repeat(line, count, pixel); });
    }
    return CCS_DONE;
}

void CCsImage::shiftRight(int bits) {
    if (mMemBuffer == nullptr) {
        zolcs::fail(shiftNoBuffer, 0, CCS_FAILED);
        return;
    }
    const int size = zolcs::pixelSize(type);
    if (size == 0 || type == CCS_RGB24) {
        zolcs::fail(shiftType, type, CCS_FAILED);
        return;
    }
    if (type == CCS_INDEX8) {
        zolcs::fail(shiftIndexed, type, CCS_FAILED);
        return;
    }
    const zolcs::ImageLock lock(*this);
    if (lock.origin() == nullptr) return;
    const std::size_t bytes = mMemBuffer->getSize();
    // No more than there are bytes can matter, and so many words cannot overflow.
    const std::int64_t pixels = std::min(wholePixels(pitch, height), static_cast<std::int64_t>(bytes));
    const bool packed = zolcs::processorCapability() != 0;
    const unsigned int shift = static_cast<unsigned int>(bits) % 32U;
    Lines lines{lock.origin(), bytes, static_cast<std::int64_t>(pitch) * size, 0, height};
    switch (type) {
        case CCS_GREY12:
        case CCS_GREY16:
            if (packed) {
                shiftPacked(lock.origin(), bytes, pixels / 4 * 4, bits);
            } else {
                shiftLines<std::uint16_t>(lines, width, shift);
            }
            break;
        case CCS_RGB12:
            if (packed) {
                shiftPacked(lock.origin(), bytes, pixels * 4, bits);
            } else {
                // Deliberate: the walk starts at the second line and ends with the guard line below the last one.
                lines.first = 1;
                shiftLines<std::uint16_t>(lines, std::int64_t{width} * 4, shift);
            }
            break;
        case CCS_RGB8:
            shiftLines<std::uint8_t>(lines, std::int64_t{width} * 4, shift);
            break;
        default:
            shiftLines<std::uint8_t>(lines, width, shift);
            break;
    }
}
