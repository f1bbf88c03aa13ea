#include <cstdint>

#include "core/image_view.h"
#include "core/rectangle.h"
#include "kernels/span_statistics.h"
#include "measure/photometric_frame.h"
#include "measure/region_shapes.h"
#include "measure/span_consumers.h"
#include "tqimage/photometry.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoScale = -3;
constexpr std::int32_t kEmptyRectangle = -4;

}  // namespace

double TQ_CALL tqCalcFluxInRegion(const TqImage* image, std::int32_t left, std::int32_t top,
                                  std::int32_t right, std::int32_t bottom, double* averageIlluminance) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const PhotometricFrame frame(*view.header);
    if (!frame.HasScale()) return kNoScale;
    const Rect rect = CutToImage({left, top, right, bottom}, view.cols, view.rows);
    if (rect.Empty()) return kEmptyRectangle;
    TotalAtLeast total(0);
    VisitRectangle(rect, OnPelsOf(view, total));
    const double lux = frame.LuxPerGrey() * total.Sum();
    *averageIlluminance = lux / static_cast<double>(total.Count());
    return lux / frame.PelsPerSquareMeter();
}

double TQ_CALL tqCalcTotalImageFlux(TqImage* image) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const PhotometricFrame frame(*view.header);
    if (!frame.HasScale()) return kNoScale;
    const auto total = static_cast<double>(kernels::SumPels(view.pels, view.Count()));
    view.header->TotalPelValue = total;
    return total * frame.LuxPerGrey() / frame.PelsPerSquareMeter();
}
