#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "colour/channels.h"
#include "core/image_block.h"
#include "kernels/channel_mix.h"

namespace tq {

/// The brightest pel of images whose scale is LuxPerGrey.
inline constexpr double kBrightestLevel = 65000.0;

/// Three images that are made together, each with the header of the channel in its position.
class ImageTriple {
  public:
    explicit ImageTriple(const Channels& channels);

    TqImageHeader& Header(std::size_t k) noexcept { return images_[k].Header(); }
    Pel* Row(std::size_t k, std::int32_t row) const noexcept { return images_[k].View().Row(row); }
    /// Gives each image a LuxPerGrey that makes the largest value the brightest pel: pel x LuxPerGrey is the
    /// value.
    std::array<double, 3> StoreScales(const std::array<double, 3>& maxima) noexcept;
    void Commit(TqImage** first, TqImage** second, TqImage** third) noexcept;

  private:
    std::array<OwnedImage, 3> images_;
};

/// Three images made of three channels by a linear combination: the largest values are known before the
/// scales of the pels have to be chosen.
class MixedImages : public ImageTriple {
  public:
    MixedImages(const Channels& channels, const kernels::ChannelMix& mix);

    /// The largest value of each image, at least 0.
    const std::array<double, 3>& Maxima() const noexcept { return maxima_; }

    /// Pels in units of units[k], rounded half up; an image whose unit is 0 is dark.
    void Fill(const std::array<double, 3>& units);

  private:
    Channels channels_;
    kernels::ChannelMix mix_;
    std::array<double, 3> maxima_{};
};

}  // namespace tq
