#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <tuple>
#include <vector>

#include "images.h"
#include "tqimage/exchange.h"

namespace {

using tqtest::Image;
using tqtest::SameHeader;
using tqtest::SamePels;
using Bytes = std::vector<std::uint8_t>;

Image Sample(std::int32_t cols = 37, std::int32_t rows = 11) {
    Image image = tqtest::RandomImage(cols, rows, 5, 0, 300);
    image.Header().Spare = 0xCAFEF00Du;
    image.Header().TotalPelValue = 12345.0;
    return image;
}

std::uint32_t BlockSize(const Image& image) {
    return static_cast<std::uint32_t>(56 + 2 * image.Count());
}

Bytes Compressed(const Image& image) {
    Bytes text(BlockSize(image) + 1000);
    std::uint32_t length = 0;
    EXPECT_EQ(tqHandleToString(image, text.data(), &length, static_cast<std::uint32_t>(text.size()), 1), 0);
    text.resize(length);
    return text;
}

/// A block from the library, freed with the scope.
struct Restored {
    void* block = nullptr;
    ~Restored() {
        auto* image = static_cast<TqImage*>(block);
        tqImageFree(&image);
    }
    void ExpectSame(const Image& image) const {
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(std::memcmp(block, image.Get(), BlockSize(image)), 0);
    }
};

std::uint32_t Length(const Bytes& bytes) {
    return static_cast<std::uint32_t>(bytes.size());
}

TEST(ByteString, PlainFormIsTheBlockItself) {
    const Image image = Sample();
    Bytes text(BlockSize(image) + 8, 0xEE);
    std::uint32_t length = 0;
    // The capacity is not looked at in this form.
    ASSERT_EQ(tqHandleToString(image, text.data(), &length, 1, 0), 0);
    EXPECT_EQ(length, BlockSize(image));
    EXPECT_EQ(std::memcmp(text.data(), image.Get(), length), 0);
    EXPECT_EQ(text[length], 0xEE);

    Restored known;
    ASSERT_EQ(tqStringToHandle2(text.data(), length, &known.block, 1, 0), 0);
    known.ExpectSame(image);
    Restored restored;
    ASSERT_EQ(tqStringToHandle(text.data(), length, &restored.block, 0), 0);
    restored.ExpectSame(image);
}

TEST(ByteString, CompressedFormIsAZlibStreamThatComesBack) {
    const Image image = Sample();
    const Bytes text = Compressed(image);
    ASSERT_LT(text.size(), BlockSize(image));
    EXPECT_EQ(text[0], 0x78);    // deflate with a 32 KB window
    EXPECT_EQ(text[1] >> 6, 3);  // strongest compression

    Restored unknown;
    ASSERT_EQ(tqStringToHandle(text.data(), Length(text), &unknown.block, 1), 0);
    unknown.ExpectSame(image);
    for (const std::uint32_t expected : {0u, BlockSize(image), BlockSize(image) + 5000}) {
        Restored known;
        ASSERT_EQ(tqStringToHandle2(text.data(), Length(text), &known.block, expected, -1), 0);
        known.ExpectSame(image);
    }
}

TEST(ByteString, CompressionThatDoesNotFitIsRefused) {
    const Image image = Sample();
    const Bytes text = Compressed(image);
    Bytes small(text.size() + 8, 0xEE);
    std::uint32_t length = 0;
    EXPECT_EQ(tqHandleToString(image, small.data(), &length, Length(text) - 1, 1), -2);
    EXPECT_EQ(small[text.size() - 1], 0xEE);
    EXPECT_EQ(tqHandleToString(image, small.data(), &length, Length(text), 1), 0);
    EXPECT_EQ(length, text.size());

    EXPECT_EQ(tqHandleToString(Image(8001, 1), small.data(), &length, 100, 0), -1);
    EXPECT_EQ(tqHandleToString(image, nullptr, &length, 100, 1), -1);
    EXPECT_EQ(tqHandleToString(image, small.data(), nullptr, 100, 1), -1);
}

TEST(ByteString, OnlyTheFormWithALengthRestoresMoreThan6500000Bytes) {
    // 2 x 3249972 + 56 bytes fit exactly, two pels more do not.
    for (const auto& [cols, rows, fits] : {std::tuple{1914, 1698, true}, {1274, 2551, false}}) {
        const Image image(cols, rows);
        SCOPED_TRACE(BlockSize(image));
        ASSERT_EQ(BlockSize(image) <= 6'500'000, fits);
        const Bytes text = Compressed(image);
        Restored restored;
        EXPECT_EQ(tqStringToHandle(text.data(), Length(text), &restored.block, 1), fits ? 0 : -4);
        if (fits) restored.ExpectSame(image);
        Restored known;
        EXPECT_EQ(tqStringToHandle2(text.data(), Length(text), &known.block, BlockSize(image), 1), 0);
        known.ExpectSame(image);
    }
}

TEST(ByteString, DamagedStreamsAreRefusedWithZlibsStatus) {
    const Image image = Sample();
    const Bytes text = Compressed(image);
    Bytes flipped = text;
    flipped.at(flipped.size() - 1) ^= 1;  // the check sum
    Bytes cut = text;
    cut.resize(text.size() / 2);
    Bytes noise(200);
    std::iota(noise.begin(), noise.end(), std::uint8_t{1});
    for (const Bytes& damaged : {flipped, cut, noise, Bytes(1)}) {
        void* untouched = &flipped;
        EXPECT_EQ(tqStringToHandle(damaged.data(), Length(damaged), &untouched, 1), -4);
        EXPECT_EQ(untouched, &flipped);
        void* dangling = nullptr;
        EXPECT_EQ(tqStringToHandle2(damaged.data(), Length(damaged), &dangling, BlockSize(image), 1), -3);
        EXPECT_NE(dangling, nullptr);  // documented: already freed, but its address is there
    }
    void* dangling = nullptr;
    EXPECT_EQ(tqStringToHandle2(text.data(), Length(text), &dangling, BlockSize(image) - 1, 1), -5);
    EXPECT_EQ(tqStringToHandle(nullptr, 10, &dangling, 0), -1);
    EXPECT_EQ(tqStringToHandle(text.data(), 10, nullptr, 0), -1);
    EXPECT_EQ(tqStringToHandle2(nullptr, 10, &dangling, 5, 1), -1);
    EXPECT_EQ(tqStringToHandle2(text.data(), 10, nullptr, 5, 1), -1);
}

TEST(ByteString, AStringCutShortGivesItsImageWithoutTheMissingPels) {
    const Image image = tqtest::MakeImage(4, 4, [](int, int) { return 0x0101; });
    Bytes plain(BlockSize(image));
    std::uint32_t length = 0;
    ASSERT_EQ(tqHandleToString(image, plain.data(), &length, 0, 0), 0);
    struct Case {
        std::uint32_t kept;
        std::int32_t first, second;  ///< -1 as long as a size is missing
    };
    for (const Case& c : {Case{0, -1, -1}, {4, -1, -1}, {8, 0, 0}, {56, 0, 0}, {59, 0x0101, 1}}) {
        SCOPED_TRACE(c.kept);
        Restored restored;
        ASSERT_EQ(tqStringToHandle(plain.data(), c.kept, &restored.block, 0), 0);
        const auto* cut = static_cast<const TqImage*>(restored.block);
        EXPECT_EQ(tqGetImgPel(cut, 1, 1), c.first);
        EXPECT_EQ(tqGetImgPel(cut, 2, 1), c.second);
        EXPECT_EQ(tqGetSourceDistance(cut), c.kept >= 48 ? 1.0f : 0.0f);
    }
}

TEST(ByteString, AStreamCutShortBeforeCompressionIsAsSafe) {
    // A zlib stream of stored bytes: a header that promises 8000 x 8000 pels and nothing else.
    TqImageHeader header = tqtest::DefaultHeader(8000, 8000);
    Bytes stream = {0x78, 0x01, 0x01, 56, 0, 0xC7, 0xFF};
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&header);
    stream.insert(stream.end(), bytes, bytes + 56);
    std::uint32_t low = 1, high = 0;  // Adler-32
    for (int i = 0; i < 56; ++i) {
        low = (low + bytes[i]) % 65521;
        high = (high + low) % 65521;
    }
    for (const std::uint32_t part : {high >> 8, high & 255, low >> 8, low & 255}) {
        stream.push_back(static_cast<std::uint8_t>(part));
    }
    for (const std::uint32_t expected : {0u, 56u, 90u}) {
        Restored restored;
        ASSERT_EQ(tqStringToHandle2(stream.data(), Length(stream), &restored.block, expected, 1), 0);
        EXPECT_EQ(tqGetImgPel(static_cast<TqImage*>(restored.block), 8000, 8000), 0);
        EXPECT_EQ(tqGetSourceDistance(static_cast<TqImage*>(restored.block)), 1.0f);
    }
    Restored tiny;
    EXPECT_EQ(tqStringToHandle2(stream.data(), Length(stream), &tiny.block, 55, 1), -5);
    tiny.block = nullptr;
}

}  // namespace
