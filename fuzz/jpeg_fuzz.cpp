#include <cstddef>
#include <cstdint>

#include "inputs.h"
#include "tqimage/compressed_image.h"

/// The compressed form, as a host would get it from a file or a database.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const TqImageHeader info{};
    TqImage* image = nullptr;
    tqDecompressImage(data, static_cast<std::uint32_t>(size), &info, &image);
    fuzz::UseAndFree(image);
    return 0;
}
