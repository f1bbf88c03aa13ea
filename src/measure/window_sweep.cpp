#include "measure/window_sweep.h"

#include <algorithm>

#include "kernels/window_sums.h"

namespace tq {

SummandRows WindowColumns::CoveredRows(Summand summand, std::int32_t firstCol, std::int32_t lastCol) const {
    const std::int32_t first = std::max(FirstColumn(firstCol), 0);
    const std::int32_t end = std::min(FirstColumn(lastCol) + width_, view_.cols);
    return {view_, summand, first, static_cast<std::size_t>(end - first)};
}

WindowColumns::WindowColumns(const ConstImageView& view, WindowPlacement placement, const WindowSize& size,
                             std::int32_t firstCol, std::int32_t lastCol, Summand summand)
    : view_(view),
      placement_(placement),
      width_(size.width),
      height_(size.height),
      lead_(0),
      margin_(static_cast<std::size_t>(std::max(-FirstColumn(firstCol), 0))),
      columns_(static_cast<std::size_t>(FirstColumn(lastCol) + width_ - FirstColumn(firstCol))),
      sums_(CoveredRows(summand, firstCol, lastCol)) {
    if (placement == WindowPlacement::kClipped) return;
    lead_ = static_cast<std::size_t>(SlidingWindows(firstCol, lastCol, width_, view.cols).lead);
}

bool WindowColumns::MoveTo(std::int32_t row) {
    const Reach band = placement_ == WindowPlacement::kShifted ? ShiftedReach(row, height_, view_.rows)
                                                               : ClippedReach(row, height_, view_.rows);
    return sums_.MoveTo(band, columns_.data() + margin_);
}

WindowSums::WindowSums(const ConstImageView& view, WindowPlacement placement, const WindowSize& size,
                       Summand summand)
    : columns_(view, placement, size, 0, view.cols - 1, summand),
      prefix_(columns_.Columns().size() + 1),
      sums_(static_cast<std::size_t>(view.cols)) {}

void WindowSums::MoveTo(std::int32_t row) {
    if (!columns_.MoveTo(row)) return;
    const std::size_t windows = columns_.Windows();
    const std::size_t lead = columns_.Lead();
    kernels::PrefixSums(columns_.Columns().data(), columns_.Columns().size(), prefix_.data());
    kernels::Differences(prefix_.data() + columns_.Width(), prefix_.data(), windows, sums_.data() + lead);
    RepeatEnds(sums_.data(), sums_.size(), lead, windows);
}

}  // namespace tq
