#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "images.h"

/// The rules of the shapes once more, pel by pel and as slow as they read.
namespace tqtest {

struct Position {
    std::int32_t col;
    std::int32_t row;
};

/// The pels a region visits, in row order.
using Visited = std::vector<Position>;

inline std::vector<std::uint16_t> ValuesAt(const Image& image, const Visited& visited) {
    std::vector<std::uint16_t> values;
    for (const Position& at : visited)
        values.push_back(image(at.col, at.row));
    return values;
}

inline Visited RectangleReference(const Image& image, std::int32_t left, std::int32_t top, std::int32_t right,
                                  std::int32_t bottom) {
    const std::int32_t lastCol = image.Cols() - 1;
    const std::int32_t lastRow = image.Rows() - 1;
    right = std::clamp(right, 0, lastCol) == 0 ? lastCol : std::min(right, lastCol);
    bottom = std::clamp(bottom, 0, lastRow) == 0 ? lastRow : std::min(bottom, lastRow);
    Visited visited;
    for (std::int32_t row = std::clamp(top, 0, lastRow); row <= bottom; ++row) {
        for (std::int32_t col = std::clamp(left, 0, lastCol); col <= right; ++col)
            visited.push_back({col, row});
    }
    return visited;
}

inline Visited EllipseReference(const Image& image, std::int32_t centerCol, std::int32_t centerRow,
                                std::int32_t width, std::int32_t height) {
    const std::int64_t boxCol = std::clamp(centerCol, 0, image.Cols() - 1);
    const std::int64_t boxRow = std::clamp(centerRow, 0, image.Rows() - 1);
    const double a = 0.5 * width;
    const double b = 0.5 * height;
    Visited visited;
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        if (row < boxRow - height / 2 || row > boxRow + height / 2) continue;
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            if (col < boxCol - width / 2 || col > boxCol + width / 2) continue;
            const double x = static_cast<double>(col) - centerCol;
            const double y = static_cast<double>(row) - centerRow;
            if (x * x / (a * a) + y * y / (b * b) <= 1.0) visited.push_back({col, row});
        }
    }
    return visited;
}

inline double SumOf(const Image& image, const Visited& visited) {
    std::uint64_t sum = 0;
    for (const Position& at : visited)
        sum += image(at.col, at.row);
    return static_cast<double>(sum);
}

/// 0 where nothing is visited.
inline double MeanOf(const Image& image, const Visited& visited) {
    return visited.empty() ? 0.0 : SumOf(image, visited) / static_cast<double>(visited.size());
}

/// Mean of the pels left .. right, top .. bottom, which lie inside the image.
inline double RectangleMean(const Image& image, std::int64_t left, std::int64_t top, std::int64_t right,
                            std::int64_t bottom) {
    std::uint64_t sum = 0;
    for (std::int64_t row = top; row <= bottom; ++row) {
        for (std::int64_t col = left; col <= right; ++col) {
            sum += image(static_cast<std::int32_t>(col), static_cast<std::int32_t>(row));
        }
    }
    return static_cast<double>(sum) / static_cast<double>((right - left + 1) * (bottom - top + 1));
}

inline double BlockReference(const Image& image, std::int32_t centerCol, std::int32_t centerRow,
                             std::int32_t width, std::int32_t height) {
    const std::int64_t cols = image.Cols();
    const std::int64_t rows = image.Rows();
    width = std::max(width, 1);
    height = std::max(height, 1);
    const std::int64_t left =
        std::max<std::int64_t>(std::clamp<std::int64_t>(centerCol, 0, cols - 1) - width / 2, 0);
    const std::int64_t top =
        std::max<std::int64_t>(std::clamp<std::int64_t>(centerRow, 0, rows - 1) - height / 2, 0);
    return RectangleMean(image, left, top, std::min(left + width, cols) - 1,
                         std::min(top + height, rows) - 1);
}

/// An ellipse without a pel reads the centre as 1-based co-ordinates; one without extent as 0-based.
inline double EllipseBlockReference(const Image& image, std::int32_t centerCol, std::int32_t centerRow,
                                    std::int32_t width, std::int32_t height) {
    if (width == 0 || height == 0) {
        return image(std::clamp(centerCol, 0, image.Cols() - 1), std::clamp(centerRow, 0, image.Rows() - 1));
    }
    const Visited visited = EllipseReference(image, centerCol, centerRow, width, height);
    if (!visited.empty()) return MeanOf(image, visited);
    return image(std::clamp(centerCol, 1, image.Cols()) - 1, std::clamp(centerRow, 1, image.Rows()) - 1);
}

}  // namespace tqtest
