#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/numerics.h"
#include "core/replaced_image.h"
#include "kernels/low_pass.h"
#include "process/filter_result.h"
#include "tqimage/filters.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;
constexpr std::int32_t kTooSmall = -4;

/// The results of one row after the other, where the whole kernel lies inside the image.
class LowPassRow {
  public:
    explicit LowPassRow(const ConstImageView& view)
        : view_(view),
          columns_(2 * static_cast<std::size_t>(view.cols)),
          results_(static_cast<std::size_t>(view.cols - 4)) {}

    /// `row` counts the rows of results: it is centred two rows further down.
    kernels::ResultRange Compute(std::int32_t row) {
        const Pel* rows[5];
        for (std::int32_t i = 0; i < 5; ++i)
            rows[i] = view_.Row(row + i);
        return kernels::LowPassRow(rows, static_cast<std::size_t>(view_.cols), columns_.data(),
                                   results_.data());
    }
    const std::vector<std::int32_t>& Results() const noexcept { return results_; }

  private:
    ConstImageView view_;
    std::vector<std::int32_t> columns_;
    std::vector<std::int32_t> results_;
};

OwnedImage LowPass(const ConstImageView& view) {
    OwnedImage result(view, NewPels::kZero);
    LowPassRow filtered(view);
    std::int32_t min = std::numeric_limits<std::int32_t>::max();
    std::int32_t max = 0;
    for (std::int32_t row = 0; row < view.rows - 4; ++row) {
        const auto [low, high] = filtered.Compute(row);
        min = std::min(min, low);
        max = std::max(max, high);
    }
    if (min == max) return result;
    const double scale = double{view.header->MaxPelValue} / static_cast<double>(max - min);
    // Results are shorter than the image's rows and are written one behind the other: rows run on into each
    // other and the image ends in zeros. Hosts read the result in this layout.
    Pel* out = result.View().pels;
    for (std::int32_t row = 0; row < view.rows - 4; ++row) {
        filtered.Compute(row);
        const std::vector<std::int32_t>& results = filtered.Results();
        kernels::ScaleResults(results.data(), min, scale, out, results.size());
        out += results.size();
    }
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqLowPassFilter(TqImage** image) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    if (view.cols < 5 || view.rows < 5) return kTooSmall;
    return ReplaceImage(image, kNoMemory, [&] { return LowPass(view); });
}
