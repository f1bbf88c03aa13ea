#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/image_view.h"
#include "core/level_table.h"
#include "core/numerics.h"
#include "core/window.h"
#include "measure/image_values.h"
#include "process/equalised_result.h"
#include "process/grey_bins.h"
#include "process/sliding_ranks.h"
#include "tqimage/equalisation.h"

namespace tq {
namespace {

/// Moves a window over an image and keeps the histogram of the bins that it covers.
class RankWindow {
  public:
    RankWindow(const ConstImageView& view, const std::vector<Pel>& bins, std::int32_t levels,
               std::int32_t width, std::int32_t height)
        : view_(view),
          bins_(bins),
          ranks_(levels),
          cols_(ShiftedReach(0, width, view.cols)),
          rows_(ShiftedReach(0, height, view.rows)) {
        for (std::int32_t row = rows_.first; row <= rows_.last; ++row) {
            for (std::int32_t col = cols_.first; col <= cols_.last; ++col)
                ranks_.Add(BinAt(col, row));
        }
    }

    /// To the window around a pel next to the one before, or around the same.
    void MoveTo(std::int32_t col, std::int32_t row) noexcept {
        const Reach cols = ShiftedReach(col, cols_.Count(), view_.cols);
        const Reach rows = ShiftedReach(row, rows_.Count(), view_.rows);
        if (cols.first > cols_.first) ReplaceColumn(cols_.first, cols.last);
        if (cols.first < cols_.first) ReplaceColumn(cols_.last, cols.first);
        cols_ = cols;
        if (rows.first > rows_.first) ReplaceRow(rows_.first, rows.last);
        rows_ = rows;
    }

    std::int64_t Area() const noexcept { return std::int64_t{cols_.Count()} * rows_.Count(); }
    std::int64_t RankOf(Pel pel) const noexcept { return ranks_.AtMost(bins_[pel]); }

  private:
    Pel BinAt(std::int32_t col, std::int32_t row) const noexcept { return bins_[view_.At(col, row)]; }

    void ReplaceColumn(std::int32_t leaving, std::int32_t entering) noexcept {
        for (std::int32_t row = rows_.first; row <= rows_.last; ++row) {
            ranks_.Remove(BinAt(leaving, row));
            ranks_.Add(BinAt(entering, row));
        }
    }
    void ReplaceRow(std::int32_t leaving, std::int32_t entering) noexcept {
        for (std::int32_t col = cols_.first; col <= cols_.last; ++col) {
            ranks_.Remove(BinAt(col, leaving));
            ranks_.Add(BinAt(col, entering));
        }
    }

    ConstImageView view_;
    const std::vector<Pel>& bins_;
    SlidingRanks ranks_;
    Reach cols_;
    Reach rows_;
};

/// Every row in the direction opposite to the one before, so that the window only ever makes single steps.
void EqualiseEachPel(const ConstImageView& view, RankWindow& window, std::int32_t levels,
                     const ImageView& out) {
    const std::int64_t area = window.Area();
    const std::int64_t top = 2 * (std::int64_t{levels} - 1);
    for (std::int32_t row = 0; row < view.rows; ++row) {
        for (std::int32_t step = 0; step < view.cols; ++step) {
            const std::int32_t col = row % 2 == 0 ? step : view.cols - 1 - step;
            window.MoveTo(col, row);
            const Pel pel = view.At(col, row);
            // Half the area rounds; the rank is at most the area, so that no result is above levels - 1.
            out.At(col, row) =
                pel == 0 ? Pel{0} : static_cast<Pel>((top * window.RankOf(pel) + area) / (2 * area));
        }
    }
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqLocalHistoEqualize(TqImage** out, TqImage* source, std::int32_t levels,
                                          std::int32_t width, std::int32_t height) {
    const ImageView view = out == nullptr ? ImageView{} : LocateImage(source);
    if (!view) return kInvalidEqualisationSource;
    const std::int32_t used = EqualisedLevels(levels, *view.header);
    return ProduceEqualised(out, source, view, [&](const ImageView& result) {
        const Pel largest = SumAndLargestPel(view).max;
        view.header->MaxPelValue = largest;
        if (largest == 0) return kNoHistogram;
        std::vector<Pel> bins = BinOfEachGrey(used, largest);
        CoverEveryLevel(bins);
        RankWindow window(view, bins, used, OddWindow(width, view.cols), OddWindow(height, view.rows));
        EqualiseEachPel(view, window, used, result);
        RefreshImageValues(result);
        return 0;
    });
}
