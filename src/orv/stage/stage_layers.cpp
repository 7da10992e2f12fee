// The stage's layers and membership: appending and removing actors, moving
// them between layers, stacking order, hit tests, selections and counts.
#include <cstdlib>
#include <cstring>

#include "orv/actor.h"
#include "orv/layer.h"
#include "orv/link.h"
#include "orv/role.h"
#include "orv/stage.h"

OrvStageLayer* OrvStage::layer(unsigned int n, unsigned long create) const {
    unsigned int i = 0;
    OrvStageLayer* last = nullptr;
    for (OrvLink* l = layers.first; l; l = l->next, i++) {
        last = (OrvStageLayer*)l->value;
        if (i == n) return last;
    }
    if (!create) return nullptr;
    // The layers list is the stage's own; making layers does not change what
    // the caller sees of the stage otherwise.
    OrvList& list = const_cast<OrvList&>(layers);
    OrvStage* self = const_cast<OrvStage*>(this);
    for (; i <= n; i++) {
        last = new OrvStageLayer(self, (unsigned short)i);
        list.append(last);
    }
    return last;
}

OrvStageLayer* OrvStage::getLayer(const OrvActor* actor) const {
    return layer(actor->layer, 0);
}

unsigned long OrvStage::isLink(const OrvActor* actor) const {
    return actor->getProperty(OrvLinkBit);
}

// The steps after the actor entered its layer: container, layer number,
// painting, role, selection and the hooks.
static void welcome(OrvStage* stage, OrvActor* actor, unsigned int n) {
    actor->setStage(stage);
    actor->setLayer((unsigned short)n);
    stage->draw(actor, 1);
    if (stage->isLink(actor)) stage->addLink((OrvLinkImage*)actor);
    if (!actor->getRole()) {
        const char* name = actor->defaultRole();
        if (name) actor->setRole(OrvGetRole(name));
    }
    stage->makeSelected(actor);
    stage->contentsChanged();
}

void OrvStage::append(OrvActor* actor, unsigned int n) {
    layer(n, 1)->append(actor);
    welcome(this, actor, n);
}

void OrvStage::insert(OrvActor* actor, unsigned int n) {
    layer(n, 1)->insert(actor);
    welcome(this, actor, n);
}

void OrvStage::remove(OrvActor* actor, unsigned long deleteIt) {
    // The flag stays set: only the list forgets the actor.
    if (actor->isSelected()) selectionList.remove(actor);
    beginDrawing();
    // A link leaves its ends' tables; the links that end on it go too, since
    // they would otherwise keep an end that has left the stage.
    if (isLink(actor)) removeLink((OrvLinkImage*)actor);
    removeLinks(actor, deleteIt);
    clean(actor, deleteIt);
    flushDrawing(1);
    if (!destroying) contentsChanged();
}

void OrvStage::remove(OrvActor** actors, unsigned int n, unsigned long deleteIt) {
    OrvAllowCallContentsChanged = 0;
    beginDrawing();
    // Links first, since removing an actor would otherwise remove its links twice.
    for (unsigned int i = 0; i < n; i++) {
        if (actors[i] && isLink(actors[i])) {
            remove(actors[i], deleteIt);
            actors[i] = nullptr;
        }
    }
    for (unsigned int i = 0; i < n; i++) {
        if (actors[i]) remove(actors[i], deleteIt);
    }
    OrvAllowCallContentsChanged = 1;
    flushDrawing(1);
    contentsChanged();
}

unsigned long OrvStage::pop(OrvActor* actor) {
    OrvStageLayer* l = getLayer(actor);
    if (!l) return 0;
    unsigned long changed = l->pop(actor);
    if (changed) draw(actor, 1);
    return changed;
}

unsigned long OrvStage::push(OrvActor* actor) {
    OrvStageLayer* l = getLayer(actor);
    if (!l) return 0;
    unsigned long changed = l->push(actor);
    if (changed) draw(actor, 1);
    return changed;
}

unsigned long OrvStage::makeLayer(OrvActor* actor, unsigned short n) {
    OrvStageLayer* old = layer(actor->layer, 0);
    if (!old) return 0;
    // Appending puts the actor on top of its layer before its number changes:
    // an actor lives in one layer of a stage, so the old one cannot hold it,
    // and a large old layer need not be searched to learn that.
    OrvStageLayer* target = layer(n, 0);
    if (target && target != old && target->count && target->actors[target->count - 1] == actor)
        return 0;
    if (!old->remove(actor)) return 0;
    layer(n, 1)->append(actor);
    return 1;
}

unsigned long OrvStage::isVisible(const OrvActor* actor) const {
    OrvStageLayer* l = getLayer(actor);
    return l && l->visible && actor->isVisible();
}

OrvActor* OrvStage::contains(const Orv2dPoint& point, const Orv2dMatrix* matrix,
                             unsigned long withRole, const char* type) const {
    if (!matrix) matrix = transformer;
    // The highest layer answers first.
    for (int n = (int)layers.length() - 1; n >= 0; n--) {
        OrvActor* actor = layer((unsigned int)n, 0)->contains(point, matrix, withRole, type);
        if (actor) return actor;
    }
    return nullptr;
}

OrvActor* OrvStage::containsDragger(const Orv2dPoint& point, const Orv2dMatrix* matrix,
                                    unsigned long withRole, const char* type) const {
    if (!matrix) matrix = transformer;
    for (int n = (int)layers.length() - 1; n >= 0; n--) {
        OrvActor* actor = layer((unsigned int)n, 0)->containsDragger(point, matrix, withRole, type);
        if (actor) return actor;
    }
    return nullptr;
}

void OrvStage::apply(void (*function)(OrvActor*, void*), void* data) {
    for (OrvLink* l = layers.first; l; l = l->next)
        ((OrvStageLayer*)l->value)->apply(function, data);
}

void OrvStage::applyToSelections(void (*function)(OrvActor*, void*), void* data) {
    for (OrvLink* l = selectionList.first; l; l = l->next) function((OrvActor*)l->value, data);
    contentsChanged();
}

void OrvStage::makeSelected(OrvActor* actor) {
    if (actor->isSelected()) {
        if (!selectionList.find(actor)) selectionList.append(actor);
    } else {
        selectionList.remove(actor);
    }
}

void OrvStage::deSelect() {
    if (!selectionList.first) return;
    beginDrawing();
    // Each setSelected(0) also asks to leave the list: walk a detached copy.
    OrvLink* chain = selectionList.first;
    selectionList.first = selectionList.last = nullptr;
    for (OrvLink* l = chain; l; l = l->next) ((OrvActor*)l->value)->setSelected(0);
    delete chain;
    selectionList.first = selectionList.last = nullptr;
    flushDrawing(1);
}

OrvActor* OrvStage::selection(unsigned int n) const {
    unsigned int i = 0;
    for (OrvLink* l = selectionList.first; l; l = l->next, i++)
        if (i == n) return (OrvActor*)l->value;
    return nullptr;
}

OrvActor** OrvStage::selections(unsigned int& count) const {
    count = selectionList.length();
    if (!count) return nullptr;
    OrvActor** result = new OrvActor*[count + 1];
    unsigned int i = 0;
    for (OrvLink* l = selectionList.first; l; l = l->next) result[i++] = (OrvActor*)l->value;
    result[i] = nullptr;
    return result;
}

OrvActor** OrvStage::objects(unsigned int& count) const {
    count = cardinal();
    if (!count) return nullptr;
    OrvActor** result = new OrvActor*[count + 1];
    unsigned int i = 0;
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvStageLayer* layer = (OrvStageLayer*)l->value;
        for (uint32_t k = 0; k < layer->count; k++) result[i++] = layer->actors[k];
    }
    result[i] = nullptr;
    return result;
}

OrvActor* OrvStage::object(const char* actorName) const {
    if (!actorName) return nullptr;
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvStageLayer* layer = (OrvStageLayer*)l->value;
        for (uint32_t k = 0; k < layer->count; k++) {
            const char* own = layer->actors[k]->getName();
            if (own && strcmp(own, actorName) == 0) return layer->actors[k];
        }
    }
    return nullptr;
}

unsigned int OrvStage::cardinal() const {
    unsigned int n = 0;
    for (OrvLink* l = layers.first; l; l = l->next) n += ((OrvStageLayer*)l->value)->count;
    return n;
}
