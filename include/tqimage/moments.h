/** @file moments.h
 *  Local statistics as images.
 */
#ifndef TQIMAGE_MOMENTS_H
#define TQIMAGE_MOMENTS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup moments Local moments
 *  @ingroup analysis
 *  @copydoc moments.h
 *  @{ */

/** @brief Image of the central moments of the window around each pel.
 *
 *  Over the pels v of the window that are not 0, which means no data, with their mean m: the mean of |v -
 *  m|^order. The largest moment becomes grey level 65000, and LuxPerGrey of the result converts grey levels
 *  back to moments.
 *
 *  @param[in,out] result address of the pointer that receives the result, with the header of the image but
 *              for MaxPelValue (65000) and LuxPerGrey (largest moment / 65000). May hold the image. Untouched
 *              when the function fails and for a window of one pel.
 *  @param[in] image image to measure
 *  @param[in] order power of the deviations, any value; a negative one takes the reciprocal of each power
 *  @param[in] windowCols width of the window, pels, any value (below 2: 1; limited to the image; an even
 *             width is reduced by 1)
 *  @param[in] windowRows height of the window, likewise
 *  @return 0, also for a window of one pel, which produces nothing; -2 result null, image null or invalid; -3
 *          no memory for the result; -1 no memory for the work buffers
 *  @par Ownership
 *  A block that result held is freed; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result, a single-precision value a pel, and the rows of a window.
 *  @note Windows keep their full size and are shifted inward at the borders. A window without data gives 0.
 *        Sums are taken in single precision, row by row of the window, and keep those bits: so the time a pel
 *        grows with the area of the window, not with its side.
 */
TQ_API int32_t TQ_CALL tqCalcMoment(TqImage** result, const TqImage* image, int32_t order, int32_t windowCols,
                                    int32_t windowRows);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
