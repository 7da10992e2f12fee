// What the scene tests share: shares that live as long as a test, sample
// surfaces on every kind of array (also the seeds of the fuzz corpus), the
// cube, and the text a writer makes.
#ifndef ORV_TEST_VERTEX_SAMPLES_H
#define ORV_TEST_VERTEX_SAMPLES_H

#include "orv/stream.h"
#include "orv/vertex.h"

#include <sstream>
#include <string>
#include <vector>

#include "orv_fixtures.h"

// Shares of one test, locked until its end: made from a copy of the values,
// owned, or held as the test made them.
struct Shares {
    std::vector<OrvShare*> made;
    Shares() = default;
    Shares(const Shares&) = delete;
    Shares& operator=(const Shares&) = delete;
    ~Shares() {
        for (OrvShare* s : made) s->unLock();
    }
    template <class T>
    OrvShare* make(const std::vector<T>& values, unsigned long readOnly = 0) {
        T* array = new T[values.size() ? values.size() : 1];
        for (size_t i = 0; i < values.size(); i++) array[i] = values[i];
        return hold(new OrvShare((unsigned)values.size(), array, readOnly, 1));
    }
    // A share made by the test, locked like the others.
    OrvShare* hold(OrvShare* share) {
        share->lock();
        made.push_back(share);
        return share;
    }
};

// How many shares are listed for the overlap test.
inline unsigned listed() {
    return OrvShare::sharedData ? OrvShare::sharedData->length() : 0;
}

// The normal at vertex k of a face, through its normal block.
inline Orv3dVector vertexNormal(const OrvPolygon& p, unsigned k) {
    return p.vertexNormals()[p.isIndexed() ? p.vertexNormalsIndex()[k] : k];
}

// The faces of a set, in order.
inline std::vector<OrvFace*> facesOf(const OrvFaceSet& set) {
    std::vector<OrvFace*> all;
    for (OrvLink* l = set.faces.first; l; l = l->next) all.push_back((OrvFace*)l->value);
    return all;
}

// A face set of faces indexed over the points, one a list of places.
inline OrvFaceSet* indexedSet(OrvShare* points, const std::vector<std::vector<unsigned>>& faces) {
    OrvFaceSet* set = new OrvFaceSet(0);
    for (const std::vector<unsigned>& f : faces) {
        OrvFace* face = new OrvFace;
        face->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
        face->setIndex(0, (unsigned)f.size(), f.data(), nullptr, nullptr, nullptr, nullptr);
        set->add(face);
    }
    return set;
}

// The cube from low to 1: corner i is (i & 1, i >> 1 & 1, i >> 2 & 1), and
// six outward quads.
inline std::vector<Orv3dPoint> cubeCorners(float low = 0) {
    std::vector<Orv3dPoint> p;
    for (unsigned i = 0; i < 8; i++)
        p.push_back(Orv3dPoint(i & 1 ? 1 : low, i & 2 ? 1 : low, i & 4 ? 1 : low));
    return p;
}
inline const std::vector<std::vector<unsigned>> cubeQuads = {
    {0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};

// The arrays of the samples, locked while the object lives.
struct SampleArrays : Shares {
    OrvShare* points = make<Orv3dPoint>(
        {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5f, 0.5f, 1}, {2, -1.25f, 3}});
    OrvShare* points4d =
        make<Orv4dPoint>({{0, 0, 0, 1}, {2, 0, 0, 2}, {0, 3, 0, 3}, {1, 1, 1, 0.5f}}, 1);
    OrvShare* colors = make<OrvRGB>({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.25f, 0.5f, 0.75f}});
    OrvShare* normals = make<Orv3dVector>({{0, 0, 1}, {0, 0, -1}, {1, 0, 0}}, 1);
    OrvShare* textures = make<OrvTextureUV>({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0.5f, 0.5f}, {2, 2}});
    OrvShare* edges = make<OrvEdge>({1, 0, 1, 1, 0, 0});
};

// A face on the sample arrays, indexed over the given point places, with
// colours and edges when asked.
inline OrvFace* sampleFace(const SampleArrays& a, std::vector<unsigned> places, bool edged) {
    OrvFace* face = new OrvFace;
    face->setIndexed(a.points, a.colors, nullptr, nullptr, edged ? a.edges : nullptr);
    std::vector<unsigned> colors(places.size());
    for (size_t i = 0; i < places.size(); i++) colors[i] = (unsigned)(i % 4);
    face->setIndex(0, (unsigned)places.size(), places.data(), colors.data(), nullptr,
                   edged ? places.data() : nullptr, nullptr);
    return face;
}

// A face set whose faces all share arrays (written compact), with face
// colours and normals on some faces.
inline OrvFaceSet* compactSample(const SampleArrays& a) {
    OrvFaceSet* set = new OrvFaceSet(0);
    set->add(sampleFace(a, {0, 1, 2, 3}, true));
    set->add(sampleFace(a, {0, 1, 4}, true));
    set->add(sampleFace(a, {1, 2, 4, 5, 3}, true));
    set->computeFacesNormals();
    OrvRGB red(1, 0, 0);
    ((OrvFace*)set->faces.first->value)->color(&red);
    ((OrvFace*)set->faces.last->value)->normal(nullptr);
    return set;
}

// A face set whose faces don't share all arrays (written face by face).
inline OrvFaceSet* fullSample(const SampleArrays& a) {
    OrvFaceSet* set = new OrvFaceSet(0);
    set->add(sampleFace(a, {0, 1, 2, 3}, false));
    OrvFace* rational = new OrvFace;
    rational->setNonIndexed(a.points4d, nullptr, nullptr, nullptr, nullptr);
    set->add(rational);
    OrvFace* textured = new OrvFace;
    textured->setIndexed(a.points, nullptr, a.normals, a.textures, nullptr);
    unsigned v[3] = {3, 4, 5}, n[3] = {0, 0, 2}, t[3] = {5, 4, 3};
    textured->setIndex(1, 3, v, nullptr, n, nullptr, t);
    OrvRGB c(0.5f, 0.25f, 1);
    textured->color(&c);
    set->add(textured);
    set->computeFacesNormals();
    return set;
}

// The text of what the function writes on a fresh writer.
template <class F>
std::string sampleText(F write) {
    std::ostringstream text;
    OrvOStream out(text);
    write(out);
    return text.str();
}

#endif
