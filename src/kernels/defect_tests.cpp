#include "kernels/defect_tests.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/defect_tests.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

// As everywhere in the kernels, the loop that finishes a run is the plain form and serves the scalar target.

#if HWY_TARGET != HWY_SCALAR
namespace hn = hwy::HWY_NAMESPACE;

using U16 = hn::ScalableTag<std::uint16_t>;
using Counter = hn::Vec<U16>;

/// counter[i] + 1 where the pel is at most the bound.
HWY_INLINE Counter CountAtMost(Counter counter, Counter pels, Counter bound) {
    return hn::Sub(counter, hn::VecFromMask(U16(), hn::Eq(hn::Max(pels, bound), bound)));
}

struct Counters {
    Counter bright;  ///< pels at most the bright bound, zeros included
    Counter dark;
    Counter zeros;
};

template <bool kLit>
HWY_INLINE Counters CountWindow(const WindowRow& windows, std::size_t at, Counter bright, Counter dark) {
    const U16 d;
    const auto zero = hn::Zero(d);
    Counters counters{zero, zero, zero};
    for (std::size_t y = 0; y < windows.side; ++y) {
        const std::uint16_t* const row = windows.first + y * windows.stride + at;
        for (std::size_t x = 0; x < windows.side; ++x) {
            const auto pels = hn::LoadU(d, row + x);
            counters.bright = CountAtMost(counters.bright, pels, bright);
            counters.dark = CountAtMost(counters.dark, pels, dark);
            if constexpr (!kLit) {
                counters.zeros = hn::Sub(counters.zeros, hn::VecFromMask(d, hn::Eq(pels, zero)));
            }
        }
    }
    return counters;
}

template <bool kLit>
HWY_INLINE std::size_t FlagVectors(const std::uint16_t* pels, const WindowRow& windows, std::size_t count,
                                   const MedianBounds& bounds, std::uint16_t* out, DefectCounts& found) {
    const U16 d;
    const std::size_t lanes = hn::Lanes(d);
    const auto zero = hn::Zero(d);
    const auto area = hn::Set(d, static_cast<std::uint16_t>(windows.side * windows.side));
    const auto emptyIsBright = hn::Set(d, bounds.emptyIsBright ? 1 : 0);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto tested = hn::LoadU(d, pels + i);
        if (hn::AllTrue(d, hn::Eq(tested, zero))) {
            hn::StoreU(zero, d, out + i);
            continue;
        }
        const Counters counters =
            CountWindow<kLit>(windows, i, hn::LoadU(d, bounds.bright + i), hn::LoadU(d, bounds.dark + i));
        const auto lit = hn::Sub(area, counters.zeros);
        // The element at lit / 2 is at most the bound when more than lit / 2 elements are.
        const auto middle = hn::ShiftRight<1>(lit);
        auto bright = hn::Gt(hn::Sub(counters.bright, counters.zeros), middle);
        auto notDark = hn::Gt(hn::Sub(counters.dark, counters.zeros), middle);
        if constexpr (!kLit) {
            const auto empty = hn::Eq(lit, zero);
            bright = hn::Or(bright, hn::And(empty, hn::Ne(emptyIsBright, zero)));
            notDark = hn::Or(notDark, empty);
        }
        const auto isTested = hn::Ne(tested, zero);
        bright = hn::And(bright, isTested);
        const auto dark = hn::AndNot(hn::Or(bright, notDark), isTested);
        found.bright += hn::CountTrue(d, bright);
        found.dark += hn::CountTrue(d, dark);
        hn::StoreU(hn::IfThenElseZero(hn::Or(bright, dark), tested), d, out + i);
    }
    return i;
}
#endif

DefectCounts FlagByMedian(const std::uint16_t* pels, const WindowRow& windows, std::size_t count,
                          const MedianBounds& bounds, std::uint16_t* out) {
    DefectCounts found;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    i = windows.lit ? FlagVectors<true>(pels, windows, count, bounds, out, found)
                    : FlagVectors<false>(pels, windows, count, bounds, out, found);
#endif
    for (; i < count; ++i) {
        out[i] = 0;
        if (pels[i] == 0) continue;
        std::size_t lit = 0, brightSide = 0, darkSide = 0;
        for (std::size_t y = 0; y < windows.side; ++y) {
            const std::uint16_t* const row = windows.first + y * windows.stride + i;
            for (std::size_t x = 0; x < windows.side; ++x) {
                if (row[x] == 0) continue;
                ++lit;
                brightSide += row[x] <= bounds.bright[i] ? 1 : 0;
                darkSide += row[x] <= bounds.dark[i] ? 1 : 0;
            }
        }
        const bool bright = lit == 0 ? bounds.emptyIsBright : brightSide > lit / 2;
        const bool dark = !bright && lit != 0 && darkSide <= lit / 2;
        found.bright += bright ? 1 : 0;
        found.dark += dark ? 1 : 0;
        if (bright || dark) out[i] = pels[i];
    }
    return found;
}

DefectCounts FlagByMean(const std::uint16_t* pels, const double* sums, const double* counts,
                        std::size_t count, const DefectFactors& factors, std::uint16_t* out) {
    DefectCounts found;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<double> d;
    const hn::Rebind<float, decltype(d)> f32;
    const hn::Rebind<std::int32_t, decltype(d)> i32;
    const hn::Rebind<std::uint16_t, decltype(d)> u16;
    const std::size_t lanes = hn::Lanes(d);
    const auto zero = hn::Zero(d);
    const auto one = hn::Set(d, 1.0);
    const auto brightFactor = hn::Set(d, factors.bright);
    const auto darkFactor = hn::Set(d, factors.dark);
    for (; i + lanes <= count; i += lanes) {
        // Without a pel the sum is 0, and 0 / 1 is the reference of such a window.
        const auto sum = hn::DemoteTo(f32, hn::LoadU(d, sums + i));
        const auto number = hn::DemoteTo(f32, hn::Max(hn::LoadU(d, counts + i), one));
        const auto reference = hn::PromoteTo(d, hn::Div(sum, number));
        const auto pel = hn::PromoteTo(d, hn::PromoteTo(i32, hn::LoadU(u16, pels + i)));
        const auto tested = hn::Gt(pel, zero);
        const auto bright = hn::And(tested, hn::Gt(pel, hn::Mul(brightFactor, reference)));
        const auto below = hn::And(tested, hn::Lt(pel, hn::Mul(darkFactor, reference)));
        const auto dark = hn::AndNot(bright, below);
        found.bright += hn::CountTrue(d, bright);
        found.dark += hn::CountTrue(d, dark);
        const auto flagged = hn::IfThenElseZero(hn::Or(bright, dark), pel);
        hn::StoreU(hn::DemoteTo(u16, hn::DemoteTo(i32, flagged)), u16, out + i);
    }
#endif
    for (; i < count; ++i) {
        out[i] = 0;
        if (pels[i] == 0) continue;
        const double reference = static_cast<float>(sums[i]) / static_cast<float>(std::max(counts[i], 1.0));
        const bool bright = pels[i] > factors.bright * reference;
        const bool dark = !bright && pels[i] < factors.dark * reference;
        found.bright += bright ? 1 : 0;
        found.dark += dark ? 1 : 0;
        if (bright || dark) out[i] = pels[i];
    }
    return found;
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(FlagByMean);
HWY_EXPORT(FlagByMedian);

DefectCounts FlagByMean(const std::uint16_t* pels, const double* sums, const double* counts,
                        std::size_t count, const DefectFactors& factors, std::uint16_t* out) {
    return HWY_DYNAMIC_DISPATCH(FlagByMean)(pels, sums, counts, count, factors, out);
}

DefectCounts FlagByMedian(const std::uint16_t* pels, const WindowRow& windows, std::size_t count,
                          const MedianBounds& bounds, std::uint16_t* out) {
    return HWY_DYNAMIC_DISPATCH(FlagByMedian)(pels, windows, count, bounds, out);
}

}  // namespace tq::kernels
#endif
