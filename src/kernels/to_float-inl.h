// The narrowing of vectors of double, compiled once for each instruction set like the kernels that include
// it.

#if defined(TQIMAGE_KERNELS_TO_FLOAT_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TQIMAGE_KERNELS_TO_FLOAT_INL_H
#undef TQIMAGE_KERNELS_TO_FLOAT_INL_H
#else
#define TQIMAGE_KERNELS_TO_FLOAT_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

/// Every lane rounded to float, to infinity beyond its range. Where there is no instruction for it, Highway
/// stops at the largest float instead.
template <class F, class V>
HWY_INLINE hwy::HWY_NAMESPACE::Vec<F> ToFloat(F f, V value) {
    namespace hn = hwy::HWY_NAMESPACE;
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
    const hn::DFromV<V> d;
    HWY_ALIGN double wide[hn::MaxLanes(d)];
    HWY_ALIGN float narrow[hn::MaxLanes(d)];
    hn::Store(value, d, wide);
    for (size_t i = 0; i < hn::Lanes(d); ++i)
        narrow[i] = static_cast<float>(wide[i]);
    return hn::Load(f, narrow);
#else
    return hn::DemoteTo(f, value);
#endif
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
