#include "kernels/chromaticity.h"

#include "core/numerics.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/chromaticity.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Wide = hn::ScalableTag<double>;
/// The rest of a row goes through the same code one value at a time: it cannot differ.
using Single = hn::CappedTag<double, 1>;

template <class D>
using F32 = hn::Rebind<float, D>;
template <class D>
using I32 = hn::Rebind<std::int32_t, D>;
template <class D>
using U16 = hn::Rebind<std::uint16_t, D>;

/// Calls body(tag, position) for every vector of a row.
template <class Body>
HWY_INLINE void ForEachVector(std::size_t count, const Body& body) {
    const Wide wide;
    std::size_t i = 0;
    for (; i + hn::Lanes(wide) <= count; i += hn::Lanes(wide))
        body(wide, i);
    for (; i < count; ++i)
        body(Single(), i);
}

template <class D>
struct Tristimulus {
    hn::Vec<D> x, y, z;
};

template <class D>
HWY_INLINE Tristimulus<D> TristimulusAt(D d, const ChannelRows& rows, const double* m, std::size_t i) {
    const auto a = hn::LoadU(d, rows.first + i);
    const auto b = hn::LoadU(d, rows.second + i);
    const auto c = hn::LoadU(d, rows.third + i);
    const auto row = [&](const double* k) {
        const auto sum = hn::Add(hn::Mul(hn::Set(d, k[0]), a), hn::Mul(hn::Set(d, k[1]), b));
        return hn::Add(sum, hn::Mul(hn::Set(d, k[2]), c));
    };
    return {row(m), row(m + 3), row(m + 6)};
}

template <class D>
HWY_INLINE hn::Vec<D> Denominator(D d, const Tristimulus<D>& at, double y, double z) {
    return hn::Add(hn::Add(at.x, hn::Mul(hn::Set(d, y), at.y)), hn::Mul(hn::Set(d, z), at.z));
}

template <class D>
HWY_INLINE hn::Vec<D> Rounded(D d, hn::Vec<D> value) {
    return hn::PromoteTo(d, hn::DemoteTo(F32<D>(), value));
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
        using D = decltype(d);
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
        hn::StoreU(hn::DemoteTo(U16<D>(), hn::DemoteTo(I32<D>(), pel)), U16<D>(), out + i);
    });
}

void ColourDifferencesOf(const ChannelRows& rows, const ColourWeights& weights, const ColourReference& from,
                         float* out) {
    ForEachVector(rows.count, [&](auto d, std::size_t i) {
        auto at = TristimulusAt(d, rows, weights.matrix, i);
        at.z = Rounded(d, at.z);
        const auto uv = Chromaticity(d, at, Denominator(d, at, 15.0, 3.0));
        const auto du = hn::Sub(uv.u, hn::Set(d, from.u));
        const auto dv = hn::Sub(uv.v, hn::Set(d, from.v));
        // The second channel itself and not Y: hosts weigh what their photopic filter saw.
        const auto lux = hn::Mul(hn::LoadU(d, rows.second + i), hn::Set(d, weights.luxPerGrey));
        const auto reference = hn::Set(d, from.luminance);
        const auto dl = hn::Div(hn::Sub(lux, reference), reference);
        const auto colour =
            hn::Mul(hn::Add(hn::Mul(dv, dv), hn::Mul(du, du)), hn::Set(d, weights.chromaticity));
        const auto light = hn::Mul(hn::Mul(dl, dl), hn::Set(d, weights.luminance));
        const F32<decltype(d)> single;
        hn::StoreU(hn::DemoteTo(single, hn::Sqrt(hn::Add(colour, light))), single, out + i);
    });
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
        const F32<decltype(d)> single;
        hn::StoreU(hn::DemoteTo(single, hn::Sqrt(hn::Add(hn::Add(vv, uv2), uu))), single, out + i);
    });
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(StoreRatiosOf);
HWY_EXPORT(ColourDifferencesOf);
HWY_EXPORT(EllipseDistancesOf);

void StoreRatios(const ChannelRows& rows, const ChromaticRatio& ratio, double low, double gain,
                 std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(StoreRatiosOf)(rows, ratio, low, gain, out);
}

void ColourDifferences(const ChannelRows& rows, const ColourWeights& weights, const ColourReference& from,
                       float* out) {
    HWY_DYNAMIC_DISPATCH(ColourDifferencesOf)(rows, weights, from, out);
}

void EllipseDistances(const ChannelRows& rows, const ToleranceEllipse& ellipse, float* out) {
    HWY_DYNAMIC_DISPATCH(EllipseDistancesOf)(rows, ellipse, out);
}

float LargestOf(const float* values, std::size_t count, float largest) {
    for (std::size_t i = 0; i < count; ++i)
        largest = values[i] > largest ? values[i] : largest;
    return largest;
}

void StoreScaled(const float* values, std::size_t count, float scale, std::uint16_t* out) {
    for (std::size_t i = 0; i < count; ++i)
        out[i] = ClampToPel(TruncToInt32(values[i] * scale));
}

}  // namespace tq::kernels
#endif
