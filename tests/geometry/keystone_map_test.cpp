#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <utility>

#include "images.h"
#include "maps.h"
#include "tqimage/keystone.h"

namespace {

using tqtest::Image;
using tqtest::MakeImage;
using tqtest::Map;
using tqtest::SamePels;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

auto Identity() {
    return [](std::int32_t col, std::int32_t row) {
        return std::pair{static_cast<float>(col), static_cast<float>(row)};
    };
}

Image Ramp(std::int32_t cols, std::int32_t rows) {
    return MakeImage(cols, rows,
                     [](std::int32_t col, std::int32_t row) { return 1000 + 16 * col + 256 * row; });
}

TEST(RemoveKeystone, TakesEveryPelFromItsSource) {
    Image image = Ramp(40, 30);
    image(0, 0) = 0;
    image.Header().Spare = 0xCAFE;
    image.Header().BinCols = 7;  // of no concern here, like the centre
    image.Header().CenterCol = -500.0f;
    const TqImageHeader header = image.Header();
    Map map(40, 30);
    map.Fill(Identity());
    const Image before = image;
    ASSERT_EQ(tqRemoveKeystone(image.Address(), map), 0);
    EXPECT_TRUE(SamePels(before, image)) << "a dark pel stays 0";
    EXPECT_TRUE(tqtest::SameHeader(header, image.Header()));

    struct Case {
        float col, row;
        int grey;
    };
    // One column may be extrapolated, up to PelCols itself, which is 0; of the rows none from PelRows on.
    const Case cases[] = {{20.25f, 10.5f, 1000 + 324 + 2688},
                          {20.97f, 10.0f, 1000 + 335 + 2560},
                          {39.5f, 10.0f, 1000 + 632 + 2560},
                          {40.0f, 10.0f, 0},
                          {40.5f, 10.0f, 0},
                          {20.0f, 29.5f, 1000 + 320 + 7552},
                          {20.0f, 30.0f, 0},
                          {-0.01f, 10.0f, 0},
                          {20.0f, -0.01f, 0},
                          {kNan, 10.0f, 0},
                          {20.0f, kNan, 0},
                          {3e38f, 10.0f, 0}};
    std::int32_t col = 0;
    for (const Case& c : cases)
        map.Put(col++, 0, c.col, c.row);
    ASSERT_EQ(tqRemoveKeystone(image.Address(), map), 0);
    col = 0;
    for (const Case& c : cases)
        EXPECT_EQ(image(col++, 0), c.grey) << c.col << ", " << c.row;
}

TEST(RemoveKeystone, ExtrapolatedPelsKeepTheirLowBits) {
    Image image = MakeImage(3, 1, {0, 60000, 10000});
    Map map(3, 1);
    map.Fill([](std::int32_t, std::int32_t) { return std::pair{2.5f, 0.0f}; });
    ASSERT_EQ(tqRemoveKeystone(image.Address(), map), 0);
    EXPECT_EQ(image(0, 0), 65536 - 15000);
}

TEST(RemoveKeystone, RefusesInvalidImagesAndOtherSizes) {
    Image image = Ramp(8, 6);
    Image nothing;
    const Map wide(9, 6), low(8, 5);
    EXPECT_EQ(tqRemoveKeystone(nullptr, wide), -1);
    EXPECT_EQ(tqRemoveKeystone(nothing.Address(), wide), -1);
    EXPECT_EQ(tqRemoveKeystone(image.Address(), nullptr), -2);
    EXPECT_EQ(tqRemoveKeystone(image.Address(), wide), -2);
    EXPECT_EQ(tqRemoveKeystone(image.Address(), low), -2);
    EXPECT_TRUE(SamePels(Ramp(8, 6), image));
}

/// Entry (c, r) of a 5 x 3 map: source column 10 r + c would do for places, but sources have to lie inside
/// to be reversed, so the places carry fractions.
std::pair<float, float> Mark(std::int32_t col, std::int32_t row) {
    return {static_cast<float>((col + row) % 5) + 0.25f * static_cast<float>(row > 0 && (col + row) % 5 < 4),
            static_cast<float>((col * 2 + row) % 3)};
}

struct TurnCase {
    const char* name;
    std::function<std::int32_t(TqDistortionMap**)> call;
    bool exchanges;
    /// The old place of the new place (c, r).
    std::function<std::pair<int, int>(int, int)> from;
    bool reversesColumns, reversesRows;
    float centerCol, centerRow;
};

TEST(TurnKeystone, MapsFollowTheirImages) {
    const auto turn = [](std::int32_t mirror, std::int32_t mode) {
        return [=](TqDistortionMap** map) { return tqMirrorTransposeKeystone(map, mirror, mode); };
    };
    // The old map is 5 x 3 with its centre at (1.5, 0.25).
    const TurnCase cases[] = {
        {"mirror", tqMirrorKeystone, false,
         [](int c, int r) {
             return std::pair{4 - c, r};
         },
         true, false, 2.5f, 0.25f},
        {"left", [](auto map) { return tqTransposeKeystone(map, 1); }, true,
         [](int c, int r) {
             return std::pair{4 - r, c};
         },
         false, true, 0.25f, 2.5f},
        {"right", [](auto map) { return tqTransposeKeystone(map, 2); }, true,
         [](int c, int r) {
             return std::pair{r, 2 - c};
         },
         true, false, 1.75f, 1.5f},
        {"flip", [](auto map) { return tqTransposeKeystone(map, 3); }, false,
         [](int c, int r) {
             return std::pair{c, 2 - r};
         },
         false, true, 1.5f, 1.75f},
        {"not mirrored, left", turn(0, 1), true,
         [](int c, int r) {
             return std::pair{4 - r, c};
         },
         false, true, 0.25f, 2.5f},
        {"mirrored only", turn(2, 0), false,
         [](int c, int r) {
             return std::pair{4 - c, r};
         },
         true, false, 2.5f, 0.25f},
        {"main diagonal", turn(1, 1), true,
         [](int c, int r) {
             return std::pair{r, c};
         },
         false, false, 0.25f, 1.5f},
        {"other diagonal", turn(-1, 2), true,
         [](int c, int r) {
             return std::pair{4 - r, 2 - c};
         },
         true, true, 1.75f, 2.5f},
        {"half a turn", turn(1, 3), false,
         [](int c, int r) {
             return std::pair{4 - c, 2 - r};
         },
         true, true, 2.5f, 1.75f},
    };
    for (const TurnCase& t : cases) {
        SCOPED_TRACE(t.name);
        Map map(5, 3);
        map.Fill(Mark);
        map.Head().CenterCol = 1.5f;
        map.Head().CenterRow = 0.25f;
        // Marks without a source survive every turn as they are; so do places beyond the new map.
        map.Put(0, 1, -1.0f, 2.0f);
        map.Put(1, 1, 2.0f, -1.0f);
        map.Put(2, 1, 4.5f, 2.5f);
        Map old(5, 3);
        old.Fill([&](std::int32_t c, std::int32_t r) {
            return std::pair{map.Entry(c, r)[0], map.Entry(c, r)[1]};
        });
        ASSERT_EQ(t.call(map.Address()), 0);
        const int cols = t.exchanges ? 3 : 5;
        const int rows = t.exchanges ? 5 : 3;
        ASSERT_EQ(map.Head().Cols, cols);
        ASSERT_EQ(map.Head().Rows, rows);
        EXPECT_EQ(map.Head().CenterCol, t.centerCol);
        EXPECT_EQ(map.Head().CenterRow, t.centerRow);
        for (int r = 0; r < rows; ++r) {
            for (int c = 0; c < cols; ++c) {
                const auto [oldCol, oldRow] = t.from(c, r);
                float col = old.Entry(oldCol, oldRow)[0];
                float row = old.Entry(oldCol, oldRow)[1];
                if (t.exchanges) std::swap(col, row);
                const auto lastCol = static_cast<float>(cols - 1);
                const auto lastRow = static_cast<float>(rows - 1);
                if (t.reversesColumns && col >= 0.0f && col <= lastCol) col = lastCol - col;
                if (t.reversesRows && row >= 0.0f && row <= lastRow) row = lastRow - row;
                EXPECT_EQ(map.Entry(c, r)[0], col) << c << ", " << r;
                EXPECT_EQ(map.Entry(c, r)[1], row) << c << ", " << r;
            }
        }
    }
}

TEST(TurnKeystone, OtherModesAndMissingMaps) {
    Map map(5, 3);
    map.Fill(Mark);
    const TqDistortionMap* const block = map;
    for (const std::int32_t mode : {0, 4, -1, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(tqTransposeKeystone(map.Address(), mode), 0);
        EXPECT_EQ(tqTransposeKeystone(nullptr, mode), 0);
        EXPECT_EQ(tqMirrorTransposeKeystone(map.Address(), 0, mode), 0);
        if (mode != 0) {
            EXPECT_EQ(tqMirrorTransposeKeystone(map.Address(), 1, mode), 0);
        }
    }
    EXPECT_EQ(static_cast<const TqDistortionMap*>(map), block);
    Map nothing;
    EXPECT_EQ(tqMirrorKeystone(nullptr), -2);
    EXPECT_EQ(tqMirrorKeystone(nothing.Address()), -2);
    EXPECT_EQ(tqTransposeKeystone(nothing.Address(), 1), -2);
    EXPECT_EQ(tqMirrorTransposeKeystone(nothing.Address(), 1, 0), -2);
    EXPECT_EQ(tqMirrorTransposeKeystone(nothing.Address(), 1, 3), -2);
    Map empty(7, 0);
    ASSERT_EQ(tqMirrorTransposeKeystone(empty.Address(), 1, 2), 0);
    EXPECT_EQ(empty.Head().Rows, 7);
}

}  // namespace
