#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "core/clamp_run.h"
#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "platform/automation.h"
#include "platform/int32_table.h"
#include "tqimage/exchange.h"

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kWrongElements = -2;
constexpr std::int32_t kNotCreated = -2;
constexpr std::int32_t kWrongDimensions = -3;
constexpr std::int32_t kNotLocked = -3;
constexpr std::int32_t kNotRead = -4;
constexpr std::int32_t kNotUnlocked = -5;

std::int32_t Side(std::uint32_t count) {
    if (count > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
    return static_cast<std::int32_t>(count);
}

/// Images are indexed (column, row); descriptors store their dimensions last first.
tq::OwnedImage NewImageFor(const SAFEARRAY& array) {
    return tq::OwnedImage(Side(tq::StoredCount(array, 1)), Side(tq::StoredCount(array, 0)));
}

std::int32_t ReadClamped(SAFEARRAY& array, const tq::ImageView& view) noexcept {
    tq::SafeArrayLockGuard lock(&array);
    if (!lock.Locked()) return kNotLocked;
    const tq::Int32Table table(array);
    // No columns, no elements, however many rows the descriptor names.
    const std::int32_t rows = view.cols == 0 ? 0 : view.rows;
    for (std::int32_t row = 0; row < rows; ++row) {
        if (tq::ClampRun(table.FromZero(row), view.cols, view.Row(row))) continue;
        // Hosts that get this code take the lock back themselves.
        lock.KeepLocked();
        return kNotRead;
    }
    return lock.Unlock() ? kOk : kNotUnlocked;
}

std::int32_t CopyRaw(SAFEARRAY& array, const tq::ImageView& view) noexcept {
    tq::SafeArrayLockGuard lock(&array);
    const bool hasData = array.pvData != nullptr || view.Count() == 0;
    if (!lock.Locked() || !hasData) return kNotLocked;
    // The leftmost index, the column, varies fastest in an array as it does in an image.
    if (view.Count() != 0) std::memcpy(view.pels, array.pvData, view.Count() * sizeof(tq::Pel));
    return lock.Unlock() ? kOk : kNotUnlocked;
}

/// The image is the host's once it exists, whatever becomes of filling it. It replaces the old block last,
/// since an array assembled by hand may have its data there.
template <class Fill>
std::int32_t CreateFromArray(TqImage** image, SAFEARRAY& array, Fill&& fill) noexcept {
    return tq::Guarded(kNotCreated, [&] {
        tq::OwnedImage created = NewImageFor(array);
        const std::int32_t status = fill(array, created.View());
        tq::CommitImage(image, std::move(created));
        return status;
    });
}

}  // namespace

int32_t TQ_CALL tqSafeArrayToHandle(TqImage** image, SAFEARRAY** array) {
    if (image == nullptr || array == nullptr || !tq::HasInt32Elements(*array)) return kWrongElements;
    if ((*array)->cDims != 2) return kWrongDimensions;
    return CreateFromArray(image, **array, ReadClamped);
}

int32_t TQ_CALL tqShortSafeArrayToHandle(TqImage** image, SAFEARRAY** array) {
    if (image == nullptr || array == nullptr || !tq::HasInt16Elements(*array)) return kWrongElements;
    if ((*array)->cDims != 2) return kWrongDimensions;
    return CreateFromArray(image, **array, CopyRaw);
}
