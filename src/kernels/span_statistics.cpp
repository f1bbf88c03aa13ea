#include "kernels/span_statistics.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/span_statistics.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/pair_sums-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR
/// Vectors whose pels a 32-bit lane takes without overflow: 2 pels each, 2 * 32768 * 65535 < 2^32.
constexpr std::size_t kVectorsPerFlush = 32768;
#endif

std::uint64_t SumPels(const std::uint16_t* pels, std::size_t count) {
    std::uint64_t sum = 0;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U16 d;
    const std::size_t lanes = hn::Lanes(d);
    auto total = hn::Zero(U64());
    while (i + lanes <= count) {
        const std::size_t end = i + std::min((count - i) / lanes, kVectorsPerFlush) * lanes;
        auto even = hn::Zero(U32());
        auto odd = hn::Zero(U32());
        for (; i + 2 * lanes <= end; i += 2 * lanes) {
            even = hn::Add(even, AddPairs(hn::LoadU(d, pels + i)));
            odd = hn::Add(odd, AddPairs(hn::LoadU(d, pels + i + lanes)));
        }
        if (i < end) {
            even = hn::Add(even, AddPairs(hn::LoadU(d, pels + i)));
            i += lanes;
        }
        total = hn::Add(total, hn::Add(WidenPairs(even), WidenPairs(odd)));
    }
    sum = Total(total);
#endif
    for (; i < count; ++i)
        sum += pels[i];
    return sum;
}

std::uint64_t SumBytes(const std::uint8_t* bytes, std::size_t count) {
    std::uint64_t sum = 0;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<std::uint8_t> d;
    const std::size_t lanes = hn::Lanes(d);
    auto total = hn::Zero(U64());
    for (; i + lanes <= count; i += lanes)
        total = hn::Add(total, hn::SumsOf8(hn::LoadU(d, bytes + i)));
    sum = Total(total);
#endif
    for (; i < count; ++i)
        sum += bytes[i];
    return sum;
}

Totals FindTotals(const std::uint16_t* pels, std::size_t count) {
    Totals result;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U16 d;
    const std::size_t lanes = hn::Lanes(d);
    auto low = hn::Set(d, 65535);
    auto high = hn::Zero(d);
    auto sum = hn::Zero(U64());
    auto lowHalves = hn::Zero(U64());
    auto highHalves = hn::Zero(U64());
    auto zeros = hn::Zero(U64());
    while (i + lanes <= count) {
        const std::size_t end = i + std::min((count - i) / lanes, kVectorsPerFlush) * lanes;
        auto sums = hn::Zero(U32());
        auto squaresLow = hn::Zero(U32());  // the low and the high 16 bits of each square
        auto squaresHigh = hn::Zero(U32());
        auto zeroCounts = hn::Zero(d);
        for (; i < end; i += lanes) {
            const auto v = hn::LoadU(d, pels + i);
            low = hn::Min(low, v);
            high = hn::Max(high, v);
            sums = hn::Add(sums, AddPairs(v));
            squaresLow = hn::Add(squaresLow, AddPairs(hn::Mul(v, v)));
            squaresHigh = hn::Add(squaresHigh, AddPairs(hn::MulHigh(v, v)));
            zeroCounts = hn::Sub(zeroCounts, hn::VecFromMask(d, hn::Eq(v, hn::Zero(d))));
        }
        sum = hn::Add(sum, WidenPairs(sums));
        lowHalves = hn::Add(lowHalves, WidenPairs(squaresLow));
        highHalves = hn::Add(highHalves, WidenPairs(squaresHigh));
        zeros = hn::Add(zeros, WidenPairs(AddPairs(zeroCounts)));
    }
    result = {Total(sum),
              Total(lowHalves) + (Total(highHalves) << 16),
              i - Total(zeros),
              {hn::GetLane(hn::MinOfLanes(d, low)), hn::GetLane(hn::MaxOfLanes(d, high))}};
#endif
    for (; i < count; ++i) {
        result.sum += pels[i];
        result.squares += std::uint64_t{pels[i]} * pels[i];
        result.nonZero += pels[i] != 0 ? 1 : 0;
        result.extremes = {std::min(result.extremes.min, pels[i]), std::max(result.extremes.max, pels[i])};
    }
    return result;
}

std::uint64_t CountAtLeast(const std::uint16_t* pels, std::size_t count, std::uint16_t threshold) {
    std::uint64_t hits = 0;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U16 d;
    const std::size_t lanes = hn::Lanes(d);
    const auto bound = hn::Set(d, threshold);
    auto total = hn::Zero(U64());
    while (i + lanes <= count) {
        const std::size_t end = i + std::min((count - i) / lanes, kVectorsPerFlush) * lanes;
        auto counts = hn::Zero(d);  // at most kVectorsPerFlush a lane
        for (; i < end; i += lanes) {
            const auto v = hn::LoadU(d, pels + i);
            counts = hn::Sub(counts, hn::VecFromMask(d, hn::Eq(hn::Max(v, bound), v)));
        }
        total = hn::Add(total, WidenPairs(AddPairs(counts)));
    }
    hits = Total(total);
#endif
    for (; i < count; ++i)
        hits += pels[i] >= threshold ? 1 : 0;
    return hits;
}

SumAndCount SumAtLeast(const std::uint16_t* pels, std::size_t count, std::uint16_t threshold) {
    SumAndCount result;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U16 d;
    const std::size_t lanes = hn::Lanes(d);
    const auto bound = hn::Set(d, threshold);
    auto total = hn::Zero(U64());
    auto hits = hn::Zero(U64());
    while (i + lanes <= count) {
        const std::size_t end = i + std::min((count - i) / lanes, kVectorsPerFlush) * lanes;
        auto sums = hn::Zero(U32());
        auto counts = hn::Zero(d);  // at most kVectorsPerFlush a lane
        for (; i < end; i += lanes) {
            const auto v = hn::LoadU(d, pels + i);
            const auto reached = hn::VecFromMask(d, hn::Eq(hn::Max(v, bound), v));
            sums = hn::Add(sums, AddPairs(hn::And(v, reached)));
            counts = hn::Sub(counts, reached);
        }
        total = hn::Add(total, WidenPairs(sums));
        hits = hn::Add(hits, WidenPairs(AddPairs(counts)));
    }
    result = {Total(total), Total(hits)};
#endif
    for (; i < count; ++i) {
        if (pels[i] < threshold) continue;
        result.sum += pels[i];
        ++result.count;
    }
    return result;
}

SumAndMax FindSumAndMax(const std::uint16_t* pels, std::size_t count) {
    SumAndMax result;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U16 d;
    const std::size_t lanes = hn::Lanes(d);
    auto total = hn::Zero(U64());
    auto high = hn::Zero(d);
    while (i + lanes <= count) {
        const std::size_t end = i + std::min((count - i) / lanes, kVectorsPerFlush) * lanes;
        auto sums = hn::Zero(U32());
        for (; i < end; i += lanes) {
            const auto v = hn::LoadU(d, pels + i);
            sums = hn::Add(sums, AddPairs(v));
            high = hn::Max(high, v);
        }
        total = hn::Add(total, WidenPairs(sums));
    }
    result = {Total(total), hn::GetLane(hn::MaxOfLanes(d, high))};
#endif
    for (; i < count; ++i) {
        result.sum += pels[i];
        result.max = std::max(result.max, pels[i]);
    }
    return result;
}

MinMax FindMinMax(const std::uint16_t* pels, std::size_t count) {
    MinMax result;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U16 d;
    const std::size_t lanes = hn::Lanes(d);
    if (count >= lanes) {
        auto low = hn::Set(d, 65535);
        auto high = hn::Zero(d);
        for (; i + lanes <= count; i += lanes) {
            const auto v = hn::LoadU(d, pels + i);
            low = hn::Min(low, v);
            high = hn::Max(high, v);
        }
        result = {hn::GetLane(hn::MinOfLanes(d, low)), hn::GetLane(hn::MaxOfLanes(d, high))};
    }
#endif
    for (; i < count; ++i) {
        result.min = std::min(result.min, pels[i]);
        result.max = std::max(result.max, pels[i]);
    }
    return result;
}

std::uint16_t FindSmallestNonZero(const std::uint16_t* pels, std::size_t count) {
    // One less, 0 becomes the largest number and never wins; adding the 1 again brings it back.
    std::uint16_t low = 65535;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U16 d;
    const std::size_t lanes = hn::Lanes(d);
    auto lows = hn::Set(d, 65535);
    for (; i + lanes <= count; i += lanes)
        lows = hn::Min(lows, hn::Sub(hn::LoadU(d, pels + i), hn::Set(d, 1)));
    low = hn::GetLane(hn::MinOfLanes(d, lows));
#endif
    for (; i < count; ++i)
        low = std::min(low, static_cast<std::uint16_t>(pels[i] - 1));
    return static_cast<std::uint16_t>(low + 1);
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(SumPels);
HWY_EXPORT(SumBytes);
HWY_EXPORT(FindTotals);
HWY_EXPORT(CountAtLeast);
HWY_EXPORT(SumAtLeast);
HWY_EXPORT(FindSumAndMax);
HWY_EXPORT(FindMinMax);
HWY_EXPORT(FindSmallestNonZero);

std::uint64_t SumPels(const std::uint16_t* pels, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(SumPels)(pels, count);
}

std::uint64_t SumBytes(const std::uint8_t* bytes, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(SumBytes)(bytes, count);
}

Totals FindTotals(const std::uint16_t* pels, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(FindTotals)(pels, count);
}

std::uint64_t CountAtLeast(const std::uint16_t* pels, std::size_t count, std::uint16_t threshold) {
    return HWY_DYNAMIC_DISPATCH(CountAtLeast)(pels, count, threshold);
}

SumAndCount SumAtLeast(const std::uint16_t* pels, std::size_t count, std::uint16_t threshold) {
    return HWY_DYNAMIC_DISPATCH(SumAtLeast)(pels, count, threshold);
}

SumAndMax FindSumAndMax(const std::uint16_t* pels, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(FindSumAndMax)(pels, count);
}

MinMax FindMinMax(const std::uint16_t* pels, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(FindMinMax)(pels, count);
}

std::uint16_t FindSmallestNonZero(const std::uint16_t* pels, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(FindSmallestNonZero)(pels, count);
}

}  // namespace tq::kernels
#endif
