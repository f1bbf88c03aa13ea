#include "core/pel_access.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "core/image_view.h"
#include "core/numerics.h"
#include "tqimage/exchange.h"

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidImage = -1;
// Of the one function that takes the address of the host's pointer; hosts tell the two apart by it.
constexpr std::int32_t kInvalidHostImage = -2;

void Replace(const tq::ImageView& view, std::uint32_t oldValue, tq::Pel newValue) noexcept {
    if (oldValue > static_cast<std::uint32_t>(tq::kLargestPel)) return;
    const auto old = static_cast<tq::Pel>(oldValue);
    // Every pel is stored, changed or not: that is what lets the compiler take many at a time.
    std::transform(view.pels, view.pels + view.Count(), view.pels,
                   [=](tq::Pel pel) { return pel == old ? newValue : pel; });
}

}  // namespace

int32_t TQ_CALL tqGetImgPel(const TqImage* image, int32_t col, int32_t row) {
    const tq::ConstImageView view = tq::LocateImage(image);
    return view ? tq::ClampedPel1(view, col, row) : kInvalidImage;
}

int32_t TQ_CALL tqGetImgPel0(const TqImage* image, int32_t col, int32_t row) {
    const tq::ConstImageView view = tq::LocateImage(image);
    return view ? tq::ClampedPel(view, col, row) : kInvalidImage;
}

// The two put functions answer with the value as it came, whatever was stored; tqPutShortImgPel answers with
// what was stored. Hosts rely on both.
int32_t TQ_CALL tqPutImgPel(TqImage* image, int32_t col, int32_t row, int32_t value) {
    const tq::ImageView view = tq::LocateImage(image);
    if (!view) return kInvalidImage;
    tq::ClampedPel1(view, col, row) = tq::WrapToPel(value);
    return value;
}

int32_t TQ_CALL tqPutImgPel0(TqImage* image, int32_t col, int32_t row, int32_t value) {
    const tq::ImageView view = tq::LocateImage(image);
    if (!view) return kInvalidImage;
    tq::ClampedPel(view, col, row) = tq::WrapToPel(value);
    return value;
}

int32_t TQ_CALL tqPutShortImgPel(TqImage* image, int32_t col, int32_t row, int32_t value) {
    const tq::ImageView view = tq::LocateImage(image);
    if (!view) return kInvalidImage;
    tq::Pel& pel = tq::ClampedPel(view, col, row);
    pel = tq::WrapToPel(value);
    return std::bit_cast<std::int16_t>(pel);
}

int32_t TQ_CALL tqReplacePelValue(TqImage* image, uint32_t oldValue, uint16_t newValue) {
    const tq::ImageView view = tq::LocateImage(image);
    if (!view) return kInvalidImage;
    Replace(view, oldValue, newValue);
    return kOk;
}

int32_t TQ_CALL tqSubstituteValue(TqImage** image, uint32_t oldValue, uint16_t newValue) {
    const tq::ImageView view = tq::LocateImage(image == nullptr ? nullptr : *image);
    if (!view) return kInvalidHostImage;
    Replace(view, oldValue, newValue);
    return kOk;
}
