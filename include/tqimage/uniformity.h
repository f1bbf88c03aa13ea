/** @file uniformity.h
 *  Figures of merit of displays and projectors: ANSI lumens and uniformity, mura totals, SEMU, contrast maps
 *  and the lit field of a lamp.
 *
 *  Mura images. The zero level is 32000: a pel v of a mura image carries the signed signal v - 32000.
 *
 *  ANSI points. Their positions are percentages of PelCols - 1 across and PelRows - 1 down, multiplied before
 *  they are divided by 100 and truncated to whole pels. Nine grid points, row by row: 16.7, 50.0 and 83.3
 *  percent on both axes, not sixths. Four corners: (5, 5), (95, 5), (5, 95), (95, 95) percent. The sample of
 *  a point is the mean of a spot of width x height pels around it: tqGetPelBlockAvgEllipse for shape 1,
 *  tqGetPelBlockAvg for every other shape.
 *
 *  Images are only read. Sums of pels are exact integers unless a function says otherwise. Output pointers
 *  must not be null unless the parameter says so.
 */
#ifndef TQIMAGE_UNIFORMITY_H
#define TQIMAGE_UNIFORMITY_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup uniformity Displays and projectors
 *  @ingroup measure
 *  @copydoc uniformity.h
 *  @{ */

/** @brief Luminous flux of a projected white field: the mean illuminance of the nine grid points times the
 *  lit area.
 *  @param[in] image image of the field; what lies outside it has been set to 0
 *  @param[in] shape 1: elliptical spots; other values: rectangular spots
 *  @param[in] width width of a spot, pels, any value
 *  @param[in] height height of a spot, pels, any value
 *  @return mean grey of the nine points * LuxPerGrey * pels other than 0 / (PelsPerMeterY * PelsPerMeterX),
 *          lumen; -2.0 image null or invalid; -3.0 PelsPerMeterX or PelsPerMeterY 0 or below
 *  @par Source
 *  The nine-point method of ANSI IT7.228-1997 for the light output of projectors.
 *  @note The lit area is the number of pels above 0, not that of the image: hosts set the screen around the
 *        field to 0 and rely on it.
 */
TQ_API double TQ_CALL tqCalcANSILumens(const TqImage* image, int32_t shape, int32_t width, int32_t height);

/** @brief Largest and smallest deviation of a projected white field from the mean of its nine grid points.
 *  The four corners count for the extremes, not for the mean.
 *  @param[in] image image of the field
 *  @param[out] maximumDeviation (largest sample - mean) * 100 / mean, percent; 0 after a failure
 *  @param[out] minimumDeviation (smallest sample - mean) * 100 / mean, percent, normally negative; 0 after a
 *              failure
 *  @param[in] shape 1: elliptical spots; other values: rectangular spots
 *  @param[in] width width of a spot, pels, any value
 *  @param[in] height height of a spot, pels, any value
 *  @return 0; -2 image null or invalid; -3 PelsPerMeterX or PelsPerMeterY 0 or below
 *  @par Source
 *  The thirteen points of ANSI IT7.228-1997 for the uniformity of projectors.
 *  @note Nine dark samples have no mean to deviate from: the outputs are then not a number, or infinite when
 *        a corner is lit.
 */
TQ_API int32_t TQ_CALL tqCalcANSIUniformity(const TqImage* image, double* maximumDeviation,
                                            double* minimumDeviation, int32_t shape, int32_t width,
                                            int32_t height);

/** @brief Total of the mura signal |v - 32000| over the pels of a rectangle that reach a threshold.
 *  @param[in] image mura image
 *  @param[out] count number of pels >= threshold, those at the zero level included; set to 0 before the image
 *              is checked
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in] threshold smallest pel that counts, grey levels, any value: it is compared with the pel, not
 *             with the signal
 *  @return the total, grey levels, not divided by count; -2.0 image null or invalid
 */
TQ_API double TQ_CALL tqGetTotalMuraInRegion(const TqImage* image, int32_t* count, int32_t left, int32_t top,
                                             int32_t right, int32_t bottom, int32_t threshold);

/** @brief Root mean square of the mura signal over the pels of a rectangle that reach a threshold.
 *  @param[in] image mura image
 *  @param[out] count number of pels >= threshold other than 32000; set to 0 before the image is checked
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in] threshold smallest pel that counts, grey levels, any value
 *  @return sqrt(sum of (v - 32000)^2 / count), grey levels, 0.0 when count is 0; -2.0 image null or invalid
 *  @note Pels exactly at the zero level are left out of count here and counted by tqGetTotalMuraInRegion.
 *        Hosts rely on the difference.
 */
TQ_API double TQ_CALL tqGetRMSMuraInRegion(const TqImage* image, int32_t* count, int32_t left, int32_t top,
                                           int32_t right, int32_t bottom, int32_t threshold);

/** @brief The most visible blemish of a mura image, in SEMU: contrast over the contrast just noticeable for a
 *  blemish of its size.
 *
 *  A blemish is a set of pels, connected by sides or corners, whose signals v - 32000 have one sign and at
 *  least the threshold as their amount. Pels of 0 hold no data and belong to none. LuxPerGrey is the relative
 *  difference that a grey level stands for. A blemish of n pels has
 *  - contrast C = 100 * LuxPerGrey * mean of v - 32000, percent, with its sign,
 *  - area S = n / (PelsPerMeterX * PelsPerMeterY) * 10^6, square millimetres,
 *  - visibility |C| / (1.97 / S^0.33 + 0.72), SEMU.
 *  @param[in] image mura image
 *  @param[in] threshold smallest amount of a blemish's signal, grey levels, any value (below 1: 1)
 *  @param[out] contrastPercent C of the most visible blemish, percent; 0 when there is none and after a
 *              failure; may be null
 *  @param[out] areaMm2 its S, square millimetres; 0 when there is none and after a failure; may be null
 *  @return the largest visibility, SEMU, 0.0 when no blemish has one above 0; of equal ones the blemish that
 *          begins first in row order is reported. -2.0 image null or invalid, or no memory; -3.0
 *          PelsPerMeterX or PelsPerMeterY 0 or below
 *  @par Memory
 *  A few working rows, and a record for each different size of blemish.
 *  @par Source
 *  SEMI D31, Definition of measurement index (SEMU) for luminance mura in FPD image quality inspection.
 */
TQ_API double TQ_CALL tqCalcSemu(const TqImage* image, int32_t threshold, double* contrastPercent,
                                 double* areaMm2);

/** @brief A contrast map: the Michelson contrast of each pel against the mean, scaled so that the strongest
 *  becomes 65535.
 *  @param[in,out] out address of the host's image pointer; receives the map, an image of the source's size
 *              with its whole header. Untouched by -2 and -5
 *  @param[in] source image to map; may be the image that *out holds
 *  @return 0; -2 source null or invalid, or out null; -5 no memory; -3 PelsPerMeterX or PelsPerMeterY not
 *          positive: *out is then an image of zeros
 *  @par Ownership
 *  The block that *out held is freed; the host frees the map with tqImageFree.
 *  @par Memory
 *  The result, and a table of at most 65536 pels.
 *  @note With the mean m, an output pel is |(v - m) / (m + v)| over the largest such contrast of the image,
 *        times 65535, rounded to nearest, a half to even. An image whose pels are all equal maps to zeros.
 *  @note m is a quotient of single precision numbers, and its sum is added up in single precision, pel by pel
 *        in row order: from a sum of 2^24 on every addition rounds. The order is part of the result, so hosts
 *        find the same map on every build, and not the one of an exact mean.
 */
TQ_API int32_t TQ_CALL tqCalcAbsContrast(TqImage** out, const TqImage* source);

/** @brief The lit field in the image of a lamp.
 *
 *  A cell is a square of 2 x 2 pels; cells begin at every pel, so they overlap. Its level is the truncated
 *  mean of those pels v with v < 2 m and v > trunc(m / 2), m being the mean of the four: a hot pel does not
 *  light a cell. When none qualifies it is trunc(m). A cell is lit when its level exceeds the threshold.
 *  @param[in] image image of the field
 *  @param[in] threshold level that a lit cell exceeds, grey levels, any value
 *  @param[out] left first column of the first column of cells with a lit one
 *  @param[out] top first row of the first row of cells with a lit one
 *  @param[out] right last column of the last column of cells with a lit one, but at least left + 1
 *  @param[out] bottom last row of the last row of cells with a lit one
 *  @return 0; -1 image null or invalid (the outputs untouched)
 *  @note A cell half in the dark is lit, so the range reaches one pel beyond a field with sharp borders.
 *  @note Without a field left and right are PelCols / 2 - 1 and PelCols / 2, top and bottom PelRows / 2 - 1
 *        and PelRows / 2, and the result is 0. An image of one column or row has no cell and no field.
 *  @note A cell that begins in the last column takes its right-hand pels from the start of the next row, in
 *        the last row one from behind the image, which counts as 0. Whatever it holds, it makes no field:
 *        hosts get the middle of the image when nothing else is lit.
 */
TQ_API int32_t TQ_CALL tqCalcLampClipRange(const TqImage* image, int32_t threshold, int32_t* left,
                                           int32_t* top, int32_t* right, int32_t* bottom);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
