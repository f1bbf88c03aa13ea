#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "core/rectangle.h"
#include "kernels/outliers.h"
#include "measure/block_sweep.h"
#include "tqimage/thresholds.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidSource = -1;
constexpr std::int32_t kNotCreated = -3;

/// Which pels are tested, and against what.
enum class Variant {
    kEveryPel,        ///< placements from the first column and row on but not the last ones; every pel counts
    kLitPels,         ///< every pel that is not 0, against those around it that are not; windows slide inward
    kZeroFreeWindows  ///< the same where the window lies inside and holds no 0
};

struct Request {
    std::int32_t kind;
    double percent;
    std::int32_t* bright;
    std::int32_t* dark;
};

/// A neighbourhood need not be odd: the tested pel is at half its size, rounded down, from its first.
struct Neighbourhood {
    std::int32_t width;
    std::int32_t height;

    bool FitsWithin(const ConstImageView& view) const noexcept {
        return width < view.cols && height < view.rows;
    }
    /// Tested pels whose neighbourhood lies inside the image.
    Rect Tested(const ConstImageView& view) const noexcept {
        return {width / 2, height / 2, view.cols - width + width / 2, view.rows - height + height / 2};
    }
};

kernels::OutlierTest TestFor(const Request& request) noexcept {
    constexpr double kNotTested = std::numeric_limits<double>::quiet_NaN();
    const double tolerance = request.percent / 100.0;
    return {.brightFactor = request.kind == 0 ? kNotTested : 1.0 + tolerance,
            .darkFactor = request.kind == 1 ? kNotTested : 1.0 - tolerance};
}

/// Tests rows of a source against the sums of a sweep and counts what it finds.
class Detector {
  public:
    Detector(const ConstImageView& view, const ImageView& out, const kernels::OutlierTest& test)
        : view_(view), out_(out), test_(test) {}

    /// Pels from `col` on, one for each sum.
    void Test(std::int32_t row, std::int32_t col, std::span<const double> sums,
              std::span<const double> counts) {
        const kernels::OutlierCounts found = kernels::KeepOutliers(
            view_.Row(row) + col, sums.data(), counts.data(), sums.size(), test_, out_.Row(row) + col);
        found_.bright += found.bright;
        found_.dark += found.dark;
    }
    const kernels::OutlierCounts& Found() const noexcept { return found_; }

  private:
    ConstImageView view_;
    ImageView out_;
    kernels::OutlierTest test_;
    kernels::OutlierCounts found_;
};

void TestInside(Detector& detector, auto& sweep, const Rect& tested) {
    for (std::int32_t row = tested.top; row <= tested.bottom; ++row) {
        sweep.MoveTo(row);
        detector.Test(row, tested.left, sweep.Sums(), sweep.Counts());
    }
}

/// Pels at the border share the outermost neighbourhood that lies inside.
void TestEveryRow(Detector& detector, LitBlockSweep& sweep, const Rect& inside, const ConstImageView& view) {
    const auto test = [&](std::int32_t row, std::int32_t col, std::int32_t end, std::size_t shared) {
        if (end <= col) return;
        const auto count = static_cast<std::size_t>(end - col);
        const std::vector<double> sums(count, sweep.Sums()[shared]);
        const std::vector<double> counts(count, sweep.Counts()[shared]);
        detector.Test(row, col, sums, counts);
    };
    for (std::int32_t row = 0; row < view.rows; ++row) {
        sweep.MoveTo(std::clamp(row, inside.top, inside.bottom));
        test(row, 0, inside.left, 0);
        detector.Test(row, inside.left, sweep.Sums(), sweep.Counts());
        test(row, inside.right + 1, view.cols, sweep.Sums().size() - 1);
    }
}

kernels::OutlierCounts Detect(const ConstImageView& view, const ImageView& out, const Neighbourhood& around,
                              kernels::OutlierTest test, Variant variant) {
    Rect inside = around.Tested(view);
    if (variant == Variant::kEveryPel) {
        // The last column and row of placements are left out: hosts rely on the counts.
        --inside.right;
        --inside.bottom;
        Detector detector(view, out, test);
        const auto sweep = MakeBlockSweep(view, BlockShape::kRectangle, around.width, around.height,
                                          inside.left, inside.right);
        TestInside(detector, *sweep, inside);
        return detector.Found();
    }
    test.leastPel = 1.0;
    if (variant == Variant::kZeroFreeWindows)
        test.leastCount = static_cast<double>(around.width) * around.height;
    Detector detector(view, out, test);
    LitBlockSweep sweep(view, BlockShape::kRectangle, around.width, around.height, inside.left, inside.right);
    if (variant == Variant::kZeroFreeWindows) {
        TestInside(detector, sweep, inside);
    } else {
        TestEveryRow(detector, sweep, inside, view);
    }
    return detector.Found();
}

std::int32_t LocalThreshold(TqImage** out, const TqImage* source, std::int32_t width, std::int32_t height,
                            const Request& request, Variant variant) {
    const ConstImageView view = out == nullptr ? ConstImageView{} : LocateImage(source);
    if (!view) return kInvalidSource;
    const Neighbourhood around{std::max(width, 1), std::max(height, 1)};
    if (!around.FitsWithin(view)) return kNotCreated;
    return Guarded(kNotCreated, [&] {
        OwnedImage result(view, NewPels::kZero);
        const kernels::OutlierCounts found = Detect(view, result.View(), around, TestFor(request), variant);
        StoreIfAsked(request.bright, static_cast<std::int32_t>(found.bright));
        StoreIfAsked(request.dark, static_cast<std::int32_t>(found.dark));
        CommitImage(out, std::move(result));
        return 0;
    });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqLocalThresholdImage(TqImage** out, const TqImage* source, std::int32_t kind,
                                           std::int32_t width, std::int32_t height, double percent,
                                           std::int32_t* bright, std::int32_t* dark) {
    return LocalThreshold(out, source, width, height, {kind, percent, bright, dark}, Variant::kEveryPel);
}

std::int32_t TQ_CALL tqLocalThresholdImage2(TqImage** out, const TqImage* source, std::int32_t kind,
                                            std::int32_t width, std::int32_t height, double percent,
                                            std::int32_t* bright, std::int32_t* dark) {
    return LocalThreshold(out, source, width, height, {kind, percent, bright, dark}, Variant::kLitPels);
}

std::int32_t TQ_CALL tqLocalThresholdImage3(TqImage** out, const TqImage* source, std::int32_t kind,
                                            std::int32_t width, std::int32_t height, double percent,
                                            std::int32_t* bright, std::int32_t* dark) {
    return LocalThreshold(out, source, width, height, {kind, percent, bright, dark},
                          Variant::kZeroFreeWindows);
}
