// Writes every scene as a PNG and its digest; for looking at them and for accepting a change that was meant.
// usage: zol_scene_pictures FOLDER   (digests go to FOLDER/../digests.txt)
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "scenes/scenes.h"
#include "support/picture_file.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    std::ofstream digests(folder / ".." / "digests.txt");
    for (const zolscenes::Scene& scene : zolscenes::allScenes()) {
        const zolscenes::Picture picture = zolscenes::draw(scene, zolscenes::Arithmetic::Plain);
        const zolscenes::Picture packed = zolscenes::draw(scene, zolscenes::Arithmetic::Packed);
        digests << scene.name << ' ' << std::hex << zolscenes::digest(picture) << ' ' << zolscenes::digest(packed)
                << '\n';
        if (!zoltest::writePng(folder / (scene.name + ".png"), picture.width, picture.height, picture.pixels)) {
            std::fprintf(stderr, "cannot write %s.png\n", scene.name.c_str());
            return 1;
        }
    }
    return digests.good() ? 0 : 1;
}
