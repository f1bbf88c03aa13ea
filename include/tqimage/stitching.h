/** @file stitching.h
 *  Smoothing of the seams of an image that was put together from segments.
 *
 *  A pel that holds data (is not 0) and belongs to a segment lies on a seam when its window holds data of
 *  another segment. Windows have odd sides, an even one is made smaller by 1; they are centred on the pel and
 *  pushed inward at the border, so that they keep their size. The time does not grow with the window.
 */
#ifndef TQIMAGE_STITCHING_H
#define TQIMAGE_STITCHING_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup stitching Stitching
 *  @ingroup geometry
 *  @copydoc stitching.h
 *  @{ */

/**
 * @brief Replaces the pels on seams by the mean of the data around them.
 * @param[in,out] image address of the host's block pointer; receives the smoothed image
 * @param[in] labels an image of the same size: the segment each pel comes from, 0 for none
 * @param[in] winCols window width, pels, any value (clamped to 1..PelCols)
 * @param[in] winRows window height, pels, any value (clamped to 1..PelRows)
 * @return 0, also when a window of one pel leaves the image as it is; -2 when either image is invalid or
 *         their sizes differ; -3 when the new image cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note Means are truncated. The header stays.
 */
TQ_API int32_t TQ_CALL tqSmoothStitch(TqImage** image, const TqImage* labels, int32_t winCols,
                                      int32_t winRows);

/**
 * @brief tqSmoothStitch with separate windows for finding seams and for averaging.
 * @param[in,out] image address of the host's block pointer; receives the smoothed image
 * @param[in] labels an image of the same size: the segment each pel comes from, 0 for none
 * @param[in] detectCols width of the window that finds seams, pels, any value (clamped to 1..PelCols)
 * @param[in] detectRows its height, pels, any value (clamped to 1..PelRows)
 * @param[in] averageCols width of the window of the mean, pels; at most PelCols. Below 1 pels on seams become
 *                        0
 * @param[in] averageRows its height, pels, any value (clamped to 1..PelRows)
 * @return 0, also when an average over one pel leaves the image as it is; -2 when either image is invalid or
 *         their sizes differ; -3 when the new image cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note Means are truncated. The header stays.
 */
TQ_API int32_t TQ_CALL tqSmoothStitch2(TqImage** image, const TqImage* labels, int32_t detectCols,
                                       int32_t detectRows, int32_t averageCols, int32_t averageRows);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
