/** @file mtf.h
 *  Modulation transfer.
 */
#ifndef TQIMAGE_MTF_H
#define TQIMAGE_MTF_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup mtf Modulation transfer
 *  @ingroup analysis
 *  @copydoc mtf.h
 *  @{ */

/** @brief Modulation transfer function of an imaging system from the image of a slanted edge.
 *  @param[in] image image of one straight edge between two even areas
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in] count number of values that mtf takes; below 1: none
 *  @param[out] mtf modulation at k * 0.5 / (count - 1) cycles a pel along the normal of the edge, 1 at k = 0;
 *              may be null
 *  @param[out] mtf50 lowest frequency at which the modulation has fallen to 0.5, cycles a pel, 0 when it has
 *              not up to 0.5 cycles a pel; may be null
 *  @param[out] angle angle of the edge, degrees, 1..44 or -44..-1: from the columns of the image, positive
 *              when it moves right going down; for an edge that is nearer to the rows, from the rows,
 *              positive when it moves down going right; may be null
 *  @return 0; -2 image null or invalid, rectangle empty; -3 fewer than 20 pels across the edge or 10 along
 *          it, the edge within 4 pels of an end, or no memory; -4 no edge; -5 angle below 1 or above 44
 *          degrees. The outputs are only written when the result is 0.
 *  @par Memory
 *  A few values a row and four a column of the rectangle.
 *  @par Source
 *  ISO 12233, slanted-edge spatial frequency response: centroids of the windowed derivative of each row (or
 *  column), a straight line through them fitted twice, the second time with the window on the first line;
 *  pels of a whole number of phase turns binned by their distance from the line in quarters of a pel; central
 *  difference, Hamming window over ten rises of the edge to each side (16 pels at least, the rectangle at
 *  most), Fourier transform, divided by the responses of difference and bin.
 *  @note The aperture of the pels is part of the result: a system that blurs with a Gaussian of sigma 1 pel
 *        reaches 0.5 at 0.180 cycles a pel.
 */
TQ_API int32_t TQ_CALL tqCalcMTF(const TqImage* image, int32_t left, int32_t top, int32_t right,
                                 int32_t bottom, int32_t count, double* mtf, double* mtf50, double* angle);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
