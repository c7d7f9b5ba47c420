#include "zolcs/simd/variant.h"

#include "platform/vectorchoice.h"

namespace zolcs::simd {

namespace {

constinit zolplatform::VectorChoice choice;

}  // namespace

bool isPlain() { return choice.wantsPlainLoops(); }

bool usesVectors() { return choice.wantsVectors(); }

std::vector<std::string> variants() { return zolplatform::VectorChoice::names(); }

bool choose(const std::string& variant) { return choice.choose(variant); }

}  // namespace zolcs::simd
