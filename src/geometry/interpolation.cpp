#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/image_view.h"
#include "core/numerics.h"
#include "geometry/bilinear.h"
#include "kernels/bilinear.h"
#include "tqimage/resampling.h"

using namespace tq;

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kBadColumn = -3;
constexpr std::int32_t kBadRow = -4;

/// False also for a place that is not a number.
bool LiesOnAxis(double place, std::int32_t pels) noexcept {
    return place >= 0.0 && place <= pels - 1;
}

/// The index nearest to a place of any magnitude; 0 for what is not a number.
std::int32_t NearestIndex(double whole, std::int32_t pels) noexcept {
    return TruncToInt32(std::min(std::max(0.0, whole), static_cast<double>(pels - 1)));
}

}  // namespace

std::int32_t TQ_CALL tqInterpolateImage(const TqImage* image, double col, double row, double* value) {
    if (value == nullptr) return kInvalidImage;
    *value = 0.0;
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    if (!LiesOnAxis(col, view.cols)) return kBadColumn;
    if (!LiesOnAxis(row, view.rows)) return kBadRow;
    *value = InterpolatePel(view, col, row);
    return kOk;
}

std::int32_t TQ_CALL tqInterpolateImage2(const TqImage* image, double col, double row, double* value) {
    if (value == nullptr) return kInvalidImage;
    *value = 0.0;
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const double left = std::floor(col);
    const double top = std::floor(row);
    const std::int32_t leftCol = NearestIndex(left, view.cols);
    const std::int32_t rightCol = NearestIndex(left + 1.0, view.cols);
    const Pel* near = view.Row(NearestIndex(top, view.rows)) + leftCol;
    const Pel* far = view.Row(NearestIndex(top + 1.0, view.rows)) + leftCol;
    *value = kernels::Blend(near, far, rightCol - leftCol, col - left, row - top);
    return kOk;
}
