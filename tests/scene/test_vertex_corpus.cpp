// The seed corpus of the face-set fuzz target is what the writer makes of
// the sample sets: each file must be exactly that, and must read back.
// ORV_WRITE_CORPUS=1 writes the files afresh.
#include "orv/stream.h"
#include "orv/vertex.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "vertex_samples.h"

namespace {

// Every array, indexed, on the same arrays throughout: the compact form.
OrvFaceSet* everySample(const SampleArrays& a) {
    OrvFaceSet* set = new OrvFaceSet(0);
    const unsigned faces[3][4] = {{0, 1, 2, 3}, {1, 4, 2, 5}, {3, 2, 4, 0}};
    for (const auto& f : faces) {
        OrvFace* face = new OrvFace;
        face->setIndexed(a.points, a.colors, a.normals, a.textures, a.edges);
        unsigned c[4] = {0, 1, 2, 3}, n[4] = {0, 1, 2, 0};
        face->setIndex(1, 4, f, c, n, f, f);
        OrvRGB grey(0.5f, 0.5f, 0.5f);
        face->color(&grey);
        set->add(face);
    }
    return set;
}

// A cube smoothed at 180 degrees: normals through a table.
OrvFaceSet* smoothSample(OrvShare* corners) {
    OrvFaceSet* set = new OrvFaceSet(0);
    const unsigned quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                  {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const auto& q : quads) {
        OrvFace* face = new OrvFace;
        face->setIndexed(corners, nullptr, nullptr, nullptr, nullptr);
        face->setIndex(0, 4, q, nullptr, nullptr, nullptr, nullptr);
        set->add(face);
    }
    set->computeFacesNormals();
    set->computeVerticeNormals(180);
    return set;
}

}  // namespace

TEST(VertexCorpus, FilesAreWhatTheWriterWrites) {
    const char* data = getenv("ORV_TEST_DATA");
    if (!data) GTEST_SKIP() << "ORV_TEST_DATA names the test data";
    std::string dir = std::string(data) + "/../../fuzz/corpus/faceset/";
    bool write = getenv("ORV_WRITE_CORPUS") != nullptr;
    SampleArrays a;
    std::vector<Orv3dPoint> cube;
    for (unsigned i = 0; i < 8; i++)
        cube.push_back(Orv3dPoint((float)(i & 1), (float)(i >> 1 & 1), (float)(i >> 2 & 1)));
    OrvShare* corners = sampleShare(cube);
    struct {
        const char* name;
        OrvFaceSet* set;
    } files[] = {{"compact.orv", compactSample(a)},
                 {"full.orv", fullSample(a)},
                 {"every.orv", everySample(a)},
                 {"smooth.orv", smoothSample(corners)}};
    for (const auto& f : files) {
        std::string text = sampleText([&](OrvOStream& out) { f.set->write(out); });
        std::string path = dir + f.name;
        if (write) {
            std::ofstream(path, std::ios::binary) << text;
        } else {
            std::ifstream in(path, std::ios::binary);
            ASSERT_TRUE(in.good()) << path;
            std::stringstream saved;
            saved << in.rdbuf();
            EXPECT_EQ(saved.str(), text) << f.name << ": run with ORV_WRITE_CORPUS=1";
        }
        std::istringstream in(text);
        OrvIStream reader(nullptr, in);
        OrvFaceSet* back = OrvFaceSet::read(reader);
        ASSERT_NE(back, nullptr) << f.name;
        EXPECT_EQ(back->faceCardinal(), f.set->faceCardinal());
        delete back;
        delete f.set;
    }
    corners->unLock();
}
