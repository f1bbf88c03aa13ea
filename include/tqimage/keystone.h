/** @file keystone.h
 *  Keystone maps: distortion maps of exactly an image's size, that make the picture on a
 *  screen which was seen obliquely rectangular again. They turn together with the image they belong to.
 */
#ifndef TQIMAGE_KEYSTONE_H
#define TQIMAGE_KEYSTONE_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup keystone Keystone maps
 *  @ingroup geometry
 *  @copydoc keystone.h
 *  @{ */

/**
 * @brief Resamples an image, bilinearly, through a map of exactly its size.
 *
 * Unlike tqCorrectLensDistortion it regards neither binning nor offsets, and a dark pel stays 0. A pel whose
 * entry has a negative column or row, a column above PelCols or a row of PelRows or more has no source and
 * becomes 0. Grey levels are truncated; the last pel before the border is extrapolated from the last two.
 *
 * @param[in,out] image Address of the pointer to the image; the result, with the image's whole header,
 *                      replaces it. Untouched when the function fails.
 * @param[in] map       Map of the image's columns and rows.
 * @return 0; -1 image is null or invalid; -2 map is null or of another size; -3 no memory. -5 stands for a
 *         failed sample, which does not occur.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note The bound of columns is one looser than that of rows, and extrapolated values keep their low 16 bits.
 *       Entries that are not a number count as pels without a source.
 */
TQ_API int32_t TQ_CALL tqRemoveKeystone(TqImage** image, const TqDistortionMap* map);

/**
 * @brief Mirrors a map left to right, as tqMirrorImage mirrors its image.
 *
 * Entries change places and point to where their source has gone: a source column 0 .. Cols - 1 becomes
 * (Cols - 1) - column; every other one stays, so that pels without a source remain so.
 *
 * @param[in,out] map Address of the host's map pointer; the new map replaces the one it holds. Untouched when
 *                    the function fails.
 * @return 0; -2 there is no map, or no memory.
 * @par Ownership
 * The map that was held is freed; the new one belongs to the host.
 * @par Memory
 * The result.
 */
TQ_API int32_t TQ_CALL tqMirrorKeystone(TqDistortionMap** map);

/**
 * @brief Turns a map as tqTransposeImage turns its image.
 *
 * Sources are turned with their places and reversed where the turn reverses an axis, by the rule of
 * tqMirrorKeystone: a place outside the new map's columns or rows stays as it is.
 *
 * @param[in,out] map Address of the host's map pointer; the new map replaces the one it holds. Untouched when
 *                    the function fails.
 * @param[in] mode    1: 90 degrees counter-clockwise; 2: 90 degrees clockwise; 3: rows in reverse order;
 *                    every other value does nothing.
 * @return 0; -2 there is no map to turn, or no memory.
 * @par Ownership
 * The map that was held is freed; the new one belongs to the host.
 * @par Memory
 * The result.
 * @note A mode that does nothing returns 0 without a look at the map.
 */
TQ_API int32_t TQ_CALL tqTransposeKeystone(TqDistortionMap** map, int32_t mode);

/**
 * @brief Mirrors a map left to right and turns it, as tqMirrorTransposeImage does with its image, in one
 * step.
 *
 * @param[in,out] map Address of the host's map pointer; the new map replaces the one it holds. Untouched when
 *                    the function fails.
 * @param[in] mirror  0: as tqTransposeKeystone; other values mirror first.
 * @param[in] mode    With mirror: 0 tqMirrorKeystone; 1 columns and rows exchanged; 2 the same about the
 *                    other diagonal; 3 half a turn; every other value does nothing.
 * @return 0; -2 there is no map to turn, or no memory.
 * @par Ownership
 * The map that was held is freed; the new one belongs to the host.
 * @par Memory
 * The result.
 */
TQ_API int32_t TQ_CALL tqMirrorTransposeKeystone(TqDistortionMap** map, int32_t mirror, int32_t mode);

/**
 * @brief Measures the keystone of a bright flat screen and makes the map that removes it.
 *
 * The screen becomes an upright rectangle of the mean lengths of its opposite sides, in the middle of the
 * screen, where its diagonals cross; every entry of the map, of the image's size and for tqRemoveKeystone, is
 * the place of its pel under the homography of the four corners. Places outside the image are (-1, -1).
 *
 * Corners that are not given are found: the rows and columns of the image are searched for the places
 * half-way between the mean of the pels above the threshold and that of the others, between the pels; a line
 * is fitted to those of each border, and the lines are intersected. The screen may be turned by less than 45
 * degrees.
 *
 * @param[in,out] map       Address of the host's map pointer; the new map replaces the one it holds.
 *                          Untouched when the function fails.
 * @param[in] image         Image of the screen.
 * @param[in] threshold     Pels above it show the screen, grey levels, any value; unused when corners are
 *                          given.
 * @param[in,out] corners   Column and row of the top left, top right, bottom right and bottom left corner,
 *                          eight doubles, pels; corners[0] negative: find them and store them here.
 * @param[out] horizontal   100 (left - right) / (left + right) of the lengths of these sides, percent; may be
 *                          null.
 * @param[out] vertical     100 (top - bottom) / (top + bottom), percent; may be null.
 * @return 0; -1 image is invalid, or map, image or corners is null; -99 no pel above the threshold; -2 a
 *         border was not found; -3 the corners are not those of a convex quadrilateral, clockwise; -4 no
 *         memory.
 * @par Ownership
 * The map that was held is freed; the new one belongs to the host.
 * @par Memory
 * The result, and while corners are looked for a few numbers a row and a column.
 * @par Source
 * R. I. Hartley, In defense of the eight-point algorithm, 1997 (normalisation of the equations).
 * @note The outputs are untouched when the function fails.
 */
TQ_API int32_t TQ_CALL tqCalcKeyStone(TqDistortionMap** map, const TqImage* image, int32_t threshold,
                                      double* corners, double* horizontal, double* vertical);

/**
 * @brief Makes the map that unrolls a cylindrical screen, bulging or hollow, with an upright axis.
 *
 * The camera is computed from six marks of the screen, by the direct linear transformation and the steps of
 * Gauss and Newton on the distances between marks and their computed places. Columns of the result are then
 * uniform in the angle about the axis, rows in the height, both at the same length along the screen; the
 * screen's top and bottom edges keep their mean length, and its middle stays where it is seen. Places outside
 * the image, and those that turn away from the camera, are (-1, -1).
 *
 * @param[in,out] map          Address of the host's map pointer; the new map, of the image's size and for
 *                             tqRemoveKeystone, replaces the one it holds. Untouched when the function fails.
 * @param[in] image            Image of the screen; only its size is used.
 * @param[in] points           Column and row of the top left, top middle, top right, bottom right, bottom
 *                             middle and bottom left mark, twelve doubles, pels.
 * @param[in] halfAngle        Angle about the axis from the middle to either side, radians, 0 < a < pi / 2.
 * @param[in] heightOverRadius Height of the screen divided by the radius of the cylinder, > 0.
 * @param[out] rms             Root mean square of the distances left, pels; may be null; untouched when the
 *                             function fails.
 * @return 0; -1 image is invalid, or map or points is null; -2 halfAngle outside (0, pi / 2) or
 *         heightOverRadius not positive; -3 the marks do not determine a camera that has them before it, or
 *         halfAngle is so small that its cosine rounds to 1; -4 no memory.
 * @par Ownership
 * The map that was held is freed; the new one belongs to the host.
 * @par Memory
 * The result.
 * @par Source
 * R. Hartley and A. Zisserman, Multiple View Geometry in Computer Vision, 2003, chapter 7.
 */
TQ_API int32_t TQ_CALL tqCalcCylinderKeyStone(TqDistortionMap** map, const TqImage* image,
                                              const double* points, double halfAngle, double heightOverRadius,
                                              double* rms);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
