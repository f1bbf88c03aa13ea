#pragma once

#include <gtest/gtest.h>

#include <cstdint>

namespace tqtest {

/// True where operator new of the test program is also the library's: the allocations of a DLL are its own.
bool CanFailAllocations() noexcept;

/// Blocks of operator new that this thread has made and not released, more or less than the others did.
long LiveAllocations() noexcept;

/// What becomes of the allocations after the one that failed.
enum class Afterwards { kSucceed, kFail };

/// Lets the n-th operator new of this thread throw std::bad_alloc, counted from 1, while it lives.
class AllocationFailure {
  public:
    explicit AllocationFailure(int nth, Afterwards afterwards = Afterwards::kSucceed) noexcept;
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;
    ~AllocationFailure();
    /// False when the code made fewer allocations.
    static bool Happened() noexcept;
};

/// Calls `call` again and again, each time with the next of its allocations failing, until it makes no more:
/// each failure must give `failure` and pass `afterFailure`, and the last call must give `success`. Returns
/// the number of allocations. What `call` allocates itself counts, so it should do nothing but the one call.
template <class Status, class Call, class AfterFailure>
int FailEachAllocation(Status failure, Status success, Call&& call, AfterFailure&& afterFailure) {
    constexpr int kMost = 10'000;
    for (int nth = 1; nth < kMost; ++nth) {
        bool happened = false;
        Status status{};
        {
            const AllocationFailure failing(nth);
            status = call();
            happened = AllocationFailure::Happened();
        }
        EXPECT_EQ(status, happened ? failure : success) << "with allocation " << nth << " failing";
        if (!happened || status != failure) return nth - 1;
        afterFailure();
    }
    ADD_FAILURE() << "no end of allocations";
    return kMost;
}

template <class Status, class Call>
int FailEachAllocation(Status failure, Status success, Call&& call) {
    return FailEachAllocation(failure, success, call, [] {});
}

}  // namespace tqtest
