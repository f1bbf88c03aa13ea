#pragma once

#include <cstdint>

#include "colour/channels.h"
#include "colour/row_sampler.h"
#include "kernels/chromaticity.h"

namespace tq {

/// The rows of three channels at once: pels, or what samplers make of them.
class ChannelSamplers {
  public:
    explicit ChannelSamplers(const Channels& channels) : channels_(channels) {}
    /// sampler(view) makes that of a channel.
    template <class MakeSampler>
    ChannelSamplers(const Channels& channels, MakeSampler&& sampler)
        : channels_(channels),
          first_(sampler(channels.first)),
          second_(sampler(channels.second)),
          third_(sampler(channels.third)) {}

    kernels::ChannelValues Row(std::int32_t row) {
        const kernels::ChannelRuns pels = channels_.Run(row, 0, channels_.second.cols);
        if (first_ == nullptr) return pels;
        return kernels::ChannelRows{first_->Row(row), second_->Row(row), third_->Row(row), pels.count};
    }

  private:
    Channels channels_;
    RowSamplerPtr first_;
    RowSamplerPtr second_;
    RowSamplerPtr third_;
};

/// The channels' pels or block averages.
inline ChannelSamplers BlockSamplers(const Channels& channels, std::int32_t blockCols, std::int32_t blockRows,
                                     Counted counted = Counted::kAll) {
    if (IsSinglePel(blockCols, blockRows)) return ChannelSamplers(channels);
    return {channels,
            [&](const ConstImageView& view) { return SampleBlocks(view, blockCols, blockRows, counted); }};
}

}  // namespace tq
