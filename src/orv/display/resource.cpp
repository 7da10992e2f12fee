// The resource base and the small resources: colours, patterns, line styles, cursors.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/resource.h"

// Xlib after the library headers: its macros (Above, Below, None) would break them.
#include <X11/Xlib.h>
#include <X11/cursorfont.h>

static char* copyString(const char* s) {
    if (!s) return nullptr;
    size_t n = strlen(s) + 1;
    char* c = new char[n];
    memcpy(c, s, n);
    return c;
}

// ---------------------------------------------------------------- OrvResource

OrvResource::OrvResource(OrvDirector* d, const char* n)
    : director(d), count(0), name(copyString(n)) {}

void OrvResource::setName(const char* n) {
    char* old = name;
    name = copyString(n);
    delete[] old;
}

OrvResource::~OrvResource() {
    delete[] name;
}

const OrvCanvas* OrvResource::internalKey(const OrvCanvas* canvas) const {
    return canvas ? canvas->resourceCanvas() : nullptr;
}

int OrvResource::hasInternal(const OrvCanvas* key) const {
    return const_cast<OrvAList&>(internals).find(key) ? 1 : 0;
}

unsigned long OrvResource::internalValue(const OrvCanvas* key) const {
    return (unsigned long)const_cast<OrvAList&>(internals).get(key);
}

void OrvResource::add(const OrvCanvas* canvas, unsigned long value) {
    const OrvCanvas* key = internalKey(canvas);
    if (!internals.find(key)) internals.append(key, (void*)value);
}

// ---------------------------------------------------------------- OrvColor

// A channel as X takes it: floor of value times 65535, a negative one as -1.
static long colorChannel(float v) {
    double f = floor(v * 65535.0);
    return f < 0 ? -1 : (long)f;
}

OrvColor::OrvColor(OrvDirector* d, float r, float g, float b, unsigned long f)
    : OrvResource(d), flag(f), red(r), green(g), blue(b), colormap(0), allocated(1) {
    char key[64];
    snprintf(key, sizeof key, "#%04X%04X%04X", (unsigned)colorChannel(r), (unsigned)colorChannel(g),
             (unsigned)colorChannel(b));
    setName(key);
    if (director && director->colors) director->colors->put(name, this);
}

OrvColor::~OrvColor() {
    Display* display = director ? (Display*)director->display : nullptr;
    for (OrvAListItem* i = internals.first; i; i = i->next) {
        const OrvCanvas* canvas = (const OrvCanvas*)i->key;
        unsigned long pixel = (unsigned long)i->value;
        // A colormap already freed (a GL window's, closed first) took its cells with it.
        if (display && canvas->colormap) XFreeColors(display, canvas->colormap, &pixel, 1, 0);
    }
    if (director) director->remove(this);
}

unsigned long OrvColor::internal(const OrvCanvas* canvas) const {
    const OrvCanvas* key = internalKey(canvas);
    if (!key) return 0;
    if (!hasInternal(key)) {
        unsigned long pixel = 0;
        const_cast<OrvCanvas*>(key)->make2dColor(const_cast<OrvColor*>(this), pixel);
    }
    return internalValue(key);
}

void OrvColor::remove(const OrvCanvas* canvas) {
    if (!internals.find(canvas)) return;
    unsigned long pixel = (unsigned long)internals.get(canvas);
    if (director && director->display && canvas->colormap)
        XFreeColors((Display*)director->display, canvas->colormap, &pixel, 1, 0);
    internals.remove(canvas);
}

void OrvColor::getHSV(float& h, float& s, float& v) const {
    OrvRGBToHSV(red, green, blue, h, s, v);
}
void OrvColor::getHLS(float& h, float& l, float& s) const {
    OrvRGBToHLS(red, green, blue, h, l, s);
}

// Lighting of a plain colour: the default ambient and specular of the library, itself as
// diffuse and emission, the default shininess, opaque.
void OrvColor::ambient(float& r, float& g, float& b) const {
    r = g = b = 0.2f;
}
void OrvColor::diffuse(float& r, float& g, float& b) const {
    r = red;
    g = green;
    b = blue;
}
void OrvColor::specular(float& r, float& g, float& b) const {
    r = g = b = 0.0f;
}
void OrvColor::emissive(float& r, float& g, float& b) const {
    diffuse(r, g, b);
}
float OrvColor::shininess() const {
    return 0.2f;
}
float OrvColor::transparency() const {
    return 1.0f;
}

// ---------------------------------------------------------------- OrvPattern

OrvPattern::OrvPattern(OrvCanvas* canvas, unsigned long w, unsigned long h,
                       const unsigned char* bytes)
    : OrvResource(canvas ? canvas->director : nullptr), data(nullptr), depth(1), width(w),
      height(h) {
    unsigned long n = w * h;
    data = new unsigned char[n ? n : 1];
    if (bytes)
        memcpy(data, bytes, n);
    else
        memset(data, 0, n);
    if (canvas) internal(canvas);
}

OrvPattern::~OrvPattern() {
    while (internals.first) {
        OrvBitmap* b = (OrvBitmap*)internals.first->value;
        internals.remove(internals.first->key);
        delete b;
    }
    if (director && director->patterns) director->patterns->remove(this);
    delete[] data;
}

unsigned long OrvPattern::internal(const OrvCanvas* canvas) const {
    const OrvCanvas* key = internalKey(canvas);
    if (!key) return 0;
    if (!hasInternal(key)) const_cast<OrvCanvas*>(key)->makePattern(const_cast<OrvPattern*>(this));
    return internalValue(key);
}

void OrvPattern::remove(const OrvCanvas* canvas) {
    if (!internals.find(canvas)) return;
    OrvBitmap* b = (OrvBitmap*)internals.get(canvas);
    internals.remove(canvas);
    delete b;
}

// ---------------------------------------------------------------- OrvLineStyle

OrvLineStyle::OrvLineStyle(OrvDirector* d, unsigned short n, const unsigned char* d8,
                           unsigned short off, unsigned short p)
    : OrvResource(d), offset(off), dashCount(n), dashes(nullptr), pattern(p) {
    if (n) {
        dashes = new unsigned char[n];
        memcpy(dashes, d8, n);
    }
}

OrvLineStyle::~OrvLineStyle() {
    if (director && director->lineStyles) director->lineStyles->remove(this);
    delete[] dashes;
}

unsigned long OrvLineStyle::internal(const OrvCanvas* canvas) const {
    const OrvCanvas* key = internalKey(canvas);
    if (key && !hasInternal(key))
        const_cast<OrvCanvas*>(key)->makeLineStyle(const_cast<OrvLineStyle*>(this));
    return 0;
}

void OrvLineStyle::remove(const OrvCanvas* canvas) {
    internals.remove(canvas);
}

// ---------------------------------------------------------------- OrvCursor

OrvCursor::OrvCursor(OrvDirector* d, const char* n) : OrvResource(d, n) {}

OrvCursor::~OrvCursor() {
    Display* display = director ? (Display*)director->display : nullptr;
    for (OrvAListItem* i = internals.first; i; i = i->next)
        if (display && i->value) XFreeCursor(display, (Cursor)i->value);
    if (director && director->cursors) director->cursors->remove(this);
}

unsigned long OrvCursor::internal(const OrvCanvas* canvas) const {
    const OrvCanvas* key = internalKey(canvas);
    if (!key) return 0;
    if (!hasInternal(key)) const_cast<OrvCanvas*>(key)->makeCursor(const_cast<OrvCursor*>(this));
    return internalValue(key);
}

void OrvCursor::remove(const OrvCanvas* canvas) {
    if (!internals.find(canvas)) return;
    Cursor c = (Cursor)internals.get(canvas);
    if (c && director && director->display) XFreeCursor((Display*)director->display, c);
    internals.remove(canvas);
}

// The cursors that can be named: "default" and the shapes of the X cursor font.
struct OrvCursorShape {
    const char* name;
    unsigned shape;
};

static const OrvCursorShape cursorShapes[] = {
    {"default", 68},
    {"x_cursor", XC_X_cursor},
    {"arrow", XC_arrow},
    {"based_arrow_down", XC_based_arrow_down},
    {"based_arrow_up", XC_based_arrow_up},
    {"boat", XC_boat},
    {"bogosity", XC_bogosity},
    {"bottom_left_corner", XC_bottom_left_corner},
    {"bottom_right_corner", XC_bottom_right_corner},
    {"bottom_side", XC_bottom_side},
    {"bottom_tee", XC_bottom_tee},
    {"box_spiral", XC_box_spiral},
    {"center_ptr", XC_center_ptr},
    {"circle", XC_circle},
    {"clock", XC_clock},
    {"coffee_mug", XC_coffee_mug},
    {"cross", XC_cross},
    {"cross_reverse", XC_cross_reverse},
    {"crosshair", XC_crosshair},
    {"diamond_cross", XC_diamond_cross},
    {"dotbox", XC_dotbox},
    {"double_arrow", XC_double_arrow},
    {"draft_large", XC_draft_large},
    {"draft_small", XC_draft_small},
    {"draped_box", XC_draped_box},
    {"exchange", XC_exchange},
    {"fleur", XC_fleur},
    {"gobbler", XC_gobbler},
    {"gumby", XC_gumby},
    {"hand1", XC_hand1},
    {"hand2", XC_hand2},
    {"heart", XC_heart},
    {"icon", XC_icon},
    {"iron_cross", XC_iron_cross},
    {"left_ptr", XC_left_ptr},
    {"left_side", XC_left_side},
    {"left_tee", XC_left_tee},
    {"leftbutton", XC_leftbutton},
    {"ll_angle", XC_ll_angle},
    {"lr_angle", XC_lr_angle},
    {"middlebutton", XC_middlebutton},
    {"mouse", XC_mouse},
    {"pencil", XC_pencil},
    {"pirate", XC_pirate},
    {"plus", XC_plus},
    {"question_arrow", XC_question_arrow},
    {"right_ptr", XC_right_ptr},
    {"right_side", XC_right_side},
    {"right_tee", XC_right_tee},
    {"rightbutton", XC_rightbutton},
    {"rtl_logo", XC_rtl_logo},
    {"sailboat", XC_sailboat},
    {"sb_down_arrow", XC_sb_down_arrow},
    {"sb_h_double_arrow", XC_sb_h_double_arrow},
    {"sb_left_arrow", XC_sb_left_arrow},
    {"sb_right_arrow", XC_sb_right_arrow},
    {"sb_up_arrow", XC_sb_up_arrow},
    {"sb_v_double_arrow", XC_sb_v_double_arrow},
    {"shuttle", XC_shuttle},
    {"sizing", XC_sizing},
    {"spider", XC_spider},
    {"spraycan", XC_spraycan},
    {"star", XC_star},
    {"target", XC_target},
    {"tcross", XC_tcross},
    {"top_left_arrow", XC_top_left_arrow},
    {"top_left_corner", XC_top_left_corner},
    {"top_right_corner", XC_top_right_corner},
    {"top_side", XC_top_side},
    {"top_tee", XC_top_tee},
    {"trek", XC_trek},
    {"ul_angle", XC_ul_angle},
    {"umbrella", XC_umbrella},
    {"ur_angle", XC_ur_angle},
    {"watch", XC_watch},
    {"xterm", XC_xterm},
};

int OrvCanvas::makeCursor(OrvCursor* cursor) {
    const char* n = cursor->name ? cursor->name : "";
    // The clock cursor is kept under the name "wait".
    const char* shapeName = strcmp(n, "wait") == 0 ? "clock" : n;
    for (const OrvCursorShape& s : cursorShapes) {
        if (strcmp(s.name, shapeName) == 0) {
            Cursor c = XCreateFontCursor((Display*)director->display, s.shape);
            if (!c) break;
            cursor->add(this, (unsigned long)c);
            return 1;
        }
    }
    OrvPrint("OrvCanvas::makeCursor : Can't create cursor %s\n", n);
    return 0;
}

int OrvCanvas::makeLineStyle(OrvLineStyle* lineStyle) {
    lineStyle->add(this, 0);
    return 1;
}
