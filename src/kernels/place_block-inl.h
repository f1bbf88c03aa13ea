// Sampling at places that follow no raster, compiled once for each instruction set like the kernels that
// include it.

#if defined(TQIMAGE_KERNELS_PLACE_BLOCK_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TQIMAGE_KERNELS_PLACE_BLOCK_INL_H
#undef TQIMAGE_KERNELS_PLACE_BLOCK_INL_H
#else
#define TQIMAGE_KERNELS_PLACE_BLOCK_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "kernels/bilinear-inl.h"
#include "kernels/bilinear.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR
using Floats = hn::ScalableTag<float>;

/// Places within an image of at least two columns and rows, by the rule of CellSampler. They are computed in
/// vectors of float and blended in vectors of double; in between their pels are fetched one by one, because
/// loads of single pairs keep up with the gather instructions where there are any.
class PlaceBlock {
  public:
    /// Few enough for the first cache, and whole vectors of every width.
    static constexpr std::size_t kPlaces = 128;

    HWY_INLINE explicit PlaceBlock(const SourcePels& source) : source_(source) {}

    /// Puts a vector of places at index `at`. Cells and weights are exact in single precision.
    HWY_INLINE void Put(std::size_t at, hn::Vec<Floats> col, hn::Vec<Floats> row) {
        const Floats d;
        const hn::RebindToSigned<Floats> d32;
        const auto i = hn::Min(hn::ConvertTo(d32, col), hn::Set(d32, source_.cols - 2));
        const auto j = hn::Min(hn::ConvertTo(d32, row), hn::Set(d32, source_.rows - 2));
        hn::Store(hn::Add(hn::Mul(j, hn::Set(d32, source_.cols)), i), d32, cells_ + at);
        hn::Store(hn::Sub(col, hn::ConvertTo(d, i)), d, fx_ + at);
        hn::Store(hn::Sub(row, hn::ConvertTo(d, j)), d, fy_ + at);
    }

    /// The low 16 bits of the truncated values of the first `count` places, which are whole vectors of float.
    HWY_INLINE void Blend(std::size_t count, Pel* out) {
        for (std::size_t i = 0; i < count; ++i) {
            const Pel* near = source_.pels + cells_[i];
            near_[i] = MakePair(near, 1);
            far_[i] = MakePair(near + source_.cols, 1);
        }
        const Numbers d;
        const hn::Rebind<PelPair, Numbers> pairs;
        const hn::Rebind<float, Numbers> weights;
        for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
            const auto value = BlendPairs(hn::Load(pairs, near_ + i), hn::Load(pairs, far_ + i),
                                          hn::PromoteTo(d, hn::Load(weights, fx_ + i)),
                                          hn::PromoteTo(d, hn::Load(weights, fy_ + i)));
            hn::StoreU(WrapToPels(value), hn::Rebind<Pel, Numbers>(), out + i);
        }
    }

  private:
    SourcePels source_;
    HWY_ALIGN std::int32_t cells_[kPlaces];
    HWY_ALIGN float fx_[kPlaces];
    HWY_ALIGN float fy_[kPlaces];
    HWY_ALIGN PelPair near_[kPlaces];
    HWY_ALIGN PelPair far_[kPlaces];
};

/// Runs over `count` places in blocks of whole vectors: places(block, first, length) puts those from `first`
/// on, done(first, length) follows when their pels are at `out`. Returns how many places it covered, none
/// where the image has an axis of one pel.
template <class Places, class Done>
HWY_INLINE std::size_t BlendBlocks(const SourcePels& source, std::size_t count, Pel* out, Places&& places,
                                   Done&& done) {
    const std::size_t lanes = hn::Lanes(Floats());
    if (source.cols < 2 || source.rows < 2 || count < lanes) return 0;
    PlaceBlock block(source);
    std::size_t first = 0;
    while (count - first >= lanes) {
        const std::size_t length = std::min(PlaceBlock::kPlaces, (count - first) / lanes * lanes);
        places(block, first, length);
        block.Blend(length, out + first);
        done(first, length);
        first += length;
    }
    return first;
}
#endif

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // per-target include guard
