#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "core/replaced_image.h"
#include "geometry/homography.h"
#include "geometry/resampler.h"
#include "geometry/sized_image.h"
#include "tqimage/transform.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kSingular = -2;
constexpr std::int32_t kNoResult = -3;
constexpr std::int32_t kUnknownKernel = -4;

enum Kernel : std::int32_t { kNearest = 0, kBilinear = 1, kCubic = 2 };

/// A pel covers half a pel around its centre: so much of the border belongs to the image. NaN does not.
bool Covered(double place, std::int32_t pels) noexcept {
    return place >= -0.5 && place < pels - 0.5;
}

template <class KernelType>
void Resample(const ConstImageView& image, const Homography& toSource, Pel fill, const ImageView& out) {
    const KernelType kernel(image);
    const double lastCol = image.cols - 1;
    const double lastRow = image.rows - 1;
    for (std::int32_t row = 0; row < out.rows; ++row) {
        Pel* pels = out.Row(row);
        for (std::int32_t col = 0; col < out.cols; ++col) {
            const PlanePoint source = toSource(col, row);
            if (!Covered(source.col, image.cols) || !Covered(source.row, image.rows)) {
                pels[col] = fill;
                continue;
            }
            const double value =
                kernel(std::clamp(source.col, 0.0, lastCol), std::clamp(source.row, 0.0, lastRow));
            pels[col] = ClampToPel(TruncToInt32(std::nearbyint(value)));
        }
    }
}

/// The optical axis moves with the image, and the resolutions become those of the target at that place.
void MoveAxis(const Homography& toSource, const Homography& toResult, TqImageHeader& header) noexcept {
    const PlanePoint center = toResult(header.CenterCol, header.CenterRow);
    header.CenterCol = static_cast<float>(center.col);
    header.CenterRow = static_cast<float>(center.row);
    const double x = header.PelsPerMeterX;
    const double y = header.PelsPerMeterY;
    if (!(x > 0.0 && y > 0.0)) return;
    const Homography::Slopes slopes = toSource.SlopesAt(center.col, center.row);
    const auto metres = [&](double cols, double rows) {
        return std::sqrt(cols / x * (cols / x) + rows / y * (rows / y));
    };
    const double across = 1.0 / metres(slopes.colByCol, slopes.rowByCol);
    const double down = 1.0 / metres(slopes.colByRow, slopes.rowByRow);
    if (!(std::isfinite(across) && std::isfinite(down))) return;
    header.PelsPerMeterX = static_cast<float>(across);
    header.PelsPerMeterY = static_cast<float>(down);
}

OwnedImage Transform(const ConstImageView& image, const Homography& toSource, const Homography& toResult,
                     std::int32_t cols, std::int32_t rows, std::int32_t kernel, Pel fill) {
    OwnedImage result = MakeSized(image, cols, rows, NewPels::kUnwritten);
    MoveAxis(toSource, toResult, result.Header());
    const auto resample = kernel == kNearest    ? Resample<NearestKernel>
                          : kernel == kBilinear ? Resample<BilinearKernel>
                                                : Resample<CubicKernel>;
    resample(image, toSource, fill, result.View());
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqTransformImage(TqImage** image, const double* matrix, std::int32_t cols,
                                      std::int32_t rows, std::int32_t kernel, std::int32_t fill) {
    const ConstImageView source = LocateHeld(image);
    if (!source) return kInvalidImage;
    if (matrix == nullptr) return kSingular;
    std::array<double, 9> coefficients;
    std::copy_n(matrix, coefficients.size(), coefficients.begin());
    const Homography toSource(coefficients);
    const std::optional<Homography> toResult = toSource.Inverse();
    if (!toResult) return kSingular;
    const std::int32_t newCols = cols == 0 ? source.cols : cols;
    const std::int32_t newRows = rows == 0 ? source.rows : rows;
    if (!IsValidSide(newCols) || !IsValidSide(newRows)) return kNoResult;
    if (kernel < kNearest || kernel > kCubic) return kUnknownKernel;
    return ReplaceImage(image, kNoResult, [&] {
        return Transform(source, toSource, *toResult, newCols, newRows, kernel, ClampToPel(fill));
    });
}
