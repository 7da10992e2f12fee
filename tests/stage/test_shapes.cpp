// The basic shapes: exact hit tests under an identity, a scaling and a rotating transformer,
// boxes, handles of polylines, copies, and their pixels on a real stage.
#include "orv_fixtures.h"

static const Orv2dMatrix kScale2(2, 2);
static const Orv2dMatrix kQuarter(Orv2dPoint(0, 0), 90);  // (x, y) goes to about (-y, x)

// Points given as x, y, and 1 for a hit or 0 for a miss, under one matrix.
static void expectHits(OrvActor& a, const Orv2dMatrix* m, std::initializer_list<int> points) {
    for (const int* p = points.begin(); p + 2 < points.end(); p += 3)
        EXPECT_EQ(p[2], (int)a.contains2d(Orv2dPoint(p[0], p[1]), m))
            << a.className() << " at " << p[0] << "," << p[1]
            << (m == &kScale2 ? " scaled"
                : m           ? " turned"
                              : "");
}

TEST(Shapes, RectangleEllipseAndArcHitTests) {
    // Edges belong to it; rotated, the quadrilateral counts, not the box of two corners.
    OrvFilledRectangle filled(nullptr, Orv2dRect(0, 0, 100, 50));
    expectHits(filled, nullptr, {50, 25, 1, 100, 50, 1, 101, 25, 0});
    expectHits(filled, &kScale2, {150, 80, 1, 150, 120, 0});
    expectHits(filled, &kQuarter, {-25, 50, 1, 25, 25, 0, -25, -10, 0});
    OrvRectangle outline(nullptr, Orv2dRect(0, 0, 100, 50));
    expectHits(outline, nullptr, {50, 0, 1, 50, 2, 1, 50, 4, 0, 50, 25, 0, 100, 25, 1});
    expectHits(outline, &kScale2, {100, 1, 1, 100, 50, 0});
    expectHits(outline, &kQuarter, {0, 50, 1, -50, 50, 1, -25, 50, 0});
    // Rounded: the corner itself is cut away.
    OrvFilledRectangle round(nullptr, Orv2dRect(0, 0, 100, 100), nullptr, 20);
    expectHits(round, nullptr, {1, 1, 0, 10, 10, 1, 50, 1, 1});
    EXPECT_EQ(filled.bbox2d(&kScale2), Orv2dRect(0, 0, 200, 100));
    Orv2dRect turned = filled.bbox2d(&kQuarter);
    EXPECT_TRUE(abs(turned.x + 50) <= 1 && abs((int)turned.h - 100) <= 1);
    OrvEllipse e(nullptr, Orv2dRect(0, 0, 100, 50));
    expectHits(e, nullptr, {100, 25, 1, 50, 0, 1, 50, 25, 0});
    expectHits(e, &kScale2, {200, 50, 1, 100, 50, 0});
    expectHits(e, &kQuarter, {-25, 100, 1, -25, 50, 0});
    OrvFilledEllipse f(nullptr, Orv2dRect(0, 0, 100, 50));
    expectHits(f, nullptr, {50, 25, 1, 99, 49, 0});
    expectHits(f, &kScale2, {100, 50, 1});
    expectHits(f, &kQuarter, {-25, 50, 1, 25, 50, 0});
    OrvArc arc(nullptr, Orv2dRect(0, 0, 100, 100), 0, 90);
    expectHits(arc, nullptr, {100, 50, 1, 85, 15, 1, 0, 50, 0, 15, 85, 0});
    expectHits(arc, &kScale2, {170, 30, 1});
    EXPECT_EQ(arc.bbox2d(nullptr), Orv2dRect(50, 0, 50, 50));  // the box of a quarter
    arc.setAngles(0, 360);
    expectHits(arc, nullptr, {0, 50, 1});
}

TEST(Shapes, LinesArrowsPolylinesWithTheirHandlesAndPolygons) {
    OrvLine line(nullptr, Orv2dPoint(0, 0), Orv2dPoint(100, 0));
    expectHits(line, nullptr, {50, 2, 1, 50, 4, 0, 94, 3, 0});
    expectHits(line, &kScale2, {100, 2, 1, 100, 20, 0});
    expectHits(line, &kQuarter, {-2, 50, 1, 50, 0, 0});
    // A vertical line still has a box with area, so it can be repainted.
    OrvLine vertical(nullptr, Orv2dPoint(10, 0), Orv2dPoint(10, 100));
    EXPECT_TRUE(vertical.bbox2d(nullptr).w > 0 &&
                vertical.bbox2d(nullptr).contains(Orv2dRect(10, 0, 0, 100)));
    // The head is hit where the line alone is not; no head at the start unless asked.
    OrvArrowLine arrow(nullptr, Orv2dPoint(0, 0), Orv2dPoint(100, 0));
    expectHits(arrow, nullptr, {94, 3, 1, 94, 5, 0, 6, 3, 0});
    Orv2dPoint h[3];
    arrow.head(1, nullptr, h);
    EXPECT_EQ(std::vector<Orv2dPoint>(h, h + 3),
              (std::vector<Orv2dPoint>{{100, 0}, {92, -4}, {92, 4}}));
    OrvArrowLine both(nullptr, Orv2dPoint(0, 0), Orv2dPoint(100, 0), nullptr,
                      OrvArrowAtEnd | OrvArrowAtStart);
    expectHits(both, nullptr, {6, 3, 1});
    EXPECT_TRUE(both.bbox2d(nullptr).contains(Orv2dPoint(92, 4)));
    Orv2dPoint pts[3] = {{0, 0}, {100, 0}, {100, 100}};
    Orv2dPolyline poly(nullptr, 3, pts);
    expectHits(poly, nullptr, {100, 50, 1, 50, 50, 0});
    expectHits(poly, &kScale2, {200, 100, 1});
    expectHits(poly, &kQuarter, {-50, 100, 1});
    Orv2dPolygon filled(nullptr, 3, pts, 1);
    expectHits(filled, nullptr, {75, 25, 1, 25, 75, 0});
    expectHits(filled, &kScale2, {150, 50, 1});
    expectHits(filled, &kQuarter, {-25, 75, 1, 75, 25, 0});
    Orv2dPolygon open(nullptr, 3, pts, 0);
    expectHits(open, nullptr, {50, 50, 1, 75, 25, 0});  // on the closing edge, not inside
    // The handles of a polyline are its vertices.
    unsigned int n = 0;
    Orv2dPoint* v = poly.draggerVertex2d(n, &kScale2);
    ASSERT_TRUE(n == 3u && v[2] == Orv2dPoint(200, 200));
    EXPECT_EQ(poly.dragger2d(Orv2dPoint(100, 0), nullptr), nullptr);
    poly.setSelected(1);
    Orv2dDragger* d = poly.dragger2d(Orv2dPoint(103, 3), nullptr);
    ASSERT_NE(d, nullptr);
    EXPECT_TRUE(d->index == 1 && d->point == Orv2dPoint(100, 0) && d->position == OrvCenter);
    expectHits(poly, nullptr, {-4, -4, 1});  // handles stick out for hit tests
    Orv2dRegion squares(25);
    poly.draggerRegions2d(squares, nullptr);
    poly.setPoint(1, Orv2dPoint(50, 0));
    EXPECT_TRUE(squares.count == 3 && poly.points[1] == Orv2dPoint(50, 0));
}

TEST(Shapes, CopiesKeepGeometryAndClass) {
    Orv2dPoint pts[3] = {{1, 2}, {3, 4}, {5, 6}};
    OrvRectangle rect(nullptr, Orv2dRect(1, 2, 3, 4), nullptr, 2);
    OrvArrowLine arrow(nullptr, Orv2dPoint(1, 1), Orv2dPoint(9, 9), nullptr, 3);
    Orv2dPolyline polyline(nullptr, 3, pts);
    Orv2dPolygon polygon(nullptr, 3, pts, 1);
    OrvArc arc(nullptr, Orv2dRect(0, 0, 10, 10), 10, 200, 1);
    OrvLabel label(nullptr, "hello", Orv2dPoint(3, 4), OrvCenter | OrvTop);
    OrvFilledRectangle filled(nullptr, Orv2dRect(5, 6, 7, 8));
    OrvLine line(nullptr, Orv2dPoint(1, 1), Orv2dPoint(9, 9));
    OrvEllipse ellipse(nullptr, Orv2dRect(0, 0, 10, 20));
    OrvFilledEllipse disc(nullptr, Orv2dRect(0, 0, 30, 20));
    std::vector<OrvActor*> copies;
    for (OrvActor* a : std::vector<OrvActor*>{&rect, &arrow, &polyline, &polygon, &arc, &label,
                                              &filled, &line, &ellipse, &disc}) {
        a->setSelected(1);
        a->setMoveable(0);
        OrvActor* c = a->copy();
        copies.push_back(c);
        EXPECT_STREQ(c->className(), a->className());
        EXPECT_TRUE(c->bbox2d(nullptr) == a->bbox2d(nullptr) && !c->isSelected() &&
                    !c->isMoveable())
            << a->className();
    }
    // Points and text are the copy's own.
    Orv2dPolyline* p = (Orv2dPolyline*)copies[2];
    polyline.points[0] = Orv2dPoint(100, 100);
    EXPECT_EQ(p->points[0], Orv2dPoint(1, 2));
    OrvLabel* l = (OrvLabel*)copies[5];
    EXPECT_TRUE(l->text != label.text && !strcmp(l->text, "hello") &&
                l->alignment == (OrvPosition)(OrvCenter | OrvTop));
    for (OrvActor* c : copies) delete c;
}

TEST_F(StageTest, ShapesPaintTheirPixels) {
    OrvFilledRectangle* filled = new OrvFilledRectangle(director, Orv2dRect(10, 10, 40, 30), red);
    OrvRectangle* outline = new OrvRectangle(director, Orv2dRect(60, 10, 40, 30), blue);
    OrvFilledEllipse* disc = new OrvFilledEllipse(director, Orv2dRect(10, 60, 40, 40), blue);
    Orv2dPoint tri[3] = {{110, 60}, {190, 60}, {110, 100}};
    Orv2dPolygon* polygon = new Orv2dPolygon(director, 3, tri, 1, red);
    for (OrvActor* a : std::vector<OrvActor*>{
             filled, outline, new OrvLine(director, Orv2dPoint(110, 20), Orv2dPoint(190, 20), red),
             disc, new OrvEllipse(director, Orv2dRect(60, 60, 40, 40), red), polygon})
        stage->append(a, 0);
    const unsigned long R = 0xFF0000u, B = 0x0000FFu, G = background;
    expectPixels({30, 25, R, 60, 25, B, 80, 25, G, 150, 20, R, 150, 22, G, 30, 80, B});
    expectPixels({80, 80, G, 120, 65, R, 180, 95, G});  // the ring's hole, the polygon
    // Setters repaint through the change protocol.
    filled->setRect(Orv2dRect(10, 110, 40, 30));
    polygon->setFilled(0);
    expectPixels({30, 25, G, 30, 120, R, 120, 65, G, 150, 60, R});
    // Hit tests on the stage go by shape.
    EXPECT_TRUE(!stage->contains(Orv2dPoint(80, 25)) &&
                stage->contains(Orv2dPoint(60, 25)) == outline &&
                stage->contains(Orv2dPoint(30, 80)) == disc);
}

TEST_F(StageTest, LabelsAlignInTheirFont) {
    OrvLabel* left = new OrvLabel(director, "Hello", Orv2dPoint(20, 40), OrvLeft, red);
    stage->append(left, 0);
    OrvRasterFont* font = red->font();
    Orv2dRect extent = font->bbox("Hello", 0, 0);
    ASSERT_GT(extent.w, 0u);
    Orv2dRect box = left->bbox2d(nullptr);
    EXPECT_EQ(box, Orv2dRect(20, 40 + extent.y, extent.w, extent.h));
    auto inkIn = [&](int x0, int y0, int x1, int y1) {
        for (int x = x0; x < x1; x++)
            for (int y = y0; y < y1; y++)
                if (rgb(x, y) == 0xFF0000u) return true;
        return false;
    };
    EXPECT_TRUE(inkIn(box.x, box.y, box.x + box.w, box.y + box.h));
    EXPECT_FALSE(left->contains2d(Orv2dPoint(box.x - 2, box.y), nullptr));
    OrvLabel* right = new OrvLabel(director, "Hello", Orv2dPoint(180, 40), OrvRight | OrvTop, red);
    Orv2dRect rb = right->bbox2d(nullptr);
    EXPECT_EQ(Orv2dPoint(180, 40), Orv2dPoint(rb.x + rb.w, rb.y));
    OrvLabel* centre =
        new OrvLabel(director, "Hello", Orv2dPoint(100, 100), OrvCenter | OrvBottom, red);
    Orv2dRect cb = centre->bbox2d(nullptr);
    EXPECT_EQ(Orv2dPoint(100 - extent.w / 2, 100), Orv2dPoint(cb.x, cb.y + cb.h));
    stage->append(right, 0);
    stage->append(centre, 0);
    centre->setText("Hi");
    EXPECT_EQ(stage->contains(Orv2dPoint(rb.x + 2, rb.y + 2)), right);
    // The label keeps the measure of its text: a new font measures again, and the repaint
    // covers the larger box.
    OrvRasterFont* large = director->font("%helvetica-24-");
    ASSERT_NE(large, nullptr);
    Orv2dRect before = centre->bbox2d(nullptr);
    centre->setFont(large);
    Orv2dRect after = centre->bbox2d(nullptr);
    EXPECT_TRUE(after.w == large->bbox("Hi", 0, 0).w && after.h > before.h &&
                after.y + (int)after.h == 100);
    EXPECT_TRUE(inkIn(after.x, after.y, after.x + after.w, before.y));
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
    expectHits(*icon, nullptr, {41, 41, 1, 43, 47, 1, 45, 41, 0, 39, 41, 0});
    // The picture shows through the mask only.
    expectPixels({41, 41, 0xFF0000u, 46, 41, background});
    EXPECT_TRUE(stage->contains(Orv2dPoint(41, 41)) == icon &&
                !stage->contains(Orv2dPoint(46, 41)));
    // Without a mask the whole box is hit and painted.
    OrvBitmap* plain = new OrvBitmap(stage, 4, 4, stage->depth);
    plain->prepare(nullptr);
    plain->rectangle(blue, Orv2dRect(0, 0, 4, 4), 1);
    plain->end();
    OrvIcon* square = new OrvIcon(director, plain, Orv2dPoint(100, 100), red);
    expectHits(*square, nullptr, {103, 103, 1});
    stage->append(square, 0);
    expectPixels({101, 101, 0x0000FFu, 105, 101, background});
}
