#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "core/replaced_image.h"
#include "geometry/bilinear.h"
#include "geometry/distortion_map.h"
#include "geometry/projection_model.h"
#include "geometry/sized_image.h"
#include "tqimage/projection.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNotPositive = -2;
constexpr std::int32_t kNoResult = -3;
constexpr std::int32_t kNothingVisible = -4;

bool IsProjection(const TqProjection& p) noexcept {
    if (!(p.PelsPerMeterX > 0.0 && p.PelsPerMeterY > 0.0 && p.FocalLength > 0.0)) return false;
    const std::optional<Surface> surface = SurfaceNamed(p.Surface);
    return surface && (*surface == Surface::kPlane || p.Radius > 0.0);
}

/// The place that a map gives for a place between its entries. Nothing where one of the four is missing.
std::optional<PlanePoint> Distort(const ConstMapView& map, const PlanePoint& place) noexcept {
    if (!(place.col >= 0.0 && place.row >= 0.0 && place.col <= map.cols - 1 && place.row <= map.rows - 1)) {
        return std::nullopt;
    }
    const std::int32_t col = TruncToInt32(place.col);
    const std::int32_t row = TruncToInt32(place.row);
    const double fx = place.col - col;
    const double fy = place.row - row;
    const MapEntry* near = map.Row(row) + col;
    const std::int32_t next = col + 1 < map.cols ? 1 : 0;
    const MapEntry* far = map.Row(std::min(row + 1, map.rows - 1)) + col;
    if (!near[0].HasSource() || !near[next].HasSource() || !far[0].HasSource() || !far[next].HasSource()) {
        return std::nullopt;
    }
    const auto between = [&](float MapEntry::*axis) {
        const double upper = near[0].*axis * (1.0 - fx) + near[next].*axis * fx;
        const double lower = far[0].*axis * (1.0 - fx) + far[next].*axis * fx;
        return upper * (1.0 - fy) + lower * fy;
    };
    return PlanePoint{between(&MapEntry::col), between(&MapEntry::row)};
}

/// Where a pel of the result is seen in the image; nothing when it is not.
class View {
  public:
    View(const TqProjection& projection, const ConstMapView& map, std::int32_t cols, std::int32_t rows)
        : camera_(projection),
          surface_(projection, *SurfaceNamed(projection.Surface), cols, rows),
          map_(map) {}

    std::optional<PlanePoint> SourceOf(std::int32_t col, std::int32_t row) const noexcept {
        const std::optional<TargetSurface::Spot> spot = surface_.At(col, row);
        if (!spot) return std::nullopt;
        const Vector& eye = camera_.Position();
        const Vector& point = spot->point;
        const Vector& normal = spot->normal;
        const double facing =
            normal.x * (eye.x - point.x) + normal.y * (eye.y - point.y) + normal.z * (eye.z - point.z);
        if (!(facing > 0.0)) return std::nullopt;
        const std::optional<PlanePoint> place = camera_.Project(point);
        return place && map_ ? Distort(map_, *place) : place;
    }

  private:
    PinholeCamera camera_;
    TargetSurface surface_;
    ConstMapView map_;
};

/// False when no pel is visible.
bool Fill(const ConstImageView& image, const View& view, const ImageView& out) noexcept {
    const BilinearSampler sampler(image);
    bool anything = false;
    for (std::int32_t row = 0; row < out.rows; ++row) {
        Pel* pels = out.Row(row);
        for (std::int32_t col = 0; col < out.cols; ++col) {
            pels[col] = 0;
            const std::optional<PlanePoint> source = view.SourceOf(col, row);
            if (!source || !(source->col >= 0.0 && source->row >= 0.0 && source->col <= image.cols - 1 &&
                             source->row <= image.rows - 1)) {
                continue;
            }
            // 0 is kept for what the camera does not see.
            pels[col] =
                std::max(ClampToPel(TruncToInt32(sampler.AnyPlace(source->col, source->row) + 0.5)), Pel{1});
            anything = true;
        }
    }
    return anything;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqProjectImage(TqImage** image, const TqProjection* projection,
                                    const TqDistortionMap* map) {
    const ConstImageView source = LocateHeld(image);
    if (!source) return kInvalidImage;
    if (projection == nullptr || !IsProjection(*projection)) return kNotPositive;
    const std::int32_t cols = TruncToInt32(projection->Cols);
    const std::int32_t rows = TruncToInt32(projection->Rows);
    return Guarded(kNoResult, [&] {
        OwnedImage result = MakeSized(source, cols, rows, NewPels::kUnwritten);
        if (!Fill(source, View(*projection, LocateMap(map), cols, rows), result.View())) {
            return kNothingVisible;
        }
        TqImageHeader& header = result.Header();
        header.PelsPerMeterX = static_cast<float>(projection->PelsPerMeterX);
        header.PelsPerMeterY = static_cast<float>(projection->PelsPerMeterY);
        header.CenterCol = static_cast<float>(projection->CenterCol);
        header.CenterRow = static_cast<float>(projection->CenterRow);
        header.BinCols = header.BinRows = 1;
        CommitImage(image, std::move(result));
        return 0;
    });
}
