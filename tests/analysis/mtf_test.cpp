#include "tqimage/mtf.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "scenes.h"

namespace tqtest {
namespace {

constexpr std::int32_t kCount = 51;

struct Measured {
    std::int32_t status = -77;
    std::vector<double> mtf = std::vector<double>(kCount, -7.0);
    double mtf50 = -7.0;
    double angle = -7.0;
};

Measured Measure(const Image& image, std::int32_t left = 0, std::int32_t top = 0, std::int32_t right = 0,
                 std::int32_t bottom = 0) {
    Measured m;
    m.status = tqCalcMTF(image, left, top, right, bottom, kCount, m.mtf.data(), &m.mtf50, &m.angle);
    return m;
}

double WorstError(const Measured& measured, const EdgeScene& scene) {
    double worst = 0.0;
    for (std::int32_t k = 0; k < kCount; ++k) {
        const double truth = EdgeModulation(scene, k * 0.5 / (kCount - 1));
        worst = std::max(worst, std::abs(measured.mtf[static_cast<std::size_t>(k)] - truth));
    }
    return worst;
}

TEST(Mtf, GaussianEdgesOfEveryOrientationAndPolarity) {
    for (const double sigma : {0.5, 1.0, 1.5}) {
        for (const double degrees : {3.0, 5.0, 8.0, -5.0, 20.0}) {
            for (const bool transposed : {false, true}) {
                EdgeScene scene{sigma, degrees};
                scene.transposed = transposed;
                if (transposed) std::swap(scene.dark, scene.bright);
                SCOPED_TRACE(testing::Message() << "sigma " << sigma << ", " << degrees << " degrees");
                const Measured measured = Measure(MakeEdge(scene));
                ASSERT_EQ(measured.status, 0);
                EXPECT_NEAR(measured.angle, degrees, 0.002);
                EXPECT_LT(WorstError(measured, scene), 0.006);
                EXPECT_EQ(measured.mtf[0], 1.0);
                EXPECT_NEAR(EdgeModulation(scene, measured.mtf50), 0.5, 0.004);
                if (sigma == 1.0 && std::abs(degrees) < 10.0) {
                    EXPECT_NEAR(measured.mtf50, 0.180, 0.001);
                }
            }
        }
    }
}

TEST(Mtf, HalfAPercentOfNoiseAndSmallRegions) {
    for (const double sigma : {0.5, 1.0, 1.5}) {
        EdgeScene scene{sigma, 5.0};
        scene.noise = 0.005;
        Measured measured = Measure(MakeEdge(scene));
        ASSERT_EQ(measured.status, 0);
        EXPECT_LT(WorstError(measured, scene), 0.02) << sigma;
        scene.noise = 0.0;
        measured = Measure(MakeEdge(scene), 30, 20, 69, 79);
        ASSERT_EQ(measured.status, 0);
        EXPECT_LT(WorstError(measured, scene), 0.015) << sigma;
        EXPECT_NEAR(measured.angle, 5.0, 0.02);
    }
}

TEST(Mtf, ASystemThatStaysAboveOneHalfHasNoMtf50AndOutputsMayBeLeftOut) {
    EdgeScene scene{0.05, 7.0};
    const Image image = MakeEdge(scene);
    const Measured measured = Measure(image);
    ASSERT_EQ(measured.status, 0);
    EXPECT_EQ(measured.mtf50, 0.0);
    EXPECT_GT(measured.mtf.back(), 0.6);
    double one = -7.0, mtf50 = -7.0;
    EXPECT_EQ(tqCalcMTF(image, 0, 0, 0, 0, 1, &one, nullptr, nullptr), 0);
    EXPECT_EQ(one, 1.0);
    EXPECT_EQ(tqCalcMTF(image, 0, 0, 0, 0, std::numeric_limits<std::int32_t>::min(), &one, &mtf50, nullptr),
              0);
    EXPECT_EQ(mtf50, 0.0);
}

TEST(Mtf, RefusesWhatIsNoSlantedEdge) {
    const auto edge = [](double degrees, std::int32_t cols, std::int32_t rows) {
        return MakeEdge({1.0, degrees, 5000.0, 45000.0, 0.0, cols, rows});
    };
    struct Case {
        const char* what;
        Image image;
        std::int32_t status;
    };
    const Case cases[] = {
        {"upright", edge(0.0, 60, 60), -5},
        {"diagonal", edge(45.0, 60, 60), -5},
        {"narrow", edge(5.0, 19, 40), -3},
        {"just wide enough", edge(5.0, 20, 40), 0},
        {"low", edge(5.0, 60, 9), -3},
        {"just high enough", edge(5.0, 60, 10), 0},
        {"flat", MakeImage(60, 60, [](auto, auto) { return 500; }), -4},
        {"black", Image(60, 60), -4},
        {"noise", RandomImage(60, 60, 3), -4},
        {"one column", Image(1, 60), -3},
    };
    for (const Case& it : cases) {
        SCOPED_TRACE(it.what);
        const Measured measured = Measure(it.image);
        EXPECT_EQ(measured.status, it.status);
        if (it.status == 0) continue;
        EXPECT_EQ(measured.mtf, std::vector<double>(kCount, -7.0));
        EXPECT_EQ(measured.mtf50, -7.0);
        EXPECT_EQ(measured.angle, -7.0);
    }
    EXPECT_EQ(Measure(Image()).status, -2);
    EXPECT_EQ(Measure(Image(8001, 1)).status, -2);
    const Image image = edge(5.0, 60, 60);
    EXPECT_EQ(Measure(image, 40, 0, 20, 59).status, -2);
    EXPECT_EQ(Measure(image, 26, 0, 59, 59).status, -3) << "the edge at the end of the lines";
    EXPECT_EQ(Measure(image, -9, -2000000000, 2000000000, 90).status, 0);
}

}  // namespace
}  // namespace tqtest
