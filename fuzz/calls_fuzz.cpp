#include <cstddef>
#include <cstdint>

#include "call_table.h"

namespace {

using namespace tqtest;

/// No larger than what byte strings of the calls have room for, and quick to work on.
constexpr std::int64_t kMostPels = 40'000;

void FreeLargeImages(Scene& scene) {
    for (std::size_t i = 0; i < kImages; ++i) {
        TqImage*& image = scene.Slot(i);
        const auto* header = reinterpret_cast<const TqImageHeader*>(image);
        if (image != nullptr && std::int64_t{header->PelCols} * header->PelRows > kMostPels)
            tqImageFree(&image);
    }
}

}  // namespace

/// A host's session: one call after the other, any function with any arguments, on images that earlier calls
/// have made or changed. Only what a function declares unchecked is kept from it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int kMostCalls = 40;
    const auto& calls = AllCalls();
    Draw draw(data, size);
    Scene scene(draw, 40);
    for (int i = 0; i < kMostCalls && !draw.Exhausted(); ++i) {
        const auto which =
            static_cast<std::size_t>(draw.Between(0, static_cast<std::int32_t>(calls.size()) - 1));
        Fingerprint print;
        calls[which].call(scene, print);
        FreeLargeImages(scene);
    }
    return 0;
}
