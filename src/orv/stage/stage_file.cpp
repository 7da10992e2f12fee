// Saving a stage to a file and reading one back into a stage.
#include "orv/actor.h"
#include "orv/director.h"
#include "orv/link.h"
#include "orv/stage.h"
#include "orv/stream.h"
#include "embedded_views.h"

#include <cstdlib>
#include <fstream>

void OrvStage::save(std::ostream& out) {
    unsigned int count = 0;
    OrvActor** actors = objects(count);
    OrvOStream writer(out);
    writer.defaultSize = bbox();
    writer.write(count, actors, 1);
    writer.eof();
    // A stage shown in a frame lives in a file of its own.
    if (OrvEmbeddedViews.saveInterior)
        for (unsigned int i = 0; i < count; i++) OrvEmbeddedViews.saveInterior(actors[i]);
    delete[] actors;
}

void OrvStage::save(const char* file) {
    std::ofstream out(file);
    if (!out) {
        OrvError("## Cannot open %s for writing", file);
        return;
    }
    save(out);
}

unsigned long OrvStage::read(std::istream& in, Orv2dRect& size, int layerNumber) {
    unsigned int allow = OrvAllowCallContentsChanged;
    OrvAllowCallContentsChanged = 0;
    OrvIStream reader(director, in);
    unsigned count = 0;
    OrvActor** actors = reader.read(count, 1);
    if (!actors || !actors[0]) {
        delete[] actors;
        OrvAllowCallContentsChanged = allow;
        size = reader.defaultSize;
        return 0;
    }
    int began = nesting == 0;
    if (began) beginDrawing();
    // The array ends at the first object that could not be read.
    for (unsigned i = 0; i < count && actors[i]; i++) {
        OrvActor* actor = actors[i];
        // Reported by the link's reader: a link whose end was not in the file.
        if (isLink(actor) && !((OrvLinkImage*)actor)->hasEnds()) {
            delete actor;
            continue;
        }
        append(actor, layerNumber != -1 ? (unsigned)layerNumber : actor->layer);
        // A class without a default role leaves the actor as it is.
        const char* role = actor->getRole() ? nullptr : actor->defaultRole();
        if (role && *role) actor->setRole(role);
    }
    if (began) abortDrawing();
    delete[] actors;
    OrvAllowCallContentsChanged = allow;
    contentsChanged();
    size = reader.defaultSize;
    return 1;
}

unsigned long OrvStage::read(const char* file, Orv2dRect& size, int layerNumber) {
    // A bare name is looked for along the director's search path.
    const char* path = director ? director->findInPath(file) : nullptr;
    if (!path) path = file;
    std::ifstream in(path);
    if (!in) return OrvError("## OrvStage::read : Can't open %s\n", file);
    return read(in, size, layerNumber);
}
