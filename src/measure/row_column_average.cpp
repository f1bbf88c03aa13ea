#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "kernels/running_averages.h"
#include "tqimage/whole_image.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;

/// Sums are held in single precision: beyond 2^24 they round, pel by pel in the order of the line. Hosts
/// compare lines with ones they have stored, so the rounding stays.
Pel RoundedMean(float sum, std::int32_t count) noexcept {
    return WrapToPel(TruncToInt32(static_cast<double>(sum) / count + 0.5));
}

void AverageColumns(const ImageView& view) {
    std::vector<float> sums(static_cast<std::size_t>(view.cols), 0.0f);
    kernels::AddRowsInOrder(view.pels, static_cast<std::size_t>(view.rows), sums.size(), sums.data());
    Pel* const firstRow = view.Row(0);
    std::transform(sums.begin(), sums.end(), firstRow,
                   [&](float sum) { return RoundedMean(sum, view.rows); });
    for (std::int32_t row = 1; row < view.rows; ++row)
        std::copy_n(firstRow, view.cols, view.Row(row));
}

void AverageRows(const ImageView& view) noexcept {
    std::array<float, kernels::kRowsTogether> sums{};
    const auto together = static_cast<std::int32_t>(sums.size());
    for (std::int32_t row = 0; row < view.rows; row += together) {
        const std::int32_t count = std::min(together, view.rows - row);
        kernels::SumRowsInOrder(view.Row(row), static_cast<std::size_t>(count),
                                static_cast<std::size_t>(view.cols), sums.data());
        for (std::int32_t i = 0; i < count; ++i) {
            std::fill_n(view.Row(row + i), view.cols,
                        RoundedMean(sums[static_cast<std::size_t>(i)], view.cols));
        }
    }
}

}  // namespace

std::int32_t TQ_CALL tqColAverage(TqImage* image) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    return Guarded(kInvalidImage, [&] {
        AverageColumns(view);
        return 0;
    });
}

std::int32_t TQ_CALL tqRowAverage(TqImage* image) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    AverageRows(view);
    return 0;
}
