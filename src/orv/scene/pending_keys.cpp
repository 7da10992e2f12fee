// Placeholder bodies of the selection calls that the accelerators use, so that
// they link while the theater's selection is written; the file goes at
// integration. They read the actors' selected flags.
#include "orv/actor.h"
#include "orv/theater.h"

void OrvTheater::deSelect() {
    unsigned count = 0;
    OrvActor** all = objects(count);
    beginDrawing();
    for (unsigned i = 0; i < count; i++)
        if (all[i]->isSelected()) all[i]->setSelected(0);
    flushDrawing(1);
    delete[] all;
}

OrvActor** OrvTheater::selections(unsigned& count) const {
    unsigned n = 0;
    OrvActor** all = objects(n);
    count = 0;
    for (unsigned i = 0; i < n; i++)
        if (all[i]->isSelected()) all[count++] = all[i];
    if (!count) {
        delete[] all;
        return nullptr;
    }
    all[count] = nullptr;
    return all;
}
