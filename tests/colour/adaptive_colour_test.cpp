#include "tqimage/adaptive_colour.h"

#include <algorithm>
#include <limits>
#include <random>

#include "colours.h"

namespace tqtest {
namespace {

struct Uv {
    double u, v;
};

Uv UvOf(const Triple& xyz) {
    const double d = xyz[0] + 15 * xyz[1] + 3 * xyz[2];
    return d == 0 ? Uv{0, 0} : Uv{4 * xyz[0] / d, 9 * xyz[1] / d};
}

double Distance(Uv a, Uv b) {
    return std::hypot(a.u - b.u, a.v - b.v);
}

/// Matrices of nine coefficients and chromaticities one after another, as hosts pass them.
struct Tables {
    std::vector<float> matrices;
    std::vector<float> chroma;

    std::int32_t Count() const { return static_cast<std::int32_t>(chroma.size() / 2); }
    Uv At(std::size_t k) const { return {double(chroma[2 * k]), double(chroma[2 * k + 1])}; }
    Matrix MatrixAt(std::size_t k) const {
        Matrix m;
        std::copy_n(matrices.begin() + static_cast<std::ptrdiff_t>(9 * k), 9, m.begin());
        return m;
    }
};

struct Outcome {
    std::array<Image, 3> out;
    std::int32_t status = 1;
    Triple At(std::size_t i) const {
        Triple xyz;
        for (std::size_t k = 0; k < 3; ++k)
            xyz[k] = out[k].Pels()[i] * double(out[k].Header().LuxPerGrey);
        return xyz;
    }
};

Outcome Adapt(const ChannelSet& set, const Matrix& m, const Tables& tables, float power) {
    Outcome it;
    WithMatrix(
        [&](auto... k) {
            it.status = tqAdaptiveColor(it.out[0].Address(), it.out[1].Address(), it.out[2].Address(), set[0],
                                        set[1], set[2], k..., tables.Count(), tables.matrices.data(),
                                        tables.chroma.data(), power);
        },
        m);
    return it;
}

Triple ValuesAt(const ChannelSet& set, std::size_t i) {
    Triple value = set.At(i);
    for (std::size_t k = 0; k < 3; ++k)
        value[k] *= double(set.images[k].Header().LuxPerGrey);
    return value;
}

/// Four matrices that tell their weights apart, at colours in the middle of the noise's.
Tables FourTables() {
    Tables tables{{}, {0.15f, 0.3f, 0.25f, 0.4f, 0.2f, 0.55f, 0.3f, 0.3f}};
    for (const Matrix& m : {kIdentity, kSrgb, kMixed, Matrix{2, 0, 0, 0, 3, 0, 0, 0, 1}})
        tables.matrices.insert(tables.matrices.end(), m.begin(), m.end());
    return tables;
}

TEST(AdaptiveColour, BlendsTheMatricesByDistance) {
    ChannelSet set = NoiseChannels(61, 23, 7);
    Tables tables = FourTables();
    // The colour of pel 5 is a calibration: its matrix has the word alone.
    const Uv own = UvOf(Multiply(kSrgb, ValuesAt(set, 5)));
    tables.chroma[6] = static_cast<float>(own.u);
    tables.chroma[7] = static_cast<float>(own.v);
    for (const auto& [power, effective] : {std::pair{0.0f, 2.0},
                                           {-3.0f, 2.0},
                                           {2.0f, 2.0},
                                           {1.0f, 1.0},
                                           {3.7f, double(3.7f)},
                                           {0.01f, double(0.01f)},
                                           {200.0f, 200.0}}) {
        const Outcome it = Adapt(set, kSrgb, tables, power);
        ASSERT_EQ(it.status, 0);
        std::array<std::vector<double>, 3> expected;
        for (std::size_t i = 0; i < set.images[0].Count(); ++i) {
            const Triple value = ValuesAt(set, i);
            const Uv at = UvOf(Multiply(kSrgb, value));
            double distance[4], nearest = 1e9;
            for (std::size_t k = 0; k < 4; ++k)
                nearest = std::min(nearest, distance[k] = Distance(at, tables.At(k)));
            Triple sum{};
            double total = 0;
            for (std::size_t k = 0; k < 4; ++k) {
                const double weight =
                    nearest < 1e-6 ? distance[k] == nearest : std::pow(nearest / distance[k], effective);
                const Triple part = Multiply(tables.MatrixAt(k), value);
                for (std::size_t c = 0; c < 3; ++c)
                    sum[c] += weight * part[c];
                total += weight;
            }
            for (std::size_t c = 0; c < 3; ++c)
                expected[c].push_back(sum[c] / total);
        }
        for (std::size_t c = 0; c < 3; ++c) {
            const double largest = *std::max_element(expected[c].begin(), expected[c].end());
            TqImageHeader header = set.images[c].Header();
            header.LuxPerGrey = it.out[c].Header().LuxPerGrey;
            EXPECT_TRUE(SameHeader(header, it.out[c].Header()));
            EXPECT_FLOAT_EQ(header.LuxPerGrey, static_cast<float>(largest / 65000));
            for (std::size_t i = 0; i < expected[c].size(); ++i)
                ASSERT_NEAR(it.out[c].Pels()[i], std::max(expected[c][i], 0.0) / double(header.LuxPerGrey),
                            0.5001)
                    << power << ", " << i;
        }
    }
    // The form for four is the same; tables and powers that are no numbers leave defined pels.
    Outcome four;
    WithMatrix(
        [&](auto... k) {
            four.status =
                tqAdaptiveColor4(four.out[0].Address(), four.out[1].Address(), four.out[2].Address(), set[0],
                                 set[1], set[2], k..., tables.matrices.data(), tables.chroma.data(), 2);
        },
        kSrgb);
    ASSERT_EQ(four.status, 0);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Outcome usual = Adapt(set, kSrgb, tables, nan);
    EXPECT_TRUE(SamePels(four.out[2], usual.out[2]));
    tables.chroma.assign(8, nan);
    const Outcome none = Adapt(set, kSrgb, tables, std::numeric_limits<float>::infinity());
    EXPECT_EQ(none.out[1].Values(), std::vector<std::uint16_t>(set.images[0].Count(), 0));
}

TEST(AdaptiveColour, SelectNamesTheNearestCalibration) {
    const ChannelSet set = NoiseChannels(61, 23, 17);
    Tables tables = FourTables();
    tables.chroma.insert(tables.chroma.end(), {0.25f, 0.4f});  // as near as the second, which is first
    Image out;
    WithMatrix(
        [&](auto... k) {
            ASSERT_EQ(tqAdaptiveSelect(out.Address(), set[0], set[1], set[2], k..., 5, tables.chroma.data()),
                      0);
        },
        kSrgb);
    TqImageHeader header = set.images[1].Header();
    header.LuxPerGrey = 1;
    header.MaxPelValue = 5;
    EXPECT_TRUE(SameHeader(header, out.Header()));
    for (std::size_t i = 0; i < out.Count(); ++i) {
        const Triple xyz = Multiply(kSrgb, ValuesAt(set, i));
        std::size_t best = 0;
        for (std::size_t k = 1; k < 5; ++k)
            if (Distance(UvOf(xyz), tables.At(k)) < Distance(UvOf(xyz), tables.At(best))) best = k;
        const bool dark = xyz[0] + 15 * xyz[1] + 3 * xyz[2] == 0;
        ASSERT_EQ(out.Pels()[i], dark ? 0 : best + 1) << i;
    }
}

// A camera whose filters are not the observer's, and the LEDs of a display.

double Bell(double nm, double peak, double below, double above) {
    const double t = (nm - peak) / (nm < peak ? below : above);
    return std::exp(-0.5 * t * t);
}

/// What the observer (CIE 1931, as the fit of Wyman, Sloan and Shirley, 2013) and the camera make of a
/// spectrum.
struct Response {
    Triple xyz{}, rgb{};

    template <class Spectrum>
    explicit Response(Spectrum&& power) {
        for (double nm = 380; nm <= 780; nm += 2) {
            const double p = power(nm);
            xyz[0] += p * (1.056 * Bell(nm, 599.8, 37.9, 31.0) + 0.362 * Bell(nm, 442.0, 16.0, 26.7) -
                           0.065 * Bell(nm, 501.1, 20.4, 26.2));
            xyz[1] += p * (0.821 * Bell(nm, 568.8, 46.9, 40.5) + 0.286 * Bell(nm, 530.9, 16.3, 31.1));
            xyz[2] += p * (1.217 * Bell(nm, 437.0, 11.8, 36.0) + 0.681 * Bell(nm, 459.0, 26.0, 13.8));
            rgb[0] += p * Bell(nm, 605, 35, 35);
            rgb[1] += p * Bell(nm, 550, 40, 40);
            rgb[2] += p * Bell(nm, 450, 28, 28);
        }
    }
    Response() = default;
    void Add(double share, const Response& other) {
        for (std::size_t k = 0; k < 3; ++k) {
            xyz[k] += share * other.xyz[k];
            rgb[k] += share * other.rgb[k];
        }
    }
};

using Square = std::array<Triple, 3>;

Triple Apply(const Square& m, const Triple& v) {
    Triple out{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            out[i] += m[i][j] * v[j];
    return out;
}

Square Inverse(const Square& a) {
    Square out;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const std::size_t r = (i + 1) % 3, s = (i + 2) % 3, c = (j + 1) % 3, d = (j + 2) % 3;
            out[j][i] = a[r][c] * a[s][d] - a[r][d] * a[s][c];
        }
    }
    const double det = a[0][0] * out[0][0] + a[0][1] * out[1][0] + a[0][2] * out[2][0];
    for (Triple& row : out)
        for (double& value : row)
            value /= det;
    return out;
}

/// The least-squares matrix from rgb to XYZ over the sources; and the best of those that are exact for one.
struct Fit {
    Square moments{}, inverse{}, matrix{};

    explicit Fit(const std::vector<Response>& sources) {
        Square cross{};
        for (const Response& it : sources) {
            for (std::size_t i = 0; i < 3; ++i) {
                for (std::size_t j = 0; j < 3; ++j) {
                    moments[i][j] += it.rgb[i] * it.rgb[j];
                    cross[i][j] += it.xyz[i] * it.rgb[j];
                }
            }
        }
        inverse = Inverse(moments);
        for (std::size_t i = 0; i < 3; ++i)
            matrix[i] = Apply(inverse, cross[i]);
    }
    Square ExactFor(const Response& it) const {
        const Triple v = Apply(inverse, it.rgb), seen = Apply(matrix, it.rgb);
        const double length = v[0] * it.rgb[0] + v[1] * it.rgb[1] + v[2] * it.rgb[2];
        Square out = matrix;
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                out[i][j] += (it.xyz[i] - seen[i]) * v[j] / length;
        return out;
    }
};

std::vector<float> Flat(const Square& m) {
    std::vector<float> out;
    for (const Triple& row : m)
        for (const double value : row)
            out.push_back(static_cast<float>(value));
    return out;
}

TEST(AdaptiveColour, IsExactAtTheCalibrationsAndBetterBetweenThemThanOneMatrix) {
    const auto led = [](double peak, double width) {
        return Response([=](double nm) { return Bell(nm, peak, width, width); });
    };
    // Colours along the edge of the gamut, as wide-gamut displays mix them: neighbours only, so that a colour
    // tells its spectrum.
    std::vector<Response> sources{led(630, 10), led(593, 10), led(525, 17), led(490, 12), led(460, 12)};
    for (Response& it : sources) {
        Response scaled;
        scaled.Add(1 / *std::max_element(it.rgb.begin(), it.rgb.end()), it);
        it = scaled;
    }
    const Fit fit(sources);
    Matrix base;
    std::ranges::copy(Flat(fit.matrix), base.begin());
    Tables tables;
    for (const Response& it : sources) {
        const std::vector<float> exact = Flat(fit.ExactFor(it));
        tables.matrices.insert(tables.matrices.end(), exact.begin(), exact.end());
        const Uv at = UvOf(Multiply(base, it.rgb));
        tables.chroma.insert(tables.chroma.end(), {static_cast<float>(at.u), static_cast<float>(at.v)});
    }
    std::mt19937 engine(4);
    const auto random = [&] { return static_cast<double>(engine()) / 4294967296.0; };
    constexpr std::int32_t kMixtures = 2000;
    std::vector<Response> scene = sources;
    for (std::int32_t i = 0; i < kMixtures; ++i) {
        Response mixture;
        const std::size_t k = engine() % (sources.size() - 1);
        mixture.Add(random(), sources[k]);
        mixture.Add(random(), sources[k + 1]);
        scene.push_back(mixture);
    }
    ChannelSet set;
    for (std::size_t k = 0; k < 3; ++k) {
        set.images[k] = MakeImage(static_cast<std::int32_t>(scene.size()), 1, [&](auto col, auto) {
            return static_cast<int>(scene[static_cast<std::size_t>(col)].rgb[k] * 32000 + 0.5);
        });
        set.images[k].Header().LuxPerGrey = 1 / 32000.0f;
    }
    const Outcome it = Adapt(set, base, tables, 2);
    ASSERT_EQ(it.status, 0);
    double adaptive = 0, one = 0;
    for (std::size_t i = 0; i < scene.size(); ++i) {
        const double error = Distance(UvOf(it.At(i)), UvOf(scene[i].xyz));
        if (i < sources.size()) {
            EXPECT_LT(error, 1e-4) << i;
        } else {
            adaptive += error * error;
            const double plain = Distance(UvOf(Multiply(base, scene[i].rgb)), UvOf(scene[i].xyz));
            one += plain * plain;
        }
    }
    EXPECT_LT(adaptive, one);
}

TEST(AdaptiveColour, CodesAliasesAndMemory) {
    const Tables tables = FourTables();
    Image x, y, z;
    const auto select = [&](auto a, auto b, auto c, int count, const float* chroma) {
        return tqAdaptiveSelect(x.Address(), a, b, c, 1, 0, 0, 0, 1, 0, 0, 0, 1, count, chroma);
    };
    const auto blend = [&](TqImage** out, auto a, auto b, auto c, int count, const float* matrices,
                           const float* chroma) {
        return tqAdaptiveColor(out, y.Address(), z.Address(), a, b, c, 1, 0, 0, 0, 1, 0, 0, 0, 1, count,
                               matrices, chroma, 1.5f);
    };
    const float *const m = tables.matrices.data(), *const uv = tables.chroma.data();
    const ChannelCall calls[] = {
        [&](auto a, auto b, auto c) { return select(a, b, c, 4, uv); },
        [&](auto a, auto b, auto c) { return blend(x.Address(), a, b, c, 4, m, uv); },
        [&](auto a, auto b, auto c) {
            return tqAdaptiveColor4(x.Address(), y.Address(), z.Address(), a, b, c, 1, 0, 0, 0, 1, 0, 0, 0, 1,
                                    m, uv, 2);
        }};
    const ChannelSet set = NoiseChannels(9, 5, 1);
    for (const ChannelCall& call : calls) {
        ExpectChannelCodes({-2, -3, -4, -5, -6}, call);
        if (!CanFailAllocations()) continue;
        EXPECT_GE(FailEachAllocation(-8, 0, [&] { return call(set[0], set[1], set[2]); }), 2);
    }
    const std::vector<float> many(64 * 9, 0.25f);
    for (const auto& [count, status] : {std::pair{64, 0}, {65, -7}, {0, -7}, {-1, -7}}) {
        EXPECT_EQ(select(set[0], set[1], set[2], count, many.data()), status);
        EXPECT_EQ(blend(x.Address(), set[0], set[1], set[2], count, many.data(), many.data()), status);
    }
    EXPECT_EQ(select(set[0], set[1], set[2], 4, nullptr), -7);
    EXPECT_EQ(blend(x.Address(), set[0], set[1], set[2], 4, nullptr, uv), -7);
    EXPECT_EQ(blend(x.Address(), set[0], set[1], set[2], 4, m, nullptr), -7);
    EXPECT_EQ(blend(nullptr, set[0], set[1], set[2], 4, m, uv), -2);
    // An output may hold an input.
    ASSERT_EQ(blend(x.Address(), set[0], set[1], set[2], 4, m, uv), 0);
    ChannelSet host = set;
    ASSERT_EQ(blend(host.images[1].Address(), host[0], host[1], host[2], 4, m, uv), 0);
    EXPECT_TRUE(SamePels(x, host.images[1]));
}

}  // namespace
}  // namespace tqtest
