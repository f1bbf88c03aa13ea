/** @file clustering.h
 *  Grouping of pels.
 */
#ifndef TQIMAGE_CLUSTERING_H
#define TQIMAGE_CLUSTERING_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup clustering Clusters
 *  @ingroup process
 *  @copydoc clustering.h
 *  @{ */

/** @brief Numbers the pels that are not 0 by the first cluster whose seed is near.
 *  @param[in,out] out address of the pointer that receives the new image
 *  @param[in] image source; only read
 *  @param[in] distanceLimit largest distance from a seed, pels; below 1 every pel is a cluster
 *  @param[out] clusterCount number of clusters; may be null
 *  @return 0; -2 image null or invalid; -3 no memory
 *  @par Ownership
 *  The block that out held is freed, after its last use where it is an input; the host frees the new one with
 *  tqImageFree.
 *  @par Memory
 *  The result and two rows of cells; the cost a pel does not grow with the number of clusters.
 *  @note Pels are visited row by row. The first pel of a cluster is its seed and stays it: distances are
 *        Euclidean, in single precision, to the seed only. Labels stop at 65535, the count does not. Pels of
 *        0 stay 0. TotalPelValue and MaxPelValue of the result are the count.
 */
TQ_API int32_t TQ_CALL tqClusterImage(TqImage** out, const TqImage* image, int32_t distanceLimit,
                                      int32_t* clusterCount);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
