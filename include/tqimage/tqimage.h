/** @file tqimage.h
 *  Everything that TqImage20 declares.
 */
#ifndef TQIMAGE_TQIMAGE_H
#define TQIMAGE_TQIMAGE_H

#include "tqimage/automation.h"
#include "tqimage/base.h"
#include "tqimage/exchange.h"
#include "tqimage/image.h"

#endif
