#pragma once

#include <cstdint>

#include "core/image_view.h"

namespace tq {

/// The four repairs of a known defect, on a validated image. All but the last return false, and change
/// nothing, when the defect lies outside the image or has no neighbourhood to take a value from.

bool RepairPel(const ImageView& image, std::int32_t col, std::int32_t row, std::int32_t width,
               std::int32_t height) noexcept;

/// Rows outside the image are left out; an empty segment is a success.
bool RepairCol(const ImageView& image, std::int32_t col, std::int32_t firstRow, std::int32_t lastRow,
               std::int32_t width) noexcept;

bool RepairRow(const ImageView& image, std::int32_t row, std::int32_t firstCol, std::int32_t lastCol,
               std::int32_t height) noexcept;

/// A block that covers no pel, or leaves none around it, changes nothing.
void RepairBlock(const ImageView& image, std::int32_t col, std::int32_t row, std::int32_t width,
                 std::int32_t height) noexcept;

}  // namespace tq
