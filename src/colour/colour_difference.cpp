#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "colour/channel_samplers.h"
#include "colour/channels.h"
#include "core/guard.h"
#include "core/image_block.h"
#include "core/portable_math.h"
#include "kernels/chromaticity.h"
#include "tqimage/colour_difference.h"

using namespace tq;

namespace {

constexpr std::int32_t kNullImage = -2;
constexpr std::int32_t kInvalidSingle = -6;
constexpr std::int32_t kBadShape = -7;
constexpr std::int32_t kNoMemory = -8;
constexpr ChannelCodes kCodes{kNullImage, -3, -4, -5, kBadShape};

/// The largest difference of an image becomes this level, which leaves hosts room above it.
constexpr float kLargestLevel = 65000.0f;
/// Smaller differences are rounding, and an image of nothing else stays dark.
constexpr double kNoDifference = 1e-8;
constexpr double kNoLuminance = 1e-7;
constexpr double kNoWeight = 1e-5;

/// Makes an image of the differences that fill(row, values) gives, found twice: for the largest and for the
/// pels. It has the header of `like`.
template <class Fill>
OwnedImage DifferenceImage(const ConstImageView& like, Fill&& fill) {
    OwnedImage image(like, NewPels::kUnwritten);
    std::vector<float> values(static_cast<std::size_t>(like.cols));
    float largest = 0.0f;
    for (std::int32_t row = 0; row < like.rows; ++row) {
        fill(row, values.data());
        largest = kernels::LargestOf(values.data(), values.size(), largest);
    }
    if (largest < kNoDifference) largest = 1.0f;
    const float scale = kLargestLevel / largest;
    image.Header().MaxPelValue = kLargestLevel;
    image.Header().LuxPerGrey = 1.0f / scale;
    for (std::int32_t row = 0; row < like.rows; ++row) {
        fill(row, values.data());
        kernels::StoreScaled(values.data(), values.size(), scale, image.View().Row(row));
    }
    return image;
}

OwnedImage LuminanceDifference(const ConstImageView& view, float reference, float weight,
                               std::int32_t blockCols, std::int32_t blockRows) {
    ChannelSampler sampler(view, blockCols, blockRows);
    const float luxPerGrey = view.header->LuxPerGrey;
    const float root = std::sqrt(weight);
    return DifferenceImage(view, [&](std::int32_t row, float* out) {
        const double* const greys = sampler.Row(row);
        for (std::int32_t i = 0; i < view.cols; ++i) {
            const float luminance = luxPerGrey * static_cast<float>(greys[i]);
            out[i] = std::abs(luminance - reference) / reference * root;
        }
    });
}

kernels::ToleranceEllipse EllipseOf(const ColourMatrix& m, float u, float v, float a, float b,
                                    float degrees) {
    // The constant as hosts' own programs round it.
    const auto angle = static_cast<float>(degrees * 3.141592654 / 180.0);
    const double c = static_cast<float>(portable::Cos(angle));
    const double s = static_cast<float>(portable::Sin(angle));
    const double aa = static_cast<double>(a) * a;
    const double bb = static_cast<double>(b) * b;
    kernels::ToleranceEllipse ellipse{};
    std::copy(m.begin(), m.end(), ellipse.matrix);
    ellipse.u = u;
    ellipse.v = v;
    ellipse.uu = c * c / aa + s * s / bb;
    ellipse.uv = s * (1.0 / aa - 1.0 / bb) * c;
    ellipse.vv = s * s / aa + c * c / bb;
    return ellipse;
}

}  // namespace

std::int32_t TQ_CALL tqCalcColorLumDiff(TqImage** out, const TqImage* first, const TqImage* second,
                                        const TqImage* third, float u, float v, float luminance,
                                        float luminanceWeight, float chromaticityWeight,
                                        std::int32_t blockCols, std::int32_t blockRows, float m0, float m1,
                                        float m2, float m3, float m4, float m5, float m6, float m7,
                                        float m8) {
    if (out == nullptr || (first == nullptr && second == nullptr && third == nullptr)) return kNullImage;
    const float reference = luminance >= kNoLuminance ? luminance : 1.0f;
    const float wC = std::abs(chromaticityWeight);
    const float wL = std::abs(luminanceWeight);

    const bool complete = first != nullptr && second != nullptr && third != nullptr;
    if (wC >= kNoWeight && complete) {
        Channels channels;
        if (const auto status = LocateChannels(first, second, third, kCodes, &channels)) return status;
        return Guarded(kNoMemory, [&] {
            const kernels::ColourWeights weights{
                {m0, m1, m2, m3, m4, m5, m6, m7, m8}, channels.second.header->LuxPerGrey, wC, wL};
            ChannelSamplers samplers(channels, blockCols, blockRows);
            CommitImage(out, DifferenceImage(channels.second, [&](std::int32_t row, float* values) {
                            kernels::ColourDifferences(samplers.Row(row), weights, {u, v, reference}, values);
                        }));
            return 0;
        });
    }
    // Luminance alone is the second channel's matter, or that of whichever channel there is.
    const TqImage* const single = second != nullptr ? second : first != nullptr ? first : third;
    const ConstImageView view = LocateImage(single);
    if (!view) return kInvalidSingle;
    return Guarded(kNoMemory, [&] {
        CommitImage(out, LuminanceDifference(view, reference, wL, blockCols, blockRows));
        return 0;
    });
}

std::int32_t TQ_CALL tqCalcColorError(TqImage** out, const TqImage* first, const TqImage* second,
                                      const TqImage* third, float u, float v, float semiAxisA,
                                      float semiAxisB, float degrees, std::int32_t blockCols,
                                      std::int32_t blockRows, float m0, float m1, float m2, float m3,
                                      float m4, float m5, float m6, float m7, float m8) {
    if (out == nullptr || (first == nullptr && second == nullptr && third == nullptr)) return kNullImage;
    // All three are needed: a missing one is as bad as an invalid one.
    const Channels channels{LocateImage(first), LocateImage(second), LocateImage(third)};
    if (const auto status = CheckChannels(channels, kCodes)) return status;
    if (semiAxisA == 0.0f || semiAxisB == 0.0f) return kBadShape;
    return Guarded(kNoMemory, [&] {
        const auto ellipse = EllipseOf({m0, m1, m2, m3, m4, m5, m6, m7, m8}, u, v, std::abs(semiAxisA),
                                       std::abs(semiAxisB), degrees);
        ChannelSamplers samplers(channels, blockCols, blockRows);
        CommitImage(out, DifferenceImage(channels.second, [&](std::int32_t row, float* values) {
                        kernels::EllipseDistances(samplers.Row(row), ellipse, values);
                    }));
        return 0;
    });
}
