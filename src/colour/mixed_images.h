#pragma once

#include <array>
#include <cstddef>

#include "colour/channels.h"
#include "core/image_block.h"
#include "kernels/channel_mix.h"

namespace tq {

/// Three images made of three channels by a linear combination: the largest values are known before the
/// scales of the pels have to be chosen. Each image has the header of the channel in its position.
class MixedImages {
  public:
    MixedImages(const Channels& channels, const kernels::ChannelMix& mix);

    /// The largest value of each image, at least 0.
    const std::array<double, 3>& Maxima() const noexcept { return maxima_; }
    TqImageHeader& Header(std::size_t k) noexcept { return images_[k].Header(); }

    /// Pels in units of units[k], rounded half up; an image whose unit is 0 is dark.
    void Fill(const std::array<double, 3>& units);
    void Commit(TqImage** first, TqImage** second, TqImage** third) noexcept;

  private:
    Channels channels_;
    kernels::ChannelMix mix_;
    std::array<OwnedImage, 3> images_;
    std::array<double, 3> maxima_{};
};

}  // namespace tq
