// What the tests of the image utilities share.
#pragma once

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/ccsraster.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "support/test_data.h"

namespace zoltest::imageutils {

using namespace CCsImageUtils;

inline constexpr int most = std::numeric_limits<int>::max();
inline constexpr int least = std::numeric_limits<int>::min();

inline RECT rect(int left, int top, int right, int bottom) { return {left, top, right, bottom}; }

inline std::array<int, 4> edges(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }

inline std::array<int, 2> at(const CCsPoint& p) { return {p.x, p.y}; }

/// A transformation from a 100 x 100 image to a destination, so that its matrix is easily known.
inline CCs2dTrafo fit(int width, int height) {
    CCs2dTrafo trafo;
    trafo.setSizes(100, 100, width, height, 1.0, 1.0, 0, 0);
    return trafo;
}

}  // namespace zoltest::imageutils
