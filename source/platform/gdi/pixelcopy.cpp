#include "platform/gdi/pixelcopy.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>
#include <vector>

namespace zolgdi {

namespace {

template <int Bytes>
DWORD load(const BYTE* from) {
    DWORD value = 0;
    std::memcpy(&value, from, Bytes);
    return value;
}

template <int Bytes>
void store(BYTE* to, DWORD value) {
    std::memcpy(to, &value, Bytes);
}

/// The operation's truth table, bit by bit of the pixel: table bit 4p + 2s + d is the result.
DWORD combine(BYTE rop, DWORD pattern, DWORD source, DWORD destination) {
    DWORD out = 0;
    for (unsigned int k = 0; k < 8; ++k) {
        if (((DWORD{rop} >> k) & 1U) == 0) continue;
        out |= ((k & 4U) != 0 ? pattern : ~pattern) & ((k & 2U) != 0 ? source : ~source) &
               ((k & 1U) != 0 ? destination : ~destination);
    }
    return out;
}

constexpr BYTE copySource = ropIndex(SRCCOPY);
constexpr BYTE copyPattern = ropIndex(PATCOPY);
constexpr BYTE blackness = ropIndex(BLACKNESS);
constexpr BYTE whiteness = ropIndex(WHITENESS);

/// Where each of the columns or rows of a stretched copy comes from. Enlarging takes the source pixel under the middle
/// of the destination pixel, the first of two that touch there. Shrinking gives every source pixel to the destination
/// pixel under its middle; of those that meet in one, the last column and the first row stay, as GDI deletes them.
class Sampling {
public:
    enum class Survivor { first, last };

    Sampling(LONG source, LONG sourceExtent, LONG destination, LONG destinationEnd, bool mirror, Survivor survivor)
        : source_(source),
          from_(static_cast<std::uint64_t>(sourceExtent)),
          destination_(destination),
          to_(static_cast<std::uint64_t>(std::int64_t{destinationEnd} - destination)),
          mirror_(mirror),
          survivor_(survivor) {}

    /// The source coordinate for a destination coordinate inside the destination's extent. It may lie outside of the
    /// source's pixels.
    [[nodiscard]] std::int64_t operator()(LONG at) const {
        const auto distance = static_cast<std::uint64_t>(std::int64_t{at} - destination_);
        return std::int64_t{source_} + static_cast<std::int64_t>(index(mirror_ ? to_ - 1 - distance : distance));
    }

private:
    [[nodiscard]] std::uint64_t index(std::uint64_t i) const {
        if (to_ >= from_) return ((2 * i + 1) * from_ - 1) / (2 * to_);
        if (survivor_ == Survivor::last) return (2 * from_ * (i + 1) / to_ - 1) / 2;
        return (2 * from_ * i / to_ + 1) / 2;
    }

    LONG source_;
    std::uint64_t from_;
    LONG destination_;
    std::uint64_t to_;
    bool mirror_;
    Survivor survivor_;
};

/// The part of [first, last) whose samples lie in [0, extent): samples are monotonic, so it is one run.
void trim(const Sampling& sampling, LONG extent, LONG& first, LONG& last) {
    const auto outside = [&](LONG at) { return sampling(at) < 0 || sampling(at) >= extent; };
    while (first < last && outside(first)) ++first;
    while (first < last && outside(last - 1)) --last;
}

template <int From, int To>
class PictureRows {
public:
    PictureRows(const Pixels& to, const Picture& picture, BYTE rop, DWORD pattern)
        : to_(to),
          picture_(picture),
          columns_(picture.x, picture.width, picture.destination.left, picture.destination.right, picture.mirrorX,
                   Sampling::Survivor::last),
          rows_(picture.y, picture.height, picture.destination.top, picture.destination.bottom, picture.mirrorY,
                Sampling::Survivor::first),
          rop_(rop),
          pattern_(pattern),
          plain_(!picture.mirrorX && picture.width == picture.destination.right - picture.destination.left) {}

    void draw(RECT rect) {
        trim(columns_, picture_.pixels.width, rect.left, rect.right);
        trim(rows_, picture_.pixels.height, rect.top, rect.bottom);
        if (isEmpty(rect)) return;
        offsets_.clear();
        for (LONG x = rect.left; x < rect.right; ++x) offsets_.push_back(columns_(x) * From);
        std::int64_t last = -1;
        for (LONG y = rect.top; y < rect.bottom; ++y) {
            const std::int64_t row = rows_(y);
            BYTE* out = to_.at(rect.left, y);
            if (rop_ == copySource && row == last) {
                // An enlarged copy repeats whole rows.
                std::memcpy(out, to_.at(rect.left, y - 1), offsets_.size() * To);
            } else {
                drawRow(picture_.pixels.row(static_cast<LONG>(row)), out);
            }
            last = row;
        }
    }

private:
    void drawRow(const BYTE* in, BYTE* out) const {
        if (rop_ != copySource) {
            for (std::size_t i = 0; i < offsets_.size(); ++i) {
                BYTE* pixel = out + i * To;
                store<To>(pixel, combine(rop_, pattern_, load<From>(in + offsets_[i]), load<To>(pixel)));
            }
        } else if (plain_ && From == To) {
            std::memcpy(out, in + offsets_[0], offsets_.size() * To);
        } else {
            for (std::size_t i = 0; i < offsets_.size(); ++i) store<To>(out + i * To, load<From>(in + offsets_[i]));
        }
    }

    const Pixels& to_;
    const Picture& picture_;
    Sampling columns_;
    Sampling rows_;
    BYTE rop_;
    DWORD pattern_;
    bool plain_;
    std::vector<std::ptrdiff_t> offsets_;
};

template <int From, int To>
void drawPicture(const Pixels& to, const Area& clip, const Picture& picture, BYTE rop, DWORD pattern) {
    PictureRows<From, To> rows(to, picture, rop, pattern);
    for (const RECT& rect : clip.rects()) rows.draw(rect);
}

/// First byte and the byte behind the last one.
std::pair<const BYTE*, const BYTE*> extent(const Pixels& pixels) {
    const BYTE* first = pixels.stride > 0 ? pixels.top : pixels.row(pixels.height - 1);
    const BYTE* lastRow = pixels.stride > 0 ? pixels.row(pixels.height - 1) : pixels.top;
    return {first, lastRow + static_cast<std::ptrdiff_t>(pixels.width) * pixels.bytes};
}

bool overlap(const Pixels& a, const Pixels& b) {
    const auto first = extent(a);
    const auto second = extent(b);
    const std::less<> before;
    return before(first.first, second.second) && before(second.first, first.second);
}

/// The rows that a picture reads, copied to memory of their own.
std::vector<BYTE> detach(Picture& picture) {
    Pixels& pixels = picture.pixels;
    const std::size_t size = static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.bytes);
    std::vector<BYTE> copy(size * static_cast<std::size_t>(pixels.height));
    for (LONG y = 0; y < pixels.height; ++y) {
        std::memcpy(copy.data() + static_cast<std::size_t>(y) * size, pixels.row(y), size);
    }
    pixels.top = copy.data();
    pixels.stride = static_cast<std::ptrdiff_t>(size);
    return copy;
}

template <int Bytes>
void paintRect(const Pixels& to, const RECT& rect, BYTE rop, DWORD pattern) {
    for (LONG y = rect.top; y < rect.bottom; ++y) {
        BYTE* out = to.at(rect.left, y);
        for (LONG x = rect.left; x < rect.right; ++x, out += Bytes) {
            store<Bytes>(out, combine(rop, pattern, 0, load<Bytes>(out)));
        }
    }
}

template <int Bytes>
void fillRect(const Pixels& to, const RECT& rect, DWORD value) {
    BYTE* first = to.at(rect.left, rect.top);
    const auto size = static_cast<std::size_t>(rect.right - rect.left) * Bytes;
    for (std::size_t i = 0; i < size; i += Bytes) store<Bytes>(first + i, value);
    for (LONG y = rect.top + 1; y < rect.bottom; ++y) std::memcpy(to.at(rect.left, y), first, size);
}

}  // namespace

void paintPixels(const Pixels& to, const Area& area, BYTE rop, COLORREF color) {
    const bool wide = to.bytes == 4;
    const bool solid = rop == copyPattern || rop == blackness || rop == whiteness;
    const DWORD value = rop == blackness ? 0 : (rop == whiteness ? 0xFFFFFFFFU : pixelOf(color));
    for (const RECT& rect : area.rects()) {
        if (solid) {
            wide ? fillRect<4>(to, rect, value) : fillRect<3>(to, rect, value);
        } else {
            wide ? paintRect<4>(to, rect, rop, value) : paintRect<3>(to, rect, rop, value);
        }
    }
}

void copyPixels(const Pixels& to, const Area& clip, const Picture& picture, BYTE rop, COLORREF pattern) {
    const Area area = clip.intersected(Area(picture.destination));
    if (area.empty()) return;
    Picture from = picture;
    std::vector<BYTE> copy;
    if (overlap(from.pixels, to)) copy = detach(from);
    const DWORD value = pixelOf(pattern);
    if (to.bytes == 4) {
        from.pixels.bytes == 4 ? drawPicture<4, 4>(to, area, from, rop, value)
                               : drawPicture<3, 4>(to, area, from, rop, value);
    } else {
        from.pixels.bytes == 4 ? drawPicture<4, 3>(to, area, from, rop, value)
                               : drawPicture<3, 3>(to, area, from, rop, value);
    }
}

}  // namespace zolgdi
