// The roles of decors under real input (XTest on a server of the test's own):
// the title moves a frame with its interior, each border handle resizes it
// with the size in the title, the cursor follows the handles, the iconify box
// and a double click on the icon, an icon dragged, and a title box left while
// pressed that is released for good.
#include "orv/shapes.h"
#include "frame_support.h"

namespace {

class CountingTitleRole : public OrvDecorTitleBarRole {
public:
    int validated = 0;
    void validate(OrvActor*, OrvStage*) override { validated++; }
};

class DecorRoles : public FrameTest {
protected:
    const Orv2dRect home = Orv2dRect(40, 30, 240, 180);

    void SetUp() override {
        FrameTest::SetUp();
        if (!stage) return;
        standFrame();
        ASSERT_NE(inside, nullptr);
        ASSERT_STREQ(frame->getRole()->className(), "Decor");
    }
    void doubleClick(int x, int y) {
        move(x, y);
        OrvTestRunUntil([&] { return frameNowMs() - lastPress > 260; }, 400);
        for (int i = 0; i < 2; i++) {
            OrvTestButton(dpy, 1, true);
            OrvTestButton(dpy, 1, false);
            settle(20);
        }
        lastPress = frameNowMs();
        settle();
    }
};

}  // namespace

TEST_F(DecorRoles, TheTitleMovesTheFrameAndItsInterior) {
    // The title area lies between the menu box and the two boxes at the right.
    press(120, 45);
    move(132, 52);
    // It follows the pointer at each step, with the window inside.
    EXPECT_EQ(str(frame->bbox2d(nullptr)) + " " + str(serverBox(inside)),
              "52,37 240x180 59,66 226x144");
    move(170, 75);
    release();
    EXPECT_EQ(str(frame->bbox2d(nullptr)) + " " + str(serverBox(inside)),
              "90,60 240x180 97,89 226x144");
    // The interior's actor stays where it was in the interior; where the frame was, the stage
    // shows its background again.
    EXPECT_EQ(
        std::vector<unsigned long>({rgbIn(inside, 20, 20), rgb(97 + 20, 89 + 20), rgb(45, 100)}),
        std::vector<unsigned long>({rgbOf("red"), rgbOf("red"), rgb(5, 5)}));
    EXPECT_EQ(frame->titleBar->dragging, 0u);
}

TEST_F(DecorRoles, EachHandleResizesWithTheSizeInTheTitle) {
    struct Row {
        const char* handle;
        int x, y, dx, dy;
        Orv2dRect expected;
    } rows[] = {
        {"left", 42, 120, -20, 0, Orv2dRect(20, 30, 260, 180)},
        {"right", 277, 120, 30, 0, Orv2dRect(40, 30, 270, 180)},
        {"top", 160, 32, 0, -10, Orv2dRect(40, 20, 240, 190)},
        {"bottom", 160, 207, 0, 25, Orv2dRect(40, 30, 240, 205)},
        {"top left", 42, 32, -10, -10, Orv2dRect(30, 20, 250, 190)},
        {"top right", 277, 32, 10, -10, Orv2dRect(40, 20, 250, 190)},
        {"bottom left", 42, 207, -10, 10, Orv2dRect(30, 30, 250, 190)},
        {"bottom right", 277, 207, 20, 20, Orv2dRect(40, 30, 260, 200)},
        // No smaller than the border, the title's boxes and a margin.
        {"right, too far", 277, 120, -250, 0, Orv2dRect(40, 30, 110, 180)},
        {"top, too far", 160, 32, 0, 200, Orv2dRect(40, 166, 240, 44)},
    };
    for (const Row& row : rows) {
        frame->fitToSize(home);
        settle();
        press(row.x, row.y);
        move(row.x + row.dx / 2, row.y + row.dy / 2);
        move(row.x + row.dx, row.y + row.dy);
        // A ghost follows; the frame waits for the release, its title shows the size.
        EXPECT_EQ(str(frame->bbox2d(nullptr)), str(home)) << row.handle;
        std::string size =
            "(" + std::to_string(row.expected.w) + "x" + std::to_string(row.expected.h) + ")";
        EXPECT_STREQ(frame->getTitle(), size.c_str()) << row.handle;
        release();
        EXPECT_EQ(str(frame->bbox2d(nullptr)), str(row.expected)) << row.handle;
        EXPECT_STREQ(frame->getTitle(), "Inside") << row.handle;
        Orv2dRect r = row.expected;
        EXPECT_EQ(str(serverBox(inside)), str(Orv2dRect(r.x + 7, r.y + 29, r.w - 14, r.h - 36)))
            << row.handle;
        if (r.h > 36 + 25) {
            EXPECT_EQ(rgbIn(inside, 20, 20), rgbOf("red")) << row.handle;
        }
    }
    // Resizing live: the frame follows each step.
    OrvDecorReshapeRole* reshape = (OrvDecorReshapeRole*)OrvGetRole("DecorReshape");
    reshape->liveResize = 1;
    frame->fitToSize(home);
    settle();
    press(277, 207);
    move(287, 217);
    EXPECT_EQ(str(frame->bbox2d(nullptr)), str(Orv2dRect(40, 30, 250, 190)));
    move(297, 227);
    release();
    reshape->liveResize = 0;
    EXPECT_EQ(str(frame->bbox2d(nullptr)), str(Orv2dRect(40, 30, 260, 200)));
    EXPECT_EQ(str(serverBox(inside)), str(Orv2dRect(47, 59, 246, 164)));
}

TEST_F(DecorRoles, TheCursorFollowsTheHandles) {
    struct Row {
        int x, y;
        OrvPosition handle;  // 0: no handle, no cursor of the stage's own
    } rows[] = {{42, 120, OrvLeft}, {160, 45, 0}, {277, 207, 10}, {160, 32, OrvTop},
                {5, 5, 0},          {42, 32, 5},  {160, 45, 0}};
    for (const Row& row : rows) {
        move(row.x, row.y);
        OrvCursor* expected = row.handle ? director->positionToCursor(row.handle) : nullptr;
        EXPECT_EQ(stage->cursor, expected) << row.x << "," << row.y;
    }
}

TEST_F(DecorRoles, IconifiedByItsBoxRestoredByADoubleClick) {
    unsigned long pressedFace = rgbOf(frame->titleBar->pressedMakeUp);
    press(240, 48);
    // The iconify box shows pressed while it is held.
    EXPECT_EQ(rgb(232, 40), pressedFace);
    release();
    ASSERT_TRUE(frame->isIconified());
    EXPECT_FALSE(viewable(inside));
    Orv2dRect icon = frame->getIcon()->bbox2d(nullptr);
    EXPECT_EQ(std::make_pair(icon.x, icon.y), std::make_pair(40, 30));
    EXPECT_GE(icon.w, 48u);
    // The icon is drawn, the frame is not.
    EXPECT_EQ(std::make_pair(rgb(41, 31), rgb(200, 150)),
              std::make_pair(rgbOf(((OrvReliefLabel*)frame->getIcon())->litMakeUp), rgb(5, 5)));
    // An icon is dragged like any actor; the frame goes with it.
    press(50, 40);
    move(100, 90);
    move(150, 140);
    release();
    EXPECT_EQ(frame->getIcon()->bbox2d(nullptr).x, 140);
    doubleClick(150, 140);
    ASSERT_FALSE(frame->isIconified());
    EXPECT_TRUE(viewable(inside));
    EXPECT_EQ(str(frame->bbox2d(nullptr)) + " " + str(serverBox(inside)),
              "140,130 240x180 147,159 226x144");
}

TEST_F(DecorRoles, ABoxLeftWhilePressedIsReleasedForGood) {
    CountingTitleRole counting;
    frame->titleBar->setRole(&counting);
    unsigned long pressedFace = rgbOf(frame->titleBar->pressedMakeUp);
    unsigned long face = rgbOf(frame->titleBar->faceMakeUp);
    // The third box: pressed and released inside.
    click(262, 45);
    EXPECT_EQ(counting.validated, 1);
    // Pressed, left and come back to: no longer pressed, nothing on release.
    press(262, 45);
    EXPECT_EQ(rgb(254, 40), pressedFace);
    move(160, 45);
    EXPECT_EQ(rgb(254, 40), face);
    move(262, 45);
    EXPECT_EQ(rgb(254, 40), face);
    release();
    EXPECT_EQ(counting.validated, 1);
    // The menu box does nothing until menus exist, and moves nothing.
    click(55, 45);
    EXPECT_EQ(counting.validated, 1);
    EXPECT_EQ(str(frame->bbox2d(nullptr)), str(home));
    frame->titleBar->setRole(OrvGetRole("DecorTitleBar"));
}
