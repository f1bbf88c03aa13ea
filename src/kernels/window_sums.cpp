#include "kernels/window_sums.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/window_sums.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// As everywhere in the kernels, the loop that finishes a run is the plain form and serves the scalar target.

using U32 = hn::ScalableTag<std::uint32_t>;
using F64 = hn::ScalableTag<double>;

template <class Update>
HWY_INLINE std::size_t UpdateColumns(std::uint32_t* columns, std::size_t count, Update&& update) {
    const U32 d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
        hn::StoreU(update(hn::LoadU(d, columns + i), i), d, columns + i);
    return i;
}

HWY_INLINE hn::Vec<U32> LoadPels(const std::uint16_t* pels) {
    return hn::PromoteTo(U32(), hn::LoadU(hn::Rebind<std::uint16_t, U32>(), pels));
}

void AddRow(std::uint32_t* columns, const std::uint16_t* row, std::size_t count) {
    std::size_t i = UpdateColumns(
        columns, count, [&](auto sums, std::size_t at) { return hn::Add(sums, LoadPels(row + at)); });
    for (; i < count; ++i)
        columns[i] += row[i];
}

void SubtractRow(std::uint32_t* columns, const std::uint16_t* row, std::size_t count) {
    std::size_t i = UpdateColumns(
        columns, count, [&](auto sums, std::size_t at) { return hn::Sub(sums, LoadPels(row + at)); });
    for (; i < count; ++i)
        columns[i] -= row[i];
}

void ReplaceRow(std::uint32_t* columns, const std::uint16_t* entering, const std::uint16_t* leaving,
                std::size_t count) {
    std::size_t i = UpdateColumns(columns, count, [&](auto sums, std::size_t at) {
        return hn::Add(sums, hn::Sub(LoadPels(entering + at), LoadPels(leaving + at)));
    });
    for (; i < count; ++i)
        columns[i] += std::uint32_t{entering[i]} - leaving[i];
}

void MarkNonZero(const std::uint16_t* pels, std::size_t count, std::uint16_t* out) {
    const hn::ScalableTag<std::uint16_t> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
        hn::StoreU(hn::Min(hn::LoadU(d, pels + i), hn::Set(d, 1)), d, out + i);
    for (; i < count; ++i)
        out[i] = pels[i] != 0 ? 1 : 0;
}

#if HWY_TARGET != HWY_SCALAR
/// Lane i of the result is the sum of lanes 0..i of one 128-bit vector or less.
template <class D, class V>
HWY_INLINE V RunningSum(D d, V v) {
    v = hn::Add(v, hn::ShiftLeftLanes<1>(d, v));
    if constexpr (hn::MaxLanes(D()) == 4) v = hn::Add(v, hn::ShiftLeftLanes<2>(d, v));
    return v;
}
#endif

void PrefixSumsOfColumns(const std::uint32_t* values, std::size_t count, double* prefix) {
    std::size_t i = 0;
    prefix[0] = 0.0;
#if HWY_TARGET != HWY_SCALAR
    // Four values add up to less than 2^31, so they are summed as integers before they become doubles.
    const hn::CappedTag<double, 4> d;
    const hn::Rebind<std::int32_t, decltype(d)> d32;
    const std::size_t lanes = hn::Lanes(d);
    constexpr int kLast = hn::MaxLanes(d32) - 1;
    const auto load = [&](std::size_t at) {
        return RunningSum(d32, hn::LoadU(d32, reinterpret_cast<const std::int32_t*>(values) + at));
    };
    // Two vectors a step, so that the chain of carries has one addition for both.
    auto carry = hn::Zero(d);
    for (; i + 2 * lanes <= count; i += 2 * lanes) {
        const auto first = load(i);
        const auto second = load(i + lanes);
        const auto between = hn::PromoteTo(d, hn::Broadcast<kLast>(first));
        hn::StoreU(hn::Add(carry, hn::PromoteTo(d, first)), d, prefix + i + 1);
        hn::StoreU(hn::Add(carry, hn::Add(between, hn::PromoteTo(d, second))), d, prefix + i + lanes + 1);
        carry = hn::Add(carry, hn::Add(between, hn::PromoteTo(d, hn::Broadcast<kLast>(second))));
    }
#endif
    for (; i < count; ++i)
        prefix[i + 1] = prefix[i] + values[i];
}

void PrefixSumsOfPels(const std::uint16_t* pels, std::size_t count, std::uint32_t* prefix) {
    std::size_t i = 0;
    prefix[0] = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::CappedTag<std::uint32_t, 4> d;
    const hn::Rebind<std::uint16_t, decltype(d)> d16;
    const std::size_t lanes = hn::Lanes(d);
    auto carry = hn::Zero(d);
    for (; i + lanes <= count; i += lanes) {
        const auto sums = RunningSum(d, hn::PromoteTo(d, hn::LoadU(d16, pels + i)));
        hn::StoreU(hn::Add(carry, sums), d, prefix + i + 1);
        carry = hn::Add(carry, hn::Broadcast<3>(sums));
    }
#endif
    for (; i < count; ++i)
        prefix[i + 1] = prefix[i] + pels[i];
}

void Differences(const double* high, const double* low, std::size_t count, double* out) {
    const F64 d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        hn::StoreU(hn::Sub(hn::LoadU(d, high + i), hn::LoadU(d, low + i)), d, out + i);
    }
    for (; i < count; ++i)
        out[i] = high[i] - low[i];
}

void AddBlockRows(const BlockRow* rows, std::size_t rowCount, [[maybe_unused]] std::size_t rowsPerFlush,
                  std::size_t count, double* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U32 d;
    const hn::RebindToSigned<U32> d32;
    const hn::Half<decltype(d32)> half;
    const F64 f64;
    const std::size_t lanes = hn::Lanes(d);
    for (; i + lanes <= count; i += lanes) {
        auto low = hn::LoadU(f64, out + i);
        auto high = hn::LoadU(f64, out + i + lanes / 2);
        for (std::size_t first = 0; first < rowCount; first += rowsPerFlush) {
            const std::size_t end = std::min(first + rowsPerFlush, rowCount);
            auto sums = hn::Zero(d);
            for (std::size_t k = first; k < end; ++k) {
                sums = hn::Add(sums, hn::Sub(hn::LoadU(d, rows[k].high + i), hn::LoadU(d, rows[k].low + i)));
            }
            const auto whole = hn::BitCast(d32, sums);
            low = hn::Add(low, hn::PromoteTo(f64, hn::LowerHalf(half, whole)));
            high = hn::Add(high, hn::PromoteTo(f64, hn::UpperHalf(half, whole)));
        }
        hn::StoreU(low, f64, out + i);
        hn::StoreU(high, f64, out + i + lanes / 2);
    }
#endif
    for (; i < count; ++i) {
        for (std::size_t k = 0; k < rowCount; ++k)
            out[i] += rows[k].high[i] - rows[k].low[i];
    }
}

std::size_t CountAtLeast(const double* values, const double* bounds, std::size_t count) {
    const F64 d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t hits = 0;
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        hits += hn::CountTrue(d, hn::Ge(hn::LoadU(d, values + i), hn::LoadU(d, bounds + i)));
    }
    for (; i < count; ++i)
        hits += values[i] >= bounds[i] ? 1 : 0;
    return hits;
}

bool AnyOutside(const double* values, const double* scales, std::size_t count, double low, double high) {
    const F64 d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    auto outside = hn::MaskFromVec(hn::Zero(d));
    for (; i + lanes <= count; i += lanes) {
        const auto v = hn::LoadU(d, values + i);
        const auto scale = hn::LoadU(d, scales + i);
        outside = hn::Or(outside, hn::Or(hn::Lt(v, hn::Mul(hn::Set(d, low), scale)),
                                         hn::Gt(v, hn::Mul(hn::Set(d, high), scale))));
    }
    bool any = !hn::AllFalse(d, outside);
    for (; i < count; ++i)
        any = any || values[i] < low * scales[i] || values[i] > high * scales[i];
    return any;
}

void Quotients(const double* values, const double* divisors, std::size_t count, double* out) {
    const F64 d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        hn::StoreU(hn::Div(hn::LoadU(d, values + i), hn::LoadU(d, divisors + i)), d, out + i);
    }
    for (; i < count; ++i)
        out[i] = values[i] / divisors[i];
}

DoubleRange FindRange(const double* values, std::size_t count) {
    const F64 d;
    const std::size_t lanes = hn::Lanes(d);
    DoubleRange range{values[0], values[0]};
    std::size_t i = 0;
    if (count >= lanes) {
        auto low = hn::LoadU(d, values);
        auto high = low;
        for (i = lanes; i + lanes <= count; i += lanes) {
            const auto v = hn::LoadU(d, values + i);
            low = hn::Min(low, v);
            high = hn::Max(high, v);
        }
        range = {hn::GetLane(hn::MinOfLanes(d, low)), hn::GetLane(hn::MaxOfLanes(d, high))};
    }
    for (; i < count; ++i)
        range = {std::min(range.min, values[i]), std::max(range.max, values[i])};
    return range;
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(AddRow);
HWY_EXPORT(SubtractRow);
HWY_EXPORT(ReplaceRow);
HWY_EXPORT(MarkNonZero);
HWY_EXPORT(PrefixSumsOfColumns);
HWY_EXPORT(PrefixSumsOfPels);
HWY_EXPORT(Differences);
HWY_EXPORT(AddBlockRows);
HWY_EXPORT(CountAtLeast);
HWY_EXPORT(AnyOutside);
HWY_EXPORT(Quotients);
HWY_EXPORT(FindRange);

void AddRow(std::uint32_t* columns, const std::uint16_t* row, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(AddRow)(columns, row, count);
}

void SubtractRow(std::uint32_t* columns, const std::uint16_t* row, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(SubtractRow)(columns, row, count);
}

void ReplaceRow(std::uint32_t* columns, const std::uint16_t* entering, const std::uint16_t* leaving,
                std::size_t count) {
    HWY_DYNAMIC_DISPATCH(ReplaceRow)(columns, entering, leaving, count);
}

void MarkNonZero(const std::uint16_t* pels, std::size_t count, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(MarkNonZero)(pels, count, out);
}

void PrefixSums(const std::uint32_t* values, std::size_t count, double* prefix) {
    HWY_DYNAMIC_DISPATCH(PrefixSumsOfColumns)(values, count, prefix);
}

void PrefixSums(const std::uint16_t* pels, std::size_t count, std::uint32_t* prefix) {
    HWY_DYNAMIC_DISPATCH(PrefixSumsOfPels)(pels, count, prefix);
}

void Differences(const double* high, const double* low, std::size_t count, double* out) {
    HWY_DYNAMIC_DISPATCH(Differences)(high, low, count, out);
}

void AddBlockRows(const BlockRow* rows, std::size_t rowCount, std::size_t rowsPerFlush, std::size_t count,
                  double* out) {
    HWY_DYNAMIC_DISPATCH(AddBlockRows)(rows, rowCount, rowsPerFlush, count, out);
}

std::size_t CountAtLeast(const double* values, const double* bounds, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(CountAtLeast)(values, bounds, count);
}

bool AnyOutside(const double* values, const double* scales, std::size_t count, double low, double high) {
    return HWY_DYNAMIC_DISPATCH(AnyOutside)(values, scales, count, low, high);
}

void Quotients(const double* values, const double* divisors, std::size_t count, double* out) {
    HWY_DYNAMIC_DISPATCH(Quotients)(values, divisors, count, out);
}

DoubleRange FindRange(const double* values, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(FindRange)(values, count);
}

}  // namespace tq::kernels
#endif
