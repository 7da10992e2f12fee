// Internal view of the scratch arrays, for tests and for code that must know
// how much room the last call left.
#ifndef ORV_BASE_SCRATCH_H
#define ORV_BASE_SCRATCH_H

enum OrvScratchKind {
    OrvScratchPoints,
    OrvScratchLinkPoints,
    OrvScratchIndex,
    OrvScratchFloat,
    OrvScratchInternalPointers
};

// Elements the buffer holds now; 0 before its first call.
unsigned OrvScratchCapacity(OrvScratchKind kind);

#endif
