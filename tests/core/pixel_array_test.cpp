#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "automation_host.h"
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
    constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    for (const auto& [width, height] :
         {std::pair{1, 1}, {3, 3}, {2, 5}, {13, 9}, {40, 40}, {8, 1}, {0, 2}, {-1, kLow}, {kMost, kMost}}) {
        for (const bool ellipse : {false, true}) {
            HostArray array;
            ASSERT_EQ(tqGetPixelArray(image, ellipse ? -1 : 0, width, height, array.Address()), 0);
            ExpectAverages(array.Get(), image, ellipse, std::max(width, 1), std::max(height, 1));

            HostVariant result;
            ASSERT_EQ(tqGetPelArray(image, ellipse ? 1 : 0, width, height, &result.variant), 0);
            ASSERT_EQ(result.variant.vt, VT_ARRAY | VT_R8);
            ExpectAverages(result.variant.parray, image, ellipse, std::clamp(width, 1, 13),
                           std::clamp(height, 1, 9));
        }
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

TEST(PixelArray, WhatAVariantHeldIsNotLookedAt) {
    HostVariant result;
    std::memset(&result.variant, 0xA5, sizeof result.variant);
    EXPECT_EQ(tqGetPelArray(nullptr, 0, 1, 1, &result.variant), -1);
    EXPECT_EQ(result.variant.vt, 0xA5A5);
    EXPECT_EQ(tqGetPelArray(Image(2, 2), 0, 1, 1, &result.variant), 0);
    EXPECT_EQ(tqGetPelArray(Image(2, 2), 0, 1, 1, nullptr), -4);
}

}  // namespace
