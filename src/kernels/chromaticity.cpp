#include "kernels/chromaticity.h"

#include <algorithm>

#include "core/numerics.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/chromaticity.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class D>
struct Tristimulus {
    hn::Vec<D> x, y, z;
};

template <class D>
HWY_INLINE Tristimulus<D> TristimulusAt(D d, const ChannelRows& rows, const double* m, std::size_t i) {
    const auto a = hn::LoadU(d, rows.first + i);
    const auto b = hn::LoadU(d, rows.second + i);
    const auto c = hn::LoadU(d, rows.third + i);
    return {Weighted(d, m, a, b, c), Weighted(d, m + 3, a, b, c), Weighted(d, m + 6, a, b, c)};
}

template <class D>
HWY_INLINE hn::Vec<D> Denominator(D d, const Tristimulus<D>& at, double y, double z) {
    return hn::Add(hn::Add(at.x, hn::Mul(hn::Set(d, y), at.y)), hn::Mul(hn::Set(d, z), at.z));
}

template <class D>
struct UV {
    hn::Vec<D> u, v;
};

/// u' and v', both 0 where the denominator is.
template <class D>
HWY_INLINE UV<D> Chromaticity(D d, const Tristimulus<D>& at, hn::Vec<D> below) {
    const auto dark = hn::Eq(below, hn::Zero(d));
    return {hn::IfThenZeroElse(dark, hn::Div(hn::Mul(hn::Set(d, 4.0), at.x), below)),
            hn::IfThenZeroElse(dark, hn::Div(hn::Mul(hn::Set(d, 9.0), at.y), below))};
}

void StoreRatiosOf(const ChannelRows& rows, const ChromaticRatio& ratio, double low, double gain,
                   std::uint16_t* out) {
    ForEachVector(rows.count, [&](auto d, std::size_t i) {
        const auto at = TristimulusAt(d, rows, ratio.matrix, i);
        const auto above = ratio.numerator == 0 ? at.x : ratio.numerator == 1 ? at.y : at.z;
        const auto below = ratio.overLuminance ? at.y : Denominator(d, at, ratio.y, ratio.z);
        auto value = hn::Div(hn::Mul(hn::Set(d, ratio.factor), above), below);
        if (!ratio.overLuminance) value = hn::IfThenZeroElse(hn::Eq(below, hn::Zero(d)), value);
        const auto level = hn::Mul(hn::Sub(value, hn::Set(d, low)), hn::Set(d, gain));
        // Infinities and what is no number differ from themselves less themselves.
        const auto finite = hn::Eq(hn::Sub(level, level), hn::Zero(d));
        const auto pel = hn::Min(hn::Max(hn::IfThenElseZero(finite, level), hn::Zero(d)),
                                 hn::Set(d, static_cast<double>(kLargestPel)));
        StorePels(d, pel, out + i);
    });
}

/// reference(d, i) gives u', v' and the luminance that the pels at i are compared with.
template <class Reference>
HWY_INLINE void DifferencesFrom(const ChannelRows& rows, const ColourWeights& weights,
                                const Reference& reference, float* out) {
    ForEachVector(rows.count, [&](auto d, std::size_t i) {
        auto at = TristimulusAt(d, rows, weights.matrix, i);
        at.z = Rounded(d, at.z);
        const auto uv = Chromaticity(d, at, Denominator(d, at, 15.0, 3.0));
        const auto from = reference(d, i);
        const auto du = hn::Sub(uv.u, from.x);
        const auto dv = hn::Sub(uv.v, from.y);
        // The second channel itself and not Y: hosts weigh what their photopic filter saw.
        const auto lux = hn::Mul(hn::LoadU(d, rows.second + i), hn::Set(d, weights.luxPerGrey));
        // A reference without light has no relative difference; NaN has none either.
        const auto lit = hn::Ge(from.z, hn::Set(d, kNoLuminance));
        const auto dl = hn::IfThenElseZero(lit, hn::Div(hn::Sub(lux, from.z), from.z));
        const auto colour =
            hn::Mul(hn::Add(hn::Mul(dv, dv), hn::Mul(du, du)), hn::Set(d, weights.chromaticity));
        const auto light = hn::Mul(hn::Mul(dl, dl), hn::Set(d, weights.luminance));
        hn::StoreU(ToSingle(d, hn::Sqrt(hn::Add(colour, light))), F32<decltype(d)>(), out + i);
    });
}

void ColourDifferencesOf(const ChannelRows& rows, const ColourWeights& weights, const ColourReference& from,
                         float* out) {
    const auto fixed = [&](auto d, std::size_t) {
        return Tristimulus<decltype(d)>{hn::Set(d, from.u), hn::Set(d, from.v), hn::Set(d, from.luminance)};
    };
    DifferencesFrom(rows, weights, fixed, out);
}

void LocalDifferencesOf(const ChannelRows& rows, const ChannelRows& around, const ColourWeights& weights,
                        float* out) {
    // The reference is rounded as one that a host passes.
    const auto local = [&](auto d, std::size_t i) {
        const auto at = TristimulusAt(d, around, weights.matrix, i);
        const auto uv = Chromaticity(d, at, Denominator(d, at, 15.0, 3.0));
        const auto lux = hn::Mul(hn::LoadU(d, around.second + i), hn::Set(d, weights.luxPerGrey));
        return Tristimulus<decltype(d)>{Rounded(d, uv.u), Rounded(d, uv.v), Rounded(d, lux)};
    };
    DifferencesFrom(rows, weights, local, out);
}

void EllipseDistancesOf(const ChannelRows& rows, const ToleranceEllipse& ellipse, float* out) {
    ForEachVector(rows.count, [&](auto d, std::size_t i) {
        auto at = TristimulusAt(d, rows, ellipse.matrix, i);
        at = {Rounded(d, at.x), Rounded(d, at.y), Rounded(d, at.z)};
        const auto uv = Chromaticity(d, at, Rounded(d, Denominator(d, at, 15.0, 3.0)));
        const auto du = Rounded(d, hn::Sub(uv.u, hn::Set(d, ellipse.u)));
        const auto dv = Rounded(d, hn::Sub(uv.v, hn::Set(d, ellipse.v)));
        const auto vv = hn::Mul(hn::Set(d, ellipse.vv), hn::Mul(dv, dv));
        const auto uv2 = hn::Mul(hn::Mul(hn::Set(d, 2.0 * ellipse.uv), du), dv);
        const auto uu = hn::Mul(hn::Set(d, ellipse.uu), hn::Mul(du, du));
        hn::StoreU(ToSingle(d, hn::Sqrt(hn::Add(hn::Add(vv, uv2), uu))), F32<decltype(d)>(), out + i);
    });
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(StoreRatiosOf);
HWY_EXPORT(ColourDifferencesOf);
HWY_EXPORT(LocalDifferencesOf);
HWY_EXPORT(EllipseDistancesOf);

void StoreRatios(const ChannelRows& rows, const ChromaticRatio& ratio, double low, double gain,
                 std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(StoreRatiosOf)(rows, ratio, low, gain, out);
}

void ColourDifferences(const ChannelRows& rows, const ColourWeights& weights, const ColourReference& from,
                       float* out) {
    HWY_DYNAMIC_DISPATCH(ColourDifferencesOf)(rows, weights, from, out);
}

void LocalDifferences(const ChannelRows& rows, const ChannelRows& around, const ColourWeights& weights,
                      float* out) {
    HWY_DYNAMIC_DISPATCH(LocalDifferencesOf)(rows, around, weights, out);
}

void EllipseDistances(const ChannelRows& rows, const ToleranceEllipse& ellipse, float* out) {
    HWY_DYNAMIC_DISPATCH(EllipseDistancesOf)(rows, ellipse, out);
}

float LargestOf(const float* values, std::size_t count, float largest) {
    for (std::size_t i = 0; i < count; ++i)
        largest = values[i] > largest ? values[i] : largest;
    return largest;
}

void LeaveOut(const std::uint16_t* pels, std::size_t count, float* values) {
    for (std::size_t i = 0; i < count; ++i)
        values[i] = pels[i] == 0 ? -1.0f : values[i];
}

void RaiseCounted(const float* values, std::size_t count, std::uint16_t* out) {
    for (std::size_t i = 0; i < count; ++i)
        out[i] = values[i] < 0.0f ? Pel{0} : std::max(out[i], Pel{1});
}

void StoreScaled(const float* values, std::size_t count, float scale, std::uint16_t* out) {
    for (std::size_t i = 0; i < count; ++i)
        out[i] = ClampToPel(TruncToInt32(values[i] * scale));
}

}  // namespace tq::kernels
#endif
