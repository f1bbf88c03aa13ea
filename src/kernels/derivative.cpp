#include "kernels/derivative.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/derivative.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR
using I32 = hn::ScalableTag<std::int32_t>;
using F32 = hn::Rebind<float, I32>;
using U16 = hn::Rebind<std::uint16_t, I32>;
using Lanes = hn::Vec<I32>;

HWY_INLINE Lanes HalfTowardZero(Lanes value) {
    const hn::RebindToUnsigned<I32> u32;
    const auto sign = hn::BitCast(I32(), hn::ShiftRight<31>(hn::BitCast(u32, value)));
    return hn::ShiftRight<1>(hn::Add(value, sign));
}

/// Numbers below 2^21 and quotients at least 1/12 away from the next integer: the rounding of the division
/// reaches none.
HWY_INLINE Lanes TwelfthTowardZero(Lanes value) {
    const F32 d;
    return hn::ConvertTo(I32(), hn::Div(hn::ConvertTo(d, value), hn::Set(d, 12.0f)));
}

/// `load(k)` gives the pels k places further on.
template <class Load>
HWY_INLINE Lanes DerivativesOf(Derivative kind, Load&& load) {
    const I32 d;
    switch (kind) {
        case Derivative::kBackward:
            return hn::Sub(load(0), load(-1));
        case Derivative::kForward:
            return hn::Sub(load(1), load(0));
        case Derivative::kCentral:
            return HalfTowardZero(hn::Add(hn::Sub(load(1), load(-1)), hn::Set(d, 1)));
        case Derivative::kFivePoint: {
            const auto near = hn::ShiftLeft<3>(hn::Sub(load(1), load(-1)));
            return TwelfthTowardZero(hn::Add(hn::Add(hn::Sub(load(-2), load(2)), near), hn::Set(d, 6)));
        }
        default:
            return hn::Zero(d);
    }
}
#endif

void Derive(Derivative kind, const std::uint16_t* pels, std::ptrdiff_t step, std::size_t count,
            std::int32_t* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const I32 d;
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        const auto load = [&](std::ptrdiff_t k) {
            return hn::PromoteTo(d, hn::LoadU(U16(), pels + i + k * step));
        };
        hn::StoreU(DerivativesOf(kind, load), d, out + i);
    }
#endif
    for (; i < count; ++i) {
        out[i] = DerivativeOf(kind, [&](std::ptrdiff_t k) -> std::int32_t {
            return pels[k * step + static_cast<std::ptrdiff_t>(i)];
        });
    }
}

std::int32_t Magnitudes(const std::int32_t* x, const std::int32_t* y, std::size_t count, std::uint16_t* out) {
    std::int32_t largest = 0;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const I32 d;
    const F32 f32;
    auto best = hn::Zero(d);
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        const auto fx = hn::ConvertTo(f32, hn::LoadU(d, x + i));
        const auto fy = hn::ConvertTo(f32, hn::LoadU(d, y + i));
        const auto magnitude = hn::ConvertTo(d, hn::Sqrt(hn::Add(hn::Mul(fx, fx), hn::Mul(fy, fy))));
        best = hn::Max(best, magnitude);
        hn::StoreU(hn::DemoteTo(U16(), magnitude), U16(), out + i);
    }
    largest = hn::GetLane(hn::MaxOfLanes(d, best));
#endif
    for (; i < count; ++i) {
        const std::int32_t magnitude = Magnitude(x[i], y[i]);
        largest = std::max(largest, magnitude);
        out[i] = ClampToPel(magnitude);
    }
    return largest;
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(Derive);
HWY_EXPORT(Magnitudes);

void Derive(Derivative kind, const std::uint16_t* pels, std::ptrdiff_t step, std::size_t count,
            std::int32_t* out) {
    HWY_DYNAMIC_DISPATCH(Derive)(kind, pels, step, count, out);
}

std::int32_t Magnitudes(const std::int32_t* x, const std::int32_t* y, std::size_t count, std::uint16_t* out) {
    return HWY_DYNAMIC_DISPATCH(Magnitudes)(x, y, count, out);
}

}  // namespace tq::kernels
#endif
