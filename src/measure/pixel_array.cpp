#include <algorithm>
#include <cstdint>
#include <memory>

#include "core/guard.h"
#include "core/image_view.h"
#include "measure/block_average.h"
#include "platform/automation.h"
#include "tqimage/exchange.h"

namespace {

constexpr std::int32_t kOk = 0;

/// Codes of tqGetPixelArray.
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNotDestroyed = -3;
constexpr std::int32_t kNotCreated = -4;
constexpr std::int32_t kNotLocked = -5;
constexpr std::int32_t kNotFilled = -6;
constexpr std::int32_t kNotUnlocked = -7;

/// Codes of tqGetPelArray.
constexpr std::int32_t kInvalidVariantImage = -1;
constexpr std::int32_t kNoVariant = -4;

struct Block {
    tq::BlockShape shape;
    std::int32_t width;
    std::int32_t height;
};

/// Columns are the first dimension, which varies fastest in memory: an array's data is an image row by row.
SAFEARRAY* CreateArray(const tq::ConstImageView& view) noexcept {
    SAFEARRAYBOUND bounds[2] = {};
    bounds[0].cElements = static_cast<ULONG>(view.cols);
    bounds[1].cElements = static_cast<ULONG>(view.rows);
    return SafeArrayCreate(VT_R8, 2, bounds);
}

std::int32_t FillArray(SAFEARRAY* array, const tq::ConstImageView& view, const Block& block) noexcept {
    tq::SafeArrayLockGuard lock(array);
    if (!lock.Locked()) return kNotLocked;
    const std::int32_t status = tq::Guarded(kNotFilled, [&] {
        auto* const averages = static_cast<double*>(array->pvData);
        tq::FillBlockAverages(view, block.shape, block.width, block.height, averages);
        return kOk;
    });
    if (status != kOk) return status;
    return lock.Unlock() ? kOk : kNotUnlocked;
}

struct DestroyArray {
    void operator()(SAFEARRAY* array) const noexcept { SafeArrayDestroy(array); }
};

}  // namespace

int32_t TQ_CALL tqGetPixelArray(const TqImage* image, int32_t ellipse, int32_t blockWidth,
                                int32_t blockHeight, SAFEARRAY** array) {
    const tq::ConstImageView view = tq::LocateImage(image);
    if (!view || array == nullptr) return kInvalidImage;
    const Block block{tq::BlockShapeOf(ellipse), std::max(blockWidth, 1), std::max(blockHeight, 1)};
    if (*array != nullptr && SafeArrayDestroy(*array) < 0) return kNotDestroyed;
    *array = CreateArray(view);
    if (*array == nullptr) return kNotCreated;
    return FillArray(*array, view, block);
}

int32_t TQ_CALL tqGetPelArray(const TqImage* image, int32_t ellipse, int32_t blockWidth, int32_t blockHeight,
                              VARIANT* result) {
    const tq::ConstImageView view = tq::LocateImage(image);
    if (!view) return kInvalidVariantImage;
    if (result == nullptr) return kNoVariant;
    const Block block{tq::BlockShapeOf(ellipse), std::clamp(blockWidth, 1, view.cols),
                      std::clamp(blockHeight, 1, view.rows)};
    std::unique_ptr<SAFEARRAY, DestroyArray> array(CreateArray(view));
    if (!array || FillArray(array.get(), view, block) != kOk) return kNoVariant;
    // Not VariantClear: hosts pass a variant whose content nobody has set yet.
    VariantInit(result);
    result->vt = VT_ARRAY | VT_R8;
    result->parray = array.release();
    return kOk;
}
