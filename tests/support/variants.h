// Runs a check with the plain loops, the portable operations and everything that the processor has.
#pragma once

#include "zolcs/simd/variant.h"

#include <gtest/gtest.h>

#include <string>

namespace zoltest {

/// Goes back to the best variant at the end of a scope.
class VariantGuard {
public:
    VariantGuard() = default;
    ~VariantGuard() { zolcs::simd::choose(""); }
    VariantGuard(const VariantGuard&) = delete;
    VariantGuard& operator=(const VariantGuard&) = delete;
};

/// Calls check(variant) until one fails fatally.
template <typename Check>
void forEachVariant(const Check& check) {
    const VariantGuard guard;
    for (const std::string& variant : zolcs::simd::variants()) {
        SCOPED_TRACE(variant);
        ASSERT_TRUE(zolcs::simd::choose(variant));
        check(variant);
        if (::testing::Test::HasFatalFailure()) return;
    }
}

}  // namespace zoltest
