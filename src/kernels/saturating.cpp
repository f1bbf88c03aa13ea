#include "kernels/saturating.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/saturating.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

void SubtractSaturated(const Pel* a, const Pel* b, Pel* out, std::size_t count) {
    const hn::ScalableTag<Pel> tag;
    const std::size_t lanes = hn::Lanes(tag);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        hn::StoreU(hn::SaturatedSub(hn::LoadU(tag, a + i), hn::LoadU(tag, b + i)), tag, out + i);
    }
    for (; i < count; ++i)
        out[i] = static_cast<Pel>(a[i] > b[i] ? a[i] - b[i] : 0);
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(SubtractSaturated);

void SubtractSaturated(const Pel* a, const Pel* b, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(SubtractSaturated)(a, b, out, count);
}

}  // namespace tq::kernels
#endif
