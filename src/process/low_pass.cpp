#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/numerics.h"
#include "process/filter_result.h"
#include "tqimage/filters.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;
constexpr std::int32_t kTooSmall = -4;

/// Results of the kernel
///     1 1 1 1 1 / 1 4 4 4 1 / 1 4 12 4 1 / 1 4 4 4 1 / 1 1 1 1 1
/// for one row, where all of it lies inside the image: the sum of 25, three times the sum of the inner nine
/// and eight times the centre. Sixty pels stay far below 2^31.
class LowPassRow {
  public:
    explicit LowPassRow(const ConstImageView& view)
        : view_(view),
          five_(static_cast<std::size_t>(view.cols)),
          three_(five_.size()),
          results_(five_.size() - 4) {}

    /// `row` counts the rows of results: it is centred two rows further down.
    const std::vector<std::int32_t>& operator()(std::int32_t row) {
        const Pel* rows[5];
        for (std::int32_t i = 0; i < 5; ++i)
            rows[i] = view_.Row(row + i);
        for (std::size_t i = 0; i < five_.size(); ++i) {
            three_[i] = rows[1][i] + rows[2][i] + rows[3][i];
            five_[i] = three_[i] + rows[0][i] + rows[4][i];
        }
        for (std::size_t i = 0; i < results_.size(); ++i) {
            const std::int32_t outer = five_[i] + five_[i + 1] + five_[i + 2] + five_[i + 3] + five_[i + 4];
            const std::int32_t inner = three_[i + 1] + three_[i + 2] + three_[i + 3];
            results_[i] = outer + 3 * inner + 8 * rows[2][i + 2];
        }
        return results_;
    }

  private:
    ConstImageView view_;
    std::vector<std::int32_t> five_;
    std::vector<std::int32_t> three_;
    std::vector<std::int32_t> results_;
};

OwnedImage LowPass(const ConstImageView& view) {
    OwnedImage result(view, NewPels::kZero);
    LowPassRow filtered(view);
    std::int32_t min = std::numeric_limits<std::int32_t>::max();
    std::int32_t max = 0;
    for (std::int32_t row = 0; row < view.rows - 4; ++row) {
        const auto [low, high] = std::ranges::minmax(filtered(row));
        min = std::min(min, low);
        max = std::max(max, high);
    }
    if (min == max) return result;
    const double scale = double{view.header->MaxPelValue} / static_cast<double>(max - min);
    // Results are shorter than the image's rows and are written one behind the other: rows run on into each
    // other and the image ends in zeros. Hosts read the result in this layout.
    Pel* out = result.View().pels;
    for (std::int32_t row = 0; row < view.rows - 4; ++row) {
        out = std::ranges::transform(filtered(row), out, [&](std::int32_t value) {
                  return ClampToPel(TruncToInt32(scale * static_cast<double>(value - min)));
              }).out;
    }
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqLowPassFilter(TqImage** image) {
    const ConstImageView view = LocateHostImage(image);
    if (!view) return kInvalidImage;
    if (view.cols < 5 || view.rows < 5) return kTooSmall;
    return ReplaceImage(image, kNoMemory, [&] { return LowPass(view); });
}
