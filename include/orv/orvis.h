// Everything the library exports.
#ifndef ORV_ORVIS_H
#define ORV_ORVIS_H

#include <orv/base.h>
#include <orv/geometry.h>
#include <orv/region.h>

#endif
