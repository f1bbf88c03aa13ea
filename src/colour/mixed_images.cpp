#include "colour/mixed_images.h"

#include <utility>

namespace tq {
namespace {

/// The scale as the host reads it. Not inlined: vectorised together with the divisions that follow, GCC 12
/// leaves the rounding to float out.
[[gnu::noinline]] float StoredScale(double largest) noexcept {
    return static_cast<float>(largest / kBrightestLevel);
}

}  // namespace

ImageTriple::ImageTriple(const Channels& channels)
    : images_{OwnedImage(channels.first, NewPels::kUnwritten),
              OwnedImage(channels.second, NewPels::kUnwritten),
              OwnedImage(channels.third, NewPels::kUnwritten)} {}

std::array<double, 3> ImageTriple::StoreScales(const std::array<double, 3>& maxima) noexcept {
    std::array<double, 3> units;
    for (std::size_t k = 0; k < units.size(); ++k) {
        // Pels are divided by the figure that the host reads, so that pel x figure is the value.
        const float luxPerGrey = StoredScale(maxima[k]);
        Header(k).LuxPerGrey = luxPerGrey;
        units[k] = luxPerGrey;
    }
    return units;
}

void ImageTriple::Commit(TqImage** first, TqImage** second, TqImage** third) noexcept {
    CommitImage(first, std::move(images_[0]));
    CommitImage(second, std::move(images_[1]));
    CommitImage(third, std::move(images_[2]));
}

MixedImages::MixedImages(const Channels& channels, const kernels::ChannelMix& mix)
    : ImageTriple(channels), channels_(channels), mix_(mix) {
    kernels::RaiseMaxima(channels_.All(), mix_, maxima_.data());
}

void MixedImages::Fill(const std::array<double, 3>& units) {
    Pel* const out[3] = {Row(0, 0), Row(1, 0), Row(2, 0)};
    kernels::StoreMixed(channels_.All(), mix_, units.data(), out);
}

}  // namespace tq
