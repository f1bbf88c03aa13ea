#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "automation_host.h"
#include "maps.h"
#include "tqimage/lens_model.h"

namespace {

using namespace tqtest;

/// cx, cy, Rn, k1, k2, k3, p1, p2, s
using Model = std::array<double, 9>;

constexpr Model kPlain{31.5, 23.5, 40, 0, 0, 0, 0, 0, 1};
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

HostArray Table(const std::vector<Model>& models) {
    return MakeDoubleArray(static_cast<std::uint32_t>(models.size()), 9, [&](int model, int field) {
        return models[static_cast<std::size_t>(model)][static_cast<std::size_t>(field)];
    });
}

constexpr TqLensSetting kDefault{64, 48, 0, 0, -1.0f, -1.0f};

TEST(LensModel, WithoutDistortionEveryEntryIsItsOwnPlace) {
    for (const double center : {31.5, 0.1, 1.0 / 3.0, 1e4}) {
        Model model = kPlain;
        model[0] = center;
        HostArray table = Table({model});
        Map map;
        ASSERT_EQ(tqBuildLensDistortionImage(map.Address(), &kDefault, table.Address()), 0);
        ASSERT_EQ(map.Head().Cols, 64);
        ASSERT_EQ(map.Head().Rows, 48);
        EXPECT_EQ(map.Head().CenterCol, static_cast<float>(center));
        EXPECT_EQ(map.Head().CenterRow, 23.5f);
        for (std::int32_t row = 0; row < 48; ++row) {
            for (std::int32_t col = 0; col < 64; ++col) {
                ASSERT_EQ(map.Entry(col, row)[0], static_cast<float>(col));
                ASSERT_EQ(map.Entry(col, row)[1], static_cast<float>(row));
            }
        }
        EXPECT_EQ(table.Locks(), 0u);
    }
}

TEST(LensModel, FollowsTheFormula) {
    const Model model{30, 25, 40, -0.12, 0.03, -0.004, 0.002, -0.003, 0.98};
    HostArray table = Table({model});
    Map map(3, 3);  // is replaced
    ASSERT_EQ(tqBuildLensDistortionImage(map.Address(), &kDefault, table.Address()), 0);
    for (const auto& [c, r] : {std::pair{30, 25}, std::pair{0, 0}, std::pair{63, 47}, std::pair{10, 40}}) {
        const double x = (c - 30) / 40.0, y = (r - 25) / 40.0, q = x * x + y * y;
        const double radial = 1 - 0.12 * q + 0.03 * q * q - 0.004 * q * q * q;
        const double col = 30 + 40 * 0.98 * (x * radial + 2 * 0.002 * x * y - 0.003 * (q + 2 * x * x));
        const double row = 25 + 40 * 0.98 * (y * radial - 2 * 0.003 * x * y + 0.002 * (q + 2 * y * y));
        EXPECT_NEAR(map.Entry(c, r)[0], col, 1e-5) << c << ", " << r;
        EXPECT_NEAR(map.Entry(c, r)[1], row, 1e-5) << c << ", " << r;
    }
    // The pincushion's corners lie outside the sensor.
    HostArray wide = Table({{31.5, 23.5, 40, 0.2, 0, 0, 0, 0, 1}});
    ASSERT_EQ(tqBuildLensDistortionImage(map.Address(), &kDefault, wide.Address()), 0);
    EXPECT_EQ(map.Entry(0, 0)[0], -1.0f);
    EXPECT_EQ(map.Entry(63, 47)[1], -1.0f);
    EXPECT_GT(map.Entry(40, 23)[0], 40.0f);
}

TEST(LensModel, InterpolatesBetweenCalibratedSettings) {
    // Default 1; 2 x 3 settings whose centre column is 10 (1 + iA) + iB.
    std::vector<Model> models{kPlain};
    for (int a = 0; a < 2; ++a) {
        for (int b = 0; b < 3; ++b) {
            Model model = kPlain;
            model[0] = 10 * (1 + a) + b;
            models.push_back(model);
        }
    }
    HostArray table = Table(models);
    struct Case {
        float a, b, center;
    };
    for (const Case& c :
         {Case{0, 0, 10}, Case{1, 2, 22}, Case{0.5f, 1, 16}, Case{0.25f, 1.5f, 14}, Case{9, 1e30f, 22},
          Case{-0.1f, 1, 31.5f}, Case{1, -2, 31.5f}, Case{kNan, 1, 31.5f}, Case{1, kNan, 31.5f}}) {
        const TqLensSetting setting{64, 48, 2, 3, c.a, c.b};
        Map map;
        ASSERT_EQ(tqBuildLensDistortionImage(map.Address(), &setting, table.Address()), 0);
        EXPECT_EQ(map.Head().CenterCol, c.center) << c.a << ", " << c.b;
    }
}

TEST(LensModel, RefusesTablesOfAnotherShape) {
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    struct Case {
        HostArray table;
        std::int32_t countA, countB, status;
    };
    Case cases[] = {{HostArray(), 0, 0, 1},
                    {HostArray(VT_R8, {{9}}), 0, 0, 1},
                    {HostArray(VT_R4, {{1}, {9}}), 0, 0, 2},
                    {HostArray(VT_I8, {{1}, {9}}), 0, 0, 2},
                    {HostArray(VT_R8, {{9}, {1}}), 0, 0, 3},
                    {HostArray(VT_R8, {{2}, {9}}), 0, 0, 4},
                    {HostArray(VT_R8, {{5}, {9}}), -2, -2, 4},
                    {HostArray(VT_R8, {{2}, {9}}), kMax, kMax, 4},
                    {HostArray(VT_R8, {{1, 1}, {9}}), 0, 0, 4}};
    Map map(3, 3);
    const TqDistortionMap* const block = map;
    for (Case& c : cases) {
        const TqLensSetting setting{64, 48, c.countA, c.countB, 0, 0};
        EXPECT_EQ(tqBuildLensDistortionImage(map.Address(), &setting, c.table.Address()), c.status);
    }
    HostArray table = Table({kPlain});
    for (const auto& [cols, rows] : {std::pair{0, 48}, std::pair{64, 8001}, std::pair{-5, -5}}) {
        const TqLensSetting setting{cols, rows, 0, 0, 0, 0};
        EXPECT_EQ(tqBuildLensDistortionImage(map.Address(), &setting, table.Address()), -1);
    }
    EXPECT_EQ(tqBuildLensDistortionImage(nullptr, &kDefault, table.Address()), -1);
    EXPECT_EQ(tqBuildLensDistortionImage(map.Address(), nullptr, table.Address()), -1);
    EXPECT_EQ(tqBuildLensDistortionImage(map.Address(), &kDefault, nullptr), 1);
    EXPECT_EQ(static_cast<const TqDistortionMap*>(map), block);
    EXPECT_EQ(table.Locks(), 0u);
}

TEST(LensModel, RefusesLensesThatFoldTheImage) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNone = kNan;
    struct Case {
        double centerCol, radius, k1, k2, k3, scale;
        std::int32_t status;
    };
    for (const Case& c : {Case{31.5, 0, 0, 0, 0, 1, -3}, Case{31.5, -40, 0, 0, 0, 1, -3},
                          Case{31.5, 40, 0, 0, 0, 0, -3}, Case{31.5, 40, 0, 0, 0, -1, -3},
                          Case{kInfinity, 40, 0, 0, 0, 1, -3}, Case{31.5, 40, kNone, 0, 0, 1, -3},
                          // The farthest corner lies at q = 0.9653: r (1 + k1 q) grows up to k1 = -0.3453.
                          Case{31.5, 40, -0.345, 0, 0, 1, 0}, Case{31.5, 40, -0.346, 0, 0, 1, -3},
                          Case{31.5, 40, 0, -0.22, 0, 1, -3}, Case{31.5, 40, 0, -0.21, 0, 1, 0},
                          // Folded half-way although the corner is fine again: 1 - 3 x 1.7 q + 5 x 1.2 q^2.
                          Case{31.5, 40, -1.7, 1.2, 0, 1, -3}, Case{31.5, 40, -1.0, 1.2, 0, 1, 0},
                          Case{31.5, 40, -1.6, 0.9, 0.3, 1, -3}, Case{31.5, 40, -0.8, 0.9, 0.3, 1, 0}}) {
        HostArray table = Table({{c.centerCol, 23.5, c.radius, c.k1, c.k2, c.k3, 0, 0, c.scale}});
        Map map;
        EXPECT_EQ(tqBuildLensDistortionImage(map.Address(), &kDefault, table.Address()), c.status)
            << c.radius << ", " << c.k1 << ", " << c.k2 << ", " << c.scale;
    }
}

}  // namespace
