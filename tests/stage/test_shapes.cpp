// The basic shapes: exact hit tests under an identity, a scaling and a
// rotating transformer, boxes, handles of polylines, copies, and their
// pixels on a real stage.
#include <cstdlib>
#include <cstring>

#include "orv/shapes.h"
#include "test_stage_support.h"

namespace {

const Orv2dMatrix kScale2(2, 2);
// A quarter turn about the origin: (x, y) goes to about (-y, x).
const Orv2dMatrix kQuarter(Orv2dPoint(0, 0), 90);

bool hit(OrvActor& a, int x, int y, const Orv2dMatrix* m = nullptr) {
    return a.contains2d(Orv2dPoint(x, y), m);
}

}  // namespace

TEST(Shapes, RectangleHitTests) {
    OrvFilledRectangle filled(nullptr, Orv2dRect(0, 0, 100, 50));
    EXPECT_TRUE(hit(filled, 50, 25));
    EXPECT_TRUE(hit(filled, 100, 50));  // edges belong to it
    EXPECT_FALSE(hit(filled, 101, 25));
    EXPECT_TRUE(hit(filled, 150, 80, &kScale2));
    EXPECT_FALSE(hit(filled, 150, 120, &kScale2));
    // Rotated: the quadrilateral, not the box of two corners.
    EXPECT_TRUE(hit(filled, -25, 50, &kQuarter));
    EXPECT_FALSE(hit(filled, 25, 25, &kQuarter));
    EXPECT_FALSE(hit(filled, -25, -10, &kQuarter));

    OrvRectangle outline(nullptr, Orv2dRect(0, 0, 100, 50));
    EXPECT_TRUE(hit(outline, 50, 0));
    EXPECT_TRUE(hit(outline, 50, 2));   // within the line tolerance
    EXPECT_FALSE(hit(outline, 50, 4));  // beyond it
    EXPECT_FALSE(hit(outline, 50, 25));
    EXPECT_TRUE(hit(outline, 100, 25));
    EXPECT_TRUE(hit(outline, 100, 1, &kScale2));
    EXPECT_FALSE(hit(outline, 100, 50, &kScale2));
    EXPECT_TRUE(hit(outline, 0, 50, &kQuarter));    // the side x = 0 turned to y = 0... and x = 0
    EXPECT_TRUE(hit(outline, -50, 50, &kQuarter));  // the far side
    EXPECT_FALSE(hit(outline, -25, 50, &kQuarter));

    // Rounded: the corner itself is cut away.
    OrvFilledRectangle round(nullptr, Orv2dRect(0, 0, 100, 100), nullptr, 20);
    EXPECT_FALSE(hit(round, 1, 1));
    EXPECT_TRUE(hit(round, 10, 10));
    EXPECT_TRUE(hit(round, 50, 1));
    OrvFilledRectangle square(nullptr, Orv2dRect(0, 0, 100, 100));
    EXPECT_TRUE(hit(square, 1, 1));

    EXPECT_EQ(filled.bbox2d(nullptr), Orv2dRect(0, 0, 100, 50));
    EXPECT_EQ(filled.bbox2d(&kScale2), Orv2dRect(0, 0, 200, 100));
    Orv2dRect turned = filled.bbox2d(&kQuarter);
    EXPECT_NEAR(turned.x, -50, 1);
    EXPECT_NEAR(turned.y, 0, 1);
    EXPECT_NEAR((int)turned.w, 50, 1);
    EXPECT_NEAR((int)turned.h, 100, 1);
}

TEST(Shapes, LinesArrowsPolylinesAndPolygons) {
    OrvLine line(nullptr, Orv2dPoint(0, 0), Orv2dPoint(100, 0));
    EXPECT_TRUE(hit(line, 50, 2));
    EXPECT_FALSE(hit(line, 50, 4));
    EXPECT_FALSE(hit(line, 94, 3));
    EXPECT_TRUE(hit(line, 100, 2, &kScale2));
    EXPECT_FALSE(hit(line, 100, 20, &kScale2));
    EXPECT_TRUE(hit(line, -2, 50, &kQuarter));
    EXPECT_FALSE(hit(line, 50, 0, &kQuarter));
    // A vertical line still has a box with area, so it can be repainted.
    OrvLine vertical(nullptr, Orv2dPoint(10, 0), Orv2dPoint(10, 100));
    EXPECT_GT(vertical.bbox2d(nullptr).w, 0u);
    EXPECT_TRUE(vertical.bbox2d(nullptr).contains(Orv2dRect(10, 0, 0, 100)));

    // The head is hit where the line alone is not.
    OrvArrowLine arrow(nullptr, Orv2dPoint(0, 0), Orv2dPoint(100, 0));
    EXPECT_TRUE(hit(arrow, 94, 3));
    EXPECT_FALSE(hit(arrow, 94, 5));
    EXPECT_FALSE(hit(arrow, 6, 3));  // no head at the start
    Orv2dPoint h[3];
    arrow.head(1, nullptr, h);
    EXPECT_EQ(h[0], Orv2dPoint(100, 0));
    EXPECT_EQ(h[1], Orv2dPoint(92, -4));
    EXPECT_EQ(h[2], Orv2dPoint(92, 4));
    OrvArrowLine both(nullptr, Orv2dPoint(0, 0), Orv2dPoint(100, 0), nullptr,
                      OrvArrowAtEnd | OrvArrowAtStart);
    EXPECT_TRUE(hit(both, 6, 3));
    EXPECT_TRUE(both.bbox2d(nullptr).contains(Orv2dPoint(92, 4)));

    Orv2dPoint pts[3] = {Orv2dPoint(0, 0), Orv2dPoint(100, 0), Orv2dPoint(100, 100)};
    Orv2dPolyline poly(nullptr, 3, pts);
    EXPECT_TRUE(hit(poly, 100, 50));
    EXPECT_FALSE(hit(poly, 50, 50));
    EXPECT_TRUE(hit(poly, 200, 100, &kScale2));
    EXPECT_TRUE(hit(poly, -50, 100, &kQuarter));

    Orv2dPolygon filled(nullptr, 3, pts, 1);
    EXPECT_TRUE(hit(filled, 75, 25));
    EXPECT_FALSE(hit(filled, 25, 75));
    EXPECT_TRUE(hit(filled, 150, 50, &kScale2));
    EXPECT_TRUE(hit(filled, -25, 75, &kQuarter));
    EXPECT_FALSE(hit(filled, 75, 25, &kQuarter));
    Orv2dPolygon open(nullptr, 3, pts, 0);
    EXPECT_TRUE(hit(open, 50, 50));  // on the closing edge
    EXPECT_FALSE(hit(open, 75, 25));
}

TEST(Shapes, PolylineHandlesAreItsVertices) {
    Orv2dPoint pts[3] = {Orv2dPoint(0, 0), Orv2dPoint(100, 0), Orv2dPoint(100, 100)};
    Orv2dPolyline poly(nullptr, 3, pts);
    unsigned int n = 0;
    Orv2dPoint* v = poly.draggerVertex2d(n, &kScale2);
    ASSERT_EQ(n, 3u);
    EXPECT_EQ(v[2], Orv2dPoint(200, 200));
    EXPECT_EQ(poly.dragger2d(Orv2dPoint(100, 0), nullptr), nullptr);
    poly.setSelected(1);
    Orv2dDragger* d = poly.dragger2d(Orv2dPoint(103, 3), nullptr);
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->index, 1);
    EXPECT_EQ(d->point, Orv2dPoint(100, 0));
    EXPECT_EQ(d->position, (OrvPosition)OrvCenter);
    // Handles stick out for hit tests.
    EXPECT_TRUE(hit(poly, -4, -4));
    Orv2dRegion squares(25);
    poly.draggerRegions2d(squares, nullptr);
    EXPECT_EQ(squares.count, 3);
    poly.setPoint(1, Orv2dPoint(50, 0));
    EXPECT_EQ(poly.points[1], Orv2dPoint(50, 0));
}

TEST(Shapes, EllipsesAndArcs) {
    OrvEllipse e(nullptr, Orv2dRect(0, 0, 100, 50));
    EXPECT_TRUE(hit(e, 100, 25));
    EXPECT_TRUE(hit(e, 50, 0));
    EXPECT_FALSE(hit(e, 50, 25));
    EXPECT_TRUE(hit(e, 200, 50, &kScale2));
    EXPECT_FALSE(hit(e, 100, 50, &kScale2));
    EXPECT_TRUE(hit(e, -25, 100, &kQuarter));  // (100, 25) turned
    EXPECT_FALSE(hit(e, -25, 50, &kQuarter));

    OrvFilledEllipse f(nullptr, Orv2dRect(0, 0, 100, 50));
    EXPECT_TRUE(hit(f, 50, 25));
    EXPECT_FALSE(hit(f, 99, 49));
    EXPECT_TRUE(hit(f, 100, 50, &kScale2));
    EXPECT_TRUE(hit(f, -25, 50, &kQuarter));
    EXPECT_FALSE(hit(f, 25, 50, &kQuarter));

    OrvArc arc(nullptr, Orv2dRect(0, 0, 100, 100), 0, 90);
    EXPECT_TRUE(hit(arc, 100, 50));
    EXPECT_TRUE(hit(arc, 85, 15));
    EXPECT_FALSE(hit(arc, 0, 50));
    EXPECT_FALSE(hit(arc, 15, 85));
    EXPECT_TRUE(hit(arc, 170, 30, &kScale2));
    // The box of a quarter is the quarter's.
    Orv2dRect box = arc.bbox2d(nullptr);
    EXPECT_EQ(box, Orv2dRect(50, 0, 50, 50));
    EXPECT_EQ(e.bbox2d(nullptr), Orv2dRect(0, 0, 100, 50));
    arc.setAngles(0, 360);
    EXPECT_TRUE(hit(arc, 0, 50));
}

TEST(Shapes, CopiesKeepGeometryAndClass) {
    Orv2dPoint pts[3] = {Orv2dPoint(1, 2), Orv2dPoint(3, 4), Orv2dPoint(5, 6)};
    std::vector<OrvActor*> originals = {
        new OrvRectangle(nullptr, Orv2dRect(1, 2, 3, 4), nullptr, 2),
        new OrvFilledRectangle(nullptr, Orv2dRect(5, 6, 7, 8)),
        new OrvLine(nullptr, Orv2dPoint(1, 1), Orv2dPoint(9, 9)),
        new OrvArrowLine(nullptr, Orv2dPoint(1, 1), Orv2dPoint(9, 9), nullptr, 3),
        new Orv2dPolyline(nullptr, 3, pts),
        new Orv2dPolygon(nullptr, 3, pts, 1),
        new OrvEllipse(nullptr, Orv2dRect(0, 0, 10, 20)),
        new OrvFilledEllipse(nullptr, Orv2dRect(0, 0, 30, 20)),
        new OrvArc(nullptr, Orv2dRect(0, 0, 10, 10), 10, 200, 1),
        new OrvLabel(nullptr, "hello", Orv2dPoint(3, 4), OrvCenter | OrvTop),
    };
    for (OrvActor* a : originals) {
        a->setSelected(1);
        a->setMoveable(0);
        OrvActor* c = a->copy();
        EXPECT_STREQ(c->className(), a->className());
        EXPECT_EQ(c->bbox2d(nullptr), a->bbox2d(nullptr)) << a->className();
        EXPECT_FALSE(c->isSelected());
        EXPECT_FALSE(c->isMoveable());
        delete c;
    }
    OrvRectangle* r = (OrvRectangle*)originals[0]->copy();
    EXPECT_EQ(r->radius, 2);
    delete r;
    OrvArrowLine* a = (OrvArrowLine*)originals[3]->copy();
    EXPECT_EQ(a->arrows, 3u);
    delete a;
    // Points and text are the copy's own.
    Orv2dPolyline* p = (Orv2dPolyline*)originals[4]->copy();
    ((Orv2dPolyline*)originals[4])->points[0] = Orv2dPoint(100, 100);
    EXPECT_EQ(p->points[0], Orv2dPoint(1, 2));
    EXPECT_NE(p->points, ((Orv2dPolyline*)originals[4])->points);
    delete p;
    Orv2dPolygon* g = (Orv2dPolygon*)originals[5]->copy();
    EXPECT_EQ(g->filled, 1u);
    delete g;
    OrvArc* arc = (OrvArc*)originals[8]->copy();
    EXPECT_EQ(arc->start, 10);
    EXPECT_EQ(arc->end, 200);
    EXPECT_EQ(arc->filled, 1u);
    delete arc;
    OrvLabel* l = (OrvLabel*)originals[9]->copy();
    EXPECT_STREQ(l->text, "hello");
    EXPECT_NE(l->text, ((OrvLabel*)originals[9])->text);
    EXPECT_EQ(l->alignment, (OrvPosition)(OrvCenter | OrvTop));
    delete l;
    for (OrvActor* o : originals) delete o;
}

TEST(Shapes, Apply2dMovesTheGeometry) {
    Orv2dMatrix move(Orv2dPoint(10, 20));
    OrvFilledRectangle r(nullptr, Orv2dRect(0, 0, 5, 5));
    r.apply2d(move);
    EXPECT_EQ(r.rect, Orv2dRect(10, 20, 5, 5));
    Orv2dPoint pts[2] = {Orv2dPoint(0, 0), Orv2dPoint(1, 1)};
    Orv2dPolyline p(nullptr, 2, pts);
    p.apply2d(kScale2);
    EXPECT_EQ(p.points[1], Orv2dPoint(2, 2));
    OrvLine l(nullptr, Orv2dPoint(1, 0), Orv2dPoint(2, 0));
    l.apply2d(move);
    EXPECT_EQ(l.from, Orv2dPoint(11, 20));
    OrvEllipse e(nullptr, Orv2dRect(1, 1, 2, 2));
    e.apply2d(kScale2);
    EXPECT_EQ(e.rect, Orv2dRect(2, 2, 4, 4));
    OrvLabel t(nullptr, "x", Orv2dPoint(1, 1));
    t.apply2d(move);
    EXPECT_EQ(t.point, Orv2dPoint(11, 21));
}

// ---------------------------------------------------------------------------
// Pixels on a stage
// ---------------------------------------------------------------------------

TEST_F(StageTest, ShapesPaintTheirPixels) {
    OrvFilledRectangle* filled = new OrvFilledRectangle(director, Orv2dRect(10, 10, 40, 30), red);
    OrvRectangle* outline = new OrvRectangle(director, Orv2dRect(60, 10, 40, 30), blue);
    OrvLine* line = new OrvLine(director, Orv2dPoint(110, 20), Orv2dPoint(190, 20), red);
    OrvFilledEllipse* disc = new OrvFilledEllipse(director, Orv2dRect(10, 60, 40, 40), blue);
    OrvEllipse* ring = new OrvEllipse(director, Orv2dRect(60, 60, 40, 40), red);
    Orv2dPoint tri[3] = {Orv2dPoint(110, 60), Orv2dPoint(190, 60), Orv2dPoint(110, 100)};
    Orv2dPolygon* polygon = new Orv2dPolygon(director, 3, tri, 1, red);
    for (OrvActor* a : std::vector<OrvActor*>{filled, outline, line, disc, ring, polygon})
        stage->append(a, 0);
    EXPECT_EQ(rgb(30, 25), 0xFF0000u);
    EXPECT_EQ(rgb(60, 25), 0x0000FFu);  // left edge of the outline
    EXPECT_EQ(rgb(80, 25), background);
    EXPECT_EQ(rgb(150, 20), 0xFF0000u);
    EXPECT_EQ(rgb(150, 22), background);
    EXPECT_EQ(rgb(30, 80), 0x0000FFu);
    EXPECT_EQ(rgb(80, 80), background);  // the ring's hole
    EXPECT_EQ(rgb(120, 65), 0xFF0000u);
    EXPECT_EQ(rgb(180, 95), background);

    // Setters repaint through the change protocol.
    filled->setRect(Orv2dRect(10, 110, 40, 30));
    EXPECT_EQ(rgb(30, 25), background);
    EXPECT_EQ(rgb(30, 120), 0xFF0000u);
    polygon->setFilled(0);
    EXPECT_EQ(rgb(120, 65), background);
    EXPECT_EQ(rgb(150, 60), 0xFF0000u);
    // Hit tests on the stage go by shape.
    EXPECT_EQ(stage->contains(Orv2dPoint(80, 25)), nullptr);
    EXPECT_EQ(stage->contains(Orv2dPoint(60, 25)), outline);
    EXPECT_EQ(stage->contains(Orv2dPoint(30, 80)), disc);
}

TEST_F(StageTest, ShapesUnderAStageTransformer) {
    OrvFilledRectangle* filled = new OrvFilledRectangle(director, Orv2dRect(10, 10, 20, 10), red);
    stage->append(filled, 0);
    stage->zoom(Orv2dPoint(0, 0), 2, 2);
    EXPECT_EQ(rgb(50, 30), 0xFF0000u);
    EXPECT_EQ(stage->contains(Orv2dPoint(50, 30)), filled);
    EXPECT_EQ(stage->contains(Orv2dPoint(15, 15)), nullptr);
}

TEST_F(StageTest, LabelsAlignInTheirFont) {
    OrvLabel* left = new OrvLabel(director, "Hello", Orv2dPoint(20, 40), OrvLeft, red);
    stage->append(left, 0);
    OrvRasterFont* font = red->font();
    ASSERT_NE(font, nullptr);
    Orv2dRect extent = font->bbox("Hello", 0, 0);
    ASSERT_GT(extent.w, 0u);
    Orv2dRect box = left->bbox2d(nullptr);
    EXPECT_EQ(box, Orv2dRect(20, 40 + extent.y, extent.w, extent.h));
    // Some ink of the text lies in its box, none outside near it.
    bool ink = false;
    for (int x = box.x; x < (int)(box.x + box.w) && !ink; x++)
        for (int y = box.y; y < (int)(box.y + box.h) && !ink; y++) ink = rgb(x, y) == 0xFF0000u;
    EXPECT_TRUE(ink);
    EXPECT_TRUE(left->contains2d(Orv2dPoint(box.x + 1, box.y + 1), nullptr));
    EXPECT_FALSE(left->contains2d(Orv2dPoint(box.x - 2, box.y), nullptr));

    OrvLabel* right = new OrvLabel(director, "Hello", Orv2dPoint(180, 40), OrvRight | OrvTop, red);
    Orv2dRect rb = right->bbox2d(nullptr);
    EXPECT_EQ(rb.x + (int)rb.w, 180);
    EXPECT_EQ(rb.y, 40);
    OrvLabel* centre =
        new OrvLabel(director, "Hello", Orv2dPoint(100, 100), OrvCenter | OrvBottom, red);
    Orv2dRect cb = centre->bbox2d(nullptr);
    EXPECT_EQ(cb.x, 100 - (int)(extent.w / 2));
    EXPECT_EQ(cb.y + (int)cb.h, 100);
    stage->append(right, 0);
    stage->append(centre, 0);
    centre->setText("Hi");
    EXPECT_LT(centre->bbox2d(nullptr).w, extent.w);
    EXPECT_EQ(stage->contains(Orv2dPoint(rb.x + 2, rb.y + 2)), right);

    // The label keeps the measure of its text: a new font measures again, and
    // the repaint covers the larger box.
    OrvRasterFont* large = director->font("%helvetica-24-");
    ASSERT_NE(large, nullptr);
    Orv2dRect before = centre->bbox2d(nullptr);
    centre->setFont(large);
    Orv2dRect after = centre->bbox2d(nullptr);
    EXPECT_EQ(after.w, large->bbox("Hi", 0, 0).w);
    EXPECT_GT(after.h, before.h);
    EXPECT_EQ(after.y + (int)after.h, 100);
    bool inkAbove = false;
    for (int x = after.x; x < (int)(after.x + after.w) && !inkAbove; x++)
        for (int y = after.y; y < before.y && !inkAbove; y++) inkAbove = rgb(x, y) == 0xFF0000u;
    EXPECT_TRUE(inkAbove);
    // A copy measures in its own right.
    OrvLabel* twin = (OrvLabel*)centre->copy();
    EXPECT_EQ(twin->bbox2d(nullptr), after);
    twin->setText("Hi there");
    EXPECT_GT(twin->bbox2d(nullptr).w, after.w);
    EXPECT_EQ(centre->bbox2d(nullptr), after);
    delete twin;
}

TEST_F(StageTest, IconsPaintAndHitThroughTheirMask) {
    OrvBitmap* picture = new OrvBitmap(stage, 8, 8, stage->depth);
    // A make-up's context keeps the clip of the last canvas prepared: clear it.
    picture->prepare(nullptr);
    picture->rectangle(red, Orv2dRect(0, 0, 8, 8), 1);
    picture->end();
    OrvBitmap* mask = new OrvBitmap(stage, 8, 8, 1);
    unsigned char rows[8];
    memset(rows, 0xF0, sizeof rows);  // the left half, most significant bit first
    mask->setBits(Orv2dRect(0, 0, 8, 8), rows, sizeof rows, 8, 0);
    picture->setMask(mask);
    OrvIcon* icon = new OrvIcon(director, picture, Orv2dPoint(40, 40), red);
    stage->append(icon, 0);
    EXPECT_EQ(icon->bbox2d(nullptr), Orv2dRect(40, 40, 8, 8));
    EXPECT_TRUE(icon->contains2d(Orv2dPoint(41, 41), nullptr));
    EXPECT_TRUE(icon->contains2d(Orv2dPoint(43, 47), nullptr));
    EXPECT_FALSE(icon->contains2d(Orv2dPoint(45, 41), nullptr));
    EXPECT_FALSE(icon->contains2d(Orv2dPoint(39, 41), nullptr));
    // The picture shows through the mask only.
    EXPECT_EQ(rgb(41, 41), 0xFF0000u);
    EXPECT_EQ(rgb(46, 41), background);
    EXPECT_EQ(stage->contains(Orv2dPoint(41, 41)), icon);
    EXPECT_EQ(stage->contains(Orv2dPoint(46, 41)), nullptr);
    // The copy holds the bitmap too.
    OrvIcon* copy = (OrvIcon*)icon->copy();
    EXPECT_EQ(copy->bitmap, picture);
    EXPECT_TRUE(copy->contains2d(Orv2dPoint(41, 41), nullptr));
    delete copy;
    // Without a mask the whole box is hit and painted.
    OrvBitmap* plain = new OrvBitmap(stage, 4, 4, stage->depth);
    plain->prepare(nullptr);
    plain->rectangle(blue, Orv2dRect(0, 0, 4, 4), 1);
    plain->end();
    OrvIcon* square = new OrvIcon(director, plain, Orv2dPoint(100, 100), red);
    EXPECT_TRUE(square->contains2d(Orv2dPoint(103, 103), nullptr));
    stage->append(square, 0);
    EXPECT_EQ(rgb(101, 101), 0x0000FFu);
    EXPECT_EQ(rgb(105, 101), background);
}
