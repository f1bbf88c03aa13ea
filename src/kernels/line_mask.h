#pragma once

#include <cstddef>
#include <cstdint>

namespace tq::kernels {

/// The places of a 3 x 3 mask that lie on a line, one a row: the column offsets -1, 0 or 1 from the centre.
/// For a horizontal line all three lie in the middle row.
struct MaskLine {
    const std::uint16_t* first;
    const std::uint16_t* second;
    const std::uint16_t* third;
};

/// Response of a mask that weighs the line with 2 and the other six pels with -1: its magnitude, at most
/// 65535. `top`, `middle`, `bottom` point at the pels above, at and below the first centre, and so do the
/// line's pointers at theirs; each row is readable from one pel before to one behind the run.
void LineResponses(const std::uint16_t* top, const std::uint16_t* middle, const std::uint16_t* bottom,
                   const MaskLine& line, std::size_t count, std::uint16_t* out);

}  // namespace tq::kernels
