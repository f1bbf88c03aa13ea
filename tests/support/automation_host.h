#pragma once

/// SAFEARRAYs as hosts make them: the same test sources run on the system's automation and on the library's
/// own.
#if defined(_WIN32)
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// After windows.h, which it does not bring itself.
#include <oleauto.h>
#endif

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tqimage/automation.h"

namespace tqtest {

/// One dimension as a host declares it.
struct Dimension {
    std::uint32_t count;
    std::int32_t lower = 0;
};

/// A host's array, released with the scope, locked or not. Pass `array.Address()` to the library.
class HostArray {
  public:
    HostArray() = default;
    HostArray(VARTYPE type, const std::vector<Dimension>& dimensions) {
        std::vector<SAFEARRAYBOUND> bounds;
        for (const Dimension& dimension : dimensions)
            bounds.push_back({dimension.count, dimension.lower});
        array_ = SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
        if (array_ == nullptr) throw std::runtime_error("no memory for a test array");
    }
    HostArray(HostArray&& other) noexcept : array_(std::exchange(other.array_, nullptr)) {}
    HostArray& operator=(HostArray other) noexcept {
        std::swap(array_, other.array_);
        return *this;
    }
    ~HostArray() {
        if (array_ == nullptr) return;
        array_->cLocks = 0;
        SafeArrayDestroy(array_);
    }

    SAFEARRAY* Get() const noexcept { return array_; }
    SAFEARRAY* operator->() const noexcept { return array_; }
    SAFEARRAY** Address() noexcept { return &array_; }
    ULONG Locks() const noexcept { return array_->cLocks; }

    /// The element at these indices, leftmost first. Throws outside the array.
    template <class Value>
    Value At(std::vector<LONG> indices) const {
        Value value{};
        if (SafeArrayGetElement(array_, indices.data(), &value) != S_OK) {
            throw std::out_of_range("no such element");
        }
        return value;
    }
    template <class Value>
    void Set(std::vector<LONG> indices, Value value) {
        if (SafeArrayPutElement(array_, indices.data(), &value) != S_OK) {
            throw std::out_of_range("no such element");
        }
    }

  private:
    SAFEARRAY* array_ = nullptr;
};

/// A two-dimensional array, lower bounds 0, whose element (a, b) is fn(a, b).
template <class Value, class Fn>
HostArray MakeArray(VARTYPE type, std::uint32_t first, std::uint32_t second, Fn&& fn) {
    HostArray array(type, {{first}, {second}});
    for (std::uint32_t a = 0; a < first; ++a) {
        for (std::uint32_t b = 0; b < second; ++b) {
            array.Set<Value>({static_cast<LONG>(a), static_cast<LONG>(b)},
                             static_cast<Value>(fn(static_cast<int>(a), static_cast<int>(b))));
        }
    }
    return array;
}

template <class Fn>
HostArray MakeInt32Array(std::uint32_t first, std::uint32_t second, Fn&& fn) {
    return MakeArray<std::int32_t>(VT_I4, first, second, std::forward<Fn>(fn));
}

template <class Fn>
HostArray MakeInt16Array(std::uint32_t first, std::uint32_t second, Fn&& fn) {
    return MakeArray<std::int16_t>(VT_I2, first, second, std::forward<Fn>(fn));
}

template <class Fn>
HostArray MakeDoubleArray(std::uint32_t first, std::uint32_t second, Fn&& fn) {
    return MakeArray<double>(VT_R8, first, second, std::forward<Fn>(fn));
}

/// A list of records of int32, indexed {record, field}, for defect lists and calibration points. All records
/// have the fields of the first.
inline HostArray MakeRecords(const std::vector<std::vector<std::int32_t>>& records) {
    const std::size_t fields = records.empty() ? 0 : records.front().size();
    return MakeInt32Array(
        static_cast<std::uint32_t>(records.size()), static_cast<std::uint32_t>(fields),
        [&](int record, int field) {
            return records.at(static_cast<std::size_t>(record)).at(static_cast<std::size_t>(field));
        });
}

/// The vertices of a polygon, indexed {0 column | 1 row, vertex}.
inline HostArray MakeVertices(const std::vector<std::pair<std::int32_t, std::int32_t>>& vertices) {
    return MakeInt32Array(2, static_cast<std::uint32_t>(vertices.size()), [&](int part, int vertex) {
        const auto& [col, row] = vertices.at(static_cast<std::size_t>(vertex));
        return part == 0 ? col : row;
    });
}

}  // namespace tqtest
