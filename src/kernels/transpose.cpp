#include "kernels/transpose.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/transpose.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR
/// Eight rows of eight pels. Each round lays the rows of the lower half between those of the upper one; after
/// three rounds every pel is where its row and column are exchanged.
constexpr std::ptrdiff_t kSide = 8;

HWY_INLINE void TransposeBlock(const Pel* in, std::ptrdiff_t inStride, Pel* out, std::ptrdiff_t outStride) {
    const hn::FixedTag<Pel, kSide> d;
    hn::Vec<decltype(d)> rows[kSide];
    for (std::ptrdiff_t i = 0; i < kSide; ++i)
        rows[i] = hn::LoadU(d, in + i * inStride);
    for (int round = 0; round < 3; ++round) {
        hn::Vec<decltype(d)> mixed[kSide];
        for (std::ptrdiff_t i = 0; i < kSide / 2; ++i) {
            mixed[2 * i] = hn::InterleaveLower(d, rows[i], rows[i + kSide / 2]);
            mixed[2 * i + 1] = hn::InterleaveUpper(d, rows[i], rows[i + kSide / 2]);
        }
        for (std::ptrdiff_t i = 0; i < kSide; ++i)
            rows[i] = mixed[i];
    }
    for (std::ptrdiff_t i = 0; i < kSide; ++i)
        hn::StoreU(rows[i], d, out + i * outStride);
}
#endif

void TransposePels(const Pel* in, std::ptrdiff_t inStride, std::ptrdiff_t cols, std::ptrdiff_t rows, Pel* out,
                   std::ptrdiff_t outStride) {
    std::ptrdiff_t wholeCols = 0;
    std::ptrdiff_t wholeRows = 0;
#if HWY_TARGET != HWY_SCALAR
    wholeCols = cols / kSide * kSide;
    wholeRows = rows / kSide * kSide;
    for (std::ptrdiff_t c = 0; c < wholeCols; c += kSide) {
        for (std::ptrdiff_t r = 0; r < wholeRows; r += kSide)
            TransposeBlock(in + r * inStride + c, inStride, out + c * outStride + r, outStride);
    }
#endif
    TransposeTile<Pel>(in + wholeCols, inStride, cols - wholeCols, wholeRows, out + wholeCols * outStride,
                       outStride);
    TransposeTile<Pel>(in + wholeRows * inStride, inStride, cols, rows - wholeRows, out + wholeRows,
                       outStride);
}

void ReversePels(const Pel* in, std::ptrdiff_t count, Pel* out) {
    std::ptrdiff_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<Pel> d;
    const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    for (; i + lanes <= count; i += lanes)
        hn::StoreU(hn::Reverse(d, hn::LoadU(d, in + count - i - lanes)), d, out + i);
#endif
    ReverseRow<Pel>(in, count - i, out + i);
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(TransposePels);
HWY_EXPORT(ReversePels);

void TransposeTile(const Pel* in, std::ptrdiff_t inStride, std::ptrdiff_t cols, std::ptrdiff_t rows, Pel* out,
                   std::ptrdiff_t outStride) noexcept {
    HWY_DYNAMIC_DISPATCH(TransposePels)(in, inStride, cols, rows, out, outStride);
}

void ReverseRow(const Pel* in, std::ptrdiff_t count, Pel* out) noexcept {
    HWY_DYNAMIC_DISPATCH(ReversePels)(in, count, out);
}

}  // namespace tq::kernels
#endif
