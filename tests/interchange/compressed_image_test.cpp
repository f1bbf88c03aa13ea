#include "tqimage/compressed_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "images.h"

namespace {

using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::MakeImage;
using Bytes = std::vector<std::uint8_t>;

/// A lamp on a dark target, scaled to `top`; sides that are no multiple of the codec's blocks.
Image Lamp(int top) {
    Image image = MakeImage(61, 43, [=](std::int32_t col, std::int32_t row) {
        return static_cast<int>(top * std::exp(-0.004 * (col * col + (row - 20) * (row - 20))));
    });
    image.Header().MaxPelValue = static_cast<float>(top);
    return image;
}

/// The file of an image, its size asked for first as hosts do.
Bytes Compress(Image& image, std::int32_t quality, double& scale) {
    std::uint32_t length = 0;
    EXPECT_EQ(tqCompressImage(image, nullptr, &length, &scale, 0, 0, quality), -4);
    Bytes file(length);
    EXPECT_EQ(tqCompressImage(image, file.data(), &length, &scale, length, 0, quality), 0);
    EXPECT_EQ(length, file.size());
    return file;
}

Bytes Compress(Image& image, std::int32_t quality) {
    double scale = 0.0;
    return Compress(image, quality, scale);
}

std::int32_t Decompress(const Bytes& file, Image& image) {
    const TqImageHeader info = DefaultHeader(1, 1);
    return tqDecompressImage(file.data(), static_cast<std::uint32_t>(file.size()), &info, image.Address());
}

/// The largest deviation of the restored pels from the bytes they were made of.
int LargestError(Image& image, std::int32_t quality) {
    double scale = 0.0;
    Image restored;
    EXPECT_EQ(Decompress(Compress(image, quality, scale), restored), 0);
    int error = 0;
    for (std::size_t i = 0; i < image.Count(); ++i) {
        const int byte = static_cast<int>(std::min(image.Pels()[i] * scale, 255.0));
        error = std::max(error, std::abs(byte - restored.Pels()[i]));
    }
    return error;
}

TEST(CompressedImage, ComesBackAsBytesWithTheHostsHeader) {
    Image image = Lamp(4095);
    double scale = 0.0;
    const Bytes file = Compress(image, 2, scale);
    EXPECT_EQ(scale, 255.0 / 4095.0);
    EXPECT_LE(LargestError(image, 2), 2);

    TqImageHeader info = DefaultHeader(7, 9);
    info.MaxPelValue = 1234.5f;
    info.Spare = 0xABCDu;
    Image restored(3, 3);  // freed by the call
    ASSERT_EQ(
        tqDecompressImage(file.data(), static_cast<std::uint32_t>(file.size()), &info, restored.Address()),
        0);
    info.PelCols = 61;
    info.PelRows = 43;
    EXPECT_TRUE(tqtest::SameHeader(restored.Header(), info));
    // The host's own header may be the one that is taken over.
    EXPECT_EQ(tqDecompressImage(file.data(), static_cast<std::uint32_t>(file.size()), &restored.Header(),
                                restored.Address()),
              0);
    EXPECT_TRUE(tqtest::SameHeader(restored.Header(), info));
}

TEST(CompressedImage, QualityScalesTheStandardsTable) {
    Image image = Lamp(65535);
    // First entry of the table, 16, times quality / 50; the table follows marker, length and number.
    struct Case {
        std::int32_t quality;
        int first;
    };
    for (const Case& c : {Case{50, 16},
                          {2, 1},
                          {1, 1},
                          {0, 1},
                          {25, 8},
                          {100, 32},
                          {255, 82},
                          {-1, 1},
                          {-5, 6},
                          {-7, 19},
                          {-9, 51},
                          {300, 6},
                          {-10, 6},
                          {std::numeric_limits<std::int32_t>::min(), 6}}) {
        const Bytes file = Compress(image, c.quality);
        const Bytes marker = {0xFF, 0xDB, 0, 67, 0};
        const auto table = std::search(file.begin(), file.end(), marker.begin(), marker.end());
        ASSERT_NE(table, file.end());
        EXPECT_EQ(table[5], c.first) << "quality " << c.quality;
        const Bytes baselineOf8Bits = {0xFF, 0xC0, 0, 11, 8, 0, 43, 0, 61, 1};
        EXPECT_NE(std::search(file.begin(), file.end(), baselineOf8Bits.begin(), baselineOf8Bits.end()),
                  file.end());
    }
    EXPECT_GT(Compress(image, 2).size(), Compress(image, 60).size());
    EXPECT_LT(LargestError(image, 20), LargestError(image, 255));
}

TEST(CompressedImage, TheBytesDoNotDependOnTheBuild) {
    // Integer pels, so that the image itself is the same everywhere; the sum was taken from the Linux build.
    Image image = MakeImage(200, 120, [](std::int32_t col, std::int32_t row) { return col * row % 4000; });
    image.Header().MaxPelValue = 4000.0f;
    std::uint32_t sum = 0;
    for (const std::uint8_t byte : Compress(image, 12))
        sum = sum * 31 + byte;
    EXPECT_EQ(sum, 481735543u);
}

TEST(CompressedImage, AnImageWithoutScaleCountsAsBytes) {
    Image image = MakeImage(8, 8, [](int, int) { return 77; });
    image.Header().MaxPelValue = 0.0f;
    EXPECT_EQ(LargestError(image, 2), 0);
    EXPECT_EQ(image.Header().MaxPelValue, 255.0f);
}

TEST(CompressedImage, RefusalsOfTheWriter) {
    Image image = Lamp(255);
    Image invalid(DefaultHeader(8001, 1));
    const auto size = static_cast<std::uint32_t>(Compress(image, 2).size());
    Bytes buffer(size, 0xEE);
    std::uint32_t length = 0;
    double scale = 0.0;
    const auto compress = [&](TqImage* source, std::uint8_t* to, std::uint32_t capacity) {
        return tqCompressImage(source, to, &length, &scale, capacity, 0, 2);
    };
    EXPECT_EQ(compress(nullptr, buffer.data(), size), -1);
    EXPECT_EQ(tqCompressImage(image, buffer.data(), nullptr, &scale, size, 0, 2), -1);
    EXPECT_EQ(tqCompressImage(image, buffer.data(), &length, nullptr, size, 0, 2), -1);
    EXPECT_EQ(compress(invalid, buffer.data(), size), -2);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(compress(image, nullptr, size), -5);
    EXPECT_EQ(compress(image, buffer.data(), size - 1), -4);
    EXPECT_EQ(length, size);
    EXPECT_TRUE(std::all_of(buffer.begin(), buffer.end(), [](std::uint8_t byte) { return byte == 0xEE; }));
}

/// The file as one of three channels: frame and scan header name three components.
Bytes AsColour(const Bytes& file) {
    const Bytes frame = {0xFF, 0xC0, 0, 11}, scan = {0xFF, 0xDA, 0, 8, 1};
    const auto startOf = [&](const Bytes& head) {
        return std::search(file.begin(), file.end(), head.begin(), head.end());
    };
    Bytes colour(file.begin(), startOf(frame));
    const Bytes size(startOf(frame) + 4, startOf(frame) + 9);
    colour.insert(colour.end(), {0xFF, 0xC0, 0, 17});
    colour.insert(colour.end(), size.begin(), size.end());
    colour.insert(colour.end(), {3, 1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 0});
    colour.insert(colour.end(), startOf(frame) + 13, startOf(scan));
    colour.insert(colour.end(), {0xFF, 0xDA, 0, 12, 3, 1, 0, 2, 0, 3, 0, 0, 63, 0});
    colour.insert(colour.end(), startOf(scan) + 10, file.end());
    return colour;
}

TEST(CompressedImage, OnlyACompleteGreyFileIsRestored) {
    Image image = Lamp(255);
    const Bytes file = Compress(image, -5);
    Image kept(2, 2);
    const TqImage* const before = kept.Get();
    for (std::size_t length = 1; length < file.size(); ++length)
        EXPECT_EQ(Decompress({file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)}, kept), -1)
            << length;
    EXPECT_EQ(Decompress(AsColour(file), kept), -1);
    Bytes large = file;  // 43 rows become 8001
    const Bytes rows = {0, 43, 0, 61};
    const auto size = std::search(large.begin(), large.end(), rows.begin(), rows.end());
    size[0] = 8001 >> 8;
    size[1] = 8001 & 255;
    EXPECT_EQ(Decompress(large, kept), -1);
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
    // Damage is refused or, where it makes another valid picture, restored: nothing else happens.
    for (std::size_t at = 0; at < file.size(); ++at) {
        Bytes damaged = file;
        damaged[at] ^= static_cast<std::uint8_t>(1u << at % 8);
        const std::int32_t status = Decompress(damaged, kept);
        EXPECT_TRUE(status == 0 || status == -1) << at;
    }
}

}  // namespace
