#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <utility>

#include "images.h"
#include "maps.h"
#include "samples.h"
#include "tqimage/keystone.h"

namespace {

using namespace tqtest;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(RemoveKeystone, TakesEveryPelFromItsSource) {
    Image image = Ramp(40, 30);
    image(0, 0) = 0;
    image.Header().BinCols = 7;  // of no concern here, like the centre
    image.Header().CenterCol = -500.0f;
    const Image before = image;
    Map map(40, 30);
    map.Fill(OwnPlace);
    ASSERT_EQ(tqRemoveKeystone(image.Address(), map), 0);
    EXPECT_TRUE(SamePels(before, image)) << "a dark pel stays 0";
    EXPECT_TRUE(SameHeader(before.Header(), image.Header()));

    struct Case {
        float col, row;
        int grey;
    };
    // One column may be extrapolated, up to PelCols itself, which is 0; of the rows none from PelRows on.
    std::int32_t col = 0;
    for (const Case& c :
         {Case{20.25f, 10.5f, 1000 + 324 + 2688}, Case{20.97f, 10.0f, 1000 + 335 + 2560},
          Case{39.5f, 10.0f, 1000 + 632 + 2560}, Case{40.0f, 10.0f, 0}, Case{40.5f, 10.0f, 0},
          Case{20.0f, 29.5f, 1000 + 320 + 7552}, Case{20.0f, 30.0f, 0}, Case{-0.01f, 10.0f, 0},
          Case{20.0f, -0.01f, 0}, Case{kNan, 10.0f, 0}, Case{20.0f, kNan, 0}, Case{3e38f, 10.0f, 0}}) {
        map.Put(++col, 0, c.col, c.row);
        image = before;
        ASSERT_EQ(tqRemoveKeystone(image.Address(), map), 0);
        EXPECT_EQ(image(col, 0), c.grey) << c.col << ", " << c.row;
    }
}

TEST(RemoveKeystone, ExtrapolatedPelsKeepTheirLowBits) {
    Image image = MakeImage(3, 1, {0, 60000, 10000});
    Map map(3, 1);
    map.Fill([](std::int32_t, std::int32_t) { return std::pair{2.5f, 0.0f}; });
    ASSERT_EQ(tqRemoveKeystone(image.Address(), map), 0);
    EXPECT_EQ(image(0, 0), 65536 - 15000);
}

TEST(RemoveKeystone, RefusesOtherSizes) {
    Image image = Ramp(8, 6);
    EXPECT_EQ(tqRemoveKeystone(nullptr, Map(9, 6)), -1);
    EXPECT_EQ(tqRemoveKeystone(image.Address(), nullptr), -2);
    EXPECT_EQ(tqRemoveKeystone(image.Address(), Map(9, 6)), -2);
    EXPECT_EQ(tqRemoveKeystone(image.Address(), Map(8, 5)), -2);
    EXPECT_TRUE(SamePels(Ramp(8, 6), image));
}

}  // namespace
