#include "kernels/matrix_product.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/matrix_product.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

void MatrixProduct(const double* left, const double* right, std::size_t rows, std::size_t inner,
                   std::size_t cols, double* out) {
    const hn::CappedTag<double, kProductColumns / 2> d;
    const std::size_t lanes = hn::Lanes(d);
    for (std::size_t row = 0; row < rows; ++row, left += inner, out += cols) {
        for (std::size_t col = 0; col < cols; col += 2 * lanes) {
            auto first = hn::Zero(d);
            auto second = hn::Zero(d);
            const double* factors = right + col;
            for (std::size_t i = 0; i < inner; ++i, factors += cols) {
                const auto factor = hn::Set(d, left[i]);
                first = hn::Add(first, hn::Mul(factor, hn::LoadU(d, factors)));
                second = hn::Add(second, hn::Mul(factor, hn::LoadU(d, factors + lanes)));
            }
            hn::StoreU(first, d, out + col);
            hn::StoreU(second, d, out + col + lanes);
        }
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(MatrixProduct);

void MatrixProduct(const double* left, const double* right, std::size_t rows, std::size_t inner,
                   std::size_t cols, double* out) {
    HWY_DYNAMIC_DISPATCH(MatrixProduct)(left, right, rows, inner, cols, out);
}

}  // namespace tq::kernels
#endif
