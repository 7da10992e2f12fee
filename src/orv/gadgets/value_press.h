// The one press under way on a value gadget, shared by the three roles.
#ifndef ORV_GADGETS_VALUE_PRESS_H
#define ORV_GADGETS_VALUE_PRESS_H

class OrvActor;

// The parts of a bar that a press can hit.
enum {
    OrvBarTrough = 0,
    OrvBarFirstArrow = 1,
    OrvBarSecondArrow = 2,
    OrvBarThumb = 3
};

// The part of `gadget` held down now, or -1.
int OrvValuePressedPart(const OrvActor* gadget);
// Ends a press on a gadget that goes away, with its repeat timer.
void OrvValueForget(const OrvActor* gadget);

#endif
