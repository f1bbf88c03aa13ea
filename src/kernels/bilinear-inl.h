// Sampling between pels for vectors, compiled once for each instruction set like the kernels that include it.

#if defined(TQIMAGE_KERNELS_BILINEAR_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TQIMAGE_KERNELS_BILINEAR_INL_H
#undef TQIMAGE_KERNELS_BILINEAR_INL_H
#else
#define TQIMAGE_KERNELS_BILINEAR_INL_H
#endif

#include <hwy/highway.h>

#include <cstdint>

#include "kernels/bilinear.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The plain form of what Blend does between two pairs.
HWY_INLINE double BlendPairs(PelPair near, PelPair far, double fx, double fy) {
    const Pel above[] = {static_cast<Pel>(near & 0xFFFF), static_cast<Pel>(near >> 16)};
    const Pel below[] = {static_cast<Pel>(far & 0xFFFF), static_cast<Pel>(far >> 16)};
    return Blend(above, below, 1, fx, fy);
}

#if HWY_TARGET != HWY_SCALAR
using Numbers = hn::ScalableTag<double>;

template <class V>
HWY_INLINE hn::Vec<Numbers> LeftPels(V pairs) {
    const hn::RebindToSigned<hn::DFromV<V>> d32;
    return hn::PromoteTo(Numbers(), hn::BitCast(d32, hn::And(pairs, hn::Set(hn::DFromV<V>(), 0xFFFF))));
}

template <class V>
HWY_INLINE hn::Vec<Numbers> RightPels(V pairs) {
    const hn::RebindToSigned<hn::DFromV<V>> d32;
    return hn::PromoteTo(Numbers(), hn::BitCast(d32, hn::ShiftRight<16>(pairs)));
}

/// Blend, product by product, for as many places as a vector of doubles has lanes.
template <class V>
HWY_INLINE hn::Vec<Numbers> BlendPairs(V near, V far, hn::Vec<Numbers> fx, hn::Vec<Numbers> fy) {
    const auto one = hn::Set(Numbers(), 1.0);
    const auto leftward = hn::Sub(one, fx);
    const auto upward = hn::Sub(one, fy);
    auto value = hn::Add(hn::Mul(hn::Mul(upward, fx), RightPels(near)),
                         hn::Mul(hn::Mul(upward, leftward), LeftPels(near)));
    value = hn::Add(value, hn::Mul(hn::Mul(fx, fy), RightPels(far)));
    return hn::Add(value, hn::Mul(hn::Mul(fy, leftward), LeftPels(far)));
}

/// The low 16 bits of truncated values that fit into 32 bits.
HWY_INLINE auto WrapToPels(hn::Vec<Numbers> values) {
    const hn::Rebind<std::int32_t, Numbers> d32;
    const auto whole = hn::DemoteTo(d32, values);
    return hn::DemoteTo(hn::Rebind<Pel, Numbers>(), hn::And(whole, hn::Set(d32, 0xFFFF)));
}
#endif

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
