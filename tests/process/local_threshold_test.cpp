#include "process_tests.h"
#include "tqimage/thresholds.h"

namespace {

using namespace tqtest;

using LocalThreshold = decltype(&tqLocalThresholdImage);
constexpr LocalThreshold kVariants[] = {tqLocalThresholdImage, tqLocalThresholdImage2,
                                        tqLocalThresholdImage3};

struct Counts {
    std::int32_t bright = 0, dark = 0;
    bool operator==(const Counts&) const = default;
};

/// Every window is read anew, pel by pel: the first form wants it inside, without the last place; the second
/// shifts it inside and leaves pels without data out; the third wants it inside and full.
Image Expected(const Image& image, int variant, std::int32_t kind, std::int32_t width, std::int32_t height,
               double percent, Counts& counts) {
    const double tolerance = percent / 100.0;
    return MakeImage(image.Cols(), image.Rows(), [&](std::int32_t col, std::int32_t row) {
        const std::int32_t left = col - width / 2, top = row - height / 2;
        const std::int32_t freeCols = image.Cols() - width, freeRows = image.Rows() - height;
        const bool inside = left >= 0 && top >= 0 && left <= freeCols && top <= freeRows;
        if (variant == 0 && (!inside || left == freeCols || top == freeRows)) return 0;
        if (variant == 2 && !inside) return 0;
        const auto pels = ShiftedPels(image, col, row, width, height);
        const Total all = AllOf(pels), lit = LitOf(pels);
        const int pel = image(col, row);
        if (variant != 0 && (pel == 0 || (variant == 2 && lit.count != all.count))) return 0;
        const double mean =
            static_cast<double>(all.sum) / static_cast<double>(variant == 0 ? all.count : lit.count);
        const bool bright = kind != 0 && pel > (1.0 + tolerance) * mean;
        const bool dark = kind != 1 && !bright && pel < (1.0 - tolerance) * mean;
        counts.bright += bright ? 1 : 0;
        counts.dark += dark ? 1 : 0;
        return bright || dark ? pel : 0;
    });
}

TEST(LocalThreshold, AgreesWithReadingEveryWindow) {
    struct Size {
        std::int32_t width, height;
    };
    const Image image = RandomImageWithHoles(41, 29, 12, 40);
    for (int variant = 0; variant < 3; ++variant) {
        for (const Size& s : {Size{3, 3}, Size{1, 1}, Size{4, 7}, Size{40, 28}}) {
            for (const std::int32_t kind : {0, 1, 2, -1}) {
                for (const double percent : {0.0, 20.0, 100.0, -30.0, static_cast<double>(kNan)}) {
                    SCOPED_TRACE(testing::Message()
                                 << "variant " << variant << ", " << s.width << " x " << s.height << ", kind "
                                 << kind << ", " << percent << " %");
                    Counts expectedCounts, counts{-1, -1};
                    const Image expected =
                        Expected(image, variant, kind, s.width, s.height, percent, expectedCounts);
                    Image out = image;
                    ASSERT_EQ(kVariants[variant](out.Address(), image, kind, s.width, s.height, percent,
                                                 &counts.bright, &counts.dark),
                              0);
                    ASSERT_TRUE(SamePels(expected, out));
                    EXPECT_EQ(counts, expectedCounts);
                    EXPECT_TRUE(SameHeader(image.Header(), out.Header()));
                }
            }
        }
    }
}

TEST(LocalThreshold, APelWithoutDataIsDarkInTheFirstFormOnly) {
    Image image = MakeImage(9, 9, [](auto col, auto row) { return col == 4 && row == 4 ? 0 : 1000; });
    for (int variant = 0; variant < 3; ++variant) {
        Image out;
        Counts counts;
        ASSERT_EQ(kVariants[variant](out.Address(), image, 2, kMin, 3, 50.0, &counts.bright, &counts.dark),
                  0);
        EXPECT_EQ(counts, (Counts{0, variant == 0 ? 1 : 0}));
        EXPECT_TRUE(SamePels(Image(9, 9), out));
        counts = {-7, -7};
        for (const auto& [width, height] : {std::pair{9, 3}, {3, kMax}}) {
            EXPECT_EQ(kVariants[variant](out.Address(), image, 2, width, height, 50.0, &counts.bright,
                                         &counts.dark),
                      -3);
        }
        EXPECT_EQ(counts, (Counts{-7, -7}));
    }
}

}  // namespace
