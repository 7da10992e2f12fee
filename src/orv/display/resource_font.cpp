// Raster fonts: X font sets found by a short name ("%helvetica-10-B") or an X name.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/resource.h"

// Xlib after the library headers: its macros (Above, Below, None) would break them.
#include <X11/Xlib.h>

static char* copyString(const char* s) {
    if (!s) return nullptr;
    size_t n = strlen(s) + 1;
    char* c = new char[n];
    memcpy(c, s, n);
    return c;
}

// A static text buffer that grows as needed and lives until the next call of its user.
struct OrvTextBuffer {
    char* text = nullptr;
    size_t size = 0;
    char* reserve(size_t n) {
        if (n > size) {
            size_t s = size ? size : 64;
            while (s < n) s *= 2;
            char* t = (char*)realloc(text, s);
            if (!t) return text;
            text = t;
            size = s;
        }
        return text;
    }
};

const char* OrvFontKey(const char* family, unsigned short size, OrvFontStyle style,
                       const char* foundry) {
    static OrvTextBuffer buffer;
    size_t n = strlen(family ? family : "") + (foundry ? strlen(foundry) : 0) + 32;
    char* k = buffer.reserve(n);
    int len = snprintf(k, n, "%%%s-%d-", family ? family : "", size);
    for (int i = 1; i < len; i++)
        if (k[i] == ' ') k[i] = '*';
    if (style & OrvFontBold) k[len++] = 'B';
    if (style & OrvFontItalic) k[len++] = 'I';
    if (style & OrvFontUnderlined) k[len++] = 'U';
    k[len] = 0;
    if (foundry) snprintf(k + len, n - len, "-%s", foundry);
    return k;
}

// ---------------------------------------------------------------- OrvRasterFont

OrvRasterFont::OrvRasterFont(OrvDirector* d, const char* family, unsigned short s, OrvFontStyle st,
                             const char* foundry)
    : OrvResource(d), size(s), style(st), systemName(nullptr) {
    setName((st & OrvFontSystem) ? family : OrvFontKey(family, s, st, foundry));
}

OrvRasterFont::~OrvRasterFont() {
    Display* display = director ? (Display*)director->display : nullptr;
    for (OrvAListItem* i = internals.first; i; i = i->next)
        if (display && i->value) XFreeFontSet(display, (XFontSet)i->value);
    if (director && director->fonts && name && director->fonts->get(name) == this)
        director->fonts->remove(name);
    delete[] systemName;
}

unsigned long OrvRasterFont::internal(const OrvCanvas* canvas) const {
    const OrvCanvas* key = internalKey(canvas);
    if (!key) return 0;
    if (!hasInternal(key))
        const_cast<OrvCanvas*>(key)->makeFont(const_cast<OrvRasterFont*>(this), name);
    return internalValue(key);
}

void OrvRasterFont::remove(const OrvCanvas* canvas) {
    if (!internals.find(canvas)) return;
    XFontSet fs = (XFontSet)internals.get(canvas);
    if (fs && director && director->display) XFreeFontSet((Display*)director->display, fs);
    internals.remove(canvas);
}

const char* OrvRasterFont::family() const {
    if ((style & OrvFontSystem) || !name) return nullptr;
    if (name[0] != '%') return name;
    static OrvTextBuffer buffer;
    const char* dash = strchr(name + 1, '-');
    size_t n = dash ? (size_t)(dash - name - 1) : strlen(name + 1);
    char* f = buffer.reserve(n + 1);
    memcpy(f, name + 1, n);
    f[n] = 0;
    return f;
}

const char* OrvRasterFont::foundary() const {
    if ((style & OrvFontSystem) || !name) return nullptr;
    const char* p = name;
    for (int i = 0; i < 3; i++) {
        p = strchr(p, '-');
        if (!p) return nullptr;
        p++;
    }
    return p;
}

int OrvRasterFont::mnemonicPosition(const char* text, int length) const {
    if (!text) return -1;
    if (length < 1) length = (int)strlen(text);
    for (int i = 0; i < length; i++)
        if (text[i] == OrvMnemonicMark) return i + 1;
    return -1;
}

const char* OrvRasterFont::mnemonicString(const char* text, int length) const {
    static OrvTextBuffer buffer;
    if (!text) text = "";
    if (length < 1) length = (int)strlen(text);
    char* out = buffer.reserve((size_t)length + 1);
    int n = 0, removed = 0;
    for (int i = 0; i < length; i++) {
        if (!removed && text[i] == OrvMnemonicMark) {
            removed = 1;
            continue;
        }
        out[n++] = text[i];
    }
    out[n] = 0;
    return out;
}

Orv2dRect OrvRasterFont::bbox(const char* text, int length, unsigned long mnemonic) const {
    Orv2dRect r;
    if (!text || !director) return r;
    if (mnemonic) {
        text = mnemonicString(text, length);
        length = (int)strlen(text);
    }
    if (length < 1) length = (int)strlen(text);
    XFontSet fs = (XFontSet)internal(director->rootCanvas);
    if (!fs) return r;
    XRectangle ink, logical;
    XmbTextExtents(fs, text, length, &ink, &logical);
    r.x = logical.x;
    r.y = logical.y;
    r.w = logical.width;
    r.h = logical.height;
    return r;
}

Orv2dRect OrvRasterFont::bbox(const unsigned short* text, int length,
                              unsigned long mnemonic) const {
    Orv2dRect r;
    if (!text || !director) return r;
    if (length < 1)
        for (length = 0; text[length]; length++) {}
    static wchar_t* wide = nullptr;
    static int wideSize = 0;
    if (length + 1 > wideSize) {
        int s = wideSize ? wideSize : 64;
        while (s < length + 1) s *= 2;
        wchar_t* w = (wchar_t*)realloc(wide, sizeof(wchar_t) * s);
        if (!w) return r;
        wide = w;
        wideSize = s;
    }
    int n = 0, removed = 0;
    for (int i = 0; i < length; i++) {
        if (mnemonic && !removed && text[i] == (unsigned short)OrvMnemonicMark) {
            removed = 1;
            continue;
        }
        wide[n++] = text[i];
    }
    XFontSet fs = (XFontSet)internal(director->rootCanvas);
    if (!fs) return r;
    XRectangle ink, logical;
    XwcTextExtents(fs, wide, n, &ink, &logical);
    r.x = logical.x;
    r.y = logical.y;
    r.w = logical.width;
    r.h = logical.height;
    return r;
}

int OrvCanvas::makeFont(OrvRasterFont* font, const char* n) {
    const char* load = font->systemName ? font->systemName : n;
    char** missing = nullptr;
    int missingCount = 0;
    char* def = nullptr;
    // Xlib's font set code frees memory it does not own when the list of base
    // names is empty, so an empty name is refused before it reaches X.
    XFontSet fs = nullptr;
    if (load && *load) {
        fs = XCreateFontSet((Display*)director->display, load, &missing, &missingCount, &def);
        if (missing) XFreeStringList(missing);
    }
    if (!fs) {
        OrvPrint("Creating Font: Invalid Font %s \n", load ? load : "");
        return 0;
    }
    font->add(this, (unsigned long)fs);
    XFontSetExtents* e = XExtentsOfFontSet(fs);
    font->box.x = e->max_logical_extent.x;
    font->box.y = e->max_logical_extent.y;
    font->box.w = e->max_logical_extent.width;
    font->box.h = e->max_logical_extent.height;
    return 1;
}

// ---------------------------------------------------------------- director

int OrvDirector::addFont(OrvRasterFont* f, const char* loadName) {
    if (!f) return 0;
    fonts->put(f->name, f);
    if (f->hasInternal(rootCanvas)) return 1;
    return rootCanvas->makeFont(f, loadName ? loadName : f->name);
}

OrvRasterFont* OrvDirector::font(const char* n) {
    if (!n) return nullptr;
    OrvRasterFont* f = (OrvRasterFont*)fonts->get(n);
    if (f) return f;
    if (n[0] != '%') return systemFont(n);

    // "%family-size-styleletters[-foundry]"
    const char* p = n + 1;
    const char* dash = strchr(p, '-');
    if (!dash) return nullptr;
    size_t familyLength = (size_t)(dash - p);
    char* family = new char[familyLength + 1];
    for (size_t i = 0; i < familyLength; i++) family[i] = p[i] == '*' ? ' ' : p[i];
    family[familyLength] = 0;
    p = dash + 1;
    long size = strtol(p, nullptr, 10);
    if (size < 1 || size > 200) {
        delete[] family;
        return nullptr;
    }
    OrvFontStyle style = 0;
    const char* foundry = nullptr;
    dash = strchr(p, '-');
    if (dash) {
        for (p = dash + 1; *p && *p != '-'; p++) {
            if (*p == 'B' || *p == 'b')
                style |= OrvFontBold;
            else if (*p == 'I' || *p == 'i')
                style |= OrvFontItalic;
            else if (*p == 'U' || *p == 'u')
                style |= OrvFontUnderlined;
        }
        if (*p == '-' && p[1]) foundry = p + 1;
    }
    f = font(family, (unsigned short)size, style, foundry);
    delete[] family;
    return f;
}

OrvRasterFont* OrvDirector::systemFont(const char* n) {
    if (!n) return defaultFont;
    OrvRasterFont* f = (OrvRasterFont*)fonts->get(n);
    if (f) return f;
    f = new OrvRasterFont(this, n, 0, OrvFontSystem, nullptr);
    if (!addFont(f)) {
        fonts->remove(f->name);
        delete f;
        return defaultFont;
    }
    return f;
}

OrvRasterFont* OrvDirector::font(const char* family, unsigned short size, OrvFontStyle style,
                                 const char* foundry) {
    static const char* const resolutions[] = {"75-75", "100-100", "*-*"};
    for (const char* r : resolutions) {
        OrvRasterFont* f = font(family, size, r, style, foundry);
        if (f) return f;
    }
    return nullptr;
}

OrvRasterFont* OrvDirector::font(const char* family, unsigned short size, const char* resolution,
                                 OrvFontStyle style, const char* foundry) {
    if (!family) family = "";
    OrvRasterFont* f = (OrvRasterFont*)fonts->get(OrvFontKey(family, size, style, foundry));
    if (f) return f;

    const char* xfamily = family;
    if (strcmp(family, "newcentury") == 0)
        xfamily = "new century schoolbook";
    else if (strcmp(family, "lucida") == 0)
        xfamily = "lucida*";
    size_t n = strlen(xfamily) + (foundry ? strlen(foundry) : 1) + strlen(resolution) + 64;
    char* pattern = new char[n];
    if (size) {
        snprintf(pattern, n, "-%s-%s-%s%s-*-*-%d-*%s-*", foundry ? foundry : "*", xfamily,
                 (style & OrvFontBold) ? "bold-" : "medium-", (style & OrvFontItalic) ? "o" : "r",
                 size, resolution);
    } else {
        snprintf(pattern, n, "-%s-%s-*%s-*", foundry ? foundry : "*", xfamily, "-iso*");
    }
    Display* dpy = (Display*)display;
    int count = 0;
    char** names = XListFonts(dpy, pattern, 1, &count);
    if ((!names || count == 0) && size && (style & OrvFontItalic)) {
        if (names) XFreeFontNames(names);
        // Some families slant as italic rather than oblique.
        char* slant = strstr(pattern, "-o-");
        if (slant) slant[1] = 'i';
        names = XListFonts(dpy, pattern, 1, &count);
    }
    delete[] pattern;
    if (!names || count == 0) {
        if (names) XFreeFontNames(names);
        return defaultFont;
    }
    f = new OrvRasterFont(this, family, size, style, foundry);
    f->systemName = copyString(names[0]);
    int ok = addFont(f, names[0]);
    XFreeFontNames(names);
    if (!ok) {
        fonts->remove(f->name);
        delete f;
        return defaultFont;
    }
    return f;
}

static int compareSizes(const void* a, const void* b) {
    return *(const int*)a - *(const int*)b;
}

const int* OrvDirector::fontSizes(const char* family, OrvFontStyle style, int& count,
                                  const char* foundry) const {
    static int* sizes = nullptr;
    static int capacity = 0;
    count = 0;
    if (!family) return sizes;
    size_t n = strlen(family) + (foundry ? strlen(foundry) : 1) + 32;
    char* pattern = new char[n];
    snprintf(pattern, n, "-%s-%s-%s%s-*", foundry ? foundry : "*", family,
             (style & OrvFontBold) ? "bold-" : "*-", (style & OrvFontItalic) ? "o" : "r");
    Display* dpy = (Display*)display;
    int found = 0;
    char** names = XListFonts(dpy, pattern, 100, &found);
    if ((!names || !found) && (style & OrvFontItalic)) {
        if (names) XFreeFontNames(names);
        pattern[strlen(pattern) - 3] = 'i';
        names = XListFonts(dpy, pattern, 100, &found);
    }
    delete[] pattern;
    for (int i = 0; names && i < found; i++) {
        // The pixel size: the field after five more dashes than the slant.
        const char* p = names[i];
        int dashes = 0;
        while (*p && dashes < 7) {
            if (*p == '-') dashes++;
            p++;
        }
        if (dashes < 7) continue;
        char* end = nullptr;
        long s = strtol(p, &end, 10);
        if (end == p || *p == '0') continue;
        int known = 0;
        for (int j = 0; j < count; j++)
            if (sizes[j] == s) known = 1;
        if (known) continue;
        if (count >= capacity) {
            int c = capacity ? capacity * 2 : 16;
            int* grown = (int*)realloc(sizes, sizeof(int) * c);
            if (!grown) break;
            sizes = grown;
            capacity = c;
        }
        sizes[count++] = (int)s;
    }
    if (names) XFreeFontNames(names);
    if (count) qsort(sizes, count, sizeof(int), compareSizes);
    return sizes;
}
