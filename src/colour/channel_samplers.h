#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "colour/channels.h"
#include "colour/row_sampler.h"
#include "kernels/chromaticity.h"

namespace tq {

/// The rows of three channels at once.
class ChannelSamplers {
  public:
    /// sampler(view) makes that of a channel.
    template <class MakeSampler>
    ChannelSamplers(const Channels& channels, MakeSampler&& sampler)
        : first_(sampler(channels.first)),
          second_(sampler(channels.second)),
          third_(sampler(channels.third)),
          count_(static_cast<std::size_t>(channels.second.cols)) {}

    kernels::ChannelRows Row(std::int32_t row) {
        return {first_->Row(row), second_->Row(row), third_->Row(row), count_};
    }

  private:
    RowSamplerPtr first_;
    RowSamplerPtr second_;
    RowSamplerPtr third_;
    std::size_t count_;
};

/// The channels' pels or block averages.
inline ChannelSamplers BlockSamplers(const Channels& channels, std::int32_t blockCols, std::int32_t blockRows,
                                     Counted counted = Counted::kAll) {
    return {channels,
            [&](const ConstImageView& view) { return SampleBlocks(view, blockCols, blockRows, counted); }};
}

}  // namespace tq
