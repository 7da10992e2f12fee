// The text form of vertex data: byte layouts, round trips of every class,
// shares and polygons written once and referred to by number, edges as raw
// bytes, and the shared-array records.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <typeinfo>

#include "vertex_samples.h"

namespace {

// Both null, or the same kind, size, flag and bytes.
void expectSameShare(const OrvShare* a, const OrvShare* b, const char* what) {
    ASSERT_EQ(a == nullptr, b == nullptr) << what;
    if (!a) return;
    EXPECT_EQ(a->kind, b->kind) << what;
    ASSERT_EQ(a->cardinal, b->cardinal) << what;
    EXPECT_EQ(a->isReadOnly(), b->isReadOnly()) << what;
    EXPECT_EQ(memcmp(a->data, b->data, a->cardinal * OrvShare::elementSize(a->kind)), 0) << what;
}

void expectSameVertex(const OrvVertexData& a, const OrvVertexData& b) {
    ASSERT_NE(a.vertex, nullptr);
    ASSERT_NE(b.vertex, nullptr);
    EXPECT_EQ(typeid(*a.vertex), typeid(*b.vertex));
    EXPECT_EQ(a.vertexCardinal(), b.vertexCardinal());
    expectSameShare(a.vertexSharedAnyPoints(), b.vertexSharedAnyPoints(), "points");
    expectSameShare(a.vertexSharedColors(), b.vertexSharedColors(), "colors");
    expectSameShare(a.vertexSharedNormals(), b.vertexSharedNormals(), "normals");
    expectSameShare(a.vertexSharedTextures(), b.vertexSharedTextures(), "textures");
    expectSameShare(a.vertexSharedEdges(), b.vertexSharedEdges(), "edges");
    expectSameShare(a.vertexSharedIndex(), b.vertexSharedIndex(), "index");
}

// Faces in order, with colours and normals (as exact as the six digits of the format).
void expectSameSet(const OrvFaceSet& a, const OrvFaceSet& b) {
    ASSERT_EQ(a.faceCardinal(), b.faceCardinal());
    for (OrvLink *l = a.faces.first, *m = b.faces.first; l; l = l->next, m = m->next) {
        const OrvFace &x = *(OrvFace*)l->value, &y = *(OrvFace*)m->value;
        expectSameVertex(x, y);
        ASSERT_EQ(x.color() == nullptr, y.color() == nullptr);
        EXPECT_EQ(x.color() ? *x.color() : OrvRGB(), y.color() ? *y.color() : OrvRGB());
        ASSERT_EQ(x.normal() == nullptr, y.normal() == nullptr);
        Orv3dVector n = x.normal() ? *x.normal() : Orv3dVector(),
                    o = y.normal() ? *y.normal() : Orv3dVector();
        EXPECT_LE(std::fabs(n.x - o.x) + std::fabs(n.y - o.y) + std::fabs(n.z - o.z), 3e-6);
        EXPECT_EQ(x.bbox, y.bbox);
    }
    EXPECT_EQ(a.bbox, b.bbox);
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

// A literal's bytes, NULs included.
template <size_t N>
std::string bytes(const char (&s)[N]) {
    return std::string(s, N - 1);
}

}  // namespace

TEST(VertexText, PolygonSeriesAndStripSetLayouts) {
    Shares make;
    OrvShare* points = make.make<Orv3dPoint>({{0, 0, 0}, {1.5f, 0, 0}, {0, -2, 1e-5f}});
    OrvPolygon plain, indexed;
    plain.setNonIndexed(points, make.make<OrvRGB>({{1, 0, 0}, {0, 1, 0}, {0, 0, 0.5f}}, 1), nullptr,
                        nullptr, nullptr);
    indexed.setIndexed(points, nullptr, nullptr, nullptr, make.make<OrvEdge>({1, 0, 1}));
    unsigned v[12] = {0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2},
             e[12] = {2, 1, 0, 2, 1, 0, 2, 1, 0, 2, 1, 0};
    indexed.setIndex(1, 12, v, nullptr, nullptr, e, nullptr);
    OrvShare* grid =
        make.make<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, 2, 0}, {1, 2, 0}});
    OrvSeries mesh(OrvQuadMesh, 2, 1);
    mesh.setNonIndexed(grid, nullptr, nullptr, nullptr, nullptr);
    mesh.computeFacesNormals();
    OrvShare* lengths = make.make<unsigned>({3, 3});
    OrvTriangleStripSet strips(lengths);
    strips.setNonIndexed(grid, nullptr, nullptr, nullptr, nullptr);
    std::string text = sampleText([&](OrvOStream& out) {
        plain.write(out);
        out.indentation = 1;
        indexed.write(out);
        out.indentation = 0;
        mesh.write(out);
        strips.write(out);
    });
    EXPECT_EQ(text,
              bytes("polygon {\n\tindexed\t\tno\n\trational\tno\n\tpointCardinal\t3\treadWrite\n"
                    "\tcolorCardinal\t3\treadOnly\n\tnormalCardinal\t0\treadWrite\n"
                    "\ttextureCardinal\t0\treadWrite\n\tedgeCardinal\t0\treadWrite\n\tpoint 1 [\n"
                    "\t\t0 0 0,\n\t\t1.5 0 0,\n\t\t0 -2 1e-05\n\t]\n\tcolor 2 [\n\t\t1 0 0,\n"
                    "\t\t0 1 0,\n\t\t0 0 0.5\n\t]\n}\n\tpolygon {\n\t\tindexed\t\tyes\n"
                    "\t\tindexCardinal\t24\treadOnly\n\t\trational\tno\n"
                    "\t\tpointCardinal\t3\treadWrite\n\t\tcolorCardinal\t0\treadWrite\n"
                    "\t\tnormalCardinal\t0\treadWrite\n\t\ttextureCardinal\t0\treadWrite\n"
                    "\t\tedgeCardinal\t3\treadWrite\n\t\tpoint\t.USE 1\n\t\tedge 3 [\n\t\t\t\x01,\n"
                    "\t\t\t\0,\n\t\t\t\x01\n\t\t]\n\t\tpointIndex 4 [\n"
                    "\t\t\t0, 1, 2, 0, 1, 2, 0, 1, 2, 0,\n\t\t\t1, 2\n\t\t]\n\t\tedgeIndex 4 [\n"
                    "\t\t\t2, 1, 0, 2, 1, 0, 2, 1, 0, 2,\n\t\t\t1, 0\n\t\t]\n\t}\n"
                    "% ... OrvSeries description\nseries {\n"
                    "\t% ... (0 : QuadMesh, 1 : TriStrip, 2 : RowsTriStrip, \n"
                    "\t%      3 : TriFan, 4 : Faces)\n\tulData\t0\n\tseriesData1\t2\n"
                    "\tseriesData2\t1\n\tindexed\t\tno\n\trational\tno\n"
                    "\tpointCardinal\t6\treadWrite\n\tcolorCardinal\t0\treadWrite\n"
                    "\tnormalCardinal\t0\treadWrite\n\ttextureCardinal\t0\treadWrite\n"
                    "\tedgeCardinal\t0\treadWrite\n\tpoint 5 [\n\t\t0 0 0,\n\t\t1 0 0,\n"
                    "\t\t0 1 0,\n\t\t1 1 0,\n\t\t0 2 0,\n\t\t1 2 0\n\t]\n\tfaceNormal 6 [\n"
                    "\t\t0 0 1,\n\t\t0 0 1\n\t]\n}\n% ... OrvTriangleStripSet description\n"
                    "triangleStripSet\n% ... OrvSeries description\nseries {\n"
                    "\t% ... (0 : QuadMesh, 1 : TriStrip, 2 : RowsTriStrip, \n"
                    "\t%      3 : TriFan, 4 : Faces)\n\tulData\t2\n\tseriesData1\t3\n"
                    "\tseriesData2\t2\n\tindexed\t\tno\n\trational\tno\n"
                    "\tpointCardinal\t6\treadWrite\n\tcolorCardinal\t0\treadWrite\n"
                    "\tnormalCardinal\t0\treadWrite\n\ttextureCardinal\t0\treadWrite\n"
                    "\tedgeCardinal\t0\treadWrite\n\tpoint\t.USE 5\n\tfaceNormal\tNone\n}\n"
                    "% Shared data ...\ncardinal\t2\treadWrite\nsharedIndex 7 [\n\t3, 3\n]\n"));
    // The edges come back from their bytes, 0 among them.
    std::istringstream in(text);
    OrvIStream reader(nullptr, in);
    OrvPolygon* first = OrvPolygon::read(reader);
    OrvPolygon* second = OrvPolygon::read(reader);
    OrvSeries* m = OrvSeries::read(reader);
    OrvTriangleStripSet* s = OrvTriangleStripSet::read(reader);
    for (OrvPolygon* back : std::vector<OrvPolygon*>{first, second, m, s}) ASSERT_NE(back, nullptr);
    expectSameVertex(plain, *first);
    expectSameVertex(indexed, *second);
    EXPECT_EQ(first->vertexSharedPoints(), second->vertexSharedPoints());
    EXPECT_EQ(first->bbox, plain.bbox);
    expectSameVertex(mesh, *m);
    expectSameShare(mesh.faceNormals, m->faceNormals, "face normals");
    EXPECT_EQ(m->kind, OrvQuadMesh);
    EXPECT_EQ(m->rows() * 10 + m->columns(), 21u);
    expectSameVertex(strips, *s);
    expectSameShare(lengths, s->stripLengths, "lengths");
    EXPECT_EQ(s->faceCardinal(), 2u);
    EXPECT_EQ(s->faceNormals, nullptr);
    for (OrvPolygon* back : std::vector<OrvPolygon*>{first, second, m, s}) delete back;
}

// The face sets in both forms are held byte for byte by the seed corpus of the
// face-set fuzz target (ORV_WRITE_CORPUS=1 writes the files afresh). Each reads
// back and writes again the same; the compact and the face-by-face samples read
// back equal, the compact one's faces on shared arrays.
TEST(VertexText, FaceSetsAsTheCorpusHoldsThem) {
    const char* data = getenv("ORV_TEST_DATA");
    if (!data) GTEST_SKIP() << "ORV_TEST_DATA names the test data";
    std::string dir = std::string(data) + "/../../fuzz/corpus/faceset/";
    bool write = getenv("ORV_WRITE_CORPUS") != nullptr;
    SampleArrays a;
    // Every array, indexed, on the same arrays throughout: the compact form.
    OrvFaceSet* every = new OrvFaceSet(0);
    for (std::vector<unsigned> f :
         {std::vector<unsigned>{0, 1, 2, 3}, {1, 4, 2, 5}, {3, 2, 4, 0}}) {
        OrvFace* face = new OrvFace;
        face->setIndexed(a.points, a.colors, a.normals, a.textures, a.edges);
        unsigned c[4] = {0, 1, 2, 3}, n[4] = {0, 1, 2, 0};
        face->setIndex(1, 4, f.data(), c, n, f.data(), f.data());
        OrvRGB grey(0.5f, 0.5f, 0.5f);
        face->color(&grey);
        every->add(face);
    }
    // A cube smoothed at 180 degrees: normals through a table.
    OrvFaceSet* smooth = indexedSet(a.make(cubeCorners()), cubeQuads);
    smooth->computeFacesNormals();
    smooth->computeVerticeNormals(180);
    struct {
        const char* name;
        OrvFaceSet* set;
        bool equal;  // read back to the same arrays and index
    } files[] = {{"compact.orv", compactSample(a), true},
                 {"full.orv", fullSample(a), true},
                 {"every.orv", every, false},
                 {"smooth.orv", smooth, false}};
    for (const auto& f : files) {
        SCOPED_TRACE(f.name);
        std::string text = sampleText([&](OrvOStream& out) { f.set->write(out); });
        std::string path = dir + f.name;
        if (write) {
            std::ofstream(path, std::ios::binary) << text;
        } else {
            std::ifstream in(path, std::ios::binary);
            ASSERT_TRUE(in.good()) << path;
            std::stringstream saved;
            saved << in.rdbuf();
            EXPECT_EQ(saved.str(), text) << "run with ORV_WRITE_CORPUS=1";
        }
        std::istringstream in(text);
        OrvIStream reader(nullptr, in);
        OrvFaceSet* back = OrvFaceSet::read(reader);
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(sampleText([&](OrvOStream& out) { back->write(out); }), text);
        if (f.equal) expectSameSet(*f.set, *back);
        std::vector<OrvFace*> faces = facesOf(*back);
        if (!strcmp(f.name, "compact.orv")) {
            EXPECT_EQ(faces[0]->vertexSharedPoints(), faces[2]->vertexSharedPoints());
            EXPECT_EQ(faces[0]->vertexSharedEdges(), faces[2]->vertexSharedEdges());
            EXPECT_NE(faces[0]->vertexSharedIndex(), faces[2]->vertexSharedIndex());
        }
        delete back;
        delete f.set;
    }
}

TEST(VertexText, SharedNumbersAcrossObjects) {
    SampleArrays a;
    OrvPolygon p1;
    p1.setIndexed(a.points, a.colors, nullptr, nullptr, nullptr);
    unsigned v[4] = {0, 1, 2, 3}, c[4] = {3, 2, 1, 0};
    p1.setIndex(0, 4, v, c, nullptr, nullptr, nullptr);
    OrvPolygon p2(p1);  // the very same arrays and index
    OrvPolygon p3;      // other arrays
    p3.setNonIndexed(a.points4d, nullptr, nullptr, nullptr, nullptr);
    OrvPolygon p4(p3);
    // The same index values in a share of its own: the index goes by number.
    OrvPolygon p5;
    p5.setIndexed(a.points, a.colors, nullptr, nullptr, nullptr);
    p5.setIndex(0, 4, v, c, nullptr, nullptr, nullptr);
    OrvSeries fan(OrvTriFan, 3, 0);
    fan.setNonIndexed(a.points, nullptr, nullptr, nullptr, nullptr);
    OrvFace face;
    face.setIndexed(a.points, a.colors, nullptr, nullptr, nullptr);
    face.setIndex(0, 4, v, c, nullptr, nullptr, nullptr);
    std::string text = sampleText([&](OrvOStream& out) {
        p1.write(out);
        fan.write(out);
        p2.write(out);
        p3.write(out);
        face.write(out);
        p4.write(out);
        p5.write(out);
        p2.write(out);
        out << (const OrvShare*)a.points;
    });
    std::vector<std::string> got = lines(text);
    std::vector<std::string> uses;
    for (const std::string& l : got)
        if (l.find(".USE") != std::string::npos) uses.push_back(l);
    EXPECT_EQ(uses, std::vector<std::string>({
                        "\tpoint\t.USE 1",       // the fan
                        "polygon\t.USE 1",       // p2
                        "\tpoint\t.USE 1",       // the face
                        "\tcolor\t.USE 2",       //
                        "\tpointIndex\t.USE 3",  // the face's index equals p1's
                        "polygon\t.USE 2",       // p4
                        "\tpoint\t.USE 1",       // p5
                        "\tcolor\t.USE 2",       //
                        "\tpointIndex\t.USE 3",  //
                        "polygon\t.USE 1",       // p2 again
                        "sharedPoints\t.USE 1",  // the record form, same number
                    }));

    // Read back in the order written: p1, fan, p2, p3, face, p4, p5, p2.
    std::istringstream in(text);
    OrvIStream reader(nullptr, in);
    OrvPolygon* r[8] = {OrvPolygon::read(reader), OrvSeries::read(reader), OrvPolygon::read(reader),
                        OrvPolygon::read(reader), OrvFace::read(reader),   OrvPolygon::read(reader),
                        OrvPolygon::read(reader), OrvPolygon::read(reader)};
    OrvShare* shared = nullptr;
    reader >> shared;
    for (OrvPolygon* d : r) ASSERT_NE(d, nullptr);
    expectSameVertex(p1, *r[0]);
    expectSameVertex(fan, *r[1]);
    expectSameVertex(p3, *r[3]);
    expectSameVertex(face, *r[4]);
    // Shared in memory as they were in the file.
    for (int k : {2, 4, 6, 7}) EXPECT_EQ(r[k]->vertexSharedIndex(), r[0]->vertexSharedIndex()) << k;
    EXPECT_EQ(r[5]->vertexSharedPoints4d(), r[3]->vertexSharedPoints4d());
    EXPECT_EQ(r[1]->vertexSharedPoints(), r[0]->vertexSharedPoints());
    EXPECT_EQ(shared, r[0]->vertexSharedPoints());
    EXPECT_EQ(r[2]->bbox, r[0]->bbox);
    // Each object holds its own locks: the reader can go first.
    OrvShare* points = r[0]->vertexSharedPoints();
    int locks = points->lockCount;
    for (OrvPolygon* d : r) delete d;
    EXPECT_EQ(points->lockCount, locks - 6);
}

TEST(VertexText, SharedRecords) {
    SampleArrays a;
    std::vector<unsigned> many;
    for (unsigned i = 0; i < 23; i++) many.push_back(i * 7);
    OrvShare* index = a.make(many, 1);
    OrvShare* one = a.make<OrvTextureUV>({{0.5f, 1}});
    std::string text = sampleText([&](OrvOStream& out) {
        out << (const OrvShare*)one;
        out.indentation = 2;
        out << (const OrvShare*)index;
        out << (const OrvShare*)one;
        out.indentation = 0;
        for (OrvShare* s : {a.points, a.points4d, a.colors, a.normals, a.edges}) out << s;
        OrvVertexData::writeNormals(out, a.normals);  // the vertex form, by number
        out << OrvRGB(1, 0.5f, 0);
    });
    std::vector<std::string> got = lines(text);
    std::vector<std::string> head(got.begin(), got.begin() + 17);
    EXPECT_EQ(head,
              std::vector<std::string>(
                  {"% Shared data ...", "cardinal\t1\treadWrite", "sharedTextures 1 [", "\t0.5 1",
                   "]", "\t\t% Shared data ...", "\t\tcardinal\t23\treadOnly",
                   "\t\tsharedIndex 2 [", "\t\t\t0, 7, 14, 21, 28, 35, 42, 49, 56, 63,",
                   "\t\t\t70, 77, 84, 91, 98, 105, 112, 119, 126, 133,", "\t\t\t140, 147, 154",
                   "\t\t]", "\t\tsharedTextures\t.USE 1", "% Shared data ...",
                   "cardinal\t6\treadWrite", "sharedPoints 3 [", "\t0 0 0,"}));
    for (const char* key :
         {"sharedPoints4d 4 [", "sharedColors 5 [", "sharedVectors 6 [", "sharedEdges 7 ["})
        EXPECT_NE(text.find(std::string("\n") + key + "\n"), std::string::npos) << key;
    EXPECT_NE(text.find("\nnormal\t.USE 6\n"), std::string::npos);
    EXPECT_EQ(got.back(), "faceColor\t1 0.5 0");

    std::istringstream in(text);
    OrvIStream reader(nullptr, in);
    OrvShare *t1 = nullptr, *ix = nullptr, *t2 = nullptr;
    reader >> t1 >> ix >> t2;
    expectSameShare(one, t1, "textures");
    expectSameShare(index, ix, "index");
    EXPECT_EQ(t1, t2);
    for (OrvShare* s : {a.points, a.points4d, a.colors, a.normals, a.edges}) {
        OrvShare* back = nullptr;
        reader >> back;
        expectSameShare(s, back, "record");
    }
    OrvShare* normals = OrvVertexData::readNormals(reader, 3, 0);
    expectSameShare(a.normals, normals, "vertex form");
    OrvRGB color;
    reader >> color;
    EXPECT_EQ(color, OrvRGB(1, 0.5f, 0));
    EXPECT_EQ(reader.faults, 0u);

    // Bad records: one message each and no share.
    struct {
        const char* text;
        const char* message;
    } bad[] = {
        {"sharedPoints\t.USE 9", "OrvIStream : readSharedPoints : Can't find shared index.\n"},
        {"sharedThings\t.USE 1", "OrvIStream : OrvShare : Bad key (sharedThings).\n"},
        {"cardinal 1 readSome sharedEdges 1 [ \x01 ]",
         "OrvIStream: OrvShare : Bad flag (readOnly or readWrite - readSome)\n"},
        {"cardinal 2 readOnly sharedColors 1 ( 1 1 1, 0 0 0 ]",
         "OrvIStream : readSharedColors : Bad data begin separator. \n"},
        {"cardinal 2 readOnly sharedColors 1 [ 1 1 1; 0 0 0 ]",
         "OrvIStream : readSharedColors : Bad comma separator.\n"},
        {"cardinal 2 readOnly sharedIndex 1 [ 1, 2 )",
         "OrvIStream : readSharedIndex : Bad data end separator.\n"},
        {"faceColour 1 1 1", "OrvIStream : Bad data.\n"},
    };
    for (const auto& b : bad) {
        std::istringstream bin(b.text);
        OrvIStream r(nullptr, bin);
        OrvShare* s = nullptr;
        OrvRGB c(9, 9, 9);
        EXPECT_EQ(OrvTestOutput([&] {
                      if (strncmp(b.text, "faceC", 5))
                          r >> s;
                      else
                          r >> c;
                  }),
                  b.message)
            << b.text;
        EXPECT_EQ(c, OrvRGB(9, 9, 9));
        EXPECT_EQ(s, nullptr) << b.text;
    }
}

TEST(VertexText, WritersRefuseInvalidData) {
    SampleArrays a;
    OrvVertexData empty, plain, unindexed;
    plain.createNonIndexedVertex(a.points, nullptr, nullptr, nullptr, nullptr);
    unindexed.createIndexedVertex(a.points, nullptr, nullptr, nullptr, nullptr);
    struct {
        const OrvVertexData* data;
        bool indexed;
        const char* message;
    } rows[] = {
        {&empty, false, "OrvVertexData::writeNonIndexed : Invalid vertex data.\n"},
        {&empty, true, "OrvVertexData::writeIndexed : Invalid vertex data.\n"},
        {&unindexed, true, "OrvVertexData::writeIndexed : Invalid vertex data.\n"},
        {&plain, true, "OrvVertexData::writeIndexed : Non indexed vertex data.\n"},
        {nullptr, false, "OrvOStream::writeSharedData : Bad arguments. \n"},
    };
    for (const auto& r : rows) {
        std::string text;
        EXPECT_EQ(OrvTestOutput([&] {
                      text = sampleText([&](OrvOStream& out) {
                          if (!r.data)
                              out << (const OrvShare*)nullptr;
                          else
                              EXPECT_EQ(r.indexed ? r.data->writeIndexed(out)
                                                  : r.data->writeNonIndexed(out),
                                        0u);
                      });
                  }),
                  r.message);
        EXPECT_EQ(text, "");
    }
}
