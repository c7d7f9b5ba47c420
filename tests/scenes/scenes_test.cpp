// Every scene must give the digests that stand in digests.txt, of its plain and of its packed arithmetic; the pictures
// to look at are in pictures/.
#include "scenes/scenes.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "support/folders.h"
#include "support/picture_file.h"

namespace {

using zolscenes::Scene;

struct Digests {
    std::string plain;
    std::string packed;
};

std::map<std::string, Digests> storedDigests() {
    std::map<std::string, Digests> digests;
    std::ifstream file(zoltest::sourceFolder() / "tests/scenes/digests.txt");
    std::string name;
    for (Digests values; file >> name >> values.plain >> values.packed;) digests[name] = values;
    return digests;
}

std::string hex(std::uint64_t value) {
    std::ostringstream out;
    out << std::hex << value;
    return out.str();
}

class SceneTest : public ::testing::TestWithParam<Scene> {};

TEST_P(SceneTest, GivesTheStoredDigest) {
    const Scene& scene = GetParam();
    const Digests stored = storedDigests()[scene.name];
    const auto expectDigest = [&scene](zolscenes::Arithmetic arithmetic, const std::string& expected) {
        const zolscenes::Picture picture = zolscenes::draw(scene, arithmetic);
        const std::string actual = hex(zolscenes::digest(picture));
        if (actual != expected) {
            const std::string left = zoltest::leavePictures(scene.name, picture.width, picture.height, picture.pixels);
            ADD_FAILURE() << (arithmetic == zolscenes::Arithmetic::Packed ? "packed" : "plain") << " digest " << actual
                          << ", stored " << (expected.empty() ? "none" : expected) << "\n"
                          << left;
        }
    };
    expectDigest(zolscenes::Arithmetic::Plain, stored.plain);
    expectDigest(zolscenes::Arithmetic::Packed, stored.packed);
}

INSTANTIATE_TEST_SUITE_P(Scenes, SceneTest, ::testing::ValuesIn(zolscenes::allScenes()),
                         [](const auto& scene) { return scene.param.name; });

TEST(SceneList, HasADigestForEachSceneAndNoOther) {
    std::set<std::string> names;
    for (const Scene& scene : zolscenes::allScenes()) names.insert(scene.name);
    std::set<std::string> stored;
    for (const auto& [name, values] : storedDigests()) stored.insert(name);
    EXPECT_EQ(names, stored);
}

}  // namespace
