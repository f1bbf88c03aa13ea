#pragma once

#include "tqimage/bitmap.h"

namespace tq {

/// Writes an 8-bit bitmap as a Windows BMP file. False when that fails; no half-written file stays behind.
bool WriteBmpFile(const char* fileName, const TqLeadBitmap& bitmap) noexcept;

}  // namespace tq
