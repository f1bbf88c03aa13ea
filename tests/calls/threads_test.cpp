#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include "call_table.h"

namespace tqtest {
namespace {

constexpr int kThreads = 8;

using Prints = std::vector<std::uint64_t>;

/// Lets the threads make the same calls in the same order at about the same time, so that they meet in the
/// same function, then makes them once more alone.
template <class MakeCalls>
void ExpectSameResultsAsAlone(const std::vector<const CallEntry*>& entries, MakeCalls&& makeCalls) {
    std::vector<Prints> prints(kThreads);
    std::latch start(kThreads);
    std::vector<std::thread> threads;
    for (Prints& ofThread : prints) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            ofThread = makeCalls(entries);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    // Alone comes last: what a function sets up at its first call, it has set up among the others.
    const Prints alone = makeCalls(entries);
    for (std::size_t i = 0; i < alone.size(); ++i) {
        for (const Prints& ofThread : prints) {
            EXPECT_EQ(ofThread.at(i), alone[i]) << entries.at(i / (alone.size() / entries.size()))->name;
        }
    }
}

TEST(Threads, ReadTheSameImages) {
    std::vector<const CallEntry*> readers;
    for (const CallEntry& entry : AllCalls())
        if (entry.readsOnly) readers.push_back(&entry);
    EXPECT_GT(readers.size(), 150u);

    Draw choice(20);
    Scene shared(choice, 60);
    shared.AnyImage(Checking::kUnchecked);  // leaves no image invalid
    const auto printOfImages = [&] {
        Fingerprint print;
        shared.Add(print);
        return print.Value();
    };
    const std::uint64_t before = printOfImages();
    ExpectSameResultsAsAlone(readers, [&](const std::vector<const CallEntry*>& entries) {
        constexpr std::uint64_t kCalls = 8;
        Prints prints;
        for (const CallEntry* entry : entries) {
            for (std::uint64_t number = 0; number < kCalls; ++number) {
                Draw draw(FingerprintOf(entry->name) + number);
                Scene scene(draw, shared);
                Fingerprint print;
                entry->call(scene, print);
                scene.Add(print);
                prints.push_back(print.Value());
            }
        }
        return prints;
    });
    EXPECT_EQ(printOfImages(), before);
}

/// Writes the pels of the images of a scene, now all alike and now noise, for as long as it lives.
class Writer {
  public:
    explicit Writer(Scene& scene) : scene_(scene), thread_([this] { Write(); }) {}
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() {
        done_ = true;
        thread_.join();
    }

  private:
    void Write() {
        Draw draw(1);
        while (!done_) {
            for (std::size_t i = 0; i < kImages; ++i) {
                auto* const header = reinterpret_cast<TqImageHeader*>(scene_.Slot(i));
                auto* const pels = reinterpret_cast<std::uint16_t*>(header + 1);
                const auto count = static_cast<std::size_t>(header->PelCols * header->PelRows);
                const auto level = static_cast<std::uint16_t>(draw.OneOf({0, 1, 300, 65535}));
                const bool isNoise = draw.OneIn(2);
                std::generate_n(pels, count,
                                [&] { return isNoise ? static_cast<std::uint16_t>(draw.Any()) : level; });
            }
        }
    }

    Scene& scene_;
    std::atomic<bool> done_ = false;
    std::thread thread_;
};

/// What is read of an image that another thread writes is the host's affair, but it must not lead outside of
/// what the call holds.
TEST(Threads, OutliveAWriterOfWhatTheyRead) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "a race on purpose";
#endif
    Draw choice(21);
    Scene shared(choice, 90);
    shared.AnyImage(Checking::kUnchecked);  // leaves no image invalid
    const Writer writer(shared);
    for (const CallEntry& entry : AllCalls()) {
        if (!entry.readsOnly) continue;
        constexpr std::uint64_t kCalls = 8;
        for (std::uint64_t number = 0; number < kCalls; ++number) {
            Draw draw(FingerprintOf(entry.name) + number);
            Scene scene(draw, shared);
            Fingerprint print;
            entry.call(scene, print);
        }
    }
}

TEST(Threads, CallEveryFunctionForImagesOfTheirOwn) {
    std::vector<const CallEntry*> all;
    for (const CallEntry& entry : AllCalls())
        all.push_back(&entry);
    ExpectSameResultsAsAlone(all, [](const std::vector<const CallEntry*>& entries) {
        constexpr std::uint64_t kCalls = 3;
        Prints prints;
        for (const CallEntry* entry : entries) {
            for (std::uint64_t number = 0; number < kCalls; ++number) {
                Draw draw(FingerprintOf(entry->name) + number);
                prints.push_back(CallOnce(*entry, draw, 24));
            }
        }
        return prints;
    });
}

}  // namespace
}  // namespace tqtest
