#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "images.h"
#include "tqimage/exchange.h"

namespace {

using tqtest::Image;
using tqtest::MakeImage;
using tqtest::SameHeader;
using tqtest::SamePels;

std::size_t Index(const Image& image, int col, int row) {
    return static_cast<std::size_t>(image.Rows()) * static_cast<std::size_t>(col) +
           static_cast<std::size_t>(row);
}

TEST(PlainArrays, HoldColumnAfterColumn) {
    // One pel, one line either way, and sides around and beyond any tile.
    for (const auto& [cols, rows] :
         {std::pair{1, 1}, {9, 1}, {1, 9}, {3, 2}, {32, 32}, {33, 31}, {70, 101}}) {
        SCOPED_TRACE(testing::Message() << cols << " x " << rows);
        const Image image = tqtest::RandomImage(cols, rows, 7);
        std::vector<std::uint16_t> values(image.Count() + 1, 0xEEEE);
        ASSERT_EQ(tqHandleToShortSafeArray(image, values.data()), 0);
        EXPECT_EQ(values.back(), 0xEEEE);
        for (int row = 0; row < rows; ++row) {
            for (int col = 0; col < cols; ++col) {
                ASSERT_EQ(values[Index(image, col, row)], image(col, row));
            }
        }
        std::vector<std::uint16_t> same(values.size(), 0xEEEE);
        ASSERT_EQ(tqHandleToShortSafeArrayNew(image, same.data()), 0);
        EXPECT_EQ(values, same);

        Image back(2, 2);
        ASSERT_EQ(tqShortSafeArrayToHandle2(back.Address(), &image.Header(), values.data()), 0);
        EXPECT_TRUE(SamePels(image, back));
        EXPECT_TRUE(SameHeader(image.Header(), back.Header()));

        Image clamped;
        const auto* const signedValues = reinterpret_cast<const std::int16_t*>(values.data());
        ASSERT_EQ(tqShortSafeArrayToHandleNew(clamped.Address(), &image.Header(), signedValues), 0);
        EXPECT_TRUE(SamePels(MakeImage(cols, rows,
                                       [&](int col, int row) {
                                           const int pel = image(col, row);
                                           return pel > 32767 ? 0 : pel;
                                       }),
                             clamped));
    }
}

TEST(PlainArrays, HeaderAndValuesMayLieInTheBlockThatIsReplaced) {
    Image image = MakeImage(3, 2, {11, 12, 13, 14, 15, 16});
    ASSERT_EQ(tqShortSafeArrayToHandle2(image.Address(), &image.Header(), image.Pels()), 0);
    EXPECT_TRUE(SamePels(MakeImage(3, 2, {11, 13, 15, 12, 14, 16}), image));
}

TEST(PlainArrays, FailuresKeepTheHostsImage) {
    const std::vector<std::uint16_t> values(16, 3);
    const std::vector<std::int16_t> signedValues(16, 3);
    Image image = MakeImage(2, 2, {1, 2, 3, 4});
    const Image before = image;
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    for (const auto& [cols, rows] : {std::pair{kMost, kMost}, {-1, 4}, {4, -1}, {65536, 65536}}) {
        const TqImageHeader header = tqtest::DefaultHeader(cols, rows);
        EXPECT_EQ(tqShortSafeArrayToHandle2(image.Address(), &header, values.data()), -2);
        EXPECT_EQ(tqShortSafeArrayToHandleNew(image.Address(), &header, signedValues.data()), -2);
    }
    const TqImageHeader header = tqtest::DefaultHeader(4, 4);
    EXPECT_EQ(tqShortSafeArrayToHandle2(image.Address(), &header, nullptr), -2);
    EXPECT_EQ(tqShortSafeArrayToHandleNew(image.Address(), nullptr, signedValues.data()), -2);
    EXPECT_TRUE(SamePels(before, image));

    // Sides that validation refuses later are not refused here.
    const TqImageHeader empty = tqtest::DefaultHeader(0, 9000);
    EXPECT_EQ(tqShortSafeArrayToHandle2(image.Address(), &empty, values.data()), 0);
    EXPECT_EQ(image.Rows(), 9000);

    EXPECT_EQ(tqHandleToShortSafeArray(before, nullptr), -1);
}

}  // namespace
