#include "kernels/relative_difference.h"

#include <cmath>

#include "core/numerics.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/relative_difference.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// Hosts' reference images were made with this constant and not with a half.
constexpr double kRounding = 0.4999;

HWY_INLINE double Difference(const LuxRuns& runs, std::size_t i) {
    const double reference = runs.reference[i] * runs.referenceLux;
    const double test = runs.test[i] * runs.testLux;
    return std::abs(test - reference) / reference;
}

HWY_INLINE std::uint16_t ScaledDifference(const LuxRuns& runs, std::size_t i, double scale) {
    return WrapToPel(TruncToInt32(Difference(runs, i) / scale + kRounding));
}

#if HWY_TARGET != HWY_SCALAR
using F64 = hn::ScalableTag<double>;
using I32 = hn::Rebind<std::int32_t, F64>;
using U16 = hn::Rebind<std::uint16_t, F64>;

struct Fraction {
    hn::Vec<F64> above;
    hn::Vec<F64> below;
};

HWY_INLINE hn::Vec<F64> Lux(const std::uint16_t* pels, double luxPerGrey) {
    const auto grey = hn::PromoteTo(F64(), hn::PromoteTo(I32(), hn::LoadU(U16(), pels)));
    return hn::Mul(grey, hn::Set(F64(), luxPerGrey));
}

HWY_INLINE Fraction DifferencesAt(const LuxRuns& runs, std::size_t i) {
    const auto reference = Lux(runs.reference + i, runs.referenceLux);
    const auto test = Lux(runs.test + i, runs.testLux);
    return {hn::Abs(hn::Sub(test, reference)), reference};
}
#endif

double LargestDifferenceOf(const LuxRuns& runs, double largest) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const F64 d;
    const std::size_t lanes = hn::Lanes(d);
    // Divided only where a product says that the quotient may be larger; the slack is above the rounding
    // errors of both.
    constexpr double kSlack = 1.0 - 1e-12;
    auto bound = hn::Set(d, largest * kSlack);
    for (; i + lanes <= runs.count; i += lanes) {
        const Fraction it = DifferencesAt(runs, i);
        if (hn::AllFalse(d, hn::Gt(it.above, hn::Mul(it.below, bound)))) continue;
        const auto best = hn::Set(d, largest);
        const auto quotients = hn::Div(it.above, it.below);
        largest = hn::GetLane(hn::MaxOfLanes(d, hn::IfThenElse(hn::Gt(quotients, best), quotients, best)));
        bound = hn::Set(d, largest * kSlack);
    }
#endif
    for (; i < runs.count; ++i) {
        const double difference = Difference(runs, i);
        if (difference > largest) largest = difference;
    }
    return largest;
}

void ScaledDifferencesOf(const LuxRuns& runs, double scale, std::uint16_t* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const F64 d;
    const std::size_t lanes = hn::Lanes(d);
    const auto zero = hn::Zero(d);
    const auto guard = hn::Set(d, 1e-7);
    for (; i + lanes <= runs.count; i += lanes) {
        const Fraction it = DifferencesAt(runs, i);
        // One division for two. Its rounding differs by less than 1e-9, so away from an integer it truncates
        // to the same; a level next to an integer, or beyond what a pel holds, takes the plain form.
        auto level = hn::Div(it.above, hn::Mul(it.below, hn::Set(d, scale)));
        level = hn::Add(level, hn::Set(d, kRounding));
        // A reference of 0 has no difference, which is stored as 0. (With an infinite one the scale is
        // infinite, and so the quotient 0 or none.)
        level = hn::IfThenElse(hn::Eq(it.below, zero), zero, level);
        const auto whole = hn::Floor(hn::Add(level, guard));
        const auto clear =
            hn::And(hn::Or(hn::Eq(hn::Floor(hn::Sub(level, guard)), whole), hn::Eq(level, zero)),
                    hn::And(hn::Ge(level, zero), hn::Lt(level, hn::Set(d, 65535.0))));
        if (hn::AllTrue(d, clear)) {
            hn::StoreU(hn::DemoteTo(U16(), hn::DemoteTo(I32(), whole)), U16(), out + i);
            continue;
        }
        for (std::size_t k = i; k < i + lanes; ++k)
            out[k] = ScaledDifference(runs, k, scale);
    }
#endif
    for (; i < runs.count; ++i)
        out[i] = ScaledDifference(runs, i, scale);
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(LargestDifferenceOf);
HWY_EXPORT(ScaledDifferencesOf);

double LargestDifference(const LuxRuns& runs, double largest) {
    return HWY_DYNAMIC_DISPATCH(LargestDifferenceOf)(runs, largest);
}

void ScaledDifferences(const LuxRuns& runs, double scale, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(ScaledDifferencesOf)(runs, scale, out);
}

}  // namespace tq::kernels
#endif
