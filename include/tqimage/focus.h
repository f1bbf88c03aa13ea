/** @file focus.h
 *  How well an image is focused, over the whole field.
 */
#ifndef TQIMAGE_FOCUS_H
#define TQIMAGE_FOCUS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup focus Focus
 *  @ingroup analysis
 *  @copydoc focus.h
 *  @{ */

/** @brief Sharpness of a target with edges in nine regions: the corners, the middles of the sides, the
 *  centre.
 *
 *  The regions span 1..9, 46..54 and 91..99 percent of the columns and of the rows. Each yields its steepest
 *  slope in grey levels a pel divided by its contrast, largest less smallest pel: 0.5 for edges that are
 *  sharp to the pel, less the more they are blurred, whatever the exposure.
 *
 *  @param[in] image image of a target with edges in every region, such as a checkerboard
 *  @param[out] first smallest quotient; 1e7 when the function fails; may be null
 *  @param[out] second largest quotient; 0 when the function fails; may be null
 *  @param[out] mean mean of the nine quotients; 0 when the function fails; may be null
 *  @return 0; -2 image null or invalid; -3 a region has no pel with eight neighbours
 *  @note The slope is the magnitude of the Sobel gradient divided by 8, among the pels whose neighbours lie
 *        in the region. A region without contrast has the quotient 0, which counts like any other.
 *        Percentages go to the nearest pel, half-way cases to the even one.
 */
TQ_API int32_t TQ_CALL tqAnalyzeFocusImage(const TqImage* image, double* first, double* second, double* mean);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
