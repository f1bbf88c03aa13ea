#pragma once

#include <cstddef>
#include <cstdint>

/// Means over windows of a row, from prefix sums of its column sums: the sum of window i is
/// prefix[i + width] - prefix[i].
namespace tq::kernels {

/// Windows of up to so many pels have sums below 2^31, so that 32-bit prefix sums may wrap.
inline constexpr std::int64_t kLargestNarrowWindow = 32768;

/// prefix[0] = 0, prefix[i + 1] = prefix[i] + values[i], modulo 2^32.
void WrappingPrefixSums(const std::uint32_t* values, std::size_t count, std::uint32_t* prefix);

/// out[i] = trunc(sum / area + 0.5). `area` is odd: no quotient then comes closer than 1 / (2 area) to where
/// the truncation jumps, and multiplying by the rounded reciprocal gives the same pel as dividing.
void WindowMeans(const std::uint32_t* prefix, std::size_t width, std::size_t count, double area,
                 std::uint16_t* out);
void WindowMeans(const double* prefix, std::size_t width, std::size_t count, double area, std::uint16_t* out);

/// out[i] = trunc(sum / number + 0.5) with the numbers from prefix sums of their own; 0 where centre[i] is 0.
/// `centre` may be `out`.
void LitWindowMeans(const std::uint32_t* sums, const std::uint32_t* numbers, std::size_t width,
                    std::size_t count, const std::uint16_t* centre, std::uint16_t* out);
void LitWindowMeans(const double* sums, const double* numbers, std::size_t width, std::size_t count,
                    const std::uint16_t* centre, std::uint16_t* out);

/// One row of the 3 x 3 smoothing for columns 1 .. cols - 2, from the rows above and below:
/// out[i] = trunc(sum of nine / 9).
void SmoothRow(const std::uint16_t* above, const std::uint16_t* row, const std::uint16_t* below,
               std::size_t cols, std::uint16_t* out);

/// The same over the pels that are not 0; 0 stays 0.
void SmoothLitRow(const std::uint16_t* above, const std::uint16_t* row, const std::uint16_t* below,
                  std::size_t cols, std::uint16_t* out);

}  // namespace tq::kernels
