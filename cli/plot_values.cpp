#include "plot_values.h"

#include <limits>

#include "tqimage/histogram.h"
#include "tqimage/plots.h"
#include "tqimage/profiles.h"

namespace cli {
namespace {

/// What a call that makes a one-dimensional array hands over.
template <typename Element, typename Make>
std::vector<double> TakeArray(const std::string& name, const char* what, Make&& make) {
    SAFEARRAY* array = nullptr;
    const std::int32_t status = make(&array);
    std::vector<double> values;
    Element element{};
    for (LONG index = 0; status == 0 && SafeArrayGetElement(array, &index, &element) == S_OK; ++index)
        values.push_back(static_cast<double>(element));
    if (array != nullptr) SafeArrayDestroy(array);
    Require(status, name, what);
    return values;
}

}  // namespace

void MakePolar(const HostImage& image, const std::string& name, std::array<std::int32_t, 2> size,
               const PolarForm& form, HostImage& polar) {
    Require(
        tqCreatePolarImage(polar.Address(), image.Get(), size[0], size[1], static_cast<float>(form.maxAngle),
                           static_cast<std::int32_t>(form.projection), form.grey ? 0 : 1),
        name, "the polar image");
}

std::vector<double> ColumnMeans(const HostImage& image, const std::string& name, const Region& area) {
    const auto& [left, top, right, bottom] = area.box;
    return TakeArray<double>(name, "the means of the columns", [&](SAFEARRAY** array) {
        return tqGetColAvg(image.Get(), left, top, right, bottom, array);
    });
}

std::vector<double> RowMeans(const HostImage& image, const std::string& name, const Region& area) {
    const auto& [left, top, right, bottom] = area.box;
    return TakeArray<double>(name, "the means of the rows", [&](SAFEARRAY** array) {
        return tqGetRowAvg(image.Get(), left, top, right, bottom, array);
    });
}

std::vector<double> Histogram(const HostImage& image, const std::string& name) {
    return TakeArray<std::int32_t>(name, "the histogram",
                                   [&](SAFEARRAY** array) { return tqGetHistogram(image.Get(), array); });
}

std::vector<double> AroundTheAxis(const HostImage& image, const std::string& name, const PolarForm& form) {
    constexpr std::int32_t kDegrees = 360;
    HostImage polar(1, 1);
    MakePolar(image, name, {kDegrees, 2}, form, polar);
    const double scale = form.grey ? 1.0 : static_cast<double>(polar.Header().LuxPerGrey);
    std::vector<double> values;
    for (std::int32_t degree = 0; degree < kDegrees; ++degree) {
        const std::uint16_t pel = polar.Row(1)[degree];
        values.push_back(pel == 0 ? std::numeric_limits<double>::quiet_NaN() : pel * scale);
    }
    return values;
}

}  // namespace cli
