// Decors: the layout of border, title and bars (itemsSize) in every
// arrangement, the pixels of plates, grips, title boxes and face outline, the
// highlight that repaints only the border, ghost drawing, the border handles,
// and fitting to a size and to the title.
#include "frame_support.h"

namespace {

struct Layout {
    Orv2dRect interior, hBar, vBar, inner, outer, title;
};

Layout layoutOf(const OrvDecor* decor) {
    Layout l;
    decor->itemsSize(l.interior, l.hBar, l.vBar, l.inner, l.outer, l.title);
    return l;
}

}  // namespace

TEST_F(FrameTest, ItemsSizeInEveryArrangement) {
    const Orv2dRect box(10, 20, 200, 150);
    // Expected: interior, horizontal bar, vertical bar, inner plate, title; the outer plate is
    // the box in every arrangement.
    struct Row {
        const char* what;
        unsigned short border;  // 0: no plates
        unsigned short title;   // 0: no title bar
        int bars;               // 1 horizontal, 2 vertical, 3 both
        OrvPosition hSide, vSide;
        unsigned short barWidth;
        const char* expected[5];
    } rows[] = {
        // clang-format off
        {"bare", 0, 0, 0, 8, 1, 16,
         {"10,20 200x150", "10,170 0x0", "210,20 0x0", "10,20 200x150", "10,20 200x0"}},
        {"border", 7, 0, 0, 8, 1, 16,
         {"17,27 186x136", "17,163 0x0", "203,27 0x0", "15,25 190x140", "17,27 186x0"}},
        {"border and title", 7, 22, 0, 8, 1, 16,
         {"17,49 186x114", "17,163 0x0", "203,49 0x0", "15,25 190x140", "17,27 186x22"}},
        {"bars right and bottom", 7, 22, 3, 8, 1, 16,
         {"17,49 170x98", "17,147 170x16", "187,49 16x98", "15,25 190x140", "17,27 186x22"}},
        {"bars left and top", 7, 22, 3, 4, 2, 16,
         {"33,65 170x98", "33,49 170x16", "17,65 16x98", "15,25 190x140", "17,27 186x22"}},
        {"vertical bar only", 7, 22, 2, 8, 1, 20,
         {"17,49 166x114", "17,163 0x0", "183,49 20x114", "15,25 190x140", "17,27 186x22"}},
        // Twice the border is not less than the height: nothing is taken for it.
        {"border too wide", 75, 22, 0, 8, 1, 16,
         {"10,42 200x128", "10,170 0x0", "210,42 0x0", "10,20 200x150", "10,20 200x22"}},
        {"border just narrow enough", 74, 22, 0, 8, 1, 16,
         {"84,94 52x2", "84,96 0x0", "136,94 0x0", "82,92 56x6", "84,94 52x0"}},
        {"title higher than the room", 7, 136, 0, 8, 1, 16,
         {"17,27 186x136", "17,163 0x0", "203,27 0x0", "15,25 190x140", "17,27 186x0"}},
        {"bars wider than the room", 7, 22, 3, 8, 1, 300,
         {"17,49 0x0", "17,49 0x114", "17,49 186x0", "15,25 190x140", "17,27 186x22"}},
        // clang-format on
    };
    for (const Row& row : rows) {
        OrvDecor decor(director, box);
        if (row.title) decor.showTitleBar("T", row.title);
        if (row.border) decor.showDecoration(row.border);
        if (row.bars)
            decor.showScrollBars(row.bars & 1, row.bars & 2, row.hSide, row.vSide, row.barWidth);
        Layout l = layoutOf(&decor);
        EXPECT_EQ(str(l.outer), str(box)) << row.what;
        const Orv2dRect* got[] = {&l.interior, &l.hBar, &l.vBar, &l.inner, &l.title};
        for (int i = 0; i < 5; i++)
            EXPECT_EQ(str(*got[i]), row.expected[i]) << row.what << " " << i;
        // The sub-actors stand where the layout puts them.
        decor.internalUpdate();
        if (decor.titleBar) {
            EXPECT_EQ(str(decor.titleBar->rect), row.expected[4]) << row.what;
        }
        if (decor.hScrollBar) {
            EXPECT_EQ(str(decor.hScrollBar->rect), row.expected[1]) << row.what;
        }
        if (decor.outerBorder) {
            EXPECT_EQ(str(decor.outerBorder->rect), str(box)) << row.what;
        }
    }
}

TEST_F(FrameTest, ItemsSizeUnderTheStageTransformer) {
    OrvDecor* decor = OrvTestDecor(director, Orv2dRect(10, 20, 100, 75), nullptr);
    decor->showScrollBars(1, 1, 8, 1, 16);
    stage->append(decor);
    Orv2dMatrix twice(2, 0, 0, 2, 5, 0);
    stage->toStage(&twice);
    Layout l = layoutOf(decor);
    // The interior in the window's pixels, the rest back in the stage's space.
    // Halves round away from zero.
    EXPECT_EQ(str(l.interior) + " " + str(l.outer) + " " + str(l.vBar) + " " + str(l.title),
              "32,69 170x98 10,20 100x75 99,35 8x49 14,24 93x11");
    stage->toStage(nullptr);
}

TEST_F(FrameTest, PlatesGripsTitleAndOutlineInPixels) {
    OrvMakeUp* grey = look("black", "gray");
    OrvDecor* decor = OrvTestDecor(director, Orv2dRect(20, 20, 200, 150), grey);
    stage->append(decor);
    settle();
    const OrvReliefRectangle* outer = decor->outerBorder;
    const OrvReliefRectangle* inner = decor->innerBorder;
    unsigned long lit = rgbOf(outer->litMakeUp), shaded = rgbOf(outer->shadedMakeUp);
    unsigned long face = rgbOf(outer->faceMakeUp), black = rgbOf("black");
    ASSERT_NE(lit, face);
    ASSERT_NE(shaded, face);
    const OrvDecorTitleBar* title = decor->titleBar;
    struct Row {
        const char* what;
        int x, y;
        unsigned long expected;
    } rows[] = {
        {"outer plate, lit top", 100, 20, lit},
        {"outer plate, face", 100, 23, face},
        {"inner plate, sunken top", 100, 25, rgbOf(inner->shadedMakeUp)},
        {"face outline", 100, 26, black},
        {"face outline, left", 26, 100, black},
        {"title, lit top", 100, 27, rgbOf(title->litMakeUp)},
        {"title face", 60, 44, rgbOf(title->faceMakeUp)},
        {"interior: the inner plate's pressed face", 100, 100, rgbOf(inner->pressedMakeUp)},
        {"outer plate, shaded bottom", 100, 169, shaded},
        {"grip at top left: its shaded side", 47, 22, shaded},
        {"grip at top left: its face", 46, 22, face},
        {"grip on the left side near the top: shaded bottom", 22, 47, shaded},
        {"menu box, lit top", 35, 27, rgbOf(title->litMakeUp)},
        {"iconify box, shaded right", 190, 40, rgbOf(title->shadedMakeUp)},
    };
    for (const Row& row : rows) EXPECT_EQ(rgb(row.x, row.y), row.expected) << row.what;
    // A box pressed shows its pressed face; the press flag is all it takes.
    Orv2dRect first, second, third, fourth;
    decor->titleBar->itemsSize(first, second, third, fourth, nullptr);
    EXPECT_EQ(str(first) + " " + str(second) + " " + str(fourth),
              "27,27 22x22 169,27 22x22 49,27 120x22");
    decor->titleBar->pressed[1] = 1;
    stage->drawAll(nullptr, 1);
    EXPECT_EQ(
        std::make_pair(rgb(172, 31), rgb(190, 40)),
        std::make_pair(rgbOf(decor->titleBar->pressedMakeUp), rgbOf(decor->titleBar->litMakeUp)));
    decor->titleBar->pressed[1] = 0;
}

TEST_F(FrameTest, HighlightRepaintsOnlyTheBorder) {
    OrvDecor* decor = OrvTestDecor(director, Orv2dRect(20, 20, 200, 150), look("black", "gray"));
    stage->append(decor);
    settle();
    PaintCounter* counter = new PaintCounter;
    stage->install(counter);
    unsigned long face = rgbOf(decor->outerBorder->faceMakeUp);
    EXPECT_EQ(rgb(100, 23), face);
    EXPECT_EQ(decor->setHighlighted(1, Orv2dPoint(21, 21), 1), 1u);
    // Four bands of the border's width, and no other paint.
    ASSERT_EQ(counter->painted.size(), 4u);
    for (const Orv2dRect& r : counter->painted) EXPECT_TRUE(r.w == 7 || r.h == 7) << str(r);
    // The grips show pressed: the lit edge goes to the right.
    EXPECT_EQ(
        std::make_pair(rgb(100, 23), rgb(47, 22)),
        std::make_pair(rgbOf(decor->outerBorder->litMakeUp), rgbOf(decor->outerBorder->litMakeUp)));
    EXPECT_EQ(decor->setHighlighted(1, Orv2dPoint(21, 21), 1), 0u);
    counter->clear();
    decor->setHighlighted(0, Orv2dPoint(21, 21), 1);
    EXPECT_EQ(counter->painted.size(), 4u);
    EXPECT_EQ(rgb(100, 23), face);
}

TEST_F(FrameTest, SameScrollBarsAgainRepaintNothing) {
    OrvDecor* decor = OrvTestDecor(director, Orv2dRect(20, 20, 200, 150), nullptr);
    stage->append(decor);
    PaintCounter* counter = new PaintCounter;
    stage->install(counter);
    EXPECT_EQ(decor->showScrollBars(1, 1, 8, 1, 16), 1u);
    EXPECT_GT(counter->invalidations, 0);
    counter->clear();
    EXPECT_EQ(decor->showScrollBars(1, 1, 8, 1, 16), 0u);
    EXPECT_EQ(std::make_pair(counter->invalidations, counter->painted.size()),
              std::make_pair(0, (size_t)0));
    // Each of the five arguments counts.
    EXPECT_EQ(std::vector<unsigned long>(
                  {decor->showScrollBars(1, 1, 8, 1, 18), decor->showScrollBars(1, 1, 4, 1, 18),
                   decor->showScrollBars(1, 1, 4, 2, 18), decor->showScrollBars(0, 1, 4, 2, 18)}),
              std::vector<unsigned long>({1, 1, 1, 1}));
    EXPECT_EQ(decor->hScrollBar, nullptr);
    decor->hideScrollBars();
    EXPECT_EQ(decor->vScrollBar, nullptr);
    // The bars draw on the decor's stage though they are in none.
    decor->showScrollBars(1, 0, 8, 1, 16);
    EXPECT_EQ(std::make_tuple(decor->hScrollBar->getStage(), decor->hScrollBar->drawingStage(),
                              decor->hScrollBar->getUserProperty(OrvDecor::_inDecor)),
              std::make_tuple((OrvStage*)nullptr, stage, (void*)decor));
    EXPECT_STREQ(decor->hScrollBar->getRole()->className(), "ScrollBar");
}

TEST_F(FrameTest, GhostModeDrawsTheOutlineOnly) {
    OrvDecor* decor = OrvTestDecor(director, Orv2dRect(10, 10, 60, 40), look("black", "gray"));
    decor->showScrollBars(1, 1, 8, 1, 10);
    OrvBitmap* sheet = new OrvBitmap(stage, 100, 80, director->depth);
    sheet->setClip(nullptr);
    sheet->rectangle(look("white", "white"), Orv2dRect(0, 0, 100, 80), 1);
    decor->setMode(OrvXorMode);
    decor->draw2d(sheet, nullptr);
    decor->setMode(OrvCopyMode);
    // The outline's left and top edges are drawn; inside, nothing.
    unsigned long white = rgbOf("white");
    auto at = [&](int x, int y) { return XTest::rgbOf(sheet->drawable, x, y) == white; };
    EXPECT_EQ(std::vector<bool>({at(10, 30), at(40, 10), at(40, 30), at(13, 13)}),
              std::vector<bool>({false, false, true, true}));
    delete sheet;
    delete decor;
}

TEST_F(FrameTest, BorderHandlesBySideAndCorner) {
    OrvDecor* decor = OrvTestDecor(director, Orv2dRect(20, 20, 200, 150), nullptr);
    stage->append(decor);
    struct Row {
        int x, y;
        OrvPosition expected;  // 0: no handle
    } rows[] = {
        {22, 100, OrvLeft},
        {217, 100, OrvRight},
        {100, 22, OrvTop},
        {100, 167, OrvBottom},
        {22, 22, OrvLeft + OrvTop},
        {40, 21, OrvLeft + OrvTop},
        {21, 45, OrvLeft + OrvTop},
        {21, 46, OrvLeft},
        {219, 160, OrvRight + OrvBottom},
        {200, 168, 10},
        {195, 168, OrvRight + OrvBottom},
        {193, 168, OrvBottom},
        {100, 100, 0},
        {27, 27, 0},
        {10, 10, 0},
    };
    for (const Row& row : rows) {
        Orv2dDragger* d = decor->dragger2d(Orv2dPoint(row.x, row.y), nullptr);
        EXPECT_EQ(d ? d->position : 0, row.expected) << row.x << "," << row.y;
    }
    // No plates, no handles.
    decor->hideDecoration();
    EXPECT_EQ(decor->dragger2d(Orv2dPoint(22, 100), nullptr), nullptr);
}

TEST_F(FrameTest, FitToSizeKeepsTheFurnitureAndFitToContentsTheTitle) {
    OrvDecor* decor = OrvTestDecor(director, Orv2dRect(20, 20, 200, 150), nullptr);
    stage->append(decor);
    decor->fitToSize(Orv2dRect(30, 40, 300, 100));
    EXPECT_EQ(str(decor->bbox2d(nullptr)), str(Orv2dRect(30, 40, 300, 100)));
    Layout l = layoutOf(decor);
    EXPECT_EQ(str(l.title), str(Orv2dRect(37, 47, 286, 22)));
    // A zero size and an iconified decor are ignored.
    decor->fitToSize(Orv2dRect(0, 0, 0, 10));
    EXPECT_EQ(str(decor->bbox2d(nullptr)), str(Orv2dRect(30, 40, 300, 100)));
    // Without furniture the decor is mapped onto the rectangle.
    OrvDecor bare(director, Orv2dRect(0, 0, 10, 10));
    bare.fitToSize(Orv2dRect(5, 6, 70, 80));
    EXPECT_EQ(str(bare.bbox2d(nullptr)), str(Orv2dRect(5, 6, 70, 80)));
    // The title area becomes as wide as the title needs.
    decor->showTitleBar("A much longer title than before", 22);
    decor->fitToContents();
    Orv2dRect first, second, third, fourth;
    decor->titleBar->itemsSize(first, second, third, fourth, nullptr);
    Orv2dRect text =
        OrvLabelBitmapSizes(decor->titleBar->makeUp, decor->getTitle(), nullptr, OrvLeft, 0);
    EXPECT_EQ(fourth.w, text.w + 2 + 8);
    EXPECT_EQ(decor->bbox2d(nullptr).h, 100u);
}
