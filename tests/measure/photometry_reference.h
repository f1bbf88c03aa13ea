#pragma once

#include <cmath>
#include <cstdint>

#include "statistics.h"
#include "tqimage/photometry.h"

namespace tqtest {

/// A target of 257 x 193 pels at 1024 pels a metre, the axis at (128, 96), an eighth of a metre from the
/// source: 128 pels to the right are 45 degrees, and every co-ordinate is an exact binary fraction.
inline TqImageHeader TargetHeader() {
    TqImageHeader header = DefaultHeader(257, 193);
    header.PelsPerMeterX = header.PelsPerMeterY = 1024.0f;
    header.SourceDistance = 0.125f;
    header.LuxPerGrey = 0.25f;
    return header;
}

/// The intensity of a point of the target that has the mean pel `grey`, from cos(atan(rho / D)) as the
/// textbook writes it.
inline double CandelaReference(const TqImageHeader& header, double col, double row, double grey) {
    const double dx = (col - header.CenterCol) / header.PelsPerMeterX;
    const double dy = (header.CenterRow - row) / header.PelsPerMeterY;
    const double distance = header.SourceDistance;
    const double rho = std::hypot(dx, dy);
    return header.LuxPerGrey * grey * (rho * rho + distance * distance) / std::cos(std::atan(rho / distance));
}

/// What an intensity function reported; -9 where it wrote nothing.
struct Reading {
    double candela = -9, first = -9, second = -9, offAxis = -9;
    bool operator==(const Reading&) const = default;
};

inline void PrintTo(const Reading& it, std::ostream* out) {
    *out << it.candela << " cd at " << it.first << ", " << it.second << "; off axis " << it.offAxis;
}

/// The intensity functions with their four outputs gathered in one reading.
inline std::int32_t Read(Reading& it, const TqImage* image, std::int32_t col, std::int32_t row,
                         std::int32_t width, std::int32_t height, std::uint32_t mode) {
    return tqCalcCandela(image, col, row, &it.candela, &it.first, &it.second, &it.offAxis, width, height,
                         mode);
}

inline std::int32_t ReadEllipse(decltype(&tqCalcMaxCandelaInEllipse) function, Reading& it,
                                const TqImage* image, std::int32_t col, std::int32_t row, std::int32_t width,
                                std::int32_t height, std::uint32_t mode) {
    return function(image, col, row, &it.candela, &it.first, &it.second, &it.offAxis, width, height, mode);
}

inline std::int32_t ReadPolygon(decltype(&tqCalcPolyCandela) function, Reading& it, const TqImage* image,
                                SAFEARRAY** vertices, std::uint32_t mode) {
    return function(image, vertices, &it.candela, &it.first, &it.second, &it.offAxis, mode);
}

}  // namespace tqtest
