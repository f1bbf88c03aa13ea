#include "kernels/adaptive_colour.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/adaptive_colour.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// Square of the distance within which a calibration is the pel's own.
constexpr double kOwn = 1e-12;

template <class D>
struct Scaled {
    hn::Vec<D> a, b, c;
};

template <class D>
HWY_INLINE Scaled<D> ScaledAt(D d, const ChannelRuns& runs, const double* scales, std::size_t i) {
    return {hn::Mul(LoadPels(d, runs.first + i), hn::Set(d, scales[0])),
            hn::Mul(LoadPels(d, runs.second + i), hn::Set(d, scales[1])),
            hn::Mul(LoadPels(d, runs.third + i), hn::Set(d, scales[2]))};
}

/// Calls use(number, squared distance) for each calibration, and returns X + 15 Y + 3 Z.
template <class D, class Use>
HWY_INLINE hn::Vec<D> ForEachDistance(D d, const Scaled<D>& at, const AdaptiveMix& mix, const Use& use) {
    const auto x = Weighted(d, mix.base, at.a, at.b, at.c);
    const auto y = Weighted(d, mix.base + 3, at.a, at.b, at.c);
    const auto z = Weighted(d, mix.base + 6, at.a, at.b, at.c);
    const auto below = hn::Add(hn::Add(x, hn::Mul(hn::Set(d, 15.0), y)), hn::Mul(hn::Set(d, 3.0), z));
    const auto dark = hn::Eq(below, hn::Zero(d));
    const auto u = hn::IfThenZeroElse(dark, hn::Div(hn::Mul(hn::Set(d, 4.0), x), below));
    const auto v = hn::IfThenZeroElse(dark, hn::Div(hn::Mul(hn::Set(d, 9.0), y), below));
    for (std::size_t k = 0; k < mix.count; ++k) {
        const auto du = hn::Sub(u, hn::Set(d, mix.calibrations[k].u));
        const auto dv = hn::Sub(v, hn::Set(d, mix.calibrations[k].v));
        use(k, hn::Add(hn::Mul(du, du), hn::Mul(dv, dv)));
    }
    return below;
}

template <class D>
HWY_INLINE hn::Vec<D> PowerOf(D d, hn::Vec<D> values, const FixedPower& power) {
    HWY_ALIGN double lanes[kMostLanes];
    hn::Store(values, d, lanes);
    for (std::size_t i = 0; i < hn::Lanes(d); ++i)
        lanes[i] = power(lanes[i]);
    return hn::Load(d, lanes);
}

/// The coefficients of a pel's own matrix.
template <class D>
struct Blend {
    hn::Vec<D> m[9];
};

template <class D>
HWY_INLINE Blend<D> BlendAt(D d, const Scaled<D>& at, const AdaptiveMix& mix) {
    HWY_ALIGN double distances[kMostCalibrations][kMostLanes];
    auto nearest = hn::Set(d, std::numeric_limits<double>::infinity());
    ForEachDistance(d, at, mix, [&](std::size_t k, auto distance) {
        hn::Store(distance, d, distances[k]);
        nearest = hn::IfThenElse(hn::Lt(distance, nearest), distance, nearest);
    });
    Blend<D> blend;
    for (auto& m : blend.m)
        m = hn::Zero(d);
    auto total = hn::Zero(d);
    for (std::size_t k = 0; k < mix.count; ++k) {
        // Relative to the nearest, weights are at most 1 whatever the exponent.
        const auto closeness = hn::Div(nearest, hn::Load(d, distances[k]));
        auto weight = hn::IfThenElseZero(hn::Ge(closeness, hn::Zero(d)), closeness);
        if (mix.power != nullptr) weight = PowerOf(d, weight, *mix.power);
        total = hn::Add(total, weight);
        for (std::size_t j = 0; j < 9; ++j)
            blend.m[j] = hn::Add(blend.m[j], hn::Mul(weight, hn::Set(d, mix.calibrations[k].matrix[j])));
    }
    for (auto& m : blend.m)
        m = hn::Div(m, total);
    for (std::size_t k = mix.count; k-- > 0;) {  // the first of the pel's own is set last
        const auto own = hn::Lt(hn::Load(d, distances[k]), hn::Set(d, kOwn));
        if (hn::AllFalse(d, own)) continue;
        for (std::size_t j = 0; j < 9; ++j)
            blend.m[j] = hn::IfThenElse(own, hn::Set(d, mix.calibrations[k].matrix[j]), blend.m[j]);
    }
    return blend;
}

void MixAdaptivelyOf(const ChannelRuns& runs, const AdaptiveMix& mix, double* const* out) {
    ForEachVector(runs.count, [&](auto d, std::size_t i) {
        const auto at = ScaledAt(d, runs, mix.scales, i);
        const auto blend = BlendAt(d, at, mix);
        for (std::size_t k = 0; k < 3; ++k) {
            const auto* const m = blend.m + 3 * k;
            const auto sum = hn::Add(hn::Mul(m[0], at.a), hn::Mul(m[1], at.b));
            hn::StoreU(hn::Add(sum, hn::Mul(m[2], at.c)), d, out[k] + i);
        }
    });
}

void SelectNearestOf(const ChannelRuns& runs, const AdaptiveMix& mix, std::uint16_t* out) {
    ForEachVector(runs.count, [&](auto d, std::size_t i) {
        auto nearest = hn::Set(d, std::numeric_limits<double>::infinity());
        auto number = hn::Set(d, 1.0);
        const auto below =
            ForEachDistance(d, ScaledAt(d, runs, mix.scales, i), mix, [&](std::size_t k, auto distance) {
                const auto nearer = hn::Lt(distance, nearest);
                nearest = hn::IfThenElse(nearer, distance, nearest);
                number = hn::IfThenElse(nearer, hn::Set(d, static_cast<double>(k + 1)), number);
            });
        StorePels(d, hn::IfThenZeroElse(hn::Eq(below, hn::Zero(d)), number), out + i);
    });
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(MixAdaptivelyOf);
HWY_EXPORT(SelectNearestOf);

void MixAdaptively(const ChannelRuns& runs, const AdaptiveMix& mix, double* const* out) {
    HWY_DYNAMIC_DISPATCH(MixAdaptivelyOf)(runs, mix, out);
}

void SelectNearest(const ChannelRuns& runs, const AdaptiveMix& mix, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(SelectNearestOf)(runs, mix, out);
}

}  // namespace tq::kernels
#endif
