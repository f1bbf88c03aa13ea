#include "calibration/chebyshev.h"

#include <numbers>

#include "calibration/surface.h"
#include "core/portable_math.h"
#include "kernels/matrix_product.h"

namespace tq {
namespace {

/// T0 ... of x.
std::array<double, kNodes> PolynomialsAt(double x) noexcept {
    std::array<double, kNodes> values{1.0, x};
    for (std::size_t k = 2; k < kNodes; ++k)
        values[k] = 2.0 * x * values[k - 1] - values[k - 2];
    return values;
}

}  // namespace

std::array<double, kNodes> ChebyshevNodes() {
    std::array<double, kNodes> nodes;
    for (std::size_t i = 0; i < kNodes; ++i) {
        const double turns = static_cast<double>(2 * (kNodes - i) - 1) / (2.0 * kNodes);
        nodes[i] = portable::Cos(turns * std::numbers::pi);
    }
    return nodes;
}

ChebyshevBasis::ChebyshevBasis(std::span<const double> positions)
    : down_(positions.size() * kNodes), across_(down_.size()) {
    const std::array<double, kNodes> nodes = ChebyshevNodes();
    for (std::size_t node = 0; node < kNodes; ++node) {
        const std::array<double, kNodes> here = PolynomialsAt(nodes[node]);
        for (std::size_t p = 0; p < positions.size(); ++p) {
            const std::array<double, kNodes> there = PolynomialsAt(positions[p]);
            double sum = 0.5;
            for (std::size_t k = 1; k < kNodes; ++k)
                sum += here[k] * there[k];
            const double cardinal = sum * (2.0 / kNodes);
            down_[p * kNodes + node] = cardinal;
            across_[node * positions.size() + p] = cardinal;
        }
    }
}

void Interpolate(const double* atNodes, const ChebyshevBasis& cols, const ChebyshevBasis& rows, double* out) {
    std::array<double, kNodes * kTileSide> alongRows;
    kernels::MatrixProduct(atNodes, cols.Across(), kNodes, kNodes, cols.Count(), alongRows.data());
    kernels::MatrixProduct(rows.Down(), alongRows.data(), rows.Count(), kNodes, cols.Count(), out);
}

}  // namespace tq
