#include "tqimage/test_patterns.h"

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <cstdint>

#include "contest.h"

namespace tqbench {
namespace {

using benchmark::DoNotOptimize;

const cv::Scalar kWhite(65535);

/// ours(image**, cols, rows) makes the pattern; peer(picture) draws the same on black.
template <class Ours, class Peer>
void RegisterPattern(const char* name, Ours ours, Peer peer) {
    Register({name,
              [ours](const NoiseImage& size) {
                  static TqImage* image = nullptr;
                  DoNotOptimize(ours(&image, size.Cols(), size.Rows()));
                  tqImageFree(&image);
              },
              [peer](const NoiseImage& size) {
                  cv::Mat picture = cv::Mat::zeros(size.Rows(), size.Cols(), CV_16UC1);
                  peer(picture);
                  DoNotOptimize(picture.data);
              }});
}

/// 50 x 40 dots that fill about a third of the image.
constexpr std::int32_t kDotsX = 50, kDotsY = 40;

void Dots(cv::Mat& picture) {
    const int stepX = picture.cols / kDotsX, stepY = picture.rows / kDotsY;
    for (int j = 0; j < kDotsY; ++j) {
        for (int i = 0; i < kDotsX; ++i)
            cv::circle(picture, {stepX / 2 + i * stepX, stepY / 2 + j * stepY}, stepY / 3, kWhite,
                       cv::FILLED);
    }
}

void Checkerboard(cv::Mat& picture) {
    const int width = picture.cols / 8, height = picture.rows / 6;
    for (int j = 0; j < 6; ++j) {
        for (int i = j % 2; i < 8; i += 2)
            cv::rectangle(picture, cv::Rect(i * width, j * height, width, height), kWhite, cv::FILLED);
    }
}

void Grid(cv::Mat& picture) {
    const int stepX = picture.cols / kDotsX, stepY = picture.rows / kDotsY;
    for (int i = 0; i < kDotsX; ++i)
        cv::rectangle(picture, cv::Rect(i * stepX, 0, 3, picture.rows), kWhite, cv::FILLED);
    for (int j = 0; j < kDotsY; ++j)
        cv::rectangle(picture, cv::Rect(0, j * stepY, picture.cols, 3), kWhite, cv::FILLED);
}

void GreyBands(cv::Mat& picture) {
    const int width = picture.cols / 16;
    for (int k = 0; k < 16; ++k)
        cv::rectangle(picture, cv::Rect(k * width, 0, width, picture.rows), cv::Scalar(k * 4369), cv::FILLED);
}

/// The nested frames, each one a rectangle inside the one before.
void Frames(cv::Mat& picture) {
    for (int k = 0; k < 10; ++k) {
        const int inset = k * 20;
        cv::rectangle(picture, cv::Rect(inset, inset, picture.cols - 2 * inset, picture.rows - 2 * inset),
                      k % 2 == 0 ? kWhite : cv::Scalar(0), cv::FILLED);
    }
}

/// The zones of a Fresnel plate, each one a disc on the one before.
void Zones(cv::Mat& picture) {
    constexpr int kZones = 100;
    const double first = 0.05 * picture.rows;
    for (int k = kZones; k > 0; --k) {
        cv::circle(picture, {picture.cols / 2, picture.rows / 2}, cvRound(first * std::sqrt(k)),
                   k % 2 == 0 ? cv::Scalar(0) : kWhite, cv::FILLED);
    }
}

[[maybe_unused]] const bool kRegistered =
    (RegisterPattern(
         "pattern/dots",
         [](TqImage** image, std::int32_t cols, std::int32_t rows) {
             const std::int32_t stepX = cols / kDotsX, stepY = rows / kDotsY;
             return tqCreateDotPattern(image, cols, rows, stepX / 2, stepY / 2, kDotsX, kDotsY, stepX, stepY,
                                       stepY / 3);
         },
         Dots),
     RegisterPattern(
         "pattern/grid",
         [](TqImage** image, std::int32_t cols, std::int32_t rows) {
             return tqCreateGridPattern(image, cols, rows, 0, 0, kDotsX, kDotsY, cols / kDotsX, rows / kDotsY,
                                        3);
         },
         Grid),
     RegisterPattern(
         "pattern/checkerboard",
         [](TqImage** image, std::int32_t cols, std::int32_t rows) {
             return tqCreateCheckerboardPattern(image, cols, rows, 8, 6, 1);
         },
         Checkerboard),
     RegisterPattern(
         "pattern/grey_bands",
         [](TqImage** image, std::int32_t cols, std::int32_t rows) {
             return tqCreateGrayScaleImage(image, 16, cols, rows);
         },
         GreyBands),
     RegisterPattern(
         "pattern/frames",
         [](TqImage** image, std::int32_t cols, std::int32_t rows) {
             return tqCreateBorderPattern(image, 10, nullptr, cols, rows, 20, 20, 0);
         },
         Frames),
     RegisterPattern(
         "pattern/zones",
         [](TqImage** image, std::int32_t cols, std::int32_t rows) {
             return tqCreateZonePattern(image, cols, rows, rows / 20, 100, 1);
         },
         Zones),
     true);

}  // namespace
}  // namespace tqbench
