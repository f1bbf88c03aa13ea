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
    constexpr Pel kGuard = 0xA5A5;
    tqtest::ForEachTarget([&] {
        for (const Pel k : {Pel{0}, Pel{1}, Pel{32767}, Pel{32768}, Pel{65535}}) {
            const auto operations = OperationsWith(k);
            for (std::size_t count = 0; count <= 80; ++count) {
                const auto a = tqtest::HostilePels(count, 1);
                const auto b = tqtest::HostilePels(count, 2);
                for (std::size_t o = 0; o < operations.size(); ++o) {
                    std::vector<Pel> out(count + 1, kGuard);
                    operations[o].kernel(a.data(), b.data(), out.data(), count);
                    for (std::size_t i = 0; i < count; ++i)
                        ASSERT_EQ(out[i], operations[o].plain(a[i], b[i]))
                            << "operation " << o << " at " << i;
                    ASSERT_EQ(out[count], kGuard) << "operation " << o;
                    std::vector<Pel> inPlace = a;
                    operations[o].kernel(inPlace.data(), b.data(), inPlace.data(), count);
                    out.pop_back();
                    ASSERT_EQ(inPlace, out) << "operation " << o;
                }
            }
        }
    });
}

TEST(SumBytes, IsExactOnEveryTarget) {
    tqtest::ForEachTarget([] {
        for (std::size_t count = 0; count <= 300; ++count) {
            std::vector<std::uint8_t> bytes(count);
            std::uint64_t expected = 0;
            for (std::size_t i = 0; i < count; ++i) {
                bytes[i] = static_cast<std::uint8_t>(255 - i * i % 7);
                expected += bytes[i];
            }
            ASSERT_EQ(kernels::SumBytes(bytes.data(), count), expected) << count;
        }
    });
}

}  // namespace
