#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/numerics.h"
#include "core/population_deviation.h"
#include "core/replaced_image.h"
#include "measure/window_sweep.h"
#include "process/filter_result.h"
#include "tqimage/local_contrast.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

/// The largest deviation becomes this grey level.
constexpr double kFullScale = 65000.0;

/// Sums of squares over the sliding windows of a row, exact: 8000 x 8000 squares below 2^32 stay below 2^58.
class SquareSums {
  public:
    SquareSums(const ConstImageView& view, const WindowSize& size)
        : view_(view), size_(size), columns_(static_cast<std::size_t>(view.cols)), sums_(columns_.size()) {}

    const std::vector<std::uint64_t>& At(std::int32_t row) {
        const Reach wanted = ShiftedReach(row, size_.height, view_.rows);
        while (held_.last < wanted.last)
            Update(++held_.last, [](std::uint64_t& sum, std::uint64_t square) { sum += square; });
        while (held_.first < wanted.first)
            Update(held_.first++, [](std::uint64_t& sum, std::uint64_t square) { sum -= square; });
        std::int32_t first = 0;
        std::uint64_t sum = 0;
        for (std::int32_t col = 0; col < size_.width; ++col)
            sum += Column(col);
        for (std::int32_t col = 0; col < view_.cols; ++col) {
            for (; first < ShiftedReach(col, size_.width, view_.cols).first; ++first)
                sum += Column(first + size_.width) - Column(first);
            sums_[static_cast<std::size_t>(col)] = sum;
        }
        return sums_;
    }

  private:
    std::uint64_t Column(std::int32_t col) const noexcept { return columns_[static_cast<std::size_t>(col)]; }

    template <class Apply>
    void Update(std::int32_t row, Apply&& apply) {
        const Pel* pels = view_.Row(row);
        for (std::size_t col = 0; col < columns_.size(); ++col)
            apply(columns_[col], std::uint64_t{pels[col]} * pels[col]);
    }

    ConstImageView view_;
    WindowSize size_;
    Reach held_{0, -1};
    std::vector<std::uint64_t> columns_;
    std::vector<std::uint64_t> sums_;
};

/// Calls visit(col, row, deviation) for every pel with data, top down.
template <class Visit>
void VisitDeviations(const ConstImageView& view, const WindowSize& size, Visit&& visit) {
    LitWindowSums sums(view, WindowPlacement::kShifted, size);
    SquareSums squares(view, size);
    for (std::int32_t row = 0; row < view.rows; ++row) {
        sums.MoveTo(row);
        const auto& squared = squares.At(row);
        for (std::int32_t col = 0; col < view.cols; ++col) {
            if (view.At(col, row) == 0) continue;
            const auto i = static_cast<std::size_t>(col);
            visit(col, row,
                  PopulationDeviation(static_cast<std::int64_t>(sums.Counts()[i]),
                                      static_cast<std::int64_t>(sums.Sums()[i]),
                                      static_cast<std::int64_t>(squared[i])));
        }
    }
}

OwnedImage MakeLocalDeviation(const ConstImageView& view, const WindowSize& size) {
    OwnedImage result(view, NewPels::kZero);
    const ImageView out = result.View();
    double largest = 0.0;
    VisitDeviations(view, size, [&](std::int32_t, std::int32_t, double deviation) {
        largest = std::max(largest, deviation);
    });
    if (largest == 0.0) largest = 1.0;
    VisitDeviations(view, size, [&](std::int32_t col, std::int32_t row, double deviation) {
        out.At(col, row) = ClampToPel(TruncToInt32(deviation * kFullScale / largest));
    });
    TqImageHeader& header = result.Header();
    header.MaxPelValue = static_cast<float>(kFullScale);
    header.LuxPerGrey = static_cast<float>(header.LuxPerGrey * (largest / kFullScale));
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
