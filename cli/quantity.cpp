#include "quantity.h"

#include <cstring>
#include <iterator>

namespace cli {
namespace {

constexpr QuantityForm kForms[] = {
    {"pels", "pels", "", "%.0f", true},
    {"emptyPels", "empty", "", "%.0f", true},
    {"totalGrey", "total", "grey", "%.0f", true},
    {"meanGrey", "mean", "grey", "%.3f", false},
    {"minGrey", "min", "grey", "%.0f", true},
    {"minColumn", "col", "", "%.0f", true},
    {"minRow", "row", "", "%.0f", true},
    {"maxGrey", "max", "grey", "%.0f", true},
    {"maxColumn", "col", "", "%.0f", true},
    {"maxRow", "row", "", "%.0f", true},
    {"areaMm2", "area", "mm2", "%.2f", false},
    {"meanLux", "mean", "lx", "%.6g", false},
    {"fluxLm", "flux", "lm", "%.6g", false},
    {"candela", "average", "cd", "%.6g", false},
    {"angle1Deg", "angle 1", "deg", "%.3f", false},
    {"angle2Deg", "angle 2", "deg", "%.3f", false},
    {"offAxisDeg", "off axis", "deg", "%.3f", false},
    {"peakCandela", "brightest", "cd", "%.6g", false},
    {"peakAngle1Deg", "angle 1", "deg", "%.3f", false},
    {"peakAngle2Deg", "angle 2", "deg", "%.3f", false},
    {"peakOffAxisDeg", "off axis", "deg", "%.3f", false},
};
static_assert(std::size(kForms) == static_cast<std::size_t>(Quantity::kCount));

}  // namespace

const QuantityForm& FormOf(Quantity quantity) {
    return kForms[static_cast<std::size_t>(quantity)];
}

std::optional<Quantity> FindQuantity(const char* key) {
    for (std::size_t index = 0; index < std::size(kForms); ++index) {
        if (std::strcmp(kForms[index].key, key) == 0) return static_cast<Quantity>(index);
    }
    return std::nullopt;
}

}  // namespace cli
