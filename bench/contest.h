#pragma once

#include <benchmark/benchmark.h>

#include <opencv2/core.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "tqimage/image.h"

/// Benchmarks that time the library and a peer turn by turn in the same run: the milliseconds are one
/// machine's and one moment's, their ratio is not.
namespace tqbench {

/// An image of noise, made once for each size, and the same pels as the peer sees them.
class NoiseImage {
  public:
    NoiseImage(std::int32_t cols, std::int32_t rows);
    NoiseImage(const NoiseImage&) = delete;
    NoiseImage& operator=(const NoiseImage&) = delete;
    ~NoiseImage() { tqImageFree(&block_); }

    const TqImage* Get() const { return block_; }
    const cv::Mat& Mat() const { return mat_; }
    std::int32_t Cols() const { return mat_.cols; }
    std::int32_t Rows() const { return mat_.rows; }

  private:
    TqImage* block_ = nullptr;
    cv::Mat mat_;
};

/// The pels of a block, which follow its header.
inline std::uint16_t* PelsOf(TqImage* image) {
    return reinterpret_cast<std::uint16_t*>(reinterpret_cast<TqImageHeader*>(image) + 1);
}

/// Images that the turns of contests write, made of a NoiseImage when a contest first asks for them.
template <class Scratch>
Scratch& ScratchOf(const NoiseImage& image) {
    static std::map<const NoiseImage*, std::unique_ptr<Scratch>> all;
    auto& scratch = all[&image];
    if (scratch == nullptr) scratch = std::make_unique<Scratch>(image);
    return *scratch;
}

/// A side of a contest: the step, on the images that it works with.
template <class Scratch, class Step>
std::function<void(const NoiseImage&)> With(Step step) {
    return [=](const NoiseImage& image) { step(ScratchOf<Scratch>(image)); };
}

/// What a plain loop that reads every pel and adds it up needs: the yardstick of bandwidth.
std::uint64_t ReadEveryPel(const NoiseImage& image);

struct Contest {
    std::string name;
    std::function<void(const NoiseImage&)> ours;
    std::function<void(const NoiseImage&)> peer;          ///< may be empty
    bool streams = false;                                 ///< only reads: traffic is ReadEveryPel
    std::function<void(const NoiseImage&)> prepare = {};  ///< before every turn of either side, not timed
    std::int32_t largestSide = 8000;                      ///< images with a longer side are left out
    /// A loop that moves as much memory and computes nothing; unless given, a copy into a new image.
    std::function<void(const NoiseImage&)> traffic = {};
};

/// Registers the contest for 1000 x 750, 4000 x 3000 and 8000 x 8000 pels. Counters: ours_ms, peer_ms,
/// traffic_ms (shortest of all turns), ratio = peer / ours, bandwidth = traffic / ours.
void Register(Contest contest);

}  // namespace tqbench
