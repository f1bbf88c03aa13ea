#include "kernels/grey_arithmetic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/numerics.h"
#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;
using tq::Pel;
using tq::TruncToInt32;
using tq::WrapToPel;

// Scales that cancel, that stand in simple proportions, so that quotients meet integers, and that are none.
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
const float kScales[] = {1.0f, 0.5f, 3.0f, 0.1f, 7e-5f, -2.0f, 0.0f, 1e-38f, 1e30f, kInfinity, kNan};

class GreyArithmetic : public testing::Test {
  protected:
    /// Expects the kernel's pels to be plain(a, b) on every target.
    template <class Kernel, class Plain>
    void Check(Kernel&& kernel, Plain&& plain) {
        CheckRun([&](Pel* out) { kernel(a_.data(), b_.data(), out, a_.size()); },
                 [&](std::size_t i) { return plain(a_[i], b_[i]); });
    }

    /// kernel(out), plain(i).
    template <class Kernel, class Plain>
    void CheckRun(Kernel&& kernel, Plain&& plain) {
        std::vector<Pel> expected;
        for (std::size_t i = 0; i < a_.size(); ++i)
            expected.push_back(plain(i));
        tqtest::ForEachTarget(
            [&] { tqtest::ExpectRun<Pel>(a_.size(), kernel, [&](std::size_t i) { return expected[i]; }); });
    }

    std::vector<Pel> a_ = tqtest::HostilePels(611, 5);
    std::vector<Pel> b_ = tqtest::HostilePels(611, 6);
    std::vector<Pel> c_ = tqtest::HostilePels(611, 7);
};

TEST_F(GreyArithmetic, OneImageTimesANumber) {
    // The ends of the fixed-point range and what lies just outside, factors with all their bits.
    for (const float f : {0x1p-8f, 0x1.fffffep-9f, 0x1.fffffep-1f, 1.3333334f, 17.770001f, 32767.0f, 32768.0f,
                          65536.0f, 0.1f, 7e-5f, -2.0f, 0.0f, 1e30f}) {
        SCOPED_TRACE(f);
        Check([=](auto a, auto, auto out, auto n) { kernels::ScaleGreys(a, f, out, n); },
              [=](double a, double) {
                  return WrapToPel(TruncToInt32(std::min(a * static_cast<double>(f) + 0.5, 65535.0)));
              });
    }
    for (const double f : kScales) {
        SCOPED_TRACE(f);
        Check([=](auto a, auto, auto out, auto n) { kernels::StretchGreys(a, 1234.25, f, out, n); },
              [=](double a, double) { return WrapToPel(TruncToInt32((a - 1234.25) * f + 1234.25)); });
        for (const double w : {1.0, 255.0, 65535.0}) {
            Check([=](auto a, auto, auto out, auto n) { kernels::ScaleToMaximum(a, w, f, out, n); },
                  [=](double a, double) { return WrapToPel(TruncToInt32(std::min(a * w / f, 65535.0))); });
        }
    }
}

TEST_F(GreyArithmetic, MeansOfTwoScales) {
    for (const double sa : kScales) {
        for (const double sb : kScales) {
            for (const double n : {2.0, 3.0, 10.0, 2048.0, 2049.0, 4096.0, 4097.0, 2147483647.0}) {
                SCOPED_TRACE(testing::Message() << sa << ", " << sb << ", " << n);
                const double scale = std::max(sa, sb);
                Check(
                    [=](auto a, auto b, auto out, auto count) {
                        const Pel largest = kernels::FoldIntoMean(
                            {static_cast<float>(sb), static_cast<float>(sa), n, static_cast<float>(scale)}, a,
                            b, out, count);
                        EXPECT_EQ(largest, *std::max_element(out, out + count));
                    },
                    [=](double a, double b) {
                        return WrapToPel(TruncToInt32((a * sb + b * sa * (n - 1)) / n / scale));
                    });
            }
        }
    }
}

TEST_F(GreyArithmetic, SinglePrecisionSteps) {
    for (const float x : {1.0f, 0.3f, -3.0f, 65535.0f, 0.0f, 2e9f, kNan}) {
        SCOPED_TRACE(x);
        Check([=](auto a, auto b, auto out, auto n) { kernels::MultiplyGreys(a, b, x, out, n); },
              [=](Pel a, Pel b) {
                  const float v = static_cast<float>(a) * static_cast<float>(b) / x;
                  return v > 65535.0f ? Pel{65535} : WrapToPel(TruncToInt32(static_cast<double>(v)));
              });
        Check([=](auto a, auto b, auto out, auto n) { kernels::RootSumSquare(a, b, x, 0.7f, out, n); },
              [=](Pel a, Pel b) {
                  const auto fa = static_cast<float>(a);
                  const auto fb = static_cast<float>(b);
                  const float squares = fa * fa * x + fb * fb * 0.7f;
                  return WrapToPel(TruncToInt32(static_cast<double>(std::sqrt(squares))));
              });
    }
}

TEST_F(GreyArithmetic, QuotientsOfTwoImages) {
    for (const float whole : {40000.3f, 65535.0f, 65536.0f, 1.0f, 0.5f, -2.0f, 0.0f, kInfinity, kNan}) {
        SCOPED_TRACE(whole);
        Check([=](auto a, auto b, auto out, auto n) { kernels::DivideByFlatField(a, b, whole, out, n); },
              [=](double a, double b) {
                  const double fraction = b / static_cast<double>(whole);
                  const double v = fraction == 0.0 ? 0.0 : a / fraction;
                  return v > 65535.0 ? Pel{65535} : WrapToPel(TruncToInt32(v));
              });
    }
    for (const double sa : kScales) {
        for (const double sb : kScales) {
            SCOPED_TRACE(testing::Message() << sa << ", " << sb);
            const kernels::LuminanceRatio ratio{sa, sb, 1.0};
            const auto plain = [=](double a, double b) { return b * sb == 0.0 ? 1.0 : a * sa / (b * sb); };
            double largest = -1.0;
            for (std::size_t i = 0; i < a_.size(); ++i) {
                const double r = plain(a_[i], b_[i]);
                if (r > largest) largest = r;
            }
            tqtest::ForEachTarget([&] {
                EXPECT_EQ(kernels::LargestRatio(-1.0, ratio, a_.data(), b_.data(), a_.size()), largest);
            });
            for (const double scale : {1.0, 0.25, largest / 65000.0, 0.0}) {
                Check([=](auto a, auto b, auto out,
                          auto n) { kernels::WriteRatios(ratio, a, b, scale, out, n); },
                      [=](double a, double b) { return WrapToPel(TruncToInt32(plain(a, b) / scale + 0.5)); });
            }
            Check(
                [=](auto a, auto b, auto out, auto n) { kernels::SubtractLuminances(a, b, sa, sb, out, n); },
                [=](double a, double b) {
                    return tq::ClampToPel(TruncToInt32((a * sa - b * sb) / sa + 0.5));
                });
        }
    }
}

TEST_F(GreyArithmetic, SumsOfChannels) {
    for (const double sa : kScales) {
        for (const double sb : kScales) {
            SCOPED_TRACE(testing::Message() << sa << ", " << sb);
            // With a scale of 1 the third channel carries sums beyond single precision.
            const double sc = sa == 1.0 ? 1e36 : 0.25;
            const kernels::Channels channels{{a_.data(), b_.data(), c_.data()}, {sa, sb, sc}};
            std::vector<double> sums(a_.size());
            double largest = 0.0;
            for (std::size_t i = 0; i < sums.size(); ++i) {
                sums[i] = static_cast<double>(static_cast<float>(a_[i] * sa + b_[i] * sb + c_[i] * sc));
                if (sums[i] > largest) largest = sums[i];
            }
            tqtest::ForEachTarget(
                [&] { ASSERT_EQ(kernels::LargestLuminance(channels, sums.size()), largest); });
            for (const kernels::LuminanceScale& s : {kernels::LuminanceScale{255.0, largest, 0.0},
                                                     {1.0, 0.5, 0.5},
                                                     {1.0, largest / 65000.0, 0.5}}) {
                CheckRun([&](Pel* out) { kernels::WriteLuminances(channels, s, out, sums.size()); },
                         [&](std::size_t i) {
                             return WrapToPel(TruncToInt32(sums[i] * s.fullScale / s.largest + s.rounding));
                         });
            }
        }
    }
}

TEST_F(GreyArithmetic, GradientsStepByStep) {
    for (const float scale : {1.0f, 0.1f, 1e-38f, 1e30f, kInfinity, kNan}) {
        SCOPED_TRACE(scale);
        const kernels::Gradients g{{a_.data(), b_.data(), c_.data()}, {scale, 0.3f, 1.0f}, 0.7f, 0.2f};
        std::vector<float> roots(a_.size());
        float largest = 0.0f;
        for (std::size_t i = 0; i < roots.size(); ++i) {
            const float a = a_[i] * scale, b = b_[i] * 0.3f, c = c_[i];
            roots[i] = std::sqrt(a * a * 0.7f + (b * b + c * c) * 0.2f);
            if (roots[i] > largest) largest = roots[i];
        }
        tqtest::ForEachTarget([&] { ASSERT_EQ(kernels::LargestGradient(g, roots.size()), largest); });
        for (const float factor : {65000.0f / largest, 1.0f, kNan}) {
            CheckRun([&](Pel* out) { kernels::WriteGradients(g, factor, out, roots.size()); },
                     [&](std::size_t i) {
                         return tq::ClampToPel(TruncToInt32(static_cast<double>(roots[i] * factor)));
                     });
        }
    }
}

}  // namespace
