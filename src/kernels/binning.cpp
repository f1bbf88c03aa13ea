#include "kernels/binning.h"

#include <algorithm>
#include <bit>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/binning.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR
using U32 = hn::ScalableTag<std::uint32_t>;

/// A vector of pels, one or two to a sum.
template <std::size_t kWidth, class D16>
HWY_INLINE hn::Vec<U32> AddUp(D16, hn::Vec<D16> pels) {
    const U32 d;
    if constexpr (kWidth == 1) {
        return hn::PromoteTo(d, pels);
    } else {
        const auto pairs = hn::BitCast(d, pels);
        return hn::Add(hn::And(pairs, hn::Set(d, 0xFFFF)), hn::ShiftRight<16>(pairs));
    }
}

/// 1 for every pel that is not 0.
template <class D16>
HWY_INLINE hn::Vec<D16> Marks(D16 d16, hn::Vec<D16> pels) {
    return hn::Add(hn::Set(d16, 1), hn::VecFromMask(d16, hn::Eq(pels, hn::Zero(d16))));
}
#endif

/// Sums of kWidth neighbours each. The rows are taken eight at a time: their sums stay in registers, and not
/// too many lines of the cache with the same low address bits are in use.
template <std::size_t kWidth, bool kLit>
HWY_INLINE void Sum(const PelRows& pels, std::size_t count, std::uint32_t* sums, std::uint32_t* counts) {
    constexpr std::size_t kTogether = 8;
    for (std::size_t from = 0; from < pels.rows; from += kTogether) {
        const auto rows = static_cast<std::ptrdiff_t>(std::min(kTogether, pels.rows - from));
        const Pel* first = pels.first + static_cast<std::ptrdiff_t>(from) * pels.stride;
        std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
        const U32 d;
        const std::conditional_t<kWidth == 1, hn::Rebind<Pel, U32>, hn::Repartition<Pel, U32>> d16;
        for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
            auto sum = from == 0 ? hn::Zero(d) : hn::LoadU(d, sums + i);
            [[maybe_unused]] auto lit = hn::Zero(d);
            if constexpr (kLit) lit = from == 0 ? lit : hn::LoadU(d, counts + i);
            for (std::ptrdiff_t r = 0; r < rows; ++r) {
                const auto v = hn::LoadU(d16, first + r * pels.stride + i * kWidth);
                sum = hn::Add(sum, AddUp<kWidth>(d16, v));
                if constexpr (kLit) lit = hn::Add(lit, AddUp<kWidth>(d16, Marks(d16, v)));
            }
            hn::StoreU(sum, d, sums + i);
            if constexpr (kLit) hn::StoreU(lit, d, counts + i);
        }
#endif
        for (; i < count; ++i) {
            std::uint32_t sum = from == 0 ? 0 : sums[i];
            [[maybe_unused]] std::uint32_t lit = 0;
            if constexpr (kLit) lit = from == 0 ? 0 : counts[i];
            for (std::ptrdiff_t r = 0; r < rows; ++r) {
                const Pel* row = first + r * pels.stride + i * kWidth;
                for (std::size_t w = 0; w < kWidth; ++w) {
                    sum += row[w];
                    lit += row[w] != 0;
                }
            }
            sums[i] = sum;
            if constexpr (kLit) counts[i] = lit;
        }
    }
}

void SumColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums) {
    Sum<1, false>(pels, count, sums, nullptr);
}

void SumPairsOfColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums) {
    Sum<2, false>(pels, count, sums, nullptr);
}

void SumLitColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums, std::uint32_t* counts) {
    Sum<1, true>(pels, count, sums, counts);
}

void SumLitPairsOfColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums,
                          std::uint32_t* counts) {
    Sum<2, true>(pels, count, sums, counts);
}

void MeansOfFour(const Pel* upper, const Pel* lower, std::size_t count, Pel* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U32 d;
    const hn::RebindToSigned<U32> d32;
    const hn::Repartition<Pel, U32> d16;
    const hn::Rebind<Pel, U32> half;
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        const auto sum = hn::Add(AddUp<2>(d16, hn::LoadU(d16, upper + 2 * i)),
                                 AddUp<2>(d16, hn::LoadU(d16, lower + 2 * i)));
        hn::StoreU(hn::DemoteTo(half, hn::BitCast(d32, hn::ShiftRight<2>(sum))), half, out + i);
    }
#endif
    for (; i < count; ++i)
        out[i] = static_cast<Pel>((upper[2 * i] + upper[2 * i + 1] + lower[2 * i] + lower[2 * i + 1]) / 4);
}

void TruncatedMeans(const std::uint32_t* sums, std::size_t count, std::int32_t pels, Pel* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const bool positive = pels <= kPelsBelow31Bits;
    if (positive && std::has_single_bit(static_cast<std::uint32_t>(pels))) {
        const hn::ScalableTag<std::int32_t> d;
        const hn::Rebind<Pel, decltype(d)> d16;
        const int bits = std::countr_zero(static_cast<std::uint32_t>(pels));
        for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
            const auto sum = hn::LoadU(U32(), sums + i);
            hn::StoreU(hn::DemoteTo(d16, hn::BitCast(d, hn::ShiftRightSame(sum, bits))), d16, out + i);
        }
    } else if (positive) {
        // Half a grey level of a sum keeps the product further from an integer, 1 / 65536, than a double is
        // wrong by, so that the reciprocal truncates like the division.
        const hn::ScalableTag<double> d;
        const hn::Rebind<std::int32_t, decltype(d)> d32;
        const hn::Rebind<Pel, decltype(d)> d16;
        const auto half = hn::Set(d, 0.5);
        const auto factor = hn::Set(d, 1.0 / pels);
        for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
            const auto sum = hn::LoadU(hn::RebindToUnsigned<decltype(d32)>(), sums + i);
            const auto mean = hn::Mul(hn::Add(hn::PromoteTo(d, hn::BitCast(d32, sum)), half), factor);
            hn::StoreU(hn::DemoteTo(d16, hn::DemoteTo(d32, mean)), d16, out + i);
        }
    }
#endif
    for (; i < count; ++i)
        out[i] = WrapToPel(std::bit_cast<std::int32_t>(sums[i]) / pels);
}

void LitMeans(const std::uint32_t* sums, const std::uint32_t* counts, std::size_t count, Pel* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<float> d;
    const hn::RebindToSigned<decltype(d)> d32;
    const hn::Rebind<Pel, decltype(d)> d16;
    const auto load = [&](const std::uint32_t* from) {
        return hn::ConvertTo(d, hn::BitCast(d32, hn::LoadU(U32(), from)));
    };
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        // Nothing to divide by is nothing to divide, too.
        const auto mean = hn::Div(load(sums + i), hn::Max(load(counts + i), hn::Set(d, 1.0f)));
        hn::StoreU(hn::DemoteTo(d16, hn::ConvertTo(d32, mean)), d16, out + i);
    }
#endif
    for (; i < count; ++i) {
        const auto lit = static_cast<float>(std::max(counts[i], std::uint32_t{1}));
        out[i] = WrapToPel(TruncToInt32(static_cast<float>(sums[i]) / lit));
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(SumColumns);
HWY_EXPORT(SumPairsOfColumns);
HWY_EXPORT(SumLitColumns);
HWY_EXPORT(SumLitPairsOfColumns);
HWY_EXPORT(MeansOfFour);
HWY_EXPORT(TruncatedMeans);
HWY_EXPORT(LitMeans);

void SumColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums) {
    HWY_DYNAMIC_DISPATCH(SumColumns)(pels, count, sums);
}

void SumPairsOfColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums) {
    HWY_DYNAMIC_DISPATCH(SumPairsOfColumns)(pels, count, sums);
}

void SumLitColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums, std::uint32_t* counts) {
    HWY_DYNAMIC_DISPATCH(SumLitColumns)(pels, count, sums, counts);
}

void SumLitPairsOfColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums,
                          std::uint32_t* counts) {
    HWY_DYNAMIC_DISPATCH(SumLitPairsOfColumns)(pels, count, sums, counts);
}

void MeansOfFour(const Pel* upper, const Pel* lower, std::size_t count, Pel* out) {
    HWY_DYNAMIC_DISPATCH(MeansOfFour)(upper, lower, count, out);
}

void TruncatedMeans(const std::uint32_t* sums, std::size_t count, std::int32_t pels, Pel* out) {
    HWY_DYNAMIC_DISPATCH(TruncatedMeans)(sums, count, pels, out);
}

void LitMeans(const std::uint32_t* sums, const std::uint32_t* counts, std::size_t count, Pel* out) {
    HWY_DYNAMIC_DISPATCH(LitMeans)(sums, counts, count, out);
}

}  // namespace tq::kernels
#endif
