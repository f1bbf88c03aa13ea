/** @file image_sum.h
 *  The sum form of an image: only the pels from a step on, each with the running total up to it, so that the
 *  sum over any stretch of pels is one difference. A dark field with a few lights takes little room in it.
 */
#ifndef TQIMAGE_IMAGE_SUM_H
#define TQIMAGE_IMAGE_SUM_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup image_sum The sum form of an image
 *  @ingroup interchange
 *  @copydoc image_sum.h
 *  @{ */

/** One pel that was kept. */
typedef struct TqImageSumEntry {
    uint32_t Total; /**< pel / step, added up over this and all earlier entries, modulo 2^32 */
    uint32_t Index; /**< row x PelCols + column */
} TqImageSumEntry;

/** The head of a sum block; Count entries follow it, in the order of the pels. */
typedef struct TqImageSum {
    TqImageHeader Header; /**< the source image's */
    int32_t Step;         /**< grey levels that one unit of a total stands for, at least 1 */
    int32_t Count;        /**< number of entries */
    uint8_t Reserved[48]; /**< 0 */
} TqImageSum;

/**
 * @brief Makes the sum form of an image.
 *
 * The step is 1 + TotalPelValue / 4294967295, the quotient rounded to the nearest integer, so that the totals
 * stay within 32 bits. A pel below it is left out, any other counts as pel / step, without remainder.
 *
 * @param[in,out] sum address of the host's block pointer; receives the sum block
 * @param[in] image   the image; TotalPelValue is taken from its header as it stands there
 * @return 0; -1 sum is null, image is null or invalid, or there is no memory: *sum is untouched
 * @par Ownership
 * The block that *sum held is freed. The new one belongs to the host, which releases it with tqImageFree.
 * @par Memory
 * 112 bytes and 8 bytes an entry.
 * @note A TotalPelValue of up to 2147483647.5 gives step 1, and then no pel is lost. One that is negative or
 *       no number counts as 0.
 */
TQ_API int32_t TQ_CALL tqImageToImageSum(TqImageSum** sum, const TqImage* image);

/**
 * @brief Makes an image of its sum form.
 *
 * A pel that was below the step is 0, every other one rounded down to a multiple of the step.
 *
 * @param[in,out] image address of the host's block pointer; receives the image, its header that of the sum
 * @param[in] sum       the sum block
 * @return 0; -1 a pointer is null, there is no memory, the header's sizes are negative, Count is negative or
 *         above the number of pels, or an Index lies outside the image: *image is untouched
 * @par Ownership
 * The block that *image held is freed. The image belongs to the host.
 * @par Memory
 * The image.
 * @note Pels are formed modulo 65536.
 */
TQ_API int32_t TQ_CALL tqImageSumToImage(TqImage** image, const TqImageSum* sum);

/** @} */

#ifdef __cplusplus
} /* extern "C" */

static_assert(sizeof(TqImageSum) == 112, "hosts exchange the head as 112 bytes without gaps");
#endif

#endif
