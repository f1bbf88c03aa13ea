#pragma once

#include <array>
#include <cstddef>
#include <optional>

namespace cli {

/// The figures of a region. Reports in every form, and the expectations that measurements are held against,
/// are lists of these; a new figure is one line here and one in its table.
enum class Quantity : std::size_t {
    kPels,
    kEmptyPels,
    kTotalGrey,
    kMeanGrey,
    kMinGrey,
    kMinColumn,
    kMinRow,
    kMaxGrey,
    kMaxColumn,
    kMaxRow,
    kAreaMm2,
    kMeanLux,
    kFluxLm,
    kCandela,
    kAngle1,
    kAngle2,
    kOffAxis,
    kPeakCandela,
    kPeakAngle1,
    kPeakAngle2,
    kPeakOffAxis,
    kCount
};

struct QuantityForm {
    const char* key;      ///< in JSON and CSV, unit included
    const char* title;    ///< in the table
    const char* unit;     ///< in the table
    const char* pattern;  ///< of the table's figure
    bool whole;           ///< a whole number
};

const QuantityForm& FormOf(Quantity quantity);
std::optional<Quantity> FindQuantity(const char* key);

/// A region's figures, those that the image's header allows.
class Figures {
  public:
    std::optional<double>& operator[](Quantity quantity) {
        return values_[static_cast<std::size_t>(quantity)];
    }
    const std::optional<double>& operator[](Quantity quantity) const {
        return values_[static_cast<std::size_t>(quantity)];
    }

  private:
    std::array<std::optional<double>, static_cast<std::size_t>(Quantity::kCount)> values_;
};

/// Calls visit(quantity) for each one, in the order of the reports.
template <typename Visit>
void ForEachQuantity(Visit visit) {
    for (std::size_t index = 0; index < static_cast<std::size_t>(Quantity::kCount); ++index) {
        visit(static_cast<Quantity>(index));
    }
}

}  // namespace cli
