// The mirror operation, apart because it reports under a module path of its own.
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/support/report.h"

namespace {

constexpr zolcs::ReportSite badDirection{L"Mirroring must be CCS_HORIZONTAL or CCS_VERTICAL, is",
                                         L"source\\zolcs\\ccs2dtrafo_safety", 109};

}  // namespace

int CCs2dTrafo::mirror(int direction) {
    if (direction != CCS_HORIZONTAL && direction != CCS_VERTICAL)
        return zolcs::fail(badDirection, direction, CCS_INVALID);
    for (int i = direction == CCS_HORIZONTAL ? 0 : 1; i < 6; i += 2) userMatrix[i] = -userMatrix[i];
    isValid = 0;
    return CCS_DONE;
}
