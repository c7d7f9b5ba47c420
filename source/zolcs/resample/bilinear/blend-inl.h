// blend() of vectors, compiled once for every target that the including file is compiled for.
#if defined(ZOLCS_BLEND_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ZOLCS_BLEND_INL_H
#undef ZOLCS_BLEND_INL_H
#else
#define ZOLCS_BLEND_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace zolcs::HWY_NAMESPACE {

/// blend() of each lane, of 32 bits.
template <typename V>
HWY_INLINE V blend(V a, V b, V fraction) {
    namespace hn = hwy::HWY_NAMESPACE;
    const hn::DFromV<V> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    const auto product = hn::Mul(hn::BitCast(du, hn::Sub(b, a)), hn::BitCast(du, fraction));
    return hn::Add(a, hn::ShiftRight<16>(hn::BitCast(d, product)));
}

}  // namespace zolcs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
