#include "failing_allocator.h"

#if defined(_WIN32)

namespace tqtest {

bool CanFailAllocations() noexcept {
    return false;
}
long LiveAllocations() noexcept {
    return 0;
}
AllocationFailure::AllocationFailure(int, Afterwards) noexcept {}
AllocationFailure::~AllocationFailure() = default;
bool AllocationFailure::Happened() noexcept {
    return false;
}

}  // namespace tqtest

#else

#include <cstdlib>
#include <new>

namespace {

thread_local int allocationsLeft = 0;
thread_local bool happened = false;
thread_local bool allLater = false;
thread_local long live = 0;

/// Counts this allocation; true when it is one of those that fail.
bool Fails() noexcept {
    if (allocationsLeft == 0 || --allocationsLeft > 0) {
        ++live;
        return false;
    }
    happened = true;
    if (allLater) allocationsLeft = 1;
    return true;
}

void* Allocate(std::size_t bytes) noexcept {
    return Fails() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
}

void* AllocateAligned(std::size_t bytes, std::align_val_t alignment) noexcept {
    const auto step = static_cast<std::size_t>(alignment);
    return Fails() ? nullptr : std::aligned_alloc(step, (bytes + step - 1) / step * step);
}

void Release(void* memory) noexcept {
    if (memory != nullptr) --live;
    std::free(memory);
}

void* OrThrow(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

// The program's own forms of all that the library may call; the remaining standard forms end in these.
void* operator new(std::size_t bytes) {
    return OrThrow(Allocate(bytes));
}
void* operator new[](std::size_t bytes) {
    return OrThrow(Allocate(bytes));
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return Allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return Allocate(bytes);
}
void* operator new(std::size_t bytes, std::align_val_t alignment) {
    return OrThrow(AllocateAligned(bytes, alignment));
}
void* operator new[](std::size_t bytes, std::align_val_t alignment) {
    return OrThrow(AllocateAligned(bytes, alignment));
}
void operator delete(void* memory) noexcept {
    Release(memory);
}
void operator delete[](void* memory) noexcept {
    Release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    Release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    Release(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    Release(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    Release(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    Release(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
    Release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    Release(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    Release(memory);
}

namespace tqtest {

bool CanFailAllocations() noexcept {
    return true;
}

long LiveAllocations() noexcept {
    return live;
}

AllocationFailure::AllocationFailure(int nth, Afterwards afterwards) noexcept {
    happened = false;
    allLater = afterwards == Afterwards::kFail;
    allocationsLeft = nth;
}

AllocationFailure::~AllocationFailure() {
    allocationsLeft = 0;
}

bool AllocationFailure::Happened() noexcept {
    return happened;
}

}  // namespace tqtest

#endif
