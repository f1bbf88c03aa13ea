#include "kernels/polar_ring.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/polar_ring.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

#include "kernels/bilinear-inl.h"
#include "kernels/pel_loops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

/// So many places are found, fetched and blended at a time: each of the three runs at full speed by itself.
constexpr std::size_t kRun = 256;

/// The cell of a place, and how far into it the place lies; -1 outside, where the fractions are 0.
struct Cells {
    std::int32_t first[kRun];
    double fx[kRun];
    double fy[kRun];
};

HWY_INLINE double SampleAt(const SourcePels& source, const RingPlaces& ring, double cosine, double sine) {
    const double col = ring.colsPerLength * (ring.radius * cosine) + ring.centreCol;
    const double row = ring.centreRow - ring.radius * sine * ring.rowsPerLength;
    if (!(col >= 0.0 && row >= 0.0 && col <= source.cols - 1 && row <= source.rows - 1)) return 0.0;
    return CellSampler(source).At(col, row);
}

#if HWY_TARGET != HWY_SCALAR
HWY_INLINE void FindCells(const SourcePels& source, const RingPlaces& ring, const double* cosines,
                          const double* sines, std::size_t count, Cells& cells) {
    const hn::ScalableTag<double> d;
    const hn::Rebind<std::int32_t, decltype(d)> d32;
    const auto radius = hn::Set(d, ring.radius);
    const auto lastCol = hn::Set(d, source.cols - 1.0);
    const auto lastRow = hn::Set(d, source.rows - 1.0);
    const auto one = hn::Set(d, 1.0);
    const auto zero = hn::Zero(d);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto x = hn::Mul(radius, hn::LoadU(d, cosines + i));
        const auto y = hn::Mul(radius, hn::LoadU(d, sines + i));
        const auto col = hn::Add(hn::Mul(hn::Set(d, ring.colsPerLength), x), hn::Set(d, ring.centreCol));
        const auto row = hn::Sub(hn::Set(d, ring.centreRow), hn::Mul(y, hn::Set(d, ring.rowsPerLength)));
        const auto inside = hn::And(hn::And(hn::Ge(col, zero), hn::Ge(row, zero)),
                                    hn::And(hn::Le(col, lastCol), hn::Le(row, lastRow)));
        const auto cellCol = hn::Min(hn::Trunc(hn::IfThenElseZero(inside, col)), hn::Sub(lastCol, one));
        const auto cellRow = hn::Min(hn::Trunc(hn::IfThenElseZero(inside, row)), hn::Sub(lastRow, one));
        // Whole numbers of at most 64 million.
        const auto cell = hn::Add(hn::Mul(cellRow, hn::Add(lastCol, one)), cellCol);
        hn::StoreU(hn::DemoteTo(d32, hn::IfThenElse(inside, cell, hn::Neg(one))), d32, cells.first + i);
        hn::StoreU(hn::IfThenElseZero(inside, hn::Sub(col, cellCol)), d, cells.fx + i);
        hn::StoreU(hn::IfThenElseZero(inside, hn::Sub(row, cellRow)), d, cells.fy + i);
    }
}

/// The pels of the cells, as pairs.
struct Fetched {
    PelPair near[kRun];
    PelPair far[kRun];
};

HWY_INLINE void Fetch(const SourcePels& source, const Cells& cells, std::size_t count, Fetched& pairs) {
    for (std::size_t i = 0; i < count; ++i) {
        if (cells.first[i] < 0) {
            pairs.near[i] = pairs.far[i] = 0;
            continue;
        }
        const Pel* near = source.pels + cells.first[i];
        // MakePair with one load for both pels, where memory holds the low half first.
        std::memcpy(&pairs.near[i], near, sizeof pairs.near[i]);
        std::memcpy(&pairs.far[i], near + source.cols, sizeof pairs.far[i]);
    }
}

HWY_INLINE void BlendCells(const Cells& cells, const Fetched& pairs, std::size_t count, double* greys) {
    const Numbers d;
    const hn::Rebind<PelPair, Numbers> two;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto value = BlendPairs(hn::LoadU(two, pairs.near + i), hn::LoadU(two, pairs.far + i),
                                      hn::LoadU(d, cells.fx + i), hn::LoadU(d, cells.fy + i));
        hn::StoreU(value, d, greys + i);
    }
}
#endif

void SampleRing(const SourcePels& source, const RingPlaces& ring, const double* cosines, const double* sines,
                std::size_t count, double* greys) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    Cells cells;
    Fetched pairs;
    const std::size_t lanes = hn::Lanes(hn::ScalableTag<double>());
    while (count - i >= lanes) {
        const std::size_t run = std::min(kRun, (count - i) / lanes * lanes);
        FindCells(source, ring, cosines + i, sines + i, run, cells);
        Fetch(source, cells, run, pairs);
        BlendCells(cells, pairs, run, greys + i);
        i += run;
    }
#endif
    for (; i < count; ++i)
        greys[i] = SampleAt(source, ring, cosines[i], sines[i]);
}

double LargestProduct(const double* greys, double factor, std::size_t count, double start) {
    double largest = start;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<double> d;
    auto best = hn::Set(d, start);
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        const auto product = hn::Mul(hn::LoadU(d, greys + i), hn::Set(d, factor));
        best = hn::IfThenElse(hn::Gt(product, best), product, best);
    }
    largest = hn::GetLane(hn::MaxOfLanes(d, best));
#endif
    for (; i < count; ++i) {
        if (greys[i] * factor > largest) largest = greys[i] * factor;
    }
    return largest;
}

void StoreProducts(const double* greys, double factor, double scale, std::size_t count, Pel* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<double> d;
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        const auto product = hn::Mul(hn::LoadU(d, greys + i), hn::Set(d, factor));
        const auto value = hn::Add(hn::Mul(product, hn::Set(d, scale)), hn::Set(d, 0.5));
        hn::StoreU(ToPels<Excess::kClamp>(d, value), hn::Rebind<Pel, decltype(d)>(), out + i);
    }
#endif
    for (; i < count; ++i)
        out[i] = ClampToPel(TruncToInt32(greys[i] * factor * scale + 0.5));
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(SampleRing);
HWY_EXPORT(LargestProduct);
HWY_EXPORT(StoreProducts);

void SampleRing(const SourcePels& source, const RingPlaces& ring, const double* cosines, const double* sines,
                std::size_t count, double* greys) {
    HWY_DYNAMIC_DISPATCH(SampleRing)(source, ring, cosines, sines, count, greys);
}

double LargestProduct(const double* greys, double factor, std::size_t count, double start) {
    return HWY_DYNAMIC_DISPATCH(LargestProduct)(greys, factor, count, start);
}

void StoreProducts(const double* greys, double factor, double scale, std::size_t count, Pel* out) {
    HWY_DYNAMIC_DISPATCH(StoreProducts)(greys, factor, scale, count, out);
}

}  // namespace tq::kernels
#endif
