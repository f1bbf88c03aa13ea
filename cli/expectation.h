#pragma once

#include <string>
#include <vector>

#include "measurement.h"
#include "quantity.h"
#include "region_argument.h"

namespace cli {

/// What one figure of one region should be.
struct Expectation {
    Quantity quantity;
    double value;
    double tolerancePercent;
};

struct ExpectedRegion {
    Region region;
    std::vector<Expectation> figures;
};

/// A measured figure beside the expected one.
struct Comparison {
    std::string region;
    Expectation expected;
    std::optional<double> measured;
    double differencePercent = 0.0;
    bool within = false;
};

/// Reads {"regions": [{"name", "region", "expect": {figure: {"value", "tolerancePercent"}}}]}; fields beside
/// these are notes.
std::vector<ExpectedRegion> ReadExpectations(const std::string& path);

/// Every expectation against the measurement of its region; figures that were not measured are not within.
std::vector<Comparison> Compare(const std::vector<ExpectedRegion>& expected,
                                const std::vector<Measurement>& measurements);

bool AllWithin(const std::vector<Comparison>& comparisons);

}  // namespace cli
