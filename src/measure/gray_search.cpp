#include "tqimage/gray_search.h"

#include <cstdint>

#include "core/guard.h"
#include "core/image_view.h"
#include "measure/block_search.h"

using namespace tq;

namespace {

constexpr double kInvalidImage = -2.0;
constexpr double kNoPosition = -3.0;
constexpr double kNothingLit = -99.0;

/// The frame of the three searches: `find` gets the view, the shape and the blocks and gives a position.
template <class Find>
double SearchWholeImage(const TqImage* image, std::int32_t* column, std::int32_t* row, std::int32_t blockKind,
                        std::int32_t blockWidth, std::int32_t blockHeight, Find&& find) {
    *column = -1;
    *row = -1;
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const auto blocks = BlocksThatFit({0, 0, view.cols - 1, view.rows - 1}, blockWidth, blockHeight);
    if (!blocks) return kNoPosition;
    return Guarded(kInvalidImage, [&] {
        const BlockPosition found = find(view, BlockShapeOf(blockKind), *blocks);
        if (!found.Found()) return kNothingLit;
        *column = found.col;
        *row = found.row;
        return found.mean;
    });
}

}  // namespace

double TQ_CALL tqFindMaxGray(const TqImage* image, std::int32_t* column, std::int32_t* row,
                             std::int32_t blockKind, std::int32_t blockWidth, std::int32_t blockHeight) {
    return SearchWholeImage(image, column, row, blockKind, blockWidth, blockHeight,
                            [](auto&&... search) { return FindBlockExtremes(search...).most; });
}

double TQ_CALL tqFindMinGray(const TqImage* image, std::int32_t* column, std::int32_t* row,
                             std::int32_t blockKind, std::int32_t blockWidth, std::int32_t blockHeight) {
    return SearchWholeImage(image, column, row, blockKind, blockWidth, blockHeight,
                            [](auto&&... search) { return FindBlockExtremes(search...).least; });
}

double TQ_CALL tqFindMinGray0(const TqImage* image, std::int32_t* column, std::int32_t* row,
                              std::int32_t blockKind, std::int32_t blockWidth, std::int32_t blockHeight) {
    return SearchWholeImage(image, column, row, blockKind, blockWidth, blockHeight,
                            [](auto&&... search) { return FindLeastLitBlock(search...); });
}
