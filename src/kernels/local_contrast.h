#pragma once

#include <cstddef>
#include <cstdint>

/// What the windows of a row tell about its pels, as doubles, and how that becomes grey levels. Not a number
/// stands where there is nothing to tell.
namespace tq::kernels {

/// The windows around the pels of a row and larger ones around those: sums and numbers of the pels with data,
/// and how much of the windows lies inside the image.
struct SurroundRow {
    const double* innerSums;
    const double* innerCounts;
    const double* outerSums;
    const double* outerCounts;
    const double* innerCols;
    const double* outerCols;
    double innerRows;
    double outerRows;
};

/// The mean of the window less the mean around it, where at least half of the pels around it hold data.
void SurroundDifferences(const SurroundRow& row, std::size_t count, double* out);

/// here[i] - (ahead[i] + behind[i]) / 2 where that is larger than what `out` holds, whatever the signs, or
/// where `out` holds nothing.
void KeepLargerDifferences(const double* here, const double* ahead, const double* behind, std::size_t count,
                           double* out);

/// columns[i] += the square of row[i]
void AddSquares(std::uint64_t* columns, const std::uint16_t* row, std::size_t count);
/// columns[i] -= the square of row[i]
void SubtractSquares(std::uint64_t* columns, const std::uint16_t* row, std::size_t count);

/// Windows of up to so many pels have sums of squares below 2^52 and no product below beyond 2^53: everything
/// but the last steps is an integer that a double holds.
inline constexpr std::int64_t kLargestSquaredWindow = std::int64_t{1} << 20;

/// PopulationDeviation of windows: `counts` pels with the sum `sums` and the sum of squares
/// squares[i + width] - squares[i]. Any number where the count is 0.
void WindowDeviations(const double* sums, const double* counts, const std::uint64_t* squares,
                      std::size_t width, std::size_t count, double* out);

/// The largest |values[i]| of the pels that are not 0, at least `start`.
double LargestMagnitude(const std::uint16_t* pels, const double* values, std::size_t count, double start);

/// The grey level that the largest value of an image becomes; no value is larger.
struct ValueScale {
    double greys;
    double largest;
};

/// out[i] = values[i] * greys / largest, truncated, and 0 where the pel is 0. No value is below 0.
void WriteMagnitudes(const std::uint16_t* pels, const double* values, std::size_t count,
                     const ValueScale& scale, std::uint16_t* out);

/// The same for values of either sign, rounded to the nearest, halves to even; the grey level `greys` is 0. A
/// value that is not a number becomes a pel of 0.
void WriteSigned(const std::uint16_t* pels, const double* values, std::size_t count, const ValueScale& scale,
                 std::uint16_t* out);

}  // namespace tq::kernels
