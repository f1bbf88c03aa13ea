#include "patterns/pattern_image.h"

#include "core/numerics.h"

namespace tq {

OwnedImage MakeDrawnImage(std::int32_t cols, std::int32_t rows, NewPels fill) {
    OwnedImage made(cols, rows, fill);
    TqImageHeader& header = made.Header();
    header.CenterCol = static_cast<float>((cols - 1.0) * 0.5);
    header.CenterRow = static_cast<float>((rows - 1.0) * 0.5);
    header.PelsPerMeterX = 1000.0f;
    header.PelsPerMeterY = 1000.0f;
    header.MaxPelValue = static_cast<float>(kLargestPel);
    return made;
}

}  // namespace tq
