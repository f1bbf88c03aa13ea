#include "process/defect_repair.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "core/rectangle.h"
#include "core/window.h"
#include "process/pel_runs.h"
#include "tqimage/defects.h"

namespace tq {
namespace {

constexpr std::int32_t kCannotRepair = -1;
constexpr std::int32_t kInvalidBlockImage = -2;

/// One line across a defect column or row: `stride` leads from neighbour to neighbour.
Pel MeanAcross(const Pel* line, std::ptrdiff_t stride, const Reach& across, std::int32_t defect) {
    // Three wide is the usual case and has its own rule. Where the border has cut a wider neighbourhood to
    // three, the defect is one of the two outer pels; hosts have been seeing that value and compare with it.
    if (across.Count() == 3) {
        return static_cast<Pel>((line[across.first * stride] + line[across.last * stride]) / 2);
    }
    std::uint32_t sum = 0;
    for (std::int32_t at = across.first; at <= across.last; ++at)
        sum += line[at * stride];
    sum -= line[defect * stride];
    return static_cast<Pel>(sum / static_cast<std::uint32_t>(across.Count() - 1));
}

std::int32_t Saturate(std::int64_t value) noexcept {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

/// The block grown by `frame` times its own size on each side, cut at the border.
Rect CutBlock(const ImageView& image, std::int32_t col, std::int32_t row, std::int32_t width,
              std::int32_t height, std::int64_t frame) noexcept {
    const Rect grown{Saturate(col - frame * width), Saturate(row - frame * height),
                     Saturate(col + (frame + 1) * width - 1), Saturate(row + (frame + 1) * height - 1)};
    return CutToImage(grown, image.cols, image.rows);
}

}  // namespace

bool RepairPel(const ImageView& image, std::int32_t col, std::int32_t row, std::int32_t width,
               std::int32_t height) noexcept {
    if (!image.Contains(col, row)) return false;
    const Reach cols = ClippedReach(col, width, image.cols);
    const Reach rows = ClippedReach(row, height, image.rows);
    const Rect area{cols.first, rows.first, cols.last, rows.last};
    if (area.Area() < 2) return false;
    Pel& pel = image.At(col, row);
    const auto others = static_cast<std::uint64_t>(area.Area() - 1);
    pel = static_cast<Pel>((SumPels(image, area) - pel) / others);
    return true;
}

bool RepairCol(const ImageView& image, std::int32_t col, std::int32_t firstRow, std::int32_t lastRow,
               std::int32_t width) noexcept {
    if (!image.Contains(col, 0)) return false;
    const Reach across = ClippedReach(col, width, image.cols);
    if (across.Count() < 2) return false;
    const std::int32_t last = std::min(lastRow, image.rows - 1);
    for (std::int32_t row = std::max(firstRow, 0); row <= last; ++row) {
        image.At(col, row) = MeanAcross(image.Row(row), 1, across, col);
    }
    return true;
}

bool RepairRow(const ImageView& image, std::int32_t row, std::int32_t firstCol, std::int32_t lastCol,
               std::int32_t height) noexcept {
    if (!image.Contains(0, row)) return false;
    const Reach across = ClippedReach(row, height, image.rows);
    if (across.Count() < 2) return false;
    const std::int32_t last = std::min(lastCol, image.cols - 1);
    for (std::int32_t col = std::max(firstCol, 0); col <= last; ++col) {
        image.At(col, row) = MeanAcross(image.pels + col, image.cols, across, row);
    }
    return true;
}

void RepairBlock(const ImageView& image, std::int32_t col, std::int32_t row, std::int32_t width,
                 std::int32_t height) noexcept {
    const Rect block = CutBlock(image, col, row, width, height, 0);
    if (block.Empty()) return;
    const Rect frame = CutBlock(image, col, row, width, height, 1);
    const std::int64_t count = frame.Area() - block.Area();
    if (count == 0) return;
    const std::uint64_t sum = SumPels(image, frame) - SumPels(image, block);
    const auto mean = static_cast<Pel>(sum / static_cast<std::uint64_t>(count));
    for (std::int32_t line = block.top; line <= block.bottom; ++line) {
        std::fill_n(image.Row(line) + block.left, block.Width(), mean);
    }
}

}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqReplacePel(TqImage* image, std::int32_t column, std::int32_t row, std::int32_t width,
                                  std::int32_t height) {
    const ImageView view = LocateImage(image);
    return view && RepairPel(view, column, row, width, height) ? 0 : kCannotRepair;
}

std::int32_t TQ_CALL tqReplaceCol(TqImage* image, std::int32_t column, std::int32_t firstRow,
                                  std::int32_t lastRow, std::int32_t width) {
    const ImageView view = LocateImage(image);
    return view && RepairCol(view, column, firstRow, lastRow, width) ? 0 : kCannotRepair;
}

std::int32_t TQ_CALL tqReplaceRow(TqImage* image, std::int32_t row, std::int32_t firstColumn,
                                  std::int32_t lastColumn, std::int32_t height) {
    const ImageView view = LocateImage(image);
    return view && RepairRow(view, row, firstColumn, lastColumn, height) ? 0 : kCannotRepair;
}

std::int32_t TQ_CALL tqReplaceBlock(TqImage* image, std::int32_t column, std::int32_t row, std::int32_t width,
                                    std::int32_t height) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidBlockImage;
    RepairBlock(view, column, row, width, height);
    return 0;
}
