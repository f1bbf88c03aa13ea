/** @file filters.h
 *  Filters that make each pel from the pels around it: medians, means, smoothing, sharpening, low pass, and
 *  the filling of a hole.
 *
 *  Windows of the medians and neighbourhood averages:
 *  - A width or height below 2 becomes 1; it is limited to the image, and an even one then loses 1: 4 asks
 *    for 3, 2 for 1.
 *  - A shifted window is never cut: at the border it slides inward and keeps its size. A clipped window is
 *    cut by the border.
 *
 *  Functions whose names end in 0 take a pel of 0 for "no data": it stays 0 and is in no average. Rectangles
 *  are 0-based and inclusive; every side is clamped into the image, and a right or bottom of 0 then means the
 *  last column or row. An empty rectangle changes no pel. Pels outside a rectangle are copied, and windows
 *  may reach outside it.
 *
 *  A failing function leaves the host's image as it was.
 */
#ifndef TQIMAGE_FILTERS_H
#define TQIMAGE_FILTERS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup filters Filters
 *  @ingroup process
 *  @copydoc filters.h
 *  @{ */

/** @brief Replaces every pel by the median of its shifted square window.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @param[in] size side of the window, pels, any value; limited to the shorter side of the image
 *  @return 0; -2 image null or invalid; -3 no memory
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and working memory that grows with the window only.
 *  @note Size 2 is a window of one pel: the image is copied into a new block.
 */
TQ_API int32_t TQ_CALL tqMedianFilter(TqImage** image, int32_t size);

/** @brief Median of the shifted width x height window, for the pels of a rectangle.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @param[in] width window width, pels, any value
 *  @param[in] height window height, pels, any value
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return 0; -2 image null or invalid; -3 no memory
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and working memory that grows with the window only.
 */
TQ_API int32_t TQ_CALL tqMedianFilterInRegion(TqImage** image, int32_t width, int32_t height, int32_t left,
                                              int32_t top, int32_t right, int32_t bottom);

/** @brief Replaces every pel by the mean of its shifted window, rounded half up.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @param[in] width window width, pels, any value
 *  @param[in] height window height, pels, any value
 *  @return 0; -2 image null or invalid; -3 no memory
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and a few rows; the cost a pel does not grow with the window.
 *  @note A window of one pel returns 0 and keeps the host's block. No field of the header is recomputed.
 */
TQ_API int32_t TQ_CALL tqNeighborhoodAverage(TqImage** image, int32_t width, int32_t height);

/** @brief Replaces every pel with data by the mean of the pels with data in its clipped window, rounded half
 *  up.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @param[in] width window width, pels, any value
 *  @param[in] height window height, pels, any value
 *  @return 0; -2 image null or invalid; -3 no memory
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and a few rows; the cost a pel does not grow with the window.
 *  @note A window of one pel returns 0 and keeps the host's block. No field of the header is recomputed.
 */
TQ_API int32_t TQ_CALL tqNeighborhoodAverage0(TqImage** image, int32_t width, int32_t height);

/** @brief tqNeighborhoodAverage for the pels of a rectangle.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @param[in] width window width, pels, any value
 *  @param[in] height window height, pels, any value
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return 0; -2 image null or invalid; -3 no memory
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and a few rows; the cost a pel does not grow with the window.
 *  @note A window of one pel returns 0 and keeps the host's block. No field of the header is recomputed.
 */
TQ_API int32_t TQ_CALL tqNeighborhoodAverageInRegion(TqImage** image, int32_t width, int32_t height,
                                                     int32_t left, int32_t top, int32_t right,
                                                     int32_t bottom);

/** @brief tqNeighborhoodAverage0 for the pels of a rectangle.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @param[in] width window width, pels, any value
 *  @param[in] height window height, pels, any value
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return 0; -2 image null or invalid; -3 no memory
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and a few rows; the cost a pel does not grow with the window.
 *  @note A window of one pel returns 0 and keeps the host's block. No field of the header is recomputed.
 */
TQ_API int32_t TQ_CALL tqNeighborhoodAverageInRegion0(TqImage** image, int32_t width, int32_t height,
                                                      int32_t left, int32_t top, int32_t right,
                                                      int32_t bottom);

/** @brief Repeated smoothing: each pass replaces every pel by the mean of its clipped 3 x 3 window,
 *  truncated.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @param[in] passes number of repetitions; 0 and below do nothing
 *  @return 0; -1 image null or invalid; -2 no memory
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result of one pass.
 *  @note Every pass replaces the block; when one fails the result of the passes before it stands. Without
 *        passes the image is not looked at.
 */
TQ_API int32_t TQ_CALL tqSmoothImage(TqImage** image, int32_t passes);

/** @brief tqSmoothImage over pels with data only: 0 stays 0 and is in no mean.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @param[in] passes number of repetitions; 0 and below do nothing
 *  @return 0; -1 image null or invalid; -2 no memory
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result of one pass.
 *  @note As for tqSmoothImage.
 */
TQ_API int32_t TQ_CALL tqSmoothImage0(TqImage** image, int32_t passes);

/** @brief Sharpens by a 3 x 3 kernel of -1/9 around (9 * strength - 1) / 9.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @param[in] strength 1 detects edges, 2 keeps the level of flat areas; below 1 counts as 1
 *  @return 0; -2 image null or invalid; -3 no memory; -4 fewer than 3 columns or rows
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and a few working rows.
 *  @note Each product of pel and weight is formed in single precision and truncated before the sum. Pels of
 *        the border are copied. A sum below 1 becomes 1 or 0 as the source pel of the same running index is
 *        not 0 or 0: sums count without the border, pels with it, and hosts rely on that pairing.
 *        TotalPelValue, MaxPelValue (largest pel) and CenterPelValue are refreshed.
 */
TQ_API int32_t TQ_CALL tqSharpenImage(TqImage** image, float strength);

/** @brief tqSharpenImage for the pels of a rectangle; the header is refreshed as there.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @param[in] strength 1 detects edges, 2 keeps the level of flat areas; below 1 counts as 1
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return 0; -2 image null or invalid; -3 no memory; -4 fewer than 3 columns or rows
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and a few working rows.
 */
TQ_API int32_t TQ_CALL tqSharpenImageInRegion(TqImage** image, float strength, int32_t left, int32_t top,
                                              int32_t right, int32_t bottom);

/** @brief Low pass by the 5 x 5 kernel 1 1 1 1 1 / 1 4 4 4 1 / 1 4 12 4 1 / 1 4 4 4 1 / 1 1 1 1 1.
 *  @param[in,out] image address of the host's image; the result, with the image's whole header, replaces it
 *  @return 0; -2 image null or invalid; -3 no memory; -4 fewer than 5 columns or rows
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and a few working rows.
 *  @note The results, for the PelCols - 4 x PelRows - 4 places where the kernel fits, are stretched to
 *        0 .. MaxPelValue and written one behind the other from the first pel on, without a border; zeros
 *        follow. Hosts rely on that layout. A flat result gives zeros.
 */
TQ_API int32_t TQ_CALL tqLowPassFilter(TqImage** image);

/** @brief Fills a rectangle, row by row, with the straight line between the means of 5 x 5 blocks left and
 *  right of it.
 *  @param[in,out] image image to change in place
 *  @param[in] left first column of the hole, pels, any value
 *  @param[in] top first row, pels, any value
 *  @param[in] right last column, pels, any value; 0 is column 0
 *  @param[in] bottom last row, pels, any value; 0 is row 0
 *  @return 0; -2 image null or invalid
 *  @note What lies outside the image is not written; an empty rectangle changes nothing. The blocks are
 *        clamped by the rule of rectangles above: left of a hole that starts in column 0 or 1 the block
 *        reaches to the last column.
 */
TQ_API int32_t TQ_CALL tqFillInHole(TqImage* image, int32_t left, int32_t top, int32_t right, int32_t bottom);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
