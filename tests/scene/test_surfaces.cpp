// Polygons, series, strip sets, faces and face sets: installing arrays and
// indices, face numbering, face and vertex normals by crease angle, and
// texture coordinates.
#include "orv/scene/crease.h"

#include <cmath>
#include <cstring>
#include <random>
#include <typeinfo>

#include "vertex_samples.h"

namespace {

const float r2 = 1 / std::sqrt(2.0f), r3 = 1 / std::sqrt(3.0f);

void expectNear(const Orv3dVector& v, float x, float y, float z, const char* what = "") {
    EXPECT_NEAR(v.x, x, 1e-6) << what;
    EXPECT_NEAR(v.y, y, 1e-6) << what;
    EXPECT_NEAR(v.z, z, 1e-6) << what;
}

}  // namespace

TEST(Polygon, ArraysAndIndices) {
    SampleArrays a;
    OrvPolygon p;
    struct {
        OrvShare *points, *colors;
        bool indexed;
        unsigned long ok;
    } rows[] = {
        {nullptr, nullptr, false, 0},     {a.colors, nullptr, false, 0},
        {a.points, a.normals, false, 0},  {a.points, a.colors, false, 0},  // 4 colours, 6 points
        {a.points, a.colors, true, 1},                                     // fine with an index
        {a.points4d, a.colors, false, 1},
    };
    for (const auto& r : rows)
        EXPECT_EQ(OrvTestOutput([&] {
                      OrvShare* no = nullptr;
                      EXPECT_EQ(r.indexed ? p.setIndexed(r.points, r.colors, no, no, no)
                                          : p.setNonIndexed(r.points, r.colors, no, no, no),
                                r.ok);
                  }),
                  r.ok ? "" : "OrvPolygon::setNonIndexed : Bad arguments.\n");
    EXPECT_EQ(typeid(*p.vertex), typeid(_OrvVertexPC_));
    EXPECT_EQ(p.bbox, Orv3dVolume(0, 0, 0, 2, 2, 2));
    unsigned v[3] = {0, 1, 2};
    EXPECT_EQ(OrvTestOutput([&] {
                  EXPECT_EQ(p.setIndex(0, 3, v, v, nullptr, nullptr, nullptr), 0u);
                  EXPECT_EQ(p.setIndex((OrvShare*)nullptr), 0u);
                  EXPECT_EQ(p.setIndex(0, 2, 0u, 1u, 1u, 2u), 0u);
              }),
              "OrvPolygon::setIndex : Not indexed.\n"
              "OrvPolygon::setIndex : Not indexed.\n"
              "OrvPolygon::setIndex : Non indexed face.\n");

    // The hand-written form: per vertex the point, then colour, normal,
    // texture, edge; the share holds point, colour, normal, edge, texture.
    EXPECT_EQ(p.setIndexed(a.points, a.colors, a.normals, a.textures, a.edges), 1u);
    EXPECT_EQ(p.setIndex(1, 3, 1u, 0u, 1u, 2u, 0u, 2u, 1u, 0u, 1u, 1u, 1u, 2u, 1u, 0u, 2u), 1u);
    const unsigned* all = p.vertexIndex();
    EXPECT_EQ(std::vector<unsigned>(all, all + 15),
              std::vector<unsigned>({1, 2, 1, 0, 1, 2, 1, 0, 1, 0, 1, 2, 2, 1, 0}));
    EXPECT_EQ(p.vertexEdgesIndex(), all + 9);
    EXPECT_EQ(p.vertexTexturesIndex(), all + 12);
    EXPECT_TRUE(p.vertexSharedIndex()->isReadOnly());
    EXPECT_EQ(p.bbox, Orv3dVolume(1, 0, 0, 0, 1, 0));  // points 1, 2, 1
    // A missing block keeps the old index.
    OrvShare* before = p.vertexSharedIndex();
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(p.setIndex(0, 3, v, v, v, nullptr, v), 0u); }),
              "OrvVertex::setIndex: Need vertex edge index.\n");
    EXPECT_EQ(p.vertexSharedIndex(), before);

    // A copy shares the arrays and the index.
    OrvPolygon* twin = p.copy();
    EXPECT_EQ(typeid(*twin), typeid(OrvPolygon));
    EXPECT_EQ(twin->vertexSharedIndex(), before);
    EXPECT_EQ(before->lockCount, 2);
    EXPECT_EQ(a.points->lockCount, 3);
    EXPECT_EQ(twin->bbox, p.bbox);
    delete twin;
    EXPECT_EQ(a.points->lockCount, 2);
}

TEST(Polygon, NormalFacesAndChanges) {
    Shares make;
    OrvShare* points = make.make<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
    OrvShare* colors = make.make<OrvRGB>({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}});
    OrvPolygon p;
    p.setNonIndexed(points, colors, nullptr, nullptr, nullptr);
    Orv3dVector n;
    EXPECT_EQ(p.computeNormal(n), 1u);
    EXPECT_EQ(n, Orv3dVector(0, 0, 1));

    EXPECT_EQ(p.subFaceVertexCardinal(0), 4u);
    EXPECT_EQ(p.subFaceVertexCardinal(1), 0u);
    Orv3dPoint q;
    Orv4dPoint h;
    EXPECT_EQ(p.subFaceVertex(q, 0, 2), 2);
    EXPECT_EQ(q, Orv3dPoint(1, 1, 0));
    EXPECT_EQ(p.subFaceVertex(h, 0, 3), 3);
    EXPECT_EQ(h, Orv4dPoint(0, 1, 0, 1));
    EXPECT_EQ(OrvTestOutput([&] {
                  EXPECT_EQ(p.subFaceVertex(q, 1, 0), -1);
                  EXPECT_EQ(p.subFaceVertex(h, 0, 4), -1);
              }),
              "OrvPolygon::subFaceVertex : Argument outbounds [index].\n"
              "OrvPolygon::subFaceVertex : Argument outbounds [nth].\n");

    // Each success says that normals, textures and edges are not done.
    OrvRGB grey(0.5f, 0.5f, 0.5f);
    Orv3dVector ignored(1, 0, 0);
    EXPECT_EQ(
        OrvTestOutput([&] {
            EXPECT_EQ(p.changePoint(2, Orv3dPoint(3, 2, 1), &grey, &ignored, nullptr, nullptr), 1u);
            EXPECT_EQ(p.changePoint(0, Orv4dPoint(-2, 0, 0, 2), nullptr, nullptr, nullptr, nullptr),
                      1u);
            EXPECT_EQ(p.changePoint(4, Orv3dPoint(), nullptr, nullptr, nullptr, nullptr), 0u);
        }),
        "To be done ...... \nTo be done ...... \n");
    EXPECT_EQ(points->points()[2], Orv3dPoint(3, 2, 1));
    EXPECT_EQ(points->points()[0], Orv3dPoint(-1, 0, 0));
    EXPECT_EQ(colors->colors()[2], grey);
    EXPECT_EQ(p.bbox, Orv3dVolume(-1, 0, 0, 4, 2, 1));

    // Read-only points are never changed.
    OrvShare* fixed = make.make<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, 1);
    OrvPolygon r;
    r.setIndexed(fixed, nullptr, nullptr, nullptr, nullptr);
    unsigned v[3] = {2, 1, 0};
    r.setIndex(0, 3, v, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(OrvTestOutput([&] {
                  EXPECT_EQ(
                      r.changePoint(0, Orv3dPoint(5, 5, 5), nullptr, nullptr, nullptr, nullptr),
                      0u);
              }),
              "");
    EXPECT_EQ(fixed->points()[2], Orv3dPoint(0, 1, 0));
    EXPECT_EQ(r.computeNormal(n), 1u);
    EXPECT_EQ(n, Orv3dVector(0, 0, -1));
}

TEST(Polygon, Textures) {
    struct {
        std::vector<Orv3dPoint> points;
        std::vector<OrvTextureUV> uv;
    } rows[] = {
        // Flat in z = 0, wide or tall: s along the longer side, t in
        // proportion, no division by 0; deepest along z, then x before y on a tie.
        {{{1, 1, 0}, {5, 1, 0}, {5, 3, 0}, {1, 3, 0}}, {{0, 0}, {1, 0}, {1, 0.5f}, {0, 0.5f}}},
        {{{0, 0, 0}, {2, 0, 0}, {2, 4, 0}, {0, 4, 0}}, {{0, 0}, {0, 0.5f}, {1, 0.5f}, {1, 0}}},
        {{{0, 0, 0}, {1, 1, 0}, {1, 1, 4}}, {{0, 0}, {0, 0.25f}, {1, 0.25f}}},
    };
    Shares make;
    for (const auto& r : rows) {
        SCOPED_TRACE(&r - rows);
        OrvPolygon p;
        p.setNonIndexed(make.make(r.points, 1), nullptr, nullptr, nullptr, nullptr);
        p.computeVerticeTextures();
        ASSERT_NE(p.vertexTextures(), nullptr);
        EXPECT_EQ(typeid(*p.vertex), typeid(_OrvVertexPT_));
        EXPECT_TRUE(p.vertexSharedTextures()->isReadOnly());  // as the points
        EXPECT_EQ(std::vector<OrvTextureUV>(p.vertexTextures(), p.vertexTextures() + r.uv.size()),
                  r.uv);
        // Textures exist: nothing more happens.
        OrvShare* had = p.vertexSharedTextures();
        p.computeVerticeTextures();
        EXPECT_EQ(p.vertexSharedTextures(), had);
    }
    // Indexed, with colours, in a box of the caller's: the texture block is
    // the point block, and the other blocks stay.
    OrvShare* points = make.make<Orv3dPoint>({{0, 0, 0}, {4, 0, 0}, {4, 2, 0}});
    OrvPolygon p;
    p.setIndexed(points, make.make<OrvRGB>({{1, 0, 0}}), nullptr, nullptr, nullptr);
    unsigned v[3] = {2, 1, 0}, c[3] = {0, 0, 0};
    p.setIndex(0, 3, v, c, nullptr, nullptr, nullptr);
    Orv3dVolume box(0, 0, 0, 8, 2, 0);
    p.computeVerticeTextures(&box);
    EXPECT_EQ(typeid(*p.vertex), typeid(_OrvVertexIPCT_));
    EXPECT_EQ(std::vector<unsigned>(p.vertexIndex(), p.vertexIndex() + 9),
              std::vector<unsigned>({2, 1, 0, 0, 0, 0, 2, 1, 0}));
    EXPECT_EQ(p.vertexTextures()[1], OrvTextureUV(0.5f, 0));
    EXPECT_EQ(p.vertexTextures()[2], OrvTextureUV(0.5f, 0.25f));
    // A box that is not a box: no side is the longest.
    OrvPolygon q;
    q.setNonIndexed(points, nullptr, nullptr, nullptr, nullptr);
    Orv3dVolume bad(0, 0, 0, NAN, NAN, NAN);
    EXPECT_EQ(OrvTestOutput([&] { q.computeVerticeTextures(&bad); }),
              "OrvPolygon::computeVerticeTextures : Internal error (1).\n");
    EXPECT_EQ(q.vertexTextures(), nullptr);
}

TEST(Series, FacesByKind) {
    // 12 vertices throughout, vertex i at x = i.
    std::vector<Orv3dPoint> pts;
    for (unsigned i = 0; i < 12; i++) pts.push_back(Orv3dPoint((float)i, 0, 0));
    Shares make;
    OrvShare* points = make.make(pts);
    struct {
        OrvSeriesType kind;
        unsigned data1, data2;
        unsigned perFace, faces, rows, columns;
        std::vector<std::vector<long>> some;  // {face, v0, v1, ...}
    } rows[] = {
        {OrvQuadMesh, 2, 3, 4, 6, 2, 3, {{0, 0, 1, 5, 4}, {4, 5, 6, 10, 9}, {5, 6, 7, 11, 10}}},
        {OrvTriStrip, 3, 0, 3, 10, 0, 0, {{0, 0, 1, 2}, {1, 2, 1, 3}, {9, 10, 9, 11}}},
        {OrvRowsTriStrip, 3, 2, 3, 8, 2, 2, {{3, 4, 3, 5}, {4, 6, 7, 8}, {5, 8, 7, 9}}},
        {OrvTriFan, 3, 0, 3, 10, 0, 0, {{0, 0, 1, 2}, {9, 0, 10, 11}}},
        {OrvFaces, 4, 0, 4, 3, 0, 0, {{0, 0, 1, 2, 3}, {2, 8, 9, 10, 11}}},
        {OrvFaces, 5, 0, 5, 2, 0, 0, {{1, 5, 6, 7, 8, 9}}},
        {OrvFaces, 0, 0, 0, 0, 0, 0, {}},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << "kind " << r.kind << " data1 " << r.data1);
        OrvSeries s(r.kind, r.data1, r.data2);
        s.setNonIndexed(points, nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(s.vertexPerFace(), r.perFace);
        EXPECT_EQ(s.faceCardinal(), r.faces);
        EXPECT_EQ(s.rows(), r.rows);
        EXPECT_EQ(s.columns(), r.columns);
        EXPECT_EQ(s.isQuadrilateral(), r.perFace == 4 ? 1u : 0u);
        EXPECT_EQ(s.isTriangle(), r.perFace == 3 ? 1u : 0u);
        EXPECT_EQ(s.subFaceVertexCardinal(r.faces ? r.faces - 1 : 0), r.faces ? r.perFace : 0);
        EXPECT_EQ(s.subFaceVertexCardinal(r.faces), 0u);
        Orv3dPoint q;
        for (const auto& f : r.some)
            for (unsigned nth = 0; nth + 1 < f.size(); nth++) {
                EXPECT_EQ(s.subFaceVertex(q, (unsigned)f[0], nth), f[nth + 1])
                    << "face " << f[0] << " nth " << nth;
                EXPECT_EQ(q.x, (float)f[nth + 1]);
            }
        EXPECT_EQ(OrvTestOutput([&] {
                      EXPECT_EQ(s.subFaceVertex(q, r.faces, 0), -1);
                      EXPECT_EQ(s.subFaceVertex(q, 0, r.perFace), -1);
                  }),
                  std::string("OrvSeries::subFaceVertex : Argument outbounds [index].\n") +
                      "OrvSeries::subFaceVertex : Argument outbounds [" +
                      (r.perFace ? "nth" : "index") + "].\n");
    }
}

TEST(Series, StripsAndStripSets) {
    std::vector<Orv3dPoint> pts;
    for (unsigned i = 0; i < 12; i++) pts.push_back(Orv3dPoint((float)i, (float)(i % 2), 0));
    Shares make;
    OrvShare* points = make.make(pts);
    OrvSeries rowsOf(OrvRowsTriStrip, 3, 3), one(OrvTriStrip, 3, 0);
    rowsOf.setNonIndexed(points, nullptr, nullptr, nullptr, nullptr);
    one.setNonIndexed(points, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(rowsOf.vertexInTriangleStrip(2), 4u);
    // A single strip has no rows, so the bound refuses every strip.
    EXPECT_EQ(OrvTestOutput([&] {
                  EXPECT_EQ(rowsOf.vertexInTriangleStrip(3), 0u);
                  EXPECT_EQ(one.vertexInTriangleStrip(0), 0u);
              }),
              "OrvSeries::vertexInTriangleStrip : Argument outbounds 3-3.\n"
              "OrvSeries::vertexInTriangleStrip : Argument outbounds 0-0.\n");

    // Strips of 5, 3 and 4 vertices, each a zig-zag from y = 0.
    OrvShare* lengths = make.make<unsigned>({5, 3, 4});
    std::vector<Orv3dPoint> zig;
    for (unsigned length : {5u, 3u, 4u})
        for (unsigned i = 0; i < length; i++)
            zig.push_back(Orv3dPoint((float)zig.size(), (float)(i % 2), 0));
    OrvTriangleStripSet set(lengths);
    set.setNonIndexed(make.make(zig), nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(lengths->lockCount, 2);
    EXPECT_EQ(set.faceCardinal(), 6u);
    const long expect[6][3] = {{0, 1, 2}, {2, 1, 3}, {2, 3, 4}, {5, 6, 7}, {8, 9, 10}, {10, 9, 11}};
    Orv3dPoint q;
    for (unsigned f = 0; f < 6; f++)
        for (unsigned k = 0; k < 3; k++)
            EXPECT_EQ(set.subFaceVertex(q, f, k), expect[f][k]) << f << " " << k;
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(set.vertexInTriangleStrip(3), 0u); }),
              "OrvTriangleStripSet::vertexInTriangleStrip: Argument outbounds 3-3.\n");
    OrvPolygon* copy = set.copy();
    EXPECT_EQ(typeid(*copy), typeid(OrvTriangleStripSet));
    EXPECT_EQ(lengths->lockCount, 3);
    delete copy;
    EXPECT_EQ(lengths->lockCount, 2);

    // Face normals of zig-zags in z = 0 all face one way.
    for (OrvSeries* s : {(OrvSeries*)&set, &one}) {
        EXPECT_EQ(s->computeFacesNormals(), 1u);
        ASSERT_NE(s->faceNormals, nullptr);
        EXPECT_EQ(s->faceNormals->cardinal, s->faceCardinal());
        for (unsigned f = 0; f < s->faceCardinal(); f++)
            EXPECT_EQ(s->faceNormals->normals()[f], Orv3dVector(0, 0, -1)) << f;
    }
}

TEST(Series, VertexNormalsOfAFoldedMesh) {
    // A quad mesh of 1 row and 2 columns folded along its middle column:
    // the left cell lies in z = 0, the right one rises at 45 degrees.
    Shares make;
    OrvShare* points =
        make.make<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {2, 0, 1}, {0, 1, 0}, {1, 1, 0}, {2, 1, 1}});
    struct {
        double angle;
        Orv3dVector middle;  // at vertices 1 and 4, taken from the first cell's side
    } rows[] = {{30, {0, 0, 1}}, {60, {-0.382683f, 0, 0.923880f}}};
    for (const auto& row : rows) {
        OrvSeries mesh(OrvQuadMesh, 1, 2);
        mesh.setNonIndexed(points, nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(mesh.computeVerticeNormals(row.angle), 1u);
        ASSERT_NE(mesh.faceNormals, nullptr);
        EXPECT_EQ(mesh.faceNormals->normals()[0], Orv3dVector(0, 0, 1));
        expectNear(mesh.faceNormals->normals()[1], -r2, 0, r2);
        // One normal a vertex, parallel to the points.
        EXPECT_EQ(typeid(*mesh.vertex), typeid(_OrvVertexPN_));
        ASSERT_EQ(mesh.vertexNormalsCardinal(), 6u);
        const Orv3dVector* n = mesh.vertexNormals();
        EXPECT_EQ(n[0], Orv3dVector(0, 0, 1));
        expectNear(n[2], -r2, 0, r2);
        for (unsigned v : {1u, 4u}) expectNear(n[v], row.middle.x, 0, row.middle.z, "middle");
        EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(mesh.computeVerticeNormals(row.angle), 0u); }),
                  "OrvSeries::computeVerticeNormals: Internal error (1).\n");
    }
    // Faces get a table of distinct normals through an index.
    OrvShare* tri =
        make.make<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}, {0, 1, 0}, {-1, 0, 0}});
    OrvSeries faces(OrvFaces, 3, 0), none(OrvFaces, 0, 0);
    faces.setNonIndexed(tri, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(faces.computeVerticeNormals(30), 1u);
    EXPECT_EQ(typeid(*faces.vertex), typeid(_OrvVertexIPN_));
    EXPECT_EQ(faces.vertexNormalsCardinal(), 1u);
    EXPECT_EQ(std::vector<unsigned>(faces.vertexIndex(), faces.vertexIndex() + 12),
              std::vector<unsigned>({0, 1, 2, 3, 4, 5, 0, 0, 0, 0, 0, 0}));
    none.setNonIndexed(tri, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(none.computeVerticeNormals(30), 0u); }),
              "OrvSeries::computeVerticeNormals : Can't compute faces normals.\n");
}

TEST(FaceSet, CubeByCreaseAngle) {
    struct {
        double angle;
        unsigned distinct;
    } rows[] = {{30, 6}, {0, 6}, {89, 6}, {91, 8}, {180, 8}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.angle);
        Shares make;
        OrvShare* points = make.make(cubeCorners(), 1);
        OrvFaceSet* set = indexedSet(points, cubeQuads);
        EXPECT_EQ(set->computeFacesNormals(), 1u);
        EXPECT_EQ(set->computeVerticeNormals(row.angle), 1u);
        std::vector<OrvFace*> faces = facesOf(*set);
        OrvShare* table = faces[0]->vertexSharedNormals();
        ASSERT_NE(table, nullptr);
        EXPECT_EQ(table->cardinal, row.distinct);
        EXPECT_TRUE(table->isReadOnly());  // as the points
        for (unsigned f = 0; f < 6; f++) {
            OrvFace* face = faces[f];
            EXPECT_EQ(typeid(*face->vertex), typeid(_OrvVertexIPN_));
            EXPECT_EQ(face->vertexSharedNormals(), table);
            for (unsigned k = 0; k < 4; k++) {
                unsigned corner = cubeQuads[f][k];
                EXPECT_EQ(face->vertexPointsIndex()[k], corner);
                Orv3dVector n = vertexNormal(*face, k);
                if (row.distinct == 6)
                    EXPECT_EQ(n, *face->normal());
                else
                    expectNear(n, corner & 1 ? r3 : -r3, corner & 2 ? r3 : -r3,
                               corner & 4 ? r3 : -r3);
            }
        }
        // A second call says so and changes nothing.
        EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(set->computeVerticeNormals(row.angle), 0u); }),
                  "OrvFaceSet::computeVerticeNormals : Vertice normals\n"
                  "   are already computed (for at least one face).\n");
        EXPECT_EQ(faces[0]->vertexSharedNormals(), table);
        delete set;
        EXPECT_EQ(points->lockCount, 1);
    }
}

TEST(FaceSet, FacesWithoutIndexAndWithoutNormals) {
    // Without index the four points make one quadrilateral, folded by 90
    // degrees; its normal is Newell's.
    Shares make;
    OrvShare* points = make.make<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    OrvShare* colors = make.make<OrvRGB>({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}});
    OrvFace* flat = new OrvFace;
    flat->setNonIndexed(points, colors, nullptr, nullptr, nullptr);
    OrvFaceSet set(1, flat);
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(set.computeVerticeNormals(30), 0u); }),
              "OrvFaceSet::computeVerticeNormals: Internal error.\n");
    EXPECT_EQ(flat->vertexNormals(), nullptr);
    EXPECT_EQ(set.computeFacesNormals(), 1u);
    EXPECT_EQ(set.computeVerticeNormals(30), 1u);
    EXPECT_EQ(typeid(*flat->vertex), typeid(_OrvVertexIPCN_));
    EXPECT_EQ(flat->vertexNormalsCardinal(), 1u);
    EXPECT_EQ(std::vector<unsigned>(flat->vertexIndex(), flat->vertexIndex() + 12),
              std::vector<unsigned>({0, 1, 2, 3, 0, 1, 2, 3, 0, 0, 0, 0}));
    expectNear(vertexNormal(*flat, 3), r2, 0, r2);
}

TEST(FaceSet, TexturesRunOnAcrossFaces) {
    Shares make;
    OrvShare* points =
        make.make<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {3, 0, 0}, {3, 1, 0}});
    // The right face is put before the left one.
    OrvFaceSet* set = indexedSet(points, {{0, 1, 2, 3}});
    OrvFace* right = new OrvFace;
    right->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
    const unsigned quad[4] = {1, 4, 5, 2};
    right->setIndex(0, 4, quad, nullptr, nullptr, nullptr, nullptr);
    set->insert(right);
    EXPECT_EQ(set->bbox, Orv3dVolume(0, 0, 0, 3, 1, 0));
    set->computeVerticeTextures();
    std::vector<OrvFace*> faces = facesOf(*set);
    ASSERT_EQ(faces[0], right);
    ASSERT_NE(right->vertexSharedTextures(), nullptr);
    // One array of coordinates for the one array of points, the right face
    // running on from where the left ends.
    EXPECT_EQ(right->vertexSharedTextures(), faces[1]->vertexSharedTextures());
    const OrvTextureUV* uv = right->vertexTextures();
    EXPECT_EQ(uv[right->vertexTexturesIndex()[0]], OrvTextureUV(1 / 3.0f, 0));
    EXPECT_EQ(uv[4], OrvTextureUV(1, 0));
    EXPECT_EQ(uv[5], OrvTextureUV(1, 1 / 3.0f));
    delete set;
}

TEST(FaceSet, TableSearchesAgree) {
    // A bumpy grid with many distinct normals and many equal ones: the
    // table and every result are the same with either search, and with the
    // sort that large meshes take.
    const size_t sortFrom = _OrvNormalTableSortFrom_;
    _OrvNormalTableSortFrom_ = 0;
    const unsigned n = 12;
    std::vector<Orv3dPoint> pts;
    std::vector<std::vector<unsigned>> quads;
    for (unsigned r = 0; r <= n; r++)
        for (unsigned c = 0; c <= n; c++) {
            pts.push_back(Orv3dPoint((float)c, (float)r,
                                     (float)(std::sin(r * 0.7) * std::cos(c * 0.9) +
                                             ((r * 7 + c * 3) % 5 == 0 ? 0.25 : 0))));
            unsigned a = r * (n + 1) + c;
            if (r < n && c < n) quads.push_back({a, a + 1, a + n + 2, a + n + 1});
        }
    Shares make;
    OrvShare* points = make.make(pts);
    std::vector<Orv3dVector> results[2];
    std::vector<unsigned> indices[2];
    for (int linear = 0; linear < 2; linear++) {
        _OrvNormalTableLinearSearch_ = linear;
        OrvFaceSet* set = indexedSet(points, quads);
        set->computeFacesNormals();
        set->computeVerticeNormals(40);
        std::vector<OrvFace*> faces = facesOf(*set);
        OrvShare* table = faces[0]->vertexSharedNormals();
        results[linear].assign(table->normals(), table->normals() + table->cardinal);
        for (OrvFace* f : faces)
            indices[linear].insert(indices[linear].end(), f->vertexNormalsIndex(),
                                   f->vertexNormalsIndex() + 4);
        delete set;
    }
    EXPECT_GT(results[0].size(), 10u);
    EXPECT_LT(results[0].size(), 4u * n * n);
    EXPECT_EQ(results[0], results[1]);
    EXPECT_EQ(indices[0], indices[1]);

    // Vectors within 1e-6 of each other, across cell borders, find the
    // first one stored; others are kept apart.
    for (int linear = 0; linear < 2; linear++) {
        _OrvNormalTableLinearSearch_ = linear;
        _OrvNormalTable_ table;
        const float border = 3.0f / 4096.0f;
        EXPECT_EQ(table.find(Orv3dVector(border - 4e-7f, 0, 1)), 0u);
        EXPECT_EQ(table.find(Orv3dVector(border + 4e-7f, 0, 1)), 0u);
        EXPECT_EQ(table.find(Orv3dVector(border + 8e-7f, 0, 1)), 1u);
        EXPECT_EQ(table.find(Orv3dVector(border + 2e-7f, 0, 1)), 0u);  // near both: the first
        EXPECT_EQ(table.find(Orv3dVector(0, 0, -1)), 2u);
        EXPECT_EQ(table.find(Orv3dVector(NAN, 0, 0)), 3u);
        EXPECT_EQ(table.find(Orv3dVector(NAN, 0, 0)), 4u);  // never equal
        EXPECT_EQ(table.find(Orv3dVector(1e30f, 0, 0)), 5u);
        EXPECT_EQ(table.find(Orv3dVector(1e30f, 0, 0)), 5u);
        EXPECT_EQ(table.vectors.size(), 6u);
    }
    _OrvNormalTableLinearSearch_ = 0;

    // Many at once agree with one after the other: vectors crowded round
    // cell borders (within 1e-6 of several cells) and round cell centres,
    // repeated and chained within 1e-6 of each other, and off the grid.
    std::mt19937 random(7);
    std::uniform_int_distribution<int> cellOf(-3, 3), step(-12, 12);
    std::vector<Orv3dVector> crowd;
    for (int i = 0; i < 20000; i++) {
        float c[3];
        for (float& x : c)
            x = i % 2 ? (cellOf(random) + 10.5f) / 4096.0f + step(random) / 4 * 2.5e-7f
                      : cellOf(random) / 4096.0f + step(random) * 2.5e-7f;
        crowd.push_back(Orv3dVector(c[0], c[1], c[2]));
    }
    crowd.insert(crowd.begin() + 100, {Orv3dVector(NAN, 0, 0), Orv3dVector(1e30f, 0, 0),
                                       Orv3dVector(1e30f, 0, 0), Orv3dVector(NAN, 0, 0)});
    std::vector<unsigned> one, all;
    _OrvNormalTableLinearSearch_ = 1;
    _OrvNormalTable_ sequential;
    for (const Orv3dVector& v : crowd) one.push_back(sequential.find(v));
    _OrvNormalTableLinearSearch_ = 0;
    _OrvNormalTable_ batch;
    batch.findAll(crowd, all);
    EXPECT_EQ(one, all);
    ASSERT_EQ(sequential.vectors.size(), batch.vectors.size());
    EXPECT_LT(batch.vectors.size(), crowd.size() * 9 / 10);
    EXPECT_EQ(0, memcmp(sequential.vectors.data(), batch.vectors.data(),
                        batch.vectors.size() * sizeof(Orv3dVector)));
    // The table goes on finding after it.
    for (size_t i : {0, 1, 2, 3, 501, 19999}) EXPECT_EQ(batch.find(crowd[i]), one[i]) << i;
    size_t distinct = batch.vectors.size();
    EXPECT_EQ(batch.find(Orv3dVector(0.5f, 0.5f, 0.5f)), distinct);
    _OrvNormalTableSortFrom_ = sortFrom;
}
