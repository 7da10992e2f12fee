// stage_demo: a stage of a few hundred actors of every basic class in four
// layers, seen through a transformer, double buffered, with a dotted grid and
// a handful of actors animated by a timer.
//
//   stage_demo              opens a window on $DISPLAY; close it to quit
//   stage_demo --shots DIR  runs the animation for a while, writes
//                           DIR/stage_demo-1-start.ppm ... -4-layers.ppm
//                           (binary PPM read back from the window), and exits
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <string>
#include <vector>

#include <orv/orvis.h>

static const unsigned kWidth = 800, kHeight = 600;

// A deterministic sequence, so that every run shows the same picture.
static unsigned nextRandom() {
    static unsigned seed = 20261123u;
    seed = seed * 1103515245u + 12345u;
    return (seed >> 8) & 0xffffff;
}
static long randomIn(long from, long to) {
    return from + (long)(nextRandom() % (unsigned)(to - from));
}

struct Palette {
    OrvDirector* director;
    std::vector<OrvMakeUp*> held;
    OrvMakeUp* color(const char* name, unsigned short width = 1) {
        OrvMakeUp* m = director->makeUpForeground(director->defaultMakeUp, director->color(name));
        if (width > 1) m = director->makeUpLineWidth(m, width);
        OrvCount(m);
        held.push_back(m);
        return m;
    }
    ~Palette() {
        for (OrvMakeUp* m : held) OrvRelease(m);
    }
};

static void writeShot(OrvView* view, const std::string& path) {
    if (OrvSaveViewPPM(view, path.c_str()))
        printf("screenshot %s\n", path.c_str());
    else
        printf("could not write %s\n", path.c_str());
}

// The scene: tiles at the back, figures, lines and labels, then the movers.
struct Demo {
    OrvDirector* director;
    OrvStage* stage;
    Palette palette;
    OrvFilledEllipse* ball = nullptr;
    OrvFilledRectangle* slider = nullptr;
    OrvArrowLine* hand = nullptr;
    OrvLabel* clock = nullptr;
    Orv2dPolygon* star = nullptr;
    long ballDx = 7, ballDy = 5;
    int ticks = 0;
    unsigned actors = 0;

    Demo(OrvDirector* d) : director(d), palette{d, {}} {
        stage =
            new OrvStage(director, Orv2dRect(40, 40, kWidth, kHeight), "Orvis stage demo", 0, 1);
        stage->useDoubleBuffer(1);
        build();
    }

    void add(OrvActor* a, unsigned layer) {
        stage->append(a, layer);
        actors++;
    }

    void build() {
        const char* tiles[] = {"lavender",   "honeydew", "misty rose",
                               "alice blue", "beige",    "light cyan"};
        const char* inks[] = {"firebrick", "dark green", "navy",  "dark orange",
                              "purple",    "teal",       "sienna"};
        OrvMakeUp* tileUps[6];
        OrvMakeUp* inkUps[7];
        OrvMakeUp* wideUps[7];
        for (int i = 0; i < 6; i++) tileUps[i] = palette.color(tiles[i]);
        for (int i = 0; i < 7; i++) {
            inkUps[i] = palette.color(inks[i]);
            wideUps[i] = palette.color(inks[i], 3);
        }
        stage->setGrid(
            new OrvStageGrid(palette.color("gray60"), Orv2dPoint(0, 0), 20, 20, 0, 1, 1, 1));

        // One nest for the whole build: a single repaint at its end.
        stage->beginDrawing();
        // Layer 0: a checkerboard of pale tiles with rounded outlines on some.
        for (int row = 0; row < 8; row++)
            for (int col = 0; col < 10; col++) {
                Orv2dRect r(col * 80 + 4, row * 75 + 4, 72, 67);
                add(new OrvFilledRectangle(director, r, tileUps[(row + col) % 6]), 0);
                if ((row * 10 + col) % 7 == 0)
                    add(new OrvRectangle(director, r, inkUps[(row + col) % 7], 10), 0);
            }
        // Layer 1: ellipses, arcs, polygons and polylines.
        for (int i = 0; i < 60; i++) {
            Orv2dRect r(randomIn(0, kWidth - 60), randomIn(0, kHeight - 60), randomIn(12, 60),
                        randomIn(12, 60));
            switch (i % 5) {
                case 0:
                    add(new OrvFilledEllipse(director, r, inkUps[i % 7]), 1);
                    break;
                case 1:
                    add(new OrvEllipse(director, r, wideUps[i % 7]), 1);
                    break;
                case 2:
                    add(new OrvArc(director, r, 30.0f, 300.0f, 1, inkUps[(i + 2) % 7]), 1);
                    break;
                case 3: {
                    Orv2dPoint tri[3] = {Orv2dPoint(r.x, r.y + (long)r.h),
                                         Orv2dPoint(r.x + (long)r.w / 2, r.y),
                                         Orv2dPoint(r.x + (long)r.w, r.y + (long)r.h)};
                    add(new Orv2dPolygon(director, 3, tri, 1, inkUps[(i + 3) % 7]), 1);
                    break;
                }
                default: {
                    Orv2dPoint zig[5];
                    for (int k = 0; k < 5; k++)
                        zig[k] =
                            Orv2dPoint(r.x + k * (long)r.w / 4, r.y + ((k & 1) ? (long)r.h : 0));
                    add(new Orv2dPolyline(director, 5, zig, wideUps[(i + 4) % 7]), 1);
                }
            }
        }
        // Also in layer 1: a swarm of small squares inside one indexed set, which
        // repaints only what meets the clip.
        OrvIndexedSet* swarm = new OrvIndexedSet(director, 0, nullptr);
        for (int i = 0; i < 60; i++) {
            long x = 560 + (long)(nextRandom() % 220), y = 380 + (long)(nextRandom() % 200);
            swarm->quadtree->add(
                new OrvFilledRectangle(director, Orv2dRect(x, y, 5, 5), inkUps[i % 7]));
            actors++;
        }
        swarm->invalidateBox();
        add(swarm, 1);
        // Layer 2: lines, arrows, labels and icons.
        for (int i = 0; i < 90; i++) {
            Orv2dPoint a(randomIn(10, kWidth - 10), randomIn(10, kHeight - 10));
            Orv2dPoint b(a.x + randomIn(-70, 70), a.y + randomIn(-70, 70));
            if (i % 3 == 0)
                add(new OrvLine(director, a, b, inkUps[i % 7]), 2);
            else if (i % 3 == 1)
                add(new OrvArrowLine(director, a, b, wideUps[i % 7],
                                     (i & 1) ? OrvArrowAtEnd : OrvArrowAtEnd | OrvArrowAtStart),
                    2);
            else {
                char text[32];
                snprintf(text, sizeof text, "actor %d", i);
                add(new OrvLabel(director, text, a, OrvLeft, inkUps[i % 7]), 2);
            }
        }
        // A small picture painted once into a bitmap, shown by a few icons.
        OrvBitmap* picture = new OrvBitmap(stage, 24, 24, stage->depth);
        picture->prepare(nullptr);
        picture->rectangle(palette.color("white"), Orv2dRect(0, 0, 24, 24), 1);
        picture->arc(inkUps[0], Orv2dRect(2, 2, 20, 20), 0.0f, 360.0f, 1);
        picture->rectangle(inkUps[2], Orv2dRect(8, 8, 8, 8), 1);
        picture->rectangle(inkUps[2], Orv2dRect(0, 0, 24, 24), 0);
        picture->end();
        for (int i = 0; i < 6; i++)
            add(new OrvIcon(director, picture, Orv2dPoint(60 + i * 120, 330 + (i & 1) * 40)), 2);
        // Layer 3: the animated actors, on top of everything.
        ball = new OrvFilledEllipse(director, Orv2dRect(100, 100, 46, 46), palette.color("red"));
        slider =
            new OrvFilledRectangle(director, Orv2dRect(20, 540, 120, 30), palette.color("gold"));
        hand = new OrvArrowLine(director, Orv2dPoint(400, 300), Orv2dPoint(520, 300),
                                palette.color("black", 4));
        clock =
            new OrvLabel(director, "tick 0", Orv2dPoint(20, 30), OrvLeft, palette.color("black"));
        Orv2dPoint starPoints[10];
        for (int k = 0; k < 10; k++) {
            double angle = k * 3.14159265358979 / 5.0, radius = (k & 1) ? 22.0 : 55.0;
            starPoints[k] = Orv2dPoint(650 + (long)lround(radius * sin(angle)),
                                       140 - (long)lround(radius * cos(angle)));
        }
        star = new Orv2dPolygon(director, 10, starPoints, 1, palette.color("dark orange"));
        add(ball, 3);
        add(slider, 3);
        add(hand, 3);
        add(clock, 3);
        add(star, 3);
        stage->flushDrawing(1);

        // A transformer: the whole picture a little smaller, about the centre.
        stage->zoom(Orv2dPoint(kWidth / 2, kHeight / 2), 0.92f, 0.92f);
    }

    // One animation step: each mover changes through its own setters, each
    // a nest of its own, so only what they cover is repainted.
    void step() {
        ticks++;
        Orv2dRect b = ball->bbox2d(nullptr);
        if (b.x + ballDx < 0 || b.x + (long)b.w + ballDx > (long)kWidth) ballDx = -ballDx;
        if (b.y + ballDy < 0 || b.y + (long)b.h + ballDy > (long)kHeight) ballDy = -ballDy;
        ball->setRect(Orv2dRect(b.x + ballDx, b.y + ballDy, b.w, b.h));

        Orv2dRect s = slider->rect;
        s.x = 20 + (ticks * 9) % 640;
        slider->setRect(s);

        double angle = ticks * 0.15;
        hand->setPoints(Orv2dPoint(400, 300), Orv2dPoint(400 + (long)lround(120 * cos(angle)),
                                                         300 + (long)lround(120 * sin(angle))));

        Orv2dMatrix turn(Orv2dPoint(650, 140), 6.0f);
        star->beginDrawing(1);
        star->apply2d(turn);
        star->flushDrawing(1);

        char text[32];
        snprintf(text, sizeof text, "tick %d", ticks);
        clock->setText(text);
    }
};

// Drives the animation; with a directory, also the screenshots and the end.
struct Animator : OrvTimer {
    Demo* demo;
    std::string shots;
    Animator(OrvDirector* d, Demo* animated, const char* dir)
        : OrvTimer(d, 0, 40), demo(animated), shots(dir ? dir : "") {
        oneShot = 0;
    }
    std::string shot(const char* name) { return shots + "/stage_demo-" + name + ".ppm"; }
    void activate() override {
        demo->step();
        if (shots.empty()) return;
        OrvStage* stage = demo->stage;
        switch (demo->ticks) {
            case 1:
                writeShot(stage, shot("1-start"));
                break;
            case 30:
                writeShot(stage, shot("2-animated"));
                break;
            case 31:
                // Closer, about the ball: the transformer maps drawing and hits alike.
                stage->zoom(Orv2dPoint(400, 300), 1.8f, 1.8f);
                break;
            case 40:
                writeShot(stage, shot("3-zoomed"));
                break;
            case 41: {
                stage->toStage(nullptr);
                OrvStageLayer* figures = stage->layer(1);
                if (figures) figures->visible = 0;
                stage->drawAll(nullptr, 1);
                break;
            }
            case 45: {
                writeShot(stage, shot("4-layers"));
                printf("stage_demo: %u actors in %u layers, %d ticks\n", demo->actors,
                       stage->layers.length(), demo->ticks);
                fflush(stdout);
                delete demo->stage;
                delete director;
                OrvExit(0);
            }
        }
    }
};

static void onQuit(OrvView*, void*) {
    OrvExit(0);
}

int main(int argc, char** argv) {
    const char* shots = nullptr;
    if (argc >= 2 && strcmp(argv[1], "--shots") == 0) shots = argc >= 3 ? argv[2] : ".";
    OrvDirector* director = new OrvDirector("stage_demo", nullptr, argc, argv);
    Demo* demo = new Demo(director);
    demo->stage->onQuit(onQuit, nullptr);
    printf("stage_demo: %u actors; close the window to quit\n", demo->actors);
    fflush(stdout);
    (new Animator(director, demo, shots))->run();
    OrvPlay();
}
