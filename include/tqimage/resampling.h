/** @file resampling.h
 *  Images at other angles, scales, places and sizes: bilinear resampling, binning and its reverse.
 *
 *  A place between pels is sampled from the four pels around it. The last column and row belong to the cell
 *  before them, and an axis of one pel has that pel everywhere. Header fields that a function does not name
 *  are copied. New sizes outside 1..8000 count as an allocation that failed.
 */
#ifndef TQIMAGE_RESAMPLING_H
#define TQIMAGE_RESAMPLING_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup resampling Rotation, scale, shift and binning
 *  @ingroup geometry
 *  @copydoc resampling.h
 *  @{ */

/**
 * @brief Turns an image by any angle about any place; the result holds the turned corners.
 * @param[in,out] image address of the host's block pointer; receives the turned image
 * @param[in] angle degrees, counter-clockwise as displayed
 * @param[in] centreCol column of the place, pels
 * @param[in] centreRow row of the place, pels
 * @return 0; -2 when the image is invalid; -3 when the new one cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note Columns and rows are the width and height of the box around the turned corner pels, truncated,
 *       so an image turned by 0 degrees loses a column and a row. The centre moves with the picture, by whole
 *       source pels. Single precision; pels without a source are 0, samples are truncated and keep their low
 *       16 bits. An angle or a place that is not a number gives -3.
 */
TQ_API int32_t TQ_CALL tqRotateImage(TqImage** image, float angle, float centreCol, float centreRow);

/**
 * @brief Zooms an image about its optical centre; its size stays.
 * @param[in,out] image address of the host's block pointer; receives the zoomed image
 * @param[in] scaleCols horizontal factor, above 1 enlarges; negative factors mirror
 * @param[in] scaleRows vertical factor
 * @return 0; -1 when the image is invalid; -3 when the new one cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note The whole header stays, resolutions and total included. Pels without a source are 0, samples are
 *       truncated; so a factor of 0 or one that is not a number gives a black image.
 */
TQ_API int32_t TQ_CALL tqScaleImage(TqImage** image, double scaleCols, double scaleRows);

/**
 * @brief Shifts the picture in an image by any part of a pel; the size stays.
 * @param[in,out] image address of the host's block pointer; receives the shifted image
 * @param[in] shiftCols pels to the right
 * @param[in] shiftRows pels down
 * @return 0; -1 when the image is invalid; -3 when the new one cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note The whole header stays, the optical centre included. Pels without a source are 0, samples are
 *       truncated.
 */
TQ_API int32_t TQ_CALL tqShiftImage(TqImage** image, double shiftCols, double shiftRows);

/**
 * @brief Gives an image another width and keeps the picture's proportions.
 * @param[in,out] image address of the host's block pointer; receives the resized image
 * @param[in] newCols columns, 1..8000; 2 or more for an optical centre
 * @return 0; -2 when the image is invalid; -4 when the new one cannot be allocated or would have a side
 *         outside 1..8000
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note The first and last columns and rows fall on each other; samples are rounded. The optical centre and
 *       the resolutions are scaled; an image of one column or row has no such scale, and that centre
 *       co-ordinate becomes infinite or no number. Each binning factor becomes the whole number of old pels
 *       in a new one, at least 1, whatever it was before. The total stays.
 */
TQ_API int32_t TQ_CALL tqSizeImage(TqImage** image, int32_t newCols);

/**
 * @brief Bins an image: each block of pels becomes one pel, their mean.
 * @param[in,out] image address of the host's block pointer; receives the binned image
 * @param[in] binCols columns of a block, any value (clamped to 1..PelCols)
 * @param[in] binRows rows of a block, any value (clamped to 1..PelRows)
 * @return 0; -1 when the image is invalid; -2 when the new one cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note Columns and rows beyond the last whole block are dropped. Means are truncated; the sum of a block has
 *       32 bits with sign and wraps, which takes more than 32768 pels. Optical centre, resolutions and total
 *       are divided, the binning factors multiplied, in 16 bits.
 */
TQ_API int32_t TQ_CALL tqBinImage(TqImage** image, int32_t binCols, int32_t binRows);

/**
 * @brief Bins an image in which 0 means "no data": each block becomes the mean of its other pels.
 * @param[in,out] image address of the host's block pointer; receives the binned image
 * @param[in] binCols columns of a block, any value (clamped to 1..PelCols)
 * @param[in] binRows rows of a block, any value (clamped to 1..PelRows)
 * @return 0; -1 when the image is invalid; -2 when the new one cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note As tqBinImage, but a block without data becomes 0, the mean is a single-precision quotient,
 *       truncated, and the total is the sum of the new pels.
 */
TQ_API int32_t TQ_CALL tqBinImage0(TqImage** image, int32_t binCols, int32_t binRows);

/**
 * @brief Expands a binned image to a finer binning.
 * @param[in,out] image address of the host's block pointer; receives the expanded image
 * @param[in] binCols new horizontal binning factor; below 1 counts as 1
 * @param[in] binRows new vertical binning factor; below 1 counts as 1
 * @return 0; -2 when the image is invalid; -3 when a factor is larger than the image's, or the image's is
 *         below 1; -4 when the new image cannot be allocated or would have a side outside 1..8000
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note The first and last columns and rows fall on each other; samples are rounded. Optical centre and
 *       resolutions are scaled by the quotient of the factors. Grey levels stay those of the binned image,
 *       while the total is multiplied by the whole quotients.
 */
TQ_API int32_t TQ_CALL tqUnBinImage(TqImage** image, int32_t binCols, int32_t binRows);

/**
 * @brief Samples an image between its pels.
 * @param[in] image the image
 * @param[in] col column, pels, 0..PelCols - 1
 * @param[in] row row, pels, 0..PelRows - 1
 * @param[out] value grey level; 0.0 after a failure
 * @return 0; -2 when the image is invalid or value null; -3 when col is outside; -4 when row is
 */
TQ_API int32_t TQ_CALL tqInterpolateImage(const TqImage* image, double col, double row, double* value);

/**
 * @brief Samples an image between its pels at any place.
 * @param[in] image the image
 * @param[in] col column, pels
 * @param[in] row row, pels
 * @param[out] value grey level; 0.0 after a failure
 * @return 0; -2 when the image is invalid or value null
 * @note Outside, the pels of the border go on for ever. A co-ordinate that is not finite gives no number.
 */
TQ_API int32_t TQ_CALL tqInterpolateImage2(const TqImage* image, double col, double row, double* value);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
