#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "tqimage/exchange.h"

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNotCreated = -2;

/// Visits every pel with its number in the image, which is stored row after row, and in the host's plain
/// array, column after column. Square tiles, because one of the two is always walked against its order: 32 x
/// 32 values of 2 bytes are 32 cache lines of either side, which stay in the first-level cache.
template <class Visit>
void ForEachTransposed(std::int32_t cols, std::int32_t rows, Visit&& visit) {
    constexpr std::int64_t kTile = 32;
    for (std::int64_t top = 0; top < rows; top += kTile) {
        const std::int64_t bottom = std::min<std::int64_t>(top + kTile, rows);
        for (std::int64_t left = 0; left < cols; left += kTile) {
            const std::int64_t right = std::min<std::int64_t>(left + kTile, cols);
            for (std::int64_t row = top; row < bottom; ++row) {
                for (std::int64_t col = left; col < right; ++col) {
                    visit(static_cast<std::ptrdiff_t>(row * cols + col),
                          static_cast<std::ptrdiff_t>(rows * col + row));
                }
            }
        }
    }
}

tq::Pel ToPel(std::uint16_t value) noexcept {
    return value;
}

tq::Pel ToPel(std::int16_t value) noexcept {
    return tq::ClampToPel(value);
}

/// The old block goes last: header and values may lie in it.
template <class Value>
std::int32_t CreateFromValues(TqImage** image, const TqImageHeader* info, const Value* values) noexcept {
    if (image == nullptr || info == nullptr || values == nullptr) return kNotCreated;
    return tq::Guarded(kNotCreated, [&] {
        tq::OwnedImage created(info->PelCols, info->PelRows, tq::NewPels::kUnwritten);
        created.Header() = *info;
        const tq::ImageView view = created.View();
        ForEachTransposed(view.cols, view.rows, [&](std::ptrdiff_t pel, std::ptrdiff_t value) {
            view.pels[pel] = ToPel(values[value]);
        });
        tq::CommitImage(image, std::move(created));
        return kOk;
    });
}

std::int32_t WriteValues(const TqImage* image, std::uint16_t* values) noexcept {
    const tq::ConstImageView view = tq::LocateImage(image);
    if (!view || values == nullptr) return kInvalidImage;
    ForEachTransposed(view.cols, view.rows,
                      [&](std::ptrdiff_t pel, std::ptrdiff_t value) { values[value] = view.pels[pel]; });
    return kOk;
}

}  // namespace

int32_t TQ_CALL tqShortSafeArrayToHandle2(TqImage** image, const TqImageHeader* info,
                                          const uint16_t* values) {
    return CreateFromValues(image, info, values);
}

int32_t TQ_CALL tqShortSafeArrayToHandleNew(TqImage** image, const TqImageHeader* info,
                                            const int16_t* values) {
    return CreateFromValues(image, info, values);
}

int32_t TQ_CALL tqHandleToShortSafeArray(const TqImage* image, uint16_t* values) {
    return WriteValues(image, values);
}

int32_t TQ_CALL tqHandleToShortSafeArrayNew(const TqImage* image, uint16_t* values) {
    return WriteValues(image, values);
}
