#include "kernels/threshold.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/threshold.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

#include "kernels/pel_loops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

/// Comparing with the larger and the smaller of two is one instruction where comparing unsigned pels is not.
template <class D, class V>
HWY_INLINE auto InBand(D d, V pels, Band band) {
    return hn::And(hn::Eq(hn::Max(pels, hn::Set(d, band.low)), pels),
                   hn::Eq(hn::Min(pels, hn::Set(d, band.high)), pels));
}

HWY_INLINE bool InBand(Pel pel, Band band) {
    return pel >= band.low && pel <= band.high;
}

void KeepBand(const Pel* pels, Band band, Pel* out, std::size_t count) {
    MapPels(
        out, count, [=](auto d, auto v) { return hn::IfThenElseZero(InBand(d, v, band), v); },
        [=](Pel pel) { return InBand(pel, band) ? pel : Pel{0}; }, pels);
}

void MarkBand(const Pel* pels, Band band, Pel value, Pel* out, std::size_t count) {
    MapPels(
        out, count, [=](auto d, auto v) { return hn::IfThenElseZero(InBand(d, v, band), hn::Set(d, value)); },
        [=](Pel pel) { return InBand(pel, band) ? value : Pel{0}; }, pels);
}

std::uint64_t ReplaceOutside(const Pel* pels, Band band, Pel replacement, Pel* out, std::size_t count) {
    std::uint64_t replaced = 0;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<Pel> d;
    const std::size_t lanes = hn::Lanes(d);
    for (; i + lanes <= count; i += lanes) {
        const auto v = hn::LoadU(d, pels + i);
        const auto kept = hn::Or(InBand(d, v, band), hn::Eq(v, hn::Zero(d)));
        replaced += lanes - hn::CountTrue(d, kept);
        hn::StoreU(hn::IfThenElse(kept, v, hn::Set(d, replacement)), d, out + i);
    }
#endif
    for (; i < count; ++i) {
        const bool kept = pels[i] == 0 || InBand(pels[i], band);
        replaced += kept ? 0 : 1;
        out[i] = kept ? pels[i] : replacement;
    }
    return replaced;
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(KeepBand);
HWY_EXPORT(MarkBand);
HWY_EXPORT(ReplaceOutside);

void KeepBand(const Pel* pels, Band band, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(KeepBand)(pels, band, out, count);
}

void MarkBand(const Pel* pels, Band band, Pel value, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(MarkBand)(pels, band, value, out, count);
}

std::uint64_t ReplaceOutside(const Pel* pels, Band band, Pel replacement, Pel* out, std::size_t count) {
    return HWY_DYNAMIC_DISPATCH(ReplaceOutside)(pels, band, replacement, out, count);
}

}  // namespace tq::kernels
#endif
