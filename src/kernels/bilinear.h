#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/numerics.h"

/// Sampling between pels.
namespace tq::kernels {

/// The value between four pels: near[0] and near[next] of one row, far[0] and far[next] of the row below.
/// The one place of the products and of their order, which every record of a resampled image depends on;
/// vectors follow it in bilinear-inl.h.
inline double Blend(const Pel* near, const Pel* far, std::ptrdiff_t next, double fx, double fy) noexcept {
    double value = (1.0 - fy) * fx * near[next] + (1.0 - fy) * (1.0 - fx) * near[0];
    value += fx * fy * far[next];
    value += fy * (1.0 - fx) * far[0];
    return value;
}

/// The pels of a source image.
struct SourcePels {
    const Pel* pels;
    std::int32_t cols;
    std::int32_t rows;
};

/// The values of an image at places that are, truncated, one of its pels. The last column and row belong to
/// the cell before them, so that values beyond them are extrapolated; an axis of one pel has that pel only.
class CellSampler {
  public:
    explicit CellSampler(const SourcePels& source) noexcept
        : source_(source), lastCol_(std::max(source.cols - 2, 0)), lastRow_(std::max(source.rows - 2, 0)) {}

    double At(double col, double row) const noexcept {
        const std::int32_t i = std::min(TruncToInt32(col), lastCol_);
        const std::int32_t j = std::min(TruncToInt32(row), lastRow_);
        const std::ptrdiff_t next = source_.cols == 1 ? 0 : 1;
        const std::ptrdiff_t below = source_.rows == 1 ? 0 : source_.cols;
        const Pel* near = source_.pels + static_cast<std::ptrdiff_t>(j) * source_.cols + i;
        return Blend(near, near + below, next, next == 0 ? 0.0 : col - i, below == 0 ? 0.0 : row - j);
    }

  private:
    SourcePels source_;
    std::int32_t lastCol_;
    std::int32_t lastRow_;
};

/// Two neighbours of a row, the left one in the low half.
using PelPair = std::uint32_t;

inline PelPair MakePair(const Pel* left, std::ptrdiff_t next) noexcept {
    return left[0] | PelPair{left[next]} << 16;
}

/// Four places whose neighbours lie within eight pels, so that one load and one shuffle fetch them all.
struct PlaceGroup {
    static constexpr std::size_t kPlaces = 4;
    static constexpr std::int32_t kReach = 8;

    std::uint8_t bytes[kPlaces * sizeof(PelPair)];  ///< of the pels from `first` on
    std::int32_t first;
};

/// The places of a row that are sampled, for every row the same: the cell's first column, in rows of `cols`
/// pels, and as many groups of four places, from the first place on, as are close enough together.
struct RowPlaces {
    const std::int32_t* cells;
    std::size_t count;
    std::int32_t cols;
    const PlaceGroup* groups;
    std::size_t groupCount;
};

std::vector<PlaceGroup> GroupPlaces(const std::int32_t* cells, std::size_t count, std::int32_t cols);

/// The neighbours of every place in one row. A row of one pel has that pel only.
void PairUp(const Pel* row, const RowPlaces& places, PelPair* pairs);

/// out[i] = low 16 bits of trunc(Blend + bias) between the pairs near[i] and far[i] of two rows. The weights
/// lie in 0 .. 2, so every value fits into 32 bits.
void BlendRow(const PelPair* near, const PelPair* far, const double* weights, std::size_t count, double fy,
              double bias, Pel* out);

}  // namespace tq::kernels
