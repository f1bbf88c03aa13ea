#pragma once

#include <cstdint>
#include <stdexcept>

#include "images.h"
#include "tqimage/distortion.h"
#include "tqimage/image.h"

namespace tqtest {

/// A host's distortion map, filled through the library and released with the scope.
class Map {
  public:
    /// No map yet.
    Map() = default;
    Map(std::int32_t cols, std::int32_t rows) : info_(DefaultHeader(cols, rows)) {
        if (tqCreateDistortionImage(&map_, &info_) != 0) throw std::runtime_error("no memory for a test map");
    }
    Map(const Map&) = delete;
    Map& operator=(const Map&) = delete;
    ~Map() {
        // Maps and images are released by the same function.
        auto* block = reinterpret_cast<TqImage*>(map_);
        tqImageFree(&block);
    }

    operator const TqDistortionMap*() const noexcept { return map_; }
    /// For functions that replace the map; its size may be another one afterwards.
    TqDistortionMap** Address() noexcept { return &map_; }
    TqDistortionMap& Head() const noexcept { return *map_; }
    void Put(std::int32_t col, std::int32_t row, float sourceCol, float sourceRow) {
        if (tqPutDistortionPel(map_, &info_, col, row, sourceCol, sourceRow) != 0) {
            throw std::out_of_range("no such entry");
        }
    }
    /// Sets every entry (col, row) to fn(col, row), a pair of float.
    template <class Fn>
    Map& Fill(Fn&& fn) {
        for (std::int32_t row = 0; row < info_.PelRows; ++row) {
            for (std::int32_t col = 0; col < info_.PelCols; ++col) {
                const auto [sourceCol, sourceRow] = fn(col, row);
                Put(col, row, sourceCol, sourceRow);
            }
        }
        return *this;
    }
    const float* Entry(std::int32_t col, std::int32_t row) const noexcept {
        const auto* entries = reinterpret_cast<const float*>(map_ + 1);
        return entries + 2 * (static_cast<std::ptrdiff_t>(row) * map_->Cols + col);
    }

  private:
    TqImageHeader info_{};
    TqDistortionMap* map_ = nullptr;
};

}  // namespace tqtest
