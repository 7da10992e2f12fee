// Ghosts: rubber-band feedback on a scene's window. They are drawn by exclusive
// or with the 2D canvas of the window, over what GL put there, so that drawing
// the same ghost twice takes it away. Before a ghost the buffers are made equal,
// so that a later copy of either one leaves no trace of it.
#include "orv/scene.h"

#include "orv/canvas.h"
#include "orv/makeup.h"
#include "orv/view.h"

namespace {

// One ghost drawing: the window's canvas and its exclusive-or make-up, set up on
// construction and put back on destruction. Without a window nothing is drawn.
class _OrvGhostScope_ {
public:
    OrvCanvas* canvas;
    OrvMakeUp* makeUp;

    _OrvGhostScope_(OrvScene* owner, unsigned long clipSet)
        : canvas(nullptr), makeUp(nullptr), scene(owner) {
        OrvView* view = scene->interior;
        if (!scene->drawingCanvas() || !view || !view->ghostMakeUp) return;
        scene->swapForGhost();
        scene->wait();
        canvas = view;
        makeUp = view->ghostMakeUp;
        makeUp->setMode(OrvXorMode);
        makeUp->setOverwrite(1);
        if (!clipSet) {
            Orv2dRegion window(Orv2dRect(0, 0, (uint32_t)view->width, (uint32_t)view->height));
            canvas->setClip(&window);
        }
    }
    ~_OrvGhostScope_() {
        if (!canvas) return;
        canvas->setClip(nullptr);
        makeUp->setMode(OrvCopyMode);
        makeUp->setOverwrite(0);
        scene->wait();
    }
    _OrvGhostScope_(const _OrvGhostScope_&) = delete;
    _OrvGhostScope_& operator=(const _OrvGhostScope_&) = delete;

private:
    OrvScene* scene;
};

}  // namespace

// The canvas is the scene's own window, whose corner is the origin of the points:
// no translation is needed.

void OrvScene::lineGhost(const Orv2dPoint& from, const Orv2dPoint& to, unsigned long clipSet) {
    _OrvGhostScope_ g(this, clipSet);
    if (g.canvas) g.canvas->line(g.makeUp, from, to);
}

void OrvScene::polyLineGhost(unsigned long count, const Orv2dPoint* points, unsigned long clipSet) {
    if (!count || !points) return;
    _OrvGhostScope_ g(this, clipSet);
    if (g.canvas) g.canvas->polyLine(g.makeUp, count, points, 0);
}

void OrvScene::arcGhost(const Orv2dRect& box, float start, float end, unsigned long clipSet) {
    _OrvGhostScope_ g(this, clipSet);
    if (g.canvas) g.canvas->arc(g.makeUp, box, start, end, 0);
}

void OrvScene::stringGhost(const Orv2dPoint& point, const char* text, unsigned long clipSet) {
    if (!text || !*text) return;
    _OrvGhostScope_ g(this, clipSet);
    if (g.canvas) g.canvas->string(g.makeUp, point, text);
}

void OrvScene::bezierGhost(unsigned long count, const Orv2dPoint* points, unsigned long clipSet) {
    if (!count || !points) return;
    _OrvGhostScope_ g(this, clipSet);
    if (g.canvas) g.canvas->bezier(g.makeUp, count, points, 0);
}

void OrvScene::rectangleGhost(const Orv2dRect& box, unsigned long clipSet) {
    _OrvGhostScope_ g(this, clipSet);
    if (g.canvas) g.canvas->rectangle(g.makeUp, box, 0);
}

void OrvScene::boxGhost(const Orv2dPoint* c, unsigned long clipSet) {
    if (!c) return;
    _OrvGhostScope_ g(this, clipSet);
    if (!g.canvas) return;
    // Which edges show is read from where the far corner 4 lies against the near corner 0.
    const int nearFace[] = {0, 3, 2, 1, 0};
    const int above[] = {4, 1, 2, 7, 4}, aboveLines[] = {5, 6, 0, 3};
    const int below[] = {0, 5, 6, 3, 0}, belowLines[] = {4, 7, 1, 2};
    const int both[] = {0, 1, 2, 3, 0, 4, 5, 6, 7, 4}, bothLines[] = {3, 7, 2, 6, 1, 5};
    const int* loop = both;
    const int* lines = bothLines;
    unsigned loopCount = 10, lineCount = 3;
    if (c[4].x == c[0].x && c[4].y == c[0].y) {
        loop = nearFace;
        loopCount = 5;
        lineCount = 0;
    } else if (c[4].x == c[0].x && c[0].y < c[4].y) {
        loop = above;
        lines = aboveLines;
        loopCount = 5;
        lineCount = 2;
    } else if (c[4].x == c[0].x) {
        loop = below;
        lines = belowLines;
        loopCount = 5;
        lineCount = 2;
    }
    Orv2dPoint points[10];
    for (unsigned i = 0; i < loopCount; i++) points[i] = c[loop[i]];
    g.canvas->polyLine(g.makeUp, loopCount, points, 0);
    for (unsigned i = 0; i < lineCount; i++)
        g.canvas->line(g.makeUp, c[lines[2 * i]], c[lines[2 * i + 1]]);
}

void OrvScene::boxGhost(const Orv3dPoint* eight, unsigned long clipSet) {
    if (!eight) return;
    static Orv2dPoint* corners = new Orv2dPoint[8];
    for (int i = 0; i < 8; i++) corners[i] = eight[i].to2dPoint();
    boxGhost(corners, clipSet);
}

void OrvScene::ghostClip(const Orv2dRegion* region) {
    if (!interior) return;
    if (!region || region->isEmpty()) {
        interior->setClip(nullptr);
        return;
    }
    Orv2dRegion box(region->bbox);
    interior->setClip(&box);
}
