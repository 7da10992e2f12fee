// The roles of decors: the default role that shares a decor's events among
// its bars, its title bar and its border; the title bar's boxes, which move
// and iconify the decor; and the border, which resizes it.
#include "orv/frame.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "orv/director.h"
#include "orv/stage.h"
#include "orv/undo.h"

int orvinitOrvDecorRoles::_counter = 0;

orvinitOrvDecorRoles::orvinitOrvDecorRoles() {
    if (_counter++) return;
    OrvRegisterRoleInstance(new OrvDecorRole());
    OrvRegisterRoleInstance(new OrvDecorTitleBarRole());
    OrvRegisterRoleInstance(new OrvDecorReshapeRole());
}

namespace {

bool isButtonEvent(OrvEventType type) {
    return type == OrvButtonDown || type == OrvButtonDragged || type == OrvButtonUp ||
           type == OrvDoubleClick;
}

// The decor of a sub-actor, or null.
OrvDecor* decorOf(OrvActor* part) {
    return part ? (OrvDecor*)part->getUserProperty(OrvDecor::_inDecor) : nullptr;
}

}  // namespace

// Whether a press at the point lies in the title bar's menu box.
static bool _OrvInMenuOfTitleBar(const OrvDecorTitleBar* bar, const Orv2dPoint& point,
                                 const Orv2dMatrix* matrix) {
    return bar->boxAt(point, matrix) == 1;
}

// ---------------------------------------------------------------------------
// Reshape: the border's handles
// ---------------------------------------------------------------------------

OrvDecorReshapeRole::OrvDecorReshapeRole()
    : active(0), liveResize(0), position(0), start(), box(), current(), savedTitle(nullptr),
      gesture(0) {}

OrvDecorReshapeRole::~OrvDecorReshapeRole() {
    free(savedTitle);
}

Orv2dRect OrvDecorReshapeRole::compute2d(OrvDecor* decor, const Orv2dPoint& point) const {
    OrvStage* stage = decor->getStage();
    Orv2dPoint from = start;
    if (stage && stage->transformer) stage->transformer->apply(from);
    long dx = point.x - from.x, dy = point.y - from.y;
    long x0 = box.x, y0 = box.y, x1 = (long)box.right(), y1 = (long)box.bottom();
    if (position & OrvLeft) x0 += dx;
    if (position & OrvRight) x1 += dx;
    if (position & OrvTop) y0 += dy;
    if (position & OrvBottom) y1 += dy;
    // Room for the border, the title's four boxes and the bars, whatever the pointer does.
    long border = decor->outerBorder || decor->innerBorder ? 2 * (long)decor->borderWidth : 0;
    long title = decor->titleBar ? decor->titleHeight : 0;
    long bar = decor->scrollBarWidth;
    long minW = border + 4 * title + (decor->vScrollBar ? bar : 0) + 8;
    long minH = border + title + (decor->hScrollBar ? bar : 0) + 8;
    if (x1 - x0 < minW) {
        if (position & OrvLeft)
            x0 = x1 - minW;
        else
            x1 = x0 + minW;
    }
    if (y1 - y0 < minH) {
        if (position & OrvTop)
            y0 = y1 - minH;
        else
            y1 = y0 + minH;
    }
    return Orv2dRect((int32_t)x0, (int32_t)y0, (uint32_t)(x1 - x0), (uint32_t)(y1 - y0));
}

void OrvDecorReshapeRole::validate2d(OrvDecor* decor, OrvStage* stage, const Orv2dRect& rect) {
    Orv2dRect r = rect;
    if (stage->transformer) stage->transformer->inverse(r);
    decor->fitToSize(r);
    stage->contentsChanged();
}

void OrvDecorReshapeRole::ghost2d(OrvStage* stage, const Orv2dRect& rect) {
    if (liveResize || !rect.w || !rect.h) return;
    stage->prepare(nullptr);
    stage->rectangle(stage->ghostMakeUp, rect, 0);
    stage->end();
}

void OrvDecorReshapeRole::saveTitle(OrvDecor* decor) {
    free(savedTitle);
    savedTitle = nullptr;
    OrvDecorTitleBar* bar = decor->titleBar;
    if (!bar || !bar->isSubtypeOf("OrvReliefLabel")) return;
    savedTitle = (char*)malloc(strlen(bar->getLabel()) + 1);
    strcpy(savedTitle, bar->getLabel());
}

void OrvDecorReshapeRole::restoreTitle(OrvDecor* decor) {
    if (!savedTitle) return;
    if (decor->titleBar) {
        decor->titleBar->setLabel(savedTitle);
        decor->redrawPart(decor->titleBar);
    }
    free(savedTitle);
    savedTitle = nullptr;
}

void OrvDecorReshapeRole::showSizes(OrvDecor* decor, const Orv2dRect& rect) {
    if (!savedTitle || !decor->titleBar) return;
    char text[64];
    snprintf(text, sizeof text, "(%dx%d)", (int)rect.w, (int)rect.h);
    decor->titleBar->setLabel(text);
    decor->redrawPart(decor->titleBar);
}

int OrvDecorReshapeRole::input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) {
    if (!actor || !actor->isSubtypeOf("OrvDecor")) return 0;
    OrvDecor* decor = static_cast<OrvDecor*>(actor);
    OrvDirector* director = stage->director;
    const Orv2dMatrix* m = stage->transformer;
    Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
    bool ours = (event.key & mask) != 0;
    switch (event.type) {
        case OrvButtonDown: {
            if (!ours || active) return 0;
            Orv2dDragger* handle = decor->dragger2d(p, m);
            if (handle && handle->position && decor->isResizeable()) {
                position = handle->position;
                stage->setCursor(director->positionToCursor(position));
                active = 1;
                gesture = OrvNewGesture();
                box = current = decor->bbox2d(m);
                saveTitle(decor);
                showSizes(decor, current);
            }
            start = p;
            if (m) m->inverse(start);
            if (active) ghost2d(stage, current);
            return (int)active;
        }
        case OrvButtonDragged: {
            if (!ours || !active) return 0;
            Orv2dRect next = compute2d(decor, p);
            if (!liveResize) {
                // The title is repainted between the two: no half ghost stays behind.
                ghost2d(stage, current);
                current = next;
                showSizes(decor, current);
                ghost2d(stage, current);
                return 1;
            }
            current = next;
            OrvEditBeginGeometry(stage, &actor, 1);
            decor->beginDrawing(1);
            validate2d(decor, stage, current);
            decor->flushDrawing(1);
            OrvEditEndGeometry(stage, "Reshape", gesture);
            showSizes(decor, current);
            return 1;
        }
        case OrvButtonUp: {
            stage->setCursor(nullptr);
            if (!ours || !active) return 0;
            ghost2d(stage, current);
            restoreTitle(decor);
            if (!liveResize && current != box) {
                OrvEditBeginGeometry(stage, &actor, 1);
                decor->beginDrawing(1);
                validate2d(decor, stage, current);
                decor->flushDrawing(1);
                OrvEditEndGeometry(stage, "Reshape", gesture);
            }
            active = 0;
            return 1;
        }
        case OrvPointerMoved:
        case OrvEnterActor:
        case OrvLeaveActor: {
            if (active) return 1;
            Orv2dDragger* handle = event.type == OrvLeaveActor ? nullptr : decor->dragger2d(p, m);
            if (handle && handle->position && decor->isResizeable()) {
                stage->setCursor(director->positionToCursor(handle->position));
                return 1;
            }
            stage->setCursor(nullptr);
            return 0;
        }
        default:
            return 0;
    }
}

// ---------------------------------------------------------------------------
// Title bar: the four boxes
// ---------------------------------------------------------------------------

OrvDecorTitleBarRole::OrvDecorTitleBarRole() : pressed{0, 0, 0, 0} {
    // The decor follows the pointer, as a window does.
    move.immediate = 1;
}

void OrvDecorTitleBarRole::validate(OrvActor*, OrvStage*) {}

void OrvDecorTitleBarRole::redrawBox(OrvDecorTitleBar* bar, OrvStage* stage, int which) {
    if (which < 1 || which > 4) return;
    Orv2dRect boxes[4];
    bar->itemsSize(boxes[0], boxes[1], boxes[2], boxes[3], stage->transformer);
    Orv2dRegion region(25);
    region.extendBy(boxes[which - 1]);
    stage->drawAll(&region, 1);
}

int OrvDecorTitleBarRole::input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) {
    if (!actor || !actor->isSubtypeOf("OrvDecorTitleBar")) return 0;
    if (isButtonEvent(event.type) && !(event.key & mask)) return 0;
    OrvDecorTitleBar* bar = static_cast<OrvDecorTitleBar*>(actor);
    OrvDecor* decor = decorOf(bar);
    const Orv2dMatrix* m = stage->transformer;
    Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
    int held = 0;
    for (int i = 0; i < 4; i++)
        if (pressed[i]) held = i + 1;
    if (!held && !bar->bbox2d(m).contains(p)) return 0;
    auto clear = [&]() {
        for (unsigned long& f : pressed) f = 0;
        bar->release();
    };
    switch (event.type) {
        case OrvButtonDown: {
            int which = bar->boxAt(p, m);
            if (!which) return 0;
            clear();
            pressed[which - 1] = bar->pressed[which - 1] = 1;
            redrawBox(bar, stage, which);
            if (which == 4) {
                bar->dragging = 1;
                if (decor) move.input2d(decor, event, stage);
            }
            return 1;
        }
        case OrvButtonDragged: {
            if (!held) return 0;
            if (held == 4) {
                if (decor) move.input2d(decor, event, stage);
                return 1;
            }
            // Leaving the box releases it for good.
            if (bar->boxAt(p, m) != held) {
                clear();
                redrawBox(bar, stage, held);
            }
            return 1;
        }
        case OrvButtonUp: {
            if (!held) return 0;
            clear();
            if (held == 4) {
                if (decor) move.input2d(decor, event, stage);
                return 1;
            }
            if (held == 2) {
                redrawBox(bar, stage, held);
                if (decor) decor->iconify(1);
                return 1;
            }
            redrawBox(bar, stage, held);
            validate(bar, stage);
            return 1;
        }
        default:
            return 0;
    }
}

// ---------------------------------------------------------------------------
// The decor's own role
// ---------------------------------------------------------------------------

int OrvDecorRole::input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) {
    if (!actor || !actor->isSubtypeOf("OrvDecor")) return 0;
    OrvDecor* decor = static_cast<OrvDecor*>(actor);
    const Orv2dMatrix* m = stage->transformer;
    Orv2dPoint p((int32_t)event.x, (int32_t)event.y);
    if (decor->isIconified()) {
        if (event.type == OrvDoubleClick && decor->bbox2d(m).contains(p)) {
            decor->iconify(0);
            return 1;
        }
        // An icon can be dragged.
        OrvRole* move = OrvGetRole("Move");
        return move ? move->input2d(decor, event, stage) : 0;
    }
    OrvRole* reshape = OrvGetRole("DecorReshape");
    if (event.type == OrvPointerMoved || event.type == OrvEnterActor || event.type == OrvLeaveActor)
        return reshape ? reshape->input2d(decor, event, stage) : 0;
    // A press that began in a bar stays with it wherever the pointer goes.
    OrvScrollBar* bar = barPressed == 1   ? decor->hScrollBar
                        : barPressed == 2 ? decor->vScrollBar
                                          : nullptr;
    if (!bar && (event.type == OrvButtonDown || event.type == OrvDoubleClick)) {
        if (decor->hScrollBar && decor->hScrollBar->bbox2d(m).contains(p)) {
            barPressed = 1;
            bar = decor->hScrollBar;
        } else if (decor->vScrollBar && decor->vScrollBar->bbox2d(m).contains(p)) {
            barPressed = 2;
            bar = decor->vScrollBar;
        }
    }
    if (bar) {
        if (event.type == OrvButtonUp) barPressed = 0;
        OrvRole* role = bar->getRole();
        // The second press of a double click is a press for the bar: its release comes back here.
        OrvEvent e = event;
        if (e.type == OrvDoubleClick) e.type = OrvButtonDown;
        int taken = role ? role->input2d(bar, e, stage) : 0;
        if (taken) decor->adjust();
        return taken;
    }
    OrvDecorTitleBar* title = decor->titleBar;
    if (title && title->getRole()) {
        // Menus come with their own role; until then a press there does nothing.
        if ((event.type == OrvButtonDown || event.type == OrvDoubleClick) &&
            _OrvInMenuOfTitleBar(title, p, m))
            return 0;
        if (title->getRole()->input2d(title, event, stage)) return 1;
    }
    return reshape ? reshape->input2d(decor, event, stage) : 0;
}
