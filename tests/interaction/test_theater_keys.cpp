// The theater's accelerators: the list, the 26 default keys typed through XTest on a scene's
// window, and what each does to the scene's camera, the theater's selections and the scene.
#include "../theater/theater_support.h"

#include <typeinfo>

#include "orv/actor3d.h"

// GLBox's face on an actor with a matrix, which copies.
class KeyBox : public Orv3dActor {
public:
    GLBox face;
    KeyBox(OrvDirector* d, const Orv3dVolume& v, unsigned long c) : Orv3dActor(d), face(d, v, c) {}
    KeyBox(const KeyBox& o) : Orv3dActor(o), face(o.face) {}
    OrvActor* copy() const override { return new KeyBox(*this); }
    void draw3d(const OrvScene* s) const override { face.draw3d(s); }
    Orv3dVolume bbox3d(unsigned long world) const override {
        Orv3dVolume v = face.volume;
        if (world && matrix) matrix->apply(v);
        return v;
    }
};

class KeysTest : public TheaterTest {
protected:
    OrvCamera* camera = nullptr;
    KeyBox* a = nullptr;
    void SetUp() override {
        TheaterTest::SetUp();
        if (!director) return;
        theater->installAccelerators(0);
        camera = scene->currentCamera();
        acceleratorsOnly(scene);
        a = keyBox(Orv3dVolume(-0.125f, -0.25f, -0.25f, 0.25f, 0.5f, 0.5f), 0xff0000);
    }
    KeyBox* keyBox(const Orv3dVolume& v, unsigned long color, unsigned layer = 0) {
        KeyBox* b = new KeyBox(director, v, color);
        theater->append(b, layer);
        return b;
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
    // A key typed with the pointer in the middle of the scene.
    void key(unsigned long keysym, unsigned long modifier = XK_Control_L, OrvScene* s = nullptr) {
        s = s ? s : scene;
        OrvTestMoveIn(dpy, s->drawingCanvas(), 150, 100);
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

TEST_F(KeysTest, TheTwentySixInOrder) {
    const std::pair<unsigned short, const std::type_info*> table[] = {
        {26, &typeid(OrvZoomAccelerator)},          {21, &typeid(OrvZoomAccelerator)},
        {551, &typeid(OrvTranslateAccelerator)},    {550, &typeid(OrvTranslateAccelerator)},
        {553, &typeid(OrvTranslateAccelerator)},    {552, &typeid(OrvTranslateAccelerator)},
        {15, &typeid(OrvIdentityAccelerator)},      {4, &typeid(OrvDuplicateAccelerator)},
        {6, &typeid(OrvFitTransformerAccelerator)}, {18, &typeid(OrvRotateAccelerator)},
        {1, &typeid(OrvSelectAccelerator)},         {2, &typeid(OrvSelectAccelerator)},
        {127, &typeid(OrvDeleteAccelerator)},       {24, &typeid(OrvCutAccelerator)},
        {3, &typeid(OrvCopyAccelerator)},           {22, &typeid(OrvPasteAccelerator)},
        {14, &typeid(OrvCountAccelerator)},         {11, &typeid(OrvUseDoubleBufferingAccelerator)},
        {49, &typeid(OrvLooakAtAccelerator)},       {50, &typeid(OrvLooakAtAccelerator)},
        {51, &typeid(OrvLooakAtAccelerator)},       {52, &typeid(OrvLooakAtAccelerator)},
        {53, &typeid(OrvLooakAtAccelerator)},       {54, &typeid(OrvLooakAtAccelerator)},
        {20, &typeid(OrvTrackBallAccelerator)},     {12, &typeid(OrvSelectableAccelerator)}};
    ASSERT_EQ(26u, theater->accelerators.length());
    unsigned i = 0;
    for (OrvLink* l = theater->accelerators.first; l; l = l->next, i++) {
        OrvAccelerator* acc = (OrvAccelerator*)l->value;
        EXPECT_EQ(table[i].first, acc->key) << i;
        EXPECT_TRUE(typeid(*acc) == *table[i].second && acc->type == OrvKeyDown && !acc->modifiers)
            << i;
    }
}

// Each camera key from the default camera (identity from another one): the matrices exactly,
// and the picture drawn through them.
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
        expectSquare(scene, a->face.volume, 0xff0000);
    }
    // In perspective the fit keeps the near plane in front of the eye: half a radius.
    camera->perspective(Orv3dRect(-1, -1, 2, 2), 1, 20);
    key(XK_f);
    EXPECT_TRUE(camera->isPerspective());
    EXPECT_EQ(0.1875f, camera->nearDistance());
}

// Digits 1 to 6: the eye a largest side (0.5) away from the contents' box, and the up.
TEST_F(KeysTest, DigitsLookFromTheSixSides) {
    const struct {
        unsigned long keysym;
        Orv3dPoint eye;
        Orv3dVector up;
    } rows[] = {{XK_1, {0, 0, 0.75f}, {0, 1, 0}},   {XK_2, {0, 0, -0.75f}, {0, 1, 0}},
                {XK_3, {0, 0.75f, 0}, {0, 0, 1}},   {XK_4, {0, -0.75f, 0}, {0, 0, 1}},
                {XK_5, {-0.625f, 0, 0}, {0, 1, 0}}, {XK_6, {0.625f, 0, 0}, {0, 1, 0}}};
    for (const auto& row : rows) {
        key(row.keysym, 0);
        Orv3dPoint eye = camera->position();
        Orv3dVector up = camera->lookUp();
        EXPECT_EQ(
            std::vector<float>({row.eye.x, row.eye.y, row.eye.z, row.up.x, row.up.y, row.up.z}),
            std::vector<float>({eye.x, eye.y, eye.z, up.x, up.y, up.z}))
            << XKeysymToString(row.keysym);
    }
}

TEST_F(KeysTest, SelectDuplicateDeleteAndTheFlags) {
    KeyBox* b = keyBox(Orv3dVolume(0.375f, 0.25f, 0, 0.25f, 0.25f, 0.1f), 0x0000ff, 1);
    key(XK_a);
    EXPECT_TRUE(a->isSelected() && b->isSelected());
    key(XK_b);
    EXPECT_FALSE(a->isSelected() || b->isSelected());

    // Copies a tenth of the selections' box (0.75 by 0.75) further, in layer 0, selected.
    a->setSelected(1), b->setSelected(1);
    key(XK_d);
    unsigned n = 0;
    OrvActor** copies = theater->selections(n);
    ASSERT_EQ(2u, n);
    EXPECT_EQ(4u, theater->cardinal());
    EXPECT_FALSE(a->isSelected() || b->isSelected());
    const float step = 0.75f / 10;
    for (unsigned i = 0; i < n; i++) {
        EXPECT_EQ(0u, copies[i]->getLayer());
        ASSERT_TRUE(copies[i] != a && copies[i] != b && copies[i]->to3dWorld());
        EXPECT_EQ(Rows({1, 0, 0, step, 0, 1, 0, step, 0, 0, 1, 0, 0, 0, 0, 1}),
                  *copies[i]->to3dWorld());
    }
    // Control-T toggles the trackball selection of the selected copies only.
    key(XK_t);
    EXPECT_TRUE(copies[0]->trackBallSelection() && !a->trackBallSelection());
    delete[] copies;
    key(XK_Delete, 0);
    EXPECT_EQ(2u, theater->cardinal());
    EXPECT_EQ(nullptr, theater->selections(n));

    std::string report = OrvTestOutput([&] { key(XK_n); });
    EXPECT_EQ(0u, report.find("Found 2 objects in theater ...\nMakeUp's hash table report : "))
        << report;
    // Control-K and control-L toggle the double buffering and the selectability in the scene.
    for (unsigned long on : {0ul, 1ul}) {
        key(XK_k);
        EXPECT_EQ(on, scene->doubleBuffer);
        expectSquare(scene, a->face.volume, 0xff0000);
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
    EXPECT_EQ(std::make_pair(1, 1), std::make_pair(any, plain));
    delete second;
    delete first;
    EXPECT_EQ(std::make_pair(26u, 0u),
              std::make_pair(theater->accelerators.length(), stage->accelerators.length()));
    theater->deleteAccelerators(OrvKeyDown, 49, 0);
    EXPECT_EQ(25u, theater->accelerators.length());
    theater->deleteAccelerators(OrvKeyDown, 0, 0);
    EXPECT_EQ(0u, theater->accelerators.length());
    theater->add(first = new Counting3d(&any, 0));
    theater->removeAccelerators(0);
    EXPECT_EQ(0u, theater->accelerators.length());
    delete first;
}

// Waits for the theater's input routing: the keys reach the accelerators through handleInput.
TEST_F(KeysTest, KeysReachTheAcceleratorsThroughHandleInput) {
    OrvScene* other = newScene(Orv2dRect(330, 30, 160, 200));
    key(XK_z, XK_Control_L, other);
    EXPECT_EQ(2.0f, other->currentCamera()->mapping()(0, 0));
    EXPECT_EQ(1.0f, camera->mapping()(0, 0));
}

// A cube of side 0.5, indexed faces, with a saved form.
static OrvActor* Cube(OrvDirector* d) {
    Orv3dPoint* p = new Orv3dPoint[8];
    for (unsigned i = 0; i < 8; i++)
        p[i] = Orv3dPoint(i & 1 ? 0.5f : 0, i & 2 ? 0.5f : 0, i & 4 ? 0.5f : 0);
    OrvShare* points = new OrvShare(8, p, 0, 1);
    points->lock();
    OrvFaceSet* set = new OrvFaceSet(0);
    const unsigned quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                  {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const auto& q : quads) {
        OrvFace* f = new OrvFace;
        f->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
        f->setIndex(0, 4, q, nullptr, nullptr, nullptr, nullptr);
        set->add(f);
    }
    points->unLock();
    return new Orv3dActorFaceSet(d, set);
}

// Waits for the theater's clipboard: control-C here, control-V in a theater of another
// director on the same display, control-X here.
TEST_F(KeysTest, CopyPasteAcrossDirectorsAndCut) {
    OrvActor* cube = Cube(director);
    theater->append(cube, 0);
    cube->setSelected(1);
    key(XK_c);
    OrvDirector* second = new OrvDirector("keys2", nullptr, 0, nullptr);
    OrvStage* farStage = new OrvStage(second, Orv2dRect(0, 300, 340, 240), "far", 0, 1);
    OrvTheater* far = new OrvTheater(second);
    far->installAccelerators(0);
    OrvScene* farScene = new OrvScene(second, Orv2dRect(20, 20, 300, 200), 1, nullptr);
    far->connect(farScene, farStage, 0);
    EXPECT_TRUE(OrvTestWaitViewable(dpy, farScene->drawingCanvas()));
    acceleratorsOnly(farScene);
    key(XK_v, XK_Control_L, farScene);
    unsigned n = 0;
    OrvActor** pasted = far->objects(n);
    ASSERT_EQ(1u, n);
    EXPECT_STREQ("Orv3dActorFaceSet", pasted[0]->className());
    EXPECT_EQ(cube->bbox3d(0), pasted[0]->bbox3d(0));
    // Its box's centre under the pointer.
    Orv3dPoint centre = toWindow(farScene, pasted[0]->bbox3d(1).center());
    EXPECT_NEAR(150, centre.x, 1);
    EXPECT_NEAR(100, centre.y, 1);
    delete[] pasted;
    key(XK_x);
    EXPECT_EQ(1u, theater->cardinal());
    delete far;
    delete farStage;
    delete second;
}
