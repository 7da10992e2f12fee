// Make-ups and colours in the text format. A make-up is written in full once
// per file and referred to by number afterwards; on reading, its attributes
// go back through the director so that equal make-ups are one object again.
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/stream.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "line.h"
#include "scan.h"

// Names are bare words; an absent one is the word "None".
static const char* nameOrNone(const char* name) {
    return name && *name ? name : "None";
}

OrvOStream& OrvOStream::operator<<(const OrvColor* color) {
    if (!color) return *this;
    const char* name = color->name && color->name[0] != '#' ? color->name : nullptr;
    if (!name && color->director) {
        for (OrvAListItem* item = color->director->colorNames.first; item; item = item->next)
            if (item->value == color) {
                name = (const char*)item->key;
                break;
            }
    }
    if (name) {
        stream << indent() << "colorName\t";
        OrvWriteString(stream, name);
        stream << '\n';
    } else {
        stream << indent() << "color\t" << color->red << ' ' << color->green << ' ' << color->blue
               << '\n';
    }
    return *this;
}

OrvIStream& OrvIStream::operator>>(OrvColor*& color) {
    char key[1024];
    nextItem();
    word(key);
    if (!strcmp(key, "colorName")) {
        const char* name = OrvReadString(stream);
        if (stream && director) color = director->color(name, 0);
    } else if (!strcmp(key, "color")) {
        float r = 0, g = 0, b = 0;
        if (OrvScanNumber(stream, r) && OrvScanNumber(stream, g) && OrvScanNumber(stream, b) &&
            director)
            color = director->color(r, g, b, 0);
    } else {
        fault("OrvIStream: Definition error (ColorMaterial %s)\n", key);
    }
    return *this;
}

OrvOStream& OrvOStream::operator<<(const OrvMakeUp* m) {
    if (!m) return *this;
    unsigned number = 0;
    if (find(number, m)) {
        _OrvLine_(stream).add(indent()).add("makeUp\t\t.USE ").add((unsigned long)number).add('\n');
        return *this;
    }
    stream << indent() << "makeUp " << number << " {" << '\n';
    indentation++;
    writeComments("foreground", 1);
    *this << m->foreground();
    writeComments("background", 1);
    *this << m->background();
    OrvPattern* pattern = m->pattern();
    key("pattern") << nameOrNone(pattern ? pattern->name : nullptr) << '\n';
    OrvLineStyle* lineStyle = m->lineStyle();
    key("lineStyle") << nameOrNone(lineStyle ? lineStyle->name : nullptr) << '\n';
    key("lineWidth") << m->lineWidth() << '\n';
    OrvRasterFont* font = m->font();
    key("rasterFont") << nameOrNone(font ? font->name : nullptr) << '\n';
    OrvBitmap* colorPattern = m->colorPattern();
    key("colorPattern") << nameOrNone(colorPattern ? colorPattern->name : nullptr) << '\n';
    key("fillStyle") << m->fillStyle() << '\n';
    key("arcMode") << m->arcMode() << '\n';
    key("fillRule") << m->fillRule() << '\n';
    key("smooth") << (m->smooth() ? "yes" : "no") << '\n';
    key("distinguish") << (m->distinguish() ? "yes" : "no") << '\n';
    key("cull") << m->cull() << '\n';
    key("frontStyle") << m->frontStyle() << '\n';
    key("backStyle") << m->backStyle() << '\n';
    key("markerType") << m->markerType() << '\n';
    key("markerScale") << m->markerScale() << '\n';
    key("pointSize") << 3 << '\n';
    OrvVectorialFont* vfont = m->vfont();
    key("vfont") << nameOrNone(vfont ? ((const OrvResource*)vfont)->name : nullptr) << '\n';
    stream << indent() << "texture\tNone" << '\n';
    indentation--;
    stream << indent() << '}' << '\n';
    return *this;
}

OrvIStream& OrvIStream::operator>>(OrvMakeUp*& m) {
    char buffer[1024];
    nextItem();
    word(buffer);
    if (strcmp(buffer, "makeUp")) {
        fault("OrvIStream : Not a makeup object.\n");
        return *this;
    }
    nextItem();
    word(buffer);
    if (!strcmp(buffer, ".USE")) {
        unsigned number = 0;
        OrvScanNumber(stream, number);
        OrvMakeUp* known = (OrvMakeUp*)makeUps.get((void*)(uintptr_t)number);
        if (!known) {
            // Not a failure of the file: the holder falls back to its default.
            OrvError("OrvIStream : MakeUp not found (%s %d)\n", ".USE", (int)number);
            return *this;
        }
        m = known;
        return *this;
    }
    int number = atoi(buffer);
    nextItem();
    char c = 0;
    OrvScanChar(stream, c);
    if (c != '{') {
        fault("OrvIStream : Makeup, bad begin separator.\n");
        return *this;
    }
    OrvColor* foreground = nullptr;
    OrvColor* background = nullptr;
    *this >> foreground;
    *this >> background;
    char pattern[1024], lineStyle[1024], font[1024], colorPattern[1024], vfont[1024], texture[1024];
    unsigned long lineWidth = 0, fillStyle = 0, arcMode = 0, fillRule = 0, smooth = 1,
                  distinguish = 0, cull = 1, frontStyle = 4, backStyle = 4, markerType = 1,
                  markerScale = 2, pointSize = 3;
    if (!_OrvReadItem_(*this, buffer, "pattern", pattern) ||
        !_OrvReadItem_(*this, buffer, "lineStyle", lineStyle) ||
        !_OrvReadItem_(*this, buffer, "lineWidth", lineWidth) ||
        !_OrvReadItem_(*this, buffer, "rasterFont", font) ||
        !_OrvReadItem_(*this, buffer, "colorPattern", colorPattern) ||
        !_OrvReadItem_(*this, buffer, "fillStyle", fillStyle) ||
        !_OrvReadItem_(*this, buffer, "arcMode", arcMode) ||
        !_OrvReadItem_(*this, buffer, "fillRule", fillRule) ||
        !_OrvReadItemBoolean_(*this, buffer, "smooth", smooth) ||
        !_OrvReadItemBoolean_(*this, buffer, "distinguish", distinguish) ||
        !_OrvReadItem_(*this, buffer, "cull", cull) ||
        !_OrvReadItem_(*this, buffer, "frontStyle", frontStyle) ||
        !_OrvReadItem_(*this, buffer, "backStyle", backStyle) ||
        !_OrvReadItem_(*this, buffer, "markerType", markerType) ||
        !_OrvReadItem_(*this, buffer, "markerScale", markerScale) ||
        !_OrvReadItem_(*this, buffer, "pointSize", pointSize) ||
        !_OrvReadItem_(*this, buffer, "vfont", vfont) ||
        !_OrvReadItem_(*this, buffer, "texture", texture))
        return *this;
    nextItem();
    c = 0;
    OrvScanChar(stream, c);
    if (c != '}') {
        fault("## OrvIStream: Bad end separator.\n");
        return *this;
    }
    if (!director) return *this;
    // An empty name (a word of zero bytes) means the default, as a null does.
    OrvRasterFont* rasterFont = font[0] ? director->font(font) : nullptr;
    OrvPattern* fillPattern = pattern[0] ? director->pattern(pattern) : nullptr;
    OrvBitmap* bitmap = nullptr;
    if (colorPattern[0]) {
        bitmap = director->bitmap(colorPattern);
        if (!bitmap) bitmap = director->readBitmap(director->rootCanvas, colorPattern);
    }
    OrvLineStyle* style = lineStyle[0] ? director->lineStyle(lineStyle) : nullptr;
    // Vector fonts come with the 3D records; a 2D make-up keeps the default.
    OrvMakeUp* made = director->makeUp(
        background, foreground, style, (unsigned short)lineWidth, fillPattern, rasterFont, bitmap,
        (OrvFillStyle)fillStyle, arcMode ? OrvArcChord : OrvArcPieSlice, (OrvFillRule)fillRule,
        nullptr, distinguish, smooth, (OrvCullingMode)cull, (OrvFaceStyle)frontStyle,
        (OrvFaceStyle)backStyle, (OrvMarkerType)markerType, (unsigned short)markerScale, nullptr);
    if (!made) return *this;
    // The list holds one count, so a make-up stays alive for later ".USE"
    // lines even when the first holder is dropped.
    OrvCount(made);
    makeUps.insert((void*)(uintptr_t)number, made);
    m = made;
    return *this;
}
