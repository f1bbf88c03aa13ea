#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace tq {

/// A small system of linear equations with its right side in the last column of each row.
template <std::size_t N>
using LinearSystem = std::array<std::array<double, N + 1>, N>;

/// Elimination with the largest pivot of each column: the four operations only, so the same bits on every
/// build. False when the equations, which should be of the order of 1, do not determine the unknowns.
template <std::size_t N>
bool Solve(LinearSystem<N>& system, std::array<double, N>& unknowns) noexcept {
    constexpr double kNoPivot = 1e-13;  // a few hundred roundings
    for (std::size_t step = 0; step < N; ++step) {
        std::size_t best = step;
        for (std::size_t row = step + 1; row < N; ++row) {
            if (std::abs(system[row][step]) > std::abs(system[best][step])) best = row;
        }
        // Written so that NaN fails.
        if (!(std::abs(system[best][step]) > kNoPivot)) return false;
        std::swap(system[step], system[best]);
        for (std::size_t row = step + 1; row < N; ++row) {
            const double factor = system[row][step] / system[step][step];
            for (std::size_t col = step; col <= N; ++col)
                system[row][col] -= factor * system[step][col];
        }
    }
    for (std::size_t row = N; row-- > 0;) {
        double rest = system[row][N];
        for (std::size_t col = row + 1; col < N; ++col)
            rest -= system[row][col] * unknowns[col];
        unknowns[row] = rest / system[row][row];
    }
    return true;
}

}  // namespace tq
