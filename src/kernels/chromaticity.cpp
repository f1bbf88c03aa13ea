#include "kernels/chromaticity.h"

#include <algorithm>
#include <cmath>

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

/// Calls body(rows) with what the row is made of. By value, as the kernels' parameters are: a store may write
/// what is referred to, as far as the compiler knows, and it would read all of it again for every vector.
template <class Body>
HWY_INLINE void WithValues(const ChannelValues& row, const Body& body) {
    if (row.averages.first != nullptr) {
        body(row.averages);
    } else {
        body(row.pels);
    }
}

template <class D, class Rows>
HWY_INLINE Tristimulus<D> TristimulusAt(D d, const Rows& rows, const double* m, std::size_t i) {
    const auto a = LoadValues(d, rows.first + i);
    const auto b = LoadValues(d, rows.second + i);
    const auto c = LoadValues(d, rows.third + i);
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

void StoreRatiosOf(const ChannelValues& row, ChromaticRatio ratio, double low, double gain,
                   std::uint16_t* out) {
    WithValues(row, [&](const auto rows) {
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
    });
}

/// What is compared at a vector of pels: tristimulus values and what u' and v' are divided by.
template <class D>
struct Compared {
    Tristimulus<D> at;
    hn::Vec<D> below;
    hn::Vec<D> lux;
};

template <class D, class Rows>
HWY_INLINE Compared<D> ComparedAt(D d, const Rows& rows, const ColourWeights& weights, std::size_t i) {
    auto at = TristimulusAt(d, rows, weights.matrix, i);
    at.z = Rounded(d, at.z);
    // The second channel itself and not Y: hosts weigh what their photopic filter saw.
    const auto lux = hn::Mul(LoadValues(d, rows.second + i), hn::Set(d, weights.luxPerGrey));
    return {at, Denominator(d, at, 15.0, 3.0), lux};
}

template <class D>
HWY_INLINE hn::Vec<D> WeightedDistance(D d, hn::Vec<D> du, hn::Vec<D> dv, hn::Vec<D> dl,
                                       const ColourWeights& weights) {
    const auto colour = hn::Mul(hn::Add(hn::Mul(dv, dv), hn::Mul(du, du)), hn::Set(d, weights.chromaticity));
    const auto light = hn::Mul(hn::Mul(dl, dl), hn::Set(d, weights.luminance));
    return hn::Sqrt(hn::Add(colour, light));
}

/// `from` has u', v' and the luminance that the pels are compared with.
template <class D>
HWY_INLINE void StoreDifference(D d, const Compared<D>& it, const Tristimulus<D>& from,
                                const ColourWeights& weights, float* out) {
    const auto uv = Chromaticity(d, it.at, it.below);
    // A reference without light has no relative difference; NaN has none either.
    const auto lit = hn::Ge(from.z, hn::Set(d, kNoLuminance));
    const auto dl = hn::IfThenElseZero(lit, hn::Div(hn::Sub(it.lux, from.z), from.z));
    const auto distance = WeightedDistance(d, hn::Sub(uv.u, from.x), hn::Sub(uv.v, from.y), dl, weights);
    hn::StoreU(ToSingle(d, distance), F32<D>(), out);
}

/// One reference for all pels, with what makes divisions by it products.
struct FixedReference {
    ColourReference from;
    double perLuminance;  ///< 0 without a luminance
    double slack;         ///< what u' and v' are to the distance, at the reference
};

/// The same with one division for three. It differs by less than a few parts in 2^50 of the distance and of
/// what u' and v' contribute: where that makes no difference in single precision the result is the same.
/// Returns false, with nothing stored, where it may.
template <class D>
HWY_INLINE bool StoreClearDifference(D d, const Compared<D>& it, const FixedReference& reference,
                                     const ColourWeights& weights, float* out) {
    const auto inverse =
        hn::IfThenZeroElse(hn::Eq(it.below, hn::Zero(d)), hn::Div(hn::Set(d, 1.0), it.below));
    const auto u = hn::Mul(hn::Mul(hn::Set(d, 4.0), it.at.x), inverse);
    const auto v = hn::Mul(hn::Mul(hn::Set(d, 9.0), it.at.y), inverse);
    const auto dl =
        hn::Mul(hn::Sub(it.lux, hn::Set(d, reference.from.luminance)), hn::Set(d, reference.perLuminance));
    const auto distance = WeightedDistance(d, hn::Sub(u, hn::Set(d, reference.from.u)),
                                           hn::Sub(v, hn::Set(d, reference.from.v)), dl, weights);
    const auto doubt =
        hn::Mul(hn::Add(distance, hn::Set(d, reference.slack)), hn::Set(d, 1.0 / (std::int64_t{1} << 47)));
    const F32<D> single;
    const auto upper = ToSingle(d, hn::Add(distance, doubt));
    if (!hn::AllTrue(single, hn::Eq(upper, ToSingle(d, hn::Sub(distance, doubt))))) return false;
    hn::StoreU(upper, single, out);
    return true;
}

void ColourDifferencesOf(const ChannelValues& row, ColourWeights weights, ColourReference from, float* out) {
    const bool lit = from.luminance >= kNoLuminance;
    const FixedReference reference{from, lit ? 1.0 / from.luminance : 0.0,
                                   std::sqrt(weights.chromaticity) * (std::abs(from.u) + std::abs(from.v))};
    WithValues(row, [&](const auto rows) {
        ForEachVector(rows.count, [&](auto d, std::size_t i) {
            const auto it = ComparedAt(d, rows, weights, i);
            if (StoreClearDifference(d, it, reference, weights, out + i)) return;
            StoreDifference(d, it, {hn::Set(d, from.u), hn::Set(d, from.v), hn::Set(d, from.luminance)},
                            weights, out + i);
        });
    });
}

void LocalDifferencesOf(const ChannelValues& row, ChannelRows around, ColourWeights weights, float* out) {
    WithValues(row, [&](const auto rows) {
        ForEachVector(rows.count, [&](auto d, std::size_t i) {
            // The reference is rounded as one that a host passes.
            const auto at = TristimulusAt(d, around, weights.matrix, i);
            const auto uv = Chromaticity(d, at, Denominator(d, at, 15.0, 3.0));
            const auto lux = hn::Mul(hn::LoadU(d, around.second + i), hn::Set(d, weights.luxPerGrey));
            StoreDifference(d, ComparedAt(d, rows, weights, i),
                            {Rounded(d, uv.u), Rounded(d, uv.v), Rounded(d, lux)}, weights, out + i);
        });
    });
}

void EllipseDistancesOf(const ChannelValues& row, ToleranceEllipse ellipse, float* out) {
    WithValues(row, [&](const auto rows) {
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
    });
}

float LargestOfOf(const float* values, std::size_t count, float largest) {
    HWY_ALIGN float lanes[HWY_MAX_BYTES / sizeof(float)];
    const hn::ScalableTag<float> wide;
    auto best = hn::Set(wide, largest);
    std::size_t i = 0;
    for (; i + hn::Lanes(wide) <= count; i += hn::Lanes(wide)) {
        const auto value = hn::LoadU(wide, values + i);
        best = hn::IfThenElse(hn::Gt(value, best), value, best);
    }
    hn::Store(best, wide, lanes);
    largest = *std::max_element(lanes, lanes + hn::Lanes(wide));
    for (; i < count; ++i)
        largest = values[i] > largest ? values[i] : largest;
    return largest;
}

void StoreScaledOf(const float* values, std::size_t count, float scale, std::uint16_t* out) {
    ForEachVector<float>(count, [&](auto d, std::size_t i) {
        const auto level = hn::Mul(hn::LoadU(d, values + i), hn::Set(d, scale));
        // Beyond int32, and without a number, a conversion is the indefinite integer, which is negative.
        const auto fits = hn::And(hn::Ge(level, hn::Zero(d)), hn::Lt(level, hn::Set(d, 2147483648.0f)));
        const auto pel =
            hn::Min(hn::IfThenElseZero(fits, level), hn::Set(d, static_cast<float>(kLargestPel)));
        hn::StoreU(hn::DemoteTo(U16<decltype(d)>(), hn::ConvertTo(I32<decltype(d)>(), pel)),
                   U16<decltype(d)>(), out + i);
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
HWY_EXPORT(LargestOfOf);
HWY_EXPORT(StoreScaledOf);

void StoreRatios(const ChannelValues& row, const ChromaticRatio& ratio, double low, double gain,
                 std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(StoreRatiosOf)(row, ratio, low, gain, out);
}

void ColourDifferences(const ChannelValues& row, const ColourWeights& weights, const ColourReference& from,
                       float* out) {
    HWY_DYNAMIC_DISPATCH(ColourDifferencesOf)(row, weights, from, out);
}

void LocalDifferences(const ChannelValues& row, const ChannelRows& around, const ColourWeights& weights,
                      float* out) {
    HWY_DYNAMIC_DISPATCH(LocalDifferencesOf)(row, around, weights, out);
}

void EllipseDistances(const ChannelValues& row, const ToleranceEllipse& ellipse, float* out) {
    HWY_DYNAMIC_DISPATCH(EllipseDistancesOf)(row, ellipse, out);
}

float LargestOf(const float* values, std::size_t count, float largest) {
    return HWY_DYNAMIC_DISPATCH(LargestOfOf)(values, count, largest);
}

void StoreScaled(const float* values, std::size_t count, float scale, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(StoreScaledOf)(values, count, scale, out);
}

void LeaveOut(const std::uint16_t* pels, std::size_t count, float* values) {
    for (std::size_t i = 0; i < count; ++i)
        values[i] = pels[i] == 0 ? -1.0f : values[i];
}

void RaiseCounted(const float* values, std::size_t count, std::uint16_t* out) {
    for (std::size_t i = 0; i < count; ++i)
        out[i] = values[i] < 0.0f ? Pel{0} : std::max(out[i], Pel{1});
}

}  // namespace tq::kernels
#endif
