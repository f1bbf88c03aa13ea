#include <algorithm>
#include <cstdint>
#include <vector>

#include "process/filter_result.h"
#include "process/shell_sort.h"
#include "process/window_sweep.h"
#include "tqimage/filters.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

/// Gathers and sorts each window.
void SortedMedians(const ConstImageView& view, const WindowSize& size, const Rect& rect,
                   const ImageView& out) {
    std::vector<Pel> window(static_cast<std::size_t>(size.Area()));
    for (std::int32_t row = rect.top; row <= rect.bottom; ++row) {
        const Reach rows = ShiftedReach(row, size.height, view.rows);
        for (std::int32_t col = rect.left; col <= rect.right; ++col) {
            const std::int32_t first = ShiftedReach(col, size.width, view.cols).first;
            Pel* to = window.data();
            for (std::int32_t y = rows.first; y <= rows.last; ++y)
                to = std::copy_n(view.Row(y) + first, size.width, to);
            ShellSort(window.data(), window.size());
            out.At(col, row) = window[window.size() / 2];
        }
    }
}

OwnedImage MakeMedian(const ConstImageView& view, const WindowSize& size, const Rect& rect) {
    OwnedImage result = CopyImage(view);
    if (!rect.Empty() && !size.IsPel()) SortedMedians(view, size, rect, result.View());
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqMedianFilter(TqImage** image, std::int32_t size) {
    const ConstImageView view = LocateHostImage(image);
    if (!view) return kInvalidImage;
    const std::int32_t side = std::min(size, std::min(view.cols, view.rows));
    return ReplaceImage(image, kNoMemory,
                        [&] { return MakeMedian(view, WindowSize(side, side, view), WholeImage(view)); });
}

std::int32_t TQ_CALL tqMedianFilterInRegion(TqImage** image, std::int32_t width, std::int32_t height,
                                            std::int32_t left, std::int32_t top, std::int32_t right,
                                            std::int32_t bottom) {
    const ConstImageView view = LocateHostImage(image);
    if (!view) return kInvalidImage;
    return ReplaceImage(image, kNoMemory, [&] {
        return MakeMedian(view, WindowSize(width, height, view),
                          ClampRegion({left, top, right, bottom}, view.cols, view.rows));
    });
}
