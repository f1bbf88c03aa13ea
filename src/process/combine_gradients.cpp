#include <cmath>
#include <cstdint>
#include <utility>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "kernels/grey_arithmetic.h"
#include "tqimage/gradients.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidA = -2;
constexpr std::int32_t kInvalidB = -3;
constexpr std::int32_t kInvalidC = -4;
constexpr std::int32_t kSizesDiffer = -5;
constexpr std::int32_t kNoMemory = -6;

/// The largest value becomes this grey level, below the largest pel to leave head-room.
constexpr float kFullScale = 65000.0f;
/// Below this there is no gradient to scale by.
constexpr float kNoGradient = 1e-10f;

OwnedImage Combine(const ConstImageView& source, const kernels::Gradients& gradients) {
    OwnedImage result(source, NewPels::kUnwritten);
    float largest = kernels::LargestGradient(gradients, source.Count());
    if (largest < kNoGradient) largest = 1.0f;
    const float scale = kFullScale / largest;
    kernels::WriteGradients(gradients, scale, result.View().pels, source.Count());
    result.Header().MaxPelValue = kFullScale;
    result.Header().LuxPerGrey = 1.0f / scale;
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCombineGradients(TqImage** out, const TqImage* a, const TqImage* b, const TqImage* c,
                                        float weightA, float weightBc) {
    const ConstImageView first = LocateImage(a), second = LocateImage(b), third = LocateImage(c);
    if (out == nullptr || !first) return kInvalidA;
    if (!second) return kInvalidB;
    if (!third) return kInvalidC;
    if (!SameSize(first, second) || !SameSize(first, third)) return kSizesDiffer;
    const kernels::Gradients gradients{
        {first.pels, second.pels, third.pels},
        {first.header->LuxPerGrey, second.header->LuxPerGrey, third.header->LuxPerGrey},
        std::abs(weightA),
        std::abs(weightBc)};
    return ReplaceImage(out, kNoMemory, [&] { return Combine(first, gradients); });
}
