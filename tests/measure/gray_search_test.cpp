#include "tqimage/gray_search.h"

#include <cmath>

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

/// The pels of a block whose first one is (x, y); of kind other than 0 those of the ellipse around its
/// reference pel, which reach a pel beyond a block of even size.
std::vector<std::uint16_t> BlockPels(const Image& image, std::int32_t x, std::int32_t y, std::int32_t kind,
                                     std::int32_t width, std::int32_t height) {
    if (kind != 0)
        return ValuesAt(image, EllipseReference(image, x + width / 2, y + height / 2, width, height));
    Visited visited;
    for (std::int32_t row = y; row < y + height; ++row) {
        for (std::int32_t col = x; col < x + width; ++col)
            visited.push_back({col, row});
    }
    return ValuesAt(image, visited);
}

struct Expected {
    Found most{-3, -1, -1}, least{-3, -1, -1}, leastLit{-3, -1, -1};
};

Expected ExpectedOf(const Image& image, std::int32_t kind, std::int32_t width, std::int32_t height) {
    width = std::max(width, 1);
    height = std::max(height, 1);
    Expected expected;
    const auto take = [](Found& best, double mean, std::int32_t col, std::int32_t row, bool better) {
        if (best.col < 0 || better) best = {mean, col, row};
    };
    for (std::int32_t y = 0; y + height <= image.Rows(); ++y) {
        for (std::int32_t x = 0; x + width <= image.Cols(); ++x) {
            double sum = 0, lit = 0, all = 0;
            for (const std::uint16_t pel : BlockPels(image, x, y, kind, width, height)) {
                sum += pel;
                lit += pel != 0 ? 1 : 0;
                all += 1;
            }
            const std::int32_t col = x + width / 2, row = y + height / 2;
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
    std::vector<Image> images;
    images.push_back(RandomImage(17, 13, 21));
    images.push_back(RandomImage(17, 13, 22, 0, 3));  // few levels: ties, and blocks without data
    images.push_back(RandomImageWithHoles(40, 31, 23, 2));
    images.push_back(
        MakeImage(17, 13, [](auto col, auto row) { return col > 12 && row > 9 ? 700 + col : 0; }));
    images.push_back(RandomImage(1, 1, 24));
    images.emplace_back(19, 3);
    for (const Image& image : images) {
        for (const auto& [width, height] : kBlocks) {
            for (const std::int32_t kind : {0, 1, -2}) {
                SCOPED_TRACE(testing::Message() << image.Cols() << " x " << image.Rows() << ", block "
                                                << width << " x " << height << ", kind " << kind);
                const Expected expected = ExpectedOf(image, kind, width, height);
                ASSERT_EQ(Result(tqFindMaxGray, image, kind, width, height), expected.most);
                ASSERT_EQ(Result(tqFindMinGray, image, kind, width, height), expected.least);
                ASSERT_EQ(Result(tqFindMinGray0, image, kind, width, height), expected.leastLit);
            }
        }
    }
}

TEST(GraySearch, InvalidImages) {
    const Image invalid(8001, 1), image = RandomImage(17, 13, 25, 1);
    for (const Search search : {tqFindMaxGray, tqFindMinGray, tqFindMinGray0}) {
        EXPECT_EQ(Result(search, nullptr, 0, 3, 3), (Found{-2, -1, -1}));
        EXPECT_EQ(Result(search, invalid, 0, 3, 3), (Found{-2, -1, -1}));
        EXPECT_EQ(Result(search, image, 0, 18, 3), (Found{-3, -1, -1}));
    }
}

}  // namespace
}  // namespace tqtest
