/** @file stray_light.h
 *  Removal of the light that the camera's optics scatter over the whole image.
 */
#ifndef TQIMAGE_STRAY_LIGHT_H
#define TQIMAGE_STRAY_LIGHT_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup stray_light Stray light
 *  @ingroup calibration
 *  @copydoc stray_light.h
 *  @{ */

/**
 * @brief Subtracts from every pel its share of the image's mean level.
 *
 * The correction image belongs to the full, unbinned sensor; its pels, read as signed 16-bit numbers and
 * multiplied by its LuxPerGrey, are the fraction of the mean level that stray light adds there. 65535 marks a
 * position without data. Image pel (c, r) lies at the sensor position (BinCols x (c0 + c), BinRows x (r0 +
 * r)) with c0 = correction CenterCol / BinCols - image CenterCol, r0 likewise, truncated, -1 counting as 0.
 * The mean level M is taken over the pels that have data. The new pel is pel - pel of correction x LuxPerGrey
 * x M + 0.5, truncated and clamped to 0..65535; pels outside the correction image stay as they are.
 *
 * @param[in,out] image  Address of the pointer to the measurement; the corrected image, with the
 *                       measurement's whole header, replaces it. Untouched when the function fails.
 * @param[in] correction Correction image of the sensor; its size need not match. The host's image itself is
 *                       accepted.
 * @return 0; -2 image is null or invalid; -3 correction is null or invalid; -7 column offset below -1 or no
 *         number, as with BinCols of 0; -8 the same for rows; -9 no memory.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note TotalPelValue and MaxPelValue are not updated. The correction is computed in single precision, each
 *       step rounded once, the mean in double from an exact sum.
 */
TQ_API int32_t TQ_CALL tqApplyStrayLightCorrection(TqImage** image, const TqImage* correction);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
