#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tqtest {

/// A 64-bit FNV-1a hash, the fingerprint of what calls gave back.
class Fingerprint {
  public:
    void Add(const void* bytes, std::size_t count) {
        const auto* byte = static_cast<const std::uint8_t*>(bytes);
        for (std::size_t i = 0; i < count; ++i)
            value_ = (value_ ^ byte[i]) * 0x100000001B3u;
    }
    template <class Value>
    void Add(Value value) {
        // Which bit pattern a NaN has follows from the order of operands, which compilers may exchange.
        if (value != value) value = static_cast<Value>(-12345.678);
        Add(&value, sizeof value);
    }
    std::uint64_t Value() const { return value_; }

  private:
    std::uint64_t value_ = 0xCBF29CE484222325u;
};

inline std::uint64_t FingerprintOf(std::string_view text) {
    Fingerprint print;
    print.Add(text.data(), text.size());
    return print.Value();
}

/// Where the arguments of random calls come from: an endless seeded generator, the same on every platform, or
/// the bytes of a fuzzer, which yield zeros when they are used up.
class Draw {
  public:
    explicit Draw(std::uint64_t seed) : state_(seed) {}
    Draw(const std::uint8_t* bytes, std::size_t count) : bytes_(bytes), left_(count) {}

    bool Exhausted() const { return bytes_ != nullptr && left_ == 0; }

    /// first..last, both included.
    std::int32_t Between(std::int32_t first, std::int32_t last) {
        const auto choices = static_cast<std::uint32_t>(last) - static_cast<std::uint32_t>(first) + 1;
        const std::uint32_t bits = choices != 0 && choices <= 256 ? Bits(1) : Bits(4);
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(first) +
                                         (choices == 0 ? bits : bits % choices));
    }
    bool OneIn(std::int32_t n) { return Between(1, n) == n; }
    std::uint32_t Any() { return Bits(4); }
    /// A fraction in [0, 1] with few digits.
    double Fraction() { return static_cast<double>(Bits(2) & 0xFFFF) / 65535.0; }
    template <class Value, std::size_t kCount>
    Value OneOf(const Value (&values)[kCount]) {
        return values[static_cast<std::size_t>(Between(0, static_cast<std::int32_t>(kCount) - 1))];
    }

  private:
    std::uint32_t Bits(int byteCount) {
        if (bytes_ != nullptr) {
            std::uint32_t bits = 0;
            for (; byteCount > 0 && left_ > 0; --byteCount, --left_)
                bits = bits << 8 | *bytes_++;
            return bits;
        }
        // SplitMix64.
        std::uint64_t z = state_ += 0x9E3779B97F4A7C15u;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9u;
        z = (z ^ z >> 27) * 0x94D049BB133111EBu;
        return static_cast<std::uint32_t>((z ^ z >> 31) >> 16);
    }

    std::uint64_t state_ = 0;
    const std::uint8_t* bytes_ = nullptr;
    std::size_t left_ = 0;
};

}  // namespace tqtest
