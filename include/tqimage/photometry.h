/** @file photometry.h
 *  Luminous intensity, viewing angles and luminous flux from the illuminance on a flat target.
 *
 *  The frame. Each pel times LuxPerGrey is the illuminance E in lux at its point of a flat target, which lies
 *  D = SourceDistance metres from the source; the axis of the source meets it at (CenterCol, CenterRow). The
 *  target co-ordinates of a pel (c, r), in metres, are
 *  - dx = (c - CenterCol) / PelsPerMeterX, to the right;
 *  - dy = (CenterRow - r) / PelsPerMeterY, upward;
 *  - rho = sqrt(dx^2 + dy^2), from the axis;
 *  - R = sqrt(rho^2 + D^2), from the source;
 *  - theta = atan(rho / D), the off-axis angle.
 *
 *  The source sends the intensity I = E R^2 / cos(theta) candela toward the pel. cos(theta) is evaluated as
 *  D / R: the same number as cos(atan(rho / D)) without the rounding of the angle, and the same bits on every
 *  build.
 *
 *  Angle modes, the co-ordinate system of the two angles of a direction (radians):
 *  - 0: atan(dx / D), atan(dy / D), both angles in the axis planes;
 *  - 1: atan(dx / D), asin(dy / R), vertical angle out of the horizontal plane;
 *  - 2: asin(dx / R), atan(dy / D), horizontal angle out of the vertical plane;
 *  - 3: azimuth of (dx, dy), 0..2 pi from the right, counter-clockwise, and polar angle, acos(D / R).
 *
 *  The azimuth uses pi/2 = 1.570796327, pi = 3.141592654, 3 pi/2 = 4.712388981 and 2 pi = 6.283185308 as
 *  written; with dx = 0 it is pi/2 for dy >= 0 (on the axis too) and 3 pi/2 below. Hosts compare with these
 *  nine decimals. Other modes leave the angle outputs of the intensity functions unwritten.
 *
 *  The automatic block: a size of 0 means 0.9 inch on the target (39.37 inches a metre), but never more than
 *  a tenth of the image: trunc(min(PelsPerMeterX * 0.9 / 39.37, PelCols * 0.1)), 1 when that is below 2; the
 *  height likewise. Given or derived, a block is then limited to the image.
 *
 *  The searches over blocks move a block (x0, y0) over the image or a rectangle and report its reference pel
 *  (x0 + width / 2, y0 + height / 2), halves in integers. On each axis they leave out the last position that
 *  would fit; hosts rely on it. Of equal values the first in row order is reported.
 *
 *  Figures are doubles, sums of pels are exact. No output is written when a function fails, except where its
 *  description says so. Output pointers must not be null. Only tqCalcTotalImageFlux writes to the image.
 */
#ifndef TQIMAGE_PHOTOMETRY_H
#define TQIMAGE_PHOTOMETRY_H

#include "tqimage/automation.h"
#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup photometry Intensity, angles and flux
 *  @ingroup measure
 *  @copydoc photometry.h
 *  @{ */

/** @brief Luminous intensity toward a pel, from the mean illuminance of the elliptic spot around it.
 *  @param[in] image image to measure
 *  @param[in] column column of the direction, pels, any value
 *  @param[in] row row of the direction, pels, any value
 *  @param[out] candela intensity, candela
 *  @param[out] firstAngle first angle by angleMode, radians; unwritten in modes above 3
 *  @param[out] secondAngle second angle by angleMode, radians; unwritten in modes above 3
 *  @param[out] offAxisAngle theta, radians
 *  @param[in] blockWidth width of the spot, pels (0: automatic; at most PelCols)
 *  @param[in] blockHeight height of the spot, pels (0: automatic; at most PelRows)
 *  @param[in] angleMode co-ordinate system of the angles, 0..3
 *  @return 0; -1 image null or invalid; -2 PelsPerMeterX, PelsPerMeterY or SourceDistance 0 or below
 *  @note The spot is averaged as by tqGetPelBlockAvgEllipse. The angles are those of the pel as passed, also
 *        where it lies outside the image.
 */
TQ_API int32_t TQ_CALL tqCalcCandela(const TqImage* image, int32_t column, int32_t row, double* candela,
                                     double* firstAngle, double* secondAngle, double* offAxisAngle,
                                     int32_t blockWidth, int32_t blockHeight, uint32_t angleMode);

/** @brief Luminous intensity toward a polygon, from the mean illuminance inside it. The direction is the mean
 *  of the vertex columns and of the vertex rows, each truncated to a pel.
 *  @param[in] image image to measure
 *  @param[in] vertices vertex array (region_polygon.h), pels, any int32 coordinates
 *  @param[out] candela intensity, candela
 *  @param[out] firstAngle first angle by angleMode, radians; unwritten in modes above 3
 *  @param[out] secondAngle second angle by angleMode, radians; unwritten in modes above 3
 *  @param[out] offAxisAngle theta, radians
 *  @param[in] angleMode co-ordinate system of the angles, 0..3
 *  @return 0; -7 image null or invalid; -2 PelsPerMeterX, PelsPerMeterY or SourceDistance 0 or below, or
 *          vertex array null or unreadable; -1 no average: no vertex, or no memory
 *  @note A polygon that covers no pel has the average 0 and the intensity 0.
 */
TQ_API int32_t TQ_CALL tqCalcPolyCandela(const TqImage* image, SAFEARRAY** vertices, double* candela,
                                         double* firstAngle, double* secondAngle, double* offAxisAngle,
                                         uint32_t angleMode);

/** @brief Largest luminous intensity toward a single pel of an ellipse.
 *  @param[in] image image to measure
 *  @param[in] centerCol centre column, pels, any value
 *  @param[in] centerRow centre row, pels, any value
 *  @param[out] candela largest intensity, candela; set to 0 before anything is checked
 *  @param[out] firstAngle first angle of that pel, radians; unwritten if nothing is lit and in other modes
 *  @param[out] secondAngle second angle of that pel, radians; likewise
 *  @param[out] offAxisAngle theta of that pel, radians; unwritten when nothing is lit
 *  @param[in] width full width, pels, any value (0: the single pel at the centre)
 *  @param[in] height full height, pels, any value (0: the single pel at the centre)
 *  @param[in] angleMode co-ordinate system of the angles, 0..3
 *  @return 0; -1 image null or invalid; -2 PelsPerMeterX, PelsPerMeterY or SourceDistance 0 or below
 *  @note The pels are those of the rule in region_ellipse.h. With none inside, or all of them dark, the
 *        result is 0 candela and status 0. Of equal intensities the first pel in row order is reported.
 */
TQ_API int32_t TQ_CALL tqCalcMaxCandelaInEllipse(const TqImage* image, int32_t centerCol, int32_t centerRow,
                                                 double* candela, double* firstAngle, double* secondAngle,
                                                 double* offAxisAngle, int32_t width, int32_t height,
                                                 uint32_t angleMode);

/** @brief Smallest luminous intensity toward a single pel of an ellipse.
 *  @param[in] image image to measure
 *  @param[in] centerCol centre column, pels, any value
 *  @param[in] centerRow centre row, pels, any value
 *  @param[out] candela smallest intensity, candela; set to 0 before anything is checked
 *  @param[out] firstAngle first angle of that pel, radians; unwritten if no pel is inside and in other modes
 *  @param[out] secondAngle second angle of that pel, radians; likewise
 *  @param[out] offAxisAngle theta of that pel, radians; unwritten when no pel is inside
 *  @param[in] width full width, pels, any value (0: the single pel at the centre)
 *  @param[in] height full height, pels, any value (0: the single pel at the centre)
 *  @param[in] angleMode co-ordinate system of the angles, 0..3
 *  @return 0; -1 image null or invalid; -2 PelsPerMeterX, PelsPerMeterY or SourceDistance 0 or below
 *  @note The pels are those of tqCalcMaxCandelaInEllipse; dark pels count, so they give 0 candela and their
 *        angles.
 */
TQ_API int32_t TQ_CALL tqCalcMinCandelaInEllipse(const TqImage* image, int32_t centerCol, int32_t centerRow,
                                                 double* candela, double* firstAngle, double* secondAngle,
                                                 double* offAxisAngle, int32_t width, int32_t height,
                                                 uint32_t angleMode);

/** @brief Largest luminous intensity toward a single pel of a polygon.
 *  @param[in] image image to measure
 *  @param[in] vertices vertex array (region_polygon.h), pels, any int32 coordinates
 *  @param[out] candela largest intensity, candela; 0 when nothing is lit
 *  @param[out] firstAngle first angle of that pel, radians; unwritten if nothing is lit and in other modes
 *  @param[out] secondAngle second angle of that pel, radians; likewise
 *  @param[out] offAxisAngle theta of that pel, radians; unwritten when nothing is lit
 *  @param[in] angleMode co-ordinate system of the angles, 0..3
 *  @return 0; -7 image null or invalid, or no memory; -2 PelsPerMeterX, PelsPerMeterY or SourceDistance not
 *          positive, or vertex array null or unreadable
 *  @par Memory
 *  About a hundred bytes a vertex.
 *  @note Of equal intensities the first pel in row order is reported.
 */
TQ_API int32_t TQ_CALL tqCalcMaxPolyCandela(const TqImage* image, SAFEARRAY** vertices, double* candela,
                                            double* firstAngle, double* secondAngle, double* offAxisAngle,
                                            uint32_t angleMode);

/** @brief Smallest luminous intensity toward a single pel of a polygon.
 *  @param[in] image image to measure
 *  @param[in] vertices vertex array (region_polygon.h), pels, any int32 coordinates
 *  @param[out] candela smallest intensity, candela; 0 when no pel is visited
 *  @param[out] firstAngle first angle of that pel, radians; unwritten if no pel is visited, in other modes
 *  @param[out] secondAngle second angle of that pel, radians; likewise
 *  @param[out] offAxisAngle theta of that pel, radians; unwritten when no pel is visited
 *  @param[in] angleMode co-ordinate system of the angles, 0..3
 *  @return 0; -7 image null or invalid, or no memory; -2 PelsPerMeterX, PelsPerMeterY or SourceDistance not
 *          positive, or vertex array null or unreadable
 *  @par Memory
 *  About a hundred bytes a vertex.
 *  @note Of equal intensities the first pel in row order is reported.
 */
TQ_API int32_t TQ_CALL tqCalcMinPolyCandela(const TqImage* image, SAFEARRAY** vertices, double* candela,
                                            double* firstAngle, double* secondAngle, double* offAxisAngle,
                                            uint32_t angleMode);

/** @brief Brightest direction of the whole image by a sliding block.
 *  @param[in] image image to measure
 *  @param[out] column column of the brightest block's reference pel, pels
 *  @param[out] row row of the brightest block's reference pel, pels
 *  @param[in] blockWidth block width, pels (below 1: 1; at most PelCols)
 *  @param[in] blockHeight block height, pels (below 1: 1; at most PelRows)
 *  @return 0; -1 image null or invalid, or no memory; -2 PelsPerMeterX, PelsPerMeterY or SourceDistance not
 *          positive; -3 the block leaves no position: as wide or as high as the image
 *  @par Memory
 *  A few working rows; the cost a pel does not grow with the block.
 *  @note Ranks the blocks by (D^2 + rho^2) S / cos(theta) in single precision, S the sum of their pels,
 *        without LuxPerGrey; there is no automatic block here.
 */
TQ_API int32_t TQ_CALL tqCalcMaxCandela(const TqImage* image, int32_t* column, int32_t* row,
                                        int32_t blockWidth, int32_t blockHeight);

/** @brief Mean luminous intensity over all positions of a sliding block.
 *  @param[in] image image to measure
 *  @param[out] average mean intensity, candela
 *  @param[in] blockWidth block width, pels (0: automatic; below 0: 1; at most PelCols)
 *  @param[in] blockHeight block height, pels (0: automatic; below 0: 1; at most PelRows)
 *  @return 0; -1 image null or invalid, or no memory; -2 PelsPerMeterX, PelsPerMeterY or SourceDistance not
 *          positive; -3 the block leaves no position: as wide or as high as the image
 *  @par Memory
 *  A few working rows; the cost a pel does not grow with the block.
 *  @note The intensity of a block is formed in single precision, the sum of the intensities in double.
 */
TQ_API int32_t TQ_CALL tqCalcAvgCandela(const TqImage* image, double* average, int32_t blockWidth,
                                        int32_t blockHeight);

/** @brief Brightest direction inside a rectangle, in candela.
 *  @param[in] image image to measure
 *  @param[out] column column of the brightest pel or block, pels; -1 when there is none or after a failure
 *  @param[out] row row of the brightest pel or block, pels; -1 when there is none or after a failure
 *  @param[in] left first column, pels, any value (raised to 0)
 *  @param[in] top first row, pels, any value (raised to 0)
 *  @param[in] right last column, pels, any value (lowered to the last column)
 *  @param[in] bottom last row, pels, any value (lowered to the last row)
 *  @param[in] blockKind 0: block mean; other values: mean of its ellipse (tqGetPelBlockAvgEllipse)
 *  @param[in] blockWidth block width, pels, 0..width of the cut rectangle
 *  @param[in] blockHeight block height, pels, 0..height of the cut rectangle
 *  @return the largest intensity, candela; 0.0 when nothing is lit or no position is left; -2.0 image null or
 *          invalid, or no memory; -3.0 PelsPerMeterX or PelsPerMeterY not positive; -4.0 the cut rectangle is
 *          empty or the block is negative or larger than it
 *  @par Memory
 *  A few working rows; the cost a pel does not grow with a block of kind 0.
 *  @note With both block sizes below 2 every pel of the rectangle is tried, the last column and row included;
 *        otherwise a size of 0 counts as 1 and no block reaches the rectangle's last column or row.
 *        SourceDistance is not checked: its sign does not matter, and 0 puts every pel at 90 degrees off the
 *        axis, where intensities are huge but still rank. Drains the calling thread's message queue once a
 *        row (Windows), so window procedures may run during the call; they must not free the image.
 */
TQ_API double TQ_CALL tqFindMaxCandelaInRegion(const TqImage* image, int32_t* column, int32_t* row,
                                               int32_t left, int32_t top, int32_t right, int32_t bottom,
                                               int32_t blockKind, int32_t blockWidth, int32_t blockHeight);

/** @brief Luminous flux that falls on a rectangle of the target, and its mean illuminance.
 *  @param[in] image image to measure
 *  @param[in] left first column, pels, any value (raised to 0)
 *  @param[in] top first row, pels, any value (raised to 0)
 *  @param[in] right last column, pels, any value (lowered to the last column)
 *  @param[in] bottom last row, pels, any value (lowered to the last row)
 *  @param[out] averageIlluminance LuxPerGrey * mean pel, lux
 *  @return the flux, lumen: LuxPerGrey * sum of the pels / (PelsPerMeterY * PelsPerMeterX);
 *          -2.0 image null or invalid; -3.0 PelsPerMeterX or PelsPerMeterY 0 or below; -4.0 the cut
 *          rectangle is empty
 */
TQ_API double TQ_CALL tqCalcFluxInRegion(const TqImage* image, int32_t left, int32_t top, int32_t right,
                                         int32_t bottom, double* averageIlluminance);

/** @brief Luminous flux that falls on the whole target.
 *  @param[in,out] image image to measure; the sum of its pels is stored as TotalPelValue
 *  @return the flux, lumen; -2.0 image null or invalid; -3.0 PelsPerMeterX or PelsPerMeterY 0 or below
 *  @note Writes the header: no other thread may read TotalPelValue of the same image during the call.
 */
TQ_API double TQ_CALL tqCalcTotalImageFlux(TqImage* image);

/** @brief Viewing angles of a pel.
 *  @param[in] image image whose header gives the frame
 *  @param[in] column column, pels, any value (not clamped)
 *  @param[in] row row, pels, any value (not clamped)
 *  @param[out] firstAngle first angle by angleMode, radians
 *  @param[out] secondAngle second angle by angleMode, radians
 *  @param[in] angleMode co-ordinate system of the angles, 0..3
 *  @return 0; -1 image null or invalid; -2 PelsPerMeterX, PelsPerMeterY or SourceDistance 0 or below;
 *          -3 angleMode above 3
 */
TQ_API int32_t TQ_CALL tqPelToAngle(const TqImage* image, int32_t column, int32_t row, double* firstAngle,
                                    double* secondAngle, uint32_t angleMode);

/** @brief Pel that lies at given viewing angles: the inverse of tqPelToAngle.
 *  @param[in] image image whose header gives the frame
 *  @param[out] column column, pels, truncated toward zero; not clipped to the image
 *  @param[out] row row, pels, truncated toward zero; not clipped to the image
 *  @param[in] firstAngle first angle by angleMode, radians
 *  @param[in] secondAngle second angle by angleMode, radians
 *  @param[in] angleMode co-ordinate system of the angles, 0..3
 *  @return 0; -1 image null or invalid; -2 PelsPerMeterX, PelsPerMeterY or SourceDistance 0 or below;
 *          -3 angleMode above 3
 *  @note Co-ordinates beyond the range of int32 saturate. The truncation may take the pel before the one the
 *        angles came from, when rounding leaves the co-ordinate just below a whole number.
 */
TQ_API int32_t TQ_CALL tqAngleToPel(const TqImage* image, int32_t* column, int32_t* row, double firstAngle,
                                    double secondAngle, uint32_t angleMode);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
