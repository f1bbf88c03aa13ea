#include "contest.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <regex>
#include <stdexcept>
#include <utility>
#include <vector>

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

/// A contest at one size. Ours, the peer and the traffic take turns, so that what else the machine does
/// disturbs all of them alike, and the shortest turn counts.
class Match {
  public:
    Match(const Contest& contest, const NoiseImage& image) : contest_(contest), image_(image) {
        // The first turns pay for memory that no turn has touched before.
        Prepare();
        contest.ours(image);
        Prepare();
        if (contest.peer) contest.peer(image);
    }

    /// One turn of each; the seconds of ours.
    double TakeTurns() {
        Prepare();
        const double taken = ours_.Take([&] { contest_.ours(image_); });
        if (contest_.peer) {
            Prepare();
            peer_.Take([&] { contest_.peer(image_); });
        }
        traffic_.Take([&] { contest_.traffic(image_); });
        return taken;
    }

    double OursMs() const { return ours_.Milliseconds(); }
    double PeerMs() const { return peer_.Milliseconds(); }
    double TrafficMs() const { return traffic_.Milliseconds(); }
    double Ratio() const { return peer_.shortest / ours_.shortest; }
    double Bandwidth() const { return traffic_.shortest / ours_.shortest; }

  private:
    void Prepare() const {
        if (contest_.prepare) contest_.prepare(image_);
    }

    const Contest& contest_;
    const NoiseImage& image_;
    Turns ours_, peer_, traffic_;
};

void Run(benchmark::State& state, const Contest& contest, const NoiseImage& image) {
    Match match(contest, image);
    for ([[maybe_unused]] auto _ : state)
        state.SetIterationTime(match.TakeTurns());
    state.counters["ours_ms"] = match.OursMs();
    if (contest.peer) {
        state.counters["peer_ms"] = match.PeerMs();
        state.counters["ratio"] = match.Ratio();
    }
    state.counters["traffic_ms"] = match.TrafficMs();
    state.counters["bandwidth"] = match.Bandwidth();
}

void Copy(const NoiseImage& image) {
    static TqImage* copy = nullptr;
    tqGlobalCopy(&copy, image.Get());
}

std::vector<Contest>& Contests() {
    static std::vector<Contest> contests;
    return contests;
}

/// visit(contest, cols, rows, name) for every contest at every size.
template <class Visit>
void VisitMatches(const Visit& visit) {
    for (const Contest& contest : Contests()) {
        for (const auto& [cols, rows] : {std::pair{1000, 750}, {4000, 3000}, {8000, 8000}}) {
            if (std::max(cols, rows) > contest.largestSide) continue;
            visit(contest, cols, rows,
                  contest.name + "/" + std::to_string(cols) + "x" + std::to_string(rows));
        }
    }
}

/// One table of the contests whose name and size the pattern is found in, in the form of a document.
void PrintTable(const std::regex& pattern) {
    std::printf("| %-48s | %-9s | %9s | %9s | %6s | %5s |\n", "operation", "pels", "ours ms", "peer ms",
                "ratio", "share");
    std::printf("|:%s|:%s|%s:|%s:|%s:|%s:|\n", std::string(49, '-').c_str(), std::string(10, '-').c_str(),
                std::string(10, '-').c_str(), std::string(10, '-').c_str(), std::string(7, '-').c_str(),
                std::string(6, '-').c_str());
    VisitMatches([&](const Contest& contest, std::int32_t cols, std::int32_t rows, const std::string& name) {
        if (!std::regex_search(name, pattern)) return;
        // Short operations take many turns, long ones few and the longest one: the whole table is to be a
        // matter of minutes.
        constexpr int kFewTurns = 3;
        constexpr double kShort = 0.2;
        constexpr double kLong = 2.0;
        Match match(contest, ImageOf(cols, rows));
        const auto start = std::chrono::steady_clock::now();
        const auto past = [&] {
            return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        };
        int turns = 0;
        do {
            match.TakeTurns();
        } while (past() < (++turns < kFewTurns ? kLong : kShort));
        std::printf("| %-48s | %4dx%-4d | %9.3f | ", contest.name.c_str(), cols, rows, match.OursMs());
        if (contest.peer) {
            std::printf("%9.3f | %6.2f", match.PeerMs(), match.Ratio());
        } else {
            std::printf("%9s | %6s", "", "");
        }
        std::printf(" | %5.2f |\n", match.Bandwidth());
        std::fflush(stdout);
    });
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
    std::uint16_t* const pels = PelsOf(block_);
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

void Register(Contest contest) {
    if (!contest.traffic) {
        contest.traffic = Copy;
        if (contest.streams) {
            contest.traffic = [](const NoiseImage& image) { benchmark::DoNotOptimize(ReadEveryPel(image)); };
        }
    }
    Contests().push_back(std::move(contest));
}

}  // namespace tqbench

/// `--table [REGEX]` prints one table; anything else is for the benchmark library.
int main(int argc, char** argv) {
    cv::setNumThreads(1);
    if (argc > 1 && std::strcmp(argv[1], "--table") == 0) {
        tqbench::PrintTable(std::regex(argc > 2 ? argv[2] : ""));
        return 0;
    }
    tqbench::VisitMatches(
        [](const tqbench::Contest& contest, std::int32_t cols, std::int32_t rows, const std::string& name) {
            benchmark::RegisterBenchmark(name.c_str(),
                                         [&contest, cols, rows](benchmark::State& state) {
                                             tqbench::Run(state, contest, tqbench::ImageOf(cols, rows));
                                         })
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond);
        });
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
