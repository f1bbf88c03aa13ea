#include <algorithm>
#include <cstdint>

#include "colour/channel_samplers.h"
#include "colour/channels.h"
#include "core/image_block.h"
#include "core/replaced_image.h"
#include "tqimage/colour_transforms.h"

using namespace tq;

namespace {

constexpr std::int32_t kNullImage = -2;
constexpr std::int32_t kNoMemory = -6;
constexpr ChannelCodes kCodes{kNullImage, -3, -4, -5, -7};

enum Quantity : std::int32_t { kX, kY, kU, kV, kXOverY, kZOverY, kQuantities };

constexpr bool IsQuantity(std::int32_t quantity) noexcept {
    return quantity >= kX && quantity < kQuantities;
}

kernels::ChromaticRatio RatioOf(std::int32_t quantity, const ColourMatrix& m) noexcept {
    // x, y: CIE 1931. u', v': CIE 1976. The two quotients are percentages of the luminance.
    constexpr kernels::ChromaticRatio kRatios[kQuantities] = {
        {{}, 1.0, 1.0, 1.0, 0, false},  {{}, 1.0, 1.0, 1.0, 1, false},  {{}, 4.0, 15.0, 3.0, 0, false},
        {{}, 9.0, 15.0, 3.0, 1, false}, {{}, 100.0, 0.0, 0.0, 0, true}, {{}, 100.0, 0.0, 0.0, 2, true}};
    kernels::ChromaticRatio ratio = kRatios[quantity];
    std::copy(m.begin(), m.end(), ratio.matrix);
    return ratio;
}

}  // namespace

std::int32_t TQ_CALL tqTransformToColorSpace(TqImage** out, const TqImage* first, const TqImage* second,
                                             const TqImage* third, std::int32_t quantity,
                                             std::int32_t fullScale, float low, float high,
                                             std::int32_t blockCols, std::int32_t blockRows, float m0,
                                             float m1, float m2, float m3, float m4, float m5, float m6,
                                             float m7, float m8) {
    Channels channels;
    if (const auto status = LocateChannels(first, second, third, kCodes, &channels)) return status;
    if (out == nullptr) return kNullImage;
    return ReplaceImage(out, kNoMemory, [&] {
        const bool defined = IsQuantity(quantity);
        OwnedImage image(channels.second, defined ? NewPels::kUnwritten : NewPels::kZero);
        const auto scale = static_cast<float>(fullScale);
        const float gain = scale / (high - low);
        // The upper end alone and not the span: right for the ranges that begin at 0, which hosts use.
        image.Header().LuxPerGrey = high / scale;
        if (defined) {
            const auto ratio = RatioOf(quantity, {m0, m1, m2, m3, m4, m5, m6, m7, m8});
            ChannelSamplers samplers = BlockSamplers(channels, blockCols, blockRows);
            const ImageView view = image.View();
            for (std::int32_t row = 0; row < view.rows; ++row)
                kernels::StoreRatios(samplers.Row(row), ratio, low, gain, view.Row(row));
        }
        return image;
    });
}
