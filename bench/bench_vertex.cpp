// Crease-angle vertex normals of grid meshes of 10^4, 10^5 and 10^6 quads at
// 30 degrees, against a floor written here: the per-vertex average of the
// adjacent face normals over the same arrays, without crease test. Then the
// reading and writing of a face set of 10^6 points against a plain
// std::getline pass over the same file. No display needed.
#include <benchmark/benchmark.h>

#include "orv/stream.h"
#include "orv/vertex.h"
#include "orv/scene/crease.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

// A wavy height field of n x n quads on one shared array of points: many
// distinct normals, and at 30 degrees most faces blend with their neighbours.
struct Grid {
    unsigned n;
    OrvShare* points;

    explicit Grid(unsigned side) : n(side) {
        unsigned w = n + 1;
        Orv3dPoint* p = new Orv3dPoint[(size_t)w * w];
        for (unsigned r = 0; r < w; r++)
            for (unsigned c = 0; c < w; c++)
                p[r * w + c] = Orv3dPoint((float)c, (float)r,
                                          (float)(std::sin(r * 0.21) * std::cos(c * 0.17) * 1.5));
        points = new OrvShare(w * w, p, 0, 1);
        points->lock();
    }
    ~Grid() { points->unLock(); }
    Grid(const Grid&) = delete;
    Grid& operator=(const Grid&) = delete;

    void quad(unsigned f, unsigned q[4]) const {
        unsigned r = f / n, c = f % n, a = r * (n + 1) + c;
        q[0] = a;
        q[1] = a + 1;
        q[2] = a + n + 2;
        q[3] = a + n + 1;
    }

    OrvFaceSet* faceSet() const {
        OrvFaceSet* set = new OrvFaceSet(0);
        for (unsigned f = 0; f < n * n; f++) {
            unsigned q[4];
            quad(f, q);
            OrvFace* face = new OrvFace;
            face->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
            face->setIndex(0, 4, q, nullptr, nullptr, nullptr, nullptr);
            set->add(face);
        }
        set->computeFacesNormals();
        return set;
    }

    // The same grid as one quad mesh: rows and columns of the Part's grid.
    OrvSeries* quadMesh() const {
        OrvSeries* mesh = new OrvSeries(OrvQuadMesh, n, n);
        mesh->createNonIndexedVertex(points, nullptr, nullptr, nullptr, nullptr);
        mesh->computeFacesNormals();
        return mesh;
    }
};

unsigned sideOf(int64_t quads) {
    return (unsigned)std::lround(std::sqrt((double)quads));
}

// The whole operation: crease normals of the set, every face rebuilt
// indexed into one table of distinct normals.
void BM_CreaseNormals(benchmark::State& state) {
    Grid grid(sideOf(state.range(0)));
    size_t distinct = 0;
    for (auto _ : state) {
        state.PauseTiming();
        OrvFaceSet* set = grid.faceSet();
        state.ResumeTiming();
        set->computeVerticeNormals(30);
        state.PauseTiming();
        distinct = ((OrvFace*)set->faces.first->value)->vertexNormalsCardinal();
        delete set;
        state.ResumeTiming();
    }
    state.counters["quads"] = (double)grid.n * grid.n;
    state.counters["distinct"] = (double)distinct;
}

// The same grid as one quad-mesh series: the faces share their vertices, and
// the object is rebuilt once.
void BM_CreaseQuadMesh(benchmark::State& state) {
    Grid grid(sideOf(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        OrvSeries* mesh = grid.quadMesh();
        state.ResumeTiming();
        mesh->computeVerticeNormals(30);
        state.PauseTiming();
        delete mesh;
        state.ResumeTiming();
    }
    state.counters["quads"] = (double)grid.n * grid.n;
}

// The smoothing alone, as computeVerticeNormals runs it: faces round each
// point, crease tests, averages and the table, over the same arrays, without
// the making of objects for the faces afterwards.
void BM_CreaseCore(benchmark::State& state) {
    Grid grid(sideOf(state.range(0)));
    OrvFaceSet* set = grid.faceSet();
    _OrvCreaseMesh_ mesh;
    mesh.pointCount = grid.points->cardinal;
    mesh.faceStart.push_back(0);
    for (OrvLink* l = set->faces.first; l; l = l->next) {
        OrvFace* face = (OrvFace*)l->value;
        for (unsigned k = 0; k < 4; k++) {
            mesh.faceSlots.push_back((unsigned)mesh.slotPoint.size());
            mesh.slotPoint.push_back(face->vertexPointsIndex()[k]);
        }
        mesh.faceStart.push_back((unsigned)mesh.faceSlots.size());
        mesh.faceNormal.push_back(*face->normal());
    }
    delete set;
    std::vector<unsigned> result;
    for (auto _ : state) {
        _OrvNormalTable_ table(mesh.pointCount);
        _OrvCreaseNormals_(mesh, 30, result, table);
        benchmark::DoNotOptimize(table.vectors.data());
    }
    state.counters["quads"] = (double)grid.n * grid.n;
}

// What a face set must do after the smoothing, alone: each face rebuilt
// indexed with the table of normals and its own normal block, as
// computeVerticeNormals leaves it. The normals and blocks are worked out once,
// outside the timing.
void BM_CreaseRebuild(benchmark::State& state) {
    Grid grid(sideOf(state.range(0)));
    OrvFaceSet* smoothed = grid.faceSet();
    smoothed->computeVerticeNormals(30);
    OrvShare* normals = ((OrvFace*)smoothed->faces.first->value)->vertexSharedNormals();
    normals->lock();
    std::vector<unsigned> blocks;
    for (OrvLink* l = smoothed->faces.first; l; l = l->next) {
        const unsigned* n = ((OrvFace*)l->value)->vertexNormalsIndex();
        blocks.insert(blocks.end(), n, n + 4);
    }
    delete smoothed;
    for (auto _ : state) {
        state.PauseTiming();
        OrvFaceSet* set = grid.faceSet();
        state.ResumeTiming();
        const unsigned* block = blocks.data();
        for (OrvLink* l = set->faces.first; l; l = l->next, block += 4)
            _OrvRebuildWithNormals_(*(OrvFace*)l->value, normals, block);
        state.PauseTiming();
        delete set;
        state.ResumeTiming();
    }
    normals->unLock();
    state.counters["quads"] = (double)grid.n * grid.n;
}

// The floor: each face's normal added to its four points, then each point's
// sum normalised.
void BM_CreaseFloor(benchmark::State& state) {
    Grid grid(sideOf(state.range(0)));
    OrvFaceSet* set = grid.faceSet();
    std::vector<unsigned> quads;
    std::vector<Orv3dVector> normals;
    for (OrvLink* l = set->faces.first; l; l = l->next) {
        OrvFace* face = (OrvFace*)l->value;
        quads.insert(quads.end(), face->vertexPointsIndex(), face->vertexPointsIndex() + 4);
        normals.push_back(*face->normal());
    }
    delete set;
    std::vector<Orv3dVector> sum(grid.points->cardinal);
    for (auto _ : state) {
        std::fill(sum.begin(), sum.end(), Orv3dVector());
        for (size_t f = 0; f < normals.size(); f++)
            for (unsigned k = 0; k < 4; k++) {
                Orv3dVector& s = sum[quads[f * 4 + k]];
                s.x += normals[f].x;
                s.y += normals[f].y;
                s.z += normals[f].z;
            }
        for (Orv3dVector& s : sum) s.normalize();
        benchmark::DoNotOptimize(sum.data());
    }
    state.counters["quads"] = (double)grid.n * grid.n;
}

BENCHMARK(BM_CreaseNormals)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreaseQuadMesh)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreaseRebuild)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreaseCore)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreaseFloor)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// ---------------------------------------------------------------------------
// Reading and writing a face set of 10^6 points
// ---------------------------------------------------------------------------

// In memory where the machine has it, so that the disk's pace stays out of
// both the writing and the floor.
const char* const kFile = access("/dev/shm", W_OK) == 0 ? "/dev/shm/bench_vertex_faceset.orv"
                                                        : "bench_vertex_faceset.orv";

struct Saved {
    Grid grid{999};  // 1000 x 1000 points
    OrvFaceSet* set;
    size_t bytes = 0;

    static Saved& get() {
        static Saved saved;
        return saved;
    }
    Saved() : set(grid.faceSet()) {
        set->computeVerticeNormals(30);
        std::ofstream out(kFile);
        OrvOStream writer(out);
        set->write(writer);
        out.flush();
        bytes = (size_t)out.tellp();
    }
    ~Saved() {
        delete set;
        remove(kFile);
    }
    Saved(const Saved&) = delete;
    Saved& operator=(const Saved&) = delete;
};

void BM_WriteFaceSet(benchmark::State& state) {
    Saved& saved = Saved::get();
    for (auto _ : state) {
        std::ofstream out(kFile);
        OrvOStream writer(out);
        saved.set->write(writer);
    }
    state.SetBytesProcessed((int64_t)state.iterations() * (int64_t)saved.bytes);
}

void BM_ReadFaceSet(benchmark::State& state) {
    Saved& saved = Saved::get();
    unsigned faces = 0;
    for (auto _ : state) {
        OrvFaceSet* set;
        {
            std::ifstream in(kFile);
            OrvIStream reader(nullptr, in);
            set = OrvFaceSet::read(reader);
        }
        // The stream is closed: the set holds the last counts on its arrays,
        // so freeing them goes with the set, outside the reading.
        state.PauseTiming();
        faces = set ? set->faceCardinal() : 0;
        delete set;
        state.ResumeTiming();
    }
    if (faces != saved.set->faceCardinal()) state.SkipWithError("the face set did not come back");
    state.SetBytesProcessed((int64_t)state.iterations() * (int64_t)saved.bytes);
}

// The objects a read of the file makes, without the text: the set's faces
// as the compact form builds them, on the saved arrays, each with its layout,
// index share and normal.
void BM_BuildFaceSet(benchmark::State& state) {
    Saved& saved = Saved::get();
    std::vector<std::vector<unsigned>> blocks;
    std::vector<Orv3dVector> normals;
    for (OrvLink* l = saved.set->faces.first; l; l = l->next) {
        OrvFace* face = (OrvFace*)l->value;
        const unsigned* all = face->vertexPointsIndex();
        blocks.emplace_back(all, all + 2 * face->vertexCardinal());
        normals.push_back(*face->normal());
    }
    OrvFace* first = (OrvFace*)saved.set->faces.first->value;
    OrvShare* points = first->vertexSharedAnyPoints();
    OrvShare* vectors = first->vertexSharedNormals();
    for (auto _ : state) {
        OrvFaceSet* set = new OrvFaceSet(0);
        for (size_t f = 0; f < blocks.size(); f++) {
            OrvFace* face = new OrvFace;
            face->createIndexedVertex(points, nullptr, vectors, nullptr, nullptr);
            unsigned n = (unsigned)blocks[f].size();
            unsigned* index = new unsigned[n + 1];
            std::copy(blocks[f].begin(), blocks[f].end(), index);
            face->setVertexIndex(new OrvShare(n, index, 0, 1));
            set->add(face);
            face->normal(&normals[f]);
        }
        state.PauseTiming();
        delete set;
        state.ResumeTiming();
    }
    state.SetBytesProcessed((int64_t)state.iterations() * (int64_t)saved.bytes);
}

void BM_GetlineFloor(benchmark::State& state) {
    Saved& saved = Saved::get();
    for (auto _ : state) {
        std::ifstream in(kFile);
        size_t n = 0;
        for (std::string line; std::getline(in, line);) n += line.size();
        benchmark::DoNotOptimize(n);
    }
    state.SetBytesProcessed((int64_t)state.iterations() * (int64_t)saved.bytes);
}

BENCHMARK(BM_GetlineFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteFaceSet)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadFaceSet)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BuildFaceSet)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
