#include "tqimage/point_operations.h"

#include <algorithm>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "core/rectangle.h"
#include "core/replaced_image.h"
#include "kernels/pel_arithmetic.h"
#include "kernels/span_statistics.h"
#include "process/pel_runs.h"

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNothingToAddTo = -1;  // of tqAddConstant alone
constexpr std::int32_t kInvalidBlock = -9;    // of tqInvertImage, which tells null from invalid
constexpr std::int32_t kNoMemory = -5;

}  // namespace

using namespace tq;

std::int32_t TQ_CALL tqAddConstant(TqImage* image, std::int32_t constant) {
    // Before the image is looked at: hosts pass a switched-off correction without an image.
    if (constant == 0) return kOk;
    const ImageView view = LocateImage(image);
    if (!view) return kNothingToAddTo;
    if (constant > 0) {
        kernels::AddSaturated(view.pels, ClampToPel(constant), view.pels, view.Count());
    } else {
        // The range is cut before the sign changes: there is no 2^31.
        const Pel amount = ClampToPel(-std::max(constant, -kLargestPel));
        kernels::SubtractSaturated(view.pels, amount, view.pels, view.Count());
    }
    return kOk;
}

std::int32_t TQ_CALL tqSubtractValue(TqImage** image, std::int32_t value) {
    const ConstImageView source = LocateHeld(image);
    if (!source) return kInvalidImage;
    return ReplaceImage(image, kNoMemory, [&] {
        OwnedImage result(source, NewPels::kUnwritten);
        kernels::SubtractSaturated(source.pels, ClampToPel(value), result.View().pels, source.Count());
        return result;
    });
}

std::int32_t TQ_CALL tqCorrectLinearity(TqImage* image, const std::uint16_t* table) {
    const ImageView view = LocateImage(image);
    if (!view || table == nullptr) return kInvalidImage;
    kernels::LookUp(view.pels, table, view.pels, view.Count());
    return kOk;
}

std::int32_t TQ_CALL tqApplyLUTInRegion(TqImage* image, const std::uint16_t* table, std::int32_t left,
                                        std::int32_t top, std::int32_t right, std::int32_t bottom) {
    const ImageView view = LocateImage(image);
    if (!view || table == nullptr) return kInvalidImage;
    VisitRuns(view, ClampRegion({left, top, right, bottom}, view.cols, view.rows),
              [&](std::size_t first, std::size_t count) {
                  kernels::LookUp(view.pels + first, table, view.pels + first, count);
              });
    return kOk;
}

std::int32_t TQ_CALL tqReplaceDarkPels0(TqImage* image, std::int32_t threshold, std::int32_t value) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    kernels::ReplaceUpTo(view.pels, ClampToPel(threshold), ClampToPel(value), view.pels, view.Count());
    return kOk;
}

std::int32_t TQ_CALL tqRemoveDarkPels(TqImage* image, std::int32_t* count, std::int32_t threshold) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    if (threshold < 0) {
        // Every pel, a 0 too, is greater than a negative threshold.
        StoreIfAsked(count, static_cast<std::int32_t>(view.Count()));
        return kOk;
    }
    std::uint64_t kept = 0;
    VisitCached(0, view.Count(), [&](std::size_t first, std::size_t pels) {
        kernels::KeepAbove(view.pels + first, ClampToPel(threshold), view.pels + first, pels);
        kept += kernels::SumAtLeast(view.pels + first, pels, 1).count;
    });
    StoreIfAsked(count, static_cast<std::int32_t>(kept));  // at most 8000 x 8000
    return kOk;
}

std::int32_t TQ_CALL tqInvertImage(TqImage* image) {
    if (image == nullptr) return kInvalidImage;
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidBlock;
    const kernels::MinMax range = kernels::FindMinMax(view.pels, view.Count());
    view.header->MaxPelValue = range.max;
    kernels::SubtractFrom(WrapToPel(range.min + range.max), view.pels, view.pels, view.Count());
    return kOk;
}
