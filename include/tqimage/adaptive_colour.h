/** @file adaptive_colour.h
 *  Transforms of three channels whose matrix depends on the colour of the pel.
 *
 *  Filters never match the observer exactly, so one matrix cannot serve the spectra of all light sources. A
 *  host calibrates several matrices, each at the colour of one source; a pel takes the nearer ones. Channels
 *  and matrices are those of colour_averages.h. Values are pels times LuxPerGrey of their image; u' and v'
 *  are those of the base matrix times the values, both 0 where X + 15 Y + 3 Z is.
 */
#ifndef TQIMAGE_ADAPTIVE_COLOUR_H
#define TQIMAGE_ADAPTIVE_COLOUR_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup adaptive_colour Adaptive transforms
 *  @ingroup colour
 *  @copydoc adaptive_colour.h
 *  @{ */

/** @brief X, Y and Z images by matrices that are blended for each pel.
 *
 *  A pel's matrix is the weighted mean of the calibrations' matrices with the weights 1 / d^p, d being the
 *  distance of its u', v' from those of the calibration. A calibration closer than 1e-6, the first of them,
 *  is taken alone. The largest value of each image becomes grey level 65000 and pel * LuxPerGrey is the
 *  value; pels are rounded half up, negative values are 0.
 *  @param[in,out] outX address of the host's image pointer; receives the X image. Untouched after a failure;
 *              may hold a channel
 *  @param[in,out] outY the same for Y
 *  @param[in,out] outZ the same for Z
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] m0 base matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @param[in] count number of calibrations, 1 to 64
 *  @param[in] matrices nine coefficients of each calibration, in row order
 *  @param[in] chroma u' and v' of each calibration colour
 *  @param[in] power exponent p of the distance; 0 and below, and not a number: 2; at most 1000 counts
 *  @return 0; -2 a channel or an output address is null; -3 first, -4 second, -5 third channel invalid; -6
 *          sizes differ; -7 count out of range, matrices or chroma null; -8 no memory
 *  @par Ownership
 *  The blocks that the pointers held are freed; the host frees the new ones with tqImageFree.
 *  @par Memory
 *  The three results and a few rows: 366 MiB for 8000 x 8000 pels.
 *  @par Source
 *  D. Shepard, A two-dimensional interpolation function for irregularly-spaced data, Proc. 23rd ACM National
 *  Conference (1968), for the weights.
 *  @note A distance that is no number does not count.
 */
TQ_API int32_t TQ_CALL tqAdaptiveColor(TqImage** outX, TqImage** outY, TqImage** outZ, const TqImage* first,
                                       const TqImage* second, const TqImage* third, float m0, float m1,
                                       float m2, float m3, float m4, float m5, float m6, float m7, float m8,
                                       int32_t count, const float* matrices, const float* chroma,
                                       float power);

/** @brief The same with four calibrations: red, green, blue and white, as displays are calibrated.
 *  @param[in,out] outX address of the host's image pointer; receives the X image. Untouched after a failure;
 *              may hold a channel
 *  @param[in,out] outY the same for Y
 *  @param[in,out] outZ the same for Z
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] m0 base matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @param[in] matrices four times nine coefficients, in row order
 *  @param[in] chroma u' and v' of each calibration colour
 *  @param[in] power exponent p of the distance; 0 and below, and not a number: 2; at most 1000 counts
 *  @return 0; -2 a channel or an output address is null; -3 first, -4 second, -5 third channel invalid; -6
 *          sizes differ; -7 matrices or chroma null; -8 no memory
 *  @par Ownership
 *  The blocks that the pointers held are freed; the host frees the new ones with tqImageFree.
 *  @par Memory
 *  The three results and a few rows: 366 MiB for 8000 x 8000 pels.
 *  @par Source
 *  As tqAdaptiveColor.
 */
TQ_API int32_t TQ_CALL tqAdaptiveColor4(TqImage** outX, TqImage** outY, TqImage** outZ, const TqImage* first,
                                        const TqImage* second, const TqImage* third, float m0, float m1,
                                        float m2, float m3, float m4, float m5, float m6, float m7, float m8,
                                        const float* matrices, const float* chroma, float power);

/** @brief An image of the number of the calibration that is nearest to each pel.
 *
 *  A pel is 1 + the index of the calibration with the smallest distance in u'v', the first of equals, and 0
 *  where X + 15 Y + 3 Z is 0.
 *  @param[in,out] out address of the host's image pointer; receives the image, with the header of the second
 *              channel but for LuxPerGrey 1 and MaxPelValue count. Untouched after a failure; may hold a
 *              channel
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] m0 base matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @param[in] count number of calibrations, 1 to 64
 *  @param[in] chroma u' and v' of each calibration colour
 *  @return 0; -2 a channel or out is null; -3 first, -4 second, -5 third channel invalid; -6 sizes differ; -7
 *          count out of range or chroma null; -8 no memory
 *  @par Ownership
 *  A block that out held is freed; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result: 122 MiB for 8000 x 8000 pels.
 */
TQ_API int32_t TQ_CALL tqAdaptiveSelect(TqImage** out, const TqImage* first, const TqImage* second,
                                        const TqImage* third, float m0, float m1, float m2, float m3,
                                        float m4, float m5, float m6, float m7, float m8, int32_t count,
                                        const float* chroma);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
