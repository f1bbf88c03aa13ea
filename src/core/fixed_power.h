#pragma once

#include <array>

namespace tq {

/// Powers of many values with one exponent, the same bits on every build. The C libraries' pow differs from
/// platform to platform, and the exact one of portable_math is too slow for every pel; this one computes with
/// tables and short series, to about 1e-13 of the power, at the cost of a few dozen operations.
class FixedPower {
  public:
    /// An exponent above 0.
    explicit FixedPower(double exponent);

    /// Of values from 0 to 1; 0 for what is not above 0, and where the power is below 2^-1000.
    double operator()(double value) const noexcept;

  private:
    /// Parts of a doubling of the argument, and of the power.
    static constexpr int kLogBits = 7;
    static constexpr int kExpBits = 6;

    struct Part {
        double reciprocal;  ///< of the middle of the part
        double middle;
        double log2;
    };

    double exponent_;
    std::array<Part, 1 << kLogBits> parts_;
    std::array<double, 1 << kExpBits> powers_;  ///< 2^(i / 64)
};

}  // namespace tq
