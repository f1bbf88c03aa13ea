/** @file whole_image.h
 *  Figures of all pels of an image: counts, sums, extremes, and the header fields made from them; rows and
 *  columns replaced by their means.
 *
 *  Sums of pels are exact: they are formed in integers and converted to double once. Output pointers must not
 *  be null unless the parameter says so. No function here needs extra memory unless it says so.
 */
#ifndef TQIMAGE_WHOLE_IMAGE_H
#define TQIMAGE_WHOLE_IMAGE_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup whole_image Whole images
 *  @ingroup measure
 *  @copydoc whole_image.h
 *  @{ */

/** @brief Counts the pels that reach a level.
 *  @param[in] image image to measure
 *  @param[out] count pels of at least the level; untouched after a failure
 *  @param[in] level grey level, 0..65535; 0 counts every pel
 *  @return 0; -1 image null or invalid
 */
TQ_API int32_t TQ_CALL tqCountAllPels(const TqImage* image, int32_t* count, uint16_t level);

/** @brief The same count as the result.
 *  @param[in] image image to measure
 *  @param[in] level grey level, 0..65535; 0 counts every pel
 *  @return the number of pels of at least the level; -1 image null or invalid
 */
TQ_API int32_t TQ_CALL tqCountPixels(const TqImage* image, uint16_t level);

/** @brief Counts the pels that are not 0.
 *  @param[in] image image to measure
 *  @return the number of pels that are not 0; -2 image null or invalid
 */
TQ_API int32_t TQ_CALL tqCountNonZeroPels(const TqImage* image);

/** @brief Counts the pels that are not 0 into an output.
 *  @param[in] image image to measure
 *  @param[out] count pels that are not 0; untouched after a failure
 *  @return 0; -1 image null or invalid
 */
TQ_API int32_t TQ_CALL tqNonZeroPixelCount(const TqImage* image, int32_t* count);

/** @brief Sum and mean of the pels that reach a level.
 *  @param[in] image image to measure
 *  @param[out] mean mean of the pels of at least the level, grey levels, 0 when there are none; untouched
 *              after a failure
 *  @param[in] level grey level, 0..65535; 0 takes every pel
 *  @return the sum, grey levels; -1.0 image null or invalid
 */
TQ_API double TQ_CALL tqSumAllPels(const TqImage* image, double* mean, uint16_t level);

/** @brief Sum of all pels, their mean and the largest of them.
 *  @param[in] image image to measure
 *  @param[out] mean mean of all pels, grey levels; may be null; untouched after a failure
 *  @param[out] maximum largest pel, grey levels; untouched after a failure
 *  @return the sum, grey levels; -1.0 image null or invalid
 */
TQ_API double TQ_CALL tqSumAllPels2(const TqImage* image, double* mean, float* maximum);

/** @brief Sum and number of the pels that are not 0.
 *  @param[in] image image to measure
 *  @param[out] count pels that are not 0; untouched after a failure
 *  @return the sum, grey levels; -1.0 image null or invalid
 */
TQ_API double TQ_CALL tqSumNonZeroPels(const TqImage* image, int32_t* count);

/** @brief Stores the largest mean of a 3 x 3 neighbourhood in the header, a maximum that single hot pels do
 *  not decide.
 *  @param[in,out] image image to measure; MaxPelValue receives the mean, grey levels; the rest stays
 *  @return 0; -1 image null or invalid, or fewer than 3 columns or rows: the header is unchanged
 *  @note Neighbourhoods lie inside the image: those of its border pels are not tried.
 */
TQ_API int32_t TQ_CALL tqMaxAvgPels(TqImage* image);

/** @brief Largest pel.
 *  @param[in] image image to measure
 *  @param[out] maximum largest pel, grey levels; 0 after a failure
 *  @return 0; -2 image null or invalid
 */
TQ_API int32_t TQ_CALL tqGetMaxPelValue2(const TqImage* image, float* maximum);

/** @brief Smallest pel but the last.
 *  @param[in] image image to measure
 *  @param[out] minimum smallest pel, grey levels; 65535 for an image of one pel; untouched after a failure
 *  @return 0; -2 image null or invalid
 *  @note The last pel of the last row is never looked at: hosts rely on it.
 */
TQ_API int32_t TQ_CALL tqGetMinPelValue2(const TqImage* image, float* minimum);

/** @brief Refreshes the header fields that follow from the pels, after a host has changed them.
 *
 *  TotalPelValue becomes the sum of all pels and MaxPelValue the largest pel. CenterPelValue becomes the mean
 *  of the block around (CenterCol, CenterRow), which reaches (int)((PelCols + 49) * 0.005) columns and
 *  (int)((PelRows + 49) * 0.005) rows to each side, rounded and cut to the image, 0 when no pel is left of
 *  it; 1.0 when the centre lies outside the image.
 *  @param[in,out] image image to measure; the other fields and the pels stay
 *  @return 0; -2 image null or invalid
 *  @note MaxPelValue ends as the largest pel, not as the mean of tqMaxAvgPels: hosts rely on no pel being
 *        above it.
 */
TQ_API int32_t TQ_CALL tqCalcImageValues(TqImage* image);

/** @brief Replaces every column by its mean.
 *  @param[in,out] image image to change; each pel becomes the mean of its column, + 0.5, truncated; the
 *                 header stays
 *  @return 0; -2 image null or invalid, or no memory
 *  @par Memory
 *  One working row.
 *  @note The sum of a column is formed top to bottom in single precision, which rounds beyond 2^24: hosts
 *        rely on getting the figures they have stored.
 */
TQ_API int32_t TQ_CALL tqColAverage(TqImage* image);

/** @brief Replaces every row by its mean.
 *  @param[in,out] image image to change; each pel becomes the mean of its row, + 0.5, truncated; the header
 *                 stays
 *  @return 0; -2 image null or invalid
 *  @note The sum of a row is formed left to right in single precision, as those of tqColAverage are.
 */
TQ_API int32_t TQ_CALL tqRowAverage(TqImage* image);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
