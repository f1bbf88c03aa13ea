/** @file colour_transforms.h
 *  Transforms of three channels by a matrix, and images of chromaticities.
 *
 *  Channels and matrices are those of colour_averages.h. Every transform finds the largest values first and
 *  writes the pels in a second pass, so no plane of intermediate values is held: three results of 8000 x 8000
 *  pels take 366 MiB besides the inputs. Output pointers may hold the inputs.
 */
#ifndef TQIMAGE_COLOUR_TRANSFORMS_H
#define TQIMAGE_COLOUR_TRANSFORMS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup colour_transforms Colour transforms
 *  @ingroup colour
 *  @copydoc colour_transforms.h
 *  @{ */

/** @brief X, Y and Z images of three filter images, with the scales of their pels returned to the host.
 *
 *  Values are the matrix times the pels, times LuxPerGrey of the green image. The largest value of each image
 *  becomes grey level 64000; pels are rounded half up, negative values are 0.
 *  @param[in,out] outX address of the host's image pointer; receives the first image. Untouched after a failure
 *  @param[in,out] outY the same for the second image
 *  @param[in,out] outZ the same for the third image
 *  @param[out] scaleX X of one grey level: largest X / 64000; 0 before any check, so after every failure; may
 *              be null
 *  @param[out] scaleY Y of one grey level, likewise
 *  @param[out] scaleZ Z of one grey level, likewise
 *  @param[in] red first channel
 *  @param[in] green second channel
 *  @param[in] blue third channel
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @return 0; -2 a channel or an output address is null; -3 a channel is invalid; -5 sizes differ; -4 no
 *          memory
 *  @par Ownership
 *  The blocks that the pointers held are freed; the host frees the new ones with tqImageFree.
 *  @par Memory
 *  The three results.
 *  @note An image whose values are all 0 or negative is dark, with scale 0. Each result has the header of the
 *        channel in its position: the host applies the scales, LuxPerGrey is only copied.
 */
TQ_API int32_t TQ_CALL tqTransformRGBToXYZ(TqImage** outX, TqImage** outY, TqImage** outZ, double* scaleX,
                                           double* scaleY, double* scaleZ, const TqImage* red,
                                           const TqImage* green, const TqImage* blue, float m0, float m1,
                                           float m2, float m3, float m4, float m5, float m6, float m7,
                                           float m8);

/** @brief X, Y and Z images of three filter images, with the scales of their pels in LuxPerGrey.
 *
 *  Values are the matrix times the pels, each pel multiplied by LuxPerGrey of its own image first. The
 *  largest value of each image becomes grey level 65000 and pel * LuxPerGrey is the value; pels are rounded
 *  half up, negative values are 0.
 *  @param[in,out] outX address of the host's image pointer; receives the first image. Untouched after a failure
 *  @param[in,out] outY the same for the second image
 *  @param[in,out] outZ the same for the third image
 *  @param[in] red first channel
 *  @param[in] green second channel
 *  @param[in] blue third channel
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @return 0; -2 a channel or an output address is null; -3 a channel is invalid; -5 sizes differ; -4 no
 *          memory
 *  @par Ownership
 *  The blocks that the pointers held are freed; the host frees the new ones with tqImageFree.
 *  @par Memory
 *  The three results.
 *  @note The full scale differs from that of tqTransformRGBToXYZ; hosts rely on both. An image whose values
 *        are all 0 or negative is dark, with LuxPerGrey 0. Header fields but for LuxPerGrey are those of the
 *        channel in the same position.
 */
TQ_API int32_t TQ_CALL tqTransformRGBToXYZ2(TqImage** outX, TqImage** outY, TqImage** outZ,
                                            const TqImage* red, const TqImage* green, const TqImage* blue,
                                            float m0, float m1, float m2, float m3, float m4, float m5,
                                            float m6, float m7, float m8);

/** @brief Three filter images from X, Y and Z images: the way back, with coefficients of double precision.
 *
 *  Values are the matrix times the scaled pels, divided by LuxPerGrey of the Y image (by 1 when that is 0).
 *  Negative values are 0. When the largest value of all three images is below 65536, pels are the rounded
 *  values and LuxPerGrey stays as copied. Otherwise f = largest / 65000: pels are value / f and each
 *  LuxPerGrey is multiplied by f. One factor for the three keeps their ratios. Pels are rounded half up, at
 *  most 65535.
 *  @param[in,out] outRed address of the host's image pointer; receives the first image. Untouched after a failure
 *  @param[in,out] outGreen the same for the second image
 *  @param[in,out] outBlue the same for the third image
 *  @param[in] x first channel
 *  @param[in] y second channel
 *  @param[in] z third channel
 *  @param[in] scaleX X of one grey level of x, as tqTransformRGBToXYZ returns it
 *  @param[in] scaleY Y of one grey level of y
 *  @param[in] scaleZ Z of one grey level of z
 *  @param[in] m0 matrix, row 1 (red), coefficient of X
 *  @param[in] m1 row 1, coefficient of Y
 *  @param[in] m2 row 1, coefficient of Z
 *  @param[in] m3 row 2 (green), coefficient of X
 *  @param[in] m4 row 2, coefficient of Y
 *  @param[in] m5 row 2, coefficient of Z
 *  @param[in] m6 row 3 (blue), coefficient of X
 *  @param[in] m7 row 3, coefficient of Y
 *  @param[in] m8 row 3, coefficient of Z
 *  @return 0; -2 a channel or an output address is null; -3 a channel is invalid; -5 sizes differ; -4 no
 *          memory
 *  @par Ownership
 *  The blocks that the pointers held are freed; the host frees the new ones with tqImageFree.
 *  @par Memory
 *  The three results.
 */
TQ_API int32_t TQ_CALL tqTransformXYZToRGB3(TqImage** outRed, TqImage** outGreen, TqImage** outBlue,
                                            const TqImage* x, const TqImage* y, const TqImage* z,
                                            double scaleX, double scaleY, double scaleZ, double m0, double m1,
                                            double m2, double m3, double m4, double m5, double m6, double m7,
                                            double m8);

/** @brief An image of a chromaticity or of a quotient of tristimulus values.
 *
 *  X, Y and Z are the matrix times the channels. quantity 0: x = X / (X + Y + Z); 1: y = Y / (X + Y + Z); 2:
 *  u' = 4 X / (X + 15 Y + 3 Z); 3: v' = 9 Y / (X + 15 Y + 3 Z); 4: 100 X / Y; 5: 100 Z / Y. Quantities 0 to 3
 *  are 0 where their denominator is. A pel is (quantity - low) * gain, truncated and clamped, with gain =
 *  fullScale / (high - low) in single precision; what is not finite is 0.
 *  @param[in,out] out address of the host's image pointer; receives the image, with the header of the second
 *              channel but for LuxPerGrey. Untouched after a failure; may hold a channel
 *  @param[in] first first channel
 *  @param[in] second second channel
 *  @param[in] third third channel
 *  @param[in] quantity 0 to 5 as above; other values give an image of zeros
 *  @param[in] fullScale grey level of a quantity of `high`, any value
 *  @param[in] low quantity that becomes grey level 0
 *  @param[in] high quantity that becomes grey level fullScale
 *  @param[in] blockCols width of the block around each pel whose tqGetPelBlockAvg is taken, pels, any value
 *  @param[in] blockRows its height, pels, any value (both below 2: the pel itself)
 *  @param[in] m0 matrix, row 1 (X), first channel
 *  @param[in] m1 row 1, second channel
 *  @param[in] m2 row 1, third channel
 *  @param[in] m3 row 2 (Y), first channel
 *  @param[in] m4 row 2, second channel
 *  @param[in] m5 row 2, third channel
 *  @param[in] m6 row 3 (Z), first channel
 *  @param[in] m7 row 3, second channel
 *  @param[in] m8 row 3, third channel
 *  @return 0; -2 a channel or out is null; -3 first, -4 second, -5 third channel invalid; -7 sizes differ; -6
 *          no memory
 *  @par Ownership
 *  A block that out held is freed; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and working rows, with blocks a few for each channel: 122 MiB for 8000 x 8000 pels.
 *  @note LuxPerGrey of the result is high / fullScale whatever low is; hosts rely on it.
 */
TQ_API int32_t TQ_CALL tqTransformToColorSpace(TqImage** out, const TqImage* first, const TqImage* second,
                                               const TqImage* third, int32_t quantity, int32_t fullScale,
                                               float low, float high, int32_t blockCols, int32_t blockRows,
                                               float m0, float m1, float m2, float m3, float m4, float m5,
                                               float m6, float m7, float m8);

/** @brief Gives the pels of a rectangle one colour: the grey levels that the channels would show of it.
 *  @param[in,out] first first channel, changed in place; null leaves it out
 *  @param[in,out] second second channel, likewise
 *  @param[in,out] third third channel, likewise
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in] x X of the colour
 *  @param[in] y Y of the colour
 *  @param[in] z Z of the colour
 *  @param[in] m0 matrix from X, Y, Z to the channels: first channel, coefficient of X
 *  @param[in] m1 first channel, coefficient of Y
 *  @param[in] m2 first channel, coefficient of Z
 *  @param[in] m3 second channel, coefficient of X
 *  @param[in] m4 second channel, coefficient of Y
 *  @param[in] m5 second channel, coefficient of Z
 *  @param[in] m6 third channel, coefficient of X
 *  @param[in] m7 third channel, coefficient of Y
 *  @param[in] m8 third channel, coefficient of Z
 *  @return 0; -2 all three null; -3 first, -4 second, -5 third channel invalid; -6 sizes differ. After a
 *          failure nothing has changed
 *  @par Memory
 *  None.
 *  @note A grey level is value / LuxPerGrey of its channel, rounded half up and clamped; 0 with a LuxPerGrey
 *        of 0. Header fields that follow from the pels are not refreshed.
 */
TQ_API int32_t TQ_CALL tqSetColorGraysInRegion(TqImage* first, TqImage* second, TqImage* third, int32_t left,
                                               int32_t top, int32_t right, int32_t bottom, float x, float y,
                                               float z, float m0, float m1, float m2, float m3, float m4,
                                               float m5, float m6, float m7, float m8);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
