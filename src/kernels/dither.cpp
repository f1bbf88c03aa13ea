#include "kernels/dither.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/dither.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

#include "kernels/pel_loops-inl.h"

#ifndef TQIMAGE_KERNELS_DITHER_ONCE
#define TQIMAGE_KERNELS_DITHER_ONCE
namespace tq::kernels {

/// state -> multiplier * state + increment modulo 2^32.
struct LinearStep {
    std::uint32_t multiplier;
    std::uint32_t increment;

    std::uint32_t operator()(std::uint32_t state) const { return multiplier * state + increment; }
    /// This step, then `next`: a step of the same form, so that a generator can jump.
    LinearStep Then(LinearStep next) const { return {next.multiplier * multiplier, next(increment)}; }
};

/// The generator whose bits 16..30 are the runtime's numbers.
inline constexpr LinearStep kRuntimeStep{214013, 2531011};
inline constexpr int kNumberShift = 16;
inline constexpr std::uint32_t kNumberMask = 0x7FFF;
inline constexpr double kNumberScale = 1.0 / 32768.0;

}  // namespace tq::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

HWY_INLINE Pel DitheredByte(Pel pel, double factor, std::uint32_t state) {
    const double value = pel * factor + (state >> kNumberShift & kNumberMask) * kNumberScale;
    if (!(value > 0.0)) return 0;
    return static_cast<Pel>(TruncToInt32(value < 255.0 ? value : 255.0));
}

#if HWY_TARGET != HWY_SCALAR
template <class V32>
HWY_INLINE auto DitheredBytes(hn::ScalableTag<double> d, const Pel* pels, double factor, V32 numbers) {
    const hn::Rebind<std::int32_t, decltype(d)> d32;
    const auto dither = hn::Mul(hn::PromoteTo(d, hn::BitCast(d32, numbers)), hn::Set(d, kNumberScale));
    const auto value = hn::Add(hn::Mul(LoadNumbers(d, pels), hn::Set(d, factor)), dither);
    const auto limited = hn::Min(value, hn::Set(d, 255.0));
    const auto lit = hn::IfThenElseZero(hn::Gt(value, hn::Zero(d)), limited);
    return hn::DemoteTo(hn::Rebind<Pel, decltype(d)>(), hn::DemoteTo(d32, lit));
}
#endif

void DitherToBytes(const Pel* pels, double factor, std::uint32_t seed, Pel* out, std::size_t count) {
    std::uint32_t state = kRuntimeStep(seed);
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    // As many interleaved generators as there are lanes, each jumping over the numbers of the others.
    const hn::ScalableTag<std::uint32_t> d32;
    const hn::Half<decltype(d32)> half;
    const hn::ScalableTag<double> d;
    const hn::Rebind<Pel, decltype(d)> d16;
    const std::size_t lanes = hn::Lanes(d32);
    HWY_ALIGN std::uint32_t first[hn::MaxLanes(d32)];
    LinearStep jump{1, 0};
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        first[lane] = jump(state);
        jump = jump.Then(kRuntimeStep);
    }
    const auto multiplier = hn::Set(d32, jump.multiplier);
    const auto increment = hn::Set(d32, jump.increment);
    auto states = hn::Load(d32, first);
    for (; i + lanes <= count; i += lanes) {
        const auto numbers = hn::And(hn::ShiftRight<kNumberShift>(states), hn::Set(d32, kNumberMask));
        states = hn::Add(hn::Mul(states, multiplier), increment);
        const auto low = DitheredBytes(d, pels + i, factor, hn::LowerHalf(half, numbers));
        const auto high = DitheredBytes(d, pels + i + lanes / 2, factor, hn::UpperHalf(half, numbers));
        hn::StoreU(low, d16, out + i);
        hn::StoreU(high, d16, out + i + lanes / 2);
    }
    state = hn::GetLane(states);
#endif
    for (; i < count; ++i) {
        out[i] = DitheredByte(pels[i], factor, state);
        state = kRuntimeStep(state);
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(DitherToBytes);

void DitherToBytes(const Pel* pels, double factor, std::uint32_t seed, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(DitherToBytes)(pels, factor, seed, out, count);
}

}  // namespace tq::kernels
#endif
