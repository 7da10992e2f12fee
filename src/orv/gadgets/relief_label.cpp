// Relief labels (text and a bitmap on a relief) and clusters (group boxes),
// with the measure of a label's contents.
#include "orv/relief.h"

#include <cstdlib>
#include <cstring>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/stage.h"
#include "orv/stream.h"

ORV_DEFINE_CLASS_INIT(OrvReliefLabel, "OrvReliefRectangle", OrvReliefLabel::read)
ORV_DEFINE_CLASS_INIT(OrvCluster, "OrvReliefLabel", OrvCluster::read)

static char* copyText(const char* text) {
    if (!text) text = "";
    size_t n = strlen(text) + 1;
    char* copy = (char*)malloc(n);
    memcpy(copy, text, n);
    return copy;
}

Orv2dRect OrvLabelBitmapSizes(OrvMakeUp* makeUp, const char* label, const OrvBitmap* bitmap,
                              OrvPosition alignment, unsigned short space) {
    uint32_t tw = 0, th = 0;
    OrvRasterFont* font = makeUp ? makeUp->font() : nullptr;
    unsigned lines = 0;
    char** labels =
        OrvTextToLabels(OrvGetMessage(makeUp ? makeUp->director : nullptr, label), lines);
    for (unsigned i = 0; font && i < lines; i++) {
        Orv2dRect b = font->bbox(labels[i], 0, 1);
        if (b.w > tw) tw = b.w;
        th += b.h;
    }
    if (!bitmap) return Orv2dRect(0, 0, tw, th);
    uint32_t bw = (uint32_t)bitmap->width, bh = (uint32_t)bitmap->height;
    if (lines == 0) return Orv2dRect(0, 0, bw, bh);
    if (alignment == OrvLeft || alignment == OrvRight)
        return Orv2dRect(0, 0, tw + space + bw, th > bh ? th : bh);
    if (alignment == OrvTop || alignment == OrvBottom)
        return Orv2dRect(0, 0, tw > bw ? tw : bw, th + space + bh);
    return Orv2dRect(0, 0, tw > bw ? tw : bw, th > bh ? th : bh);
}

// ---------------------------------------------------------------------------
// Relief label
// ---------------------------------------------------------------------------

OrvReliefLabel::OrvReliefLabel(OrvDirector* director, const Orv2dRect& box, const char* text,
                               unsigned short width, OrvMakeUp* look)
    : OrvReliefRectangle(director, box, width, look), label(copyText(text)), alignment(OrvLeft),
      bitmap(nullptr), space(4), backShown(1), attached(1) {}

OrvReliefLabel::OrvReliefLabel(const OrvReliefLabel& source)
    : OrvReliefRectangle(source), label(copyText(source.label)), alignment(source.alignment),
      bitmap(nullptr), space(source.space), backShown(source.backShown), attached(source.attached) {
    useBitmap(source.bitmap);
}

OrvReliefLabel::~OrvReliefLabel() {
    OrvStage* stage = getStage();
    if (stage) stage->remove(this, 0);
    useBitmap(nullptr);
    free(label);
}

OrvActor* OrvReliefLabel::copy() const {
    return new OrvReliefLabel(*this);
}
OrvClassInfo* OrvReliefLabel::classInfo() const {
    return _classInfo;
}
const char* OrvReliefLabel::defaultRole() const {
    return "Button";
}

void OrvReliefLabel::useBitmap(OrvBitmap* b) {
    if (b == bitmap) return;
    if (b) b->lock();
    if (bitmap) bitmap->unLock();
    bitmap = b;
}

// Persistent form: label, alignment, space, background and attach flags, bitmap.

OrvActor* OrvReliefLabel::read(OrvIStream& in) {
    return new OrvReliefLabel(in);
}

void OrvReliefLabel::write(OrvOStream& out) const {
    OrvReliefRectangle::write(out);
    out.writeComments("OrvReliefLabel class", 1);
    out << (const char*)label;
    out.writePosition(alignment);
    out << space;
    out << backShown;
    out << attached;
    out << (const OrvBitmap*)bitmap;
}

OrvReliefLabel::OrvReliefLabel(OrvIStream& in)
    : OrvReliefRectangle(in), label(copyText(nullptr)), alignment(OrvLeft), bitmap(nullptr),
      space(4), backShown(1), attached(1) {
    unsigned long before = in.faults;
    auto good = [&]() { return in.faults == before && in.stream; };
    if (!good()) return;
    char* text = nullptr;
    in >> text;
    if (text) {
        free(label);
        label = copyText(text);
        delete[] text;
    }
    if (!good()) return;
    in.readPosition(alignment);
    if (!good()) return;
    in >> space;
    if (!good()) return;
    in >> backShown;
    if (!good()) return;
    in >> attached;
    if (!good()) return;
    OrvBitmap* b = nullptr;
    in >> b;
    if (good()) useBitmap(b);
}

// Setters: each a change of what the box shows, framed by the change protocol.

void OrvReliefLabel::setBitmap(OrvBitmap* b) {
    if (b == bitmap) return;
    beginDrawing(1);
    useBitmap(b);
    flushDrawing(1);
}

void OrvReliefLabel::setAlignement(OrvPosition a) {
    if (a == alignment) return;
    beginDrawing(1);
    alignment = a;
    flushDrawing(1);
}

void OrvReliefLabel::setLabel(const char* text) {
    if (!text) text = "";
    if (strcmp(text, label) == 0) return;
    beginDrawing(1);
    free(label);
    label = copyText(text);
    flushDrawing(1);
}

void OrvReliefLabel::setLabelBitmapSpace(unsigned short s) {
    if (s == space) return;
    beginDrawing(1);
    space = s;
    flushDrawing(1);
}

void OrvReliefLabel::showBackground(unsigned long on) {
    on = on ? 1 : 0;
    if (on == backShown) return;
    beginDrawing(1);
    backShown = on;
    flushDrawing(1);
}

void OrvReliefLabel::attach(unsigned long on) {
    on = on ? 1 : 0;
    if (on == attached) return;
    beginDrawing(1);
    attached = on;
    flushDrawing(1);
}

Orv2dRect OrvReliefLabel::getLabelBitmapSizes(OrvMakeUp* m) const {
    return OrvLabelBitmapSizes(m, label, bitmap, alignment, space);
}

void OrvReliefLabel::fitToContents() {
    Orv2dRect contents = getLabelBitmapSizes(makeUp);
    uint32_t margin = 4u * thickness;
    setRect(Orv2dRect(rect.x, rect.y, contents.w + margin, contents.h + margin));
}

void OrvReliefLabel::drawContents(OrvCanvas* canvas, const Orv2dRect& r) {
    uint32_t t = thickness;
    if (2 * t >= r.w || 2 * t >= r.h) return;
    Orv2dRect inside(r.x + (int32_t)t, r.y + (int32_t)t, r.w - 2 * t, r.h - 2 * t);
    const OrvMakeUp* ink = isSensitive() ? makeUp : disabledMakeUp;
    OrvPosition style = bitmap && attached ? OrvCenter : OrvLeft;
    canvas->clipStringBitmap(ink, inside, OrvGetMessage(makeUp->director, label), bitmap, 0, 1,
                             style, alignment, nullptr);
}

void OrvReliefLabel::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    Orv2dRect r = mapped(matrix);
    if (backShown)
        OrvReliefRectangle::draw2d(canvas, matrix);
    else if (isSelected())
        canvas->rectangle(makeUp, r, 0, nullptr);
    drawContents(canvas, r);
}

// ---------------------------------------------------------------------------
// Cluster
// ---------------------------------------------------------------------------

OrvCluster::OrvCluster(OrvDirector* director, const Orv2dRect& box, const char* title,
                       unsigned short width, OrvMakeUp* look)
    : OrvReliefLabel(director, box, title, width, look) {}

OrvCluster::OrvCluster(const OrvCluster& source) : OrvReliefLabel(source) {}

OrvActor* OrvCluster::copy() const {
    return new OrvCluster(*this);
}
OrvClassInfo* OrvCluster::classInfo() const {
    return _classInfo;
}

// Persistent form: the label's, then the class comment.

OrvActor* OrvCluster::read(OrvIStream& in) {
    return new OrvCluster(in);
}

void OrvCluster::write(OrvOStream& out) const {
    OrvReliefLabel::write(out);
    out.writeComments("OrvCluster class", 1);
}

OrvCluster::OrvCluster(OrvIStream& in) : OrvReliefLabel(in) {}

void OrvCluster::fitToContents() {
    Orv2dRect contents = getLabelBitmapSizes(makeUp);
    uint32_t margin = 4u * thickness;
    setRect(Orv2dRect(rect.x, rect.y, contents.w + margin, contents.h + margin + thickness + 50));
}

Orv2dRect OrvCluster::titleBox(const Orv2dMatrix* matrix) const {
    if (!label[0]) return Orv2dRect();
    Orv2dRect r = mapped(matrix);
    Orv2dRect title = OrvLabelBitmapSizes(makeUp, label, nullptr, OrvLeft, 0);
    if (title.w == 0) return Orv2dRect();
    return Orv2dRect(r.x + 10 + 2 * (int32_t)thickness, r.y, title.w + 8, title.h);
}

Orv2dRect OrvCluster::frameBox(const Orv2dMatrix* matrix) const {
    Orv2dRect r = mapped(matrix);
    uint32_t drop = titleBox(matrix).h / 2;
    if (drop > r.h) drop = r.h;
    return Orv2dRect(r.x, r.y + (int32_t)drop, r.w, r.h - drop);
}

unsigned long OrvCluster::contains2d(const Orv2dPoint& p, const Orv2dMatrix* matrix) {
    if (isSelected() && dragger2d(p, matrix)) return 1;
    Orv2dRect f = frameBox(matrix);
    uint32_t t = thickness;
    if (!(f.w > 2 * t && f.h > 2 * t)) return mapped(matrix).contains(p);
    Orv2dRect title = titleBox(matrix);
    if (title.w && title.contains(p)) return 1;
    int32_t band = 2 * (int32_t)t;
    Orv2dRect outer(f.x - band, f.y - band, f.w + 2 * band, f.h + 2 * band);
    if (!outer.contains(p)) return 0;
    // Inside the inner edge of the band the pointer passes through.
    int64_t left = (int64_t)f.x + band, right = f.right() - band;
    int64_t top = (int64_t)f.y + band, bottom = f.bottom() - band;
    bool interior = p.x > left && p.x < right && p.y > top && p.y < bottom;
    return interior ? 0 : 1;
}

// A relief ring of width t along the edge of r, without a face.
static void ring(OrvCanvas* canvas, const Orv2dRect& r, int t, const OrvMakeUp* top,
                 const OrvMakeUp* bottom) {
    int x = r.x, y = r.y, w = (int)r.w, h = (int)r.h;
    Orv2dPoint upper[6] = {
        Orv2dPoint(x, y),         Orv2dPoint(x + w, y),         Orv2dPoint(x + w - t, y + t),
        Orv2dPoint(x + t, y + t), Orv2dPoint(x + t, y + h - t), Orv2dPoint(x, y + h)};
    canvas->polyLine(top, 6, upper, 1, nullptr);
    Orv2dPoint lower[6] = {Orv2dPoint(x + w - t, y + t), Orv2dPoint(x + w, y),
                           Orv2dPoint(x + w, y + h),     Orv2dPoint(x, y + h),
                           Orv2dPoint(x + t, y + h - t), Orv2dPoint(x + w - t, y + h - t)};
    canvas->polyLine(bottom, 6, lower, 1, nullptr);
}

void OrvCluster::draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) {
    Orv2dRect f = frameBox(matrix);
    const OrvMakeUp *face, *top, *bottom;
    stateMakeUps(face, top, bottom);
    int t = thickness;
    if (t > 0 && 2 * t < (int)f.w && 2 * t < (int)f.h) {
        // An etched groove: a sunken outer half and a raised inner half.
        int outer = t / 2 > 0 ? t / 2 : 1;
        ring(canvas, f, outer, bottom, top);
        if (t - outer > 0) {
            Orv2dRect inner(f.x + outer, f.y + outer, f.w - 2 * outer, f.h - 2 * outer);
            ring(canvas, inner, t - outer, top, bottom);
        }
    }
    if (border_ || t == 0) canvas->rectangle(makeUp, f, 0, nullptr);
    Orv2dRect title = titleBox(matrix);
    if (title.w) {
        canvas->rectangle(faceMakeUp, title, 1, nullptr);
        const OrvMakeUp* ink = isSensitive() ? makeUp : disabledMakeUp;
        canvas->clipString(ink, title, OrvGetMessage(makeUp->director, label), 0, OrvCenter, 1,
                           nullptr);
    }
}
