#include "calibration/point_list.h"

#include <array>
#include <cstring>
#include <limits>
#include <optional>

namespace tq {
namespace {

constexpr std::uint32_t kFields = 3;

/// What the elements are; VT_EMPTY for what cannot be a co-ordinate. Arrays assembled by hand carry no type,
/// and their size has to do.
VARTYPE NumberType(const SAFEARRAY& list) noexcept {
    if (HoldsReferences(list)) return VT_EMPTY;
    const VARTYPE type = CarriedType(list);
    const auto is = [&](VARTYPE asked, ULONG size) {
        return list.cbElements == size && (type == asked || type == VT_EMPTY);
    };
    if (is(VT_I2, 2)) return VT_I2;
    if (is(VT_I4, 4) || is(VT_INT, 4)) return VT_I4;
    if (is(VT_R4, 4)) return VT_R4;
    return is(VT_R8, 8) ? VT_R8 : VT_EMPTY;
}

template <class Number>
float As(const unsigned char* bytes) noexcept {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    // What single precision cannot hold is not finite, and left out as such.
    const auto wide = static_cast<double>(number);
    constexpr double kLargest = std::numeric_limits<float>::max();
    if (!(wide >= -kLargest && wide <= kLargest)) return std::numeric_limits<float>::infinity();
    return static_cast<float>(wide);
}

std::optional<float> Read(SAFEARRAY* list, VARTYPE type, std::uint32_t point, LONG field) noexcept {
    alignas(double) unsigned char bytes[sizeof(double)];
    std::array<LONG, 2> index{static_cast<LONG>(point), field};
    if (SafeArrayGetElement(list, index.data(), bytes) < 0) return std::nullopt;
    if (type == VT_I2) return As<std::int16_t>(bytes);
    if (type == VT_I4) return As<std::int32_t>(bytes);
    return type == VT_R4 ? As<float>(bytes) : As<double>(bytes);
}

}  // namespace

std::int32_t CheckPointList(const SAFEARRAY* list) noexcept {
    if (list == nullptr || list->cDims != 2) return kListNotTwoDimensional;
    if (NumberType(*list) == VT_EMPTY) return kListOfAnotherType;
    return StoredCount(*list, 0) == kFields ? 0 : kListNotThreeFields;
}

std::int32_t ReadPointList(SAFEARRAY* list, std::vector<CalibrationPoint>& points) {
    const VARTYPE type = NumberType(*list);
    const std::uint32_t count = StoredCount(*list, 1);
    for (std::uint32_t i = 0; i < count; ++i) {
        // Indices are signed, so no element beyond them exists.
        if (i > static_cast<std::uint32_t>(std::numeric_limits<LONG>::max())) return kListElementUnreadable;
        const auto col = Read(list, type, i, 0);
        const auto row = Read(list, type, i, 1);
        const auto value = Read(list, type, i, 2);
        if (!col || !row || !value) return kListElementUnreadable;
        points.push_back({*col, *row, *value});
    }
    return 0;
}

}  // namespace tq
