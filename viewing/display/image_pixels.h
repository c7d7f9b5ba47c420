// The pixels of the library's images, locked while they are used.
#pragma once

#include "viewing/image/refusal.h"
#include "viewing/image/stored_image.h"
#include "zolcs/ccsimage.h"

#include <algorithm>
#include <cstddef>

namespace viewing {

/// Locks an image whose pixels are of type Pixel, for as long as it lives. Refuses an image without memory.
template <typename Pixel>
class ImagePixels {
public:
    explicit ImagePixels(CCsImage& image) : image_(image), first_(reinterpret_cast<Pixel*>(image.getOrigin())) {
        if (first_ != nullptr) return;
        image_.unlock();
        throw Refusal("not enough memory");
    }
    ImagePixels(const ImagePixels&) = delete;
    ImagePixels& operator=(const ImagePixels&) = delete;
    ~ImagePixels() { image_.unlock(); }

    /// The first pixel of row y, from 0.
    [[nodiscard]] Pixel* row(int y) const { return first_ + static_cast<std::ptrdiff_t>(y) * image_.getPitch(); }

    /// Calls visit(pixel) for every pixel, row by row.
    template <typename Visit>
    void forEach(Visit visit) const {
        for (int y = 0; y < image_.getHeight(); ++y) std::for_each_n(row(y), image_.getWidth(), visit);
    }

private:
    CCsImage& image_;
    Pixel* first_;
};

}  // namespace viewing
