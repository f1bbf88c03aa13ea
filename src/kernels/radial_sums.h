#pragma once

#include <cstddef>

/// Sums over scattered centres at many places. Each place adds up its centres in their order, so the bits do
/// not depend on how many places an instruction set takes at once.
namespace tq::kernels {

struct Centers {
    const double* x;
    const double* y;
    const double* weight;
    std::size_t count;
};

struct Places {
    const double* x;
    const double* y;
    std::size_t count;
};

/// Centres are added up in groups of this many, then the groups: rounding grows with the group, not with the
/// list.
inline constexpr std::size_t kCenterGroup = 128;

/// Squared distances count as at least this: a place on a centre then needs no case of its own. It is far
/// below what two different places can have, and its inverse far above every other weight.
inline constexpr double kLeastSquare = 1e-200;

/// out[i] = sum of weight * d^2 * ln(d^2) with the distance d to the centre. The logarithm is the library's
/// own, exact to two units in the last place and the same on every instruction set.
void LogRadialSums(const Centers& centers, const Places& places, double* out);

/// sums[i] = sum of weight / d^2, norms[i] = sum of 1 / d^2.
void InverseSquareSums(const Centers& centers, const Places& places, double* sums, double* norms);

/// Rank of the centre whose distance bounds the neighbourhood of a place.
inline constexpr std::size_t kBoundingRank = 13;

/// out[i] = mean of the weights of the centres that are nearer than the thirteenth nearest one, at distance
/// R: each counts (1 / d - 1 / R)^2. With fewer than thirteen centres R is infinite. Where the thirteen
/// nearest are all as far, each of them counts as 1.
void NeighbourMeans(const Centers& centers, const Places& places, double* out);

}  // namespace tq::kernels
