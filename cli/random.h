#pragma once

#include <cstdint>

namespace cli {

/// Random numbers that are the same on every machine: integers only, and no library whose sequences differ.
/// The generator is SplitMix64 (Steele, Lea and Flood, 2014).
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t Bits() {
        std::uint64_t bits = state_ += 0x9e3779b97f4a7c15u;
        bits = (bits ^ (bits >> 30)) * 0xbf58476d1ce4e5b9u;
        bits = (bits ^ (bits >> 27)) * 0x94d049bb133111ebu;
        return bits ^ (bits >> 31);
    }

    /// 0 … count - 1. The remainder favours small numbers by count / 2^64, which no image can show.
    std::int32_t Below(std::int32_t count) {
        return static_cast<std::int32_t>(Bits() % static_cast<std::uint64_t>(count));
    }

    /// Normal to about four standard deviations, mean 0, variance 1: the sum of twelve even 16-bit numbers,
    /// each of variance 1/12 once divided by 2^16. It asks no logarithm or sine of the platform.
    double Normal() {
        std::int64_t sum = 0;
        for (int draw = 0; draw < 3; ++draw) {
            const std::uint64_t bits = Bits();
            for (int part = 0; part < 64; part += 16) {
                sum += static_cast<std::int64_t>((bits >> part) & 0xffff);
            }
        }
        // Twice the sum keeps the mean, 12 * 32767.5, whole.
        return static_cast<double>(2 * sum - 12 * 65535) / 131072.0;
    }

  private:
    std::uint64_t state_;
};

}  // namespace cli
