#include "kernels/colour_bytes.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/colour_bytes.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// Truncates values of 0..255.
template <class D>
HWY_INLINE void StoreBytes(D, hn::Vec<D> values, std::uint8_t* out) {
    const hn::Rebind<std::uint8_t, D> d8;
    hn::StoreU(hn::DemoteTo(d8, hn::DemoteTo(I32<D>(), values)), d8, out);
}

void NormalizeToBytes(const ChannelRuns& runs, const double* gains, std::uint8_t* const* out) {
    ForEachVector(runs.count, [&](auto d, std::size_t i) {
        const auto zero = hn::Zero(d);
        const auto full = hn::Set(d, 255.0);
        const auto first = hn::Mul(LoadPels(d, runs.first + i), hn::Set(d, gains[0]));
        const auto second = hn::Mul(LoadPels(d, runs.second + i), hn::Set(d, gains[1]));
        const auto third = hn::Mul(LoadPels(d, runs.third + i), hn::Set(d, gains[2]));
        const auto largest = hn::Max(hn::Max(first, second), third);
        const auto lit = hn::Gt(largest, zero);
        const auto divisor = hn::IfThenElse(lit, largest, full);
        const auto store = [&](auto light, std::uint8_t* to) {
            const auto scaled = hn::Div(hn::Mul(light, full), divisor);
            StoreBytes(d, hn::IfThenElseZero(lit, hn::Min(hn::Max(scaled, zero), full)), to + i);
        };
        store(first, out[0]);
        store(second, out[1]);
        store(third, out[2]);
    });
}

/// A byte of EncodeTogether before it is truncated, and where truncation may go wrong.
template <class D>
struct Encoded {
    hn::Vec<I32<D>> byte;
    hn::Mask<D> doubtful;
};

template <class D>
HWY_INLINE Encoded<D> EncodeLight(D d, const TogetherTables& tables, hn::Vec<D> light, hn::Vec<D> tone) {
    const I32<D> d32;
    // A tone is the product of seven roundings, each of 2^-24, times up to 270: below 2e-4 in a byte's unit;
    // a light at the limit is off by less than 1e-8.
    const auto error = hn::Set(d, 2e-4f);
    const auto limitError = hn::Set(d, 1e-8f);
    const auto limit = hn::Set(d, tables.linearLimit);
    const auto straight = hn::Mul(light, hn::Set(d, tables.linearSlope));
    const auto curved = hn::Sub(hn::Mul(tone, hn::Set(d, tables.toneGain)), hn::Set(d, tables.toneOffset));
    const auto scaled = hn::IfThenElse(hn::Gt(light, limit), curved, straight);
    const auto limited = hn::Min(hn::Max(scaled, hn::Zero(d)), hn::Set(d, 255.5f));
    const auto byte = hn::ConvertTo(d32, limited);
    const auto above = hn::Sub(limited, hn::ConvertTo(d, byte));
    const auto justAbove = hn::And(hn::Le(above, error), hn::Ge(limited, hn::Set(d, 1.0f)));
    const auto near = hn::Or(justAbove, hn::Ge(above, hn::Sub(hn::Set(d, 1.0f), error)));
    return {byte, hn::Or(near, hn::Lt(hn::Abs(hn::Sub(light, limit)), limitError))};
}

template <class D>
HWY_INLINE void EncodeAt(D d, const ChannelRuns& runs, const TogetherTables& tables, std::size_t i,
                         std::uint8_t* const* out, std::uint8_t* doubtful) {
    const I32<D> d32;
    const hn::Rebind<std::uint8_t, D> d8;
    const auto levels = [&](const std::uint16_t* pels) {
        return hn::PromoteTo(d32, hn::LoadU(U16<D>(), pels + i));
    };
    const auto a = levels(runs.first);
    const auto b = levels(runs.second);
    const auto c = levels(runs.third);
    const auto lightOf = [&](auto pels, std::size_t k) {
        return hn::Mul(hn::ConvertTo(d, pels), hn::Set(d, tables.scales[k]));
    };
    const auto lightA = lightOf(a, 0);
    const auto lightB = lightOf(b, 1);
    const auto lightC = lightOf(c, 2);
    const auto largest = hn::Max(hn::Max(lightA, lightB), lightC);
    const auto isB = hn::Ge(lightB, largest);
    const auto isC = hn::Ge(lightC, largest);
    const auto ofLargest = [&](const float* gains) {
        return hn::IfThenElse(isC, hn::Set(d, gains[2]),
                              hn::IfThenElse(isB, hn::Set(d, gains[1]), hn::Set(d, gains[0])));
    };
    const auto brightest =
        hn::IfThenElse(hn::RebindMask(d32, isC), c, hn::IfThenElse(hn::RebindMask(d32, isB), b, a));
    const auto factor = hn::Mul(hn::GatherIndex(d, tables.factors, brightest), ofLargest(tables.factorGains));
    const auto toneFactor =
        hn::Mul(hn::GatherIndex(d, tables.toneFactors, brightest), ofLargest(tables.toneFactorGains));
    auto doubts = hn::MaskFromVec(hn::Zero(d));
    const auto encode = [&](auto pels, auto light, std::size_t k) {
        const auto tone = hn::Mul(hn::GatherIndex(d, tables.tones, pels), hn::Set(d, tables.toneGains[k]));
        const auto encoded = EncodeLight(d, tables, hn::Mul(light, factor), hn::Mul(tone, toneFactor));
        hn::StoreU(hn::DemoteTo(d8, encoded.byte), d8, out[k] + i);
        doubts = hn::Or(doubts, encoded.doubtful);
    };
    encode(a, lightA, 0);
    encode(b, lightB, 1);
    encode(c, lightC, 2);
    const auto one = hn::Set(d32, 1);
    hn::StoreU(hn::DemoteTo(d8, hn::IfThenElseZero(hn::RebindMask(d32, doubts), one)), d8, doubtful + i);
}

void EncodeTogether(const ChannelRuns& runs, const TogetherTables& tables, std::uint8_t* const* out,
                    std::uint8_t* doubtful) {
    const hn::ScalableTag<float> d;
    std::size_t i = 0;
    for (; i + hn::Lanes(d) <= runs.count; i += hn::Lanes(d))
        EncodeAt(d, runs, tables, i, out, doubtful);
    for (; i < runs.count; ++i)
        EncodeAt(hn::CappedTag<float, 1>(), runs, tables, i, out, doubtful);
}

void InterleaveBytes(const std::uint8_t* const* channels, std::uint8_t* out, std::size_t count) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<std::uint8_t> d;
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        hn::StoreInterleaved3(hn::LoadU(d, channels[0] + i), hn::LoadU(d, channels[1] + i),
                              hn::LoadU(d, channels[2] + i), d, out + 3 * i);
    }
#endif
    for (; i < count; ++i) {
        for (std::size_t k = 0; k < 3; ++k)
            out[3 * i + k] = channels[k][i];
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(NormalizeToBytes);
HWY_EXPORT(EncodeTogether);
HWY_EXPORT(InterleaveBytes);

void NormalizeToBytes(const ChannelRuns& runs, const double* gains, std::uint8_t* const* out) {
    HWY_DYNAMIC_DISPATCH(NormalizeToBytes)(runs, gains, out);
}

void EncodeTogether(const ChannelRuns& runs, const TogetherTables& tables, std::uint8_t* const* out,
                    std::uint8_t* doubtful) {
    HWY_DYNAMIC_DISPATCH(EncodeTogether)(runs, tables, out, doubtful);
}

void InterleaveBytes(const std::uint8_t* const* channels, std::uint8_t* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(InterleaveBytes)(channels, out, count);
}

}  // namespace tq::kernels
#endif
