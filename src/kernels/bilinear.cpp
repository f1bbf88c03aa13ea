#include "kernels/bilinear.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/bilinear.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/bilinear-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

void BlendRow(const PelPair* near, const PelPair* far, const double* weights, std::size_t count, double fy,
              double bias, Pel* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const Numbers d;
    const hn::Rebind<PelPair, Numbers> pairs;
    const std::size_t lanes = hn::Lanes(d);
    const auto down = hn::Set(d, fy);
    const auto half = hn::Set(d, bias);
    for (; i + lanes <= count; i += lanes) {
        const auto value = BlendPairs(hn::LoadU(pairs, near + i), hn::LoadU(pairs, far + i),
                                      hn::LoadU(d, weights + i), down);
        hn::StoreU(WrapToPels(hn::Add(value, half)), hn::Rebind<Pel, Numbers>(), out + i);
    }
#endif
    for (; i < count; ++i)
        out[i] = WrapToPel(TruncToInt32(BlendPairs(near[i], far[i], weights[i], fy) + bias));
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(BlendRow);

void BlendRow(const PelPair* near, const PelPair* far, const double* weights, std::size_t count, double fy,
              double bias, Pel* out) {
    HWY_DYNAMIC_DISPATCH(BlendRow)(near, far, weights, count, fy, bias, out);
}

}  // namespace tq::kernels
#endif
