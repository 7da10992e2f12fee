// Picking: face hits and their record against answers computed here, the
// nearest of overlapping faces, culling and the tolerances of points and
// lines, lines, the default box pick, invariant actors, handles; then the
// hierarchies, whose answers must be the walk's on random clicks.
#include "../theater/theater_support.h"

#include <cmath>
#include <numeric>
#include <random>

#include "orv/actor3d.h"
#include "orv/pick.h"

namespace {

// A pick record but for its point, to compare whole.
typedef std::tuple<const OrvScene*, OrvPickType, const OrvActor*, const OrvPolygon*, long, long>
    Fields;
Fields fields(const OrvPick3dRecord& r) {
    return Fields(r.scene, r.type, r.actor, r.polygon, r.vertexIndex, r.edgeIndex);
}

// Triangles (three points each) as faces indexed into one array.
OrvFaceSet* triangles(const std::vector<Orv3dPoint>& p) {
    std::vector<unsigned> index(p.size() / 3 * 3);
    std::iota(index.begin(), index.end(), 0u);
    return indexedFaces(p, index, 3);
}

// An axis square at depth z, as two triangles.
std::vector<Orv3dPoint> square(float x, float y, float side, float z) {
    return {{x, y, z}, {x + side, y, z},        {x + side, y + side, z},
            {x, y, z}, {x + side, y + side, z}, {x, y + side, z}};
}

OrvFace* faceOf(const Orv3dActorFaceSet* a, unsigned i) {
    OrvLink* l = a->faces->faces.first;
    while (i-- && l) l = l->next;
    return l ? (OrvFace*)l->value : nullptr;
}

// An actor with the default pick, and optionally a handle square in the window.
class HandleBox : public OrvActor {
public:
    Orv3dVolume volume;
    Orv2dRect handle;
    HandleBox(OrvDirector* d, const Orv3dVolume& v, const Orv2dRect& h = Orv2dRect())
        : OrvActor(d, nullptr), volume(v), handle(h) {}
    Orv3dVolume bbox3d(unsigned long) const override { return volume; }
    void draggerRegions3d(Orv2dRegion& r, const Orv3dMatrix*) const override {
        if (handle.w) r.extendBy(handle);
    }
};

class PickTest : public TheaterTest {
protected:
    const OrvPick3dRecord& rec() { return director->pick3dRecord(); }
    Orv3dActorFaceSet* mesh(const std::vector<Orv3dPoint>& p, unsigned layer = 0) {
        Orv3dActorFaceSet* a = new Orv3dActorFaceSet(director, triangles(p));
        theater->append(a, layer);
        return a;
    }
    OrvActor* at(int x, int y) { return theater->contains(Orv2dPoint(x, y), scene, 0, 0, nullptr); }
    void camera(int kind) {
        OrvCamera* c = scene->currentCamera();
        c->defaultCamera();
        if (kind == 0) return;
        c->lookAt(Orv3dPoint(0, 0, 3), Orv3dPoint(0, 0, 0), Orv3dVector(0, 1, 0));
        float n = kind == 1 ? 1 : 2;  // kind 2: a near plane the ray does not follow
        c->perspective(Orv3dRect(-0.4f * n, -0.4f * n, 0.8f * n, 0.8f * n), n, 20);
    }
};

TEST_F(PickTest, RecordKeepsZerosForNullPointAndClears) {
    Orv3dPoint p(1, 2, 3);
    director->setPick3dRecord(scene, OrvPickLine, scene, nullptr, &p, 4, 5);
    EXPECT_EQ(Fields(scene, OrvPickLine, scene, nullptr, 4, 5), fields(rec()));
    EXPECT_EQ(p, rec().point);
    director->setPick3dRecord(scene, OrvPickBox, nullptr, nullptr, nullptr, 1, 2);
    EXPECT_EQ(Orv3dPoint(), rec().point);
    director->clearPick3dRecord();
    EXPECT_EQ(Fields(nullptr, OrvPickNone, nullptr, nullptr, -1, -1), fields(rec()));
}

// The point of a face hit: on the face's plane, under the pixel for cameras
// whose ray follows it, else where the camera's own ray meets the plane.
TEST_F(PickTest, FaceHitRecordsWhereTheCameraRayMeetsThePlane) {
    Orv3dActorFaceSet* a = mesh({{-0.8f, -0.6f, 0}, {0.8f, -0.6f, 0.4f}, {0.8f, 0.6f, 0.4f}});
    const Orv3dPoint target(0.5f, -0.3f, 0.325f);  // on the face's plane z = (x + 0.8) / 4
    for (int kind : {0, 1, 2}) {
        camera(kind);
        Orv2dPoint px = pixelOf(target);
        ASSERT_EQ(a, at(px.x, px.y)) << kind;
        EXPECT_EQ(Fields(scene, OrvPickFace, a, faceOf(a, 0), -1, -1), fields(rec())) << kind;
        Orv3dPoint hit = rec().point;
        EXPECT_NEAR((hit.x + 0.8f) / 4, hit.z, 1e-5) << kind;
        Orv3dPoint o;
        Orv3dVector d;
        scene->currentCamera()->spawnRay(px.x, px.y, o, d, 0);
        Orv3dVector off = Orv3dVector(o, hit).cross(d);
        EXPECT_NEAR(0, off.length() / d.length(), 1e-4) << kind;  // on the camera's ray
        Orv2dPoint back = pixelOf(hit);
        bool under = std::abs(back.x - px.x) <= 1 && std::abs(back.y - px.y) <= 1;
        EXPECT_EQ(kind != 2, under) << kind << ": " << back.x << "," << back.y;
    }
}

TEST_F(PickTest, NearestFaceWinsWhateverTheLayerAndTheFirstFoundOnATie) {
    struct Row {
        unsigned layer[2];
        float z[2];
        int want;
    } rows[] = {{{0, 1}, {0, 0.5f}, 1},    {{1, 0}, {0, 0.5f}, 1},   {{0, 1}, {0.5f, 0}, 0},
                {{0, 0}, {0, 0.5f}, 1},    {{0, 0}, {0.5f, 0}, 0},   {{0, 0}, {0.2f, 0.2f}, 1},
                {{0, 1}, {0.2f, 0.2f}, 0}, {{1, 0}, {0.2f, 0.2f}, 1}};
    for (const Row& r : rows) {
        theater->empty(1);
        Orv3dActorFaceSet* m[2] = {mesh(square(-0.5f, -0.5f, 1, r.z[0]), r.layer[0]),
                                   mesh(square(-0.2f, -0.2f, 1, r.z[1]), r.layer[1])};
        EXPECT_EQ(m[r.want], at(160, 90)) << r.layer[0] << r.layer[1] << r.z[0] << r.z[1];
    }
    // Faces of one set: the nearer, else the first.
    theater->empty(1);
    std::vector<Orv3dPoint> p = square(-0.5f, -0.5f, 1, 0), q = square(-0.2f, -0.2f, 1, 0.3f);
    p.insert(p.end(), q.begin(), q.end());
    Orv3dActorFaceSet* a = mesh(p);
    at(170, 90);
    EXPECT_EQ(faceOf(a, 2), rec().polygon);  // the near square's first triangle holds the pixel
    theater->empty(1);
    a = mesh(square(-0.5f, -0.5f, 1, 0));
    faceOf(a, 1)->setIndex(0, 3, std::vector<unsigned>{0, 1, 2}.data(), nullptr, nullptr, nullptr,
                           nullptr);
    at(170, 90);
    EXPECT_EQ(faceOf(a, 0), rec().polygon);
}

// A counter-clockwise triangle shows its front; the pointer is put off
// vertex 1 or the middle of edge 0-1 by (dx, dy) pixels.
TEST_F(PickTest, CullingStylesAndTolerances) {
    Orv3dActorFaceSet* a = mesh({{0, 0, 0}, {1, 0, 0}, {0, 0.8f, 0}});
    Orv2dPoint v1 = pixelOf(Orv3dPoint(1, 0, 0)), e0 = pixelOf(Orv3dPoint(0.5f, 0, 0));
    Orv2dPoint inside = pixelOf(Orv3dPoint(0.3f, 0.3f, 0));
    struct Row {
        OrvCullingMode cull;
        OrvFaceStyle front, back;
        Orv2dPoint from;
        int dx, dy;
        bool hit;
        long vertex, edge;
    } rows[] = {
        {OrvCullBack, 4, 4, inside, 0, 0, true, -1, -1},
        {OrvCullFront, 4, 4, inside, 0, 0, false, -1, -1},
        {OrvCullFront, 2, 2, e0, 0, 1, false, -1, -1},
        {OrvCullBack, 8, 4, inside, 0, 0, false, -1, -1},
        {OrvCullNone, 8, 4, inside, 0, 0, false, -1, -1},
        {OrvCullNone, 2, 4, e0, 0, 1, true, -1, 0},
        {OrvCullNone, 2, 4, inside, 0, 0, false, -1, -1},
        {OrvCullNone, 1, 1, v1, 3, -3, true, 1, -1},
        {OrvCullNone, 1, 1, v1, 4, 0, false, -1, -1},
        {OrvCullNone, 1, 4, v1, 2, 2, true, 1, -1},
    };
    for (const Row& r : rows) {
        a->setCull(r.cull);
        a->setFrontStyle(r.front);
        a->setBackStyle(r.back);
        OrvSetDeltaLine(5.5f);
        OrvActor* got = at(r.from.x + r.dx, r.from.y + r.dy);
        EXPECT_EQ(5.5f, OrvGetDeltaLine());
        EXPECT_EQ(r.hit ? a : nullptr, got) << r.cull << r.front << r.back << " " << r.dx;
        if (!r.hit) continue;
        EXPECT_EQ(std::make_tuple(r.vertex, r.edge),
                  std::make_tuple(rec().vertexIndex, rec().edgeIndex));
    }
    OrvSetDeltaLine(8);
}

TEST_F(PickTest, LinesByStyleWithTheNearerEnd) {
    Orv3dActor* line = new Orv3dActor(director);
    theater->append(line);
    const Orv3dPoint from(-0.6f, -0.2f, 0), to(0.6f, 0.4f, 0.2f);
    auto on = [&](float t) {
        return pixelOf(Orv3dPoint(from.x + t * (to.x - from.x), from.y + t * (to.y - from.y),
                                  from.z + t * (to.z - from.z)));
    };
    struct Row {
        unsigned long distinguish;
        OrvFaceStyle front, back;
        float t;
        int dy;
        long want;
    } rows[] = {{0, 4, 4, 0.2f, 0, 0},  {0, 4, 4, 0.9f, 1, 1}, {1, 8, 4, 0.2f, 0, -1},
                {0, 4, 8, 0.2f, 0, -1}, {1, 2, 8, 0.6f, 0, 1}, {0, 4, 4, 0.5f, 6, -1}};
    for (const Row& r : rows) {
        line->setDistinguish(r.distinguish);
        line->setFrontStyle(r.front);
        line->setBackStyle(r.back);
        director->setPick3dRecord(scene, OrvPickBox, line, nullptr, nullptr, 9, 9);
        Orv2dPoint p = on(r.t);
        p.y += r.dy;
        EXPECT_EQ(r.want >= 0 ? 1u : 0u, OrvPick3dLine(p, from, to, scene, line)) << r.t;
        if (r.want < 0) {
            EXPECT_EQ(std::make_tuple(-1l, (OrvActor*)nullptr),
                      std::make_tuple(rec().edgeIndex, rec().actor));
            continue;
        }
        EXPECT_EQ(Fields(scene, OrvPickLine, line, nullptr, -1, r.want), fields(rec()));
        Orv2dPoint back = pixelOf(rec().point);
        EXPECT_TRUE(std::abs(back.x - p.x) <= 1 && std::abs(back.y - p.y) <= 1);
    }
    EXPECT_EQ(0u, OrvPick3dLine(Orv2dPoint(1, 1), from, to, nullptr, line));
}

// The default pick covers the projected box, 2 pixels wider; an invariant
// actor is placed and picked in its own space.
TEST_F(PickTest, DefaultBoxPickAndInvariantActors) {
    HandleBox* b = new HandleBox(director, Orv3dVolume(-0.9f, -0.9f, 0, 0.4f, 0.4f, 0.2f));
    theater->append(b);
    Orv2dPoint corner = pixelOf(Orv3dPoint(-0.9f, -0.9f, 0));
    EXPECT_EQ(b, at(corner.x - 2, corner.y + 2));
    EXPECT_EQ(Fields(scene, OrvPickBox, b, nullptr, -1, -1), fields(rec()));
    EXPECT_EQ(b->volume.center(), rec().point);
    EXPECT_EQ(nullptr, at(corner.x - 4, corner.y));

    Orv3dMatrix back = scene->sceneToInvariant;
    auto invariantAt = [&](float x, float y) {
        Orv3dPoint p(x, y, 0.5f);
        back.apply(p);
        p.z = 0;
        return p;
    };
    std::vector<Orv3dPoint> p = {invariantAt(200, 50), invariantAt(200, 110), invariantAt(260, 50)};
    Orv3dActorFaceSet* inv = mesh(p);
    inv->setInvariant(1);
    EXPECT_EQ(inv, at(210, 60));
    EXPECT_EQ(inv, rec().actor);
    Orv2dPoint again = pixelOf(rec().point, true);
    EXPECT_TRUE(std::abs(again.x - 210) <= 1 && std::abs(again.y - 60) <= 1);
    inv->setInvariant(0);
    EXPECT_NE(inv, at(210, 60));
}

TEST_F(PickTest, SelectedActorsHandleIsTriedFirst) {
    HandleBox* h = new HandleBox(director, Orv3dVolume(-0.9f, -0.9f, 0, 0.2f, 0.2f, 0),
                                 Orv2dRect(200, 60, 6, 6));
    theater->append(h);
    Orv3dActorFaceSet* front = mesh(square(0, 0, 1, 0.5f));
    EXPECT_EQ(front, at(202, 62));
    EXPECT_EQ(nullptr, theater->containsDragger(Orv2dPoint(202, 62), scene, 0, 0, nullptr));
    h->setSelected(1);
    ASSERT_TRUE(h->isSelected());
    EXPECT_EQ(h, at(202, 62));
    EXPECT_EQ(std::make_tuple((OrvActor*)h, OrvPickBox), std::make_tuple(rec().actor, rec().type));
    EXPECT_EQ(h, theater->containsDragger(Orv2dPoint(202, 62), scene, 0, 0, nullptr));
    EXPECT_EQ(front, at(230, 62));
    EXPECT_EQ(nullptr, theater->containsDragger(Orv2dPoint(230, 62), scene, 0, 0, nullptr));
}

// ---------------------------------------------------------------------------
// Hierarchies
// ---------------------------------------------------------------------------

// The theater draws nothing while these tests build and restyle large meshes.
class PickTreeTest : public PickTest {
protected:
    void SetUp() override {
        PickTest::SetUp();
        if (theater) theater->beginDrawing();
    }
    void TearDown() override {
        if (theater) theater->abortDrawing();
        PickTest::TearDown();
    }
    std::mt19937 random{22};
    float u(float a, float b) { return std::uniform_real_distribution<float>(a, b)(random); }
    // Triangles of all sizes through the view, some reaching behind a perspective eye at z 3.
    std::vector<Orv3dPoint> cloud(unsigned n) {
        std::vector<Orv3dPoint> p;
        for (unsigned i = 0; i < n; i++) {
            float s = i % 50 ? 0.05f : 0.6f;
            Orv3dPoint c(u(-1.4f, 1.4f), u(-1, 1), u(-1, i % 97 ? 1.5f : 4));
            for (int k = 0; k < 3; k++)
                p.emplace_back(c.x + u(-s, s), c.y + u(-s, s), c.z + u(-s, s));
        }
        return p;
    }
    // Clicks with the hierarchies and without: the records must be the same.
    int compare(int clicks, int& hits) {
        int differ = 0;
        for (int i = 0; i < clicks; i++) {
            Orv2dPoint p((int)u(0, 300), (int)u(0, 200));
            OrvUsePickHierarchy(1);
            OrvActor* fast = at(p.x, p.y);
            OrvPick3dRecord r = rec();
            OrvUsePickHierarchy(0);
            OrvActor* slow = at(p.x, p.y);
            const OrvPick3dRecord& w = rec();
            hits += slow != nullptr;
            differ += fast != slow || fields(r) != fields(w) || r.point != w.point;
        }
        OrvUsePickHierarchy(1);
        return differ;
    }
};

TEST_F(PickTreeTest, RandomClicksGiveTheWalksRecord) {
    Orv3dActorFaceSet* set = mesh(cloud(10000));
    // A terrain of 50 by 50 quadrilaterals as a series.
    Orv3dPoint* grid = new Orv3dPoint[51 * 51];
    for (int r = 0; r <= 50; r++)
        for (int c = 0; c <= 50; c++)
            grid[r * 51 + c] = Orv3dPoint(-1.5f + c * 0.06f, -1 + r * 0.04f, u(-0.3f, 0.3f));
    OrvSeries* terrain = new OrvSeries(OrvQuadMesh, 50, 50);
    terrain->setNonIndexed(new OrvShare(51 * 51, grid, 0, 1), nullptr, nullptr, nullptr, nullptr);
    Orv3dShape* shape = new Orv3dShape(director, terrain, nullptr, nullptr);
    theater->append(shape, 1);
    const OrvFaceStyle styles[][3] = {{0, 4, 4}, {1, 4, 4}, {2, 4, 4}, {0, 2, 2}, {0, 1, 1},
                                      {0, 4, 2}, {2, 1, 2}, {1, 2, 8}, {0, 8, 1}};
    for (int kind : {0, 1})
        for (const auto& s : styles) {
            camera(kind);
            for (OrvActor* a : {(OrvActor*)set, (OrvActor*)shape}) {
                a->setCull(s[0]);
                a->setFrontStyle(s[1]);
                a->setBackStyle(s[2]);
            }
            int hits = 0;
            EXPECT_EQ(0, compare(60, hits)) << kind << " " << s[0] << s[1] << s[2];
            EXPECT_GT(hits, s[1] == 8 ? 2 : 20) << kind << " " << s[0] << s[1] << s[2];
        }
    EXPECT_GE(OrvGetPickHierarchyStats().meshBuilds, 2u);
}

TEST_F(PickTreeTest, CrowdedLayersGiveTheWalksActor) {
    for (int i = 0; i < 1000; i++) {
        Orv3dActorFaceSet* a = mesh(cloud(8), i % 3);
        a->translate(u(-0.3f, 0.3f), u(-0.3f, 0.3f), 0, 0);
        if (i % 7 == 0) a->rotateZ(i, 1);
    }
    theater->append(new HandleBox(director, Orv3dVolume(0, 0, 0.5f, 0.3f, 0.3f, 0.1f)), 1);
    int hits = 0;
    for (int kind : {0, 1}) {
        camera(kind);
        EXPECT_EQ(0, compare(250, hits)) << kind;
    }
    EXPECT_GT(hits, 250);
}

TEST_F(PickTreeTest, MovingKeepsTheMeshHierarchyAndChangePointRebuildsIt) {
    Orv3dActorFaceSet* a = mesh(cloud(2000));
    int hits = 0;
    auto builds = [] { return OrvGetPickHierarchyStats().meshBuilds; };
    EXPECT_EQ(0, compare(100, hits));
    unsigned long before = builds(), layers = OrvGetPickHierarchyStats().layerBuilds;
    a->translate(0.4f, 0.1f, 0, 1);
    a->rotateZ(20, 1);
    EXPECT_EQ(0, compare(200, hits));
    EXPECT_EQ(before, builds());
    EXPECT_EQ(layers, OrvGetPickHierarchyStats().layerBuilds);
    // The last triangle stretched across the window now covers its centre.
    OrvFace* last = faceOf(a, 1999);
    OrvTestOutput([&] {
        last->changePoint(0, Orv3dPoint(-3, -3, 6), nullptr, nullptr, nullptr, nullptr);
        last->changePoint(1, Orv3dPoint(3, -3, 6), nullptr, nullptr, nullptr, nullptr);
        last->changePoint(2, Orv3dPoint(0, 3, 6), nullptr, nullptr, nullptr, nullptr);
    });
    EXPECT_EQ(a, at(150, 100));
    EXPECT_EQ(last, rec().polygon);
    EXPECT_EQ(before + 1, builds());
    EXPECT_EQ(0, compare(200, hits));
    EXPECT_GT(OrvGetPickHierarchyStats().meshBytes, 0u);
}

}  // namespace
