#include <cmath>
#include <random>

#include "statistics.h"
#include "tqimage/uniformity.h"

namespace tqtest {
namespace {

struct Semu {
    double value = -9, contrast = -9, area = -9;
};

Semu SemuOf(const Image& image, std::int32_t threshold) {
    Semu semu;
    semu.value = tqCalcSemu(image, threshold, &semu.contrast, &semu.area);
    EXPECT_EQ(tqCalcSemu(image, threshold, nullptr, nullptr), semu.value);
    return semu;
}

/// A mura image at its zero level with a tenth of a per mille a grey.
Image Level(std::int32_t cols, std::int32_t rows) {
    Image image = MakeImage(cols, rows, [](auto, auto) { return 32000; });
    image.Header().LuxPerGrey = 1e-4f;
    return image;
}

void Fill(Image& image, std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom,
          int signal) {
    for (std::int32_t row = top; row <= bottom; ++row) {
        for (std::int32_t col = left; col <= right; ++col)
            image(col, row) = static_cast<std::uint16_t>(32000 + signal);
    }
}

/// Published pairs of contrast, area and rating, and the block whose rating was computed by hand.
TEST(Semu, RatesContrastAgainstTheJustNoticeable) {
    Image block = Level(40, 30);
    Fill(block, 12, 9, 21, 18, 400);
    const Semu found = SemuOf(block, 100);
    EXPECT_NEAR(found.value, 3.47527, 1e-5);
    EXPECT_NEAR(found.contrast, 4.0, 1e-6);
    EXPECT_NEAR(found.area, 100.0, 1e-9);

    struct Case {
        std::int32_t side;
        double contrast, semu;
    };
    for (const Case& it : {Case{1, 2.69, 1.0}, Case{10, 3.0, 2.6065}}) {
        Image image = Level(30, 30);
        image.Header().LuxPerGrey = static_cast<float>(it.contrast / 100 / 269);
        Fill(image, 3, 4, 2 + it.side, 3 + it.side, -269);
        const Semu rated = SemuOf(image, 1);
        EXPECT_NEAR(rated.value, it.semu, 5e-5);
        EXPECT_NEAR(rated.contrast, -it.contrast, 1e-5) << "a dark blemish keeps its sign";
        EXPECT_NEAR(rated.area, it.side * it.side, 1e-9);
        image.Header().PelsPerMeterX = 2000.0f;
        EXPECT_NEAR(SemuOf(image, 1).area, it.side * it.side / 2.0, 1e-9);
    }
}

TEST(Semu, NothingToRate) {
    Image image = Level(8, 8);
    for (const std::int32_t threshold : {kLowest, 0, 1, 40000, kHighest}) {
        const Semu none = SemuOf(image, threshold);
        EXPECT_TRUE(none.value == 0.0 && none.contrast == 0.0 && none.area == 0.0) << threshold;
    }
    EXPECT_EQ(SemuOf(Image(8, 8), 1).value, 0.0) << "pels of 0 hold no data";
    Fill(image, 2, 2, 3, 3, 33535);
    image.Header().LuxPerGrey = 0.0f;
    EXPECT_EQ(SemuOf(image, 1).area, 0.0) << "no difference a grey, no blemish";

    for (const auto& [x, y] : {std::pair{0.0f, 1000.0f}, {1000.0f, -1.0f}}) {
        image.Header().PelsPerMeterX = x;
        image.Header().PelsPerMeterY = y;
        double contrast = 7, area = 7;
        EXPECT_EQ(tqCalcSemu(image, 1, &contrast, &area), -3.0);
        EXPECT_EQ(contrast + area, 0.0);
    }
}

/// Flood fill from every pel that is not yet part of a blemish.
Semu SemuReference(const Image& image, std::int32_t threshold) {
    const auto sign = [&](std::int32_t col, std::int32_t row) {
        if (col < 0 || row < 0 || col >= image.Cols() || row >= image.Rows()) return 0;
        const int pel = image(col, row), signal = pel - 32000;
        return pel == 0 || std::abs(signal) < std::max(threshold, 1) ? 0 : signal < 0 ? -1 : 1;
    };
    std::vector<char> seen(image.Count());
    const auto index = [&](const Position& at) {
        return static_cast<std::size_t>(at.row * image.Cols() + at.col);
    };
    Semu best{0, 0, 0};
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            const int kind = sign(col, row);
            if (kind == 0 || seen[index({col, row})]) continue;
            double sum = 0, count = 0;
            std::vector<Position> open = {{col, row}};
            seen[index({col, row})] = 1;
            while (!open.empty()) {
                const Position at = open.back();
                open.pop_back();
                sum += image(at.col, at.row) - 32000;
                ++count;
                for (int i = 0; i < 9; ++i) {
                    const Position next{at.col + i % 3 - 1, at.row + i / 3 - 1};
                    if (sign(next.col, next.row) != kind || seen[index(next)]) continue;
                    seen[index(next)] = 1;
                    open.push_back(next);
                }
            }
            const double contrast = 100.0 * image.Header().LuxPerGrey * sum / count;
            const double value = std::abs(contrast) / (1.97 / std::pow(count, 0.33) + 0.72);
            if (value > best.value * (1 + 1e-14)) best = {value, contrast, count};
        }
    }
    return best;
}

/// Noise of every density: islands, rivers, combs whose teeth join late, and two signs side by side.
TEST(Semu, AgreesWithAFloodFill) {
    std::mt19937 random(61);
    const auto engine = [&random] { return static_cast<std::uint32_t>(random()); };
    for (int i = 0; i < 60; ++i) {
        const auto cols = static_cast<std::int32_t>(i < 50 ? 1 + engine() % 40 : 530);
        const auto rows = static_cast<std::int32_t>(1 + engine() % 40);
        const std::uint32_t oneIn = 1 + engine() % 6;
        const std::uint32_t spread = i % 3 == 0 ? 3 : 2000;
        Image image = MakeImage(cols, rows, [&](auto, auto) {
            const bool quiet = engine() % oneIn != 0;
            const std::uint32_t signal = engine() % spread;
            return quiet ? 32000u : signal % 17 == 3 ? 0u : 32000u + signal - spread / 2;
        });
        image.Header().LuxPerGrey = 1e-4f;
        for (const std::int32_t threshold : {0, 2, 300}) {
            const Semu expected = SemuReference(image, threshold), found = SemuOf(image, threshold);
            ASSERT_NEAR(found.value, expected.value, 1e-12 * expected.value);
            ASSERT_NEAR(found.contrast, expected.contrast, 1e-9) << "round " << i;
            ASSERT_NEAR(found.area, expected.area, 1e-9);
        }
    }
}

}  // namespace
}  // namespace tqtest
