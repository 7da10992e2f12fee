// 3D actors: an actor with a matrix of its own (its display list is drawn
// in the display code), a face set and a series with face colours and
// materials, and their persistent forms.
#include <cstring>

#include "orv/actor3d.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/scene.h"
#include "orv/stream.h"

#include "../stream/scan.h"
#include "vertex_io.h"

ORV_DEFINE_CLASS_INIT(Orv3dActor, "OrvActor", Orv3dActor::read)
ORV_DEFINE_CLASS_INIT(Orv3dActorFaceSet, "Orv3dActor", Orv3dActorFaceSet::read)
ORV_DEFINE_CLASS_INIT(Orv3dShape, "Orv3dActor", Orv3dShape::read)

// Whether the next item begins with the word, which is left in the stream.
// Files and strings can step back over it; a stream that cannot is judged by
// the first character, which tells apart every key that may come here.
static bool nextWordIs(OrvIStream& in, const char* key) {
    in.nextItem();
    if (!in.stream) return false;
    std::istream::pos_type at = in.stream.tellg();
    if (at == std::istream::pos_type(-1)) {
        in.stream.clear();
        return OrvScanPeek(in.stream) == (unsigned char)key[0];
    }
    char word[1024];
    in.word(word);
    in.stream.clear();
    in.stream.seekg(at);
    return !strcmp(word, key);
}

// ---------------------------------------------------------------------------
// Orv3dActor
// ---------------------------------------------------------------------------

Orv3dActor::Orv3dActor(OrvDirector* director, OrvMakeUp* look)
    : OrvActor(director, look), displayList(0), matrix(nullptr) {}

// A list belongs to the actor that compiled it: the copy makes its own.
Orv3dActor::Orv3dActor(const Orv3dActor& source)
    : OrvActor(source), displayList(0),
      matrix(source.matrix ? new Orv3dMatrix(*source.matrix) : nullptr) {}

OrvActor* Orv3dActor::copy() const {
    return new Orv3dActor(*this);
}
OrvClassInfo* Orv3dActor::classInfo() const {
    return _classInfo;
}

void Orv3dActor::immediate(unsigned long on) {
    if (isImmediate() == (on ? 1ul : 0ul)) return;
    setBit(OrvImmediateBit, on);
    takeAPicture();
}

void Orv3dActor::notifyOnMakeUpChanged() {
    if (OrvUpdateDisplayListOnMakeUpChanged()) takeAPicture();
}

const Orv3dMatrix* Orv3dActor::to3dWorld() const {
    return matrix;
}

void Orv3dActor::to3dWorld(const Orv3dMatrix* m) {
    beginDrawing(1);
    if (!m) {
        delete matrix;
        matrix = nullptr;
    } else if (matrix) {
        *matrix = *m;
    } else {
        matrix = new Orv3dMatrix(*m);
    }
    notifyOn3dMatrixChanged();
    flushDrawing(1);
}

void Orv3dActor::changeMatrix(void (*step)(Orv3dMatrix&, const void*), const void* data) {
    beginDrawing(1);
    if (!matrix) matrix = new Orv3dMatrix();
    step(*matrix, data);
    notifyOn3dMatrixChanged();
    flushDrawing(1);
}

namespace {
// One matrix step with its arguments, applied inside the change protocol.
enum StepKind {
    StepRotateX,
    StepRotateY,
    StepRotateZ,
    StepRotate,
    StepTranslate,
    StepScale
};
struct Step {
    StepKind kind;
    double degrees;
    Orv3dPoint p1, p2;  // the axis of StepRotate; x, y, z of a translation or a scale in p1
    unsigned long accumulate;
};
}  // namespace

static void applyStep(Orv3dMatrix& m, const void* data) {
    const Step* s = (const Step*)data;
    const Orv3dPoint& p = s->p1;
    switch (s->kind) {
        case StepRotateX:
            m.rotateX(s->degrees, s->accumulate);
            break;
        case StepRotateY:
            m.rotateY(s->degrees, s->accumulate);
            break;
        case StepRotateZ:
            m.rotateZ(s->degrees, s->accumulate);
            break;
        case StepRotate:
            m.rotate(s->p1, s->p2, s->degrees, s->accumulate);
            break;
        case StepTranslate:
            m.translate(p.x, p.y, p.z, s->accumulate);
            break;
        case StepScale:
            m.scale(p.x, p.y, p.z, s->accumulate);
            break;
    }
}

void Orv3dActor::rotateX(const double& degrees, unsigned long accumulate) {
    Step s{StepRotateX, degrees, Orv3dPoint(), Orv3dPoint(), accumulate};
    changeMatrix(applyStep, &s);
}

void Orv3dActor::rotateY(const double& degrees, unsigned long accumulate) {
    Step s{StepRotateY, degrees, Orv3dPoint(), Orv3dPoint(), accumulate};
    changeMatrix(applyStep, &s);
}

void Orv3dActor::rotateZ(const double& degrees, unsigned long accumulate) {
    Step s{StepRotateZ, degrees, Orv3dPoint(), Orv3dPoint(), accumulate};
    changeMatrix(applyStep, &s);
}

void Orv3dActor::rotate(const Orv3dPoint& p1, const Orv3dPoint& p2, const double& degrees,
                        unsigned long accumulate) {
    Step s{StepRotate, degrees, p1, p2, accumulate};
    changeMatrix(applyStep, &s);
}

void Orv3dActor::translate(const float& x, const float& y, const float& z,
                           unsigned long accumulate) {
    Step s{StepTranslate, 0, Orv3dPoint(x, y, z), Orv3dPoint(), accumulate};
    changeMatrix(applyStep, &s);
}

void Orv3dActor::scale(const float& x, const float& y, const float& z, unsigned long accumulate) {
    Step s{StepScale, 0, Orv3dPoint(x, y, z), Orv3dPoint(), accumulate};
    changeMatrix(applyStep, &s);
}

// As the other steps: with accumulate the built matrix comes after the one
// the actor has.
void Orv3dActor::build3dMatrix(const Orv3dPoint& centre, const Orv3dVector& translation,
                               const double& rx, const double& ry, const double& rz,
                               const Orv3dVector& scaling, unsigned long accumulate) {
    Orv3dMatrix built;
    built.build(centre, translation, rx, ry, rz, scaling);
    const Orv3dMatrix step = accumulate && matrix ? built * *matrix : built;
    changeMatrix([](Orv3dMatrix& m, const void* data) { m = *(const Orv3dMatrix*)data; }, &step);
}

// Persistent form: the actor's items, then the matrix only when there is one.

OrvActor* Orv3dActor::read(OrvIStream& in) {
    return new Orv3dActor(in);
}

void Orv3dActor::write(OrvOStream& out) const {
    OrvActor::write(out);
    out.writeComments("Orv3dActor class", 1);
    if (matrix) out << *matrix;
}

Orv3dActor::Orv3dActor(OrvIStream& in) : OrvActor(in), displayList(0), matrix(nullptr) {
    if (!in.stream || !nextWordIs(in, "matrix3d")) return;
    Orv3dMatrix m;
    unsigned long before = in.faults;
    in >> m;
    if (in.faults == before && in.stream) matrix = new Orv3dMatrix(m);
}

// ---------------------------------------------------------------------------
// Orv3dActorFaceSet
// ---------------------------------------------------------------------------

Orv3dActorFaceSet::Orv3dActorFaceSet(OrvDirector* director, OrvFaceSet* faceSet, OrvMakeUp* look)
    : Orv3dActor(director, look), faces(faceSet) {}

Orv3dActorFaceSet::Orv3dActorFaceSet(const Orv3dActorFaceSet& source)
    : Orv3dActor(source), faces(source.faces ? source.faces->copy() : nullptr) {}

Orv3dActorFaceSet::~Orv3dActorFaceSet() {
    delete faces;
}

OrvActor* Orv3dActorFaceSet::copy() const {
    return new Orv3dActorFaceSet(*this);
}
OrvClassInfo* Orv3dActorFaceSet::classInfo() const {
    return _classInfo;
}

// The same set given again tells that it changed in place.
void Orv3dActorFaceSet::faceSet(OrvFaceSet* faceSet) {
    beginDrawing(1);
    if (faceSet != faces) delete faces;
    faces = faceSet;
    takeAPicture();
    flushDrawing(1);
}

void Orv3dActorFaceSet::draw3d(const OrvScene* scene) const {
    if (faces) scene->polygon(makeUp, faces, 1);
}

Orv3dVolume Orv3dActorFaceSet::bbox3d(unsigned long world) const {
    if (!faces) return Orv3dVolume();
    Orv3dVolume v = faces->bbox3d();
    if (world && matrix) matrix->apply(v);
    return v;
}

OrvActor* Orv3dActorFaceSet::read(OrvIStream& in) {
    return new Orv3dActorFaceSet(in);
}

void Orv3dActorFaceSet::write(OrvOStream& out) const {
    Orv3dActor::write(out);
    out.writeComments("Orv3dActorFaceSet class", 1);
    if (faces) faces->write(out);
}

Orv3dActorFaceSet::Orv3dActorFaceSet(OrvIStream& in) : Orv3dActor(in), faces(nullptr) {
    if (in.stream && nextWordIs(in, "faceSet")) faces = OrvFaceSet::read(in);
}

// ---------------------------------------------------------------------------
// Orv3dShape
// ---------------------------------------------------------------------------

static unsigned faceCount(const OrvSeries* series) {
    return series ? series->faceCardinal() : 0;
}

// A colour a face, or none: a share of another kind, or too short for the
// faces, would be read past its end.
static OrvShare* acceptColors(const OrvSeries* series, OrvShare* colors) {
    if (!colors) return nullptr;
    if (colors->kind != OrvShareColors || colors->cardinal < faceCount(series)) {
        OrvError("Orv3dShape::colors : Bad arguments.\n");
        return nullptr;
    }
    colors->lock();
    return colors;
}

// A counted copy of a material a face (null entries are faces without one).
static OrvColor** copyMaterials(const OrvSeries* series, OrvColor* const* materials,
                                unsigned& count) {
    count = materials ? faceCount(series) : 0;
    if (!count) return nullptr;
    OrvColor** copy = new OrvColor*[count];
    for (unsigned i = 0; i < count; i++) {
        copy[i] = materials[i];
        OrvCount(copy[i]);
    }
    return copy;
}

static void releaseMaterials(OrvColor** materials, unsigned count) {
    for (unsigned i = 0; materials && i < count; i++) OrvRelease(materials[i]);
    delete[] materials;
}

Orv3dShape::Orv3dShape(OrvDirector* director, OrvSeries* s, OrvShare* c, OrvColor** m,
                       OrvMakeUp* look)
    : Orv3dActor(director, look), series_(s), colors_(acceptColors(s, c)), materials_(nullptr),
      materialCount(0) {
    materials_ = copyMaterials(s, m, materialCount);
}

Orv3dShape::Orv3dShape(const Orv3dShape& source)
    : Orv3dActor(source), series_(source.series_ ? (OrvSeries*)source.series_->copy() : nullptr),
      colors_(source.colors_), materials_(nullptr), materialCount(0) {
    if (colors_) colors_->lock();
    if (source.materials_) {
        materialCount = source.materialCount;
        materials_ = new OrvColor*[materialCount];
        for (unsigned i = 0; i < materialCount; i++) {
            materials_[i] = source.materials_[i];
            OrvCount(materials_[i]);
        }
    }
}

Orv3dShape::~Orv3dShape() {
    delete series_;
    if (colors_) colors_->unLock();
    releaseMaterials(materials_, materialCount);
}

OrvActor* Orv3dShape::copy() const {
    return new Orv3dShape(*this);
}
OrvClassInfo* Orv3dShape::classInfo() const {
    return _classInfo;
}

// New ones are taken before the old ones go: the same share or colours may
// come back.
void Orv3dShape::series(OrvSeries* s, OrvShare* c, OrvColor** m) {
    beginDrawing(1);
    OrvShare* oldColors = colors_;
    OrvColor** oldMaterials = materials_;
    unsigned oldCount = materialCount;
    if (s != series_) delete series_;
    series_ = s;
    colors_ = acceptColors(series_, c);
    materials_ = copyMaterials(series_, m, materialCount);
    if (oldColors) oldColors->unLock();
    releaseMaterials(oldMaterials, oldCount);
    takeAPicture();
    flushDrawing(1);
}

void Orv3dShape::colors(OrvShare* c) {
    beginDrawing(0);
    OrvShare* old = colors_;
    colors_ = acceptColors(series_, c);
    if (old) old->unLock();
    // New colours are no new geometry: the pick hierarchy stays.
    Orv3dActor::takeAPicture();
    flushDrawing(0);
}

void Orv3dShape::materials(OrvColor** m) {
    beginDrawing(0);
    OrvColor** old = materials_;
    unsigned oldCount = materialCount;
    materials_ = copyMaterials(series_, m, materialCount);
    releaseMaterials(old, oldCount);
    Orv3dActor::takeAPicture();
    flushDrawing(0);
}

// Colours and materials that no longer cover every face (the series grew in
// place) are left out rather than read past their end.
void Orv3dShape::draw3d(const OrvScene* scene) const {
    if (!series_) return;
    unsigned n = faceCount(series_);
    const OrvRGB* faceColors = colors_ && colors_->cardinal >= n ? colors_->colors() : nullptr;
    const OrvColor* const* faceMaterials = materialCount >= n ? materials_ : nullptr;
    scene->series(makeUp, series_, faceColors, faceMaterials);
}

Orv3dVolume Orv3dShape::bbox3d(unsigned long world) const {
    if (!series_) return Orv3dVolume();
    Orv3dVolume v = series_->bbox3d();
    if (world && matrix) matrix->apply(v);
    return v;
}

// Persistent form: the series block (absent without a series), "colors"
// with "None" or a shared array, "materials" with "None" or a count and a
// colour record a face ("None" for a face without one).

OrvActor* Orv3dShape::read(OrvIStream& in) {
    return new Orv3dShape(in);
}

void Orv3dShape::write(OrvOStream& out) const {
    Orv3dActor::write(out);
    out.writeComments("Orv3dShape class", 1);
    if (series_) series_->write(out);
    if (colors_) {
        out.stream << out.indent() << "colors" << '\n';
        out << (const OrvShare*)colors_;
    } else {
        out.key("colors") << "None" << '\n';
    }
    if (!materials_) {
        out.key("materials") << "None" << '\n';
        return;
    }
    out.key("materials") << materialCount << '\n';
    for (unsigned i = 0; i < materialCount; i++) {
        if (materials_[i])
            out << (const OrvColor*)materials_[i];
        else
            out.stream << out.indent() << "None" << '\n';
    }
}

static const char* const badShapeItem = "Orv3dShape::Orv3dShape : Bad item (%s %s).\n";

Orv3dShape::Orv3dShape(OrvIStream& in)
    : Orv3dActor(in), series_(nullptr), colors_(nullptr), materials_(nullptr), materialCount(0) {
    if (!in.stream) return;
    if (!nextWordIs(in, "colors")) {
        series_ = nextWordIs(in, "triangleStripSet") ? OrvTriangleStripSet::read(in)
                                                     : OrvSeries::read(in);
        if (!series_) return;
    }
    unsigned n = faceCount(series_);
    if (!_OrvReadKey_(in, "colors", badShapeItem)) return;
    if (nextWordIs(in, "None")) {
        char none[1024];
        in.word(none);
    } else {
        unsigned long before = in.faults;
        OrvShare* share = nullptr;
        in >> share;
        if (in.faults != before || !share) return;
        if (share->kind != OrvShareColors || share->cardinal < n) {
            in.fault(badShapeItem, "colors", "");
            return;
        }
        share->lock();
        colors_ = share;
    }
    if (!_OrvReadKey_(in, "materials", badShapeItem)) return;
    char word[1024];
    in.word(word);
    if (!strcmp(word, "None")) return;
    unsigned count = 0;
    if (!_OrvNumber_(word, count) || count != n || !count) {
        in.fault(badShapeItem, "materials", word);
        return;
    }
    // Entries are taken one by one, so that a fault leaves only counted ones.
    materials_ = new OrvColor*[count]();
    materialCount = count;
    for (unsigned i = 0; i < count; i++) {
        if (nextWordIs(in, "None")) {
            in.word(word);
            continue;
        }
        unsigned long before = in.faults;
        OrvColor* color = nullptr;
        in >> color;
        if (in.faults != before || !in.stream || !color) {
            if (in.faults == before) in.fault(badShapeItem, "materials", "");
            return;
        }
        materials_[i] = color;
        OrvCount(color);
    }
}
