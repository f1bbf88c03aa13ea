#include "tqimage/local_contrast.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "core/window.h"
#include "kernels/local_contrast.h"
#include "kernels/window_sums.h"
#include "measure/mura.h"
#include "measure/window_sweep.h"
#include "process/scaled_by_largest.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;
constexpr std::int32_t kBadArguments = -4;

constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

std::size_t Size(std::int32_t count) noexcept {
    return static_cast<std::size_t>(count);
}

/// A signed image of differences: kMuraZero is 0, the largest difference of either sign lies kMuraZero away.
template <class MakeRows>
OwnedImage EncodeDifferences(const ConstImageView& view, MakeRows&& makeRows) {
    OwnedImage result = ScaleByLargest(view, kMuraZero, makeRows, kernels::WriteSigned);
    result.Header().MaxPelValue = static_cast<float>(2 * kMuraZero);
    return result;
}

/// The mean of a window against the mean of what lies around it in a larger one.
class AgainstSurround {
  public:
    AgainstSurround(const ConstImageView& view, const WindowSize& inner, const WindowSize& outer)
        : view_(view), inner_(view, inner), outer_(view, outer), differences_(Size(view.cols)) {}

    const double* Row(std::int32_t row) {
        inner_.sums.MoveTo(row);
        outer_.sums.MoveTo(row);
        kernels::SurroundDifferences(
            {inner_.sums.Sums().data(), inner_.sums.Counts().data(), outer_.sums.Sums().data(),
             outer_.sums.Counts().data(), inner_.cols.data(), outer_.cols.data(), inner_.RowsAt(row, view_),
             outer_.RowsAt(row, view_)},
            differences_.size(), differences_.data());
        return differences_.data();
    }

  private:
    struct Windows {
        LitWindowSums sums;
        std::int32_t height;
        std::vector<double> cols;  ///< of each window that lie inside the image

        Windows(const ConstImageView& view, const WindowSize& size)
            : sums(view, WindowPlacement::kClipped, size), height(size.height), cols(Size(view.cols)) {
            for (std::int32_t col = 0; col < view.cols; ++col)
                cols[Size(col)] = ClippedReach(col, size.width, view.cols).Count();
        }
        double RowsAt(std::int32_t row, const ConstImageView& view) const noexcept {
            return ClippedReach(row, height, view.rows).Count();
        }
    };

    ConstImageView view_;
    Windows inner_;
    Windows outer_;
    std::vector<double> differences_;
};

/// Horizontal, vertical, falling and rising diagonal; then all of them.
constexpr std::int32_t kStepCols[] = {1, 0, 1, 1};
constexpr std::int32_t kStepRows[] = {0, 1, 1, -1};
constexpr std::int32_t kDirections = 4;

/// Means of the blocks around the pels of a row, kNothing where no pel holds data and outside the image. The
/// rows asked for last are kept.
class BlockMeans {
  public:
    /// `margin` columns beyond either side can be read, too.
    BlockMeans(const ConstImageView& view, const WindowSize& size, std::int32_t margin, std::int32_t kept)
        : view_(view),
          margin_(Size(margin)),
          length_(Size(view.cols) + 2 * margin_),
          sums_(view, WindowPlacement::kClipped, size),
          outside_(length_, kNothing),
          means_(length_ * Size(kept), kNothing),
          held_(Size(kept), -1) {}

    /// From column 0 on; cheapest downwards.
    const double* Row(std::int64_t row) {
        if (!view_.Contains(0, row)) return outside_.data() + margin_;
        const std::size_t slot = static_cast<std::size_t>(row) % held_.size();
        double* const means = means_.data() + slot * length_ + margin_;
        if (held_[slot] == row) return means;
        held_[slot] = row;
        sums_.MoveTo(static_cast<std::int32_t>(row));
        // No data is 0 / 0.
        kernels::Quotients(sums_.Sums().data(), sums_.Counts().data(), Size(view_.cols), means);
        return means;
    }

  private:
    ConstImageView view_;
    std::size_t margin_;
    std::size_t length_;
    LitWindowSums sums_;
    std::vector<double> outside_;
    std::vector<double> means_;
    std::vector<std::int64_t> held_;
};

/// The mean of a block against the mean of two like it, a distance away on either side.
class AgainstNeighbours {
  public:
    AgainstNeighbours(const ConstImageView& view, const WindowSize& size, std::int32_t distance,
                      std::int32_t direction)
        : distance_(distance),
          colDistance_(std::min(distance, view.cols)),
          firstDirection_(direction < kDirections ? direction : 0),
          lastDirection_(direction < kDirections ? direction : kDirections - 1),
          differences_(Size(view.cols)) {
        // Near lines are one sweep that keeps the rows between them; far ones, which would keep many, are
        // three.
        constexpr std::int32_t kNear = 32;
        reach_ = kStepRows[lastDirection_] == 0 ? 0 : distance;
        const bool near = reach_ <= kNear;
        for (std::int32_t line = 0; line < (near ? 1 : 3); ++line)
            lines_.emplace_back(view, size, colDistance_, near ? 2 * reach_ + 1 : 1);
    }

    const double* Row(std::int32_t row) {
        // In order, so that the one sweep never turns back.
        if (lines_.size() == 1) {
            for (; next_ <= row + reach_; ++next_)
                lines_.front().Row(next_);
        }
        std::fill(differences_.begin(), differences_.end(), kNothing);
        for (std::int32_t direction = firstDirection_; direction <= lastDirection_; ++direction) {
            const std::int32_t step = kStepRows[direction];
            const std::int32_t cols = colDistance_ * kStepCols[direction];
            kernels::KeepLargerDifferences(Line(row, 0), Line(row, step) + cols, Line(row, -step) - cols,
                                           differences_.size(), differences_.data());
        }
        return differences_.data();
    }

  private:
    /// The means of the row itself or of the one that lies a distance above (-1) or below (1).
    const double* Line(std::int32_t row, std::int32_t step) {
        return lines_[lines_.size() == 1 ? 0 : Size(step + 1)].Row(row + step * distance_);
    }

    std::int64_t distance_;
    std::int32_t colDistance_;  ///< no more than leads past the last column
    std::int32_t firstDirection_;
    std::int32_t lastDirection_;
    std::int32_t reach_;     ///< rows to the lines above and below
    std::int32_t next_ = 0;  ///< row that the one sweep has not reached yet
    std::vector<BlockMeans> lines_;
    std::vector<double> differences_;
};

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCalcLocalLumDiff(TqImage** out, const TqImage* image, std::int32_t innerWidth,
                                        std::int32_t innerHeight, std::int32_t outerWidth,
                                        std::int32_t outerHeight) {
    const ConstImageView view = LocateImage(image);
    if (out == nullptr || !view) return kInvalidImage;
    const WindowSize inner(innerWidth, innerHeight, view);
    const WindowSize outer(outerWidth, outerHeight, view);
    const bool contains = outer.width >= inner.width && outer.height >= inner.height;
    if (!contains || outer.Area() == inner.Area()) return kBadArguments;
    return ReplaceImage(out, kNoMemory, [&] {
        return EncodeDifferences(view, [&] { return AgainstSurround(view, inner, outer); });
    });
}

std::int32_t TQ_CALL tqCalcLocalLumDiffDir(TqImage** out, const TqImage* image, std::int32_t width,
                                           std::int32_t height, std::int32_t distance,
                                           std::int32_t direction) {
    const ConstImageView view = LocateImage(image);
    if (out == nullptr || !view) return kInvalidImage;
    if (distance < 1 || direction < 0 || direction > kDirections) return kBadArguments;
    const WindowSize size(width, height, view);
    return ReplaceImage(out, kNoMemory, [&] {
        return EncodeDifferences(view, [&] { return AgainstNeighbours(view, size, distance, direction); });
    });
}
