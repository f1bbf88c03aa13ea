#pragma once

#include <cstdint>
#include <memory>

#include "core/image_view.h"
#include "measure/window_sweep.h"

namespace tq {

/// Which pels count: all, or those that are not 0, the pel without data.
enum class Counted { kAll, kLit };

/// One figure a pel of an image, row by row as doubles, cheapest downwards. The view must outlive the object.
class RowSampler {
  public:
    virtual ~RowSampler() = default;
    /// One value a column, valid until the next call.
    virtual const double* Row(std::int32_t row) = 0;
};

using RowSamplerPtr = std::unique_ptr<RowSampler>;

/// True for blocks that are just the pel in their middle.
constexpr bool IsSinglePel(std::int32_t blockCols, std::int32_t blockRows) noexcept {
    return blockCols < 2 && blockRows < 2;
}

/// The pels, or where a size is 2 or more the averages of the blocks around them, which cost the same for
/// every size of block. An average over no pel is not a number.
RowSamplerPtr SampleBlocks(const ConstImageView& view, std::int32_t blockCols, std::int32_t blockRows,
                           Counted counted);

/// The means of windows that slide inward at the border.
RowSamplerPtr SampleWindows(const ConstImageView& view, const WindowSize& size, Counted counted);

}  // namespace tq
