// The theater's GL: the focus box, drawn over a frame without light.
#include "orv/theater.h"

#include "orv/actor.h"
#include "orv/scene.h"

#include <GL/gl.h>

void OrvTheater::drawFocus(OrvScene* scene) {
    if (!focus || !scene || !scene->contextActive) return;
    glDisable(GL_LIGHTING);
    unsigned long invariant = focus->isInvariant();
    if (invariant) {
        static float columns[16];
        OrvPushProjection();
        glMatrixMode(GL_PROJECTION);
        OrvScene::_invariantProjection.transpose(columns);
        glLoadMatrixf(columns);
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glLoadIdentity();
    }
    focus->drawFocus3d(scene, scene->focusMakeUp_);
    if (invariant) {
        glPopMatrix();
        OrvPopProjection();
    }
    if (scene->lightAllowed) glEnable(GL_LIGHTING);
}
