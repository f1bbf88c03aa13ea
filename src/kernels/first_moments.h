#pragma once

#include <cstddef>
#include <cstdint>

/// Weights of a run and where along the run they lie: what a centroid is made from, a run at a time.
namespace tq::kernels {

/// Sums over the entries i of a run that reach a threshold. A row of 8000 pels stays below 2^43.
struct FirstMoments {
    std::uint64_t weight = 0;  ///< sum of w
    std::uint64_t moment = 0;  ///< sum of i * w
};

/// The weight is the pel itself.
FirstMoments GreyMoments(const std::uint16_t* pels, std::size_t count, std::uint16_t atLeast);

/// The weight is 1.
FirstMoments CountMoments(const std::uint16_t* pels, std::size_t count, std::uint16_t atLeast);

/// The weight is 1 for every value above the bound.
FirstMoments CountMoments(const double* values, std::size_t count, double above);

struct ValueMoments {
    double weight;
    double moment;
};

/// The weight is the value itself where it is at least the bound. Sums of fractions depend on their order, so
/// the order is part of the result: entry i goes to the running sum i mod 8, and the eight are added in
/// pairs, on every instruction set.
ValueMoments ValueMomentsOf(const double* values, std::size_t count, double atLeast);

}  // namespace tq::kernels
