#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <random>
#include <utility>

#include "calibration/linear_algebra.h"
#include "calibration/polynomial.h"
#include "calibration/thin_plate.h"
#include "platform/message_queue.h"

// Conjugate gradients on the weights of a thin-plate spline, with the preconditioner of Faul, Goodsell and
// Powell: each point contributes the spline that is 1 there and 0 at its nearest neighbours. Ten to twenty
// steps usually do, and each costs one evaluation of the spline at its points.

namespace tq {
namespace {

/// Size of the neighbourhoods. With 30 the number of steps hardly depends on the number of points any more.
constexpr std::size_t kNeighbours = 30;
/// Where the points are so badly placed that it does not converge, the surface stays close to them.
constexpr int kMostSteps = 60;
/// What may be left at a point, as a share of the largest value of the points: a sixtieth of what single
/// precision tells apart. Of the values and not of what a polynomial left of them, which can be all rounding.
constexpr double kTolerance = 1e-9;

double Dot(std::span<const double> a, std::span<const double> b) noexcept {
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

struct Neighbourhood {
    std::array<std::size_t, kNeighbours> point;  ///< the first one is that of the neighbourhood
    std::array<double, kNeighbours> weight;
};

SplineEquations EquationsOf(const SurfacePoints& points, std::span<const std::size_t> chosen) {
    std::vector<double> x(chosen.size());
    std::vector<double> y(chosen.size());
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        x[i] = points.x[chosen[i]];
        y[i] = points.y[chosen[i]];
    }
    const double x0 = x.front();
    const double y0 = y.front();
    double extent = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i)
        extent = std::max({extent, std::abs(x[i] - x0), std::abs(y[i] - y0)});
    std::vector<double> linear(x.size(), 1.0);
    linear.reserve(3 * x.size());
    for (const double value : x)
        linear.push_back((value - x0) / extent);
    for (const double value : y)
        linear.push_back((value - y0) / extent);
    return {LogRadialMatrix({x.data(), y.data(), x.size()}), linear};
}

class Preconditioner {
  public:
    explicit Preconditioner(const SurfacePoints& points)
        : order_(Shuffled(points.Count())), last_(Last(points)) {
        for (std::size_t first = 0; first + kNeighbours < order_.size(); ++first) {
            if (first % 64 == 0) PumpMessages();
            neighbourhoods_.push_back(Around(points, first));
        }
    }

    std::vector<double> operator()(std::span<const double> rest) const {
        std::vector<double> weights(rest.size());
        for (const Neighbourhood& n : neighbourhoods_) {
            double product = 0.0;
            for (std::size_t i = 0; i < kNeighbours; ++i)
                product += n.weight[i] * rest[n.point[i]];
            for (std::size_t i = 0; i < kNeighbours; ++i)
                weights[n.point[i]] += product * n.weight[i];
        }
        std::vector<double> values;
        for (const std::size_t p : Tail())
            values.push_back(rest[p]);
        const std::vector<double> lastWeights = last_.Weights(values);
        for (std::size_t i = 0; i < kNeighbours; ++i)
            weights[Tail()[i]] += lastWeights[i];
        return weights;
    }

  private:
    /// Neighbourhoods are taken among the points that follow, so the order has to be without any pattern;
    /// and the same everywhere, which std::shuffle is not.
    static std::vector<std::size_t> Shuffled(std::size_t count) {
        std::vector<std::size_t> order(count);
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::mt19937 random;
        for (std::size_t i = count - 1; i > 0; --i)
            std::swap(order[i], order[random() % (i + 1)]);
        return order;
    }
    std::span<const std::size_t> Tail() const noexcept { return std::span(order_).last(kNeighbours); }
    SplineEquations Last(const SurfacePoints& points) const { return EquationsOf(points, Tail()); }

    Neighbourhood Around(const SurfacePoints& points, std::size_t first) {
        const std::size_t self = order_[first];
        ranked_.clear();
        for (std::size_t i = first; i < order_.size(); ++i) {
            const double dx = points.x[order_[i]] - points.x[self];
            const double dy = points.y[order_[i]] - points.y[self];
            ranked_.emplace_back(dx * dx + dy * dy, order_[i]);
        }
        const auto end = ranked_.begin() + static_cast<std::ptrdiff_t>(kNeighbours);
        std::partial_sort(ranked_.begin(), end, ranked_.end());
        Neighbourhood n;
        std::transform(ranked_.begin(), end, n.point.begin(),
                       [](const auto& ranked) { return ranked.second; });
        std::array<double, kNeighbours> one{1.0};
        const std::vector<double> weights = EquationsOf(points, n.point).Weights(one);
        // Scaled by the root of its own weight, which is what the spline's energy amounts to.
        const double energy = weights.front();
        const double scale = energy > 0.0 ? 1.0 / std::sqrt(energy) : 0.0;
        std::transform(weights.begin(), weights.end(), n.weight.begin(),
                       [&](double weight) { return weight * scale; });
        return n;
    }

    std::vector<std::size_t> order_;
    SplineEquations last_;
    std::vector<Neighbourhood> neighbourhoods_;
    std::vector<std::pair<double, std::size_t>> ranked_;
};

/// What a linear trend cannot explain.
double LargestRest(const SurfacePoints& points, std::span<const double> rest) {
    const Polynomial trend = FitPolynomial(points, rest, 1, Deficient::kLeastNorm);
    double largest = 0.0;
    for (std::size_t i = 0; i < rest.size(); ++i)
        largest = std::max(largest, std::abs(rest[i] - trend.At(points.x[i], points.y[i])));
    return largest;
}

}  // namespace

std::vector<double> ThinPlateWeightsOfMany(const SurfacePoints& points, std::span<const double> values) {
    const double enough = kTolerance * points.LargestValue();
    std::vector<double> weights(values.size());
    std::vector<double> rest(values.begin(), values.end());
    if (LargestRest(points, rest) <= enough) return weights;

    const Preconditioner precondition(points);
    std::vector<double> direction;
    std::vector<double> sums;
    double energy = 0.0;
    for (int step = 0; step < kMostSteps; ++step) {
        std::vector<double> next = precondition(rest);
        const double overlap = step == 0 ? 0.0 : Dot(next, sums) / energy;
        for (std::size_t i = 0; step > 0 && i < next.size(); ++i)
            next[i] -= overlap * direction[i];
        direction = std::move(next);
        sums = LogRadialSumsAtPoints(points, direction);
        energy = Dot(direction, sums);
        // Written so that NaN ends it as well: roundings are all that is left.
        if (!(energy > 0.0)) break;
        const double length = Dot(direction, rest) / energy;
        for (std::size_t i = 0; i < rest.size(); ++i) {
            weights[i] += length * direction[i];
            rest[i] -= length * sums[i];
        }
        if (LargestRest(points, rest) <= enough) break;
    }
    return weights;
}

}  // namespace tq
