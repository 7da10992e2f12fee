// The theater's accelerators: the list, the 26 default keys typed through XTest on a scene's
// window, and what each does to the scene's camera, the theater's selections and the scene.
#include "../theater/theater_support.h"

#include "orv/actor3d.h"

// A box of six faces over the volume's corners, with a saved form.
static OrvActor* Box(OrvDirector* d, const Orv3dVolume& v) {
    std::vector<Orv3dPoint> p;
    for (unsigned i = 0; i < 8; i++)
        p.emplace_back(v.x + (i & 1 ? v.w : 0), v.y + (i & 2 ? v.h : 0), v.z + (i & 4 ? v.d : 0));
    return new Orv3dActorFaceSet(
        d, indexedFaces(p, {0, 2, 3, 1, 4, 5, 7, 6, 0, 1, 5, 4, 2, 6, 7, 3, 0, 4, 6, 2, 1, 3, 7, 5},
                        4));
}

class KeysTest : public TheaterTest {
protected:
    OrvCamera* camera = nullptr;
    OrvActor* a = nullptr;
    void SetUp() override {
        TheaterTest::SetUp();
        if (!director) return;
        theater->installAccelerators(0);
        camera = scene->currentCamera();
        acceleratorsOnly(scene);
        theater->append(a = Box(director, Orv3dVolume(-0.125f, -0.25f, -0.25f, 0.25f, 0.5f, 0.5f)));
    }
    // The window's decoded events go to the accelerators alone, as handleInput offers them.
    void acceleratorsOnly(OrvScene* s) {
        OrvAList& calls = s->interior->inputCallbacks;
        while (calls.first) calls.remove(calls.first->key);
        s->interior->onInput(
            [](OrvView* view, const OrvEvent& e, void* t) {
                OrvTheater* owner = (OrvTheater*)t;
                owner->dispatchToAccelerators(owner->sceneOfView(view), e);
            },
            s->getTheater());
    }
    // A key typed with the pointer at (x, y) of the scene, by default its middle.
    void key(unsigned long keysym, unsigned long modifier = XK_Control_L, OrvScene* s = nullptr,
             int x = 150, int y = 100) {
        s = s ? s : scene;
        OrvTestMoveIn(dpy, s->drawingCanvas(), x, y);
        OrvTestFocus(dpy, s->drawingCanvas());
        OrvTestType(dpy, keysym, modifier);
        settle(60);
    }
};

static void PrintTo(const Orv3dMatrix& m, std::ostream* out) {
    for (int i = 0; i < 16; i++) *out << (i % 4 ? " " : i ? " | " : "") << m.m[i];
}

static Orv3dMatrix Rows(std::initializer_list<float> v) {
    return Orv3dMatrix(std::vector<float>(v).data());
}

// What each one does shows in the tests below.
TEST_F(KeysTest, TheTwentySixInOrder) {
    const unsigned short keys[] = {26, 21, 551, 550, 553, 552, 15, 4,  6,  18, 1,  2,  127,
                                   24, 3,  22,  14,  11,  49,  50, 51, 52, 53, 54, 20, 12};
    ASSERT_EQ(26u, theater->accelerators.length());
    unsigned i = 0;
    for (OrvLink* l = theater->accelerators.first; l; l = l->next, i++) {
        OrvAccelerator* acc = (OrvAccelerator*)l->value;
        EXPECT_EQ(std::make_tuple(keys[i], OrvKeyDown, 0),
                  std::make_tuple(acc->key, acc->type, (int)acc->modifiers))
            << i;
    }
}

// Each camera key from the default camera (identity from another one): the matrices exactly.
TEST_F(KeysTest, CameraKeysSetTheMatrices) {
    const Orv3dMatrix O0 = Rows({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -1, 0, 0, 0, 1});
    const Orv3dMatrix M0 = Rows({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -0.1f, 0, 0, 0, 0, 1});
    const float t = 2 / 0.75f;
    const struct {
        unsigned long keysym, modifier;
        Orv3dMatrix orientation, mapping;
    } rows[] = {
        {XK_z, XK_Control_L, O0, Rows({2, 0, 0, 0, 0, 2, 0, 0, 0, 0, -0.1f, 0, 0, 0, 0, 1})},
        {XK_u, XK_Control_L, O0, Rows({0.5f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, -0.1f, 0, 0, 0, 0, 1})},
        {XK_Left, 0, Rows({1, 0, 0, -0.25f, 0, 1, 0, 0, 0, 0, 1, -1, 0, 0, 0, 1}), M0},
        {XK_Up, 0, Rows({1, 0, 0, 0, 0, 1, 0, 0.25f, 0, 0, 1, -1, 0, 0, 0, 1}), M0},
        {XK_Right, 0, Rows({1, 0, 0, 0.25f, 0, 1, 0, 0, 0, 0, 1, -1, 0, 0, 0, 1}), M0},
        {XK_Down, 0, Rows({1, 0, 0, 0, 0, 1, 0, -0.25f, 0, 0, 1, -1, 0, 0, 0, 1}), M0},
        {XK_o, XK_Control_L, O0, M0},
        {XK_r, XK_Control_L, Rows({0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, -1, 0, 0, 0, 1}), M0},
        // The box's radius is 0.375: the eye 1.5 radii away, the volume from half a radius.
        {XK_f, XK_Control_L, Rows({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -0.5625f, 0, 0, 0, 1}),
         Rows({t, 0, 0, 0, 0, t, 0, 0, 0, 0, -t, -1.5f, 0, 0, 0, 1})}};
    for (const auto& row : rows) {
        camera->defaultCamera();
        if (row.keysym == XK_o)
            camera->lookAt(Orv3dPoint(3, 2, 1), Orv3dPoint(), Orv3dVector(0, 1, 0));
        key(row.keysym, row.modifier);
        EXPECT_EQ(row.orientation, camera->orientation()) << XKeysymToString(row.keysym);
        EXPECT_EQ(row.mapping, camera->mapping()) << XKeysymToString(row.keysym);
    }
    // In perspective the fit keeps the near plane in front of the eye: half a radius.
    camera->perspective(Orv3dRect(-1, -1, 2, 2), 1, 20);
    key(XK_f);
    EXPECT_EQ(std::make_tuple(1ul, 0.1875f),
              std::make_tuple(camera->isPerspective(), camera->nearDistance()));
    // A scene left to the theater's own routing: its keys reach the accelerators through
    // handleInput, and only its camera moves.
    const Orv3dMatrix mapping = camera->mapping();
    OrvScene* other = newScene(Orv2dRect(330, 30, 160, 200));
    key(XK_z, XK_Control_L, other);
    EXPECT_EQ(2.0f, other->currentCamera()->mapping()(0, 0));
    EXPECT_EQ(mapping, camera->mapping());
}

// Digits 1 to 6: the eye a largest side (0.5) away from the contents' box, and the up.
TEST_F(KeysTest, DigitsLookFromTheSixSides) {
    const std::vector<float> rows[] = {{0, 0, 0.75f, 0, 1, 0},   {0, 0, -0.75f, 0, 1, 0},
                                       {0, 0.75f, 0, 0, 0, 1},   {0, -0.75f, 0, 0, 0, 1},
                                       {-0.625f, 0, 0, 0, 1, 0}, {0.625f, 0, 0, 0, 1, 0}};
    for (int i = 0; i < 6; i++) {
        key(XK_1 + i, 0);
        Orv3dPoint eye = camera->position();
        Orv3dVector up = camera->lookUp();
        EXPECT_EQ(rows[i], std::vector<float>({eye.x, eye.y, eye.z, up.x, up.y, up.z})) << i + 1;
    }
}

TEST_F(KeysTest, SelectDuplicateDeleteCountAndTheToggles) {
    OrvActor* b = Box(director, Orv3dVolume(0.375f, 0.25f, 0, 0.25f, 0.25f, 0.1f));
    theater->append(b, 1);
    auto both = [&] { return std::make_tuple(a->isSelected() != 0, b->isSelected() != 0); };
    key(XK_a);
    EXPECT_EQ(std::make_tuple(true, true), both());
    key(XK_b);
    EXPECT_EQ(std::make_tuple(false, false), both());
    // Copies a tenth of the selections' box (0.75 by 0.75) further, in layer 0, selected.
    a->setSelected(1), b->setSelected(1);
    key(XK_d);
    unsigned n = 0;
    OrvActor** copies = theater->selections(n);
    ASSERT_EQ(2u, n);
    EXPECT_EQ(std::make_tuple(4u, std::make_tuple(false, false)),
              std::make_tuple(theater->cardinal(), both()));
    const float step = 0.75f / 10;
    for (unsigned i = 0; i < n; i++) {
        ASSERT_TRUE(copies[i] != a && copies[i] != b && copies[i]->to3dWorld());
        EXPECT_EQ(0u, copies[i]->getLayer());
        EXPECT_EQ(Rows({1, 0, 0, step, 0, 1, 0, step, 0, 0, 1, 0, 0, 0, 0, 1}),
                  *copies[i]->to3dWorld());
    }
    // Control-T toggles the trackball selection of the selected copies only.
    key(XK_t);
    EXPECT_EQ(std::make_tuple(true, false),
              std::make_tuple(copies[0]->trackBallSelection() != 0, a->trackBallSelection() != 0));
    delete[] copies;
    key(XK_Delete, 0);
    EXPECT_EQ(2u, theater->cardinal());
    EXPECT_EQ(nullptr, theater->selections(n));
    std::string report = OrvTestOutput([&] { key(XK_n); });
    EXPECT_EQ(0u, report.find("Found 2 objects in theater ...\nMakeUp's hash table report : "))
        << report;
    // Control-K toggles the double buffering, control-L the selectability in the scene.
    for (unsigned long on : {0ul, 1ul}) {
        key(XK_k);
        EXPECT_EQ(std::make_tuple(on, on),
                  std::make_tuple(scene->doubleBuffer, theater->isSelectable(scene)));
        key(XK_l);
        EXPECT_EQ(1 - on, theater->isSelectable(scene));
    }
}

// Offered events: counts them and declines.
class Counting3d : public OrvAccelerator {
public:
    int* calls;
    Counting3d(int* c, unsigned short mods) : OrvAccelerator(OrvKeyDown, 'q', mods), calls(c) {}
    int input3d(OrvTheater*, OrvScene*, const OrvEvent&) override { return ++*calls, 0; }
};

TEST_F(KeysTest, FirstMatchTakesTheEventAndDeletedAcceleratorsLeave) {
    OrvEvent e;
    memset(&e, 0, sizeof e);
    e.type = OrvKeyDown, e.key = 'q', e.modifiers = 1;
    int any = 0, plain = 0;
    Counting3d* first = new Counting3d(&any, OrvAnyModifiers);
    Counting3d* second = new Counting3d(&plain, 0);
    theater->add(first), theater->add(second), stage->add(first);
    EXPECT_EQ(1, theater->dispatchToAccelerators(scene, e));
    theater->remove(first);
    EXPECT_EQ(0, theater->dispatchToAccelerators(scene, e));
    e.modifiers = 0;
    EXPECT_EQ(1, theater->dispatchToAccelerators(scene, e));
    EXPECT_EQ(std::make_tuple(1, 1), std::make_tuple(any, plain));
    delete second;
    delete first;
    EXPECT_EQ(std::make_tuple(26u, 0u),
              std::make_tuple(theater->accelerators.length(), stage->accelerators.length()));
    theater->deleteAccelerators(OrvKeyDown, 49, 0);
    EXPECT_EQ(25u, theater->accelerators.length());
    theater->deleteAccelerators(OrvKeyDown, 0, 0);
    theater->add(first = new Counting3d(&any, 0));
    theater->removeAccelerators(0);
    EXPECT_EQ(0u, theater->accelerators.length());
    delete first;
}

// Waits for the theater's clipboard: control-C here, control-V in a theater of another
// director on the same display (the box's centre under the pointer, off the middle), control-X
// here.
TEST_F(KeysTest, CopyPasteAcrossDirectorsAndCut) {
    a->setSelected(1);
    key(XK_c);
    EXPECT_EQ(1u, theater->cardinal());  // copied, not cut
    OrvDirector* second = new OrvDirector("keys2", nullptr, 0, nullptr);
    OrvStage* farStage = new OrvStage(second, Orv2dRect(0, 300, 340, 240), "far", 0, 1);
    OrvTheater* far = new OrvTheater(second);
    far->installAccelerators(0);
    OrvScene* farScene = new OrvScene(second, Orv2dRect(20, 20, 300, 200), 1, nullptr);
    far->connect(farScene, farStage, 0);
    EXPECT_TRUE(OrvTestWaitViewable(dpy, farScene->drawingCanvas()));
    acceleratorsOnly(farScene);
    key(XK_v, XK_Control_L, farScene, 200, 60);
    OrvActor* pasted = far->cardinal() == 1 ? far->layer(0)->object(0) : nullptr;
    ASSERT_NE(nullptr, pasted);
    EXPECT_EQ(std::string("Orv3dActorFaceSet") + " " + std::to_string(a->bbox3d(0).w),
              std::string(pasted->className()) + " " + std::to_string(pasted->bbox3d(0).w));
    Orv3dPoint centre = toWindow(farScene, pasted->bbox3d(1).center());
    EXPECT_TRUE(fabs(centre.x - 200) <= 1 && fabs(centre.y - 60) <= 1)
        << centre.x << "," << centre.y;
    key(XK_x);
    EXPECT_EQ(0u, theater->cardinal());
    delete far;
    delete farStage;
    delete second;
}
