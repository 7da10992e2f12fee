// The director's colours: by name, by value, by HSV or HLS, with aliases and nearest match.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/region.h"
#include "orv/resource.h"

// Xlib after the library headers: its macros (Above, Below, None) would break them.
#include <X11/Xlib.h>

static char* copyString(const char* s) {
    size_t n = strlen(s) + 1;
    char* c = new char[n];
    memcpy(c, s, n);
    return c;
}

// A channel as a 16-bit X value: floor of value times 65535, a negative one as -1.
static long colorChannel(float v) {
    double f = floor(v * 65535.0);
    return f < 0 ? -1 : (long)f;
}

int OrvCanvas::make2dColor(OrvColor* color, unsigned long& index) {
    XColor x;
    x.red = (unsigned short)colorChannel(color->red);
    x.green = (unsigned short)colorChannel(color->green);
    x.blue = (unsigned short)colorChannel(color->blue);
    x.flags = DoRed | DoGreen | DoBlue;
    color->colormap = colormap;
    color->allocated = 1;
    if (!XAllocColor((Display*)director->display, (Colormap)colormap, &x)) {
        OrvPrint("OrvCanvas::make2dColor : Can't create color %s \n (too many colors allocated) \n",
                 color->name ? color->name : "");
        return 0;
    }
    index = x.pixel;
    color->add(this, x.pixel);
    return 1;
}

OrvColor* OrvDirector::color(const char* n, unsigned long flag) {
    if (!n) return defaultForeground;
    OrvColor* c = (OrvColor*)colors->get(n);
    if (c) return c;
    for (OrvAListItem* i = colorNames.first; i; i = i->next)
        if (strcmp((const char*)i->key, n) == 0) return (OrvColor*)i->value;

    float r, g, b;
    if (n[0] == '#') {
        unsigned ur = 0, ug = 0, ub = 0;
        size_t len = strlen(n);
        if (len == 4 && sscanf(n, "#%01X%01X%01X", &ur, &ug, &ub) == 3) {
            // Short names keep their digits as they stand.
            r = (float)ur;
            g = (float)ug;
            b = (float)ub;
        } else if (len == 7 && sscanf(n, "#%02X%02X%02X", &ur, &ug, &ub) == 3) {
            r = ur / 255.0f;
            g = ug / 255.0f;
            b = ub / 255.0f;
        } else if (len == 13 && sscanf(n, "#%04X%04X%04X", &ur, &ug, &ub) == 3) {
            r = ur / 65535.0f;
            g = ug / 65535.0f;
            b = ub / 65535.0f;
        } else {
            return defaultForeground;
        }
    } else {
        XColor x;
        unsigned size = 0;
        if (!XParseColor((Display*)display, (Colormap)defaultColormap(size), n, &x))
            return defaultForeground;
        r = x.red / 65535.0f;
        g = x.green / 65535.0f;
        b = x.blue / 65535.0f;
    }
    c = color(r, g, b, flag);
    addColorName(c, n);
    return c;
}

OrvColor* OrvDirector::color(float r, float g, float b, unsigned long flag) {
    char key[64];
    snprintf(key, sizeof key, "#%04X%04X%04X", (unsigned)colorChannel(r), (unsigned)colorChannel(g),
             (unsigned)colorChannel(b));
    OrvColor* c = (OrvColor*)colors->get(key);
    if (c) return c;
    for (unsigned i = 0; i < colors->size; i++) {
        if (!colors->buckets[i]) continue;
        for (OrvAListItem* it = colors->buckets[i]->first; it; it = it->next) {
            OrvColor* k = (OrvColor*)it->value;
            if (fabs((double)k->red - r) < 0.0001 && fabs((double)k->green - g) < 0.0001 &&
                fabs((double)k->blue - b) < 0.0001)
                return k;
        }
    }
    for (OrvAListItem* it = colorNames.first; it; it = it->next) {
        OrvColor* k = (OrvColor*)it->value;
        if (fabs((double)k->red - r) < 0.0001 && fabs((double)k->green - g) < 0.0001 &&
            fabs((double)k->blue - b) < 0.0001)
            return k;
    }
    return new OrvColor(this, r, g, b, flag);
}

OrvColor* OrvDirector::colorHSV(float h, float s, float v, unsigned long flag) {
    float r, g, b;
    OrvHSVToRGB(h, s, v, r, g, b);
    return color(r, g, b, flag);
}

void OrvComputeReliefColors(const OrvColor* base, OrvColor*& first, OrvColor*& second,
                            OrvColor*& third) {
    OrvReliefShades shades;
    OrvComputeReliefShades(base->red, base->green, base->blue, shades);
    OrvDirector* d = base->director;
    OrvColor** out[3] = {&first, &second, &third};
    for (int i = 0; i < 3; i++) {
        OrvColor* c = d->colorHSV(shades.h, shades.s[i], shades.v[i], 0);
        *out[i] = c ? c : d->defaultForeground;
    }
}

OrvColor* OrvDirector::colorHLS(float h, float l, float s, unsigned long flag) {
    float r, g, b;
    OrvHLSToRGB(h, l, s, r, g, b);
    return color(r, g, b, flag);
}

void OrvDirector::addColorName(OrvColor* c, const char* n) {
    if (!c || !n || !c->name || strcmp(c->name, n) == 0) return;
    if (colorNames.find(n)) return;
    for (OrvAListItem* i = colorNames.first; i; i = i->next)
        if (strcmp((const char*)i->key, n) == 0) return;
    char* alias = copyString(n);
    colors->put(alias, c);
    colorNames.append(alias, c);
}

void OrvDirector::removeColorNames(OrvColor* c) {
    OrvAListItem* i = colorNames.first;
    while (i) {
        OrvAListItem* next = i->next;
        if (i->value == c) {
            char* alias = (char*)i->key;
            if (colors) colors->remove(alias);
            colorNames.remove(alias);
            delete[] alias;
        }
        i = next;
    }
}

void OrvDirector::remove(OrvColor* c) {
    if (!c) return;
    if (colors && c->name && colors->get(c->name) == c) colors->remove(c->name);
    removeColorNames(c);
}

OrvColor* OrvDirector::nearestColor(unsigned short r, unsigned short g, unsigned short b,
                                    unsigned* distance) const {
    OrvColor* best = nullptr;
    unsigned bestDistance = 0;
    for (unsigned i = 0; i < colors->size; i++) {
        if (!colors->buckets[i]) continue;
        for (OrvAListItem* it = colors->buckets[i]->first; it; it = it->next) {
            OrvColor* c = (OrvColor*)it->value;
            if (!c->name || strcmp(c->name, (const char*)it->key) != 0) continue;  // an alias
            unsigned dr = (unsigned)(unsigned short)colorChannel(c->red) - r;
            unsigned dg = (unsigned)(unsigned short)colorChannel(c->green) - g;
            unsigned db = (unsigned)(unsigned short)colorChannel(c->blue) - b;
            unsigned d = ((dr * dr) >> 1) + ((dg * dg) >> 1) + ((db * db) >> 1);
            if (!best || d <= bestDistance) {
                best = c;
                bestDistance = d;
            }
        }
    }
    if (distance) *distance = bestDistance;
    return best;
}

void OrvDirector::colorTable(unsigned short* r, unsigned short* g, unsigned short* b,
                             const OrvCanvas* canvas) const {
    if (!canvas) canvas = rootCanvas;
    for (int i = 0; i < 256; i++) r[i] = g[i] = b[i] = 255;
    for (unsigned i = 0; i < colors->size; i++) {
        if (!colors->buckets[i]) continue;
        for (OrvAListItem* it = colors->buckets[i]->first; it; it = it->next) {
            OrvColor* c = (OrvColor*)it->value;
            unsigned long pixel = c->index(canvas);
            if (pixel >= 256) continue;
            r[pixel] = (unsigned short)floor(c->red * 255.0);
            g[pixel] = (unsigned short)floor(c->green * 255.0);
            b[pixel] = (unsigned short)floor(c->blue * 255.0);
        }
    }
}

void OrvDirector::indexToRGB(unsigned pixel, float& r, float& g, float& b) const {
    XColor x;
    x.pixel = pixel;
    unsigned size = 0;
    XQueryColor((Display*)display, (Colormap)defaultColormap(size), &x);
    r = (float)(x.red / 65535.0);
    g = (float)(x.green / 65535.0);
    b = (float)(x.blue / 65535.0);
}

unsigned long OrvDirector::numberOfColors() const {
    unsigned long n = 0;
    for (unsigned i = 0; i < colors->size; i++) {
        if (!colors->buckets[i]) continue;
        for (OrvAListItem* it = colors->buckets[i]->first; it; it = it->next) {
            OrvColor* c = (OrvColor*)it->value;
            if (c->name && strcmp(c->name, (const char*)it->key) == 0) n++;
        }
    }
    return n;
}
