#include <gtest/gtest.h>

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
    EXPECT_GT(readers.size(), 100u);

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
                prints.push_back(print.Value());
            }
        }
        return prints;
    });
    EXPECT_EQ(printOfImages(), before);
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
