#include "tqimage/comparison.h"

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "kernels/relative_difference.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidReference = -2;
constexpr std::int32_t kInvalidTest = -3;
constexpr std::int32_t kSizesDiffer = -4;
constexpr std::int32_t kNoMemory = -5;

/// The grey level of the largest difference. Hosts scale their displays by it.
constexpr float kFullScale = 64000.0f;

OwnedImage Compare(const ConstImageView& reference, const ConstImageView& test) {
    OwnedImage result(reference, NewPels::kUnwritten);
    const kernels::LuxRuns runs{reference.pels, test.pels, reference.Count(), reference.header->LuxPerGrey,
                                test.header->LuxPerGrey};
    const double largest = kernels::LargestDifference(runs, 0.0);
    TqImageHeader& header = result.Header();
    header.MaxPelValue = kFullScale;
    header.LuxPerGrey = largest == 0.0 ? 1.0f : static_cast<float>(largest / kFullScale);
    // Divided by the factor as stored, so that pels times LuxPerGrey give the differences back.
    kernels::ScaledDifferences(runs, header.LuxPerGrey, result.View().pels);
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCompareImages(TqImage** result, const TqImage* reference, const TqImage* test) {
    const ConstImageView expected = LocateImage(reference);
    if (result == nullptr || !expected) return kInvalidReference;
    const ConstImageView actual = LocateImage(test);
    if (!actual) return kInvalidTest;
    if (!SameSize(expected, actual)) return kSizesDiffer;
    return ReplaceImage(result, kNoMemory, [&] { return Compare(expected, actual); });
}
