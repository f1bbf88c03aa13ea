#include "measure/column_sums.h"

#include <algorithm>

#include "kernels/window_sums.h"

namespace tq {

SummandRows::SummandRows(const ConstImageView& view, Summand summand, std::int32_t firstCol, std::size_t cols)
    : view_(view), summand_(summand), firstCol_(firstCol), cols_(cols) {
    if (summand == Summand::kPels) return;
    entering_.resize(cols);
    leaving_.resize(cols);
}

const Pel* SummandRows::Row(std::int32_t row, std::vector<Pel>& marks) noexcept {
    const Pel* pels = view_.Row(row) + firstCol_;
    if (summand_ == Summand::kPels) return pels;
    kernels::MarkNonZero(pels, cols_, marks.data());
    return marks.data();
}

bool ColumnSums::MoveTo(Reach band, std::uint32_t* sums) {
    if (band.first == held_.first && band.last == held_.last) return false;
    const std::size_t cols = rows_.Cols();
    if (band.first > held_.last || band.last < held_.first) {  // nothing shared, as at the start
        std::fill_n(sums, cols, 0U);
        held_ = {band.first, band.first - 1};
    }
    while (held_.last < band.last && held_.first < band.first) {
        const Pel* entering = rows_.Entering(++held_.last);
        kernels::ReplaceRow(sums, entering, rows_.Leaving(held_.first++), cols);
    }
    while (held_.last < band.last)
        kernels::AddRow(sums, rows_.Entering(++held_.last), cols);
    while (held_.first > band.first)
        kernels::AddRow(sums, rows_.Entering(--held_.first), cols);
    while (held_.first < band.first)
        kernels::SubtractRow(sums, rows_.Leaving(held_.first++), cols);
    while (held_.last > band.last)
        kernels::SubtractRow(sums, rows_.Leaving(held_.last--), cols);
    return true;
}

}  // namespace tq
