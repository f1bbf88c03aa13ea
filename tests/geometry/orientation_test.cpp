#include "tqimage/orientation.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

#include "images.h"

namespace {

using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::MakeImage;
using tqtest::RandomImage;
using tqtest::SameHeader;
using tqtest::SamePels;

/// Different in every field, so that no mix-up stays unseen.
TqImageHeader DistinctHeader(std::int32_t cols, std::int32_t rows) {
    return {cols, rows, 1100.0f, 1200.0f, 10.25f, 4.5f, 123456.0, 0.5f, 77.0f, 88.0f, 3.0f, 2, 3, 0xDEADBEEF};
}

Image Noise(std::int32_t cols, std::int32_t rows) {
    Image image = RandomImage(cols, rows, 3);
    image.Header() = DistinctHeader(cols, rows);
    return image;
}

struct Case {
    const char* name;
    std::function<std::int32_t(TqImage**)> turn;
    bool exchanged;
    /// Source of output pel (c, r), given the last column and row of the source.
    std::function<std::pair<int, int>(int c, int r, int lastCol, int lastRow)> source;
};

const std::vector<Case>& Cases() {
    static const std::vector<Case> cases{
        {"left", [](TqImage** i) { return tqTransposeImage(i, 1); }, true,
         [](int c, int r, int w, int) {
             return std::pair{w - r, c};
         }},
        {"right", [](TqImage** i) { return tqTransposeImage(i, 2); }, true,
         [](int c, int r, int, int h) {
             return std::pair{r, h - c};
         }},
        {"flip", [](TqImage** i) { return tqTransposeImage(i, 3); }, false,
         [](int c, int r, int, int h) {
             return std::pair{c, h - r};
         }},
        {"mirror", [](TqImage** i) { return tqMirrorImage(i); }, false,
         [](int c, int r, int w, int) {
             return std::pair{w - c, r};
         }},
        {"mirror, no turn", [](TqImage** i) { return tqMirrorTransposeImage(i, -1, 0); }, false,
         [](int c, int r, int w, int) {
             return std::pair{w - c, r};
         }},
        {"right, no mirror", [](TqImage** i) { return tqMirrorTransposeImage(i, 0, 2); }, true,
         [](int c, int r, int, int h) {
             return std::pair{r, h - c};
         }},
        {"main diagonal", [](TqImage** i) { return tqMirrorTransposeImage(i, 1, 1); }, true,
         [](int c, int r, int, int) {
             return std::pair{r, c};
         }},
        {"other diagonal", [](TqImage** i) { return tqMirrorTransposeImage(i, 7, 2); }, true,
         [](int c, int r, int w, int h) {
             return std::pair{w - r, h - c};
         }},
        {"half", [](TqImage** i) { return tqMirrorTransposeImage(i, 1, 3); }, false,
         [](int c, int r, int w, int h) {
             return std::pair{w - c, h - r};
         }},
    };
    return cases;
}

TEST(Orientation, EveryPelAndEveryHeaderFieldFollowTheTurn) {
    for (const auto& [cols, rows] : {std::pair{1, 1}, {1, 9}, {9, 1}, {3, 2}, {67, 133}, {200, 70}}) {
        for (const Case& c : Cases()) {
            SCOPED_TRACE(testing::Message() << c.name << ", " << cols << " x " << rows);
            const Image before = Noise(cols, rows);
            Image image = before;
            const Image expected = MakeImage(c.exchanged ? rows : cols, c.exchanged ? cols : rows,
                                             [&](std::int32_t col, std::int32_t row) {
                                                 const auto [sourceCol, sourceRow] =
                                                     c.source(col, row, cols - 1, rows - 1);
                                                 return before(sourceCol, sourceRow);
                                             });
            ASSERT_EQ(c.turn(image.Address()), 0);
            EXPECT_TRUE(SamePels(expected, image));

            // The centre turns with the pels: from the side that the first output pel comes from.
            TqImageHeader header = before.Header();
            const auto [cornerCol, cornerRow] = c.source(0, 0, 1, 1);
            if (cornerCol != 0) header.CenterCol = static_cast<float>(cols - 1) - header.CenterCol;
            if (cornerRow != 0) header.CenterRow = static_cast<float>(rows - 1) - header.CenterRow;
            if (c.exchanged) {
                std::swap(header.PelCols, header.PelRows);
                std::swap(header.PelsPerMeterX, header.PelsPerMeterY);
                std::swap(header.CenterCol, header.CenterRow);
                std::swap(header.BinCols, header.BinRows);
            }
            EXPECT_TRUE(SameHeader(header, image.Header()));
        }
    }
}

TEST(Orientation, UnknownModesKeepTheHeaderOfABlackImage) {
    for (const std::int32_t mode : {-1, 4, std::numeric_limits<std::int32_t>::min()}) {
        for (const std::int32_t mirror : {0, 1}) {
            Image image = Noise(5, 4);
            ASSERT_EQ(tqMirrorTransposeImage(image.Address(), mirror, mode), 0);
            EXPECT_TRUE(SamePels(Image(5, 4), image));
            EXPECT_TRUE(SameHeader(DistinctHeader(5, 4), image.Header()));
        }
    }
}

TEST(Orientation, RefusesInvalidImagesUnlessThereIsNothingToDo) {
    Image nothing;
    Image tooWide(DefaultHeader(8001, 1));
    for (TqImage** image : {static_cast<TqImage**>(nullptr), nothing.Address(), tooWide.Address()}) {
        for (const Case& c : Cases())
            EXPECT_EQ(c.turn(image), -1);
        EXPECT_EQ(tqTransposeImage(image, 4), -1);
        EXPECT_EQ(tqTransposeImage(image, 0), 0);
        EXPECT_EQ(tqMirrorTransposeImage(image, 0, 0), 0);
    }
}

}  // namespace
