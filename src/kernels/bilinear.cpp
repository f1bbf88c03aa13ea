#include "kernels/bilinear.h"

namespace tq::kernels {

void BlendRow(const Pel* near, const Pel* far, const RowPlaces& places, double fy, double bias, Pel* out) {
    for (std::size_t i = 0; i < places.count; ++i) {
        const std::int32_t cell = places.cells[i];
        const double value = Blend(near + cell, far + cell, places.next, places.weights[i], fy);
        out[i] = WrapToPel(TruncToInt32(value + bias));
    }
}

}  // namespace tq::kernels
