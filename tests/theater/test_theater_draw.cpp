// The theater's drawing: partial repaints against the threshold, hooks and
// nests, the pixels a partial frame leaves alone, collected regions, the
// orders of the transparency types, and the messages of connect and flush.
#include "theater_support.h"

namespace {

// A colour that lets light through: its actors count as transparent.
class ClearColor : public OrvColor {
public:
    explicit ClearColor(OrvDirector* d) : OrvColor(d, 0.5f, 0.5f, 0.5f, 0) {}
    float transparency() const override { return 0.5f; }
};

// A scene that draws off the screen, for the message of connect.
class OffScene : public OrvScene {
public:
    explicit OffScene(OrvDirector* d) : OrvScene(d, Orv2dRect(0, 0, 50, 50), 1) {}
    unsigned long isOffScreenRenderer() const override { return 1; }
};

}  // namespace

class TheaterDrawTest : public TheaterTest {
protected:
    std::vector<GLBox*> grid;
    CountingHook* hook = nullptr;
    // Twenty 0.3-wide boxes, 0.5 apart, over the middle of the window, and a hook.
    void fill() {
        for (int i = 0; i < 20; i++)
            grid.push_back(
                box(Orv3dVolume(-0.95f + 0.5f * (i % 4), -0.95f + 0.4f * (i / 4), 0, 0.3f, 0.3f, 0),
                    0x808000 + (unsigned long)i * 4));
        hook = new CountingHook;
        theater->install(hook);
        settle();
        reset();
    }
    void reset() {
        for (GLBox* b : grid) b->draws = 0;
        hook->before = hook->copies = 0;
    }
    int drawn() {
        int n = 0;
        for (GLBox* b : grid) n += b->draws > 0;
        return n;
    }
};

// 10 % of the window is scissored, one pixel more repaints all; a hook may ask for all.
TEST_F(TheaterDrawTest, PartialRepaintsAgainstTheThreshold) {
    fill();
    struct Case {
        Orv2dRect rect;
        unsigned long whole, scissored;
        int drawn;
    } cases[] = {
        {Orv2dRect(0, 0, 30, 200), 0, 1, 0},  // 6000 pixels of 60000, left of every box
        {Orv2dRect(0, 0, 31, 200), 0, 0, 20},
        {Orv2dRect(110, 90, 10, 10), 0, 1, 1},
        {Orv2dRect(110, 90, 10, 10), 1, 0, 20},
    };
    for (const Case& c : cases) {
        hook->whole = c.whole;
        theater->beginDrawing();  // as a change of that rectangle would
        theater->invalidate(c.rect);
        theater->flushDrawing(1);
        EXPECT_EQ(std::make_tuple(c.scissored, c.drawn, 1, 1,
                                  c.scissored ? c.rect : Orv2dRect(0, 0, 300, 200)),
                  std::make_tuple(scene->useScissor, drawn(), hook->before, hook->copies,
                                  hook->last.bbox))
            << c.rect.w;
        reset();
    }
}

// A box moved in a theater of many: only the boxes that meet the places it left and took.
TEST_F(TheaterDrawTest, MovedActorRepaintsWhatItMeets) {
    fill();
    theater->beginDrawing();
    theater->beginDrawing();
    grid[0]->moveTo(-0.9f, -0.92f);
    grid[1]->moveTo(-0.4f, -0.92f);
    theater->flushDrawing(1);
    EXPECT_EQ(0, hook->before);
    theater->flushDrawing(1);
    // One scissored frame, the two moved drawn once each.
    EXPECT_EQ(
        std::make_tuple(1, 1u, 2, 2),
        std::make_tuple(hook->before, scene->useScissor, drawn(), grid[0]->draws + grid[1]->draws));
}

// What a partial frame does not cover stays as it was, with or without a back buffer, also
// after whole frames came between partial ones.
TEST_F(TheaterDrawTest, PixelsOutsideThePartialFrameStay) {
    for (unsigned long doubleBuffer : {1ul, 0ul}) {
        OrvScene* s = newScene(Orv2dRect(20, 30, 300, 200), doubleBuffer);
        GLBox* b = box(Orv3dVolume(0, 0, 0, 0.2f, 0.2f, 0), 0x00ffff);
        GLBox* other = box(Orv3dVolume(-0.8f, -0.8f, 0, 0.2f, 0.2f, 0), 0xffff00);
        b->moveTo(0.05f, 0.05f);
        other->rgb[2] = 1;
        theater->drawAll(s, nullptr, 1);
        settle();
        std::vector<unsigned long> before = snapshot(s->interior);
        Orv2dRegion changed(25);
        b->bboxToScene(changed, &s->worldToScene, 1);
        b->moveTo(0.1f, 0.1f);
        b->bboxToScene(changed, &s->worldToScene, 1);
        EXPECT_EQ(1u, s->useScissor);
        std::vector<unsigned long> after = snapshot(s->interior);
        int outside = 0, inside = 0;
        for (int y = 0; y < 200; y++)
            for (int x = 0; x < 300; x++) {
                bool differ = before[y * 300 + x] != after[y * 300 + x];
                (changed.bbox.contains(Orv2dPoint(x, y)) ? inside : outside) += differ;
            }
        EXPECT_EQ(std::make_tuple(0, true), std::make_tuple(outside, inside > 0)) << doubleBuffer;
        expectSquare(s, b->volume, 0x00ffff, 2);
        expectSquare(s, other->volume, 0xffffff, 2);
        theater->disconnect(s);
        delete s;
        theater->empty(1);
    }
}

TEST_F(TheaterDrawTest, CollectedRegionsAndFlushWithoutBegin) {
    fill();
    scene->beginDrawingTheater();
    for (int i = 0; i < 33; i++) {
        scene->invalidateTheater(Orv2dRect(i * 9, i % 2 * 20, 4, 4));
        EXPECT_EQ(i < 32 ? i + 1 : 1, scene->invalidRegion.count);
    }
    EXPECT_EQ(Orv2dRect(0, 0, 292, 24), scene->invalidRegion.rectangle(0));
    scene->abortDrawingTheater();
    EXPECT_EQ(0u, scene->drawingDepth);
    scene->invalidateTheater(Orv2dRect(10, 10, 5, 5));
    EXPECT_EQ("OrvScene::flushDrawing : 'beginDrawing' must be call before'flushDrawing'.\n",
              OrvTestOutput([&] { scene->flushDrawingTheater(theater, 1); }));
    EXPECT_EQ(1, hook->before);
    EXPECT_EQ("OrvTheater::flushDrawing : 'beginDrawing' must be call before 'flushDrawing'."
              "OrvScene::flushDrawing : 'beginDrawing' must be call before'flushDrawing'.\n",
              OrvTestOutput([&] { theater->flushDrawing(1); }));
}

// 0 and 1 draw the layers in order, 2 each layer opaque then clear, 3 the clear ones
// last, farthest first, and two at one depth in the reverse of their order.
TEST_F(TheaterDrawTest, TransparencyOrders) {
    OrvMakeUp* clear =
        director->makeUpBackground(director->defaultMakeUp, new ClearColor(director));
    Log log;
    // Three a layer; capitals are clear, at these depths.
    const char* names = "BaEDcF";
    const float z[] = {-1, 0, -0.5f, -2, 0, -0.5f};
    for (int i = 0; i < 6; i++) {
        bool transparent = isupper(names[i]);
        GLBox* b = new GLBox(director, Orv3dVolume(0, 0, z[i], 0.1f, 0.1f, 0), 0xffffff,
                             std::string(1, names[i]).c_str(), transparent ? clear : nullptr);
        b->log = &log;
        theater->append(b, i / 3);
    }
    const char* orders[] = {"B a E D c F", "B a E D c F", "a B E c D F", "a c D B F E"};
    for (OrvTransparencyType type = 0; type < 4; type++) {
        scene->setTransparencyType(type);
        log.clear();
        theater->drawAll(scene, nullptr, 1);
        std::string order;
        for (const std::string& n : log) order += (order.empty() ? "" : " ") + n;
        EXPECT_EQ(orders[type], order) << "type " << type;
    }
}

TEST_F(TheaterDrawTest, ConnectMessages) {
    OrvScene* fresh = new OrvScene(director, Orv2dRect(0, 0, 50, 50), 1);
    OffScene* off = new OffScene(director);
    struct Case {
        std::function<void()> call;
        const char* message;
    } cases[] = {
        {[&] { theater->connect(fresh, nullptr, 0); }, ""},
        {[&] { theater->connect(fresh); }, "OrvTheater::connect : Scene must be in a stage.\n"},
        {[&] { theater->connect(scene, stage, 0); }, "OrvTheater::connect : Bad stage argument.\n"},
        {[&] { theater->connect(scene); },
         "OrvTheater::connect: Scene already connected to a theater.\n"},
        {[&] { theater->connect(off, stage, 0); },
         "OrvTheater::connect : Can't use this function with an off-screen renderer scene.\nn"},
    };
    for (Case& c : cases) EXPECT_EQ(c.message, OrvTestOutput(c.call));
    EXPECT_EQ(std::make_tuple((OrvTheater*)nullptr, 1u),
              std::make_tuple(fresh->getTheater(), theater->scenes.length()));
    delete fresh;
    delete off;
}
