#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/numerics.h"
#include "kernels/span_statistics.h"
#include "kernels/window_sums.h"
#include "measure/photometric_frame.h"

namespace tq {

/// Pels that are ruled out together when even the brightest (darkest) of them, put where the geometry favours
/// it most, cannot win.
inline constexpr std::int32_t kScanChunk = 128;

inline double SmallestOf(const Pel* greys, std::size_t count) {
    return kernels::FindMinMax(greys, count).min;
}
inline double LargestOf(const Pel* greys, std::size_t count) {
    return kernels::FindMinMax(greys, count).max;
}
inline double SmallestOf(const double* greys, std::size_t count) {
    return kernels::FindRange(greys, count).min;
}
inline double LargestOf(const double* greys, std::size_t count) {
    return kernels::FindRange(greys, count).max;
}

enum class Extreme { kLargest, kSmallest };

/// What a scan ranks by: the intensity in candela, in double.
struct CandelaRanking {
    const PhotometricFrame& frame;

    /// How far the bound of a chunk may be off: far above the rounding of a few operations, far below what
    /// would keep chunks from being ruled out.
    static constexpr double kBoundSlack = 1e-9;

    double operator()(double grey, std::int32_t col, std::int32_t row) const noexcept {
        return frame.Intensity(frame.LuxPerGrey() * grey, frame.PointOf(col, row));
    }
    bool RisesWithGrey() const noexcept { return frame.LuxPerGrey() > 0.0; }
    double CenterCol() const noexcept { return frame.CenterCol(); }
};

/// The search for the direction of largest or smallest rank, row by row. Strictly better values replace, so
/// of equal ones the first in row order stays. The largest must exceed `start`; the smallest starts with the
/// first.
template <Extreme extreme, class Ranking>
class IntensityScan {
  public:
    explicit IntensityScan(const Ranking& ranking, double start = 0.0) : ranking_(ranking), best_(start) {}

    double Best() const noexcept { return best_; }
    bool Found() const noexcept { return found_; }
    std::int32_t Col() const noexcept { return col_; }
    std::int32_t Row() const noexcept { return row_; }

    /// Offers the grey levels, integers or doubles, of columns firstCol, firstCol + 1, … of a row.
    template <class Grey>
    void Offer(std::int32_t row, std::int32_t firstCol, const Grey* greys, std::size_t count) {
        const auto end = static_cast<std::int32_t>(count);
        for (std::int32_t from = 0; from < end; from += kScanChunk) {
            const std::int32_t to = std::min(from + kScanChunk, end);
            if (RuledOut(row, firstCol + from, firstCol + to - 1, greys + from)) continue;
            for (std::int32_t i = from; i < to; ++i)
                OfferOne(row, firstCol + i, static_cast<double>(greys[i]));
        }
    }

  private:
    void OfferOne(std::int32_t row, std::int32_t col, double grey) {
        const double rank = ranking_(grey, col, row);
        const bool better = extreme == Extreme::kLargest ? rank > best_ : !found_ || rank < best_;
        if (!better) return;
        best_ = rank;
        found_ = true;
        col_ = col;
        row_ = row;
    }

    /// The factor between grey level and rank grows with the distance from the axis, so along a row it is
    /// largest at an end of the chunk and smallest at an end or on the axis. Comparisons with NaN rule
    /// nothing out.
    template <class Grey>
    bool RuledOut(std::int32_t row, std::int32_t first, std::int32_t last, const Grey* greys) const {
        if (!ranking_.RisesWithGrey()) return false;
        const auto count = static_cast<std::size_t>(last - first + 1);
        if constexpr (extreme == Extreme::kLargest) {
            const double grey = LargestOf(greys, count);
            const double bound = std::max(ranking_(grey, first, row), ranking_(grey, last, row));
            return bound * (1.0 + Ranking::kBoundSlack) < best_;
        } else {
            const bool acrossAxis = first <= ranking_.CenterCol() && ranking_.CenterCol() <= last;
            if (!found_ || acrossAxis) return false;
            const double grey = SmallestOf(greys, count);
            const double bound = std::min(ranking_(grey, first, row), ranking_(grey, last, row));
            return bound * (1.0 - Ranking::kBoundSlack) > best_;
        }
    }

    Ranking ranking_;
    double best_;
    bool found_ = false;
    std::int32_t col_ = -1;
    std::int32_t row_ = -1;
};

}  // namespace tq
