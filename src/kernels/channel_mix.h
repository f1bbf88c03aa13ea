#pragma once

#include <cstddef>
#include <cstdint>

/// Linear combinations of the pels of three channels. Found twice, first for the largest and then for the
/// pels, so that no plane of doubles is needed.
namespace tq::kernels {

struct ChannelRuns {
    const std::uint16_t* first;
    const std::uint16_t* second;
    const std::uint16_t* third;
    std::size_t count;
};

/// Mixed channel k of the pels a, b, c is
/// (m[3k] * (a * scales[0]) + m[3k + 1] * (b * scales[1]) + m[3k + 2] * (c * scales[2])) * factor / divisor.
/// Multiplying by 1 and dividing by 1 change no bit, so one form serves every transform.
struct ChannelMix {
    double matrix[9];
    double scales[3] = {1.0, 1.0, 1.0};
    double factor = 1.0;
    double divisor = 1.0;
};

/// maxima[k] = the largest of itself and the values of mixed channel k. What is not a number is not larger.
void RaiseMaxima(const ChannelRuns& runs, const ChannelMix& mix, double* maxima);

/// out[k][i] = value / units[k] + 0.5, truncated and clamped to a pel; 0 for a value that is negative or not
/// a number, and where the unit is 0.
void StoreMixed(const ChannelRuns& runs, const ChannelMix& mix, const double* units,
                std::uint16_t* const* out);

/// The same two steps for values that are there: the larger of `largest` and the values, and their pels.
double LargestValue(const double* values, std::size_t count, double largest);
void StoreInUnits(const double* values, std::size_t count, double unit, std::uint16_t* out);

/// Sums over counted pels, integers held exactly.
struct ChannelSums {
    double first = 0.0;
    double second = 0.0;
    double third = 0.0;
    double count = 0.0;
};

/// Adds the pels for which weights[0] * a + weights[1] * b + weights[2] * c > bound.
void AddChannelsAbove(const ChannelRuns& runs, const double* weights, double bound, ChannelSums* sums);

}  // namespace tq::kernels
