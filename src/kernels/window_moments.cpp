#include "kernels/window_moments.h"

#include <algorithm>
#include <cmath>

#include "core/numerics.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/window_moments.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using F32 = hn::ScalableTag<float>;
using I32 = hn::RebindToSigned<F32>;
using V = hn::Vec<F32>;

/// |order|, safe for the most negative one.
HWY_INLINE std::uint32_t Exponent(std::int32_t order) {
    const auto bits = static_cast<std::uint32_t>(order);
    return order < 0 ? 0U - bits : bits;
}

/// Repeated squaring from the lowest bit up: hosts' figures carry the roundings of this very chain.
struct AnyPower {
    std::int32_t order;

    HWY_INLINE V operator()(V base) const {
        auto power = hn::Set(F32(), 1.0f);
        for (std::uint32_t left = Exponent(order);; base = hn::Mul(base, base)) {
            if ((left & 1U) != 0) power = hn::Mul(power, base);
            left >>= 1;
            if (left == 0) break;
        }
        return order < 0 ? hn::Div(hn::Set(F32(), 1.0f), power) : power;
    }
    HWY_INLINE float operator()(float base) const {
        float power = 1.0f;
        for (std::uint32_t left = Exponent(order);; base = base * base) {
            if ((left & 1U) != 0) power = power * base;
            left >>= 1;
            if (left == 0) break;
        }
        return order < 0 ? 1.0f / power : power;
    }
};

struct Square {
    HWY_INLINE V operator()(V base) const { return hn::Mul(base, base); }
    HWY_INLINE float operator()(float base) const { return base * base; }
};

template <class Power>
HWY_INLINE float PlainMoment(const WindowBand& band, std::size_t at, const Power& power) {
    float sum = 0.0f;
    std::int32_t count = 0;
    for (std::size_t r = 0; r < band.windowRows; ++r) {
        for (std::size_t c = at; c < at + band.windowCols; ++c) {
            sum += band.rows[r][c];  // a 0 adds nothing
            count += band.rows[r][c] != 0.0f ? 1 : 0;
        }
    }
    if (count == 0) return 0.0f;
    const float mean = sum / static_cast<float>(count);
    float moment = 0.0f;
    for (std::size_t r = 0; r < band.windowRows; ++r) {
        for (std::size_t c = at; c < at + band.windowCols; ++c) {
            if (band.rows[r][c] != 0.0f) moment += power(std::abs(band.rows[r][c] - mean));
        }
    }
    return moment / static_cast<float>(count);
}

#if HWY_TARGET != HWY_SCALAR
template <class Visit>
HWY_INLINE void ForEachPel(const WindowBand& band, std::size_t at, Visit&& visit) {
    for (std::size_t r = 0; r < band.windowRows; ++r) {
        const float* row = band.rows[r] + at;
        for (std::size_t c = 0; c < band.windowCols; ++c)
            visit(row + c);
    }
}

HWY_INLINE V Deviation(V values, V means) {
    return hn::Abs(hn::Sub(values, means));
}

/// Two vectors of windows at a time: one window's additions wait for each other, those of two do not.
template <bool kHoles, class Power>
HWY_INLINE void MomentsOfTwoVectors(const WindowBand& band, std::size_t at, const Power& power, float* out) {
    const F32 d;
    const std::size_t lanes = hn::Lanes(d);
    const auto zero = hn::Zero(d);
    auto sum0 = zero, sum1 = zero;
    auto missing0 = hn::Zero(I32()), missing1 = missing0;  // minus the number of zeros
    ForEachPel(band, at, [&](const float* pel) HWY_ATTR {
        const auto v0 = hn::LoadU(d, pel);
        const auto v1 = hn::LoadU(d, pel + lanes);
        sum0 = hn::Add(sum0, v0);
        sum1 = hn::Add(sum1, v1);
        if constexpr (kHoles) {
            missing0 = hn::Add(missing0, hn::BitCast(I32(), hn::VecFromMask(d, hn::Eq(v0, zero))));
            missing1 = hn::Add(missing1, hn::BitCast(I32(), hn::VecFromMask(d, hn::Eq(v1, zero))));
        }
    });
    const auto area = hn::Set(I32(), static_cast<std::int32_t>(band.windowRows * band.windowCols));
    const auto count0 = hn::ConvertTo(d, hn::Add(area, missing0));
    const auto count1 = hn::ConvertTo(d, hn::Add(area, missing1));
    const auto mean0 = hn::Div(sum0, count0);
    const auto mean1 = hn::Div(sum1, count1);
    auto moment0 = zero, moment1 = zero;
    ForEachPel(band, at, [&](const float* pel) HWY_ATTR {
        const auto v0 = hn::LoadU(d, pel);
        const auto v1 = hn::LoadU(d, pel + lanes);
        auto term0 = power(Deviation(v0, mean0));
        auto term1 = power(Deviation(v1, mean1));
        if constexpr (kHoles) {
            term0 = hn::IfThenZeroElse(hn::Eq(v0, zero), term0);
            term1 = hn::IfThenZeroElse(hn::Eq(v1, zero), term1);
        }
        moment0 = hn::Add(moment0, term0);
        moment1 = hn::Add(moment1, term1);
    });
    hn::StoreU(hn::IfThenZeroElse(hn::Eq(count0, zero), hn::Div(moment0, count0)), d, out);
    hn::StoreU(hn::IfThenZeroElse(hn::Eq(count1, zero), hn::Div(moment1, count1)), d, out + lanes);
}
#endif

template <class Power>
HWY_INLINE void Moments(const WindowBand& band, const Power& power, float* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const std::size_t step = 2 * hn::Lanes(F32());
    for (; i + step <= band.windows; i += step) {
        if (band.holes) {
            MomentsOfTwoVectors<true>(band, i, power, out + i);
        } else {
            MomentsOfTwoVectors<false>(band, i, power, out + i);
        }
    }
#endif
    for (; i < band.windows; ++i)
        out[i] = PlainMoment(band, i, power);
}

float MomentsOfWindows(const WindowBand& band, std::int32_t order, float* out) {
    if (order == 2) {
        Moments(band, Square(), out);
    } else {
        Moments(band, AnyPower{order}, out);
    }
    float largest = 0.0f;
    for (std::size_t i = 0; i < band.windows; ++i)
        largest = out[i] > largest ? out[i] : largest;
    return largest;
}

void FloatsOfPels(const std::uint16_t* pels, std::size_t count, float* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const F32 d;
    const hn::Rebind<std::uint16_t, F32> d16;
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d))
        hn::StoreU(hn::ConvertTo(d, hn::PromoteTo(I32(), hn::LoadU(d16, pels + i))), d, out + i);
#endif
    for (; i < count; ++i)
        out[i] = pels[i];
}

void PelsOfFloats(const float* values, std::size_t count, float scale, std::uint16_t* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const F32 d;
    const hn::Rebind<std::uint16_t, F32> d16;
    // Below this every quotient is truncated alike by processor and plain form; anything else, an infinite
    // or missing quotient included, becomes INT32_MIN, whose low 16 bits are 0.
    const auto limit = hn::Set(d, 2147483648.0f);
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        const auto quotient = hn::Div(hn::LoadU(d, values + i), hn::Set(d, scale));
        const auto fitting = hn::IfThenElseZero(hn::Lt(quotient, limit), quotient);
        const auto level = hn::And(hn::ConvertTo(I32(), fitting), hn::Set(I32(), 0xFFFF));
        hn::StoreU(hn::DemoteTo(d16, level), d16, out + i);
    }
#endif
    for (; i < count; ++i)
        out[i] = WrapToPel(TruncToInt32(static_cast<double>(values[i] / scale)));
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(FloatsOfPels);
HWY_EXPORT(MomentsOfWindows);
HWY_EXPORT(PelsOfFloats);

void PelsToFloat(const std::uint16_t* pels, std::size_t count, float* out) {
    HWY_DYNAMIC_DISPATCH(FloatsOfPels)(pels, count, out);
}

float WindowMoments(const WindowBand& band, std::int32_t order, float* out) {
    return HWY_DYNAMIC_DISPATCH(MomentsOfWindows)(band, order, out);
}

void ScaledPels(const float* values, std::size_t count, float scale, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(PelsOfFloats)(values, count, scale, out);
}

}  // namespace tq::kernels
#endif
