// Make-ups: one object per set of attributes, derivations, counting, contexts per canvas.
#include <gtest/gtest.h>
#include <cstring>

#include <string>

#include "orv_pixels.h"

namespace {

class MakeUps : public OrvScreenTest {};
ORV_ON_BOTH_SCREENS(MakeUps);

bool sameExcept(const OrvMakeUp* a, const OrvMakeUp* b, int skip) {
    OrvMakeUpValues x, y;
    a->values(x);
    b->values(y);
    const void* fx[19] = {x.background,
                          x.foreground,
                          x.pattern,
                          x.colorPattern,
                          x.font,
                          x.lineStyle,
                          (void*)(unsigned long)x.lineWidth,
                          (void*)x.fillStyle,
                          (void*)(unsigned long)x.arcMode,
                          (void*)x.fillRule,
                          x.vfont,
                          (void*)x.distinguish,
                          (void*)x.smooth,
                          (void*)x.cull,
                          (void*)x.frontStyle,
                          (void*)x.backStyle,
                          (void*)x.markerType,
                          (void*)(unsigned long)x.markerScale,
                          x.texture};
    const void* fy[19] = {y.background,
                          y.foreground,
                          y.pattern,
                          y.colorPattern,
                          y.font,
                          y.lineStyle,
                          (void*)(unsigned long)y.lineWidth,
                          (void*)y.fillStyle,
                          (void*)(unsigned long)y.arcMode,
                          (void*)y.fillRule,
                          y.vfont,
                          (void*)y.distinguish,
                          (void*)y.smooth,
                          (void*)y.cull,
                          (void*)y.frontStyle,
                          (void*)y.backStyle,
                          (void*)y.markerType,
                          (void*)(unsigned long)y.markerScale,
                          y.texture};
    for (int i = 0; i < 19; i++)
        if (i != skip && fx[i] != fy[i]) return false;
    return skip < 0 || fx[skip] != fy[skip];
}

TEST_P(MakeUps, DefaultsOfStartUp) {
    OrvMakeUp* m = d->defaultMakeUp;
    ASSERT_NE(m, nullptr);
    EXPECT_NE(dynamic_cast<Orv2dMakeUp*>(m), nullptr) << "all defaults: the smallest class";
    EXPECT_EQ(m->background(), d->defaultBackground);
    EXPECT_EQ(m->foreground(), d->defaultForeground);
    EXPECT_EQ(m->lineStyle(), d->solidLineStyle);
    EXPECT_EQ(m->font(), d->defaultFont);
    EXPECT_EQ(m->lineWidth(), 0);
    EXPECT_EQ(m->smooth(), 1u);
    EXPECT_EQ(m->cull(), 1u);
    EXPECT_EQ(m->frontStyle(), 4u);
    EXPECT_EQ(m->markerType(), 1u);
    EXPECT_EQ(m->markerScale(), 2);
    EXPECT_EQ(m->planeMask, 0xFFFFFFFFu);
    EXPECT_EQ(m->count, 1);
    EXPECT_EQ(d->makeUp(nullptr, nullptr, nullptr, 0, nullptr, nullptr, nullptr, 0, OrvArcPieSlice,
                        0, nullptr, 0, 1, 1, 4, 4, 1, 2, nullptr),
              m);
    EXPECT_EQ(d->makeUp(d->defaultBackground, d->defaultForeground, d->solidLineStyle, 0, nullptr,
                        d->defaultFont, nullptr, 0, OrvArcPieSlice, 0, nullptr, 0, 1, 1, 4, 4, 1, 2,
                        nullptr),
              m);
    ASSERT_NE(d->wideMakeUp, nullptr);
    EXPECT_EQ(d->wideMakeUp->lineWidth(), 4);
    EXPECT_TRUE(sameExcept(d->wideMakeUp, m, 6));
    EXPECT_TRUE(d->wideMakeUp->hasInternal(d->rootCanvas)) << "realised on the root canvas";
    ASSERT_NE(d->balloonMakeUp, nullptr);
    EXPECT_EQ(d->balloonMakeUp->background(), d->color("wheat"));
    EXPECT_EQ(d->balloonMakeUp->font(), d->font("%helvetica-10-"));
    EXPECT_EQ(d->balloonMakeUp->count, 1);
    // The scratch make-up counts nothing.
    ASSERT_NE(d->tmpMakeUpObject, nullptr);
    EXPECT_EQ(d->tmpMakeUpObject->holdsCounts, 0);
}

TEST_P(MakeUps, EverySetterSharesTheEqualButOne) {
    OrvMakeUp* base = d->makeUpForeground(d->defaultMakeUp, d->color("red"));
    OrvCount(base);
    OrvMakeUpValues before;
    base->values(before);
    OrvBitmap* tile = new OrvBitmap(d->rootCanvas, 4, 4, d->depth);
    OrvMakeUp* made[19] = {
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
        // Any pointer serves as another vectorial font here: only its identity is compared.
        nullptr,
        d->makeUpDistinguish(base, 1),
        d->makeUpSmooth(base, 0),
        d->makeUpCull(base, OrvCullBoth),
        d->makeUpFrontStyle(base, OrvFaceLines),
        d->makeUpBackStyle(base, OrvFacePoints),
        d->makeUpMarkerType(base, 3),
        d->makeUpMarkerScale(base, 5),
        nullptr,
    };
    for (int i = 0; i < 19; i++) {
        if (!made[i]) continue;
        EXPECT_NE(made[i], base) << "attribute " << i;
        EXPECT_TRUE(sameExcept(made[i], base, i)) << "attribute " << i;
    }
    // Asking again gives the same objects.
    EXPECT_EQ(d->makeUpBackground(base, d->color("yellow")), made[0]);
    EXPECT_EQ(d->makeUpLineWidth(base, 3), made[6]);
    EXPECT_EQ(d->makeUpMarkerScale(base, 5), made[17]);
    EXPECT_EQ(d->makeUpLineWidth(made[6], 0), base) << "and back";
    EXPECT_EQ(d->makeUpLineWidth(base, base->lineWidth()), base);
    // The argument is untouched.
    EXPECT_TRUE(sameExcept(base, base, -1));
    OrvMakeUpValues after;
    base->values(after);
    EXPECT_TRUE(before.background == after.background && before.foreground == after.foreground &&
                before.pattern == after.pattern && before.colorPattern == after.colorPattern &&
                before.font == after.font && before.lineStyle == after.lineStyle &&
                before.lineWidth == after.lineWidth && before.fillStyle == after.fillStyle &&
                before.arcMode == after.arcMode && before.fillRule == after.fillRule &&
                before.vfont == after.vfont && before.distinguish == after.distinguish &&
                before.smooth == after.smooth && before.cull == after.cull &&
                before.frontStyle == after.frontStyle && before.backStyle == after.backStyle &&
                before.markerType == after.markerType && before.markerScale == after.markerScale &&
                before.texture == after.texture);
    // Classes follow the attributes.
    EXPECT_NE(dynamic_cast<Orv2dMakeUp*>(made[4]), nullptr);
    EXPECT_NE(dynamic_cast<Orv3dMakeUp*>(made[16]), nullptr);
    OrvMakeUp* both = d->makeUpMarkerType(made[4], 3);
    EXPECT_NE(dynamic_cast<OrvTotalMakeUp*>(both), nullptr) << "a font and a marker type";
    EXPECT_EQ(both->font(), d->font("%helvetica-10-"));
    EXPECT_EQ(both->markerType(), 3u);
    EXPECT_EQ(tile->lockCount, 1u);
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
    OrvMakeUp* again = d->makeUpBackground(d->defaultMakeUp, pink);
    EXPECT_EQ(d->makeUpCreations, creations + 1) << "a new object";
    EXPECT_EQ(again->background(), pink);
    OrvRelease(pink);
    // Copies are outside the table and count nothing until asked to.
    int fg = d->defaultForeground->count;
    Orv2dMakeUp* ghost = new Orv2dMakeUp(d->defaultMakeUp);
    EXPECT_EQ(d->defaultForeground->count, fg);
    EXPECT_EQ(d->makeUps->get([&] {
        OrvMakeUpValues v;
        d->defaultMakeUp->values(v);
        return v;
    }()),
              d->defaultMakeUp);
    ghost->countResources();
    EXPECT_EQ(d->defaultForeground->count, fg + 1);
    delete ghost;
    EXPECT_EQ(d->defaultForeground->count, fg);
}

TEST_P(MakeUps, ContextsPerCanvasAndModeOnSharedMakeUps) {
    OrvMakeUp* red = paint("red", "blue");
    OrvBitmap* a = sheet(20, 20);
    OrvBitmap* b = sheet(20, 20);
    unsigned long gc = red->internal(a);
    ASSERT_NE(gc, 0u);
    EXPECT_EQ(red->internal(b), gc) << "canvases that share the root share one context";
    EXPECT_EQ(red->internal(a), gc);
    EXPECT_EQ(red->internals.length(), 1u);
    // The mode of a shared make-up shows on all its users.
    OrvMakeUp* same = paint("red", "blue");
    EXPECT_EQ(same, red);
    a->rectangle(paint("blue"), Orv2dRect(0, 0, 20, 20), 1);
    red->setMode(OrvXorMode);
    a->rectangle(same, Orv2dRect(0, 0, 10, 10), 1);
    EXPECT_EQ(pixel(a, 5, 5), px("red")) << "xor of the background gives the foreground";
    a->rectangle(same, Orv2dRect(0, 0, 10, 10), 1);
    EXPECT_EQ(pixel(a, 5, 5), px("blue"));
    red->setMode(OrvCopyMode);
    // Plane mask and overwrite reach the context.
    red->setPlaneMask(0);
    a->rectangle(red, Orv2dRect(0, 0, 10, 10), 1);
    EXPECT_EQ(pixel(a, 5, 5), px("blue")) << "no plane may change";
    red->setPlaneMask(0xFFFFFFFF);
    a->rectangle(red, Orv2dRect(0, 0, 10, 10), 1);
    EXPECT_EQ(pixel(a, 5, 5), px("red"));
    red->setOverwrite(1);
    EXPECT_EQ(red->overwrite, 1u);
    red->setOverwrite(0);
    // Deleting a canvas that realises resources itself gives its contexts back.
    OrvCanvas* own = new OrvCanvas(d, 10, 10, (void*)d->rootCanvas->drawable);
    own->sharesRootResources = 0;
    EXPECT_NE(red->internal(own), gc);
    EXPECT_EQ(red->internals.length(), 2u);
    delete own;
    EXPECT_EQ(red->internals.length(), 1u);
    delete b;
    delete a;
}

TEST_P(MakeUps, MarkerSizes) {
    OrvMakeUp* m = d->defaultMakeUp;
    EXPECT_EQ(m->markerSize(), Orv2dRect(0, 0, 6, 6));
    EXPECT_EQ(d->makeUpMarkerScale(m, 0)->markerSize(), Orv2dRect(0, 0, 4, 4));
    EXPECT_EQ(d->makeUpMarkerScale(m, 1)->markerSize(), Orv2dRect(0, 0, 4, 4));
    EXPECT_EQ(d->makeUpMarkerScale(m, 7)->markerSize(), Orv2dRect(0, 0, 16, 16));
    testing::internal::CaptureStdout();
    EXPECT_EQ(d->makeUpMarkerScale(m, 8)->markerSize(), Orv2dRect());
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "OrvMakeUp::markerSize : Marker scale unknown.\n");
}

TEST_P(MakeUps, HashKeysFollowTheAttributes) {
    OrvMakeUpValues v;
    d->defaultMakeUp->values(v);
    unsigned k = OrvMakeUpHashTable::makeKey(v);
    EXPECT_EQ(OrvMakeUpHashTable::makeKey(d->defaultMakeUp), k);
    // The flags of the defaults set bits 0, 1, 2, 3 and 8; width and marker scale are added,
    // the pointers xor'ed.
    auto word = [](const void* p) { return (unsigned)(unsigned long)p; };
    unsigned flags = 0x10F;
    EXPECT_EQ(k, (flags + 0 + 2) ^ word(d->defaultVectorialFont) ^ word(d->solidLineStyle) ^
                     word(d->defaultFont) ^ word(d->defaultBackground) ^
                     word(d->defaultForeground));
    v.lineWidth = 4;
    EXPECT_EQ(OrvMakeUpHashTable::makeKey(v),
              (flags + 4 + 2) ^ word(d->defaultVectorialFont) ^ word(d->solidLineStyle) ^
                  word(d->defaultFont) ^ word(d->defaultBackground) ^ word(d->defaultForeground));
    EXPECT_EQ(OrvMakeUpHashTable::makeKey(d->wideMakeUp), OrvMakeUpHashTable::makeKey(v));
    // The table's count follows put and remove.
    OrvMakeUpHashTable table(7);
    Orv2dMakeUp* copy = new Orv2dMakeUp(d->defaultMakeUp);
    table.put(copy);
    table.put(copy);
    EXPECT_EQ(table.count, 1u);
    d->defaultMakeUp->values(v);
    EXPECT_EQ(table.get(v), copy);
    EXPECT_EQ(table.remove(copy), 1);
    EXPECT_EQ(table.count, 0u);
    EXPECT_EQ(table.get(v), nullptr);
    delete copy;
}

}  // namespace
