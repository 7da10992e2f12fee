// The director's named resources and make-ups: start-up defaults, factories, shutdown.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "orv/bitmapfile.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/image.h"
#include "orv/light.h"
#include "orv/makeup.h"
#include "orv/resource.h"

// Xlib after the library headers: its macros (Above, Below, None) would break them.
#include <X11/Xlib.h>

// ---------------------------------------------------------------- slots and start-up

void OrvDirector::initResourceSlots() {
    colors = new OrvStringHashTable(1000);
    images = new OrvList;
    fonts = new OrvStringHashTable(1000);
    vfonts = new OrvStringHashTable(1000);
    makeUps = new OrvMakeUpHashTable(2000);
    textures = nullptr;
    bitmaps = new OrvList;
    cursors = new OrvList;
    patterns = new OrvList;
    lineStyles = new OrvList;
    environments = new OrvList;
    defaultMakeUp = wideMakeUp = balloonMakeUp = nullptr;
    defaultFont = nullptr;
    defaultVectorialFont = nullptr;
    defaultBackground = defaultForeground = nullptr;
    solidPattern = nullptr;
    defaultCursor = nullptr;
    solidLineStyle = nullptr;
    screenBufferBitmap = nullptr;
    tmpMakeUpObject = nullptr;
    tmpTextureObject = nullptr;
    defaultEnvironment = nullptr;
    defaultImageObject = nullptr;
    makeUpLookups = makeUpCreations = 0;
}

void OrvDirector::initResources() {
    initFonts();
    initColors();
    initPatterns();
    initLineStyles();
    initCursors();
    defaultMakeUp = makeUp(nullptr, nullptr, nullptr, 0, nullptr, nullptr, nullptr, OrvFillSolid,
                           OrvArcPieSlice, OrvEvenOddRule, nullptr, 0, 1, OrvCullBack,
                           OrvFaceFilled, OrvFaceFilled, 1, 2, nullptr);
    OrvCount(defaultMakeUp);
    defaultEnvironment = environment(defaultAmbientColor(), 1.0f, 1.0f, 0, 0, 0, 0);
    OrvCount(defaultEnvironment);
    tmpMakeUpObject = new OrvTotalMakeUp(defaultMakeUp);
    wideMakeUp = makeUpLineWidth(defaultMakeUp, 4);
    OrvCount(wideMakeUp);
    wideMakeUp->internal(rootCanvas);
    OrvMakeUp* balloon = makeUp(nullptr, nullptr, nullptr, 0, nullptr, nullptr, nullptr,
                                OrvFillSolid, OrvArcPieSlice, OrvEvenOddRule, nullptr, 0, 1,
                                OrvCullBack, OrvFaceFilled, OrvFaceFilled, 1, 2, nullptr);
    balloon = makeUpBackground(balloon, color("wheat"));
    balloonMakeUp = makeUpFont(balloon, font("%helvetica-10-"));
    OrvCount(balloonMakeUp);
}

void OrvDirector::initFonts() {
    const char* candidates[3] = {resource("font", nullptr), "%courier-12-", "fixed"};
    OrvRasterFont* f = nullptr;
    for (const char* n : candidates) {
        if (n && (f = font(n))) break;
    }
    if (!f) {
        // "found" for "font": the text is kept as it is for behaviour compatibility.
        OrvError("## Can't find a default found !.\n");
        fflush(stdout);
        OrvExit(0);
    }
    OrvCount(f);
    fonts->remove(f->name);
    // The short name goes; the X name stays reachable as the system name.
    if (!f->systemName) {
        f->systemName = new char[strlen(f->name) + 1];
        strcpy(f->systemName, f->name);
    }
    f->setName("default");
    fonts->put(f->name, f);
    defaultFont = f;
}

void OrvDirector::initColors() {
    const char* background = resource("orvBackground", nullptr);
    const char* foreground = resource("orvForeground", nullptr);
    if (!background) background = "grey";
    if (!foreground) foreground = "black";
    if (strcmp(background, foreground) == 0) {
        background = "gray";
        foreground = "black";
    }
    defaultBackground = color(background);
    if (!defaultBackground) defaultBackground = color("white");
    OrvCount(defaultBackground);
    defaultForeground = color(foreground);
    if (!defaultForeground) defaultForeground = color("black");
    OrvCount(defaultForeground);
    // Too few colours can give both one pixel.
    if (defaultBackground && defaultForeground &&
        defaultBackground->index(rootCanvas) == defaultForeground->index(rootCanvas)) {
        OrvColor* b = defaultBackground;
        OrvColor* f = defaultForeground;
        defaultBackground = defaultForeground = nullptr;
        OrvRelease(b);
        OrvRelease(f);
        defaultBackground = color("white");
        OrvCount(defaultBackground);
        defaultForeground = color("black");
        OrvCount(defaultForeground);
    }
}

// Thirty-two bytes of sixteen 16-bit rows, most significant bit leftmost.
static const unsigned char* rows16(const unsigned short r[16]) {
    static unsigned char block[32];
    for (int i = 0; i < 16; i++) {
        block[2 * i] = (unsigned char)(r[i] >> 8);
        block[2 * i + 1] = (unsigned char)(r[i] & 0xFF);
    }
    return block;
}

// Four rows repeated four times, through the shared tile maker.
static const unsigned char* rows4(unsigned short a, unsigned short b, unsigned short c,
                                  unsigned short d) {
    return (const unsigned char*)MakeData(a, b, c, d);
}

// A 128-byte polygon stipple of two 32-bit rows repeated.
static const unsigned char* stipple(unsigned a, unsigned b) {
    static unsigned char block[128];
    for (int i = 0; i < 32; i++) {
        unsigned v = (i & 1) ? b : a;
        block[4 * i] = (unsigned char)(v >> 24);
        block[4 * i + 1] = (unsigned char)(v >> 16);
        block[4 * i + 2] = (unsigned char)(v >> 8);
        block[4 * i + 3] = (unsigned char)v;
    }
    return block;
}

void OrvDirector::initPatterns() {
    unsigned short r[16];
    solidPattern = pattern("solid", 16, 1, rows4(0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF));
    pattern("clear", 16, 1, rows4(0, 0, 0, 0));
    for (int i = 0; i < 16; i++)
        r[i] = (i == 0 || i == 8) ? 0x7F7F : (i == 4 || i == 12) ? 0xF7F7 : 0xFFFF;
    pattern("dark4", 16, 1, rows16(r));
    for (int i = 0; i < 16; i++) r[i] = (unsigned short)~r[i];
    pattern("light4", 16, 1, rows16(r));
    pattern("dark3", 16, 1, rows4(0x7777, 0xFFFF, 0xDDDD, 0xFFFF));
    pattern("light3", 16, 1, rows4(0x8888, 0, 0x2222, 0));
    pattern("dark2", 16, 1, rows4(0xAAAA, 0xFFFF, 0x5555, 0xFFFF));
    pattern("light2", 16, 1, rows4(0x5555, 0, 0xAAAA, 0));
    static const unsigned short dark1[16] = {0xFAAA, 0x57D5, 0xAABE, 0xF555, 0xAFAA, 0x557D,
                                             0xEAAB, 0x5F55, 0xAAFA, 0xD557, 0xBEAA, 0x55F5,
                                             0xAAAF, 0x7D55, 0xABEA, 0x555F};
    pattern("dark1", 16, 1, rows16(dark1));
    for (int i = 0; i < 16; i++) r[i] = (unsigned short)~dark1[i];
    pattern("light1", 16, 1, rows16(r));
    pattern("gray", 16, 1, rows4(0xAAAA, 0x5555, 0xAAAA, 0x5555));
    pattern("diaglr", 16, 1, rows4(0x8888, 0x4444, 0x2222, 0x1111));
    pattern("diagrl", 16, 1, rows4(0x1111, 0x2222, 0x4444, 0x8888));
    pattern("horiz", 16, 1, rows4(0xFFFF, 0, 0xFFFF, 0));
    pattern("vert", 16, 1, rows4(0x5555, 0x5555, 0x5555, 0x5555));
    pattern("cross", 16, 1, rows4(0xFFFF, 0x8888, 0x8888, 0x8888));
    pattern("3d_grey1", 8, 16, stipple(0xAAAAAAAA, 0x55555555));
    pattern("3d_grey2", 8, 16, stipple(0x33333333, 0xCCCCCCCC));
    pattern("3d_light1", 8, 16, stipple(0x88888888, 0x22222222));
    pattern("3d_light2", 8, 16, stipple(0x80808080, 0x08080808));
}

void OrvDirector::initLineStyles() {
    struct Style {
        const char* name;
        unsigned short count;
        unsigned char dashes[5];
        unsigned short pattern;
    };
    static const Style styles[] = {
        {"solid", 2, {4, 4}, 0xFFFF},
        {"dot", 2, {4, 4}, 0xAAAA},
        {"dash", 2, {8, 8}, 0xCCCC},
        {"dashdot", 4, {8, 4, 4, 4}, 0xACAC},
        {"dashdoubledot", 5, {8, 4, 4, 4, 4}, 0xACCA},
        {"alternate", 2, {1, 1}, 0x9999},
        {"doubledot", 4, {4, 4, 4, 12}, 0x5555},
        {"longdash", 2, {12, 4}, 0x7777},
    };
    for (const Style& s : styles) {
        OrvLineStyle* l = new OrvLineStyle(this, s.count, s.dashes, 0, s.pattern);
        l->setName(s.name);
        OrvCount(l);
        lineStyles->append(l);
        if (!solidLineStyle) solidLineStyle = l;
    }
}

void OrvDirector::initCursors() {
    defaultCursor = cursor("default");
    OrvCount(defaultCursor);
    OrvCursor* c = cursor("clock");
    if (c) {
        c->setName("wait");
        OrvCount(c);
    }
    OrvCount(cursor("cross"));
    OrvCount(cursor("sizing"));
}

// ---------------------------------------------------------------- shutdown

// Whether a table still holds the object, found by pointer alone (the key may be gone).
static int tableHolds(OrvStringHashTable* t, void* value) {
    for (unsigned i = 0; i < t->size; i++)
        if (t->buckets[i])
            for (OrvAListItem* it = t->buckets[i]->first; it; it = it->next)
                if (it->value == value) return 1;
    return 0;
}

static void collect(OrvStringHashTable* t, OrvList& out) {
    for (unsigned i = 0; i < t->size; i++)
        if (t->buckets[i])
            for (OrvAListItem* it = t->buckets[i]->first; it; it = it->next)
                if (!out.find(it->value)) out.append(it->value);
}

// Deletes what is in a list, through a copy: deleting one may take others with it.
template <class T>
static void deleteAll(OrvList* list) {
    OrvList copy;
    for (OrvLink* l = list->first; l; l = l->next) copy.append(l->value);
    for (OrvLink* l = copy.first; l; l = l->next)
        if (list->find(l->value)) {
            T* t = (T*)l->value;
            list->remove(t);
            delete t;
        }
}

void OrvDirector::closeResources() {
    if (!closed) return;
    closeRolesAndViews();
    // The scratch make-up holds no counts.
    delete tmpMakeUpObject;
    tmpMakeUpObject = nullptr;
    closeTimers();
    if (makeUps) {
        OrvList copy;
        for (unsigned long i = 0; i < makeUps->size; i++)
            if (makeUps->buckets[i])
                for (OrvLink* l = makeUps->buckets[i]->first; l; l = l->next) copy.append(l->value);
        for (OrvLink* l = copy.first; l; l = l->next) {
            int live = 0;
            for (unsigned long i = 0; i < makeUps->size && !live; i++)
                if (makeUps->buckets[i] && makeUps->buckets[i]->find(l->value)) live = 1;
            if (live) delete (OrvMakeUp*)l->value;
        }
        delete makeUps;
        makeUps = nullptr;
    }
    defaultMakeUp = wideMakeUp = balloonMakeUp = nullptr;
    if (fonts) {
        OrvList copy;
        collect(fonts, copy);
        for (OrvLink* l = copy.first; l; l = l->next)
            if (tableHolds(fonts, l->value)) delete (OrvRasterFont*)l->value;
        delete fonts;
        fonts = nullptr;
    }
    defaultFont = nullptr;
    // Vectorial fonts are kept and released by their own family.
    delete vfonts;
    vfonts = nullptr;
    if (lineStyles) {
        deleteAll<OrvLineStyle>(lineStyles);
        delete lineStyles;
        lineStyles = nullptr;
    }
    solidLineStyle = nullptr;
    if (patterns) {
        deleteAll<OrvPattern>(patterns);
        delete patterns;
        patterns = nullptr;
    }
    solidPattern = nullptr;
    if (cursors) {
        deleteAll<OrvCursor>(cursors);
        delete cursors;
        cursors = nullptr;
    }
    defaultCursor = nullptr;
    if (bitmaps) {
        OrvList copy;
        for (OrvLink* l = bitmaps->first; l; l = l->next) copy.append(l->value);
        for (OrvLink* l = copy.first; l; l = l->next)
            if (bitmaps->find(l->value)) delete (OrvBitmap*)l->value;
        delete bitmaps;
        bitmaps = nullptr;
    }
    if (display) {
        for (OrvAListItem* i = depth8Contexts.first; i; i = i->next)
            if (i->value) XFreeGC((Display*)display, (GC)i->value);
    }
    while (depth8Contexts.first) depth8Contexts.remove(depth8Contexts.first->key);
    if (colors) {
        OrvList copy;
        collect(colors, copy);
        for (OrvLink* l = copy.first; l; l = l->next)
            if (tableHolds(colors, l->value)) delete (OrvColor*)l->value;
        delete colors;
        colors = nullptr;
    }
    defaultBackground = defaultForeground = nullptr;
    if (images) {
        deleteAll<OrvImage>(images);
        delete images;
        images = nullptr;
    }
    defaultImageObject = nullptr;
    // Last: scenes, which hold environments, went with the views.
    if (environments) {
        deleteAll<OrvEnvironment>(environments);
        delete environments;
        environments = nullptr;
    }
    defaultEnvironment = nullptr;
}

// ---------------------------------------------------------------- patterns, line styles, cursors

OrvPattern* OrvDirector::pattern(const char* n) const {
    if (!n || !patterns) return nullptr;
    for (OrvLink* l = patterns->first; l; l = l->next) {
        OrvPattern* p = (OrvPattern*)l->value;
        if (p->name && strcmp(p->name, n) == 0) return p;
    }
    return nullptr;
}

OrvPattern* OrvDirector::pattern(const char* n, unsigned long width, unsigned long height,
                                 const unsigned char* data) {
    OrvPattern* p = new OrvPattern(rootCanvas, width, height, data);
    p->setName(n);
    p->count = 1;
    patterns->insert(p);
    return p;
}

OrvLineStyle* OrvDirector::lineStyle(unsigned short count, const unsigned char* dashes,
                                     unsigned short offset, unsigned short pattern) {
    return new OrvLineStyle(this, count, dashes, offset, pattern);
}

OrvLineStyle* OrvDirector::lineStyle(const char* n) const {
    if (n && lineStyles)
        for (OrvLink* l = lineStyles->first; l; l = l->next) {
            OrvLineStyle* s = (OrvLineStyle*)l->value;
            if (s->name && strcmp(s->name, n) == 0) return s;
        }
    return solidLineStyle;
}

OrvCursor* OrvDirector::cursor(const char* n) {
    if (!n) return nullptr;
    for (OrvLink* l = cursors->first; l; l = l->next) {
        OrvCursor* c = (OrvCursor*)l->value;
        if (c->name && strcmp(c->name, n) == 0) return c;
    }
    OrvCursor* c = new OrvCursor(this, n);
    cursors->insert(c);
    if (!c->internal(rootCanvas)) return nullptr;
    return c;
}

OrvCursor* OrvDirector::positionToCursor(OrvPosition position) {
    switch (position) {
        case 1:
            return cursor("left_side");
        case 2:
            return cursor("right_side");
        case 4:
            return cursor("top_side");
        case 8:
            return cursor("bottom_side");
        case 5:
            return cursor("top_left_corner");
        case 9:
            return cursor("bottom_left_corner");
        case 6:
            return cursor("top_right_corner");
        case 10:
            return cursor("bottom_right_corner");
        case 1024:
            return cursor("cross");
        case 2048:
            return cursor("dotbox");
        default:
            return defaultCursor;
    }
}

// ---------------------------------------------------------------- make-ups

OrvMakeUp* OrvDirector::makeUp(OrvColor* background, OrvColor* foreground, OrvLineStyle* ls,
                               unsigned short lineWidth, OrvPattern* p, OrvRasterFont* f,
                               OrvBitmap* colorPattern, OrvFillStyle fillStyle, OrvArcMode arcMode,
                               OrvFillRule fillRule, OrvVectorialFont* vfont,
                               unsigned long distinguish, unsigned long smooth, OrvCullingMode cull,
                               OrvFaceStyle frontStyle, OrvFaceStyle backStyle,
                               OrvMarkerType markerType, unsigned short markerScale,
                               OrvTexture* texture) {
    OrvMakeUpValues v;
    v.background = background ? background : defaultBackground;
    v.foreground = foreground ? foreground : defaultForeground;
    v.pattern = p;
    v.colorPattern = colorPattern;
    v.font = f ? f : defaultFont;
    v.lineStyle = ls ? ls : solidLineStyle;
    v.lineWidth = lineWidth;
    v.fillStyle = fillStyle;
    v.arcMode = arcMode;
    v.fillRule = fillRule;
    v.vfont = vfont ? vfont : defaultVectorialFont;
    v.distinguish = distinguish;
    v.smooth = smooth;
    v.cull = cull;
    v.frontStyle = frontStyle;
    v.backStyle = backStyle;
    v.markerType = markerType;
    v.markerScale = markerScale;
    v.texture = texture;

    makeUpLookups++;
    OrvMakeUp* m = makeUps->get(v);
    if (m) return m;
    makeUpCreations++;
    // The smallest class that holds the attributes.
    int has3d = v.vfont != defaultVectorialFont || v.distinguish != 0 || v.smooth != 1 ||
                v.cull != OrvCullBack || v.frontStyle != OrvFaceFilled ||
                v.backStyle != OrvFaceFilled || v.markerType != 1 || v.markerScale != 2 ||
                v.texture != nullptr;
    int has2d = v.font != defaultFont || v.colorPattern || v.fillStyle || v.arcMode || v.fillRule;
    if (has2d && has3d)
        m = new OrvTotalMakeUp(this, v);
    else if (has3d)
        m = new Orv3dMakeUp(this, v);
    else
        m = new Orv2dMakeUp(this, v);
    addMakeUp(m);
    return m;
}

void OrvDirector::addMakeUp(OrvMakeUp* m) {
    if (m && makeUps) makeUps->put(m);
}

void OrvDirector::remove(OrvMakeUp* m) {
    if (m && makeUps) makeUps->remove(m);
}

OrvMakeUp* OrvDirector::copyMakeUp(const OrvMakeUp* base) {
    OrvMakeUpValues v;
    (base ? base : defaultMakeUp)->values(v);
    tmpMakeUpObject->assign(v);
    return tmpMakeUpObject;
}

OrvMakeUp* OrvDirector::tmpMakeUp() {
    OrvTotalMakeUp* t = tmpMakeUpObject;
    return makeUp(t->background_, t->foreground_, t->lineStyle_, t->lineWidth_, t->pattern_,
                  t->font_, t->colorPattern_, t->fillStyle_, t->arcMode_, t->fillRule_, t->vfont_,
                  t->distinguish_, t->smooth_, t->cull_, t->frontStyle_, t->backStyle_,
                  t->markerType_, t->markerScale_, t->texture_);
}

OrvMakeUp* OrvDirector::makeUpBackground(const OrvMakeUp* base, OrvColor* c) {
    copyMakeUp(base);
    tmpMakeUpObject->background_ = c;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpForeground(const OrvMakeUp* base, OrvColor* c) {
    copyMakeUp(base);
    tmpMakeUpObject->foreground_ = c;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpPattern(const OrvMakeUp* base, OrvPattern* p) {
    copyMakeUp(base);
    tmpMakeUpObject->pattern_ = p;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpLineStyle(const OrvMakeUp* base, OrvLineStyle* ls) {
    copyMakeUp(base);
    tmpMakeUpObject->lineStyle_ = ls;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpLineWidth(const OrvMakeUp* base, unsigned short width) {
    copyMakeUp(base);
    tmpMakeUpObject->lineWidth_ = width;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpFont(const OrvMakeUp* base, OrvRasterFont* f) {
    copyMakeUp(base);
    tmpMakeUpObject->font_ = f;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpColorPattern(const OrvMakeUp* base, OrvBitmap* colorPattern) {
    copyMakeUp(base);
    tmpMakeUpObject->colorPattern_ = colorPattern;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpFillStyle(const OrvMakeUp* base, OrvFillStyle fillStyle) {
    copyMakeUp(base);
    tmpMakeUpObject->fillStyle_ = fillStyle;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpArcMode(const OrvMakeUp* base, OrvArcMode arcMode) {
    copyMakeUp(base);
    tmpMakeUpObject->arcMode_ = arcMode;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpFillRule(const OrvMakeUp* base, OrvFillRule fillRule) {
    copyMakeUp(base);
    tmpMakeUpObject->fillRule_ = fillRule;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpSmooth(const OrvMakeUp* base, unsigned long smooth) {
    copyMakeUp(base);
    tmpMakeUpObject->smooth_ = smooth;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpDistinguish(const OrvMakeUp* base, unsigned long distinguish) {
    copyMakeUp(base);
    tmpMakeUpObject->distinguish_ = distinguish;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpCull(const OrvMakeUp* base, OrvCullingMode cull) {
    copyMakeUp(base);
    tmpMakeUpObject->cull_ = cull;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpFrontStyle(const OrvMakeUp* base, OrvFaceStyle style) {
    copyMakeUp(base);
    tmpMakeUpObject->frontStyle_ = style;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpBackStyle(const OrvMakeUp* base, OrvFaceStyle style) {
    copyMakeUp(base);
    tmpMakeUpObject->backStyle_ = style;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpMarkerType(const OrvMakeUp* base, OrvMarkerType type) {
    copyMakeUp(base);
    tmpMakeUpObject->markerType_ = type;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpMarkerScale(const OrvMakeUp* base, unsigned short scale) {
    copyMakeUp(base);
    tmpMakeUpObject->markerScale_ = scale;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpVectorialFont(const OrvMakeUp* base, OrvVectorialFont* vfont) {
    copyMakeUp(base);
    tmpMakeUpObject->vfont_ = vfont;
    return tmpMakeUp();
}
OrvMakeUp* OrvDirector::makeUpTexture(const OrvMakeUp* base, OrvTexture* texture) {
    copyMakeUp(base);
    tmpMakeUpObject->texture_ = texture;
    return tmpMakeUp();
}

// A plain context of the given depth for the canvas, made once on a 1 by 1 pixmap.
static unsigned long depthContext(OrvDirector* d, OrvAList& list, const OrvCanvas* canvas,
                                  unsigned depth) {
    const OrvCanvas* key = canvas ? canvas->resourceCanvas() : d->rootCanvas;
    if (!key) return 0;
    if (list.find(key)) return (unsigned long)list.get(key);
    Display* dpy = (Display*)d->display;
    Drawable on = key->drawable ? key->drawable : DefaultRootWindow(dpy);
    Pixmap p = XCreatePixmap(dpy, on, 1, 1, depth);
    GC gc = XCreateGC(dpy, p, 0, nullptr);
    XFreePixmap(dpy, p);
    list.append(key, gc);
    return (unsigned long)gc;
}

unsigned long OrvDirector::defaultDepth1MakeUp(const OrvCanvas* canvas) {
    return depthContext(this, depth1Contexts, canvas, 1);
}

unsigned long OrvDirector::defaultDepth8MakeUp(const OrvCanvas* canvas) {
    return depthContext(this, depth8Contexts, canvas, 8);
}

OrvBitmap* OrvDirector::screenBuffer(unsigned long width, unsigned long height) {
    if (screenBufferBitmap && width <= screenBufferBitmap->width &&
        height <= screenBufferBitmap->height)
        return screenBufferBitmap;
    delete screenBufferBitmap;
    screenBufferBitmap = new OrvBitmap(rootCanvas, width, height, depth);
    return screenBufferBitmap;
}

// ---------------------------------------------------------------- bitmaps by name and from files

OrvBitmap* OrvDirector::bitmap(const char* n) const {
    if (!n || !bitmaps) return nullptr;
    for (OrvLink* l = bitmaps->first; l; l = l->next) {
        OrvBitmap* b = (OrvBitmap*)l->value;
        if (b->name && strcmp(b->name, n) == 0) return b;
    }
    return nullptr;
}

static void nameBitmap(OrvBitmap* b, const char* n) {
    free(b->name);
    b->name = (char*)malloc(strlen(n) + 1);
    strcpy(b->name, n);
}

OrvBitmap* OrvDirector::readAsciiBitmap(const OrvCanvas* canvas, const char* file) {
    const char* found = findInPath(file);
    if (!found) return nullptr;
    FILE* f = fopen(found, "r");
    if (!f) return nullptr;
    char line[256], word[256];
    int width = 0, height = 0;
    for (int i = 0; i < 2; i++) {
        int value = 0;
        if (!fgets(line, sizeof line, f) || sscanf(line, "#define %255s %d", word, &value) != 2) {
            fclose(f);
            return nullptr;
        }
        if (i == 0)
            width = value;
        else
            height = value;
    }
    if (width <= 0 || height <= 0) {
        fclose(f);
        return nullptr;
    }
    int c;
    while ((c = fgetc(f)) == ' ' || c == '\t' || c == '\n' || c == '\r') {}
    if (c != EOF) ungetc(c, f);
    if (!fgets(line, sizeof line, f)) {
        fclose(f);
        return nullptr;
    }
    unsigned rowBytes = ((unsigned)width + 7) >> 3;
    unsigned long size = (unsigned long)rowBytes * height;
    unsigned char* data = (unsigned char*)calloc(size, 1);
    for (unsigned long i = 0; i < size; i++) {
        if (fscanf(f, "%255s", word) != 1) break;
        data[i] = (unsigned char)strtol(word, nullptr, 16);
    }
    fclose(f);
    OrvBitmap* b = new OrvBitmap(canvas ? canvas : rootCanvas, width, height, 1);
    b->setBits(Orv2dRect(0, 0, width, height), data, size, 8, 1);
    free(data);
    nameBitmap(b, file);
    return b;
}

OrvBitmap* OrvDirector::readBitmap(const OrvCanvas* canvas, const char* file) {
    OrvBitmap* b = bitmap(file);
    if (b) return b;
    if (file) {
        // Each format in turn; a reader that cannot read the file says so and gives null.
        OrvCanvas* on = const_cast<OrvCanvas*>(canvas ? canvas : rootCanvas);
        if ((b = readAsciiBitmap(canvas, file))) return b;
        if ((b = OrvReadDIBBitmap(on, file))) return b;
        if ((b = OrvReadGIFBitmap(on, file))) return b;
        if ((b = OrvReadXPM2Bitmap(on, file))) return b;
    }
    if ((b = bitmap("OrvUnknownBitmap"))) return b;
    // The picture that stands for a bitmap that could not be read.
    static const unsigned char unknown[60] = {
        0x00, 0x00, 0x00, 0xFF, 0x3F, 0x00, 0x01, 0x60, 0x00, 0xE1, 0xA3, 0x00, 0x11, 0x26, 0x01,
        0xC9, 0x2C, 0x02, 0x69, 0xE9, 0x07, 0x31, 0xC9, 0x0F, 0x81, 0x0C, 0x0C, 0x41, 0x06, 0x0C,
        0x21, 0x03, 0x0C, 0xA1, 0x01, 0x0C, 0xC1, 0x01, 0x0C, 0xC1, 0x01, 0x0C, 0x21, 0x03, 0x0C,
        0xA1, 0x03, 0x0C, 0xC1, 0x01, 0x0C, 0x01, 0x00, 0x0C, 0xFF, 0xFF, 0x0F, 0xFE, 0xFF, 0x0F};
    b = new OrvBitmap(canvas ? canvas : rootCanvas, 20, 20, 1);
    b->setBits(Orv2dRect(0, 0, 20, 20), unknown, sizeof unknown, 8, 1);
    nameBitmap(b, "OrvUnknownBitmap");
    return b;
}
