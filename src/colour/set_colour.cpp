#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/image_view.h"
#include "core/rectangle.h"
#include "core/saturated_pel.h"
#include "measure/region_shapes.h"
#include "tqimage/colour_transforms.h"

using namespace tq;

namespace {

constexpr std::int32_t kNoImage = -2;
constexpr std::int32_t kInvalidFirstImage = -3;  // the second is -4, the third -5
constexpr std::int32_t kSizesDiffer = -6;

/// A LuxPerGrey of 0 gives no level.
Pel LevelOf(double level) noexcept {
    return std::isfinite(level) ? SaturatedPel(level + 0.5) : Pel{0};
}

}  // namespace

std::int32_t TQ_CALL tqSetColorGraysInRegion(TqImage* first, TqImage* second, TqImage* third,
                                             std::int32_t left, std::int32_t top, std::int32_t right,
                                             std::int32_t bottom, float x, float y, float z, float m0,
                                             float m1, float m2, float m3, float m4, float m5, float m6,
                                             float m7, float m8) {
    const std::array<TqImage*, 3> images{first, second, third};
    std::array<ImageView, 3> views;
    const ImageView* any = nullptr;
    for (std::size_t k = 0; k < images.size(); ++k) {
        if (images[k] == nullptr) continue;
        views[k] = LocateImage(images[k]);
        if (!views[k]) return kInvalidFirstImage - static_cast<std::int32_t>(k);
        any = &views[k];
    }
    if (any == nullptr) return kNoImage;
    for (const ImageView& view : views)
        if (view && !SameSize(view, *any)) return kSizesDiffer;

    const double m[3][3] = {{m0, m1, m2}, {m3, m4, m5}, {m6, m7, m8}};
    const Rect rect = ClampRegion({left, top, right, bottom}, any->cols, any->rows);
    for (std::size_t k = 0; k < views.size(); ++k) {
        const ImageView& view = views[k];
        if (!view) continue;
        const double value = m[k][0] * x + m[k][1] * y + m[k][2] * z;
        const Pel pel = LevelOf(value / view.header->LuxPerGrey);
        VisitRectangle(rect, [&](std::int32_t row, std::int32_t from, std::int32_t to) {
            std::fill(view.Row(row) + from, view.Row(row) + to + 1, pel);
        });
    }
    return 0;
}
