#include "kernels/grey_arithmetic.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/grey_arithmetic.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

#include "kernels/pel_loops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

void ScaleGreys(const Pel* pels, double factor, Pel* out, std::size_t count) {
    const auto formula = [=](auto k, auto pel) { return pel * k(factor) + k(0.5); };
    ComputePels<Excess::kCap, double>(out, count, formula, pels);
}

void ScaleToMaximum(const Pel* pels, double newMaximum, double oldMaximum, Pel* out, std::size_t count) {
    const double factor = newMaximum / oldMaximum;
    ComputeEstimated<Excess::kCap, double>(
        out, count, [=](auto k, auto pel) { return pel * k(newMaximum) / k(oldMaximum); },
        [=](auto k, auto pel) { return pel * k(factor); }, pels);
}

void StretchGreys(const Pel* pels, double pivot, double factor, Pel* out, std::size_t count) {
    const auto formula = [=](auto k, auto pel) { return (pel - k(pivot)) * k(factor) + k(pivot); };
    ComputePels<Excess::kWrap, double>(out, count, formula, pels);
}

void HalvedSum(const Pel* a, const Pel* b, Pel* out, std::size_t count) {
    MapPels(
        out, count,
        [](auto, auto va, auto vb) { return hn::Add(hn::And(va, vb), hn::ShiftRight<1>(hn::Xor(va, vb))); },
        [](Pel pa, Pel pb) { return WrapToPel((pa + pb) / 2); }, a, b);
}

/// floor((fresh + average * (n - 1)) / n) for n up to 4096. With a half added the quotient keeps 1 / 2n from
/// every integer, far more than the reciprocal's error.
void WeightedMean(const Pel* fresh, const Pel* average, double n, Pel* out, std::size_t count) {
    const double reciprocal = 1.0 / n;
    const auto formula = [=](auto k, auto f, auto a) {
        return (f + a * k(n - 1.0) + k(0.5)) * k(reciprocal);
    };
    ComputePels<Excess::kWrap, double>(out, count, formula, fresh, average);
}

void ScaledMean(const RunningMean& mean, const Pel* fresh, const Pel* average, Pel* out, std::size_t count) {
    const RunningMean m = mean;
    const auto total = [=](auto k, auto f, auto a) {
        return f * k(double{m.freshScale}) + a * k(double{m.averageScale}) * k(m.count - 1.0);
    };
    const double reciprocal = 1.0 / (m.count * static_cast<double>(m.outScale));
    ComputeEstimated<Excess::kWrap, double>(
        out, count,
        [=](auto k, auto f, auto a) { return total(k, f, a) / k(m.count) / k(double{m.outScale}); },
        [=](auto k, auto f, auto a) { return total(k, f, a) * k(reciprocal); }, fresh, average);
}

void MultiplyGreys(const Pel* a, const Pel* b, float divisor, Pel* out, std::size_t count) {
    const auto formula = [=](auto k, auto pa, auto pb) { return pa * pb / k(divisor); };
    ComputePels<Excess::kCeiling, float>(out, count, formula, a, b);
}

void RootSumSquare(const Pel* a, const Pel* b, float weightA, float weightB, Pel* out, std::size_t count) {
    const auto formula = [=](auto k, auto pa, auto pb) {
        return SquareRoot(pa * pa * k(weightA) + pb * pb * k(weightB));
    };
    ComputePels<Excess::kWrap, float>(out, count, formula, a, b);
}

void DivideByFlatField(const Pel* pels, const Pel* reference, double whole, Pel* out, std::size_t count) {
    ComputeEstimated<Excess::kCeiling, double>(
        out, count,
        [=](auto k, auto pel, auto r) {
            const auto fraction = r / k(whole);
            return UnlessZero(fraction, pel / fraction, k(0.0));
        },
        [=](auto k, auto pel, auto r) { return UnlessZero(r, pel * k(whole) / r, k(0.0)); }, pels, reference);
}

/// The ratio as a formula.
HWY_INLINE auto RatioOf(const LuminanceRatio& ratio) {
    return [r = ratio](auto k, auto n, auto d) {
        const auto luminance = d * k(r.denominatorScale);
        return UnlessZero(luminance, n * k(r.numeratorScale) / luminance, k(r.withoutDenominator));
    };
}

double LargestRatio(double start, const LuminanceRatio& ratio, const Pel* numerator, const Pel* denominator,
                    std::size_t count) {
    return LargestResult(start, count, RatioOf(ratio), numerator, denominator);
}

void WriteRatios(const LuminanceRatio& ratio, const Pel* numerator, const Pel* denominator, double outScale,
                 Pel* out, std::size_t count) {
    const auto exact = RatioOf(ratio);
    const double denominatorScale = ratio.denominatorScale;
    const double scales = ratio.numeratorScale / (ratio.denominatorScale * outScale);
    const double without = ratio.withoutDenominator / outScale;
    ComputeEstimated<Excess::kWrap, double>(
        out, count, [=](auto k, auto n, auto d) { return exact(k, n, d) / k(outScale) + k(0.5); },
        [=](auto k, auto n, auto d) {
            return UnlessZero(d * k(denominatorScale), n * k(scales) / d, k(without)) + k(0.5);
        },
        numerator, denominator);
}

/// The sum of the channels, rounded to single precision, as a formula.
HWY_INLINE auto LuminanceOf(const Channels& channels) {
    return [x = channels.scales[0], y = channels.scales[1], z = channels.scales[2]](
               auto k, auto a, auto b, auto c) { return RoundToFloat(a * k(x) + b * k(y) + c * k(z)); };
}

double LargestLuminance(const Channels& channels, std::size_t count) {
    return LargestResult(0.0, count, LuminanceOf(channels), channels.pels[0], channels.pels[1],
                         channels.pels[2]);
}

void WriteLuminances(const Channels& channels, const LuminanceScale& scale, Pel* out, std::size_t count) {
    const LuminanceScale s = scale;
    const auto sum = LuminanceOf(channels);
    const double factor = s.fullScale / s.largest;
    ComputeEstimated<Excess::kWrap, double>(
        out, count,
        [=](auto k, auto a, auto b, auto c) {
            return sum(k, a, b, c) * k(s.fullScale) / k(s.largest) + k(s.rounding);
        },
        [=](auto k, auto a, auto b, auto c) { return sum(k, a, b, c) * k(factor) + k(s.rounding); },
        channels.pels[0], channels.pels[1], channels.pels[2]);
}

void SubtractLuminances(const Pel* a, const Pel* b, double scaleA, double scaleB, Pel* out,
                        std::size_t count) {
    const auto difference = [=](auto k, auto pa, auto pb) { return pa * k(scaleA) - pb * k(scaleB); };
    const double reciprocal = 1.0 / scaleA;
    ComputeEstimated<Excess::kClamp, double>(
        out, count, [=](auto k, auto pa, auto pb) { return difference(k, pa, pb) / k(scaleA) + k(0.5); },
        [=](auto k, auto pa, auto pb) { return difference(k, pa, pb) * k(reciprocal) + k(0.5); }, a, b);
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include <cmath>

namespace tq::kernels {

HWY_EXPORT(ScaleGreys);
HWY_EXPORT(ScaleToMaximum);
HWY_EXPORT(StretchGreys);
HWY_EXPORT(HalvedSum);
HWY_EXPORT(WeightedMean);
HWY_EXPORT(ScaledMean);
HWY_EXPORT(MultiplyGreys);
HWY_EXPORT(RootSumSquare);
HWY_EXPORT(DivideByFlatField);
HWY_EXPORT(LargestRatio);
HWY_EXPORT(WriteRatios);
HWY_EXPORT(LargestLuminance);
HWY_EXPORT(WriteLuminances);
HWY_EXPORT(SubtractLuminances);

namespace {

/// One float32 scale throughout cancels: with 16 bits for a pel, 24 for the scale and 12 for the count every
/// product and sum fits into the 53 of a double, an integer mean comes out of both divisions exact, and any
/// other keeps 1 / 4096 from the next integer, far more than their roundings. What remains is integers.
bool ScaleCancels(const RunningMean& mean) noexcept {
    return mean.freshScale == mean.averageScale && mean.freshScale == mean.outScale &&
           std::isfinite(mean.outScale) && mean.outScale != 0.0f && mean.count <= 4096.0;
}

}  // namespace

void ScaleGreys(const Pel* pels, double factor, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(ScaleGreys)(pels, factor, out, count);
}

void ScaleToMaximum(const Pel* pels, double newMaximum, double oldMaximum, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(ScaleToMaximum)(pels, newMaximum, oldMaximum, out, count);
}

void StretchGreys(const Pel* pels, double pivot, double factor, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(StretchGreys)(pels, pivot, factor, out, count);
}

void FoldIntoMean(const RunningMean& mean, const Pel* fresh, const Pel* average, Pel* out,
                  std::size_t count) {
    if (!ScaleCancels(mean)) return HWY_DYNAMIC_DISPATCH(ScaledMean)(mean, fresh, average, out, count);
    if (mean.count == 2.0) return HWY_DYNAMIC_DISPATCH(HalvedSum)(fresh, average, out, count);
    HWY_DYNAMIC_DISPATCH(WeightedMean)(fresh, average, mean.count, out, count);
}

void MultiplyGreys(const Pel* a, const Pel* b, float divisor, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(MultiplyGreys)(a, b, divisor, out, count);
}

void RootSumSquare(const Pel* a, const Pel* b, float weightA, float weightB, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(RootSumSquare)(a, b, weightA, weightB, out, count);
}

void DivideByFlatField(const Pel* pels, const Pel* reference, double whole, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(DivideByFlatField)(pels, reference, whole, out, count);
}

double LargestRatio(double start, const LuminanceRatio& ratio, const Pel* numerator, const Pel* denominator,
                    std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(LargestRatio)(start, ratio, numerator, denominator, count);
}

void WriteRatios(const LuminanceRatio& ratio, const Pel* numerator, const Pel* denominator, double outScale,
                 Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(WriteRatios)(ratio, numerator, denominator, outScale, out, count);
}

double LargestLuminance(const Channels& channels, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(LargestLuminance)(channels, count);
}

void WriteLuminances(const Channels& channels, const LuminanceScale& scale, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(WriteLuminances)(channels, scale, out, count);
}

void SubtractLuminances(const Pel* a, const Pel* b, double scaleA, double scaleB, Pel* out,
                        std::size_t count) {
    HWY_DYNAMIC_DISPATCH(SubtractLuminances)(a, b, scaleA, scaleB, out, count);
}

}  // namespace tq::kernels
#endif
