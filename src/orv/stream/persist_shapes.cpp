// Persistent forms of the basic shapes. Each class writes its parent's keys,
// then a comment naming itself and its own items, in a fixed order that its
// reading constructor follows.
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/shapes.h"
#include "orv/stream.h"

#include <cstdlib>
#include <cstring>

OrvActor* OrvRectangle::read(OrvIStream& in) {
    return new OrvRectangle(in);
}
OrvActor* OrvFilledRectangle::read(OrvIStream& in) {
    return new OrvFilledRectangle(in);
}
OrvActor* OrvLine::read(OrvIStream& in) {
    return new OrvLine(in);
}
OrvActor* OrvArrowLine::read(OrvIStream& in) {
    return new OrvArrowLine(in);
}
OrvActor* Orv2dPolyline::read(OrvIStream& in) {
    return new Orv2dPolyline(in);
}
OrvActor* Orv2dPolygon::read(OrvIStream& in) {
    return new Orv2dPolygon(in);
}
OrvActor* OrvEllipse::read(OrvIStream& in) {
    return new OrvEllipse(in);
}
OrvActor* OrvFilledEllipse::read(OrvIStream& in) {
    return new OrvFilledEllipse(in);
}
OrvActor* OrvArc::read(OrvIStream& in) {
    return new OrvArc(in);
}
OrvActor* OrvLabel::read(OrvIStream& in) {
    return new OrvLabel(in);
}
OrvActor* OrvIcon::read(OrvIStream& in) {
    return new OrvIcon(in);
}

// Rectangles: the rectangle, then the radius of the corners.

void OrvRectangle::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvRectangle class", 1);
    out << rect;
    out << radius;
}

OrvRectangle::OrvRectangle(OrvIStream& in) : OrvActor(in), rect(), radius(0) {
    in >> rect;
    in >> radius;
}

void OrvFilledRectangle::write(OrvOStream& out) const {
    OrvRectangle::write(out);
    out.writeComments("OrvFilledRectangle class", 1);
}

OrvFilledRectangle::OrvFilledRectangle(OrvIStream& in) : OrvRectangle(in) {}

// Lines: the two ends; an arrow line adds which ends carry a head.

void OrvLine::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvLine class", 1);
    out << from;
    out << to;
}

OrvLine::OrvLine(OrvIStream& in) : OrvActor(in), from(), to() {
    in >> from;
    in >> to;
}

void OrvArrowLine::write(OrvOStream& out) const {
    OrvLine::write(out);
    out.writeComments("OrvArrowLine class", 1);
    out << arrows;
}

OrvArrowLine::OrvArrowLine(OrvIStream& in) : OrvLine(in), arrows(OrvArrowAtEnd) {
    in >> arrows;
}

// Polylines: the count, then one point a line; a polygon adds its filling.

void Orv2dPolyline::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("Orv2dPolyline class", 1);
    out << count;
    for (unsigned int i = 0; i < count; i++) out << points[i];
}

Orv2dPolyline::Orv2dPolyline(OrvIStream& in)
    : OrvActor(in), count(0), points((Orv2dPoint*)malloc(sizeof(Orv2dPoint))) {
    unsigned int n = 0;
    in >> n;
    // The array grows with the points actually read, so a count that the file
    // cannot back costs nothing.
    unsigned int capacity = 1;
    for (unsigned int i = 0; i < n && in.stream; i++) {
        unsigned long faults = in.faults;
        Orv2dPoint p;
        in >> p;
        if (in.faults != faults || !in.stream) return;
        if (count == capacity) {
            Orv2dPoint* grown =
                (Orv2dPoint*)realloc((void*)points, 2 * capacity * sizeof(Orv2dPoint));
            if (!grown) return;
            points = grown;
            capacity *= 2;
        }
        points[count++] = p;
    }
}

void Orv2dPolygon::write(OrvOStream& out) const {
    Orv2dPolyline::write(out);
    out.writeComments("Orv2dPolygon class", 1);
    out << filled;
}

Orv2dPolygon::Orv2dPolygon(OrvIStream& in) : Orv2dPolyline(in), filled(0) {
    in >> filled;
}

// Ellipses: the box; an arc adds its angles and whether it is filled.

void OrvEllipse::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvEllipse class", 1);
    out << rect;
}

OrvEllipse::OrvEllipse(OrvIStream& in) : OrvActor(in), rect() {
    in >> rect;
}

void OrvFilledEllipse::write(OrvOStream& out) const {
    OrvEllipse::write(out);
    out.writeComments("OrvFilledEllipse class", 1);
}

OrvFilledEllipse::OrvFilledEllipse(OrvIStream& in) : OrvEllipse(in) {}

void OrvArc::write(OrvOStream& out) const {
    OrvEllipse::write(out);
    out.writeComments("OrvArc class", 1);
    out << start;
    out << end;
    out << filled;
}

OrvArc::OrvArc(OrvIStream& in) : OrvEllipse(in), start(0), end(360), filled(0) {
    in >> start;
    in >> end;
    in >> filled;
}

// Labels: the text, the anchor point and the alignment.

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

// Icons: the point, then the bitmap by name with its mask.

void OrvIcon::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("OrvIcon class", 1);
    out << point;
    out << (const OrvBitmap*)bitmap;
}

OrvIcon::OrvIcon(OrvIStream& in)
    : OrvActor(in), bitmap(nullptr), point(), maskBits(nullptr), maskBytesPerLine(0) {
    in >> point;
    OrvBitmap* b = nullptr;
    in >> b;
    bitmap = b;
    if (bitmap) bitmap->lock();
    readMask();
}

// The bitmap item: the name and the mask's name, each quoted.

OrvOStream& OrvOStream::operator<<(const OrvBitmap* bitmap) {
    stream << indent() << "bitmap\t";
    OrvWriteString(stream, bitmap ? bitmap->name : nullptr);
    stream << '\n' << indent() << "mask\t";
    OrvWriteString(stream, bitmap && bitmap->mask ? bitmap->mask->name : nullptr);
    stream << '\n';
    return *this;
}

// A bitmap by name: the director's own first, else loaded along the path.
static OrvBitmap* findBitmap(OrvDirector* director, const char* name) {
    if (!director) return nullptr;
    OrvBitmap* found = director->bitmap(name);
    if (!found) found = director->readBitmap(director->rootCanvas, name);
    return found;
}

OrvIStream& OrvIStream::operator>>(OrvBitmap*& bitmap) {
    char key[1024];
    nextItem();
    word(key);
    if (strcmp(key, "bitmap")) {
        fault("OrvIStream : Bad bitmap value.\n");
        return *this;
    }
    const char* read = OrvReadString(stream);
    if (!stream) {
        fault("OrvIStream : Bad bitmap value.\n");
        return *this;
    }
    // The string buffer is shared: the name is copied before the next read.
    char* name = (char*)malloc(strlen(read) + 1);
    strcpy(name, read);
    nextItem();
    word(key);
    const char* maskName = strcmp(key, "mask") ? nullptr : OrvReadString(stream);
    if (!maskName || !stream) {
        free(name);
        fault("OrvIStream : Bad bitmap mask value.\n");
        return *this;
    }
    if (name[0]) {
        OrvBitmap* found = findBitmap(director, name);
        if (found) {
            bitmap = found;
            if (maskName[0]) {
                OrvBitmap* mask = findBitmap(director, maskName);
                if (mask && mask != found) found->setMask(mask);
            }
        }
    }
    free(name);
    return *this;
}
