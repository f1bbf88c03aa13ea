#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>

#include "core/numerics.h"
#include "tqimage/base.h"

namespace tq {

/// Longest side of a valid image.
inline constexpr std::int32_t kMaxSide = 8000;

constexpr bool IsValidSide(std::int32_t pels) noexcept {
    return pels >= 1 && pels <= kMaxSide;
}

/// A validated image block: its header and its pels with their extent. Empty when the block is invalid.
template <class Header, class PelType>
struct BasicImageView {
    Header* header = nullptr;
    PelType* pels = nullptr;
    std::int32_t cols = 0;
    std::int32_t rows = 0;

    explicit operator bool() const noexcept { return header != nullptr; }

    PelType* Row(std::int32_t row) const noexcept { return pels + static_cast<std::ptrdiff_t>(row) * cols; }
    PelType& At(std::int32_t col, std::int32_t row) const noexcept { return Row(row)[col]; }
    std::size_t Count() const noexcept {
        return static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows);
    }
    bool Contains(std::int64_t col, std::int64_t row) const noexcept {
        return col >= 0 && col < cols && row >= 0 && row < rows;
    }

    operator BasicImageView<const Header, const PelType>() const noexcept
        requires(!std::same_as<Header, const Header>) {
        return {header, pels, cols, rows};
    }
};

using ImageView = BasicImageView<TqImageHeader, Pel>;
using ConstImageView = BasicImageView<const TqImageHeader, const Pel>;

/// The one validation step of every input image: empty for a null block and for a side outside 1..8000.
ConstImageView LocateImage(const TqImage* image) noexcept;
ImageView LocateImage(TqImage* image) noexcept;

/// True when both views show images of the same columns and rows.
inline bool SameSize(const ConstImageView& a, const ConstImageView& b) noexcept {
    return a.cols == b.cols && a.rows == b.rows;
}

}  // namespace tq
