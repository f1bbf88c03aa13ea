#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/image_view.h"
#include "kernels/window_sums.h"
#include "measure/block_sweep.h"

namespace tq {

/// A channel row by row as doubles: its pels, or the averages of the blocks around them, which cost the same
/// for every size of block. Cheapest downwards.
class ChannelSampler {
  public:
    ChannelSampler(const ConstImageView& view, std::int32_t blockCols, std::int32_t blockRows)
        : view_(view), values_(static_cast<std::size_t>(view.cols)) {
        // One size of 0 or 1 beside a larger one counts as 1.
        if (blockCols >= 2 || blockRows >= 2) {
            sweep_ = MakeBlockSweep(view, BlockShape::kRectangle, std::max(blockCols, 1),
                                    std::max(blockRows, 1), 0, view.cols - 1);
        }
    }

    const double* Row(std::int32_t row) {
        if (sweep_ == nullptr) {
            std::copy_n(view_.Row(row), values_.size(), values_.data());
        } else {
            sweep_->MoveTo(row);
            kernels::Quotients(sweep_->Sums().data(), sweep_->Counts().data(), values_.size(),
                               values_.data());
        }
        return values_.data();
    }

  private:
    ConstImageView view_;
    std::vector<double> values_;
    std::unique_ptr<BlockSweep> sweep_;
};

}  // namespace tq
