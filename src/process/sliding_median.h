#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "core/image_view.h"

namespace tq {

/// Counts of pels by value in two levels, so that a rank is found by looking through 256 bins and not 65536.
/// Pels of 0, "no data", are not counted.
class LitHistogram {
  public:
    LitHistogram() : fine_(65536), coarse_(256) {}

    void Enter(Pel pel) noexcept { Count(pel, 1); }
    void Leave(Pel pel) noexcept { Count(pel, -1); }

    /// The upper middle one of the pels counted, 0 when there are none. Neighbouring windows have medians
    /// close to each other: the search begins at the last bin found.
    Pel Median() noexcept {
        if (total_ == 0) return 0;
        const std::int32_t rank = total_ / 2;
        while (below_ > rank)
            below_ -= coarse_[--bin_];
        while (below_ + coarse_[bin_] <= rank)
            below_ += coarse_[bin_++];
        std::size_t value = bin_ << 8;
        for (std::int32_t left = rank - below_ - fine_[value]; left >= 0; left -= fine_[value])
            ++value;
        return static_cast<Pel>(value);
    }

  private:
    void Count(Pel pel, std::int32_t change) noexcept {
        if (pel == 0) return;
        const std::size_t bin = pel >> 8;
        fine_[pel] += change;
        coarse_[bin] += change;
        if (bin < bin_) below_ += change;
        total_ += change;
    }

    std::vector<std::int32_t> fine_;
    std::vector<std::int32_t> coarse_;
    std::size_t bin_ = 0;
    std::int32_t below_ = 0;  ///< pels in the bins before bin_
    std::int32_t total_ = 0;
};

/// Medians of the lit pels of the square windows that fit into the image. The window runs to and fro and
/// never jumps, so that a step costs two sides of it, not its area.
class SlidingMedian {
  public:
    /// The view must outlive the object; the side is odd and fits into it.
    SlidingMedian(const ConstImageView& view, std::int32_t side)
        : view_(view), side_(side), medians_(static_cast<std::size_t>(view.cols - side + 1)) {
        for (std::int32_t row = 0; row < side; ++row)
            EnterRow(row);
    }

    /// The medians of the windows whose first row is the next one, a window a first column.
    std::span<const double> Next() noexcept {
        if (top_ >= 0) {
            for (std::int32_t col = left_; col < left_ + side_; ++col)
                histogram_.Leave(view_.At(col, top_));
            EnterRow(top_ + side_);
        }
        ++top_;
        const std::int32_t last = view_.cols - side_;
        const std::int32_t step = left_ == 0 ? 1 : -1;
        for (std::int32_t left = 0; left < last; ++left) {
            Store();
            Step(step);
        }
        Store();
        return medians_;
    }

  private:
    void EnterRow(std::int32_t row) noexcept {
        for (std::int32_t col = left_; col < left_ + side_; ++col)
            histogram_.Enter(view_.At(col, row));
    }

    void Step(std::int32_t step) noexcept {
        const std::int32_t leaving = step > 0 ? left_ : left_ + side_ - 1;
        const std::int32_t entering = step > 0 ? left_ + side_ : left_ - 1;
        for (std::int32_t row = top_; row < top_ + side_; ++row) {
            const Pel* const pels = view_.Row(row);
            histogram_.Leave(pels[leaving]);
            histogram_.Enter(pels[entering]);
        }
        left_ += step;
    }

    void Store() noexcept { medians_[static_cast<std::size_t>(left_)] = histogram_.Median(); }

    ConstImageView view_;
    std::int32_t side_;
    std::int32_t top_ = -1;
    std::int32_t left_ = 0;
    LitHistogram histogram_;
    std::vector<double> medians_;
};

}  // namespace tq
