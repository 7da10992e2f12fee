// What the gadgets draw, read back on both screens: the derived make-ups, the bevel of each
// state, labels, toggles, the stipples of a one-bit display, scroll bars, sliders and thumb
// wheels; the sizes that fitToContents gives, the icon's states and the cluster's hit area.
#include "orv/relief.h"
#include "orv/value.h"
#include "orv_fixtures.h"

namespace {

class Looks : public OrvScreenTest {
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
    // The bitmap white again.
    OrvBitmap* wiped(OrvBitmap* b) {
        b->rectangle(paint("white"), Orv2dRect(0, 0, b->width, b->height), 1);
        return b;
    }
    int black(OrvBitmap* b, const Orv2dRect& r) { return countPixels(b, r, px("black")); }
};
ORV_ON_BOTH_SCREENS(Looks);

}  // namespace

TEST_P(Looks, FiveDerivedMakeUpsSharedThroughTheDirector) {
    OrvReliefRectangle r(d, Orv2dRect(0, 0, 50, 30), 3, look);
    OrvColor *lit = nullptr, *shaded = nullptr, *pressed = nullptr;
    OrvComputeReliefColors(look->background(), lit, shaded, pressed);
    struct Row {
        OrvMakeUp* made;
        OrvColor* foreground;
        OrvPattern* pattern;
    } rows[] = {
        {r.faceMakeUp, look->background(), d->solidPattern},
        {r.litMakeUp, lit, d->solidPattern},
        {r.shadedMakeUp, shaded, d->solidPattern},
        {r.pressedMakeUp, pressed, d->solidPattern},
        {r.disabledMakeUp, look->foreground(), d->pattern("gray")},
    };
    for (const Row& row : rows)
        EXPECT_EQ(std::make_tuple(row.made->foreground(), row.made->pattern(), row.made->font()),
                  std::make_tuple(row.foreground, row.pattern, look->font()))
            << &row - rows;
    // The three shades are three colours on either screen, and none is the face's.
    unsigned long shades[] = {fg(r.litMakeUp), fg(r.shadedMakeUp), fg(r.pressedMakeUp)};
    EXPECT_TRUE(shades[0] != shades[1] && shades[0] != shades[2] && shades[1] != shades[2]);
    EXPECT_NE(shades[2], fg(r.faceMakeUp));
    OrvReliefRectangle other(d, Orv2dRect(5, 5, 20, 20), 1, look);
    EXPECT_EQ(std::make_pair(other.litMakeUp, other.disabledMakeUp),
              std::make_pair(r.litMakeUp, r.disabledMakeUp));
    // A new background brings new shades, and the old ones are let go.
    int before = r.litMakeUp->count;
    r.setBackground(d->color("light blue"));
    EXPECT_NE(r.litMakeUp, other.litMakeUp);
    EXPECT_EQ(r.faceMakeUp->foreground(), d->color("light blue"));
    EXPECT_EQ(other.litMakeUp->count, before - 1);
}

TEST_P(Looks, OneBitDisplayGetsStipples) {
    OrvMakeUp* bw = paint("black", "white");
    OrvMakeUp* out[OrvReliefMakeUpCount];
    OrvComputeReliefMakeUps(bw, 1, out);
    EXPECT_EQ(std::make_pair(out[OrvReliefFace]->foreground(), out[OrvReliefFace]->pattern()),
              std::make_pair(d->color("white"), d->solidPattern));
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
        b->rectangle(m, Orv2dRect(0, 0, 120, 80), 1);
        EXPECT_EQ(
            std::make_tuple(m->pattern(), m->foreground(), black(b, Orv2dRect(33, 20, 16, 2))),
            std::make_tuple(d->pattern(row.pattern), d->color("black"), row.blackOf32))
            << row.pattern;
    }
    // The drawn bevel: a light band above and to the left, a dark one below and right.
    wiped(b)->reliefRectangle(bw, out[OrvReliefFace], out[OrvReliefLit], out[OrvReliefShaded],
                              Orv2dRect(10, 10, 100, 60), 6, 1);
    EXPECT_EQ(
        std::vector<int>({black(b, Orv2dRect(40, 12, 16, 2)), black(b, Orv2dRect(40, 66, 16, 2)),
                          black(b, Orv2dRect(40, 30, 16, 2))}),
        std::vector<int>({8, 24, 0}));
    for (OrvMakeUp* m : out) OrvRelease(m);
    // Stipples the application names "light" and "dark" are taken first.
    static const unsigned char rows16[32] = {0xF0, 0xF0};
    OrvPattern* own = d->pattern("light", 16, 1, rows16);
    OrvComputeReliefMakeUps(bw, 1, out);
    EXPECT_EQ(std::make_pair(out[OrvReliefLit]->pattern(), out[OrvReliefShaded]->pattern()),
              std::make_pair(own, d->pattern("dark3")));
    for (OrvMakeUp* m : out) OrvRelease(m);
    delete b;
}

TEST_P(Looks, BevelOfEachState) {
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
        r.draw2d(wiped(b), nullptr);
        // Face; top and left; bottom and right; the outline; outside.
        EXPECT_EQ(
            std::vector<unsigned long>({pixel(b, 50, 35), pixel(b, 50, 12), pixel(b, 12, 35),
                                        pixel(b, 50, 58), pixel(b, 88, 35), pixel(b, 10, 35),
                                        pixel(b, 50, 62)}),
            std::vector<unsigned long>({fg(row.face), fg(row.top), fg(row.top), fg(row.bottom),
                                        fg(row.bottom), px("black"), px("white")}))
            << row.inverted << row.highlighted;
    }
    // Without the border the band reaches the edge; a refused highlight changes nothing.
    r.border(0);
    r.draw2d(wiped(b), nullptr);
    EXPECT_EQ(pixel(b, 10, 35), fg(r.shadedMakeUp));
    r.allowHighlight(0);
    EXPECT_EQ(r.setHighlighted(0, Orv2dPoint(), 1), 0u);
    EXPECT_TRUE(r.isHighlighted());
    delete b;
}

TEST_P(Looks, LabelTextAndToggleMarks) {
    OrvBitmap* b = sheet(160, 60);
    OrvReliefLabel label(d, Orv2dRect(5, 5, 120, 40), "Hello", 2, look);
    label.draw2d(b, nullptr);
    Orv2dRect inside(8, 8, 114, 34);
    int ink = black(b, inside);
    EXPECT_GT(ink, 20);
    EXPECT_EQ(black(b, Orv2dRect(70, 8, 52, 34)), 0) << "the text starts at the left";
    // Insensitive, the text is drawn through the gray stipple: fewer pixels.
    label.setSensitive(0);
    label.draw2d(wiped(b), nullptr);
    EXPECT_GT(black(b, inside), 0);
    EXPECT_LT(black(b, inside), ink);
    // Thickness 10 in a height of 15: the relief, but no text.
    OrvReliefLabel thick(d, Orv2dRect(5, 5, 120, 15), "Hello", 10, look);
    thick.draw2d(wiped(b), nullptr);
    EXPECT_EQ(black(b, Orv2dRect(6, 6, 118, 13)), 0);
    EXPECT_EQ(pixel(b, 60, 12), fg(thick.faceMakeUp));
    // Without the background only the text is drawn, and a selected one shows its frame.
    OrvReliefLabel bare(d, Orv2dRect(5, 5, 120, 40), "Hello", 2, look);
    bare.showBackground(0);
    bare.draw2d(wiped(b), nullptr);
    EXPECT_EQ(std::make_tuple(pixel(b, 60, 30), black(b, inside), pixel(b, 5, 30)),
              std::make_tuple(px("white"), ink, px("white")));
    bare.setSelected(1);
    bare.draw2d(b, nullptr);
    EXPECT_EQ(pixel(b, 5, 30), px("black"));

    OrvToggle check(d, Orv2dRect(5, 5, 140, 30), "Check", 2, look);
    OrvToggle radio(d, Orv2dRect(5, 5, 140, 30), "Radio", 2, look);
    radio.useDiamond(1);
    EXPECT_EQ(check.checkBox(nullptr).w, 16u);
    struct Row {
        OrvToggle* toggle;
        const char* mark;
        int x, y;  // a point of the mark, in sixteenths of the box
    } rows[] = {{&check, "red", 4, 10}, {&radio, "blue", 8, 8}};
    for (const Row& row : rows) {
        Orv2dRect at = row.toggle->checkBox(nullptr);
        int x = at.x + row.x * (int)at.w / 16, y = at.y + row.y * (int)at.h / 16;
        row.toggle->draw2d(wiped(b), nullptr);
        EXPECT_NE(pixel(b, x, y), px(row.mark)) << row.mark;
        row.toggle->setChecked(1);
        row.toggle->draw2d(b, nullptr);
        EXPECT_EQ(pixel(b, x, y), px(row.mark)) << row.mark;
        // The text lies right of the box and the margin.
        EXPECT_GT(black(b, Orv2dRect(at.x + 22, 6, 100, 28)), 10);
        EXPECT_EQ(black(b, Orv2dRect(at.x + 17, 6, 3, 28)), 0);
    }
    delete b;
}

TEST_P(Looks, FitToContentsAndLinesOfALabel) {
    OrvRasterFont* font = look->font();
    Orv2dRect ok = font->bbox("OK", 0, 1), title = font->bbox("Options", 0, 1);
    OrvBitmap* pic = new OrvBitmap(d->rootCanvas, 20, 12, 1);
    pic->lock();  // the test's own hold: the last holder to let go deletes a bitmap
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
    struct Row {
        OrvReliefLabel* gadget;
        uint32_t w, h;
    } rows[] = {
        {&label, ok.w + 8, ok.h + 8},
        {&cluster, title.w + 12, title.h + 12 + 3 + 50},
        {&toggle, ok.w + 8 + 16 + 4, std::max(ok.h + 8, 16u)},
        {&icon, 20 + 8, 12 + 8},
        {&side, ok.w + 5 + 20 + 4, std::max(ok.h, 12u) + 4},
        {&stacked, std::max(ok.w, 20u) + 4, ok.h + 4 + 12 + 4},  // the default space
    };
    for (const Row& row : rows) {
        row.gadget->fitToContents();
        EXPECT_EQ(row.gadget->rect, Orv2dRect(7, 9, row.w, row.h)) << row.gadget->className();
    }
    pic->unLock();
    OrvToggle tall(d, Orv2dRect(0, 0, 100, 100), "x", 2, look);
    EXPECT_EQ(tall.rect, Orv2dRect(0, 0, 100, std::max(font->box.h, 16u)));

    Orv2dRect a = font->bbox("a", 0, 1), bb = font->bbox("bbbb", 0, 1);
    struct Lines {
        const char* text;
        uint32_t w, h;
    } lines[] = {
        {"", 0, 0},
        {"a", a.w, a.h},
        {"a\n", a.w, a.h},  // a trailing newline makes no empty line
        {"a\nbbbb", bb.w, a.h + bb.h},
        {"bbbb\na\n", bb.w, a.h + bb.h},
    };
    for (const Lines& l : lines)
        EXPECT_EQ(OrvLabelBitmapSizes(look, l.text, nullptr, OrvLeft, 4), Orv2dRect(0, 0, l.w, l.h))
            << "[" << l.text << "]";
}

TEST_P(Looks, IconStatesAndTheirBitmaps) {
    OrvBitmap* one = new OrvBitmap(d->rootCanvas, 8, 8, 1);
    OrvBitmap* two = new OrvBitmap(d->rootCanvas, 8, 8, 1);
    // The test holds each once, so that they outlive the gadget.
    one->lock();
    two->lock();
    {
        OrvIconStates icon(d, Orv2dRect(0, 0, 30, 30), one, two, 2);
        EXPECT_STREQ(icon.defaultRole(), "Toggle");
        // The test, shown, first state, second's partner.
        EXPECT_EQ(std::make_pair(icon.bitmap, one->lockCount), std::make_pair(one, 4ul));
        icon.invert();
        EXPECT_EQ(icon.bitmap, two);
        icon.invertBitmaps();  // the second state now shows its partner
        EXPECT_EQ(std::vector<OrvBitmap*>({icon.bitmap, icon.bitmaps[2], icon.bitmaps[3]}),
                  std::vector<OrvBitmap*>({one, one, two}));
        icon.invert();
        icon.setState(4, 7);
        EXPECT_EQ(std::make_tuple(icon.bitmap, icon.state1, icon.state2, icon.isInverted()),
                  std::make_tuple(one, 4ul, 7ul, 0ul));
        EXPECT_EQ(OrvTestOutput([&] { icon.setBitmap(two); }),
                  "OrvIconStates::setBitmap : Not implemented. \n");
        EXPECT_EQ(icon.bitmap, one);
    }
    EXPECT_EQ(std::make_pair(one->lockCount, two->lockCount), std::make_pair(1ul, 1ul));
    one->unLock();
    two->unLock();
}

TEST_P(Looks, OnlyTheClustersFrameAndTitleAreHit) {
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
    EXPECT_EQ(std::make_pair(title.x, title.y), std::make_pair(10 + 10 + 4, 10));
    EXPECT_GT(title.w, 8u);
    Orv2dRect frame = titled.frameBox(nullptr);
    EXPECT_EQ(frame.y, 10 + (int32_t)title.h / 2);
    EXPECT_TRUE(titled.contains2d(Orv2dPoint(title.x + 2, 11), nullptr));
    EXPECT_FALSE(titled.contains2d(Orv2dPoint(title.x - 3, 11), nullptr));
    EXPECT_TRUE(titled.contains2d(Orv2dPoint(50, frame.y), nullptr));
    // Selected, its handles answer too; one too small for its band is hit all over.
    titled.setSelected(1);
    EXPECT_TRUE(titled.contains2d(Orv2dPoint(110, 110), nullptr));
    OrvCluster tiny(d, Orv2dRect(0, 0, 4, 4), "", 2);
    EXPECT_TRUE(tiny.contains2d(Orv2dPoint(2, 2), nullptr));
}

TEST_P(Looks, ScrollBarPixelsAndTheShortBar) {
    OrvBitmap* b = sheet(240, 240);
    OrvScrollBar bar(d, Orv2dRect(10, 20, 200, 20), OrvHorizontal, 2, look);
    bar.draw2d(b, nullptr);
    // Thumb from 70 to 150 on a trough from 30 to 190, arrows at either end.
    struct Point {
        int x, y;
        OrvMakeUp* m;
    } points[] = {
        {110, 30, bar.faceMakeUp}, {110, 23, bar.litMakeUp},    {110, 36, bar.shadedMakeUp},
        {110, 37, look},           {50, 30, bar.pressedMakeUp}, {170, 30, bar.pressedMakeUp},
        {20, 30, bar.faceMakeUp},  {200, 30, bar.faceMakeUp},   {10, 30, look},
    };
    for (const Point& p : points) EXPECT_EQ(pixel(b, p.x, p.y), fg(p.m)) << p.x << "," << p.y;
    EXPECT_EQ(bar.lastDrawn, (40ul << 16) | 80ul);
    // Vertical: the thumb lies lower for a larger value: from 110 to 126.
    OrvScrollBar vertical(d, Orv2dRect(215, 10, 20, 200), OrvVertical, 2, look);
    vertical.setValues(0, 100, 50, 10);
    vertical.draw2d(b, nullptr);
    EXPECT_EQ(
        std::vector<unsigned long>({pixel(b, 225, 118), pixel(b, 225, 100), pixel(b, 225, 135)}),
        std::vector<unsigned long>(
            {fg(vertical.faceMakeUp), fg(vertical.pressedMakeUp), fg(vertical.pressedMakeUp)}));
    // Too short for its arrows, a bar draws as a plain relief.
    OrvScrollBar bar2(d, Orv2dRect(2, 2, 40, 20), OrvHorizontal, 3, look);
    OrvReliefRectangle plate(d, Orv2dRect(2, 2, 40, 20), 3, look);
    OrvBitmap* c = sheet(50, 30);
    bar2.draw2d(wiped(b), nullptr);
    plate.draw2d(c, nullptr);
    int differ = 0;
    for (int y = 0; y < 30; y++)
        for (int x = 0; x < 50; x++) differ += pixel(b, x, y) != pixel(c, x, y);
    EXPECT_EQ(differ, 0);
    EXPECT_EQ(pixel(b, 20, 12), fg(bar2.faceMakeUp));
    delete b;
    delete c;
}

TEST_P(Looks, SliderAndThumbWheelPixels) {
    OrvBitmap* b = sheet(220, 50);
    OrvSlider slider(d, Orv2dRect(10, 10, 200, 30), OrvHorizontal, 2, look);
    slider.setValue(50);
    slider.draw2d(b, nullptr);
    // The thumb (105 to 115) stands on the plate with its own bevel, the groove sunken.
    EXPECT_EQ(std::vector<unsigned long>({pixel(b, 110, 13), pixel(b, 60, 13), pixel(b, 110, 25),
                                          pixel(b, 60, 24), pixel(b, 160, 24)}),
              std::vector<unsigned long>({fg(slider.litMakeUp), fg(slider.faceMakeUp),
                                          fg(slider.faceMakeUp), fg(slider.pressedMakeUp),
                                          fg(slider.pressedMakeUp)}));

    OrvThumbWheel wheel(d, Orv2dRect(10, 10, 200, 20), OrvHorizontal, 2, look);
    struct Row {
        long value;
        int markX;  // 110 + 98 sin(angle); none when turned away from the viewer
    } rows[] = {{0, 110}, {30, 159}, {330, 61}, {180, 0}};
    for (const Row& row : rows) {
        wheel.setValue(row.value);
        wheel.draw2d(wiped(b), nullptr);
        if (row.markX) {
            EXPECT_EQ(pixel(b, row.markX, 20), px("red")) << row.value;
        }
        Orv2dRect seen = row.markX ? Orv2dRect(12, 12, 196, 1) : Orv2dRect(0, 0, 220, 50);
        EXPECT_EQ(countPixels(b, seen, px("red")), row.markX ? 3 : 0) << row.value;
    }
    // With arrows, the wheel lies between them.
    wheel.arrows(1);
    wheel.setValue(0);
    Orv2dRect first, second, trough, thumb;
    wheel.computeBBox(first, second, trough, thumb, nullptr);
    EXPECT_EQ(std::make_pair(trough, thumb),
              std::make_pair(Orv2dRect(30, 12, 160, 16), Orv2dRect(30, 12, 160, 16)));
    wheel.draw2d(wiped(b), nullptr);
    // The mark, and the left arrow.
    EXPECT_EQ(std::make_pair(pixel(b, 110, 20), pixel(b, 20, 20)),
              std::make_pair(px("red"), fg(wheel.faceMakeUp)));
    delete b;
}
