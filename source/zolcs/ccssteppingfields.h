// The fields that the three resampling classes have in common.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zolcs {

/// The call that a resampler has prepared last, in 16.16 fixed point where positions are meant, saturated where 32 bits
/// do not hold a value. Every call fills them anew, and no operation of the library reads them afterwards: they are
/// observable to no one but a debugger.
struct SteppingFields {
    explicit SteppingFields(std::int32_t value = 0)
        : stepXu(value),
          stepXv(value),
          stepYu(value),
          stepYv(value),
          originU(value),
          originV(value),
          srcLimitU(value),
          srcLimitV(value),
          srcPitch(value),
          dstWidth(value),
          dstHeight(value),
          dstPitch(value) {}

    // Changes of the source column u and row v per destination column (X) and row (Y), and their values at the
    // destination's origin.
    std::int32_t stepXu;
    std::int32_t stepXv;
    std::int32_t stepYu;
    std::int32_t stepYv;
    std::int32_t originU;
    std::int32_t originV;
    std::int32_t srcLimitU;  ///< width and height of the source
    std::int32_t srcLimitV;
    std::int32_t srcPitch;  ///< in pixels
    std::int32_t dstWidth;
    std::int32_t dstHeight;
    std::int32_t dstPitch;  ///< in pixels
};
static_assert(sizeof(SteppingFields) == 48 && offsetof(SteppingFields, originU) == 16 &&
                  offsetof(SteppingFields, srcPitch) == 32 && offsetof(SteppingFields, dstPitch) == 44,
              "the resamplers' layout is part of their interface");

}  // namespace zolcs
