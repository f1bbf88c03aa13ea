#include <algorithm>
#include <cstdint>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/pel_access.h"
#include "measure/block_average.h"
#include "measure/intensity_scan.h"
#include "measure/photometric_frame.h"
#include "measure/polygon_scan.h"
#include "measure/region_shapes.h"
#include "measure/span_consumers.h"
#include "measure/vertex_array.h"
#include "tqimage/photometry.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNoScaleOrDistance = -2;
constexpr std::int32_t kNoAverage = -1;

/// Where a host wants a direction and its intensity.
struct DirectionOutputs {
    double* candela;
    double* firstAngle;
    double* secondAngle;
    double* offAxisAngle;
    std::uint32_t angleMode;

    void Write(const PhotometricFrame& frame, std::int32_t col, std::int32_t row, double intensity) const {
        const TargetPoint point = frame.PointOf(col, row);
        WriteAngles(frame, point, angleMode, firstAngle, secondAngle);
        *offAxisAngle = OffAxisAngle(frame, point);
        *candela = intensity;
    }

    /// The direction of a region as a whole: its position and its mean grey level.
    void WriteMean(const PhotometricFrame& frame, std::int32_t col, std::int32_t row, double grey) const {
        Write(frame, col, row, frame.Intensity(frame.LuxPerGrey() * grey, frame.PointOf(col, row)));
    }
};

/// Mean vertex of a polygon, truncated: the direction that stands for all of it.
Vertex MeanVertex(const std::vector<Vertex>& vertices) {
    std::int64_t cols = 0;
    std::int64_t rows = 0;
    for (const Vertex& vertex : vertices) {
        cols += vertex.col;
        rows += vertex.row;
    }
    const auto count = static_cast<std::int64_t>(vertices.size());
    return {static_cast<std::int32_t>(cols / count), static_cast<std::int32_t>(rows / count)};
}

template <Extreme extreme, class Produce>
void WriteExtreme(const ConstImageView& view, const PhotometricFrame& frame, const DirectionOutputs& outputs,
                  Produce&& produce) {
    // A region without light has no largest intensity: its search starts at 0 and leaves the angles
    // unwritten.
    IntensityScan<extreme, CandelaRanking> scan({frame});
    produce([&](std::int32_t row, std::int32_t first, std::int32_t last) {
        scan.Offer(row, first, view.Row(row) + first, static_cast<std::size_t>(last - first + 1));
    });
    *outputs.candela = 0.0;
    if (scan.Found()) outputs.Write(frame, scan.Col(), scan.Row(), scan.Best());
}

template <Extreme extreme>
std::int32_t ExtremeInEllipse(const TqImage* image, const Ellipse& ellipse, const DirectionOutputs& outputs) {
    *outputs.candela = 0.0;
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const PhotometricFrame frame(*view.header);
    if (!frame.HasScaleAndDistance()) return kNoScaleOrDistance;
    WriteExtreme<extreme>(view, frame, outputs, [&](auto&& visit) {
        if (ellipse.IsPoint()) {
            const std::int32_t col = std::clamp(ellipse.centerCol, 0, view.cols - 1);
            visit(std::clamp(ellipse.centerRow, 0, view.rows - 1), col, col);
        } else {
            // Unlike in the grey statistics the box lies around the centre as passed: an ellipse centred
            // outside the image is not drawn toward it.
            VisitEllipse(view, ellipse, EllipseBox::kAroundCentre, visit);
        }
    });
    return 0;
}

template <Extreme extreme>
std::int32_t ExtremeInPolygon(const TqImage* image, SAFEARRAY** array, const DirectionOutputs& outputs) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidPolygonImage;
    const PhotometricFrame frame(*view.header);
    if (!frame.HasScaleAndDistance()) return kNoScaleOrDistance;
    return Guarded(kInvalidPolygonImage, [&] {
        const auto vertices = ReadVertices(array);
        if (!vertices) return kUnreadableVertex;
        WriteExtreme<extreme>(view, frame, outputs,
                              [&](auto&& visit) { VisitPolygon(view, *vertices, visit); });
        return 0;
    });
}

}  // namespace

std::int32_t TQ_CALL tqCalcCandela(const TqImage* image, std::int32_t column, std::int32_t row,
                                   double* candela, double* firstAngle, double* secondAngle,
                                   double* offAxisAngle, std::int32_t blockWidth, std::int32_t blockHeight,
                                   std::uint32_t angleMode) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const TqImageHeader& header = *view.header;
    const PhotometricFrame frame(header);
    if (!frame.HasScaleAndDistance()) return kNoScaleOrDistance;
    const std::int32_t width = MeasuringBlock(blockWidth, header.PelsPerMeterX, view.cols);
    const std::int32_t height = MeasuringBlock(blockHeight, header.PelsPerMeterY, view.rows);
    const DirectionOutputs outputs{candela, firstAngle, secondAngle, offAxisAngle, angleMode};
    outputs.WriteMean(frame, column, row, EllipseAverage(view, column, row, width, height));
    return 0;
}

std::int32_t TQ_CALL tqCalcPolyCandela(const TqImage* image, SAFEARRAY** vertices, double* candela,
                                       double* firstAngle, double* secondAngle, double* offAxisAngle,
                                       std::uint32_t angleMode) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidPolygonImage;
    const PhotometricFrame frame(*view.header);
    if (!frame.HasScaleAndDistance()) return kNoScaleOrDistance;
    return Guarded(kNoAverage, [&] {
        const auto list = ReadVertices(vertices);
        if (!list) return kUnreadableVertex;
        if (list->empty()) return kNoAverage;
        TotalAtLeast total(0);
        VisitPolygon(view, *list, OnPelsOf(view, total));
        const Vertex center = MeanVertex(*list);
        const DirectionOutputs outputs{candela, firstAngle, secondAngle, offAxisAngle, angleMode};
        outputs.WriteMean(frame, center.col, center.row, total.Mean());
        return 0;
    });
}

std::int32_t TQ_CALL tqCalcMaxCandelaInEllipse(const TqImage* image, std::int32_t centerCol,
                                               std::int32_t centerRow, double* candela, double* firstAngle,
                                               double* secondAngle, double* offAxisAngle, std::int32_t width,
                                               std::int32_t height, std::uint32_t angleMode) {
    return ExtremeInEllipse<Extreme::kLargest>(image, {centerCol, centerRow, width, height},
                                               {candela, firstAngle, secondAngle, offAxisAngle, angleMode});
}

std::int32_t TQ_CALL tqCalcMinCandelaInEllipse(const TqImage* image, std::int32_t centerCol,
                                               std::int32_t centerRow, double* candela, double* firstAngle,
                                               double* secondAngle, double* offAxisAngle, std::int32_t width,
                                               std::int32_t height, std::uint32_t angleMode) {
    return ExtremeInEllipse<Extreme::kSmallest>(image, {centerCol, centerRow, width, height},
                                                {candela, firstAngle, secondAngle, offAxisAngle, angleMode});
}

std::int32_t TQ_CALL tqCalcMaxPolyCandela(const TqImage* image, SAFEARRAY** vertices, double* candela,
                                          double* firstAngle, double* secondAngle, double* offAxisAngle,
                                          std::uint32_t angleMode) {
    return ExtremeInPolygon<Extreme::kLargest>(image, vertices,
                                               {candela, firstAngle, secondAngle, offAxisAngle, angleMode});
}

std::int32_t TQ_CALL tqCalcMinPolyCandela(const TqImage* image, SAFEARRAY** vertices, double* candela,
                                          double* firstAngle, double* secondAngle, double* offAxisAngle,
                                          std::uint32_t angleMode) {
    return ExtremeInPolygon<Extreme::kSmallest>(image, vertices,
                                                {candela, firstAngle, secondAngle, offAxisAngle, angleMode});
}
