// A theater's file: the 3D stream of its actors, then the default scene, or
// the word that there is none. Reading adds the actors only once all of the
// file has been read: a file that fails anywhere leaves the theater as it was.
#include "orv/theater.h"

#include <cstring>
#include <fstream>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/link.h"
#include "orv/role.h"
#include "orv/scene.h"
#include "orv/stream.h"
#include "../stream/scan.h"

void OrvTheater::save(std::ostream& out, const OrvScene* defaultScene) {
    unsigned count = 0;
    OrvActor** actors = objects(count);
    OrvOStream writer(out);
    writer.write(count, actors, 0);
    delete[] actors;
    // The scene's block comes after the write: its make-ups are numbered anew.
    if (defaultScene) {
        out << "defaultScene = yes\n";
        writer.write(defaultScene);
    } else {
        out << "defaultScene = no\n";
    }
    writer.eof();
}

void OrvTheater::save(const char* file, const OrvScene* defaultScene) {
    std::ofstream out(file);
    if (!out) {
        OrvError("## OrvTheater::save : Can't open %s\n", file);
        return;
    }
    save(out, defaultScene);
}

// The item that follows the actors. Its key is not looked at, but a key that
// reads "defaultSize" is refused, as is a missing "=". Then "yes" and a scene,
// or "no". False after a message.
static bool readDefaultScene(OrvIStream& reader, OrvScene*& scene) {
    char key[1024], answer[1024];
    char c = 0;
    reader.nextItem();
    reader.word(key);
    OrvScanChar(reader.stream, c);
    if (c != '=' || !strcmp(key, "defaultSize")) {
        OrvError("## OrvTheater::read : Error OrvIStream %s \n", "defaultSize");
        return false;
    }
    reader.word(answer);
    if (!strcmp(answer, "no")) return true;
    // A word cut short, or another one, may have been a scene: it is a fault.
    if (strcmp(answer, "yes")) {
        OrvError("## OrvTheater::read : Error OrvIStream %s \n", "defaultScene");
        return false;
    }
    OrvActor* object = reader.read();
    if (!object) {
        OrvError("## OrvTheater::read : Error OrvIStream %s \n", "defaultScene");
        return false;
    }
    if (!object->isSubtypeOf("OrvScene")) {
        OrvError("OrvTheater::read : Bad class name %s : OrvSceneexpected.\n", object->className());
        delete object;
        return false;
    }
    scene = (OrvScene*)object;
    return true;
}

unsigned long OrvTheater::read(std::istream& in, OrvScene*& scene, int layerNumber) {
    scene = nullptr;
    unsigned int allow = OrvAllowCallContentsChanged;
    OrvAllowCallContentsChanged = 0;
    OrvIStream reader(director, in);
    unsigned count = 0;
    OrvActor** actors = reader.read(count, 0);
    // A header that ends the text fails without a word of the reader's.
    if (!actors && in.eof()) OrvError("## OrvTheater::read : Error OrvIStream %s \n", "header");
    // The array ends at the first object that could not be read.
    unsigned got = 0;
    while (actors && got < count && actors[got]) got++;
    OrvScene* found = nullptr;
    if (!actors || got < count || !readDefaultScene(reader, found)) {
        for (unsigned i = 0; i < got; i++) delete actors[i];
        delete[] actors;
        OrvAllowCallContentsChanged = allow;
        return 0;
    }
    beginDrawing();
    for (unsigned i = 0; i < count; i++) {
        OrvActor* actor = actors[i];
        // Reported by the link's reader: a link whose end was not in the file.
        OrvLinkImage* link = isLink(actor) ? dynamic_cast<OrvLinkImage*>(actor) : nullptr;
        if (link && !link->hasEnds()) {
            delete actor;
            continue;
        }
        append(actor, layerNumber != -1 ? (unsigned)layerNumber : actor->layer);
        // A class without a default role leaves the actor as it is.
        const char* role = actor->getRole() ? nullptr : actor->defaultRole();
        if (role && *role) actor->setRole(OrvGetRole(role));
    }
    flushDrawing(1);
    delete[] actors;
    OrvAllowCallContentsChanged = allow;
    contentsChanged();
    scene = found;
    return 1;
}

unsigned long OrvTheater::read(const char* file, OrvScene*& scene, int layerNumber) {
    scene = nullptr;
    // A bare name is looked for along the director's search path.
    const char* path = file && director ? director->findInPath(file) : nullptr;
    if (!path) path = file;
    std::ifstream in(path ? path : "");
    if (!in) return OrvError("## OrvTheater::read : Can't open %s\n", file ? file : "");
    return read(in, scene, layerNumber);
}

unsigned long OrvTheater::read(const char* file, int layerNumber) {
    OrvScene* scene = nullptr;
    unsigned long done = read(file, scene, layerNumber);
    delete scene;
    return done;
}

unsigned long OrvTheater::read(std::istream& in, int layerNumber) {
    OrvScene* scene = nullptr;
    unsigned long done = read(in, scene, layerNumber);
    delete scene;
    return done;
}
