// Every bicubic member against its restatement, with both settings of the processor's capability.
#include "support/bicubic_members.h"
#include "support/capability_guard.h"

namespace {

using zoltest::CapabilityGuard;

TEST(BicubicProperty, EveryMemberWritesWhatIsRestated) {
    for (const int capability : {0, 1}) {
        SCOPED_TRACE(capability);
        const CapabilityGuard guard(capability);
        zoltest::expectRestatedPictures(zoltest::bicubicMembers(), zoltest::bicubicModule, 20240401, 1500);
    }
}

TEST(BicubicProperty, ShuttersPlanesAndPaddingGoAboveTheInterpolatedValue) {
    zoltest::expectRestatedRules<CCsBicubic>(
        20240402, 700,
        [](CCsBicubic& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t, IMap* map, unsigned char* padding,
           unsigned char background) { return b.bicubicGrey12IndexMap(s, d, t, map, padding, background); },
        zolref::bicubicMapped);
}

}  // namespace
