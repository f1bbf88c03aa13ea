#include <cstddef>
#include <cstdint>

#include "inputs.h"
#include "tqimage/exchange.h"

namespace {

/// What comes back is an image for the host when its header says so; a block of other bytes else.
void Use(void* block) {
    auto* const image = static_cast<TqImage*>(block);
    const auto* const header = static_cast<const TqImageHeader*>(block);
    const auto valid = [](std::int32_t side) { return side >= 1 && side <= 8000; };
    if (block != nullptr && valid(header->PelCols) && valid(header->PelRows)) {
        fuzz::UseAndFree(image);
        return;
    }
    TqImage* bytes = image;
    tqImageFree(&bytes);
}

}  // namespace

/// First byte: bit 0 compressed, bit 1 with the expected length that follows it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Bytes input(data, size);
    const auto how = input.Take<std::uint8_t>();
    // As long as a host would believe it: what an image of a few megapels needs.
    const std::uint32_t expected = (how & 2) != 0 ? input.Take<std::uint32_t>() % 20'000'000 : 0;
    void* block = nullptr;
    const std::int32_t status =
        tqStringToHandle2(input.Data(), static_cast<std::uint32_t>(input.Size()), &block, expected, how & 1);
    // After a failure the pointer is not the host's to free.
    if (status == 0) Use(block);
    return 0;
}
