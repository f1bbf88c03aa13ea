#include "tqimage/image.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>

#include "images.h"

namespace {

using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::MakeImage;
using tqtest::SameHeader;
using tqtest::SamePels;

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

/// A header in which every field has a value of its own.
TqImageHeader DistinctHeader(std::int32_t cols, std::int32_t rows) {
    return {cols, rows, 2.5f, 3.5f, 4.5f, 5.5f, 1e15 + 1.0, 6.5f, 7.5f, 8.5f, 9.5f, -2, 3, 0xDEADBEEFu};
}

TEST(CreateImage, TakesTheWholeHeaderAndClearsThePels) {
    const TqImageHeader header = DistinctHeader(7, 5);
    TqImage* block = nullptr;
    ASSERT_EQ(tqCreateImage(&header, &block), 0);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::memcmp(block, &header, sizeof header), 0);
    for (int i = 0; i < 35; ++i)
        EXPECT_EQ(reinterpret_cast<const std::uint16_t*>(block)[28 + i], 0);
    // The block's own header may describe its successor.
    auto* own = reinterpret_cast<TqImageHeader*>(block);
    own->PelCols = 2000;
    own->PelRows = 300;
    ASSERT_EQ(tqCreateImage(own, &block), 0);
    EXPECT_EQ(tqGetPelCols(block), 2000);
    EXPECT_EQ(tqGetSourceDistance(block), 9.5f);
    EXPECT_EQ(tqImageFree(&block), 0);
}

TEST(CreateImage, SizesThatNoFunctionAcceptsAreStillCreated) {
    for (const auto& [cols, rows] : {std::pair{0, 5}, {5, 0}, {0, 0}, {8001, 1}, {1, 8001}, {0, kMost}}) {
        Image image(DefaultHeader(cols, rows));
        ASSERT_NE(image.Get(), nullptr);
        EXPECT_EQ(tqGetPelCols(image), cols);
        EXPECT_EQ(tqClearImagePels(image), -1) << cols << " x " << rows;
    }
    Image largest(8000, 8000);
    EXPECT_EQ(tqInitializeImagePels(largest, 3), 0);
    EXPECT_EQ(largest(7999, 7999), 3);
}

TEST(CreateImage, ImpossibleSizesFreeTheOldBlockAndLeaveNull) {
    for (const auto& [cols, rows] :
         {std::pair{kMost, kMost}, {4, -1}, {-3, -3}, {65536, 32768}, {1073741796, 1}, {-kMost - 1, 0}}) {
        Image image(4, 4);
        const TqImageHeader header = DefaultHeader(cols, rows);
        EXPECT_EQ(tqCreateImage(&header, image.Address()), -1) << cols << " x " << rows;
        EXPECT_EQ(image.Get(), nullptr);

        Image other(4, 4);
        std::int32_t address = 77;
        std::uint16_t* pels = nullptr;
        EXPECT_EQ(tqCreateImageA(other.Address(), &address, &pels, cols, rows), -1) << cols << " x " << rows;
        EXPECT_EQ(other.Get(), nullptr);
        EXPECT_EQ(address, 77);
        EXPECT_EQ(pels, nullptr);
    }
    const TqImageHeader header = DefaultHeader(1, 1);
    TqImage* block = nullptr;
    EXPECT_EQ(tqCreateImage(nullptr, &block), -1);
    EXPECT_EQ(tqCreateImage(&header, nullptr), -1);
    EXPECT_EQ(tqCreateImageA(nullptr, nullptr, nullptr, 1, 1), -1);
}

TEST(CreateImageA, TellsTheAddressInExactlyFourBytesAndWhereThePelsLie) {
    std::int32_t address[2] = {0, 0x5A5A5A5A};
    std::uint16_t* pels = nullptr;
    Image image(300, 200);
    ASSERT_EQ(tqCreateImageA(image.Address(), address, &pels, 6, 4), 0);
    EXPECT_EQ(static_cast<std::uint32_t>(address[0]),
              static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(image.Get())));
    EXPECT_EQ(address[1], 0x5A5A5A5A);
    EXPECT_EQ(reinterpret_cast<std::uint8_t*>(pels), reinterpret_cast<std::uint8_t*>(image.Get()) + 56);
    EXPECT_EQ(tqCreateImageA(image.Address(), nullptr, nullptr, 6, 4), 0);
}

TEST(ImageFree, FreesOnceAndSaysSo) {
    Image image(3, 3);
    EXPECT_EQ(tqImageFree(image.Address()), 0);
    EXPECT_EQ(image.Get(), nullptr);
    EXPECT_EQ(tqImageFree(image.Address()), -1);
    EXPECT_EQ(tqImageFree(nullptr), -1);
}

TEST(ImageInfo, TravelsWholeInBothDirections) {
    const TqImageHeader header = DistinctHeader(7, 5);
    Image image(header);
    TqImageHeader read{};
    EXPECT_EQ(tqGetImageInfo(&read, image), 0);
    EXPECT_TRUE(SameHeader(read, header));
    EXPECT_EQ(tqGetPelRows(image), 5);
    EXPECT_EQ(tqGetPelsPerMeterX(image), 2.5f);
    EXPECT_EQ(tqGetPelsPerMeterY(image), 3.5f);
    EXPECT_EQ(tqGetCenterCol(image), 4.5f);
    EXPECT_EQ(tqGetCenterRow(image), 5.5f);
    EXPECT_EQ(tqGetTotalPelValue(image), 1e15 + 1.0);
    EXPECT_EQ(tqGetLuxPerGrey(image), 6.5f);
    EXPECT_EQ(tqGetCenterPelValue(image), 7.5f);
    EXPECT_EQ(tqGetMaxPelValue(image), 8.5f);

    Image other(9, 9);
    TqImageHeader shrunk = header;
    shrunk.PelCols = 1;
    shrunk.PelRows = 8000;  // not what was allocated, which is the host's affair
    EXPECT_EQ(tqSetImageInfo(other, &shrunk), 0);
    EXPECT_TRUE(SameHeader(other.Header(), shrunk));
}

TEST(ImageInfo, RefusesImpossibleSidesAndWritesNothing) {
    Image image(9, 9);
    const TqImageHeader before = image.Header();
    for (const auto& [cols, rows] : {std::pair{8001, 1}, {1, 8001}, {0, 1}, {1, -1}}) {
        const TqImageHeader header = DefaultHeader(cols, rows);
        EXPECT_EQ(tqSetImageInfo(image, &header), -1) << cols << " x " << rows;
        EXPECT_TRUE(SameHeader(image.Header(), before));
        TqImageHeader untouched = before;
        EXPECT_EQ(tqGetImageInfo(&untouched, reinterpret_cast<const TqImage*>(&header)), -1);
        EXPECT_TRUE(SameHeader(untouched, before));
    }
    TqImageHeader header = before;
    EXPECT_EQ(tqGetImageInfo(&header, nullptr), -1);
    EXPECT_EQ(tqGetImageInfo(nullptr, image), -1);
    EXPECT_EQ(tqSetImageInfo(nullptr, &header), -1);
    EXPECT_EQ(tqSetImageInfo(image, nullptr), -1);
}

TEST(KeyStoneImageInfo, PutsTheMapsCentreIntoTheResolutionFields) {
    TqImageHeader expected = DistinctHeader(1, 1);
    TqImageHeader info = expected;
    const TqDistortionMap map{65535, 40000, 12.25f, -3.5f};
    EXPECT_EQ(tqGetKeyStoneImageInfo(&info, &map), 0);
    expected.PelCols = 65535;
    expected.PelRows = 40000;
    expected.PelsPerMeterX = 12.25f;
    expected.PelsPerMeterY = -3.5f;
    EXPECT_TRUE(SameHeader(info, expected));
    EXPECT_EQ(tqGetKeyStoneImageInfo(&info, nullptr), 0);
    EXPECT_EQ(tqGetKeyStoneImageInfo(nullptr, &map), 0);
    EXPECT_TRUE(SameHeader(info, expected));
}

TEST(GlobalCopy, CopiesHeaderAndPels) {
    Image source = tqtest::RandomImage(31, 17, 1);
    source.Header() = DistinctHeader(31, 17);
    Image destination(500, 500);
    ASSERT_EQ(tqGlobalCopy(destination.Address(), source), 0);
    EXPECT_NE(destination.Get(), source.Get());
    EXPECT_TRUE(SameHeader(destination.Header(), source.Header()));
    EXPECT_TRUE(SamePels(source, destination));
    const Image before = source;
    EXPECT_EQ(tqGlobalCopy(source.Address(), source), 0);
    EXPECT_TRUE(SamePels(before, source));
}

TEST(FillPels, ClampsTheValueAndKeepsTheHeader) {
    Image image = tqtest::RandomImage(13, 3, 2);
    image.Header() = DistinctHeader(13, 3);
    for (const auto& [value, stored] : {std::pair{70000, 65535}, {65535, 65535}, {-5, 0}, {-kMost - 1, 0}}) {
        EXPECT_EQ(tqInitializeImagePels(image, value), 0);
        EXPECT_TRUE(SamePels(MakeImage(13, 3, [pel = stored](int, int) { return pel; }), image)) << value;
    }
    EXPECT_EQ(tqInitializeImagePels(image, 9), 0);
    EXPECT_EQ(tqClearImagePels(image), 0);
    EXPECT_TRUE(SamePels(Image(13, 3), image));
    EXPECT_TRUE(SameHeader(image.Header(), DistinctHeader(13, 3)));
}

}  // namespace
