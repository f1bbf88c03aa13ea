#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/rectangle.h"
#include "geometry/distortion_map.h"
#include "tqimage/projection.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidHeader = -1;
constexpr std::int32_t kNoMap = -2;
constexpr std::int32_t kNothingInside = -99;

constexpr Rect kNowhere{-1, -1, -1, -1};

/// The largest rectangle of cells, found in one pass over the rows: each row is the foot of columns of cells,
/// and the widest rectangle under every height is closed by the first lower column to its right.
class LargestRectangle {
  public:
    explicit LargestRectangle(std::int32_t cols)
        : heights_(static_cast<std::size_t>(cols) + 1), open_(heights_.size()) {}

    template <class Inside>
    void AddRow(std::int32_t row, Inside&& inside) {
        const auto cols = static_cast<std::int32_t>(heights_.size()) - 1;
        std::size_t count = 0;
        // The column beyond the last one keeps the height 0 and closes what is open.
        for (std::int32_t col = 0; col <= cols; ++col) {
            std::int32_t& height = heights_[static_cast<std::size_t>(col)];
            height = col < cols && inside(col) ? height + 1 : 0;
            std::int32_t left = col;
            while (count > 0 && open_[count - 1].height >= height) {
                const Column& top = open_[--count];
                left = top.left;
                Offer({left, row - top.height + 1, col - 1, row});
            }
            if (height > 0) open_[count++] = {left, height};
        }
    }
    const Rect& Best() const noexcept { return best_; }
    bool Found() const noexcept { return area_ > 0; }

  private:
    struct Column {
        std::int32_t left;
        std::int32_t height;
    };

    void Offer(const Rect& rect) noexcept {
        const auto rank = [](const Rect& r) { return std::tuple(r.top, r.left, r.bottom); };
        const std::int64_t area = rect.Area();
        if (area < area_ || (area == area_ && rank(rect) >= rank(best_))) return;
        area_ = area;
        best_ = rect;
    }

    std::vector<std::int32_t> heights_;
    std::vector<Column> open_;
    Rect best_ = kNowhere;
    std::int64_t area_ = 0;
};

std::int32_t UnbinnedSize(std::int32_t pels, std::int16_t bin) noexcept {
    return pels * std::max<std::int32_t>(bin, 1);
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCalcCameraClipRect(const TqDistortionMap* map, const TqImageHeader* info,
                                          std::int32_t* left, std::int32_t* top, std::int32_t* right,
                                          std::int32_t* bottom) {
    *left = *top = *right = *bottom = -1;
    if (info == nullptr || !IsValidSide(info->PelCols) || !IsValidSide(info->PelRows)) return kInvalidHeader;
    const ConstMapView view = LocateMap(map);
    if (!view) return kNoMap;
    return Guarded(kNoMap, [&] {
        const std::int32_t cols = UnbinnedSize(info->PelCols, info->BinCols);
        const std::int32_t rows = UnbinnedSize(info->PelRows, info->BinRows);
        LargestRectangle largest(view.cols);
        for (std::int32_t row = 0; row < view.rows; ++row) {
            const MapEntry* entries = view.Row(row);
            largest.AddRow(row, [&](std::int32_t col) { return entries[col].LiesIn(cols, rows); });
        }
        if (!largest.Found()) return kNothingInside;
        *left = largest.Best().left;
        *top = largest.Best().top;
        *right = largest.Best().right;
        *bottom = largest.Best().bottom;
        return 0;
    });
}
