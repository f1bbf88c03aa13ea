#include "kernels/median_ranks.h"

#include <algorithm>
#include <bit>
#include <numeric>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/median_ranks.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

// Compiled for each instruction set although it has no vectors: the newer ones count bits in one step.
HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

/// Sorts the pels' places by level, equal levels by place: two passes of a radix sort, low byte first.
void SortByLevel(const std::vector<std::uint16_t>& levels, std::vector<std::uint32_t>& order,
                 std::vector<std::uint32_t>& spare) {
    std::iota(order.begin(), order.end(), 0U);
    for (const int shift : {0, 8}) {
        std::uint32_t starts[257] = {};
        for (const std::uint16_t level : levels)
            ++starts[((level >> shift) & 0xFF) + 1];
        std::partial_sum(starts, starts + 257, starts);
        for (const std::uint32_t place : order)
            spare[starts[(levels[place] >> shift) & 0xFF]++] = place;
        order.swap(spare);
    }
}

/// The ranks in a window of so many pels. The middle is looked for from where it was last: `below` counts the
/// ranks in the words before `word_`. With kLit the first ranks, `dark` of them, are those of pels of 0: they
/// are held like the others, and the middle of the others lies so many ranks further on.
template <bool kLit>
class RankSet {
  public:
    RankSet(std::vector<std::uint64_t>& words, std::size_t pels, std::size_t dark)
        : words_(words.data()), pels_(pels), dark_(dark) {}

    HWY_INLINE void Add(std::uint32_t rank) {
        words_[rank >> 6] |= std::uint64_t{1} << (rank & 63);
        below_ += (rank >> 6) < word_ ? 1 : 0;
        if (kLit) darkHeld_ += rank < dark_ ? 1 : 0;
    }
    HWY_INLINE void Remove(std::uint32_t rank) {
        words_[rank >> 6] &= ~(std::uint64_t{1} << (rank & 63));
        below_ -= (rank >> 6) < word_ ? 1 : 0;
        if (kLit) darkHeld_ -= rank < dark_ ? 1 : 0;
    }

    /// Of a complete window, so that the middle exists; where all pels are 0, the rank of one of them.
    HWY_INLINE std::uint32_t Middle() {
        const std::size_t middle =
            kLit ? std::min(darkHeld_ + (pels_ - darkHeld_) / 2, pels_ - 1) : pels_ / 2;
        while (below_ > middle)
            below_ -= Count(--word_);
        for (std::size_t here = Count(word_); below_ + here <= middle; here = Count(word_)) {
            below_ += here;
            ++word_;
        }
        std::uint64_t bits = words_[word_];
        for (std::size_t skip = middle - below_; skip > 0; --skip)
            bits &= bits - 1;
        return static_cast<std::uint32_t>(word_ * 64) + static_cast<std::uint32_t>(std::countr_zero(bits));
    }

  private:
    HWY_INLINE std::size_t Count(std::size_t word) const {
        return static_cast<std::size_t>(std::popcount(words_[word]));
    }

    std::uint64_t* words_;
    std::size_t pels_;
    std::size_t dark_;
    std::size_t darkHeld_ = 0;
    std::size_t below_ = 0;
    std::size_t word_ = 0;
};

/// The ranks of a tile, laid out so that the shorter side of the window runs along the lines.
struct RankGrid {
    const std::uint32_t* ranks;
    std::size_t lines, length;  ///< of the tile
    std::size_t along, across;  ///< of the window: pels along a line, lines

    const std::uint32_t* At(std::size_t line, std::size_t place) const {
        return ranks + line * length + place;
    }
};

/// Moves the window to and fro over the lines, one place further after each turn, and calls
/// visit(line, place, rank of the middle).
template <class Set, class Visit>
HWY_INLINE void SlideOver(const RankGrid& grid, Set set, Visit&& visit) {
    const std::size_t lastLine = grid.lines - grid.across;
    const std::size_t lastPlace = grid.length - grid.along;
    for (std::size_t line = 0; line < grid.across; ++line) {
        for (std::size_t k = 0; k < grid.along; ++k)
            set.Add(grid.At(line, 0)[k]);
    }
    std::size_t line = 0;
    for (std::size_t place = 0;; ++place) {
        const bool down = place % 2 == 0;
        visit(line, place, set.Middle());
        while (line != (down ? lastLine : 0)) {
            const std::uint32_t* leaving = grid.At(down ? line : line + grid.across - 1, place);
            const std::uint32_t* entering = grid.At(down ? line + grid.across : line - 1, place);
            for (std::size_t k = 0; k < grid.along; ++k) {
                set.Remove(leaving[k]);
                set.Add(entering[k]);
            }
            down ? ++line : --line;
            visit(line, place, set.Middle());
        }
        if (place == lastPlace) return;
        for (std::size_t k = 0; k < grid.across; ++k) {
            set.Remove(*grid.At(line + k, place));
            set.Add(*grid.At(line + k, place + grid.along));
        }
    }
}

void RankMedians(const MedianTile& tile, std::uint16_t* out, std::size_t outStride, RankBuffers& buffers) {
    const std::size_t count = tile.cols * tile.rows;
    buffers.levels.resize(count);
    buffers.order.resize(count);
    buffers.sorted.resize(count);
    buffers.ranks.resize(count);
    buffers.present.assign(count / 64 + 1, 0);
    for (std::size_t row = 0; row < tile.rows; ++row)
        std::copy_n(tile.pels + row * tile.stride, tile.cols, buffers.levels.data() + row * tile.cols);
    SortByLevel(buffers.levels, buffers.order, buffers.sorted);

    const bool turned = tile.height < tile.width;
    for (std::size_t rank = 0; rank < count; ++rank) {
        const std::size_t place = buffers.order[rank];
        const std::size_t at = turned ? place % tile.cols * tile.rows + place / tile.cols : place;
        buffers.ranks[at] = static_cast<std::uint32_t>(rank);
    }
    const RankGrid grid{buffers.ranks.data(), turned ? tile.cols : tile.rows, turned ? tile.rows : tile.cols,
                        turned ? tile.height : tile.width, turned ? tile.width : tile.height};
    const auto store = [&](std::size_t line, std::size_t place, std::uint32_t rank) {
        const std::size_t row = turned ? place : line;
        const std::size_t col = turned ? line : place;
        out[row * outStride + col] = buffers.levels[buffers.order[rank]];
    };
    const std::size_t pels = tile.width * tile.height;
    if (tile.lit) {
        const auto dark = std::count(buffers.levels.begin(), buffers.levels.end(), std::uint16_t{0});
        SlideOver(grid, RankSet<true>(buffers.present, pels, static_cast<std::size_t>(dark)), store);
    } else {
        SlideOver(grid, RankSet<false>(buffers.present, pels, 0), store);
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(RankMedians);

void RankMedians(const MedianTile& tile, std::uint16_t* out, std::size_t outStride, RankBuffers& buffers) {
    HWY_DYNAMIC_DISPATCH(RankMedians)(tile, out, outStride, buffers);
}

}  // namespace tq::kernels
#endif
