// Scenes: the world matrices and the porthole, rays under pixels, the picture
// through cameras, the frame moved and resized on its stage, top scenes,
// scroll bars over the camera, and the meter's messages.
#include "theater_support.h"

#include <random>

namespace {

void expectMatrix(const Orv3dMatrix& m, std::initializer_list<double> rows, const char* what) {
    for (int i = 0; i < 16; i++)
        EXPECT_NEAR(rows.begin()[i], m.m[i], 1e-6 * std::max(1.0, std::fabs(rows.begin()[i])))
            << what << " element " << i;
}

// The distance from a point to the line through `origin` along `direction`.
double distance(const Orv3dPoint& p, const Orv3dPoint& origin, Orv3dVector direction) {
    direction.normalize();
    return Orv3dVector(origin, p).cross(direction).length();
}

}  // namespace

// A 300x200 window: with the ratio kept the viewport is the centred 200x200 square.
TEST_F(TheaterTest, WorldMatricesOfAWindow) {
    struct Case {
        unsigned long ratio;
        std::initializer_list<double> worldToScene, sceneToWorld, viewportInverse;
    } cases[] = {
        {1,
         {100, 0, 0, 150, 0, -100, 0, 100, 0, 0, -0.05, 0.55, 0, 0, 0, 1},
         {0.01, 0, 0, -1.5, 0, -0.01, 0, 1, 0, 0, -20, 11, 0, 0, 0, 1},
         {0.01, 0, 0, -1.5, 0, -0.01, 0, 1, 0, 0, 2, -1, 0, 0, 0, 1}},
        {0,
         {150, 0, 0, 150, 0, -100, 0, 100, 0, 0, -0.05, 0.55, 0, 0, 0, 1},
         {1 / 150.0, 0, 0, -1, 0, -0.01, 0, 1, 0, 0, -20, 11, 0, 0, 0, 1},
         {1 / 150.0, 0, 0, -1, 0, -0.01, 0, 1, 0, 0, 2, -1, 0, 0, 0, 1}},
    };
    for (const Case& c : cases) {
        scene->currentCamera()->keepRatio(c.ratio);
        expectMatrix(scene->worldToScene, c.worldToScene, "worldToScene");
        expectMatrix(scene->sceneToWorld, c.sceneToWorld, "sceneToWorld");
        expectMatrix(scene->viewportInverse, c.viewportInverse, "viewportInverse");
        expectMatrix(scene->invariantToScene,
                     {c.ratio ? 100. : 150., 0, 0, 150, 0, 100, 0, 100, 0, 0, 0.5, 0.5, 0, 0, 0, 1},
                     "invariantToScene");
        EXPECT_EQ(std::make_tuple(Orv3dPoint(0, 0, 11), Orv3dPoint(150, 100, 0)),
                  std::make_tuple(scene->centre, scene->centreCopy));
    }
    // A viewport without width leaves the matrices as they were.
    Orv3dMatrix before = scene->worldToScene;
    EXPECT_EQ("OrvScene::computeWorldScene : Bad viewport.\n",
              OrvTestOutput([&] { EXPECT_EQ(1u, scene->porthole(Orv2dRect(0, 0, 0, 200))); }));
    EXPECT_TRUE(before == scene->worldToScene);
}

TEST_F(TheaterTest, PortholeTakesTheSizeOnly) {
    struct Case {
        Orv2dRect rect;
        unsigned long result;
        Orv3dRect porthole;
        const char* message;
    } cases[] = {
        {Orv2dRect(40, 70, 150, 100), 1, Orv3dRect(0, 0.5f, 0.5f, 0.5f), ""},
        {Orv2dRect(0, 0, 300, 200), 1, Orv3dRect(0, 0, 1, 1), ""},
        {Orv2dRect(0, 0, 400, 300), 0, Orv3dRect(0, 0, 1, 1),
         "OrvScene::porthole : Porthole outbound [0..1]  (x=0.000000, y=-0.500000, w=1.333333, "
         "h=1.500000) \n"},
    };
    for (const Case& c : cases) {
        unsigned long result = 9;
        std::string said = OrvTestOutput([&] { result = scene->porthole(c.rect); });
        EXPECT_EQ(std::make_tuple(c.message, c.result, c.porthole),
                  std::make_tuple(said, result, scene->porthole_));
    }
}

// Every ray passes through the world point that the pixel shows, at any depth.
TEST_F(TheaterTest, RaysPassThroughThePointsOfTheirPixels) {
    OrvCamera* camera = scene->currentCamera();
    camera->lookAt(Orv3dPoint(2, 3, 5), Orv3dPoint(0.5f, 0, 0), Orv3dVector(0, 1, 0));
    std::mt19937 random(21);
    for (int kind = 0; kind < 3; kind++) {
        if (kind == 1) camera->orthographic(Orv3dRect(-2, -1.5f, 4, 3), 0.5f, 20);
        if (kind == 2) camera->perspective(Orv3dRect(-0.6f, -0.4f, 1.2f, 0.8f), 1, 30);
        for (int i = 0; i < 20; i++) {
            long x = (long)(random() % 300), y = (long)(random() % 200);
            Orv3dPoint origin;
            Orv3dVector direction;
            camera->spawnRay(x, y, origin, direction, kind == 0);
            for (float depth : {0.2f, 0.7f}) {
                Orv3dPoint world((float)x, (float)y, depth);
                (kind == 0 ? scene->sceneToInvariant : scene->sceneToWorld).apply(world);
                EXPECT_LT(distance(world, origin, direction), 1e-4)
                    << "kind " << kind << " pixel " << x << "," << y;
            }
        }
    }
}

// Two scenes of one theater, two cameras: the square lands where each scene's matrix says.
TEST_F(TheaterTest, SquareLandsWhereTheMatricesSay) {
    scene->porthole(Orv2dRect(0, 0, 150, 200));
    OrvScene* second = newScene(Orv2dRect(330, 30, 160, 120));
    second->currentCamera()->lookAt(Orv3dPoint(1, 1, 4), Orv3dPoint(0.5f, 0.5f, 0),
                                    Orv3dVector(0, 1, 0));
    second->currentCamera()->perspective(40, 1, 1, 10);
    Orv3dVolume unit(-0.6f, -0.4f, 0, 1, 1, 0);
    box(unit, 0xff0000);
    settle();
    expectSquare(scene, unit, 0xff0000);
    expectSquare(second, unit, 0xff0000);
    // A window laid over both and taken away: the exposed parts are drawn again.
    Window cover = XCreateSimpleWindow(dpy, stage->window(), 0, 0, 500, 260, 0, 0, 0xffffff);
    XMapWindow(dpy, cover);
    OrvTestWaitViewable(dpy, cover);
    XDestroyWindow(dpy, cover);
    settle(100);
    expectSquare(scene, unit, 0xff0000);
    expectSquare(second, unit, 0xff0000);
}

TEST_F(TheaterTest, CurrentCameraSwitchedAndRemoved) {
    Orv3dVolume unit(-0.3f, -0.3f, 0, 0.5f, 0.5f, 0);
    box(unit, 0x00ff00);
    OrvCamera wide, moved;
    wide.orthographic(Orv3dRect(-3, -3, 6, 6), -10, 10);
    moved.lookAt(Orv3dPoint(-0.5f, 0, 1), Orv3dPoint(-0.5f, 0, 0), Orv3dVector(0, 1, 0));
    EXPECT_EQ(1u, scene->add(wide));
    EXPECT_EQ(2u, scene->add(moved));
    struct Step {
        std::function<void()> change;
        unsigned index, cardinal;
    } steps[] = {
        {[&] { scene->useCamera(1); }, 1, 3},
        {[&] { scene->useCamera(2); }, 2, 3},
        {[&] { scene->removeCamera(0); }, 2, 3},  // a hole, the index stays
        {[&] { scene->removeCamera(2); }, 1, 3},  // the first one left takes over
        {[&] { EXPECT_EQ(0u, scene->add(moved)); }, 1, 3},
        {[&] { scene->useCamera(2); }, 1, 3},  // a hole is no camera
        {[&] { scene->removeCamera(1); }, 0, 3},
        {[&] { scene->removeCamera(0); }, 0, 1},  // the last one: a default camera
    };
    for (Step& s : steps) {
        s.change();
        EXPECT_EQ(std::make_tuple(s.index, s.cardinal),
                  std::make_tuple(scene->currentCameraIndex, scene->cameraCardinal()));
        settle(10);
        expectSquare(scene, unit, 0x00ff00);
    }
    EXPECT_EQ(Orv3dPoint(0, 0, 1), scene->currentCamera()->position());
    EXPECT_EQ(scene, scene->currentCamera()->scene);
}

// Dragged by the title, then by the corner: the window follows and shows the new porthole.
TEST_F(TheaterTest, FrameMovedAndResizedByItsRole) {
    Orv3dVolume unit(0, 0, 0, 0.5f, 0.5f, 0);
    box(unit, 0x0000ff);
    scene->showDecoration(7);
    scene->showTitleBar("scene", 22);
    settle();
    Orv2dRect before = scene->interior->bbox();
    drag(150, 30 + 7 + 11, 140, 30 + 7 + 11 - 25);
    EXPECT_EQ(Orv2dRect(before.x - 10, before.y - 25, before.w, before.h), scene->interior->bbox());
    expectSquare(scene, unit, 0x0000ff);
    before = scene->interior->bbox();
    drag(20 - 10 + 300 - 2, 30 - 25 + 200 - 2, 20 - 10 + 300 - 42, 30 - 25 + 200 - 32);
    EXPECT_EQ(Orv2dRect(before.x, before.y, before.w - 40, before.h - 30), scene->interior->bbox());
    int x, y;
    unsigned w, h, border, depth;
    Window root;
    XGetGeometry(dpy, scene->drawingCanvas(), &root, &x, &y, &w, &h, &border, &depth);
    EXPECT_EQ(scene->interior->bbox(), Orv2dRect(x, y, w, h));
    expectSquare(scene, unit, 0x0000ff);
}

TEST_F(TheaterTest, TopScenesOfFourForms) {
    Window parent = XCreateSimpleWindow(dpy, DefaultRootWindow(dpy), 0, 0, 200, 160, 0, 0, 0);
    XMapWindow(dpy, parent);
    OrvTopScene* tops[] = {new OrvTopScene(director, Orv2dRect(400, 10, 120, 90), "top", 1),
                           new OrvTopScene(director, (void*)parent, Orv2dRect(5, 6, 110, 80), 1),
                           new OrvTopScene(director, (void*)parent), new OrvTopScene(*scene)};
    const unsigned sizes[][2] = {{120, 90}, {110, 80}, {200, 160}, {300, 200}};
    for (int i = 0; i < 4; i++)
        EXPECT_EQ(std::make_tuple(Orv2dRect(0, 0, sizes[i][0], sizes[i][1]), sizes[i][0],
                                  tops[i]->stage, scene->classInfo()),
                  std::make_tuple(tops[i]->bbox2d(nullptr), (unsigned)tops[i]->stage->width,
                                  tops[i]->getStage(), tops[i]->classInfo()));
    char* title = nullptr;
    XFetchName(dpy, tops[3]->stage->window(), &title);
    EXPECT_STREQ("NoName", title);
    XFree(title);
    tops[0]->setBackground(director->color("black"));
    theater->connect(tops[0]);
    EXPECT_TRUE(OrvTestWaitViewable(dpy, tops[0]->drawingCanvas()));
    Orv3dVolume unit(-0.5f, -0.5f, 0, 1, 1, 0);
    box(unit, 0xffff00);
    settle();
    expectSquare(tops[0], unit, 0xffff00);
    for (OrvTopScene* t : tops) delete t;
    XDestroyWindow(dpy, parent);
}

// The thumbs cover the window's share of the contents; dragging one pans by the value moved.
TEST_F(TheaterTest, ScrollBarsPanTheCamera) {
    Orv3dVolume wide(-3, -0.25f, 0, 6, 0.5f, 0);
    box(wide, 0xff00ff);
    scene->showScrollBars(1, 1, 8, 1, 16);
    settle();
    OrvScrollBar* bar = scene->hScrollBar;
    Orv2dRect mapped = theater->contentsBBoxMapped(scene);
    // The 284x184 interior shows the middle 184x184 of the camera's square.
    EXPECT_EQ(Orv2dRect(-134, 69, 552, 46), mapped);
    EXPECT_EQ(std::make_tuple((long)mapped.w, 134l, (long)scene->interior->width, 184l),
              std::make_tuple((long)bar->max, (long)bar->value, (long)bar->sliderSize,
                              (long)scene->vScrollBar->max));
    Orv3dVolume marker(0.5f, 0.3f, 0, 0.2f, 0.2f, 0);
    box(marker, 0x00ff00);
    Orv2dRect first, second, trough, thumb;
    bar->computeBBox(first, second, trough, thumb, nullptr);
    int y = thumb.y + (int)thumb.h / 2, x = thumb.x + (int)thumb.w / 2;
    Orv3dPoint before = toWindow(scene, Orv3dPoint(0, 0, 0));
    drag(x, y, x + 30, y);
    long moved = bar->value - 134;
    EXPECT_GT(moved, 30);
    EXPECT_NEAR(before.x - moved, toWindow(scene, Orv3dPoint(0, 0, 0)).x, 0.01);
    expectSquare(scene, marker, 0x00ff00);
    // The camera put back brings the bar back.
    scene->currentCamera()->lookAt(Orv3dPoint(0, 0, 1), Orv3dPoint(0, 0, 0), Orv3dVector(0, 1, 0));
    EXPECT_EQ(134, bar->value);
}

TEST_F(TheaterTest, MeterMessages) {
    std::string text = OrvTestOutput([&] {
        scene->startPerformanceMeter();
        EXPECT_EQ(1u, scene->startToCountPerformanceMeter());
        theater->drawAll(scene, nullptr, 1);
        EXPECT_EQ(0u, scene->startToCountPerformanceMeter());
        EXPECT_EQ(0u, scene->trianglesPerFrame() + scene->framesPerSecond() +
                          scene->trianglesPerSecond());
        scene->stopPerformanceMeter();
    });
    EXPECT_EQ("## OrvScene::trianglesPerFrame: Not implemented yet.\n"
              "## OrvScene::trianglesPerFrame: Not implemented yet.\n"
              "## OrvScene::trianglesPerSecond: Not implemented yet.\n"
              "--->>>>> Triangles : 0 \n",
              text);
    EXPECT_EQ(0u, scene->isPerformanceMeterStarted());
}
