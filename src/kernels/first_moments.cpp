#include "kernels/first_moments.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/first_moments.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// As everywhere in the kernels, the loop that finishes a run is the plain form and serves the scalar target.

#if HWY_TARGET != HWY_SCALAR
using U16 = hn::ScalableTag<std::uint16_t>;
using U32 = hn::Repartition<std::uint32_t, U16>;

/// Sums of one half of the 16-bit lanes over n vectors, without a multiplication: `sums` ends as the sum of
/// w_k and `running`, to which every state of it is added, as the sum of (n - k) * w_k.
struct LaneSums {
    hn::Vec<U32> sums;
    hn::Vec<U32> running;

    HWY_INLINE LaneSums() : sums(hn::Zero(U32())), running(hn::Zero(U32())) {}

    HWY_INLINE void Add(hn::Vec<U32> weights) {
        sums = hn::Add(sums, weights);
        running = hn::Add(running, sums);
    }

    /// Lane j stands for the entries start + offset + 2j + k * N.
    HWY_INLINE void AddTo(FirstMoments& total, std::size_t start, std::size_t offset, std::size_t n) const {
        HWY_ALIGN std::uint32_t sum[hn::MaxLanes(U32())];
        HWY_ALIGN std::uint32_t run[hn::MaxLanes(U32())];
        hn::Store(sums, U32(), sum);
        hn::Store(running, U32(), run);
        for (std::size_t j = 0; j < hn::Lanes(U32()); ++j) {
            const std::uint64_t w = sum[j];
            total.weight += w;
            total.moment += (start + offset + 2 * j) * w + hn::Lanes(U16()) * (n * w - run[j]);
        }
    }
};

/// Vectors after which the 32-bit lanes are emptied: 65535 * 256 * 257 / 2 < 2^32.
constexpr std::size_t kVectorsPerFlush = 256;
#endif

template <bool kCount>
HWY_INLINE FirstMoments MomentsAtLeast(const std::uint16_t* pels, std::size_t count, std::uint16_t atLeast) {
    FirstMoments total;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U16 d;
    const std::size_t lanes = hn::Lanes(d);
    const auto bound = hn::Set(d, atLeast);
    while (i + lanes <= count) {
        const std::size_t vectors = std::min((count - i) / lanes, kVectorsPerFlush);
        LaneSums even, odd;
        for (std::size_t k = 0; k < vectors; ++k) {
            const auto v = hn::LoadU(d, pels + i + k * lanes);
            const auto weights = hn::BitCast(
                U32(),
                hn::IfThenElseZero(hn::Eq(hn::Max(v, bound), v), kCount ? hn::Set(d, std::uint16_t{1}) : v));
            even.Add(hn::And(weights, hn::Set(U32(), 0xFFFF)));
            odd.Add(hn::ShiftRight<16>(weights));
        }
        even.AddTo(total, i, 0, vectors);
        odd.AddTo(total, i, 1, vectors);
        i += vectors * lanes;
    }
#endif
    for (; i < count; ++i) {
        if (pels[i] < atLeast) continue;
        const std::uint64_t weight = kCount ? 1 : pels[i];
        total.weight += weight;
        total.moment += i * weight;
    }
    return total;
}

FirstMoments GreyMomentsOfPels(const std::uint16_t* pels, std::size_t count, std::uint16_t atLeast) {
    return MomentsAtLeast<false>(pels, count, atLeast);
}

FirstMoments CountMomentsOfPels(const std::uint16_t* pels, std::size_t count, std::uint16_t atLeast) {
    return MomentsAtLeast<true>(pels, count, atLeast);
}

FirstMoments CountMomentsOfValues(const double* values, std::size_t count, double above) {
    FirstMoments total;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<double> d;
    const std::size_t lanes = hn::Lanes(d);
    const auto bound = hn::Set(d, above);
    // Counts and positions are integers, which doubles add exactly in any order.
    auto weights = hn::Zero(d);
    auto moments = hn::Zero(d);
    auto position = hn::Iota(d, 0);
    for (; i + lanes <= count; i += lanes) {
        const auto counts = hn::Gt(hn::LoadU(d, values + i), bound);
        weights = hn::Add(weights, hn::IfThenElseZero(counts, hn::Set(d, 1.0)));
        moments = hn::Add(moments, hn::IfThenElseZero(counts, position));
        position = hn::Add(position, hn::Set(d, static_cast<double>(lanes)));
    }
    HWY_ALIGN double lane[hn::MaxLanes(d)];
    hn::Store(weights, d, lane);
    for (std::size_t j = 0; j < lanes; ++j)
        total.weight += static_cast<std::uint64_t>(lane[j]);
    hn::Store(moments, d, lane);
    for (std::size_t j = 0; j < lanes; ++j)
        total.moment += static_cast<std::uint64_t>(lane[j]);
#endif
    for (; i < count; ++i) {
        if (!(values[i] > above)) continue;
        total.weight += 1;
        total.moment += i;
    }
    return total;
}

constexpr std::size_t kRunningSums = 8;

HWY_INLINE double SumInPairs(const double* sums) {
    return ((sums[0] + sums[1]) + (sums[2] + sums[3])) + ((sums[4] + sums[5]) + (sums[6] + sums[7]));
}

ValueMoments MomentsOfValues(const double* values, std::size_t count, double atLeast) {
    double weights[kRunningSums] = {};
    double moments[kRunningSums] = {};
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::CappedTag<double, kRunningSums> d;
    const std::size_t lanes = hn::Lanes(d);
    const auto bound = hn::Set(d, atLeast);
    for (; i + kRunningSums <= count; i += kRunningSums) {
        for (std::size_t j = 0; j < kRunningSums; j += lanes) {
            const auto v = hn::LoadU(d, values + i + j);
            const auto weight = hn::IfThenElseZero(hn::Ge(v, bound), v);
            const auto position = hn::Iota(d, static_cast<double>(i + j));
            hn::StoreU(hn::Add(hn::LoadU(d, weights + j), weight), d, weights + j);
            hn::StoreU(hn::Add(hn::LoadU(d, moments + j), hn::Mul(position, weight)), d, moments + j);
        }
    }
#endif
    for (; i < count; ++i) {
        if (!(values[i] >= atLeast)) continue;
        weights[i % kRunningSums] += values[i];
        moments[i % kRunningSums] += static_cast<double>(i) * values[i];
    }
    return {SumInPairs(weights), SumInPairs(moments)};
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(GreyMomentsOfPels);
HWY_EXPORT(CountMomentsOfPels);
HWY_EXPORT(CountMomentsOfValues);
HWY_EXPORT(MomentsOfValues);

FirstMoments GreyMoments(const std::uint16_t* pels, std::size_t count, std::uint16_t atLeast) {
    return HWY_DYNAMIC_DISPATCH(GreyMomentsOfPels)(pels, count, atLeast);
}

FirstMoments CountMoments(const std::uint16_t* pels, std::size_t count, std::uint16_t atLeast) {
    return HWY_DYNAMIC_DISPATCH(CountMomentsOfPels)(pels, count, atLeast);
}

FirstMoments CountMoments(const double* values, std::size_t count, double above) {
    return HWY_DYNAMIC_DISPATCH(CountMomentsOfValues)(values, count, above);
}

ValueMoments ValueMomentsOf(const double* values, std::size_t count, double atLeast) {
    return HWY_DYNAMIC_DISPATCH(MomentsOfValues)(values, count, atLeast);
}

}  // namespace tq::kernels
#endif
