#pragma once

#include <cstdint>

#include "images.h"

namespace tqtest {

/// A correction image whose first pel is the sensor's and the image's.
inline Image Correction(const Image& pels, float luxPerGrey) {
    Image correction = pels;
    correction.Header().CenterCol = correction.Header().CenterRow = 0.0f;
    correction.Header().LuxPerGrey = luxPerGrey;
    return correction;
}

/// The image that it corrects.
inline Image Measurement(const Image& pels, std::int16_t bin = 1) {
    Image image = pels;
    image.Header().CenterCol = image.Header().CenterRow = 0.0f;
    image.Header().BinCols = image.Header().BinRows = bin;
    return image;
}

}  // namespace tqtest
