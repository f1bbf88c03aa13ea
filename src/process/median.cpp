#include <algorithm>
#include <cstdint>
#include <iterator>
#include <vector>

#include "core/replaced_image.h"
#include "kernels/median_network.h"
#include "kernels/median_ranks.h"
#include "measure/window_sweep.h"
#include "process/filter_result.h"
#include "tqimage/filters.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

/// Up to so many pels gathering each window costs less than preparing anything.
constexpr std::int64_t kFewPels = 16;

/// Pels of a tile to each side beyond its windows: small enough that neighbouring ranks stay close together,
/// large enough that what neighbouring tiles share is little of either.
constexpr std::int32_t kSmallTile = 64;
constexpr std::int32_t kLargeTile = 128;
constexpr std::int64_t kLargeWindow = 200;

void FewMedians(const ConstImageView& view, const WindowSize& size, const Rect& rect, const ImageView& out) {
    std::vector<Pel> window(static_cast<std::size_t>(size.Area()));
    for (std::int32_t row = rect.top; row <= rect.bottom; ++row) {
        const Reach rows = ShiftedReach(row, size.height, view.rows);
        for (std::int32_t col = rect.left; col <= rect.right; ++col) {
            const std::int32_t first = ShiftedReach(col, size.width, view.cols).first;
            Pel* to = window.data();
            for (std::int32_t y = rows.first; y <= rows.last; ++y)
                to = std::copy_n(view.Row(y) + first, size.width, to);
            const auto middle = window.begin() + std::ssize(window) / 2;
            std::nth_element(window.begin(), middle, window.end());
            out.At(col, row) = *middle;
        }
    }
}

/// The different windows of a rectangle's pels, and where their medians go.
struct Windows {
    SlidingWindows cols;
    SlidingWindows rows;
    Pel* out;  ///< of the first window
    std::int32_t stride;

    Windows(const ConstImageView& view, const WindowSize& size, const Rect& rect, const ImageView& result)
        : cols(rect.left, rect.right, size.width, view.cols),
          rows(rect.top, rect.bottom, size.height, view.rows),
          out(&result.At(rect.left + cols.lead, rect.top + rows.lead)),
          stride(view.cols) {}
    Pel* Out(std::int32_t col, std::int32_t row) const noexcept {
        return out + static_cast<std::ptrdiff_t>(row) * stride + col;
    }
};

template <std::int32_t kSide>
void NetworkMedians(const ConstImageView& view, const Windows& windows) {
    for (std::int32_t row = 0; row < windows.rows.count; ++row) {
        const Pel* rows[kSide];
        for (std::int32_t i = 0; i < kSide; ++i)
            rows[i] = view.Row(windows.rows.origin + row + i) + windows.cols.origin;
        const auto cols = static_cast<std::size_t>(windows.cols.count + kSide - 1);
        (kSide == 3 ? kernels::Median3Row : kernels::Median5Row)(rows, cols, windows.Out(0, row));
    }
}

void TiledMedians(const ConstImageView& view, const WindowSize& size, const Windows& windows) {
    const std::int32_t side =
        size.Area() < kLargeWindow ? kSmallTile : std::max({kLargeTile, size.width / 2, size.height / 2});
    kernels::RankBuffers buffers;
    for (std::int32_t row = 0; row < windows.rows.count; row += side) {
        const std::int32_t rows = std::min(side, windows.rows.count - row);
        for (std::int32_t col = 0; col < windows.cols.count; col += side) {
            const std::int32_t cols = std::min(side, windows.cols.count - col);
            const kernels::MedianTile tile{&view.At(windows.cols.origin + col, windows.rows.origin + row),
                                           static_cast<std::size_t>(view.cols),
                                           static_cast<std::size_t>(cols + size.width - 1),
                                           static_cast<std::size_t>(rows + size.height - 1),
                                           static_cast<std::size_t>(size.width),
                                           static_cast<std::size_t>(size.height)};
            kernels::RankMedians(tile, windows.Out(col, row), static_cast<std::size_t>(view.cols), buffers);
        }
    }
}

/// Pels at the border share the outermost windows.
void RepeatAtBorder(const Windows& windows, const Rect& rect, const ImageView& out) {
    const auto cols = static_cast<std::size_t>(rect.Width());
    const std::int32_t first = rect.top + windows.rows.lead;
    const std::int32_t last = first + windows.rows.count - 1;
    for (std::int32_t row = first; row <= last; ++row) {
        RepeatEnds(out.Row(row) + rect.left, cols, static_cast<std::size_t>(windows.cols.lead),
                   static_cast<std::size_t>(windows.cols.count));
    }
    for (std::int32_t row = rect.top; row < first; ++row)
        std::copy_n(out.Row(first) + rect.left, cols, out.Row(row) + rect.left);
    for (std::int32_t row = last + 1; row <= rect.bottom; ++row)
        std::copy_n(out.Row(last) + rect.left, cols, out.Row(row) + rect.left);
}

void FilterMedians(const ConstImageView& view, const WindowSize& size, const Rect& rect,
                   const ImageView& out) {
    if (rect.Area() <= kFewPels) return FewMedians(view, size, rect, out);
    const Windows windows(view, size, rect, out);
    if (size.width == 3 && size.height == 3) {
        NetworkMedians<3>(view, windows);
    } else if (size.width == 5 && size.height == 5) {
        NetworkMedians<5>(view, windows);
    } else {
        TiledMedians(view, size, windows);
    }
    RepeatAtBorder(windows, rect, out);
}

constexpr Rect kNothing{0, 0, -1, -1};

OwnedImage MakeMedian(const ConstImageView& view, const WindowSize& size, const Rect& rect) {
    // A window of one pel leaves every pel as it is.
    OwnedImage result = CopyAround(view, size.IsPel() ? kNothing : rect);
    if (!rect.Empty() && !size.IsPel()) FilterMedians(view, size, rect, result.View());
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqMedianFilter(TqImage** image, std::int32_t size) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    const std::int32_t side = std::min(size, std::min(view.cols, view.rows));
    return ReplaceImage(image, kNoMemory,
                        [&] { return MakeMedian(view, WindowSize(side, side, view), WholeImage(view)); });
}

std::int32_t TQ_CALL tqMedianFilterInRegion(TqImage** image, std::int32_t width, std::int32_t height,
                                            std::int32_t left, std::int32_t top, std::int32_t right,
                                            std::int32_t bottom) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    return ReplaceImage(image, kNoMemory, [&] {
        return MakeMedian(view, WindowSize(width, height, view),
                          ClampRegion({left, top, right, bottom}, view.cols, view.rows));
    });
}
