/** @file deviation.h
 *  How far the pels of an image, or of a rectangle of it, lie from their mean. A pel of 0 means "no data" in
 *  all functions of this file and does not count.
 *
 *  Rectangles follow the rule at the top of region_rectangle.h: 0, 0, 0, 0 is the whole image. Output
 *  pointers must not be null. No function here needs extra memory unless it says so.
 */
#ifndef TQIMAGE_DEVIATION_H
#define TQIMAGE_DEVIATION_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup deviation Deviations from the mean
 *  @ingroup measure
 *  @copydoc deviation.h
 *  @{ */

/** @brief Standard deviation of the pels of an image, with 32-bit squares.
 *  @param[in] image image to measure
 *  @param[out] mean mean of the pels that are not 0, grey levels; untouched after a failure
 *  @return the population standard deviation sqrt((n * Q - S^2) / n^2), n the number of pels that are not 0,
 *          S their sum, Q the sum of their squares, grey levels; -2.0 image null or invalid
 *  @note Each square is a signed 32-bit integer: from a pel of 46341 on it has wrapped to a negative number,
 *        and the result can be not-a-number. Hosts rely on the figure; tqCalcStdDevInRegion does not wrap.
 *  @note Without a pel that is not 0 mean and result are not-a-number, the quotient 0 / 0.
 */
TQ_API double TQ_CALL tqCalcStdDev(const TqImage* image, double* mean);

/** @brief Standard deviation of the pels of a rectangle.
 *  @param[in] image image to measure
 *  @param[out] mean mean of the pels that are not 0, grey levels; untouched after a failure
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return the population standard deviation, grey levels; -2.0 image null or invalid
 *  @note Squares are exact. Without a pel that is not 0 mean and result are not-a-number, the quotient 0 / 0.
 */
TQ_API double TQ_CALL tqCalcStdDevInRegion(const TqImage* image, double* mean, int32_t left, int32_t top,
                                           int32_t right, int32_t bottom);

/** @brief Deviations of the brightest and the darkest pel of a rectangle from its mean.
 *  @param[in] image image to measure
 *  @param[out] mean mean of the pels that are not 0, grey levels
 *  @param[out] plusPercent (largest pel - mean) * 100 / mean, percent
 *  @param[out] minusPercent (smallest pel that is not 0 - mean) * 100 / mean, percent, 0 or negative
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return 0; -2 image null or invalid; -99 no pel of the rectangle is other than 0. The outputs are
 *          untouched after a failure.
 */
TQ_API int32_t TQ_CALL tqCalcDevInRegion(const TqImage* image, double* mean, double* plusPercent,
                                         double* minusPercent, int32_t left, int32_t top, int32_t right,
                                         int32_t bottom);

/** @brief Makes the mura image of a rectangle: each pel tells its deviation from the rectangle's mean.
 *
 *  A pel v of the rectangle becomes 32000 * v / mean + 0.5, truncated and held to 1..65535, mean being that
 *  of the rectangle's pels that are not 0. Pels of 0 and pels outside the rectangle become 0. 32000 is the
 *  mean; one grey level is a relative difference of 1 / 32000.
 *  @param[in,out] out address of the host's block pointer; receives the mura image. Untouched after a failure.
 *  @param[in] image image to measure; may be the image that out holds
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return 0; -2 out null, or image null or invalid; -3 no memory; -99 no pel of the rectangle is other than
 *          0
 *  @par Ownership
 *  A block that *out holds is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result, and 128 KiB while it works.
 *  @note The header is that of the image with LuxPerGrey 1 / 32000 and with TotalPelValue, CenterPelValue and
 *        MaxPelValue, the largest pel, as tqCalcImageValues makes them.
 */
TQ_API int32_t TQ_CALL tqCalcImageDevInRegion(TqImage** out, const TqImage* image, int32_t left, int32_t top,
                                              int32_t right, int32_t bottom);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
