#include "interchange/run_lengths.h"

#include <cstddef>

namespace tq {
namespace {

/// What the second byte means when the first, the count, is 0; from 3 on it counts pixels written one by one.
enum Escape : std::uint8_t { kEndOfLine = 0, kEndOfBitmap = 1, kJump = 2 };

class Unpacker {
  public:
    Unpacker(std::span<const std::uint8_t> code, std::uint32_t bits, const OwnedBitmap& to) noexcept
        : left_(code), bits_(bits), to_(to), width_(to.Get().width), height_(to.Get().height) {}

    bool Run() noexcept {
        // A bitmap whose last line ended needs no end mark.
        while (row_ < height_) {
            if (left_.size() < 2) return false;
            const std::uint8_t count = left_[0];
            const std::uint8_t value = left_[1];
            left_ = left_.subspan(2);
            if (count == 0 && value == kEndOfBitmap) return true;
            const bool sound = count != 0 ? Repeat(count, value) : Obey(value);
            if (!sound) return false;
        }
        return true;
    }

  private:
    bool Obey(std::uint8_t escape) noexcept {
        if (escape == kJump) return Jump();
        if (escape != kEndOfLine) return Copy(escape);
        col_ = 0;
        ++row_;
        return true;
    }

    bool Jump() noexcept {
        if (left_.size() < 2) return false;
        col_ += left_[0];
        row_ += left_[1];
        left_ = left_.subspan(2);
        return col_ <= width_ && row_ <= height_;
    }

    bool Repeat(std::int32_t count, std::uint8_t value) noexcept {
        if (count > width_ - col_) return false;
        for (std::int32_t i = 0; i < count; ++i)
            Put(bits_ == 8 ? value : Half(value, i));
        return true;
    }

    /// Pixels one by one, padded to an even number of bytes.
    bool Copy(std::int32_t count) noexcept {
        const auto bytes = static_cast<std::size_t>(bits_ == 8 ? count : (count + 1) / 2);
        const std::size_t padded = bytes + bytes % 2;
        if (count > width_ - col_ || left_.size() < padded) return false;
        for (std::int32_t i = 0; i < count; ++i) {
            const auto at = static_cast<std::size_t>(i);
            Put(bits_ == 8 ? left_[at] : Half(left_[at / 2], i));
        }
        left_ = left_.subspan(padded);
        return true;
    }

    /// Of two pixels in a byte the first lies in the high bits.
    static std::uint8_t Half(std::uint8_t pair, std::int32_t index) noexcept {
        return static_cast<std::uint8_t>(index % 2 == 0 ? pair >> 4 : pair & 15);
    }

    /// Rows come from the bottom.
    void Put(std::uint8_t value) noexcept { to_.Row(height_ - 1 - row_)[col_++] = value; }

    std::span<const std::uint8_t> left_;
    std::uint32_t bits_;
    const OwnedBitmap& to_;
    std::int32_t width_;
    std::int32_t height_;
    std::int32_t col_ = 0;
    std::int32_t row_ = 0;
};

}  // namespace

bool UnpackRunLengths(std::span<const std::uint8_t> code, std::uint32_t bits,
                      const OwnedBitmap& to) noexcept {
    return Unpacker(code, bits, to).Run();
}

}  // namespace tq
