// Everything the library exports.
#ifndef ORV_ORVIS_H
#define ORV_ORVIS_H

#include <orv/base.h>
#include <orv/geometry.h>
#include <orv/region.h>
#include <orv/event.h>
#include <orv/director.h>
#include <orv/view.h>
#include <orv/canvas.h>
#include <orv/resource.h>
#include <orv/makeup.h>

#endif
