/** @file gray_search.h
 *  Where an image is brightest and darkest, measured with a block of pels.
 *
 *  Every block of blockWidth x blockHeight pels that lies inside the image is tried, row by row, the last of
 *  each axis included; the block at (x0, y0) is reported as its reference pel (x0 + blockWidth / 2,
 *  y0 + blockHeight / 2). Of equal means the first in row order is reported.
 *
 *  Memory: a few working rows, for ellipses one a row of the block, 64 MB at most. The cost a pel does not
 *  grow with a block of kind 0. Once a row the calling thread's message queue is drained (Windows), so window
 *  procedures may run during the call; they must not free the image. Output pointers must not be null.
 */
#ifndef TQIMAGE_GRAY_SEARCH_H
#define TQIMAGE_GRAY_SEARCH_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup gray_search Brightest and darkest place
 *  @ingroup measure
 *  @copydoc gray_search.h
 *  @{ */

/** @brief Largest block mean of an image.
 *  @param[in] image image to measure
 *  @param[out] column reference column of the block, pels; -1 after a failure
 *  @param[out] row reference row of the block, pels; -1 after a failure
 *  @param[in] blockKind 0: block mean; other values: mean of its ellipse (tqGetPelBlockAvgEllipse)
 *  @param[in] blockWidth block width, pels, any value (below 1: 1)
 *  @param[in] blockHeight block height, pels, any value (below 1: 1)
 *  @return the mean, grey levels; -2.0 image null or invalid, or no memory; -3.0 no block fits into the image
 */
TQ_API double TQ_CALL tqFindMaxGray(const TqImage* image, int32_t* column, int32_t* row, int32_t blockKind,
                                    int32_t blockWidth, int32_t blockHeight);

/** @brief Smallest block mean of an image.
 *  @param[in] image image to measure
 *  @param[out] column reference column of the block, pels; -1 after a failure
 *  @param[out] row reference row of the block, pels; -1 after a failure
 *  @param[in] blockKind 0: block mean; other values: mean of its ellipse (tqGetPelBlockAvgEllipse)
 *  @param[in] blockWidth block width, pels, any value (below 1: 1)
 *  @param[in] blockHeight block height, pels, any value (below 1: 1)
 *  @return the mean, grey levels; -2.0 image null or invalid, or no memory; -3.0 no block fits into the image
 */
TQ_API double TQ_CALL tqFindMinGray(const TqImage* image, int32_t* column, int32_t* row, int32_t blockKind,
                                    int32_t blockWidth, int32_t blockHeight);

/** @brief Smallest block mean of an image in which 0 means "no data": a block's mean is that of its pels that
 *  are not 0, and blocks without such pels are passed over.
 *  @param[in] image image to measure
 *  @param[out] column reference column of the block, pels; -1 after a failure
 *  @param[out] row reference row of the block, pels; -1 after a failure
 *  @param[in] blockKind 0: block mean; other values: mean of its ellipse (tqGetPelBlockAvgEllipse)
 *  @param[in] blockWidth block width, pels, any value (below 1: 1)
 *  @param[in] blockHeight block height, pels, any value (below 1: 1)
 *  @return the mean, grey levels; -2.0 image null or invalid, or no memory; -3.0 no block fits into the
 *          image; -99.0 all pels are 0
 */
TQ_API double TQ_CALL tqFindMinGray0(const TqImage* image, int32_t* column, int32_t* row, int32_t blockKind,
                                     int32_t blockWidth, int32_t blockHeight);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
