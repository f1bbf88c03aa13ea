// The loops of the point operations, compiled once for each instruction set like the kernels that include
// them. An operation hands in its arithmetic; loading, converting, storing and finishing a run are here.

#if defined(TQIMAGE_KERNELS_PEL_LOOPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TQIMAGE_KERNELS_PEL_LOOPS_INL_H
#undef TQIMAGE_KERNELS_PEL_LOOPS_INL_H
#else
#define TQIMAGE_KERNELS_PEL_LOOPS_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/numerics.h"
#include "kernels/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// out[i] = plain(in[i]...), where vector(d, lanes...) does the same to a vector of pels. `out` may be any of
/// the inputs, here and below.
template <class Vector, class Plain, class... In>
HWY_INLINE void MapPels(Pel* out, std::size_t count, [[maybe_unused]] Vector vector, Plain plain,
                        const In*... in) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<Pel> d;
    const std::size_t lanes = hn::Lanes(d);
    for (; i + lanes <= count; i += lanes)
        hn::StoreU(vector(d, hn::LoadU(d, in + i)...), d, out + i);
#endif
    for (; i < count; ++i)
        out[i] = plain(in[i]...);
}

// Formulas in floating point are written once, as formula(k, pels...), for vectors and for single numbers:
// the operators exist for both, k(x) is the constant x, and the functions below stand for the rest.

template <class T>
struct PlainConstants {
    HWY_INLINE T operator()(T value) const { return value; }
};

template <class D>
struct LaneConstants {
    HWY_INLINE hn::Vec<D> operator()(hn::TFromD<D> value) const { return hn::Set(D(), value); }
};

HWY_INLINE float SquareRoot(float value) {
    return std::sqrt(value);
}

/// A double through single precision.
HWY_INLINE double RoundToFloat(double value) {
    return static_cast<double>(static_cast<float>(value));
}

/// `value`, or `instead` where `divisor` is 0.
HWY_INLINE double UnlessZero(double divisor, double value, double instead) {
    return divisor == 0.0 ? instead : value;
}

/// `value`, at most `limit`. What is not a number is not asked for.
template <class T>
HWY_INLINE T NotAbove(T value, T limit) {
#if HWY_TARGET != HWY_SCALAR
    if constexpr (!std::is_arithmetic_v<T>)
        return hn::Min(value, limit);
    else
#endif
        return std::min(value, limit);
}

#if HWY_TARGET != HWY_SCALAR
template <class V>
HWY_INLINE V SquareRoot(V value) {
    return hn::Sqrt(value);
}

template <class V>
HWY_INLINE V RoundToFloat(V value) {
    return Rounded(hn::DFromV<V>(), value);
}

template <class V>
HWY_INLINE V UnlessZero(V divisor, V value, V instead) {
    return hn::IfThenElse(hn::Eq(divisor, hn::Zero(hn::DFromV<V>())), instead, value);
}
#endif

/// What becomes of a result that is no pel: the low 16 bits of its truncation; the pel nearest to that; 65535
/// where the result itself, be it too large for an integer, is above that, and else the low 16 bits. kNone
/// promises results from 0 to below 65536.
enum class Excess { kWrap, kClamp, kCeiling, kNone };

template <Excess kExcess, class T>
HWY_INLINE Pel ToPel(T value) {
    if (kExcess == Excess::kCeiling && value > T{kLargestPel}) return Pel{kLargestPel};
    const std::int32_t whole = TruncToInt32(static_cast<double>(value));
    return kExcess == Excess::kClamp ? ClampToPel(whole) : WrapToPel(whole);
}

#if HWY_TARGET != HWY_SCALAR
HWY_INLINE hn::Vec<hn::ScalableTag<double>> LoadNumbers(hn::ScalableTag<double> d, const Pel* pels) {
    const hn::Rebind<std::int32_t, decltype(d)> d32;
    return hn::PromoteTo(d, hn::PromoteTo(d32, hn::LoadU(hn::Rebind<Pel, decltype(d)>(), pels)));
}

HWY_INLINE hn::Vec<hn::ScalableTag<double>> LoadNumbers(hn::ScalableTag<double> d,
                                                        const std::int32_t* numbers) {
    return hn::PromoteTo(d, hn::LoadU(hn::Rebind<std::int32_t, decltype(d)>(), numbers));
}

HWY_INLINE hn::Vec<hn::ScalableTag<float>> LoadNumbers(hn::ScalableTag<float> d, const Pel* pels) {
    const hn::Rebind<std::int32_t, decltype(d)> d32;
    return hn::ConvertTo(d, hn::PromoteTo(d32, hn::LoadU(hn::Rebind<Pel, decltype(d)>(), pels)));
}

HWY_INLINE auto TruncateLanes(hn::ScalableTag<double> d, hn::Vec<hn::ScalableTag<double>> values) {
    return hn::DemoteTo(hn::Rebind<std::int32_t, decltype(d)>(), values);
}

HWY_INLINE auto TruncateLanes(hn::ScalableTag<float> d, hn::Vec<hn::ScalableTag<float>> values) {
    return hn::ConvertTo(hn::RebindToSigned<decltype(d)>(), values);
}

/// ToPel for a vector. The conversions of the instruction sets differ outside the range of 32 bits, so
/// nothing outside it reaches them.
template <Excess kExcess, class D, class V>
HWY_INLINE auto ToPels(D d, V values) {
    using T = hn::TFromD<D>;
    const hn::Rebind<std::int32_t, D> d32;
    if (kExcess == Excess::kNone) return hn::DemoteTo(hn::Rebind<Pel, D>(), TruncateLanes(d, values));
    const auto ceiling = hn::Set(d, T{kLargestPel});
    if (kExcess == Excess::kCeiling) values = hn::IfThenElse(hn::Gt(values, ceiling), ceiling, values);
    const auto lowest = hn::Set(d, T{-2147483648.0});
    auto fits = hn::Ge(values, lowest);
    if (kExcess != Excess::kCeiling) fits = hn::And(fits, hn::Lt(values, hn::Set(d, T{2147483648.0})));
    auto whole = TruncateLanes(d, hn::IfThenElse(fits, values, lowest));
    if (kExcess != Excess::kClamp) whole = hn::And(whole, hn::Set(d32, 0xFFFF));
    return hn::DemoteTo(hn::Rebind<Pel, D>(), whole);  // saturates, which is the clamp
}

/// Lanes whose truncation a relative error of a few 2^-52 cannot change: below 2^20 it amounts to 1e-9. NaN
/// is not among them.
template <class D, class V>
HWY_INLINE auto SurelyTruncated(D d, V values) {
    const auto distance = hn::Abs(hn::Sub(values, hn::Round(values)));
    return hn::And(hn::Gt(distance, hn::Set(d, 1e-7)), hn::Lt(hn::Abs(values), hn::Set(d, 1048576.0)));
}
#endif

/// out[i] = formula(k, in[i]...) in precision T, truncated.
template <Excess kExcess, class T, class Formula, class... In>
HWY_INLINE void ComputePels(Pel* out, std::size_t count, Formula formula, const In*... in) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<T> d;
    const hn::Rebind<Pel, decltype(d)> d16;
    const std::size_t lanes = hn::Lanes(d);
    for (; i + lanes <= count; i += lanes) {
        const auto values = formula(LaneConstants<decltype(d)>(), LoadNumbers(d, in + i)...);
        hn::StoreU(ToPels<kExcess>(d, values), d16, out + i);
    }
#endif
    for (; i < count; ++i)
        out[i] = ToPel<kExcess>(formula(PlainConstants<T>(), static_cast<T>(in[i])...));
}

/// out[i] = formula(k, in[i]...) in precision T, truncated. Where `estimate` gives no sure truncation the
/// formula, which divides more often, has the word.
template <Excess kExcess, class T, class Formula, class Estimate, class... In>
HWY_INLINE void ComputeEstimated(Pel* out, std::size_t count, Formula formula,
                                 [[maybe_unused]] Estimate estimate, const In*... in) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<T> d;
    const hn::Rebind<Pel, decltype(d)> d16;
    const LaneConstants<decltype(d)> k;
    const std::size_t lanes = hn::Lanes(d);
    for (; i + lanes <= count; i += lanes) {
        auto values = estimate(k, LoadNumbers(d, in + i)...);
        if (!hn::AllTrue(d, SurelyTruncated(d, values))) values = formula(k, LoadNumbers(d, in + i)...);
        hn::StoreU(ToPels<kExcess>(d, values), d16, out + i);
    }
#endif
    for (; i < count; ++i)
        out[i] = ToPel<kExcess>(formula(PlainConstants<T>(), static_cast<T>(in[i])...));
}

/// The same for estimates in single precision that lie within 2^-23 of the formula's double, so that twice
/// that away from an integer the truncation is sure, and above the largest pel the ceiling.
template <class Formula, class Estimate, class... In>
HWY_INLINE void ComputeRoughly(Pel* out, std::size_t count, Formula formula,
                               [[maybe_unused]] Estimate estimate, const In*... in) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<float> d;
    const std::size_t lanes = hn::Lanes(d);
    const auto large = hn::Set(d, 65537.0f);
    for (; i + lanes <= count; i += lanes) {
        const auto values = hn::Min(estimate(LaneConstants<decltype(d)>(), LoadNumbers(d, in + i)...), large);
        const auto distance = hn::Abs(hn::Sub(values, hn::Round(values)));
        const auto sure =
            hn::Or(hn::Ge(distance, hn::Mul(values, hn::Set(d, 0x1p-22f))), hn::Ge(values, large));
        if (hn::AllTrue(d, sure)) {
            hn::StoreU(ToPels<Excess::kCeiling>(d, values), hn::Rebind<Pel, decltype(d)>(), out + i);
        } else {
            ComputePels<Excess::kCeiling, double>(out + i, lanes, formula, (in + i)...);
        }
    }
#endif
    ComputePels<Excess::kCeiling, double>(out + i, count - i, formula, (in + i)...);
}

/// The largest formula(k, in[i]...) in precision T that exceeds `start`, else `start`. NaN exceeds nothing.
template <class T, class Formula, class... In>
HWY_INLINE T LargestResult(T start, std::size_t count, Formula formula, const In*... in) {
    T largest = start;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<T> d;
    const std::size_t lanes = hn::Lanes(d);
    auto best = hn::Set(d, start);
    for (; i + lanes <= count; i += lanes) {
        const auto values = formula(LaneConstants<decltype(d)>(), LoadNumbers(d, in + i)...);
        best = hn::IfThenElse(hn::Gt(values, best), values, best);
    }
    largest = hn::GetLane(hn::MaxOfLanes(d, best));
#endif
    for (; i < count; ++i) {
        const T value = formula(PlainConstants<T>(), static_cast<T>(in[i])...);
        if (value > largest) largest = value;
    }
    return largest + T{0};  // of zeros of both signs each instruction set would choose its own
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
