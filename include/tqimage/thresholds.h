/** @file thresholds.h
 *  Pels kept or cleared by comparing them with fixed levels or with the mean of their surroundings.
 *
 *  Levels are compared as they are passed: no pel reaches a threshold above 65535, and every pel reaches one
 *  of 0 or below. Values that are stored in pels are limited to 65535.
 */
#ifndef TQIMAGE_THRESHOLDS_H
#define TQIMAGE_THRESHOLDS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup thresholds Thresholds
 *  @ingroup process
 *  @copydoc thresholds.h
 *  @{ */

/**
 * @brief Clears the pels below a threshold and keeps or marks the others.
 * @param[in,out] image Address of the pointer to the image; the result, with the image's header and refreshed
 *                      TotalPelValue, MaxPelValue and CenterPelValue, replaces it. Untouched after a failure.
 * @param[in] threshold Grey level; pels below it become 0.
 * @param[in] value     What the other pels become, up to 65535; 0 or below keeps them.
 * @return 0; -2 image null or invalid; -3 no memory.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 */
TQ_API int32_t TQ_CALL tqThresholdImage(TqImage** image, int32_t threshold, int32_t value);

/**
 * @brief The same inside a rectangle; the pels outside stay.
 * @param[in,out] image Address of the pointer to the image; the result, with the image's whole header,
 *                      replaces it. Untouched after a failure.
 * @param[in] threshold Grey level; pels of the rectangle below it become 0.
 * @param[in] value     What the other pels of the rectangle become, up to 65535; 0 or below keeps them.
 * @param[in] left      First column, clamped into the image.
 * @param[in] top       First row, clamped into the image.
 * @param[in] right     Last column, clamped into the image; 0 means the last column of the image.
 * @param[in] bottom    Last row, clamped into the image; 0 means the last row of the image.
 * @return 0; -2 image null or invalid; -3 no memory.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note No field of the header is recomputed. An empty rectangle changes no pel.
 */
TQ_API int32_t TQ_CALL tqThresholdImageInRegion(TqImage** image, int32_t threshold, int32_t value,
                                                int32_t left, int32_t top, int32_t right, int32_t bottom);

/**
 * @brief Keeps the pels of a band of grey levels and clears the others.
 * @param[in,out] image Address of the pointer to the image; the result, with the image's header and the
 *                      largest pel kept as MaxPelValue, replaces it. Untouched after a failure.
 * @param[in] low       Lowest grey level that is kept.
 * @param[in] high      Highest grey level that is kept; 0 means 65535.
 * @return 0; -2 image null or invalid; -3 no memory.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 */
TQ_API int32_t TQ_CALL tqThresholdImage2(TqImage** image, int32_t low, int32_t high);

/**
 * @brief The same inside a rectangle; the pels outside stay.
 * @param[in,out] image Address of the pointer to the image; the result, with the image's header and the
 *                      largest pel kept inside the rectangle as MaxPelValue, replaces it. Untouched after a
 *                      failure.
 * @param[in] low       Lowest grey level that is kept.
 * @param[in] high      Highest grey level that is kept; 0 means 65535.
 * @param[in] left      First column, clamped into the image.
 * @param[in] top       First row, clamped into the image.
 * @param[in] right     Last column, clamped into the image; 0 means the last column of the image.
 * @param[in] bottom    Last row, clamped into the image; 0 means the last row of the image.
 * @return 0; -2 image null or invalid; -3 no memory.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note MaxPelValue looks at the rectangle alone: brighter pels outside do not count, and an empty rectangle
 *       gives 0.
 */
TQ_API int32_t TQ_CALL tqThresholdImage2InRegion(TqImage** image, int32_t low, int32_t high, int32_t left,
                                                 int32_t top, int32_t right, int32_t bottom);

/**
 * @brief Keeps the pels of a band of grey levels and replaces those outside it that are not 0.
 * @param[in,out] image   Address of the pointer to the image; the result, with the image's header and its
 *                        largest pel as MaxPelValue, replaces it. Untouched after a failure.
 * @param[in] low         Lowest grey level that is kept.
 * @param[in] high        Highest grey level that is kept; 0 means 65535.
 * @param[in] replacement What the other pels become, limited to 0..65535. Pels of 0 stay 0.
 * @param[out] replaced   Number of pels replaced; may be null. 0 after -3.
 * @return 0; -2 image null or invalid; -3 no memory.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note A pel of 0, one without data, is never counted, even where the band does not hold it.
 */
TQ_API int32_t TQ_CALL tqThresholdImage3(TqImage** image, int32_t low, int32_t high, int32_t replacement,
                                         int32_t* replaced);

/**
 * @brief Clears the pels below a threshold in a band along the border; the inner pels stay.
 * @param[in,out] image Address of the pointer to the image; the result, with the image's whole header,
 *                      replaces it. Untouched after a failure.
 * @param[in] threshold Grey level; pels of the band below it become 0.
 * @param[in] percent   Width of the band at each side, percent of the columns and of the rows, truncated to
 *                      whole pels. 0 or below and what is no number mean no band.
 * @return 0; -2 image null or invalid; -3 no memory.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note The columns are PelCols * percent / 100, the rows percent / 100 * PelRows, in double precision and in
 *       this order. No field of the header is recomputed. At 50 percent the middle of an odd side is still
 *       outside the band.
 */
TQ_API int32_t TQ_CALL tqThresholdImageEdge(TqImage** image, int32_t threshold, float percent);

/**
 * @brief Keeps the pels that stand out from the mean of their neighbourhood and clears all others.
 *
 * The neighbourhood is placed with its first column and row at every (c, r) with 0 <= c < PelCols - width and
 * 0 <= r < PelRows - height; the pel at (c + width / 2, r + height / 2) is then tested against the mean of
 * all pels of the neighbourhood, pels of 0 included. It is dark below (1 - percent / 100) * mean and bright
 * above (1 + percent / 100) * mean; one that is both counts as bright.
 *
 * @param[in,out] out    Address of the pointer that receives the result, with the source's whole header; may
 *                       be the source's own. Untouched after a failure.
 * @param[in] source  Image to test.
 * @param[in] kind    0 dark pels, 1 bright pels, any other value both.
 * @param[in] width   Columns of the neighbourhood; below 1 counts as 1.
 * @param[in] height  Rows of the neighbourhood; below 1 counts as 1.
 * @param[in] percent Tolerance, percent of the mean.
 * @param[out] bright Number of bright pels; may be null. Untouched after a failure.
 * @param[out] dark   Number of dark pels; may be null. Untouched after a failure.
 * @return 0; -1 out null, or source null or invalid; -3 width or height not below that of the image, or no
 *         memory.
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result and three working rows.
 * @note The neighbourhoods that end in the last column or row are left out. A pel of 0 can be dark: it is
 *       counted, and its copy in the result is 0 as well. The time does not depend on the neighbourhood.
 */
TQ_API int32_t TQ_CALL tqLocalThresholdImage(TqImage** out, const TqImage* source, int32_t kind,
                                             int32_t width, int32_t height, double percent, int32_t* bright,
                                             int32_t* dark);

/**
 * @brief The same for every pel that is not 0, against the mean of those around it that are not 0.
 *
 * At the border the neighbourhood slides inward and keeps its size, so that pels there are tested too.
 *
 * @param[in,out] out    Address of the pointer that receives the result, with the source's whole header; may
 *                       be the source's own. Untouched after a failure.
 * @param[in] source  Image to test; pels of 0 hold no data.
 * @param[in] kind    0 dark pels, 1 bright pels, any other value both.
 * @param[in] width   Columns of the neighbourhood, from column - width / 2 on; below 1 counts as 1.
 * @param[in] height  Rows of the neighbourhood, from row - height / 2 on; below 1 counts as 1.
 * @param[in] percent Tolerance, percent of the mean.
 * @param[out] bright Number of bright pels; may be null. Untouched after a failure.
 * @param[out] dark   Number of dark pels; may be null. Untouched after a failure.
 * @return 0; -1 out null, or source null or invalid; -3 width or height not below that of the image, or no
 *         memory.
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result and a few working rows.
 */
TQ_API int32_t TQ_CALL tqLocalThresholdImage2(TqImage** out, const TqImage* source, int32_t kind,
                                              int32_t width, int32_t height, double percent, int32_t* bright,
                                              int32_t* dark);

/**
 * @brief The same, only for the pels whose neighbourhood lies inside the image and holds no 0.
 * @param[in,out] out    Address of the pointer that receives the result, with the source's whole header; may
 *                       be the source's own. Untouched after a failure.
 * @param[in] source  Image to test; pels of 0 hold no data.
 * @param[in] kind    0 dark pels, 1 bright pels, any other value both.
 * @param[in] width   Columns of the neighbourhood, from column - width / 2 on; below 1 counts as 1.
 * @param[in] height  Rows of the neighbourhood, from row - height / 2 on; below 1 counts as 1.
 * @param[in] percent Tolerance, percent of the mean.
 * @param[out] bright Number of bright pels; may be null. Untouched after a failure.
 * @param[out] dark   Number of dark pels; may be null. Untouched after a failure.
 * @return 0; -1 out null, or source null or invalid; -3 width or height not below that of the image, or no
 *         memory.
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result and a few working rows.
 */
TQ_API int32_t TQ_CALL tqLocalThresholdImage3(TqImage** out, const TqImage* source, int32_t kind,
                                              int32_t width, int32_t height, double percent, int32_t* bright,
                                              int32_t* dark);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
