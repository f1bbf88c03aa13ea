#pragma once

#include <array>
#include <cstddef>

namespace tq {

/// How far a centre's term is from its interpolation between the nodes of a square, by the distance of the
/// centre: the larger of its column and row distance from the middle of the square, in half sides. The bounds
/// hold at every place of the square and for all larger distances too.
class FarError {
  public:
    /// Of d^2 ln(d^2), with d in half sides. In other units of length the square's half side, squared, is a
    /// factor; what its logarithm adds to the term is a polynomial of degree two and interpolated exactly.
    static FarError OfLogRadial() noexcept;
    /// Of 1 / d^2, as a share of it.
    static FarError OfInverseSquare() noexcept;

    /// The least distance known to be enough for an error, infinity when none is. NaN is no error to allow.
    double DistanceFor(double error) const noexcept;

  private:
    static constexpr std::size_t kDistances = 128;

    template <class Bound>
    explicit FarError(Bound bound) noexcept;
    static double Distance(std::size_t i) noexcept { return 1.25 + static_cast<double>(i) / 8.0; }

    std::array<double, kDistances> errors_;  ///< falling
};

}  // namespace tq
