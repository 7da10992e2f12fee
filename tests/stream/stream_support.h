// Test-only persistent actors of the stream tests: a filled box and an actor
// that refers to another one, each with its own persistent form.
#ifndef ORV_TEST_STREAM_SUPPORT_H
#define ORV_TEST_STREAM_SUPPORT_H

#include "orv/actor.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/stream.h"

#include <sstream>
#include <string>

// A filled box in its make-up's foreground.
class StreamBox : public OrvActor {
public:
    Orv2dRect box;

    StreamBox(OrvDirector* d, OrvMakeUp* m, const Orv2dRect& r) : OrvActor(d, m), box(r) {}
    // The class comment before the box is skipped by the item reader.
    explicit StreamBox(OrvIStream& in) : OrvActor(in) { in >> box; }
    OrvClassInfo* classInfo() const override { return _classInfo; }
    void write(OrvOStream& out) const override {
        OrvActor::write(out);
        out.writeComments("StreamBox class", 1);
        out << box;
    }
    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override {
        Orv2dRect r = box;
        if (matrix) matrix->apply(r);
        return r;
    }
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override {
        canvas->rectangle(makeUp, box, 1, matrix);
    }
    void apply2d(const Orv2dMatrix& matrix) override { matrix.apply(box); }
    static OrvActor* read(OrvIStream& in) { return new StreamBox(in); }
    static OrvClassInfo* _classInfo;
};
ORV_DECLARE_CLASS_INIT(StreamBox)

// Refers to another actor by its number in the file.
class StreamRef : public OrvActor {
public:
    OrvActor* target;

    StreamRef(OrvDirector* d, OrvActor* t) : OrvActor(d, nullptr), target(t) {}
    explicit StreamRef(OrvIStream& in) : OrvActor(in), target(nullptr) {
        char buffer[1024];
        if (!_OrvReadItem_(in, buffer, "target")) return;
        target = in.readIndex();
    }
    OrvClassInfo* classInfo() const override { return _classInfo; }
    void mapReferences(void (*function)(OrvActor*, void*), void* data) override {
        if (target) function(target, data);
    }
    void write(OrvOStream& out) const override {
        OrvActor::write(out);
        out.key("target");
        out.writeIndex(target);
        out.stream << '\n';
    }
    static OrvActor* read(OrvIStream& in) { return new StreamRef(in); }
    static OrvClassInfo* _classInfo;
};
ORV_DECLARE_CLASS_INIT(StreamRef)

#endif
