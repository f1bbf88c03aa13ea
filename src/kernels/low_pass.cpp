#include "kernels/low_pass.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/low_pass.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

#include "kernels/pel_loops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

/// Sums of three and of five pels, a column.
HWY_INLINE void SumColumns(const Pel* const rows[5], std::size_t cols, std::int32_t* three,
                           std::int32_t* five) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<std::int32_t> d;
    const hn::Rebind<Pel, decltype(d)> d16;
    const auto load = [&](int row) { return hn::PromoteTo(d, hn::LoadU(d16, rows[row] + i)); };
    for (; i + hn::Lanes(d) <= cols; i += hn::Lanes(d)) {
        const auto inner = hn::Add(hn::Add(load(1), load(2)), load(3));
        hn::StoreU(inner, d, three + i);
        hn::StoreU(hn::Add(hn::Add(load(0), load(4)), inner), d, five + i);
    }
#endif
    for (; i < cols; ++i) {
        three[i] = rows[1][i] + rows[2][i] + rows[3][i];
        five[i] = three[i] + rows[0][i] + rows[4][i];
    }
}

/// The sum of 25, three times the sum of the inner nine and eight times the centre: sixty pels stay far below
/// 2^31.
ResultRange LowPassRow(const Pel* const rows[5], std::size_t cols, std::int32_t* columns,
                       std::int32_t* results) {
    std::int32_t* const three = columns;
    std::int32_t* const five = columns + cols;
    SumColumns(rows, cols, three, five);
    const std::size_t count = cols - 4;
    ResultRange range{0x7FFFFFFF, 0};
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<std::int32_t> d;
    auto low = hn::Set(d, range.low);
    auto high = hn::Zero(d);
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        const auto load = [&](const std::int32_t* from) { return hn::LoadU(d, from + i); };
        const auto outer =
            hn::Add(hn::Add(load(five), load(five + 1)), hn::Add(load(five + 2), load(five + 3)));
        const auto inner = hn::Add(hn::Add(load(three + 1), load(three + 2)), load(three + 3));
        const auto centre = hn::PromoteTo(d, hn::LoadU(hn::Rebind<Pel, decltype(d)>(), rows[2] + i + 2));
        const auto threefold = hn::Add(hn::Add(inner, inner), inner);
        const auto result = hn::Add(hn::Add(hn::Add(outer, load(five + 4)), threefold),  //
                                    hn::ShiftLeft<3>(centre));
        low = hn::Min(low, result);
        high = hn::Max(high, result);
        hn::StoreU(result, d, results + i);
    }
    range = {hn::GetLane(hn::MinOfLanes(d, low)), hn::GetLane(hn::MaxOfLanes(d, high))};
#endif
    for (; i < count; ++i) {
        const std::int32_t outer = five[i] + five[i + 1] + five[i + 2] + five[i + 3] + five[i + 4];
        const std::int32_t inner = three[i + 1] + three[i + 2] + three[i + 3];
        results[i] = outer + 3 * inner + 8 * rows[2][i + 2];
        range = {std::min(range.low, results[i]), std::max(range.high, results[i])};
    }
    return range;
}

void ScaleResults(const std::int32_t* results, std::int32_t low, double scale, Pel* out, std::size_t count) {
    const double origin = low;
    const auto formula = [=](auto k, auto result) { return k(scale) * (result - k(origin)); };
    ComputePels<Excess::kClamp, double>(out, count, formula, results);
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(LowPassRow);
HWY_EXPORT(ScaleResults);

ResultRange LowPassRow(const Pel* const rows[5], std::size_t cols, std::int32_t* columns,
                       std::int32_t* results) {
    return HWY_DYNAMIC_DISPATCH(LowPassRow)(rows, cols, columns, results);
}

void ScaleResults(const std::int32_t* results, std::int32_t low, double scale, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(ScaleResults)(results, low, scale, out, count);
}

}  // namespace tq::kernels
#endif
