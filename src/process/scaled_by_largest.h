#pragma once

#include <cstddef>
#include <cstdint>

#include "core/image_block.h"
#include "core/image_view.h"
#include "kernels/local_contrast.h"

namespace tq {

/// A new image of a figure a pel, in which the largest magnitude lies `greys` grey levels from 0. Rows(row)
/// gives the figures of a row, top down, and is made anew for each of the two passes: a plane of figures
/// would take four times the memory of the image. write(pels, figures, count, scale, out) makes the grey
/// levels.
template <class MakeRows, class Write>
OwnedImage ScaleByLargest(const ConstImageView& view, std::int32_t greys, MakeRows&& makeRows,
                          Write&& write) {
    const auto cols = static_cast<std::size_t>(view.cols);
    OwnedImage result(view, NewPels::kUnwritten);
    kernels::ValueScale scale{static_cast<double>(greys), 0.0};
    auto measured = makeRows();
    for (std::int32_t row = 0; row < view.rows; ++row)
        scale.largest = kernels::LargestMagnitude(view.Row(row), measured.Row(row), cols, scale.largest);
    if (scale.largest == 0.0) scale.largest = 1.0;
    auto written = makeRows();
    for (std::int32_t row = 0; row < view.rows; ++row)
        write(view.Row(row), written.Row(row), cols, scale, result.View().Row(row));
    result.Header().LuxPerGrey = static_cast<float>(result.Header().LuxPerGrey * (scale.largest / greys));
    return result;
}

}  // namespace tq
