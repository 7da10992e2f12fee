// Balloons: the director's operations that run them, its timer, and the
// balloon's window. The director is declared with the display; its balloon
// operations live here, with the stage and the label they need.
#include "orv/balloon.h"

#include <cstring>

#include "orv/director.h"
#include "orv/makeup.h"
#include "balloon_theater.h"

OrvActor* (*OrvBalloonTheaterPick)(OrvDirector*, OrvTheater*, OrvScene*,
                                   const Orv2dPoint&) = nullptr;

// ---------------------------------------------------------------------------
// The director's operations
// ---------------------------------------------------------------------------

void OrvDirector::runBalloonTimer(OrvStage* stage, const OrvEvent& event) {
    if (!balloonShown) return;
    if (!balloonTimer) balloonTimer = new OrvBalloonTimer(this);
    hideBalloon();
    balloonTimer->clear();
    balloonTimer->stage = stage;
    balloonTimer->event = event;
    balloonTimer->run(0, (int)balloonDelay);
}

void OrvDirector::runBalloonTimer(OrvTheater* theater, OrvScene* scene, const OrvEvent& event) {
    if (!balloonShown) return;
    if (!balloonTimer) balloonTimer = new OrvBalloonTimer(this);
    hideBalloon();
    balloonTimer->clear();
    balloonTimer->theater = theater;
    balloonTimer->scene = scene;
    balloonTimer->event = event;
    balloonTimer->run(0, (int)balloonDelay);
}

unsigned long OrvDirector::mapBalloon(OrvActor* actor, const Orv2dPoint& point) {
    const OrvBalloonData* data = actor ? actor->getBalloonData() : nullptr;
    if (!data) return 0;
    hideBalloon();
    if (!balloonStage) balloonStage = new OrvBalloonStage(this);
    balloonStage->setBalloon(data->label, data->bitmap, data->position, data->space);
    // The whole balloon on the screen: moved left and up from the right and lower edges.
    Orv2dRect size = balloonStage->balloonSize();
    long x = point.x, y = point.y;
    if (x > screenWidth - (long)size.w) x = screenWidth - (long)size.w;
    if (y > screenHeight - (long)size.h) y = screenHeight - (long)size.h;
    if (x < 0) x = 0;
    if (y < 0) y = 0;
    balloonStage->move(Orv2dPoint((int32_t)x, (int32_t)y));
    OrvStage* owner = actor->drawingStage();
    if (owner) balloonStage->setTopMost(owner);
    balloonStage->show();
    balloonStage->raise();
    // After show, which forgets the owner with the rest of the balloon's state.
    balloonStage->owner = owner;
    return 1;
}

void OrvDirector::showBalloon(unsigned long on) {
    balloonShown = on ? 1 : 0;
    hideBalloon();
}

void OrvDirector::hideBalloon() {
    if (balloonStage && balloonStage->visible) balloonStage->hide();
}

void OrvDirector::suspendBalloonTimer() {
    hideBalloon();
    if (balloonStage) balloonStage->owner = nullptr;
    if (!balloonTimer) return;
    balloonTimer->suspend();
    balloonTimer->clear();
}

void OrvDirector::setBalloonMakeUp(OrvMakeUp* m) {
    if (m == balloonMakeUp) return;
    OrvCount(m);
    OrvRelease(balloonMakeUp);
    balloonMakeUp = m;
    if (balloonStage && balloonStage->label) balloonStage->label->setMakeUp(m ? m : defaultMakeUp);
}

void OrvDirector::setBalloonDelays(unsigned long showMs, unsigned long hideMs) {
    balloonDelay = showMs;
    balloonHideDelay = hideMs;
}

// ---------------------------------------------------------------------------
// Timer
// ---------------------------------------------------------------------------

OrvBalloonTimer::OrvBalloonTimer(OrvDirector* d)
    : OrvTimer(d, 0, (int)d->balloonDelay), stage(nullptr), theater(nullptr), scene(nullptr),
      event(), shown(0) {
    memset(&event, 0, sizeof event);
}

OrvBalloonTimer::~OrvBalloonTimer() {
    if (director && director->balloonTimer == this) director->balloonTimer = nullptr;
}

void OrvBalloonTimer::clear() {
    stage = nullptr;
    theater = nullptr;
    scene = nullptr;
    memset(&event, 0, sizeof event);
    shown = 0;
}

void OrvBalloonTimer::activate() {
    if (shown) {
        director->hideBalloon();
        clear();
        return;
    }
    // Kept aside: showing the balloon forgets the timer's state.
    OrvStage* on = stage;
    OrvTheater* inTheater = theater;
    OrvScene* inScene = scene;
    OrvEvent at = event;
    clear();
    if ((!on && !inTheater) || !director->balloonShown) return;
    Orv2dPoint p((int32_t)at.x, (int32_t)at.y);
    OrvActor* actor = nullptr;
    if (on)
        actor = on->contains(p, nullptr, 0, nullptr);
    else if (OrvBalloonTheaterPick)
        actor = OrvBalloonTheaterPick(director, inTheater, inScene, p);
    if (!actor) return;
    Orv2dPoint offset = actor->beforeMappingBalloon(p);
    Orv2dPoint where((int32_t)(at.globalX + offset.x), (int32_t)(at.globalY + offset.y));
    if (!director->mapBalloon(actor, where)) return;
    stage = on;
    theater = inTheater;
    scene = inScene;
    event = at;
    shown = 1;
    run(0, (int)director->balloonHideDelay);
}

// ---------------------------------------------------------------------------
// The balloon's window
// ---------------------------------------------------------------------------

OrvBalloonStage::OrvBalloonStage(OrvDirector* d)
    : OrvStage(d, Orv2dRect(0, 0, 1, 1), "Balloon", OrvViewOverrideRedirect, 0), label(nullptr),
      owner(nullptr) {
    focusEnabled = 0;
    highlightEnabled = 0;
}

OrvBalloonStage::~OrvBalloonStage() {
    if (director && director->balloonStage == this) director->balloonStage = nullptr;
}

Orv2dRect OrvBalloonStage::balloonSize() const {
    return label ? label->rect : Orv2dRect(0, 0, 1, 1);
}

void OrvBalloonStage::setBalloon(const char* text, OrvBitmap* picture, OrvPosition position,
                                 unsigned short space) {
    OrvMakeUp* look = director->balloonMakeUp ? director->balloonMakeUp : director->defaultMakeUp;
    if (!label) {
        label = new OrvReliefLabel(director, Orv2dRect(0, 0, 1, 1), text, 1, look);
        append(label);
        // The label is only shown: presses go to the owner's stage.
        label->setRole((OrvRole*)nullptr);
    } else {
        label->setMakeUp(look);
        label->setLabel(text);
    }
    label->setBitmap(picture);
    label->setAlignement(position);
    label->setLabelBitmapSpace(space);
    label->fitToContents();
    Orv2dRect fitted = label->rect;
    label->setRect(Orv2dRect(0, 0, fitted.w + 4, fitted.h + 4));
    resize(fitted.w + 4, fitted.h + 4);
}

// What the pointer and the keyboard do over the balloon; not what happens to
// its window, whose mapping would otherwise hide it at once.
static bool isUserInput(OrvEventType type) {
    switch (type) {
        case OrvKeyDown:
        case OrvKeyUp:
        case OrvButtonDown:
        case OrvButtonUp:
        case OrvButtonDragged:
        case OrvDoubleClick:
        case OrvPointerMoved:
            return true;
        default:
            return false;
    }
}

void OrvBalloonStage::handleInput(const OrvEvent& event) {
    OrvStage* target = owner;
    if (target && isUserInput(event.type)) {
        // From the balloon's window to the owner's.
        Orv2dRect mine = globalBBox(), theirs = target->globalBBox();
        OrvEvent e = event;
        e.x += (long)mine.x - (long)theirs.x;
        e.y += (long)mine.y - (long)theirs.y;
        e.window = target->window();
        target->handleInput(e);
    }
    if (event.type == OrvButtonDown && visible) hide();
}
