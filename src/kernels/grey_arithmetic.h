#pragma once

#include <cstddef>

#include "core/numerics.h"

/// Operations on runs of pels in floating point, double unless it says otherwise, each result truncated once.
/// They give the same bits on every instruction set. `out` may be any of the inputs.
namespace tq::kernels {

/// pel * factor + 0.5, truncated; 65535 above it, else the low 16 bits.
void ScaleGreys(const Pel* pels, float factor, Pel* out, std::size_t count);

/// pel * newMaximum / oldMaximum; 65535 above it, else the low 16 bits.
void ScaleToMaximum(const Pel* pels, double newMaximum, double oldMaximum, Pel* out, std::size_t count);

/// (pel - pivot) * factor + pivot; the low 16 bits.
void StretchGreys(const Pel* pels, double pivot, double factor, Pel* out, std::size_t count);

/// The next of a series of means over `count` images.
struct RunningMean {
    float freshScale;
    float averageScale;
    double count;  ///< 2 or more, the fresh image included
    float outScale;
};

/// ((fresh * freshScale + average * averageScale * (count - 1)) / count) / outScale; the low 16 bits. Returns
/// the largest.
Pel FoldIntoMean(const RunningMean& mean, const Pel* fresh, const Pel* average, Pel* out, std::size_t count);

/// (a * b) / divisor in single precision; 65535 above it, else the low 16 bits.
void MultiplyGreys(const Pel* a, const Pel* b, float divisor, Pel* out, std::size_t count);

/// sqrt(a^2 * weightA + b^2 * weightB) in single precision; the low 16 bits.
void RootSumSquare(const Pel* a, const Pel* b, float weightA, float weightB, Pel* out, std::size_t count);

/// pel / (reference / whole) and 0 where the inner quotient is 0; 65535 above it, else the low 16 bits.
void DivideByFlatField(const Pel* pels, const Pel* reference, float whole, Pel* out, std::size_t count);

/// The quotient of two luminances, numerator * numeratorScale over denominator * denominatorScale.
struct LuminanceRatio {
    double numeratorScale;
    double denominatorScale;
    double withoutDenominator;  ///< the ratio where the denominator is 0
};

double LargestRatio(double start, const LuminanceRatio& ratio, const Pel* numerator, const Pel* denominator,
                    std::size_t count);

/// ratio / outScale + 0.5; the low 16 bits.
void WriteRatios(const LuminanceRatio& ratio, const Pel* numerator, const Pel* denominator, double outScale,
                 Pel* out, std::size_t count);

/// Up to three channels of one scene. One that is absent has the scale 0 and the pels of another.
struct Channels {
    const Pel* pels[3];
    double scales[3];

    Channels From(std::size_t first) const noexcept {
        return {{pels[0] + first, pels[1] + first, pels[2] + first}, {scales[0], scales[1], scales[2]}};
    }
};

/// The largest sum of pels times scales, each sum rounded to single precision; 0 if none is positive.
double LargestLuminance(const Channels& channels, std::size_t count);

/// sum * fullScale / largest + rounding, where the sum is rounded to single precision; the low 16 bits.
struct LuminanceScale {
    double fullScale;
    double largest;
    double rounding;
};

void WriteLuminances(const Channels& channels, const LuminanceScale& scale, Pel* out, std::size_t count);

/// Three gradients in single precision, step by step: sqrt(a^2 * weightA + (b^2 + c^2) * weightBc), each the
/// pel times its scale.
struct Gradients {
    const Pel* pels[3];
    float scales[3];
    float weightA;
    float weightBc;
};

/// The largest; 0 if none is positive.
float LargestGradient(const Gradients& gradients, std::size_t count);

/// Each times a factor, clamped.
void WriteGradients(const Gradients& gradients, float factor, Pel* out, std::size_t count);

/// (a * scaleA - b * scaleB) / scaleA + 0.5, clamped.
void SubtractLuminances(const Pel* a, const Pel* b, double scaleA, double scaleB, Pel* out,
                        std::size_t count);

}  // namespace tq::kernels
