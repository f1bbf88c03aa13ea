/** @file line_detection.h
 *  Detection of thin lines.
 */
#ifndef TQIMAGE_LINE_DETECTION_H
#define TQIMAGE_LINE_DETECTION_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup line_detection Lines
 *  @ingroup analysis
 *  @copydoc line_detection.h
 *  @{ */

/** @brief Image of the response to thin lines of one direction.
 *  @param[in,out] result address of the pointer that receives the result, with the whole header of the
 *              source: the magnitude of the response of a 3 x 3 mask that weighs the pels of the line with 2
 *              and the others with -1, at most 65535; 0 at the border. May hold the source. Untouched when
 *              the function fails.
 *  @param[in] source image to search
 *  @param[in] direction 0 horizontal, 1 vertical, 2 rising to the right, 3 falling to the right
 *  @return 0; -2 result null, source null or invalid; -4 another direction; -3 no memory
 *  @par Ownership
 *  A block that result held is freed; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result.
 *  @note An image of fewer than three rows or columns gives an image of zeros.
 */
TQ_API int32_t TQ_CALL tqDetectLine(TqImage** result, const TqImage* source, uint32_t direction);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
