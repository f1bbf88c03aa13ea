#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "calibration/point_list.h"
#include "calibration/sensor_frame.h"
#include "calibration/surface.h"
#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "platform/automation.h"
#include "platform/message_queue.h"
#include "tqimage/multi_point_calibration.h"

namespace tq {

float ToSurfaceValue(double value) noexcept {
    constexpr double kLargest = std::numeric_limits<float>::max();
    return std::isnan(value) ? 0.0f : static_cast<float>(std::clamp(value, -kLargest, kLargest));
}

namespace {

constexpr std::int32_t kListNotLocked = 5;
constexpr std::int32_t kListNotUnlocked = 6;
constexpr std::int32_t kNoImage = -2;

enum Mode : std::int32_t { kOneOutside = 0, kNoNegatives = 2 };

/// What pels without a value hold until they become kNoData, and below what a value counts as none. Hosts
/// rely on both: a surface that really goes below -9998 has no value there.
constexpr float kNoValue = -9999.0f;
constexpr float kLeastValue = -9998.0f;

/// The pel of the largest absolute value. It leaves the sign bit free: correction images hold signed numbers.
constexpr double kLargestCorrection = 32000.0;

/// No points, no surface: 0 everywhere.
class ZeroSurface final : public Surface {
  public:
    void Evaluate(const SurfaceTile& tile, float* values) override {
        std::fill_n(values, tile.cols * tile.rows, 0.0f);
    }
};

std::unique_ptr<Surface> MakeSurface(std::int32_t method, std::vector<CalibrationPoint> list) {
    SurfacePoints points = PrepareSurfacePoints(std::move(list));
    if (points.Count() == 0) return std::make_unique<ZeroSurface>();
    switch (method) {
        case 0:
            return MakeShepardSurface(std::move(points));
        case 2:
            return MakePolynomialThinPlateSurface(std::move(points));
        case 3:
            return MakePolynomialSurface(points);
        case 4:
            return MakeThinPlateSurface(std::move(points));
        case 5:
            return MakeTriangulatedSurface(points);
        default:
            return MakeLocalShepardSurface(std::move(points));
    }
}

/// The pels first, first + 1 ... of an axis up to `end` that lie in the valid area. Limits that are no number
/// limit nothing.
struct ValidRange {
    std::int32_t first = 0;
    std::int32_t end;

    ValidRange(float low, float high, std::int32_t count) noexcept : end(count) {
        while (first < end && static_cast<float>(first) < low)
            ++first;
        while (end > first && static_cast<float>(end - 1) > high)
            --end;
    }
    /// What lies in the pels from..from + kTileSide - 1.
    ValidRange Cut(std::int32_t from) const noexcept {
        ValidRange cut = *this;
        cut.first = std::max(first, from);
        cut.end = std::min(end, from + kTileSide);
        return cut;
    }
    std::int32_t Count() const noexcept { return std::max(end - first, 0); }
};

/// Every second binary digit.
std::int32_t EvenDigits(std::uint32_t number) noexcept {
    std::uint32_t digits = 0;
    for (int i = 0; i < 16; ++i)
        digits |= (number >> 2 * i & 1) << i;
    return static_cast<std::int32_t>(digits);
}

/// The values of a whole image, row after row.
class ValueField {
  public:
    ValueField(const TqMultiPointSettings& settings, Surface& surface)
        : cols_(settings.Columns),
          rows_(settings.Rows),
          mode_(settings.Mode),
          values_(static_cast<std::size_t>(cols_) * static_cast<std::size_t>(rows_),
                  mode_ == kOneOutside ? 1.0f : kNoValue) {
        const ValidRange cols(settings.MinColumn, settings.MaxColumn, cols_);
        const ValidRange rows(settings.MinRow, settings.MaxRow, rows_);
        Fill(surface, cols, rows);
        // A surface may be all but 0 where it is asked for, and its error must be small beside that as well.
        // What is asked of it then is so much less that this ends soon, at 0 at the latest.
        while (surface.Tolerance() > HalfAStep()) {
            surface.SetTolerance(HalfAStep() / 256.0);
            Fill(surface, cols, rows);
        }
    }

    float Largest() const noexcept { return largest_; }

    void StorePels(Pel* pels) const noexcept {
        if (largest_ == 0.0f) {
            std::fill_n(pels, values_.size(), Pel{0});
            return;
        }
        std::transform(values_.begin(), values_.end(), pels, [&](float value) {
            if (value < kLeastValue) return kNoData;
            return WrapToPel(TruncToInt32(value * kLargestCorrection / static_cast<double>(largest_)));
        });
    }

  private:
    /// Of the pels that the values become.
    double HalfAStep() const noexcept { return largest_ / kLargestCorrection / 2.0; }

    /// Square after square, each one with its quarters one after the other: surfaces keep what neighbouring
    /// tiles share.
    void Fill(Surface& surface, const ValidRange& cols, const ValidRange& rows) {
        constexpr std::uint32_t kSide = 128;
        static_assert(kSide * kTileSide >= kMaxSide);
        for (std::uint32_t i = 0; i < kSide * kSide; ++i) {
            const ValidRange tileCols = cols.Cut(EvenDigits(i) * kTileSide);
            const ValidRange tileRows = rows.Cut(EvenDigits(i >> 1) * kTileSide);
            const SurfaceTile tile{tileCols.first, tileRows.first, tileCols.Count(), tileRows.Count()};
            if (tile.cols == 0 || tile.rows == 0) continue;
            surface.Evaluate(tile, tile_);
            Take(tile);
            PumpMessages();
        }
        largest_ = 0.0f;
        for (const float value : values_) {
            if (value > kLeastValue) largest_ = std::max(largest_, std::abs(value));
        }
    }

    void Take(const SurfaceTile& tile) noexcept {
        for (std::int32_t row = 0; row < tile.rows; ++row) {
            const float* from = tile_ + row * tile.cols;
            const auto to = static_cast<std::ptrdiff_t>(tile.row + row) * cols_ + tile.col;
            std::transform(from, from + tile.cols, values_.begin() + to,
                           [&](float value) { return mode_ == kNoNegatives && value < 0.0f ? 0.0f : value; });
        }
    }

    std::int32_t cols_;
    std::int32_t rows_;
    std::int32_t mode_;
    std::vector<float> values_;
    float largest_ = 0.0f;
    float tile_[kTileSide * kTileSide];
};

OwnedImage CorrectionImage(const TqMultiPointSettings& settings, const ValueField& field) {
    OwnedImage image(settings.Columns, settings.Rows, NewPels::kUnwritten);
    TqImageHeader& header = image.Header();
    header.PelsPerMeterX = header.PelsPerMeterY = 1.0f;
    header.CenterCol = static_cast<float>(settings.Columns - 1) * 0.5f;
    header.CenterRow = static_cast<float>(settings.Rows - 1) * 0.5f;
    header.LuxPerGrey = static_cast<float>(field.Largest() / kLargestCorrection);
    header.MaxPelValue = static_cast<float>(kLargestCorrection);
    field.StorePels(image.View().pels);
    return image;
}

std::int32_t BuildImage(TqImage** image, const TqMultiPointSettings& settings, SAFEARRAY* list) {
    std::vector<CalibrationPoint> points;
    if (const std::int32_t status = ReadPointList(list, points); status != 0) return status;
    if (!IsValidSide(settings.Columns) || !IsValidSide(settings.Rows)) return kNoImage;
    const std::unique_ptr<Surface> surface = MakeSurface(settings.Method, std::move(points));
    const ValueField field(settings, *surface);
    // Before the new one: memory then has to hold one image less.
    FreeHostBlock(image);
    CommitImage(image, CorrectionImage(settings, field));
    return 0;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqBuildMultiPointImage(TqImage** image, const TqMultiPointSettings* settings,
                                            SAFEARRAY** points) {
    if (image == nullptr || settings == nullptr) return kNoImage;
    SAFEARRAY* const list = points == nullptr ? nullptr : *points;
    if (const std::int32_t status = CheckPointList(list); status != 0) return status;
    SafeArrayLockGuard lock(list);
    if (!lock.Locked()) return kListNotLocked;
    // The host may change its settings while its messages are dispatched.
    const TqMultiPointSettings asked = *settings;
    const std::int32_t status = Guarded(kNoImage, [&] { return BuildImage(image, asked, list); });
    if (status != 0) return status;
    return lock.Unlock() ? 0 : kListNotUnlocked;
}
