/** @file tqimage.h
 *  Everything that TqImage20 declares.
 */

/** @defgroup core Images and their exchange
 *  @defgroup interchange Bitmaps, files and other forms
 *  @defgroup measure Measurement
 *  @defgroup process Processing
 *  @defgroup geometry Geometry
 *  @defgroup colour Colour
 *  @defgroup calibration Calibration
 *  @defgroup analysis Analysis
 *  @defgroup patterns Patterns and plots
 */
#ifndef TQIMAGE_TQIMAGE_H
#define TQIMAGE_TQIMAGE_H

#include "tqimage/adaptive_colour.h"
#include "tqimage/appending.h"
#include "tqimage/automation.h"
#include "tqimage/base.h"
#include "tqimage/bitmap.h"
#include "tqimage/bitmap_files.h"
#include "tqimage/border_light.h"
#include "tqimage/byte_image.h"
#include "tqimage/centroid.h"
#include "tqimage/clustering.h"
#include "tqimage/colour_averages.h"
#include "tqimage/colour_bitmap.h"
#include "tqimage/colour_difference.h"
#include "tqimage/colour_transforms.h"
#include "tqimage/comparison.h"
#include "tqimage/compressed_image.h"
#include "tqimage/defect_detection.h"
#include "tqimage/defects.h"
#include "tqimage/deviation.h"
#include "tqimage/distortion.h"
#include "tqimage/equalisation.h"
#include "tqimage/exchange.h"
#include "tqimage/filters.h"
#include "tqimage/focus.h"
#include "tqimage/framing.h"
#include "tqimage/gradients.h"
#include "tqimage/gray_search.h"
#include "tqimage/histogram.h"
#include "tqimage/image.h"
#include "tqimage/image_arithmetic.h"
#include "tqimage/image_sum.h"
#include "tqimage/keystone.h"
#include "tqimage/korvelin.h"
#include "tqimage/lens_model.h"
#include "tqimage/line_detection.h"
#include "tqimage/local_contrast.h"
#include "tqimage/masks.h"
#include "tqimage/moments.h"
#include "tqimage/mtf.h"
#include "tqimage/multi_point_calibration.h"
#include "tqimage/offset_arithmetic.h"
#include "tqimage/orientation.h"
#include "tqimage/pel_block.h"
#include "tqimage/photometry.h"
#include "tqimage/plots.h"
#include "tqimage/point_operations.h"
#include "tqimage/profiles.h"
#include "tqimage/projection.h"
#include "tqimage/region_ellipse.h"
#include "tqimage/region_polygon.h"
#include "tqimage/region_rectangle.h"
#include "tqimage/resampling.h"
#include "tqimage/stitching.h"
#include "tqimage/stray_light.h"
#include "tqimage/sub_pixel.h"
#include "tqimage/test_patterns.h"
#include "tqimage/thresholds.h"
#include "tqimage/transform.h"
#include "tqimage/uniformity.h"
#include "tqimage/whole_image.h"

#endif
