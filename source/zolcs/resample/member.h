// What all resampling members do around their pixels: checks, preparation, locks, reports.
#pragma once

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimage.h"
#include "zolcs/pixels/imagelock.h"
#include "zolcs/resample/memberreports.h"
#include "zolcs/view/stepping.h"

#include <cstdint>
#include <vector>

class IGreyMap;

namespace zolcs {

/// The fields in which every resampler shows the call that it has prepared, saturated where 32 bits do not hold a
/// value.
struct SteppingFields {
    std::int32_t& stepXu;
    std::int32_t& stepXv;
    std::int32_t& stepYu;
    std::int32_t& stepYv;
    std::int32_t& originU;
    std::int32_t& originV;
    std::int32_t& srcLimitU;
    std::int32_t& srcLimitV;
    std::int32_t& srcPitch;
    std::int32_t& dstWidth;
    std::int32_t& dstHeight;
    std::int32_t& dstPitch;
};

/// Sets the transformation's sizes, fills the fields and gives the stepping that the loops use.
Stepping prepareStepping(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, const SteppingFields& fields);

/// True when source and destination have pixels of these sizes.
bool pixelSizesAre(const CCsImage& src, const CCsImage& dst, int sourceBytes, int destinationBytes);

/// True for the types that the members take which show stored grey values in 32-bit display pixels.
bool areGreyToDisplay(const CCsImage& src, const CCsImage& dst);

/// The table of a call for every stored value: the map's own, zeroes for a map without one. Values with bits beyond the
/// source's take the entry of the bits that count, or the colour of their embedded overlay bits where those are shown.
std::vector<std::uint32_t> greyTable(IGreyMap* map, bool twelveBits, const std::uint32_t* embeddedColours);

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

/// `prepare()` gives the stepping; `draw(call)` fills the destination, or gives false when it was told to stop. 255, or
/// 0 after a report or a stop.
template <typename Prepare, typename Draw>
int runMember(const MemberReports& reports, const MemberChecks& checks, CCsImage& src, CCsImage& dst,
              const Prepare& prepare, const Draw& draw) {
    constexpr int done = 255;
    if (!checks.types) return reports.wrongType();
    if (!checks.tables) return reports.noTable();
    if (checks.stopped) return 0;
    try {
        const Stepping stepping = prepare();
        const ImagePairLock lock(src, dst);
        if (lock.source() == nullptr) return reports.noSource();
        if (lock.destination() == nullptr) return reports.noDestination();
        return draw(MemberCall{stepping, lock, src, dst}) ? done : 0;
    } catch (...) {
        return reports.exception();
    }
}

}  // namespace zolcs
