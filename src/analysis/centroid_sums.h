#pragma once

#include <cstdint>

#include "core/image_view.h"
#include "kernels/first_moments.h"

/// Sums from which the centre of the pels above a threshold is found. Exact integers: 64,000,000 pels of
/// 65535 at column 7999 stay below 2^55.
namespace tq {

struct CentroidSums {
    std::uint64_t weight = 0;
    std::uint64_t colMoment = 0;
    std::uint64_t rowMoment = 0;

    /// `run` starts at this column of this row.
    void Add(const kernels::FirstMoments& run, std::int32_t col, std::int32_t row) noexcept {
        weight += run.weight;
        colMoment += run.moment + run.weight * static_cast<std::uint64_t>(col);
        rowMoment += run.weight * static_cast<std::uint64_t>(row);
    }
    double Col() const noexcept { return static_cast<double>(colMoment) / static_cast<double>(weight); }
    double Row() const noexcept { return static_cast<double>(rowMoment) / static_cast<double>(weight); }
};

enum class CentroidWeight { kGrey, kOne };

/// Takes spans of the pels that are strictly above a threshold of any value.
class CentroidOfSpans {
  public:
    CentroidOfSpans(const ConstImageView& view, std::int32_t threshold, CentroidWeight weight) noexcept
        : view_(view), atLeast_(std::int64_t{threshold} + 1), weight_(weight) {}

    void operator()(std::int32_t row, std::int32_t first, std::int32_t last) noexcept {
        if (atLeast_ > kLargestPel) return;
        const auto bound = static_cast<Pel>(atLeast_ > 0 ? atLeast_ : 0);
        const Pel* pels = view_.Row(row) + first;
        const auto count = static_cast<std::size_t>(last - first + 1);
        sums_.Add(weight_ == CentroidWeight::kGrey ? kernels::GreyMoments(pels, count, bound)
                                                   : kernels::CountMoments(pels, count, bound),
                  first, row);
    }
    const CentroidSums& Sums() const noexcept { return sums_; }

  private:
    ConstImageView view_;
    std::int64_t atLeast_;
    CentroidWeight weight_;
    CentroidSums sums_;
};

}  // namespace tq
