// Labels: one line of text in the make-up's font, placed by an alignment.
#include <cstdlib>
#include <cstring>

#include "orv/canvas.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/shapes.h"
#include "orv/stream.h"
#include "shapes_geometry.h"

ORV_DEFINE_CLASS_INIT(OrvLabel, "OrvActor", OrvLabel::read)

static char* copyText(const char* text) {
    if (!text) text = "";
    size_t n = strlen(text) + 1;
    char* copy = (char*)malloc(n);
    memcpy(copy, text, n);
    return copy;
}

OrvLabel::OrvLabel(OrvDirector* director, const char* caption, const Orv2dPoint& at,
                   OrvPosition align, OrvMakeUp* look)
    : OrvActor(director, look), text(copyText(caption)), point(at), alignment(align),
      extentText(nullptr), extentMakeUp(nullptr) {}

OrvLabel::OrvLabel(const OrvLabel& source)
    : OrvActor(source), text(copyText(source.text)), point(source.point),
      alignment(source.alignment), extentText(nullptr), extentMakeUp(nullptr) {}

OrvLabel::~OrvLabel() {
    free(text);
}

OrvActor* OrvLabel::copy() const {
    return new OrvLabel(*this);
}
OrvClassInfo* OrvLabel::classInfo() const {
    return _classInfo;
}

// Persistent form: the text, the anchor point and the alignment.

OrvActor* OrvLabel::read(OrvIStream& in) {
    return new OrvLabel(in);
}

void OrvLabel::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvLabel class", 1);
    out << (const char*)text;
    out << point;
    out.writePosition(alignment);
}

OrvLabel::OrvLabel(OrvIStream& in)
    : OrvActor(in), text((char*)calloc(1, 1)), point(), alignment(OrvLeft), extentText(nullptr),
      extentMakeUp(nullptr) {
    char* value = nullptr;
    in >> value;
    if (value) {
        // The label keeps its text in malloc'ed memory.
        char* copy = (char*)malloc(strlen(value) + 1);
        strcpy(copy, value);
        delete[] value;
        free(text);
        text = copy;
    }
    in >> point;
    in.readPosition(alignment);
}

// Relative to the baseline origin: y is minus the ascent.
Orv2dRect OrvLabel::textExtent() const {
    if (extentText != text || extentMakeUp != makeUp) {
        OrvRasterFont* font = makeUp ? makeUp->font() : nullptr;
        extent = font ? font->bbox(text, 0, 0) : Orv2dRect();
        extentText = text;
        extentMakeUp = makeUp;
    }
    return extent;
}

void OrvLabel::notifyOnMakeUpChanged() {
    extentMakeUp = nullptr;
    OrvActor::notifyOnMakeUpChanged();
}

// Raster text does not scale or turn: only its anchor follows the matrix.
Orv2dRect OrvLabel::textBox(const Orv2dMatrix* matrix, Orv2dPoint* baseline) const {
    Orv2dPoint anchor = OrvMapPoint(point, matrix);
    Orv2dRect measured = textExtent();
    int32_t left = anchor.x;
    if (alignment & OrvRight)
        left = anchor.x - (int32_t)measured.w;
    else if (alignment & OrvCenter)
        left = anchor.x - (int32_t)(measured.w / 2);
    int32_t base = anchor.y;
    if (alignment & OrvTop)
        base = anchor.y - measured.y;
    else if (alignment & OrvBottom)
        base = anchor.y - (measured.y + (int32_t)measured.h);
    if (baseline) *baseline = Orv2dPoint(left - measured.x, base);
    return Orv2dRect(left, base + measured.y, measured.w, measured.h);
}

Orv2dRect OrvLabel::bbox2d(const Orv2dMatrix* matrix) const {
    return textBox(matrix, nullptr);
}

void OrvLabel::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    if (!*text) return;
    Orv2dPoint baseline;
    textBox(matrix, &baseline);
    canvas->string(makeUp, baseline, text, 0, OrvLeft, 0, nullptr);
}

void OrvLabel::apply2d(const Orv2dMatrix& matrix) {
    matrix.apply(point);
}

unsigned long OrvLabel::contains2d(const Orv2dPoint& p, const Orv2dMatrix* matrix) {
    if (isSelected() && dragger2d(p, matrix)) return 1;
    Orv2dRect box = textBox(matrix, nullptr);
    return box.w && box.contains(p);
}

void OrvLabel::setText(const char* t) {
    if (t && strcmp(t, text) == 0) return;
    beginDrawing(1);
    free(text);
    text = copyText(t);
    extentText = nullptr;
    flushDrawing(1);
}

void OrvLabel::setAlignment(OrvPosition a) {
    if (a == alignment) return;
    beginDrawing(1);
    alignment = a;
    flushDrawing(1);
}

unsigned long OrvLabel::copyGeometry(const OrvActor& source) {
    if (source.classInfo() != classInfo()) return 0;
    const OrvLabel& s = (const OrvLabel&)source;
    point = s.point;
    alignment = s.alignment;
    return 1;
}
