// What the tests of both grey value maps share.
#pragma once

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/ccsmemorymanager.h"
#include "zolcs/ccsnearest.h"
#include "zolcs/ccsraster.h"
#include "zolcs/mapping/windowlut.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <bitset>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <thread>
#include <vector>

#include "support/grey_maps.h"
#include "support/test_data.h"

namespace zoltest::greymaps {

using zoltest::everything;
using zoltest::GreyMapKind;
using zoltest::GreyMaps;
using zoltest::Pixels;
using zoltest::present;
using zoltest::ramp;
using zoltest::Report;
using zoltest::ReportCapture;
using zoltest::set;
using zoltest::testRemap;
using zoltest::Values;
using zoltest::windowLevel;

}  // namespace zoltest::greymaps
