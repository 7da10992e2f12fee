// Picture files: decoding a 512 by 512 GIF of 256 colours, reading it into a bitmap,
// reading a binary PPM into an image, and halving an image with the box filter, each
// beside a floor in the same run (the bytes copied, the same pixels put with setBits,
// the file read whole, a plain two-by-two average). Needs DISPLAY and netpbm.
#include <benchmark/benchmark.h>

#include "orv/bitmapfile.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/image.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

namespace {

const unsigned kSide = 512;

struct World {
    OrvDirector* director = nullptr;
    std::string gif, ppmPath = "/tmp/orv-bench-images.ppm", gifPath = "/tmp/orv-bench-images.gif";
    std::string rgb;

    static World& get() {
        static World world;
        return world;
    }

    World() {
        if (!getenv("DISPLAY")) {
            fprintf(stderr, "bench_images needs DISPLAY\n");
            exit(1);
        }
        director = new OrvDirector("benchimages", nullptr, 0, nullptr);
        // Soft bands of 256 colours with some noise: neither trivial nor random for LZW.
        std::string ppm = "P6\n512 512\n255\n";
        unsigned seed = 7;
        for (unsigned y = 0; y < kSide; y++)
            for (unsigned x = 0; x < kSide; x++) {
                seed = seed * 1103515245u + 12345u;
                unsigned k = ((x / 8 + y / 5) + ((seed >> 16) % 3)) & 255;
                rgb += (char)(k * 67 + 13);
                rgb += (char)(k * 151 + 101);
                rgb += (char)(k * 29 + 200);
            }
        ppm += rgb;
        std::ofstream(ppmPath, std::ios::binary) << ppm;
        std::string command = "pamtogif " + ppmPath + " > " + gifPath + " 2>/dev/null";
        if (system(command.c_str()) != 0) {
            fprintf(stderr, "bench_images needs pamtogif (netpbm)\n");
            exit(1);
        }
        std::ifstream in(gifPath, std::ios::binary);
        std::ostringstream s;
        s << in.rdbuf();
        gif = s.str();
    }
};

void BM_GifDecode(benchmark::State& state) {
    World& w = World::get();
    for (auto _ : state) {
        std::istringstream in(w.gif);
        OrvGifFile file(in);
        benchmark::DoNotOptimize(file.data);
    }
    state.SetItemsProcessed(state.iterations() * kSide * kSide);
}
BENCHMARK(BM_GifDecode)->Unit(benchmark::kMillisecond);

// Floor: the compressed bytes read from the same stream and the indices written once.
void BM_GifDecodeFloor(benchmark::State& state) {
    World& w = World::get();
    unsigned char* out = (unsigned char*)malloc(kSide * kSide);
    for (auto _ : state) {
        std::istringstream in(w.gif);
        std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        memset(out, bytes.size() & 255, kSide * kSide);
        benchmark::DoNotOptimize(out);
    }
    free(out);
    state.SetItemsProcessed(state.iterations() * kSide * kSide);
}
BENCHMARK(BM_GifDecodeFloor)->Unit(benchmark::kMillisecond);

void BM_GifBitmap(benchmark::State& state) {
    World& w = World::get();
    OrvCanvas* root = w.director->rootCanvas;
    for (auto _ : state) {
        OrvBitmap* b = OrvReadGIFBitmap(root, w.gifPath.c_str());
        w.director->flush();
        delete b;
    }
    state.SetItemsProcessed(state.iterations() * kSide * kSide);
}
BENCHMARK(BM_GifBitmap)->Unit(benchmark::kMillisecond);

// Floor: the same number of pixels put into a bitmap with setBits.
void BM_GifBitmapFloor(benchmark::State& state) {
    World& w = World::get();
    OrvCanvas* root = w.director->rootCanvas;
    unsigned bytes = root->depth <= 8 ? 1 : 4;
    std::string data((size_t)kSide * kSide * bytes, '\x40');
    for (auto _ : state) {
        OrvBitmap* b = new OrvBitmap(root, kSide, kSide, root->depth);
        b->setBits(Orv2dRect(0, 0, kSide, kSide), (const unsigned char*)data.data(), data.size(),
                   32, 0);
        w.director->flush();
        delete b;
    }
    state.SetItemsProcessed(state.iterations() * kSide * kSide);
}
BENCHMARK(BM_GifBitmapFloor)->Unit(benchmark::kMillisecond);

void BM_ImagePPM(benchmark::State& state) {
    World& w = World::get();
    for (auto _ : state) {
        OrvImage* image = w.director->image(w.ppmPath.c_str());
        benchmark::DoNotOptimize(image->pixels);
        delete image;  // read from the file again next time
    }
    state.SetItemsProcessed(state.iterations() * kSide * kSide);
}
BENCHMARK(BM_ImagePPM)->Unit(benchmark::kMillisecond);

// Floor: the file read whole with fread.
void BM_ImagePPMFloor(benchmark::State& state) {
    World& w = World::get();
    unsigned char* buffer = (unsigned char*)malloc(kSide * kSide * 3 + 64);
    for (auto _ : state) {
        FILE* f = fopen(w.ppmPath.c_str(), "rb");
        size_t n = fread(buffer, 1, kSide * kSide * 3 + 64, f);
        fclose(f);
        benchmark::DoNotOptimize(n);
    }
    free(buffer);
    state.SetItemsProcessed(state.iterations() * kSide * kSide);
}
BENCHMARK(BM_ImagePPMFloor)->Unit(benchmark::kMillisecond);

void BM_ScaleHalf(benchmark::State& state) {
    World& w = World::get();
    unsigned char* out = (unsigned char*)malloc(kSide * kSide * 3 / 4);
    for (auto _ : state) {
        OrvScaleImage(OrvImageRGB, 3, kSide / 2, kSide / 2, out, kSide, kSide,
                      (const unsigned char*)w.rgb.data());
        benchmark::DoNotOptimize(out);
    }
    free(out);
    state.SetItemsProcessed(state.iterations() * kSide * kSide);
}
BENCHMARK(BM_ScaleHalf)->Unit(benchmark::kMillisecond);

// Floor: a plain average of each square of four bytes.
void BM_ScaleHalfFloor(benchmark::State& state) {
    World& w = World::get();
    const unsigned char* in = (const unsigned char*)w.rgb.data();
    unsigned char* out = (unsigned char*)malloc(kSide * kSide * 3 / 4);
    const unsigned half = kSide / 2, row = kSide * 3;
    for (auto _ : state) {
        for (unsigned y = 0; y < half; y++)
            for (unsigned x = 0; x < half; x++)
                for (unsigned k = 0; k < 3; k++) {
                    const unsigned char* p = in + 2 * y * row + 6 * x + k;
                    out[(y * half + x) * 3 + k] =
                        (unsigned char)((p[0] + p[3] + p[row] + p[row + 3] + 2) / 4);
                }
        benchmark::DoNotOptimize(out);
    }
    free(out);
    state.SetItemsProcessed(state.iterations() * kSide * kSide);
}
BENCHMARK(BM_ScaleHalfFloor)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
