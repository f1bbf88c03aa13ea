#pragma once

#include <string_view>
#include <vector>

#include "scene.h"

namespace tqtest {

/// A function of the library, called with arguments drawn from the scene. What it returns and writes is added
/// to the fingerprint; the scene's images are not.
struct CallEntry {
    std::string_view name;
    void (*call)(Scene& scene, Fingerprint& print);
    bool readsOnly;                     ///< takes images, and those only to read
    bool isChecked;                     ///< may be given anything
    std::vector<double> withoutMemory;  ///< the codes that stand for a want of memory
    std::vector<double> withoutImage;   ///< those that stand for an image that is missing or none
    std::vector<std::string_view> arguments;
};

/// The functions of the public headers whose arguments can be drawn, in alphabetical order.
const std::vector<CallEntry>& AllCalls();

/// Draws a scene, makes the call and fingerprints all of it.
std::uint64_t CallOnce(const CallEntry& entry, Draw& draw, std::int32_t largest = 60);

}  // namespace tqtest
