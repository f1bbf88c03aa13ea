#include "failing_allocator.h"

#if defined(_WIN32)

namespace tqtest {

bool CanFailAllocations() noexcept {
    return false;
}
AllocationFailure::AllocationFailure(int) noexcept {}
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

void* Allocate(std::size_t bytes) noexcept {
    if (allocationsLeft > 0 && --allocationsLeft == 0) {
        happened = true;
        return nullptr;
    }
    return std::malloc(bytes == 0 ? 1 : bytes);
}

void* AllocateAligned(std::size_t bytes, std::align_val_t alignment) noexcept {
    if (allocationsLeft > 0 && --allocationsLeft == 0) {
        happened = true;
        return nullptr;
    }
    const auto step = static_cast<std::size_t>(alignment);
    return std::aligned_alloc(step, (bytes + step - 1) / step * step);
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
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

namespace tqtest {

bool CanFailAllocations() noexcept {
    return true;
}

AllocationFailure::AllocationFailure(int nth) noexcept {
    happened = false;
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
