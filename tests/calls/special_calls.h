#pragma once

#include <string_view>

#include "scene.h"

namespace tqtest {

/// The call of a function whose arguments hang together too closely to be drawn one by one, or null.
void (*SpecialCall(std::string_view name))(Scene& scene, Fingerprint& print);

}  // namespace tqtest
