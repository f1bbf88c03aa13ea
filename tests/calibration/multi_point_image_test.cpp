#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "automation_host.h"
#include "images.h"
#include "tqimage/multi_point_calibration.h"

namespace {

using namespace tqtest;

struct Point {
    double col, row, value;
};

double Draw(std::mt19937& random, std::uint32_t below) {
    return static_cast<double>(random() % below);
}
using Formula = std::function<double(double, double)>;

HostArray List(const std::vector<Point>& points) {
    return MakeDoubleArray(static_cast<std::uint32_t>(points.size()), 3, [&](int point, int field) {
        const Point& p = points[static_cast<std::size_t>(point)];
        return field == 0 ? p.col : field == 1 ? p.row : p.value;
    });
}

TqMultiPointSettings Settings(std::int32_t method, std::int32_t cols, std::int32_t rows) {
    return {1, cols, rows, method, {-1, -1}, 0.0f, 0.0f, 1e6f, 1e6f};
}

Image Build(const TqMultiPointSettings& settings, const std::vector<Point>& points) {
    Image image(2, 2);
    HostArray list = List(points);
    EXPECT_EQ(tqBuildMultiPointImage(image.Address(), &settings, list.Address()), 0);
    EXPECT_EQ(list.Locks(), 0u);
    return image;
}

double ValueAt(const Image& image, std::int32_t col, std::int32_t row) {
    return static_cast<std::int16_t>(image(col, row)) * static_cast<double>(image.Header().LuxPerGrey);
}

/// nCols x nRows points from corner to corner, on whole pels.
std::vector<Point> Grid(std::int32_t cols, std::int32_t rows, int nCols, int nRows, const Formula& value) {
    std::vector<Point> points;
    for (int j = 0; j < nRows; ++j) {
        for (int i = 0; i < nCols; ++i) {
            const int col = i * (cols - 1) / (nCols - 1), row = j * (rows - 1) / (nRows - 1);
            points.push_back({col * 1.0, row * 1.0, value(col, row)});
        }
    }
    return points;
}

double LargestError(const Image& image, const Formula& value) {
    double largest = 0.0;
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col)
            largest = std::max(largest, std::abs(ValueAt(image, col, row) - value(col, row)));
    }
    return largest;
}

/// A step of the encoding; a value is truncated to one.
double Step(const Image& image) {
    return image.Header().LuxPerGrey * 1.01;
}

TEST(MultiPointImage, SurfacesReproduceWhatTheyAreMadeFor) {
    const Formula constant = [](double, double) { return 2.5; };
    const Formula plane = [](double c, double r) { return 3.0 + 0.01 * c - 0.02 * r; };
    const Formula square = [](double c, double r) {
        return 1.0 + 1e-4 * c * c - 2e-4 * c * r + 3e-5 * r * r;
    };
    struct Case {
        Formula value;
        std::vector<int> methods;
    };
    for (const Case& c :
         {Case{constant, {-1, 0, 1, 2, 3, 4, 5, 6}}, Case{plane, {2, 3, 4, 5}}, Case{square, {2, 3}}}) {
        for (const int method : c.methods) {
            const Image image = Build(Settings(method, 131, 97), Grid(131, 97, 6, 5, c.value));
            EXPECT_LE(LargestError(image, c.value), Step(image)) << method;
        }
    }
    // The powers of the short side of a strip are small, but none the less those of the points.
    const Formula quartic = [](double c, double r) {
        return 1.0 + c * 0.002 + std::pow((r - 12.0) / 24.0, 4);
    };
    const Image strip = Build(Settings(3, 481, 25), Grid(481, 25, 7, 7, quartic));
    EXPECT_LE(LargestError(strip, quartic), Step(strip));
}

TEST(MultiPointImage, AllButThePolynomialPassThroughTheirPoints) {
    std::mt19937 random(5);
    std::vector<Point> points;
    for (int i = 0; i < 60; ++i)
        points.push_back({Draw(random, 72), Draw(random, 60), Draw(random, 2001) * 1e-3 - 1.0});
    points.push_back({7, 9, 1.25});
    // More than the equations of the splines are solved for at once.
    std::vector<Point> many = Grid(72, 60, 36, 30, [&](double, double) { return Draw(random, 100) / 99.0; });
    for (const std::vector<Point>& list : {points, many}) {
        for (const int method : {0, 1, 2, 4, 5}) {
            const Image image = Build(Settings(method, 72, 60), list);
            for (const Point& p : list) {
                ASSERT_NEAR(ValueAt(image, static_cast<int>(p.col), static_cast<int>(p.row)), p.value,
                            Step(image))
                    << method << " at " << p.col << ", " << p.row;
            }
        }
    }
}

/// Down to 68 % in the corners of 200 x 150 pels, with this power of the cosine.
Formula FallOff(double power) {
    return [power](double col, double row) {
        const double square = std::pow(col - 99.5, 2) + std::pow(row - 74.5, 2);
        const double corner = std::pow(0.68, -2 / power) - 1.0;
        return std::pow(1.0 + corner * square / (99.5 * 99.5 + 74.5 * 74.5), -power / 2);
    };
}

TEST(MultiPointImage, FortyNinePointsOfACornerFallOff) {
    const Formula lens = FallOff(3.7);
    for (const auto& [method, percent] : {std::pair{2, 0.3}, {4, 1.0}, {5, 4.0}, {1, 8.0}}) {
        const Image image = Build(Settings(method, 200, 150), Grid(200, 150, 7, 7, lens));
        EXPECT_LT(LargestError(image, lens), percent / 100) << method;
    }
}

TEST(MultiPointImage, BuiltFromTheInverseItFlattensTheField) {
    const Formula vignetting = FallOff(4);
    const auto points = Grid(200, 150, 7, 7, [&](double c, double r) { return 1.0 / vignetting(c, r); });
    for (const int method : {2, 3}) {
        const Image correction = Build(Settings(method, 200, 150), points);
        Image field =
            MakeImage(200, 150, [&](int c, int r) { return std::lround(40000 * vignetting(c, r)); });
        ASSERT_EQ(tqApplyMultiPointCalibration(field.Address(), correction), 0);
        for (const std::uint16_t pel : field.Values())
            ASSERT_NEAR(pel, 40000, 60) << "not flat within 0.15 %";
    }
}

/// A thin-plate spline over all its centres at every pel. The weights of a centre are its value.
Formula PlainSpline(const std::vector<Point>& centres) {
    return [centres](double col, double row) {
        double sum = 3.0 + 1e-3 * col - 2e-3 * row;
        for (const Point& p : centres) {
            const double square = (std::pow(col - p.col, 2) + std::pow(row - p.row, 2)) / 1e6;
            sum += square == 0.0 ? 0.0 : p.value * square * std::log(square);
        }
        return sum;
    };
}

/// Centres of a spline at the corners of parallelograms, with weights of both signs in turn: those are free
/// of any linear trend, so that the values there determine this spline and no other.
std::vector<Point> Centres(std::mt19937& random) {
    std::vector<Point> centres;
    for (int i = 0; i < 15; ++i) {
        const double col = Draw(random, 700) - 50, row = Draw(random, 500) - 50;
        const double weight = i % 3 == 0 ? 99 : 1 + Draw(random, 5);
        // Some of them next to each other, with a jump between them; some outside of the image.
        const double across = i % 3 == 0 ? 1 : 20 + Draw(random, 100), down = 10 + Draw(random, 100);
        centres.insert(centres.end(), {{col, row, weight},
                                       {col + across, row + 3, -weight},
                                       {col + across, row + 3 + down, weight},
                                       {col, row + down, -weight}});
    }
    return centres;
}

Formula PlainShepard(const std::vector<Point>& points) {
    return [points](double col, double row) {
        double sum = 0.0, norm = 0.0;
        for (const Point& p : points) {
            const double square = std::pow(col - p.col, 2) + std::pow(row - p.row, 2);
            if (square == 0.0) return p.value;
            sum += p.value / square;
            norm += 1.0 / square;
        }
        return sum / norm;
    };
}

TEST(MultiPointImage, OnLargeImagesTheyAreWhatTheirDefinitionsSay) {
    std::mt19937 random(3);
    std::vector<Point> rough;
    for (int i = 0; i < 60; ++i)
        rough.push_back({Draw(random, 900) - 100, Draw(random, 700) - 100, Draw(random, 100) / 99});
    std::vector<Point> bent = Centres(random);
    const Formula spline = PlainSpline(bent);
    for (Point& p : bent)
        p.value = spline(p.col, p.row);
    struct Case {
        TqMultiPointSettings settings;
        std::vector<Point> points;
        Formula plain;
    };
    for (const Case& c : {Case{Settings(0, 701, 501), rough, PlainShepard(rough)},
                          Case{Settings(4, 701, 501), bent, spline}}) {
        const Image image = Build(c.settings, c.points);
        double largest = 0.0;
        for (int row = 0; row < 501; row += 5) {
            for (int col = 0; col < 701; col += 5) {
                const double value = c.plain(col, row);
                largest = std::max(largest, std::abs(value));
                // Truncated to a step, and half a step off at most.
                ASSERT_NEAR(ValueAt(image, col, row), value, 1.5 * Step(image)) << col << ", " << row;
            }
        }
        EXPECT_GT(largest, 4000 * Step(image));
    }
}

// Odd about the middle column, which is all that is asked for: the surface is 0 there but for its roundings,
// and the error that is allowed beside the values of the points would be seen.
TEST(MultiPointImage, TheErrorIsSmallBesideWhatIsAskedFor) {
    std::mt19937 random(3);
    std::vector<Point> odd;
    for (int i = 0; i < 10; ++i) {
        const double side = 40 + Draw(random, 60), row = Draw(random, 501), value = Draw(random, 100);
        odd.push_back({350 + side, row, value});
        odd.push_back({350 - side, row, -value});
    }
    for (const auto& [method, roundings] : {std::pair{0, 1e-12}, std::pair{4, 3e-11}}) {
        TqMultiPointSettings narrow = Settings(method, 701, 501);
        narrow.MinColumn = narrow.MaxColumn = 350;
        EXPECT_LT(Build(narrow, odd).Header().LuxPerGrey * 32000.0, roundings) << method;
    }
}

TEST(MultiPointImage, HeaderAndEncoding) {
    Image image = Build(Settings(5, 31, 20), {{0, 0, 1.0}, {30, 0, -4.0}, {0, 19, 2.0}, {30, 19, 3.0}});
    const TqImageHeader h = image.Header();
    TqImageHeader expected{31, 20, 1.0f, 1.0f, 15.0f, 9.5f, 0.0, 4.0f / 32000, 0.0f, 32000.0f, 0.0f, 1, 1, 0};
    EXPECT_TRUE(SameHeader(h, expected));
    EXPECT_EQ(image(30, 0), 65536 - 32000);
    EXPECT_EQ(image(0, 0), 8000);
    EXPECT_EQ(image(30, 19), 24000);

    // Below -9998 there is no value, and it does not count as the largest; -9998 itself is one, that does not
    // count either.
    image = Build(Settings(5, 3, 1), {{0, 0, -9999}, {1, 0, 2}, {2, 0, -9998}});
    EXPECT_TRUE(SamePels(image, MakeImage(3, 1, {65535, 32000, (-9998 * 16000) & 0xFFFF})));
    image = Build(Settings(4, 3, 2), {{0, 0, 0}, {2, 1, 0}});
    EXPECT_EQ(image.Header().LuxPerGrey, 0.0f);
    EXPECT_TRUE(SamePels(image, Image(3, 2)));
}

TEST(MultiPointImage, ModesAndValidArea) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    // col - 2, of which the valid columns 1 .. 6 are -1 .. 4.
    const std::vector<Point> points{{0, 0, -2}, {7, 0, 5}, {0, 5, -2}, {7, 5, 5}};
    for (const auto& [mode, outside] : {std::pair{0, 8000}, {1, 65535}, {2, 65535}, {-7, 65535}}) {
        TqMultiPointSettings settings{mode, 8, 6, 5, {0, 0}, 0.5f, 1.0f, 6.0f, 4.9f};
        EXPECT_TRUE(SamePels(MakeImage(8, 6,
                                       [mode = mode, outside = outside](int col, int row) {
                                           const bool valid = col >= 1 && col <= 6 && row >= 1 && row <= 4;
                                           const int value = mode == 2 ? std::max(col - 2, 0) : col - 2;
                                           return valid ? 8000 * value : outside;
                                       }),
                             Build(settings, points)))
            << mode;
        settings.MinColumn = settings.MaxColumn = settings.MinRow = settings.MaxRow = nan;
        EXPECT_TRUE(
            SamePels(Build({mode, 8, 6, 5, {0, 0}, -9, -9, 99, 99}, points), Build(settings, points)));
        settings.MinColumn = 9.0f;
        const int none = mode == 0 ? 32000 : 0;
        EXPECT_TRUE(SamePels(MakeImage(8, 6, [=](int, int) { return none; }), Build(settings, points)));
    }
}

TEST(MultiPointImage, DegenerateListsStayWithinReason) {
    std::vector<Point> line, coincident, tiny, ring;
    for (int i = 0; i < 40; ++i) {
        line.push_back({10.0 + 3 * i, 5.0 + 2 * i, 1.0 + 0.01 * i});
        coincident.push_back({50, 40, 1.0 + 0.5 * (i % 2)});
        tiny.push_back({50 + 1e-4 * (i % 7), 40 + 1e-4 * (i % 5), 1.0 + 0.01 * i});
        ring.push_back({60 + 30 * std::cos(i * 0.157), 45 + 30 * std::sin(i * 0.157), 1.0 + 0.01 * i});
    }
    const double nan = std::numeric_limits<double>::quiet_NaN(), infinity = HUGE_VAL;
    for (const std::vector<Point>& list : std::initializer_list<std::vector<Point>>{
             line,
             coincident,
             tiny,
             ring,
             {{3, 4, 1.5}},
             {{3, 4, 1.5}, {90, 4, 1}},
             {{0, 0, 1}, {9, 0, 1.5}, {50, 50, 1.2}},
             {{nan, 0, 1}, {0, infinity, 1}, {5, 5, nan}, {1e300, 0, 1}, {7, 7, 1.25}},
             {{1e30, -1e30, 1}, {-1e38, 3, 1.5}, {4, 4, 1.25}}}) {
        for (int method = 0; method <= 5; ++method) {
            const double largest = Build(Settings(method, 120, 90), list).Header().LuxPerGrey * 32000.0;
            // Splines and polynomials may swing beyond the values; nothing may explode.
            EXPECT_LE(largest, method < 2 || method == 5 ? 1.5001 : 10.0) << list.size() << ": " << method;
            EXPECT_GE(largest, 0.99) << list.size() << ": " << method;
        }
    }
    for (int method = 0; method <= 5; ++method) {
        EXPECT_EQ(Build(Settings(method, 120, 90), {}).Header().LuxPerGrey, 0.0f);
        const Image huge = Build(Settings(method, 120, 90), {{3, 3, 3e38}, {9, 5, -3e38}, {60, 60, 3e38}});
        EXPECT_TRUE(std::isfinite(huge.Header().LuxPerGrey)) << method;
    }
}

TEST(MultiPointImage, ManyPoints) {
#ifdef __SANITIZE_ADDRESS__
    constexpr int kMany = 2000;  // a fortieth of the time, on the same paths
#else
    constexpr int kMany = 10000;
#endif
    std::mt19937 random(11);
    std::vector<Point> points;
    for (int i = 0; i < kMany; ++i) {
        const double col = Draw(random, 40000) / 1000;
        points.push_back({col, Draw(random, 30000) / 1000, 1 + col / 300});
    }
    // The polynomial and the spline share their code with method 2.
    for (const int method : {1, 2}) {
        const Image image = Build(Settings(method, 40, 30), points);
        EXPECT_LT(LargestError(image, [](double c, double) { return 1 + c / 300; }), 0.005) << method;
    }
}

TEST(MultiPointImage, EveryTypeOfElementAndTheirRefusals) {
    const auto field = [](int point, int f) {
        return f == 0 ? 5 * point : f == 1 ? point * point : 3 + point;
    };
    const TqMultiPointSettings settings = Settings(4, 20, 12);
    Image image;
    const auto build = [&](HostArray& list) {
        return tqBuildMultiPointImage(image.Address(), &settings, list.Address());
    };
    HostArray doubles = MakeDoubleArray(4, 3, field);
    ASSERT_EQ(build(doubles), 0);
    const Image expected = image;
    HostArray plain = MakeInt32Array(4, 3, field);
    plain->fFeatures = static_cast<USHORT>(plain->fFeatures & ~FADF_HAVEVARTYPE);
    HostArray same[] = {MakeInt32Array(4, 3, field), MakeInt16Array(4, 3, field),
                        MakeArray<float>(VT_R4, 4, 3, field), std::move(plain)};
    for (HostArray& list : same) {
        ASSERT_EQ(build(list), 0);
        EXPECT_TRUE(SamePels(expected, image));
    }
    std::pair<HostArray, std::int32_t> refusals[] = {
        {HostArray(VT_R8, {{3}}), 1},         {HostArray(VT_R8, {{2}, {2}, {3}}), 1},
        {HostArray(VT_UI2, {{2}, {3}}), 2},   {HostArray(VT_I8, {{2}, {3}}), 2},
        {HostArray(VT_R8, {{2}, {4}}), 3},    {HostArray(VT_I4, {{3}, {2}}), 3},
        {HostArray(VT_I4, {{2, 1}, {3}}), 4}, {HostArray(VT_I4, {{2}, {3, 1}}), 4}};
    for (auto& [list, status] : refusals) {
        EXPECT_EQ(build(list), status);
        EXPECT_EQ(list.Locks(), 0u);
    }
    HostArray none;
    EXPECT_EQ(build(none), 1);
    doubles->cLocks = 65535;
    EXPECT_EQ(build(doubles), 5);
    doubles->cLocks = 0;
    EXPECT_EQ(tqBuildMultiPointImage(image.Address(), &settings, nullptr), 1);
    EXPECT_EQ(tqBuildMultiPointImage(nullptr, &settings, doubles.Address()), -2);
    EXPECT_EQ(tqBuildMultiPointImage(image.Address(), nullptr, doubles.Address()), -2);
    for (const auto& [cols, rows] : {std::pair{0, 5}, std::pair{5, 8001}, std::pair{-1, 5}}) {
        const TqMultiPointSettings bad = Settings(0, cols, rows);
        EXPECT_EQ(tqBuildMultiPointImage(image.Address(), &bad, doubles.Address()), -2);
    }
    EXPECT_TRUE(SamePels(expected, image)) << "untouched by all refusals";
    EXPECT_EQ(doubles.Locks(), 0u);
}

#if defined(_WIN32)
LRESULT CALLBACK UnlockList(HWND window, UINT message, WPARAM first, LPARAM list) {
    if (message == WM_APP) SafeArrayUnlock(reinterpret_cast<SAFEARRAY*>(list));
    return DefWindowProcA(window, message, first, list);
}

/// Elsewhere no code of the host runs during the call.
TEST(MultiPointImage, AListThatTheHostUnlocksMeanwhile) {
    WNDCLASSA type{};
    type.lpfnWndProc = UnlockList;
    type.hInstance = GetModuleHandleA(nullptr);
    type.lpszClassName = "unlock";
    ASSERT_NE(RegisterClassA(&type), 0);
    HWND window =
        CreateWindowExA(0, "unlock", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, type.hInstance, nullptr);
    ASSERT_NE(window, nullptr);
    const std::vector<Point> points{{0, 0, 1}, {9, 0, 2}, {0, 9, 3}};
    const TqMultiPointSettings settings = Settings(5, 10, 10);
    HostArray list = List(points);
    Image image(2, 2);
    ASSERT_TRUE(PostMessageA(window, WM_APP, 0, reinterpret_cast<LPARAM>(list.Get())));
    EXPECT_EQ(tqBuildMultiPointImage(image.Address(), &settings, list.Address()), 6);
    EXPECT_TRUE(SamePels(image, Build(settings, points))) << "complete all the same";
    DestroyWindow(window);
}
#endif

}  // namespace
