// Vertex data: the 32 layouts chosen by the arrays in use, vertex access,
// index blocks and their checks, printing, and the normal arithmetic.
#include "vertex_samples.h"

#include <typeinfo>

namespace {

Orv3dVector newell(unsigned count, const Orv3dPoint* points, const unsigned* index,
                   unsigned long* ok = nullptr) {
    Orv3dVector v(9, 9, 9);
    unsigned long r = OrvVertexData::computeNormal(count, points, nullptr, index, v);
    if (ok) *ok = r;
    return v;
}

}  // namespace

TEST(VertexLayouts, EveryCombinationBothWays) {
    SampleArrays a;
    // Colours 1, normals 2, edges 4, textures 8, each with its array and size.
    OrvShare* shares[4] = {a.colors, a.normals, a.edges, a.textures};
    const unsigned sizes[4] = {4, 3, 6, 6};
    for (int rational = 0; rational < 2; rational++)
        for (int indexed = 0; indexed < 2; indexed++)
            for (unsigned mask = 0; mask < 16; mask++) {
                SCOPED_TRACE(testing::Message() << "mask " << mask << " indexed " << indexed
                                                << " rational " << rational);
                OrvShare* pts = rational ? a.points4d : a.points;
                OrvShare* s[4];
                for (int k = 0; k < 4; k++) s[k] = mask >> k & 1 ? shares[k] : nullptr;
                OrvVertexData data;
                if (indexed)
                    data.createIndexedVertex(pts, s[0], s[1], s[3], s[2]);
                else
                    data.createNonIndexedVertex(pts, s[0], s[1], s[3], s[2]);
                ASSERT_NE(data.vertex, nullptr);
                unsigned blocks = 1;
                for (OrvShare* x : s) blocks += x != nullptr;
                EXPECT_EQ(data.dataNumber(), blocks);
                EXPECT_EQ(data.isIndexed(), (unsigned long)indexed);
                EXPECT_EQ(data.isRationalPoint(), (unsigned long)rational);
                EXPECT_EQ(pts->lockCount, 2);
                // Each attribute answers only when present.
                EXPECT_EQ(data.vertexPoints(), rational ? nullptr : a.points->data);
                EXPECT_EQ(data.vertexPoints4d(), rational ? a.points4d->data : nullptr);
                EXPECT_EQ(data.vertexSharedPoints(), rational ? nullptr : a.points);
                EXPECT_EQ(data.vertexSharedPoints4d(), rational ? a.points4d : nullptr);
                EXPECT_EQ(data.vertexPointsCardinal(), rational ? 4u : 6u);
                const void* arrays[4] = {data.vertexColors(), data.vertexNormals(),
                                         data.vertexEdges(), data.vertexTextures()};
                OrvShare* shared[4] = {data.vertexSharedColors(), data.vertexSharedNormals(),
                                       data.vertexSharedEdges(), data.vertexSharedTextures()};
                unsigned counts[4] = {data.vertexColorsCardinal(), data.vertexNormalsCardinal(),
                                      data.vertexEdgesCardinal(), data.vertexTexturesCardinal()};
                for (int k = 0; k < 4; k++) {
                    EXPECT_EQ(arrays[k], s[k] ? s[k]->data : nullptr) << k;
                    EXPECT_EQ(shared[k], s[k]) << k;
                    EXPECT_EQ(counts[k], s[k] ? sizes[k] : 0) << k;
                }
                // Without its index an indexed object has no vertices.
                EXPECT_EQ(data.vertexCardinal(), indexed ? 0u : rational ? 4u : 6u);
                EXPECT_EQ(data.checkValidity(), (unsigned long)!indexed);
                unsigned v[3] = {2, 1, 0};  // inside every array
                if (indexed)
                    data.setVertexIndex(0, 3, v, s[0] ? v : nullptr, s[1] ? v : nullptr,
                                        s[2] ? v : nullptr, s[3] ? v : nullptr);
                // Vertex 2 without index, vertex 0 through it, is point 2
                // (rational ones divided by w); the box is of the vertices.
                Orv3dPoint q;
                Orv4dPoint h;
                unsigned at = 9, i = indexed ? 0 : 2;
                EXPECT_EQ(data.point(i, q) + data.point(i, h) + data.point(i, at), 3u);
                EXPECT_EQ(q, rational ? Orv3dPoint(0, 1, 0) : Orv3dPoint(1, 1, 0));
                EXPECT_EQ(h, rational ? Orv4dPoint(0, 3, 0, 3) : Orv4dPoint(1, 1, 0, 1));
                EXPECT_EQ(at, 2u);
                EXPECT_EQ(data.point(data.vertexCardinal(), q), 0u);
                EXPECT_EQ(data.bbox3d(), indexed    ? Orv3dVolume(0, 0, 0, 1, 1, 0)
                                         : rational ? Orv3dVolume(0, 0, 0, 2, 2, 2)
                                                    : Orv3dVolume(0, -1.25f, 0, 2, 2.25f, 3));
                if (!indexed) continue;
                ASSERT_NE(data.vertexSharedIndex(), nullptr);
                EXPECT_EQ(data.vertexSharedIndex()->cardinal, 3 * blocks);
                EXPECT_EQ(data.vertexCardinal(), 3u);
                EXPECT_EQ(data.checkValidity(), 1u);
                // Blocks in the order point, colour, normal, edge, texture.
                const unsigned* all = data.vertexIndex();
                EXPECT_EQ(data.vertexPointsIndex(), all);
                const unsigned* index[4] = {data.vertexColorsIndex(), data.vertexNormalsIndex(),
                                            data.vertexEdgesIndex(), data.vertexTexturesIndex()};
                for (int k = 0, place = 1; k < 4; k++)
                    EXPECT_EQ(index[k], s[k] ? all + 3 * place++ : nullptr) << k;
                // A copy is of the same class on the same shares.
                _OrvVertexType_* copy = data.copyVertex();
                EXPECT_EQ(typeid(*copy), typeid(*data.vertex));
                EXPECT_EQ(copy->sharedIndex(), data.vertexSharedIndex());
                EXPECT_EQ(data.vertexSharedIndex()->lockCount, 2);
                EXPECT_EQ(pts->lockCount, 3);
                delete copy;
                EXPECT_EQ(pts->lockCount, 2);
            }
    for (OrvShare* s : a.made) EXPECT_EQ(s->lockCount, 1);
}

TEST(VertexLayouts, BadArgumentsKeepTheLayout) {
    SampleArrays a;
    OrvVertexData data;
    data.createNonIndexedVertex(a.points, a.colors, nullptr, nullptr, nullptr);
    _OrvVertexType_* kept = data.vertex;
    struct {
        bool indexed;
        OrvShare *points, *colors;
    } rows[] = {
        {false, nullptr, nullptr},
        {true, nullptr, a.colors},
        {false, a.colors, nullptr},   // not points
        {true, a.points, a.normals},  // not colours
    };
    for (const auto& r : rows) {
        auto make = r.indexed ? &OrvVertexData::createIndexedVertex
                              : &OrvVertexData::createNonIndexedVertex;
        EXPECT_EQ(
            OrvTestOutput([&] { (data.*make)(r.points, r.colors, nullptr, nullptr, nullptr); }),
            r.indexed ? "OrvVertexData::OrvVertexData : Bad arguments (I).\n"
                      : "OrvVertexData::OrvVertexData : Bad arguments.\n");
        EXPECT_EQ(data.vertex, kept);
    }
    // Replacing a layout by one on the same shares keeps them alive.
    data.createIndexedVertex(a.points, a.colors, nullptr, nullptr, nullptr);
    EXPECT_EQ(a.points->lockCount, 2);
    EXPECT_EQ(typeid(*data.vertex), typeid(_OrvVertexIPC_));
}

TEST(VertexLayouts, IndexMessagesAndRemoval) {
    SampleArrays a;
    OrvVertexData data;
    data.createIndexedVertex(a.points, a.colors, a.normals, a.textures, a.edges);
    unsigned good[3] = {0, 1, 2};
    const char* missing[5] = {"Vertex (point) index is empty", "Need vertex color index",
                              "Need vertex normal index", "Need vertex edge index",
                              "Need vertex texture index"};
    for (int k = 0; k < 5; k++) {
        const unsigned* b[5] = {good, good, good, good, good};
        b[k] = nullptr;
        EXPECT_EQ(OrvTestOutput([&] { data.setVertexIndex(0, 3, b[0], b[1], b[2], b[3], b[4]); }),
                  std::string("OrvVertex::setIndex: ") + missing[k] + ".\n");
        EXPECT_EQ(data.vertexSharedIndex(), nullptr);
    }
    // Values just past their arrays (6 points, 4 colours, 3 normals, 6
    // textures): one message a block, the index kept, such a vertex never read.
    unsigned far[3] = {0, 6, 6}, last[3] = {3, 3, 3}, n[3] = {0, 3, 0};
    EXPECT_EQ(OrvTestOutput([&] { data.setVertexIndex(1, 3, far, last, n, good, far); }),
              "OrvVertex::setIndex: Some point index exceed max. of array.\n"
              "OrvVertex::setIndex: Some normal index exceed max. of array.\n"
              "OrvVertex::setIndex: Some texture index exceed max. of array.\n");
    ASSERT_NE(data.vertexSharedIndex(), nullptr);
    EXPECT_EQ(data.vertexSharedIndex()->flags, (unsigned)(OrvShareOwned | OrvShareReadOnly));
    EXPECT_EQ(data.checkIndex(), 0u);
    Orv3dPoint q(5, 5, 5);
    EXPECT_EQ(data.point(1, q) + data.point(2, q), 0u);
    EXPECT_EQ(q, Orv3dPoint(5, 5, 5));
    EXPECT_EQ(data.point(0, q), 1u);

    data.setVertexIndex(0, 3, good, good, good, good, good);
    EXPECT_EQ(data.checkIndex(), 1u);
    // A count of 0 without points removes the index, as cleanIndex does.
    data.setVertexIndex(0, 0, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(data.vertexSharedIndex(), nullptr);
    EXPECT_EQ(data.vertexCardinal(), 0u);
    data.setVertexIndex(0, 3, good, good, good, good, good);
    data.cleanIndex();
    EXPECT_EQ(data.vertexSharedIndex(), nullptr);

    // A ready share is locked as it is; the wrong kind is refused.
    unsigned* ready = new unsigned[10]{3, 2, 1, 0, 0, 0, 0, 1, 1, 0};
    OrvVertexData pc;
    pc.createIndexedVertex(a.points, a.colors, nullptr, nullptr, nullptr);
    OrvShare* share = new OrvShare(10, ready, 0, 1);
    pc.setVertexIndex(share);
    EXPECT_EQ(share->lockCount, 1);
    EXPECT_EQ(pc.vertexCardinal(), 5u);
    EXPECT_EQ(pc.vertexColorsIndex(), ready + 5);
    EXPECT_EQ(OrvTestOutput([&] { pc.setVertexIndex(a.colors); }),
              "OrvVertex::setIndex: Not an index share.\n");
    EXPECT_EQ(pc.vertexSharedIndex(), share);

    OrvVertexData plain, empty;
    plain.createNonIndexedVertex(a.points, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(OrvTestOutput([&] {
                  plain.cleanIndex();
                  plain.setVertexIndex(0, 3, good, nullptr, nullptr, nullptr, nullptr);
              }),
              "OrvVertexData::cleanIndex : Not indexed.\n"
              "OrvVertexData::setVertexIndex : Not indexed.\n");
    EXPECT_EQ(empty.checkValidity() + empty.vertexCardinal(), 0u);
    EXPECT_EQ(empty.vertexPoints(), nullptr);
}

TEST(VertexLayouts, Print) {
    SampleArrays a;
    OrvVertexData data;
    data.createIndexedVertex(a.points, a.colors, nullptr, a.textures, nullptr);
    unsigned v[2] = {0, 1};
    data.setVertexIndex(0, 2, v, v, nullptr, nullptr, v);
    EXPECT_EQ(OrvTestOutput([&] { data.print(); }), " Begin OrvVertexData :\n"
                                                    "  Vertex configuration :\n"
                                                    " indexed      PCT : \n"
                                                    "       - color   :  True\n"
                                                    "       - normal  :  False\n"
                                                    "       - edge    :  False\n"
                                                    "       - texture :  True\n\n"
                                                    "    --> points (count = 6) : \n"
                                                    "    --> colors (count = 4) : \n"
                                                    "    --> textures (count = 6) : \n"
                                                    "    --> index (count = 6) : \n"
                                                    " End OrvVertexData.\n");
    EXPECT_STREQ(data.className(), "OrvVertexData");
}

TEST(VertexNormals, Newell) {
    Orv3dPoint square[4] = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
    unsigned long ok;
    EXPECT_EQ(newell(4, square, nullptr, &ok), Orv3dVector(0, 0, 1));
    EXPECT_EQ(ok, 1u);
    unsigned backwards[4] = {3, 2, 1, 0}, repeated[6] = {0, 0, 1, 2, 2, 3};
    EXPECT_EQ(newell(4, square, backwards), Orv3dVector(0, 0, -1));
    // Repeated indices add nothing, wherever they stand.
    EXPECT_EQ(newell(6, square, repeated, &ok), Orv3dVector(0, 0, 1));
    EXPECT_EQ(ok, 1u);
    // Collinear or tiny: 0, and the sum as it came out (twice the area).
    Orv3dPoint line[3] = {{0, 0, 0}, {1, 1, 0}, {2, 2, 0}};
    EXPECT_EQ(newell(3, line, nullptr, &ok), Orv3dVector(0, 0, 0));
    EXPECT_EQ(ok, 0u);
    Orv3dPoint tiny[3] = {{0, 0, 0}, {1e-4f, 0, 0}, {0, 1e-4f, 0}};
    Orv3dVector t = newell(3, tiny, nullptr, &ok);
    EXPECT_EQ(ok, 0u);
    EXPECT_EQ(t.x + t.y, 0);
    EXPECT_NEAR(t.z, 1e-8, 1e-12);
    // Fewer than three vertices: 0 and the result untouched.
    EXPECT_EQ(newell(2, square, nullptr, &ok), Orv3dVector(9, 9, 9));
    EXPECT_EQ(ok, 0u);
    // Rational points are divided first.
    Orv4dPoint h[3] = {{0, 0, 0, 2}, {4, 0, 0, 2}, {0, 0, 6, 3}};
    Orv3dVector r;
    EXPECT_EQ(OrvVertexData::computeNormal(3, nullptr, h, nullptr, r), 1u);
    EXPECT_EQ(r, Orv3dVector(0, -1, 0));
}

TEST(VertexNormals, StripsAndFans) {
    // A zig-zag strip in z = 0: every normal faces -z; through an index that
    // swaps each pair, all turn over.
    Orv3dPoint strip[6] = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}, {2, 0, 0}, {2, 1, 0}};
    Orv3dVector out[8];
    EXPECT_EQ(OrvVertexData::computeTriangleNormals(6, strip, nullptr, nullptr, 8, out, 0), 4u);
    for (int i = 0; i < 4; i++) EXPECT_EQ(out[i], Orv3dVector(0, 0, -1)) << i;
    unsigned back[6] = {1, 0, 3, 2, 5, 4};
    OrvVertexData::computeTriangleNormals(6, strip, nullptr, back, 8, out, 0);
    for (int i = 0; i < 4; i++) EXPECT_EQ(out[i], Orv3dVector(0, 0, 1)) << i;
    // A fan round the origin, counter-clockwise seen from +z.
    Orv3dPoint fan[5] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {-1, 1, 0}};
    EXPECT_EQ(OrvVertexData::computeTriangleNormals(5, fan, nullptr, nullptr, 8, out, 1), 3u);
    for (int i = 0; i < 3; i++) EXPECT_EQ(out[i], Orv3dVector(0, 0, 1)) << i;
    // No room: the message, and what was done.
    EXPECT_EQ(OrvTestOutput([&] {
                  EXPECT_EQ(
                      OrvVertexData::computeTriangleNormals(6, strip, nullptr, nullptr, 2, out, 0),
                      2u);
              }),
              "OrvVertexData::computeTriangleStripNormals : Bad number of normals.\n");

    // The strip's points as a grid of one row and two columns (whose normals
    // the series tests hold), with room for one.
    EXPECT_EQ(OrvTestOutput([&] {
                  EXPECT_EQ(OrvVertexData::computeQuadrilateralMeshNormals(2, 1, strip, nullptr,
                                                                           nullptr, 1, out),
                            1u);
              }),
              "OrvVertexData::computeQuadrilateralMeshNormals : Bad number of normals.\n");
}

TEST(VertexNormals, Convexity) {
    // A triangle is convex without a look at its points.
    EXPECT_EQ(OrvVertexData::isConvex(3, nullptr, nullptr, nullptr), 1u);
    struct {
        const char* name;
        unsigned count;
        Orv3dPoint points[6];
        unsigned long convex;
    } rows[] = {
        {"square", 4, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, 1},
        {"square, clockwise", 4, {{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}}, 1},
        {"dart", 4, {{0, 0, 0}, {2, 1, 0}, {0, 2, 0}, {1, 1, 0}}, 0},
        {"straight corner", 5, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, 1},
        // Reflex only at the last vertex, or only at the first: the corners that wrap.
        {"reflex last", 5, {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {1, 2, 0}}, 0},
        {"reflex first", 5, {{1, 2, 0}, {0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}}, 0},
        {"hexagon", 6, {{2, 0, 0}, {1, 2, 0}, {-1, 2, 0}, {-2, 0, 0}, {-1, -2, 0}, {1, -2, 0}}, 1},
    };
    for (const auto& r : rows)
        EXPECT_EQ(OrvVertexData::isConvex(r.count, r.points, nullptr, nullptr), r.convex) << r.name;
    // Through an index, either way round, a dart stays a dart.
    unsigned back[4] = {3, 2, 1, 0};
    EXPECT_EQ(OrvVertexData::isConvex(4, rows[2].points, nullptr, back), 0u);
    EXPECT_EQ(OrvVertexData::isConvex(4, rows[0].points, nullptr, back), 1u);
}
