/** @file colour_difference.h
 *  Images of how far each point of a field departs from a target colour.
 *
 *  Channels and matrices are those of colour_averages.h. u' = 4 X / D and v' = 9 Y / D with D = X + 15 Y + 3
 *  Z; both are 0 where D is. Where a block is asked for (a size of 2 or more), a channel's value is its
 *  tqGetPelBlockAvg around the pel, at a cost that does not grow with the block. The largest difference (1
 *  when it is below 1e-8) becomes grey level 65000; pels are difference * scale in single precision,
 *  truncated, with scale = 65000 / largest, and pel * LuxPerGrey is the difference. Differences are found
 *  twice instead of being held: memory is the result, a few rows, and with blocks a few rows more for each
 *  channel. The cost of a block or a neighbourhood does not grow with its size.
 */
#ifndef TQIMAGE_COLOUR_DIFFERENCE_H
#define TQIMAGE_COLOUR_DIFFERENCE_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup colour_difference Colour differences
 *  @ingroup colour
 *  @copydoc colour_difference.h
 *  @{ */

/** @brief Difference of chromaticity and luminance from a target.
 *
 *  sqrt(((v' - v)^2 + (u' - u)^2) * wC + dL^2 * wL) with dL = (second channel * its LuxPerGrey - Lref) /
 *  Lref. With wC below 1e-5, or a channel missing, luminance alone is compared: |L - Lref| / Lref * sqrt(wL)
 *  in single precision, on the second channel, else on the first, else on the third.
 *  @param[in,out] out address of the host's image pointer; receives the differences, with the header of the
 *              channel that is compared (the second) but for MaxPelValue 65000 and LuxPerGrey. Untouched
 *              after a failure; may hold a channel
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] u target u'
 *  @param[in] v target v'
 *  @param[in] luminance Lref, unit of LuxPerGrey; below 1e-7, or not a number: 1
 *  @param[in] luminanceWeight wL, its amount counts
 *  @param[in] chromaticityWeight wC, its amount counts
 *  @param[in] blockCols width of the block, pels, any value
 *  @param[in] blockRows height of the block, pels, any value (both below 2: the pel itself)
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @return 0; -2 out or all three channels null; -3 first, -4 second, -5 third channel invalid; -7 sizes
 *          differ; -6 the single image invalid; -8 no memory
 *  @par Ownership
 *  A block that out held is freed; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and working rows: 122 MiB for 8000 x 8000 pels.
 *  @note The luminance is the second channel's and not the Y of the matrix; hosts rely on it.
 */
TQ_API int32_t TQ_CALL tqCalcColorLumDiff(TqImage** out, const TqImage* first, const TqImage* second,
                                          const TqImage* third, float u, float v, float luminance,
                                          float luminanceWeight, float chromaticityWeight, int32_t blockCols,
                                          int32_t blockRows, float m0, float m1, float m2, float m3, float m4,
                                          float m5, float m6, float m7, float m8);

/** @brief The same where a pel of 0 means that there is no data.
 *
 *  A pel where a channel that is compared is 0 becomes 0 and does not count; blocks are averaged over their
 *  pels that are not 0, and every other result is at least 1.
 *  @param[in,out] out address of the host's image pointer; receives the differences, with the header of the
 *              channel that is compared (the second) but for MaxPelValue 65000 and LuxPerGrey. Untouched
 *              after a failure; may hold a channel
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] u target u'
 *  @param[in] v target v'
 *  @param[in] luminance Lref, unit of LuxPerGrey; below 1e-7, or not a number: 1
 *  @param[in] luminanceWeight wL, its amount counts
 *  @param[in] chromaticityWeight wC, its amount counts
 *  @param[in] blockCols width of the block, pels, any value
 *  @param[in] blockRows height of the block, pels, any value (both below 2: the pel itself)
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @return 0; -2 out or all three channels null; -3 first, -4 second, -5 third channel invalid; -7 sizes
 *          differ; -6 the single image invalid; -8 no memory
 *  @par Ownership
 *  A block that out held is freed; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and working rows: 122 MiB for 8000 x 8000 pels.
 */
TQ_API int32_t TQ_CALL tqCalcColorLumDiff0(TqImage** out, const TqImage* first, const TqImage* second,
                                           const TqImage* third, float u, float v, float luminance,
                                           float luminanceWeight, float chromaticityWeight, int32_t blockCols,
                                           int32_t blockRows, float m0, float m1, float m2, float m3,
                                           float m4, float m5, float m6, float m7, float m8);

/** @brief Difference of chromaticity and luminance of each pel from its neighbourhood.
 *
 *  As tqCalcColorLumDiff, but compared with u' and v' of the mean X, Y, Z and with the mean of the second
 *  channel over the neighbourhood, which slides inward at the border, each rounded to single precision. The
 *  neighbourhood has odd sides: an even one loses a pel, and more than the image has is cut to it. Where the
 *  mean luminance is below 1e-7 there is no difference of luminance.
 *  @param[in,out] out address of the host's image pointer; receives the differences, with the header of the
 *              channel that is compared (the second) but for MaxPelValue 65000 and LuxPerGrey. Untouched
 *              after a failure; may hold a channel
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] luminanceWeight wL, its amount counts
 *  @param[in] chromaticityWeight wC, its amount counts
 *  @param[in] blockCols width of the block, pels, any value
 *  @param[in] blockRows height of the block, pels, any value (both below 2: the pel itself)
 *  @param[in] aroundCols width of the neighbourhood, pels, at least that of the block
 *  @param[in] aroundRows height of the neighbourhood, pels, at least that of the block
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @return 0; -2 out or all three channels null; -3 first, -4 second, -5 third channel invalid; -7 sizes
 *          differ, or the neighbourhood is not larger than the block; -6 the single image invalid; -8 no
 *          memory
 *  @par Ownership
 *  A block that out held is freed; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and working rows: 122 MiB for 8000 x 8000 pels.
 *  @note A neighbourhood is larger when no side is shorter than that of the block and one is longer: a line
 *  will do.
 */
TQ_API int32_t TQ_CALL tqCalcLocalColorLumDiff(TqImage** out, const TqImage* first, const TqImage* second,
                                               const TqImage* third, float luminanceWeight,
                                               float chromaticityWeight, int32_t blockCols, int32_t blockRows,
                                               int32_t aroundCols, int32_t aroundRows, float m0, float m1,
                                               float m2, float m3, float m4, float m5, float m6, float m7,
                                               float m8);

/** @brief The same where a pel of 0 means that there is no data.
 *
 *  A pel where a channel that is compared is 0 becomes 0 and does not count; blocks and neighbourhoods are
 *  averaged over the pels of each channel that are not 0, and every other result is at least 1.
 *  @param[in,out] out address of the host's image pointer; receives the differences, with the header of the
 *              channel that is compared (the second) but for MaxPelValue 65000 and LuxPerGrey. Untouched
 *              after a failure; may hold a channel
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] luminanceWeight wL, its amount counts
 *  @param[in] chromaticityWeight wC, its amount counts
 *  @param[in] blockCols width of the block, pels, any value
 *  @param[in] blockRows height of the block, pels, any value (both below 2: the pel itself)
 *  @param[in] aroundCols width of the neighbourhood, pels, at least that of the block
 *  @param[in] aroundRows height of the neighbourhood, pels, at least that of the block
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @return 0; -2 out or all three channels null; -3 first, -4 second, -5 third channel invalid; -7 sizes
 *          differ, or the neighbourhood is not larger than the block; -6 the single image invalid; -8 no
 *          memory
 *  @par Ownership
 *  A block that out held is freed; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and working rows: 122 MiB for 8000 x 8000 pels.
 */
TQ_API int32_t TQ_CALL tqCalcLocalColorLumDiff0(TqImage** out, const TqImage* first, const TqImage* second,
                                                const TqImage* third, float luminanceWeight,
                                                float chromaticityWeight, int32_t blockCols,
                                                int32_t blockRows, int32_t aroundCols, int32_t aroundRows,
                                                float m0, float m1, float m2, float m3, float m4, float m5,
                                                float m6, float m7, float m8);

/** @brief Error of chromaticity in units of a tolerance ellipse.
 *
 *  1 on the ellipse, whose semi-axis a lies along `degrees` and b across it: the square root of A du^2 + 2 B
 *  du dv + C dv^2 with A = c^2 / a^2 + s^2 / b^2, B = s (1 / a^2 - 1 / b^2) c and C = s^2 / a^2 + c^2 / b^2,
 *  c and s being cosine and sine of the angle in single precision. X, Y, Z, D, du and dv are rounded to
 *  single precision.
 *  @param[in,out] out address of the host's image pointer; receives the differences, with the header of the
 *              second channel but for MaxPelValue 65000 and LuxPerGrey. Untouched after a failure; may hold a
 *              channel
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] u u' of the centre
 *  @param[in] v v' of the centre
 *  @param[in] semiAxisA a in u'v', its amount counts, not 0
 *  @param[in] semiAxisB b in u'v', its amount counts, not 0
 *  @param[in] degrees angle of a from the u' axis towards the v' axis, degrees
 *  @param[in] blockCols width of the block, pels, any value
 *  @param[in] blockRows height of the block, pels, any value (both below 2: the pel itself)
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @return 0; -2 out or all three channels null; -3 first, -4 second, -5 third channel null or invalid; -7
 *          sizes differ or a semi-axis is 0; -8 no memory
 *  @par Ownership
 *  A block that out held is freed; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and working rows: 122 MiB for 8000 x 8000 pels.
 *  @par Source
 *  D. L. MacAdam, Visual sensitivities to color differences in daylight, J. Opt. Soc. Am. 32 (1942), for
 *  tolerances as ellipses.
 */
TQ_API int32_t TQ_CALL tqCalcColorError(TqImage** out, const TqImage* first, const TqImage* second,
                                        const TqImage* third, float u, float v, float semiAxisA,
                                        float semiAxisB, float degrees, int32_t blockCols, int32_t blockRows,
                                        float m0, float m1, float m2, float m3, float m4, float m5, float m6,
                                        float m7, float m8);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
