// What the default accelerators of stages and theaters share: the keys they
// both install, and the report of the count accelerator.
#ifndef ORV_STAGE_ACCELERATOR_SHARED_H
#define ORV_STAGE_ACCELERATOR_SHARED_H

class OrvDirector;
class OrvAccelerator;

// The director's make-up and colour tables, as the count accelerators print them.
void OrvReportTables(OrvDirector* director);

// The 17 keys of the stage's family, in order, each handed to add; readOnly
// makes delete and cut refuse.
void OrvMakeFamilyAccelerators(unsigned long readOnly, void (*add)(OrvAccelerator*, void*),
                               void* data);

#endif
