#include "viewing/image/phantom.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace viewing {

namespace {

constexpr int phantomWidth = 640;
constexpr int phantomHeight = 512;
constexpr int black = 0;
constexpr int background = 680;
constexpr int patch = 2000;
constexpr int white = 4095;
constexpr int embeddedBit = 12;

struct Glyph {
    char letter;
    std::array<std::string_view, 7> rows;
};

constexpr std::array<Glyph, 9> glyphs{{
    {'E', {"#####", "#....", "#....", "####.", "#....", "#....", "#####"}},
    {'F', {"#####", "#....", "#....", "####.", "#....", "#....", "#...."}},
    {'I', {".###.", "..#..", "..#..", "..#..", "..#..", "..#..", ".###."}},
    {'L', {"#....", "#....", "#....", "#....", "#....", "#....", "#####"}},
    {'O', {".###.", "#...#", "#...#", "#...#", "#...#", "#...#", ".###."}},
    {'R', {"####.", "#...#", "#...#", "####.", "#.#..", "#..#.", "#...#"}},
    {'V', {"#...#", "#...#", "#...#", "#...#", "#...#", ".#.#.", "..#.."}},
    {'W', {"#...#", "#...#", "#...#", "#.#.#", "#.#.#", "##.##", "#...#"}},
    {'Z', {"#####", "....#", "...#.", "..#..", ".#...", "#....", "#####"}},
}};

/// Calls put(x, y) for every pixel of the text, each dot of a letter a square of `scale` pixels.
template <typename Put>
void drawText(std::string_view text, int left, int top, int scale, Put put) {
    for (const char letter : text) {
        const auto* const glyph = std::find_if(glyphs.begin(), glyphs.end(),
                                               [letter](const Glyph& candidate) { return candidate.letter == letter; });
        for (int y = 0; y < 7 * scale; ++y)
            for (int x = 0; x < 5 * scale; ++x)
                if (glyph->rows[static_cast<std::size_t>(y / scale)][static_cast<std::size_t>(x / scale)] == '#')
                    put(left + x, top + y);
        left += 6 * scale;
    }
}

/// Calls put(x, y) for the one-pixel outline of a rectangle, edges included.
template <typename Put>
void drawFrame(const Box& frame, Put put) {
    for (int x = frame.left; x <= frame.right; ++x) {
        put(x, frame.top);
        put(x, frame.bottom);
    }
    for (int y = frame.top; y <= frame.bottom; ++y) {
        put(frame.left, y);
        put(frame.right, y);
    }
}

class Canvas {
public:
    explicit Canvas(GreyImage& image) : image_(image) {}

    void set(int x, int y, int level) { sample(x, y) = static_cast<std::uint16_t>(level); }

    void mark(int x, int y, int bit) { sample(x, y) = static_cast<std::uint16_t>(sample(x, y) | (1U << bit)); }

    void fill(const Box& area, int level) {
        for (int y = area.top; y <= area.bottom; ++y)
            for (int x = area.left; x <= area.right; ++x) set(x, y, level);
    }

    void disc(Point centre, int radius, int level) {
        for (int y = -radius; y <= radius; ++y)
            for (int x = -radius; x <= radius; ++x)
                if (x * x + y * y <= radius * radius) set(centre.x + x, centre.y + y, level);
    }

    void circle(Point centre, int radius, int level) {
        for (int y = -radius - 1; y <= radius + 1; ++y)
            for (int x = -radius - 1; x <= radius + 1; ++x)
                if (std::abs(x * x + y * y - radius * radius) <= radius) set(centre.x + x, centre.y + y, level);
    }

private:
    std::uint16_t& sample(int x, int y) {
        return image_.samples[static_cast<std::size_t>(y) * phantomWidth + static_cast<std::size_t>(x)];
    }

    GreyImage& image_;
};

/// Sixteen steps above a continuous ramp, both from black on the left to white on the right.
void drawGreys(Canvas& canvas) {
    for (int step = 0; step < 16; ++step) canvas.fill({40 + step * 35, 40, 74 + step * 35, 79}, step * white / 15);
    for (int x = 0; x < 560; ++x) canvas.fill({40 + x, 88, 40 + x, 119}, x * white / 559);
}

/// Bars of 1, 2, 3 and 4 pixels, first upright, then lying.
void drawLinePairs(Canvas& canvas) {
    for (int bar = 1; bar <= 4; ++bar) {
        for (int k = 0; k < 48; ++k) {
            const int level = (k / bar) % 2 == 0 ? white : black;
            const int upright = 40 + (bar - 1) * 60 + k;
            canvas.fill({upright, 136, upright, 183}, level);
            const int left = 300 + (bar - 1) * 60;
            canvas.fill({left, 136 + k, left + 47, 136 + k}, level);
        }
    }
}

/// Six discs, each twice as far above its surroundings as the one before, down to 8 of 4096 levels.
void drawLowContrast(Canvas& canvas) {
    canvas.fill({40, 200, 400, 260}, patch);
    for (int disc = 0; disc < 6; ++disc) canvas.disc({72 + disc * 58, 230}, 18, patch + (8 << disc));
}

/// Concentric circles, which show unequal scales and missing columns.
void drawCircles(Canvas& canvas) {
    for (int radius = 20; radius <= 80; radius += 20) canvas.circle({520, 300}, radius, white);
    canvas.fill({520, 290, 520, 310}, white);
    canvas.fill({510, 300, 530, 300}, white);
}

/// A letter that is no mirror image of itself, and an arrow to the right.
void drawOrientation(Canvas& canvas) {
    drawText("F", 60, 290, 16, [&canvas](int x, int y) { canvas.set(x, y, white); });
    canvas.fill({180, 340, 330, 349}, white);
    for (int k = 0; k <= 30; ++k) canvas.fill({330 + k, 314 + k, 330 + k, 374 - k}, white);
}

void drawPadding(Canvas& canvas, BitPlane& padding) {
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x <= y; ++x) {
            canvas.set(60 + x, 425 + y, black);
            padding.set(60 + x, 425 + y);
        }
    }
}

OverlayPlane makeCaption() {
    OverlayPlane plane{{190, 425}, BitPlane(241, 61), PlaneKind::Graphics};
    const auto put = [&plane](int x, int y) { plane.bits.set(x, y); };
    drawFrame({0, 0, 240, 60}, put);
    drawText("ZOLVIEW", 17, 13, 5, put);
    return plane;
}

OverlayPlane makeRegion() {
    OverlayPlane plane{{36, 196}, BitPlane(369, 69), PlaneKind::RegionOfInterest};
    drawFrame({0, 0, 368, 68}, [&plane](int x, int y) {
        if ((x + y) / 4 % 2 == 0) plane.bits.set(x, y);
    });
    return plane;
}

}  // namespace

StoredImage makePhantom() {
    StoredImage image;
    image.width = phantomWidth;
    image.height = phantomHeight;
    GreyImage& grey = image.grey();
    grey.samples.assign(static_cast<std::size_t>(phantomWidth) * phantomHeight, background);
    grey.padding = BitPlane(phantomWidth, phantomHeight);
    grey.maxLevel = white;
    grey.voiChoices = {{"", VoiWindow{{levels12 / 2.0, levels12}}, {}, {}}};
    grey.voi = grey.voiChoices.front().voi;

    Canvas canvas(grey);
    const auto whiteDot = [&canvas](int x, int y) { canvas.set(x, y, white); };
    drawFrame({0, 0, phantomWidth - 1, phantomHeight - 1}, whiteDot);
    drawFrame({20, 20, phantomWidth - 21, phantomHeight - 21}, whiteDot);
    drawGreys(canvas);
    drawLinePairs(canvas);
    drawLowContrast(canvas);
    drawCircles(canvas);
    drawOrientation(canvas);
    drawPadding(canvas, grey.padding);

    image.shutters.rectangle = Box{8, 8, phantomWidth - 9, phantomHeight - 9};
    image.shutters.circle = Circle{{phantomWidth / 2, phantomHeight / 2}, 374};
    image.shutters.presentationValue = 0x7000;
    image.overlays.push_back(makeCaption());
    image.overlays.push_back(makeRegion());
    grey.embedded.push_back({embeddedBit, PlaneKind::Graphics});
    drawText("R", 570, 430, 5, [&canvas](int x, int y) { canvas.mark(x, y, embeddedBit); });
    return image;
}

}  // namespace viewing
