#include "kernels/channel_mix.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/channel_mix.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// Calls use(k, values) for the three mixed channels of the pels at i.
template <class D, class Use>
HWY_INLINE void MixAt(D d, const ChannelRuns& runs, const ChannelMix& mix, std::size_t i, const Use& use) {
    const auto a = hn::Mul(LoadPels(d, runs.first + i), hn::Set(d, mix.scales[0]));
    const auto b = hn::Mul(LoadPels(d, runs.second + i), hn::Set(d, mix.scales[1]));
    const auto c = hn::Mul(LoadPels(d, runs.third + i), hn::Set(d, mix.scales[2]));
    for (std::size_t k = 0; k < 3; ++k) {
        auto value = hn::Mul(Weighted(d, mix.matrix + 3 * k, a, b, c), hn::Set(d, mix.factor));
        if (mix.divisor != 1.0) value = hn::Div(value, hn::Set(d, mix.divisor));
        use(k, value);
    }
}

void RaiseMaximaOf(const ChannelRuns& runs, const ChannelMix& mix, double* maxima) {
    const Wide wide;
    HWY_ALIGN double lanes[3][kMostLanes];
    for (std::size_t k = 0; k < 3; ++k)
        hn::Store(hn::Set(wide, maxima[k]), wide, lanes[k]);
    ForEachVector(runs.count, [&](auto d, std::size_t i) {
        MixAt(d, runs, mix, i, [&](std::size_t k, auto value) {
            const auto best = hn::Load(d, lanes[k]);
            hn::Store(hn::IfThenElse(hn::Gt(value, best), value, best), d, lanes[k]);
        });
    });
    for (std::size_t k = 0; k < 3; ++k)
        maxima[k] = *std::max_element(lanes[k], lanes[k] + hn::Lanes(wide));
}

/// Stores value / unit + 0.5, truncated and clamped.
template <class D>
HWY_INLINE void StoreLevels(D d, hn::Vec<D> value, double unit, std::uint16_t* out) {
    const auto level = hn::Add(hn::Div(value, hn::Set(d, unit)), hn::Set(d, 0.5));
    // Beyond int32, and without a number, a conversion is the indefinite integer, which is negative.
    const auto fits = hn::And(hn::Ge(value, hn::Zero(d)), hn::Lt(level, hn::Set(d, 2147483648.0)));
    StorePels(d, hn::Min(hn::IfThenElseZero(fits, level), hn::Set(d, 65535.0)), out);
}

void StoreMixedOf(const ChannelRuns& runs, const ChannelMix& mix, const double* units,
                  std::uint16_t* const* out) {
    ForEachVector(runs.count, [&](auto d, std::size_t i) {
        MixAt(d, runs, mix, i,
              [&](std::size_t k, auto value) { StoreLevels(d, value, units[k], out[k] + i); });
    });
}

double LargestValueOf(const double* values, std::size_t count, double largest) {
    HWY_ALIGN double lanes[kMostLanes];
    hn::Store(hn::Set(Wide(), largest), Wide(), lanes);
    ForEachVector(count, [&](auto d, std::size_t i) {
        const auto value = hn::LoadU(d, values + i);
        const auto best = hn::Load(d, lanes);
        hn::Store(hn::IfThenElse(hn::Gt(value, best), value, best), d, lanes);
    });
    return *std::max_element(lanes, lanes + hn::Lanes(Wide()));
}

void StoreInUnitsOf(const double* values, std::size_t count, double unit, std::uint16_t* out) {
    ForEachVector(count,
                  [&](auto d, std::size_t i) { StoreLevels(d, hn::LoadU(d, values + i), unit, out + i); });
}

void AddChannelsAboveOf(const ChannelRuns& runs, const double* weights, double bound, ChannelSums* sums) {
    const Wide wide;
    HWY_ALIGN double lanes[4][kMostLanes] = {};
    ForEachVector(runs.count, [&](auto d, std::size_t i) {
        const auto a = LoadPels(d, runs.first + i);
        const auto b = LoadPels(d, runs.second + i);
        const auto c = LoadPels(d, runs.third + i);
        const auto counted = hn::Gt(Weighted(d, weights, a, b, c), hn::Set(d, bound));
        const auto add = [&](double* total, auto values) {
            hn::Store(hn::Add(hn::Load(d, total), hn::IfThenElseZero(counted, values)), d, total);
        };
        add(lanes[0], a);
        add(lanes[1], b);
        add(lanes[2], c);
        add(lanes[3], hn::Set(d, 1.0));
    });
    for (std::size_t i = 0; i < hn::Lanes(wide); ++i) {
        sums->first += lanes[0][i];
        sums->second += lanes[1][i];
        sums->third += lanes[2][i];
        sums->count += lanes[3][i];
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(RaiseMaximaOf);
HWY_EXPORT(StoreMixedOf);
HWY_EXPORT(LargestValueOf);
HWY_EXPORT(StoreInUnitsOf);
HWY_EXPORT(AddChannelsAboveOf);

void RaiseMaxima(const ChannelRuns& runs, const ChannelMix& mix, double* maxima) {
    HWY_DYNAMIC_DISPATCH(RaiseMaximaOf)(runs, mix, maxima);
}

void StoreMixed(const ChannelRuns& runs, const ChannelMix& mix, const double* units,
                std::uint16_t* const* out) {
    HWY_DYNAMIC_DISPATCH(StoreMixedOf)(runs, mix, units, out);
}

double LargestValue(const double* values, std::size_t count, double largest) {
    return HWY_DYNAMIC_DISPATCH(LargestValueOf)(values, count, largest);
}

void StoreInUnits(const double* values, std::size_t count, double unit, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(StoreInUnitsOf)(values, count, unit, out);
}

void AddChannelsAbove(const ChannelRuns& runs, const double* weights, double bound, ChannelSums* sums) {
    HWY_DYNAMIC_DISPATCH(AddChannelsAboveOf)(runs, weights, bound, sums);
}

}  // namespace tq::kernels
#endif
