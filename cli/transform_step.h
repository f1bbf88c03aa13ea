#pragma once

#include <functional>
#include <string>

#include "library.h"

namespace cli {

/// What `tqimage transform` does to an image, one step of it; the library's code of a failure.
using TransformStep = std::function<std::int32_t(HostImage&)>;

/// The forms that a step can be typed in.
extern const char kTransformSteps[];

/// Reads NAME:VALUE; anything but one of the forms is a usage error.
TransformStep ParseTransformStep(const std::string& text);

}  // namespace cli
