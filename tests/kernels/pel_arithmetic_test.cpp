#include "kernels/pel_arithmetic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "kernels/span_statistics.h"
#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;
using tq::Pel;

struct Operation {
    std::function<void(const Pel* a, const Pel* b, Pel* out, std::size_t count)> kernel;
    std::function<int(int a, int b)> plain;
};

std::vector<Operation> OperationsWith(Pel k) {
    return {
        {[=](auto a, auto, auto out, auto n) { kernels::AddSaturated(a, k, out, n); },
         [=](int a, int) { return std::min(a + k, 65535); }},
        {[=](auto a, auto, auto out, auto n) { kernels::SubtractSaturated(a, k, out, n); },
         [=](int a, int) { return std::max(a - k, 0); }},
        {[=](auto a, auto b, auto out, auto n) { kernels::SubtractSaturated(a, b, out, n); },
         [=](int a, int b) { return std::max(a - b, 0); }},
        {[=](auto a, auto, auto out, auto n) { kernels::AddWrapped(a, k, out, n); },
         [=](int a, int) { return (a + k) & 0xFFFF; }},
        {[=](auto a, auto, auto out, auto n) { kernels::SubtractFrom(k, a, out, n); },
         [=](int a, int) { return (k - a) & 0xFFFF; }},
        {[=](auto a, auto, auto out, auto n) { kernels::ReplaceUpTo(a, k, 12345, out, n); },
         [=](int a, int) { return a > 0 && a <= k ? 12345 : a; }},
        {[=](auto a, auto, auto out, auto n) { kernels::KeepAbove(a, k, out, n); },
         [=](int a, int) { return a > k ? a : 0; }},
        {[=](auto a, auto b, auto out, auto n) {
             kernels::KeepMarked(a, b, kernels::Keep::kWhereMaskIsSet, out, n);
         },
         [=](int a, int b) { return b == 0 ? 0 : std::max(a, 1); }},
        {[=](auto a, auto b, auto out, auto n) {
             kernels::KeepMarked(a, b, kernels::Keep::kWhereMaskIsZero, out, n);
         },
         [=](int a, int b) { return b != 0 ? 0 : std::max(a, 1); }},
        {[=](auto a, auto b, auto out, auto n) { kernels::ClearWhereSet(a, b, out, n); },
         [=](int a, int b) { return b != 0 ? 0 : a; }},
    };
}

TEST(PelArithmetic, EveryTargetAndLengthGivesTheSameAndStaysInside) {
    const auto a = tqtest::HostilePels(80, 1), b = tqtest::HostilePels(80, 2);
    for (const Pel k : {Pel{0}, Pel{1}, Pel{32767}, Pel{32768}, Pel{65535}}) {
        const auto operations = OperationsWith(k);
        for (std::size_t o = 0; o < operations.size(); ++o) {
            SCOPED_TRACE(testing::Message() << "operation " << o << " with " << k);
            const auto plain = [&](std::size_t i) { return operations[o].plain(a[i], b[i]); };
            tqtest::ExpectRuns<Pel>(
                a.size(),
                [&](Pel* out, std::size_t count) { operations[o].kernel(a.data(), b.data(), out, count); },
                plain);
            tqtest::ExpectRuns<Pel>(
                a.size(),
                [&](Pel* out, std::size_t count) {
                    std::copy_n(a.begin(), count, out);
                    operations[o].kernel(out, b.data(), out, count);
                },
                plain);
        }
    }
}

TEST(SumBytes, IsExactOnEveryTarget) {
    tqtest::ForEachTarget([] {
        std::vector<std::uint8_t> bytes;
        for (std::uint64_t expected = 0; bytes.size() <= 300; expected += bytes.back()) {
            ASSERT_EQ(kernels::SumBytes(bytes.data(), bytes.size()), expected) << bytes.size();
            bytes.push_back(static_cast<std::uint8_t>(255 - bytes.size() * bytes.size() % 7));
        }
    });
}

}  // namespace
