/** @file border_light.h
 *  Light that a display spills outside its active area, and its removal from the image.
 *
 *  Four strips around the active area are measured. The area follows the rule of region rectangles
 *  (region_rectangle.h); the strips are `depth` pels deep, begin `gap` pels outside the area, are as long as
 *  its sides and so leave the corners out, and are cut to the image. Pels of 0, which hold no data, and pels
 *  above a ceiling, which are reflections and not spilled light, are left out.
 */
#ifndef TQIMAGE_BORDER_LIGHT_H
#define TQIMAGE_BORDER_LIGHT_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup border_light Border light
 *  @ingroup measure
 *  @copydoc border_light.h
 *  @{ */

/** @brief Mean and largest grey of the light around the active area of a display.
 *  @param[in] image image to measure
 *  @param[in] left first column of the active area, pels, any value (clamped)
 *  @param[in] top first row of the active area, pels, any value (clamped)
 *  @param[in] right last column of the active area, pels, any value (clamped; 0 is the last of the image)
 *  @param[in] bottom last row of the active area, pels, any value (clamped; 0 is the last of the image)
 *  @param[in] gap pels between the area and the strips, any value (below 0: 0)
 *  @param[in] depth depth of the strips, pels, any value (below 1: 1)
 *  @param[in] ceiling largest pel that counts, grey levels; 0 or less: every pel
 *  @param[out] leftMean mean of the left strip, grey levels; 0 when it has no pel that counts; may be null
 *  @param[out] topMean mean of the top strip; may be null
 *  @param[out] rightMean mean of the right strip; may be null
 *  @param[out] bottomMean mean of the bottom strip; may be null
 *  @param[out] mean mean of the pels of all four strips, grey levels; may be null
 *  @param[out] maximum largest pel that counts, grey levels; may be null
 *  @param[out] column its column, pels; the first in row order of equal ones; may be null
 *  @param[out] row its row, pels; may be null
 *  @return 0; -2 image null or invalid; -3 the active area is empty; -99 no pel counts
 *  @note After a failure the means and the maximum are 0, column and row -1.
 */
TQ_API int32_t TQ_CALL tqMeasureBorderLight(const TqImage* image, int32_t left, int32_t top, int32_t right,
                                            int32_t bottom, int32_t gap, int32_t depth, int32_t ceiling,
                                            double* leftMean, double* topMean, double* rightMean,
                                            double* bottomMean, double* mean, double* maximum,
                                            int32_t* column, int32_t* row);

/** @brief Measures the light around the active area and subtracts a background made from it from every pel.
 *
 *  An output pel is v - strength * background + 0.5, truncated and clamped to 0..65535.
 *  @param[in,out] image address of the host's image pointer; the result, with the image's whole header,
 *                 replaces it. Untouched when the function fails
 *  @param[in] left first column of the active area, pels, any value (clamped)
 *  @param[in] top first row of the active area, pels, any value (clamped)
 *  @param[in] right last column of the active area, pels, any value (clamped; 0 is the last of the image)
 *  @param[in] bottom last row of the active area, pels, any value (clamped; 0 is the last of the image)
 *  @param[in] gap pels between the area and the strips, any value (below 0: 0)
 *  @param[in] depth depth of the strips, pels, any value (below 1: 1)
 *  @param[in] ceiling largest pel that counts, grey levels; 0 or less: every pel
 *  @param[out] leftMean mean of the left strip, grey levels; 0 when it has no pel that counts; may be null
 *  @param[out] topMean mean of the top strip; may be null
 *  @param[out] rightMean mean of the right strip; may be null
 *  @param[out] bottomMean mean of the bottom strip; may be null
 *  @param[out] mean mean of the pels of all four strips, grey levels; may be null
 *  @param[out] maximum largest pel that counts, grey levels; may be null
 *  @param[out] column its column, pels; the first in row order of equal ones; may be null
 *  @param[out] row its row, pels; may be null
 *  @param[in] mode background: 0 the mean; 1 the plane of least squared distance to the pels of the strips;
 *             2 the Coons patch between the profiles along the four strips
 *  @param[in] strength share of the background that is subtracted, any value; 1.0 is all of it
 *  @return 0; -2 image null or invalid; -3 the active area is empty; -99 no pel counts; -4 another mode, or
 *          no such background: the pels lie on one line (mode 1) or a strip has no pel that counts (mode 2);
 *          -5 no memory
 *  @par Ownership
 *  The block that the pointer held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and a row; in mode 2 also four profiles as long as the sides of the area and three rows.
 *  @par Source
 *  S. A. Coons, Surfaces for computer-aided design of space forms, MIT project MAC-TR-41, 1967: the patch
 *  that blends four curves bilinearly.
 *  @note A profile is the mean across the strip for each of its columns or rows, taken to lie in the middle
 *        of the strip. Places without a pel that counts are bridged linearly, at an end by the nearest value.
 *        Towards the corners a profile goes on with the slope of the least-squares line through its last
 *        2 * gap + depth + 1 places, and a corner is the mean of the two profiles that meet there; so an
 *        inclined plane comes out as it is. Outside the middles of the strips the background is that of the
 *        nearest place on them.
 *  @note The outputs of the measurement are written as by tqMeasureBorderLight, with -4 and -5 too.
 */
TQ_API int32_t TQ_CALL tqRemoveBorderLight(TqImage** image, int32_t left, int32_t top, int32_t right,
                                           int32_t bottom, int32_t gap, int32_t depth, int32_t ceiling,
                                           double* leftMean, double* topMean, double* rightMean,
                                           double* bottomMean, double* mean, double* maximum, int32_t* column,
                                           int32_t* row, int32_t mode, double strength);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
