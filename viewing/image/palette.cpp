#include "viewing/image/palette.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <span>

namespace viewing {

namespace {

/// A channel's level at one place of a palette. Between two knots it runs straight, rounded to the nearest level.
struct Knot {
    int index;
    int level;
};

int levelAt(std::span<const Knot> knots, int index) {
    std::size_t right = 1;
    while (knots[right].index < index) ++right;
    const Knot& from = knots[right - 1];
    const Knot& to = knots[right];
    const int length = to.index - from.index;
    return (2 * (from.level * (to.index - index) + to.level * (index - from.index)) + length) / (2 * length);
}

Palette fromKnots(std::span<const Knot> red, std::span<const Knot> green, std::span<const Knot> blue) {
    Palette palette{};
    for (int i = 0; i < 256; ++i)
        palette[static_cast<std::size_t>(i)] =
            static_cast<std::uint32_t>((levelAt(red, i) << 16) | (levelAt(green, i) << 8) | levelAt(blue, i));
    return palette;
}

/// The first of equal colours.
struct Step {
    int index;
    std::uint32_t colour;
};

Palette hotIron() {
    constexpr Knot red[] = {{0, 0}, {126, 252}, {128, 255}, {255, 255}};
    constexpr Knot green[] = {{0, 0}, {128, 0}, {254, 252}, {255, 255}};
    constexpr Knot blue[] = {{0, 0}, {191, 0}, {253, 248}, {255, 255}};
    return fromKnots(red, green, blue);
}

Palette pet() {
    constexpr Knot red[] = {{0, 0}, {63, 0}, {64, 1}, {105, 83}, {107, 86}, {192, 255}, {255, 255}};
    constexpr Knot green[] = {{0, 0},   {1, 2},   {62, 125},  {63, 128}, {64, 126},
                              {127, 1}, {128, 0}, {254, 252}, {255, 255}};
    constexpr Knot blue[] = {{0, 0},    {1, 1},    {128, 255}, {129, 252}, {192, 0},
                             {212, 80}, {213, 85}, {254, 250}, {255, 255}};
    return fromKnots(red, green, blue);
}

Palette hotMetalBlue() {
    constexpr Knot red[] = {{0, 0}, {85, 0}, {102, 50}, {119, 90}, {153, 190}, {170, 255}, {255, 255}};
    constexpr Knot green[] = {{0, 0}, {119, 0}, {238, 224}, {255, 255}};
    constexpr Knot blue[] = {{0, 0},     {16, 31},  {34, 67}, {68, 133}, {84, 165},  {102, 200},
                             {119, 150}, {136, 50}, {153, 0}, {170, 0},  {238, 200}, {255, 255}};
    return fromKnots(red, green, blue);
}

Palette spring() {
    constexpr Knot red[] = {{0, 255}, {255, 255}};
    constexpr Knot green[] = {{0, 0}, {255, 255}};
    constexpr Knot blue[] = {{0, 255}, {255, 0}};
    return fromKnots(red, green, blue);
}

Palette summer() {
    constexpr Knot red[] = {{0, 0}, {255, 0}};
    constexpr Knot green[] = {{0, 255}, {255, 128}};
    constexpr Knot blue[] = {{0, 0}, {127, 0}, {255, 254}};
    return fromKnots(red, green, blue);
}

Palette fall() {
    constexpr Knot red[] = {{0, 255}, {255, 255}};
    constexpr Knot green[] = {{0, 255}, {255, 0}};
    constexpr Knot blue[] = {{0, 0}, {255, 0}};
    return fromKnots(red, green, blue);
}

Palette winter() {
    constexpr Knot red[] = {{0, 0}, {127, 0}, {255, 127}};
    constexpr Knot green[] = {{0, 0}, {255, 255}};
    constexpr Knot blue[] = {{0, 255}, {255, 128}};
    return fromKnots(red, green, blue);
}

Palette pet20Step() {
    constexpr Step steps[] = {{0, 0x000000},   {13, 0x600050},  {26, 0x303050},  {39, 0x303070},  {51, 0x505080},
                              {64, 0x6060B0},  {77, 0x7070C0},  {90, 0x8080E0},  {102, 0x306030}, {115, 0x309030},
                              {128, 0x50C050}, {141, 0x40E040}, {153, 0xE0E050}, {166, 0xD0D060}, {179, 0xD0B040},
                              {192, 0xD09000}, {204, 0xC06000}, {217, 0xB03000}, {230, 0xFF0000}, {243, 0xFFFFFF}};
    Palette palette{};
    for (const Step& step : steps) std::fill(palette.begin() + step.index, palette.end(), step.colour);
    return palette;
}

}  // namespace

std::optional<Palette> wellKnownPalette(const std::string& name) {
    std::string capitals = name;
    for (char& c : capitals) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (capitals == "HOT_IRON") return hotIron();
    if (capitals == "PET") return pet();
    if (capitals == "HOT_METAL_BLUE") return hotMetalBlue();
    if (capitals == "PET_20_STEP") return pet20Step();
    if (capitals == "SPRING") return spring();
    if (capitals == "SUMMER") return summer();
    if (capitals == "FALL") return fall();
    if (capitals == "WINTER") return winter();
    return std::nullopt;
}

}  // namespace viewing
