#pragma once

#include <cstddef>

namespace tq::kernels {

/// The columns of a product come in whole groups of this many.
inline constexpr std::size_t kProductColumns = 8;

/// out (rows x cols) = left (rows x inner) times right (inner x cols), row after row. Every sum runs in the
/// order of `inner`, so the bits are those of a plain loop.
void MatrixProduct(const double* left, const double* right, std::size_t rows, std::size_t inner,
                   std::size_t cols, double* out);

}  // namespace tq::kernels
