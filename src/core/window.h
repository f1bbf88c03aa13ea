#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "core/image_view.h"

/// The rules of the windows around a pel, one axis at a time: how large a window that was asked for is, and
/// where it lies at the border.
namespace tq {

/// What a window covers along one axis, both ends inclusive. Empty when first > last.
struct Reach {
    std::int32_t first;
    std::int32_t last;

    constexpr std::int32_t Count() const noexcept { return last - first + 1; }
};

/// Filter windows are odd, so that a pel is their middle: below 2 becomes 1, more than the image has is cut
/// to it, and an even size loses one.
constexpr std::int32_t OddWindow(std::int32_t asked, std::int32_t pels) noexcept {
    const std::int32_t size = asked < 2 ? 1 : std::min(asked, pels);
    return size % 2 == 0 ? size - 1 : size;
}

/// A window that is never cut: at the border it slides inward and keeps its size, 1..pels.
constexpr Reach ShiftedReach(std::int32_t at, std::int32_t size, std::int32_t pels) noexcept {
    const std::int32_t first = std::min(std::max(at - size / 2, 0), pels - size);
    return {first, first + size - 1};
}

/// A window that the border cuts: half the size, any number, to each side. An even size covers one more.
constexpr Reach ClippedReach(std::int32_t at, std::int32_t size, std::int32_t pels) noexcept {
    const std::int64_t half = size / 2;
    return {static_cast<std::int32_t>(std::max<std::int64_t>(at - half, 0)),
            static_cast<std::int32_t>(std::min<std::int64_t>(at + half, pels - 1))};
}

/// Tells, row by row from the top, which pels have a square of `radius` pels to each side that lies inside
/// the image and holds no 0. A pel of 0 means "no data", and some measures want none of it near. The cost of
/// a pel does not grow with the radius.
class ZeroFreeRows {
  public:
    /// The view must outlive the object. A radius below 0 counts as 0.
    ZeroFreeRows(const ConstImageView& view, std::int32_t radius)
        : view_(view),
          radius_(std::clamp(radius, 0, kMaxSide)),
          lit_(static_cast<std::size_t>(view.cols)),
          free_(static_cast<std::size_t>(view.cols)) {}

    /// The flags of the next row, one a column; valid until the next call. At most one call for each row.
    std::span<const std::uint8_t> Next() {
        const std::int32_t side = 2 * radius_ + 1;
        for (++row_; entered_ < std::min(row_ + radius_ + 1, view_.rows); ++entered_)
            Enter(view_.Row(entered_));
        std::fill(free_.begin(), free_.end(), std::uint8_t{0});
        // Rows above the image never count as lit; below it there is no row to enter.
        if (row_ + radius_ >= view_.rows) return free_;
        std::int32_t run = 0;
        for (std::int32_t col = 0; col < view_.cols; ++col) {
            run = lit_[static_cast<std::size_t>(col)] >= side ? run + 1 : 0;
            if (run >= side) free_[static_cast<std::size_t>(col - radius_)] = 1;
        }
        return free_;
    }

  private:
    void Enter(const Pel* pels) noexcept {
        for (std::size_t col = 0; col < lit_.size(); ++col)
            lit_[col] = pels[col] == 0 ? 0 : lit_[col] + 1;
    }

    ConstImageView view_;
    std::int32_t radius_;
    std::int32_t row_ = -1;
    std::int32_t entered_ = 0;
    std::vector<std::int32_t> lit_;  ///< pels without a 0 that end in the last row entered, a column
    std::vector<std::uint8_t> free_;
};

}  // namespace tq
