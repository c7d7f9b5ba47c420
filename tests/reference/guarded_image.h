// Images on memory that the test owns: any pitch, random bytes between the lines and a guard on both sides, so that
// comparing the whole block shows every byte that a call should not have touched.
#pragma once

#include "support/test_data.h"
#include "zolcs/ccsraster.h"

#include <cstddef>
#include <vector>

namespace zoltest {

inline int bytesOfType(int type) {
    switch (type) {
        case CCS_INDEX8:
        case CCS_GREY8:
            return 1;
        case CCS_RGB12:
            return 8;
        case CCS_RGB8:
            return 4;
        case CCS_RGB24:
            return 3;
        default:
            return 2;
    }
}

/// The bytes of one image with a guard before and after them.
class GuardedMemory {
public:
    GuardedMemory(int height, int pitch, int type)
        : bytes_(static_cast<std::size_t>(height) * static_cast<std::size_t>(pitch) *
                 static_cast<std::size_t>(bytesOfType(type))),
          // Zeroed space for at least one line and one pixel behind the image, as rasters have.
          guard_((static_cast<std::size_t>(pitch) + 8) * static_cast<std::size_t>(bytesOfType(type)) + 64),
          memory_(bytes_ + 2 * guard_) {}

    [[nodiscard]] unsigned char* pixels() { return memory_.data() + guard_; }
    [[nodiscard]] std::size_t bytes() const { return bytes_; }
    [[nodiscard]] std::size_t guard() const { return guard_; }
    [[nodiscard]] std::vector<unsigned char>& all() { return memory_; }

    void randomise(Random& random) {
        for (unsigned char& byte : memory_) byte = static_cast<unsigned char>(random.bits() >> 32);
    }

private:
    std::size_t bytes_;
    std::size_t guard_;
    std::vector<unsigned char> memory_;
};

inline ZolMemMappedBuffer* plainBuffer(std::size_t bytes) {
    return ZolMemMappedManager::getIntance()->allocateMapMemory(static_cast<unsigned int>(bytes), 0, false, false);
}

/// A plain image of any type and pitch.
class GuardedImage : public CCsImage {
public:
    GuardedImage(int w, int h, int imageType, int imagePitch, double ratio) : memory(h, imagePitch, imageType) {
        width = w;
        height = h;
        type = imageType;
        pitch = imagePitch;
        ratioYx = ratio;
        mMemBuffer = plainBuffer(memory.bytes());
        if (mMemBuffer != nullptr) mMemBuffer->setHeapBuffer(memory.pixels());
    }

    GuardedMemory memory;
};

/// A raster of any type and pitch.
class GuardedRaster : public CCsRaster {
public:
    GuardedRaster(int w, int h, int imageType, int imagePitch, double ratio)
        : CCsRaster(plainBuffer(static_cast<std::size_t>(h) * static_cast<std::size_t>(imagePitch) *
                                static_cast<std::size_t>(bytesOfType(imageType))),
                    w, h, imageType, ratio),
          memory(h, imagePitch, imageType) {
        pitch = imagePitch;
        if (mMemBuffer != nullptr) mMemBuffer->setHeapBuffer(memory.pixels());
    }

    GuardedMemory memory;
};

}  // namespace zoltest
