// Make-ups: one object per set of attributes, derivations, counting, contexts per canvas.
#include "orv_fixtures.h"

namespace {

class MakeUps : public OrvScreenTest {};
ORV_ON_BOTH_SCREENS(MakeUps);

// The attributes in which two make-ups differ, by their rank in OrvMakeUpValues.
std::vector<int> differences(const OrvMakeUp* a, const OrvMakeUp* b) {
    OrvMakeUpValues x, y;
    a->values(x);
    b->values(y);
#define ORV_SAME(f) (x.f == y.f)
    const bool same[] = {
        ORV_SAME(background), ORV_SAME(foreground),  ORV_SAME(pattern),    ORV_SAME(colorPattern),
        ORV_SAME(font),       ORV_SAME(lineStyle),   ORV_SAME(lineWidth),  ORV_SAME(fillStyle),
        ORV_SAME(arcMode),    ORV_SAME(fillRule),    ORV_SAME(vfont),      ORV_SAME(distinguish),
        ORV_SAME(smooth),     ORV_SAME(cull),        ORV_SAME(frontStyle), ORV_SAME(backStyle),
        ORV_SAME(markerType), ORV_SAME(markerScale), ORV_SAME(texture)};
#undef ORV_SAME
    std::vector<int> out;
    for (int i = 0; i < (int)(sizeof same / sizeof same[0]); i++)
        if (!same[i]) out.push_back(i);
    return out;
}

TEST_P(MakeUps, DefaultsOfStartUp) {
    OrvMakeUp* m = d->defaultMakeUp;
    ASSERT_NE(dynamic_cast<Orv2dMakeUp*>(m), nullptr) << "all defaults: the smallest class";
    EXPECT_TRUE(m->background() == d->defaultBackground &&
                m->foreground() == d->defaultForeground && m->lineStyle() == d->solidLineStyle &&
                m->font() == d->defaultFont);
    EXPECT_EQ(std::vector<unsigned long>({0, 1, 1, 4, 1, 2, 0xFFFFFFFF, 1}),
              std::vector<unsigned long>({m->lineWidth(), m->smooth(), m->cull(), m->frontStyle(),
                                          m->markerType(), m->markerScale(), m->planeMask,
                                          (unsigned long)m->count}));
    // Asked for by its attributes, nulls standing for the defaults, it is found again.
    EXPECT_EQ(d->makeUp(nullptr, nullptr, nullptr, 0, nullptr, nullptr, nullptr, 0, OrvArcPieSlice,
                        0, nullptr, 0, 1, 1, 4, 4, 1, 2, nullptr),
              m);
    EXPECT_EQ(differences(d->wideMakeUp, m), std::vector<int>({6}));
    EXPECT_EQ(d->wideMakeUp->lineWidth(), 4);
    EXPECT_TRUE(d->wideMakeUp->hasInternal(d->rootCanvas)) << "realised on the root canvas";
    EXPECT_EQ(d->balloonMakeUp->background(), d->color("wheat"));
    EXPECT_EQ(d->tmpMakeUpObject->holdsCounts, 0) << "the scratch make-up counts nothing";
}

TEST_P(MakeUps, EverySetterSharesTheEqualButOne) {
    OrvMakeUp* base = d->makeUpForeground(d->defaultMakeUp, d->color("red"));
    OrvCount(base);
    OrvMakeUpValues before;
    base->values(before);
    OrvBitmap* tile = new OrvBitmap(d->rootCanvas, 4, 4, d->depth);
    OrvMakeUp* made[] = {
        d->makeUpBackground(base, d->color("yellow")),
        d->makeUpForeground(base, d->color("blue")),
        d->makeUpPattern(base, d->pattern("gray")),
        d->makeUpColorPattern(base, tile),
        d->makeUpFont(base, d->font("%helvetica-10-")),
        d->makeUpLineStyle(base, d->lineStyle("dot")),
        d->makeUpLineWidth(base, 3),
        d->makeUpFillStyle(base, OrvFillStippled),
        d->makeUpArcMode(base, OrvArcChord),
        d->makeUpFillRule(base, OrvWindingRule),
        nullptr,  // the vectorial font: another one needs the 3D side
        d->makeUpDistinguish(base, 1),
        d->makeUpSmooth(base, 0),
        d->makeUpCull(base, OrvCullBoth),
        d->makeUpFrontStyle(base, OrvFaceLines),
        d->makeUpBackStyle(base, OrvFacePoints),
        d->makeUpMarkerType(base, 3),
        d->makeUpMarkerScale(base, 5),
    };
    for (int i = 0; i < (int)(sizeof made / sizeof made[0]); i++)
        EXPECT_EQ(made[i] ? differences(made[i], base) : std::vector<int>({i}),
                  std::vector<int>({i}));
    // Asking again gives the same objects, and back again the base; the argument is untouched.
    EXPECT_TRUE(d->makeUpMarkerScale(base, 5) == made[17] &&
                d->makeUpLineWidth(made[6], 0) == base &&
                d->makeUpLineWidth(base, base->lineWidth()) == base &&
                OrvMakeUpHashTable::match(base, before) == 1);
    // Classes follow the attributes.
    EXPECT_TRUE(dynamic_cast<Orv2dMakeUp*>(made[4]) && dynamic_cast<Orv3dMakeUp*>(made[16]));
    OrvMakeUp* both = d->makeUpMarkerType(made[4], 3);
    EXPECT_NE(dynamic_cast<OrvTotalMakeUp*>(both), nullptr) << "a font and a marker type";
    EXPECT_TRUE(differences(both, base) == std::vector<int>({4, 16}) && tile->lockCount == 1u);
    OrvRelease(base);
}

TEST_P(MakeUps, CountingDeletesAndTheTableForgets) {
    OrvColor* pink = d->color("pink");
    OrvCount(pink);  // the test holds it: releasing the make-up would let it go otherwise
    int pinkCount = pink->count;
    OrvMakeUp* m = d->makeUpBackground(d->defaultMakeUp, pink);
    EXPECT_EQ(m->count, 0) << "the caller counts";
    EXPECT_EQ(pink->count, pinkCount + 1) << "the make-up counts its colour";
    unsigned long inTable = d->makeUps->count;
    OrvCount(m);
    OrvCount(m);
    OrvRelease(m);
    EXPECT_EQ(d->makeUpBackground(d->defaultMakeUp, pink), m);
    unsigned long creations = d->makeUpCreations;
    OrvRelease(m);  // the last holder: gone, and out of the table
    EXPECT_EQ(d->makeUps->count, inTable - 1);
    EXPECT_EQ(d->makeUpBackground(d->defaultMakeUp, pink)->background(), pink);
    EXPECT_EQ(d->makeUpCreations, creations + 1) << "a new object";
    OrvRelease(pink);
    // Copies are outside the table and count nothing until asked to.
    int fg = d->defaultForeground->count;
    Orv2dMakeUp* copy = new Orv2dMakeUp(d->defaultMakeUp);
    copy->countResources();
    EXPECT_EQ(d->defaultForeground->count, fg + 1);
    // The contract of the table: equal make-ups are found as one, whatever the key.
    OrvMakeUpValues v;
    copy->values(v);
    EXPECT_EQ(d->makeUps->get(v), d->defaultMakeUp);
    OrvMakeUpHashTable table(7);
    table.put(copy);
    table.put(copy);
    EXPECT_TRUE(table.count == 1u && table.get(v) == copy);
    v.lineWidth = 4;
    EXPECT_TRUE(!table.get(v) && d->makeUps->get(v) == d->wideMakeUp);
    EXPECT_TRUE(table.remove(copy) == 1 && table.count == 0u);
    delete copy;
    EXPECT_EQ(d->defaultForeground->count, fg);
}

TEST_P(MakeUps, ContextsPerCanvasAndModeOnSharedMakeUps) {
    OrvMakeUp* red = paint("red", "blue");
    OrvBitmap *a = sheet(20, 20), *b = sheet(20, 20);
    unsigned long gc = red->internal(a);
    ASSERT_NE(gc, 0u);
    EXPECT_TRUE(red->internal(b) == gc && red->internals.length() == 1u)
        << "canvases that share the root share one context";
    // The mode of a shared make-up shows on all its users: xor of the background gives the
    // foreground, twice gives it back.
    EXPECT_EQ(paint("red", "blue"), red);
    a->rectangle(paint("blue"), Orv2dRect(0, 0, 20, 20), 1);
    red->setMode(OrvXorMode);
    a->rectangle(paint("red", "blue"), Orv2dRect(0, 0, 10, 10), 1);
    expectPixels(a, "red: 5,5");
    a->rectangle(red, Orv2dRect(0, 0, 10, 10), 1);
    expectPixels(a, "blue: 5,5");
    red->setMode(OrvCopyMode);
    // Plane mask and overwrite reach the context.
    red->setPlaneMask(0);
    a->rectangle(red, Orv2dRect(0, 0, 10, 10), 1);
    expectPixels(a, "blue: 5,5");  // no plane may change
    red->setPlaneMask(0xFFFFFFFF);
    a->rectangle(red, Orv2dRect(0, 0, 10, 10), 1);
    expectPixels(a, "red: 5,5");
    // Deleting a canvas that realises resources itself gives its contexts back.
    OrvCanvas* own = new OrvCanvas(d, 10, 10, (void*)d->rootCanvas->drawable);
    own->sharesRootResources = 0;
    EXPECT_TRUE(red->internal(own) != gc && red->internals.length() == 2u);
    delete own;
    EXPECT_EQ(red->internals.length(), 1u);
    delete b;
    delete a;
}

TEST_P(MakeUps, MarkerSizes) {
    OrvMakeUp* m = d->defaultMakeUp;
    EXPECT_EQ(m->markerSize(), Orv2dRect(0, 0, 6, 6));
    for (auto s : {std::make_pair(0, 4), {1, 4}, {7, 16}})
        EXPECT_EQ(d->makeUpMarkerScale(m, s.first)->markerSize(),
                  Orv2dRect(0, 0, s.second, s.second));
    EXPECT_EQ("OrvMakeUp::markerSize : Marker scale unknown.\n", OrvTestOutput([&] {
                  EXPECT_EQ(d->makeUpMarkerScale(m, 8)->markerSize(), Orv2dRect());
              }));
}

}  // namespace
