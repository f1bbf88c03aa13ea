#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/image_view.h"
#include "core/window.h"

namespace tq {

/// What is added up: the pels, or a 1 for each pel that is not 0.
enum class Summand { kPels, kLit };

/// Parts of an image's rows, `cols` columns from firstCol on, as they are added up. Two at most are needed at
/// a time, one that enters a sum and one that leaves it. The view must outlive the object.
class SummandRows {
  public:
    SummandRows(const ConstImageView& view, Summand summand, std::int32_t firstCol, std::size_t cols);

    std::size_t Cols() const noexcept { return cols_; }
    const Pel* Entering(std::int32_t row) noexcept { return Row(row, entering_); }
    const Pel* Leaving(std::int32_t row) noexcept { return Row(row, leaving_); }

  private:
    const Pel* Row(std::int32_t row, std::vector<Pel>& marks) noexcept;

    ConstImageView view_;
    Summand summand_;
    std::int32_t firstCol_;
    std::size_t cols_;
    std::vector<Pel> entering_;
    std::vector<Pel> leaving_;
};

/// The sums of the columns of a band of rows that slides over an image. A move costs what enters and leaves.
class ColumnSums {
  public:
    explicit ColumnSums(SummandRows rows) : rows_(std::move(rows)) {}

    /// Brings `sums`, one a column and the same at every call, from the band of the last call to this one.
    /// False when it is the same band.
    bool MoveTo(Reach band, std::uint32_t* sums);

  private:
    SummandRows rows_;
    Reach held_{0, -1};
};

}  // namespace tq
