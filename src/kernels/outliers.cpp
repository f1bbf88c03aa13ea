#include "kernels/outliers.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/outliers.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

#include "kernels/pel_loops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR
/// Both sides of a comparison pel <> factor * (sum / count), multiplied by the count to spare the division.
template <class V>
struct Sides {
    V pel;
    V limit;
};

/// False where rounding could let the comparison come out otherwise than with the division: the two differ by
/// a few 2^-53 of the limit. A limit of 0 has no such doubt, and what is not a number compares false anyway.
template <class D, class V>
HWY_INLINE auto Doubtful(D d, Sides<V> sides) {
    return hn::Lt(hn::Abs(hn::Sub(sides.limit, sides.pel)), hn::Mul(hn::Abs(sides.limit), hn::Set(d, 1e-14)));
}
#endif

OutlierCounts KeepOutliers(const Pel* pels, const double* sums, const double* counts, std::size_t count,
                           const OutlierTest& test, Pel* out) {
    OutlierCounts found;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<double> d;
    using V = hn::Vec<decltype(d)>;
    const std::size_t lanes = hn::Lanes(d);
    const auto brightFactor = hn::Set(d, test.brightFactor);
    const auto darkFactor = hn::Set(d, test.darkFactor);
    for (; i + lanes <= count; i += lanes) {
        const auto pel = LoadNumbers(d, pels + i);
        const auto sum = hn::LoadU(d, sums + i);
        const auto pelsSummed = hn::LoadU(d, counts + i);
        Sides<V> bright{hn::Mul(pel, pelsSummed), hn::Mul(brightFactor, sum)};
        Sides<V> dark{bright.pel, hn::Mul(darkFactor, sum)};
        if (!hn::AllFalse(d, hn::Or(Doubtful(d, bright), Doubtful(d, dark)))) {
            const auto mean = hn::Div(sum, pelsSummed);
            bright = {pel, hn::Mul(brightFactor, mean)};
            dark = {pel, hn::Mul(darkFactor, mean)};
        }
        const auto tested =
            hn::And(hn::Ge(pel, hn::Set(d, test.leastPel)), hn::Ge(pelsSummed, hn::Set(d, test.leastCount)));
        const auto isBright = hn::And(tested, hn::Gt(bright.pel, bright.limit));
        const auto isDark = hn::AndNot(isBright, hn::And(tested, hn::Lt(dark.pel, dark.limit)));
        found.bright += hn::CountTrue(d, isBright);
        found.dark += hn::CountTrue(d, isDark);
        const auto kept = hn::IfThenElseZero(hn::Or(isBright, isDark), pel);
        hn::StoreU(ToPels<Excess::kClamp>(d, kept), hn::Rebind<Pel, decltype(d)>(), out + i);
    }
#endif
    for (; i < count; ++i) {
        const double pel = pels[i];
        const double mean = sums[i] / counts[i];
        const bool tested = pel >= test.leastPel && counts[i] >= test.leastCount;
        const bool isBright = tested && pel > test.brightFactor * mean;
        const bool isDark = tested && !isBright && pel < test.darkFactor * mean;
        found.bright += isBright ? 1 : 0;
        found.dark += isDark ? 1 : 0;
        out[i] = isBright || isDark ? pels[i] : Pel{0};
    }
    return found;
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(KeepOutliers);

OutlierCounts KeepOutliers(const Pel* pels, const double* sums, const double* counts, std::size_t count,
                           const OutlierTest& test, Pel* out) {
    return HWY_DYNAMIC_DISPATCH(KeepOutliers)(pels, sums, counts, count, test, out);
}

}  // namespace tq::kernels
#endif
