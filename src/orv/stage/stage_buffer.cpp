// OrvStage::bufferedDraw: a flicker-free repaint of a small part of a stage
// without double buffering, through the director's shared screen buffer.
#include "orv/stage.h"

#include "orv/actor.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/layer.h"
#include "orv/makeup.h"
#include "orv/producer.h"

// Guards the shared buffer against a nested use (a hook that buffers again).
static unsigned long _OrvScreenBufferInUse_ = 0;

// Paints the stage's part at `at` into a canvas whose origin stands there.
static void _OrvPaintShifted_(OrvStage* stage, OrvCanvas* target, const Orv2dMatrix& m,
                              const Orv2dRegion& q, const Orv2dRect& area) {
    target->prepare(&q);
    target->rectangle(stage->backgroundMakeUp, area, 1, nullptr);
    stage->paintLayers(target, &m, &q);
    target->end();
}

// The transformer, or the identity, moved so that r's corner lands on 0, 0.
static Orv2dMatrix _OrvShiftedMatrix_(const Orv2dMatrix* transformer, const Orv2dRect& r) {
    Orv2dMatrix m;
    if (transformer) m = *transformer;
    float a, b, c, d, tx, ty;
    m.getValues(a, b, c, d, tx, ty);
    m.setValues(a, b, c, d, tx - (float)r.x, ty - (float)r.y);
    return m;
}

void OrvStage::bufferedDraw(const Orv2dRect& rect) {
    Orv2dRect r = rect;
    r.intersection(bboxVisible());
    if (r.w == 0 || r.h == 0) return;
    if (_OrvScreenBufferInUse_) {
        OrvError("OrvStage::bufferedDraw : Internal error (1).\n");
        return;
    }
    _OrvScreenBufferInUse_ = 1;
    Orv2dMatrix m = _OrvShiftedMatrix_(transformer, r);
    Orv2dRect area(0, 0, r.w, r.h);
    Orv2dRegion q(area, 25);
    OrvBitmap* buffer = director->screenBuffer(r.w, r.h);
    beforeDraw(buffer, &m, &q);
    _OrvPaintShifted_(this, buffer, m, q, area);
    afterDraw(buffer, &m, &q);
    prepare(nullptr);
    bitblit(director->defaultMakeUp, buffer, area, Orv2dPoint(r.x, r.y), 0, nullptr);
    end();
    afterCopy(buffer, &m, &q);
    Orv2dRegion q2(r, 25);
    if (bitmap) {
        bitmap->prepare(nullptr);
        bitmap->bitblit(director->defaultMakeUp, buffer, area, Orv2dPoint(r.x, r.y), 0, nullptr);
        bitmap->end();
        afterCopy(bitmap, &m, &q2);
    }
    if (producer) {
        prepare(&q2);
        producer->expose2d(&q2);
        end();
    }
    _OrvScreenBufferInUse_ = 0;
}

void OrvStage::bufferedDraw(const Orv2dRegion& region) {
    for (unsigned short i = 0; i < region.count; i++)
        bufferedDraw(const_cast<Orv2dRegion&>(region).rectangle(i));
}

void OrvStage::bufferedDraw(OrvBitmap* target, const Orv2dPoint& at) {
    Orv2dRect r(at.x, at.y, target->width, target->height);
    r.intersection(bboxVisible());
    if (r.w == 0 || r.h == 0) return;
    if (_OrvScreenBufferInUse_) {
        OrvError("OrvStage::bufferedDraw : Internal error (2).\n");
        return;
    }
    _OrvScreenBufferInUse_ = 1;
    Orv2dRect area(0, 0, r.w, r.h);
    if (bitmap) {
        target->prepare(nullptr);
        target->bitblit(director->defaultMakeUp, bitmap, r, Orv2dPoint(0, 0), 0, nullptr);
        target->end();
    } else {
        Orv2dMatrix m = _OrvShiftedMatrix_(transformer, r);
        Orv2dRegion q(area, 25);
        _OrvPaintShifted_(this, target, m, q, area);
    }
    _OrvScreenBufferInUse_ = 0;
}
