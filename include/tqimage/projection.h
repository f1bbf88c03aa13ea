/** @file projection.h
 *  What a camera in space sees of a target, and the part of a corrected image that it has seen.
 */
#ifndef TQIMAGE_PROJECTION_H
#define TQIMAGE_PROJECTION_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup projection Projection through a camera
 *  @ingroup geometry
 *  @copydoc projection.h
 *  @{ */

/** How tqProjectImage unrolls a target. Metres: x to the right, y upward, z toward the viewer; the target
 *  touches the plane z = 0 at the origin, a cylinder (with its axis upright) and a sphere bulging toward +z.
 *  With all angles 0 the camera looks along -z, its columns along +x. */
typedef struct TqProjection {
    double CameraX;       /**< place of the pinhole, metres to the right */
    double CameraY;       /**< place of the pinhole, metres upward */
    double CameraZ;       /**< place of the pinhole, metres in front of the target */
    double Yaw;           /**< turn of the camera toward +x, degrees */
    double Pitch;         /**< turn of the camera upward, degrees */
    double Roll;          /**< turn of the camera clockwise about its view, degrees */
    double FocalLength;   /**< pels, > 0 */
    double PrincipalCol;  /**< column where the camera's axis meets the image, pels */
    double PrincipalRow;  /**< row where the camera's axis meets the image, pels */
    double Surface;       /**< 0 plane, 1 upright cylinder, 2 sphere */
    double Radius;        /**< of a cylinder or sphere, metres, > 0 */
    double PelsPerMeterX; /**< horizontal resolution of the result along the surface, > 0 */
    double PelsPerMeterY; /**< vertical resolution of the result along the surface, > 0 */
    double Cols;          /**< columns of the result, 1..8000, truncated */
    double Rows;          /**< rows of the result, 1..8000, truncated */
    double CenterCol;     /**< column of the origin in the result, pels */
    double CenterRow;     /**< row of the origin in the result, pels */
} TqProjection;

/**
 * @brief Shows a target as if it were unrolled and seen straight: every pel of the result is a place on the
 * surface, taken from where the camera saw it.
 *
 * A place is visible when the surface there faces the camera and it appears in the image before the camera.
 * On a curved surface the result's pels are lengths of arc, and beyond half way around there is nothing. With
 * a map the pinhole's picture is the corrected one and the entry at that place, between entries linearly, is
 * where the measured image shows it. The pel is the bilinear sample + 0.5, truncated, and at least 1; what is
 * not visible is 0.
 *
 * @param[in,out] image  Address of the pointer to the image; the result replaces it. Untouched when the
 *                       function fails.
 * @param[in] projection Camera, surface and result.
 * @param[in] map        Distortion map in the image's pels; null: the image is that of a pinhole.
 * @return 0; -1 image is null or invalid; -2 projection is null, a resolution, focal length or, of a curved
 *         surface, radius is not positive, or the surface is unknown; -3 a size outside 1..8000, or no
 *         memory; -4 nothing is visible.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result and four numbers for each of its columns and rows.
 * @note The header is the image's with the size, resolutions and centre of the result, and binning factors
 *       of 1.
 */
TQ_API int32_t TQ_CALL tqProjectImage(TqImage** image, const TqProjection* projection,
                                      const TqDistortionMap* map);

/**
 * @brief Largest rectangle of a corrected image in which every pel was seen by the camera.
 *
 * An entry counts as seen when its source lies within the unbinned image: columns 0 .. PelCols x BinCols - 1
 * and rows likewise. Of several largest rectangles the topmost is reported, of these the leftmost, of these
 * the one that ends higher up.
 *
 * @param[in] map     Distortion map.
 * @param[in] info    Header of the measured image: PelCols, PelRows 1..8000 and the binning factors, of which
 *                    those below 1 count as 1.
 * @param[out] left   First column, entries of the map; -1 after a failure.
 * @param[out] top    First row; -1 after a failure.
 * @param[out] right  Last column, inclusive; -1 after a failure.
 * @param[out] bottom Last row, inclusive; -1 after a failure.
 * @return 0; -1 info is null or its size outside 1..8000; -2 map is null, or no memory; -99 no entry lies
 *         within the image.
 * @par Memory
 * Two numbers a column of the map.
 */
TQ_API int32_t TQ_CALL tqCalcCameraClipRect(const TqDistortionMap* map, const TqImageHeader* info,
                                            int32_t* left, int32_t* top, int32_t* right, int32_t* bottom);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
