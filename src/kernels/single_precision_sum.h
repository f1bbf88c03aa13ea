#pragma once

#include <cstddef>
#include <cstdint>

namespace tq::kernels {

/// The pels added up in single precision, one after the other: from 2^24 on every addition rounds, to nearest
/// and a half to even, so the order of the pels is part of the result.
float SinglePrecisionSum(const std::uint16_t* pels, std::size_t count);

}  // namespace tq::kernels
