// Saving and reading a stage of 10^5 actors in the text format, against a
// plain std::getline pass over the same text as the floor. Needs DISPLAY.
#include <benchmark/benchmark.h>

#include "orv/actor.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/shapes.h"
#include "orv/stage.h"
#include "orv/stream.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {

const unsigned kActors = 100000;

// One director, one stage full of shapes and the text it saves to.
struct World {
    OrvDirector* director = nullptr;
    OrvStage* stage = nullptr;
    std::string text;

    static World& get() {
        static World world;
        return world;
    }

    World() {
        if (!getenv("DISPLAY")) {
            fprintf(stderr, "bench_stream needs DISPLAY\n");
            exit(1);
        }
        director = new OrvDirector("benchstream", nullptr, 0, nullptr);
        stage = new OrvStage(director, Orv2dRect(0, 0, 800, 600), "bench", 0, 1);
        const char* colors[] = {"red",    "blue",   "green", "black",
                                "orange", "purple", "brown", "navy"};
        OrvMakeUp* makeUps[8];
        for (int i = 0; i < 8; i++) {
            makeUps[i] =
                director->makeUpForeground(director->defaultMakeUp, director->color(colors[i]));
            if (i & 1) makeUps[i] = director->makeUpLineWidth(makeUps[i], 2);
        }
        unsigned seed = 12345;
        stage->beginDrawing();
        for (unsigned i = 0; i < kActors; i++) {
            seed = seed * 1103515245u + 12345u;
            int x = (int)(seed >> 8) % 780, y = (int)(seed >> 16) % 580;
            OrvMakeUp* m = makeUps[(seed >> 4) & 7];
            OrvActor* a = nullptr;
            switch (i % 5) {
                case 0:
                    a = new OrvFilledRectangle(director, Orv2dRect(x, y, 12, 8), m);
                    break;
                case 1:
                    a = new OrvRectangle(director, Orv2dRect(x, y, 9, 14), m, 2);
                    break;
                case 2:
                    a = new OrvLine(director, Orv2dPoint(x, y), Orv2dPoint(x + 15, y + 7), m);
                    break;
                case 3:
                    a = new OrvEllipse(director, Orv2dRect(x, y, 10, 10), m);
                    break;
                default:
                    a = new OrvLabel(director, "item", Orv2dPoint(x, y), OrvLeft, m);
                    break;
            }
            if (i % 97 == 0) a->setName("named actor");
            stage->append(a, i % 3);
        }
        stage->abortDrawing();
        std::ostringstream out;
        stage->save(out);
        text = out.str();
    }
};

// An output buffer made once, large enough for the whole text, so that the
// saving is measured rather than the growth of a string.
class FixedBuffer : public std::streambuf {
public:
    explicit FixedBuffer(size_t capacity) : data(new char[capacity]), size(capacity) { rewind(); }
    ~FixedBuffer() override { delete[] data; }
    void rewind() { setp(data, data + size); }
    size_t used() const { return (size_t)(pptr() - pbase()); }

private:
    char* data;
    size_t size;
};

void BM_GetlineFloor(benchmark::State& state) {
    World& w = World::get();
    for (auto _ : state) {
        std::istringstream in(w.text);
        std::string line;
        size_t lines = 0;
        while (std::getline(in, line)) lines++;
        benchmark::DoNotOptimize(lines);
    }
    state.SetBytesProcessed((int64_t)state.iterations() * (int64_t)w.text.size());
    state.SetItemsProcessed((int64_t)state.iterations() * kActors);
}

void BM_SaveStage(benchmark::State& state) {
    World& w = World::get();
    FixedBuffer buffer(w.text.size() * 2);
    std::ostream out(&buffer);
    for (auto _ : state) {
        buffer.rewind();
        w.stage->save(out);
        benchmark::DoNotOptimize(buffer.used());
    }
    if (!out || buffer.used() != w.text.size()) state.SkipWithError("saved text differs in size");
    state.SetBytesProcessed((int64_t)state.iterations() * (int64_t)w.text.size());
    state.SetItemsProcessed((int64_t)state.iterations() * kActors);
}

void BM_ReadStage(benchmark::State& state) {
    World& w = World::get();
    OrvStage* target = new OrvStage(w.director, Orv2dRect(820, 0, 800, 600), "target", 0, 1);
    for (auto _ : state) {
        std::istringstream in(w.text);
        Orv2dRect size;
        benchmark::DoNotOptimize(target->read(in, size, -1));
        state.PauseTiming();
        if (target->cardinal() != kActors) state.SkipWithError("not every actor was read");
        target->empty(1);
        state.ResumeTiming();
    }
    delete target;
    state.SetBytesProcessed((int64_t)state.iterations() * (int64_t)w.text.size());
    state.SetItemsProcessed((int64_t)state.iterations() * kActors);
}

// The reader alone, without the stage's append.
void BM_ReadStream(benchmark::State& state) {
    World& w = World::get();
    for (auto _ : state) {
        std::istringstream in(w.text);
        OrvIStream reader(w.director, in);
        unsigned count = 0;
        OrvActor** actors = reader.read(count, 1);
        state.PauseTiming();
        for (unsigned i = 0; i < count && actors && actors[i]; i++) delete actors[i];
        delete[] actors;
        state.ResumeTiming();
    }
    state.SetBytesProcessed((int64_t)state.iterations() * (int64_t)w.text.size());
    state.SetItemsProcessed((int64_t)state.iterations() * kActors);
}

}  // namespace

BENCHMARK(BM_GetlineFloor)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_SaveStage)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_ReadStage)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_ReadStream)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

BENCHMARK_MAIN();
