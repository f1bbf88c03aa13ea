#include "interchange/combined_gamma.h"

#include <algorithm>
#include <cmath>

#include "core/numerics.h"
#include "core/portable_math.h"
#include "interchange/tone_curve.h"

namespace tq {
namespace {

float Power(double base, double exponent) noexcept {
    return static_cast<float>(std::pow(base, exponent));
}

}  // namespace

double Largest(const Triple& values) noexcept {
    return std::max(std::max(values[kRed], values[kGreen]), values[kBlue]);
}

void EncodeWithGamma(const Triple& light, double gamma, std::uint8_t* pixel) {
    const double largest = Largest(light);
    const auto scaled = [&](double factor, auto&& tone) {
        Triple tones;
        for (std::size_t i = 0; i < kChannels; ++i)
            tones[i] = tone(light[i] * factor, kToneExponent);
        return tones;
    };
    // As long as no result is next to a whole number the C library's powers are good enough for the same
    // bytes everywhere.
    Triple tones = scaled(largest > 0.0 ? std::pow(largest, gamma - 1.0) : 1.0, RoughTone);
    if (std::ranges::any_of(tones, IsDoubtful)) {
        tones = scaled(largest > 0.0 ? portable::Pow(largest, gamma - 1.0) : 1.0, ExactTone);
    }
    std::ranges::transform(tones, pixel, ToneByte);
}

bool CombinedGamma::Holds(double gamma, double fullScale, const Triple& gains) noexcept {
    // Nothing then exceeds (1e7 * 1e3)^3.
    return gamma >= -2.0 && gamma <= 4.0 && fullScale >= 1.0 && fullScale <= 1e7 &&
           std::ranges::all_of(gains,
                               [](double gain) { return gain == 0.0 || (gain >= 1e-3 && gain <= 1e3); });
}

CombinedGamma::CombinedGamma(double gamma, double fullScale, const Triple& gains)
    : tones_(kGreyLevels), factors_(kGreyLevels), toneFactors_(kGreyLevels) {
    const double exponent = gamma - 1.0;
    // All are 0 for a pel of 0: a pixel without any light is black.
    for (std::size_t pel = 1; pel < kGreyLevels; ++pel) {
        const double value = static_cast<double>(pel) / fullScale;
        tones_[pel] = Power(value, kToneExponent);
        factors_[pel] = Power(value, exponent);
        toneFactors_[pel] = Power(value, exponent * kToneExponent);
    }
    tables_.tones = tones_.data();
    tables_.factors = factors_.data();
    tables_.toneFactors = toneFactors_.data();
    for (std::size_t i = 0; i < kChannels; ++i) {
        if (gains[i] == 0.0) continue;
        tables_.scales[i] = static_cast<float>(gains[i] / fullScale);
        tables_.toneGains[i] = Power(gains[i], kToneExponent);
        tables_.factorGains[i] = Power(gains[i], exponent);
        tables_.toneFactorGains[i] = Power(gains[i], exponent * kToneExponent);
    }
    tables_.linearLimit = static_cast<float>(kToneLinearLimit);
    tables_.linearSlope = static_cast<float>(kToneLinearSlope * kLargestByte);
    tables_.toneGain = static_cast<float>(kToneGain * kLargestByte);
    tables_.toneOffset = static_cast<float>(kToneOffset * kLargestByte);
}

void CombinedGamma::Encode(const kernels::ChannelRuns& runs, const ByteRows& out, std::uint8_t* left) const {
    kernels::EncodeTogether(runs, tables_, out.data(), left);
}

}  // namespace tq
