#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <optional>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "core/portable_math.h"
#include "geometry/camera_matrix.h"
#include "geometry/distortion_map.h"
#include "tqimage/keystone.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kBadShape = -2;
constexpr std::int32_t kDegenerate = -3;
constexpr std::int32_t kNoMemory = -4;

constexpr double kHalfPi = 0.5 * std::numbers::pi;

/// A part of a cylinder of radius 1, in units in which its chord and height go from -1 to 1 and its bulge
/// from 0 to 1: however flat the screen is, the equations of the camera stay balanced.
class CylinderScreen {
  public:
    CylinderScreen(double halfAngle, double height)
        : halfChord_(portable::Sin(halfAngle)),
          chordDistance_(portable::Cos(halfAngle)),
          bulge_(1.0 - chordDistance_),
          halfHeight_(0.5 * height) {}

    using Coordinates = std::array<double, 3>;
    Coordinates PointAt(double sine, double cosine, double up) const noexcept {
        return {sine / halfChord_, up / halfHeight_, (cosine - chordDistance_) / bulge_};
    }
    /// The direction in which the point moves with the angle.
    Coordinates Tangent(double sine, double cosine) const noexcept {
        return {cosine / halfChord_, 0.0, -sine / bulge_};
    }

  private:
    double halfChord_;
    double chordDistance_;
    double bulge_;
    double halfHeight_;
};

using Marks = std::array<Sighting, 6>;

Marks ReadMarks(const double* points) noexcept {
    // Top left, middle and right, bottom right, middle and left.
    Marks marks{{{{-1, 1, 0}, {}},
                 {{0, 1, 1}, {}},
                 {{1, 1, 0}, {}},
                 {{1, -1, 0}, {}},
                 {{0, -1, 1}, {}},
                 {{-1, -1, 0}, {}}}};
    for (std::size_t i = 0; i < marks.size(); ++i)
        marks[i].seen = {points[2 * i], points[2 * i + 1]};
    return marks;
}

PlanePoint Place(const CameraMatrix& camera, const std::array<double, 3>& point) noexcept {
    const double weight = CameraRow(camera, 2, point, 1.0);
    return {CameraRow(camera, 0, point, 1.0) / weight, CameraRow(camera, 1, point, 1.0) / weight};
}

double RootMeanSquare(const CameraMatrix& camera, const Marks& marks) noexcept {
    double sum = 0.0;
    for (const Sighting& mark : marks) {
        const double distance = Distance(Place(camera, mark.point), mark.seen);
        sum += distance * distance;
    }
    return std::sqrt(sum / static_cast<double>(marks.size()));
}

/// The screen unrolled in the result, with equal scales along and across it.
struct Unrolled {
    PlanePoint middle;
    double radians;  ///< of a pel
};

/// Positive where the camera sees the side of the screen that it sees in the middle: the surface folds where
/// the areas of its picture change their sign, which depends on the angle alone.
double Facing(const CameraMatrix& camera, const CylinderScreen& screen, double sine, double cosine) noexcept {
    std::array<std::array<double, 3>, 3> m{};
    for (std::size_t row = 0; row < 3; ++row) {
        m[row] = {CameraRow(camera, row, screen.PointAt(sine, cosine, 0.0), 1.0),
                  CameraRow(camera, row, screen.Tangent(sine, cosine), 0.0), camera[4 * row + 1]};
    }
    return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
           m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
           m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

OwnedMap MapOf(const CameraMatrix& camera, const CylinderScreen& screen, const Unrolled& unrolled,
               std::int32_t cols, std::int32_t rows) {
    OwnedMap map(cols, rows);
    const MapView view = map.View();
    const double front = Facing(camera, screen, 0.0, 1.0);
    for (std::int32_t col = 0; col < cols; ++col) {
        const double angle = (col - unrolled.middle.col) * unrolled.radians;
        const double sine = portable::Sin(angle);
        const double cosine = portable::Cos(angle);
        const bool seen =
            std::abs(angle) <= std::numbers::pi && Facing(camera, screen, sine, cosine) * front > 0.0;
        for (std::int32_t row = 0; row < rows; ++row) {
            const auto point = screen.PointAt(sine, cosine, (unrolled.middle.row - row) * unrolled.radians);
            const bool before = seen && CameraRow(camera, 2, point, 1.0) > 0.0;
            const PlanePoint source = Place(camera, point);
            view.Row(row)[col] = before ? EntryInside(source.col, source.row, cols, rows) : kNoSource;
        }
    }
    return map;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCalcCylinderKeyStone(TqDistortionMap** map, const TqImage* image, const double* points,
                                            double halfAngle, double heightOverRadius, double* rms) {
    const ConstImageView view = LocateImage(image);
    if (!view || map == nullptr || points == nullptr) return kInvalidImage;
    if (!(halfAngle > 0.0 && halfAngle < kHalfPi) || !(heightOverRadius > 0.0)) return kBadShape;
    return Guarded(kNoMemory, [&] {
        const Marks marks = ReadMarks(points);
        const std::optional<CameraMatrix> camera = Resect(marks);
        if (!camera) return kDegenerate;
        const double length =
            0.5 * (Distance(marks[0].seen, marks[1].seen) + Distance(marks[1].seen, marks[2].seen) +
                   Distance(marks[3].seen, marks[4].seen) + Distance(marks[4].seen, marks[5].seen));
        const CylinderScreen screen(halfAngle, heightOverRadius);
        const Unrolled unrolled{Place(*camera, screen.PointAt(0.0, 1.0, 0.0)), 2.0 * halfAngle / length};
        const double error = RootMeanSquare(*camera, marks);
        // A screen so flat that its bulge is lost in the roundings has no middle.
        const double finite = error + unrolled.radians + unrolled.middle.col + unrolled.middle.row;
        if (!std::isfinite(finite)) return kDegenerate;
        CommitMap(map, MapOf(*camera, screen, unrolled, view.cols, view.rows));
        StoreIfAsked(rms, error);
        return 0;
    });
}
