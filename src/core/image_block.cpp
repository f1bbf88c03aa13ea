#include "core/image_block.h"

#include <cstring>
#include <limits>
#include <new>

namespace tq {

std::size_t BlockBytes(std::int32_t cols, std::int32_t rows) {
    if (cols < 0 || rows < 0) throw std::bad_alloc();
    // 2^31 x 2^31 fits 64 bits; one factor of 2 is taken off the limit instead of put on the product.
    const std::int64_t pels = static_cast<std::int64_t>(cols) * rows;
    constexpr std::int64_t kLimit =
        (std::numeric_limits<std::int32_t>::max() - static_cast<std::int64_t>(sizeof(TqImageHeader))) / 2;
    if (pels > kLimit) throw std::bad_alloc();
    return sizeof(TqImageHeader) + static_cast<std::size_t>(pels) * sizeof(Pel);
}

OwnedImage::OwnedImage(std::int32_t cols, std::int32_t rows, NewPels fill) {
    const std::size_t bytes = BlockBytes(cols, rows);
    block_.reset(new std::uint8_t[bytes]);
    std::memset(block_.get(), 0, fill == NewPels::kZero ? bytes : sizeof(TqImageHeader));
    Header().PelCols = cols;
    Header().PelRows = rows;
    Header().BinCols = 1;
    Header().BinRows = 1;
}

OwnedImage::OwnedImage(const ConstImageView& source, NewPels fill)
    : OwnedImage(source.cols, source.rows, fill) {
    Header() = *source.header;
}

ImageView OwnedImage::View() const noexcept {
    return {&Header(), reinterpret_cast<Pel*>(&Header() + 1), Header().PelCols, Header().PelRows};
}

void FreeHostImage(TqImage** host) noexcept {
    delete[] reinterpret_cast<std::uint8_t*>(*host);
    *host = nullptr;
}

void CommitImage(TqImage** host, OwnedImage image) noexcept {
    FreeHostImage(host);
    *host = image.Release();
}

}  // namespace tq
