/** @file equalisation.h
 *  Grey levels redistributed so that each takes about as many pels: of an image, of a rectangle, of the
 *  surroundings of each pel.
 *
 *  A result has the levels 0..levels - 1, and pels of 0, those without data, stay 0. Pels are sorted into
 *  bins: (int)(pel * (levels - 1) / largest pel + 0.5).
 */
#ifndef TQIMAGE_EQUALISATION_H
#define TQIMAGE_EQUALISATION_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup equalisation Histogram equalisation
 *  @ingroup process
 *  @copydoc equalisation.h
 *  @{ */

/**
 * @brief Maps each grey level to the share of the pels up to its bin.
 *
 * The share of a bin is the number of its pels divided by that of all pels, 0 included; the shares are added
 * up from the lowest bin in single precision. A pel becomes (int)((levels - 1) * share + 0.5), also in single
 * precision.
 *
 * @param[in,out] out       Address of the pointer that receives the result, with the source's header and
 *                       refreshed TotalPelValue, MaxPelValue and CenterPelValue; may be the source's own.
 *                       Null after -3 and -4, untouched after -2.
 * @param[in,out] source Image to equalise; its MaxPelValue becomes its largest pel.
 * @param[in] levels     Grey levels of the result, at most 65536. Below 1: the source's MaxPelValue before
 *                       the call, truncated, + 1, at most 16384.
 * @return 0; -2 out null, or source null or invalid; -3 no memory for the result; -4 every pel is 0, or no
 *         memory for the histogram.
 * @par Ownership
 * The block that out holds is freed first, unless it is the source: that is freed at the end, after a failure
 * as well. The host frees the new block with tqImageFree.
 * @par Memory
 * The result, the histogram and tables of the grey levels.
 */
TQ_API int32_t TQ_CALL tqHistoEqualize(TqImage** out, TqImage* source, int32_t levels);

/**
 * @brief The same for the pels of a rectangle; the pels outside stay.
 * @param[in,out] out   Address of the pointer that receives the result, with the source's header and
 *                      refreshed TotalPelValue, MaxPelValue and CenterPelValue; may be the source's own. Null
 *                      after -3 and -4, untouched after -2.
 * @param[in] source Image to equalise; unlike above it stays as it is.
 * @param[in] levels Grey levels of the rectangle in the result, at most 65536. Below 1: the source's
 *                   MaxPelValue, truncated, + 1, at most 16384.
 * @param[in] left   First column, clamped into the image.
 * @param[in] top    First row, clamped into the image.
 * @param[in] right  Last column, clamped into the image; 0 means the last column of the image.
 * @param[in] bottom Last row, clamped into the image; 0 means the last row of the image.
 * @return 0; -2 out null, or source null or invalid; -3 no memory for the result; -4 every pel of the
 *         rectangle is 0, or no memory for the histogram.
 * @par Ownership
 * As tqHistoEqualize.
 * @par Memory
 * The result, the histogram and tables of the grey levels.
 * @note Bins reach up to the largest pel of the rectangle, and shares are those of its pels. An empty
 *       rectangle gives a copy with refreshed figures.
 */
TQ_API int32_t TQ_CALL tqHistoEqualizeInRegion(TqImage** out, const TqImage* source, int32_t levels,
                                               int32_t left, int32_t top, int32_t right, int32_t bottom);

/**
 * @brief Maps each pel to its rank among the pels of its neighbourhood.
 *
 * With n pels in the neighbourhood, k of them in the bin of the pel or below, the pel becomes
 * (levels - 1) * k / n, rounded: (2 * (levels - 1) * k + n) / (2 * n) in integers.
 *
 * @param[in,out] out       Address of the pointer that receives the result, with the source's header and
 *                       refreshed TotalPelValue, MaxPelValue and CenterPelValue; may be the source's own.
 *                       Null after -3 and -4, untouched after -2.
 * @param[in,out] source Image to equalise; its MaxPelValue becomes its largest pel.
 * @param[in] levels     Grey levels of the result, at most 65536. Below 1: the source's MaxPelValue before
 *                       the call, truncated, + 1, at most 16384.
 * @param[in] width      Columns of the neighbourhood: below 2 counts as 1, at most those of the image, and an
 *                       even number loses one.
 * @param[in] height     Rows of the neighbourhood, in the same way.
 * @return 0; -2 out null, or source null or invalid; -3 no memory for the result; -4 every pel is 0, or no
 *         memory for the histogram.
 * @par Ownership
 * As tqHistoEqualize.
 * @par Memory
 * The result, the histogram and a table of the grey levels.
 * @par Source
 * S. M. Pizer and others, Adaptive histogram equalization and its variations, Computer Vision, Graphics, and
 * Image Processing 39 (1987).
 * @note At the border the neighbourhood slides inward and keeps its size. Pels of 0 in it count. The time
 *       grows with the height of the neighbourhood and hardly with its width.
 */
TQ_API int32_t TQ_CALL tqLocalHistoEqualize(TqImage** out, TqImage* source, int32_t levels, int32_t width,
                                            int32_t height);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
