#include "tqimage/border_light.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "core/rectangle.h"
#include "core/replaced_image.h"
#include "measure/border_background.h"
#include "measure/border_strips.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kEmptyArea = -3;
constexpr std::int32_t kNoBackground = -4;
constexpr std::int32_t kNoMemory = -5;
constexpr std::int32_t kNothingMeasured = -99;

enum Mode : std::int32_t { kMean = 0, kPlane = 1, kCoonsPatch = 2 };

/// The pointers a host gives for the measurement, each of them optional.
struct Outputs {
    double* leftMean;
    double* topMean;
    double* rightMean;
    double* bottomMean;
    double* mean;
    double* maximum;
    std::int32_t* column;
    std::int32_t* row;

    void Store(const BorderLight& light) const noexcept {
        const auto [left, top, right, bottom] = light.sideMeans;
        StoreIfAsked(leftMean, left);
        StoreIfAsked(topMean, top);
        StoreIfAsked(rightMean, right);
        StoreIfAsked(bottomMean, bottom);
        StoreIfAsked(mean, light.mean);
        StoreIfAsked(maximum, static_cast<double>(light.maximum));
        StoreIfAsked(column, light.maxCol);
        StoreIfAsked(row, light.maxRow);
    }
};

/// How a host asks for the strips.
struct Request {
    Rect area;
    std::int32_t gap;
    std::int32_t depth;
    std::int32_t ceiling;
};

/// Measures, stores and passes strips and light on to `use`, whose status it returns; or the code of what
/// keeps it from measuring.
template <class Use>
std::int32_t WithBorderLight(const ConstImageView& view, const Request& request, const Outputs& outputs,
                             Use&& use) {
    outputs.Store(BorderLight{});
    if (!view) return kInvalidImage;
    const Rect area = ClampRegion(request.area, view.cols, view.rows);
    if (area.Empty()) return kEmptyArea;
    const BorderStrips strips(view, area, request.gap, request.depth, request.ceiling);
    const BorderLight light = MeasureBorderLight(strips);
    if (light.count == 0) return kNothingMeasured;
    outputs.Store(light);
    return use(strips, light);
}

/// Null for a mode that there is not, or that these strips do not allow.
std::unique_ptr<BorderBackground> MakeBackground(std::int32_t mode, const ConstImageView& view,
                                                 const BorderStrips& strips, const BorderLight& light) {
    switch (mode) {
        case kMean:
            return std::make_unique<UniformBackground>(light.mean);
        case kPlane:
            return PlaneBackground::Fit(strips, light);
        case kCoonsPatch:
            return CoonsBackground::Fit(strips, view.cols);
        default:
            return nullptr;
    }
}

OwnedImage Remove(const ConstImageView& view, const BorderBackground& background, double strength) {
    OwnedImage result(view, NewPels::kUnwritten);
    const ImageView out = result.View();
    std::vector<double> levels(static_cast<std::size_t>(view.cols));
    for (std::int32_t row = 0; row < view.rows; ++row) {
        background.FillRow(row, view.cols, levels.data());
        const Pel* const pels = view.Row(row);
        Pel* const cleaned = out.Row(row);
        for (std::size_t col = 0; col < levels.size(); ++col)
            cleaned[col] = ClampToPel(TruncToInt32(pels[col] - strength * levels[col] + 0.5));
    }
    return result;
}

}  // namespace

std::int32_t TQ_CALL tqMeasureBorderLight(const TqImage* image, std::int32_t left, std::int32_t top,
                                          std::int32_t right, std::int32_t bottom, std::int32_t gap,
                                          std::int32_t depth, std::int32_t ceiling, double* leftMean,
                                          double* topMean, double* rightMean, double* bottomMean,
                                          double* mean, double* maximum, std::int32_t* column,
                                          std::int32_t* row) {
    return WithBorderLight(LocateImage(image), {{left, top, right, bottom}, gap, depth, ceiling},
                           {leftMean, topMean, rightMean, bottomMean, mean, maximum, column, row},
                           [](const BorderStrips&, const BorderLight&) { return 0; });
}

std::int32_t TQ_CALL tqRemoveBorderLight(TqImage** image, std::int32_t left, std::int32_t top,
                                         std::int32_t right, std::int32_t bottom, std::int32_t gap,
                                         std::int32_t depth, std::int32_t ceiling, double* leftMean,
                                         double* topMean, double* rightMean, double* bottomMean, double* mean,
                                         double* maximum, std::int32_t* column, std::int32_t* row,
                                         std::int32_t mode, double strength) {
    const ConstImageView view = LocateHeld(image);
    return WithBorderLight(view, {{left, top, right, bottom}, gap, depth, ceiling},
                           {leftMean, topMean, rightMean, bottomMean, mean, maximum, column, row},
                           [&](const BorderStrips& strips, const BorderLight& light) {
                               return Guarded(kNoMemory, [&] {
                                   const auto background = MakeBackground(mode, view, strips, light);
                                   if (!background) return kNoBackground;
                                   CommitImage(image, Remove(view, *background, strength));
                                   return 0;
                               });
                           });
}
