#include "colour/difference_image.h"

namespace tq {
namespace {

/// Colours of less weight are not compared.
constexpr double kNoWeight = 1e-5;

}  // namespace

std::int32_t ComparedChannels::Locate(const DifferenceRequest& request) noexcept {
    const auto [first, second, third] = std::array{request.first, request.second, request.third};
    const bool complete = first != nullptr && second != nullptr && third != nullptr;
    colour_ = complete && request.chromaticityWeight >= kNoWeight;
    if (colour_) {
        views_ = {LocateImage(first), LocateImage(second), LocateImage(third)};
        return CheckChannels(All(), kDifferenceCodes);
    }
    // Luminance alone is the second channel's matter, or that of whichever channel there is.
    const TqImage* const single = second != nullptr ? second : first != nullptr ? first : third;
    if (single == nullptr) return kNullDifferenceImage;
    views_[1] = LocateImage(single);
    return views_[1] ? 0 : kInvalidSingle;
}

}  // namespace tq
