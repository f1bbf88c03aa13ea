#include "kernels/median_network.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/median_network.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<std::uint16_t>;
using V = hn::Vec<D>;

/// Columns that are worked on together: their ordered pels stay in the first-level cache.
constexpr std::size_t kTile = 1024;

/// Afterwards a <= b. The compiler drops the half whose result nobody reads.
HWY_INLINE void Exchange(V& a, V& b) {
    const V low = hn::Min(a, b);
    b = hn::Max(a, b);
    a = low;
}

HWY_INLINE V Middle(V a, V b, V c) {
    Exchange(a, b);
    return hn::Max(a, hn::Min(b, c));
}

HWY_INLINE void Sort5(V& a, V& b, V& c, V& d, V& e) {
    Exchange(a, b);
    Exchange(d, e);
    Exchange(c, e);
    Exchange(c, d);
    Exchange(a, d);
    Exchange(a, c);
    Exchange(b, e);
    Exchange(b, d);
    Exchange(b, c);
}

/// Column i in order is at columns[0..kRows - 1][i].
template <std::size_t kRows>
struct Columns {
    std::uint16_t ordered[kRows][kTile];

    HWY_INLINE V At(std::size_t rank, std::size_t i) const { return hn::LoadU(D(), ordered[rank] + i); }
};

/// The middle of nine from three ordered columns: it is the middle of the largest smallest, the middle middle
/// and the smallest largest.
HWY_INLINE V MedianOf9(const Columns<3>& columns, std::size_t i) {
    const V low = hn::Max(hn::Max(columns.At(0, i), columns.At(0, i + 1)), columns.At(0, i + 2));
    const V middle = Middle(columns.At(1, i), columns.At(1, i + 1), columns.At(1, i + 2));
    const V high = hn::Min(hn::Min(columns.At(2, i), columns.At(2, i + 1)), columns.At(2, i + 2));
    return Middle(low, middle, high);
}

/// The middle of 25 from five ordered columns. With the pels of each rank in order, too, pel (rank, place)
/// has (rank + 1)(place + 1) - 1 pels that are not larger and (5 - rank)(5 - place) - 1 that are not smaller;
/// whoever has more than 12 of either cannot be the middle. Six leave on each side, and the middle of the
/// other thirteen is the middle of all.
HWY_INLINE V MedianOf25(const Columns<5>& columns, std::size_t i) {
    V row[5][5];
    for (std::size_t rank = 0; rank < 5; ++rank) {
        for (std::size_t k = 0; k < 5; ++k)
            row[rank][k] = columns.At(rank, i + k);
        Sort5(row[rank][0], row[rank][1], row[rank][2], row[rank][3], row[rank][4]);
    }
    // The thirteen lie on diagonals of 4, 5 and 4, and a pel is not larger than its one or two neighbours on
    // the next diagonal. Above the third largest of the first four lie the largest, three of the middle five
    // and three of the last four at least: seven, so it is not the seventh of thirteen, nor are the two below
    // it. Likewise three of the last four leave, and the fourth of the other seven is the middle.
    const V low = hn::Max(hn::Max(row[0][3], row[1][2]), hn::Max(row[2][1], row[3][0]));
    const V high = hn::Min(hn::Min(row[1][4], row[2][3]), hn::Min(row[3][2], row[4][1]));
    V mid[5] = {row[0][4], row[1][3], row[2][2], row[3][1], row[4][0]};
    Sort5(mid[0], mid[1], mid[2], mid[3], mid[4]);
    // The fourth of two ordered lists of 2 and 5.
    const V fourth = hn::Min(hn::Max(hn::Min(low, high), mid[2]), hn::Max(hn::Max(low, high), mid[1]));
    return hn::Min(fourth, mid[3]);
}

HWY_INLINE V MedianOf(const Columns<3>& columns, std::size_t i) {
    return MedianOf9(columns, i);
}

HWY_INLINE V MedianOf(const Columns<5>& columns, std::size_t i) {
    return MedianOf25(columns, i);
}

/// Orders `count` columns, a multiple of the lanes.
HWY_INLINE void OrderColumns(const std::uint16_t* const rows[3], std::size_t first, std::size_t count,
                             Columns<3>& columns) {
    const D d;
    for (std::size_t at = 0; at < count; at += hn::Lanes(d)) {
        V a = hn::LoadU(d, rows[0] + first + at), b = hn::LoadU(d, rows[1] + first + at),
          c = hn::LoadU(d, rows[2] + first + at);
        Exchange(a, b);
        Exchange(b, c);
        Exchange(a, b);
        hn::StoreU(a, d, columns.ordered[0] + at);
        hn::StoreU(b, d, columns.ordered[1] + at);
        hn::StoreU(c, d, columns.ordered[2] + at);
    }
}

HWY_INLINE void OrderColumns(const std::uint16_t* const rows[5], std::size_t first, std::size_t count,
                             Columns<5>& columns) {
    const D d;
    for (std::size_t at = 0; at < count; at += hn::Lanes(d)) {
        V v[5];
        for (std::size_t i = 0; i < 5; ++i)
            v[i] = hn::LoadU(d, rows[i] + first + at);
        Sort5(v[0], v[1], v[2], v[3], v[4]);
        for (std::size_t i = 0; i < 5; ++i)
            hn::StoreU(v[i], d, columns.ordered[i] + at);
    }
}

/// The last columns of a row, fewer than two vectors, continued by zeros so that whole vectors can be read.
template <std::size_t kRows>
HWY_INLINE void FinishRow(const std::uint16_t* const rows[kRows], std::size_t first, std::size_t cols,
                          Columns<kRows>& columns, std::uint16_t* out) {
    constexpr std::size_t kPadded = 3 * hn::MaxLanes(D());
    const std::size_t lanes = hn::Lanes(D());
    std::uint16_t padded[kRows][kPadded] = {};
    const std::uint16_t* lines[kRows];
    for (std::size_t i = 0; i < kRows; ++i) {
        std::copy(rows[i] + first, rows[i] + cols, padded[i]);
        lines[i] = padded[i];
    }
    OrderColumns(lines, 0, 3 * lanes, columns);
    std::uint16_t medians[kPadded];
    hn::StoreU(MedianOf(columns, 0), D(), medians);
    hn::StoreU(MedianOf(columns, lanes), D(), medians + lanes);
    std::copy_n(medians, cols - first - (kRows - 1), out + first);
}
#endif

template <std::size_t kRows>
HWY_INLINE void MedianRow(const std::uint16_t* const rows[kRows], std::size_t cols, std::uint16_t* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    Columns<kRows> columns;
    const std::size_t lanes = hn::Lanes(D());
    // A tile of n columns, a multiple of the lanes, serves n - lanes windows.
    while (i + 2 * lanes <= cols) {
        const std::size_t count = std::min(kTile, cols - i) / lanes * lanes;
        OrderColumns(rows, i, count, columns);
        for (std::size_t at = 0; at + lanes < count; at += lanes)
            hn::StoreU(MedianOf(columns, at), D(), out + i + at);
        i += count - lanes;
    }
    if (i + kRows <= cols) FinishRow<kRows>(rows, i, cols, columns, out);
#else
    for (; i + kRows <= cols; ++i) {
        std::uint16_t window[kRows * kRows];
        for (std::size_t k = 0; k < kRows; ++k)
            std::copy_n(rows[k] + i, kRows, window + k * kRows);
        std::uint16_t* const middle = window + kRows * kRows / 2;
        std::nth_element(window, middle, window + kRows * kRows);
        out[i] = *middle;
    }
#endif
}

void Median3Row(const std::uint16_t* const rows[3], std::size_t cols, std::uint16_t* out) {
    MedianRow<3>(rows, cols, out);
}

void Median5Row(const std::uint16_t* const rows[5], std::size_t cols, std::uint16_t* out) {
    MedianRow<5>(rows, cols, out);
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(Median3Row);
HWY_EXPORT(Median5Row);

void Median3Row(const std::uint16_t* const rows[3], std::size_t cols, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(Median3Row)(rows, cols, out);
}

void Median5Row(const std::uint16_t* const rows[5], std::size_t cols, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(Median5Row)(rows, cols, out);
}

}  // namespace tq::kernels
#endif
