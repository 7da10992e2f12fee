// Cut, copy and paste: the selections travel as text of the persistent
// format through the director's clipboard, which is the X cut buffer.
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "orv/undo.h"
#include "orv/actor.h"
#include "orv/director.h"
#include "orv/link.h"
#include "orv/stage.h"
#include "orv/stream.h"
#include "route_internal.h"

std::string OrvActorsText(OrvActor* const* actors, unsigned count, unsigned long is2d) {
    if (!actors || !count) return std::string();
    std::ostringstream text;
    OrvOStream out(text);
    out.write(count, actors, is2d);
    return text.str();
}

// The selections as persistent text; empty without a selection.
static std::string OrvSelectionsText(OrvStage* stage) {
    unsigned count = 0;
    OrvActor** selected = stage->selections(count);
    std::string text = OrvActorsText(selected, count, 1);
    delete[] selected;
    return text;
}

void OrvStage::copy() {
    std::string text = OrvSelectionsText(this);
    if (text.empty()) return;
    director->setClipboard(text.c_str(), 0);
}

void OrvStage::cut() {
    unsigned long allow = OrvAllowCallContentsChanged;
    OrvAllowCallContentsChanged = 0;
    std::string text = OrvSelectionsText(this);
    if (text.empty()) {
        OrvAllowCallContentsChanged = allow;
        return;
    }
    unsigned count = 0;
    OrvActor** selected = selections(count);
    OrvEditRemove(this, selected, count, "Cut");
    delete[] selected;
    OrvAllowCallContentsChanged = allow;
    contentsChanged();
    // The clipboard is set last, once the stage is consistent again.
    director->setClipboard(text.c_str(), 0);
}

void OrvStage::paste(const Orv2dPoint& where, unsigned long select) {
    int length = 0;
    const char* pasted = director->getClipboard(length);
    if (!pasted || !*pasted || length <= 0) return;
    std::string text(pasted, (size_t)length);

    // The old handles are not repainted: the repaint below covers them.
    int privateNest = nesting == 0;
    if (privateNest) beginDrawing();
    deSelect();
    if (privateNest) abortDrawing();

    unsigned count = 0;
    std::istringstream in(text);
    OrvIStream reader(director, in);
    OrvActor** actors = reader.read(count, 1);
    // The array ends at the first object that could not be read.
    unsigned readable = 0;
    while (actors && readable < count && actors[readable]) readable++;
    count = readable;
    if (!actors || !count) {
        delete[] actors;
        drawAll(nullptr, 1);
        return;
    }

    privateNest = nesting == 0;
    if (privateNest) beginDrawing();
    Orv2dPoint at = where;
    if (transformer) transformer->inverse(at);
    Orv2dRect box;
    for (unsigned i = 0; i < count; i++) box.extendBy(actors[i]->bbox2d(nullptr));
    Orv2dMatrix shift(Orv2dPoint(at.x - box.x, at.y - box.y));

    unsigned long allow = OrvAllowCallContentsChanged;
    OrvAllowCallContentsChanged = 0;
    if (undoStack) undoStack->beginMacro("Paste");
    for (unsigned i = 0; i < count; i++) {
        OrvActor* a = actors[i];
        if (isLink(a) && !((OrvLinkImage*)a)->hasEnds()) {
            delete a;
            continue;
        }
        a->apply2d(shift);
        OrvEditAppend(this, a, a->layer);
        a->setSelected(select);
    }
    if (privateNest) {
        abortDrawing();
        drawAll(nullptr, 1);
    }
    if (undoStack) undoStack->endMacro();
    // With the flag still clear this reaches no hook: a paste is silent.
    contentsChanged();
    OrvAllowCallContentsChanged = allow;
    delete[] actors;
}
