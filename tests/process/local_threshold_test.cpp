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

struct Window {
    std::int32_t left, top, width, height;
};

/// Every window is read anew, pel by pel.
bool Tested(const Image& image, int variant, std::int32_t col, std::int32_t row, const Window& w,
            double& mean) {
    double sum = 0.0, lit = 0.0;
    for (std::int32_t y = w.top; y < w.top + w.height; ++y) {
        for (std::int32_t x = w.left; x < w.left + w.width; ++x) {
            sum += image(x, y);
            lit += image(x, y) != 0 ? 1 : 0;
        }
    }
    const double area = static_cast<double>(w.width) * w.height;
    mean = sum / (variant == 0 ? area : lit);
    return variant == 0 || (image(col, row) != 0 && (variant == 1 || lit == area));
}

Image Expected(const Image& image, int variant, std::int32_t kind, std::int32_t width, std::int32_t height,
               double percent, Counts& counts) {
    const double tolerance = percent / 100.0;
    return MakeImage(image.Cols(), image.Rows(), [&](std::int32_t col, std::int32_t row) {
        Window w{col - width / 2, row - height / 2, width, height};
        const std::int32_t freeCols = image.Cols() - width, freeRows = image.Rows() - height;
        const bool inside = w.left >= 0 && w.top >= 0 && w.left <= freeCols && w.top <= freeRows;
        if (variant == 0 && (!inside || w.left == freeCols || w.top == freeRows)) return 0;
        if (variant == 2 && !inside) return 0;
        w.left = std::clamp(w.left, 0, freeCols);
        w.top = std::clamp(w.top, 0, freeRows);
        double mean = 0.0;
        if (!Tested(image, variant, col, row, w, mean)) return 0;
        const int pel = image(col, row);
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
        for (const Size& s : {Size{3, 3}, Size{1, 1}, Size{5, 2}, Size{4, 7}, Size{40, 28}, Size{1, 28}}) {
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
