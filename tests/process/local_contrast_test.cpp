#include "tqimage/local_contrast.h"
#include "process_tests.h"

namespace {

using namespace tqtest;

TEST(LocalStdDev, ScalesTheDeviationOfPelsWithData) {
    for (const auto& [width, height] : {std::pair{3, 3}, {4, 2}, {7, 11}, {99, 99}}) {
        const Image source = RandomImageWithHoles(39, 21, 61);
        std::vector<double> sigmas;
        for (std::int32_t row = 0; row < 21; ++row) {
            for (std::int32_t col = 0; col < 39; ++col) {
                auto pels = ShiftedPels(source, col, row, OddSize(width, 39), OddSize(height, 21));
                std::erase(pels, 0);
                const auto count = static_cast<long double>(pels.size());
                const long double mean = static_cast<long double>(LitOf(pels).sum) / count;
                long double squares = 0;
                for (const std::uint16_t pel : pels)
                    squares += (pel - mean) * (pel - mean);
                sigmas.push_back(source(col, row) == 0 ? 0.0
                                                       : static_cast<double>(std::sqrt(squares / count)));
            }
        }
        const double largest = *std::max_element(sigmas.begin(), sigmas.end());
        Image image = source;
        ASSERT_EQ(tqCalcLocalStdDev(image.Address(), width, height), 0);
        for (std::size_t i = 0; i < image.Count(); ++i) {
            // Truncated: a rounding of the last bit may take the next lower integer.
            EXPECT_NEAR(image.Pels()[i], sigmas[i] * 65000.0 / largest - 0.5, 0.5 + 1e-6) << i;
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
        std::vector<int> line, levels;
        std::int32_t inner, outer;
        double largest;
    };
    // The largest difference is 32000 levels; a surround less than half of which holds data says nothing.
    for (const Case& c : {Case{{10, 20, 70, 20, 10}, {25600, 19200, 64000, 19200, 25600}, 1, 3, 50},
                          {{10, 0, 70, 20, 10}, {0, 0, 64000, 19200, 25600}, 1, 4, 50},
                          {{10, 0, 70, 0, 0}, {0, 0, 0, 0, 0}, 1, 5, 60},
                          {{10, 30, 10, 30, 90}, {38400, 23467, 14933, 40533, 64000}, 3, 99, 50},
                          {{7, 7, 7, 7, 7}, {32000, 32000, 32000, 32000, 32000}, 1, 3, 1}}) {
        SCOPED_TRACE(testing::Message() << c.line[1] << " by " << c.outer);
        Image image = MakeImage(5, 1, c.line), out;
        image.Header().LuxPerGrey = 0.5f;
        ASSERT_EQ(tqCalcLocalLumDiff(out.Address(), image, c.inner, 1, c.outer, 1), 0);
        EXPECT_TRUE(SamePels(MakeImage(5, 1, c.levels), out));
        EXPECT_EQ(out.Header().MaxPelValue, 64000.0f);
        EXPECT_FLOAT_EQ(out.Header().LuxPerGrey, static_cast<float>(0.5 * c.largest / 32000));
    }
    // A window and a surround with both sides and holes, large enough for every vector.
    const Image holes = MakeImage(43, 29, [](auto col, auto row) { return (col + row) % 4 == 0 ? 0 : 500; });
    Image out;
    ASSERT_EQ(tqCalcLocalLumDiff(out.Address(), holes, 3, 3, 7, 9), 0);
    EXPECT_TRUE(SamePels(
        MakeImage(43, 29, [](auto col, auto row) { return (col + row) % 4 == 0 ? 0 : 32000; }), out));
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
    for (const auto& [innerWidth, outerWidth, outerHeight] : {std::tuple{3, 3, 4}, {5, 3, 9}})
        EXPECT_EQ(tqCalcLocalLumDiff(out.Address(), image, innerWidth, 3, outerWidth, outerHeight), -4);
    EXPECT_EQ(tqCalcLocalLumDiff(out.Address(), image, 9, 9, 99, 99), -4);
    for (const auto& [distance, direction] : {std::pair{0, 0}, {1, 5}, {1, -1}})
        EXPECT_EQ(tqCalcLocalLumDiffDir(out.Address(), image, 3, 3, distance, direction), -4);
    EXPECT_EQ(tqCalcLocalLumDiffDir(out.Address(), image, 3, 3, kMax, 4), 0);
    EXPECT_TRUE(SamePels(Image(9, 9), out));
}

}  // namespace
