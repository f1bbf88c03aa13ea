#include <zlib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "tqimage/exchange.h"

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNotCompressed = -2;
constexpr std::int32_t kNoBlock = -1;
constexpr std::int32_t kNotRestored = -4;

/// Hosts that know no length beforehand get no larger string back; those that keep larger images pass the
/// length.
constexpr std::uint32_t kMostRestoredBytes = 6'500'000;

using Bytes = std::unique_ptr<std::uint8_t[]>;

/// Bytes of a block for these contents. The host will take the block for an image, so it is as large as its
/// header says even when the string was cut short: a damaged record must not make other functions read past
/// it.
std::size_t BytesToHold(const std::uint8_t* contents, std::size_t length) {
    TqImageHeader header{};
    std::memcpy(&header, contents, std::min(length, sizeof header));
    const bool isImage = tq::IsValidSide(header.PelCols) && tq::IsValidSide(header.PelRows);
    return std::max(length, isImage ? tq::BlockBytes(header.PelCols, header.PelRows) : sizeof header);
}

std::int32_t HandOverCopy(const std::uint8_t* source, std::size_t length, void** result) {
    const std::size_t held = BytesToHold(source, length);
    Bytes block(new std::uint8_t[held]);
    std::memcpy(block.get(), source, length);
    std::memset(block.get() + length, 0, held - length);
    *result = block.release();
    return kOk;
}

/// Restores into `destination`; `length` is its capacity and then the restored length.
int Restore(const std::uint8_t* source, std::uint32_t sourceLength, std::uint8_t* destination,
            std::uint32_t* length) noexcept {
    uLongf restored = *length;
    const int status = uncompress(destination, &restored, source, sourceLength);
    *length = static_cast<std::uint32_t>(restored);
    return status;
}

std::int32_t RestoreUnknownLength(const std::uint8_t* source, std::uint32_t sourceLength, void** result) {
    const Bytes scratch(new std::uint8_t[kMostRestoredBytes]);
    std::uint32_t length = kMostRestoredBytes;
    if (Restore(source, sourceLength, scratch.get(), &length) != Z_OK) return kNotRestored;
    return HandOverCopy(scratch.get(), length, result);
}

std::int32_t RestoreKnownLength(const std::uint8_t* source, std::uint32_t sourceLength,
                                std::uint32_t expectedLength, void** result) {
    Bytes block(new std::uint8_t[expectedLength]);
    std::uint32_t length = expectedLength;
    const int status = Restore(source, sourceLength, block.get(), &length);
    if (status != Z_OK) {
        // The host sees the address after a failure too, as it always has; the block itself goes.
        *result = block.get();
        return status;
    }
    const std::size_t held = BytesToHold(block.get(), length);
    if (held > expectedLength) return HandOverCopy(block.get(), length, result);
    // A length that the host guessed far too large costs address space only.
    std::memset(block.get() + length, 0, held - length);
    *result = block.release();
    return kOk;
}

/// An `expectedLength` of 0 says that the host does not know it.
std::int32_t MakeBlock(const std::uint8_t* source, std::uint32_t sourceLength, void** result,
                       std::uint32_t expectedLength, bool compressed) noexcept {
    if (source == nullptr || result == nullptr) return kNoBlock;
    return tq::Guarded(kNoBlock, [&] {
        if (!compressed) return HandOverCopy(source, sourceLength, result);
        if (expectedLength == 0) return RestoreUnknownLength(source, sourceLength, result);
        return RestoreKnownLength(source, sourceLength, expectedLength, result);
    });
}

}  // namespace

int32_t TQ_CALL tqHandleToString(const TqImage* image, uint8_t* destination, uint32_t* destinationLength,
                                 uint32_t capacity, int32_t compress) {
    const tq::ConstImageView view = tq::LocateImage(image);
    if (!view || destination == nullptr || destinationLength == nullptr) return kInvalidImage;
    // The sides of a valid image keep this far below 2^32, so BlockBytes does not throw.
    const std::size_t size = tq::BlockBytes(view.cols, view.rows);
    const auto* const block = reinterpret_cast<const std::uint8_t*>(view.header);
    if (compress == 0) {
        *destinationLength = static_cast<std::uint32_t>(size);
        std::memcpy(destination, block, size);
        return kOk;
    }
    uLongf length = capacity;
    const int status = compress2(destination, &length, block, static_cast<uLong>(size), Z_BEST_COMPRESSION);
    *destinationLength = static_cast<std::uint32_t>(length);
    return status == Z_OK ? kOk : kNotCompressed;
}

int32_t TQ_CALL tqStringToHandle(const uint8_t* source, uint32_t sourceLength, void** result,
                                 int32_t compressed) {
    return MakeBlock(source, sourceLength, result, 0, compressed != 0);
}

int32_t TQ_CALL tqStringToHandle2(const uint8_t* source, uint32_t sourceLength, void** result,
                                  uint32_t expectedLength, int32_t compressed) {
    return MakeBlock(source, sourceLength, result, expectedLength, compressed != 0);
}
