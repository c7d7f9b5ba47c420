// Every bilinear member against its restatement, with both settings of the processor's capability and every variant of
// the vector code.
#include "support/bilinear_members.h"
#include "support/capability_guard.h"
#include "support/variants.h"

namespace {

using zoltest::CapabilityGuard;

TEST(BilinearProperty, EveryMemberWritesWhatIsRestated) {
    std::uint64_t seed = 20240301;
    zoltest::forEachVariant([&](const std::string&) {
        for (const int capability : {0, 1}) {
            SCOPED_TRACE(capability);
            const CapabilityGuard guard(capability);
            zoltest::expectRestatedPictures(zoltest::bilinearMembers(), zoltest::bilinearModule, seed++, 450);
        }
    });
}

TEST(BilinearProperty, ShuttersPlanesAndPaddingGoAboveTheInterpolatedValue) {
    std::uint64_t seed = 20240351;
    zoltest::forEachVariant([&](const std::string&) {
        for (const int capability : {0, 1}) {
            SCOPED_TRACE(capability);
            const CapabilityGuard guard(capability);
            zoltest::expectRestatedRules<CCsBilinear>(
                seed++, 120,
                [](CCsBilinear& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t, IMap* map, unsigned char* padding,
                   unsigned char background) {
                    return b.bilinearGrey12IndexMap(s, d, t, map, false, padding, background);
                },
                zolref::bilinearMapped);
        }
    });
}

}  // namespace
