#include "tqimage/compressed_image.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "images.h"

namespace tqtest {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A lamp on a dark target, scaled to `top`; sides that are no multiple of the codec's blocks.
Image Lamp(int top) {
    Image image = MakeImage(61, 43, [=](std::int32_t col, std::int32_t row) {
        return static_cast<int>(top * std::exp(-0.004 * (col * col + (row - 20) * (row - 20))));
    });
    image.Header().MaxPelValue = static_cast<float>(top);
    return image;
}

struct Compressed {
    Bytes file;
    double scale = 0.0;

    /// Its size is asked for first, as hosts do.
    Compressed(Image& image, std::int32_t quality) {
        std::uint32_t length = 0;
        EXPECT_EQ(tqCompressImage(image, nullptr, &length, &scale, 0, 0, quality), -4);
        file.resize(length);
        EXPECT_EQ(tqCompressImage(image, file.data(), &length, &scale, length, 0, quality), 0);
        EXPECT_EQ(length, file.size());
    }
};

std::int32_t Decompress(const Bytes& file, Image& image, const TqImageHeader& info = DefaultHeader(1, 1)) {
    return tqDecompressImage(file.data(), static_cast<std::uint32_t>(file.size()), &info, image.Address());
}

/// The largest deviation of the restored pels from the bytes they were made of.
int LargestError(Image& image, std::int32_t quality) {
    const Compressed compressed(image, quality);
    Image restored;
    EXPECT_EQ(Decompress(compressed.file, restored), 0);
    int error = 0;
    for (std::size_t i = 0; i < image.Count(); ++i) {
        const int byte = static_cast<int>(std::min(image.Pels()[i] * compressed.scale, 255.0));
        error = std::max(error, std::abs(byte - restored.Pels()[i]));
    }
    return error;
}

TEST(CompressedImage, ComesBackAsBytesWithTheHostsHeader) {
    Image image = Lamp(4095);
    const Compressed compressed(image, 2);
    EXPECT_EQ(compressed.scale, 255.0 / 4095.0);
    EXPECT_LE(LargestError(image, 2), 2);
    TqImageHeader info = DefaultHeader(7, 9);
    info.MaxPelValue = 1234.5f;
    info.Spare = 0xABCDu;
    Image restored(3, 3);  // freed by the call
    ASSERT_EQ(Decompress(compressed.file, restored, info), 0);
    info.PelCols = 61;
    info.PelRows = 43;
    EXPECT_TRUE(SameHeader(restored.Header(), info));
    ASSERT_EQ(Decompress(compressed.file, restored, restored.Header()), 0);
    EXPECT_TRUE(SameHeader(restored.Header(), info)) << "that of the image that goes may be taken over";

    Image withoutScale = MakeImage(8, 8, [](int, int) { return 77; });
    withoutScale.Header().MaxPelValue = 0.0f;
    EXPECT_EQ(LargestError(withoutScale, 2), 0);
    EXPECT_EQ(withoutScale.Header().MaxPelValue, 255.0f);
}

bool Holds(const Bytes& file, const Bytes& part) {
    return std::search(file.begin(), file.end(), part.begin(), part.end()) != file.end();
}

TEST(CompressedImage, QualityScalesTheStandardsTable) {
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    Image image = Lamp(65535);
    // First entry of the table, 16, times quality / 50.
    const struct {
        std::int32_t quality;
        std::uint8_t first;
    } cases[] = {{50, 16}, {2, 1},  {1, 1},   {0, 1},   {25, 8},  {100, 32}, {255, 82},
                 {-1, 1},  {-5, 6}, {-7, 19}, {-9, 51}, {300, 6}, {-10, 6},  {kLeast, 6}};
    for (const auto& [quality, first] : cases) {
        const Bytes file = Compressed(image, quality).file;
        EXPECT_TRUE(Holds(file, {0xFF, 0xDB, 0, 67, 0, first})) << "quality " << quality;
        EXPECT_TRUE(Holds(file, {0xFF, 0xC0, 0, 11, 8, 0, 43, 0, 61, 1})) << "baseline, 8 bits, one channel";
    }
    EXPECT_GT(Compressed(image, 2).file.size(), Compressed(image, 60).file.size());
    EXPECT_LT(LargestError(image, 20), LargestError(image, 255));
}

TEST(CompressedImage, RefusalsOfTheWriter) {
    Image image = Lamp(255), invalid(8001, 1);
    const auto size = static_cast<std::uint32_t>(Compressed(image, 2).file.size());
    Bytes buffer(size, 0xEE);
    std::uint32_t length = 0;
    double scale = 0.0;
    const struct {
        TqImage* image;
        std::uint8_t* to;
        std::uint32_t* length;
        double* scale;
        std::uint32_t capacity;
        std::int32_t status;
    } cases[] = {{nullptr, buffer.data(), &length, &scale, size, -1},
                 {image, buffer.data(), nullptr, &scale, size, -1},
                 {image, buffer.data(), &length, nullptr, size, -1},
                 {invalid, buffer.data(), &length, &scale, size, -2},
                 {image, nullptr, &length, &scale, size, -5},
                 {image, buffer.data(), &length, &scale, size - 1, -4}};
    for (const auto& it : cases)
        EXPECT_EQ(tqCompressImage(it.image, it.to, it.length, it.scale, it.capacity, 0, 2), it.status);
    EXPECT_EQ(length, size);
    EXPECT_EQ(buffer, Bytes(size, 0xEE));
}

/// The file with these bytes, which it holds, replaced.
Bytes With(Bytes file, const Bytes& part, const Bytes& other) {
    const auto at = std::search(file.begin(), file.end(), part.begin(), part.end());
    const auto behind = file.erase(at, at + static_cast<std::ptrdiff_t>(part.size()));
    file.insert(behind, other.begin(), other.end());
    return file;
}

TEST(CompressedImage, OnlyACompleteGreyFileIsRestored) {
    Image image = Lamp(255);
    const Bytes file = Compressed(image, -5).file;
    Image kept(2, 2);
    const TqImage* const before = kept.Get();
    for (std::size_t length = 1; length < file.size(); ++length)
        EXPECT_EQ(Decompress({file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)}, kept), -1)
            << length;
    // Of three channels, in the headers of frame and scan; of 8001 rows.
    const Bytes frame{0xFF, 0xC0, 0, 11, 8, 0, 43, 0, 61, 1, 1, 0x11, 0}, scan{0xFF, 0xDA, 0, 8, 1, 1, 0};
    const Bytes colour =
        With(With(file, frame, {0xFF, 0xC0, 0, 17, 8, 0, 43, 0, 61, 3, 1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 0}),
             scan, {0xFF, 0xDA, 0, 12, 3, 1, 0, 2, 0, 3, 0});
    EXPECT_EQ(colour.size(), file.size() + 10);
    EXPECT_EQ(Decompress(colour, kept), -1);
    EXPECT_EQ(Decompress(With(file, {0, 43, 0, 61}, {8001 >> 8, 8001 & 255, 0, 61}), kept), -1);
    const TqImageHeader info = DefaultHeader(1, 1);
    const auto length = static_cast<std::uint32_t>(file.size());
    EXPECT_EQ(tqDecompressImage(nullptr, length, &info, kept.Address()), -1);
    EXPECT_EQ(tqDecompressImage(file.data(), 0, &info, kept.Address()), -1);
    EXPECT_EQ(tqDecompressImage(file.data(), length, nullptr, kept.Address()), -1);
    EXPECT_EQ(tqDecompressImage(file.data(), length, &info, nullptr), -1);
    EXPECT_EQ(kept.Get(), before);
    Bytes longer = file;
    longer.resize(file.size() + 100, 0x11);
    EXPECT_EQ(Decompress(longer, kept), 0) << "hosts pass the whole buffer";
}

}  // namespace
}  // namespace tqtest
