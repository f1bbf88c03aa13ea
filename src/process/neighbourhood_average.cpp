#include <vector>

#include "core/replaced_image.h"
#include "kernels/window_means.h"
#include "kernels/window_sums.h"
#include "measure/window_sweep.h"
#include "process/filter_result.h"
#include "tqimage/filters.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

void PrefixOf(const WindowColumns& columns, std::vector<std::uint32_t>& prefix) {
    kernels::WrappingPrefixSums(columns.Columns().data(), columns.Columns().size(), prefix.data());
}

void PrefixOf(const WindowColumns& columns, std::vector<double>& prefix) {
    kernels::PrefixSums(columns.Columns().data(), columns.Columns().size(), prefix.data());
}

template <class Prefix>
void AverageInto(const ConstImageView& view, const WindowSize& size, const Rect& rect, const ImageView& out) {
    WindowColumns columns(view, WindowPlacement::kShifted, size, rect.left, rect.right, Summand::kPels);
    std::vector<Prefix> prefix(columns.Columns().size() + 1);
    const auto area = static_cast<double>(size.Area());
    const auto width = static_cast<std::size_t>(size.width);
    const auto count = static_cast<std::size_t>(rect.Width());
    for (std::int32_t row = rect.top; row <= rect.bottom; ++row) {
        Pel* pels = out.Row(row) + rect.left;
        if (!columns.MoveTo(row)) {  // at the border rows share their windows as columns do
            std::copy_n(out.Row(row - 1) + rect.left, count, pels);
            continue;
        }
        PrefixOf(columns, prefix);
        kernels::WindowMeans(prefix.data(), width, columns.Windows(), area, pels + columns.Lead());
        RepeatEnds(pels, count, columns.Lead(), columns.Windows());
    }
}

template <class Prefix>
void LitAverageInto(const ConstImageView& view, const WindowSize& size, const Rect& rect,
                    const ImageView& out) {
    WindowColumns sums(view, WindowPlacement::kClipped, size, rect.left, rect.right, Summand::kPels);
    WindowColumns numbers(view, WindowPlacement::kClipped, size, rect.left, rect.right, Summand::kLit);
    std::vector<Prefix> sumPrefix(sums.Columns().size() + 1);
    std::vector<Prefix> numberPrefix(sumPrefix.size());
    for (std::int32_t row = rect.top; row <= rect.bottom; ++row) {
        sums.MoveTo(row);
        numbers.MoveTo(row);
        PrefixOf(sums, sumPrefix);
        PrefixOf(numbers, numberPrefix);
        kernels::LitWindowMeans(sumPrefix.data(), numberPrefix.data(), static_cast<std::size_t>(size.width),
                                sums.Windows(), view.Row(row) + rect.left, out.Row(row) + rect.left);
    }
}

enum class Average { kAllPels, kLitPels };

OwnedImage MakeAverage(const ConstImageView& view, Average what, const WindowSize& size, const Rect& rect) {
    OwnedImage result = CopyAround(view, rect);
    if (rect.Empty()) return result;
    const bool narrow = size.Area() <= kernels::kLargestNarrowWindow;
    const auto into = what == Average::kAllPels
                          ? (narrow ? AverageInto<std::uint32_t> : AverageInto<double>)
                          : (narrow ? LitAverageInto<std::uint32_t> : LitAverageInto<double>);
    into(view, size, rect, result.View());
    return result;
}

std::int32_t ReplaceByAverage(TqImage** image, Average what, std::int32_t width, std::int32_t height,
                              const Rect& asked) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    const WindowSize size(width, height, view);
    // Hosts keep pointers into the block when they ask for no averaging.
    if (size.IsPel()) return 0;
    return ReplaceImage(image, kNoMemory, [&] {
        return MakeAverage(view, what, size, ClampRegion(asked, view.cols, view.rows));
    });
}

/// All zeros ask for the whole image.
constexpr Rect kWhole{0, 0, 0, 0};

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqNeighborhoodAverage(TqImage** image, std::int32_t width, std::int32_t height) {
    return ReplaceByAverage(image, Average::kAllPels, width, height, kWhole);
}

std::int32_t TQ_CALL tqNeighborhoodAverage0(TqImage** image, std::int32_t width, std::int32_t height) {
    return ReplaceByAverage(image, Average::kLitPels, width, height, kWhole);
}

std::int32_t TQ_CALL tqNeighborhoodAverageInRegion(TqImage** image, std::int32_t width, std::int32_t height,
                                                   std::int32_t left, std::int32_t top, std::int32_t right,
                                                   std::int32_t bottom) {
    return ReplaceByAverage(image, Average::kAllPels, width, height, {left, top, right, bottom});
}

std::int32_t TQ_CALL tqNeighborhoodAverageInRegion0(TqImage** image, std::int32_t width, std::int32_t height,
                                                    std::int32_t left, std::int32_t top, std::int32_t right,
                                                    std::int32_t bottom) {
    return ReplaceByAverage(image, Average::kLitPels, width, height, {left, top, right, bottom});
}
