#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "automation_host.h"
#include "failing_allocator.h"

/// What the library relies on in arrays, variants and global memory. On Windows these tests meet the system,
/// elsewhere the library's own: both must behave alike.
namespace {

using tqtest::HostArray;

TEST(SafeArray, StoresBoundsLastFirstAndTheLeftmostIndexFastest) {
    HostArray array(VT_I4, {{4, -2}, {3, 7}, {2, 0}});
    EXPECT_EQ(SafeArrayGetDim(array.Get()), 3u);
    EXPECT_EQ(SafeArrayGetElemsize(array.Get()), 4u);
    EXPECT_EQ(array->rgsabound[0].cElements, 2u);
    const SAFEARRAYBOUND* const bounds = array->rgsabound;
    EXPECT_EQ(bounds[2].lLbound, -2);
    std::uint32_t carried = 0;
    std::memcpy(&carried, reinterpret_cast<const char*>(array.Get()) - 4, 4);
    EXPECT_EQ(array->fFeatures & FADF_HAVEVARTYPE, FADF_HAVEVARTYPE);
    EXPECT_EQ(carried, static_cast<std::uint32_t>(VT_I4));

    std::int32_t number = 0;
    for (LONG c = 0; c < 2; ++c) {
        for (LONG b = 7; b < 10; ++b) {
            for (LONG a = -2; a < 2; ++a)
                array.Set<std::int32_t>({a, b, c}, number++);
        }
    }
    const auto* const data = static_cast<const std::int32_t*>(array->pvData);
    for (std::int32_t i = 0; i < 24; ++i)
        EXPECT_EQ(data[i], i);
}

TEST(SafeArray, IndicesOutsideTheirDimensionAreRefused) {
    HostArray array(VT_I2, {{4, -2}, {3, 7}});
    for (const auto& [a, b] : {std::pair{-3L, 7L}, {2L, 7L}, {0L, 6L}, {0L, 10L}, {0L, 0L}}) {
        LONG indices[2] = {static_cast<LONG>(a), static_cast<LONG>(b)};
        std::int16_t value = 55;
        EXPECT_EQ(SafeArrayGetElement(array.Get(), indices, &value), DISP_E_BADINDEX) << a << ", " << b;
        EXPECT_EQ(value, 55);
        EXPECT_EQ(SafeArrayPutElement(array.Get(), indices, &value), DISP_E_BADINDEX);
    }
    HostArray empty(VT_I4, {{0}, {5}});
    LONG indices[2] = {0, 0};
    std::int32_t value = 55;
    EXPECT_EQ(SafeArrayGetElement(empty.Get(), indices, &value), DISP_E_BADINDEX);
    EXPECT_EQ(SafeArrayGetElement(nullptr, indices, &value), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetElement(array.Get(), nullptr, &value), E_INVALIDARG);
}

TEST(SafeArray, LocksCountAndKeepTheArrayAlive) {
    SAFEARRAYBOUND bound{3, 0};
    SAFEARRAY* array = SafeArrayCreate(VT_R8, 1, &bound);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(SafeArrayLock(array), S_OK);
    EXPECT_EQ(SafeArrayLock(array), S_OK);
    EXPECT_EQ(array->cLocks, 2u);
    EXPECT_EQ(SafeArrayUnlock(array), S_OK);
    EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = VT_ARRAY | VT_R8;
    variant.parray = array;
    EXPECT_EQ(VariantClear(&variant), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(variant.parray, array);
    EXPECT_EQ(SafeArrayUnlock(array), S_OK);
    EXPECT_EQ(SafeArrayUnlock(array), E_UNEXPECTED);
    array->cLocks = 65535;
    EXPECT_EQ(SafeArrayLock(array), E_UNEXPECTED);
    array->cLocks = 0;
    EXPECT_EQ(VariantClear(&variant), S_OK);  // destroys the array
    EXPECT_EQ(variant.vt, VT_EMPTY);
    EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK);
    EXPECT_EQ(SafeArrayLock(nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayUnlock(nullptr), E_INVALIDARG);
}

TEST(Variant, ClearLeavesBorrowedArraysAlone) {
    HostArray array(VT_I4, {{2}});
    VARIANT variant;
    VariantInit(&variant);
    EXPECT_EQ(variant.vt, VT_EMPTY);
    EXPECT_EQ(sizeof variant, sizeof(void*) == 8 ? 24u : 16u);
    variant.vt = VT_ARRAY | VT_I4 | VT_BYREF;
    variant.pparray = array.Address();
    EXPECT_EQ(VariantClear(&variant), S_OK);
    EXPECT_EQ(variant.vt, VT_EMPTY);
    EXPECT_EQ(array.At<std::int32_t>({1}), 0);
    variant.vt = 4095;  // no type at all
    EXPECT_EQ(VariantClear(&variant), DISP_E_BADVARTYPE);
}

TEST(GlobalMemory, KeepsSizeAndContentBetweenLocks) {
    const HGLOBAL handle = GlobalAlloc(GHND, 1000);
    ASSERT_NE(handle, nullptr);
    EXPECT_GE(GlobalSize(handle), 1000u);
    auto* const bytes = static_cast<unsigned char*>(GlobalLock(handle));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::count(bytes, bytes + 1000, 0), 1000);
    bytes[999] = 42;
    EXPECT_EQ(static_cast<unsigned char*>(GlobalLock(handle))[999], 42);
    EXPECT_NE(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

#if !defined(_WIN32)

// Systems let sizes and indices wrap here; the library's own arrays must not.
TEST(SafeArray, ExtremeBoundsAreFollowed) {
    constexpr LONG kLow = std::numeric_limits<LONG>::min();
    constexpr LONG kHigh = std::numeric_limits<LONG>::max();
    HostArray extreme(VT_I2, {{2, kLow}, {1, kHigh}});
    LONG indices[2] = {kHigh, kHigh};
    std::int16_t value = 55;
    EXPECT_EQ(SafeArrayGetElement(extreme.Get(), indices, &value), DISP_E_BADINDEX);
    indices[0] = kLow + 1;
    EXPECT_EQ(SafeArrayPutElement(extreme.Get(), indices, &value), S_OK);
    EXPECT_EQ(extreme.At<std::int16_t>({kLow + 1, kHigh}), 55);
}

TEST(SafeArray, ImpossibleArraysAreNotCreated) {
    SAFEARRAYBOUND huge[3] = {{65536, 0}, {65536, 0}, {65536, 0}};
    EXPECT_EQ(SafeArrayCreate(VT_UI1, 2, huge), nullptr);
    EXPECT_EQ(SafeArrayCreate(VT_UI1, 3, huge), nullptr);
    SAFEARRAYBOUND full{0xFFFFFFFFu, 0};
    EXPECT_EQ(SafeArrayCreate(VT_I2, 1, &full), nullptr);
    SAFEARRAYBOUND one{1, 0};
    EXPECT_EQ(SafeArrayCreate(VT_EMPTY, 1, &one), nullptr);
    EXPECT_EQ(SafeArrayCreate(VT_I4, 0, &one), nullptr);
    SAFEARRAY* array = nullptr;
    EXPECT_EQ(tqtest::FailEachAllocation(false, true,
                                         [&] {
                                             array = SafeArrayCreate(VT_I4, 1, &one);
                                             return array != nullptr;
                                         }),
              2);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(GlobalMemory, WhatIsNoHandleIsRefused) {
    int local = 0;
    const HGLOBAL handle = GlobalAlloc(GMEM_FIXED, 8);
    EXPECT_EQ(GlobalLock(handle), handle);  // fixed memory is its own address
    EXPECT_EQ(GlobalFree(handle), nullptr);
    for (const HGLOBAL wrong : {static_cast<HGLOBAL>(&local), HGLOBAL{nullptr}, handle}) {
        EXPECT_EQ(GlobalLock(wrong), nullptr);
        EXPECT_EQ(GlobalUnlock(wrong), 0);
        EXPECT_EQ(GlobalSize(wrong), 0u);
        EXPECT_EQ(GlobalFree(wrong), wrong);
    }
    const HGLOBAL empty = GlobalAlloc(GMEM_MOVEABLE, 0);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(GlobalLock(empty), nullptr);
    EXPECT_EQ(GlobalFree(empty), nullptr);
    EXPECT_EQ(GlobalAlloc(GMEM_FIXED, std::numeric_limits<SIZE_T>::max()), nullptr);
    HGLOBAL made = nullptr;
    EXPECT_GT(tqtest::FailEachAllocation(false, true,
                                         [&] {
                                             made = GlobalAlloc(GMEM_FIXED, 8);
                                             return made != nullptr;
                                         }),
              0);
    EXPECT_EQ(GlobalFree(made), nullptr);
}

TEST(SafeArray, DescriptorsAssembledByHandAreSafe) {
    SAFEARRAY hand{};
    std::int32_t value = 7;
    LONG indices[1] = {0};
    hand.cbElements = 4;
    EXPECT_EQ(SafeArrayGetElement(&hand, indices, &value), E_UNEXPECTED);  // no dimensions
    hand.cDims = 1;
    hand.rgsabound[0] = {0xFFFFFFFFu, 0};
    EXPECT_EQ(SafeArrayPutElement(&hand, indices, &value), E_UNEXPECTED);  // no data
    std::int32_t data[2] = {1, 2};
    hand.pvData = data;
    hand.rgsabound[0] = {2, 5};
    indices[0] = 6;
    EXPECT_EQ(SafeArrayGetElement(&hand, indices, &value), S_OK);
    EXPECT_EQ(value, 2);
    hand.fFeatures = FADF_AUTO | FADF_FIXEDSIZE;
    EXPECT_EQ(SafeArrayDestroy(&hand), S_OK);  // and frees nothing
    EXPECT_EQ(data[0], 1);
}

#endif

}  // namespace
