#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace tq {

/// Nodes along each side of a square on which a smooth function is interpolated. More of them take longer,
/// fewer make neighbourhoods larger that are summed up pel by pel; a whole number of vectors is quickest.
inline constexpr std::size_t kNodes = 16;
inline constexpr std::size_t kSquareNodes = kNodes * kNodes;

/// Where the function is known: the zeros of Chebyshev's polynomial on -1..1.
std::array<double, kNodes> ChebyshevNodes();

/// How functions known at the nodes go on at positions on -1..1: a multiple of 8 of them, at most kTileSide.
class ChebyshevBasis {
  public:
    explicit ChebyshevBasis(std::span<const double> positions);

    std::size_t Count() const noexcept { return down_.size() / kNodes; }
    /// The cardinal polynomials, a row a position, and a row a node.
    const double* Down() const noexcept { return down_.data(); }
    const double* Across() const noexcept { return across_.data(); }

  private:
    std::vector<double> down_;
    std::vector<double> across_;
};

/// A function of two variables from the nodes of a square to all pairs of positions, row after row.
void Interpolate(const double* atNodes, const ChebyshevBasis& cols, const ChebyshevBasis& rows, double* out);

}  // namespace tq
