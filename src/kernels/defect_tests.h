#pragma once

#include <cstddef>
#include <cstdint>

/// The tests of pels against a reference taken from their neighbourhood. A pel is bright above
/// `brightFactor` times its reference, and otherwise dark below `darkFactor` times it. A factor of NaN makes
/// a test that no pel meets. A pel of 0 is not tested.
namespace tq::kernels {

struct DefectFactors {
    double bright;
    double dark;
};

struct DefectCounts {
    std::uint64_t bright = 0;
    std::uint64_t dark = 0;

    DefectCounts& operator+=(const DefectCounts& other) noexcept {
        bright += other.bright;
        dark += other.dark;
        return *this;
    }
};

/// Against the quotients sums[i] / counts[i] in single precision, 0 where the count is 0. `out` takes the
/// pels that are bright or dark, and 0 for the others.
DefectCounts FlagByMean(const std::uint16_t* pels, const double* sums, const double* counts,
                        std::size_t count, const DefectFactors& factors, std::uint16_t* out);

/// The square windows around the pels of a row: the one of pel i begins i pels behind `first`.
struct WindowRow {
    const std::uint16_t* first;
    std::size_t stride;  ///< pels from row to row
    std::size_t side;    ///< at most 255, so that the number of its pels fits into 16 bits
    bool lit;            ///< none of the windows holds a 0
};

/// A pel's factors, turned into what its median is compared with: bright when the median is at most
/// bright[i], dark when it is above dark[i].
struct MedianBounds {
    const std::uint16_t* bright;
    const std::uint16_t* dark;
    bool emptyIsBright;  ///< the verdict on a pel without a lit neighbour; it is never dark
};

/// Against the medians of the windows' pels that are not 0, the upper middle one of an even number. No window
/// is sorted: to know on which side of a bound the median lies, it is enough to count.
DefectCounts FlagByMedian(const std::uint16_t* pels, const WindowRow& windows, std::size_t count,
                          const MedianBounds& bounds, std::uint16_t* out);

}  // namespace tq::kernels
