// Bad text for the vertex readers: files cut at every byte, every key and
// separator replaced, numbers that name nothing, claims far beyond the file,
// indices past their arrays. Each gives its message and a null object, and
// nothing the reading made outlives the reader.
#include "orv/stream.h"
#include "orv/vertex.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "vertex_samples.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

unsigned listed() {
    return OrvShare::sharedData ? OrvShare::sharedData->length() : 0;
}

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
    CaptureStdout();
    {
        OrvIStream reader(nullptr, in);
        o.made = read(reader);
        o.faults = reader.faults;
    }
    o.said = GetCapturedStdout();
    return o;
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    if (at != std::string::npos) text.replace(at, what.size(), with);
    return text;
}

bool isNumber(const std::string& word) {
    char* end = nullptr;
    strtod(word.c_str(), &end);
    return !word.empty() && *end == 0;
}

struct Sample {
    const char* name;
    std::string text;
    Reader read;
};

std::vector<Sample> samples(const SampleArrays& a) {
    OrvFaceSet* compact = compactSample(a);
    OrvFaceSet* full = fullSample(a);
    OrvSeries series(OrvRowsTriStrip, 3, 2);
    series.setIndexed(a.points, a.colors, nullptr, a.textures, nullptr);
    unsigned v[6] = {0, 1, 2, 3, 4, 5}, c[6] = {0, 1, 2, 3, 0, 1};
    series.setIndex(0, 6, v, c, nullptr, nullptr, v);
    series.computeFacesNormals();
    OrvShare* lengths = sampleShare<unsigned>({4, 2});
    OrvTriangleStripSet strips(lengths);
    strips.setNonIndexed(a.points, nullptr, nullptr, nullptr, nullptr);
    std::vector<Sample> all = {
        {"compact face set", sampleText([&](OrvOStream& o) { compact->write(o); }),
         readerOf(OrvFaceSet::read)},
        {"face set", sampleText([&](OrvOStream& o) { full->write(o); }),
         readerOf(OrvFaceSet::read)},
        {"series", sampleText([&](OrvOStream& o) { series.write(o); }), readerOf(OrvSeries::read)},
        {"strip set", sampleText([&](OrvOStream& o) { strips.write(o); }),
         readerOf(OrvTriangleStripSet::read)},
    };
    delete compact;
    delete full;
    lengths->unLock();
    return all;
}

}  // namespace

TEST(VertexBadInput, CutAtEveryByte) {
    SampleArrays a;
    unsigned before = listed();
    for (const Sample& s : samples(a)) {
        size_t end = s.text.rfind('}') + 1;
        ASSERT_TRUE(readText(s.text, s.read).made) << s.name;
        for (size_t cut = 0; cut < end; cut++) {
            Outcome o = readText(s.text.substr(0, cut), s.read);
            ASSERT_FALSE(o.made) << s.name << " cut at " << cut;
            EXPECT_FALSE(o.said.empty()) << s.name << " cut at " << cut;
            ASSERT_EQ(listed(), before) << s.name << " cut at " << cut;
        }
    }
}

TEST(VertexBadInput, EveryKeyAndSeparatorReplaced) {
    SampleArrays a;
    unsigned before = listed();
    for (const Sample& s : samples(a)) {
        // Each word that is not a number, outside comments.
        std::vector<std::pair<size_t, size_t>> words;
        size_t i = 0, n = s.text.size();
        while (i < n) {
            while (i < n && (s.text[i] == ' ' || s.text[i] == '\t' || s.text[i] == '\n')) i++;
            if (i < n && s.text[i] == '%') {
                while (i < n && s.text[i] != '\n') i++;
                continue;
            }
            size_t start = i;
            while (i < n && s.text[i] != ' ' && s.text[i] != '\t' && s.text[i] != '\n') i++;
            std::string word = s.text.substr(start, i - start);
            while (!word.empty() && word.back() == ',') word.pop_back();
            if (!word.empty() && !isNumber(word)) words.push_back({start, word.size()});
        }
        ASSERT_GT(words.size(), 20u) << s.name;
        unsigned tried = 0;
        for (const auto& w : words) {
            std::string text = s.text;
            text.replace(w.first, w.second, "bogus");
            Outcome o = readText(text, s.read);
            EXPECT_FALSE(o.made) << s.name << ": " << s.text.substr(w.first, w.second);
            EXPECT_GT(o.faults, 0u) << s.name << ": " << s.text.substr(w.first, w.second);
            ASSERT_EQ(listed(), before);
            tried++;
        }
        // And each separator.
        for (size_t k = 0; k < n; k++) {
            char c = s.text[k];
            if (c != '{' && c != '}' && c != '[' && c != ']' && c != ',') continue;
            // Commas of comments are not separators.
            size_t line = s.text.rfind('\n', k);
            line = line == std::string::npos ? 0 : line + 1;
            if (s.text.find_first_not_of('\t', line) < n &&
                s.text[s.text.find_first_not_of('\t', line)] == '%')
                continue;
            std::string text = s.text;
            text[k] = ';';
            Outcome o = readText(text, s.read);
            EXPECT_FALSE(o.made) << s.name << " separator at " << k;
            EXPECT_FALSE(o.said.empty()) << s.name << " separator at " << k;
            ASSERT_EQ(listed(), before);
            tried++;
        }
        EXPECT_GT(tried, 40u) << s.name;
    }
}

TEST(VertexBadInput, Messages) {
    SampleArrays a;
    OrvPolygon polygon;
    polygon.setIndexed(a.points, a.colors, nullptr, nullptr, nullptr);
    unsigned v[3] = {0, 1, 2}, c[3] = {3, 2, 1};
    polygon.setIndex(0, 3, v, c, nullptr, nullptr, nullptr);
    std::string p = sampleText([&](OrvOStream& o) { polygon.write(o); });
    OrvShare* grid =
        sampleShare<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}});
    OrvFace face;
    face.setNonIndexed(grid, nullptr, nullptr, nullptr, nullptr);
    face.computeNormal();
    Orv3dVector up(0, 0, 1);
    face.normal(&up);
    std::string f = sampleText([&](OrvOStream& o) { face.write(o); });
    OrvSeries series(OrvQuadMesh, 1, 2);
    series.setNonIndexed(grid, nullptr, nullptr, nullptr, nullptr);
    series.computeFacesNormals();
    std::string s = sampleText([&](OrvOStream& o) { series.write(o); });
    OrvFaceSet* compact = compactSample(a);
    std::string fs = sampleText([&](OrvOStream& o) { compact->write(o); });
    delete compact;
    Reader polygons = readerOf(OrvPolygon::read), faces = readerOf(OrvFace::read),
           seriesOf = readerOf(OrvSeries::read), sets = readerOf(OrvFaceSet::read);

    struct {
        std::string text;
        Reader* read;
        const char* first;  // the first message
    } rows[] = {
        // Polygons and their vertex data.
        {replaced(p, "polygon", "polygone"), &polygons,
         "OrvPolygon : OrvIStream : Bad key (polygon polygone).\n"},
        {replaced(p, "{", "("), &polygons, "OrvPolygon::OrvPolygon : Bad begin separator.\n"},
        {replaced(p, "\n}", "\n)"), &polygons, "OrvPolygon::OrvPolygon : Bad end separator.\n"},
        {"polygon\t.USE 7\n", &polygons, "OrvPolygon::OrvPolygon : Can't find points array.\n"},
        {replaced(p, "indexed\t\tyes", "indexed\t\tmaybe"), &polygons,
         "OrvVertexData: Read : Bad file definition.\n"},
        {replaced(p, "rational", "rationale"), &polygons,
         "OrvPolygon : OrvIStream : Bad key (rational rationale).\n"},
        {replaced(p, "6\treadWrite", "6\treadSome"), &polygons,
         "OrvPolygon::OrvPolygon : Bad flag (readOnly or readWrite - readSome)\n"},
        {replaced(p, "pointCardinal\t6", "pointCardinal\t0"), &polygons,
         "OrvPolygon::OrvPolygon : Can't find points array.\n"},
        {replaced(p, "point 1 [", "point 1 ("), &polygons,
         "OrvVertexData::readPoints : Bad data begin separator. \n"},
        {replaced(p, "0 0 0,", "0 0 0;"), &polygons,
         "OrvVertexData::readPoints : Bad comma separator.\n"},
        {replaced(p, "2 -1.25 3\n\t]", "2 -1.25 3\n\t)"), &polygons,
         "OrvVertexData::readPoints : Bad data end separator.\n"},
        {replaced(p, "color 2 [", "color .USE 9"), &polygons,
         "OrvVertexData::readColors : Can't find shared index.\n"},
        {replaced(p, "color 2 [", "color .USE 1"), &polygons,  // a share of points
         "OrvVertexData::readColors : Can't find shared index.\n"},
        {replaced(p, "pointIndex 3 [", "pointIndex 3 ("), &polygons,
         "OrvVertexData::readIndex : Bad begin separator (index).\n"},
        {replaced(p, "0, 1, 2", "0; 1, 2"), &polygons,
         "OrvVertexData::readIndex : Bad comma separator.\n"},
        {replaced(p, "0, 1, 2\n\t]", "0, 1, 2\n\t)"), &polygons,
         "OrvVertexData::readIndex : Bad end separator (index).\n"},
        {replaced(p, "colorIndex 3", "normalIndex 3"), &polygons,
         "OrvPolygon : OrvIStream : Bad key (colorIndex normalIndex).\n"},
        {replaced(p, "indexCardinal\t6", "indexCardinal\t7"), &polygons,
         "OrvPolygon::OrvPolygon : Internal error (idx).\n"},
        {replaced(p, "0, 1, 2", "0, 9, 2"), &polygons,
         "OrvVertex::setIndex: Some point index exceed max. of array.\n"},
        {replaced(p, "3, 2, 1", "3, 2, 4"), &polygons,
         "OrvVertex::setIndex: Some color index exceed max. of array.\n"},
        {p.substr(0, p.find("\tpointIndex")) + "\tpointIndex\t.USE 1\n}\n", &polygons,
         "OrvVertexData::readIndex : Can't find shared index.\n"},
        // Faces.
        {replaced(f, "face {", "facet {"), &faces, "OrvFace::OrvFace : Bad item (face facet)\n"},
        {replaced(f, "face {", "face ("), &faces, "OrvFace::OrvFace : Bad begin separator.\n"},
        {replaced(f, "faceColor", "faceColour"), &faces,
         "OrvFace::OrvFace : Not a face color item\n"},
        {replaced(f, "faceNormal\t0 0 1", "faceNormal\tnone"), &faces,
         "OrvFace::OrvFace : Not a face normal item\n"},
        {replaced(f, "\n}", "\n)"), &faces, "OrvFace::OrvFace : Bad end separator.\n"},
        // Series.
        {replaced(s, "series {", "series ("), &seriesOf,
         "OrvSeries::OrvSeries : Bad begin separator.\n"},
        {replaced(s, "ulData\t0", "ulData\t7"), &seriesOf,
         "OrvSeries::OrvSeries : Bad item (ulData )\n"},
        {replaced(s, "ulData", "uiData"), &seriesOf, "OrvIStream : Bad data.\n"},
        {replaced(s, "seriesData2", "seriesData3"), &seriesOf,
         "OrvSeries::OrvSeries : Bad item (seriesData2 seriesData3)\n"},
        {replaced(s, "faceNormal 2 [", "faceNormal 2 ("), &seriesOf,
         "OrvSeries::OrvSeries : Bad data separator (normals).\n"},
        {replaced(s, "0 0 1,", "0 0 1;"), &seriesOf,
         "OrvSeries::OrvSeries : Bad data end separator (1).\n"},
        {replaced(s, "faceNormal 2 [", "faceNormal\t.USE 1"), &seriesOf,  // not normals
         "OrvSeries::OrvSeries : Bad data separator (normals).\n"},
        {replaced(s, "\n}", "\n)"), &seriesOf, "OrvSeries::OrvSeries : Bad end separator.\n"},
        // Face sets.
        {replaced(fs, "faceSet", "faceSets"), &sets,
         "OrvFaceSet : OrvIStream : Bad key (faceSet faceSets).\n"},
        {replaced(fs, "faceSet {", "faceSet ("), &sets,
         "OrvFaceSet::OrvFaceSet : Bad begin separator.\n"},
        {replaced(fs, "optimized\tyes", "optimized\tsure"), &sets,
         "OrvFaceSet::OrvFaceSet : Bad item (optimized sure)\n"},
        {replaced(fs, "pointCardinal\t6", "pointCardinal\t0"), &sets,
         "OrvFaceSet::OrvFaceSet : Points array is not defined.\n"},
        {replaced(fs, "pointIndex\tyes", "pointIndex\tno"), &sets,
         "OrvFaceSet::OrvFaceSet : Index array is not defined.\n"},
        {replaced(fs, "colorIndex\tyes", "colorIndex\tno"), &sets,
         "OrvFaceSet::OrvFaceSet : Index array is not defined.\n"},
        {replaced(fs, "4, 3, 5", "4, 3, 6"), &sets,
         "OrvFaceSet::OrvFaceSet: Index size not equal.\n"},
        {replaced(fs, "faceVertices [", "faceVertices ("), &sets,
         "OrvFaceSet::OrvFaceSet : Bad data begin separator.\n"},
        {replaced(fs, "5, 3\n\t]", "5, 3\n\t)"), &sets,
         "OrvFaceSet::OrvFaceSet : Bad data end separator.\n"},
        {replaced(fs, "pointFIndex [\n\t\t0, 1, 2, 3, 0", "pointFIndex [\n\t\t0, 1, 2, 3, 60"),
         &sets, "OrvVertex::setIndex: Some point index exceed max. of array.\n"},
        {replaced(fs, "\n}", "\n)"), &sets, "OrvFaceSet::OrvFaceSet : Bad end separator.\n"},
    };
    unsigned before = listed();
    for (const auto& r : rows) {
        Outcome o = readText(r.text, *r.read);
        EXPECT_FALSE(o.made) << r.first;
        EXPECT_EQ(o.said.substr(0, strlen(r.first)), r.first) << o.said;
        EXPECT_EQ(listed(), before) << r.first;
    }
    grid->unLock();
}

TEST(VertexBadInput, ClaimsBeyondTheFile) {
    // Four thousand million points announced in a file of some 200 bytes:
    // the reading fails at the end of what is there, having allocated only
    // for that (the sanitizer build would stop on an allocation of the claim).
    struct {
        std::string text;
        Reader read;
        const char* first;
    } rows[] = {
        {"polygon {\n indexed no\n rational no\n pointCardinal 4000000000 readWrite\n"
         " colorCardinal 0 readWrite\n normalCardinal 0 readWrite\n textureCardinal 0 readWrite\n"
         " edgeCardinal 0 readWrite\n point 1 [\n  0 0 0,\n  1 1 1\n ]\n}\n",
         readerOf(OrvPolygon::read), "OrvVertexData::readPoints : Bad comma separator.\n"},
        {"polygon {\n indexed yes\n indexCardinal 4000000000 readWrite\n rational no\n"
         " pointCardinal 1 readWrite\n colorCardinal 0 readWrite\n normalCardinal 0 readWrite\n"
         " textureCardinal 0 readWrite\n edgeCardinal 0 readWrite\n point 1 [ 0 0 0 ]\n"
         " pointIndex 2 [ 0, 0, 0 ]\n}\n",
         readerOf(OrvPolygon::read), "OrvVertexData::readIndex : Bad comma separator.\n"},
        {"faceSet {\n faceCardinal 4000000000\n optimized yes\n indexCardinal 4000000000\n"
         " rational no\n pointCardinal 1 readWrite\n colorCardinal 0 readWrite\n"
         " normalCardinal 0 readWrite\n textureCardinal 0 readWrite\n edgeCardinal 0 readWrite\n"
         " point 1 [ 0 0 0 ]\n pointIndex yes\n colorIndex no\n normalIndex no\n"
         " textureIndex no\n edgeIndex no\n faceVertices [ 3, 3 ]\n}\n",
         readerOf(OrvFaceSet::read), "OrvFaceSet::OrvFaceSet : Bad data end separator.\n"},
        {"faceSet {\n faceCardinal 4000000000\n optimized no\n}\n", readerOf(OrvFaceSet::read),
         "OrvFace::OrvFace : Bad item (face })\n"},
        {"% Shared data ...\ncardinal 4000000000 readOnly\nsharedVectors 1 [\n 1 0 0\n]\n",
         [](OrvIStream& in) {
             OrvShare* s = nullptr;
             in >> s;
             return s != nullptr;
         },
         "OrvIStream : readSharedVectors : Bad comma separator.\n"},
    };
    unsigned before = listed();
    for (const auto& r : rows) {
        EXPECT_LT(r.text.size(), 420u);
        Outcome o = readText(r.text, r.read);
        EXPECT_FALSE(o.made) << r.first;
        EXPECT_EQ(o.said.substr(0, strlen(r.first)), r.first) << o.said;
        EXPECT_EQ(listed(), before);
    }
}

TEST(VertexBadInput, IndicesPastArraysAreNeverRead) {
    // Made in memory: the index is kept with its message, and every reader
    // of vertices checks before it reads.
    OrvShare* points = sampleShare<Orv3dPoint>({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    OrvFace* face = new OrvFace;
    face->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
    unsigned far[3] = {0, 1, 1000000};
    CaptureStdout();
    face->setIndex(0, 3, far, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(GetCapturedStdout(), "OrvVertex::setIndex: Some point index exceed max. of array.\n");
    Orv3dVector n(7, 7, 7);
    EXPECT_EQ(face->computeNormal(), 0u);
    EXPECT_EQ(*face->normal(), Orv3dVector(0, 0, 0));
    Orv3dPoint q;
    EXPECT_EQ(face->subFaceVertex(q, 0, 2), -1);
    EXPECT_EQ(face->bbox, Orv3dVolume(0, 0, 0, 1, 0, 0));  // from the two that exist
    CaptureStdout();
    EXPECT_EQ(face->changePoint(2, Orv3dPoint(), nullptr, nullptr, nullptr, nullptr), 0u);
    EXPECT_EQ(GetCapturedStdout(), "");
    OrvFaceSet set(1, face);
    CaptureStdout();
    EXPECT_EQ(set.computeVerticeNormals(30), 0u);
    EXPECT_EQ(GetCapturedStdout(), "OrvFaceSet::computeVerticeNormals: Internal error.\n");
    points->unLock();
}
