#include "tqimage/mtf.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "analysis/hamming.h"
#include "analysis/slanted_edge.h"
#include "core/guard.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "core/portable_math.h"
#include "core/rectangle.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kEmptyRectangle = -2;
constexpr std::int32_t kTooSmall = -3;
constexpr std::int32_t kNoEdge = -4;
constexpr std::int32_t kBadAngle = -5;

constexpr std::int32_t kLeastAcross = 20;
constexpr std::int32_t kLeastAlong = 10;

constexpr double kPi = 3.141592653589793;

/// Beyond half a cycle a pel a sampled image holds no detail.
constexpr double kNyquist = 0.5;

/// The spectrum of the derivative of an edge profile, at any frequency.
class LineSpectrum {
  public:
    explicit LineSpectrum(const std::vector<double>& profile) : line_(profile.size()) {
        const HammingWindow window(static_cast<double>(profile.size()));
        // The edge lies between the two middle bins.
        const double middle = 0.5 * (static_cast<double>(profile.size()) - 1.0);
        for (std::size_t i = 1; i + 1 < profile.size(); ++i)
            line_[i] = 0.5 * (profile[i + 1] - profile[i - 1]) * window(static_cast<double>(i) - middle);
        atZero_ = Magnitude(0.0);
    }

    bool Exists() const noexcept { return atZero_ > 0.0; }

    /// Modulation at a frequency in cycles a pel, 1 at 0.
    double Modulation(double frequency) const {
        if (frequency == 0.0) return 1.0;
        // Taking out what the measurement itself has filtered: bins are means over 1/4 pel, and the central
        // difference spans two of them.
        const double bin = kPi * frequency / kOversampling;
        const double response = Sinc(bin) * Sinc(2.0 * bin);
        return Magnitude(frequency) / atZero_ / response;
    }

  private:
    static double Sinc(double x) { return portable::Sin(x) / x; }

    /// The unit vector of each sample is turned on from the last one's: one sine and cosine a frequency, and
    /// an error that stays below 1e-12 over the longest profile.
    double Magnitude(double frequency) const {
        const double angle = 2.0 * kPi * frequency / kOversampling;
        const double stepCos = portable::Cos(angle);
        const double stepSin = portable::Sin(angle);
        double re = 0.0, im = 0.0, cosine = 1.0, sine = 0.0;
        for (const double value : line_) {
            re += value * cosine;
            im += value * sine;
            const double next = cosine * stepCos - sine * stepSin;
            sine = sine * stepCos + cosine * stepSin;
            cosine = next;
        }
        return std::sqrt(re * re + im * im);
    }

    std::vector<double> line_;
    double atZero_ = 0.0;
};

/// The lowest frequency at which the modulation has fallen to a half, 0 when it has not up to kNyquist.
double HalfModulation(const LineSpectrum& spectrum) {
    constexpr int kSteps = 128;
    constexpr int kHalvings = 40;
    for (int i = 1; i <= kSteps; ++i) {
        double high = kNyquist * i / kSteps;
        if (spectrum.Modulation(high) > 0.5) continue;
        double low = kNyquist * (i - 1) / kSteps;
        for (int k = 0; k < kHalvings; ++k) {
            const double middle = 0.5 * (low + high);
            (spectrum.Modulation(middle) > 0.5 ? low : high) = middle;
        }
        return high;
    }
    return 0.0;
}

struct Outputs {
    std::int32_t count;
    double* mtf;
    double* mtf50;
    double* angle;
};

std::int32_t MeasureMtf(const ConstImageView& view, const Rect& rect, const Outputs& out) {
    constexpr double kSmallestAngle = 1.0;
    constexpr double kLargestAngle = 44.0;

    const EdgeRegion region(view, rect);
    if (region.Width() < kLeastAcross || region.Lines() < kLeastAlong) return kTooSmall;
    const std::optional<EdgeLine> edge = FindEdge(region);
    if (!edge) return kNoEdge;
    const double angle = portable::Atan(edge->slope) * 180.0 / kPi;
    if (std::abs(angle) < kSmallestAngle || std::abs(angle) > kLargestAngle) return kBadAngle;
    const std::vector<double> profile = EdgeProfile(region, *edge);
    if (profile.empty()) return kTooSmall;
    const LineSpectrum spectrum(profile);
    if (!spectrum.Exists()) return kNoEdge;

    for (std::int32_t k = 0; out.mtf != nullptr && k < out.count; ++k)
        out.mtf[k] = spectrum.Modulation(k == 0 ? 0.0 : k * kNyquist / (out.count - 1));
    StoreIfAsked(out.mtf50, HalfModulation(spectrum));
    StoreIfAsked(out.angle, angle);
    return 0;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCalcMTF(const TqImage* image, std::int32_t left, std::int32_t top, std::int32_t right,
                               std::int32_t bottom, std::int32_t count, double* mtf, double* mtf50,
                               double* angle) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const Rect rect = ClampRegion({left, top, right, bottom}, view.cols, view.rows);
    if (rect.Empty()) return kEmptyRectangle;
    return Guarded(kTooSmall, [&] { return MeasureMtf(view, rect, {count, mtf, mtf50, angle}); });
}
