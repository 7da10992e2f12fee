// Make-up attributes of an actor. A make-up is shared, so a setter never
// changes it in place: it asks the director for the make-up that differs in
// the one attribute and swaps it in.
#include "orv/actor.h"
#include "orv/director.h"

void OrvActor::swapMakeUp(OrvMakeUp* next, unsigned long withLinks) {
    OrvCount(next);
    OrvRelease(makeUp);
    makeUp = next;
    notifyOnMakeUpChanged();
    flushDrawing(withLinks);
}

// The common form of an attribute setter: return when equal, begin, ask the
// director, swap, notify, flush.
#define ORV_MAKEUP_SETTER(Setter, Type, Accessor, Derivation)                                      \
    void OrvActor::Setter(Type value) {                                                            \
        if (makeUp->Accessor() == value) return;                                                   \
        beginDrawing(0);                                                                           \
        swapMakeUp(makeUp->director->Derivation(makeUp, value), 0);                                \
    }

ORV_MAKEUP_SETTER(setBackground, OrvColor*, background, makeUpBackground)
ORV_MAKEUP_SETTER(setForeground, OrvColor*, foreground, makeUpForeground)
ORV_MAKEUP_SETTER(setFont, OrvRasterFont*, font, makeUpFont)
ORV_MAKEUP_SETTER(setColorPattern, OrvBitmap*, colorPattern, makeUpColorPattern)
ORV_MAKEUP_SETTER(setPattern, OrvPattern*, pattern, makeUpPattern)
ORV_MAKEUP_SETTER(setFillStyle, OrvFillStyle, fillStyle, makeUpFillStyle)
ORV_MAKEUP_SETTER(setLineStyle, OrvLineStyle*, lineStyle, makeUpLineStyle)
ORV_MAKEUP_SETTER(setLineWidth, unsigned short, lineWidth, makeUpLineWidth)
ORV_MAKEUP_SETTER(setArcMode, OrvArcMode, arcMode, makeUpArcMode)
ORV_MAKEUP_SETTER(setFillRule, OrvFillRule, fillRule, makeUpFillRule)
ORV_MAKEUP_SETTER(setSmooth, unsigned long, smooth, makeUpSmooth)
ORV_MAKEUP_SETTER(setDistinguish, unsigned long, distinguish, makeUpDistinguish)
ORV_MAKEUP_SETTER(setCull, OrvCullingMode, cull, makeUpCull)
ORV_MAKEUP_SETTER(setFrontStyle, OrvFaceStyle, frontStyle, makeUpFrontStyle)
ORV_MAKEUP_SETTER(setBackStyle, OrvFaceStyle, backStyle, makeUpBackStyle)
ORV_MAKEUP_SETTER(setMarkerType, OrvMarkerType, markerType, makeUpMarkerType)
ORV_MAKEUP_SETTER(setVectorialFont, OrvVectorialFont*, vfont, makeUpVectorialFont)
ORV_MAKEUP_SETTER(setTexture, OrvTexture*, texture, makeUpTexture)

void OrvActor::setMarkerScale(const float& scale) {
    unsigned short value = (unsigned short)scale;
    if (makeUp->markerScale() == value) return;
    beginDrawing(0);
    swapMakeUp(makeUp->director->makeUpMarkerScale(makeUp, value), 0);
}

// These three change the shared make-up in place, for every actor that holds
// it, and neither test nor redraw.
void OrvActor::setOverwrite(unsigned long on) {
    makeUp->setOverwrite(on);
    notifyOnMakeUpChanged();
}

void OrvActor::setMode(OrvDrawMode mode) {
    makeUp->setMode(mode);
    notifyOnMakeUpChanged();
}

void OrvActor::setPlaneMask(unsigned int mask) {
    makeUp->setPlaneMask(mask);
    notifyOnMakeUpChanged();
}

void OrvActor::setMakeUp(OrvMakeUp* m) {
    if (!m || m == makeUp) return;
    beginDrawing(1);
    swapMakeUp(m, 1);
}

void OrvActor::invert() {
    beginDrawing(0);
    setInverted(!isInverted());
    const OrvMakeUp* m = makeUp;
    OrvMakeUp* swapped = m->director->makeUp(
        m->foreground(), m->background(), m->lineStyle(), m->lineWidth(), m->pattern(), m->font(),
        m->colorPattern(), m->fillStyle(), m->arcMode(), m->fillRule(), m->vfont(),
        m->distinguish(), m->smooth(), m->cull(), m->frontStyle(), m->backStyle(), m->markerType(),
        m->markerScale(), m->texture());
    swapMakeUp(swapped, 0);
}
