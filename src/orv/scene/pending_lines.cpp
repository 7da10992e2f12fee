// Placeholder body of the picking half's line test, so that the line actors
// link while it is written. Goes at integration.
#include "pending_lines.h"

unsigned long OrvPick3dLine(const Orv2dPoint&, const Orv3dPoint&, const Orv3dPoint&,
                            const OrvScene*, const OrvActor*) {
    return 0;
}
