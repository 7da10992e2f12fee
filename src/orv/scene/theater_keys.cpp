// The theater's accelerators: its list, the offer of an event to it, and the
// default table of keys that act on the scene where they are pressed.
#include "orv/theater.h"

#include "orv/camera.h"
#include "orv/role.h"
#include "../stage/accelerator_shared.h"

void OrvTheater::add(OrvAccelerator* accelerator) {
    if (accelerator) accelerators.append(accelerator);
}

void OrvTheater::remove(OrvAccelerator* accelerator) {
    if (accelerator && accelerators.find(accelerator)) accelerators.remove(accelerator);
}

void OrvTheater::removeAccelerators(unsigned long deleteThem) {
    if (deleteThem) {
        // Each destructor unlinks itself from every theater, so walk a copy.
        OrvList copy;
        for (OrvLink* l = accelerators.first; l; l = l->next) copy.append(l->value);
        for (OrvLink* l = copy.first; l; l = l->next)
            if (accelerators.find(l->value)) delete (OrvAccelerator*)l->value;
    }
    while (accelerators.first) accelerators.remove(accelerators.first->value);
}

void OrvTheater::deleteAccelerators(OrvEventType type, unsigned short key,
                                    unsigned short modifiers) {
    // A key or modifiers of 0 matches anything.
    OrvList doomed;
    for (OrvLink* l = accelerators.first; l; l = l->next) {
        OrvAccelerator* a = (OrvAccelerator*)l->value;
        if (a->type == type && (!key || a->key == key) && (!modifiers || a->modifiers == modifiers))
            doomed.append(a);
    }
    for (OrvLink* l = doomed.first; l; l = l->next) {
        accelerators.remove(l->value);
        delete (OrvAccelerator*)l->value;
    }
}

int OrvTheater::dispatchToAccelerators(OrvScene* scene, const OrvEvent& event) {
    // The earliest added wins; its answer does not matter.
    for (OrvLink* l = accelerators.first; l; l = l->next) {
        OrvAccelerator* a = (OrvAccelerator*)l->value;
        if (a->match(event)) {
            a->input3d(this, scene, event);
            return 1;
        }
    }
    return 0;
}

void OrvTheater::installAccelerators(unsigned long flag) {
    // The trackball producer's key comes with the trackball; until then the
    // flag adds nothing.
    (void)flag;
    OrvMakeFamilyAccelerators(
        0, [](OrvAccelerator* a, void* theater) { ((OrvTheater*)theater)->add(a); }, this);
    const OrvEventType k = OrvKeyDown;
    add(new OrvUseDoubleBufferingAccelerator(k, 11, 0));
    // Digits 1 to 6.
    const OrvPosition sides[6] = {OrvFront, OrvBack, OrvTop, OrvBottom, OrvLeft, OrvRight};
    for (unsigned short i = 0; i < 6; i++)
        add(new OrvLooakAtAccelerator(k, (unsigned short)(49 + i), 0, sides[i], 0.0f));
    add(new OrvTrackBallAccelerator(k, 20, 0));
    add(new OrvSelectableAccelerator(k, 12, 0));
}
