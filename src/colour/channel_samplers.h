#pragma once

#include <cstdint>

#include "colour/channel_sampler.h"
#include "colour/channels.h"
#include "kernels/chromaticity.h"

namespace tq {

/// The rows of three channels at once.
class ChannelSamplers {
  public:
    ChannelSamplers(const Channels& channels, std::int32_t blockCols, std::int32_t blockRows)
        : first_(channels.first, blockCols, blockRows),
          second_(channels.second, blockCols, blockRows),
          third_(channels.third, blockCols, blockRows),
          count_(static_cast<std::size_t>(channels.second.cols)) {}

    kernels::ChannelRows Row(std::int32_t row) {
        return {first_.Row(row), second_.Row(row), third_.Row(row), count_};
    }

  private:
    ChannelSampler first_;
    ChannelSampler second_;
    ChannelSampler third_;
    std::size_t count_;
};

}  // namespace tq
