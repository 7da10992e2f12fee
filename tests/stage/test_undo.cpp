// Undo and redo: every kind of edit made through the window (moves, reshapes,
// deletions, duplicates, cut and paste, links) and layer changes, one step each,
// undone and redone to the byte of the saved text; merging of a drag, the depth
// limit, the change signal and the life of a stack shared by two stages.
#include "orv_fixtures.h"

#include "orv/link.h"
#include "orv/undo.h"

class UndoTest : public RouteTest {
protected:
    OrvUndoStack* history = nullptr;
    OrvSelectProducer* select = nullptr;
    int changes = 0;

    void SetUp() override {
        RouteTest::SetUp();
        if (!stage) return;
        history = new OrvUndoStack(200);
        history->onChange([](OrvUndoStack*, void* n) { ++*(int*)n; }, &changes);
        stage->setUndoStack(history);
        stage->installAccelerators(0);
        stage->installUndoAccelerators();
        select = new OrvSelectProducer(stage);
        stage->setProducer(select);
    }
    void TearDown() override {
        if (stage) stage->setUndoStack(nullptr);
        delete history;
        RouteTest::TearDown();
    }
    std::string saved(OrvStage* s = nullptr) {
        std::ostringstream out;
        (s ? s : stage)->save(out);
        return out.str().substr(out.str().find('\n'));
    }
    OrvActor* rect(long x, long y, unsigned long w, unsigned long h, unsigned layer = 0) {
        OrvActor* a = new OrvFilledRectangle(director, Orv2dRect(x, y, w, h), red);
        stage->append(a, layer);
        return a;
    }
    void undoKey() { type(XK_z, XK_Alt_L); }
    void redoKey() { type(XK_y, XK_Alt_L); }
};

TEST_F(UndoTest, EveryKindOfEditUndoneAndRedoneByKeysToTheByte) {
    rect(20, 20, 40, 30);
    rect(120, 20, 40, 30);
    Orv2dPoint tri[3] = {{200, 120}, {260, 180}, {210, 170}};
    stage->append(new Orv2dPolygon(director, 3, tri, 1, blue));
    std::vector<std::string> texts{saved()};
    std::vector<const char*> names;
    auto step = [&](const char* expected) {
        EXPECT_STREQ(history->undoName(), expected);
        names.push_back(expected);
        texts.push_back(saved());
        EXPECT_NE(texts.back(), texts[texts.size() - 2]) << expected << " changed nothing";
    };
    drag(40, 35, 70, 95);  // select and move the first box
    step("Move");
    click(140, 35);  // select the second and drag its bottom-right handle
    drag(160, 50, 190, 90);
    step("Reshape");
    type(XK_d, XK_Control_L);
    step("Duplicate");
    type(XK_x, XK_Control_L);
    step("Cut");
    moveTo(150, 150);
    type(XK_v, XK_Control_L);
    step("Paste");
    OrvMakeLinkProducer* maker = new OrvMakeLinkProducer(stage, select, 1, blue);
    stage->setProducer(maker);
    drag(70, 95, 170, 60);
    step("Link");
    click(70, 95);
    type(XK_Delete);
    step("Delete");
    unsigned count = 0;
    OrvActor** all = stage->objects(count);
    OrvEditSetLayer(stage, all[0], 2);
    step("Layer");
    OrvEditPop(stage, all[1]);
    delete[] all;
    step("Layer");

    EXPECT_EQ(history->count(), names.size()) << "one step per edit";
    for (size_t i = names.size(); i-- > 0;) {
        EXPECT_STREQ(history->undoName(), names[i]);
        undoKey();
        EXPECT_EQ(saved(), texts[i]) << "undo of " << names[i];
    }
    EXPECT_FALSE(history->canUndo());
    for (size_t i = 0; i < names.size(); i++) {
        redoKey();
        EXPECT_EQ(saved(), texts[i + 1]) << "redo of " << names[i];
    }
    EXPECT_FALSE(history->canRedo());
}

TEST_F(UndoTest, AHundredEditsUndoneAndRedoneGiveTheSameText) {
    std::vector<OrvActor*> boxes;
    for (int i = 0; i < 4; i++) boxes.push_back(rect(20 + 70 * i, 20, 40, 30));
    std::string start = saved();
    // Moves of each box in turn, up and down, with a duplicate and the
    // deletion of the copy now and then.
    int down[4] = {0, 0, 0, 0};
    for (int i = 0; i < 100; i++) {
        int b = i % 4, x = 40 + 70 * b, y = 35 + 40 * down[b];
        if (i % 10 == 4) {
            stage->deSelect();
            boxes[b]->setSelected(1);
            type(XK_d, XK_Control_L);
        } else if (i % 10 == 5) {
            type(XK_Delete);
        } else {
            drag(x, y, x, down[b] ? y - 40 : y + 40, 2);
            down[b] = !down[b];
        }
    }
    ASSERT_EQ(history->count(), 100u) << "one step per edit";
    std::string end = saved();
    for (int i = 0; i < 100; i++) undoKey();
    EXPECT_EQ(saved(), start);
    for (int i = 0; i < 100; i++) redoKey();
    EXPECT_EQ(saved(), end);
}

TEST_F(UndoTest, DeletingAndShrinkingRestoreLinksLayersAndExactPlacesAndPoints) {
    OrvActor* a = rect(20, 20, 40, 30);
    OrvActor* b = rect(150, 100, 40, 30, 1);
    OrvActor* c = rect(150, 20, 40, 30);
    OrvLinkImage* ab = new OrvLinkImage(director, a, b, 1, 1.0f, blue);
    OrvLinkImage* cb = new OrvLinkImage(director, c, b, 0, 1.0f, blue);
    stage->append(ab, 1);
    stage->append(cb, 0);
    OrvLinkImage* onLink = new OrvLinkImage(director, a, ab, 0, 1.0f, red);
    stage->append(onLink, 2);
    std::string before = saved();
    std::vector<unsigned long> pixels = snapshot(stage);
    OrvActor* gone[1] = {b};
    OrvEditRemove(stage, gone, 1, "Delete");
    EXPECT_TRUE(stage->cardinal() == 2u && !stage->fromLinksCardinal(a))
        << "b, its two links and the link on ab went";
    ASSERT_TRUE(history->undo());
    EXPECT_TRUE(saved() == before && snapshot(stage) == pixels);
    EXPECT_TRUE(stage->toLinksCardinal(b) == 2u && stage->fromLinksCardinal(a) == 2u &&
                stage->toLinksCardinal(ab) == 1u && stage->getLayer(ab)->position(ab) == 1);
    // Redo and drop the history: the step deletes what it held (ASan watches).
    ASSERT_TRUE(history->redo());
    history->clear();
    EXPECT_EQ(stage->cardinal(), 2u);
    // A shape shrunk and restored keeps every point.
    Orv2dPoint pts[5] = {{200, 120}, {263, 181}, {211, 170}, {237, 133}, {201, 166}};
    Orv2dPolygon* p = new Orv2dPolygon(director, 5, pts, 1, blue);
    stage->append(p);
    std::string whole = saved();
    OrvActor* edited[1] = {p};
    // Down to 3 by 3 pixels: the points run together and only the kept shape
    // can bring them back.
    OrvEditBeginGeometry(stage, edited, 1);
    p->beginDrawing(1);
    p->apply2d(OrvCompute2dMatrix(p->bbox2d(nullptr), Orv2dRect(10, 10, 3, 3)));
    p->flushDrawing(1);
    OrvEditEndGeometry(stage, "Reshape");
    std::string shrunk = saved();
    EXPECT_NE(shrunk, whole);
    history->undo();
    EXPECT_EQ(saved(), whole);
    for (int i = 0; i < 5; i++) EXPECT_EQ(p->points[i], pts[i]);
    history->redo();
    EXPECT_EQ(saved(), shrunk);
}

TEST_F(UndoTest, DragsMergeLimitsTrimAndTheSignalCounts) {
    OrvActor* a = rect(20, 20, 40, 30);
    // A move role that follows the pointer: every motion moves, one step results.
    OrvMoveRole* follow = new OrvMoveRole();
    follow->immediate = 1;
    a->setRole(follow);
    stage->setProducer(nullptr);
    int before = changes;
    drag(40, 35, 140, 95, 5);
    EXPECT_TRUE(history->count() == 1u && ((OrvFilledRectangle*)a)->rect.x == 120);
    EXPECT_GE(changes - before, 1);
    history->undo();
    EXPECT_EQ(Orv2dRect(20, 20, 40, 30), ((OrvFilledRectangle*)a)->rect);
    a->setRole((OrvRole*)nullptr);
    delete follow;

    // A second drag is a step of its own; a new edit forgets what could be redone.
    stage->setProducer(select);
    drag(40, 35, 40, 75);
    drag(40, 75, 40, 95);
    EXPECT_TRUE(history->count() == 2u && history->redoCount() == 0u);
    history->undo();
    EXPECT_STREQ(history->canRedo() ? history->redoName() : "", "Move");
    drag(40, 75, 80, 75);
    EXPECT_FALSE(history->canRedo());

    // The depth limit drops the oldest steps.
    for (int i = 0; i < 6; i++) drag(100 - 40 * (i % 2), 90, 60 + 40 * (i % 2), 90, 1);
    history->setLimit(3);
    EXPECT_EQ(history->count(), 3u);
    while (history->undo()) {}
    EXPECT_TRUE(history->count() == 0u && history->redoCount() == 3u);
    // Undo with nothing to undo rings and does nothing.
    int now = changes;
    EXPECT_TRUE(!history->undo() && changes == now);
}

TEST_F(UndoTest, AStackSharedByTwoStagesAndTheirEnds) {
    OrvStage* other = newStage(Orv2dRect(320, 0, 200, 150));
    other->setUndoStack(history);
    OrvActor* a = rect(20, 20, 40, 30);
    OrvEditAppend(other, new OrvFilledRectangle(director, Orv2dRect(5, 5, 20, 20), blue));
    OrvActor* gone[1] = {a};
    OrvEditRemove(stage, gone, 1, "Delete");
    EXPECT_EQ(history->count(), 2u);
    // The other stage goes: its steps go with it, this stage's stay.
    delete other;
    EXPECT_STREQ(history->count() == 1u ? history->undoName() : "", "Delete");
    history->undo();
    EXPECT_EQ(a->getStage(), stage);
    // An actor deleted outside the recorded edits empties the stage's history.
    history->redo();
    history->undo();
    delete a;
    EXPECT_FALSE(history->canUndo() || history->canRedo());
    // A stack deleted before its stage leaves the stage recording nothing.
    OrvUndoStack* brief = new OrvUndoStack();
    stage->setUndoStack(brief);
    delete brief;
    EXPECT_EQ(stage->undoStack, nullptr);
    OrvEditAppend(stage, new OrvFilledRectangle(director, Orv2dRect(5, 5, 20, 20), blue));
    EXPECT_EQ(stage->cardinal(), 1u);
}
