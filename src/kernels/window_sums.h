#pragma once

#include <cstddef>
#include <cstdint>

/// Building blocks of sums over sliding windows. Every sum is an exact integer: 8000 pels of a column stay
/// below 2^32, and whole-image sums below 2^53, the integers that a double holds.
namespace tq::kernels {

/// columns[i] += row[i]
void AddRow(std::uint32_t* columns, const std::uint16_t* row, std::size_t count);
/// columns[i] -= row[i]
void SubtractRow(std::uint32_t* columns, const std::uint16_t* row, std::size_t count);
/// columns[i] += entering[i] - leaving[i]
void ReplaceRow(std::uint32_t* columns, const std::uint16_t* entering, const std::uint16_t* leaving,
                std::size_t count);

/// out[i] = 1 where the pel is not 0, else 0
void MarkNonZero(const std::uint16_t* pels, std::size_t count, std::uint16_t* out);

/// prefix[0] = 0, prefix[i + 1] = prefix[i] + values[i]; each value at most 8000 * 65535.
void PrefixSums(const std::uint32_t* values, std::size_t count, double* prefix);
void PrefixSums(const std::uint16_t* pels, std::size_t count, std::uint32_t* prefix);

/// out[i] = high[i] - low[i]
void Differences(const double* high, const double* low, std::size_t count, double* out);

/// One row of a block as seen from its positions: its sum at position i is high[i] - low[i].
struct BlockRow {
    const std::uint32_t* high;
    const std::uint32_t* low;
};

/// out[i] += the sum of all block rows at position i. `rowsPerFlush` row sums stay below 2^31.
void AddBlockRows(const BlockRow* rows, std::size_t rowCount, std::size_t rowsPerFlush, std::size_t count,
                  double* out);

/// Number of i with values[i] >= bounds[i].
std::size_t CountAtLeast(const double* values, const double* bounds, std::size_t count);

/// True when values[i] < low * scales[i] or values[i] > high * scales[i] for any i; never for a product that
/// is not a number.
bool AnyOutside(const double* values, const double* scales, std::size_t count, double low, double high);

/// out[i] = values[i] / divisors[i]
void Quotients(const double* values, const double* divisors, std::size_t count, double* out);

struct DoubleRange {
    double min;
    double max;
};

/// Smallest and largest of at least one finite value.
DoubleRange FindRange(const double* values, std::size_t count);

}  // namespace tq::kernels
