// A sheet of everything a canvas draws: lines in every width and style, rectangles, arcs in
// both modes, polygons under both fill rules, Bézier curves, texts placed and underlined,
// relief figures, transformed copies, draw modes and every pattern of start-up.
//
//   drawing_sheet                  interactive: close the window to quit
//   drawing_sheet --shot OUT.ppm   draws once, saves the window's pixels as PPM and exits
#include <cmath>
#include <unistd.h>
#include <cstdio>
#include <cstring>

#include <orv/orvis.h>

static const int W = 760, H = 560;

struct Sheet {
    OrvDirector* d;
    OrvView* view;

    OrvMakeUp* ink(const char* fg, const char* bg = "white") {
        return d->makeUpBackground(d->makeUpForeground(d->defaultMakeUp, d->color(fg)),
                                   d->color(bg));
    }
    OrvMakeUp* label() { return d->makeUpFont(ink("black"), d->font("%helvetica-10-")); }
    void caption(int x, int y, const char* text) { view->string(label(), Orv2dPoint(x, y), text); }

    void draw() {
        OrvCanvas* c = view;
        c->setClip(nullptr);
        c->rectangle(ink("white"), Orv2dRect(0, 0, W, H), 1);
        c->string(d->makeUpFont(ink("navy"), d->font("%helvetica-18-B")), Orv2dPoint(16, 30),
                  "Orvis drawing sheet");

        // Lines: widths, then the named styles.
        caption(16, 56, "line widths 0 1 2 4 8");
        unsigned short widths[5] = {0, 1, 2, 4, 8};
        for (int i = 0; i < 5; i++)
            c->line(d->makeUpLineWidth(ink("black"), widths[i]), Orv2dPoint(16, 70 + 14 * i),
                    Orv2dPoint(196, 70 + 14 * i));
        caption(16, 150, "line styles");
        const char* styles[8] = {"solid",         "dot",       "dash",      "dashdot",
                                 "dashdoubledot", "alternate", "doubledot", "longdash"};
        for (int i = 0; i < 8; i++) {
            OrvMakeUp* m = d->makeUpLineWidth(
                d->makeUpLineStyle(ink("darkgreen"), d->lineStyle(styles[i])), 2);
            c->line(m, Orv2dPoint(16, 164 + 12 * i), Orv2dPoint(120, 164 + 12 * i));
            c->string(label(), Orv2dPoint(128, 168 + 12 * i), styles[i]);
        }

        // Rectangles and arcs.
        caption(230, 56, "rectangles");
        c->rectangle(ink("blue"), Orv2dRect(230, 66, 60, 40), 0);
        c->rectangle(ink("blue"), Orv2dRect(300, 66, 60, 40), 1);
        c->rectangle(d->makeUpLineWidth(ink("red"), 3), Orv2dRect(370, 66, 60, 40), 0);
        caption(230, 126, "arcs: outline, pie, chord, 90 to 300");
        c->arc(d->makeUpLineWidth(ink("purple"), 2), Orv2dRect(230, 136, 60, 60), 0, 360, 0);
        c->arc(ink("orange"), Orv2dRect(300, 136, 60, 60), 30, 300, 1);
        c->arc(d->makeUpArcMode(ink("orange"), OrvArcChord), Orv2dRect(370, 136, 60, 60), 30, 300,
               1);
        c->arc(d->makeUpLineWidth(ink("black"), 2), Orv2dRect(440, 136, 60, 60), 90, 300, 0);

        // Polygons under both fill rules, and a polyline.
        caption(460, 56, "even-odd and winding");
        Orv2dPoint star[5];
        for (int i = 0; i < 5; i++) {
            double a = (-90 + 144 * i) * M_PI / 180;
            star[i] = Orv2dPoint(500 + (int)lround(34 * cos(a)), 92 + (int)lround(34 * sin(a)));
        }
        c->polyLine(ink("teal"), 5, star, 1);
        Orv2dMatrix right(Orv2dPoint(80, 0));
        c->polyLine(d->makeUpFillRule(ink("teal"), OrvWindingRule), 5, star, 1, &right);
        Orv2dPoint zig[6] = {Orv2dPoint(640, 66),  Orv2dPoint(660, 116), Orv2dPoint(680, 66),
                             Orv2dPoint(700, 116), Orv2dPoint(720, 66),  Orv2dPoint(740, 116)};
        c->polyLine(d->makeUpLineWidth(ink("brown"), 2), 6, zig, 0);

        // Bézier curves, open and filled.
        caption(530, 150, "Bezier open and filled");
        Orv2dPoint controls[7] = {Orv2dPoint(530, 230), Orv2dPoint(530, 160), Orv2dPoint(600, 160),
                                  Orv2dPoint(600, 200), Orv2dPoint(600, 240), Orv2dPoint(660, 240),
                                  Orv2dPoint(660, 170)};
        c->bezier(d->makeUpLineWidth(ink("magenta"), 2), 7, controls, 0);
        Orv2dMatrix over(Orv2dPoint(80, 10));
        Orv2dPoint blob[4] = {Orv2dPoint(600, 170), Orv2dPoint(640, 150), Orv2dPoint(660, 220),
                              Orv2dPoint(610, 210)};
        c->bezier(ink("gold"), 4, blob, 1, &over);

        // Texts.
        caption(16, 280, "strings: left, centre, right of the red mark; mnemonic; clipped");
        OrvMakeUp* text = ink("black");
        for (int i = 0; i < 3; i++) {
            int y = 300 + 18 * i;
            c->line(ink("red"), Orv2dPoint(120, y - 12), Orv2dPoint(120, y + 3));
            OrvPosition where[3] = {OrvLeft, OrvCenter, OrvRight};
            c->string(text, Orv2dPoint(120, y), "Courier text", 0, where[i]);
        }
        c->string(d->makeUpFont(text, d->font("%times-14-BI")), Orv2dPoint(230, 300),
                  "Times bold italic");
        c->string(text, Orv2dPoint(230, 324), "Underlined File", 0, OrvLeft, 12);
        c->rectangle(ink("lightgrey"), Orv2dRect(230, 334, 90, 20), 1);
        c->clipString(text, Orv2dRect(230, 334, 90, 20), "clipped to its box", 0, OrvLeft);
        c->rectangle(ink("lightgrey"), Orv2dRect(358, 290, 84, 64), 1);
        c->clipString(label(), Orv2dRect(358, 290, 84, 64), "three\ncentred\nlines", 0, OrvCenter);

        // Relief figures.
        caption(450, 280, "relief");
        OrvMakeUp* face = ink("grey");
        c->reliefRectangle(ink("black"), face, ink("white"), ink("dimgrey"),
                           Orv2dRect(450, 290, 90, 40), 4, 1);
        c->reliefRectangle(ink("black"), face, ink("dimgrey"), ink("white"),
                           Orv2dRect(550, 290, 90, 40), 4, 1);
        c->reliefDiamond(ink("black"), face, ink("white"), ink("dimgrey"),
                         Orv2dRect(650, 282, 60, 60), 5, 1);

        // Transformed copies: a text scaled, a picture turned.
        caption(16, 384, "text by matrix, turned copy, xor");
        Orv2dMatrix big(2.0f, 3.0f);
        big.setValues(16, 392);
        c->string(ink("darkred"), big, "Big", 0, nullptr);
        OrvBitmap* pic = new OrvBitmap(c, 40, 24, d->depth);
        pic->setClip(nullptr);
        pic->rectangle(ink("yellow"), Orv2dRect(0, 0, 40, 24), 1);
        pic->rectangle(ink("blue"), Orv2dRect(4, 4, 14, 16), 1);
        pic->arc(ink("red"), Orv2dRect(20, 4, 16, 16), 0, 360, 1);
        c->setClip(nullptr);
        c->bitblit(ink("black"), pic, Orv2dRect(0, 0, 40, 24), Orv2dPoint(110, 400));
        Orv2dMatrix turn(Orv2dPoint(0, 0), 30);
        turn.setValues(turn.a * 1.5f, turn.b * 1.5f, turn.c * 1.5f, turn.d * 1.5f, 190, 392);
        c->bitblit(ink("black"), turn, pic, 0, nullptr);
        delete pic;
        // Exclusive or: the second rectangle crosses the first.
        c->rectangle(ink("blue"), Orv2dRect(290, 400, 50, 40), 1);
        OrvMakeUp* x = ink("red", "white");
        x->setMode(OrvXorMode);
        c->rectangle(x, Orv2dRect(315, 420, 50, 40), 1);
        x->setMode(OrvCopyMode);

        // Every pattern of start-up, opaque in navy on light blue.
        caption(390, 384, "patterns");
        const char* patterns[20] = {"solid",  "clear",    "dark4",    "light4",    "dark3",
                                    "light3", "dark2",    "light2",   "dark1",     "light1",
                                    "gray",   "diaglr",   "diagrl",   "horiz",     "vert",
                                    "cross",  "3d_grey1", "3d_grey2", "3d_light1", "3d_light2"};
        OrvMakeUp* swatch = ink("navy", "lightblue");
        for (int i = 0; i < 20; i++) {
            int col = i % 5, row = i / 5;
            Orv2dRect r(390 + 74 * col, 392 + 40 * row, 64, 26);
            c->rectangle(d->makeUpPattern(swatch, d->pattern(patterns[i])), r, 1);
            c->rectangle(ink("black"), r, 0);
            c->string(label(), Orv2dPoint(r.x, r.y + 36), patterns[i]);
        }
        // A clip region: only its two rectangles receive the stripes.
        caption(16, 470, "clip region");
        Orv2dRegion region(Orv2dRect(16, 480, 60, 60));
        region.extendBy(Orv2dRect(100, 490, 60, 40));
        c->setClip(&region);
        for (int i = 0; i < 20; i++)
            c->line(d->makeUpLineWidth(ink("green"), 3), Orv2dPoint(10 + 10 * i, 470),
                    Orv2dPoint(10 * i - 60, 560));
        c->setClip(nullptr);
        c->rectangle(ink("black"), Orv2dRect(16, 480, 60, 60), 0);
        c->rectangle(ink("black"), Orv2dRect(100, 490, 60, 40), 0);
        d->flush();
    }
};

static void expose(OrvView*, const Orv2dRegion*, void* data) {
    ((Sheet*)data)->draw();
}
static void quit(OrvView*, void*) {
    OrvExit(0);
}

int main(int argc, char** argv) {
    const char* shot = nullptr;
    for (int i = 1; i < argc; i++)
        if (strcmp(argv[i], "--shot") == 0 && i + 1 < argc) shot = argv[++i];
    OrvDirector* d = new OrvDirector("drawing_sheet", nullptr, argc, argv);
    Sheet sheet = {d, nullptr};
    sheet.view = new OrvView(d, Orv2dRect(40, 40, W, H), "Orvis drawing sheet");
    sheet.view->onExpose(expose, &sheet);
    sheet.view->onQuit(quit, nullptr);
    if (!shot) OrvPlay();

    // Wait until the window shows, then draw once and save it.
    for (int i = 0; i < 300; i++) {
        if (sheet.view->isViewable()) break;
        OrvDispatchToDirector();
        usleep(10000);
    }
    for (int i = 0; i < 10; i++) {
        OrvDispatchToDirector();
        usleep(10000);
    }
    sheet.draw();
    bool ok = OrvSaveViewPPM(sheet.view, shot) == 1;
    printf("%s %s\n", ok ? "wrote" : "could not write", shot);
    delete sheet.view;
    delete d;
    return ok ? 0 : 1;
}
