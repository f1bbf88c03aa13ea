#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "inputs.h"
#include "tqimage/image_sum.h"

/// A sum block as it would come back from a file: the head's step, sizes and count, then entries. The count
/// is a host's promise about its memory, so it never exceeds the entries that are there.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Bytes input(data, size);
    TqImageSum head{};
    head.Header.PelCols = input.Take<std::int16_t>();
    head.Header.PelRows = input.Take<std::int16_t>();
    head.Header.TotalPelValue = input.Take<double>();
    head.Step = input.Take<std::int32_t>();
    head.Count = input.Take<std::int16_t>();
    const std::size_t entries = input.Size() / sizeof(TqImageSumEntry);
    // Larger images only cost time.
    if (std::int64_t{head.Header.PelCols} * head.Header.PelRows > 1'000'000) return 0;
    if (head.Count > static_cast<std::int64_t>(entries)) head.Count = static_cast<std::int32_t>(entries);

    const std::unique_ptr<std::uint8_t[]> block(
        new std::uint8_t[sizeof head + entries * sizeof(TqImageSumEntry)]);
    std::memcpy(block.get(), &head, sizeof head);
    if (entries != 0) {
        std::memcpy(block.get() + sizeof head, input.Data(), entries * sizeof(TqImageSumEntry));
    }
    TqImage* image = nullptr;
    TqImageSum* again = nullptr;
    if (tqImageSumToImage(&image, reinterpret_cast<const TqImageSum*>(block.get())) == 0) {
        tqImageToImageSum(&again, image);
    }
    fuzz::UseAndFree(image);
    auto* sum = reinterpret_cast<TqImage*>(again);
    tqImageFree(&sum);
    return 0;
}
