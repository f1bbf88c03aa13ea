#include "core/image_block.h"

#include <cstring>
#include <limits>
#include <new>

#include "platform/huge_pages.h"

namespace tq {

std::size_t GridBytes(std::size_t headBytes, std::size_t cellBytes, std::int64_t cols, std::int64_t rows) {
    constexpr std::int64_t kLargestSize = std::numeric_limits<std::int32_t>::max();
    if (cols < 0 || rows < 0 || cols > kLargestSize || rows > kLargestSize) throw std::bad_alloc();
    const std::int64_t cells = cols * rows;
    // The cell size divides the limit instead of multiplying the product, which may be near 2^62.
    const std::int64_t room = kLargestSize - static_cast<std::int64_t>(headBytes);
    if (cells > room / static_cast<std::int64_t>(cellBytes)) throw std::bad_alloc();
    return headBytes + static_cast<std::size_t>(cells) * cellBytes;
}

std::size_t BlockBytes(std::int32_t cols, std::int32_t rows) {
    return GridBytes(sizeof(TqImageHeader), sizeof(Pel), cols, rows);
}

OwnedImage::OwnedImage(std::int32_t cols, std::int32_t rows, NewPels fill) {
    const std::size_t bytes = BlockBytes(cols, rows);
    block_.reset(new std::uint8_t[bytes]);
    AdviseHugePages(block_.get(), bytes);
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

void CommitImage(TqImage** host, OwnedImage image) noexcept {
    FreeHostBlock(host);
    *host = image.Release();
}

}  // namespace tq
