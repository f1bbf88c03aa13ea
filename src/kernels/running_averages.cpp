#include "kernels/running_averages.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/running_averages.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using F32 = hn::ScalableTag<float>;

HWY_INLINE hn::Vec<F32> LoadPels(const std::uint16_t* pels) {
    const hn::RebindToSigned<F32> i32;
    return hn::ConvertTo(F32(), hn::PromoteTo(i32, hn::LoadU(hn::Rebind<std::uint16_t, F32>(), pels)));
}

/// `kRows` rows at a time, so that the sums are loaded and stored once for all of them.
template <std::size_t kRows>
HWY_INLINE void AddRows(const std::uint16_t* pels, std::size_t cols, float* sums) {
    const F32 d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= cols; i += lanes) {
        auto sum = hn::LoadU(d, sums + i);
        for (std::size_t row = 0; row < kRows; ++row)
            sum = hn::Add(sum, LoadPels(pels + row * cols + i));
        hn::StoreU(sum, d, sums + i);
    }
    for (; i < cols; ++i) {
        for (std::size_t row = 0; row < kRows; ++row)
            sums[i] += static_cast<float>(pels[row * cols + i]);
    }
}

void AddRowsInOrder(const std::uint16_t* pels, std::size_t rows, std::size_t cols, float* sums) {
    std::size_t row = 0;
    for (; row + 4 <= rows; row += 4)
        AddRows<4>(pels + row * cols, cols, sums);
    for (; row < rows; ++row)
        AddRows<1>(pels + row * cols, cols, sums);
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(AddRowsInOrder);

void AddRowsInOrder(const std::uint16_t* pels, std::size_t rows, std::size_t cols, float* sums) {
    HWY_DYNAMIC_DISPATCH(AddRowsInOrder)(pels, rows, cols, sums);
}

// No vector of columns can be added up in order. The sums of eight rows keep the adder as busy as vectors of
// transposed pels would, and scalar code is the same on every target.
void SumRowsInOrder(const std::uint16_t* pels, std::size_t rows, std::size_t cols, float* sums) {
    if (rows == kRowsTogether) {
        float running[kRowsTogether] = {};
        for (std::size_t i = 0; i < cols; ++i) {
            for (std::size_t row = 0; row < kRowsTogether; ++row)
                running[row] += static_cast<float>(pels[row * cols + i]);
        }
        for (std::size_t row = 0; row < kRowsTogether; ++row)
            sums[row] = running[row];
        return;
    }
    for (std::size_t row = 0; row < rows; ++row) {
        sums[row] = 0.0f;
        for (std::size_t i = 0; i < cols; ++i)
            sums[row] += static_cast<float>(pels[row * cols + i]);
    }
}

}  // namespace tq::kernels
#endif
