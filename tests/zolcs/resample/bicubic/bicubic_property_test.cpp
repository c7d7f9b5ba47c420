// Every bicubic member against its restatement, with both settings of the processor's capability and every variant of
// the vector code.
#include "support/bicubic_members.h"
#include "support/capability_guard.h"
#include "support/variants.h"

namespace {

using zoltest::CapabilityGuard;

TEST(BicubicProperty, EveryMemberWritesWhatIsRestated) {
    std::uint64_t seed = 20240401;
    zoltest::forEachVariant([&](const std::string&) {
        for (const int capability : {0, 1}) {
            SCOPED_TRACE(capability);
            const CapabilityGuard guard(capability);
            zoltest::expectRestatedPictures(zoltest::bicubicMembers(), zoltest::bicubicModule, seed++, 225);
        }
    });
}

TEST(BicubicProperty, ShuttersPlanesAndPaddingGoAboveTheInterpolatedValue) {
    std::uint64_t seed = 20240451;
    zoltest::forEachVariant([&](const std::string&) {
        zoltest::expectRestatedRules<CCsBicubic>(
            seed++, 150,
            [](CCsBicubic& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t, IMap* map, unsigned char* padding,
               unsigned char background) { return b.bicubicGrey12IndexMap(s, d, t, map, padding, background); },
            zolref::bicubicMapped);
    });
}

}  // namespace
