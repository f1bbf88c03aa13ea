#include <algorithm>
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

/// Writes the transpose of a matrix of `lines` lines with `length` values each. One side is always walked
/// against its order, so square tiles are turned in a buffer that stays in the first-level cache, and both
/// sides are met in whole cache lines: 32 values of 2 bytes.
template <class From, class Convert>
void Transpose(const From* from, std::int64_t lines, std::int64_t length, tq::Pel* to, Convert convert) {
    constexpr std::int64_t kTile = 32;
    tq::Pel turned[kTile][kTile];
    for (std::int64_t top = 0; top < lines; top += kTile) {
        const std::int64_t height = std::min(kTile, lines - top);
        for (std::int64_t left = 0; left < length; left += kTile) {
            const std::int64_t width = std::min(kTile, length - left);
            for (std::int64_t y = 0; y < height; ++y) {
                const From* const line = from + (top + y) * length + left;
                for (std::int64_t x = 0; x < width; ++x)
                    turned[x][y] = convert(line[x]);
            }
            for (std::int64_t x = 0; x < width; ++x) {
                std::copy_n(turned[x], height, to + (left + x) * lines + top);
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
        Transpose(values, view.cols, view.rows, view.pels, [](Value value) { return ToPel(value); });
        tq::CommitImage(image, std::move(created));
        return kOk;
    });
}

std::int32_t WriteValues(const TqImage* image, std::uint16_t* values) noexcept {
    const tq::ConstImageView view = tq::LocateImage(image);
    if (!view || values == nullptr) return kInvalidImage;
    Transpose(view.pels, view.rows, view.cols, values, [](tq::Pel pel) { return pel; });
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
