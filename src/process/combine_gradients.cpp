#include <cmath>
#include <cstdint>
#include <utility>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
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

struct Combination {
    ConstImageView a, b, c;
    float weightA, weightBc;

    /// In single precision, step by step.
    float operator()(std::size_t i) const noexcept {
        const float la = Luminance(a, i);
        const float lb = Luminance(b, i);
        const float lc = Luminance(c, i);
        return std::sqrt(la * la * weightA + (lb * lb + lc * lc) * weightBc);
    }

  private:
    static float Luminance(const ConstImageView& view, std::size_t i) noexcept {
        return static_cast<float>(view.pels[i]) * view.header->LuxPerGrey;
    }
};

OwnedImage Combine(const Combination& value) {
    OwnedImage result(value.a, NewPels::kUnwritten);
    const ImageView out = result.View();
    float largest = 0.0f;
    for (std::size_t i = 0; i < out.Count(); ++i) {
        const float v = value(i);
        if (v > largest) largest = v;
    }
    if (largest < kNoGradient) largest = 1.0f;
    const float scale = kFullScale / largest;
    for (std::size_t i = 0; i < out.Count(); ++i)
        out.pels[i] = ClampToPel(TruncToInt32(value(i) * scale));
    result.Header().MaxPelValue = kFullScale;
    result.Header().LuxPerGrey = 1.0f / scale;
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCombineGradients(TqImage** out, const TqImage* a, const TqImage* b, const TqImage* c,
                                        float weightA, float weightBc) {
    const Combination value{LocateImage(a), LocateImage(b), LocateImage(c), std::abs(weightA),
                            std::abs(weightBc)};
    if (out == nullptr || !value.a) return kInvalidA;
    if (!value.b) return kInvalidB;
    if (!value.c) return kInvalidC;
    if (!SameSize(value.a, value.b) || !SameSize(value.a, value.c)) return kSizesDiffer;
    return Guarded(kNoMemory, [&] {
        CommitImage(out, Combine(value));
        return 0;
    });
}
