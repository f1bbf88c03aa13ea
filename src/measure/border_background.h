#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "measure/border_strips.h"

namespace tq {

/// Spilled light inside the active area and around it, inferred from the strips.
class BorderBackground {
  public:
    virtual ~BorderBackground() = default;
    /// The background of the columns 0..count - 1 of a row.
    virtual void FillRow(std::int32_t row, std::int32_t count, double* out) const = 0;
};

class UniformBackground : public BorderBackground {
  public:
    explicit UniformBackground(double level) : level_(level) {}
    void FillRow(std::int32_t row, std::int32_t count, double* out) const override;

  private:
    double level_;
};

/// mean + slope of the column * (col - meanCol) + slope of the row * (row - meanRow)
class PlaneBackground : public BorderBackground {
  public:
    /// The plane of least squared distance to the measured pels; null when they lie on one line.
    static std::unique_ptr<PlaneBackground> Fit(const BorderStrips& strips, const BorderLight& light);
    void FillRow(std::int32_t row, std::int32_t count, double* out) const override;

  private:
    double mean_ = 0.0;
    double meanCol_ = 0.0;
    double meanRow_ = 0.0;
    double colSlope_ = 0.0;
    double rowSlope_ = 0.0;
};

/// The light along one strip: its mean across the strip for each place along it.
class BorderProfile {
  public:
    /// Empty when no pel of the strip counts. Places without one are bridged.
    static BorderProfile Along(const BorderStrips& strips, Side side);

    bool Empty() const noexcept { return values_.empty(); }
    /// The position of the strip's middle across it.
    double Across() const noexcept { return across_; }
    /// At a place along the strip. Beyond an end it goes on with the slope of the places before it, as many
    /// as lie within twice the way to the corner: light bends, and the slope of the whole strip would miss
    /// it.
    double At(double place) const noexcept;

  private:
    double SlopeOf(std::size_t first, std::size_t count) const;

    std::vector<double> values_;
    std::int32_t first_ = 0;
    double across_ = 0.0;
    double firstSlope_ = 0.0;
    double lastSlope_ = 0.0;
};

/// The bilinearly blended patch between the four profiles.
class CoonsBackground : public BorderBackground {
  public:
    /// Null when a profile is empty.
    static std::unique_ptr<CoonsBackground> Fit(const BorderStrips& strips, std::int32_t cols);
    void FillRow(std::int32_t row, std::int32_t count, double* out) const override;

  private:
    /// What a column contributes to every row.
    struct Column {
        double share;  ///< 0 at the left profile, 1 at the right one
        double top;
        double bottom;
    };
    using Profiles = std::array<BorderProfile, 4>;

    CoonsBackground(Profiles profiles, std::int32_t cols);
    const BorderProfile& Profile(Side side) const { return profiles_[static_cast<std::size_t>(side)]; }

    Profiles profiles_;
    double topLeft_, topRight_, bottomLeft_, bottomRight_;
    std::vector<Column> columns_;
};

}  // namespace tq
