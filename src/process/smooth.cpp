#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/replaced_image.h"
#include "core/window.h"
#include "kernels/window_means.h"
#include "process/filter_result.h"
#include "tqimage/filters.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNoMemory = -2;

enum class Smooth { kAllPels, kLitPels };

/// One pel from its 3 x 3 neighbourhood as the border cuts it.
Pel SmoothedPel(const ConstImageView& view, Smooth what, std::int32_t col, std::int32_t row) {
    if (what == Smooth::kLitPels && view.At(col, row) == 0) return 0;
    const Reach cols = ClippedReach(col, 3, view.cols);
    const Reach rows = ClippedReach(row, 3, view.rows);
    std::uint32_t sum = 0;
    std::uint32_t count = 0;
    for (std::int32_t y = rows.first; y <= rows.last; ++y) {
        for (std::int32_t x = cols.first; x <= cols.last; ++x) {
            const Pel pel = view.At(x, y);
            sum += pel;
            count += what == Smooth::kAllPels || pel != 0 ? 1 : 0;
        }
    }
    return static_cast<Pel>(sum / count);
}

OwnedImage SmoothOnce(const ConstImageView& view, Smooth what) {
    OwnedImage result(view, NewPels::kUnwritten);
    const ImageView out = result.View();
    const auto kernel = what == Smooth::kAllPels ? kernels::SmoothRow : kernels::SmoothLitRow;
    for (std::int32_t row = 0; row < view.rows; ++row) {
        const bool inner = row > 0 && row < view.rows - 1;
        if (inner) {
            kernel(view.Row(row - 1), view.Row(row), view.Row(row + 1), static_cast<std::size_t>(view.cols),
                   out.Row(row));
        }
        const std::int32_t step = inner ? std::max(view.cols - 1, 1) : 1;
        for (std::int32_t col = 0; col < view.cols; col += step)
            out.At(col, row) = SmoothedPel(view, what, col, row);
    }
    return result;
}

std::int32_t SmoothRepeatedly(TqImage** image, Smooth what, std::int32_t passes) {
    for (std::int32_t pass = 0; pass < passes; ++pass) {
        const ConstImageView view = LocateHeld(image);
        if (!view) return kInvalidImage;
        bool settled = false;
        const std::int32_t status = ReplaceImage(image, kNoMemory, [&] {
            OwnedImage result = SmoothOnce(view, what);
            settled = std::memcmp(result.View().pels, view.pels, view.Count() * sizeof(Pel)) == 0;
            return result;
        });
        // An image that a pass leaves as it was stays so in every further one, however many were asked for.
        if (status != 0 || settled) return status;
    }
    return 0;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqSmoothImage(TqImage** image, std::int32_t passes) {
    return SmoothRepeatedly(image, Smooth::kAllPels, passes);
}

std::int32_t TQ_CALL tqSmoothImage0(TqImage** image, std::int32_t passes) {
    return SmoothRepeatedly(image, Smooth::kLitPels, passes);
}
