#include "tqimage/defect_detection.h"
#include "process_tests.h"

namespace {

using namespace tqtest;

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
    std::int32_t bright = 0, dark = 0;
};

/// The rules read off pel by pel.
Found Expected(const Image& source, const Search& search) {
    Found found{Image(source.Header())};
    const std::int32_t half = std::min({std::max(search.size, 1), source.Cols(), source.Rows()}) / 2;
    const double tolerance = search.percent / 100;
    const double mean = source.Header().TotalPelValue / static_cast<double>(source.Count());
    const auto floor = static_cast<std::int32_t>(search.floorPercent / 100 * mean);
    const auto square = [&](std::int32_t col, std::int32_t row, std::int32_t r) {
        return WindowPels(source, {col - r, col + r}, {row - r, row + r});
    };
    // Where the test of zeros reaches beyond the image, it fails.
    const std::int32_t border = std::max(half, search.radius);
    for (std::int32_t row = border; row < source.Rows() - border; ++row) {
        for (std::int32_t col = border; col < source.Cols() - border; ++col) {
            const std::int32_t pel = source(col, row);
            const auto around = square(col, row, search.radius);
            if (std::find(around.begin(), around.end(), 0) != around.end()) continue;
            auto lit = square(col, row, half);
            std::erase_if(lit, [&](std::uint16_t other) { return other == 0 || other <= floor; });
            std::sort(lit.begin(), lit.end());
            double reference = 0;
            if (!lit.empty() && search.reference != 0) reference = lit[lit.size() / 2];
            if (!lit.empty() && search.reference == 0)
                reference = static_cast<float>(AllOf(lit).sum) / static_cast<float>(lit.size());
            const bool bright = search.kind != 0 && pel > (1 + tolerance) * reference;
            const bool dark = !bright && search.kind != 1 && pel < (1 - tolerance) * reference;
            found.bright += bright;
            found.dark += dark;
            if (bright || dark) found.image(col, row) = source(col, row);
        }
    }
    return found;
}

/// The library must find that by the function that knows the search's options.
void ExpectFound(const Found& expected, const Image& source, const Search& s) {
    Found found;
    TqImage** const out = found.image.Address();
    std::int32_t *bright = &found.bright, *dark = &found.dark, status = 0;
    if (s.floorPercent != 0)
        status = tqFindPixelDefects3(out, source, s.kind, s.reference, s.size, s.percent, s.floorPercent,
                                     bright, dark);
    else if (s.radius != 0)
        status =
            tqFindPixelDefects2(out, source, s.kind, s.reference, s.size, s.percent, s.radius, bright, dark);
    else
        status = tqFindPixelDefects1(out, source, s.kind, s.reference, s.size, s.percent, bright, dark);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(SamePels(expected.image, found.image));
    EXPECT_EQ(found.bright, expected.bright);
    EXPECT_EQ(found.dark, expected.dark);
}

void ExpectFound(const Image& source, const Search& search) {
    ExpectFound(Expected(source, search), source, search);
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
    // 31 and 32 lie on both sides of where the search for medians changes its method; the new one takes 128
    // rows of medians at a time.
    for (const std::int32_t size : {kMin, 1, 2, 3, 4, 5, 8, 31, 32}) {
        const std::int32_t rows = size < 32 ? 49 : 175;
        const Image dense = NarrowNoise(53, rows, 1, 3000);
        const Image holed = NarrowNoise(53, rows, 2, 4);
        for (const std::int32_t reference : {0, 1}) {
            for (const std::int32_t kind : {0, 1, 2}) {
                SCOPED_TRACE(testing::Message()
                             << "size " << size << " reference " << reference << " kind " << kind);
                const Search search{kind, reference, size, 4.0};
                ExpectFound(dense, search);
                ExpectFound(holed, search);
            }
            if (size != 3) continue;
            for (const double percent :
                 {0.0, -3.0, 100.0, 250.0, -250.0, 1e300, double{kInfinity}, double{kNan}})
                ExpectFound(holed, {2, reference, size, percent});
        }
    }
}

TEST(PixelDefects, AFloorLeavesNeighboursOut) {
    const Image image = NarrowNoise(92, 87, 3, 5);
    for (const double floor : {-5.0, 99.0, 105.0, 109.99, 200.0, 1e30, double{kNan}}) {
        for (const std::int32_t reference : {0, 7}) {
            for (const std::int32_t size : {3, 5, 33, 85}) {
                SCOPED_TRACE(testing::Message()
                             << "floor " << floor << " reference " << reference << " size " << size);
                const Search search{3, reference, size, 3.0, 0, floor};
                const Search meant{3,   reference, size,
                                   3.0, 0,         std::isnan(floor) ? 0.0 : std::min(floor, 1e6)};
                ExpectFound(Expected(image, meant), image, search);
            }
        }
    }
}

TEST(PixelDefects, ZeroFreeTestsKeepAwayFromHoles) {
    const Image image = NarrowNoise(61, 47, 4, 90);
    for (const std::int32_t size : {2, 5, 6}) {
        for (const std::int32_t reference : {0, 1}) {
            for (const std::int32_t radius : {1, 2, 3, 4}) {
                const Search search{2, reference, size, 4.0, radius};
                ExpectFound(image, search);
            }
            // The plain form, and a radius below 1, test what the neighbourhood covers.
            const Found expected = Expected(image, {2, reference, size, 4.0, size / 2});
            ExpectFound(expected, image, {2, reference, size, 4.0, kMin});
            Found found;
            EXPECT_EQ(tqFindPixelDefects(found.image.Address(), image, 2, reference, size, 4.0, &found.bright,
                                         &found.dark),
                      0);
            EXPECT_TRUE(SamePels(expected.image, found.image));
            EXPECT_EQ(found.bright + found.dark, expected.bright + expected.dark);
            ExpectFound({Image(image.Header())}, image, {2, reference, size, 4.0, kMax});
        }
    }
}

TEST(PixelDefects, SmallestImagesAndLargestSizes) {
    for (const auto& [cols, rows] : {std::pair{1, 1}, {1, 9}, {2, 2}, {4, 4}, {5, 3}, {8000, 3}}) {
        const Image image = RandomImage(cols, rows, 6);
        for (const std::int32_t size : {1, 3, 4, kMax}) {
            for (const std::int32_t reference : {0, 1}) {
                const Search search{2, reference, size, 10.0};
                ExpectFound(image, search);
            }
        }
    }
    // Bright sums beyond 32 bits, and a window that fits once.
    const Image large = RandomImage(301, 301, 7, 60000, 65535);
    ExpectFound(large, {2, 0, 301, 1.0});
    ExpectFound(large, {2, 1, 301, 1.0});
}

TEST(PixelDefects, RefusedInputsClearTheCounts) {
    std::int32_t bright = 7, dark = 7;
    EXPECT_EQ(tqFindPixelDefects3(nullptr, RandomImage(5, 5, 9), 2, 0, 3, 5, 1, &bright, &dark), -2);
    EXPECT_EQ(bright + dark, 0);
}

}  // namespace
