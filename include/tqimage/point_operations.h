/** @file point_operations.h
 *  Operations that make each pel from the pel at the same place, of one image or of two that lie in one
 *  another.
 *
 *  The rule of the rectangle where a function takes one:
 *  - left, top, right and bottom are 0-based pel indices, all four inclusive, clamped into the image.
 *  - After that a right of 0 means the last column and a bottom of 0 the last row: 0, 0, 0, 0 is the whole
 *    image.
 *  - With left > right or top > bottom there are no pels; the function still succeeds.
 *
 *  Results in floating point are computed in double precision unless the function says otherwise and cut off
 *  toward zero; where 0.5 is added that is the only rounding. What does not fit into 32 bits counts as
 *  -2147483648 before its low 16 bits are taken; a stop at 65535 holds for results of any size.
 *  Functions that replace the image leave it untouched when they fail. No field of the header changes but
 *  those that are named.
 */
#ifndef TQIMAGE_POINT_OPERATIONS_H
#define TQIMAGE_POINT_OPERATIONS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup point_operations Point operations
 *  @ingroup process
 *  @copydoc point_operations.h
 *  @{ */

/**
 * @brief Adds a constant to every pel and stops at 0 and 65535.
 *
 * @param[in,out] image image, changed in place
 * @param[in] constant grey levels, any value
 * @return 0; -1 image null or invalid
 * @note A constant of 0 returns 0 at once, whatever the image is: hosts pass a switched-off correction so.
 */
TQ_API int32_t TQ_CALL tqAddConstant(TqImage* image, int32_t constant);

/**
 * @brief Subtracts a value from every pel and stops at 0.
 *
 * @param[in,out] image address of the pointer to the image, which the result replaces
 * @param[in] value grey levels; taken as 0 below 0 and as 65535 above it
 * @return 0; -2 image null or invalid; -5 no memory
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note MaxPelValue and TotalPelValue keep the values of the source.
 */
TQ_API int32_t TQ_CALL tqSubtractValue(TqImage** image, int32_t value);

/**
 * @brief Replaces every pel p by table[p], as a correction of the sensor's linearity does.
 *
 * @param[in,out] image image, changed in place
 * @param[in] table 65536 grey levels
 * @return 0; -2 image null or invalid, or table null
 */
TQ_API int32_t TQ_CALL tqCorrectLinearity(TqImage* image, const uint16_t* table);

/**
 * @brief Replaces every pel p of a rectangle by table[p].
 *
 * @param[in,out] image image, changed in place
 * @param[in] table 65536 grey levels
 * @param[in] left first column, pels, any value (clamped)
 * @param[in] top first row, pels, any value (clamped)
 * @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 * @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 * @return 0; -2 image null or invalid, or table null
 */
TQ_API int32_t TQ_CALL tqApplyLUTInRegion(TqImage* image, const uint16_t* table, int32_t left, int32_t top,
                                          int32_t right, int32_t bottom);

/**
 * @brief Replaces the pels of 1..threshold by a value.
 *
 * @param[in,out] image image, changed in place
 * @param[in] threshold grey levels, any value; below 1 no pel is replaced
 * @param[in] value grey level that replaces them; taken as 0 below 0 and as 65535 above it
 * @return 0; -2 image null or invalid
 * @note A pel of 0, which stands for no data, stays 0.
 */
TQ_API int32_t TQ_CALL tqReplaceDarkPels0(TqImage* image, int32_t threshold, int32_t value);

/**
 * @brief Sets every pel up to a threshold to 0 and counts the others.
 *
 * @param[in,out] image image, changed in place
 * @param[out] count pels greater than the threshold; may be null
 * @param[in] threshold grey levels, any value
 * @return 0; -2 image null or invalid (count untouched)
 * @note Below a threshold of 0 every pel is counted, pels of 0 too.
 */
TQ_API int32_t TQ_CALL tqRemoveDarkPels(TqImage* image, int32_t* count, int32_t threshold);

/**
 * @brief Turns the grey scale over: every pel becomes smallest + largest - pel.
 *
 * @param[in,out] image image, changed in place; MaxPelValue becomes its largest pel
 * @return 0; -2 image null; -9 image invalid
 */
TQ_API int32_t TQ_CALL tqInvertImage(TqImage* image);

/**
 * @brief Multiplies every pel by a factor, 0.5 added, and stops at 65535.
 *
 * @param[in,out] image image, changed in place
 * @param[in] factor any number
 * @return 0; -2 image null or invalid
 * @note There is no lower limit: of a negative result the low 16 bits are kept. Hosts rely on it.
 */
TQ_API int32_t TQ_CALL tqScaleImage2(TqImage* image, float factor);

/**
 * @brief Scales the pels so that the brightest 3 x 3 neighbourhood gets a given mean.
 *
 * @param[in,out] image image, changed in place; MaxPelValue becomes the new maximum
 * @param[in] newMaximum grey levels; taken as 0 below 0 and as 65535 above it
 * @return 0; -2 image null or invalid
 * @note Every pel becomes pel * newMaximum / old maximum, at most 65535. The old maximum is the largest mean
 *       of a 3 x 3 neighbourhood, or the stored MaxPelValue when the image has less than 3 columns or rows.
 *       When it is 0 the pels are left.
 */
TQ_API int32_t TQ_CALL tqSetMaxGrayValue(TqImage* image, int32_t newMaximum);

/**
 * @brief Adds a constant to the pels of a rectangle, modulo 65536; all other pels become 0.
 *
 * @param[in,out] image address of the pointer to the image, which the result replaces; its
 *                      MaxPelValue is the largest pel written, 0 without pels
 * @param[in] delta grey levels, any value
 * @param[in] left first column, pels, any value (clamped)
 * @param[in] top first row, pels, any value (clamped)
 * @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 * @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 * @return 0; -2 image null or invalid; -3 no memory
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note The wrap is kept so that a correction can be undone by its negative.
 */
TQ_API int32_t TQ_CALL tqBrightnessCorrectionInRegion(TqImage** image, int32_t delta, int32_t left,
                                                      int32_t top, int32_t right, int32_t bottom);

/**
 * @brief Stretches the pels of a rectangle about their mean; all other pels become 0.
 *
 * @param[in,out] image address of the pointer to the image, which the result replaces; its
 *                      MaxPelValue is the largest pel written, 0 without pels
 * @param[in] factor any number
 * @param[in] left first column, pels, any value (clamped)
 * @param[in] top first row, pels, any value (clamped)
 * @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 * @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 * @return 0; -2 image null or invalid; -3 no memory
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note Every pel becomes (pel - mean) * factor + mean, of which the low 16 bits are kept without a limit.
 */
TQ_API int32_t TQ_CALL tqContrastCorrectionInRegion(TqImage** image, float factor, int32_t left, int32_t top,
                                                    int32_t right, int32_t bottom);

/**
 * @brief Subtracts an image, usually a dark exposure, and keeps 0 where the result would be 0 or below.
 *
 * The subtrahend may be larger than the image. Where the image lies in it is told by the subtrahend's own
 * CenterCol and CenterRow, truncated to whole pels: pel (0, 0) of the image meets pel (CenterCol, CenterRow)
 * of the subtrahend. An offset of -1 counts as 0.
 *
 * @param[in,out] a Address of the pointer to the image; the result, with the image's whole header, replaces
 *                  it. Untouched when the function fails.
 * @param[in] b     Image to subtract; may be the image itself. It covers the image from the offset on.
 * @return 0; -2 a is null or invalid; -3 b is null or invalid; -7 column offset below -1; -8 row offset below
 *         -1, or b does not cover the image; -5 no memory.
 * @par Ownership
 * The block that a held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note The checks run in this order: b's size against both offsets as given, the column offset, the row
 *       offset, b's size again with an offset of -1 taken as 0. No field of the header is recomputed.
 */
TQ_API int32_t TQ_CALL tqSubtractImage(TqImage** a, const TqImage* b);

/**
 * @brief Multiplies an image by another and divides by a whole number, in single precision.
 *
 * @param[in,out] a address of the pointer to the image, which the result replaces
 * @param[in] b image to multiply by, placed by its own CenterCol and CenterRow as for tqSubtractImage
 * @param[in] divisor any number; 0 gives 65535 where the product is not 0, and else 0
 * @return 0; -2 a null or invalid; -3 b null or invalid; -7 column offset below -1; -8 row offset below -1;
 *         -5 no memory
 * @par Ownership
 * The block that a held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note Every pel becomes a * b / divisor, at most 65535; of a negative quotient the low 16 bits are kept.
 *       Where b has no pel that of a is kept. No field of the header is recomputed.
 */
TQ_API int32_t TQ_CALL tqMultiplyImages(TqImage** a, const TqImage* b, int32_t divisor);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
