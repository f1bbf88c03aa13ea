#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "colour/channels.h"
#include "colour/row_sampler.h"
#include "core/image_block.h"
#include "core/replaced_image.h"
#include "kernels/chromaticity.h"

/// What the images of colour differences share: their channels, their codes and the scale of their pels.
namespace tq {

inline constexpr std::int32_t kNullDifferenceImage = -2;
inline constexpr std::int32_t kInvalidSingle = -6;
inline constexpr std::int32_t kBadDifferenceShape = -7;
inline constexpr std::int32_t kNoDifferenceMemory = -8;
inline constexpr ChannelCodes kDifferenceCodes{kNullDifferenceImage, -3, -4, -5, kBadDifferenceShape};

/// What a host asks of an image of differences, whatever it compares with.
struct DifferenceRequest {
    TqImage** out;
    const TqImage* first;
    const TqImage* second;
    const TqImage* third;
    float luminanceWeight;
    float chromaticityWeight;
    ColourMatrix matrix;
    Counted counted;

    kernels::ColourWeights Weights(const ConstImageView& light) const noexcept {
        kernels::ColourWeights weights{{}, light.header->LuxPerGrey, chromaticityWeight, luminanceWeight};
        std::copy(matrix.begin(), matrix.end(), weights.matrix);
        return weights;
    }
};

/// The channels that are compared: all three, or the luminance of one.
class ComparedChannels {
  public:
    /// 0, or the code of a channel that cannot be used. Colours are compared when their weight says so and
    /// all three channels are there.
    std::int32_t Locate(const DifferenceRequest& request) noexcept;

    bool Colour() const noexcept { return colour_; }
    Channels All() const noexcept { return {views_[0], views_[1], views_[2]}; }
    const ConstImageView& Second() const noexcept { return views_[1]; }
    /// Those whose pels of 0 can leave a pel out.
    std::span<const ConstImageView> Used() const noexcept {
        return colour_ ? std::span(views_) : std::span(views_).subspan(1, 1);
    }

  private:
    bool colour_ = false;
    std::array<ConstImageView, 3> views_;  ///< the second is also the single one
};

/// |L - reference| / reference * rootWeight, each step in single precision; 0 without a reference.
inline float LuminanceDifference(float luxPerGrey, double grey, float reference, float rootWeight) noexcept {
    if (!(reference >= kernels::kNoLuminance)) return 0.0f;
    const auto luminance = static_cast<float>(luxPerGrey * grey);
    return std::abs(luminance - reference) / reference * rootWeight;
}

/// The largest difference of an image becomes this level, which leaves hosts room above it.
inline constexpr float kLargestLevel = 65000.0f;
/// Smaller differences are rounding, and an image of nothing else stays dark.
inline constexpr double kNoDifference = 1e-8;

/// Makes an image of the differences that fill(row, values) gives, found twice: for the largest and for the
/// pels. It has the header of `like`. Pels where one of `holed` is 0 are left out, and 0 in the result; then
/// the others are at least 1, so that hosts can tell them apart.
template <class Fill>
OwnedImage DifferenceImage(const ConstImageView& like, std::span<const ConstImageView> holed, Fill&& fill) {
    OwnedImage image(like, NewPels::kUnwritten);
    std::vector<float> values(static_cast<std::size_t>(like.cols));
    const auto find = [&](std::int32_t row) {
        fill(row, values.data());
        for (const ConstImageView& view : holed)
            kernels::LeaveOut(view.Row(row), values.size(), values.data());
    };
    float largest = 0.0f;
    for (std::int32_t row = 0; row < like.rows; ++row) {
        find(row);
        largest = kernels::LargestOf(values.data(), values.size(), largest);
    }
    if (largest < kNoDifference) largest = 1.0f;
    const float scale = kLargestLevel / largest;
    image.Header().MaxPelValue = kLargestLevel;
    image.Header().LuxPerGrey = 1.0f / scale;
    for (std::int32_t row = 0; row < like.rows; ++row) {
        find(row);
        Pel* const out = image.View().Row(row);
        kernels::StoreScaled(values.data(), values.size(), scale, out);
        if (!holed.empty()) kernels::RaiseCounted(values.data(), values.size(), out);
    }
    return image;
}

/// Hands the host the image of colour(channels, request, holed) or, where luminance alone is compared, of
/// grey(view, request, holed).
template <class Colour, class Grey>
std::int32_t ProduceDifference(DifferenceRequest request, bool goodShape, Colour&& colour, Grey&& grey) {
    if (request.out == nullptr) return kNullDifferenceImage;
    request.chromaticityWeight = std::abs(request.chromaticityWeight);
    request.luminanceWeight = std::abs(request.luminanceWeight);
    ComparedChannels channels;
    if (const auto status = channels.Locate(request)) return status;
    if (!goodShape) return kBadDifferenceShape;
    return ReplaceImage(request.out, kNoDifferenceMemory, [&] {
        std::span<const ConstImageView> holed;
        if (request.counted == Counted::kLit) holed = channels.Used();
        return channels.Colour() ? colour(channels.All(), request, holed)
                                 : grey(channels.Second(), request, holed);
    });
}

}  // namespace tq
