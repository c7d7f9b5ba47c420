// Every bilinear member against its restatement, with both settings of the processor's capability.
#include "support/bilinear_members.h"
#include "support/capability_guard.h"

namespace {

using zoltest::CapabilityGuard;

TEST(BilinearProperty, EveryMemberWritesWhatIsRestated) {
    for (const int capability : {0, 1}) {
        SCOPED_TRACE(capability);
        const CapabilityGuard guard(capability);
        zoltest::expectRestatedPictures(zoltest::bilinearMembers(), zoltest::bilinearModule, 20240301, 3000);
    }
}

TEST(BilinearProperty, ShuttersPlanesAndPaddingGoAboveTheInterpolatedValue) {
    for (const int capability : {0, 1}) {
        SCOPED_TRACE(capability);
        const CapabilityGuard guard(capability);
        zoltest::expectRestatedRules<CCsBilinear>(
            20240302, 700,
            [](CCsBilinear& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t, IMap* map, unsigned char* padding,
               unsigned char background) { return b.bilinearGrey12IndexMap(s, d, t, map, false, padding, background); },
            zolref::bilinearMapped);
    }
}

}  // namespace
