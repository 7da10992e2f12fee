// The undo history of stages: the steps that producers, roles and
// accelerators record, the stack that holds them, and the keys bound to it.
#include "orv/undo.h"
#include "orv/director.h"
#include "orv/layer.h"
#include "orv/link.h"
#include "orv/stage.h"

#include <algorithm>
#include <vector>

bool OrvUndoCommand::mergeWith(OrvUndoCommand*) {
    return false;
}

// ----- placing an actor back where it stood --------------------------------

struct _OrvPlace_ {
    OrvActor* actor;
    unsigned short layer;
    int index;  // in the layer's painting order
};

static _OrvPlace_ placeOf(OrvStage* stage, OrvActor* actor) {
    OrvStageLayer* l = stage->getLayer(actor);
    return _OrvPlace_{actor, actor->layer, l ? l->position(actor) : -1};
}

// Into the stage if it is out, to its layer, then to its index there.
static void putBack(OrvStage* stage, const _OrvPlace_& p) {
    if (p.actor->getStage() != stage)
        stage->append(p.actor, p.layer);
    else if (p.actor->layer != p.layer)
        p.actor->setLayer(p.layer);
    OrvStageLayer* l = stage->getLayer(p.actor);
    if (l && p.index >= 0 && l->moveTo(p.actor, (uint32_t)p.index)) stage->draw(p.actor, 1);
}

static bool byLayerAndIndex(const _OrvPlace_& a, const _OrvPlace_& b) {
    return a.layer != b.layer ? a.layer < b.layer : a.index < b.index;
}

// ----- steps -------------------------------------------------------------

class _OrvUndoMacro_ : public OrvUndoCommand {
public:
    std::vector<OrvUndoCommand*> steps;
    _OrvUndoMacro_(OrvStage* s, const char* label) : OrvUndoCommand(s, label) {}
    ~_OrvUndoMacro_() override {
        // Newest first: a later step may hold what an earlier one names.
        for (auto i = steps.rbegin(); i != steps.rend(); ++i) delete *i;
    }
    void undo() override {
        for (auto i = steps.rbegin(); i != steps.rend(); ++i) (*i)->undo();
    }
    void redo() override {
        for (OrvUndoCommand* c : steps) c->redo();
    }
};

// An actor appended: undo takes it out and keeps it.
class _OrvAppendStep_ : public OrvUndoCommand {
public:
    _OrvPlace_ place;
    bool inStage = true;
    _OrvAppendStep_(OrvStage* s, OrvActor* actor) : OrvUndoCommand(s, "Create") {
        place = placeOf(s, actor);
        if (s->isLink(actor)) name = "Link";
    }
    ~_OrvAppendStep_() override {
        if (!inStage) delete place.actor;
    }
    void undo() override {
        stage->remove(place.actor, 0);
        inStage = false;
    }
    void redo() override {
        putBack(stage, place);
        inStage = true;
    }
};

// Actors removed with their links: undo puts each back at its layer and index.
class _OrvRemoveStep_ : public OrvUndoCommand {
public:
    std::vector<_OrvPlace_> places;  // by layer and index
    bool inStage = true;
    _OrvRemoveStep_(OrvStage* s, const char* label) : OrvUndoCommand(s, label) {}
    ~_OrvRemoveStep_() override {
        if (inStage) return;
        // Links first: an actor's destructor must not meet a link that names it.
        for (int pass = 0; pass < 2; pass++)
            for (_OrvPlace_& p : places)
                if (p.actor && (pass == 1 || stage->isLink(p.actor))) {
                    delete p.actor;
                    p.actor = nullptr;
                }
    }
    void collect(OrvActor* actor) {
        if (!actor || actor->getStage() != stage) return;
        for (const _OrvPlace_& p : places)
            if (p.actor == actor) return;
        places.push_back(placeOf(stage, actor));
        // The links at the actor go with it, and the links on those links.
        for (unsigned n = stage->fromLinksCardinal(actor); n-- > 0;)
            collect(stage->linkFrom(actor, n));
        for (unsigned n = stage->toLinksCardinal(actor); n-- > 0;) collect(stage->linkTo(actor, n));
    }
    void undo() override {
        stage->beginDrawing();
        for (const _OrvPlace_& p : places) putBack(stage, p);
        stage->flushDrawing(1);
        inStage = true;
    }
    void redo() override {
        std::vector<OrvActor*> actors;
        for (const _OrvPlace_& p : places) actors.push_back(p.actor);
        stage->remove(actors.data(), (unsigned)actors.size(), 0);
        inStage = false;
    }
};

// Shapes before and after a move, reshape or turn, kept as copies.
class _OrvGeometryStep_ : public OrvUndoCommand {
public:
    struct Entry {
        OrvActor* actor;
        OrvActor* before;
        OrvActor* after;
    };
    std::vector<Entry> entries;
    unsigned long gesture = 0;
    explicit _OrvGeometryStep_(OrvStage* s) : OrvUndoCommand(s, "Move") {}
    ~_OrvGeometryStep_() override {
        for (Entry& e : entries) {
            delete e.before;
            delete e.after;
        }
    }
    static void take(OrvActor* actor, const OrvActor* shape) {
        actor->beginDrawing(1);
        if (!actor->copyGeometry(*shape)) {
            // A class that cannot take a shape is mapped box onto box.
            Orv2dRect now = actor->bbox2d(nullptr), then = shape->bbox2d(nullptr);
            if (now.w && now.h) actor->apply2d(OrvCompute2dMatrix(now, then));
        }
        actor->flushDrawing(1);
    }
    void undo() override {
        stage->beginDrawing();
        for (Entry& e : entries) take(e.actor, e.before);
        stage->flushDrawing(1);
    }
    void redo() override {
        stage->beginDrawing();
        for (Entry& e : entries) take(e.actor, e.after);
        stage->flushDrawing(1);
    }
    bool mergeWith(OrvUndoCommand* newer) override {
        _OrvGeometryStep_* n = dynamic_cast<_OrvGeometryStep_*>(newer);
        if (!n || !gesture || n->gesture != gesture || n->stage != stage ||
            n->entries.size() != entries.size())
            return false;
        for (size_t i = 0; i < entries.size(); i++)
            if (entries[i].actor != n->entries[i].actor) return false;
        // The first shape before and the last one after: one step for the gesture.
        for (size_t i = 0; i < entries.size(); i++)
            std::swap(entries[i].after, n->entries[i].after);
        return true;
    }
};

// An actor moved to another layer or to another place in its own.
class _OrvLayerStep_ : public OrvUndoCommand {
public:
    _OrvPlace_ before, after;
    _OrvLayerStep_(OrvStage* s, const _OrvPlace_& from, const _OrvPlace_& to)
        : OrvUndoCommand(s, "Layer"), before(from), after(to) {}
    void undo() override { putBack(stage, before); }
    void redo() override { putBack(stage, after); }
};

// ----- the stack -----------------------------------------------------------

OrvUndoStack::OrvUndoStack(unsigned depth)
    : limit(depth), macro(nullptr), macroDepth(0), replaying(0), pending(nullptr) {}

OrvUndoStack::~OrvUndoStack() {
    delete pending;
    pending = nullptr;
    delete macro;
    macro = nullptr;
    drop(undone, nullptr);
    drop(done, nullptr);
    for (OrvLink* l = stages.first; l; l = l->next) ((OrvStage*)l->value)->undoStack = nullptr;
    while (stages.first) stages.remove(stages.first->value);
    while (changeCallbacks.first) changeCallbacks.remove(changeCallbacks.first->key);
}

// Deletes the steps of the list (of one stage, or all), newest first.
void OrvUndoStack::drop(OrvList& list, OrvStage* only) {
    std::vector<OrvUndoCommand*> doomed;
    for (OrvLink* l = list.first; l; l = l->next) {
        OrvUndoCommand* c = (OrvUndoCommand*)l->value;
        if (!only || c->stage == only) doomed.push_back(c);
    }
    for (OrvUndoCommand* c : doomed) {
        list.remove(c);
        delete c;
    }
}

void OrvUndoStack::trim() {
    if (!limit) return;
    while (done.length() > limit) {
        OrvUndoCommand* oldest = (OrvUndoCommand*)done.last->value;
        done.remove(oldest);
        delete oldest;
    }
}

void OrvUndoStack::changed() {
    for (OrvAListItem* i = changeCallbacks.first; i;) {
        OrvAListItem* next = i->next;
        ((OrvUndoChanged)i->key)(this, i->value);
        i = next;
    }
}

void OrvUndoStack::push(OrvUndoCommand* command) {
    if (!command) return;
    if (macro) {
        macro->steps.push_back(command);
        return;
    }
    drop(undone, nullptr);
    OrvUndoCommand* top = done.first ? (OrvUndoCommand*)done.first->value : nullptr;
    if (top && top->mergeWith(command)) {
        delete command;
    } else {
        done.insert(command);
        trim();
    }
    changed();
}

// Takes the newest step of one list, plays it one way and keeps it in the other.
unsigned long OrvUndoStack::replay(OrvList& from, OrvList& to, bool forward) {
    if (!from.first || macro) return 0;
    OrvUndoCommand* c = (OrvUndoCommand*)from.first->value;
    from.remove(c);
    replaying = 1;
    if (forward)
        c->redo();
    else
        c->undo();
    replaying = 0;
    to.insert(c);
    changed();
    return 1;
}

unsigned long OrvUndoStack::undo() {
    return replay(done, undone, false);
}

unsigned long OrvUndoStack::redo() {
    return replay(undone, done, true);
}

const char* OrvUndoStack::undoName() const {
    return done.first ? ((OrvUndoCommand*)done.first->value)->name : nullptr;
}

const char* OrvUndoStack::redoName() const {
    return undone.first ? ((OrvUndoCommand*)undone.first->value)->name : nullptr;
}

void OrvUndoStack::clear() {
    if (!done.first && !undone.first) return;
    drop(undone, nullptr);
    drop(done, nullptr);
    changed();
}

void OrvUndoStack::setLimit(unsigned depth) {
    limit = depth;
    unsigned before = done.length();
    trim();
    if (done.length() != before) changed();
}

void OrvUndoStack::beginMacro(const char* label) {
    if (macroDepth++ == 0) macro = new _OrvUndoMacro_(nullptr, label);
}

void OrvUndoStack::endMacro() {
    if (!macroDepth || --macroDepth) return;
    _OrvUndoMacro_* m = macro;
    macro = nullptr;
    if (m->steps.empty()) {
        delete m;
        return;
    }
    m->stage = m->steps.front()->stage;
    push(m);
}

void OrvUndoStack::onChange(OrvUndoChanged function, void* data) {
    if (function) changeCallbacks.append((void*)function, data);
}

void OrvUndoStack::removeChange(OrvUndoChanged function) {
    changeCallbacks.remove((void*)function);
}

void OrvUndoStack::attach(OrvStage* stage) {
    if (stage && !stages.find(stage)) stages.append(stage);
}

void OrvUndoStack::detach(OrvStage* stage) {
    forget(stage);
    stages.remove(stage);
}

void OrvUndoStack::forget(OrvStage* stage) {
    if (pending && pending->stage == stage) {
        delete pending;
        pending = nullptr;
    }
    unsigned before = done.length() + undone.length();
    drop(undone, stage);
    drop(done, stage);
    if (done.length() + undone.length() != before) changed();
}

// ----- recording ----------------------------------------------------------------

// The stack to record on, or null when the stage keeps no history or an undo
// is replaying.
static OrvUndoStack* recorder(OrvStage* stage) {
    OrvUndoStack* s = stage ? stage->undoStack : nullptr;
    return s && !s->isReplaying() ? s : nullptr;
}

void OrvEditAppend(OrvStage* stage, OrvActor* actor, unsigned int layer) {
    if (!stage || !actor) return;
    stage->append(actor, layer);
    OrvUndoStack* s = recorder(stage);
    if (s) s->push(new _OrvAppendStep_(stage, actor));
}

void OrvEditRemove(OrvStage* stage, OrvActor** actors, unsigned int count, const char* name) {
    if (!stage || !actors || !count) return;
    OrvUndoStack* s = recorder(stage);
    if (!s) {
        stage->remove(actors, count, 1);
        return;
    }
    _OrvRemoveStep_* step = new _OrvRemoveStep_(stage, name ? name : "Delete");
    for (unsigned i = 0; i < count; i++) step->collect(actors[i]);
    std::sort(step->places.begin(), step->places.end(), byLayerAndIndex);
    step->redo();
    s->push(step);
}

void OrvEditBeginGeometry(OrvStage* stage, OrvActor* const* actors, unsigned int count) {
    OrvUndoStack* s = recorder(stage);
    if (!s || !actors) return;
    delete s->pending;
    s->pending = new _OrvGeometryStep_(stage);
    for (unsigned i = 0; i < count; i++)
        if (actors[i]) s->pending->entries.push_back({actors[i], actors[i]->copy(), nullptr});
}

void OrvEditEndGeometry(OrvStage* stage, const char* name, unsigned long gesture) {
    OrvUndoStack* s = recorder(stage);
    if (!s || !s->pending || s->pending->stage != stage) return;
    _OrvGeometryStep_* step = s->pending;
    s->pending = nullptr;
    if (step->entries.empty()) {
        delete step;
        return;
    }
    for (auto& e : step->entries) e.after = e.actor->copy();
    if (name) step->name = name;
    step->gesture = gesture;
    s->push(step);
}

static void recordPlace(OrvStage* stage, const _OrvPlace_& before, OrvActor* actor) {
    _OrvPlace_ after = placeOf(stage, actor);
    OrvUndoStack* s = recorder(stage);
    if (s && (after.layer != before.layer || after.index != before.index))
        s->push(new _OrvLayerStep_(stage, before, after));
}

void OrvEditSetLayer(OrvStage* stage, OrvActor* actor, unsigned short layer) {
    if (!stage || !actor || actor->getStage() != stage) return;
    _OrvPlace_ before = placeOf(stage, actor);
    actor->setLayer(layer);
    recordPlace(stage, before, actor);
}

void OrvEditPop(OrvStage* stage, OrvActor* actor) {
    if (!stage || !actor || actor->getStage() != stage) return;
    _OrvPlace_ before = placeOf(stage, actor);
    stage->pop(actor);
    recordPlace(stage, before, actor);
}

unsigned long OrvNewGesture() {
    static unsigned long last = 0;
    return ++last;
}

// ----- keys -----------------------------------------------------------------------

OrvUndoAccelerator::OrvUndoAccelerator(OrvEventType onType, unsigned short onKey,
                                       unsigned short onModifiers, unsigned long redo)
    : OrvAccelerator(onType, onKey, onModifiers), redoing(redo) {}

int OrvUndoAccelerator::input2d(OrvStage* stage, const OrvEvent&) {
    OrvUndoStack* s = stage ? stage->undoStack : nullptr;
    if (!s) return 0;
    if (redoing ? !s->redo() : !s->undo()) stage->director->bell(0);
    return 1;
}

// ----- the stage's side -------------------------------------------------------

void OrvStage::setUndoStack(OrvUndoStack* stack) {
    if (stack == undoStack) return;
    if (undoStack) undoStack->detach(this);
    undoStack = stack;
    if (undoStack) undoStack->attach(this);
}

void OrvStage::installUndoAccelerators(unsigned short undoKey, unsigned short undoModifiers,
                                       unsigned short redoKey, unsigned short redoModifiers) {
    add(new OrvUndoAccelerator(OrvKeyDown, undoKey, undoModifiers, 0));
    add(new OrvUndoAccelerator(OrvKeyDown, redoKey, redoModifiers, 1));
}
