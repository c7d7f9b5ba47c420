// Every scene must give the digest that stands in digests.txt; the pictures to look at are in pictures/.
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

std::map<std::string, std::string> storedDigests() {
    std::map<std::string, std::string> digests;
    std::ifstream file(zoltest::sourceFolder() / "tests/scenes/digests.txt");
    for (std::string name, value; file >> name >> value;) digests[name] = value;
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
    const zolscenes::Picture picture = scene.draw();
    const std::string actual = hex(zolscenes::digest(picture));
    const std::string expected = storedDigests()[scene.name];
    if (actual != expected) {
        const std::string left = zoltest::leavePictures(scene.name, picture.width, picture.height, picture.pixels);
        FAIL() << "digest " << actual << ", stored " << (expected.empty() ? "none" : expected) << "\n" << left;
    }
}

INSTANTIATE_TEST_SUITE_P(Scenes, SceneTest, ::testing::ValuesIn(zolscenes::allScenes()),
                         [](const auto& scene) { return scene.param.name; });

TEST(SceneList, HasADigestForEachSceneAndNoOther) {
    std::set<std::string> names;
    for (const Scene& scene : zolscenes::allScenes()) names.insert(scene.name);
    std::set<std::string> stored;
    for (const auto& [name, value] : storedDigests()) stored.insert(name);
    EXPECT_EQ(names, stored);
}

}  // namespace
