// Scoped access to pixel memory: nothing stays locked on any path.
#pragma once

#include "zolcs/ccsimage.h"

namespace zolcs {

/// Locks one image for the guard's life. The origin is null when the image has no memory.
class ImageLock {
public:
    explicit ImageLock(CCsImage& image) : image_(image), origin_(image.getOrigin()) {}
    ~ImageLock() { image_.unlock(); }
    ImageLock(const ImageLock&) = delete;
    ImageLock& operator=(const ImageLock&) = delete;

    [[nodiscard]] unsigned char* origin() const { return origin_; }

private:
    CCsImage& image_;
    unsigned char* origin_;
};

/// Locks a source, then a destination; unlocks the source, then the destination.
class ImagePairLock {
public:
    ImagePairLock(CCsImage& source, CCsImage& destination)
        : source_(source), destination_(destination), sourceOrigin_(source.getOrigin()) {
        try {
            destinationOrigin_ = destination.getOrigin();
        } catch (...) {
            source.unlock();
            throw;
        }
    }
    ~ImagePairLock() {
        source_.unlock();
        destination_.unlock();
    }
    ImagePairLock(const ImagePairLock&) = delete;
    ImagePairLock& operator=(const ImagePairLock&) = delete;

    [[nodiscard]] unsigned char* source() const { return sourceOrigin_; }
    [[nodiscard]] unsigned char* destination() const { return destinationOrigin_; }

private:
    CCsImage& source_;
    CCsImage& destination_;
    unsigned char* sourceOrigin_;
    unsigned char* destinationOrigin_ = nullptr;
};

}  // namespace zolcs
