// OrvStage: the transformer that maps actor coordinates to the window.
#include "orv/stage.h"

#include "orv/actor.h"
#include "embedded_views.h"

OrvEmbeddedViewCalls OrvEmbeddedViews = {nullptr, nullptr};

// Same mapping when the new matrix's inverse undoes the old one; a missing
// matrix counts as the identity.
static unsigned long _OrvSameTransformer_(const Orv2dMatrix* newMatrix,
                                          const Orv2dMatrix* oldMatrix) {
    Orv2dMatrix identity;
    if (!newMatrix) newMatrix = &identity;
    if (!oldMatrix) oldMatrix = &identity;
    Orv2dMatrix inverse;
    if (!newMatrix->computeInverse(inverse)) return 0;
    Orv2dMatrix product = *oldMatrix;
    product.compose(inverse);
    return product.isIdentity();
}

static void _OrvFollowView_(OrvActor* actor, void*) {
    OrvEmbeddedViews.follow(actor);
}

// Tells the hooks when the mapping really changed, and moves the windows that
// frames hold to where the frames now stand. Repainting is the caller's.
void OrvStage::transformerReplaced(const Orv2dMatrix* oldMatrix) {
    if (_OrvSameTransformer_(transformer, oldMatrix)) return;
    transformerChanged(transformer, oldMatrix);
    if (OrvEmbeddedViews.follow) apply(_OrvFollowView_, nullptr);
}

void OrvStage::addTransformer(const Orv2dMatrix& m) {
    Orv2dMatrix* old = transformer ? new Orv2dMatrix(*transformer) : nullptr;
    if (!transformer)
        transformer = new Orv2dMatrix(m);
    else
        transformer->compose(m);
    transformerReplaced(old);
    delete old;
}

void OrvStage::toStage(const Orv2dMatrix* m) {
    Orv2dMatrix* old = transformer;
    transformer = m ? new Orv2dMatrix(*m) : nullptr;
    transformerReplaced(old);
    delete old;
}

const Orv2dMatrix* OrvStage::toStage() const {
    return transformer;
}

void OrvStage::translate(long dx, long dy) {
    if (dx == 0 && dy == 0) return;
    addTransformer(Orv2dMatrix(Orv2dPoint(dx, dy)));
    beginDrawing();
    invalidate(Orv2dRect(0, 0, width, height));
    flushDrawing(1);
}

void OrvStage::zoom(const Orv2dPoint& p, float sx, float sy) {
    // Keeps p where it is on the window.
    Orv2dMatrix m(sx, 0.0f, 0.0f, sy, p.x - sx * p.x, p.y - sy * p.y);
    if (transformer) {
        Orv2dMatrix test = *transformer;
        test.compose(m);
        if (test.isBad()) {
            OrvError("OrvStage::zoom: invalid transformer.\n");
            return;
        }
    }
    addTransformer(m);
    beginDrawing();
    invalidate(Orv2dRect(0, 0, width, height));
    flushDrawing(1);
}

void OrvStage::fitTransformerToContents() {
    addTransformer(OrvCompute2dMatrix(contentsBBox(transformer), bbox()));
    beginDrawing();
    invalidate(Orv2dRect(0, 0, width, height));
    flushDrawing(1);
}
