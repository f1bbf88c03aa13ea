#include "kernels/map_row.h"

#include <algorithm>
#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/map_row.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/place_block-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// Places outside the image are none.
class Within {
  public:
    explicit Within(const SourcePels& source)
        : cols_(static_cast<float>(source.cols)), rows_(static_cast<float>(source.rows)) {}

    static constexpr Pel kDarkest = 0;

    HWY_INLINE bool Holds(float col, float row) const {
        return col >= 0.0f && row >= 0.0f && col < cols_ && row < rows_;
    }
    HWY_INLINE float Col(float col) const { return col; }
    HWY_INLINE float Row(float row) const { return row; }

#if HWY_TARGET != HWY_SCALAR
    template <class V>
    HWY_INLINE auto Holds(V col, V row) const {
        const Floats d;
        const auto zero = hn::Zero(d);
        return hn::And(hn::And(hn::Ge(col, zero), hn::Ge(row, zero)),
                       hn::And(hn::Lt(col, hn::Set(d, cols_)), hn::Lt(row, hn::Set(d, rows_))));
    }
    template <class V>
    HWY_INLINE V Col(V col) const {
        return col;
    }
    template <class V>
    HWY_INLINE V Row(V row) const {
        return row;
    }
#endif

  private:
    float cols_;
    float rows_;
};

/// Places outside the image are moved to its border. Every step rounds to single precision, because the maps
/// were measured through exactly this arithmetic; dividing by 1 changes no bit, so an unbinned image goes
/// without the division.
template <bool kBinned>
class Clamped {
  public:
    Clamped(const SourcePels& source, const SensorWindow& window)
        : window_(window),
          lastCol_(static_cast<float>(source.cols - 1)),
          lastRow_(static_cast<float>(source.rows - 1)) {}

    static constexpr Pel kDarkest = 1;

    HWY_INLINE bool Holds(float col, float row) const { return col >= 0.0f && row >= 0.0f; }
    HWY_INLINE float Col(float col) const { return Clamp(col, window_.col, window_.colStep, lastCol_); }
    HWY_INLINE float Row(float row) const { return Clamp(row, window_.row, window_.rowStep, lastRow_); }

#if HWY_TARGET != HWY_SCALAR
    template <class V>
    HWY_INLINE auto Holds(V col, V row) const {
        const auto zero = hn::Zero(Floats());
        return hn::And(hn::Ge(col, zero), hn::Ge(row, zero));
    }
    template <class V>
    HWY_INLINE V Col(V col) const {
        return Clamp(col, window_.col, window_.colStep, lastCol_);
    }
    template <class V>
    HWY_INLINE V Row(V row) const {
        return Clamp(row, window_.row, window_.rowStep, lastRow_);
    }
#endif

  private:
    static HWY_INLINE float Clamp(float at, float offset, float step, float last) {
        at -= offset;
        if (kBinned) at /= step;
        return std::min(std::max(at, 0.0f), last);
    }
#if HWY_TARGET != HWY_SCALAR
    template <class V>
    static HWY_INLINE V Clamp(V at, float offset, float step, float last) {
        const Floats d;
        at = hn::Sub(at, hn::Set(d, offset));
        if (kBinned) at = hn::Div(at, hn::Set(d, step));
        return hn::Min(hn::Max(at, hn::Zero(d)), hn::Set(d, last));
    }
#endif

    SensorWindow window_;
    float lastCol_;
    float lastRow_;
};

template <class Rule>
HWY_INLINE void Sample(const SourcePels& source, const float* places, std::size_t count, const Rule& rule,
                       Pel* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const Floats d;
    const hn::RebindToSigned<Floats> d32;
    const hn::Rebind<std::int16_t, Floats> signs;
    const hn::Rebind<Pel, Floats> pels;
    const std::size_t lanes = hn::Lanes(d);
    HWY_ALIGN std::int16_t lit[PlaceBlock::kPlaces];
    const auto put = [&](PlaceBlock& block, std::size_t first, std::size_t length) {
        for (std::size_t at = 0; at < length; at += lanes) {
            auto col = hn::Zero(d);
            auto row = col;
            hn::LoadInterleaved2(d, places + 2 * (first + at), col, row);
            const auto holds = rule.Holds(col, row);
            hn::Store(hn::DemoteTo(signs, hn::BitCast(d32, hn::VecFromMask(d, holds))), signs, lit + at);
            block.Put(at, hn::IfThenElseZero(holds, rule.Col(col)), hn::IfThenElseZero(holds, rule.Row(row)));
        }
    };
    const auto finish = [&](std::size_t first, std::size_t length) {
        for (std::size_t at = 0; at < length; at += lanes) {
            const auto keep = hn::BitCast(pels, hn::Load(signs, lit + at));
            const auto value = hn::Max(hn::LoadU(pels, out + first + at), hn::Set(pels, Rule::kDarkest));
            hn::StoreU(hn::And(value, keep), pels, out + first + at);
        }
    };
    i = BlendBlocks(source, count, out, put, finish);
#endif
    const CellSampler sampler(source);
    for (; i < count; ++i) {
        const float col = places[2 * i];
        const float row = places[2 * i + 1];
        out[i] = 0;
        if (!rule.Holds(col, row)) continue;
        const double value = sampler.At(rule.Col(col), rule.Row(row));
        out[i] = std::max(WrapToPel(TruncToInt32(value)), Rule::kDarkest);
    }
}

void SampleWithin(const SourcePels& source, const float* places, std::size_t count, Pel* out) {
    Sample(source, places, count, Within(source), out);
}

void SampleClamped(const SourcePels& source, const float* places, std::size_t count,
                   const SensorWindow& window, Pel* out) {
    if (window.colStep == 1.0f && window.rowStep == 1.0f) {
        Sample(source, places, count, Clamped<false>(source, window), out);
    } else {
        Sample(source, places, count, Clamped<true>(source, window), out);
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(SampleWithin);
HWY_EXPORT(SampleClamped);

void SampleWithin(const SourcePels& source, const float* places, std::size_t count, Pel* out) {
    HWY_DYNAMIC_DISPATCH(SampleWithin)(source, places, count, out);
}

void SampleClamped(const SourcePels& source, const float* places, std::size_t count,
                   const SensorWindow& window, Pel* out) {
    HWY_DYNAMIC_DISPATCH(SampleClamped)(source, places, count, window, out);
}

}  // namespace tq::kernels
#endif
