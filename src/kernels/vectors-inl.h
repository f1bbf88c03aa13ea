// Loops over runs of pels in double precision, compiled once for each instruction set like the kernels that
// include them. The rest of a run goes through the same code one pel at a time: it cannot differ.

#if defined(TQIMAGE_KERNELS_VECTORS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TQIMAGE_KERNELS_VECTORS_INL_H
#undef TQIMAGE_KERNELS_VECTORS_INL_H
#else
#define TQIMAGE_KERNELS_VECTORS_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Wide = hn::ScalableTag<double>;
using Single = hn::CappedTag<double, 1>;
constexpr std::size_t kMostLanes = HWY_MAX_BYTES / sizeof(double);

template <class D>
using F32 = hn::Rebind<float, D>;
template <class D>
using I32 = hn::Rebind<std::int32_t, D>;
template <class D>
using U16 = hn::Rebind<std::uint16_t, D>;

/// Calls body(tag, position) for every vector of a run.
template <class Lane = double, class Body>
HWY_INLINE void ForEachVector(std::size_t count, const Body& body) {
    const hn::ScalableTag<Lane> wide;
    std::size_t i = 0;
    for (; i + hn::Lanes(wide) <= count; i += hn::Lanes(wide))
        body(wide, i);
    for (; i < count; ++i)
        body(hn::CappedTag<Lane, 1>(), i);
}

template <class D>
HWY_INLINE hn::Vec<D> LoadPels(D d, const std::uint16_t* pels) {
    return hn::PromoteTo(d, hn::PromoteTo(I32<D>(), hn::LoadU(U16<D>(), pels)));
}

/// Values as doubles, whatever they are in memory.
template <class D>
HWY_INLINE hn::Vec<D> LoadValues(D d, const std::uint16_t* pels) {
    return LoadPels(d, pels);
}
template <class D>
HWY_INLINE hn::Vec<D> LoadValues(D d, const double* values) {
    return hn::LoadU(d, values);
}

/// Truncates values of 0..65535.
template <class D>
HWY_INLINE void StorePels(D, hn::Vec<D> values, std::uint16_t* out) {
    hn::StoreU(hn::DemoteTo(U16<D>(), hn::DemoteTo(I32<D>(), values)), U16<D>(), out);
}

/// weights[0] * a + weights[1] * b + weights[2] * c, from left to right.
template <class D>
HWY_INLINE hn::Vec<D> Weighted(D d, const double* weights, hn::Vec<D> a, hn::Vec<D> b, hn::Vec<D> c) {
    const auto sum = hn::Add(hn::Mul(hn::Set(d, weights[0]), a), hn::Mul(hn::Set(d, weights[1]), b));
    return hn::Add(sum, hn::Mul(hn::Set(d, weights[2]), c));
}

/// In single precision; infinite beyond its range. The emulated targets would stop at the largest float,
/// where processors do not, so they convert one by one.
template <class D>
HWY_INLINE hn::Vec<F32<D>> ToSingle([[maybe_unused]] D d, hn::Vec<D> value) {
    const F32<D> single;
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
    HWY_ALIGN double from[kMostLanes];
    HWY_ALIGN float to[kMostLanes];
    hn::Store(value, d, from);
    for (std::size_t i = 0; i < hn::Lanes(d); ++i)
        to[i] = static_cast<float>(from[i]);
    return hn::Load(single, to);
#else
    return hn::DemoteTo(single, value);
#endif
}

/// Through single precision.
template <class D>
HWY_INLINE hn::Vec<D> Rounded(D d, hn::Vec<D> value) {
    return hn::PromoteTo(d, ToSingle(d, value));
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
