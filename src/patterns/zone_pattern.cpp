#include <algorithm>
#include <cstdint>

#include "core/numerics.h"
#include "patterns/pattern_image.h"
#include "tqimage/test_patterns.h"

using namespace tq;

namespace {

/// Square of a pel's distance from the middle of an axis, in half pels.
std::uint64_t SquaredHalfPels(std::int32_t pel, std::int32_t pels) noexcept {
    const std::int64_t away = 2 * std::int64_t{pel} - (std::int64_t{pels} - 1);
    return static_cast<std::uint64_t>(away * away);
}

/// A zone plate in whole numbers: the rings have equal areas, so the square of the distance divided by that
/// of the first radius counts them.
class ZonePlate {
  public:
    ZonePlate(std::int32_t firstRadius, std::int32_t zones, bool centreWhite) noexcept
        : centreWhite_(centreWhite) {
        const auto radius = static_cast<std::uint64_t>(std::max(firstRadius, 1));
        // Four times the square, in half pels: below 2^64 for every radius.
        perZone_ = 4 * radius * radius;
        // Ring k is firstRadius / (2 sqrt(k)) wide, which is one pel at k = firstRadius^2 / 4: finer rings
        // could not be told apart.
        zones_ = zones > 0 ? static_cast<std::uint64_t>(zones) : radius * radius / 4;
    }

    Pel At(std::uint64_t squaredHalfPels) const noexcept {
        const std::uint64_t zone = squaredHalfPels / perZone_;
        return zone < zones_ && (zone % 2 == 0) == centreWhite_ ? static_cast<Pel>(kLargestPel) : Pel{0};
    }

  private:
    std::uint64_t perZone_;
    std::uint64_t zones_;
    bool centreWhite_;
};

}  // namespace

std::int32_t TQ_CALL tqCreateZonePattern(TqImage** image, std::int32_t cols, std::int32_t rows,
                                         std::int32_t firstRadius, std::int32_t zones,
                                         std::int32_t centreWhite) {
    return CreatePattern(image, cols, rows, NewPels::kUnwritten, [=](const ImageView& view) {
        const ZonePlate plate(firstRadius, zones, centreWhite != 0);
        // The plate is symmetric both ways: a quarter of the divisions will do.
        for (std::int32_t row = 0; row <= (rows - 1) / 2; ++row) {
            Pel* const pels = view.Row(row);
            const std::uint64_t down = SquaredHalfPels(row, rows);
            for (std::int32_t col = 0; col <= (cols - 1) / 2; ++col)
                pels[col] = pels[cols - 1 - col] = plate.At(SquaredHalfPels(col, cols) + down);
            const std::int32_t mirrored = rows - 1 - row;
            if (mirrored != row) std::copy_n(pels, cols, view.Row(mirrored));
        }
    });
}
