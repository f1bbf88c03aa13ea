#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "colours.h"
#include "tqimage/adaptive_colour.h"

namespace tqtest {
namespace {

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
    std::vector<float> matrices, chroma;
    for (const Response& it : sources) {
        const std::vector<float> exact = Flat(fit.ExactFor(it));
        matrices.insert(matrices.end(), exact.begin(), exact.end());
        const Uv at = UvOf(Multiply(base, it.rgb));
        chroma.insert(chroma.end(), {static_cast<float>(at.u), static_cast<float>(at.v)});
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
    std::array<Image, 3> adapted;
    const auto adapt = [&](auto... k) {
        return tqAdaptiveColor(adapted[0].Address(), adapted[1].Address(), adapted[2].Address(), set[0],
                               set[1], set[2], k..., static_cast<std::int32_t>(sources.size()),
                               matrices.data(), chroma.data(), 2.0f);
    };
    ASSERT_EQ(WithMatrix(adapt, base), 0);
    const auto adaptedAt = [&](std::size_t i) {
        Triple xyz;
        for (std::size_t k = 0; k < 3; ++k)
            xyz[k] = adapted[k].Pels()[i] * double{adapted[k].Header().LuxPerGrey};
        return xyz;
    };
    double adaptive = 0, one = 0;
    for (std::size_t i = 0; i < scene.size(); ++i) {
        const double error = Distance(UvOf(adaptedAt(i)), UvOf(scene[i].xyz));
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

}  // namespace
}  // namespace tqtest
