#include "tqimage/multi_point_calibration.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "automation_host.h"
#include "contest.h"
#include "tqimage/image.h"

namespace tqbench {
namespace {

using benchmark::DoNotOptimize;

/// Where the peers are plain loops over all points, more than a second a turn tells nothing new.
constexpr std::int32_t kLargestSide = 4000;

enum Method : std::int32_t {
    kShepard = 0,
    kNeighbours = 1,
    kPolynomialSpline = 2,
    kPolynomial = 3,
    kSpline = 4,
    kTriangles = 5
};

/// Correction factors of a lens at places of an image.
struct PointCloud {
    std::vector<double> col, row, factor;

    PointCloud(std::size_t count, std::int32_t cols, std::int32_t rows) {
        std::mt19937 random(3);
        for (std::size_t i = 0; i < count; ++i) {
            const double x = static_cast<double>(random()) * 0x1p-32;
            const double y = static_cast<double>(random()) * 0x1p-32;
            col.push_back(x * cols);
            row.push_back(y * rows);
            factor.push_back(1.0 + 0.3 * ((x - 0.5) * (x - 0.5) + (y - 0.5) * (y - 0.5)));
        }
    }
};

void Build(TqImage** image, const NoiseImage& size, std::int32_t method, std::size_t count) {
    const TqMultiPointSettings settings{1, size.Cols(), size.Rows(), method, {0, 0}, 0.0f, 0.0f, 1e6f, 1e6f};
    const PointCloud points(count, size.Cols(), size.Rows());
    auto list = tqtest::MakeDoubleArray(static_cast<std::uint32_t>(count), 3, [&](int point, int field) {
        return (field == 0   ? points.col
                : field == 1 ? points.row
                             : points.factor)[static_cast<std::size_t>(point)];
    });
    DoNotOptimize(tqBuildMultiPointImage(image, &settings, list.Address()));
}

/// The mean of all points at every pel.
void PlainShepard(const PointCloud& points, cv::Mat& out) {
    for (int r = 0; r < out.rows; ++r) {
        for (int c = 0; c < out.cols; ++c) {
            double sum = 0.0, norm = 0.0;
            for (std::size_t i = 0; i < points.col.size(); ++i) {
                const double dx = c - points.col[i], dy = r - points.row[i];
                const double weight = 1.0 / (dx * dx + dy * dy + 1e-200);
                sum += weight * points.factor[i];
                norm += weight;
            }
            out.at<std::uint16_t>(r, c) = static_cast<std::uint16_t>(sum / norm * 16000);
        }
    }
}

/// Every point's term at every pel, with some weights: finding them is a small part of the work.
void PlainSpline(const PointCloud& points, cv::Mat& out) {
    for (int r = 0; r < out.rows; ++r) {
        for (int c = 0; c < out.cols; ++c) {
            double sum = 1.0;
            for (std::size_t i = 0; i < points.col.size(); ++i) {
                const double dx = c - points.col[i], dy = r - points.row[i];
                const double square = dx * dx + dy * dy + 1e-200;
                sum += 1e-9 * points.factor[i] * square * std::log(square);
            }
            out.at<std::uint16_t>(r, c) = static_cast<std::uint16_t>(std::abs(sum) * 16000);
        }
    }
}

void PlainPolynomial(const PointCloud& points, cv::Mat& out) {
    const double* k = points.factor.data();
    for (int r = 0; r < out.rows; ++r) {
        const double y = r * 1e-3;
        for (int c = 0; c < out.cols; ++c) {
            const double x = c * 1e-3;
            const double value =
                k[0] + x * (k[1] + x * (k[2] + x * (k[3] + x * k[4]))) +
                y * (k[5] + x * (k[6] + x * (k[7] + x * k[8])) +
                     y * (k[9] + x * (k[10] + x * k[11]) + y * (k[12] + x * k[13] + y * k[14])));
            out.at<std::uint16_t>(r, c) = static_cast<std::uint16_t>(value);
        }
    }
}

using Peer = void (*)(const PointCloud&, cv::Mat&);

void RegisterSurface(const char* name, Method method, Peer peer, std::size_t count) {
    Contest contest{std::string("multipoint/") + name + "/" + std::to_string(count),
                    [=](const NoiseImage& image) {
                        static TqImage* correction = nullptr;
                        Build(&correction, image, method, count);
                    },
                    {}};
    if (peer != nullptr) {
        contest.peer = [=](const NoiseImage& image) {
            cv::Mat out(image.Rows(), image.Cols(), CV_16UC1);
            peer(PointCloud(count, image.Cols(), image.Rows()), out);
            DoNotOptimize(out.data);
        };
    }
    contest.largestSide = kLargestSide;
    Register(contest);
}

/// A copy of the noise for every turn, for the correction replaces the image.
struct Corrected {
    TqImage* image = nullptr;
    TqImage* correction = nullptr;
    cv::Mat factors;
};

void RegisterApplication() {
    static Corrected turn;
    Register(
        {"multipoint/apply",
         [](const NoiseImage&) { DoNotOptimize(tqApplyMultiPointCalibration(&turn.image, turn.correction)); },
         [](const NoiseImage& image) {
             cv::Mat out;
             cv::multiply(image.Mat(), turn.factors, out, 1.0, CV_16U);
             DoNotOptimize(out.data);
         },
         false,
         [](const NoiseImage& image) {
             DoNotOptimize(tqGlobalCopy(&turn.image, image.Get()));
             TqImageHeader header{};
             if (turn.correction != nullptr) tqGetImageInfo(&header, turn.correction);
             if (header.PelCols == image.Cols() && header.PelRows == image.Rows()) return;
             Build(&turn.correction, image, kPolynomial, 49);
             turn.factors = cv::Mat(image.Rows(), image.Cols(), CV_32FC1, cv::Scalar(1.1));
         }});
}

[[maybe_unused]] const bool kRegistered = [] {
    for (const std::size_t count : {25u, 100u, 500u}) {
        RegisterSurface("shepard", kShepard, PlainShepard, count);
        RegisterSurface("neighbours", kNeighbours, nullptr, count);
        RegisterSurface("spline", kSpline, PlainSpline, count);
        RegisterSurface("polynomial_spline", kPolynomialSpline, nullptr, count);
        RegisterSurface("polynomial", kPolynomial, PlainPolynomial, count);
        RegisterSurface("triangles", kTriangles, nullptr, count);
    }
    RegisterApplication();
    return true;
}();

}  // namespace
}  // namespace tqbench
