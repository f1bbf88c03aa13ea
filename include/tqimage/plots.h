/** @file plots.h
 *  Plots: an image over polar co-ordinates, the disc that shows those, and graphs of values.
 *
 *  A polar image has one column a direction about the optical axis, counted from the right over the top
 *  (column c is c x 360 / columns degrees, so that the last column neighbours the first), and one row an
 *  angle off the axis: row 0 is the axis itself, the last row the largest angle. A pel of 0 has no data.
 *
 *  Every plot starts with the header of the generated images: the centre in the middle, 1000 pels a metre,
 *  MaxPelValue 65535, binning factors of 1, the rest 0. What a function stores beyond that it says.
 */
#ifndef TQIMAGE_PLOTS_H
#define TQIMAGE_PLOTS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup plots Plots
 *  @ingroup patterns
 *  @copydoc plots.h
 *  @{ */

/**
 * @brief Unrolls an image about its optical axis: columns are azimuths, rows are angles off the axis.
 *
 * The direction of a pel of the result lies in the image at SourceDistance x f(angle) metres from the centre,
 * sampled bilinearly and rounded; a place outside the image gives 0. f is the tangent for a target that is
 * seen as it is, and the mapping of the lens for one that stands in the image otherwise.
 *
 * @param[in,out] out    Address of the host's block pointer; receives the polar image. Untouched after a
 *                       failure.
 * @param[in] image      Image with resolutions, centre and SourceDistance.
 * @param[in] cols       Directions all around, 1..8000.
 * @param[in] rows       Angles from the axis to maxAngle, 1..8000; 1 is the axis alone.
 * @param[in] maxAngle   Angle of the last row, degrees, above 0; at most 90, with projection 1 at most 180.
 * @param[in] projection 0 flat target (tangent of the angle), 1 the angle itself (f-theta lens), 2 its sine.
 * @param[in] quantity   0 grey levels; 1 luminous intensity: LuxPerGrey x grey x R^2 / cos(angle) with R =
 *                       SourceDistance / cos(angle), the way to the flat target, which from 90 degrees on
 *                       there is none.
 * @return 0; -1 an argument is out of range or out null; -2 image null or invalid, or a resolution or
 *         SourceDistance 0 or below; -3 no memory
 * @par Ownership
 * A block that *out holds is freed, which may be the image itself. The new one belongs to the host, which
 * releases it with tqImageFree.
 * @par Memory
 * The result, and a few numbers a row and a column.
 * @note LuxPerGrey of the result is the image's for grey levels. Intensities are scaled so that the largest
 *       is 65000, which MaxPelValue says, and LuxPerGrey holds the candela of a grey level. Where no
 *       intensity is above 0 the result is 0 throughout.
 */
TQ_API int32_t TQ_CALL tqCreatePolarImage(TqImage** out, const TqImage* image, int32_t cols, int32_t rows,
                                          float maxAngle, int32_t projection, int32_t quantity);

/**
 * @brief Shows a polar image as a disc: the axis in the middle, the last row around the rim.
 *
 * A pel is the bilinear mean, rounded, of those of the four polar pels around it that are not 0; the last
 * column and the first are neighbours. Outside the disc, and where all four are 0, it is 0.
 *
 * @param[in,out] out Address of the host's block pointer; receives the disc. Untouched after a failure.
 * @param[in] polar   Polar image.
 * @param[in] size    Diameter, columns and rows of the result, 1..8000.
 * @return 0; -1 size is out of range or out null; -2 polar null or invalid; -3 no memory
 * @par Ownership
 * A block that *out holds is freed, which may be the polar image itself. The new one belongs to the host,
 * which releases it with tqImageFree.
 * @par Memory
 * The result.
 * @note LuxPerGrey of the result is that of the polar image.
 */
TQ_API int32_t TQ_CALL tqCreateRadarPlot(TqImage** out, const TqImage* polar, int32_t size);

/**
 * @brief Shows a polar image as a disc of its own grey levels: each pel is the nearest one of the polar
 * image.
 * @param[in,out] out Address of the host's block pointer; receives the disc. Untouched after a failure.
 * @param[in] polar   Polar image.
 * @param[in] size    Diameter, columns and rows of the result, 1..8000.
 * @return 0; -1 size is out of range or out null; -2 polar null or invalid; -3 no memory
 * @par Ownership
 * A block that *out holds is freed, which may be the polar image itself. The new one belongs to the host,
 * which releases it with tqImageFree.
 * @par Memory
 * The result.
 * @note LuxPerGrey of the result is that of the polar image. The last column and the first are neighbours.
 */
TQ_API int32_t TQ_CALL tqCreateRadarPlotNoInterp(TqImage** out, const TqImage* polar, int32_t size);

/**
 * @brief Puts a radar plot into a larger frame and draws rings and spokes over it.
 *
 * The disc is the largest around the middle of the plot; what is not in it becomes background. Rings stand at
 * equal steps of the radius, the last one at the rim; spokes run from the middle to the rim, the first to the
 * right. Lines are one pel wide.
 *
 * @param[in,out] image  Address of the pointer to the plot; the result replaces it. Untouched after a
 *                       failure.
 * @param[in] margin     Pels added on each side, 0 or more; the result has at most 8000 columns and rows.
 * @param[in] rings      Rings, at most 360; 0 or less draws none.
 * @param[in] spokes     Spokes, at most 360; 0 or less draws none.
 * @param[in] grey       Grey level of the lines; below 0 counts as 0, above 65535 as 65535.
 * @param[in] background Grey level outside the disc; likewise.
 * @return 0; -1 an argument is out of range or image null; -2 *image null or invalid; -3 no memory
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note LuxPerGrey of the result is that of the plot.
 */
TQ_API int32_t TQ_CALL tqPadRadarPlot(TqImage** image, int32_t margin, int32_t rings, int32_t spokes,
                                      int32_t grey, int32_t background);

/**
 * @brief Draws a graph of values, 65535 on 0.
 *
 * The largest value of the range is the top row and the smallest the bottom row; values beyond are drawn
 * there. Points, lines and filled areas put the first sample on the first column and the last on the last;
 * bars and steps give each sample its share of the columns, and bars of four columns or more keep one free.
 * Where several samples meet in a column it shows all that lies between them. Bars and areas start at the
 * value 0, or where the range comes nearest to it.
 * A polar curve goes once around, the first sample to the right, then over the top, its radius growing from
 * the bottom of the range in the middle to the top of the range at the nearest edge.
 *
 * @param[in,out] out Address of the host's block pointer; receives the graph. Untouched after a failure.
 * @param[in] values  Samples; NaN is a gap.
 * @param[in] count   Number of samples, 1 or more.
 * @param[in] cols    Columns of the result, 1..8000.
 * @param[in] rows    Rows of the result, 1..8000.
 * @param[in] type    0 points, 1 line, 2 bars, 3 steps, 4 filled area, 5 polar curve.
 * @param[in] low     Bottom of the range.
 * @param[in] high    Top of the range; unless it is above low the range is 0 to the largest finite value, and
 *                    0 to 1 when none is above 0.
 * @return 0; -1 an argument is out of range, the range is not finite, or a pointer null; -3 no memory
 * @par Ownership
 * A block that *out holds is freed. The new one belongs to the host, which releases it with tqImageFree.
 * @par Memory
 * The result, and two numbers a column.
 * @note The header maps pels to samples: sample = (column - CenterCol) / PelsPerMeterX, value = (CenterRow -
 *       row) / PelsPerMeterY. Of a polar curve the centre is the middle, and value = low + (pels from the
 *       middle) / PelsPerMeterX.
 */
TQ_API int32_t TQ_CALL tqCreateGraphType(TqImage** out, const double* values, int32_t count, int32_t cols,
                                         int32_t rows, int32_t type, double low, double high);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
