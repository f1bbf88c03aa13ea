#include <algorithm>
#include <cmath>
#include <cstdint>

#include "colour/channel_samplers.h"
#include "colour/difference_image.h"
#include "tqimage/colour_difference.h"

namespace tq {
namespace {

/// A block and what is around it.
struct Surroundings {
    std::int32_t blockCols;
    std::int32_t blockRows;
    std::int32_t cols;
    std::int32_t rows;

    /// A block says nothing beside a neighbourhood that is not larger than itself.
    bool ReachBeyondBlock() const noexcept {
        const std::int32_t width = std::max(blockCols, 1);
        const std::int32_t height = std::max(blockRows, 1);
        return cols >= width && rows >= height && (cols > width || rows > height);
    }
};

std::int32_t CompareWithin(const Surroundings& reach, const DifferenceRequest& asked) {
    const auto colour = [&](const Channels& channels, const DifferenceRequest& request, auto holed) {
        const kernels::ColourWeights weights = request.Weights(channels.second);
        const WindowSize size(reach.cols, reach.rows, channels.second);
        ChannelSamplers samplers = BlockSamplers(channels, reach.blockCols, reach.blockRows, request.counted);
        ChannelSamplers around(
            channels, [&](const ConstImageView& view) { return SampleWindows(view, size, request.counted); });
        return DifferenceImage(channels.second, holed, [&](std::int32_t row, float* values) {
            kernels::LocalDifferences(samplers.Row(row), around.Row(row).averages, weights, values);
        });
    };
    const auto grey = [&](const ConstImageView& view, const DifferenceRequest& request, auto holed) {
        const RowSamplerPtr sampler = SampleBlocks(view, reach.blockCols, reach.blockRows, request.counted);
        const RowSamplerPtr around =
            SampleWindows(view, WindowSize(reach.cols, reach.rows, view), request.counted);
        const float luxPerGrey = view.header->LuxPerGrey;
        const float root = std::sqrt(request.luminanceWeight);
        return DifferenceImage(view, holed, [&](std::int32_t row, float* values) {
            const double* const greys = sampler->Row(row);
            const double* const means = around->Row(row);
            for (std::int32_t i = 0; i < view.cols; ++i) {
                const auto reference = static_cast<float>(means[i] * luxPerGrey);
                values[i] = LuminanceDifference(luxPerGrey, greys[i], reference, root);
            }
        });
    };
    return ProduceDifference(asked, reach.ReachBeyondBlock(), colour, grey);
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCalcLocalColorLumDiff(TqImage** out, const TqImage* first, const TqImage* second,
                                             const TqImage* third, float luminanceWeight,
                                             float chromaticityWeight, std::int32_t blockCols,
                                             std::int32_t blockRows, std::int32_t aroundCols,
                                             std::int32_t aroundRows, float m0, float m1, float m2, float m3,
                                             float m4, float m5, float m6, float m7, float m8) {
    return CompareWithin({blockCols, blockRows, aroundCols, aroundRows},
                         {out,
                          first,
                          second,
                          third,
                          luminanceWeight,
                          chromaticityWeight,
                          {m0, m1, m2, m3, m4, m5, m6, m7, m8},
                          Counted::kAll});
}

std::int32_t TQ_CALL tqCalcLocalColorLumDiff0(TqImage** out, const TqImage* first, const TqImage* second,
                                              const TqImage* third, float luminanceWeight,
                                              float chromaticityWeight, std::int32_t blockCols,
                                              std::int32_t blockRows, std::int32_t aroundCols,
                                              std::int32_t aroundRows, float m0, float m1, float m2, float m3,
                                              float m4, float m5, float m6, float m7, float m8) {
    return CompareWithin({blockCols, blockRows, aroundCols, aroundRows},
                         {out,
                          first,
                          second,
                          third,
                          luminanceWeight,
                          chromaticityWeight,
                          {m0, m1, m2, m3, m4, m5, m6, m7, m8},
                          Counted::kLit});
}
