#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "kernels/transpose.h"

namespace tq {

/// The ways of laying a raster on itself, as displayed with row 0 at the top.
enum class Turn {
    kLeft,          ///< a quarter turn counter-clockwise
    kRight,         ///< a quarter turn clockwise
    kFlip,          ///< rows in reverse order
    kMirror,        ///< columns in reverse order
    kHalf,          ///< half a turn
    kMainDiagonal,  ///< rows become columns
    kAntiDiagonal,  ///< the same about the other diagonal
};

/// The host's modes: 1 and 2 are quarter turns, 3 turns the picture upside down. Mirrored first they become
/// the diagonals and the half turn. Every other mode is none.
constexpr std::optional<Turn> TurnOfMode(std::int32_t mode, bool mirrored) noexcept {
    switch (mode) {
        case 1:
            return mirrored ? Turn::kMainDiagonal : Turn::kLeft;
        case 2:
            return mirrored ? Turn::kAntiDiagonal : Turn::kRight;
        case 3:
            return mirrored ? Turn::kHalf : Turn::kFlip;
        default:
            return std::nullopt;
    }
}

/// True when the result has as many columns as the source has rows.
constexpr bool ExchangesAxes(Turn turn) noexcept {
    return turn == Turn::kLeft || turn == Turn::kRight || turn == Turn::kMainDiagonal ||
           turn == Turn::kAntiDiagonal;
}

/// A place in a raster, the optical centre for one.
struct RasterPlace {
    float col;
    float row;
};

/// Where a place of a raster of cols x rows comes to lie.
inline RasterPlace TurnPlace(Turn turn, RasterPlace place, std::int32_t cols, std::int32_t rows) noexcept {
    // In double and rounded once: centres of half a pel must come back exactly after two turns.
    const auto fromRight = static_cast<float>(static_cast<double>(cols - 1) - place.col);
    const auto fromBottom = static_cast<float>(static_cast<double>(rows - 1) - place.row);
    switch (turn) {
        case Turn::kLeft:
            return {place.row, fromRight};
        case Turn::kRight:
            return {fromBottom, place.col};
        case Turn::kFlip:
            return {place.col, fromBottom};
        case Turn::kMirror:
            return {fromRight, place.row};
        case Turn::kHalf:
            return {fromRight, fromBottom};
        case Turn::kMainDiagonal:
            return {place.row, place.col};
        case Turn::kAntiDiagonal:
            return {fromBottom, fromRight};
    }
    return place;
}

/// Lays the cols x rows cells at `in`, pels or map entries, turned at `out`. The two must not overlap.
template <class Cell>
void TurnCells(Turn turn, const Cell* in, std::int32_t cols, std::int32_t rows, Cell* out) noexcept {
    const std::ptrdiff_t stride = cols;
    if (ExchangesAxes(turn)) {
        // Every one of these is the transpose, of the source read from its last row up, or written from the
        // last row up.
        const bool fromLastRow = turn == Turn::kRight || turn == Turn::kAntiDiagonal;
        const bool toLastRow = turn == Turn::kLeft || turn == Turn::kAntiDiagonal;
        const std::ptrdiff_t outStride = rows;
        const Cell* first = fromLastRow ? in + stride * (rows - 1) : in;
        Cell* firstOut = toLastRow ? out + outStride * (cols - 1) : out;
        kernels::Transpose(first, fromLastRow ? -stride : stride, cols, rows, firstOut,
                           toLastRow ? -outStride : outStride);
        return;
    }
    for (std::int32_t row = 0; row < rows; ++row) {
        const std::int32_t source = turn == Turn::kMirror ? row : rows - 1 - row;
        const Cell* cells = in + stride * source;
        if (turn == Turn::kFlip) {
            std::copy_n(cells, cols, out + stride * row);
        } else {
            kernels::ReverseRow(cells, cols, out + stride * row);
        }
    }
}

}  // namespace tq
