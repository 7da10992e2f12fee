// Relief gadgets on both screens: the derived make-ups, the bevel of each
// state read back with XGetImage, labels, toggles, the stipples of a one-bit
// display, the sizes that fitToContents gives, and the cluster's hit area.
#include <cstring>

#include "orv/relief.h"
#include "orv/stage.h"
#include "orv_fixtures.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class Relief : public OrvScreenTest {
protected:
    OrvMakeUp* look = nullptr;
    void SetUp() override {
        OrvScreenTest::SetUp();
        if (!d) return;
        look = paint("black", "gray75");
        OrvCount(look);
    }
    void TearDown() override {
        if (look) OrvRelease(look);
        OrvScreenTest::TearDown();
    }
    unsigned long fg(const OrvMakeUp* m) { return m->foreground()->index(d->rootCanvas) & mask(); }
};
ORV_ON_BOTH_SCREENS(Relief);

}  // namespace

TEST_P(Relief, FiveDerivedMakeUps) {
    OrvReliefRectangle r(d, Orv2dRect(0, 0, 50, 30), 3, look);
    OrvColor *lit = nullptr, *shaded = nullptr, *pressed = nullptr;
    OrvComputeReliefColors(look->background(), lit, shaded, pressed);
    struct Row {
        const char* name;
        OrvMakeUp* made;
        OrvColor* foreground;
        OrvPattern* pattern;
    } rows[] = {
        {"face", r.faceMakeUp, look->background(), d->solidPattern},
        {"lit", r.litMakeUp, lit, d->solidPattern},
        {"shaded", r.shadedMakeUp, shaded, d->solidPattern},
        {"pressed", r.pressedMakeUp, pressed, d->solidPattern},
        {"disabled", r.disabledMakeUp, look->foreground(), d->pattern("gray")},
    };
    for (const Row& row : rows) {
        ASSERT_NE(row.made, nullptr) << row.name;
        EXPECT_EQ(row.made->foreground(), row.foreground) << row.name;
        EXPECT_EQ(row.made->pattern(), row.pattern) << row.name;
        EXPECT_EQ(row.made->font(), look->font()) << row.name;
    }
    // The three shades are three colours on either screen, and none is the face's.
    EXPECT_NE(fg(r.litMakeUp), fg(r.shadedMakeUp));
    EXPECT_NE(fg(r.litMakeUp), fg(r.pressedMakeUp));
    EXPECT_NE(fg(r.shadedMakeUp), fg(r.pressedMakeUp));
    EXPECT_NE(fg(r.pressedMakeUp), fg(r.faceMakeUp));
    // Gadgets of one look share their make-ups through the director.
    OrvReliefRectangle other(d, Orv2dRect(5, 5, 20, 20), 1, look);
    EXPECT_EQ(other.litMakeUp, r.litMakeUp);
    EXPECT_EQ(other.disabledMakeUp, r.disabledMakeUp);
    // A new background brings new shades.
    int before = r.litMakeUp->count;
    r.setBackground(d->color("light blue"));
    EXPECT_NE(r.litMakeUp, other.litMakeUp);
    EXPECT_EQ(r.faceMakeUp->foreground(), d->color("light blue"));
    EXPECT_EQ(other.litMakeUp->count, before - 1);  // the old one let go
}

TEST_P(Relief, OneBitDisplayGetsStipples) {
    OrvMakeUp* bw = paint("black", "white");
    OrvMakeUp* out[OrvReliefMakeUpCount];
    OrvComputeReliefMakeUps(bw, 1, out);
    EXPECT_EQ(out[OrvReliefFace]->foreground(), d->color("white"));
    EXPECT_EQ(out[OrvReliefFace]->pattern(), d->solidPattern);
    struct Row {
        int index;
        const char* pattern;
        int blackOf32;  // in two rows of sixteen, one period of the stipple
    } rows[] = {{OrvReliefLit, "light3", 8},
                {OrvReliefShaded, "dark3", 24},
                {OrvReliefPressed, "gray", 16},
                {OrvReliefDisabled, "gray", 16}};
    OrvBitmap* b = sheet(120, 80);
    for (const Row& row : rows) {
        OrvMakeUp* m = out[row.index];
        EXPECT_EQ(m->pattern(), d->pattern(row.pattern)) << row.pattern;
        EXPECT_EQ(m->foreground(), d->color("black")) << row.pattern;
        EXPECT_EQ(m->background(), d->color("white")) << row.pattern;
        b->rectangle(m, Orv2dRect(0, 0, 120, 80), 1);
        EXPECT_EQ(countPixels(b, Orv2dRect(33, 20, 16, 2), px("black")), row.blackOf32)
            << row.pattern;
    }
    // The drawn bevel: a light band above and to the left, a dark one below and right.
    b->rectangle(paint("white"), Orv2dRect(0, 0, 120, 80), 1);
    b->reliefRectangle(bw, out[OrvReliefFace], out[OrvReliefLit], out[OrvReliefShaded],
                       Orv2dRect(10, 10, 100, 60), 6, 1);
    EXPECT_EQ(countPixels(b, Orv2dRect(40, 12, 16, 2), px("black")), 8);
    EXPECT_EQ(countPixels(b, Orv2dRect(40, 66, 16, 2), px("black")), 24);
    EXPECT_EQ(countPixels(b, Orv2dRect(40, 30, 16, 2), px("white")), 32);
    for (OrvMakeUp* m : out) OrvRelease(m);
    // Stipples the application names "light" and "dark" are taken first.
    static const unsigned char rows16[32] = {0xF0, 0xF0};
    OrvPattern* own = d->pattern("light", 16, 1, rows16);
    OrvComputeReliefMakeUps(bw, 1, out);
    EXPECT_EQ(out[OrvReliefLit]->pattern(), own);
    EXPECT_EQ(out[OrvReliefShaded]->pattern(), d->pattern("dark3"));
    for (OrvMakeUp* m : out) OrvRelease(m);
    delete b;
}

TEST_P(Relief, BevelOfEachState) {
    OrvBitmap* b = sheet(120, 80);
    OrvReliefRectangle r(d, Orv2dRect(10, 10, 80, 50), 5, look);
    r.allowHighlight(1);
    struct Row {
        unsigned long inverted, highlighted;
        OrvMakeUp *face, *top, *bottom;
    } rows[] = {
        {0, 0, r.faceMakeUp, r.litMakeUp, r.shadedMakeUp},
        {0, 1, r.litMakeUp, r.litMakeUp, r.shadedMakeUp},
        {1, 0, r.pressedMakeUp, r.shadedMakeUp, r.litMakeUp},
        {1, 1, r.shadedMakeUp, r.shadedMakeUp, r.litMakeUp},
    };
    for (const Row& row : rows) {
        if (r.isInverted() != row.inverted) r.invert();
        r.setHighlighted(row.highlighted, Orv2dPoint(), 1);
        ASSERT_EQ(r.isHighlighted(), row.highlighted);
        b->rectangle(paint("white"), Orv2dRect(0, 0, 120, 80), 1);
        r.draw2d(b, nullptr);
        std::string state = std::to_string(row.inverted) + std::to_string(row.highlighted);
        EXPECT_EQ(pixel(b, 50, 35), fg(row.face)) << state;
        EXPECT_EQ(pixel(b, 50, 12), fg(row.top)) << state << " top";
        EXPECT_EQ(pixel(b, 12, 35), fg(row.top)) << state << " left";
        EXPECT_EQ(pixel(b, 50, 58), fg(row.bottom)) << state << " bottom";
        EXPECT_EQ(pixel(b, 88, 35), fg(row.bottom)) << state << " right";
        EXPECT_EQ(pixel(b, 10, 35), px("black")) << state << " outline";
        EXPECT_EQ(pixel(b, 50, 62), px("white")) << state << " outside";
    }
    // Without the border the band reaches the edge; a refused highlight changes nothing.
    r.border(0);
    b->rectangle(paint("white"), Orv2dRect(0, 0, 120, 80), 1);
    r.draw2d(b, nullptr);
    EXPECT_EQ(pixel(b, 10, 35), fg(r.shadedMakeUp));
    r.allowHighlight(0);
    EXPECT_EQ(r.setHighlighted(0, Orv2dPoint(), 1), 0u);
    EXPECT_TRUE(r.isHighlighted());
    delete b;
}

TEST_P(Relief, LabelTextInsideTheBevel) {
    OrvBitmap* b = sheet(160, 60);
    OrvReliefLabel label(d, Orv2dRect(5, 5, 120, 40), "Hello", 2, look);
    label.draw2d(b, nullptr);
    Orv2dRect inside(8, 8, 114, 34);
    int ink = countPixels(b, inside, px("black"));
    EXPECT_GT(ink, 20);
    // The text starts at the left of the interior: nothing on the right half.
    EXPECT_EQ(countPixels(b, Orv2dRect(70, 8, 52, 34), px("black")), 0);
    // Insensitive, the text is drawn through the gray stipple: fewer pixels.
    label.setSensitive(0);
    b->rectangle(paint("white"), Orv2dRect(0, 0, 160, 60), 1);
    label.draw2d(b, nullptr);
    int grayed = countPixels(b, inside, px("black"));
    EXPECT_GT(grayed, 0);
    EXPECT_LT(grayed, ink);
    // Thickness 10 in a height of 15: the relief, but no text.
    OrvReliefLabel thick(d, Orv2dRect(5, 5, 120, 15), "Hello", 10, look);
    b->rectangle(paint("white"), Orv2dRect(0, 0, 160, 60), 1);
    thick.draw2d(b, nullptr);
    EXPECT_EQ(countPixels(b, Orv2dRect(6, 6, 118, 13), px("black")), 0);
    EXPECT_EQ(pixel(b, 60, 12), fg(thick.faceMakeUp));
    // Without the background only the text is drawn, and a selected one shows its frame.
    OrvReliefLabel bare(d, Orv2dRect(5, 5, 120, 40), "Hello", 2, look);
    bare.showBackground(0);
    b->rectangle(paint("white"), Orv2dRect(0, 0, 160, 60), 1);
    bare.draw2d(b, nullptr);
    EXPECT_EQ(pixel(b, 60, 30), px("white"));
    EXPECT_EQ(countPixels(b, inside, px("black")), ink);
    EXPECT_EQ(pixel(b, 5, 30), px("white"));
    bare.setSelected(1);
    bare.draw2d(b, nullptr);
    EXPECT_EQ(pixel(b, 5, 30), px("black"));
    delete b;
}

TEST_P(Relief, ToggleMarks) {
    OrvBitmap* b = sheet(160, 40);
    OrvToggle check(d, Orv2dRect(5, 5, 140, 30), "Check", 2, look);
    OrvToggle radio(d, Orv2dRect(5, 5, 140, 30), "Radio", 2, look);
    radio.useDiamond(1);
    Orv2dRect box = check.checkBox(nullptr);
    EXPECT_EQ(box.w, 16u);
    struct Row {
        OrvToggle* toggle;
        const char* mark;
        int x, y;  // a point of the mark, in sixteenths of the box
    } rows[] = {{&check, "red", 4, 10}, {&radio, "blue", 8, 8}};
    for (const Row& row : rows) {
        Orv2dRect at = row.toggle->checkBox(nullptr);
        int x = at.x + row.x * (int)at.w / 16, y = at.y + row.y * (int)at.h / 16;
        b->rectangle(paint("white"), Orv2dRect(0, 0, 160, 40), 1);
        row.toggle->draw2d(b, nullptr);
        EXPECT_NE(pixel(b, x, y), px(row.mark)) << row.mark;
        row.toggle->setChecked(1);
        EXPECT_TRUE(row.toggle->isChecked());
        row.toggle->draw2d(b, nullptr);
        EXPECT_EQ(pixel(b, x, y), px(row.mark)) << row.mark;
        // The text lies right of the box and the margin.
        EXPECT_GT(countPixels(b, Orv2dRect(at.x + 20 + 2, 6, 100, 28), px("black")), 10);
        EXPECT_EQ(countPixels(b, Orv2dRect(at.x + 17, 6, 3, 28), px("black")), 0);
    }
    // The mark's make-ups: "red" and "blue" above one bit.
    EXPECT_EQ(check.markMakeUp[0]->foreground(), d->color("red"));
    EXPECT_EQ(check.markMakeUp[1]->foreground(), d->color("blue"));
    delete b;
}

TEST_P(Relief, FitToContentsOfEachClass) {
    OrvRasterFont* font = look->font();
    Orv2dRect ok = font->bbox("OK", 0, 1);
    Orv2dRect title = font->bbox("Options", 0, 1);
    OrvBitmap* pic = new OrvBitmap(d->rootCanvas, 20, 12, 1);
    pic->lock();  // the test's own hold: the last holder to let go deletes a bitmap
    struct Row {
        OrvReliefLabel* gadget;
        uint32_t w, h;
    };
    OrvReliefLabel label(d, Orv2dRect(7, 9, 1, 1), "OK", 2, look);
    OrvCluster cluster(d, Orv2dRect(7, 9, 1, 1), "Options", 3, look);
    OrvToggle toggle(d, Orv2dRect(7, 9, 1, 1), "OK", 2, look);
    OrvIconStates icon(d, Orv2dRect(7, 9, 1, 1), pic, pic, 2, look);
    OrvReliefLabel side(d, Orv2dRect(7, 9, 1, 1), "OK", 1, look);
    side.setBitmap(pic);
    side.setLabelBitmapSpace(5);
    OrvReliefLabel stacked(d, Orv2dRect(7, 9, 1, 1), "OK", 1, look);
    stacked.setBitmap(pic);
    stacked.setAlignement(OrvTop);
    uint32_t toggleH = ok.h + 8 > 16 ? ok.h + 8 : 16;
    Row rows[] = {
        {&label, ok.w + 8, ok.h + 8},
        {&cluster, title.w + 12, title.h + 12 + 3 + 50},
        {&toggle, ok.w + 8 + 16 + 4, toggleH},
        {&icon, 20 + 8, 12 + 8},
        {&side, ok.w + 5 + 20 + 4, (ok.h > 12 ? ok.h : 12) + 4},
        {&stacked, (ok.w > 20 ? ok.w : 20) + 4, ok.h + 4 + 12 + 4},  // the default space
    };
    for (const Row& row : rows) {
        row.gadget->fitToContents();
        EXPECT_EQ(row.gadget->rect, Orv2dRect(7, 9, row.w, row.h)) << row.gadget->className();
    }
    pic->unLock();
}

TEST_P(Relief, ToggleHeightFollowsFontAndBox) {
    uint32_t fontH = look->font()->box.h;
    OrvToggle t(d, Orv2dRect(0, 0, 100, 100), "x", 2, look);
    EXPECT_EQ(t.rect.h, fontH > 16 ? fontH : 16u);
    EXPECT_EQ(t.rect.w, 100u);
}

TEST(ReliefSizes, LinesOfALabel) {
    const char* name = getenv("DISPLAY");
    if (!name) GTEST_SKIP() << "no DISPLAY";
    OrvDirector* d = new OrvDirector("reliefsizes", nullptr, 0, nullptr);
    OrvMakeUp* m = d->defaultMakeUp;
    OrvRasterFont* f = m->font();
    Orv2dRect a = f->bbox("a", 0, 1), bb = f->bbox("bbbb", 0, 1);
    struct Row {
        const char* text;
        uint32_t w, h;
    } rows[] = {
        {"", 0, 0},
        {"a", a.w, a.h},
        {"a\n", a.w, a.h},  // a trailing newline makes no empty line
        {"a\nbbbb", bb.w, a.h + bb.h},
        {"bbbb\na\n", bb.w, a.h + bb.h},
    };
    for (const Row& row : rows)
        EXPECT_EQ(OrvLabelBitmapSizes(m, row.text, nullptr, OrvLeft, 4),
                  Orv2dRect(0, 0, row.w, row.h))
            << "[" << row.text << "]";
    unsigned count = 99;
    OrvTextToLabels("", count);
    EXPECT_EQ(count, 0u);
    OrvTextToLabels("one\n", count);
    EXPECT_EQ(count, 1u);
    delete d;
}

TEST(ReliefIcons, StatesAndBitmaps) {
    if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY";
    OrvDirector* d = new OrvDirector("reliefstates", nullptr, 0, nullptr);
    OrvBitmap* one = new OrvBitmap(d->rootCanvas, 8, 8, 1);
    OrvBitmap* two = new OrvBitmap(d->rootCanvas, 8, 8, 1);
    // The test holds each once, so that they outlive the gadget.
    one->lock();
    two->lock();
    {
        OrvIconStates icon(d, Orv2dRect(0, 0, 30, 30), one, two, 2);
        EXPECT_STREQ(icon.defaultRole(), "Toggle");
        EXPECT_EQ(icon.bitmap, one);
        EXPECT_EQ(one->lockCount, 4u);  // the test, shown, first state, second's partner
        icon.invert();
        EXPECT_TRUE(icon.isInverted());
        EXPECT_EQ(icon.bitmap, two);
        icon.invertBitmaps();  // the second state now shows its partner
        EXPECT_EQ(icon.bitmap, one);
        EXPECT_EQ(icon.bitmaps[2], one);
        EXPECT_EQ(icon.bitmaps[3], two);
        icon.invert();
        EXPECT_EQ(icon.bitmap, one);
        icon.setState(4, 7);
        EXPECT_EQ(icon.state1, 4u);
        EXPECT_EQ(icon.state2, 7u);
        EXPECT_FALSE(icon.isInverted());
        CaptureStdout();
        icon.setBitmap(two);
        EXPECT_EQ(GetCapturedStdout(), "OrvIconStates::setBitmap : Not implemented. \n");
        EXPECT_EQ(icon.bitmap, one);
    }
    EXPECT_EQ(one->lockCount, 1u);
    EXPECT_EQ(two->lockCount, 1u);
    {
        OrvReliefLabel label(d, Orv2dRect(), "x", 1);
        OrvToggle toggle(d, Orv2dRect(), "x", 1);
        OrvCluster cluster(d, Orv2dRect(), "x", 1);
        EXPECT_STREQ(label.defaultRole(), "Button");
        EXPECT_STREQ(toggle.defaultRole(), "Toggle");
        EXPECT_STREQ(cluster.defaultRole(), "Button");
    }
    one->unLock();
    two->unLock();
    delete d;
}

TEST(ReliefCluster, OnlyTheFrameAndTitleAreHit) {
    if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY";
    OrvDirector* d = new OrvDirector("reliefcluster", nullptr, 0, nullptr);
    {
        OrvCluster plain(d, Orv2dRect(10, 10, 200, 100), "", 2);
        struct Row {
            int x, y;
            unsigned long hit;
        } rows[] = {
            {10, 50, 1},  {6, 50, 1},   {5, 50, 0},    {14, 50, 1},   {15, 50, 0},
            {110, 60, 0}, {110, 10, 1}, {110, 114, 1}, {110, 115, 0}, {206, 60, 1},
            {205, 60, 0}, {214, 60, 1}, {215, 60, 0},
        };
        for (const Row& row : rows)
            EXPECT_EQ(plain.contains2d(Orv2dPoint(row.x, row.y), nullptr), row.hit)
                << row.x << "," << row.y;
        // Under a transformer the band is found where the frame is drawn.
        Orv2dMatrix shift(Orv2dPoint(100, 0));
        EXPECT_TRUE(plain.contains2d(Orv2dPoint(110, 50), &shift));
        EXPECT_FALSE(plain.contains2d(Orv2dPoint(10, 50), &shift));

        OrvCluster titled(d, Orv2dRect(10, 10, 200, 100), "Group", 2);
        Orv2dRect title = titled.titleBox(nullptr);
        EXPECT_EQ(title.x, 10 + 10 + 4);
        EXPECT_EQ(title.y, 10);
        EXPECT_GT(title.w, 8u);
        Orv2dRect frame = titled.frameBox(nullptr);
        EXPECT_EQ(frame.y, 10 + (int32_t)title.h / 2);
        EXPECT_TRUE(titled.contains2d(Orv2dPoint(title.x + 2, 11), nullptr));
        EXPECT_FALSE(titled.contains2d(Orv2dPoint(title.x - 3, 11), nullptr));
        EXPECT_TRUE(titled.contains2d(Orv2dPoint(50, frame.y), nullptr));
        // Selected, its handles answer too.
        titled.setSelected(1);
        EXPECT_TRUE(titled.contains2d(Orv2dPoint(110, 110), nullptr));
        // A cluster too small for its band is hit all over.
        OrvCluster tiny(d, Orv2dRect(0, 0, 4, 4), "", 2);
        EXPECT_TRUE(tiny.contains2d(Orv2dPoint(2, 2), nullptr));
    }
    delete d;
}
