// Links: their paths for each kind and each relative place of the two boxes,
// under identity, scaling and rotating transformers; the stage's link tables;
// repaint when an end moves; removal with an end; the make-link producer
// driven by XTest; and save and read of large linked graphs.
#include "orv_fixtures.h"

#include "orv/link.h"

struct PathCase {
    const char* name;
    int kind;  // 0 straight, 1 one bend, 2 one bend vertical first, 3 two bends
    Orv2dRect f, t;
    std::vector<Orv2dPoint> points;  // the path, then the head for two bends
};

static std::vector<Orv2dPoint> pathOf(const OrvLinkImage& link, const Orv2dMatrix* m) {
    unsigned n = 0;
    Orv2dPoint* p = link.getLink2dPoints(n, m);
    return std::vector<Orv2dPoint>(p, p + n);
}

static OrvLinkImage* makeLink(OrvDirector* d, int kind, OrvActor* f, OrvActor* t) {
    if (kind == 0) return new OrvLinkImage(d, f, t, 1, 1.0f, nullptr);
    if (kind == 3) return new OrvDoubleLinkImage(d, f, t, 1, 1.0f, nullptr);
    OrvOneLinkImage* one = new OrvOneLinkImage(d, f, t, 1, 1.0f, nullptr);
    one->setOrientation(kind == 2 ? OrvVertical : OrvHorizontal);
    return one;
}

// A saved stage without its first line, which holds the date.
static std::string saved(OrvStage* s) {
    std::ostringstream out;
    s->save(out);
    return out.str().substr(out.str().find('\n'));
}
typedef RouteTest LinkTest;

TEST_F(LinkTest, PathsForEachKindAndPlaceUnderTransformers) {
    const Orv2dRect a(10, 10, 40, 20), right(100, 50, 30, 20), low(10, 100, 40, 20),
        high(20, 10, 40, 20), below(20, 100, 40, 20), over(20, 15, 40, 20), far(60, 100, 40, 20);
    // Two bends: the path, then the head.
    const std::vector<Orv2dPoint> wide = {{30, 30},  {30, 40},  {115, 40}, {115, 50},
                                          {111, 42}, {119, 42}, {115, 50}},
                                  tall = {{50, 20},  {55, 20},  {55, 110}, {60, 110},
                                          {52, 106}, {52, 114}, {60, 110}};
    const std::vector<PathCase> cases = {
        {"t right of f", 0, a, right, {{50, 20}, {100, 60}}},
        {"t left of f", 0, right, a, {{100, 60}, {50, 20}}},
        {"f below t's middle", 0, low, high, {{30, 100}, {40, 30}}},
        {"t below f", 0, a, below, {{30, 30}, {40, 100}}},
        {"overlapping: centre to centre", 0, a, over, {{30, 20}, {40, 25}}},
        {"one bend, horizontal first", 1, a, right, {{50, 20}, {115, 20}, {115, 50}}},
        {"one bend, vertical first", 2, a, right, {{30, 30}, {30, 60}, {100, 60}}},
        {"one bend, turned round: starts at from", 1, right, a, {{115, 50}, {115, 20}, {50, 20}}},
        {"two bends, wider than high", 3, a, right, wide},
        {"two bends, higher than wide", 3, a, far, tall},
    };
    const Orv2dMatrix twice(2.0f, 2.0f);
    for (const PathCase& c : cases) {
        SCOPED_TRACE(c.name);
        TestBox f(director, red, c.f), t(director, red, c.t);
        OrvLinkImage* link = makeLink(director, c.kind, &f, &t);
        std::vector<Orv2dPoint> got = pathOf(*link, nullptr);
        ASSERT_EQ(got, c.points);
        // Scaling doubles the boxes, and with them every point of the path.
        got = pathOf(*link, &twice);
        for (size_t i = 0; i < got.size() && i < (c.kind == 3 ? 4u : got.size()); i++)
            EXPECT_EQ(got[i], Orv2dPoint(2 * c.points[i].x, 2 * c.points[i].y)) << "point " << i;
        delete link;
    }
    // A quarter turn: (x, y) goes to (300 - y, x), so t lies left of f on the window.
    TestBox f(director, red, a), t(director, red, right);
    OrvLinkImage straight(director, &f, &t, 0, 1.0f, nullptr);
    const Orv2dMatrix turn(0, -1, 1, 0, 300, 0);
    std::vector<Orv2dPoint> got = pathOf(straight, &turn);
    EXPECT_EQ(got, (std::vector<Orv2dPoint>{{270, 30}, {250, 115}}));
    // Without an end there is no path, no box and nothing to hit.
    OrvLinkImage loose(director, &f, nullptr, 1, 1.0f, nullptr);
    EXPECT_TRUE(pathOf(loose, nullptr).empty() && !loose.bbox2d(nullptr).w &&
                !loose.contains2d(Orv2dPoint(50, 20), nullptr));
    EXPECT_TRUE(straight.getProperty(OrvLinkBit) && !straight.isMoveable() &&
                !straight.isResizeable());
}

TEST_F(LinkTest, TablesRepaintAndRemovalWithAnEnd) {
    TestBox* a = box(20, 20, 40, 30);
    TestBox* b = box(200, 120, 40, 30, blue);
    TestBox* c = box(200, 20, 40, 30);
    OrvLinkImage* ab = new OrvLinkImage(director, a, b, 0, 1.0f, blue);
    OrvLinkImage* cb = new OrvLinkImage(director, c, b, 1, 1.0f, blue);
    OrvLinkImage* self = new OrvLinkImage(director, c, c, 0, 1.0f, blue);
    stage->append(ab);
    stage->append(cb);
    stage->append(self);
    // Newest first, and a link from an actor to itself stands in both of its lists.
    EXPECT_TRUE(stage->linkTo(b, 0) == cb && stage->linkTo(b, 1) == ab && !stage->linkTo(b, 2));
    EXPECT_EQ(Orv2dPoint(2, 0), Orv2dPoint(stage->toLinksCardinal(b), stage->fromLinksCardinal(b)));
    EXPECT_EQ(Orv2dPoint(1, 2), Orv2dPoint(stage->toLinksCardinal(c), stage->fromLinksCardinal(c)));

    // The straight link ab runs from (60, 35) to (200, 135): its middle is blue.
    EXPECT_EQ(rgb(130, 85), 0x0000fful);
    // Moving an end repaints the link where it was and where it goes.
    a->beginDrawing(1);
    a->box = Orv2dRect(20, 120, 40, 30);
    a->flushDrawing(1);
    expectPixels({130, 85, background, 130, 135, 0x0000ff});  // the new path runs level

    // A link of a link follows the link it ends on when that link's end moves.
    TestBox* d = box(120, 60, 20, 20);
    OrvLinkImage* linkOfLink = new OrvLinkImage(director, d, ab, 0, 1.0f, red);
    stage->append(linkOfLink);
    EXPECT_EQ(stage->toLinksCardinal(ab), 1u);
    Orv2dRect before = linkOfLink->bbox2d(nullptr);
    b->beginDrawing(1);
    b->box.y = 60;
    b->flushDrawing(1);
    EXPECT_FALSE(linkOfLink->bbox2d(nullptr) == before);

    // Removing b takes ab, cb and the link on ab with it, and nothing else.
    unsigned before_count = stage->cardinal();
    stage->remove(b, 1);
    EXPECT_EQ(stage->cardinal(), before_count - 4);
    EXPECT_TRUE(a->getStage() == stage && self->getStage() == stage);
    EXPECT_EQ(stage->fromLinksCardinal(c), 1u) << "cb left c's list";
    EXPECT_EQ(0u, stage->fromLinksCardinal(d) + stage->fromLinksCardinal(a));
    EXPECT_EQ(rgb(130, 135), background);
    // setFrom repaints but leaves the tables as they were.
    self->setFrom(a);
    EXPECT_EQ(self->from, a);
    EXPECT_EQ(Orv2dPoint(1, 0),
              Orv2dPoint(stage->fromLinksCardinal(c), stage->fromLinksCardinal(a)));
    self->setFrom(c);
}

TEST_F(LinkTest, MakeLinkProducerDragsFromOneActorToAnother) {
    TestBox* a = box(20, 20, 40, 30);
    TestBox* b = box(200, 120, 40, 30, blue);
    OrvSelectProducer* select = new OrvSelectProducer(stage);
    OrvMakeLinkProducer* maker = new OrvMakeLinkProducer(stage, select, 1, blue);
    stage->setProducer(maker);
    std::vector<unsigned long> empty = snapshot(stage);
    // A press on nothing starts nothing.
    click(150, 100);
    EXPECT_EQ(stage->cardinal(), 2u);
    drag(40, 35, 220, 135);
    ASSERT_EQ(stage->cardinal(), 3u);
    OrvLinkImage* link = stage->linkTo(b, 0);
    ASSERT_TRUE(link && link->from == a);
    EXPECT_FALSE(a->isSelected() || b->isSelected()) << "the ends are deselected";
    EXPECT_EQ(stage->getProducer(), select) << "back to the previous producer";
    EXPECT_EQ(rgb(130, 85), 0x0000fful);
    // No ghost is left: take the link away and the window is as it was.
    stage->remove(link, 1);
    EXPECT_EQ(snapshot(stage), empty);
    // A press on a link starts nothing.
    stage->append(new OrvLinkImage(director, a, b, 0, 1.0f, blue));
    stage->setProducer(maker);
    drag(130, 85, 220, 135);
    EXPECT_EQ(stage->cardinal(), 3u);
}

TEST_F(LinkTest, LargeGraphsSaveAndReadBackWholeAndMissingEndsAreLeftOut) {
    // 1,000 actors and 2,000 links of the three kinds.
    std::vector<OrvActor*> nodes;
    for (int i = 0; i < 1000; i++) {
        OrvActor* n =
            new OrvFilledRectangle(director, Orv2dRect((i % 40) * 7, (i / 40) * 7, 5, 5), red);
        stage->append(n, i % 3);
        nodes.push_back(n);
    }
    for (int i = 0; i < 2000; i++) {
        OrvActor* f = nodes[(i * 7) % 1000];
        OrvActor* t = nodes[(i * 13 + 1) % 1000];
        stage->append(makeLink(director, i % 4, f, t), 3);
    }
    std::string text = saved(stage);
    OrvStage* back = newStage(Orv2dRect(0, 0, 300, 200));
    std::istringstream in("%Orvis 1 date\n" + text.substr(1));
    Orv2dRect size;
    ASSERT_TRUE(back->read(in, size, -1));
    EXPECT_TRUE(back->cardinal() == 3000u && saved(back) == text);
    unsigned from = 0, to = 0, count = 0;
    OrvActor** all = back->objects(count);
    for (unsigned i = 0; i < count; i++) {
        from += back->fromLinksCardinal(all[i]);
        to += back->toLinksCardinal(all[i]);
    }
    delete[] all;
    EXPECT_EQ(Orv2dPoint(2000, 2000), Orv2dPoint(from, to));
    delete back;

    // A link whose end is not in the file is reported and left out; the rest is read.
    std::string small = "%Orvis 1 date\n" + saved(stage).substr(1);
    size_t at = small.find("fromTo");
    ASSERT_NE(at, std::string::npos);
    size_t end = small.find('\n', at);
    small.replace(at, end - at, "fromTo\t\t 99999  1 ");
    OrvStage* partial = newStage(Orv2dRect(0, 0, 300, 200));
    std::istringstream bad(small);
    EXPECT_EQ("OrvLinkImage : an end is missing, the link is left out\n",
              OrvTestOutput([&] { EXPECT_TRUE(partial->read(bad, size, -1)); }));
    EXPECT_EQ(partial->cardinal(), 2999u);
    delete partial;
}
