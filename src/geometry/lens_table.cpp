#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "geometry/distortion_map.h"
#include "geometry/lens_model.h"
#include "platform/automation.h"
#include "tqimage/lens_model.h"

namespace tq {
namespace {

constexpr std::int32_t kNotTwoDimensional = 1;
constexpr std::int32_t kNotDoubles = 2;
constexpr std::int32_t kNotNineFields = 3;
constexpr std::int32_t kOtherModelCount = 4;
constexpr std::int32_t kNotLocked = 5;
constexpr std::int32_t kNotUnlocked = 6;
constexpr std::int32_t kBadSize = -1;
constexpr std::int32_t kNoMemory = -2;
constexpr std::int32_t kUnusableModel = -3;

std::int32_t CheckTable(const SAFEARRAY* table, const TqLensSetting& setting) noexcept {
    if (table == nullptr || table->cDims != 2) return kNotTwoDimensional;
    if (!HasDoubleElements(table)) return kNotDoubles;
    if (StoredCount(*table, 0) != LensModel::kFields) return kNotNineFields;
    if (setting.CountA < 0 || setting.CountB < 0) return kOtherModelCount;
    const std::int64_t models = 1 + static_cast<std::int64_t>(setting.CountA) * setting.CountB;
    return StoredCount(*table, 1) == models ? 0 : kOtherModelCount;
}

/// A position between two calibrated ones.
struct RingPlace {
    std::int32_t below;
    std::int32_t above;
    double fraction;

    RingPlace(float position, std::int32_t count) noexcept {
        // In double: a float cannot hold every count.
        const double place = std::min(static_cast<double>(position), count - 1.0);
        below = TruncToInt32(place);
        above = std::min(below + 1, count - 1);
        fraction = place - below;
    }
};

std::optional<LensModel> ReadModel(SAFEARRAY* table, std::int64_t model) noexcept {
    if (model > std::numeric_limits<LONG>::max()) return std::nullopt;
    LensModel lens;
    for (std::size_t field = 0; field < lens.fields.size(); ++field) {
        std::array<LONG, 2> index{static_cast<LONG>(model), static_cast<LONG>(field)};
        if (SafeArrayGetElement(table, index.data(), &lens.fields[field]) < 0) return std::nullopt;
    }
    return lens;
}

LensModel Between(const LensModel& a, const LensModel& b, double fraction) noexcept {
    LensModel lens;
    for (std::size_t field = 0; field < lens.fields.size(); ++field)
        lens.fields[field] = a.fields[field] + (b.fields[field] - a.fields[field]) * fraction;
    return lens;
}

std::optional<LensModel> PresentModel(SAFEARRAY* table, const TqLensSetting& setting) noexcept {
    const bool calibrated =
        setting.A >= 0.0f && setting.B >= 0.0f && setting.CountA > 0 && setting.CountB > 0;
    if (!calibrated) return ReadModel(table, 0);
    const RingPlace a(setting.A, setting.CountA);
    const RingPlace b(setting.B, setting.CountB);
    const auto between = [&](std::int32_t ringA) -> std::optional<LensModel> {
        const std::int64_t first = 1 + static_cast<std::int64_t>(ringA) * setting.CountB;
        const auto below = ReadModel(table, first + b.below);
        const auto above = ReadModel(table, first + b.above);
        if (!below || !above) return std::nullopt;
        return Between(*below, *above, b.fraction);
    };
    const auto below = between(a.below);
    const auto above = between(a.above);
    if (!below || !above) return std::nullopt;
    return Between(*below, *above, a.fraction);
}

OwnedMap MapOf(const LensModel& lens, std::int32_t cols, std::int32_t rows) {
    OwnedMap map(cols, rows);
    const MapView view = map.View();
    view.head->CenterCol = static_cast<float>(lens[LensModel::kCenterCol]);
    view.head->CenterRow = static_cast<float>(lens[LensModel::kCenterRow]);
    for (std::int32_t row = 0; row < rows; ++row) {
        MapEntry* entries = view.Row(row);
        for (std::int32_t col = 0; col < cols; ++col) {
            const PlanePoint source = lens.SourceOf(col, row);
            entries[col] = EntryInside(source.col, source.row, cols, rows);
        }
    }
    return map;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqBuildLensDistortionImage(TqDistortionMap** map, const TqLensSetting* setting,
                                                SAFEARRAY** table) {
    if (map == nullptr || setting == nullptr) return kBadSize;
    SAFEARRAY* const models = table == nullptr ? nullptr : *table;
    if (const std::int32_t status = CheckTable(models, *setting); status != 0) return status;
    SafeArrayLockGuard lock(models);
    if (!lock.Locked()) return kNotLocked;
    const std::optional<LensModel> lens = PresentModel(models, *setting);
    if (!lens) return kOtherModelCount;
    if (!lock.Unlock()) return kNotUnlocked;

    if (!IsValidSide(setting->Cols) || !IsValidSide(setting->Rows)) return kBadSize;
    if (!lens->IsUsable(setting->Cols, setting->Rows)) return kUnusableModel;
    return Guarded(kNoMemory, [&] {
        CommitMap(map, MapOf(*lens, setting->Cols, setting->Rows));
        return 0;
    });
}
