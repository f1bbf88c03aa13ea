#include "tqimage/test_patterns.h"

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "images.h"

namespace tqtest {
namespace {

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

template <class Create, class... Arguments>
Image Draw(Create create, Arguments... arguments) {
    Image image;
    EXPECT_EQ(create(image.Address(), arguments...), 0);
    return image;
}

TEST(TestPatterns, AsTheyLook) {
    constexpr std::uint16_t kGreys[] = {0x3000, 0x9000, 0x5000};
    const struct {
        Image image;
        std::string picture;
    } drawings[] = {
        // One disc is asked for and four come; the first is cut by the image.
        {Draw(tqCreateDotPattern, 7, 6, 0, 1, 1, 0, 6, 4, 2),
         "##...##\n###.###\n##...##\n#.....#\n##...##\n###.###\n"},
        {Draw(tqCreateDistortionPattern, 12, 8, 3, 0, 1),
         "............\n..#...#..#..\n.###.######.\n..#...#..#..\n"
         "..#...#..#..\n.###.######.\n..#...#..#..\n............\n"},
        {Draw(tqCreateANSI13Pattern, 10, 10, 0, 0),
         "..........\n.#.......#\n..#..#..#.\n..........\n..........\n"
         "..#..#..#.\n..........\n..........\n..#..#..#.\n.#.......#\n"},
        // Lines of two pels end one pel short; the first row line starts outside and is moved, not cut.
        {Draw(tqCreateGridPattern, 8, 6, 1, -3, 2, 2, 4, 6, 2),
         ".######.\n.######.\n.##..##.\n.######.\n.#####..\n........\n"},
        {Draw(tqCreateGridPattern, 8, 5, 0, 0, 3, 1, 3, 3, 1),
         "#######.\n#..#..#.\n#..#..#.\n#######.\n........\n"},
        {Draw(tqCreateConvergencePattern, 9, 5, 2, 1, 2),
         ".##..##..\n#########\n#########\n.##..##..\n.##..##..\n"},
        {Draw(tqCreateConvergencePattern, 4, 5, 0, 2, 1), "....\n####\n....\n####\n....\n"},
        {Draw(tqCreateVESAConvergencePattern, 11, 2, 0, 0), ".#.#.#.#.#.\n.#.#.#.#.#.\n"},
        {Draw(tqCreateCheckerboardPattern, 7, 4, 3, 0, 1), "###..##\n###..##\n###..##\n...##..\n"},
        {Draw(tqCreateBorderPattern, 2, kGreys, 10, 5, 2, 1, 70000),
         "3333333333\n3399999933\n3399##9933\n3399999933\n3333333333\n"},
        {Draw(tqCreateBorderPattern, 9, nullptr, 2, 5, 0, 1, 0), "##\n..\n##\n..\n##\n"},
        {Draw(tqCreateBorderPattern, 1, kGreys, 4, 2, 1, 0, 0x9abc), "3993\n3993\n"},
        {Draw(tqCreateBorderPattern, -1, nullptr, 3, 1, 1, 1, -5), "...\n"},
        {Draw(tqCreateZonePattern, 9, 9, 2, 3, 1),
         ".........\n...###...\n..#...#..\n.#.###.#.\n.#.###.#.\n.#.###.#.\n..#...#..\n...###...\n"
         ".........\n"},
        {Draw(tqCreateZonePattern, 6, 4, 2, 0, 1), "..##..\n.####.\n.####.\n..##..\n"},
        {Draw(tqCreateZonePattern, 3, 3, -1, 2, 0), ".#.\n#.#\n.#.\n"},
        {Draw(tqCreateGrayScaleImage, 4, 10, 1), "...555aaa#\n"},
        // The width of a band is rounded up, and the white one finds no room.
        {Draw(tqCreateGrayScaleImage, 4, 5, 1), "..55a\n"},
    };
    for (const auto& [image, picture] : drawings) {
        EXPECT_EQ(Picture(image), picture);
        TqImageHeader header = DefaultHeader(image.Cols(), image.Rows());
        header.LuxPerGrey = header.SourceDistance = 0.0f;
        EXPECT_TRUE(SameHeader(header, image.Header()));
    }
}

TEST(TestPatterns, LatticesOfDiscsThatOverlapLeaveTheImageOrTurnBack) {
    const struct {
        std::int32_t firstCol, firstRow, countX, countY, stepX, stepY, radius;
    } lattices[] = {
        {7, 5, 4, 3, 11, 9, 4},   {-4, -3, 5, 5, 9, 8, 5},   {30, 25, 6, 4, -7, -5, 3},
        {10, 10, 3, 4, 0, 2, 6},  {-90, 10, 3, 2, 2, 0, 99}, {70, 50, 9, 9, 1, 1, 40},
        {5, 5, 40, 30, 1, 2, 0},  {5, 5, 3, 3, 5, 5, -1},    {-60, 12, 40, 3, 3, 7, 7},
        {20, 15, 2, 2, 1, 0, 13}, {0, 0, 2, 2, 36, 28, 25},
    };
    for (const auto& a : lattices) {
        const auto isLit = [&a](std::int32_t col, std::int32_t row) {
            for (std::int32_t j = 0; j < a.countY; ++j) {
                for (std::int32_t i = 0; i < a.countX; ++i) {
                    const int dx = col - (a.firstCol + i * a.stepX), dy = row - (a.firstRow + j * a.stepY);
                    if (a.radius >= 0 && dx * dx + dy * dy <= a.radius * a.radius) return 65535;
                }
            }
            return 0;
        };
        EXPECT_TRUE(
            SamePels(MakeImage(37, 29, isLit), Draw(tqCreateDotPattern, 37, 29, a.firstCol, a.firstRow,
                                                    a.countX, a.countY, a.stepX, a.stepY, a.radius)))
            << &a - lattices;
    }
}

/// Where the pels change along the first row or column.
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
    const Image board = Draw(tqCreateCheckerboardPattern, 101, 100, 2, 2, 0);
    EXPECT_EQ(Changes(board, false), Places{51});
    EXPECT_EQ(Changes(board, true), Places{51});  // 49.5 goes to the even 50
    EXPECT_EQ(board(0, 0), 0);
    EXPECT_EQ(Changes(Draw(tqCreateCheckerboardPattern, 37, 2, 9, 2, 1), false),
              (Places{5, 9, 13, 17, 21, 25, 29, 33}));

    const Places five{99, 102, 299, 302, 499, 502, 699, 702, 899, 902};
    EXPECT_EQ(Changes(Draw(tqCreateVESAConvergencePattern, 2, 1001, 1, 3), true), five);
    EXPECT_EQ(Changes(Draw(tqCreateVESAConvergencePattern, 1001, 2, 0, 3), false), five);
    EXPECT_EQ(Changes(Draw(tqCreateGrayScaleImage, 2, 102, 1), false),
              Places{52});  // 51.5 goes to the even 52
    EXPECT_EQ(Changes(Draw(tqCreateConvergencePattern, 100, 1, 3, 0, 4), false),
              (Places{14, 18, 48, 52, 80, 84}));

    Image points(1001, 602);
    for (const std::int32_t row : {31, 101, 301, 501, 571})
        for (const std::int32_t col : {50, 167, 500, 834, 950})
            points(col, row) = 65535;
    EXPECT_TRUE(SamePels(points, Draw(tqCreateANSI13Pattern, 1001, 602, 0, 1)));
}

TEST(TestPatterns, FourFieldsOfFourPrimaries) {
    for (const std::int32_t fourPrimaries : {0, 1}) {
        std::array<Image, 4> planes;
        ASSERT_EQ(tqCreateFourColorImage(planes[0].Address(), planes[1].Address(), planes[2].Address(),
                                         planes[3].Address(), 5, 4, fourPrimaries),
                  0);
        const std::string white = fourPrimaries != 0 ? ".....\n" : "...##\n";
        const std::string blue = fourPrimaries != 0 ? "###..\n" : "#####\n";
        EXPECT_EQ(Picture(planes[0]), "###..\n###..\n" + white + white);
        EXPECT_EQ(Picture(planes[1]), "...##\n...##\n" + white + white);
        EXPECT_EQ(Picture(planes[2]), ".....\n.....\n" + blue + blue);
        EXPECT_EQ(Picture(planes[3]), ".....\n.....\n...##\n...##\n");
    }
}

// What huge counts, steps and sizes still have to draw: everything, once.
TEST(TestPatterns, NumbersWithoutMeasureDrawInsideTheImage) {
    const Image white = MakeImage(9, 7, [](auto, auto) { return 65535; });
    for (const Image& image :
         {Draw(tqCreateDotPattern, 9, 7, kLowest, kLowest, kHighest, kHighest, 2, 2, 2),
          Draw(tqCreateDotPattern, 9, 7, 0, 0, 2, 2, kHighest, kLowest, kHighest),
          Draw(tqCreateGridPattern, 9, 7, 0, kLowest, kHighest, kHighest, 1, kHighest, kHighest),
          Draw(tqCreateDistortionPattern, 9, 7, kHighest, kHighest, 0),
          Draw(tqCreateConvergencePattern, 9, 7, kHighest, 0, 1),
          Draw(tqCreateVESAConvergencePattern, 9, 7, 1, kHighest),
          Draw(tqCreateZonePattern, 9, 7, kHighest, kHighest, 1),
          Draw(tqCreateBorderPattern, kHighest, nullptr, 9, 7, kHighest, kHighest, 0)})
        EXPECT_TRUE(SamePels(white, image));
    // The pels end fields 1, 357913942, 1073741824 and 1789569706.
    EXPECT_EQ(Picture(Draw(tqCreateCheckerboardPattern, 4, 1, kHighest, kHighest, 1)), "#...\n");
    EXPECT_EQ(Draw(tqCreateGrayScaleImage, kHighest, 3, 1).Values(), (std::vector<std::uint16_t>{0, 0, 0}));
    EXPECT_EQ(Draw(tqCreateDotPattern, 0, 5, 1, 1, 2, 2, 2, 2, 3).Count(), 0u);
}

TEST(TestPatterns, WithoutAPatternTheHostsImageStays) {
    const Image before = RandomImage(3, 2, 1);
    Image image = before, green, blue;
    EXPECT_EQ(tqCreateDotPattern(nullptr, 4, 4, 1, 1, 2, 2, 2, 2, 1), -2);
    for (const auto& [cols, rows] : {std::pair{-1, 4}, {4, -1}, {-3, -3}, {kHighest, kHighest}}) {
        EXPECT_EQ(tqCreateDotPattern(image.Address(), cols, rows, 1, 1, 2, 2, 2, 2, 1), -2);
        EXPECT_EQ(tqCreateGrayScaleImage(image.Address(), 2, cols, rows), -2);
        EXPECT_EQ(
            tqCreateFourColorImage(image.Address(), green.Address(), blue.Address(), nullptr, cols, rows, 0),
            -2);
    }
    for (const std::int32_t steps : {1, 0, kLowest})
        EXPECT_EQ(tqCreateGrayScaleImage(image.Address(), steps, 8, 8), -3);
    const auto four = [&](std::int32_t fourPrimaries) {
        return tqCreateFourColorImage(image.Address(), green.Address(), blue.Address(), nullptr, 4, 4,
                                      fourPrimaries);
    };
    EXPECT_EQ(four(1), -2) << "a fourth primary needs its plane";
    EXPECT_TRUE(SamePels(before, image));
    EXPECT_EQ(four(0), 0);
}

}  // namespace
}  // namespace tqtest
