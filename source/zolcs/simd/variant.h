// Which variant of its innermost operations the library uses: the processor's best, or what a test has chosen.
#pragma once

#include <string>
#include <vector>

namespace zolcs::simd {

/// True when a test wants the plain loops: no table, no block, no vector, pixel by pixel.
bool isPlain();

/// True when the processor's own variants are to be used, where there are some.
bool usesVectors();

/// Names of the variants that run here: "plain" and "portable", then the processor's own.
std::vector<std::string> variants();

/// Makes every later call use a variant; an empty name goes back to the best one. False for an unknown name.
/// For tests: no call may be running.
bool choose(const std::string& variant);

}  // namespace zolcs::simd
