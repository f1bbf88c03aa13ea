#include <cstddef>
#include <cstdint>
#include <new>
#include <numeric>
#include <optional>

#include "interchange/bmp_reader.h"

/// A BMP file, read to both depths. The public functions take the name of a file; this is the reader behind
/// them, at a speed that fuzzing needs.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const tq::BitmapDepth depth : {tq::BitmapDepth::kBytes, tq::BitmapDepth::kColours}) {
        try {
            const std::optional<tq::OwnedBitmap> bitmap = tq::ReadBmp({data, size}, depth);
            if (!bitmap) continue;
            const TqLeadBitmap& made = bitmap->Get();
            unsigned sum = 0;
            for (std::int32_t row = 0; row < made.height; ++row)
                sum = std::accumulate(bitmap->Row(row), bitmap->Row(row) + made.bytesPerLine, sum);
            // Never true: it keeps the reads.
            if (sum == 0xFFFFFFFFu) return -1;
        } catch (const std::bad_alloc&) {
        }
    }
    return 0;
}
