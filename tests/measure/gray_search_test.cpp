#include "tqimage/gray_search.h"

#include <cmath>

#include <array>

#include "statistics.h"
#include "tqimage/pel_block.h"

namespace tqtest {
namespace {

struct Found {
    double mean = -9;
    std::int32_t col = -9, row = -9;
    bool operator==(const Found&) const = default;
};

void PrintTo(const Found& it, std::ostream* out) {
    *out << it.mean << " at " << it.col << ", " << it.row;
}

using Search = double(TQ_CALL*)(const TqImage*, std::int32_t*, std::int32_t*, std::int32_t, std::int32_t,
                                std::int32_t);

Found Result(Search search, const TqImage* image, std::int32_t kind, std::int32_t width,
             std::int32_t height) {
    Found found;
    found.mean = search(image, &found.col, &found.row, kind, width, height);
    return found;
}

/// The pels of the block around a reference pel; of kind other than 0 those of the ellipse, which reach a pel
/// beyond a block of even size.
Visited BlockOf(const Image& image, std::int32_t col, std::int32_t row, std::int32_t kind, std::int32_t width,
                std::int32_t height) {
    if (kind != 0) return EllipseReference(image, col, row, width, height);
    Visited visited;
    const std::int32_t left = col - width / 2, top = row - height / 2;
    for (std::int32_t i = 0; i < width * height; ++i)
        visited.push_back({left + i % width, top + i / width});
    return visited;
}

struct Expected {
    Found most{-3, -1, -1}, least{-3, -1, -1}, leastLit{-3, -1, -1};
};

/// Of the blocks inside the rectangle.
Expected ExpectedOf(const Image& image, const std::array<std::int32_t, 4>& in, std::int32_t kind,
                    std::int32_t width, std::int32_t height) {
    width = std::max(width, 1);
    height = std::max(height, 1);
    Expected expected;
    const auto take = [](Found& best, double mean, std::int32_t col, std::int32_t row, bool better) {
        if (best.col < 0 || better) best = {mean, col, row};
    };
    for (std::int64_t y = in[1]; y + height <= in[3] + 1; ++y) {
        for (std::int64_t x = in[0]; x + width <= in[2] + 1; ++x) {
            const auto col = static_cast<std::int32_t>(x + width / 2);
            const auto row = static_cast<std::int32_t>(y + height / 2);
            double sum = 0, lit = 0, all = 0;
            for (const std::uint16_t pel : ValuesAt(image, BlockOf(image, col, row, kind, width, height))) {
                sum += pel;
                lit += pel != 0 ? 1 : 0;
                all += 1;
            }
            take(expected.most, sum / all, col, row, sum / all > expected.most.mean);
            take(expected.least, sum / all, col, row, sum / all < expected.least.mean);
            if (lit > 0) {
                take(expected.leastLit, sum / lit, col, row, sum / lit < expected.leastLit.mean);
            } else if (expected.leastLit.col < 0) {
                expected.leastLit.mean = -99;
            }
        }
    }
    return expected;
}

const std::vector<std::pair<std::int32_t, std::int32_t>> kBlocks = {
    {1, 1},   {3, 3},   {2, 4},  {5, 1},  {1, 6},  {7, 5},
    {17, 13}, {16, 12}, {18, 1}, {1, 14}, {0, -3}, {4, kHighest}};

TEST(GraySearch, EveryBlockThatFitsIsTriedAndTheFirstWins) {
    const Image images[] = {
        RandomImage(17, 13, 21),
        RandomImage(17, 13, 22, 0, 3),  // few levels: ties, and blocks without data
        RandomImageWithHoles(40, 31, 23, 2),
        MakeImage(17, 13, [](auto col, auto row) { return col > 12 && row > 9 ? 700 + col : 0; }),
        RandomImage(1, 1, 24),
        Image(19, 3)};
    for (const Image& image : images) {
        for (const auto& [width, height] : kBlocks) {
            for (const std::int32_t kind : {0, 1, -2}) {
                SCOPED_TRACE(testing::Message() << image.Cols() << " x " << image.Rows() << ", block "
                                                << width << " x " << height << ", kind " << kind);
                const Expected expected =
                    ExpectedOf(image, {0, 0, image.Cols() - 1, image.Rows() - 1}, kind, width, height);
                ASSERT_EQ(Result(tqFindMaxGray, image, kind, width, height), expected.most);
                ASSERT_EQ(Result(tqFindMinGray, image, kind, width, height), expected.least);
                ASSERT_EQ(Result(tqFindMinGray0, image, kind, width, height), expected.leastLit);
                if (image.Cols() != 17) continue;
                const Expected inside = ExpectedOf(image, {1, 2, 15, 11}, kind, width, height);
                Found least{-3, -9, -9}, most{-3, -9, -9};
                ASSERT_EQ(tqFindMinMaxInRegion(image, &least.mean, &most.mean, &least.col, &least.row,
                                               &most.col, &most.row, 1, 2, 15, 11, kind, width, height),
                          inside.most.col < 0 ? -3 : 0);
                ASSERT_EQ(least, inside.least);
                ASSERT_EQ(most, inside.most);
            }
        }
    }
}

TEST(GraySearch, WithoutAnImagePlacesAreMinusOne) {
    Found least, most;
    EXPECT_EQ(tqFindMinMaxInRegion(nullptr, &least.mean, &most.mean, &least.col, &least.row, &most.col,
                                   &most.row, 0, 0, 0, 0, 0, 1, 1),
              -2);
    EXPECT_EQ(least, (Found{-9, -1, -1}));
    for (const Search search : {tqFindMaxGray, tqFindMinGray, tqFindMinGray0})
        EXPECT_EQ(Result(search, nullptr, 0, 3, 3), (Found{-2, -1, -1}));
}

}  // namespace
}  // namespace tqtest
