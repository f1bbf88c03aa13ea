/** @file sub_pixel.h
 *  Position of a spot to a fraction of a pel.
 */
#ifndef TQIMAGE_SUB_PIXEL_H
#define TQIMAGE_SUB_PIXEL_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup sub_pixel Sub-pixel positions
 *  @ingroup analysis
 *  @copydoc sub_pixel.h
 *  @{ */

/** @brief Position of the brightest spot of a rectangle to a fraction of a pel.
 *
 *  Starts from the brightest pel above the threshold, of equal ones the first in row order. Mode 0 fits a
 *  paraboloid by least squares to the logarithm of its 3 x 3 neighbourhood above the background, which is
 *  exact for a Gaussian spot; the background is the smallest pel of the rectangle. Mode 1 fits the grey
 *  levels themselves. Mode 2 is the centroid of what the pels of the rectangle stand above the threshold.
 *
 *  @param[in] image image to search
 *  @param[out] column column of the spot, pels; may be null
 *  @param[out] row row of the spot, pels; may be null
 *  @param[out] peak grey level at the summit of the fit (mode 2: the brightest pel); may be null
 *  @param[in] threshold pels above it count, grey levels, any value
 *  @param[in] left first column, pels (below 0: 0)
 *  @param[in] top first row, pels (below 0: 0)
 *  @param[in] right last column, pels (limited to the image; 0 is column 0)
 *  @param[in] bottom last row, pels (limited to the image; 0 is row 0)
 *  @param[in] mode 0, 1 or 2
 *  @return 0; 1 the brightest pel's own position and level were returned (modes 0 and 1), because it lies at
 *          the edge of the image, or its neighbourhood has no summit within a pel; -2 image null or invalid,
 *          rectangle empty; -4 another mode; -99 no pel above the threshold. The outputs are only written
 *          when the result is 0 or 1.
 *  @note In mode 0 a pel that does not stand above the background counts as half a grey level above it.
 */
TQ_API int32_t TQ_CALL tqFindSubPixelInRegion(const TqImage* image, double* column, double* row, double* peak,
                                              int32_t threshold, int32_t left, int32_t top, int32_t right,
                                              int32_t bottom, int32_t mode);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
