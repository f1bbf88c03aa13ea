#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "core/image_view.h"
#include "core/window.h"
#include "measure/column_sums.h"

namespace tq {

/// Where a window lies when it would reach over the border.
enum class WindowPlacement { kShifted, kClipped };

/// Width and height of a window after the rule of odd sizes.
struct WindowSize {
    std::int32_t width;
    std::int32_t height;

    WindowSize(std::int32_t askedWidth, std::int32_t askedHeight, const ConstImageView& view) noexcept
        : width(OddWindow(askedWidth, view.cols)), height(OddWindow(askedHeight, view.rows)) {}
    std::int64_t Area() const noexcept { return std::int64_t{width} * height; }
    bool IsPel() const noexcept { return width == 1 && height == 1; }
};

/// The different windows of the pels first..last of an axis when windows slide at the border.
struct SlidingWindows {
    std::int32_t origin;  ///< where the first window starts
    std::int32_t count;
    std::int32_t lead;  ///< pels before the one that the first window is written to; see RepeatEnds

    SlidingWindows(std::int32_t first, std::int32_t last, std::int32_t size, std::int32_t pels) noexcept
        : origin(ShiftedReach(first, size, pels).first),
          count(ShiftedReach(last, size, pels).first - origin + 1),
          lead(std::max(std::min(size / 2, last) - first, 0)) {}
};

/// The sums of the columns of the rows that the windows of one row cover. The window of the i-th of Windows()
/// covers the columns i .. i + width - 1; where windows are clipped, zeros stand beyond the border, so that
/// no position is special.
class WindowColumns {
  public:
    /// Windows around the pels firstCol..lastCol of each row. The view must outlive the object.
    WindowColumns(const ConstImageView& view, WindowPlacement placement, const WindowSize& size,
                  std::int32_t firstCol, std::int32_t lastCol, Summand summand);

    /// Moves to a row, cheapest downwards. False when the windows are those of the row before.
    bool MoveTo(std::int32_t row);

    std::span<const std::uint32_t> Columns() const noexcept { return columns_; }
    /// Number of different windows. Pels at the border share one when windows slide.
    std::size_t Windows() const noexcept { return columns_.size() - static_cast<std::size_t>(width_) + 1; }
    std::int32_t Width() const noexcept { return width_; }
    /// Pels of firstCol..lastCol before the one that the first window is written to: where windows slide,
    /// those at the left border share it. See RepeatEnds.
    std::size_t Lead() const noexcept { return lead_; }

  private:
    /// First column of a pel's window, below 0 where the border will cut it.
    std::int32_t FirstColumn(std::int32_t col) const noexcept {
        return placement_ == WindowPlacement::kShifted ? ShiftedReach(col, width_, view_.cols).first
                                                       : col - width_ / 2;
    }
    /// The columns of the image that these pels' windows cover.
    SummandRows CoveredRows(Summand summand, std::int32_t firstCol, std::int32_t lastCol) const;

    ConstImageView view_;
    WindowPlacement placement_;
    std::int32_t width_;
    std::int32_t height_;
    std::size_t lead_;
    std::size_t margin_;  ///< entries of columns_ before those of the image, beyond the border
    std::vector<std::uint32_t> columns_;
    ColumnSums sums_;
};

/// Sums over the window of every pel of a row: integers, held exactly in doubles. The cost of a pel does not
/// grow with the window.
class WindowSums {
  public:
    WindowSums(const ConstImageView& view, WindowPlacement placement, const WindowSize& size,
               Summand summand);

    void MoveTo(std::int32_t row);
    /// One entry a column of the image.
    std::span<const double> Sums() const noexcept { return sums_; }

  private:
    WindowColumns columns_;
    std::vector<double> prefix_;
    std::vector<double> sums_;
};

/// Sums and numbers of the pels with data, those that are not 0, in the window of every pel of a row.
class LitWindowSums {
  public:
    LitWindowSums(const ConstImageView& view, WindowPlacement placement, const WindowSize& size)
        : pels_(view, placement, size, Summand::kPels), lit_(view, placement, size, Summand::kLit) {}

    void MoveTo(std::int32_t row) {
        pels_.MoveTo(row);
        lit_.MoveTo(row);
    }
    std::span<const double> Sums() const noexcept { return pels_.Sums(); }
    std::span<const double> Counts() const noexcept { return lit_.Sums(); }

  private:
    WindowSums pels_;
    WindowSums lit_;
};

/// Completes a run of pels of which those from `lead` on, one for each window, have their value: the pels
/// before and behind share the outermost windows.
template <class Value>
void RepeatEnds(Value* pels, std::size_t count, std::size_t lead, std::size_t windows) {
    std::fill_n(pels, lead, pels[lead]);
    std::fill(pels + lead + windows, pels + count, pels[lead + windows - 1]);
}

}  // namespace tq
