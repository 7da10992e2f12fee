// Everything the library exports.
#ifndef ORV_ORVIS_H
#define ORV_ORVIS_H

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/region.h"
#include "orv/event.h"
#include "orv/director.h"
#include "orv/view.h"
#include "orv/canvas.h"
#include "orv/resource.h"
#include "orv/makeup.h"
#include "orv/actor.h"
#include "orv/shapes.h"
#include "orv/layer.h"
#include "orv/stage.h"
#include "orv/role.h"
#include "orv/producer.h"
#include "orv/classinfo.h"
#include "orv/stream.h"
#include "orv/engine.h"
#include "orv/link.h"
#include "orv/undo.h"
#include "orv/message.h"
#include "orv/image.h"
#include "orv/bitmapfile.h"
#include "orv/relief.h"
#include "orv/value.h"
#include "orv/vertex.h"
#include "orv/frame.h"
#include "orv/balloon.h"

#endif
