#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "kernels/bilinear.h"
#include "kernels/map_row.h"
#include "kernels/rotate_row.h"
#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;
using tq::Pel;

struct Image {
    Image(std::int32_t c, std::int32_t r)
        : cols(c), rows(r), pels(tqtest::HostilePels(static_cast<std::size_t>(c * r), 11)) {}

    kernels::SourcePels Source() const { return {pels.data(), cols, rows}; }
    double At(std::int32_t col, std::int32_t row) const {
        return pels[static_cast<std::size_t>(row * cols + col)];
    }
    /// The truncated value at a place of one of the pels, straight from the definition.
    Pel Sample(float col, float row) const {
        const auto i = std::min(static_cast<std::int32_t>(col), std::max(cols - 2, 0));
        const auto j = std::min(static_cast<std::int32_t>(row), std::max(rows - 2, 0));
        const double fx = cols == 1 ? 0.0 : static_cast<double>(col) - i;
        const double fy = rows == 1 ? 0.0 : static_cast<double>(row) - j;
        const std::int32_t right = std::min(i + 1, cols - 1), below = std::min(j + 1, rows - 1);
        double value = (1.0 - fy) * fx * At(right, j) + (1.0 - fy) * (1.0 - fx) * At(i, j);
        value += fx * fy * At(right, below);
        value += fy * (1.0 - fx) * At(i, below);
        return static_cast<Pel>(static_cast<std::int32_t>(value) & 0xFFFF);
    }

    std::int32_t cols;
    std::int32_t rows;
    std::vector<Pel> pels;
};

const std::vector<Image>& Images() {
    static const std::vector<Image> images{{1, 1}, {1, 9}, {9, 1}, {2, 2}, {37, 23}};
    return images;
}

/// Places in and around an image, on its pels and borders, and such as no image has.
std::vector<float> HostilePlaces(const Image& image, std::size_t count) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    std::mt19937 random(12);
    std::vector<float> places;
    for (std::size_t i = 0; i < 2 * count; ++i) {
        const auto size = static_cast<float>(i % 2 == 0 ? image.cols : image.rows);
        const float borders[] = {-0.0f,         size - 1.0f, size,       std::nextafter(size, 0.0f),
                                 -1e-30f,       1e30f,       -kInfinity, kInfinity,
                                 std::nanf(""), -1.0f};
        const auto draw = static_cast<std::uint32_t>(random());
        const auto part = static_cast<float>(draw >> 8) / 16777216.0f;
        if (draw % 8 == 0) {
            places.push_back(borders[(draw >> 4) % 10]);
        } else {
            places.push_back(draw % 8 == 1 ? std::floor(part * size) : part * (size + 0.5f) - 0.25f);
        }
    }
    return places;
}

// Beyond 128 places a second block begins.
TEST(ResamplingKernels, MapsAreSampledAlikeOnEveryTarget) {
    constexpr std::size_t kMost = 300;
    // An unbinned image in the corner, and one binned 2 x 3 somewhere on the sensor.
    constexpr kernels::SensorWindow kWindows[] = {{0, 0, 1, 1}, {2, 0, 1, 1}, {1, 3, 2, 3}};
    for (const Image& image : Images()) {
        const std::vector<float> places = HostilePlaces(image, kMost);
        const auto clamped = [](float at, float offset, float step, std::int32_t size) {
            return std::clamp((at - offset) / step, 0.0f, static_cast<float>(size - 1));
        };
        std::vector<Pel> within(kMost, 0);
        std::vector<Pel> onSensor[std::size(kWindows)];
        for (std::size_t i = 0; i < kMost; ++i) {
            const float col = places[2 * i], row = places[2 * i + 1];
            const bool any = col >= 0.0f && row >= 0.0f;
            if (any && col < static_cast<float>(image.cols) && row < static_cast<float>(image.rows))
                within[i] = image.Sample(col, row);
            for (std::size_t w = 0; w < std::size(kWindows); ++w) {
                const kernels::SensorWindow& at = kWindows[w];
                onSensor[w].push_back(
                    any ? std::max(image.Sample(clamped(col, at.col, at.colStep, image.cols),
                                                clamped(row, at.row, at.rowStep, image.rows)),
                                   Pel{1})
                        : Pel{0});
            }
        }
        tqtest::ForEachTarget([&] {
            for (std::size_t count = 0; count <= kMost; count += count < 40 ? 1 : 37) {
                const auto expectLike = [&](const std::vector<Pel>& expected, auto&& sample) {
                    tqtest::ExpectRun<Pel>(count, sample, [&](std::size_t i) { return expected[i]; });
                };
                expectLike(within, [&](Pel* out) {
                    kernels::SampleWithin(image.Source(), places.data(), count, out);
                });
                for (std::size_t w = 0; w < std::size(kWindows); ++w) {
                    expectLike(onSensor[w], [&](Pel* out) {
                        kernels::SampleClamped(image.Source(), places.data(), count, kWindows[w], out);
                    });
                }
            }
        });
    }
}

// Every direction, so that the run of inside pels starts at each border; the centre far away leaves places
// that are coarser than pels.
TEST(ResamplingKernels, TurnedRowsAreTheSameOnEveryTarget) {
    constexpr std::int32_t kCols = 200;
    for (const Image& image : Images()) {
        for (const float centre : {0.0f, 11.25f, 3e6f}) {
            for (int turn = 0; turn < 16; ++turn) {
                const auto angle = static_cast<float>(turn) * 0.39f;
                const kernels::RotationBack back{std::sin(angle), std::cos(angle), centre, centre * 0.5f,
                                                 -60.5f};
                for (const float y : {-30.0f, -8.5f, 0.0f, 7.0f}) {
                    SCOPED_TRACE(testing::Message()
                                 << image.cols << " x " << image.rows << ", turn " << turn);
                    const auto plain = [&](std::size_t i) {
                        const float dx = static_cast<float>(i) + back.left - back.centreCol;
                        const float dy = y + back.centreRow;
                        const float col = back.cosine * dx - back.sine * dy + back.centreCol;
                        const float row = -(back.sine * dx + back.cosine * dy - back.centreRow);
                        const bool inside = col >= 0.0f && col < static_cast<float>(image.cols) &&
                                            row >= 0.0f && row < static_cast<float>(image.rows);
                        return inside ? image.Sample(col, row) : Pel{0};
                    };
                    tqtest::ForEachTarget([&] {
                        tqtest::ExpectRun<Pel>(
                            kCols, [&](Pel* out) { kernels::RotateRow(image.Source(), back, y, out, kCols); },
                            plain);
                    });
                }
            }
        }
    }
}

// Weights beyond 1 extrapolate: values leave the range of a pel on both sides and wrap. Places a few cells
// apart, in either direction, are fetched four at a time, others one by one; rows of one pel have no cell.
TEST(ResamplingKernels, RowsBlendAlikeOnEveryTarget) {
    for (const std::int32_t cols : {1, 7, 8, 90}) {
        const Image image(cols, 2);
        for (const int step : {0, 1, 2, 3, -1, 31}) {
            for (const double row : {0.0, 0.375, 1.0, 1.96875}) {
                constexpr std::size_t kMost = 81;
                std::vector<std::int32_t> cells;
                std::vector<double> weights;
                std::vector<Pel> down, nearest;
                for (std::size_t i = 0; i < kMost; ++i) {
                    const int last = std::max(cols - 2, 0), at = static_cast<int>(i) * step;
                    cells.push_back(step < 0 ? std::max(last + at, 0) : at % (last + 1));
                    weights.push_back(cols == 1 ? 0.0 : static_cast<double>(i * 7 % 64) / 32.0);
                    const std::int32_t left = cells[i], right = std::min(left + 1, cols - 1);
                    const double fx = weights[i];
                    double value = (1.0 - row) * fx * image.At(right, 0);
                    value += (1.0 - row) * (1.0 - fx) * image.At(left, 0);
                    value += fx * row * image.At(right, 1);
                    value += row * (1.0 - fx) * image.At(left, 1);
                    down.push_back(static_cast<Pel>(static_cast<std::int32_t>(value) & 0xFFFF));
                    nearest.push_back(static_cast<Pel>(static_cast<std::int32_t>(value + 0.5) & 0xFFFF));
                }
                tqtest::ForEachTarget([&] {
                    for (std::size_t count = 0; count <= kMost; count += count < 20 ? 1 : 20) {
                        const auto groups = kernels::GroupPlaces(cells.data(), count, cols);
                        const kernels::RowPlaces places{cells.data(), count, cols, groups.data(),
                                                        groups.size()};
                        std::vector<kernels::PelPair> near(count), far(count);
                        kernels::PairUp(image.pels.data(), places, near.data());
                        kernels::PairUp(image.pels.data() + cols, places, far.data());
                        for (const bool rounded : {false, true}) {
                            tqtest::ExpectRun<Pel>(
                                count,
                                [&](Pel* out) {
                                    kernels::BlendRow(near.data(), far.data(), weights.data(), count, row,
                                                      rounded ? 0.5 : 0.0, out);
                                },
                                [&](std::size_t i) { return (rounded ? nearest : down)[i]; });
                        }
                    }
                });
            }
        }
    }
}

}  // namespace
