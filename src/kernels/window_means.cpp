#include "kernels/window_means.h"

#include <algorithm>

#include "core/numerics.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/window_means.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

std::uint16_t PelOf(double value) {
    return static_cast<std::uint16_t>(TruncToInt32(value));
}

#if HWY_TARGET != HWY_SCALAR
namespace hn = hwy::HWY_NAMESPACE;

using F64 = hn::ScalableTag<double>;
using I32 = hn::Rebind<std::int32_t, F64>;
using U32 = hn::Rebind<std::uint32_t, F64>;

/// A vector of window sums as doubles, from prefix sums that wrap or from exact ones.
HWY_INLINE hn::Vec<F64> LoadSums(const std::uint32_t* prefix, std::size_t width) {
    const U32 d;
    return hn::PromoteTo(F64(),
                         hn::BitCast(I32(), hn::Sub(hn::LoadU(d, prefix + width), hn::LoadU(d, prefix))));
}

HWY_INLINE hn::Vec<F64> LoadSums(const double* prefix, std::size_t width) {
    return hn::Sub(hn::LoadU(F64(), prefix + width), hn::LoadU(F64(), prefix));
}

/// Stores two vectors of values 0..65535, truncated.
template <class D>
HWY_INLINE hn::Vec<D> TruncatedPels(D d, hn::Vec<F64> low, hn::Vec<F64> high) {
    const hn::Rebind<std::int32_t, D> d32;
    const I32 half;
    return hn::DemoteTo(d, hn::Combine(d32, hn::DemoteTo(half, high), hn::DemoteTo(half, low)));
}
#endif

void WrappingPrefixSums(const std::uint32_t* values, std::size_t count, std::uint32_t* prefix) {
    std::size_t i = 0;
    prefix[0] = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::CappedTag<std::uint32_t, 4> d;
    auto carry = hn::Zero(d);
    const auto load = [&](std::size_t at) {
        auto v = hn::LoadU(d, values + at);
        v = hn::Add(v, hn::ShiftLeftLanes<1>(d, v));
        return hn::Add(v, hn::ShiftLeftLanes<2>(d, v));
    };
    // Two vectors a step: the chain of carries has one addition for both.
    for (; i + 8 <= count; i += 8) {
        const auto first = load(i);
        const auto second = hn::Add(load(i + 4), hn::Broadcast<3>(first));
        hn::StoreU(hn::Add(carry, first), d, prefix + i + 1);
        hn::StoreU(hn::Add(carry, second), d, prefix + i + 5);
        carry = hn::Add(carry, hn::Broadcast<3>(second));
    }
#endif
    for (; i < count; ++i)
        prefix[i + 1] = prefix[i] + values[i];
}

template <class Prefix>
HWY_INLINE void Means(const Prefix* prefix, std::size_t width, std::size_t count, double area,
                      std::uint16_t* out) {
    const double scale = 1.0 / area;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const F64 d;
    const std::size_t lanes = hn::Lanes(d);
    const hn::Rebind<std::uint16_t, hn::Repartition<std::int32_t, F64>> d16;
    const auto factor = hn::Set(d, scale);
    const auto half = hn::Set(d, 0.5);
    const auto mean = [&](std::size_t at) {
        return hn::Add(hn::Mul(LoadSums(prefix + at, width), factor), half);
    };
    for (; i + 2 * lanes <= count; i += 2 * lanes)
        hn::StoreU(TruncatedPels(d16, mean(i), mean(i + lanes)), d16, out + i);
#endif
    for (; i < count; ++i)
        out[i] = PelOf(static_cast<double>(prefix[i + width] - prefix[i]) * scale + 0.5);
}

void NarrowMeans(const std::uint32_t* prefix, std::size_t width, std::size_t count, double area,
                 std::uint16_t* out) {
    Means(prefix, width, count, area, out);
}

void WideMeans(const double* prefix, std::size_t width, std::size_t count, double area, std::uint16_t* out) {
    Means(prefix, width, count, area, out);
}

template <class Prefix>
HWY_INLINE void LitMeans(const Prefix* sums, const Prefix* numbers, std::size_t width, std::size_t count,
                         const std::uint16_t* centre, std::uint16_t* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const F64 d;
    const std::size_t lanes = hn::Lanes(d);
    const hn::Rebind<std::uint16_t, hn::Repartition<std::int32_t, F64>> d16;
    const auto half = hn::Set(d, 0.5);
    const auto one = hn::Set(d, 1.0);
    // A window of nothing has sum 0: counted as one pel it gives 0 and no NaN.
    const auto mean = [&](std::size_t at) {
        const auto number = hn::Max(LoadSums(numbers + at, width), one);
        return hn::Add(hn::Div(LoadSums(sums + at, width), number), half);
    };
    for (; i + 2 * lanes <= count; i += 2 * lanes) {
        const auto dark = hn::Eq(hn::LoadU(d16, centre + i), hn::Zero(d16));
        hn::StoreU(hn::IfThenZeroElse(dark, TruncatedPels(d16, mean(i), mean(i + lanes))), d16, out + i);
    }
#endif
    for (; i < count; ++i) {
        const auto number = static_cast<double>(numbers[i + width] - numbers[i]);
        const auto sum = static_cast<double>(sums[i + width] - sums[i]);
        out[i] = centre[i] == 0 ? std::uint16_t{0} : PelOf(sum / number + 0.5);
    }
}

void NarrowLitMeans(const std::uint32_t* sums, const std::uint32_t* numbers, std::size_t width,
                    std::size_t count, const std::uint16_t* centre, std::uint16_t* out) {
    LitMeans(sums, numbers, width, count, centre, out);
}

void WideLitMeans(const double* sums, const double* numbers, std::size_t width, std::size_t count,
                  const std::uint16_t* centre, std::uint16_t* out) {
    LitMeans(sums, numbers, width, count, centre, out);
}

#if HWY_TARGET != HWY_SCALAR
using S32 = hn::ScalableTag<std::uint32_t>;
using S16 = hn::Rebind<std::uint16_t, S32>;

/// Truncates (sum + 0.5) / number. Nine pels and the half need 21 bits, so both are exact in single
/// precision, and the quotient stays 0.5 / 9 away from the next integer on either side, while two roundings
/// of a number below 65536 move it by 0.008 at most: the result is that of the integer division.
template <class Divide>
HWY_INLINE hn::Vec<S16> IntegerMeans(hn::Vec<S32> sums, Divide&& divide) {
    const hn::RebindToSigned<S32> d32;
    const hn::Rebind<float, S32> f32;
    const auto raised = hn::Add(hn::ConvertTo(f32, hn::BitCast(d32, sums)), hn::Set(f32, 0.5f));
    return hn::DemoteTo(S16(), hn::ConvertTo(d32, divide(raised)));
}

HWY_INLINE hn::Vec<S32> LoadPels(const std::uint16_t* pels) {
    return hn::PromoteTo(S32(), hn::LoadU(S16(), pels));
}

HWY_INLINE hn::Vec<S32> LoadMarks(const std::uint16_t* pels) {
    return hn::PromoteTo(S32(), hn::Min(hn::LoadU(S16(), pels), hn::Set(S16(), 1)));
}
/// Columns whose sums are held before they are added along the row.
constexpr std::size_t kTile = 1024;
#endif

void SmoothRow(const std::uint16_t* above, const std::uint16_t* row, const std::uint16_t* below,
               std::size_t cols, std::uint16_t* out) {
    std::size_t i = 1;
#if HWY_TARGET != HWY_SCALAR
    const S32 d;
    const hn::Rebind<float, S32> f32;
    const std::size_t lanes = hn::Lanes(d);
    const auto ninth = hn::Set(f32, 1.0f / 9.0f);
    std::uint32_t columns[kTile];
    // A tile of n column sums, a multiple of the lanes, serves n - lanes pels.
    while (i - 1 + 2 * lanes <= cols) {
        const std::size_t first = i - 1;
        const std::size_t count = std::min(kTile, cols - first) / lanes * lanes;
        for (std::size_t at = 0; at < count; at += lanes) {
            const auto pair = hn::Add(LoadPels(above + first + at), LoadPels(below + first + at));
            hn::StoreU(hn::Add(pair, LoadPels(row + first + at)), d, columns + at);
        }
        for (std::size_t at = 0; at + lanes < count; at += lanes) {
            const auto sums = hn::Add(hn::Add(hn::LoadU(d, columns + at), hn::LoadU(d, columns + at + 1)),
                                      hn::LoadU(d, columns + at + 2));
            hn::StoreU(IntegerMeans(sums, [&](auto v) { return hn::Mul(v, ninth); }), S16(), out + i + at);
        }
        i += count - lanes;
    }
#endif
    for (; i + 1 < cols; ++i) {
        std::uint32_t sum = 0;
        for (std::size_t at = i - 1; at <= i + 1; ++at)
            sum += std::uint32_t{above[at]} + row[at] + below[at];
        out[i] = static_cast<std::uint16_t>(sum / 9);
    }
}

void SmoothLitRow(const std::uint16_t* above, const std::uint16_t* row, const std::uint16_t* below,
                  std::size_t cols, std::uint16_t* out) {
    std::size_t i = 1;
#if HWY_TARGET != HWY_SCALAR
    const S32 d;
    const hn::Rebind<float, S32> f32;
    const std::size_t lanes = hn::Lanes(d);
    std::uint32_t columns[kTile];
    std::uint32_t marks[kTile];
    while (i - 1 + 2 * lanes <= cols) {
        const std::size_t first = i - 1;
        const std::size_t count = std::min(kTile, cols - first) / lanes * lanes;
        for (std::size_t at = 0; at < count; at += lanes) {
            const std::size_t col = first + at;
            hn::StoreU(hn::Add(hn::Add(LoadPels(above + col), LoadPels(below + col)), LoadPels(row + col)), d,
                       columns + at);
            hn::StoreU(hn::Add(hn::Add(LoadMarks(above + col), LoadMarks(below + col)), LoadMarks(row + col)),
                       d, marks + at);
        }
        const auto acrossRow = [&](const std::uint32_t* values) {
            return hn::Add(hn::Add(hn::LoadU(d, values), hn::LoadU(d, values + 1)), hn::LoadU(d, values + 2));
        };
        for (std::size_t at = 0; at + lanes < count; at += lanes) {
            const auto number = hn::Max(acrossRow(marks + at), hn::Set(d, 1));
            const auto divisor = hn::ConvertTo(f32, hn::BitCast(hn::RebindToSigned<S32>(), number));
            const auto means =
                IntegerMeans(acrossRow(columns + at), [&](auto v) { return hn::Div(v, divisor); });
            const auto dark = hn::Eq(hn::LoadU(S16(), row + i + at), hn::Zero(S16()));
            hn::StoreU(hn::IfThenZeroElse(dark, means), S16(), out + i + at);
        }
        i += count - lanes;
    }
#endif
    for (; i + 1 < cols; ++i) {
        std::uint32_t sum = 0, number = 0;
        for (const std::uint16_t* line : {above, row, below}) {
            for (std::size_t at = i - 1; at <= i + 1; ++at) {
                sum += line[at];
                number += line[at] != 0 ? 1 : 0;
            }
        }
        out[i] = row[i] == 0 ? std::uint16_t{0} : static_cast<std::uint16_t>(sum / number);
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(WrappingPrefixSums);
HWY_EXPORT(NarrowMeans);
HWY_EXPORT(WideMeans);
HWY_EXPORT(NarrowLitMeans);
HWY_EXPORT(WideLitMeans);
HWY_EXPORT(SmoothRow);
HWY_EXPORT(SmoothLitRow);

void WrappingPrefixSums(const std::uint32_t* values, std::size_t count, std::uint32_t* prefix) {
    HWY_DYNAMIC_DISPATCH(WrappingPrefixSums)(values, count, prefix);
}

void WindowMeans(const std::uint32_t* prefix, std::size_t width, std::size_t count, double area,
                 std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(NarrowMeans)(prefix, width, count, area, out);
}

void WindowMeans(const double* prefix, std::size_t width, std::size_t count, double area,
                 std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(WideMeans)(prefix, width, count, area, out);
}

void LitWindowMeans(const std::uint32_t* sums, const std::uint32_t* numbers, std::size_t width,
                    std::size_t count, const std::uint16_t* centre, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(NarrowLitMeans)(sums, numbers, width, count, centre, out);
}

void LitWindowMeans(const double* sums, const double* numbers, std::size_t width, std::size_t count,
                    const std::uint16_t* centre, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(WideLitMeans)(sums, numbers, width, count, centre, out);
}

void SmoothRow(const std::uint16_t* above, const std::uint16_t* row, const std::uint16_t* below,
               std::size_t cols, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(SmoothRow)(above, row, below, cols, out);
}

void SmoothLitRow(const std::uint16_t* above, const std::uint16_t* row, const std::uint16_t* below,
                  std::size_t cols, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(SmoothLitRow)(above, row, below, cols, out);
}

}  // namespace tq::kernels
#endif
