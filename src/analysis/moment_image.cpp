#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/window.h"
#include "kernels/window_moments.h"
#include "tqimage/moments.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNotCreated = -3;
constexpr std::int32_t kFailed = -1;

/// The grey level of the largest moment.
constexpr float kFullScale = 65000.0f;

std::size_t Size(std::int32_t count) noexcept {
    return static_cast<std::size_t>(count);
}

/// The moments of every place that a window can take. At the borders windows are shifted inward, so the pels
/// there share the window of the first or last place.
class MomentPlane {
  public:
    MomentPlane(const ConstImageView& view, std::int32_t windowCols, std::int32_t windowRows)
        : windowCols_(windowCols),
          windowRows_(windowRows),
          cols_(view.cols - windowCols + 1),
          rows_(view.rows - windowRows + 1),
          moments_(Size(cols_) * Size(rows_)) {}

    /// Returns the largest moment.
    float Fill(const ConstImageView& view, std::int32_t order) {
        const std::size_t length = Size(view.cols);
        std::vector<float> ring(length * Size(windowRows_));
        std::vector<const float*> band(Size(windowRows_));
        std::vector<bool> holes(Size(windowRows_));
        float largest = 0.0f;
        for (std::int32_t row = 0; row < view.rows; ++row) {
            const std::size_t slot = Size(row % windowRows_);
            kernels::PelsToFloat(view.Row(row), length, ring.data() + slot * length);
            holes[slot] =
                std::find(view.Row(row), view.Row(row) + view.cols, Pel{0}) != view.Row(row) + view.cols;
            const std::int32_t top = row - windowRows_ + 1;
            if (top < 0) continue;
            for (std::int32_t i = 0; i < windowRows_; ++i)
                band[Size(i)] = ring.data() + Size((top + i) % windowRows_) * length;
            const bool anyHole = std::find(holes.begin(), holes.end(), true) != holes.end();
            largest = std::max(largest, kernels::WindowMoments({band.data(), Size(windowRows_),
                                                                Size(windowCols_), Size(cols_), anyHole},
                                                               order, Row(top)));
        }
        return largest;
    }

    /// Writes the pels of an image row.
    void Store(std::int32_t row, float scale, Pel* out, std::int32_t count) {
        const std::int32_t half = windowCols_ / 2;
        kernels::ScaledPels(Row(std::clamp(row - windowRows_ / 2, 0, rows_ - 1)), Size(cols_), scale,
                            out + half);
        std::fill(out, out + half, out[half]);
        std::fill(out + half + cols_, out + count, out[half + cols_ - 1]);
    }

  private:
    float* Row(std::int32_t row) noexcept { return moments_.data() + Size(row) * Size(cols_); }

    std::int32_t windowCols_;
    std::int32_t windowRows_;
    std::int32_t cols_;
    std::int32_t rows_;
    std::vector<float> moments_;
};

void FillMomentImage(const ConstImageView& view, std::int32_t order, std::int32_t windowCols,
                     std::int32_t windowRows, const OwnedImage& result) {
    MomentPlane plane(view, windowCols, windowRows);
    const float largest = plane.Fill(view, order);
    const ImageView out = result.View();
    out.header->MaxPelValue = kFullScale;
    out.header->LuxPerGrey = largest / kFullScale;
    if (largest == 0.0f) {
        std::fill_n(out.pels, out.Count(), Pel{0});
        return;
    }
    for (std::int32_t row = 0; row < out.rows; ++row)
        plane.Store(row, out.header->LuxPerGrey, out.Row(row), out.cols);
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCalcMoment(TqImage** result, const TqImage* image, std::int32_t order,
                                  std::int32_t windowCols, std::int32_t windowRows) {
    const ConstImageView view = LocateImage(image);
    if (result == nullptr || !view) return kInvalidImage;
    const std::int32_t cols = OddWindow(windowCols, view.cols);
    const std::int32_t rows = OddWindow(windowRows, view.rows);
    if (cols == 1 && rows == 1) return 0;

    OwnedImage moments;
    const std::int32_t created = Guarded(kNotCreated, [&] {
        moments = OwnedImage(view, NewPels::kUnwritten);
        return 0;
    });
    if (created != 0) return created;
    return Guarded(kFailed, [&] {
        FillMomentImage(view, order, cols, rows, moments);
        CommitImage(result, std::move(moments));
        return 0;
    });
}
