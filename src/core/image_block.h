#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "core/image_view.h"

namespace tq {

/// What a new block's pels hold. Producers that write every pel skip the clearing.
enum class NewPels { kZero, kUnwritten };

/// Bytes of `headBytes` followed by cols x rows cells. Throws std::bad_alloc for what a host's signed 32-bit
/// size could not express, negative sides included, so that an allocation is never smaller than what it has
/// to hold.
std::size_t GridBytes(std::size_t headBytes, std::size_t cellBytes, std::int64_t cols, std::int64_t rows);

/// The same for an image block.
std::size_t BlockBytes(std::int32_t cols, std::int32_t rows);

/// An image block until it is handed to the host. Its header is zero but for the sizes and binning factors
/// of 1.
class OwnedImage {
  public:
    OwnedImage() = default;
    /// Throws std::bad_alloc when no block of this size can be had.
    OwnedImage(std::int32_t cols, std::int32_t rows, NewPels fill = NewPels::kZero);
    /// A block of the source's size with a copy of its whole header.
    OwnedImage(const ConstImageView& source, NewPels fill);

    /// Unlike LocateImage this asks nothing of the size: the block is known to be as large as it says.
    ImageView View() const noexcept;
    TqImageHeader& Header() const noexcept { return *reinterpret_cast<TqImageHeader*>(block_.get()); }
    TqImage* Release() noexcept { return reinterpret_cast<TqImage*>(block_.release()); }

  private:
    std::unique_ptr<std::uint8_t[]> block_;
};

/// Frees the image or map that the host's pointer holds, if any, and leaves null. Every block is an array of
/// bytes, so that one exported function can release them all.
template <class Block>
void FreeHostBlock(Block** host) noexcept {
    delete[] reinterpret_cast<std::uint8_t*>(*host);
    *host = nullptr;
}

/// Hands a finished image to the host: only now the block it replaces goes.
void CommitImage(TqImage** host, OwnedImage image) noexcept;

}  // namespace tq
