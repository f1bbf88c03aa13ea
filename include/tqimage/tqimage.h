/** @file tqimage.h
 *  Everything that TqImage20 declares.
 */
#ifndef TQIMAGE_TQIMAGE_H
#define TQIMAGE_TQIMAGE_H

#include "tqimage/automation.h"
#include "tqimage/base.h"
#include "tqimage/bitmap.h"
#include "tqimage/border_light.h"
#include "tqimage/centroid.h"
#include "tqimage/colour_averages.h"
#include "tqimage/colour_difference.h"
#include "tqimage/colour_transforms.h"
#include "tqimage/comparison.h"
#include "tqimage/defects.h"
#include "tqimage/deviation.h"
#include "tqimage/distortion.h"
#include "tqimage/exchange.h"
#include "tqimage/focus.h"
#include "tqimage/gray_search.h"
#include "tqimage/histogram.h"
#include "tqimage/image.h"
#include "tqimage/line_detection.h"
#include "tqimage/moments.h"
#include "tqimage/mtf.h"
#include "tqimage/pel_block.h"
#include "tqimage/photometry.h"
#include "tqimage/point_operations.h"
#include "tqimage/profiles.h"
#include "tqimage/region_ellipse.h"
#include "tqimage/region_polygon.h"
#include "tqimage/region_rectangle.h"
#include "tqimage/sub_pixel.h"
#include "tqimage/uniformity.h"
#include "tqimage/whole_image.h"

#endif
