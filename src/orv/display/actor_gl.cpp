// The drawing passes of actors in a scene: immediate drawing under the
// actor's matrix, the box drawn instead in interactive frames, and the
// display list of a 3D actor, compiled once and called under its matrix.
#include "orv/actor.h"
#include "orv/actor3d.h"
#include "orv/director.h"
#include "orv/scene.h"

#include <GL/gl.h>

// Matrices go to GL transposed, through one array: no allocation per actor.
static GLfloat glMatrix[16];

static const GLfloat* toGL(const Orv3dMatrix& m) {
    m.transpose(glMatrix);
    return glMatrix;
}

// What one pass changed in the GL state and in the scene, to be undone in
// reverse order when the actor is drawn.
struct PassState {
    bool depthOff = false, lightOff = false, modelView = false, projection = false;
};

// Depth test and lighting that the scene has in force and the actor refuses.
static void refuseStates(const OrvActor* actor, const OrvScene* scene, PassState& state) {
    if (scene->zBuffer && (scene->interactiveMode & 1) && !actor->hasZBuffer()) {
        glDisable(GL_DEPTH_TEST);
        state.depthOff = true;
    }
    if (scene->lightAllowed && !actor->isLightOn()) {
        glDisable(GL_LIGHTING);
        state.lightOff = true;
    }
}

// The actor's matrix after the camera's, or in place of it for an invariant
// actor, which is then drawn through the invariant projection.
static void pushMatrices(const OrvActor* actor, PassState& state) {
    const Orv3dMatrix* matrix = actor->to3dWorld();
    unsigned long invariant = actor->isInvariant();
    if (matrix) {
        const GLfloat* m = toGL(*matrix);
        glPushMatrix();
        state.modelView = true;
        if (invariant)
            glLoadMatrixf(m);
        else
            glMultMatrixf(m);
    } else if (invariant) {
        glPushMatrix();
        state.modelView = true;
        glLoadIdentity();
    }
    if (invariant) {
        state.projection = OrvPushProjection() != 0;
        glMatrixMode(GL_PROJECTION);
        glLoadMatrixf(toGL(OrvScene::_invariantProjection));
        glMatrixMode(GL_MODELVIEW);
    }
}

static void popStates(const PassState& state) {
    if (state.modelView) glPopMatrix();
    if (state.projection) OrvPopProjection();
    if (state.depthOff) glEnable(GL_DEPTH_TEST);
    if (state.lightOff) glEnable(GL_LIGHTING);
}

// The selection handles, never blended nor lit.
static void drawDragger(const OrvActor* actor, const OrvScene* scene) {
    bool blend = scene->transparencyType != 0;
    bool lit = glIsEnabled(GL_LIGHTING);
    if (blend) glDisable(GL_BLEND);
    if (lit) glDisable(GL_LIGHTING);
    actor->draggerDraw3d(scene);
    if (blend) glEnable(GL_BLEND);
    if (lit) glEnable(GL_LIGHTING);
}

void OrvActor::render3d(const OrvScene* scene) {
    if (!scene || !scene->contextActive) {
        OrvError("Orv3dActor::render3d : Bad current context.\n");
        return;
    }
    if (scene->isOffScreenRenderer() || isHighlighted() || isImmediate() ||
        OrvForceImmediateMode()) {
        scene->immediateDrawing = 1;
        drawImmediate(scene);
    } else {
        scene->immediateDrawing = 0;
        drawStructure(scene);
    }
}

void OrvActor::drawImmediate(const OrvScene* scene) {
    // Faces drawn one by one are culled by hand, in the actor's own space.
    OrvPushRenderFace(scene);
    scene->renderInvariant = isInvariant();
    scene->renderMatrix = to3dWorld();
    scene->renderFaceFlag = 1;
    PassState state;
    refuseStates(this, scene, state);
    pushMatrices(this, state);
    if (!drawInteractive(scene)) {
        if (isSelected()) drawDragger(this, scene);
        unsigned long texture = scene->textureOn_;
        scene->textureOn_ = isTextureOn();
        draw3d(scene);
        scene->textureOn_ = texture;
    }
    popStates(state);
    OrvPopRenderFace(scene);
}

void OrvActor::drawStructure(const OrvScene* scene) {
    drawImmediate(scene);
}

unsigned long OrvActor::drawInteractive(const OrvScene* scene) {
    if (scene->interactiveMode & 3) return 0;
    if (!(scene->interactiveMode & (isInvariant() ? 16 : 32))) return 0;
    bool lit = isLightOn() != 0;
    bool lighting = lit && glIsEnabled(GL_LIGHTING), depth = lit && glIsEnabled(GL_DEPTH_TEST);
    if (lighting) glDisable(GL_LIGHTING);
    if (depth) glDisable(GL_DEPTH_TEST);
    scene->box(scene->getMakeUp(), bbox3d(0));
    if (lighting) glEnable(GL_LIGHTING);
    if (depth) glEnable(GL_DEPTH_TEST);
    return 1;
}

void OrvActor::drawFocus3d(const OrvScene* scene, const OrvMakeUp* look) const {
    scene->box(look, bbox3d(1));
}

void OrvActor::draggerDraw3d(const OrvScene*) const {}

// ---------------------------------------------------------------------------
// Display lists of 3D actors
// ---------------------------------------------------------------------------

Orv3dActor::~Orv3dActor() {
    if (displayList) glDeleteLists(displayList, 1);
    delete matrix;
}

void Orv3dActor::takeAPicture() {
    if (!displayList) return;
    beginDrawing(1);
    glDeleteLists(displayList, 1);
    displayList = 0;
    flushDrawing(1);
}

void Orv3dActor::drawStructure(const OrvScene* scene) {
    // Faces in a list are drawn from any side the camera takes later: none is
    // culled by hand.
    OrvPushRenderFace(scene);
    scene->renderInvariant = 0;
    scene->renderMatrix = nullptr;
    scene->renderFaceFlag = 0;
    PassState state;
    refuseStates(this, scene, state);
    if (!displayList) {
        // The list must hold the whole look and the shape alone: a full make-up,
        // no interactive boxes, no highlight, and nested actors drawn as they are.
        scene->lastMakeUp = nullptr;
        unsigned long texture = scene->textureOn_;
        scene->textureOn_ = isTextureOn();
        // The mode is the scene's own setting, lent to the compilation only.
        OrvScene* lent = const_cast<OrvScene*>(scene);
        OrvInteractiveMode mode = lent->interactiveMode;
        lent->interactiveMode = 3;
        unsigned long highlighted = isHighlighted();
        removeProperty(OrvHighlightedBit);
        unsigned long forced = OrvForceImmediateMode();
        OrvForceImmediateMode(1);
        GLuint list = glGenLists(1);
        if (list) {
            glNewList(list, GL_COMPILE);
            draw3d(scene);
            glEndList();
            displayList = list;
        }
        OrvForceImmediateMode(forced);
        if (highlighted) setProperty(OrvHighlightedBit);
        lent->interactiveMode = mode;
        scene->textureOn_ = texture;
        scene->lastMakeUp = nullptr;
    }
    // The list holds the shape and not the matrix: a move needs no new list.
    pushMatrices(this, state);
    if (!drawInteractive(scene)) {
        if (isSelected()) drawDragger(this, scene);
        if (displayList) {
            glCallList(displayList);
        } else {
            // No list could be made: the shape is drawn as it is.
            unsigned long texture = scene->textureOn_;
            scene->textureOn_ = isTextureOn();
            draw3d(scene);
            scene->textureOn_ = texture;
        }
    }
    popStates(state);
    OrvPopRenderFace(scene);
    scene->lastMakeUp = nullptr;
}
