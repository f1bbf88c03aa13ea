#include "kernels/rotate_row.h"

#include <algorithm>
#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/rotate_row.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/place_block-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class Float>
struct Place {
    Float col;
    Float row;
};

/// The steps in the order that every target follows.
HWY_INLINE Place<float> PlaceOf(const RotationBack& back, float y, std::int32_t col) {
    const float dx = (static_cast<float>(col) + back.left) - back.centreCol;
    const float dy = y + back.centreRow;
    return {(back.cosine * dx - back.sine * dy) + back.centreCol,
            -((back.sine * dx + back.cosine * dy) - back.centreRow)};
}

#if HWY_TARGET != HWY_SCALAR
/// The same for a vector of columns.
HWY_INLINE Place<hn::Vec<Floats>> PlacesOf(const RotationBack& back, float y, hn::Vec<Floats> col) {
    const Floats d;
    const auto dx = hn::Sub(hn::Add(col, hn::Set(d, back.left)), hn::Set(d, back.centreCol));
    const auto dy = hn::Set(d, y + back.centreRow);
    const auto sine = hn::Set(d, back.sine);
    const auto cosine = hn::Set(d, back.cosine);
    return {hn::Add(hn::Sub(hn::Mul(cosine, dx), hn::Mul(sine, dy)), hn::Set(d, back.centreCol)),
            hn::Neg(hn::Sub(hn::Add(hn::Mul(sine, dx), hn::Mul(cosine, dy)), hn::Set(d, back.centreRow)))};
}
#endif

/// The pels of a row whose places lie inside. A place's co-ordinates only grow or only fall along the row,
/// for rounding keeps the order of what it rounds: so the pels are a run.
struct Run {
    std::int32_t first;
    std::int32_t end;
};

/// First index in 0 .. count for which `holds` is true, false before it and true behind.
template <class Holds>
HWY_INLINE std::int32_t FirstThat(std::int32_t count, Holds&& holds) {
    std::int32_t low = 0;
    while (low < count) {
        const std::int32_t middle = low + (count - low) / 2;
        if (holds(middle)) {
            count = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

template <class At>
HWY_INLINE Run RunInside(std::int32_t count, float limit, bool falls, At&& at) {
    if (falls) {
        return {FirstThat(count, [&](std::int32_t i) { return at(i) < limit; }),
                FirstThat(count, [&](std::int32_t i) { return !(at(i) >= 0.0f); })};
    }
    return {FirstThat(count, [&](std::int32_t i) { return at(i) >= 0.0f; }),
            FirstThat(count, [&](std::int32_t i) { return !(at(i) < limit); })};
}

HWY_INLINE Run RunInside(const SourcePels& source, const RotationBack& back, float y, std::int32_t cols) {
    const Run byCol = RunInside(cols, static_cast<float>(source.cols), back.cosine < 0.0f,
                                [&](std::int32_t i) { return PlaceOf(back, y, i).col; });
    const Run byRow = RunInside(cols, static_cast<float>(source.rows), back.sine > 0.0f,
                                [&](std::int32_t i) { return PlaceOf(back, y, i).row; });
    const std::int32_t first = std::max(byCol.first, byRow.first);
    return {first, std::max(first, std::min(byCol.end, byRow.end))};
}

void RotateRow(const SourcePels& source, const RotationBack& back, float y, Pel* out, std::int32_t cols) {
    const Run run = RunInside(source, back, y, cols);
    std::fill_n(out, run.first, Pel{0});
    std::int32_t i = run.first;
#if HWY_TARGET != HWY_SCALAR
    const Floats d;
    const auto put = [&](PlaceBlock& block, std::size_t first, std::size_t length) {
        for (std::size_t at = 0; at < length; at += hn::Lanes(d)) {
            const auto col = static_cast<std::int32_t>(first + at) + run.first;
            const auto place = PlacesOf(back, y, hn::Iota(d, static_cast<float>(col)));
            block.Put(at, place.col, place.row);
        }
    };
    i += static_cast<std::int32_t>(BlendBlocks(source, static_cast<std::size_t>(run.end - run.first), out + i,
                                               put, [](std::size_t, std::size_t) {}));
#endif
    const CellSampler sampler(source);
    for (; i < run.end; ++i) {
        const Place<float> place = PlaceOf(back, y, i);
        out[i] = WrapToPel(TruncToInt32(sampler.At(place.col, place.row)));
    }
    std::fill(out + run.end, out + cols, Pel{0});
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(RotateRow);

void RotateRow(const SourcePels& source, const RotationBack& back, float y, Pel* out, std::int32_t cols) {
    HWY_DYNAMIC_DISPATCH(RotateRow)(source, back, y, out, cols);
}

}  // namespace tq::kernels
#endif
