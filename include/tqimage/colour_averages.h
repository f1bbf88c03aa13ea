/** @file colour_averages.h
 *  Mean colours and colour histograms of a set of three channels.
 *
 *  Channels are three images of one size whose pels at (column, row) show the same point: three filter images
 *  (red, green, blue) or X, Y and Z. A matrix is nine coefficients in row order; its rows give X, Y and Z
 *  from the three channels, its second row is the luminance. The library holds no matrix: the calibration of
 *  an instrument lives with the host. Images are only read, sums of pels are exact, and no extra memory is
 *  needed unless a function says so.
 */
#ifndef TQIMAGE_COLOUR_AVERAGES_H
#define TQIMAGE_COLOUR_AVERAGES_H

#include "tqimage/automation.h"
#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup colour_averages Mean colours and histograms
 *  @ingroup colour
 *  @copydoc colour_averages.h
 *  @{ */

/** @brief X, Y and Z of the mean colour of the pels above a threshold.
 *
 *  A pel counts when its test value is greater than threshold + 1. The result is the matrix times the means
 *  of the three channels over the counted pels.
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
 *  column `right` is not part of the rectangle while the row `bottom` is.
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

/** @brief Histograms of three figures of the colours in a rectangle.
 *
 *  Space 0: the three channels; 1: X, Y, Z; 2: x, y, Y; 3: u', v', Y, X, Y and Z being the matrix times the
 *  pels. x, y, u' and v' are 0 where their denominator is. A pel counts when the second channel is greater
 *  than the threshold. A figure v belongs to the bin (int)((v - low) * bins / (high - low)); below low, and
 *  from high on, to none.
 *  @param[in,out] out address of the host's array pointer, which holds an array or null; receives a
 *                 two-dimensional array of 32-bit integers (VT_I4), lower bounds 0, indexed {bin, figure}:
 *                 bins x 3 numbers of pels
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] space 0 to 3 as above
 *  @param[in] threshold threshold of the second channel, grey levels, any value
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in] bins number of bins, 1 to 65536
 *  @param[in] limits low and high of the first, the second and the third figure: six finite numbers, low < high
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @return 0; -2 a channel or out is null; -3 first, -4 second, -5 third channel invalid; -6 sizes differ; -7
 *          space, bins or limits outside their range, or limits null; -8 the old array could not be
 *          destroyed, as when it is locked; -9 the array could not be created; -10 it could not be locked;
 *          -11 it could not be unlocked
 *  @par Ownership
 *  The old array is destroyed. The new one belongs to the host, which releases it with SafeArrayDestroy;
 *  after -10 and -11, too.
 *  @par Memory
 *  The array, and as much again while it works: 768 KiB each at most.
 *  @note Up to -8 the pointer is as before. After -9 it is null, or as before when the counters could not be
 *  had.
 */
TQ_API int32_t TQ_CALL tqGetColorHistograms(SAFEARRAY** out, const TqImage* first, const TqImage* second,
                                            const TqImage* third, int32_t space, int32_t threshold,
                                            int32_t left, int32_t top, int32_t right, int32_t bottom,
                                            int32_t bins, const float* limits, float m0, float m1, float m2,
                                            float m3, float m4, float m5, float m6, float m7, float m8);

/** @brief Mean colours of a list of regions.
 *
 *  Each record of the list is a block of tqGetPelBlockAvg or an ellipse of tqGetPelBlockAvgEllipse. The
 *  figures are the matrix times the means of the channels, and the chromaticities of that; x, y, u' and v'
 *  are 0 where their denominator is.
 *  @param[in,out] results address of the host's array pointer, which holds an array or null; receives a
 *                 two-dimensional array of doubles (VT_R8), lower bounds 0, indexed {record, figure}: X, Y,
 *                 Z, x, y, u', v' of each record
 *  @param[in] regions address of the list: a two-dimensional array of 32-bit integers, indexed {record,
 *             field}; the fields are shape (0 block, other values ellipse), column and row of the centre,
 *             width, height, pels
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] useLux 0: means are grey levels; other values: each is multiplied by LuxPerGrey of its channel
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @return 0; of the list: 1 not two dimensions, or null; 2 not 32-bit integers; 3 not five fields; 5 it
 *          could not be locked; then -2 a channel or results is null; -3 first, -4 second, -5 third channel
 *          invalid; -6 sizes differ; 4 an element could not be read, as when a lower bound is above 0; 6 the
 *          list could not be unlocked; -7 the old array could not be destroyed, as when it is locked; -8 no
 *          memory, or the array could not be created, locked or unlocked
 *  @par Ownership
 *  The old array is destroyed. The new one belongs to the host, which releases it with SafeArrayDestroy. The
 *  list is unlocked in any case.
 *  @par Memory
 *  The array, and 76 bytes a region while it works.
 */
TQ_API int32_t TQ_CALL tqGetColorArraysDefined(SAFEARRAY** results, SAFEARRAY** regions, const TqImage* first,
                                               const TqImage* second, const TqImage* third, int32_t useLux,
                                               float m0, float m1, float m2, float m3, float m4, float m5,
                                               float m6, float m7, float m8);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
