#pragma once

#include <array>
#include <cstdint>
#include <vector>

/// Directions about the optical axis, counted from the right (+x) over the top (+y). The correctly rounded
/// functions cost about a microsecond, too much for a pel, so that both ways go over tables of them.
namespace tq {

struct Direction {
    double cosine;
    double sine;
};

/// The directions of equal parts of a full turn. The quarter turns are exact.
class TurnParts {
  public:
    /// parts >= 1
    explicit TurnParts(std::int32_t parts);
    /// Part 0 .. parts - 1.
    Direction operator[](std::int32_t part) const noexcept;

  private:
    // A part is a quarter turn times (a whole number + rest / parts). The rest is split into a coarse and a
    // fine step of about sqrt(parts) values each, and the two are put together by the addition theorem.
    std::int32_t parts_;
    std::int32_t fineSteps_;
    std::vector<Direction> coarse_;
    std::vector<Direction> fine_;
};

/// The way back: the azimuth of a direction to the right and up, in turns.
class AzimuthTable {
  public:
    AzimuthTable();
    /// 0 .. 0.25 for x >= 0 and y >= 0, exact on both axes and within 1e-16 elsewhere; 0 for (0, 0).
    double Turns(double x, double y) const noexcept;

  private:
    // atan(t) = atan(b) + atan(z) with z = (t - b) / (1 + t b). With b the nearest of 257 values |z| <= 2^-9,
    // and what the series leaves out after its third term is below z^7 / 7 < 2e-20.
    static constexpr std::int32_t kSteps = 256;
    std::array<double, kSteps + 1> turns_;
};

}  // namespace tq
