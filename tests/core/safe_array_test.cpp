#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "automation_host.h"
#include "images.h"
#include "tqimage/exchange.h"

namespace {

using tqtest::HostArray;
using tqtest::Image;
using tqtest::MakeImage;
using tqtest::MakeInt16Array;
using tqtest::MakeInt32Array;
using tqtest::SameHeader;
using tqtest::SamePels;

/// The header of an image made of an array.
TqImageHeader BareHeader(std::int32_t cols, std::int32_t rows) {
    TqImageHeader header{};
    header.PelCols = cols;
    header.PelRows = rows;
    header.BinCols = 1;
    header.BinRows = 1;
    return header;
}

int Numbered(int col, int row) {
    return 1000 * row + col;
}

TEST(SafeArrayToHandle, TakesColumnsFirstAndClamps) {
    HostArray array = MakeInt32Array(5, 3, Numbered);
    array.Set<std::int32_t>({1, 2}, -3);
    array.Set<std::int32_t>({4, 0}, 70000);
    array.Set<std::int32_t>({0, 1}, std::numeric_limits<std::int32_t>::min());
    Image expected = MakeImage(5, 3, Numbered);
    expected(1, 2) = 0;
    expected(4, 0) = 65535;
    expected(0, 1) = 0;
    Image image(90, 90);
    ASSERT_EQ(tqSafeArrayToHandle(image.Address(), array.Address()), 0);
    EXPECT_TRUE(SamePels(expected, image));
    EXPECT_TRUE(SameHeader(image.Header(), BareHeader(5, 3)));
    EXPECT_EQ(array.Locks(), 0u);
}

TEST(SafeArrayToHandle, LowerBoundsAreNotFollowed) {
    for (const auto& [lowerCol, lowerRow] : {std::pair{0, 1}, {-1, 0}, {0, -1}, {5, -2147483647 - 1}}) {
        HostArray array(VT_I4, {{3, lowerCol}, {2, lowerRow}});
        // What indices from 0 reach before the first one outside.
        Image expected(3, 2);
        bool reading = true;
        for (int row = 0; row < 2; ++row) {
            for (int col = 0; col < 3; ++col) {
                const bool inside =
                    col >= lowerCol && col < 3 + lowerCol && row >= lowerRow && row < 2 + lowerRow;
                reading = reading && inside;
                if (inside) array.Set<std::int32_t>({col, row}, 7);
                if (reading) expected(col, row) = 7;
            }
        }
        Image image(9, 9);
        EXPECT_EQ(tqSafeArrayToHandle(image.Address(), array.Address()), -4) << lowerCol << ", " << lowerRow;
        EXPECT_EQ(array.Locks(), 1u);
        EXPECT_TRUE(SamePels(expected, image));
    }
}

TEST(ShortSafeArrayToHandle, TakesTheBitsWhateverTheLowerBounds) {
    Image image(90, 90);
    HostArray array = MakeInt16Array(4, 3, [](int col, int row) { return 30000 + 1000 * row + 900 * col; });
    ASSERT_EQ(tqShortSafeArrayToHandle(image.Address(), array.Address()), 0);
    const Image expected = MakeImage(4, 3, [](int col, int row) { return 30000 + 1000 * row + 900 * col; });
    EXPECT_TRUE(SamePels(expected, image));
    EXPECT_TRUE(SameHeader(image.Header(), BareHeader(4, 3)));
    HostArray shifted(VT_UI2, {{2, -5}, {1, 9}});
    shifted.Set<std::uint16_t>({-4, 9}, 65000);
    ASSERT_EQ(tqShortSafeArrayToHandle(image.Address(), shifted.Address()), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 1, {0, 65000}), image));
}

using ToHandle = std::int32_t(TQ_CALL*)(TqImage**, SAFEARRAY**);

class ArrayToImage : public testing::TestWithParam<std::pair<ToHandle, VARTYPE>> {
  protected:
    std::int32_t Call(HostArray& array) { return GetParam().first(image_.Address(), array.Address()); }
    HostArray Make(const std::vector<tqtest::Dimension>& dimensions) const {
        return HostArray(GetParam().second, dimensions);
    }
    Image image_ = MakeImage(1, 1, {77});
};

TEST_P(ArrayToImage, RefusesWrongArraysAndKeepsTheImage) {
    TqImage* const block = image_.Get();
    const VARTYPE other = GetParam().second == VT_I4 ? VT_I2 : VT_I4;
    for (const VARTYPE type : {other, VARTYPE{VT_R8}, VARTYPE{VT_R4}}) {
        HostArray wrong(type, {{2}, {2}});
        EXPECT_EQ(Call(wrong), -2) << "type " << type;
    }
    HostArray cube = Make({{2}, {2}, {2}});
    EXPECT_EQ(Call(cube), -3);
    HostArray none;
    EXPECT_EQ(Call(none), -2);
    HostArray array = Make({{2}, {2}});
    EXPECT_EQ(GetParam().first(nullptr, array.Address()), -2);
    EXPECT_EQ(GetParam().first(image_.Address(), nullptr), -2);
    // The element size alone is wrong too when the dimensions are.
    HostArray both(VT_R8, {{4}});
    EXPECT_EQ(Call(both), -2);
    EXPECT_EQ(image_.Get(), block);
}

TEST_P(ArrayToImage, DescriptorsThatLieAboutTheirSizeAreRefused) {
    TqImage* const block = image_.Get();
    HostArray array = Make({{2}, {2}});
    const SAFEARRAYBOUND rows = array->rgsabound[0];
    for (const ULONG count : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        array->rgsabound[0].cElements = count;
        EXPECT_EQ(Call(array), -2) << count;
    }
    array->rgsabound[0] = rows;
    EXPECT_EQ(image_.Get(), block);

    void* const data = std::exchange(array->pvData, nullptr);
    EXPECT_LT(Call(array), -2);
    array->pvData = data;
    // From here on the image is the host's, filled or not.
    EXPECT_EQ(image_.Cols(), 2);
}

TEST_P(ArrayToImage, AnArrayThatCannotBeLockedOrHoldsNothingLeavesANewImage) {
    HostArray array = Make({{3}, {2}});
    array->cLocks = 65535;
    EXPECT_EQ(Call(array), -3);
    EXPECT_TRUE(SamePels(Image(3, 2), image_));
    EXPECT_EQ(array.Locks(), 65535u);
    HostArray empty = Make({{0}, {3}});
    EXPECT_EQ(Call(empty), 0);
    EXPECT_EQ(image_.Cols(), 0);
}

INSTANTIATE_TEST_SUITE_P(All, ArrayToImage,
                         testing::Values(std::pair<ToHandle, VARTYPE>{tqSafeArrayToHandle, VARTYPE{VT_I4}},
                                         std::pair<ToHandle, VARTYPE>{tqShortSafeArrayToHandle,
                                                                      VARTYPE{VT_I2}}));

TEST(SafeArrayToHandle, DataInTheBlockThatIsReplacedIsReadBeforeItGoes) {
    Image image = MakeImage(3, 2, {1, 2, 3, 4, 5, 6});
    HostArray array(VT_UI2, {{2}, {3}});
    void* const data = std::exchange(array->pvData, image.Pels());
    ASSERT_EQ(tqShortSafeArrayToHandle(image.Address(), array.Address()), 0);
    array->pvData = data;
    EXPECT_TRUE(SamePels(MakeImage(2, 3, {1, 2, 3, 4, 5, 6}), image));
}

/// Pels without a header, from the library.
struct BarePels {
    std::uint16_t* pels = nullptr;
    ~BarePels() {
        auto* block = reinterpret_cast<TqImage*>(pels);
        tqImageFree(&block);
    }
    std::vector<std::uint16_t> Values(std::size_t count) const { return {pels, pels + count}; }
};

TEST(BarePels, ReadInMemoryOrderAndClamped) {
    HostArray line(VT_I4, {{4}});
    line.Set<std::int32_t>({0}, -1);
    line.Set<std::int32_t>({1}, 65536);
    line.Set<std::int32_t>({2}, 5);
    BarePels pels;
    ASSERT_EQ(tqGetSafeArrayHandle(&pels.pels, line.Address()), 0);
    EXPECT_EQ(pels.Values(4), (std::vector<std::uint16_t>{0, 65535, 5, 0}));
    EXPECT_EQ(line.Locks(), 0u);

    HostArray plane = MakeInt32Array(3, 2, [](int a, int b) { return 10 * a + b; });
    BarePels planePels;
    ASSERT_EQ(tqGetSafeArrayHandle(&planePels.pels, plane.Address()), 0);
    EXPECT_EQ(planePels.Values(6), (std::vector<std::uint16_t>{0, 10, 20, 1, 11, 21}));

    HostArray empty(VT_I4, {{0}});
    BarePels none;
    EXPECT_EQ(tqGetSafeArrayHandle(&none.pels, empty.Address()), 0);
    EXPECT_NE(none.pels, nullptr);
}

TEST(BarePels, WrittenAlongTheOtherIndex) {
    const std::uint16_t values[] = {0, 1, 2, 3, 4, 5, 6, 7, 65535};
    HostArray line(VT_I4, {{3}});
    ASSERT_EQ(tqGetSafeArray(values + 6, line.Address()), 0);
    EXPECT_EQ(line.At<std::int32_t>({0}), 6);
    EXPECT_EQ(line.At<std::int32_t>({2}), 65535);

    HostArray square(VT_I4, {{3}, {3}});
    ASSERT_EQ(tqGetSafeArray(values, square.Address()), 0);
    for (LONG a = 0; a < 3; ++a) {
        for (LONG b = 0; b < 3; ++b)
            EXPECT_EQ(square.At<std::int32_t>({a, b}), values[3 * a + b]);
    }
    EXPECT_EQ(square.Locks(), 0u);

    // (2, 3): indices (0, 0), (0, 1) fit, then (1, 0), (1, 1), then (2, 0) does not.
    HostArray wide = MakeInt32Array(2, 3, [](int, int) { return -9; });
    EXPECT_EQ(tqGetSafeArray(values, wide.Address()), -5);
    EXPECT_EQ(wide.Locks(), 1u);
    EXPECT_EQ(wide.At<std::int32_t>({1, 1}), 3);
    EXPECT_EQ(wide.At<std::int32_t>({0, 2}), -9);
}

TEST(BarePels, EveryFailureHasItsCode) {
    struct Case {
        const char* what;
        VARTYPE type;
        std::vector<tqtest::Dimension> dimensions;
        ULONG locks;
        std::int32_t status;
        bool allocated;
    };
    const Case cases[] = {{"two bytes", VT_I2, {{2}, {2}}, 0, -2, false},
                          {"locked too often", VT_I4, {{2}, {2}}, 65535, -3, true},
                          {"one dimension, lower bound", VT_I4, {{3, 1}}, 0, -4, true},
                          {"two dimensions, lower bound", VT_I4, {{2}, {2, 1}}, 0, -5, true},
                          {"three dimensions", VT_I4, {{2}, {2}, {2}}, 0, -6, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        HostArray array(c.type, c.dimensions);
        array->cLocks = c.locks;
        const bool staysLocked = c.status <= -4;
        BarePels pels;
        EXPECT_EQ(tqGetSafeArrayHandle(&pels.pels, array.Address()), c.status);
        EXPECT_EQ(pels.pels != nullptr, c.allocated);
        EXPECT_EQ(array.Locks(), c.locks + (staysLocked ? 1 : 0));

        const std::uint16_t values[8] = {};
        array->cLocks = c.locks;
        EXPECT_EQ(tqGetSafeArray(values, array.Address()), c.status);
        EXPECT_EQ(array.Locks(), c.locks + (staysLocked ? 1 : 0));
    }
    HostArray array(VT_I4, {{2}});
    HostArray none;
    BarePels pels;
    const std::uint16_t values[2] = {};
    EXPECT_EQ(tqGetSafeArrayHandle(&pels.pels, none.Address()), -2);
    EXPECT_EQ(tqGetSafeArrayHandle(&pels.pels, nullptr), -2);
    EXPECT_EQ(tqGetSafeArrayHandle(nullptr, array.Address()), -1);
    EXPECT_EQ(tqGetSafeArray(values, none.Address()), -2);
    EXPECT_EQ(tqGetSafeArray(values, nullptr), -2);
    EXPECT_EQ(tqGetSafeArray(nullptr, array.Address()), -2);

    array->rgsabound[0].cElements = 0xFFFFFFFFu;
    EXPECT_EQ(tqGetSafeArrayHandle(&pels.pels, array.Address()), -1);
    EXPECT_EQ(pels.pels, nullptr);
    array->rgsabound[0].cElements = 2;
}

}  // namespace
