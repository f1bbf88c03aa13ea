#pragma once

#include <cstdint>

#include "platform/automation.h"
#include "platform/int32_table.h"

/// Lists that hosts hand over as arrays of int32 indexed {record, field}, and the codes of every step.
namespace tq {

inline constexpr std::int32_t kRecordsNotTwoDimensions = 1;
inline constexpr std::int32_t kRecordElements = 2;
inline constexpr std::int32_t kRecordFields = 3;
inline constexpr std::int32_t kRecordUnreadable = 4;
inline constexpr std::int32_t kRecordsNotLocked = 5;
inline constexpr std::int32_t kRecordsNotUnlocked = 6;

/// 0, or the code of a list whose records have not this number of fields. The fields are the dimension
/// declared last.
inline std::int32_t CheckRecords(const SAFEARRAY* list, std::uint32_t fields) noexcept {
    if (list == nullptr || list->cDims != 2) return kRecordsNotTwoDimensions;
    if (!HasInt32Elements(list)) return kRecordElements;
    return Int32Table(*list).RightCount() == fields ? 0 : kRecordFields;
}

}  // namespace tq
