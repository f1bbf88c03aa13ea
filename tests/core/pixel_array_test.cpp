#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "automation_host.h"
#include "failing_allocator.h"
#include "images.h"
#include "tqimage/exchange.h"
#include "tqimage/pel_block.h"

namespace {

using tqtest::HostArray;
using tqtest::Image;

/// A host's variant, cleared with the scope.
struct HostVariant {
    VARIANT variant;
    HostVariant() { VariantInit(&variant); }
    HostVariant(const HostVariant&) = delete;
    HostVariant& operator=(const HostVariant&) = delete;
    ~HostVariant() { VariantClear(&variant); }
};

double ElementOf(SAFEARRAY* array, LONG col, LONG row) {
    double value = -1.0;
    LONG indices[2] = {col, row};
    EXPECT_EQ(SafeArrayGetElement(array, indices, &value), S_OK);
    return value;
}

void ExpectShape(SAFEARRAY* array, std::int32_t cols, std::int32_t rows) {
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(SafeArrayGetDim(array), 2u);
    EXPECT_EQ(SafeArrayGetElemsize(array), 8u);
    EXPECT_EQ(array->cLocks, 0u);
    EXPECT_EQ(array->rgsabound[1].cElements, static_cast<ULONG>(cols));
    EXPECT_EQ(array->rgsabound[0].cElements, static_cast<ULONG>(rows));
    EXPECT_EQ(array->rgsabound[0].lLbound, 0);
    EXPECT_EQ(array->rgsabound[1].lLbound, 0);
}

/// Each element against the average that the library gives for that one position.
void ExpectAverages(SAFEARRAY* array, const Image& image, bool ellipse, std::int32_t width,
                    std::int32_t height) {
    ExpectShape(array, image.Cols(), image.Rows());
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            const double expected = ellipse ? tqGetPelBlockAvgEllipse(image, col, row, width, height)
                                            : tqGetPelBlockAvg(image, col, row, width, height);
            ASSERT_EQ(ElementOf(array, col, row), expected)
                << width << " x " << height << (ellipse ? " ellipse" : " block") << " at " << col << ", "
                << row;
        }
    }
}

TEST(PixelArray, HoldsTheBlockAverageOfEveryPosition) {
    const Image image = tqtest::RandomImage(13, 9, 11);
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 3}, {2, 5}, {1, 4}, {13, 9}, {40, 40}, {8, 1}}) {
        for (const bool ellipse : {false, true}) {
            HostArray array;
            ASSERT_EQ(tqGetPixelArray(image, ellipse ? -1 : 0, width, height, array.Address()), 0);
            ExpectAverages(array.Get(), image, ellipse, width, height);

            HostVariant result;
            ASSERT_EQ(tqGetPelArray(image, ellipse ? 1 : 0, width, height, &result.variant), 0);
            ASSERT_EQ(result.variant.vt, VT_ARRAY | VT_R8);
            ExpectAverages(result.variant.parray, image, ellipse, std::min(width, 13), std::min(height, 9));
        }
    }
}

TEST(PixelArray, SizesBelowOneGiveThePels) {
    const Image image = tqtest::RandomImage(5, 4, 12);
    constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
    for (const auto& [width, height] : {std::pair{0, 0}, {-1, kLow}, {1, 0}}) {
        HostArray array;
        HostVariant result;
        ASSERT_EQ(tqGetPixelArray(image, 0, width, height, array.Address()), 0);
        ASSERT_EQ(tqGetPelArray(image, 1, width, height, &result.variant), 0);
        for (LONG row = 0; row < 4; ++row) {
            for (LONG col = 0; col < 5; ++col) {
                EXPECT_EQ(ElementOf(array.Get(), col, row), image(col, row));
                EXPECT_EQ(ElementOf(result.variant.parray, col, row), image(col, row));
            }
        }
    }
}

TEST(PixelArray, SizesBeyondTheImageAreSafe) {
    const Image image = tqtest::RandomImage(6, 5, 13);
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    double mean = 0;
    for (const std::uint16_t pel : image.Values())
        mean += pel;
    mean /= 30;
    for (const int ellipse : {0, 1}) {
        HostArray array;
        ASSERT_EQ(tqGetPixelArray(image, ellipse, kMost, kMost, array.Address()), 0);
        EXPECT_EQ(ElementOf(array.Get(), 0, 0), mean);
        HostVariant result;
        ASSERT_EQ(tqGetPelArray(image, ellipse, kMost, kMost, &result.variant), 0);
        ExpectAverages(result.variant.parray, image, ellipse != 0, 6, 5);
    }
}

TEST(PixelArray, ReplacesAnUnlockedArrayAndRefusesALockedOne) {
    const Image image = tqtest::RandomImage(4, 3, 14);
    HostArray array = tqtest::MakeInt16Array(2, 2, [](int, int) { return 5; });
    ASSERT_EQ(SafeArrayLock(array.Get()), S_OK);
    SAFEARRAY* const locked = array.Get();
    EXPECT_EQ(tqGetPixelArray(image, 0, 1, 1, array.Address()), -3);
    EXPECT_EQ(array.Get(), locked);
    EXPECT_EQ(array.At<std::int16_t>({1, 1}), 5);
    ASSERT_EQ(SafeArrayUnlock(array.Get()), S_OK);
    EXPECT_EQ(tqGetPixelArray(image, 0, 1, 1, array.Address()), 0);
    ExpectShape(array.Get(), 4, 3);
}

TEST(PixelArray, RefusesInvalidImagesAndTouchesNothing) {
    const Image impossible(tqtest::DefaultHeader(8001, 1));
    const Image image(2, 2);
    HostArray array = tqtest::MakeInt16Array(2, 2, [](int, int) { return 5; });
    HostVariant result;
    result.variant.vt = VT_I4;
    result.variant.lVal = 42;
    for (const TqImage* invalid :
         {static_cast<const TqImage*>(nullptr), static_cast<const TqImage*>(impossible)}) {
        EXPECT_EQ(tqGetPixelArray(invalid, 0, 1, 1, array.Address()), -2);
        EXPECT_EQ(tqGetPelArray(invalid, 0, 1, 1, &result.variant), -1);
    }
    EXPECT_EQ(tqGetPixelArray(image, 0, 1, 1, nullptr), -2);
    EXPECT_EQ(tqGetPelArray(image, 0, 1, 1, nullptr), -4);
    EXPECT_EQ(array.At<std::int16_t>({1, 1}), 5);
    EXPECT_EQ(result.variant.lVal, 42);
}

TEST(PixelArray, TheOldContentOfAVariantIsNotLookedAt) {
    const Image image(2, 2);
    VARIANT garbage;
    std::memset(&garbage, 0xA5, sizeof garbage);
    ASSERT_EQ(tqGetPelArray(image, 0, 1, 1, &garbage), 0);
    EXPECT_EQ(garbage.vt, VT_ARRAY | VT_R8);
    EXPECT_EQ(VariantClear(&garbage), S_OK);
    EXPECT_EQ(garbage.vt, VT_EMPTY);
}

TEST(PixelArray, FailedAllocationsHaveTheirCodes) {
    if (!tqtest::CanFailAllocations()) GTEST_SKIP() << "the library allocates for itself";
    const Image image = tqtest::RandomImage(20, 10, 15);
    // Descriptor and data, then whatever the averages take to work with.
    for (int nth = 1; nth <= 3; ++nth) {
        HostArray array;
        std::int32_t status = 0;
        {
            const tqtest::AllocationFailure failing(nth);
            status = tqGetPixelArray(image, 0, 5, 5, array.Address());
        }
        EXPECT_EQ(status, nth <= 2 ? -4 : -6);
        EXPECT_EQ(array.Get() == nullptr, nth <= 2);
        EXPECT_TRUE(array.Get() == nullptr || array.Locks() == 0);
    }
    HostVariant result;
    result.variant.vt = VT_I4;
    EXPECT_GT(tqtest::FailEachAllocation(
                  -4, 0, [&] { return tqGetPelArray(image, 1, 5, 5, &result.variant); },
                  [&] { EXPECT_EQ(result.variant.vt, VT_I4); }),
              2);
}

}  // namespace
