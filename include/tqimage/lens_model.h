/** @file lens_model.h
 *  Distortion maps computed from the calibrated distortion of a lens.
 */
#ifndef TQIMAGE_LENS_MODEL_H
#define TQIMAGE_LENS_MODEL_H

#include "tqimage/automation.h"
#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup lens_model Lens models
 *  @ingroup geometry
 *  @copydoc lens_model.h
 *  @{ */

/** What tqBuildLensDistortionImage is asked for: the sensor, the grid of calibrated lens settings (focus and
 *  iris, say) and the present setting. */
typedef struct TqLensSetting {
    int32_t Cols;   /**< columns of the unbinned sensor, 1..8000 */
    int32_t Rows;   /**< rows of the unbinned sensor, 1..8000 */
    int32_t CountA; /**< calibrated positions of the first ring, >= 0 */
    int32_t CountB; /**< calibrated positions of the second ring, >= 0 */
    float A;        /**< position of the first ring, 0..CountA - 1, clamped; negative: default model */
    float B;        /**< position of the second ring, 0..CountB - 1, clamped; negative: default model */
} TqLensSetting;

/**
 * @brief Builds the distortion map of a lens from its coefficient table.
 *
 * A model has the fields cx, cy (centre, pels), Rn (radius to which places are normalised, pels), k1, k2, k3
 * (radial), p1, p2 (tangential) and s (scale). With x = (c - cx) / Rn, y = (r - cy) / Rn, q = x^2 + y^2 and
 * L = 1 + k1 q + k2 q^2 + k3 q^3 the source of entry (c, r) is the column
 * cx + Rn s (x L + 2 p1 x y + p2 (q + 2 x^2)) and the row cy + Rn s (y L + 2 p2 x y + p1 (q + 2 y^2)).
 * Outside the sensor the entry is (-1, -1). The map's centre is (cx, cy).
 *
 * Row 0 of the table is the default model, row 1 + iA x CountB + iB that of the positions iA, iB; between
 * positions every field is interpolated bilinearly.
 *
 * @param[in,out] map Address of the host's map pointer; the new map replaces the one it holds. Untouched when
 *                    the function fails.
 * @param[in] setting Sensor and lens setting. A or B negative or not a number, or without positions: default.
 * @param[in] table   Address of an array of double, {model, field}, 1 + CountA x CountB models of 9 fields.
 * @return 0; 1 table is null or not two-dimensional; 2 its elements are not doubles; 3 not 9 fields; 4 not
 *         1 + CountA x CountB models, a negative count, or an element could not be read; 5 table could not be
 *         locked; 6 not unlocked; -1 map or setting is null, or a size outside 1..8000; -2 no memory; -3 the
 *         model is not finite, Rn or s is not positive, or its radius does not grow over the whole sensor.
 * @par Ownership
 * The map that was held is freed; the new one belongs to the host.
 * @par Memory
 * The result.
 * @par Source
 * D. C. Brown, Close-range camera calibration, 1971.
 * @note A model of zeros with s = 1 gives entries that are exactly (c, r).
 */
TQ_API int32_t TQ_CALL tqBuildLensDistortionImage(TqDistortionMap** map, const TqLensSetting* setting,
                                                  SAFEARRAY** table);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
