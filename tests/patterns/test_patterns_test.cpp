#include "tqimage/test_patterns.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "failing_allocator.h"
#include "images.h"

namespace {

using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::SameHeader;
using tqtest::SamePels;

/// A pattern as a reader sees it, a line a row: '.' black, '#' white, other greys as the hexadecimal digit of
/// their upper four bits.
std::string Picture(const Image& image) {
    std::string text;
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            const std::uint16_t pel = image(col, row);
            text += pel == 0 ? '.' : pel == 65535 ? '#' : "0123456789abcdef"[pel >> 12];
        }
        text += '\n';
    }
    return text;
}

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

/// A generator with everything given but the image and its size.
using Generator = std::function<std::int32_t(TqImage**, std::int32_t cols, std::int32_t rows)>;

Generator Dots(std::int32_t firstCol, std::int32_t firstRow, std::int32_t countX, std::int32_t countY,
               std::int32_t stepX, std::int32_t stepY, std::int32_t radius) {
    return [=](TqImage** i, std::int32_t c, std::int32_t r) {
        return tqCreateDotPattern(i, c, r, firstCol, firstRow, countX, countY, stepX, stepY, radius);
    };
}
Generator Grid(std::int32_t left, std::int32_t top, std::int32_t countX, std::int32_t countY,
               std::int32_t stepX, std::int32_t stepY, std::int32_t width) {
    return [=](TqImage** i, std::int32_t c, std::int32_t r) {
        return tqCreateGridPattern(i, c, r, left, top, countX, countY, stepX, stepY, width);
    };
}
using FiveIntegers = std::int32_t(TQ_CALL*)(TqImage**, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                                            std::int32_t);
Generator With(FiveIntegers create, std::int32_t a, std::int32_t b, std::int32_t d) {
    return [=](TqImage** i, std::int32_t c, std::int32_t r) { return create(i, c, r, a, b, d); };
}
Generator Ansi(std::int32_t radius, std::int32_t extended) {
    return [=](TqImage** i, std::int32_t c, std::int32_t r) {
        return tqCreateANSI13Pattern(i, c, r, radius, extended);
    };
}
Generator Vesa(std::int32_t horizontal, std::int32_t width) {
    return [=](TqImage** i, std::int32_t c, std::int32_t r) {
        return tqCreateVESAConvergencePattern(i, c, r, horizontal, width);
    };
}
Generator Border(std::int32_t count, const std::uint16_t* values, std::int32_t frameX, std::int32_t frameY,
                 std::int32_t interior) {
    return [=](TqImage** i, std::int32_t c, std::int32_t r) {
        return tqCreateBorderPattern(i, count, values, c, r, frameX, frameY, interior);
    };
}
Generator Bands(std::int32_t steps) {
    return
        [=](TqImage** i, std::int32_t c, std::int32_t r) { return tqCreateGrayScaleImage(i, steps, c, r); };
}

Image Draw(const Generator& generator, std::int32_t cols, std::int32_t rows) {
    Image image;
    EXPECT_EQ(generator(image.Address(), cols, rows), 0);
    return image;
}

constexpr std::uint16_t kGreys[] = {0x3000, 0x9000, 0x5000};

struct Drawing {
    Generator generator;
    std::int32_t cols, rows;
    std::string picture;
};

TEST(TestPatterns, AsTheyLook) {
    const Drawing drawings[] = {
        // One disc is asked for and four come; the first is cut by the image.
        {Dots(0, 1, 1, 0, 6, 4, 2), 7, 6, "##...##\n###.###\n##...##\n#.....#\n##...##\n###.###\n"},
        {With(tqCreateDistortionPattern, 3, 0, 1), 12, 8,
         "............\n..#...#..#..\n.###.######.\n..#...#..#..\n"
         "..#...#..#..\n.###.######.\n..#...#..#..\n............\n"},
        {Ansi(0, 0), 10, 10,
         "..........\n.#.......#\n..#..#..#.\n..........\n..........\n"
         "..#..#..#.\n..........\n..........\n..#..#..#.\n.#.......#\n"},
        // Lines of two pels end one pel short; the first row line starts outside and is moved, not cut.
        {Grid(1, -3, 2, 2, 4, 6, 2), 8, 6, ".######.\n.######.\n.##..##.\n.######.\n.#####..\n........\n"},
        {Grid(0, 0, 3, 1, 3, 3, 1), 8, 5, "#######.\n#..#..#.\n#..#..#.\n#######.\n........\n"},
        {With(tqCreateConvergencePattern, 2, 1, 2), 9, 5,
         ".##..##..\n#########\n#########\n.##..##..\n.##..##..\n"},
        {With(tqCreateConvergencePattern, 0, 2, 1), 4, 5, "....\n####\n....\n####\n....\n"},
        {Vesa(0, 0), 11, 2, ".#.#.#.#.#.\n.#.#.#.#.#.\n"},
        {With(tqCreateCheckerboardPattern, 3, 0, 1), 7, 4, "###..##\n###..##\n###..##\n...##..\n"},
        {Border(2, kGreys, 2, 1, 70000), 10, 5,
         "3333333333\n3399999933\n3399##9933\n3399999933\n3333333333\n"},
        {Border(9, nullptr, 0, 1, 0), 2, 5, "##\n..\n##\n..\n##\n"},
        {Border(1, kGreys, 1, 0, 0x9abc), 4, 2, "3993\n3993\n"},
        {Border(-1, nullptr, 1, 1, -5), 3, 1, "...\n"},
        {With(tqCreateZonePattern, 2, 3, 1), 9, 9,
         ".........\n...###...\n..#...#..\n.#.###.#.\n.#.###.#.\n.#.###.#.\n..#...#..\n...###...\n........."
         "\n"},
        {With(tqCreateZonePattern, 2, 0, 1), 6, 4, "..##..\n.####.\n.####.\n..##..\n"},
        {With(tqCreateZonePattern, -1, 2, 0), 3, 3, ".#.\n#.#\n.#.\n"},
        {Bands(4), 10, 1, "...555aaa#\n"},
        // The width of a band is rounded up, and the white one finds no room.
        {Bands(4), 5, 1, "..55a\n"},
    };
    for (const Drawing& d : drawings) {
        const Image image = Draw(d.generator, d.cols, d.rows);
        EXPECT_EQ(Picture(image), d.picture);
        TqImageHeader header = DefaultHeader(d.cols, d.rows);
        header.LuxPerGrey = header.SourceDistance = 0.0f;
        EXPECT_TRUE(SameHeader(header, image.Header()));
    }
}

/// The definition of a lattice, disc by disc and pel by pel.
Image LatticeDrawnPelByPel(std::int32_t cols, std::int32_t rows, const std::array<std::int64_t, 7>& a) {
    const auto [firstCol, firstRow, countX, countY, stepX, stepY, radius] = a;
    Image image(cols, rows);
    for (std::int64_t j = 0; j < countY; ++j) {
        for (std::int64_t i = 0; i < countX; ++i) {
            for (std::int32_t row = 0; row < rows; ++row) {
                for (std::int32_t col = 0; col < cols; ++col) {
                    const std::int64_t dx = col - (firstCol + i * stepX), dy = row - (firstRow + j * stepY);
                    if (radius >= 0 && dx * dx + dy * dy <= radius * radius) image(col, row) = 65535;
                }
            }
        }
    }
    return image;
}

TEST(TestPatterns, LatticesOfDiscsThatOverlapLeaveTheImageOrTurnBack) {
    const std::array<std::int64_t, 7> lattices[] = {
        {7, 5, 4, 3, 11, 9, 4},   {-4, -3, 5, 5, 9, 8, 5},   {30, 25, 6, 4, -7, -5, 3},
        {10, 10, 3, 4, 0, 2, 6},  {-90, 10, 3, 2, 2, 0, 99}, {70, 50, 9, 9, 1, 1, 40},
        {5, 5, 40, 30, 1, 2, 0},  {5, 5, 3, 3, 5, 5, -1},    {-60, 12, 40, 3, 3, 7, 7},
        {20, 15, 2, 2, 1, 0, 13}, {0, 0, 2, 2, 36, 28, 25},
    };
    for (const auto& a : lattices) {
        const auto at = [&a](std::size_t i) { return static_cast<std::int32_t>(a[i]); };
        EXPECT_TRUE(SamePels(LatticeDrawnPelByPel(37, 29, a),
                             Draw(Dots(at(0), at(1), at(2), at(3), at(4), at(5), at(6)), 37, 29)))
            << testing::PrintToString(a);
    }
}

/// Columns where the rows or columns of a large pattern change, in its first row.
std::vector<std::int32_t> Changes(const Image& image, bool downwards) {
    std::vector<std::int32_t> changes;
    for (std::int32_t at = 1; at < (downwards ? image.Rows() : image.Cols()); ++at) {
        if (downwards ? image(0, at) != image(0, at - 1) : image(at, 0) != image(at - 1, 0))
            changes.push_back(at);
    }
    return changes;
}

TEST(TestPatterns, WhereFieldsAndLinesBegin) {
    using Places = std::vector<std::int32_t>;
    const Image board = Draw(With(tqCreateCheckerboardPattern, 2, 2, 0), 101, 100);
    EXPECT_EQ(Changes(board, false), Places{51});
    EXPECT_EQ(Changes(board, true), Places{51});  // 49.5 goes to the even 50
    EXPECT_EQ(board(0, 0), 0);
    EXPECT_EQ(Changes(Draw(With(tqCreateCheckerboardPattern, 9, 2, 1), 37, 2), false),
              (Places{5, 9, 13, 17, 21, 25, 29, 33}));

    const Places five{99, 102, 299, 302, 499, 502, 699, 702, 899, 902};
    EXPECT_EQ(Changes(Draw(Vesa(1, 3), 2, 1001), true), five);
    EXPECT_EQ(Changes(Draw(Vesa(0, 3), 1001, 2), false), five);
    EXPECT_EQ(Changes(Draw(Bands(2), 102, 1), false), Places{52});  // 51.5 goes to the even 52
    EXPECT_EQ(Changes(Draw(With(tqCreateConvergencePattern, 3, 0, 4), 100, 1), false),
              (Places{14, 18, 48, 52, 80, 84}));

    Image points = Draw(Ansi(0, 1), 1001, 602);
    for (const std::int32_t row : {31, 101, 301, 501, 571}) {
        for (const std::int32_t col : {50, 167, 500, 834, 950})
            EXPECT_EQ(std::exchange(points(col, row), std::uint16_t{0}), 65535) << col << ", " << row;
    }
    EXPECT_TRUE(SamePels(Image(1001, 602), points));
}

TEST(TestPatterns, FourFieldsOfFourPrimaries) {
    for (const std::int32_t fourPrimaries : {0, 1}) {
        std::array<Image, 4> planes;
        ASSERT_EQ(tqCreateFourColorImage(planes[0].Address(), planes[1].Address(), planes[2].Address(),
                                         planes[3].Address(), 5, 4, fourPrimaries),
                  0);
        const std::string white = fourPrimaries != 0 ? "....." : "...##";
        EXPECT_EQ(Picture(planes[0]), "###..\n###..\n" + white + "\n" + white + "\n");
        EXPECT_EQ(Picture(planes[1]), "...##\n...##\n" + white + "\n" + white + "\n");
        const std::string blue = fourPrimaries != 0 ? "###..\n" : "#####\n";
        EXPECT_EQ(Picture(planes[2]), ".....\n.....\n" + blue + blue);
        EXPECT_EQ(Picture(planes[3]), ".....\n.....\n...##\n...##\n");
    }
}

/// Each generator with arguments as they come, and one of four planes for all.
std::vector<Generator> EveryGenerator(std::int32_t a, std::int32_t b, std::int32_t d) {
    return {Dots(a, b, d, a, b, d, d),
            Dots(-1, 0, d, d, a, b, std::abs(d % 100)),
            Ansi(d, a),
            Grid(a, b, d, a, b, d, d),
            Grid(0, 0, a, a, b, b, d),
            Vesa(a & 1, d),
            Border(1, kGreys, a, b, d),
            Border(b, nullptr, d, a, d),
            Bands(std::max(d, 2)),
            With(tqCreateDistortionPattern, a, b, d),
            With(tqCreateConvergencePattern, a, b, d),
            With(tqCreateCheckerboardPattern, a, b, d),
            With(tqCreateZonePattern, a, b, d),
            [=](TqImage** i, std::int32_t c, std::int32_t r) {
                Image green, blue, white;
                return tqCreateFourColorImage(i, green.Address(), blue.Address(), white.Address(), c, r, d);
            }};
}

TEST(TestPatterns, AnyArgumentsDrawInsideTheImage) {
    const std::int32_t hostile[] = {kLowest, kLowest + 1, -1, 0, 1, 7, 70000, kHighest};
    for (const std::int32_t a : hostile) {
        for (const std::int32_t b : hostile) {
            for (const std::int32_t d : hostile) {
                for (const Generator& generator : EveryGenerator(a, b, d)) {
                    for (const auto& [cols, rows] : {std::pair{1, 1}, {23, 8}, {0, 5}, {3, 0}})
                        Draw(generator, cols, rows);
                }
            }
        }
    }
    // What huge counts still have to draw: everything.
    Image white(9, 7);
    tqInitializeImagePels(white, 65535);
    EXPECT_TRUE(SamePels(white, Draw(Dots(kLowest, kLowest, kHighest, kHighest, 2, 2, 2), 9, 7)));
    EXPECT_TRUE(SamePels(white, Draw(Dots(0, 0, 2, 2, kHighest, kLowest, kHighest), 9, 7)));
    EXPECT_TRUE(SamePels(white, Draw(With(tqCreateDistortionPattern, kHighest, kHighest, 0), 9, 7)));
    EXPECT_TRUE(SamePels(white, Draw(With(tqCreateConvergencePattern, kHighest, 0, 1), 9, 7)));
    EXPECT_TRUE(SamePels(white, Draw(Vesa(1, kHighest), 9, 7)));
}

TEST(TestPatterns, WithoutAPatternTheHostsImageStays) {
    const Image before = tqtest::RandomImage(3, 2, 1);
    for (const Generator& generator : EveryGenerator(1, 2, 3)) {
        Image image = before;
        EXPECT_EQ(generator(nullptr, 4, 4), -2);
        for (const auto& [cols, rows] : {std::pair{-1, 4}, {4, -1}, {-3, -3}, {kHighest, kHighest}})
            EXPECT_EQ(generator(image.Address(), cols, rows), -2);
        EXPECT_TRUE(SamePels(before, image));
        if (!tqtest::CanFailAllocations()) continue;
        const int made = tqtest::FailEachAllocation(
            -2, 0, [&] { return generator(image.Address(), 40, 30); },
            [&] { EXPECT_TRUE(SamePels(before, image)); });
        EXPECT_GE(made, 1);
    }
    Image image = before;
    for (const std::int32_t steps : {1, 0, kLowest})
        EXPECT_EQ(Bands(steps)(image.Address(), 8, 8), -3);
    EXPECT_EQ(tqCreateFourColorImage(image.Address(), image.Address(), image.Address(), nullptr, 4, 4, 1),
              -2);
    EXPECT_TRUE(SamePels(before, image));
    Image green, blue;
    EXPECT_EQ(tqCreateFourColorImage(image.Address(), green.Address(), blue.Address(), nullptr, 4, 4, 0), 0);
}

}  // namespace
