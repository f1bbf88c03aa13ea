#include "measure/window_sweep.h"

#include <algorithm>

#include "kernels/window_sums.h"

namespace tq {

WindowColumns::WindowColumns(const ConstImageView& view, WindowPlacement placement, const WindowSize& size,
                             std::int32_t firstCol, std::int32_t lastCol, Summand summand)
    : view_(view), placement_(placement), summand_(summand), width_(size.width), height_(size.height) {
    const std::int32_t firstWindow = FirstColumn(firstCol);
    const SlidingWindows sliding(firstCol, lastCol, width_, view.cols);
    lead_ = placement == WindowPlacement::kShifted ? static_cast<std::size_t>(sliding.lead) : 0;
    const std::int32_t end = FirstColumn(lastCol) + width_;
    firstCol_ = std::max(firstWindow, 0);
    cols_ = static_cast<std::size_t>(std::min(end, view.cols) - firstCol_);
    columns_.resize(static_cast<std::size_t>(end - firstWindow));
    margin_ = static_cast<std::size_t>(firstCol_ - firstWindow);
    if (summand == Summand::kLit) {
        entering_.resize(cols_);
        leaving_.resize(cols_);
    }
}

const Pel* WindowColumns::Row(std::int32_t row, std::vector<Pel>& marks) {
    const Pel* pels = view_.Row(row) + firstCol_;
    if (summand_ == Summand::kPels) return pels;
    kernels::MarkNonZero(pels, cols_, marks.data());
    return marks.data();
}

bool WindowColumns::MoveTo(std::int32_t row) {
    const Reach wanted = placement_ == WindowPlacement::kShifted ? ShiftedReach(row, height_, view_.rows)
                                                                 : ClippedReach(row, height_, view_.rows);
    if (wanted.first == held_.first && wanted.last == held_.last) return false;
    if (wanted.first > held_.last || wanted.last < held_.first) {  // nothing shared, as at the start
        std::fill(columns_.begin(), columns_.end(), 0U);
        held_ = {wanted.first, wanted.first - 1};
    }
    std::uint32_t* const inside = columns_.data() + margin_;
    while (held_.last < wanted.last && held_.first < wanted.first) {
        const Pel* entering = Row(++held_.last, entering_);
        kernels::ReplaceRow(inside, entering, Row(held_.first++, leaving_), cols_);
    }
    while (held_.last < wanted.last)
        kernels::AddRow(inside, Row(++held_.last, entering_), cols_);
    while (held_.first > wanted.first)
        kernels::AddRow(inside, Row(--held_.first, entering_), cols_);
    while (held_.first < wanted.first)
        kernels::SubtractRow(inside, Row(held_.first++, leaving_), cols_);
    while (held_.last > wanted.last)
        kernels::SubtractRow(inside, Row(held_.last--, leaving_), cols_);
    return true;
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
