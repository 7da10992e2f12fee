// Vertex data: the 32 layouts chosen by the arrays in use, index blocks and
// their checks, vertex access, printing, and the normal arithmetic.
#include "orv/vertex.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <typeinfo>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

// Four vertices' worth of every array, each share locked by the fixture.
struct Arrays {
    Orv3dPoint points[4] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    Orv4dPoint points4d[4] = {{0, 0, 0, 1}, {2, 0, 0, 2}, {3, 3, 0, 3}, {0, 4, 0, 4}};
    OrvRGB colors[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    Orv3dVector normals[3] = {{0, 0, 1}, {0, 0, -1}, {1, 0, 0}};
    OrvEdge edges[4] = {1, 0, 1, 0};
    OrvTextureUV textures[5];
    OrvShare *p, *p4, *c, *n, *e, *t;

    Arrays() {
        p = new OrvShare(4, points, 0, 0);
        p4 = new OrvShare(4, points4d, 0, 0);
        c = new OrvShare(3, colors, 0, 0);
        n = new OrvShare(3, normals, 0, 0);
        e = new OrvShare(4, edges, 0, 0);
        t = new OrvShare(5, textures, 0, 0);
        for (OrvShare* s : {p, p4, c, n, e, t}) s->lock();
    }
    ~Arrays() {
        for (OrvShare* s : {p, p4, c, n, e, t}) s->unLock();
    }
    Arrays(const Arrays&) = delete;
    Arrays& operator=(const Arrays&) = delete;
};

// The class of each combination: colours 1, normals 2, edges 4, textures 8.
const std::type_info& layoutOf(unsigned mask, bool indexed) {
    static const std::type_info* plain[16] = {
        &typeid(_OrvVertexP_),    &typeid(_OrvVertexPC_),   &typeid(_OrvVertexPN_),
        &typeid(_OrvVertexPCN_),  &typeid(_OrvVertexPE_),   &typeid(_OrvVertexPCE_),
        &typeid(_OrvVertexPNE_),  &typeid(_OrvVertexPCNE_), &typeid(_OrvVertexPT_),
        &typeid(_OrvVertexPCT_),  &typeid(_OrvVertexPNT_),  &typeid(_OrvVertexPCNT_),
        &typeid(_OrvVertexPET_),  &typeid(_OrvVertexPCET_), &typeid(_OrvVertexPNET_),
        &typeid(_OrvVertexPCNET_)};
    static const std::type_info* withIndex[16] = {
        &typeid(_OrvVertexIP_),    &typeid(_OrvVertexIPC_),   &typeid(_OrvVertexIPN_),
        &typeid(_OrvVertexIPCN_),  &typeid(_OrvVertexIPE_),   &typeid(_OrvVertexIPCE_),
        &typeid(_OrvVertexIPNE_),  &typeid(_OrvVertexIPCNE_), &typeid(_OrvVertexIPT_),
        &typeid(_OrvVertexIPCT_),  &typeid(_OrvVertexIPNT_),  &typeid(_OrvVertexIPCNT_),
        &typeid(_OrvVertexIPET_),  &typeid(_OrvVertexIPCET_), &typeid(_OrvVertexIPNET_),
        &typeid(_OrvVertexIPCNET_)};
    return indexed ? *withIndex[mask] : *plain[mask];
}

unsigned bits(unsigned mask) {
    return (mask & 1) + (mask >> 1 & 1) + (mask >> 2 & 1) + (mask >> 3 & 1);
}

Orv3dVector newell(unsigned count, const Orv3dPoint* points, const unsigned* index,
                   unsigned long* ok = nullptr) {
    Orv3dVector v(9, 9, 9);
    unsigned long r = OrvVertexData::computeNormal(count, points, nullptr, index, v);
    if (ok) *ok = r;
    return v;
}

}  // namespace

TEST(VertexLayouts, EveryCombinationBothWays) {
    Arrays a;
    for (int rational = 0; rational < 2; rational++)
        for (int indexed = 0; indexed < 2; indexed++)
            for (unsigned mask = 0; mask < 16; mask++) {
                SCOPED_TRACE(testing::Message() << "mask " << mask << " indexed " << indexed
                                                << " rational " << rational);
                OrvShare* pts = rational ? a.p4 : a.p;
                OrvShare* c = mask & 1 ? a.c : nullptr;
                OrvShare* n = mask & 2 ? a.n : nullptr;
                OrvShare* e = mask & 4 ? a.e : nullptr;
                OrvShare* t = mask & 8 ? a.t : nullptr;
                OrvVertexData data;
                if (indexed)
                    data.createIndexedVertex(pts, c, n, t, e);
                else
                    data.createNonIndexedVertex(pts, c, n, t, e);
                ASSERT_NE(data.vertex, nullptr);
                EXPECT_EQ(typeid(*data.vertex), layoutOf(mask, indexed));
                unsigned blocks = 1 + bits(mask);
                EXPECT_EQ(data.dataNumber(), blocks);
                EXPECT_EQ(data.isIndexed(), (unsigned long)indexed);
                EXPECT_EQ(data.isRationalPoint(), (unsigned long)rational);
                EXPECT_EQ(pts->lockCount, 2);
                // Each attribute answers only when present.
                EXPECT_EQ(data.vertexPoints(), rational ? nullptr : a.points);
                EXPECT_EQ(data.vertexPoints4d(), rational ? a.points4d : nullptr);
                EXPECT_EQ(data.vertexSharedPoints(), rational ? nullptr : a.p);
                EXPECT_EQ(data.vertexSharedPoints4d(), rational ? a.p4 : nullptr);
                EXPECT_EQ(data.vertexColors(), c ? a.colors : nullptr);
                EXPECT_EQ(data.vertexNormals(), n ? a.normals : nullptr);
                EXPECT_EQ(data.vertexEdges(), e ? a.edges : nullptr);
                EXPECT_EQ(data.vertexTextures(), t ? a.textures : nullptr);
                EXPECT_EQ(data.vertexSharedColors(), c);
                EXPECT_EQ(data.vertexSharedNormals(), n);
                EXPECT_EQ(data.vertexSharedEdges(), e);
                EXPECT_EQ(data.vertexSharedTextures(), t);
                EXPECT_EQ(data.vertexPointsCardinal(), 4u);
                EXPECT_EQ(data.vertexColorsCardinal(), c ? 3u : 0u);
                EXPECT_EQ(data.vertexNormalsCardinal(), n ? 3u : 0u);
                EXPECT_EQ(data.vertexEdgesCardinal(), e ? 4u : 0u);
                EXPECT_EQ(data.vertexTexturesCardinal(), t ? 5u : 0u);
                if (!indexed) {
                    EXPECT_EQ(data.vertexCardinal(), 4u);
                    EXPECT_EQ(data.checkValidity(), 1u);
                    EXPECT_EQ(data.vertexIndex(), nullptr);
                    continue;
                }
                // Without its index an indexed object has no vertices.
                EXPECT_EQ(data.vertexCardinal(), 0u);
                EXPECT_EQ(data.checkValidity(), 0u);
                // Three vertices; block k holds 10 * k + vertex, so that each
                // block's start can be told from the values.
                unsigned v[5][3];
                for (unsigned k = 0; k < 5; k++)
                    for (unsigned i = 0; i < 3; i++) v[k][i] = i;  // inside every array
                data.setVertexIndex(0, 3, v[0], c ? v[1] : nullptr, n ? v[2] : nullptr,
                                    e ? v[3] : nullptr, t ? v[4] : nullptr);
                ASSERT_NE(data.vertexSharedIndex(), nullptr);
                EXPECT_EQ(data.vertexSharedIndex()->cardinal, 3 * blocks);
                EXPECT_EQ(data.vertexCardinal(), 3u);
                EXPECT_EQ(data.checkValidity(), 1u);
                const unsigned* all = data.vertexIndex();
                EXPECT_EQ(data.vertexPointsIndex(), all);
                // Blocks in the order point, colour, normal, edge, texture.
                unsigned place = 1;
                const unsigned* expect[4] = {nullptr, nullptr, nullptr, nullptr};
                for (unsigned bit = 0; bit < 4; bit++) {
                    static const unsigned order[4] = {1, 2, 4, 8};  // colour normal edge texture
                    if (mask & order[bit]) expect[bit] = all + 3 * place++;
                }
                EXPECT_EQ(data.vertexColorsIndex(), expect[0]);
                EXPECT_EQ(data.vertexNormalsIndex(), expect[1]);
                EXPECT_EQ(data.vertexEdgesIndex(), expect[2]);
                EXPECT_EQ(data.vertexTexturesIndex(), expect[3]);
                // A copy is of the same class on the same shares.
                _OrvVertexType_* copy = data.copyVertex();
                EXPECT_EQ(typeid(*copy), typeid(*data.vertex));
                EXPECT_EQ(copy->sharedIndex(), data.vertexSharedIndex());
                EXPECT_EQ(data.vertexSharedIndex()->lockCount, 2);
                EXPECT_EQ(pts->lockCount, 3);
                delete copy;
                EXPECT_EQ(pts->lockCount, 2);
            }
    EXPECT_EQ(a.p->lockCount, 1);
    EXPECT_EQ(a.c->lockCount, 1);
}

TEST(VertexLayouts, BadArgumentsKeepTheLayout) {
    Arrays a;
    OrvVertexData data;
    data.createNonIndexedVertex(a.p, a.c, nullptr, nullptr, nullptr);
    _OrvVertexType_* kept = data.vertex;
    struct {
        bool indexed;
        OrvShare *points, *colors;
        const char* message;
    } rows[] = {
        {false, nullptr, nullptr, "OrvVertexData::OrvVertexData : Bad arguments.\n"},
        {true, nullptr, a.c, "OrvVertexData::OrvVertexData : Bad arguments (I).\n"},
        {false, a.c, nullptr, "OrvVertexData::OrvVertexData : Bad arguments.\n"},  // not points
        {true, a.p, a.n, "OrvVertexData::OrvVertexData : Bad arguments (I).\n"},   // not colours
    };
    for (const auto& r : rows) {
        CaptureStdout();
        if (r.indexed)
            data.createIndexedVertex(r.points, r.colors, nullptr, nullptr, nullptr);
        else
            data.createNonIndexedVertex(r.points, r.colors, nullptr, nullptr, nullptr);
        EXPECT_EQ(GetCapturedStdout(), r.message);
        EXPECT_EQ(data.vertex, kept);
    }
    // Replacing a layout by one on the same shares keeps them alive.
    data.createIndexedVertex(a.p, a.c, nullptr, nullptr, nullptr);
    EXPECT_EQ(a.p->lockCount, 2);
    EXPECT_EQ(typeid(*data.vertex), typeid(_OrvVertexIPC_));
}

TEST(VertexLayouts, IndexMessagesAndRemoval) {
    Arrays a;
    OrvVertexData data;
    data.createIndexedVertex(a.p, a.c, a.n, a.t, a.e);
    unsigned good[3] = {0, 1, 2};
    struct {
        const unsigned *points, *colors, *normals, *edges, *textures;
        const char* message;
    } missing[] = {
        {nullptr, good, good, good, good, "OrvVertex::setIndex: Vertex (point) index is empty.\n"},
        {good, nullptr, good, good, good, "OrvVertex::setIndex: Need vertex color index.\n"},
        {good, good, nullptr, good, good, "OrvVertex::setIndex: Need vertex normal index.\n"},
        {good, good, good, nullptr, good, "OrvVertex::setIndex: Need vertex edge index.\n"},
        {good, good, good, good, nullptr, "OrvVertex::setIndex: Need vertex texture index.\n"},
    };
    for (const auto& m : missing) {
        CaptureStdout();
        data.setVertexIndex(0, 3, m.points, m.colors, m.normals, m.edges, m.textures);
        EXPECT_EQ(GetCapturedStdout(), m.message);
        EXPECT_EQ(data.vertexSharedIndex(), nullptr);
    }
    // Values past their arrays: one message a block, and the index is kept.
    unsigned far[3] = {0, 7, 9}, mid[3] = {2, 2, 2};
    CaptureStdout();
    data.setVertexIndex(1, 3, far, mid, far, good, far);
    EXPECT_EQ(GetCapturedStdout(),
              "OrvVertex::setIndex: Some point index exceed max. of array.\n"
              "OrvVertex::setIndex: Some normal index exceed max. of array.\n"
              "OrvVertex::setIndex: Some texture index exceed max. of array.\n");
    ASSERT_NE(data.vertexSharedIndex(), nullptr);
    EXPECT_EQ(data.vertexSharedIndex()->flags, (unsigned)(OrvShareOwned | OrvShareReadOnly));
    EXPECT_EQ(data.checkIndex(), 0u);
    // Such a vertex is never read.
    Orv3dPoint q(5, 5, 5);
    EXPECT_EQ(data.point(1, q), 0u);
    EXPECT_EQ(q, Orv3dPoint(5, 5, 5));
    EXPECT_EQ(data.point(0, q), 1u);
    EXPECT_EQ(q, a.points[0]);

    data.setVertexIndex(0, 3, good, good, good, good, good);
    EXPECT_EQ(data.checkIndex(), 1u);
    // A count of 0 without points removes the index.
    data.setVertexIndex(0, 0, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(data.vertexSharedIndex(), nullptr);
    EXPECT_EQ(data.vertexCardinal(), 0u);
    data.setVertexIndex(0, 3, good, good, good, good, good);
    data.cleanIndex();
    EXPECT_EQ(data.vertexSharedIndex(), nullptr);

    // A ready share; the wrong kind is refused.
    unsigned* ready = new unsigned[10]{3, 2, 1, 0, 0, 0, 0, 1, 1, 0};
    OrvVertexData pc;
    pc.createIndexedVertex(a.p, a.c, nullptr, nullptr, nullptr);
    OrvShare* share = new OrvShare(10, ready, 0, 1);
    pc.setVertexIndex(share);
    EXPECT_EQ(share->lockCount, 1);
    EXPECT_EQ(pc.vertexCardinal(), 5u);
    EXPECT_EQ(pc.vertexColorsIndex(), ready + 5);
    CaptureStdout();
    pc.setVertexIndex(a.c);
    EXPECT_EQ(GetCapturedStdout(), "OrvVertex::setIndex: Not an index share.\n");
    EXPECT_EQ(pc.vertexSharedIndex(), share);

    OrvVertexData plain;
    plain.createNonIndexedVertex(a.p, nullptr, nullptr, nullptr, nullptr);
    CaptureStdout();
    plain.cleanIndex();
    plain.setVertexIndex(0, 3, good, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(GetCapturedStdout(), "OrvVertexData::cleanIndex : Not indexed.\n"
                                   "OrvVertexData::setVertexIndex : Not indexed.\n");
    OrvVertexData empty;
    EXPECT_EQ(empty.checkValidity(), 0u);
    EXPECT_EQ(empty.vertexCardinal(), 0u);
    EXPECT_EQ(empty.vertexPoints(), nullptr);
}

TEST(VertexLayouts, PointAccessAndBox) {
    Arrays a;
    OrvVertexData data;
    data.createNonIndexedVertex(a.p, nullptr, nullptr, nullptr, nullptr);
    Orv3dPoint q(7, 7, 7);
    EXPECT_EQ(data.point(4, q), 0u);  // vertexCardinal
    EXPECT_EQ(q, Orv3dPoint(7, 7, 7));
    EXPECT_EQ(data.point(2, q), 1u);
    EXPECT_EQ(q, Orv3dPoint(1, 1, 0));
    Orv4dPoint h;
    EXPECT_EQ(data.point(2, h), 1u);
    EXPECT_EQ(h, Orv4dPoint(1, 1, 0, 1));
    unsigned k = 99;
    EXPECT_EQ(data.point(3, k), 1u);
    EXPECT_EQ(k, 3u);
    EXPECT_EQ(data.bbox3d(), Orv3dVolume(0, 0, 0, 1, 1, 0));

    // Rational points are divided by w; the index picks them.
    OrvVertexData rational;
    rational.createIndexedVertex(a.p4, nullptr, nullptr, nullptr, nullptr);
    unsigned order[3] = {3, 1, 2};
    rational.setVertexIndex(0, 3, order, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(rational.point(0, q), 1u);
    EXPECT_EQ(q, Orv3dPoint(0, 1, 0));
    EXPECT_EQ(rational.point(0, h), 1u);
    EXPECT_EQ(h, Orv4dPoint(0, 4, 0, 4));
    EXPECT_EQ(rational.point(0, k), 1u);
    EXPECT_EQ(k, 3u);
    EXPECT_EQ(rational.point(3, k), 0u);
    EXPECT_EQ(rational.bbox3d(), Orv3dVolume(0, 0, 0, 1, 1, 0));
}

TEST(VertexLayouts, Print) {
    Arrays a;
    OrvVertexData data;
    data.createIndexedVertex(a.p, a.c, nullptr, a.t, nullptr);
    unsigned v[2] = {0, 1};
    data.setVertexIndex(0, 2, v, v, nullptr, nullptr, v);
    CaptureStdout();
    data.print();
    EXPECT_EQ(GetCapturedStdout(), " Begin OrvVertexData :\n"
                                   "  Vertex configuration :\n"
                                   " indexed      PCT : \n"
                                   "       - color   :  True\n"
                                   "       - normal  :  False\n"
                                   "       - edge    :  False\n"
                                   "       - texture :  True\n\n"
                                   "    --> points (count = 4) : \n"
                                   "    --> colors (count = 3) : \n"
                                   "    --> textures (count = 5) : \n"
                                   "    --> index (count = 6) : \n"
                                   " End OrvVertexData.\n");
    EXPECT_STREQ(data.className(), "OrvVertexData");
}

TEST(VertexNormals, Newell) {
    Orv3dPoint square[4] = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
    unsigned long ok;
    EXPECT_EQ(newell(4, square, nullptr, &ok), Orv3dVector(0, 0, 1));
    EXPECT_EQ(ok, 1u);
    unsigned backwards[4] = {3, 2, 1, 0};
    EXPECT_EQ(newell(4, square, backwards), Orv3dVector(0, 0, -1));
    // A triangle in x = 1, leaning: the normal is unit and exact here.
    Orv3dPoint wall[3] = {{1, 0, 0}, {1, 3, 0}, {1, 0, 4}};
    EXPECT_EQ(newell(3, wall, nullptr), Orv3dVector(1, 0, 0));
    Orv3dPoint slope[4] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 1}, {0, 1, 1}};
    Orv3dVector s = newell(4, slope, nullptr);
    EXPECT_FLOAT_EQ(s.x, 0);
    EXPECT_FLOAT_EQ(s.y, -1 / std::sqrt(2.0f));
    EXPECT_FLOAT_EQ(s.z, 1 / std::sqrt(2.0f));
    // Repeated indices add nothing, wherever they stand.
    unsigned repeated[6] = {0, 0, 1, 2, 2, 3};
    EXPECT_EQ(newell(6, square, repeated, &ok), Orv3dVector(0, 0, 1));
    EXPECT_EQ(ok, 1u);
    // Collinear points: 0, and the sum as it came out.
    Orv3dPoint line[3] = {{0, 0, 0}, {1, 1, 0}, {2, 2, 0}};
    EXPECT_EQ(newell(3, line, nullptr, &ok), Orv3dVector(0, 0, 0));
    EXPECT_EQ(ok, 0u);
    Orv3dPoint tiny[3] = {{0, 0, 0}, {1e-4f, 0, 0}, {0, 1e-4f, 0}};
    Orv3dVector t = newell(3, tiny, nullptr, &ok);
    EXPECT_EQ(ok, 0u);
    EXPECT_EQ(t.x, 0);
    EXPECT_EQ(t.y, 0);
    EXPECT_NEAR(t.z, 1e-8, 1e-12);  // twice the area, not normalised
    // Fewer than three vertices: 0 and the result untouched.
    EXPECT_EQ(newell(2, square, nullptr, &ok), Orv3dVector(9, 9, 9));
    EXPECT_EQ(ok, 0u);
    // Rational points are divided first.
    Orv4dPoint h[3] = {{0, 0, 0, 2}, {4, 0, 0, 2}, {0, 0, 6, 3}};
    Orv3dVector r;
    EXPECT_EQ(OrvVertexData::computeNormal(3, nullptr, h, nullptr, r), 1u);
    EXPECT_EQ(r, Orv3dVector(0, -1, 0));
}

TEST(VertexNormals, StripsFansAndQuadMeshes) {
    // A zig-zag strip in z = 0: every normal faces +z.
    Orv3dPoint strip[6] = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}, {2, 0, 0}, {2, 1, 0}};
    Orv3dVector out[8];
    EXPECT_EQ(OrvVertexData::computeTriangleNormals(6, strip, nullptr, nullptr, 8, out, 0), 4u);
    for (int i = 0; i < 4; i++) EXPECT_EQ(out[i], Orv3dVector(0, 0, -1)) << i;
    // Through an index that swaps each pair, all turn over.
    unsigned back[6] = {1, 0, 3, 2, 5, 4};
    OrvVertexData::computeTriangleNormals(6, strip, nullptr, back, 8, out, 0);
    for (int i = 0; i < 4; i++) EXPECT_EQ(out[i], Orv3dVector(0, 0, 1)) << i;
    // A fan round the origin, counter-clockwise seen from +z.
    Orv3dPoint fan[5] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {-1, 1, 0}};
    EXPECT_EQ(OrvVertexData::computeTriangleNormals(5, fan, nullptr, nullptr, 8, out, 1), 3u);
    for (int i = 0; i < 3; i++) EXPECT_EQ(out[i], Orv3dVector(0, 0, 1)) << i;
    // No room: the message, and what was done.
    CaptureStdout();
    EXPECT_EQ(OrvVertexData::computeTriangleNormals(6, strip, nullptr, nullptr, 2, out, 0), 2u);
    EXPECT_EQ(GetCapturedStdout(),
              "OrvVertexData::computeTriangleStripNormals : Bad number of normals.\n");

    // A 2 x 3 grid (rows x columns) rising along y: every cell faces (0, -1, 1)/√2.
    Orv3dPoint grid[12];
    for (unsigned r = 0; r < 3; r++)
        for (unsigned c = 0; c < 4; c++) grid[r * 4 + c] = Orv3dPoint((float)c, (float)r, (float)r);
    EXPECT_EQ(OrvVertexData::computeQuadrilateralMeshNormals(3, 2, grid, nullptr, nullptr, 8, out),
              6u);
    for (int i = 0; i < 6; i++) {
        EXPECT_FLOAT_EQ(out[i].x, 0) << i;
        EXPECT_FLOAT_EQ(out[i].y, -1 / std::sqrt(2.0f)) << i;
        EXPECT_FLOAT_EQ(out[i].z, 1 / std::sqrt(2.0f)) << i;
    }
    // One cell bent up at a corner is told from the others.
    grid[5].z = 5;
    OrvVertexData::computeQuadrilateralMeshNormals(3, 2, grid, nullptr, nullptr, 8, out);
    EXPECT_NE(out[0], out[2]);
    EXPECT_EQ(out[2], out[5]);
    CaptureStdout();
    EXPECT_EQ(OrvVertexData::computeQuadrilateralMeshNormals(3, 2, grid, nullptr, nullptr, 4, out),
              4u);
    EXPECT_EQ(GetCapturedStdout(),
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
        // Reflex only at the last vertex, a corner that wraps to the first.
        {"reflex last", 5, {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {1, 2, 0}}, 0},
        // Reflex only at the first vertex, the other wrapping corner.
        {"reflex first", 5, {{1, 2, 0}, {0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}}, 0},
        {"hexagon", 6, {{2, 0, 0}, {1, 2, 0}, {-1, 2, 0}, {-2, 0, 0}, {-1, -2, 0}, {1, -2, 0}}, 1},
    };
    for (const auto& r : rows)
        EXPECT_EQ(OrvVertexData::isConvex(r.count, r.points, nullptr, nullptr), r.convex) << r.name;
    // Through an index, either way round, a dart stays a dart.
    Orv3dPoint dart[4] = {{0, 0, 0}, {2, 1, 0}, {0, 2, 0}, {1, 1, 0}};
    unsigned forth[4] = {0, 1, 2, 3}, back[4] = {3, 2, 1, 0};
    EXPECT_EQ(OrvVertexData::isConvex(4, dart, nullptr, forth), 0u);
    EXPECT_EQ(OrvVertexData::isConvex(4, dart, nullptr, back), 0u);
    Orv3dPoint box[4] = {{0, 0, 0}, {3, 0, 0}, {3, 1, 0}, {0, 1, 0}};
    EXPECT_EQ(OrvVertexData::isConvex(4, box, nullptr, back), 1u);
}
