#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "failing_allocator.h"
#include "images.h"
#include "tqimage/defect_detection.h"

namespace {

using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::MakeImage;
using tqtest::RandomImage;
using tqtest::RandomImageWithHoles;
using tqtest::SamePels;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Search {
    std::int32_t kind = 2;
    std::int32_t reference = 0;
    std::int32_t size = 3;
    double percent = 50.0;
    std::int32_t radius = 0;  ///< of the zero-free test; 0 none
    double floorPercent = 0.0;
};

struct Found {
    Image image;
    std::int32_t bright = 0;
    std::int32_t dark = 0;
};

/// The rules read off pel by pel.
Found Expected(const Image& source, const Search& search) {
    Found found{Image(source.Header()), 0, 0};
    const std::int32_t half = std::min({std::max(search.size, 1), source.Cols(), source.Rows()}) / 2;
    const double tolerance = search.percent / 100;
    const double mean = source.Header().TotalPelValue / static_cast<double>(source.Count());
    const auto floor = static_cast<std::int32_t>(search.floorPercent / 100 * mean);
    const auto isZeroFree = [&](std::int32_t col, std::int32_t row) {
        for (std::int32_t y = row - search.radius; y <= row + search.radius; ++y) {
            for (std::int32_t x = col - search.radius; x <= col + search.radius; ++x) {
                if (x < 0 || y < 0 || x >= source.Cols() || y >= source.Rows() || source(x, y) == 0) {
                    return false;
                }
            }
        }
        return true;
    };
    for (std::int32_t row = half; row < source.Rows() - half; ++row) {
        for (std::int32_t col = half; col < source.Cols() - half; ++col) {
            const std::int32_t pel = source(col, row);
            if (pel == 0 || !isZeroFree(col, row)) continue;
            std::vector<std::int32_t> lit;
            std::int64_t sum = 0;
            for (std::int32_t y = row - half; y <= row + half; ++y) {
                for (std::int32_t x = col - half; x <= col + half; ++x) {
                    if (source(x, y) == 0 || source(x, y) <= floor) continue;
                    lit.push_back(source(x, y));
                    sum += source(x, y);
                }
            }
            double reference = 0;
            if (!lit.empty()) {
                std::sort(lit.begin(), lit.end());
                const float average = static_cast<float>(sum) / static_cast<float>(lit.size());
                const std::int32_t median = lit[lit.size() / 2];
                reference = search.reference != 0 ? static_cast<double>(median) : average;
            }
            const bool bright = search.kind != 0 && pel > (1 + tolerance) * reference;
            const bool dark = !bright && search.kind != 1 && pel < (1 - tolerance) * reference;
            found.bright += bright;
            found.dark += dark;
            if (bright || dark) found.image(col, row) = source(col, row);
        }
    }
    return found;
}

/// What the library finds, by the function that knows the search's options.
Found Find(const Image& source, const Search& s) {
    Found found{Image(), -1, -1};
    TqImage** const out = found.image.Address();
    if (s.floorPercent != 0) {
        EXPECT_EQ(tqFindPixelDefects3(out, source, s.kind, s.reference, s.size, s.percent, s.floorPercent,
                                      &found.bright, &found.dark),
                  0);
    } else if (s.radius != 0) {
        EXPECT_EQ(tqFindPixelDefects2(out, source, s.kind, s.reference, s.size, s.percent, s.radius,
                                      &found.bright, &found.dark),
                  0);
    } else {
        EXPECT_EQ(tqFindPixelDefects1(out, source, s.kind, s.reference, s.size, s.percent, &found.bright,
                                      &found.dark),
                  0);
    }
    return found;
}

void ExpectSame(const Found& expected, const Found& found) {
    EXPECT_TRUE(SamePels(expected.image, found.image));
    EXPECT_EQ(found.bright, expected.bright);
    EXPECT_EQ(found.dark, expected.dark);
}

/// Noise around 1000 with holes, so that every test decides both ways.
Image NarrowNoise(std::int32_t cols, std::int32_t rows, std::uint32_t seed, std::uint32_t oneIn) {
    const Image values = RandomImage(cols, rows, seed + 100, 900, 1100);
    const Image holes = RandomImageWithHoles(cols, rows, seed, oneIn);
    Image image = MakeImage(cols, rows, [&](std::int32_t col, std::int32_t row) {
        return holes(col, row) == 0 ? 0 : values(col, row);
    });
    image.Header().TotalPelValue = 1000.0 * static_cast<double>(image.Count());
    return image;
}

TEST(PixelDefects, AgreeWithTheRulesForEverySizeAndKind) {
    // 80 and 83 lie on both sides of where the search for medians changes its method.
    for (const std::int32_t size : {kMin, 1, 2, 3, 4, 5, 8, 33, 80, 83}) {
        const std::int32_t cols = size < 80 ? 53 : 91;
        const Image dense = NarrowNoise(cols, cols - 4, 1, 3000);
        const Image holed = NarrowNoise(cols, cols - 4, 2, 4);
        for (const std::int32_t reference : {0, 1}) {
            for (const std::int32_t kind : {0, 1, 2}) {
                const Search search{kind, reference, size, 4.0};
                SCOPED_TRACE(testing::Message()
                             << "size " << size << " reference " << reference << " kind " << kind);
                ExpectSame(Expected(dense, search), Find(dense, search));
                ExpectSame(Expected(holed, search), Find(holed, search));
            }
        }
    }
}

TEST(PixelDefects, AFloorLeavesNeighboursOut) {
    const Image image = NarrowNoise(92, 87, 3, 5);
    for (const double floor : {-5.0, 99.0, 105.0, 109.99, 200.0, 1e30, kNaN}) {
        for (const std::int32_t reference : {0, 7}) {
            for (const std::int32_t size : {3, 5, 33, 85}) {
                SCOPED_TRACE(testing::Message()
                             << "floor " << floor << " reference " << reference << " size " << size);
                Search search{3, reference, size, 3.0, 0, floor};
                const Found found = Find(image, search);
                // What no integer holds is the smallest one: no floor.
                if (!(floor < 1e6)) search.floorPercent = 0;
                ExpectSame(Expected(image, search), found);
            }
        }
    }
    // Alone above nothing: bright when brightness is looked for, never dark.
    const Image pair = MakeImage(3, 3, {0, 0, 0, 0, 5, 0, 0, 0, 0});
    pair.Header().TotalPelValue = 900;
    EXPECT_EQ(Find(pair, {2, 1, 3, 50, 0, 100}).bright, 1);
    EXPECT_EQ(Find(pair, {0, 1, 3, 50, 0, 100}).dark, 0);
    EXPECT_EQ(Find(pair, {0, 1, 3, 50, 0, 100}).bright, 0);
}

TEST(PixelDefects, ZeroFreeTestsKeepAwayFromHoles) {
    const Image image = NarrowNoise(61, 47, 4, 90);
    for (const std::int32_t size : {2, 5, 6}) {
        for (const std::int32_t reference : {0, 1}) {
            for (const std::int32_t radius : {1, 2, 3, 4}) {
                const Search search{2, reference, size, 4.0, radius};
                ExpectSame(Expected(image, search), Find(image, search));
            }
            // The plain form, and a radius below 1, test what the neighbourhood covers.
            const Search whole{2, reference, size, 4.0, size / 2};
            const Found expected = Expected(image, whole);
            Found found;
            EXPECT_EQ(tqFindPixelDefects(found.image.Address(), image, 2, reference, size, 4.0, &found.bright,
                                         &found.dark),
                      0);
            ExpectSame(expected, found);
            for (const std::int32_t radius : {0, -1, kMin}) {
                EXPECT_EQ(tqFindPixelDefects2(found.image.Address(), image, 2, reference, size, 4.0, radius,
                                              &found.bright, &found.dark),
                          0);
                ExpectSame(expected, found);
            }
            EXPECT_EQ(Find(image, {2, reference, size, 4.0, kMax}).bright, 0);
        }
    }
}

TEST(PixelDefects, TolerancesAreOfAnySize) {
    const Image image = NarrowNoise(40, 30, 5, 6);
    for (const double percent :
         {0.0, -3.0, 100.0, -100.0, 250.0, -250.0, 1e300, kInfinity, -kInfinity, kNaN}) {
        for (const std::int32_t reference : {0, 1}) {
            const Search search{2, reference, 3, percent};
            SCOPED_TRACE(percent);
            ExpectSame(Expected(image, search), Find(image, search));
        }
    }
}

TEST(PixelDefects, EqualityIsNoDefectAndZeroNeverDark) {
    // 3 x 3 around 1000 with a pel of 500: mean 944.44, median 1000.
    Image image = MakeImage(5, 3, [](std::int32_t, std::int32_t) { return 1000; });
    image(2, 1) = 500;
    EXPECT_EQ(Find(image, {0, 1, 3, 50}).dark, 0) << "exactly half of the median";
    image(2, 1) = 499;
    EXPECT_EQ(Find(image, {0, 1, 3, 50}).dark, 1);
    image(2, 1) = 1500;
    EXPECT_EQ(Find(image, {1, 1, 3, 50}).bright, 0);
    image(2, 1) = 1501;
    const Found found = Find(image, {1, 1, 3, 50});
    EXPECT_EQ(found.bright, 1);
    EXPECT_EQ(found.image(2, 1), 1501);
    EXPECT_TRUE(tqtest::SameHeader(found.image.Header(), image.Header()));
    image(2, 1) = 0;
    EXPECT_EQ(Find(image, {2, 1, 3, 50}).dark + Find(image, {2, 0, 3, 50}).dark, 0);
}

TEST(PixelDefects, SmallestImagesAndLargestSizes) {
    for (const auto& [cols, rows] : {std::pair{1, 1}, {1, 9}, {2, 2}, {4, 4}, {5, 3}, {8000, 3}}) {
        const Image image = RandomImage(cols, rows, 6);
        for (const std::int32_t size : {1, 3, 4, kMax}) {
            for (const std::int32_t reference : {0, 1}) {
                const Search search{2, reference, size, 10.0};
                ExpectSame(Expected(image, search), Find(image, search));
            }
        }
    }
    // Bright sums beyond 32 bits, and a window that fits once.
    const Image large = RandomImage(301, 301, 7, 60000, 65535);
    ExpectSame(Expected(large, {2, 0, 301, 1.0}), Find(large, {2, 0, 301, 1.0}));
    ExpectSame(Expected(large, {2, 1, 301, 1.0}), Find(large, {2, 1, 301, 1.0}));
}

TEST(PixelDefects, TheSourceMayBeReplaced) {
    Image image = NarrowNoise(20, 20, 8, 9);
    const Found expected = Expected(image, {2, 1, 3, 4.0});
    EXPECT_EQ(tqFindPixelDefects1(image.Address(), image, 2, 1, 3, 4.0, nullptr, nullptr), 0);
    EXPECT_TRUE(SamePels(expected.image, image));
}

TEST(PixelDefects, RefusedInputsClearTheCounts) {
    Image out = MakeImage(2, 2, {1, 2, 3, 4});
    const Image kept = out;
    Image tooWide(DefaultHeader(8001, 1));
    const Image good = RandomImage(5, 5, 9);
    const auto expect = [&](TqImage** target, const TqImage* source) {
        for (int form = 0; form < 4; ++form) {
            std::int32_t bright = 7, dark = 7, status = 0;
            switch (form) {
                case 0:
                    status = tqFindPixelDefects(target, source, 2, 0, 3, 5, &bright, &dark);
                    break;
                case 1:
                    status = tqFindPixelDefects1(target, source, 2, 0, 3, 5, &bright, &dark);
                    break;
                case 2:
                    status = tqFindPixelDefects2(target, source, 2, 0, 3, 5, 1, &bright, &dark);
                    break;
                default:
                    status = tqFindPixelDefects3(target, source, 2, 0, 3, 5, 1, &bright, &dark);
                    break;
            }
            EXPECT_EQ(status, -2);
            EXPECT_EQ(bright, 0);
            EXPECT_EQ(dark, 0);
        }
    };
    expect(out.Address(), nullptr);
    expect(out.Address(), tooWide);
    expect(nullptr, good);
    EXPECT_TRUE(SamePels(kept, out));
}

TEST(PixelDefects, AFailedAllocationKeepsTheHostsImage) {
    if (!tqtest::CanFailAllocations()) GTEST_SKIP() << "the library's allocations are its own";
    Image source = NarrowNoise(90, 85, 10, 9);
    Image out = MakeImage(2, 2, {1, 2, 3, 4});
    const Image kept = out;
    for (const std::int32_t size : {5, 83}) {
        for (const std::int32_t reference : {0, 1}) {
            std::int32_t bright = 7, dark = 7;
            const int allocations = tqtest::FailEachAllocation(
                -3, 0,
                [&] {
                    return tqFindPixelDefects3(out.Address(), source, 2, reference, size, 4, 50, &bright,
                                               &dark);
                },
                [&] {
                    EXPECT_TRUE(SamePels(kept, out));
                    EXPECT_EQ(bright + dark, 0);
                });
            EXPECT_GE(allocations, 4);
            out = kept;
            EXPECT_GE(tqtest::FailEachAllocation(-3, 0,
                                                 [&] {
                                                     return tqFindPixelDefects(out.Address(), source, 2,
                                                                               reference, size, 4, nullptr,
                                                                               nullptr);
                                                 }),
                      4);
            out = kept;
        }
    }
}

}  // namespace
