#pragma once

#include <cstddef>
#include <cstdint>

/// Sums in single precision, formed in the order of the rows or columns: beyond 2^24 each addition rounds, so
/// the order decides the bits and only sums of different lines may be formed side by side.
namespace tq::kernels {

/// sums[i] += the pels of column i, top to bottom, of rows that lie one behind the other.
void AddRowsInOrder(const std::uint16_t* pels, std::size_t rows, std::size_t cols, float* sums);

/// Rows whose sums are formed side by side: as many additions as a processor has under way at a time.
inline constexpr std::size_t kRowsTogether = 8;

/// sums[r] = the pels of row r, left to right; at most kRowsTogether rows that lie one behind the other.
void SumRowsInOrder(const std::uint16_t* pels, std::size_t rows, std::size_t cols, float* sums);

}  // namespace tq::kernels
