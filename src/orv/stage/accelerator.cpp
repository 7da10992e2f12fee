// Accelerators: the base matching rule, the stage's list operations and the
// default table of a stage. Their 3D halves live with the scene (accelerator3d.cpp).
#include "orv/undo.h"
#include "orv/role.h"

#include <cstdlib>
#include <cstring>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/stage.h"
#include "orv/theater.h"
#include "accelerator_shared.h"
#include "route_internal.h"

unsigned short OrvTabKey = 9;

// ---------------------------------------------------------------------------
// The base class
// ---------------------------------------------------------------------------

static void OrvRemoveAcceleratorFrom(OrvStage* stage, void* accelerator) {
    stage->remove((OrvAccelerator*)accelerator);
}

OrvAccelerator::~OrvAccelerator() {
    OrvForEachPlainStage(OrvRemoveAcceleratorFrom, this);
    OrvList* directors = OrvGetAllDirectors();
    if (!directors) return;
    for (OrvLink* d = directors->first; d; d = d->next) {
        OrvList* theaters = ((OrvDirector*)d->value)->theaters;
        for (OrvLink* t = theaters ? theaters->first : nullptr; t; t = t->next)
            ((OrvTheater*)t->value)->remove(this);
    }
}

int OrvAccelerator::match(const OrvEvent& event) const {
    return type == event.type && key == event.key &&
           (modifiers == OrvAnyModifiers || modifiers == event.modifiers);
}

int OrvAccelerator::input2d(OrvStage*, const OrvEvent&) {
    return 0;
}
int OrvAccelerator::input3d(OrvTheater*, OrvScene*, const OrvEvent&) {
    return 0;
}

// ---------------------------------------------------------------------------
// The default accelerators
// ---------------------------------------------------------------------------

static Orv2dPoint OrvVisibleCentre(OrvStage* stage) {
    Orv2dRect r = stage->bboxVisible();
    return Orv2dPoint(r.x + (long)(r.w / 2), r.y + (long)(r.h / 2));
}

int OrvZoomAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    stage->zoom(OrvVisibleCentre(stage), factor, factor);
    return 1;
}

int OrvTranslateAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    long div = (long)divisor;
    if (divisor == 0.0f || div == 0) div = 8;
    Orv2dRect r = stage->bboxVisible();
    long dx = (long)r.w / div, dy = (long)r.h / div;
    switch (direction) {
        case 1:
            stage->translate(-dx, 0);
            break;
        case 2:
            stage->translate(dx, 0);
            break;
        case 4:
            stage->translate(0, -dy);
            break;
        case 8:
            stage->translate(0, dy);
            break;
        default:
            break;
    }
    return 1;
}

int OrvIdentityAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    stage->toStage(nullptr);
    stage->drawAll(nullptr, 1);
    return 1;
}

int OrvDuplicateAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    unsigned count = 0;
    OrvActor** selected = stage->selections(count);
    if (!selected) return 1;
    if (stage->undoStack) stage->undoStack->beginMacro("Duplicate");
    stage->beginDrawing();
    Orv2dMatrix shift(Orv2dPoint(10, 10));
    for (unsigned i = 0; i < count; i++) {
        OrvActor* copy = selected[i]->copy();
        if (!copy) continue;
        copy->apply2d(shift);
        OrvEditAppend(stage, copy, 0);
        copy->setSelected(1);
        selected[i]->setSelected(0);
    }
    stage->flushDrawing(1);
    if (stage->undoStack) stage->undoStack->endMacro();
    delete[] selected;
    return 1;
}

int OrvFitTransformerAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    stage->fitTransformerToContents();
    return 1;
}

int OrvRotateAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    Orv2dPoint c = OrvVisibleCentre(stage);
    float cx = (float)c.x, cy = (float)c.y;
    stage->addTransformer(Orv2dMatrix(0.0f, 1.0f, -1.0f, 0.0f, cx - cy, cx + cy));
    stage->drawAll(nullptr, 1);
    return 1;
}

int OrvSelectAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    if (!select) {
        stage->deSelect();
        return 1;
    }
    unsigned count = 0;
    OrvActor** all = stage->objects(count);
    stage->beginDrawing();
    for (unsigned i = 0; i < count; i++)
        if (!all[i]->isSelected()) all[i]->setSelected(1);
    stage->flushDrawing(1);
    delete[] all;
    return 1;
}

int OrvDeleteAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    if (readOnly) return 1;
    unsigned count = 0;
    OrvActor** selected = stage->selections(count);
    if (!selected) return 1;
    OrvEditRemove(stage, selected, count, "Delete");
    delete[] selected;
    return 1;
}

int OrvCutAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    if (!readOnly) stage->cut();
    return 1;
}

int OrvCopyAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    stage->copy();
    return 1;
}

int OrvPasteAccelerator::input2d(OrvStage* stage, const OrvEvent& event) {
    stage->paste(Orv2dPoint(event.x, event.y), 0);
    return 1;
}

// The director's shared tables, as a developer wants to see them.
void OrvReportTables(OrvDirector* d) {
    OrvMakeUpHashTable* makeUps = d->makeUps;
    if (makeUps) {
        unsigned long entries = 0;
        for (unsigned long i = 0; i < makeUps->size; i++)
            if (makeUps->buckets[i]) entries += makeUps->buckets[i]->length();
        OrvPrint("MakeUp's hash table report : %d - %d \n", (int)makeUps->count, (int)entries);
        for (unsigned long i = 0; i < makeUps->size; i++)
            if (makeUps->buckets[i] && makeUps->buckets[i]->first)
                OrvPrint("    . Entry %d : %d \n", (int)i, (int)makeUps->buckets[i]->length());
    }
    OrvStringHashTable* colors = d->colors;
    if (colors) {
        OrvPrint("Number of color entries : %d \n", (int)colors->cardinal);
        OrvList seen;
        unsigned distinct = 0;
        for (unsigned i = 0; i < colors->size; i++) {
            OrvAList* bucket = colors->buckets[i];
            if (!bucket || !bucket->first) continue;
            OrvPrint("    . Entry %d : %d \n", (int)i, (int)bucket->length());
            for (OrvAListItem* item = bucket->first; item; item = item->next) {
                if (seen.find(item->value)) continue;
                seen.append(item->value);
                distinct++;
                OrvPrint("        -> %s \n", (const char*)item->key);
            }
        }
        OrvPrint("Number of colors : %d \n", (int)distinct);
    }
    OrvPrint("   Equivalent colors array : \n");
    for (OrvAListItem* item = d->colorNames.first; item; item = item->next) {
        OrvColor* c = (OrvColor*)item->value;
        OrvPrint("     - %s\t\t %s \n", (const char*)item->key, c && c->name ? c->name : "");
    }
}

int OrvCountAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    OrvPrint("Found %d objects in stage ...\n", (int)stage->cardinal());
    OrvReportTables(stage->director);
    return 1;
}

// ---------------------------------------------------------------------------
// The stage's list of accelerators
// ---------------------------------------------------------------------------

void OrvStage::add(OrvAccelerator* accelerator) {
    if (accelerator) accelerators.append(accelerator);
}

unsigned long OrvStage::remove(OrvAccelerator* accelerator) {
    if (!accelerator || !accelerators.find(accelerator)) return 0;
    accelerators.remove(accelerator);
    return 1;
}

void OrvStage::removeAccelerators(unsigned long deleteThem) {
    if (deleteThem) {
        // Each destructor unlinks itself, so walk a copy.
        OrvList copy;
        for (OrvLink* l = accelerators.first; l; l = l->next) copy.append(l->value);
        for (OrvLink* l = copy.first; l; l = l->next)
            if (accelerators.find(l->value)) delete (OrvAccelerator*)l->value;
    }
    while (accelerators.first) accelerators.remove(accelerators.first->value);
}

void OrvStage::deleteAccelerators(OrvEventType type, unsigned short key, unsigned short modifiers) {
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

int OrvStage::dispatchToAccelerators(const OrvEvent& event) {
    for (OrvLink* l = accelerators.first; l; l = l->next) {
        OrvAccelerator* a = (OrvAccelerator*)l->value;
        if (a->match(event)) {
            a->input2d(this, event);
            return 1;
        }
    }
    return 0;
}

void OrvMakeFamilyAccelerators(unsigned long readOnly, void (*add)(OrvAccelerator*, void*),
                               void* data) {
    const OrvEventType k = OrvKeyDown;
    OrvAccelerator* keys[17] = {new OrvZoomAccelerator(k, 26, 0, 1, 2.0f),
                                new OrvZoomAccelerator(k, 21, 0, 0, 0.5f),
                                new OrvTranslateAccelerator(k, 551, 0, 1, 8.0f),
                                new OrvTranslateAccelerator(k, 550, 0, 4, 8.0f),
                                new OrvTranslateAccelerator(k, 553, 0, 2, 8.0f),
                                new OrvTranslateAccelerator(k, 552, 0, 8, 8.0f),
                                new OrvIdentityAccelerator(k, 15, 0),
                                new OrvDuplicateAccelerator(k, 4, 0),
                                new OrvFitTransformerAccelerator(k, 6, 0),
                                new OrvRotateAccelerator(k, 18, 0),
                                new OrvSelectAccelerator(k, 1, 0, 1),
                                new OrvSelectAccelerator(k, 2, 0, 0),
                                new OrvDeleteAccelerator(k, 127, 0, readOnly),
                                new OrvCutAccelerator(k, 24, 0, readOnly),
                                new OrvCopyAccelerator(k, 3, 0),
                                new OrvPasteAccelerator(k, 22, 0),
                                new OrvCountAccelerator(k, 14, 0)};
    for (OrvAccelerator* a : keys) add(a, data);
}

void OrvStage::installAccelerators(unsigned long readOnly) {
    OrvMakeFamilyAccelerators(
        readOnly, [](OrvAccelerator* a, void* stage) { ((OrvStage*)stage)->add(a); }, this);
}
