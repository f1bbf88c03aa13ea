#pragma once

#include <cstdint>
#include <span>

#include "core/image_view.h"
#include "patterns/positions.h"

/// The shapes that patterns are drawn with, white and clipped to the image. Features that overlap are drawn
/// once: the cost grows with the pels that become white, whatever the host's counts and sizes.
namespace tq {

/// Pels along one axis, both ends included; empty when first > last.
struct Run {
    std::int64_t first;
    std::int64_t last;
};

void DrawRectangle(const ImageView& view, Run cols, Run rows) noexcept;

/// A disc around each crossing of the columns with the rows: the pels at most radius away from its centre.
void DrawDiscs(const ImageView& view, const Positions& cols, const Positions& rows, std::int32_t radius);

/// Lines along the rows: each position starts a line so many rows wide, drawn from along.first to along.last.
void DrawRowLines(const ImageView& view, const Positions& starts, std::int32_t width, Run along);
/// The same along the columns.
void DrawColumnLines(const ImageView& view, const Positions& starts, std::int32_t width, Run along);

/// Copies a row of pels into rows first .. last of the image.
void FillRows(const ImageView& view, Run rows, std::span<const Pel> pels) noexcept;

}  // namespace tq
