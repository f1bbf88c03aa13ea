#include "kernels/channel_mix.h"

#include <algorithm>
#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/channel_mix.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/vectors-inl.h"

#ifndef TQIMAGE_KERNELS_CHANNEL_MIX_ONCE
#define TQIMAGE_KERNELS_CHANNEL_MIX_ONCE
namespace tq::kernels {
namespace {

constexpr double kLargestSum = 1e300;

/// True when no sum of products overflows, and the factor and the divisor keep their order.
bool HasFiniteSums(const ChannelMix& mix) {
    for (std::size_t k = 0; k < 3; ++k) {
        double most = 0.0;
        for (std::size_t j = 0; j < 3; ++j)
            most += std::abs(mix.matrix[3 * k + j]) * (65535.0 * std::abs(mix.scales[j]));
        if (!(most < kLargestSum)) return false;
    }
    return mix.factor > 0.0 && mix.divisor > 0.0 && std::isfinite(mix.factor) && std::isfinite(mix.divisor);
}

/// Doubles hold levels to 1e-11; up to a sum of weights of kMostWeight this is above all rounding errors.
constexpr double kLevelDoubt = 1e-7;
constexpr double kMostWeight = 1000.0;

/// What a level of each channel adds to a level of the results, everything multiplied together.
struct LevelWeights {
    double each[9];
    /// False when a result may be further from the exact one than kLevelDoubt. Within the range of `scale`
    /// nothing overflows, and what underflows does not count.
    bool close = true;

    LevelWeights(const ChannelMix& mix, const double* units) {
        for (std::size_t k = 0; k < 3; ++k) {
            const double scale = mix.factor / (mix.divisor * units[k]);
            double most = 0.0;
            for (std::size_t j = 0; j < 3; ++j) {
                each[3 * k + j] = mix.matrix[3 * k + j] * mix.scales[j] * scale;
                most += std::abs(each[3 * k + j]);
            }
            close = close && std::abs(scale) > 1e-100 && std::abs(scale) < 1e100 && most < kMostWeight;
        }
    }
};

}  // namespace
}  // namespace tq::kernels
#endif

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

/// Any mix, whatever its numbers are.
void RaiseAnyMaxima(const ChannelRuns& runs, const ChannelMix& mix, double* maxima) {
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

/// The largest sums of products, all of them finite, at least -1e300.
template <class D>
HWY_INLINE void LargestSums(D d, const ChannelRuns& runs, const ChannelMix& mix, std::size_t first,
                            std::size_t last, double* largest) {
    const double* const m = mix.matrix;
    const auto m0 = hn::Set(d, m[0]), m1 = hn::Set(d, m[1]), m2 = hn::Set(d, m[2]);
    const auto m3 = hn::Set(d, m[3]), m4 = hn::Set(d, m[4]), m5 = hn::Set(d, m[5]);
    const auto m6 = hn::Set(d, m[6]), m7 = hn::Set(d, m[7]), m8 = hn::Set(d, m[8]);
    const auto s0 = hn::Set(d, mix.scales[0]), s1 = hn::Set(d, mix.scales[1]), s2 = hn::Set(d, mix.scales[2]);
    auto x = hn::Set(d, largest[0]), y = hn::Set(d, largest[1]), z = hn::Set(d, largest[2]);
    for (std::size_t i = first; i < last; i += hn::Lanes(d)) {
        const auto a = hn::Mul(LoadPels(d, runs.first + i), s0);
        const auto b = hn::Mul(LoadPels(d, runs.second + i), s1);
        const auto c = hn::Mul(LoadPels(d, runs.third + i), s2);
        x = hn::Max(x, hn::Add(hn::Add(hn::Mul(m0, a), hn::Mul(m1, b)), hn::Mul(m2, c)));
        y = hn::Max(y, hn::Add(hn::Add(hn::Mul(m3, a), hn::Mul(m4, b)), hn::Mul(m5, c)));
        z = hn::Max(z, hn::Add(hn::Add(hn::Mul(m6, a), hn::Mul(m7, b)), hn::Mul(m8, c)));
    }
    largest[0] = hn::GetLane(hn::MaxOfLanes(d, x));
    largest[1] = hn::GetLane(hn::MaxOfLanes(d, y));
    largest[2] = hn::GetLane(hn::MaxOfLanes(d, z));
}

void RaiseMaximaOf(const ChannelRuns& runs, const ChannelMix& mix, double* maxima) {
    if (runs.count == 0 || !HasFiniteSums(mix)) return RaiseAnyMaxima(runs, mix, maxima);
    // The factor and the divisor are positive and every rounding goes one way, so they can wait for the
    // largest sum.
    double largest[3] = {-kLargestSum, -kLargestSum, -kLargestSum};
    const std::size_t whole = runs.count / hn::Lanes(Wide()) * hn::Lanes(Wide());
    LargestSums(Wide(), runs, mix, 0, whole, largest);
    LargestSums(Single(), runs, mix, whole, runs.count, largest);
    for (std::size_t k = 0; k < 3; ++k)
        maxima[k] = std::max(maxima[k], largest[k] * mix.factor / mix.divisor);
}

/// Stores value / unit + 0.5, truncated and clamped.
template <class D>
HWY_INLINE void StoreLevels(D d, hn::Vec<D> value, double unit, std::uint16_t* out) {
    const auto level = hn::Add(hn::Div(value, hn::Set(d, unit)), hn::Set(d, 0.5));
    // Beyond int32, and without a number, a conversion is the indefinite integer, which is negative.
    const auto fits = hn::And(hn::Ge(value, hn::Zero(d)), hn::Lt(level, hn::Set(d, 2147483648.0)));
    StorePels(d, hn::Min(hn::IfThenElseZero(fits, level), hn::Set(d, 65535.0)), out);
}

/// Levels by one sum of products each, which differs from the exact one by less than kLevelDoubt: away from
/// a half, both are rounded to the same pel. Returns false, with nothing stored, when one of them is not.
template <class D>
HWY_INLINE bool StoreClearLevels(D d, const ChannelRuns& runs, const double* weights, std::size_t i,
                                 std::uint16_t* const* out) {
    const auto a = LoadPels(d, runs.first + i);
    const auto b = LoadPels(d, runs.second + i);
    const auto c = LoadPels(d, runs.third + i);
    const auto zero = hn::Zero(d);
    const auto most = hn::Set(d, 65536.0);
    const auto half = hn::Set(d, 0.5);
    const auto nearest = [&](const double* w) {
        // What is beyond a pel is left to the exact form, too.
        return hn::Min(hn::Max(Weighted(d, w, a, b, c), zero), most);
    };
    const auto x = nearest(weights), y = nearest(weights + 3), z = nearest(weights + 6);
    const auto rx = hn::Floor(hn::Add(x, half)), ry = hn::Floor(hn::Add(y, half)),
               rz = hn::Floor(hn::Add(z, half));
    const auto off =
        hn::Max(hn::Max(hn::Abs(hn::Sub(x, rx)), hn::Abs(hn::Sub(y, ry))), hn::Abs(hn::Sub(z, rz)));
    const auto top = hn::Max(hn::Max(rx, ry), rz);
    if (!hn::AllTrue(d, hn::And(hn::Lt(off, hn::Set(d, 0.5 - kLevelDoubt)), hn::Lt(top, most)))) return false;
    StorePels(d, rx, out[0] + i);
    StorePels(d, ry, out[1] + i);
    StorePels(d, rz, out[2] + i);
    return true;
}

void StoreMixedOf(const ChannelRuns& runs, const ChannelMix& mix, const double* units,
                  std::uint16_t* const* out) {
    // Copies: what is only referred to, a store might change, and it would be read again for every vector.
    const LevelWeights weights(mix, units);
    const ChannelRuns in = runs;
    std::uint16_t* const planes[3] = {out[0], out[1], out[2]};
    ForEachVector(in.count, [&](auto d, std::size_t i) {
        if (weights.close && StoreClearLevels(d, in, weights.each, i, planes)) return;
        MixAt(d, in, mix, i,
              [&](std::size_t k, auto value) { StoreLevels(d, value, units[k], planes[k] + i); });
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
