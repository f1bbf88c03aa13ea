// Sums of pels in lanes that widen from pair to pair, compiled once for each instruction set like the kernels
// that include them.

#if defined(TQIMAGE_KERNELS_PAIR_SUMS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TQIMAGE_KERNELS_PAIR_SUMS_INL_H
#undef TQIMAGE_KERNELS_PAIR_SUMS_INL_H
#else
#define TQIMAGE_KERNELS_PAIR_SUMS_INL_H
#endif

#include <hwy/highway.h>

#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

// The loops that finish each run are the plain form of the statistic. The scalar target, for processors below
// SSSE3, runs on them alone.
#if HWY_TARGET != HWY_SCALAR
namespace hn = hwy::HWY_NAMESPACE;

using U16 = hn::ScalableTag<std::uint16_t>;
using U32 = hn::Repartition<std::uint32_t, U16>;
using U64 = hn::Repartition<std::uint64_t, U16>;

/// The two pels of each 32-bit lane, added.
HWY_INLINE hn::Vec<U32> AddPairs(hn::Vec<U16> pels) {
    const U32 d;
    const auto pairs = hn::BitCast(d, pels);
    return hn::Add(hn::And(pairs, hn::Set(d, 0xFFFF)), hn::ShiftRight<16>(pairs));
}

/// The two 32-bit values of each 64-bit lane, added.
HWY_INLINE hn::Vec<U64> WidenPairs(hn::Vec<U32> values) {
    const U64 d;
    const auto pairs = hn::BitCast(d, values);
    return hn::Add(hn::And(pairs, hn::Set(d, 0xFFFFFFFF)), hn::ShiftRight<32>(pairs));
}

HWY_INLINE std::uint64_t Total(hn::Vec<U64> sums) {
    const U64 d;
    return hn::GetLane(hn::SumOfLanes(d, sums));
}
#endif

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
