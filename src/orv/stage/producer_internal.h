// Shared by the producer sources.
#ifndef ORV_STAGE_PRODUCER_INTERNAL_H
#define ORV_STAGE_PRODUCER_INTERNAL_H

#include "orv/canvas.h"

// Ghosts open the canvas themselves only when no repaint has it open: a
// repaint calls expose2d inside its own prepare, with its clip.
inline int OrvPrepareIfNone(OrvCanvas* canvas, const Orv2dRegion* region) {
    if (canvas->preparing) return 0;
    canvas->prepare(region);
    return 1;
}

#endif
