// 3D actors: their box in a window, display lists, invariant actors, the change protocol
// through a theater, and the saved forms of Orv3dActor, Orv3dActorFaceSet and Orv3dShape.
#include "theater_support.h"

#include <cmath>

#include "../scene/vertex_samples.h"

// A locked share holding a copy of the values.
template <class T>
static OrvShare* sampleShare(const std::vector<T>& values) {
    T* array = new T[values.size() ? values.size() : 1];
    for (size_t i = 0; i < values.size(); i++) array[i] = values[i];
    OrvShare* share = new OrvShare((unsigned)values.size(), array, 0, 1);
    share->lock();
    return share;
}

static Orv2dRect projected(const OrvActor* a, const Orv3dMatrix* m, unsigned long grow) {
    Orv2dRegion r;
    a->bboxToScene(r, m, grow);
    return r.bbox;
}

TEST(Actor3dBox, ProjectedBoxCoversTouchedPixelsGrownOnlyWithFlagOne) {
    Orv3dMatrix perspective(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -1, 0), placed;
    placed.scale(2, 2, 2);
    placed.translate(100, 50, 0, 1);
    const struct {
        Orv3dVolume volume;
        const Orv3dMatrix* matrix;
        unsigned long grow;
        Orv2dRect want;
    } rows[] = {
        {Orv3dVolume(10.5f, 20.25f, 0, 30, 10, 5), nullptr, 0, Orv2dRect(10, 20, 31, 11)},
        {Orv3dVolume(10.5f, 20.25f, 0, 30, 10, 5), nullptr, 1, Orv2dRect(8, 18, 35, 15)},
        {Orv3dVolume(10.5f, 20.25f, 0, 30, 10, 5), nullptr, 2, Orv2dRect(10, 20, 31, 11)},
        {Orv3dVolume(0, 0, 0, 10, 10, 0), &placed, 0, Orv2dRect(100, 50, 21, 21)},
        {Orv3dVolume(0, 0, -2, 2, 2, 1), &perspective, 0, Orv2dRect(0, 0, 3, 3)},
        // A corner behind the eye, outside any scene: the largest window there is.
        {Orv3dVolume(0, 0, -1, 2, 2, 2), &perspective, 0, Orv2dRect(0, 0, 32767, 32767)},
    };
    for (const auto& row : rows) {
        BoxActor a(nullptr, row.volume);
        EXPECT_EQ(row.want, projected(&a, row.matrix, row.grow)) << row.volume.z << " " << row.grow;
    }
    BoxActor a(nullptr, Orv3dVolume(10, 10, 0, 10, 10, 0));
    Orv2dRegion around(Orv2dRect(0, 0, 40, 40)), beside(Orv2dRect(15, 0, 40, 40));
    // (9, 21) is within the 2 grown pixels, (7, 15) is not.
    EXPECT_EQ(std::vector<unsigned long>({1, 0, 1, 1, 0}),
              std::vector<unsigned long>(
                  {a.contains3d(Orv2dPoint(9, 21), nullptr),
                   a.contains3d(Orv2dPoint(7, 15), nullptr), a.inside3d(around, nullptr),
                   a.intersects3d(beside, nullptr), a.inside3d(beside, nullptr)}));
}

// ---------------------------------------------------------------------------
// A scene of one theater on a stage
// ---------------------------------------------------------------------------

class Actor3dSceneTest : public TheaterTest {
protected:
    void TearDown() override {
        OrvForceImmediateMode(0);
        TheaterTest::TearDown();
    }
    BoxActor* add(const Orv3dVolume& v, OrvMakeUp* m = nullptr) {
        BoxActor* a = new BoxActor(director, v, m);
        theater->append(a, 0);
        return a;
    }
};

TEST_F(Actor3dSceneTest, DisplayListIsKeptUntilOneOfItsTriggers) {
    OrvColor* blue = director->color("blue");
    OrvCount(blue);  // kept across the rows, whose actors release their make-ups
    auto switched = [&](BoxActor* a) {
        OrvUpdateDisplayListOnMakeUpChanged(0), a->setForeground(blue);
        OrvUpdateDisplayListOnMakeUpChanged(1);
    };
    const struct {
        const char* what;
        std::function<void(BoxActor*)> change;
        int draws;  // during the change and three more frames
    } rows[] = {
        {"turned, selected, focused",
         [](BoxActor* a) {
             for (int i = 0; i < 100; i++)
                 a->rotateY(3.6, 1), a->setSelected(i & 1), a->setFocus(i & 1);
         },
         0},
        {"immediate", [](BoxActor* a) { a->immediate(1); }, 4},
        {"immediate and back", [](BoxActor* a) { a->immediate(1), a->immediate(0); }, 2},
        {"texture", [](BoxActor* a) { a->textureOn(0); }, 1},
        {"make-up, switch on", [&](BoxActor* a) { a->setForeground(blue); }, 1},
        {"make-up, switch off", switched, 0},
        {"forced immediate", [](BoxActor*) { OrvForceImmediateMode(1); }, 3},
        {"highlighted", [](BoxActor* a) { a->allowHighlight(1), a->setHighlighted(1, {}, 1); }, 4},
    };
    for (const auto& row : rows) {
        BoxActor* a = add(Orv3dVolume(-1, -1, 0, 2, 2, 0));
        frame();
        EXPECT_EQ(1, a->draws) << row.what;
        a->draws = 0;
        row.change(a);
        for (int i = 0; i < 3; i++) frame();
        EXPECT_EQ(row.draws, a->draws) << row.what;
        OrvForceImmediateMode(0);
        delete a;
    }
    OrvRelease(blue);
}

TEST_F(Actor3dSceneTest, ChangesReachTheTheaterOnceANest) {
    CountingHook* hook = new CountingHook;
    theater->install(hook);
    BoxActor* a = add(Orv3dVolume(-1, -1, 0, 2, 2, 0));
    frame();
    const struct {
        const char* what;
        std::function<void()> change;
        int frames, contentsCalls;
    } rows[] = {
        {"translate", [&] { a->translate(0.5f, 0, 0, 1); }, 1, 0},
        {"invariant", [&] { a->setInvariant(1); }, 1, 0},
        {"same again", [&] { a->setInvariant(1); }, 0, 0},
        {"hidden", [&] { a->setVisible(0); }, 1, 1},
        {"matrix dropped while hidden", [&] { a->to3dWorld(nullptr); }, 0, 0},
        {"track ball, unselected", [&] { a->trackBallSelection(1); }, 0, 0},
    };
    for (const auto& row : rows) {
        hook->before = hook->contentsCalls = 0;
        row.change();
        EXPECT_EQ(std::make_tuple(row.frames, row.contentsCalls),
                  std::make_tuple(hook->before, hook->contentsCalls))
            << row.what;
    }
    delete a;
    EXPECT_EQ(0u, theater->cardinal());
}

// Invariant actors, drawn through the invariant projection, stay put while the camera turns.
// Without bits 1 and 2, bit 16 draws them and bit 32 the others as their boxes in the scene's
// colour, whether drawn immediately or from a list.
TEST_F(Actor3dSceneTest, InvariantActorsStayPutAndInteractiveModesBoxThem) {
    scene->setForeground(director->color("white"));
    // Invariant space has y downward, so the square turns the other way there: no culling.
    OrvMakeUp* red = director->makeUpCull(paint("red"), 0);
    BoxActor *fixed = add(Orv3dVolume(-0.9f, -0.9f, 0, 0.6f, 0.6f, 0), red),
             *other = add(Orv3dVolume(-0.3f, -0.3f, 0, 0.6f, 0.6f, 0), red);
    fixed->setInvariant(1);
    fixed->immediate(1);
    OrvCamera* camera = scene->currentCamera();
    camera->perspective(30, 1, 1, 100);
    // The mode, those boxed (bit 0 the invariant actor, bit 1 the other), the camera's turn.
    const unsigned long rows[][3] = {{3, 0, 0},  {3, 0, 40},  {16, 1, 40},
                                     {32, 2, 0}, {49, 0, 40}, {48, 3, 0}};
    for (const auto& row : rows) {
        double r = row[2] * M_PI / 180;
        camera->lookAt(Orv3dPoint(5 * sin(r), 0, 5 * cos(r)), Orv3dPoint(0, 0, 0),
                       Orv3dVector(0, 1, 0));
        scene->setInteractiveMode(row[0]);
        frame();
        for (int i = 0; i < 2; i++) {
            bool boxed = row[1] >> i & 1;
            Orv2dRect b = projected(i ? other : fixed,
                                    i ? &scene->worldToScene : &scene->invariantToScene, 0);
            int x = b.x - 3, y = b.y + (int)b.h / 2;
            while (x < b.x + 3 && !pixel(scene, x, y)) x++;  // the first lit pixel of the row
            EXPECT_EQ(std::make_tuple(boxed ? 0xfffffful : 0xff0000ul, boxed ? 0ul : 0xff0000ul),
                      std::make_tuple(pixel(scene, x, y), pixel(scene, x + (int)b.w / 2, y)))
                << row[0] << " " << i;
        }
    }
    // Behind the eye of a scene: that scene's window.
    EXPECT_EQ(Orv2dRect(0, 0, 300, 200),
              projected(add(Orv3dVolume(-1, -1, -10, 2, 2, 20)), &scene->worldToScene, 0));
}

// ---------------------------------------------------------------------------
// Saved forms
// ---------------------------------------------------------------------------

// Every class, with and without matrix, a strip set and a mesh, colours and materials: read
// back whole, the same text again; cut anywhere, the objects before the cut and a message.
TEST_F(XTest, Actor3dSavedFormsReadBackWholeCutOrSpoilt) {
    SampleArrays arrays;
    OrvColor* materials[2] = {director->color("red"), nullptr};
    OrvShare* colors = sampleShare<OrvRGB>({{1, 0, 0}, {0, 0.5f, 1}});
    OrvShare* lengths = sampleShare<unsigned>({4});
    OrvShare* points = sampleShare<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 1}});
    OrvSeries* strip = new OrvTriangleStripSet(lengths);
    strip->setNonIndexed(points, nullptr, nullptr, nullptr, nullptr);
    OrvSeries* mesh = new OrvSeries(OrvQuadMesh, 1, 2);
    mesh->setNonIndexed(arrays.points, nullptr, nullptr, nullptr, nullptr);
    Orv3dActor *bare = new Orv3dActor(director), *turned = new Orv3dActor(director),
               *faces = new Orv3dActorFaceSet(director, compactSample(arrays)),
               *noFaces = new Orv3dActorFaceSet(director, nullptr),
               *plain = new Orv3dShape(director, strip, nullptr, nullptr),
               *shape = new Orv3dShape(director, mesh, colors, materials),
               *noSeries = new Orv3dShape(director, nullptr, nullptr, nullptr);
    for (OrvShare* share : {colors, lengths, points}) share->unLock();
    turned->rotateX(30, 0), turned->translate(1, 2, 3, 1);
    faces->scale(2, 1, 1, 0), plain->rotateZ(90, 0);
    const std::vector<OrvActor*> all = {bare, turned, faces, noFaces, plain, shape, noSeries};
    expectEveryCut(director, all, "Orv3dActor", "");
    expectSpoilt(
        director, saved3d(all),
        {{"matrix3d", "matrix3x", "OrvIStream : bad separator.\n", 1},
         {"colors\t\tNone", "colors\t\tNix", "OrvIStream : OrvShare : Bad key (Nix).\n", 4},
         {"materials\t2", "materials\t3", "Orv3dShape::Orv3dShape : Bad item (materials 3).\n",
          5}});
    for (OrvActor* a : all) delete a;
}
