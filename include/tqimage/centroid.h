/** @file centroid.h
 *  Centroids and geometric centres of the bright pels of an image.
 *
 *  A centroid weighs every position with its grey level, a geometric centre does not.
 */
#ifndef TQIMAGE_CENTROID_H
#define TQIMAGE_CENTROID_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup centroid Centroids
 *  @ingroup analysis
 *  @copydoc centroid.h
 *  @{ */

/** @brief Centroid of an image from the averages of the block around every pel.
 *  @param[in] image image to measure
 *  @param[out] column column of the centroid, pels; may be null
 *  @param[out] row row of the centroid, pels; may be null
 *  @param[in] threshold smallest average that counts, grey levels
 *  @param[in] blockWidth block width, pels, any value (below 1: 1)
 *  @param[in] blockHeight block height, pels, any value (below 1: 1)
 *  @return 0; -2 image null or invalid, or no memory
 *  @par Memory
 *  A few working rows; the cost a pel does not grow with the block.
 *  @note When no position counts both outputs are not-a-number. Averages are those of tqGetPelBlockAvg.
 *        Single pels are summed as integers; averages in double, row by row, each row in eight running sums
 *        (column modulo 8), which gives the same bits on every build.
 */
TQ_API int32_t TQ_CALL tqFindCentroid(const TqImage* image, double* column, double* row, double threshold,
                                      int32_t blockWidth, int32_t blockHeight);

/** @brief Geometric centre of the positions whose block average is above a threshold.
 *  @param[in] image image to measure
 *  @param[out] column mean column, pels; may be null
 *  @param[out] row mean row, pels; may be null
 *  @param[in] threshold averages above threshold + 0.00001 count, grey levels
 *  @param[in] blockWidth block width, pels, any value (below 1: 1)
 *  @param[in] blockHeight block height, pels, any value (below 1: 1)
 *  @return 0; -2 image null or invalid, or no memory
 *  @par Memory
 *  A few working rows; the cost a pel does not grow with the block.
 *  @note An average equal to the threshold does not count here, but does in tqFindCentroid. When no position
 *        counts both outputs are not-a-number.
 */
TQ_API int32_t TQ_CALL tqFindGeometricCenter(const TqImage* image, double* column, double* row,
                                             double threshold, int32_t blockWidth, int32_t blockHeight);

/** @brief Centroid of the pels of a rectangle above a threshold.
 *  @param[in] image image to measure
 *  @param[out] column column of the centroid, pels; may be null
 *  @param[out] row row of the centroid, pels; may be null
 *  @param[in] threshold pels above it count, grey levels, any value
 *  @param[in] left first column, pels (below 0: 0)
 *  @param[in] top first row, pels (below 0: 0)
 *  @param[in] right last column, pels (limited to the image; 0 is column 0)
 *  @param[in] bottom last row, pels (limited to the image; 0 is row 0)
 *  @return 0; -2 image null or invalid, rectangle empty; -99 no pel above the threshold, or all of them 0.
 *          The outputs are only written when the result is 0.
 */
TQ_API int32_t TQ_CALL tqFindCentroidInRegion(const TqImage* image, double* column, double* row,
                                              int32_t threshold, int32_t left, int32_t top, int32_t right,
                                              int32_t bottom);

/** @brief Geometric centre of the pels of a rectangle above a threshold.
 *  @param[in] image image to measure
 *  @param[out] column mean column, pels; may be null
 *  @param[out] row mean row, pels; may be null
 *  @param[in] threshold pels above it count, grey levels, any value
 *  @param[in] left first column, pels (below 0: 0)
 *  @param[in] top first row, pels (below 0: 0)
 *  @param[in] right last column, pels (limited to the image; 0 is column 0)
 *  @param[in] bottom last row, pels (limited to the image; 0 is row 0)
 *  @return 0; -2 image null or invalid, rectangle empty; -99 no pel above the threshold. The outputs are only
 *          written when the result is 0.
 */
TQ_API int32_t TQ_CALL tqFindGeometricCenterInRegion(const TqImage* image, double* column, double* row,
                                                     int32_t threshold, int32_t left, int32_t top,
                                                     int32_t right, int32_t bottom);

/** @brief Centroid of the pels of an ellipse above a threshold.
 *  @param[in] image image to measure
 *  @param[out] column column of the centroid, pels; -1.0 when the result is -99; may be null
 *  @param[out] row row of the centroid, pels; -1.0 when the result is -99; may be null
 *  @param[in] threshold pels above it count, grey levels, any value
 *  @param[in] centerCol centre column, pels, any value
 *  @param[in] centerRow centre row, pels, any value
 *  @param[in] width full width, pels, any value (below 1: 1)
 *  @param[in] height full height, pels, any value (below 1: 1)
 *  @return 0; -1 image null or invalid; -99 no pel above the threshold, or all of them 0
 *  @note With width and height 1 the outputs are the centre as passed, and no pel is looked at.
 */
TQ_API int32_t TQ_CALL tqFindCentroidInEllipse(const TqImage* image, double* column, double* row,
                                               int32_t threshold, int32_t centerCol, int32_t centerRow,
                                               int32_t width, int32_t height);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
