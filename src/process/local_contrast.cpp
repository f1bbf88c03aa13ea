#include "tqimage/local_contrast.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "core/numerics.h"
#include "core/replaced_image.h"
#include "measure/mura.h"
#include "measure/window_sweep.h"
#include "process/filter_result.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;
constexpr std::int32_t kBadArguments = -4;

/// Nothing where a difference cannot be formed.
using Difference = std::optional<double>;

/// A signed image of differences: kMuraZero is 0, the largest difference of either sign lies kMuraZero away.
/// `Source(view)` is made anew for each of the two passes and gives the differences of a row at a time.
template <class MakeSource>
OwnedImage EncodeDifferences(const ConstImageView& view, MakeSource&& makeSource) {
    const auto visit = [&](auto&& each) {
        auto source = makeSource();
        for (std::int32_t row = 0; row < view.rows; ++row) {
            source.MoveTo(row);
            for (std::int32_t col = 0; col < view.cols; ++col) {
                if (view.At(col, row) == 0) continue;
                if (const Difference difference = source.At(col)) each(col, row, *difference);
            }
        }
    };
    OwnedImage result(view, NewPels::kZero);
    const ImageView out = result.View();
    double largest = 0.0;
    visit([&](std::int32_t, std::int32_t, double difference) {
        largest = std::max(largest, std::abs(difference));
    });
    if (largest == 0.0) largest = 1.0;
    visit([&](std::int32_t col, std::int32_t row, double difference) {
        const double steps = std::nearbyint(difference * kMuraZero / largest);
        out.At(col, row) = ClampToPel(kMuraZero + TruncToInt32(steps));
    });
    TqImageHeader& header = result.Header();
    header.MaxPelValue = static_cast<float>(2 * kMuraZero);
    header.LuxPerGrey = static_cast<float>(header.LuxPerGrey * (largest / kMuraZero));
    return result;
}

/// The mean of a window against the mean of what lies around it in a larger one.
class AgainstSurround {
  public:
    AgainstSurround(const ConstImageView& view, const WindowSize& inner, const WindowSize& outer)
        : view_(view),
          innerSize_(inner),
          outerSize_(outer),
          inner_(view, WindowPlacement::kClipped, inner),
          outer_(view, WindowPlacement::kClipped, outer) {}

    void MoveTo(std::int32_t row) {
        row_ = row;
        inner_.MoveTo(row);
        outer_.MoveTo(row);
    }

    /// Of a pel with data, so that the inner window is never empty.
    Difference At(std::int32_t col) const noexcept {
        const auto i = static_cast<std::size_t>(col);
        const double around = outer_.Counts()[i] - inner_.Counts()[i];
        const std::int64_t area = Covered(outerSize_, col) - Covered(innerSize_, col);
        if (around <= 0.0 || 2.0 * around < static_cast<double>(area)) return std::nullopt;
        const double mean = inner_.Sums()[i] / inner_.Counts()[i];
        return mean - (outer_.Sums()[i] - inner_.Sums()[i]) / around;
    }

  private:
    std::int64_t Covered(const WindowSize& size, std::int32_t col) const noexcept {
        return std::int64_t{ClippedReach(col, size.width, view_.cols).Count()} *
               ClippedReach(row_, size.height, view_.rows).Count();
    }

    ConstImageView view_;
    WindowSize innerSize_;
    WindowSize outerSize_;
    LitWindowSums inner_;
    LitWindowSums outer_;
    std::int32_t row_ = 0;
};

/// Horizontal, vertical, falling and rising diagonal; then all of them.
constexpr std::int32_t kStepCols[] = {1, 0, 1, 1};
constexpr std::int32_t kStepRows[] = {0, 1, 1, -1};
constexpr std::int32_t kDirections = 4;

/// Means of the blocks around a row's pels.
class BlockMeans {
  public:
    BlockMeans(const ConstImageView& view, const WindowSize& size)
        : view_(view), sums_(view, WindowPlacement::kClipped, size) {}

    void MoveTo(std::int64_t row) {
        inside_ = view_.Contains(0, row);
        if (inside_) sums_.MoveTo(static_cast<std::int32_t>(row));
    }

    /// Nothing outside the image and where no pel holds data.
    Difference At(std::int64_t col) const noexcept {
        if (!inside_ || !view_.Contains(col, 0)) return std::nullopt;
        const auto i = static_cast<std::size_t>(col);
        if (sums_.Counts()[i] == 0.0) return std::nullopt;
        return sums_.Sums()[i] / sums_.Counts()[i];
    }

  private:
    ConstImageView view_;
    LitWindowSums sums_;
    bool inside_ = false;
};

/// The mean of a block against the mean of two like it, a distance away on either side.
class AgainstNeighbours {
  public:
    AgainstNeighbours(const ConstImageView& view, const WindowSize& size, std::int32_t distance,
                      std::int32_t direction)
        : above_(view, size),
          here_(view, size),
          below_(view, size),
          distance_(distance),
          direction_(direction) {}

    void MoveTo(std::int32_t row) {
        above_.MoveTo(row - distance_);
        here_.MoveTo(row);
        below_.MoveTo(row + distance_);
    }

    Difference At(std::int32_t col) const noexcept {
        if (direction_ < kDirections) return Along(col, direction_);
        Difference largest;
        for (std::int32_t direction = 0; direction < kDirections; ++direction) {
            const Difference found = Along(col, direction);
            if (found && (!largest || std::abs(*found) > std::abs(*largest))) largest = found;
        }
        return largest;
    }

  private:
    Difference Along(std::int32_t col, std::int32_t direction) const noexcept {
        const std::int64_t cols = distance_ * kStepCols[direction];
        const Difference ahead = Line(kStepRows[direction]).At(col + cols);
        const Difference behind = Line(-kStepRows[direction]).At(col - cols);
        const Difference here = here_.At(col);
        if (!here || !ahead || !behind) return std::nullopt;
        return *here - 0.5 * (*ahead + *behind);
    }
    const BlockMeans& Line(std::int32_t step) const noexcept {
        return step == 0 ? here_ : step < 0 ? above_ : below_;
    }

    BlockMeans above_;
    BlockMeans here_;
    BlockMeans below_;
    std::int64_t distance_;
    std::int32_t direction_;
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
