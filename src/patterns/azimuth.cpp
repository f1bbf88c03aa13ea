#include "patterns/azimuth.h"

#include <cmath>
#include <cstddef>

#include "core/numerics.h"
#include "core/portable_math.h"

namespace tq {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;

/// steps directions, `stride` of `parts` parts of a quarter turn apart.
std::vector<Direction> MakeTable(std::int32_t steps, std::int32_t stride, std::int32_t parts) {
    std::vector<Direction> table;
    table.reserve(static_cast<std::size_t>(steps));
    for (std::int32_t step = 0; step < steps; ++step) {
        const double radians = kPi / 2.0 * (static_cast<double>(step) * stride / parts);
        table.push_back({portable::Cos(radians), portable::Sin(radians)});
    }
    return table;
}

}  // namespace

TurnParts::TurnParts(std::int32_t parts)
    : parts_(parts),
      fineSteps_(TruncToInt32(std::ceil(std::sqrt(static_cast<double>(parts))))),
      coarse_(MakeTable((parts - 1) / fineSteps_ + 1, fineSteps_, parts)),
      fine_(MakeTable(fineSteps_, 1, parts)) {}

Direction TurnParts::operator[](std::int32_t part) const noexcept {
    const std::int64_t quarters = std::int64_t{part} * 4;
    const auto rest = static_cast<std::int32_t>(quarters % parts_);
    const Direction& coarse = coarse_[static_cast<std::size_t>(rest / fineSteps_)];
    const Direction& fine = fine_[static_cast<std::size_t>(rest % fineSteps_)];
    const double cosine = coarse.cosine * fine.cosine - coarse.sine * fine.sine;
    const double sine = coarse.sine * fine.cosine + coarse.cosine * fine.sine;
    switch (quarters / parts_) {
        case 0:
            return {cosine, sine};
        case 1:
            return {-sine, cosine};
        case 2:
            return {-cosine, -sine};
        default:
            return {sine, -cosine};
    }
}

AzimuthTable::AzimuthTable() {
    for (std::size_t step = 0; step < turns_.size(); ++step)
        turns_[step] = portable::Atan(static_cast<double>(step) / kSteps) / kTwoPi;
}

double AzimuthTable::Turns(double x, double y) const noexcept {
    const bool steep = y > x;
    const double tangent = steep ? x / y : (x == 0.0 ? 0.0 : y / x);
    const std::int32_t step = TruncToInt32(tangent * kSteps + 0.5);
    const double base = static_cast<double>(step) / kSteps;
    const double z = (tangent - base) / (1.0 + tangent * base);
    const double square = z * z;
    const double rest = z * (1.0 - square * (1.0 / 3.0 - square / 5.0)) / kTwoPi;
    const double turns = turns_[static_cast<std::size_t>(step)] + rest;
    return steep ? 0.25 - turns : turns;
}

}  // namespace tq
