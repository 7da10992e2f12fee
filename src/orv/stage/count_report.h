// The report that the count accelerators of stages and theaters print: the
// director's make-up and colour tables.
#ifndef ORV_STAGE_COUNT_REPORT_H
#define ORV_STAGE_COUNT_REPORT_H

class OrvDirector;

void OrvReportTables(OrvDirector* director);

#endif
