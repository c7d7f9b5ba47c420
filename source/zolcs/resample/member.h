// What all resampling members do around their pixels: checks, preparation, locks, reports.
#pragma once

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimage.h"
#include "zolcs/ccsresults.h"
#include "zolcs/ccssteppingfields.h"
#include "zolcs/pixels/embeddedoverlay.h"
#include "zolcs/pixels/imagelock.h"
#include "zolcs/resample/memberreports.h"
#include "zolcs/view/stepping.h"

#include <cstdint>
#include <vector>

class IGreyMap;

namespace zolcs {

/// Sets the transformation's sizes, fills the fields and gives the stepping that the loops use.
Stepping prepareStepping(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, SteppingFields& fields);

/// The resamplers' friend, through which the members' common code prepares a call.
struct ResamplerAccess {
    template <typename Resampler>
    static Stepping prepare(Resampler& resampler, CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo) {
        return resampler.adaptTransformation_(src, dst, trafo);
    }
};

/// True when source and destination have pixels of these sizes.
bool pixelSizesAre(const CCsImage& src, const CCsImage& dst, int sourceBytes, int destinationBytes);

/// True for the types that the members take which show stored grey values in 32-bit display pixels.
bool areGreyToDisplay(const CCsImage& src, const CCsImage& dst);

/// The table of a call for every stored value: the map's own, zeroes for a map without one. Values with bits beyond the
/// source's take the entry of the bits that count, or the colour of their embedded overlay bits where those are shown.
std::vector<std::uint32_t> greyTable(IGreyMap* map, bool twelveBits, const EmbeddedOverlay& overlay);

/// What must hold before a member begins, in the order in which it is looked at.
struct MemberChecks {
    bool types;
    bool tables = true;
    bool stopped = false;  ///< the call was told to stop before it began: nothing is reported
};

/// A call whose images are locked and whose stepping is prepared.
struct MemberCall {
    const Stepping& stepping;
    const ImagePairLock& lock;
    const CCsImage& src;
    const CCsImage& dst;
};

/// The images and the view that a member was given.
struct MemberArguments {
    CCsImage& src;
    CCsImage& dst;
    CCs2dTrafo& trafo;
};

/// A member's whole call; `draw(call)` fills the destination, or gives false when it was told to stop. CCS_DONE, or
/// CCS_FAILED after a report or a stop.
template <typename Resampler, typename Draw>
int runMember(Resampler& resampler, const MemberReports& reports, const MemberArguments& arguments,
              const MemberChecks& checks, const Draw& draw) {
    const auto& [src, dst, trafo] = arguments;
    if (!checks.types) return reports.wrongType();
    if (!checks.tables) return reports.noTable();
    if (checks.stopped) return CCS_FAILED;
    try {
        const Stepping stepping = ResamplerAccess::prepare(resampler, src, dst, trafo);
        const ImagePairLock lock(src, dst);
        if (lock.source() == nullptr) return reports.noSource();
        if (lock.destination() == nullptr) return reports.noDestination();
        return draw(MemberCall{stepping, lock, src, dst}) ? CCS_DONE : CCS_FAILED;
    } catch (...) {
        return reports.exception();
    }
}

}  // namespace zolcs
