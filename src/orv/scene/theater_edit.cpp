// What a person edits in a theater: the focus and its walk, the highlighted
// actor, the selections, named callbacks, the tables of links, and cut, copy
// and paste through the X clipboard. Each follows the stage's machinery, which
// it shares where the work is the same.
#include "orv/theater.h"

#include <cstring>
#include <sstream>
#include <string>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/link.h"
#include "orv/role.h"
#include "orv/scene.h"
#include "orv/stream.h"
#include "../stage/link_chains.h"
#include "../stage/route_internal.h"
#include "theater_internal.h"

OrvKey* OrvTheaterFromKey() {
    static OrvKey* key = OrvGetKey("T_from", 1);
    return key;
}

OrvKey* OrvTheaterToKey() {
    static OrvKey* key = OrvGetKey("T_to", 1);
    return key;
}

namespace {

// In 3D, reading order goes by the world coordinates of the box's corner.
OrvReadingPlace placeInWorld(const OrvActor* actor) {
    Orv3dVolume v = actor->bbox3d(1);
    return OrvReadingPlace{(double)v.x, (double)v.y};
}

// A focus event goes to the role through the scene that shows the actor: the
// first scene of the theater in which the actor's layer is visible.
OrvScene* sceneShowing(const OrvTheater* theater, const OrvActor* actor) {
    OrvTheaterLayer* layer = theater->getLayer(actor);
    for (OrvLink* l = theater->scenes.first; l && layer; l = l->next)
        if (layer->isVisible((const OrvScene*)l->value)) return (OrvScene*)l->value;
    return nullptr;
}

void sendFocusEvent(OrvTheater* theater, OrvScene* scene, OrvActor* actor, OrvEventType type) {
    OrvRole* role = actor ? actor->getRole() : nullptr;
    if (!role) return;
    OrvEvent event;
    memset((void*)&event, 0, sizeof event);
    event.type = type;
    role->input3d(actor, event, theater, scene);
}

void emptySelections(OrvAList& members, OrvList& ordered) {
    delete members.first;  // an item deletes those that follow it
    members.first = nullptr;
    while (ordered.first) ordered.remove(ordered.first->value);
}

}  // namespace

// ---------------------------------------------------------------------------
// Focus
// ---------------------------------------------------------------------------

void OrvTheater::sendFocusIn(OrvScene* scene, OrvActor* actor) {
    sendFocusEvent(this, scene, actor, OrvFocusIn);
}

void OrvTheater::sendFocusOut(OrvScene* scene, OrvActor* actor) {
    sendFocusEvent(this, scene, actor, OrvFocusOut);
}

void OrvTheater::setFocus(OrvActor* actor) {
    // Only a sensitive actor shown by this theater takes the focus.
    if (actor && (!actor->isSensitive() || !isVisible(actor))) return;
    if (actor == focus) return;
    beginDrawing();
    // The focus box is the actor's box: its projected place covers it.
    OrvActor* old = focus;
    if (old) {
        invalidate(old, 0);
        sendFocusOut(sceneShowing(this, old), old);
    }
    if (actor) {
        invalidate(actor, 0);
        sendFocusIn(sceneShowing(this, actor), actor);
    }
    focus = actor;
    flushDrawing(1);
}

void OrvTheater::moveFocusAfter() {
    unsigned count = 0;
    OrvActor** all = objects(count);
    if (!all) return;
    OrvActor* next = OrvFocusStep(all, count, focus, 1, placeInWorld);
    delete[] all;
    if (next && next != focus) setFocus(next);
}

void OrvTheater::moveFocusBefore() {
    unsigned count = 0;
    OrvActor** all = objects(count);
    if (!all) return;
    OrvActor* previous = OrvFocusStep(all, count, focus, -1, placeInWorld);
    delete[] all;
    if (previous && previous != focus) setFocus(previous);
}

// ---------------------------------------------------------------------------
// Highlight
// ---------------------------------------------------------------------------

OrvActor* OrvTheater::getHighlighted() const {
    return highlighted;
}

void OrvTheater::setHighlighted(const Orv2dPoint& point, OrvActor* actor) {
    // One highlighted actor in all the theaters of a director.
    OrvTheater* other = OrvGetHighlightTheater(director);
    if (other && other != this) other->setHighlighted(point, nullptr);
    if (!actor) {
        if (highlighted) {
            OrvActor* old = highlighted;
            highlighted = nullptr;
            old->setHighlighted(0, point, 1);
        }
        OrvSetHighlightTheater(director, nullptr);
        return;
    }
    if (!actor->isSensitive() || !isVisible(actor)) return;
    if (actor != highlighted) {
        if (highlighted) highlighted->setHighlighted(0, point, 1);
        highlighted = actor;
    }
    actor->setHighlighted(1, point, 1);
    OrvSetHighlightTheater(director, this);
}

// ---------------------------------------------------------------------------
// Selections
// ---------------------------------------------------------------------------

void OrvTheater::makeSelected(OrvActor* actor) {
    if (!actor) return;
    if (actor->isSelected() && actor->getTheater() == this) {
        if (selections_.find(actor)) return;
        selections_.append(actor, actor);
        selectionList.append(actor);
    } else if (selections_.remove(actor)) {
        selectionList.remove(actor);
    }
}

void OrvTheater::deSelect() {
    unsigned count = 0;
    OrvActor** selected = selections(count);
    if (!selected) return;
    // Each setSelected(0) would ask to leave the lists: they are emptied first.
    emptySelections(selections_, selectionList);
    beginDrawing();
    for (unsigned i = 0; i < count; i++) selected[i]->setSelected(0);
    flushDrawing(1);
    delete[] selected;
}

OrvActor** OrvTheater::selections(unsigned& count) const {
    count = selectionList.length();
    if (!count) return nullptr;
    OrvActor** result = new OrvActor*[count + 1];
    unsigned i = 0;
    for (OrvLink* l = selectionList.first; l; l = l->next) result[i++] = (OrvActor*)l->value;
    result[i] = nullptr;
    return result;
}

OrvActor* OrvTheater::selection(unsigned index) const {
    unsigned i = 0;
    for (OrvLink* l = selectionList.first; l; l = l->next, i++)
        if (i == index) return (OrvActor*)l->value;
    return nullptr;
}

Orv2dRect OrvTheater::bboxSelections(const OrvScene* scene) const {
    if (!scene || !selectionList.first) return Orv2dRect();
    Orv2dRegion region;
    for (OrvLink* l = selectionList.first; l; l = l->next) {
        const OrvActor* a = (const OrvActor*)l->value;
        a->bboxToScene(region, a->isInvariant() ? &scene->invariantToScene : &scene->worldToScene,
                       0);
    }
    return region.bbox;
}

void OrvTheater::applyToSelections(void (*function)(OrvActor*, void*), void* data) {
    unsigned count = 0;
    OrvActor** selected = selections(count);
    // A function may change the selection: the walk goes over a copy.
    for (unsigned i = 0; i < count; i++) function(selected[i], data);
    delete[] selected;
    contentsChanged();
}

unsigned long OrvTheater::makeLayer(OrvActor* actor, unsigned short number) {
    OrvTheaterLayer* old = actor ? getLayer(actor) : nullptr;
    if (!old) return 0;
    beginDrawing();
    invalidate(actor, 1);
    old->remove(actor);
    layer(number, 1)->append(actor);
    actor->layer = number;
    invalidate(actor, 1);
    flushDrawing(1);
    return 1;
}

unsigned long OrvTheater::clean(OrvActor* actor, unsigned long deleteIt) {
    OrvTheaterLayer* l = actor ? getLayer(actor) : nullptr;
    if (!l) return 0;
    beginDrawing();
    // The place is taken while the actor is still in its layer: a theater finds
    // an actor's layer only while the actor names the theater.
    if (!destroying) invalidate(actor, 1);
    forget(actor);
    // Its links go with it: none may keep an end that has left.
    removeLinks(actor, deleteIt);
    l->remove(actor);
    actor->setTheater(nullptr);
    if (deleteIt) delete actor;
    flushDrawing(1);
    return 1;
}

void OrvTheater::welcome(OrvActor* actor) {
    if (isLink(actor)) {
        OrvLinkImage* link = dynamic_cast<OrvLinkImage*>(actor);
        if (link) addLink(link);
    }
    makeSelected(actor);
}

void OrvTheater::forget(OrvActor* actor) {
    OrvActor** held[] = {&pressed, &lastMoved, &grabbed, &focus};
    for (OrvActor** field : held)
        if (*field == actor) *field = nullptr;
    if (highlighted == actor) {
        highlighted = nullptr;
        if (OrvGetHighlightTheater(director) == this) OrvSetHighlightTheater(director, nullptr);
    }
    if (selections_.remove(actor)) selectionList.remove(actor);
    if (!isLink(actor)) return;
    OrvLinkImage* link = dynamic_cast<OrvLinkImage*>(actor);
    if (link) {
        removeLink(link);
        return;
    }
    // A link that is being destroyed is a link no more: the chains that hold
    // it are found by a walk over the theater.
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvTheaterLayer* layer = (OrvTheaterLayer*)l->value;
        for (unsigned i = 0; i < layer->count; i++) {
            OrvLinkChainTake(layer->actors[i], OrvTheaterFromKey(), actor);
            OrvLinkChainTake(layer->actors[i], OrvTheaterToKey(), actor);
        }
    }
}

void OrvTheater::forgetAll() {
    pressed = lastMoved = grabbed = focus = nullptr;
    highlighted = nullptr;
    if (OrvGetHighlightTheater(director) == this) OrvSetHighlightTheater(director, nullptr);
    emptySelections(selections_, selectionList);
}

void OrvTheater::releaseInput() {
    forgetAll();
    OrvReleaseCallbacks(callbacks);
}

// ---------------------------------------------------------------------------
// Callbacks
// ---------------------------------------------------------------------------

void OrvTheater::registerCallback(const char* name, OrvCallback* callback) {
    OrvRegisterCallback(callbacks, name, callback);
}

OrvCallback* OrvTheater::getCallback(const char* name) const {
    return OrvFindCallback(callbacks, name);
}

void OrvTheater::removeCallback(const char* name) {
    OrvRemoveCallback(callbacks, name);
}

void OrvTheater::callCallback(OrvActor* actor, OrvScene*) const {
    OrvRunCallback(callbacks, actor);
}

// ---------------------------------------------------------------------------
// Links
// ---------------------------------------------------------------------------

void OrvTheater::addLink(OrvLinkImage* link) {
    if (!link) return;
    OrvLinkChainPush(link->from, OrvTheaterFromKey(), link);
    OrvLinkChainPush(link->to, OrvTheaterToKey(), link);
}

void OrvTheater::removeLink(OrvLinkImage* link) {
    if (!link) return;
    OrvLinkChainTake(link->from, OrvTheaterFromKey(), link);
    OrvLinkChainTake(link->to, OrvTheaterToKey(), link);
}

void OrvTheater::removeLinks(OrvActor* actor, unsigned long deleteThem) {
    if (!actor) return;
    OrvLink* starting = OrvLinkChain(actor, OrvTheaterFromKey());
    OrvLink* ending = OrvLinkChain(actor, OrvTheaterToKey());
    actor->removeUserProperty(OrvTheaterFromKey());
    actor->removeUserProperty(OrvTheaterToKey());
    if (!starting && !ending) return;
    beginDrawing();
    for (int pass = 0; pass < 2; pass++) {
        for (OrvLink* l = pass ? ending : starting; l; l = l->next) {
            OrvLinkImage* link = (OrvLinkImage*)l->value;
            // A link from the actor to itself stands in both chains: once is enough.
            if (pass == 1 && starting && starting->find(link)) continue;
            removeLink(link);
            // The links that end on this link leave with it (clean takes them).
            clean(link, deleteThem);
        }
    }
    OrvLinkChainFree(starting);
    OrvLinkChainFree(ending);
    flushDrawing(1);
}

unsigned OrvTheater::fromLinksCardinal(OrvActor* actor) const {
    OrvLink* l = OrvLinkChain(actor, OrvTheaterFromKey());
    return l ? l->length() : 0;
}

unsigned OrvTheater::toLinksCardinal(OrvActor* actor) const {
    OrvLink* l = OrvLinkChain(actor, OrvTheaterToKey());
    return l ? l->length() : 0;
}

OrvLinkImage* OrvTheater::linkFrom(OrvActor* actor, unsigned n) const {
    for (OrvLink* l = OrvLinkChain(actor, OrvTheaterFromKey()); l; l = l->next, n--)
        if (n == 0) return (OrvLinkImage*)l->value;
    return nullptr;
}

OrvLinkImage* OrvTheater::linkTo(OrvActor* actor, unsigned n) const {
    for (OrvLink* l = OrvLinkChain(actor, OrvTheaterToKey()); l; l = l->next, n--)
        if (n == 0) return (OrvLinkImage*)l->value;
    return nullptr;
}

void OrvTheater::deleteLinks() {
    OrvList links;
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvTheaterLayer* layer = (OrvTheaterLayer*)l->value;
        for (unsigned i = 0; i < layer->count; i++)
            if (isLink(layer->actors[i])) links.append(layer->actors[i]);
    }
    if (!links.first) return;
    // Every link leaves the tables before any is deleted, since an end may be
    // another link of the same walk.
    for (OrvLink* l = links.first; l; l = l->next) {
        OrvLinkImage* link = dynamic_cast<OrvLinkImage*>((OrvActor*)l->value);
        if (link) removeLink(link);
    }
    beginDrawing();
    for (OrvLink* l = links.first; l; l = l->next) clean((OrvActor*)l->value, 1);
    flushDrawing(1);
    while (links.first) links.remove(links.first->value);
}

// ---------------------------------------------------------------------------
// Cut, copy and paste
// ---------------------------------------------------------------------------

// The selections as the text of a 3D file; empty without a selection.
static std::string selectionsText(const OrvTheater* theater) {
    unsigned count = 0;
    OrvActor** selected = theater->selections(count);
    std::string text = OrvActorsText(selected, count, 0);
    delete[] selected;
    return text;
}

// The text goes with its length: edge flags are written as raw bytes, and a
// zero among them must not end it.
static void toClipboard(const OrvDirector* director, const std::string& text) {
    director->setClipboard(text.c_str(), (int)text.size());
}

void OrvTheater::copy() {
    std::string text = selectionsText(this);
    if (text.empty()) return;
    toClipboard(director, text);
}

void OrvTheater::cut() {
    unsigned int allow = OrvAllowCallContentsChanged;
    OrvAllowCallContentsChanged = 0;
    std::string text = selectionsText(this);
    if (text.empty()) {
        OrvAllowCallContentsChanged = allow;
        return;
    }
    // Taken from the head of the list, since removing an actor may take a
    // selected link along with it, which then leaves the list by itself.
    beginDrawing();
    while (selectionList.first) {
        OrvActor* actor = (OrvActor*)selectionList.first->value;
        if (!clean(actor, 1) && selections_.remove(actor)) selectionList.remove(actor);
    }
    flushDrawing(1);
    OrvAllowCallContentsChanged = allow;
    contentsChanged();
    // The clipboard is set last, once the theater is consistent again.
    toClipboard(director, text);
}

void OrvTheater::paste(const Orv3dPoint& where, unsigned long select) {
    int length = 0;
    const char* pasted = director->getClipboard(length);
    if (!pasted || !*pasted || length <= 0) return;
    std::string text(pasted, (size_t)length);

    // The old selection is not repainted: the repaint below covers it.
    unsigned long privateNest = beginDrawingDepth == 0;
    if (privateNest) beginDrawing();
    deSelect();
    if (privateNest) abortDrawing();

    unsigned count = 0;
    std::istringstream in(text);
    OrvIStream reader(director, in);
    OrvActor** actors = reader.read(count, 0);
    // The array ends at the first object that could not be read.
    unsigned readable = 0;
    while (actors && readable < count && actors[readable]) readable++;
    count = readable;
    if (!count) {
        delete[] actors;
        drawAll(nullptr, 1);
        return;
    }

    privateNest = beginDrawingDepth == 0;
    if (privateNest) beginDrawing();
    // The pasted actors' box is centred on the point.
    Orv3dVolume box = actors[0]->bbox3d(1);
    for (unsigned i = 1; i < count; i++) box.extendBy(actors[i]->bbox3d(1));
    Orv3dPoint centre = box.center();
    float dx = where.x - centre.x, dy = where.y - centre.y, dz = where.z - centre.z;

    unsigned int allow = OrvAllowCallContentsChanged;
    OrvAllowCallContentsChanged = 0;
    for (unsigned i = 0; i < count; i++) {
        OrvActor* a = actors[i];
        // A link whose end was not copied has nothing to join.
        OrvLinkImage* link = isLink(a) ? dynamic_cast<OrvLinkImage*>(a) : nullptr;
        if (link && !link->hasEnds()) {
            delete a;
            continue;
        }
        a->translate(dx, dy, dz, 1);
        append(a, 0);
        a->setSelected(select);
    }
    if (privateNest) {
        abortDrawing();
        drawAll(nullptr, 1);
    }
    // With the flag still clear this reaches no hook: a paste is silent, as on a stage.
    contentsChanged();
    OrvAllowCallContentsChanged = allow;
    delete[] actors;
}
