#include "kernels/signed_factors.h"

#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/signed_factors.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

#include "kernels/pel_loops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

void ScaleBySigned(const Pel* pels, const Pel* stored, double unit, std::size_t count, Pel* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<double> d;
    const hn::Rebind<std::int32_t, decltype(d)> d32;
    const hn::Rebind<std::int16_t, decltype(d)> signed16;
    const hn::Rebind<Pel, decltype(d)> d16;
    const auto none = hn::Set(d, -1.0);
    const auto one = hn::Set(d, 1.0);
    const auto half = hn::Set(d, 0.5);
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        const auto bits = hn::BitCast(signed16, hn::LoadU(d16, stored + i));
        const auto number = hn::PromoteTo(d, hn::PromoteTo(d32, bits));
        const auto factor = hn::IfThenElse(hn::Eq(number, none), one, hn::Mul(number, hn::Set(d, unit)));
        const auto value = hn::Add(hn::Mul(LoadNumbers(d, pels + i), factor), half);
        const auto light = hn::IfThenElseZero(hn::Gt(value, hn::Zero(d)), value);
        hn::StoreU(ToPels<Excess::kCeiling>(d, light), d16, out + i);
    }
#endif
    for (; i < count; ++i) {
        const double factor = stored[i] == kNoFactor ? 1.0 : static_cast<std::int16_t>(stored[i]) * unit;
        out[i] = ScaledPel(pels[i], factor);
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(ScaleBySigned);

void ScaleBySigned(const Pel* pels, const Pel* stored, double unit, std::size_t count, Pel* out) {
    HWY_DYNAMIC_DISPATCH(ScaleBySigned)(pels, stored, unit, count, out);
}

}  // namespace tq::kernels
#endif
