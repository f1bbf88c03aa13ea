#include "contest.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <utility>

namespace tqbench {
namespace {

struct Turns {
    double shortest = std::numeric_limits<double>::infinity();

    template <class Fn>
    double Take(const Fn& fn) {
        const auto start = std::chrono::steady_clock::now();
        fn();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        shortest = std::min(shortest, taken.count());
        return taken.count();
    }
    double Milliseconds() const { return shortest * 1e3; }
};

const NoiseImage& ImageOf(std::int32_t cols, std::int32_t rows) {
    static std::map<std::pair<std::int32_t, std::int32_t>, std::unique_ptr<NoiseImage>> images;
    auto& image = images[{cols, rows}];
    if (image == nullptr) image = std::make_unique<NoiseImage>(cols, rows);
    return *image;
}

void Run(benchmark::State& state, const Contest& contest, const NoiseImage& image) {
    const auto prepare = [&] {
        if (contest.prepare) contest.prepare(image);
    };
    // The first turns pay for memory that no turn has touched before.
    prepare();
    contest.ours(image);
    if (contest.peer) {
        prepare();
        contest.peer(image);
    }
    Turns ours, peer, read;
    for ([[maybe_unused]] auto _ : state) {
        prepare();
        state.SetIterationTime(ours.Take([&] { contest.ours(image); }));
        if (contest.peer) {
            prepare();
            peer.Take([&] { contest.peer(image); });
        }
        if (contest.streams) read.Take([&] { benchmark::DoNotOptimize(ReadEveryPel(image)); });
    }
    state.counters["ours_ms"] = ours.Milliseconds();
    if (contest.peer) {
        state.counters["peer_ms"] = peer.Milliseconds();
        state.counters["ratio"] = peer.shortest / ours.shortest;
    }
    if (contest.streams) {
        state.counters["read_ms"] = read.Milliseconds();
        state.counters["bandwidth"] = read.shortest / ours.shortest;
    }
}

}  // namespace

NoiseImage::NoiseImage(std::int32_t cols, std::int32_t rows) {
    TqImageHeader header{};
    header.PelCols = cols;
    header.PelRows = rows;
    header.PelsPerMeterX = header.PelsPerMeterY = 2000.0f;
    header.CenterCol = static_cast<float>(cols - 1) * 0.5f;
    header.CenterRow = static_cast<float>(rows - 1) * 0.5f;
    header.LuxPerGrey = 0.01f;
    header.SourceDistance = 3.0f;
    header.BinCols = header.BinRows = 1;
    if (tqCreateImage(&header, &block_) != 0) throw std::runtime_error("no memory for a benchmark's image");
    auto* pels = reinterpret_cast<std::uint16_t*>(reinterpret_cast<unsigned char*>(block_) + sizeof header);
    mat_ = cv::Mat(rows, cols, CV_16UC1, pels);
    std::mt19937 engine(1);
    std::generate_n(pels, mat_.total(), [&] { return static_cast<std::uint16_t>(engine()); });
}

/// Compiled for the widest vectors of the machine, as any good loop in a host would be.
__attribute__((target_clones("arch=skylake-avx512", "arch=haswell", "default"))) std::uint64_t ReadEveryPel(
    const NoiseImage& image) {
    constexpr std::size_t kRun = 65536;  // so many pels of 16 bits fit into 32
    const auto* pels = image.Mat().ptr<std::uint16_t>();
    const std::size_t count = image.Mat().total();
    std::uint64_t sum = 0;
    for (std::size_t from = 0; from < count; from += kRun) {
        const std::size_t to = std::min(from + kRun, count);
        std::uint32_t run = 0;
        for (std::size_t i = from; i < to; ++i)
            run += pels[i];
        sum += run;
    }
    return sum;
}

void Register(const Contest& contest) {
    for (const auto& [cols, rows] : {std::pair{1000, 750}, {4000, 3000}, {8000, 8000}}) {
        if (std::max(cols, rows) > contest.largestSide) continue;
        const std::string name = contest.name + "/" + std::to_string(cols) + "x" + std::to_string(rows);
        benchmark::RegisterBenchmark(name.c_str(),
                                     [=, cols = cols, rows = rows](benchmark::State& state) {
                                         Run(state, contest, ImageOf(cols, rows));
                                     })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

}  // namespace tqbench

int main(int argc, char** argv) {
    cv::setNumThreads(1);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
