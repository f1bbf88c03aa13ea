#include "tqimage/local_contrast.h"
#include "process_tests.h"

namespace {

using namespace tqtest;

TEST(LocalStdDev, ScalesTheDeviationOfPelsWithData) {
    struct Case {
        std::int32_t width, height;
    };
    for (const Case& c : {Case{3, 3}, {4, 2}, {7, 11}, {1, 5}, {99, 99}}) {
        const Image source = RandomImageWithHoles(39, 21, 61);
        std::vector<double> sigmas(source.Count());
        for (std::int32_t row = 0; row < 21; ++row) {
            for (std::int32_t col = 0; col < 39; ++col) {
                if (source(col, row) == 0) continue;
                const auto pels = ShiftedPels(source, col, row, OddSize(c.width, 39), OddSize(c.height, 21));
                const Total lit = LitOf(pels);
                const long double mean =
                    static_cast<long double>(lit.sum) / static_cast<long double>(lit.count);
                long double squares = 0;
                for (const std::uint16_t pel : pels)
                    if (pel != 0) squares += (pel - mean) * (pel - mean);
                sigmas[static_cast<std::size_t>(row * 39 + col)] =
                    static_cast<double>(std::sqrt(squares / static_cast<long double>(lit.count)));
            }
        }
        const double largest = *std::max_element(sigmas.begin(), sigmas.end());
        Image image = source;
        ASSERT_EQ(tqCalcLocalStdDev(image.Address(), c.width, c.height), 0);
        for (std::size_t i = 0; i < image.Count(); ++i) {
            const double exact = sigmas[i] * 65000.0 / largest;
            // Truncated: a rounding of the last bit may take the next lower integer.
            EXPECT_LE(image.Pels()[i], exact + 1e-6) << i;
            EXPECT_GT(image.Pels()[i], exact - 1.0 - 1e-6) << i;
        }
        EXPECT_EQ(image.Header().MaxPelValue, 65000.0f);
        EXPECT_NEAR(image.Header().LuxPerGrey, largest / 65000.0, 1e-6 * largest / 65000.0);
    }
}

TEST(LocalStdDev, FlatAndTinyWindows) {
    Image flat = MakeImage(9, 9, [](std::int32_t col, std::int32_t) { return col == 4 ? 0 : 65535; });
    ASSERT_EQ(tqCalcLocalStdDev(flat.Address(), 3, 3), 0);
    EXPECT_TRUE(SamePels(Image(9, 9), flat));
    Image image = RandomImage(9, 9, 1);
    const TqImage* block = image.Get();
    EXPECT_EQ(tqCalcLocalStdDev(image.Address(), 2, 1), 0);
    EXPECT_EQ(image.Get(), block);
    EXPECT_EQ(tqCalcLocalStdDev(nullptr, 2, 1), -2);
}

using Difference = std::optional<double>;

Difference MeanOf(const Total& lit) {
    if (lit.count == 0) return std::nullopt;
    return static_cast<double>(lit.sum) / static_cast<double>(lit.count);
}

/// The mura image of these differences.
template <class Fn>
Image Encoded(const Image& source, Fn&& difference) {
    double largest = 0.0;
    const auto visit = [&](auto&& each) {
        for (std::int32_t row = 0; row < source.Rows(); ++row) {
            for (std::int32_t col = 0; col < source.Cols(); ++col) {
                if (source(col, row) == 0) continue;
                if (const Difference d = difference(col, row)) each(col, row, *d);
            }
        }
    };
    visit([&](std::int32_t, std::int32_t, double d) { largest = std::max(largest, std::abs(d)); });
    if (largest == 0.0) largest = 1.0;
    Image out(source.Header());
    visit([&](std::int32_t col, std::int32_t row, double d) {
        out(col, row) =
            static_cast<std::uint16_t>(32000 + static_cast<int>(std::nearbyint(d * 32000.0 / largest)));
    });
    out.Header().MaxPelValue = 64000.0f;
    out.Header().LuxPerGrey = static_cast<float>(out.Header().LuxPerGrey * (largest / 32000.0));
    return out;
}

TEST(LocalLumDiff, IsTheWindowAgainstItsSurround) {
    struct Case {
        std::int32_t innerWidth, innerHeight, outerWidth, outerHeight;
    };
    // One pel in two without data leaves surrounds on both sides of half populated.
    for (const std::uint32_t oneIn : {2U, 6U}) {
        const Image source = RandomImageWithHoles(43, 29, 62, oneIn);
        for (const Case& c : {Case{1, 1, 3, 3}, {3, 3, 7, 9}, {3, 5, 4, 8}, {5, 1, 5, 3}, {3, 3, 99, 99}}) {
            const std::int32_t iw = OddSize(c.innerWidth, 43), ih = OddSize(c.innerHeight, 29);
            const std::int32_t ow = OddSize(c.outerWidth, 43), oh = OddSize(c.outerHeight, 29);
            const Image expected = Encoded(source, [&](std::int32_t col, std::int32_t row) -> Difference {
                const auto innerPels = ClippedPels(source, col, row, iw, ih);
                const auto outerPels = ClippedPels(source, col, row, ow, oh);
                const Total inner = LitOf(innerPels), outer = LitOf(outerPels);
                const Total around{outer.sum - inner.sum, outer.count - inner.count};
                if (around.count == 0 || 2 * around.count < outerPels.size() - innerPels.size())
                    return std::nullopt;
                return *MeanOf(inner) - *MeanOf(around);
            });
            if (oh == ih && ow == iw) continue;
            Image out;
            ASSERT_EQ(tqCalcLocalLumDiff(out.Address(), source.Get(), c.innerWidth, c.innerHeight,
                                         c.outerWidth, c.outerHeight),
                      0);
            EXPECT_TRUE(SamePels(expected, out)) << ow << " x " << oh;
            EXPECT_TRUE(SameHeader(expected.Header(), out.Header()));
        }
    }
}

TEST(LocalLumDiffDir, IsTheBlockAgainstItsNeighboursInADirection) {
    const Image source = RandomImageWithHoles(37, 72, 63, 2);
    constexpr std::int32_t kSteps[4][2] = {{1, 0}, {0, 1}, {1, 1}, {1, -1}};
    for (const std::int32_t distance : {1, 11, 32, 33, 50}) {
        for (std::int32_t direction = 0; direction <= 4; ++direction) {
            const auto mean = [&](std::int32_t col, std::int32_t row) -> Difference {
                if (col < 0 || row < 0 || col >= 37 || row >= 72) return std::nullopt;
                return MeanOf(LitOf(ClippedPels(source, col, row, 3, 1)));
            };
            const Image expected = Encoded(source, [&](std::int32_t col, std::int32_t row) {
                Difference found;
                for (std::int32_t d = 0; d < 4; ++d) {
                    if (direction != 4 && d != direction) continue;
                    const std::int32_t dx = distance * kSteps[d][0], dy = distance * kSteps[d][1];
                    const Difference here = mean(col, row), a = mean(col + dx, row + dy),
                                     b = mean(col - dx, row - dy);
                    if (!here || !a || !b) continue;
                    const double value = *here - 0.5 * (*a + *b);
                    if (!found || std::abs(value) > std::abs(*found)) found = value;
                }
                return found;
            });
            Image out;
            ASSERT_EQ(tqCalcLocalLumDiffDir(out.Address(), source.Get(), 3, 2, distance, direction), 0);
            EXPECT_TRUE(SamePels(expected, out)) << distance << " in direction " << direction;
            EXPECT_TRUE(SameHeader(expected.Header(), out.Header()));
        }
    }
}

TEST(LocalLumDiff, RefusesWhatItCannotCompare) {
    Image image = RandomImage(9, 9, 1), out;
    EXPECT_EQ(tqCalcLocalLumDiff(out.Address(), image, 3, 3, 3, 4), -4);
    EXPECT_EQ(tqCalcLocalLumDiff(out.Address(), image, 5, 3, 3, 9), -4);
    EXPECT_EQ(tqCalcLocalLumDiff(out.Address(), image, 9, 9, 99, 99), -4);
    EXPECT_EQ(tqCalcLocalLumDiffDir(out.Address(), nullptr, 3, 3, 0, 9), -2);
    for (const auto& [distance, direction] : {std::pair{0, 0}, {1, 5}, {1, -1}})
        EXPECT_EQ(tqCalcLocalLumDiffDir(out.Address(), image, 3, 3, distance, direction), -4);
    EXPECT_EQ(out.Get(), nullptr);
    EXPECT_EQ(tqCalcLocalLumDiffDir(out.Address(), image, 3, 3, kMax, 4), 0);
    EXPECT_TRUE(SamePels(Image(9, 9), out));
}

}  // namespace
