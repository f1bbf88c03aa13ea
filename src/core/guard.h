#pragma once

#include <type_traits>
#include <utility>

namespace tq {

/// Runs the body of an exported function and turns any exception, in practice a failed allocation, into the
/// function's own failure status: no exception may reach a host written in another language.
template <class Body, class Status = std::invoke_result_t<Body>>
Status Guarded(std::type_identity_t<Status> failure, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return failure;
    }
}

}  // namespace tq
