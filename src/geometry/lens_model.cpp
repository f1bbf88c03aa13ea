#include "geometry/lens_model.h"

#include <algorithm>
#include <cmath>

namespace tq {
namespace {

/// The slope 1 + 3 k1 q + 5 k2 q^2 + 7 k3 q^3 of the radius r (1 + k1 q + k2 q^2 + k3 q^3), q = r^2.
double RadiusSlope(const LensModel& lens, double q) noexcept {
    return 1.0 + q * (3.0 * lens[LensModel::kK1] +
                      q * (5.0 * lens[LensModel::kK2] + q * 7.0 * lens[LensModel::kK3]));
}

bool GrowsTo(const LensModel& lens, double last) noexcept {
    if (!(RadiusSlope(lens, last) > 0.0)) return false;
    // Between the ends the slope can only be lowest where its own derivative, a + b q + c q^2, vanishes.
    const double a = 3.0 * lens[LensModel::kK1];
    const double b = 10.0 * lens[LensModel::kK2];
    const double c = 21.0 * lens[LensModel::kK3];
    const auto growsAt = [&](double q) { return !(q > 0.0 && q < last) || RadiusSlope(lens, q) > 0.0; };
    if (c == 0.0) return b == 0.0 || growsAt(-a / b);
    const double discriminant = b * b - 4.0 * a * c;
    if (discriminant < 0.0) return true;
    const double root = std::sqrt(discriminant);
    return growsAt((-b - root) / (2.0 * c)) && growsAt((-b + root) / (2.0 * c));
}

}  // namespace

bool LensModel::IsUsable(std::int32_t cols, std::int32_t rows) const noexcept {
    if (!std::all_of(fields.begin(), fields.end(), [](double field) { return std::isfinite(field); })) {
        return false;
    }
    const double radius = (*this)[kRadius];
    if (!(radius > 0.0) || !((*this)[kScale] > 0.0)) return false;
    const auto farthest = [&](double center, std::int32_t pels) {
        return std::max(std::abs(center), std::abs(pels - 1 - center)) / radius;
    };
    const double x = farthest((*this)[kCenterCol], cols);
    const double y = farthest((*this)[kCenterRow], rows);
    return GrowsTo(*this, x * x + y * y);
}

PlanePoint LensModel::SourceOf(std::int32_t col, std::int32_t row) const noexcept {
    const auto& lens = *this;
    const double x = (col - lens[kCenterCol]) / lens[kRadius];
    const double y = (row - lens[kCenterRow]) / lens[kRadius];
    const double q = x * x + y * y;
    const double radial = q * (lens[kK1] + q * (lens[kK2] + q * lens[kK3]));
    // As what is added to the place, not to the centre: without distortion the place itself must come out, to
    // the last bit, or the first column and row would fall off the sensor.
    const double stretch = (lens[kScale] - 1.0) + lens[kScale] * radial;
    const double tangentialX = 2.0 * lens[kP1] * x * y + lens[kP2] * (q + 2.0 * x * x);
    const double tangentialY = 2.0 * lens[kP2] * x * y + lens[kP1] * (q + 2.0 * y * y);
    return {col + lens[kRadius] * (x * stretch + lens[kScale] * tangentialX),
            row + lens[kRadius] * (y * stretch + lens[kScale] * tangentialY)};
}

}  // namespace tq
