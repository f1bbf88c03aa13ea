#include "kernels/single_precision_sum.h"

#include <algorithm>
#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/single_precision_sum.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/pair_sums-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR
/// What a run of pels adds, in units of 2^shift, when each is rounded by itself.
struct Steps {
    std::uint32_t sum;
    bool tie;  ///< some pel lies halfway between two units
};

/// `count` is a multiple of the vector length.
HWY_INLINE Steps RoundedSteps(const std::uint16_t* pels, std::size_t count, int shift) {
    const U16 d;
    const U32 d32;
    const std::size_t lanes = hn::Lanes(d);
    const auto fraction = hn::Set(d, static_cast<std::uint16_t>((1 << shift) - 1));
    // Without a fraction nothing lies halfway, and no rest reaches 1.
    const auto half = hn::Set(d, static_cast<std::uint16_t>(shift > 0 ? 1 << (shift - 1) : 1));
    auto sums = hn::Zero(d32);
    auto ties = hn::Zero(d);
    for (std::size_t i = 0; i < count; i += lanes) {
        const auto v = hn::LoadU(d, pels + i);
        const auto rest = hn::And(v, fraction);
        ties = hn::Or(ties, hn::VecFromMask(d, hn::Eq(rest, half)));
        const auto whole = shift < 16 ? hn::ShiftRightSame(v, shift) : hn::Zero(d);
        const auto up = hn::VecFromMask(d, hn::Ne(hn::Max(rest, half), half));
        sums = hn::Add(sums, AddPairs(hn::Sub(whole, up)));
    }
    return {hn::GetLane(hn::SumOfLanes(d32, sums)), !hn::AllTrue(d, hn::Eq(ties, hn::Zero(d)))};
}

/// Pels taken at a time, or one vector if that is longer: long enough to hide the end of a run, short enough
/// that few runs hold a tie.
constexpr std::size_t kRun = 256;
#endif

float SinglePrecisionSum(const std::uint16_t* pels, std::size_t count) {
    float sum = 0.0f;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    // While the sum stays below the next power of two it moves in units of 2^shift, its last place. A pel
    // that is not halfway between two of them then adds the same number of units whatever the sum is, so a
    // run of such pels may be added in any order.
    const std::size_t run = std::max(kRun, hn::Lanes(U16()));
    for (; i + run <= count; i += run) {
        const int shift = sum < 16777216.0f ? 0 : std::ilogb(sum) - 23;
        if (shift > 16) return sum;  // even the largest pel is less than half a unit from here on
        const Steps steps = RoundedSteps(pels + i, run, shift);
        const float unit = static_cast<float>(1 << shift);
        const double reached = static_cast<double>(sum) + static_cast<double>(steps.sum) * unit;
        if (!steps.tie && reached <= 16777216.0 * unit) {
            sum = static_cast<float>(reached);
            continue;
        }
        for (std::size_t j = i; j < i + run; ++j)
            sum += static_cast<float>(pels[j]);
    }
#endif
    for (; i < count; ++i)
        sum += static_cast<float>(pels[i]);
    return sum;
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(SinglePrecisionSum);

float SinglePrecisionSum(const std::uint16_t* pels, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(SinglePrecisionSum)(pels, count);
}

}  // namespace tq::kernels
#endif
