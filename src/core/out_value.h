#pragma once

namespace tq {

/// For outputs that a host may leave out by passing null.
template <class Value>
void StoreIfAsked(Value* out, Value value) noexcept {
    if (out != nullptr) *out = value;
}

}  // namespace tq
