#include "kernels/surface_values.h"

#include <algorithm>
#include <cmath>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/surface_values.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

#include "kernels/pel_loops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

void NarrowValues(const double* values, double least, std::size_t count, float* out) {
    constexpr double kMost = std::numeric_limits<float>::max();
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<double> d;
    const hn::Rebind<float, decltype(d)> d32;
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        auto value = hn::LoadU(d, values + i);
        value = hn::IfThenElseZero(hn::Eq(value, value), value);
        value = hn::Min(hn::Max(value, hn::Set(d, least)), hn::Set(d, kMost));
        hn::StoreU(hn::DemoteTo(d32, value), d32, out + i);
    }
#endif
    for (; i < count; ++i) {
        const double value = std::isnan(values[i]) ? 0.0 : values[i];
        out[i] = static_cast<float>(std::min(std::max(value, least), kMost));
    }
}

float LargestAbove(const float* values, float bound, std::size_t count) {
    float largest = 0.0f;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<float> d;
    auto best = hn::Zero(d);
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        const auto value = hn::LoadU(d, values + i);
        best = hn::Max(best, hn::IfThenElseZero(hn::Gt(value, hn::Set(d, bound)), hn::Abs(value)));
    }
    largest = hn::GetLane(hn::MaxOfLanes(d, best));
#endif
    for (; i < count; ++i) {
        if (values[i] > bound) largest = std::max(largest, std::abs(values[i]));
    }
    return largest;
}

void EncodeValues(const float* values, const ValueCode& code, std::size_t count, Pel* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<double> d;
    const hn::Rebind<float, decltype(d)> d32;
    const hn::Rebind<Pel, decltype(d)> d16;
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        const auto value = hn::PromoteTo(d, hn::LoadU(d32, values + i));
        const auto scaled = hn::Div(hn::Mul(value, hn::Set(d, code.pel)), hn::Set(d, code.largest));
        const auto known = hn::Ge(value, hn::Set(d, static_cast<double>(code.bound)));
        // The marker goes through the conversion as the number that it is.
        const auto number = hn::IfThenElse(known, scaled, hn::Set(d, static_cast<double>(code.none)));
        hn::StoreU(ToPels<Excess::kWrap>(d, number), d16, out + i);
    }
#endif
    for (; i < count; ++i) {
        const double scaled = static_cast<double>(values[i]) * code.pel / code.largest;
        out[i] = values[i] < code.bound ? code.none : WrapToPel(TruncToInt32(scaled));
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(NarrowValues);
HWY_EXPORT(LargestAbove);
HWY_EXPORT(EncodeValues);

void NarrowValues(const double* values, double least, std::size_t count, float* out) {
    HWY_DYNAMIC_DISPATCH(NarrowValues)(values, least, count, out);
}

float LargestAbove(const float* values, float bound, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(LargestAbove)(values, bound, count);
}

void EncodeValues(const float* values, const ValueCode& code, std::size_t count, Pel* out) {
    HWY_DYNAMIC_DISPATCH(EncodeValues)(values, code, count, out);
}

}  // namespace tq::kernels
#endif
