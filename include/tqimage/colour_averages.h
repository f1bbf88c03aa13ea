/** @file colour_averages.h
 *  Mean colours of a set of three channels.
 *
 *  Channels are three images of one size whose pels at (column, row) show the same point: three filter images
 *  (red, green, blue) or X, Y and Z. A matrix is nine coefficients in row order; its rows give X, Y and Z
 * from the three channels, its second row is the luminance. The library holds no matrix: the calibration of
 * an instrument lives with the host. Images are only read, sums of pels are exact, and no extra memory is
 * needed unless a function says so.
 */
#ifndef TQIMAGE_COLOUR_AVERAGES_H
#define TQIMAGE_COLOUR_AVERAGES_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @brief X, Y and Z of the mean colour of the pels above a threshold.
 *
 *  A pel counts when its test value is greater than threshold + 1. The result is the matrix times the means
 * of the three channels over the counted pels.
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] threshold threshold of the test value, grey levels, any value
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @param[in] useLuminance 0: the test value is the second channel; other values: it is m3 * first +
 *             m4 * second + m5 * third
 *  @param[out] x mean X, grey levels of the channels; untouched after a failure; may be null
 *  @param[out] y mean Y, likewise
 *  @param[out] z mean Z, likewise
 *  @return 0; -2 a channel is null; -3 first, -4 second, -5 third channel invalid; -6 sizes differ
 *  @note The comparison is one level stricter than that of tqCalcAverageColorValuesInRegion: with a threshold
 *        of 10 a pel of 11 is not counted. Hosts rely on the difference.
 *  @note LuxPerGrey is not applied. Without a counted pel the results are not-a-number.
 */
TQ_API int32_t TQ_CALL tqCalcAverageColorValues(const TqImage* first, const TqImage* second,
                                                const TqImage* third, int32_t threshold, float m0, float m1,
                                                float m2, float m3, float m4, float m5, float m6, float m7,
                                                float m8, int32_t useLuminance, float* x, float* y, float* z);

/** @brief X, Y and Z of the mean colour of the pels of a rectangle above a threshold.
 *
 *  As tqCalcAverageColorValues, but a pel counts when its test value is greater than threshold, and the
 * column `right` is not part of the rectangle while the row `bottom` is.
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] threshold threshold of the test value, grey levels, any value
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @param[in] useLuminance 0: the test value is the second channel; other values: the luminance row
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right column behind the last, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[out] x mean X, grey levels of the channels; untouched after a failure; may be null
 *  @param[out] y mean Y, likewise
 *  @param[out] z mean Z, likewise
 *  @return 0; -2 a channel is null; -3 first, -4 second, -5 third channel invalid; -6 sizes differ
 *  @note Even 0, 0, 0, 0 leaves the last column out, and left = right visits none: the results are then
 *        not-a-number.
 */
TQ_API int32_t TQ_CALL tqCalcAverageColorValuesInRegion(const TqImage* first, const TqImage* second,
                                                        const TqImage* third, int32_t threshold, float m0,
                                                        float m1, float m2, float m3, float m4, float m5,
                                                        float m6, float m7, float m8, int32_t useLuminance,
                                                        int32_t left, int32_t top, int32_t right,
                                                        int32_t bottom, float* x, float* y, float* z);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
