#pragma once

#include <cstddef>
#include <cstdint>

namespace tq::kernels {

/// The rows of a 3 x 3 neighbourhood, each from the first pel to be sharpened on; the pels beside the run
/// exist, too.
struct SharpenRows {
    const std::uint16_t* above;
    const std::uint16_t* row;
    const std::uint16_t* below;
};

/// out[i] = trunc(row[i] * weight) less trunc(v / 9) of each of the eight pels around it, at most 65535 and
/// at least 1 or, where deciding[i] is 0, at least 0. The product is single precision and, when no int32
/// holds it, below everything. The weight is above 0 or not a number.
void SharpenRow(const SharpenRows& rows, const std::uint16_t* deciding, float weight, std::size_t count,
                std::uint16_t* out);

}  // namespace tq::kernels
