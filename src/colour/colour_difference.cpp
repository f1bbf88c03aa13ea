#include <algorithm>
#include <cmath>
#include <cstdint>

#include "colour/channel_samplers.h"
#include "colour/channels.h"
#include "colour/difference_image.h"
#include "core/portable_math.h"
#include "core/replaced_image.h"
#include "tqimage/colour_difference.h"

namespace tq {
namespace {

/// Compares with one colour and luminance.
std::int32_t CompareWith(const kernels::ColourReference& from, std::int32_t blockCols, std::int32_t blockRows,
                         const DifferenceRequest& asked) {
    const auto colour = [&](const Channels& channels, const DifferenceRequest& request, auto holed) {
        const kernels::ColourWeights weights = request.Weights(channels.second);
        ChannelSamplers samplers = BlockSamplers(channels, blockCols, blockRows, request.counted);
        return DifferenceImage(channels.second, holed, [&](std::int32_t row, float* values) {
            kernels::ColourDifferences(samplers.Row(row), weights, from, values);
        });
    };
    const auto grey = [&](const ConstImageView& view, const DifferenceRequest& request, auto holed) {
        const RowSamplerPtr sampler = SampleBlocks(view, blockCols, blockRows, request.counted);
        const float luxPerGrey = view.header->LuxPerGrey;
        const auto reference = static_cast<float>(from.luminance);
        const float root = std::sqrt(request.luminanceWeight);
        return DifferenceImage(view, holed, [&](std::int32_t row, float* values) {
            const double* const greys = sampler->Row(row);
            for (std::int32_t i = 0; i < view.cols; ++i)
                values[i] = LuminanceDifference(luxPerGrey, greys[i], reference, root);
        });
    };
    return ProduceDifference(asked, true, colour, grey);
}

/// The luminance that a host gives to compare with.
double ReferenceLuminance(float luminance) noexcept {
    return luminance >= kernels::kNoLuminance ? luminance : 1.0f;
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
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCalcColorLumDiff(TqImage** out, const TqImage* first, const TqImage* second,
                                        const TqImage* third, float u, float v, float luminance,
                                        float luminanceWeight, float chromaticityWeight,
                                        std::int32_t blockCols, std::int32_t blockRows, float m0, float m1,
                                        float m2, float m3, float m4, float m5, float m6, float m7,
                                        float m8) {
    return CompareWith({u, v, ReferenceLuminance(luminance)}, blockCols, blockRows,
                       {out,
                        first,
                        second,
                        third,
                        luminanceWeight,
                        chromaticityWeight,
                        {m0, m1, m2, m3, m4, m5, m6, m7, m8},
                        Counted::kAll});
}

std::int32_t TQ_CALL tqCalcColorLumDiff0(TqImage** out, const TqImage* first, const TqImage* second,
                                         const TqImage* third, float u, float v, float luminance,
                                         float luminanceWeight, float chromaticityWeight,
                                         std::int32_t blockCols, std::int32_t blockRows, float m0, float m1,
                                         float m2, float m3, float m4, float m5, float m6, float m7,
                                         float m8) {
    return CompareWith({u, v, ReferenceLuminance(luminance)}, blockCols, blockRows,
                       {out,
                        first,
                        second,
                        third,
                        luminanceWeight,
                        chromaticityWeight,
                        {m0, m1, m2, m3, m4, m5, m6, m7, m8},
                        Counted::kLit});
}

std::int32_t TQ_CALL tqCalcColorError(TqImage** out, const TqImage* first, const TqImage* second,
                                      const TqImage* third, float u, float v, float semiAxisA,
                                      float semiAxisB, float degrees, std::int32_t blockCols,
                                      std::int32_t blockRows, float m0, float m1, float m2, float m3,
                                      float m4, float m5, float m6, float m7, float m8) {
    if (out == nullptr || (first == nullptr && second == nullptr && third == nullptr))
        return kNullDifferenceImage;
    // All three are needed: a missing one is as bad as an invalid one.
    const Channels channels{LocateImage(first), LocateImage(second), LocateImage(third)};
    if (const auto status = CheckChannels(channels, kDifferenceCodes)) return status;
    if (semiAxisA == 0.0f || semiAxisB == 0.0f) return kBadDifferenceShape;
    return ReplaceImage(out, kNoDifferenceMemory, [&] {
        const auto ellipse = EllipseOf({m0, m1, m2, m3, m4, m5, m6, m7, m8}, u, v, std::abs(semiAxisA),
                                       std::abs(semiAxisB), degrees);
        ChannelSamplers samplers = BlockSamplers(channels, blockCols, blockRows);
        return DifferenceImage(channels.second, {}, [&](std::int32_t row, float* values) {
            kernels::EllipseDistances(samplers.Row(row), ellipse, values);
        });
    });
}
