// Frames and their interiors: made at the first drawing on a stage (or on the
// bitmap of a stage not yet shown), never in ghost mode; the child window
// follows the frame's moves, sizes, the stage's transformer, iconify and
// visibility; the interior's actors stay where they are in it; an empty
// picture when the interior is not shown; a parent stage that goes first.
#include <fstream>

#include "orv/shapes.h"
#include "frame_support.h"

namespace {

class FrameInterior : public FrameTest {};

}  // namespace

TEST_F(FrameInterior, MadeAtTheFirstDrawingOnAStage) {
    frame = new OrvFrame(director, Orv2dRect(40, 30, 240, 180), 1, look("black", "white"));
    // On no stage: nothing to make it on.
    EXPECT_EQ(std::make_pair(frame->getView(), (OrvView*)frame->getInteriorStage()),
              std::make_pair((OrvView*)nullptr, (OrvView*)nullptr));
    delete frame;
    standFrame();
    ASSERT_NE(inside, nullptr);
    EXPECT_STREQ(inside->className(), "OrvStage");
    EXPECT_EQ(inside->parent, (OrvView*)stage);
    EXPECT_EQ(frame->getView(), (OrvView*)inside);
    // Border 7 and a title of 22 around it.
    EXPECT_EQ(str(frame->interiorRect()) + " " + str(serverBox(inside)) + " " +
                  str(frame->bboxVisible()),
              "47,59 226x144 47,59 226x144 47,59 226x144");
    EXPECT_TRUE(viewable(inside));
    // The interior's own actors in its own window, on the frame's background.
    // Seen from the stage's window too: the child lies on it.
    EXPECT_EQ(
        std::vector<unsigned long>({rgbIn(inside, 20, 20), rgbIn(inside, 100, 100), rgb(67, 79)}),
        std::vector<unsigned long>({rgbOf("red"), rgbOf("white"), rgbOf("red")}));
    // One interior only.
    frame->make(stage, nullptr);
    EXPECT_EQ(frame->getView(), (OrvView*)inside);
}

TEST_F(FrameInterior, FollowsMovesSizesAndTheStageTransformer) {
    standFrame();
    ASSERT_NE(inside, nullptr);
    struct Row {
        const char* what;
        void (*act)(OrvFrame*, OrvStage*);
        Orv2dRect expected;
    } rows[] = {
        {"moved by 30, 20",
         [](OrvFrame* f, OrvStage*) {
             f->beginDrawing(1);
             f->apply2d(Orv2dMatrix(Orv2dPoint(30, 20)));
             f->flushDrawing(1);
         },
         Orv2dRect(77, 79, 226, 144)},
        {"fitted to 60, 40, 300 by 200",
         [](OrvFrame* f, OrvStage*) { f->fitToSize(Orv2dRect(60, 40, 300, 200)); },
         Orv2dRect(67, 69, 286, 164)},
        {"stage translated by -20, 10", [](OrvFrame*, OrvStage* s) { s->translate(-20, 10); },
         Orv2dRect(47, 79, 286, 164)},
        {"stage back", [](OrvFrame*, OrvStage* s) { s->toStage(nullptr); },
         Orv2dRect(67, 69, 286, 164)},
    };
    for (const Row& row : rows) {
        row.act(frame, stage);
        settle();
        EXPECT_EQ(str(serverBox(inside)) + " " + str(inside->bbox()),
                  str(row.expected) + " " + str(row.expected))
            << row.what;
        // The interior's actors keep their place in it.
        EXPECT_EQ(std::vector<unsigned long>({rgbIn(inside, 20, 20), rgbIn(inside, 45, 20),
                                              rgb(row.expected.x + 20, row.expected.y + 20)}),
                  std::vector<unsigned long>({rgbOf("red"), rgbOf("white"), rgbOf("red")}))
            << row.what;
    }
    // A new size reaches the interior stage's resize callbacks once, and no contents hook.
    struct Watch : OrvStageHook {
        int resized = 0, contents_ = 0;
        void stageResized() override { resized++; }
        void contents() override { contents_++; }
        unsigned long deletedByStage() const override { return 1; }
    }* watch = new Watch;
    inside->install(watch);
    frame->fitToSize(Orv2dRect(60, 40, 320, 210));
    settle();
    EXPECT_EQ(
        std::vector<unsigned long>({(unsigned long)watch->resized, (unsigned long)watch->contents_,
                                    inside->width, inside->height}),
        std::vector<unsigned long>({1, 0, 306, 174}));
}

TEST_F(FrameInterior, IconifiedVisibleAndShownOrNot) {
    standFrame();
    ASSERT_NE(inside, nullptr);
    frame->iconify(1);
    settle();
    EXPECT_FALSE(viewable(inside));
    ASSERT_NE(frame->getIcon(), nullptr);
    // The icon stands in for the frame's box and its hits.
    EXPECT_EQ(str(frame->bbox2d(nullptr)), str(frame->getIcon()->bbox2d(nullptr)));
    EXPECT_FALSE(frame->contains2d(Orv2dPoint(200, 150), nullptr));
    frame->iconify(0);
    settle();
    EXPECT_TRUE(viewable(inside));
    frame->setVisible(0);
    settle();
    EXPECT_FALSE(viewable(inside));
    frame->setVisible(1);
    settle();
    EXPECT_TRUE(viewable(inside));
    // Not shown: the window goes and an empty picture stands in its place.
    frame->hide();
    settle();
    EXPECT_FALSE(viewable(inside));
    // A corner and where the diagonals cross are drawn; the rest is not.
    auto inked = [&](int x, int y) { return rgb(47 + x, 59 + y) == rgbOf("black"); };
    EXPECT_EQ(std::vector<bool>({inked(0, 0), inked(113, 72), inked(20, 40)}),
              std::vector<bool>({true, true, false}));
    frame->show();
    settle();
    EXPECT_TRUE(viewable(inside));
    EXPECT_EQ(rgb(47 + 113, 59 + 72), rgbOf("white"));
    // Off its stage the window hides; back on it, it shows.
    stage->remove(frame, 0);
    settle();
    EXPECT_FALSE(viewable(inside));
    stage->append(frame);
    settle();
    EXPECT_TRUE(viewable(inside));
}

TEST_F(FrameInterior, NotShownFromTheStartAndOutlined) {
    standFrame(0);
    ASSERT_NE(inside, nullptr);
    EXPECT_FALSE(viewable(inside));
    EXPECT_EQ(rgb(47 + 113, 59 + 72), rgbOf("black"));
    // The outline lies one pixel outside the interior, when there is no inner plate.
    frame->show();
    frame->hideDecoration();
    frame->outlined(1);
    settle();
    Orv2dRect r = frame->interiorRect();
    EXPECT_EQ(rgb(r.x - 1, r.y + 50), rgbOf("black"));
    frame->outlined(0);
    settle();
    EXPECT_NE(rgb(r.x - 1, r.y + 50), rgbOf("black"));
}

TEST_F(FrameInterior, NoneInGhostModeButOnTheBitmapOfAStageNotYetShown) {
    frame = new OrvFrame(director, Orv2dRect(40, 30, 240, 180), 1);
    frame->setMode(OrvXorMode);
    frame->draw2d(stage, nullptr);
    frame->setMode(OrvCopyMode);
    EXPECT_EQ(frame->getView(), nullptr);
    delete frame;
    OrvStage* hidden = new OrvStage(director, Orv2dRect(0, 0, 300, 200), "hidden", 0, 0);
    hidden->useDoubleBuffer(1);
    OrvFrame* f = new OrvFrame(director, Orv2dRect(10, 10, 200, 150), 1);
    hidden->append(f);
    ASSERT_NE(f->getView(), nullptr);
    EXPECT_EQ(f->getView()->parent, (OrvView*)hidden);
    delete hidden;
}

// The interior repaints inside the stage's repaint (when it is made, when it
// changes size); the stage's repaint goes on with its guard still set.
TEST_F(FrameInterior, InteriorRepaintsNestedInTheStagesRepaint) {
    OrvFrame* f = new OrvFrame(director, Orv2dRect(10, 10, 200, 150), 1);
    EXPECT_EQ(OrvTestOutput([&] {
                  f->showScrollBars(1, 1, OrvBottom, OrvLeft, 16);
                  f->useDoubleBuffer(1);
                  stage->append(f);
                  f->fitToSize(Orv2dRect(10, 10, 260, 190));
                  settle();
              }),
              "");
    EXPECT_EQ(OrvForgetUpdateDrawing(), 0u);
    EXPECT_NE(f->getView(), nullptr);
}

TEST_F(FrameInterior, ParentStageDeletedFirst) {
    OrvStage* other = new OrvStage(director, Orv2dRect(0, 0, 300, 200), "other", 0, 1);
    OrvFrame* f = new OrvFrame(director, Orv2dRect(10, 10, 200, 150), 1);
    other->append(f);
    ASSERT_NE(f->getView(), nullptr);
    other->remove(f, 0);
    delete other;
    EXPECT_EQ(f->getView(), nullptr);
    delete f;
}

TEST_F(FrameInterior, BackgroundAndDoubleBufferReachTheInterior) {
    standFrame();
    ASSERT_NE(inside, nullptr);
    frame->setBackground(director->color("yellow"));
    settle();
    EXPECT_EQ(std::make_pair(rgbIn(inside, 100, 100), rgbIn(inside, 20, 20)),
              std::make_pair(rgbOf("yellow"), rgbOf("red")));
    EXPECT_EQ(inside->hasDoubleBuffer(), nullptr);
    frame->useDoubleBuffer(1);
    EXPECT_NE(inside->hasDoubleBuffer(), nullptr);
    frame->setCursor(director->cursor("cross"));
    EXPECT_EQ(std::make_pair(frame->getCursor(), inside->cursor),
              std::make_pair(director->cursor("cross"), director->cursor("cross")));
}

TEST_F(FrameInterior, AStageInAFrameLivesInItsOwnFile) {
    standFrame();
    ASSERT_NE(inside, nullptr);
    std::string path = "/tmp/orv-frame-interior-" + std::to_string(getpid()) + ".orv";
    // No such file yet: the interior is emptied and stays so.
    EXPECT_NE(OrvTestOutput([&] { frame->file(path.c_str()); }).find("Can't open"),
              std::string::npos);
    EXPECT_EQ(inside->cardinal(), 0u);
    inside->append(
        new OrvFilledRectangle(director, Orv2dRect(50, 40, 20, 20), look("blue", "blue")));
    std::ostringstream out;
    stage->save(out);
    EXPECT_NE(out.str().find("OrvFrame"), std::string::npos);
    std::ifstream saved(path);
    ASSERT_TRUE(saved.good());
    std::string text((std::istreambuf_iterator<char>(saved)), std::istreambuf_iterator<char>());
    EXPECT_NE(text.find("OrvFilledRectangle"), std::string::npos);
    // Loading it again fills the interior from the file.
    inside->empty(1);
    frame->file(path.c_str());
    EXPECT_EQ(inside->cardinal(), 1u);
    settle();
    EXPECT_EQ(rgbIn(inside, 60, 50), rgbOf("blue"));
    std::remove(path.c_str());
}
