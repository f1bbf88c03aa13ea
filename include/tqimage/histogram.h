/** @file histogram.h
 *  The grey-level histogram of an image: one count for each level from 0 to the image's largest pel.
 */
#ifndef TQIMAGE_HISTOGRAM_H
#define TQIMAGE_HISTOGRAM_H

#include "tqimage/automation.h"
#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup histogram Histograms
 *  @ingroup measure
 *  @copydoc histogram.h
 *  @{ */

/** @brief Makes an array of the number of pels of each grey level.
 *  @param[in] image image to measure
 *  @param[in,out] array address of the host's array pointer, which holds an array or null; receives a
 *                 one-dimensional array of 32-bit integers (VT_I4), lower bound 0, with M + 1 elements, M the
 *                 largest pel: element v is the number of pels of level v
 *  @return 0; -2 image null or invalid, or array null; -3 the old array could not be destroyed, as when it is
 *          locked; -4 the array could not be created; -5 it could not be locked; -6 it could not be unlocked
 *  @par Ownership
 *  The old array is destroyed. The new one belongs to the host, which releases it with SafeArrayDestroy;
 *  after -5 and -6, too.
 *  @par Memory
 *  The array, and up to 256 KiB of counters while it works.
 *  @note After -2 and -3 the pointer is as before. After -4 it is null, or as before when the counters could
 *        not be had.
 */
TQ_API int32_t TQ_CALL tqGetHistogram(const TqImage* image, SAFEARRAY** array);

/** @brief Writes the number of pels of each grey level to a text file.
 *
 *  One line a level, from 0 to the largest pel, levels without pels included: the level, a comma, the count.
 *  There is no header line. Lines end as the system's text files do.
 *  @param[in] image image to measure
 *  @param[in] path file to write; an existing one is replaced
 *  @return 0; -1 image null or invalid; -2 path null, the file cannot be written, or no memory
 *  @par Memory
 *  Up to 256 KiB of counters while it works.
 *  @note A file that cannot be written completely, on a full disk, is removed.
 */
TQ_API int32_t TQ_CALL tqWriteHistogram(const TqImage* image, const char* path);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
