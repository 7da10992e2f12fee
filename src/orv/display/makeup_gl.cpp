// The GL side of a make-up: the state a scene's drawing operations draw under.
// The scene remembers the last make-up and line flag, so that a run of
// primitives in one make-up sets the state once.
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/scene.h"

#include <GL/gl.h>

static GLenum faceMode(OrvFaceStyle style) {
    switch (style) {
        case OrvFacePoints:
            return GL_POINT;
        case OrvFaceLines:
            return GL_LINE;
        case OrvFaceFilled:
            return GL_FILL;
    }
    return 0;  // hidden: the mode in force stays
}

static void setFaceMode(GLenum face, OrvFaceStyle style) {
    GLenum mode = faceMode(style);
    if (mode) glPolygonMode(face, mode);
}

static void sendColor(const OrvColor* color) {
    if (color) glColor3f(color->red, color->green, color->blue);
}

// Sends one side's material and keeps the scene's copy of it: colours at
// `slot` (0 front, 4 back), shininess and alpha by side. A plain colour lit
// for a surface shines by itself (emission) over the director's defaults;
// with lines, nothing is sent for it.
static void sendMaterial(const OrvScene* scene, const OrvDirector* director, GLenum face,
                         const OrvColor* color, unsigned long lines, int slot) {
    if (!color) return;
    OrvRGB c[4];  // diffuse, ambient, specular, emissive
    float alpha, shininess;
    if (color->isMaterial()) {
        color->diffuse(c[0].red, c[0].green, c[0].blue);
        color->ambient(c[1].red, c[1].green, c[1].blue);
        color->specular(c[2].red, c[2].green, c[2].blue);
        color->emissive(c[3].red, c[3].green, c[3].blue);
        alpha = color->transparency();
        shininess = color->shininess();
    } else {
        if (lines) return;
        c[0] = OrvRGB(color->red, color->green, color->blue);
        c[1] = director->defaultAmbientColor();
        c[2] = director->defaultSpecularColor();
        c[3] = c[0];
        alpha = 1;
        shininess = director->defaultShininess();
    }
    static const GLenum names[4] = {GL_DIFFUSE, GL_AMBIENT, GL_SPECULAR, GL_EMISSION};
    for (int i = 0; i < 4; i++) {
        float v[4] = {c[i].red, c[i].green, c[i].blue, alpha};
        glMaterialfv(face, names[i], v);
        scene->material[slot + i] = c[i];
    }
    glMaterialf(face, GL_SHININESS, shininess * 128);
    if (slot == 0) {
        scene->frontShininess = shininess;
        scene->frontAlpha = alpha;
    } else {
        scene->backShininess = shininess;
        scene->backAlpha = alpha;
    }
    scene->colorInMaterial = 1;
}

void OrvMakeUp::render(const OrvScene* scene, unsigned long lines) const {
    const OrvMakeUp* m = scene->shadowMakeUp ? scene->shadowMakeUp : this;
    OrvTexture* texture = m->texture();
    if (scene->renderTexture() && texture)
        glEnable(GL_TEXTURE_2D);
    else
        glDisable(GL_TEXTURE_2D);
    unsigned long wire = scene->interactiveMode & OrvInteractiveLines;
    OrvColor* foreground = m->foreground();
    if (scene->lastMakeUp == m && scene->lastMakeUpLines == lines) {
        if (wire) glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        if (lines) sendColor(foreground);
        return;
    }
    scene->lastMakeUp = m;
    scene->lastMakeUpLines = lines;

    OrvFaceStyle front = wire ? (OrvFaceStyle)OrvFaceLines : m->frontStyle();
    OrvFaceStyle back = wire ? (OrvFaceStyle)OrvFaceLines : m->backStyle();
    unsigned long distinguish = m->distinguish();
    if (distinguish) {
        setFaceMode(GL_FRONT, front);
        setFaceMode(GL_BACK, back);
    } else {
        setFaceMode(GL_FRONT_AND_BACK, front);
    }

    OrvLineStyle* style = m->lineStyle();
    if (!style || style->pattern == 0xFFFF) {
        glDisable(GL_LINE_STIPPLE);
    } else {
        glLineStipple(1, style->pattern);
        glEnable(GL_LINE_STIPPLE);
    }
    unsigned short width = m->lineWidth();
    glLineWidth(width < 1 ? 1.0f : (float)width);
    glShadeModel(m->smooth() ? GL_SMOOTH : GL_FLAT);

    switch (m->cull()) {
        case OrvCullBack:
            glCullFace(GL_BACK);
            glEnable(GL_CULL_FACE);
            break;
        case OrvCullFront:
            glCullFace(GL_FRONT);
            glEnable(GL_CULL_FACE);
            break;
        case OrvCullBoth:
            glCullFace(GL_FRONT_AND_BACK);
            glEnable(GL_CULL_FACE);
            break;
        default:
            glDisable(GL_CULL_FACE);
    }

    // Only a 32 by 32 bitmap can be a polygon stipple.
    OrvPattern* pattern = m->pattern();
    if (pattern && pattern->data && pattern->width * pattern->height == 128) {
        glEnable(GL_POLYGON_STIPPLE);
        glPolygonStipple(pattern->data);
    } else {
        glDisable(GL_POLYGON_STIPPLE);
    }

    unsigned long lit = glIsEnabled(GL_LIGHTING);
    if (lit) {
        if (distinguish) {
            sendMaterial(scene, director, GL_FRONT, foreground, lines, 0);
            sendMaterial(scene, director, GL_BACK, m->background(), lines, 4);
            scene->materialTwoSided = 0;
        } else {
            sendMaterial(scene, director, GL_FRONT_AND_BACK, foreground, lines, 0);
            scene->materialTwoSided = 1;
        }
        const OrvRGB& none = director->defaultEmissiveColor();
        scene->emissiveSet =
            scene->material[3] != none || (!scene->materialTwoSided && scene->material[7] != none);
    }
    if (lines || !lit) {
        sendColor(foreground);
        if (foreground)
            scene->material[0] = OrvRGB(foreground->red, foreground->green, foreground->blue);
        scene->colorInMaterial = 0;
    }

    // The texture's own list and matrix come with the texture; without one
    // the texture matrix is the identity.
    if (texture) {
        glMatrixMode(GL_TEXTURE);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
    }
}
