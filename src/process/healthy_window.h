#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

#include "core/image_view.h"
#include "core/window.h"

namespace tq {

/// Sums of the healthy pels in the shifted windows around pels that are visited in raster order, while an
/// image is repaired in place. Whether a pel is healthy follows from its value and its index in the image:
/// `bool Health(Pel, std::size_t)`.
///
/// Few visits add up their windows one by one. Many go through sums of the columns, so that the whole image
/// costs about the same for every window and every number of visits. Nothing is allocated: the repairs have
/// no status for a lack of memory.
template <class Health>
class HealthyWindow {
  public:
    struct Pels {
        std::uint64_t sum = 0;
        std::uint64_t count = 0;
    };

    /// Width and height must fit into the image, 0 included; `visits` is how many pels will be asked about.
    HealthyWindow(const ImageView& image, std::int32_t width, std::int32_t height, std::uint64_t visits,
                  Health health)
        : image_(image),
          width_(width),
          height_(height),
          oneByOne_(visits * (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height)) <=
                    image.Count()),
          health_(health) {
        std::fill_n(sums_.begin(), image.cols, 0U);
        std::fill_n(counts_.begin(), image.cols, 0U);
    }

    Reach Cols(std::int32_t col) const noexcept { return ShiftedReach(col, width_, image_.cols); }
    Reach Rows(std::int32_t row) const noexcept { return ShiftedReach(row, height_, image_.rows); }

    /// The row of the next visits. It never goes back.
    void MoveTo(std::int32_t row) noexcept {
        rows_ = Rows(row);
        if (oneByOne_) return;
        if (band_.last < rows_.first) {  // nothing shared
            std::fill_n(sums_.begin(), image_.cols, 0U);
            std::fill_n(counts_.begin(), image_.cols, 0U);
            band_ = {rows_.first, rows_.first - 1};
        }
        while (band_.first < rows_.first)
            AddRow(band_.first++, ~0U);
        while (band_.last < rows_.last)
            AddRow(++band_.last, 1U);
        cols_ = {0, -1};
        inWindow_ = {};
    }

    /// The healthy pels around this column, which lies right of the last one asked about in this row.
    Pels At(std::int32_t col) noexcept {
        const Reach cols = Cols(col);
        if (oneByOne_) return Sum(cols);
        if (cols_.last < cols.first) {
            inWindow_ = {};
            cols_ = {cols.first, cols.first - 1};
        }
        for (; cols_.first < cols.first; ++cols_.first) {
            inWindow_.sum -= sums_[Index(cols_.first)];
            inWindow_.count -= counts_[Index(cols_.first)];
        }
        while (cols_.last < cols.last) {
            ++cols_.last;
            inWindow_.sum += sums_[Index(cols_.last)];
            inWindow_.count += counts_[Index(cols_.last)];
        }
        return inWindow_;
    }

    /// Tells that the pel asked about last has been given this value and is healthy now.
    void Admit(std::int32_t col, Pel value) noexcept {
        sums_[Index(col)] += value;
        ++counts_[Index(col)];
        inWindow_.sum += value;
        ++inWindow_.count;
    }

  private:
    static std::size_t Index(std::int32_t at) noexcept { return static_cast<std::size_t>(at); }

    Pels Sum(Reach cols) const noexcept {
        Pels pels;
        for (std::int32_t row = rows_.first; row <= rows_.last; ++row) {
            const std::size_t start = Index(row) * Index(image_.cols);
            for (std::int32_t col = cols.first; col <= cols.last; ++col) {
                const Pel pel = image_.pels[start + Index(col)];
                if (!health_(pel, start + Index(col))) continue;
                pels.sum += pel;
                ++pels.count;
            }
        }
        return pels;
    }

    /// Adds a row once, or takes it off again with a sign of ~0, which is -1 modulo 2^32. 8000 pels of a
    /// column stay below 2^32.
    void AddRow(std::int32_t row, std::uint32_t sign) noexcept {
        const std::size_t start = Index(row) * Index(image_.cols);
        const Pel* const pels = image_.pels + start;
        for (std::size_t col = 0; col < Index(image_.cols); ++col) {
            const bool healthy = health_(pels[col], start + col);
            sums_[col] += sign * (healthy ? pels[col] : 0U);
            counts_[col] += sign * (healthy ? 1U : 0U);
        }
    }

    ImageView image_;
    std::int32_t width_;
    std::int32_t height_;
    bool oneByOne_;
    Health health_;
    Reach rows_{0, -1};  ///< of the window
    Reach band_{0, -1};  ///< rows that the columns sum
    Reach cols_{0, -1};  ///< columns that inWindow_ sums
    Pels inWindow_;
    std::array<std::uint32_t, kMaxSide> sums_;
    std::array<std::uint32_t, kMaxSide> counts_;
};

}  // namespace tq
