#include <cstdint>

#include "colour/channels.h"
#include "core/out_value.h"
#include "core/rectangle.h"
#include "measure/region_shapes.h"
#include "tqimage/colour_averages.h"

using namespace tq;

namespace {

/// The value that is compared with the threshold: the second channel as it is, or the luminance row.
struct TestValue {
    double weights[3];

    TestValue(const ColourMatrix& m, bool useLuminance) noexcept : weights{0.0, 1.0, 0.0} {
        if (!useLuminance) return;
        weights[0] = m[3];
        weights[1] = m[4];
        weights[2] = m[5];
    }
};

/// Outputs of a function; each may be left out.
struct Tristimulus {
    float* x;
    float* y;
    float* z;

    /// Without a counted pel the means, and so the results, are not numbers.
    void Store(const kernels::ChannelSums& sums, const ColourMatrix& m) const noexcept {
        const Xyz mean =
            Transform(m, sums.first / sums.count, sums.second / sums.count, sums.third / sums.count);
        StoreIfAsked(x, static_cast<float>(mean.x));
        StoreIfAsked(y, static_cast<float>(mean.y));
        StoreIfAsked(z, static_cast<float>(mean.z));
    }
};

}  // namespace

std::int32_t TQ_CALL tqCalcAverageColorValues(const TqImage* first, const TqImage* second,
                                              const TqImage* third, std::int32_t threshold, float m0,
                                              float m1, float m2, float m3, float m4, float m5, float m6,
                                              float m7, float m8, std::int32_t useLuminance, float* x,
                                              float* y, float* z) {
    Channels channels;
    if (const auto status = LocateChannels(first, second, third, kChannelCodes, &channels)) return status;
    const ColourMatrix m{m0, m1, m2, m3, m4, m5, m6, m7, m8};
    const TestValue value(m, useLuminance != 0);
    kernels::ChannelSums sums;
    // One level stricter than the rectangle below; hosts' limits are set for it.
    kernels::AddChannelsAbove(channels.All(), value.weights, threshold + 1.0, &sums);
    Tristimulus{x, y, z}.Store(sums, m);
    return 0;
}

std::int32_t TQ_CALL tqCalcAverageColorValuesInRegion(const TqImage* first, const TqImage* second,
                                                      const TqImage* third, std::int32_t threshold, float m0,
                                                      float m1, float m2, float m3, float m4, float m5,
                                                      float m6, float m7, float m8, std::int32_t useLuminance,
                                                      std::int32_t left, std::int32_t top, std::int32_t right,
                                                      std::int32_t bottom, float* x, float* y, float* z) {
    Channels channels;
    if (const auto status = LocateChannels(first, second, third, kChannelCodes, &channels)) return status;
    const ColourMatrix m{m0, m1, m2, m3, m4, m5, m6, m7, m8};
    const TestValue value(m, useLuminance != 0);
    Rect rect = ClampRegion({left, top, right, bottom}, channels.first.cols, channels.first.rows);
    // The last column is not visited, though the last row is: hosts choose their rectangles accordingly.
    --rect.right;
    kernels::ChannelSums sums;
    VisitRectangle(rect, [&](std::int32_t row, std::int32_t from, std::int32_t to) {
        kernels::AddChannelsAbove(channels.Run(row, from, to - from + 1), value.weights, threshold, &sums);
    });
    Tristimulus{x, y, z}.Store(sums, m);
    return 0;
}
