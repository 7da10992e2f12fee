// Sample surfaces for the text-form tests and the fuzz corpus: every array,
// with and without index, compact and face-by-face face sets.
#ifndef ORV_TEST_VERTEX_SAMPLES_H
#define ORV_TEST_VERTEX_SAMPLES_H

#include "orv/stream.h"
#include "orv/vertex.h"

#include <sstream>
#include <string>
#include <vector>

// A share of a copy of the values, owned, locked by the caller.
template <class T>
OrvShare* sampleShare(const std::vector<T>& values, unsigned long readOnly = 0) {
    T* array = new T[values.size() ? values.size() : 1];
    for (size_t i = 0; i < values.size(); i++) array[i] = values[i];
    OrvShare* share = new OrvShare((unsigned)values.size(), array, readOnly, 1);
    share->lock();
    return share;
}

// The faces of a set, in order.
inline std::vector<OrvFace*> facesOf(const OrvFaceSet& set) {
    std::vector<OrvFace*> all;
    for (OrvLink* l = set.faces.first; l; l = l->next) all.push_back((OrvFace*)l->value);
    return all;
}

// The arrays of the samples, locked while the object lives.
struct SampleArrays {
    OrvShare* points = sampleShare<Orv3dPoint>(
        {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5f, 0.5f, 1}, {2, -1.25f, 3}});
    OrvShare* points4d =
        sampleShare<Orv4dPoint>({{0, 0, 0, 1}, {2, 0, 0, 2}, {0, 3, 0, 3}, {1, 1, 1, 0.5f}}, 1);
    OrvShare* colors = sampleShare<OrvRGB>({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.25f, 0.5f, 0.75f}});
    OrvShare* normals = sampleShare<Orv3dVector>({{0, 0, 1}, {0, 0, -1}, {1, 0, 0}}, 1);
    OrvShare* textures =
        sampleShare<OrvTextureUV>({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0.5f, 0.5f}, {2, 2}});
    OrvShare* edges = sampleShare<OrvEdge>({1, 0, 1, 1, 0, 0});

    SampleArrays() = default;
    SampleArrays(const SampleArrays&) = delete;
    SampleArrays& operator=(const SampleArrays&) = delete;
    ~SampleArrays() {
        for (OrvShare* s : {points, points4d, colors, normals, textures, edges}) s->unLock();
    }
};

// A face on the sample arrays: indexed over the given point places, with
// colours and edges; or without index on the rational points.
inline OrvFace* sampleFace(const SampleArrays& a, std::vector<unsigned> places, bool colored,
                           bool edged) {
    OrvFace* face = new OrvFace;
    face->setIndexed(a.points, colored ? a.colors : nullptr, nullptr, nullptr,
                     edged ? a.edges : nullptr);
    std::vector<unsigned> colors(places.size()), edges(places.size());
    for (size_t i = 0; i < places.size(); i++) {
        colors[i] = (unsigned)(i % 4);
        edges[i] = places[i];
    }
    face->setIndex(0, (unsigned)places.size(), places.data(), colored ? colors.data() : nullptr,
                   nullptr, edged ? edges.data() : nullptr, nullptr);
    return face;
}

// A face set whose faces all share arrays (written compact), with face
// colours and normals on some faces.
inline OrvFaceSet* compactSample(const SampleArrays& a) {
    OrvFaceSet* set = new OrvFaceSet(0);
    set->add(sampleFace(a, {0, 1, 2, 3}, true, true));
    set->add(sampleFace(a, {0, 1, 4}, true, true));
    set->add(sampleFace(a, {1, 2, 4, 5, 3}, true, true));
    set->computeFacesNormals();
    OrvRGB red(1, 0, 0);
    ((OrvFace*)set->faces.first->value)->color(&red);
    ((OrvFace*)set->faces.last->value)->normal(nullptr);
    return set;
}

// A face set whose faces don't share all arrays (written face by face).
inline OrvFaceSet* fullSample(const SampleArrays& a) {
    OrvFaceSet* set = new OrvFaceSet(0);
    set->add(sampleFace(a, {0, 1, 2, 3}, true, false));
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
