#include "core/image_block.h"
#include "core/image_view.h"
#include "core/rectangle.h"
#include "core/replaced_image.h"
#include "kernels/grey_arithmetic.h"
#include "kernels/pel_arithmetic.h"
#include "measure/image_values.h"
#include "process/pel_runs.h"
#include "tqimage/point_operations.h"

namespace tq {
namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

/// Replaces the host's image by one that holds the rectangle's pels after produce(source, out, count), and
/// zeros outside it: what was not corrected is not shown as if it were.
template <class Produce>
std::int32_t ReplaceByRectangle(TqImage** image, const ConstImageView& source, const Rect& rect,
                                Produce&& produce) {
    return ReplaceImage(image, kNoMemory, [&] {
        OwnedImage result(source, NewPels::kZero);
        const ImageView out = result.View();
        const auto written = ProduceMeasured(out, rect, [&](std::size_t first, std::size_t count) {
            produce(source.pels + first, out.pels + first, count);
        });
        out.header->MaxPelValue = written.max;
        return result;
    });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqScaleImage2(TqImage* image, float factor) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    kernels::ScaleGreys(view.pels, factor, view.pels, view.Count());
    return kOk;
}

std::int32_t TQ_CALL tqSetMaxGrayValue(TqImage* image, std::int32_t newMaximum) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const double wanted = ClampToPel(newMaximum);
    // Without a neighbourhood the stored maximum stands.
    StoreLargestNeighbourhoodMean(view);
    const double present = view.header->MaxPelValue;
    if (present != 0.0) kernels::ScaleToMaximum(view.pels, wanted, present, view.pels, view.Count());
    view.header->MaxPelValue = static_cast<float>(wanted);
    return kOk;
}

std::int32_t TQ_CALL tqBrightnessCorrectionInRegion(TqImage** image, std::int32_t delta, std::int32_t left,
                                                    std::int32_t top, std::int32_t right,
                                                    std::int32_t bottom) {
    const ConstImageView source = LocateHeld(image);
    if (!source) return kInvalidImage;
    const Rect rect = ClampRegion({left, top, right, bottom}, source.cols, source.rows);
    // Without saturation: hosts undo a correction by its negative.
    return ReplaceByRectangle(image, source, rect, [&](const Pel* pels, Pel* out, std::size_t count) {
        kernels::AddWrapped(pels, WrapToPel(delta), out, count);
    });
}

std::int32_t TQ_CALL tqContrastCorrectionInRegion(TqImage** image, float factor, std::int32_t left,
                                                  std::int32_t top, std::int32_t right, std::int32_t bottom) {
    const ConstImageView source = LocateHeld(image);
    if (!source) return kInvalidImage;
    const Rect rect = ClampRegion({left, top, right, bottom}, source.cols, source.rows);
    const double mean = static_cast<double>(SumPels(source, rect)) / static_cast<double>(rect.Area());
    // Results wrap as those of the brightness correction do.
    return ReplaceByRectangle(image, source, rect, [&](const Pel* pels, Pel* out, std::size_t count) {
        kernels::StretchGreys(pels, mean, factor, out, count);
    });
}
