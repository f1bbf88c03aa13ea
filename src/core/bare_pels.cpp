#include <cstddef>
#include <cstdint>
#include <memory>

#include "core/clamp_run.h"
#include "core/guard.h"
#include "core/image_block.h"
#include "core/numerics.h"
#include "platform/automation.h"
#include "platform/int32_table.h"
#include "tqimage/exchange.h"

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kNotCreated = -1;
constexpr std::int32_t kWrongElements = -2;
constexpr std::int32_t kNotLocked = -3;
constexpr std::int32_t kElementOfOneDimension = -4;
constexpr std::int32_t kElementOfTwoDimensions = -5;
constexpr std::int32_t kWrongDimensions = -6;
constexpr std::int32_t kNotUnlocked = -7;

/// Bytes of a pel for every element; of one pel for an array without dimensions.
std::size_t PelBytes(const SAFEARRAY& array) {
    std::size_t bytes = sizeof(tq::Pel);
    for (unsigned dim = 0; dim < array.cDims; ++dim) {
        bytes = tq::GridBytes(0, bytes, tq::StoredCount(array, dim), 1);
        if (bytes == 0) return 0;
    }
    return bytes;
}

std::int32_t ReadPels(const tq::Int32Table& table, std::uint16_t* pels) noexcept {
    if (table.Dimensions() == 1) {
        return tq::ClampRun(table.FromZero(), table.RightCount(), pels) ? kOk : kElementOfOneDimension;
    }
    if (table.Dimensions() != 2) return kWrongDimensions;
    // Not one element: a descriptor may name 2^32 empty lines.
    if (table.LeftCount() == 0) return kOk;
    for (std::int64_t right = 0; right < table.RightCount(); ++right, pels += table.LeftCount()) {
        if (!tq::ClampRun(table.FromZero(right), table.LeftCount(), pels)) return kElementOfTwoDimensions;
    }
    return kOk;
}

std::int32_t WritePels(const tq::Int32Table& table, const std::uint16_t* pels) noexcept {
    if (table.Dimensions() == 1) {
        for (std::int64_t i = 0; i < table.RightCount(); ++i) {
            if (!table.Write(i, *pels++)) return kElementOfOneDimension;
        }
        return kOk;
    }
    if (table.Dimensions() != 2) return kWrongDimensions;
    for (std::int64_t outer = 0; outer < table.RightCount(); ++outer) {
        for (std::int64_t inner = 0; inner < table.LeftCount(); ++inner) {
            // The other way round than reading, although the counts are the same: hosts rely on it.
            if (!table.Write(outer, inner, *pels++)) return kElementOfTwoDimensions;
        }
    }
    return kOk;
}

/// Runs a transfer under the array's lock, which stays after a failed one: hosts take it back themselves.
template <class Transfer>
std::int32_t UnderLock(SAFEARRAY& array, Transfer&& transfer) noexcept {
    tq::SafeArrayLockGuard lock(&array);
    if (!lock.Locked()) return kNotLocked;
    const std::int32_t status = transfer(tq::Int32Table(array));
    if (status != kOk) {
        lock.KeepLocked();
        return status;
    }
    return lock.Unlock() ? kOk : kNotUnlocked;
}

}  // namespace

int32_t TQ_CALL tqGetSafeArrayHandle(uint16_t** pels, SAFEARRAY** array) {
    if (array == nullptr || !tq::HasInt32Elements(*array)) return kWrongElements;
    if (pels == nullptr) return kNotCreated;
    return tq::Guarded(kNotCreated, [&] {
        // Bytes, because tqImageFree frees bytes. The host gets them even if filling fails, so they are 0.
        std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[PelBytes(**array)]());
        *pels = reinterpret_cast<std::uint16_t*>(block.release());
        return UnderLock(**array, [&](const tq::Int32Table& table) { return ReadPels(table, *pels); });
    });
}

int32_t TQ_CALL tqGetSafeArray(const uint16_t* pels, SAFEARRAY** array) {
    if (pels == nullptr || array == nullptr || !tq::HasInt32Elements(*array)) return kWrongElements;
    return UnderLock(**array, [&](const tq::Int32Table& table) { return WritePels(table, pels); });
}
