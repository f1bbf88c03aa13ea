#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/population_deviation.h"
#include "core/replaced_image.h"
#include "core/window.h"
#include "kernels/local_contrast.h"
#include "measure/window_sweep.h"
#include "process/scaled_by_largest.h"
#include "tqimage/local_contrast.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

/// The largest deviation becomes this grey level.
constexpr std::int32_t kFullScale = 65000;

/// Deviations of the pels with data in the sliding windows of a row.
class DeviationRows {
  public:
    DeviationRows(const ConstImageView& view, const WindowSize& size)
        : view_(view),
          size_(size),
          windows_(0, view.cols - 1, size.width, view.cols),
          sums_(view, WindowPlacement::kShifted, size),
          columns_(static_cast<std::size_t>(view.cols)),
          squares_(columns_.size() + 1),
          deviations_(columns_.size()) {}

    const double* Row(std::int32_t row) {
        const Reach wanted = ShiftedReach(row, size_.height, view_.rows);
        if (wanted.last == held_.last) return deviations_.data();  // at the border rows share their windows
        while (held_.last < wanted.last)
            kernels::AddSquares(columns_.data(), view_.Row(++held_.last), columns_.size());
        while (held_.first < wanted.first)
            kernels::SubtractSquares(columns_.data(), view_.Row(held_.first++), columns_.size());
        std::partial_sum(columns_.begin(), columns_.end(), squares_.begin() + 1);
        sums_.MoveTo(row);
        Deviate();
        return deviations_.data();
    }

  private:
    void Deviate() {
        const auto lead = static_cast<std::size_t>(windows_.lead);
        const auto count = static_cast<std::size_t>(windows_.count);
        const auto width = static_cast<std::size_t>(size_.width);
        const double* const sums = sums_.Sums().data() + lead;
        const double* const counts = sums_.Counts().data() + lead;
        double* const out = deviations_.data() + lead;
        if (size_.Area() <= kernels::kLargestSquaredWindow) {
            kernels::WindowDeviations(sums, counts, squares_.data(), width, count, out);
        } else {
            for (std::size_t i = 0; i < count; ++i) {
                out[i] = PopulationDeviation(static_cast<std::int64_t>(counts[i]),
                                             static_cast<std::int64_t>(sums[i]),
                                             static_cast<std::int64_t>(squares_[i + width] - squares_[i]));
            }
        }
        RepeatEnds(deviations_.data(), deviations_.size(), lead, count);
    }

    ConstImageView view_;
    WindowSize size_;
    SlidingWindows windows_;
    LitWindowSums sums_;
    Reach held_{0, -1};  ///< rows that the columns sum
    /// Exact: 8000 x 8000 squares below 2^32 stay below 2^58.
    std::vector<std::uint64_t> columns_;
    std::vector<std::uint64_t> squares_;  ///< of the columns before each one
    std::vector<double> deviations_;
};

OwnedImage MakeLocalDeviation(const ConstImageView& view, const WindowSize& size) {
    OwnedImage result = ScaleByLargest(
        view, kFullScale, [&] { return DeviationRows(view, size); }, kernels::WriteMagnitudes);
    result.Header().MaxPelValue = static_cast<float>(kFullScale);
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCalcLocalStdDev(TqImage** image, std::int32_t width, std::int32_t height) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    const WindowSize size(width, height, view);
    if (size.IsPel()) return 0;
    return ReplaceImage(image, kNoMemory, [&] { return MakeLocalDeviation(view, size); });
}
