// Bad text for the vertex readers: files cut at every byte, every key and
// separator replaced, numbers that name nothing, claims far beyond the file,
// indices past their arrays. Each gives its message and a null object, and
// nothing the reading made outlives the reader.
#include <cstdlib>
#include <cstring>
#include <functional>

#include "vertex_samples.h"

namespace {

// Reads one object of a kind from the text; whether it came, and what was said.
struct Outcome {
    bool made;
    std::string said;
    unsigned long faults;
};

typedef std::function<bool(OrvIStream&)> Reader;

template <class T>
Reader readerOf(T* (*read)(OrvIStream&)) {
    return [read](OrvIStream& in) {
        T* made = read(in);
        delete made;
        return made != nullptr;
    };
}

Outcome readText(const std::string& text, const Reader& read) {
    std::istringstream in(text);
    Outcome o;
    o.said = OrvTestOutput([&] {
        OrvIStream reader(nullptr, in);
        o.made = read(reader);
        o.faults = reader.faults;
    });
    return o;
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    if (at != std::string::npos) text.replace(at, what.size(), with);
    return text;
}

// Every separator, and every word that is not a number, outside comments:
// where each starts and how long it is.
std::vector<std::pair<size_t, size_t>> pieces(const std::string& t) {
    std::vector<std::pair<size_t, size_t>> out;
    for (size_t i = 0, n = t.size(); i < n;) {
        if (t[i] == '%') i = std::min(t.find('\n', i), n);
        if (i == n || t[i] == ' ' || t[i] == '\t' || t[i] == '\n' || !t[i]) {
            i++;
            continue;
        }
        size_t start = i;
        if (strchr("{}[],", t[i])) {
            out.push_back({i++, 1});
            continue;
        }
        while (i < n && t[i] && !strchr(" \t\n,", t[i])) i++;
        std::string word = t.substr(start, i - start);
        char* end = nullptr;
        strtod(word.c_str(), &end);
        if (*end) out.push_back({start, i - start});
    }
    return out;
}

// The face sets, a series and a strip set on every kind of array.
std::vector<std::pair<std::string, Reader>> samples(const SampleArrays& a) {
    OrvFaceSet* compact = compactSample(a);
    OrvFaceSet* full = fullSample(a);
    OrvSeries series(OrvRowsTriStrip, 3, 2);
    series.setIndexed(a.points, a.colors, nullptr, a.textures, nullptr);
    unsigned v[6] = {0, 1, 2, 3, 4, 5}, c[6] = {0, 1, 2, 3, 0, 1};
    series.setIndex(0, 6, v, c, nullptr, nullptr, v);
    series.computeFacesNormals();
    Shares make;
    OrvTriangleStripSet strips(make.make<unsigned>({4, 2}));
    strips.setNonIndexed(a.points, nullptr, nullptr, nullptr, nullptr);
    std::vector<std::pair<std::string, Reader>> all = {
        {sampleText([&](OrvOStream& o) { compact->write(o); }), readerOf(OrvFaceSet::read)},
        {sampleText([&](OrvOStream& o) { full->write(o); }), readerOf(OrvFaceSet::read)},
        {sampleText([&](OrvOStream& o) { series.write(o); }), readerOf(OrvSeries::read)},
        {sampleText([&](OrvOStream& o) { strips.write(o); }), readerOf(OrvTriangleStripSet::read)},
    };
    delete compact;
    delete full;
    return all;
}

}  // namespace

TEST(VertexBadInput, CutAtEveryByte) {
    SampleArrays a;
    unsigned before = listed();
    for (const auto& [text, read] : samples(a)) {
        SCOPED_TRACE(text.substr(0, 30));
        ASSERT_TRUE(readText(text, read).made);
        for (size_t cut = 0; cut <= text.rfind('}'); cut++) {
            Outcome o = readText(text.substr(0, cut), read);
            ASSERT_FALSE(o.made) << "cut at " << cut;
            EXPECT_FALSE(o.said.empty()) << "cut at " << cut;
            ASSERT_EQ(listed(), before) << "cut at " << cut;
        }
    }
}

TEST(VertexBadInput, EveryKeyAndSeparatorReplaced) {
    SampleArrays a;
    unsigned before = listed();
    for (const auto& [text, read] : samples(a)) {
        std::vector<std::pair<size_t, size_t>> all = pieces(text);
        ASSERT_GT(all.size(), 30u) << text;
        for (const auto& [at, length] : all) {
            std::string bad = text;
            bad.replace(at, length, length == 1 && strchr("{}[],", text[at]) ? ";" : "bogus");
            Outcome o = readText(bad, read);
            std::string where = text.substr(0, 30) + "... at " + std::to_string(at);
            EXPECT_FALSE(o.made) << where;
            EXPECT_GT(o.faults, 0u) << where;
            EXPECT_FALSE(o.said.empty()) << where;
            ASSERT_EQ(listed(), before);
        }
    }
}

TEST(VertexBadInput, Messages) {
    // A polygon, a face, a series and the face sets, each spoilt once a row.
    SampleArrays a;
    OrvPolygon polygon;
    polygon.setIndexed(a.points, a.colors, nullptr, nullptr, nullptr);
    unsigned v[3] = {0, 1, 2}, c[3] = {3, 2, 1};
    polygon.setIndex(0, 3, v, c, nullptr, nullptr, nullptr);
    OrvShare* grid =
        a.make<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}});
    OrvFace face;
    face.setNonIndexed(grid, nullptr, nullptr, nullptr, nullptr);
    Orv3dVector up(0, 0, 1);
    face.normal(&up);
    OrvSeries series(OrvQuadMesh, 1, 2);
    series.setNonIndexed(grid, nullptr, nullptr, nullptr, nullptr);
    series.computeFacesNormals();
    OrvFaceSet *compact = compactSample(a), *full = fullSample(a);
    const int P = 0, F = 1, S = 2, FS = 3, FULL = 4, SHARE = 5;
    const std::string texts[6] = {sampleText([&](OrvOStream& o) { polygon.write(o); }),
                                  sampleText([&](OrvOStream& o) { face.write(o); }),
                                  sampleText([&](OrvOStream& o) { series.write(o); }),
                                  sampleText([&](OrvOStream& o) { compact->write(o); }),
                                  sampleText([&](OrvOStream& o) { full->write(o); }),
                                  ""};
    delete compact;
    delete full;
    const Reader readers[6] = {readerOf(OrvPolygon::read),
                               readerOf(OrvFace::read),
                               readerOf(OrvSeries::read),
                               readerOf(OrvFaceSet::read),
                               readerOf(OrvFaceSet::read),
                               [](OrvIStream& in) {
                                   OrvShare* s = nullptr;
                                   in >> s;
                                   return s != nullptr;
                               }};
    struct {
        int sample;
        const char *from, *to;  // the whole text is "to" without "from"
        const char* first;      // the first message
    } rows[] = {
        {P, "polygon", "polygone", "OrvPolygon : OrvIStream : Bad key (polygon polygone).\n"},
        {P, "{", "(", "OrvPolygon::OrvPolygon : Bad begin separator.\n"},
        {P, "\n}", "\n)", "OrvPolygon::OrvPolygon : Bad end separator.\n"},
        {P, nullptr, "polygon\t.USE 7\n", "OrvPolygon::OrvPolygon : Can't find points array.\n"},
        {P, "indexed\t\tyes", "indexed\t\tmaybe", "OrvVertexData: Read : Bad file definition.\n"},
        {P, "rational", "rationale", "OrvPolygon : OrvIStream : Bad key (rational rationale).\n"},
        {P, "6\treadWrite", "6\treadSome",
         "OrvPolygon::OrvPolygon : Bad flag (readOnly or readWrite - readSome)\n"},
        {P, "pointCardinal\t6", "pointCardinal\t0",
         "OrvPolygon::OrvPolygon : Can't find points array.\n"},
        {P, "point 1 [", "point 1 (", "OrvVertexData::readPoints : Bad data begin separator. \n"},
        {P, "0 0 0,", "0 0 0;", "OrvVertexData::readPoints : Bad comma separator.\n"},
        {P, "2 -1.25 3\n\t]", "2 -1.25 3\n\t)",
         "OrvVertexData::readPoints : Bad data end separator.\n"},
        {P, "color 2 [", "color .USE 9", "OrvVertexData::readColors : Can't find shared index.\n"},
        {P, "color 2 [", "color .USE 1",  // a share of points
         "OrvVertexData::readColors : Can't find shared index.\n"},
        {P, "pointIndex 3 [", "pointIndex 3 (",
         "OrvVertexData::readIndex : Bad begin separator (index).\n"},
        {P, "0, 1, 2", "0; 1, 2", "OrvVertexData::readIndex : Bad comma separator.\n"},
        {P, "0, 1, 2\n\t]", "0, 1, 2\n\t)",
         "OrvVertexData::readIndex : Bad end separator (index).\n"},
        {P, "colorIndex 3", "normalIndex 3",
         "OrvPolygon : OrvIStream : Bad key (colorIndex normalIndex).\n"},
        {P, "indexCardinal\t6", "indexCardinal\t7",
         "OrvPolygon::OrvPolygon : Internal error (idx).\n"},
        {P, "0, 1, 2", "0, 6, 2", "OrvVertex::setIndex: Some point index exceed max. of array.\n"},
        {P, "3, 2, 1", "3, 2, 4", "OrvVertex::setIndex: Some color index exceed max. of array.\n"},
        {P, "pointIndex 3 [\n\t\t0, 1, 2\n\t]\n\tcolorIndex 3 [\n\t\t3, 2, 1\n\t]",
         "pointIndex\t.USE 1", "OrvVertexData::readIndex : Can't find shared index.\n"},
        {F, "face {", "facet {", "OrvFace::OrvFace : Bad item (face facet)\n"},
        {F, "face {", "face (", "OrvFace::OrvFace : Bad begin separator.\n"},
        {F, "faceColor", "faceColour", "OrvFace::OrvFace : Not a face color item\n"},
        {F, "faceNormal\t0 0 1", "faceNormal\tnone", "OrvFace::OrvFace : Not a face normal item\n"},
        {F, "\n}", "\n)", "OrvFace::OrvFace : Bad end separator.\n"},
        {S, "series {", "series (", "OrvSeries::OrvSeries : Bad begin separator.\n"},
        {S, "ulData\t0", "ulData\t7", "OrvSeries::OrvSeries : Bad item (ulData )\n"},
        {S, "ulData", "uiData", "OrvIStream : Bad data.\n"},
        {S, "seriesData2", "seriesData3",
         "OrvSeries::OrvSeries : Bad item (seriesData2 seriesData3)\n"},
        {S, "faceNormal 2 [", "faceNormal 2 (",
         "OrvSeries::OrvSeries : Bad data separator (normals).\n"},
        {S, "0 0 1,", "0 0 1;", "OrvSeries::OrvSeries : Bad data end separator (1).\n"},
        {S, "faceNormal 2 [", "faceNormal\t.USE 1",  // not normals
         "OrvSeries::OrvSeries : Bad data separator (normals).\n"},
        {S, "\n}", "\n)", "OrvSeries::OrvSeries : Bad end separator.\n"},
        {FS, "faceSet", "faceSets", "OrvFaceSet : OrvIStream : Bad key (faceSet faceSets).\n"},
        {FS, "faceSet {", "faceSet (", "OrvFaceSet::OrvFaceSet : Bad begin separator.\n"},
        {FS, "optimized\tyes", "optimized\tsure",
         "OrvFaceSet::OrvFaceSet : Bad item (optimized sure)\n"},
        {FS, "pointCardinal\t6", "pointCardinal\t0",
         "OrvFaceSet::OrvFaceSet : Points array is not defined.\n"},
        {FS, "pointIndex\tyes", "pointIndex\tno",
         "OrvFaceSet::OrvFaceSet : Index array is not defined.\n"},
        {FS, "colorIndex\tyes", "colorIndex\tno",
         "OrvFaceSet::OrvFaceSet : Index array is not defined.\n"},
        {FS, "4, 3, 5", "4, 3, 6", "OrvFaceSet::OrvFaceSet: Index size not equal.\n"},
        {FS, "faceVertices [", "faceVertices (",
         "OrvFaceSet::OrvFaceSet : Bad data begin separator.\n"},
        {FS, "5, 3\n\t]", "5, 3\n\t)", "OrvFaceSet::OrvFaceSet : Bad data end separator.\n"},
        {FS, "pointFIndex [\n\t\t0", "pointFIndex [\n\t\t6",
         "OrvVertex::setIndex: Some point index exceed max. of array.\n"},
        {FS, "\n}", "\n)", "OrvFaceSet::OrvFaceSet : Bad end separator.\n"},
        // Four thousand million elements announced in a short file: the reading
        // fails at the end of what is there, having allocated only for that
        // (the sanitizer build would stop on an allocation of the claim).
        {P, "pointCardinal\t6", "pointCardinal\t4000000000",
         "OrvVertexData::readPoints : Bad comma separator.\n"},
        {P, "indexCardinal\t6", "indexCardinal\t4000000000",
         "OrvVertexData::readIndex : Bad comma separator.\n"},
        {FS, "faceCardinal\t3\n\toptimized\tyes\n\tindexCardinal\t12",
         "faceCardinal\t4000000000\n\toptimized\tyes\n\tindexCardinal\t4000000000",
         "OrvFaceSet::OrvFaceSet : Bad data end separator.\n"},
        {FULL, "faceCardinal\t3", "faceCardinal\t4000000000",
         "OrvFace::OrvFace : Bad item (face })\n"},
        {SHARE, nullptr, "cardinal 4000000000 readOnly\nsharedVectors 1 [\n 1 0 0\n]\n",
         "OrvIStream : readSharedVectors : Bad comma separator.\n"},
    };
    unsigned before = listed();
    for (const auto& r : rows) {
        std::string text = r.from ? replaced(texts[r.sample], r.from, r.to) : r.to;
        Outcome o = readText(text, readers[r.sample]);
        EXPECT_FALSE(o.made) << r.first;
        EXPECT_EQ(o.said.substr(0, strlen(r.first)), r.first) << o.said;
        EXPECT_EQ(listed(), before) << r.first;
    }
}

TEST(VertexBadInput, IndicesPastArraysAreNeverRead) {
    // Made in memory: the index is kept with its message, and every reader
    // of vertices checks before it reads.
    Shares make;
    OrvFace* face = new OrvFace;
    face->setIndexed(make.make<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}), nullptr, nullptr,
                     nullptr, nullptr);
    unsigned far[3] = {0, 1, 1000000};
    EXPECT_EQ(OrvTestOutput([&] { face->setIndex(0, 3, far, nullptr, nullptr, nullptr, nullptr); }),
              "OrvVertex::setIndex: Some point index exceed max. of array.\n");
    EXPECT_EQ(face->computeNormal(), 0u);
    EXPECT_EQ(*face->normal(), Orv3dVector(0, 0, 0));
    Orv3dPoint q;
    EXPECT_EQ(face->subFaceVertex(q, 0, 2), -1);
    EXPECT_EQ(face->bbox, Orv3dVolume(0, 0, 0, 1, 0, 0));  // from the two that exist
    OrvFaceSet set(1, face);
    EXPECT_EQ(OrvTestOutput([&] {
                  EXPECT_EQ(face->changePoint(2, Orv3dPoint(), nullptr, nullptr, nullptr, nullptr),
                            0u);
                  EXPECT_EQ(set.computeVerticeNormals(30), 0u);
              }),
              "OrvFaceSet::computeVerticeNormals: Internal error.\n");
}
