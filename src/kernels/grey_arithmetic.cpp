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
    ComputePels<Excess::kCeiling, double>(out, count, formula, pels);
}

/// A number of 0 to below 1 in 32 bits behind the point, the rest cut off.
struct Fraction {
    explicit Fraction(double value) {
        const std::int32_t first = TruncToInt32(value * 65536.0);
        high = static_cast<Pel>(first);
        low = static_cast<Pel>(TruncToInt32((value * 65536.0 - first) * 65536.0));
    }
    Pel high;
    Pel low;
};

#if HWY_TARGET != HWY_SCALAR
/// Adds to a fraction of 16 bits and takes 1 from the whole, which has it in advance, unless the sum carries
/// into it: a sum modulo 65536 below the summand is one that carries.
template <class D, class V>
HWY_INLINE void AddFraction(D d, V part, V& fraction, V& whole) {
    fraction = hn::Add(fraction, part);
    const auto stays = hn::Eq(hn::Max(fraction, part), fraction);
    whole = hn::Add(whole, hn::VecFromMask(d, stays));  // all bits of a lane: -1
}
#endif

/// ScaleGreys in fixed point. The factor is exact there and so is the sum in a double; what is cut off behind
/// 16 bits of fraction cannot change the whole.
void ScaleInFixedPoint(const Pel* pels, double factor, Pel* out, std::size_t count) {
    const std::int32_t whole = TruncToInt32(factor);
    const Fraction fraction(factor - whole);
    MapPels(
        out, count,
        [=](auto d, auto v) {
            const auto high = hn::Set(d, fraction.high);
            const auto low = hn::Set(d, fraction.low);
            const auto times = hn::Set(d, static_cast<Pel>(whole));
            auto result = hn::Add(hn::MulHigh(v, high), hn::Set(d, 2));  // one for each fraction added
            auto behind = hn::Mul(v, high);
            AddFraction(d, hn::MulHigh(v, low), behind, result);
            AddFraction(d, hn::Set(d, 0x8000), behind, result);
            const auto fits = hn::Eq(hn::MulHigh(v, times), hn::Zero(d));
            const auto ceiling = hn::Set(d, Pel{kLargestPel});
            return hn::IfThenElse(fits, hn::SaturatedAdd(result, hn::Mul(v, times)), ceiling);
        },
        [=](Pel pel) { return ToPel<Excess::kCeiling>(pel * factor + 0.5); }, pels);
}

void ScaleToMaximum(const Pel* pels, double newMaximum, double oldMaximum, Pel* out, std::size_t count) {
    const double factor = newMaximum / oldMaximum;
    ComputeEstimated<Excess::kCeiling, double>(
        out, count, [=](auto k, auto pel) { return pel * k(newMaximum) / k(oldMaximum); },
        [=](auto k, auto pel) { return pel * k(factor); }, pels);
}

void StretchGreys(const Pel* pels, double pivot, double factor, Pel* out, std::size_t count) {
    const auto formula = [=](auto k, auto pel) { return (pel - k(pivot)) * k(factor) + k(pivot); };
    ComputePels<Excess::kWrap, double>(out, count, formula, pels);
}

HWY_INLINE Pel Largest(const Pel* pels, std::size_t count) {
    return count == 0 ? Pel{0} : *std::max_element(pels, pels + count);
}

/// fresh * freshShare + average * averageShare in fixed point with 32 bits behind the point.
struct FixedMean {
    Fraction freshShare;
    Fraction averageShare;
    Pel offset;  ///< in steps of 1 / 8192; not 0 when it alone keeps every mean on its side of the integers
};

#if HWY_TARGET != HWY_SCALAR
/// The four fractions of 16 bits that two products with shares have, as their sum in steps of 4 / 65536,
/// which still fits into 16 bits. Two levels of rounding up, four parts cut off and the last bits of the
/// exact formula: the true value lies from one step below to 1.25 steps above.
template <class V>
HWY_INLINE V SumOfFractions(V a, V b, V c, V d) {
    return hn::AverageRound(hn::AverageRound(a, b), hn::AverageRound(c, d));
}
#endif

/// Truncated means from the estimate in fixed point; exact(first, count) redoes those that are in doubt.
/// Returns the largest.
template <class Exact>
HWY_INLINE Pel MeanInFixedPoint([[maybe_unused]] const FixedMean& mean, [[maybe_unused]] const Pel* fresh,
                                [[maybe_unused]] const Pel* average, [[maybe_unused]] Pel* out,
                                std::size_t count, Exact exact) {
    Pel largest = 0;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<Pel> d;
    const std::size_t lanes = hn::Lanes(d);
    const auto freshHigh = hn::Set(d, mean.freshShare.high);
    const auto freshLow = hn::Set(d, mean.freshShare.low);
    const auto averageHigh = hn::Set(d, mean.averageShare.high);
    const auto averageLow = hn::Set(d, mean.averageShare.low);
    const auto offset = hn::Set(d, mean.offset);
    const auto one = hn::Set(d, 1);
    const auto doubtful = hn::Set(d, 4);
    auto best = hn::Zero(d);
    for (; i + lanes <= count; i += lanes) {
        const auto f = hn::LoadU(d, fresh + i);
        const auto a = hn::LoadU(d, average + i);
        const auto whole = hn::Add(hn::MulHigh(f, freshHigh), hn::MulHigh(a, averageHigh));
        const auto quarters = SumOfFractions(hn::Mul(f, freshHigh), hn::Mul(a, averageHigh),
                                             hn::MulHigh(f, freshLow), hn::MulHigh(a, averageLow));
        if (mean.offset != 0) {
            const auto carry = hn::ShiftRight<13>(hn::Add(hn::ShiftRight<1>(quarters), offset));
            const auto pels = hn::Add(whole, carry);
            best = hn::Max(best, pels);
            hn::StoreU(pels, d, out + i);
            continue;
        }
        // The first and the last step behind an integer, as 4 and 0.
        const auto behind = hn::ShiftLeft<2>(hn::Add(quarters, one));
        if (hn::AllFalse(d, hn::Eq(hn::Min(behind, doubtful), behind))) {
            const auto pels = hn::Add(whole, hn::ShiftRight<14>(quarters));
            best = hn::Max(best, pels);
            hn::StoreU(pels, d, out + i);
        } else {
            exact(i, lanes);
            best = hn::Max(best, hn::LoadU(d, out + i));
        }
    }
    largest = hn::GetLane(hn::MaxOfLanes(d, best));
#endif
    exact(i, count - i);
    return std::max(largest, Largest(out + i, count - i));
}

Pel ScaledMean(const RunningMean& mean, const Pel* fresh, const Pel* average, Pel* out, std::size_t count) {
    const RunningMean m = mean;
    const auto total = [=](auto k, auto f, auto a) {
        return f * k(double{m.freshScale}) + a * k(double{m.averageScale}) * k(m.count - 1.0);
    };
    const double reciprocal = 1.0 / (m.count * static_cast<double>(m.outScale));
    ComputeEstimated<Excess::kWrap, double>(
        out, count,
        [=](auto k, auto f, auto a) { return total(k, f, a) / k(m.count) / k(double{m.outScale}); },
        [=](auto k, auto f, auto a) { return total(k, f, a) * k(reciprocal); }, fresh, average);
    return Largest(out, count);
}

/// For scales of which none exceeds the result's, and counts up to 4096. With 16 bits for a pel, 24 for a
/// scale and 12 for the count, whatever makes an integer mean has an exact double at every step, so that a
/// mean that is not below an integer is not rounded below it either.
Pel MeanOfGreys(const RunningMean& mean, const Pel* fresh, const Pel* average, Pel* out, std::size_t count) {
    const double unit = (1.0 - 0x1p-48) / mean.count;  // lowered by more than the quotients' roundings
    const double outScale = mean.outScale;
    // With one scale the means are multiples of 1 / count, and half of that keeps all of them away from the
    // integers, by the two steps of 1 / 8192 that it takes at least.
    const bool oneScale = mean.freshScale == mean.averageScale && mean.count <= 2048.0;
    const FixedMean fixed{Fraction(unit * (mean.freshScale / outScale)),
                          Fraction(unit * (mean.averageScale / outScale * (mean.count - 1.0))),
                          static_cast<Pel>(oneScale ? TruncToInt32(4096.0 / mean.count) : 0)};
    return MeanInFixedPoint(fixed, fresh, average, out, count, [&](std::size_t first, std::size_t run) {
        ScaledMean(mean, fresh + first, average + first, out + first, run);
    });
}

void MultiplyGreys(const Pel* a, const Pel* b, float divisor, Pel* out, std::size_t count) {
    const auto formula = [=](auto k, auto pa, auto pb) { return pa * pb / k(divisor); };
    if (!(divisor >= 1.0f)) return ComputePels<Excess::kCeiling, float>(out, count, formula, a, b);
    const auto pels = [=](auto k, auto pa, auto pb) {
        return NotAbove(formula(k, pa, pb), k(static_cast<float>(kLargestPel)));
    };
    ComputePels<Excess::kNone, float>(out, count, pels, a, b);
}

void RootSumSquare(const Pel* a, const Pel* b, float weightA, float weightB, Pel* out, std::size_t count) {
    const auto formula = [=](auto k, auto pa, auto pb) {
        return SquareRoot(pa * pa * k(weightA) + pb * pb * k(weightB));
    };
    ComputePels<Excess::kWrap, float>(out, count, formula, a, b);
}

void DivideByFlatField(const Pel* pels, const Pel* reference, float whole, Pel* out, std::size_t count) {
    const auto formula = [=](auto k, auto pel, auto r) {
        const auto fraction = r / k(double{whole});
        return UnlessZero(fraction, pel / fraction, k(0.0));
    };
    // Beyond the levels of pels the products could leave single precision.
    if (!(whole >= 1.0f && whole <= 65535.0f))
        return ComputePels<Excess::kCeiling, double>(out, count, formula, pels, reference);
    ComputeRoughly(
        out, count, formula,
        [=](auto k, auto pel, auto r) { return UnlessZero(r, pel * k(whole) / r, k(0.0f)); }, pels,
        reference);
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

/// The combination of gradients as a formula.
HWY_INLINE auto GradientOf(const Gradients& gradients) {
    return [g = gradients](auto k, auto a, auto b, auto c) {
        const auto la = a * k(g.scales[0]);
        const auto lb = b * k(g.scales[1]);
        const auto lc = c * k(g.scales[2]);
        return SquareRoot(la * la * k(g.weightA) + (lb * lb + lc * lc) * k(g.weightBc));
    };
}

float LargestGradient(const Gradients& gradients, std::size_t count) {
    return LargestResult(0.0f, count, GradientOf(gradients), gradients.pels[0], gradients.pels[1],
                         gradients.pels[2]);
}

void WriteGradients(const Gradients& gradients, float factor, Pel* out, std::size_t count) {
    const auto gradient = GradientOf(gradients);
    const auto formula = [=](auto k, auto a, auto b, auto c) { return gradient(k, a, b, c) * k(factor); };
    ComputePels<Excess::kClamp, float>(out, count, formula, gradients.pels[0], gradients.pels[1],
                                       gradients.pels[2]);
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
HWY_EXPORT(ScaleInFixedPoint);
HWY_EXPORT(ScaleToMaximum);
HWY_EXPORT(StretchGreys);
HWY_EXPORT(ScaledMean);
HWY_EXPORT(MeanOfGreys);
HWY_EXPORT(MultiplyGreys);
HWY_EXPORT(RootSumSquare);
HWY_EXPORT(DivideByFlatField);
HWY_EXPORT(LargestRatio);
HWY_EXPORT(WriteRatios);
HWY_EXPORT(LargestLuminance);
HWY_EXPORT(WriteLuminances);
HWY_EXPORT(LargestGradient);
HWY_EXPORT(WriteGradients);
HWY_EXPORT(SubtractLuminances);

namespace {

/// Factors whose 24 bits lie within 16 before and 32 behind the point, and whose results within 31 bits.
constexpr double kLowestFixedFactor = 0x1p-8;
constexpr double kHighestFixedFactor = 32767.0;

bool FitsFixedPoint(const RunningMean& mean) noexcept {
    const auto fits = [&](float scale) { return scale > 0.0f && scale <= mean.outScale; };
    return fits(mean.freshScale) && fits(mean.averageScale) && std::isfinite(mean.outScale) &&
           mean.count >= 2.0 && mean.count <= 4096.0;
}

}  // namespace

void ScaleGreys(const Pel* pels, float factor, Pel* out, std::size_t count) {
    if (factor >= kLowestFixedFactor && factor <= kHighestFixedFactor)
        return HWY_DYNAMIC_DISPATCH(ScaleInFixedPoint)(pels, factor, out, count);
    HWY_DYNAMIC_DISPATCH(ScaleGreys)(pels, factor, out, count);
}

void ScaleToMaximum(const Pel* pels, double newMaximum, double oldMaximum, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(ScaleToMaximum)(pels, newMaximum, oldMaximum, out, count);
}

void StretchGreys(const Pel* pels, double pivot, double factor, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(StretchGreys)(pels, pivot, factor, out, count);
}

Pel FoldIntoMean(const RunningMean& mean, const Pel* fresh, const Pel* average, Pel* out, std::size_t count) {
    if (FitsFixedPoint(mean)) return HWY_DYNAMIC_DISPATCH(MeanOfGreys)(mean, fresh, average, out, count);
    return HWY_DYNAMIC_DISPATCH(ScaledMean)(mean, fresh, average, out, count);
}

void MultiplyGreys(const Pel* a, const Pel* b, float divisor, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(MultiplyGreys)(a, b, divisor, out, count);
}

void RootSumSquare(const Pel* a, const Pel* b, float weightA, float weightB, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(RootSumSquare)(a, b, weightA, weightB, out, count);
}

void DivideByFlatField(const Pel* pels, const Pel* reference, float whole, Pel* out, std::size_t count) {
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

float LargestGradient(const Gradients& gradients, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(LargestGradient)(gradients, count);
}

void WriteGradients(const Gradients& gradients, float factor, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(WriteGradients)(gradients, factor, out, count);
}

void SubtractLuminances(const Pel* a, const Pel* b, double scaleA, double scaleB, Pel* out,
                        std::size_t count) {
    HWY_DYNAMIC_DISPATCH(SubtractLuminances)(a, b, scaleA, scaleB, out, count);
}

}  // namespace tq::kernels
#endif
