#pragma once

#include <cstdint>
#include <cstring>

#include "platform/automation.h"

namespace tq {

/// A host's array of int32 with one or two dimensions, read and written element by element by the rules of
/// SafeArrayGetElement and SafeArrayPutElement: indices leftmost first, counted from the lower bounds,
/// refused outside their dimension. The arithmetic is done here because an image has millions of elements and
/// every system call takes a lock.
///
/// Lock the array first, and ask HasInt32Elements and Dimensions before anything else.
class Int32Table {
  public:
    explicit Int32Table(const SAFEARRAY& array) noexcept : array_(array) {}

    unsigned Dimensions() const noexcept { return array_.cDims; }
    /// Elements of the last dimension. Of a table indexed {record, field} these are the fields.
    std::uint32_t RightCount() const noexcept { return StoredCount(array_, 0); }
    /// Elements of the first of two dimensions. Of a table indexed {record, field} these are the records.
    std::uint32_t LeftCount() const noexcept { return StoredCount(array_, 1); }

    bool Read(std::int64_t index, std::int32_t* value) const noexcept { return Load(At(index), value); }
    bool Read(std::int64_t left, std::int64_t right, std::int32_t* value) const noexcept {
        return Load(At(left, right), value);
    }
    bool Write(std::int64_t index, std::int32_t value) const noexcept { return Store(At(index), value); }
    bool Write(std::int64_t left, std::int64_t right, std::int32_t value) const noexcept {
        return Store(At(left, right), value);
    }

    /// Elements that lie one after another in memory.
    struct Run {
        const unsigned char* elements;
        std::int64_t count;

        std::int32_t operator[](std::int64_t i) const noexcept {
            std::int32_t value;
            std::memcpy(&value, elements + static_cast<std::size_t>(i) * sizeof value, sizeof value);
            return value;
        }
    };
    /// The elements of one dimension with the indices 0, 1, 2 ... up to the first that Read would refuse.
    Run FromZero() const noexcept { return RunOf(array_.rgsabound[0], At(0)); }
    /// The elements {0, right}, {1, right}, {2, right} ... up to the first that Read would refuse.
    Run FromZero(std::int64_t right) const noexcept { return RunOf(array_.rgsabound[1], At(0, right)); }

  private:
    static Run RunOf(const SAFEARRAYBOUND& bound, const unsigned char* atZero) noexcept {
        return {atZero, atZero == nullptr ? 0 : static_cast<std::int64_t>(bound.cElements) + bound.lLbound};
    }
    /// Distance from the lower bound; negative outside the dimension.
    static std::int64_t Steps(const SAFEARRAYBOUND& bound, std::int64_t index) noexcept {
        const std::int64_t steps = index - bound.lLbound;
        return steps < static_cast<std::int64_t>(bound.cElements) ? steps : -1;
    }
    unsigned char* At(std::int64_t index) const noexcept {
        return Address(Steps(array_.rgsabound[0], index), 0, 1);
    }
    unsigned char* At(std::int64_t left, std::int64_t right) const noexcept {
        return Address(Steps(array_.rgsabound[1], left), Steps(array_.rgsabound[0], right), LeftCount());
    }
    /// Null outside the array. Counts below 2^32 keep the element's number below 2^64.
    unsigned char* Address(std::int64_t left, std::int64_t right, std::uint32_t leftCount) const noexcept {
        if (left < 0 || right < 0 || array_.pvData == nullptr) return nullptr;
        const std::uint64_t number =
            static_cast<std::uint64_t>(left) + static_cast<std::uint64_t>(right) * leftCount;
        return static_cast<unsigned char*>(array_.pvData) +
               static_cast<std::size_t>(number) * sizeof(std::int32_t);
    }
    static bool Load(const unsigned char* element, std::int32_t* value) noexcept {
        if (element != nullptr) std::memcpy(value, element, sizeof *value);
        return element != nullptr;
    }
    static bool Store(unsigned char* element, std::int32_t value) noexcept {
        if (element != nullptr) std::memcpy(element, &value, sizeof value);
        return element != nullptr;
    }

    const SAFEARRAY& array_;
};

}  // namespace tq
