#include <cstdint>

#include "core/image_view.h"
#include "core/saturated_pel.h"
#include "core/window.h"
#include "kernels/span_statistics.h"
#include "process/healthy_window.h"
#include "tqimage/defects.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;

/// Threshold 0..65534: beyond it either no pel is hot or none is healthy.
void ReplaceHot(const ImageView& image, Pel threshold, double factor, std::int32_t width,
                std::int32_t height) {
    const auto coldest = static_cast<Pel>(threshold + 1);
    HealthyWindow window(image, width, height, kernels::CountAtLeast(image.pels, image.Count(), coldest),
                         [threshold](Pel pel, std::size_t) { return pel <= threshold; });
    for (std::int32_t row = 0; row < image.rows; ++row) {
        Pel* const pels = image.Row(row);
        if (kernels::CountAtLeast(pels, static_cast<std::size_t>(image.cols), coldest) == 0) continue;
        window.MoveTo(row);
        for (std::int32_t col = 0; col < image.cols; ++col) {
            if (pels[col] <= threshold) continue;
            const auto healthy = window.At(col);
            if (healthy.count == 0) continue;
            const double mean =
                factor * static_cast<double>(healthy.sum) / static_cast<double>(healthy.count);
            pels[col] = SaturatedPel(mean);
            // What has been replaced helps to replace the next one, unless the factor has made it hot again.
            if (pels[col] <= threshold) window.Admit(col, pels[col]);
        }
    }
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqReplaceHotPixels(TqImage* image, std::int32_t threshold, float factor,
                                        std::int32_t width, std::int32_t height) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    if (threshold < 0 || threshold >= kLargestPel) return 0;
    ReplaceHot(view, static_cast<Pel>(threshold), factor < 0.0f ? 0.0 : static_cast<double>(factor),
               OddWindow(width, view.cols), OddWindow(height, view.rows));
    return 0;
}
