#include "lens_map.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

#include "failure.h"
#include "files.h"
#include "tqimage/distortion.h"
#include "tqimage/image.h"

namespace cli {
namespace {

static_assert(std::endian::native == std::endian::little,
              "map files hold the low byte first, as memory does");

TqImageHeader SizeOnly(std::int32_t cols, std::int32_t rows) {
    TqImageHeader info{};
    info.PelCols = cols;
    info.PelRows = rows;
    return info;
}

constexpr std::size_t MapBytes(std::size_t cols, std::size_t rows) {
    return sizeof(TqDistortionMap) + cols * rows * 2 * sizeof(float);
}

}  // namespace

void LensMap::Free::operator()(TqDistortionMap* map) const noexcept {
    // Maps are blocks as images are, and go the same way.
    auto* block = reinterpret_cast<TqImage*>(map);
    tqImageFree(&block);
}

LensMap::LensMap(std::int32_t cols, std::int32_t rows) {
    const TqImageHeader info = SizeOnly(cols, rows);
    TqDistortionMap* map = nullptr;
    if (tqCreateDistortionImage(&map, &info) != 0) throw std::bad_alloc();
    map_.reset(map);
}

std::size_t LensMap::Size() const noexcept {
    return MapBytes(map_->Cols, map_->Rows);
}

std::string LensMap::Bytes() const {
    return {reinterpret_cast<const char*>(map_.get()), Size()};
}

LensMap LensMap::Read(const std::string& path) {
    const std::string bytes = ReadFile(path);
    TqDistortionMap head{};
    if (bytes.size() < sizeof head) FailFile(path, "not a lens map (shorter than its head)");
    std::memcpy(&head, bytes.data(), sizeof head);
    if (head.Cols < 1 || head.Rows < 1 || bytes.size() != MapBytes(head.Cols, head.Rows)) {
        FailFile(path, "not a lens map (its head and its length disagree)");
    }
    LensMap map(head.Cols, head.Rows);
    std::memcpy(map.map_.get(), bytes.data(), bytes.size());
    return map;
}

LensMap LensMap::FromRadial(const RadialLens& lens, std::array<double, 2> center, std::int32_t cols,
                            std::int32_t rows) {
    LensMap map(cols, rows);
    map.map_->CenterCol = static_cast<float>(center[0]);
    map.map_->CenterRow = static_cast<float>(center[1]);
    const TqImageHeader info = SizeOnly(cols, rows);
    for (std::int32_t row = 0; row < rows; ++row) {
        for (std::int32_t col = 0; col < cols; ++col) {
            auto [sourceCol, sourceRow] = lens.Captured(col, row);
            // A border pel reaches half a pel beyond its centre.
            const bool seen =
                sourceCol >= -0.5 && sourceCol <= cols - 0.5 && sourceRow >= -0.5 && sourceRow <= rows - 0.5;
            sourceCol = seen ? std::clamp(sourceCol, 0.0, cols - 1.0) : -1.0;
            sourceRow = seen ? std::clamp(sourceRow, 0.0, rows - 1.0) : -1.0;
            tqPutDistortionPel(map.map_.get(), &info, col, row, static_cast<float>(sourceCol),
                               static_cast<float>(sourceRow));
        }
    }
    return map;
}

}  // namespace cli
