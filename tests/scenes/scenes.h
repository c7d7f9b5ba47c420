// The common set of scenes: whole roads from a stored image to display pixels, the same on every platform.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zolscenes {

/// What a scene shows: width * height display pixels (0x00RRGGBB), top line first.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

struct Scene {
    std::string name;
    std::function<Picture()> draw;
};

/// The two ways of computing between which the processor's capability decides. Most pictures are the same in both.
enum class Arithmetic { Plain, Packed };

Picture draw(const Scene& scene, Arithmetic arithmetic);

/// All scenes, in a fixed order.
const std::vector<Scene>& allScenes();

/// A 64-bit FNV-1a digest of the size and the pixels.
std::uint64_t digest(const Picture& picture);

}  // namespace zolscenes
