// The line actors: a segment, a polyline, the Catmull-Rom and Bézier paths
// built on it, a grid on an axis plane and the three grids of a corner; their
// drawing, boxes, picking and persistent forms.
#include "orv/lines3d.h"

#include <vector>

#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"
#include "orv/scene.h"
#include "orv/stream.h"

#include "orv/pick.h"

ORV_DEFINE_CLASS_INIT(Orv3dLine, "Orv3dActor", Orv3dLine::read)
ORV_DEFINE_CLASS_INIT(Orv3dPolyline, "Orv3dActor", Orv3dPolyline::read)
ORV_DEFINE_CLASS_INIT(Orv3dSplinePath, "Orv3dPolyline", Orv3dSplinePath::read)
ORV_DEFINE_CLASS_INIT(Orv3dCurvePath, "Orv3dSplinePath", Orv3dCurvePath::read)
ORV_DEFINE_CLASS_INIT(Orv3dWall, "Orv3dActor", Orv3dWall::read)
ORV_DEFINE_CLASS_INIT(Orv3dWalls, "Orv3dActor", Orv3dWalls::read)

// The volume of the points; the empty volume at the origin for none.
static Orv3dVolume volumeOf(unsigned count, const Orv3dPoint* points) {
    if (!count || !points) return Orv3dVolume();
    Orv3dVolume v(points[0]);
    for (unsigned i = 1; i < count; i++) v.extendBy(points[i]);
    return v;
}

static Orv3dVolume inWorld(Orv3dVolume v, unsigned long world, const Orv3dMatrix* matrix) {
    if (world && matrix) matrix->apply(v);
    return v;
}

// One typed item into `value`; false when it was not there in full (the
// stream or the item's own reader has said why).
template <class T>
static bool readItem(OrvIStream& in, T& value) {
    unsigned long before = in.faults;
    T v{};
    in >> v;
    if (in.faults != before || !in.stream) return false;
    value = v;
    return true;
}

// A count ("uiData") and that many "point3d" items. The points are taken one
// by one, so that a count spoilt into a large number costs only what the
// stream really holds.
static bool readPointList(OrvIStream& in, std::vector<Orv3dPoint>& points) {
    unsigned count = 0;
    if (!readItem(in, count)) return false;
    for (unsigned i = 0; i < count; i++) {
        Orv3dPoint p;
        if (!readItem(in, p)) return false;
        points.push_back(p);
    }
    return true;
}

static void writePointList(OrvOStream& out, unsigned count, const Orv3dPoint* points) {
    out << count;
    for (unsigned i = 0; i < count; i++) out << points[i];
}

// ---------------------------------------------------------------------------
// Orv3dLine
// ---------------------------------------------------------------------------

Orv3dLine::Orv3dLine(OrvDirector* director, const Orv3dPoint& f, const Orv3dPoint& t,
                     OrvMakeUp* look)
    : Orv3dActor(director, look), from(f), to(t) {
    removeProperty(OrvLightBit);
}

Orv3dLine::Orv3dLine(const Orv3dLine& source)
    : Orv3dActor(source), from(source.from), to(source.to) {}

OrvActor* Orv3dLine::copy() const {
    return new Orv3dLine(*this);
}
OrvClassInfo* Orv3dLine::classInfo() const {
    return _classInfo;
}

void Orv3dLine::setLine(const Orv3dPoint& f, const Orv3dPoint& t) {
    beginDrawing(1);
    from = f;
    to = t;
    takeAPicture();
    flushDrawing(1);
}

void Orv3dLine::draw3d(const OrvScene* scene) const {
    scene->line(makeUp, from, to);
}

Orv3dVolume Orv3dLine::bbox3d(unsigned long world) const {
    const Orv3dPoint ends[2] = {from, to};
    return inWorld(volumeOf(2, ends), world, matrix);
}

unsigned long Orv3dLine::contains3d(const Orv2dPoint& point, const OrvScene* scene) const {
    return OrvPick3dLine(point, from, to, scene, this);
}

// Persistent form: the actor's items, then the two ends.

OrvActor* Orv3dLine::read(OrvIStream& in) {
    return new Orv3dLine(in);
}

void Orv3dLine::write(OrvOStream& out) const {
    Orv3dActor::write(out);
    out.writeComments("Orv3dLine class", 1);
    out << from << to;
}

Orv3dLine::Orv3dLine(OrvIStream& in) : Orv3dActor(in), from(), to() {
    Orv3dPoint f, t;
    if (!in.stream || !readItem(in, f) || !readItem(in, t)) return;
    from = f;
    to = t;
}

// ---------------------------------------------------------------------------
// Orv3dPolyline
// ---------------------------------------------------------------------------

// The director's default make-up in the line style "dash", when none is given.
static OrvMakeUp* dashedUnlessGiven(OrvDirector* director, OrvMakeUp* look) {
    if (look || !director) return look;
    OrvLineStyle* dash = director->lineStyle("dash");
    return dash ? director->makeUpLineStyle(director->defaultMakeUp, dash) : nullptr;
}

Orv3dPolyline::Orv3dPolyline(OrvDirector* director, unsigned count, const Orv3dPoint* points,
                             OrvMakeUp* look)
    : Orv3dActor(director, dashedUnlessGiven(director, look)), points_(nullptr), count_(0),
      polygon_(new OrvPolygon) {
    removeProperty(OrvLightBit);
    install(count, points);
}

Orv3dPolyline::Orv3dPolyline(OrvDirector* director, OrvMakeUp* look, int)
    : Orv3dActor(director, look), points_(nullptr), count_(0), polygon_(new OrvPolygon) {
    removeProperty(OrvLightBit);
}

// The copy has an array of its own: the polygon's share only borrows it.
Orv3dPolyline::Orv3dPolyline(const Orv3dPolyline& source)
    : Orv3dActor(source), points_(nullptr), count_(0), polygon_(new OrvPolygon) {
    install(source.count_, source.points_);
}

Orv3dPolyline::~Orv3dPolyline() {
    delete polygon_;  // lets go of the share before the array it borrows goes
    delete[] points_;
}

OrvActor* Orv3dPolyline::copy() const {
    return new Orv3dPolyline(*this);
}
OrvClassInfo* Orv3dPolyline::classInfo() const {
    return _classInfo;
}

// The new array and polygon are made before the old ones go: the points may
// be this polyline's own.
void Orv3dPolyline::install(unsigned count, const Orv3dPoint* points) {
    if (!points) count = 0;
    Orv3dPoint* array = count ? new Orv3dPoint[count] : nullptr;
    for (unsigned i = 0; i < count; i++) array[i] = points[i];
    OrvPolygon* polygon = new OrvPolygon;
    if (count) {
        OrvShare* share = new OrvShare(count, array, 1, 0);
        share->lock();
        polygon->setNonIndexed(share, nullptr, nullptr, nullptr, nullptr);
        share->unLock();
    }
    delete polygon_;
    delete[] points_;
    polygon_ = polygon;
    points_ = array;
    count_ = count;
}

void Orv3dPolyline::setPoints(unsigned count, const Orv3dPoint* points) {
    beginDrawing(1);
    install(count, points);
    takeAPicture();
    flushDrawing(1);
}

void Orv3dPolyline::draw3d(const OrvScene* scene) const {
    if (count_) scene->polyLine(makeUp, count_, points_, 0, nullptr);
}

Orv3dVolume Orv3dPolyline::bbox3d(unsigned long world) const {
    return inWorld(volumeOf(count_, points_), world, matrix);
}

// A lone point is a segment of no length, still hit within the line tolerance.
unsigned long Orv3dPolyline::contains3d(const Orv2dPoint& point, const OrvScene* scene) const {
    if (count_ == 1) return OrvPick3dLine(point, points_[0], points_[0], scene, this);
    for (unsigned i = 0; i + 1 < count_; i++)
        if (OrvPick3dLine(point, points_[i], points_[i + 1], scene, this)) return 1;
    return 0;
}

// Persistent form: the actor's items, the count of points and the points.

OrvActor* Orv3dPolyline::read(OrvIStream& in) {
    return new Orv3dPolyline(in);
}

void Orv3dPolyline::write(OrvOStream& out) const {
    Orv3dActor::write(out);
    out.writeComments("Orv3dPolyline class", 1);
    writePointList(out, count_, points_);
}

// An empty list is said but kept: the polyline is whole, only empty.
Orv3dPolyline::Orv3dPolyline(OrvIStream& in)
    : Orv3dActor(in), points_(nullptr), count_(0), polygon_(new OrvPolygon) {
    std::vector<Orv3dPoint> points;
    if (!in.stream || !readPointList(in, points)) return;
    if (points.empty()) {
        OrvError("Orv3dPolyline : Polyline with 0 points\n");
        return;
    }
    install((unsigned)points.size(), points.data());
}

Orv3dPolyline::Orv3dPolyline(OrvIStream& in, int)
    : Orv3dActor(in), points_(nullptr), count_(0), polygon_(new OrvPolygon) {}

// ---------------------------------------------------------------------------
// Orv3dSplinePath
// ---------------------------------------------------------------------------

static Orv3dPoint combine(const float w[4], const Orv3dPoint* p[4]) {
    Orv3dPoint r(0, 0, 0);
    for (int i = 0; i < 4; i++) {
        r.x += w[i] * p[i]->x;
        r.y += w[i] * p[i]->y;
        r.z += w[i] * p[i]->z;
    }
    return r;
}

// The uniform Catmull-Rom segment from p[1] (t = 0) to p[2] (t = 1).
static Orv3dPoint catmullRom(const Orv3dPoint* p[4], float t) {
    float t2 = t * t, t3 = t2 * t;
    const float w[4] = {0.5f * (-t3 + 2 * t2 - t), 0.5f * (3 * t3 - 5 * t2 + 2),
                        0.5f * (-3 * t3 + 4 * t2 + t), 0.5f * (t3 - t2)};
    return combine(w, p);
}

// The cubic Bézier segment from p[0] (t = 0) to p[3] (t = 1).
static Orv3dPoint bezier(const Orv3dPoint* p[4], float t) {
    float s = 1 - t;
    const float w[4] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
    return combine(w, p);
}

Orv3dSplinePath::Orv3dSplinePath(OrvDirector* director, unsigned count, const Orv3dPoint* controls,
                                 unsigned segments, OrvMakeUp* look)
    : Orv3dPolyline(director, look, 0), controlCount_(0), controls_(nullptr),
      segments_(segments ? segments : 1) {
    assign(count, controls);
}

Orv3dSplinePath::Orv3dSplinePath(OrvDirector* director, unsigned segments, OrvMakeUp* look)
    : Orv3dPolyline(director, look, 0), controlCount_(0), controls_(nullptr),
      segments_(segments ? segments : 1) {}

// The path's points come with the polyline's copy.
Orv3dSplinePath::Orv3dSplinePath(const Orv3dSplinePath& source)
    : Orv3dPolyline(source), controlCount_(source.controlCount_), controls_(nullptr),
      segments_(source.segments_) {
    if (controlCount_) {
        controls_ = new Orv3dPoint[controlCount_];
        for (unsigned i = 0; i < controlCount_; i++) controls_[i] = source.controls_[i];
    }
}

Orv3dSplinePath::~Orv3dSplinePath() {
    delete[] controls_;
}

OrvActor* Orv3dSplinePath::copy() const {
    return new Orv3dSplinePath(*this);
}
OrvClassInfo* Orv3dSplinePath::classInfo() const {
    return _classInfo;
}

unsigned Orv3dSplinePath::usable(unsigned count) const {
    return count;
}

// The new controls are copied before the old ones go: they may be these.
void Orv3dSplinePath::assign(unsigned count, const Orv3dPoint* controls) {
    if (!controls) count = 0;
    count = usable(count);
    Orv3dPoint* kept = count ? new Orv3dPoint[count] : nullptr;
    for (unsigned i = 0; i < count; i++) kept[i] = controls[i];
    delete[] controls_;
    controls_ = kept;
    controlCount_ = count;
    computePath();
}

void Orv3dSplinePath::setControlPoints(unsigned count, const Orv3dPoint* controls) {
    beginDrawing(1);
    assign(count, controls);
    takeAPicture();
    flushDrawing(1);
}

// Each span starts exactly on its control point (every weight but one is 0
// at t = 0), and the last control closes the path.
void Orv3dSplinePath::computePath() {
    unsigned n = controlCount_;
    if (n < 2) {
        install(n, controls_);
        return;
    }
    std::vector<Orv3dPoint> path;
    path.reserve((size_t)(n - 1) * segments_ + 1);
    for (unsigned i = 0; i + 1 < n; i++) {
        const Orv3dPoint* p[4] = {&controls_[i ? i - 1 : 0], &controls_[i], &controls_[i + 1],
                                  &controls_[i + 2 < n ? i + 2 : n - 1]};
        for (unsigned k = 0; k < segments_; k++)
            path.push_back(catmullRom(p, (float)k / (float)segments_));
    }
    path.push_back(controls_[n - 1]);
    install((unsigned)path.size(), path.data());
}

// Persistent form: the actor's items, the count of controls, the controls,
// and the segments between two of them.

OrvActor* Orv3dSplinePath::read(OrvIStream& in) {
    return new Orv3dSplinePath(in);
}

void Orv3dSplinePath::writeControls(OrvOStream& out, const char* comment) const {
    Orv3dActor::write(out);
    out.writeComments(comment, 1);
    writePointList(out, controlCount_, controls_);
    out << segments_;
}

void Orv3dSplinePath::write(OrvOStream& out) const {
    writeControls(out, "Orv3dSplinePath class");
}

unsigned long Orv3dSplinePath::readControls(OrvIStream& in) {
    std::vector<Orv3dPoint> controls;
    unsigned segments = 0;
    if (!in.stream || !readPointList(in, controls) || !readItem(in, segments)) return 0;
    segments_ = segments ? segments : 1;
    assign((unsigned)controls.size(), controls.data());
    return 1;
}

Orv3dSplinePath::Orv3dSplinePath(OrvIStream& in)
    : Orv3dPolyline(in, 0), controlCount_(0), controls_(nullptr), segments_(1) {
    readControls(in);
}

Orv3dSplinePath::Orv3dSplinePath(OrvIStream& in, int)
    : Orv3dPolyline(in, 0), controlCount_(0), controls_(nullptr), segments_(1) {}

// ---------------------------------------------------------------------------
// Orv3dCurvePath
// ---------------------------------------------------------------------------

Orv3dCurvePath::Orv3dCurvePath(OrvDirector* director, unsigned count, const Orv3dPoint* controls,
                               unsigned segments, OrvMakeUp* look)
    : Orv3dSplinePath(director, segments, look) {
    assign(count, controls);
}

Orv3dCurvePath::Orv3dCurvePath(const Orv3dCurvePath& source) : Orv3dSplinePath(source) {}

OrvActor* Orv3dCurvePath::copy() const {
    return new Orv3dCurvePath(*this);
}
OrvClassInfo* Orv3dCurvePath::classInfo() const {
    return _classInfo;
}

unsigned Orv3dCurvePath::usable(unsigned count) const {
    unsigned kept = count ? (count - 1) / 3 * 3 + 1 : 0;
    if (kept != count)
        OrvError("Orv3dCurvePath : %d control points ignored.\n", (int)(count - kept));
    return kept;
}

// Each segment starts exactly on its first control (the other weights are 0
// at t = 0), and the last control closes the path.
void Orv3dCurvePath::computePath() {
    unsigned n = controlCount_;
    if (n < 4) {
        install(n, controls_);
        return;
    }
    std::vector<Orv3dPoint> path;
    path.reserve((size_t)(n - 1) / 3 * segments_ + 1);
    for (unsigned i = 0; i + 3 < n; i += 3) {
        const Orv3dPoint* p[4] = {&controls_[i], &controls_[i + 1], &controls_[i + 2],
                                  &controls_[i + 3]};
        for (unsigned k = 0; k < segments_; k++)
            path.push_back(bezier(p, (float)k / (float)segments_));
    }
    path.push_back(controls_[n - 1]);
    install((unsigned)path.size(), path.data());
}

// Persistent form: the spline path's items under this class's comment.

OrvActor* Orv3dCurvePath::read(OrvIStream& in) {
    return new Orv3dCurvePath(in);
}

void Orv3dCurvePath::write(OrvOStream& out) const {
    writeControls(out, "Orv3dCurvePath class");
}

Orv3dCurvePath::Orv3dCurvePath(OrvIStream& in) : Orv3dSplinePath(in, 0) {
    readControls(in);
}

// ---------------------------------------------------------------------------
// Orv3dWall
// ---------------------------------------------------------------------------

// The coordinates of a point along the wall's two axes, in order.
static float& along(Orv3dPoint& p, OrvWallAxis axis, int which) {
    static const int axes[3][2] = {{1, 2}, {0, 2}, {0, 1}};
    int a = axes[axis][which];
    return a == 0 ? p.x : a == 1 ? p.y : p.z;
}

Orv3dWall::Orv3dWall(OrvDirector* director, const Orv3dPoint& c, unsigned n, const float& s,
                     OrvWallAxis a, OrvMakeUp* look)
    : Orv3dActor(director, look), corner(c), cells(n), size(s), axis(a) {
    removeProperty(OrvLightBit);
    if ((unsigned)axis > OrvWallZ) {
        OrvError("Orv3dWall::Orv3dWall : Bad axis (%lu).\n", (unsigned long)axis);
        axis = OrvWallX;
    }
}

Orv3dWall::Orv3dWall(const Orv3dWall& source)
    : Orv3dActor(source), corner(source.corner), cells(source.cells), size(source.size),
      axis(source.axis) {}

OrvActor* Orv3dWall::copy() const {
    return new Orv3dWall(*this);
}
OrvClassInfo* Orv3dWall::classInfo() const {
    return _classInfo;
}

unsigned long Orv3dWall::gridLine(unsigned i, Orv3dPoint& start, Orv3dPoint& end) const {
    if (i >= gridLines()) return 0;
    int across = i <= cells ? 0 : 1;  // the axis on which the line stands still
    unsigned step = i <= cells ? i : i - (cells + 1);
    float length = (float)cells * size;
    start = end = corner;
    along(start, axis, across) += (float)step * size;
    along(end, axis, across) += (float)step * size;
    along(end, axis, 1 - across) += length;
    return 1;
}

Orv3dVolume Orv3dWall::gridVolume() const {
    Orv3dPoint far = corner;
    along(far, axis, 0) += (float)cells * size;
    along(far, axis, 1) += (float)cells * size;
    const Orv3dPoint ends[2] = {corner, far};
    return volumeOf(2, ends);
}

void Orv3dWall::drawGrid(const OrvScene* scene, const OrvMakeUp* look) const {
    Orv3dPoint a, b;
    for (unsigned i = 0; gridLine(i, a, b); i++) scene->line(look, a, b);
}

unsigned long Orv3dWall::pickGrid(const Orv2dPoint& point, const OrvScene* scene,
                                  const OrvActor* as) const {
    Orv3dPoint a, b;
    for (unsigned i = 0; gridLine(i, a, b); i++)
        if (OrvPick3dLine(point, a, b, scene, as)) return 1;
    return 0;
}

void Orv3dWall::draw3d(const OrvScene* scene) const {
    drawGrid(scene, makeUp);
}

Orv3dVolume Orv3dWall::bbox3d(unsigned long world) const {
    return inWorld(gridVolume(), world, matrix);
}

unsigned long Orv3dWall::contains3d(const Orv2dPoint& point, const OrvScene* scene) const {
    return pickGrid(point, scene, this);
}

// Persistent form: the actor's items, the corner, the cells, their size and the axis.

OrvActor* Orv3dWall::read(OrvIStream& in) {
    return new Orv3dWall(in);
}

void Orv3dWall::write(OrvOStream& out) const {
    Orv3dActor::write(out);
    out.writeComments("Orv3dWall class", 1);
    out << corner << cells << size << (unsigned long)axis;
}

Orv3dWall::Orv3dWall(OrvIStream& in) : Orv3dActor(in), corner(), cells(0), size(0), axis(OrvWallX) {
    Orv3dPoint c;
    unsigned n = 0;
    float s = 0;
    unsigned long a = 0;
    if (!in.stream || !readItem(in, c) || !readItem(in, n) || !readItem(in, s) || !readItem(in, a))
        return;
    if (a > OrvWallZ) {
        in.fault("Orv3dWall::Orv3dWall : Bad axis (%lu).\n", a);
        return;
    }
    corner = c;
    cells = n;
    size = s;
    axis = (OrvWallAxis)a;
}

// ---------------------------------------------------------------------------
// Orv3dWalls
// ---------------------------------------------------------------------------

Orv3dWalls::Orv3dWalls(OrvDirector* director, const Orv3dPoint& corner, unsigned cells,
                       const float& size, OrvMakeUp* look)
    : Orv3dActor(director, look), walls{nullptr, nullptr, nullptr} {
    removeProperty(OrvLightBit);
    build(corner, cells, size);
}

Orv3dWalls::Orv3dWalls(const Orv3dWalls& source)
    : Orv3dActor(source), walls{nullptr, nullptr, nullptr} {
    build(source.corner(), source.cells(), source.size());
}

Orv3dWalls::~Orv3dWalls() {
    for (Orv3dWall* w : walls) delete w;
}

OrvActor* Orv3dWalls::copy() const {
    return new Orv3dWalls(*this);
}
OrvClassInfo* Orv3dWalls::classInfo() const {
    return _classInfo;
}

// The walls hold only the geometry: they are drawn and picked in this
// actor's make-up and under its matrix, whatever make-up they were made with.
void Orv3dWalls::build(const Orv3dPoint& corner, unsigned cells, float size) {
    OrvDirector* director = makeUp ? makeUp->director : nullptr;
    for (int k = 0; k < 3; k++) {
        delete walls[k];
        walls[k] = new Orv3dWall(director, corner, cells, size, (OrvWallAxis)k, makeUp);
    }
}

void Orv3dWalls::draw3d(const OrvScene* scene) const {
    for (const Orv3dWall* w : walls) w->drawGrid(scene, makeUp);
}

Orv3dVolume Orv3dWalls::bbox3d(unsigned long world) const {
    Orv3dVolume v = walls[0]->gridVolume();
    for (int k = 1; k < 3; k++) v.extendBy(walls[k]->gridVolume());
    return inWorld(v, world, matrix);
}

unsigned long Orv3dWalls::contains3d(const Orv2dPoint& point, const OrvScene* scene) const {
    for (const Orv3dWall* w : walls)
        if (w->pickGrid(point, scene, this)) return 1;
    return 0;
}

// Persistent form: the actor's items, the corner, the cells and their size.

OrvActor* Orv3dWalls::read(OrvIStream& in) {
    return new Orv3dWalls(in);
}

void Orv3dWalls::write(OrvOStream& out) const {
    Orv3dActor::write(out);
    out.writeComments("Orv3dWalls class", 1);
    out << corner() << cells() << size();
}

Orv3dWalls::Orv3dWalls(OrvIStream& in) : Orv3dActor(in), walls{nullptr, nullptr, nullptr} {
    Orv3dPoint c;
    unsigned n = 0;
    float s = 0;
    bool whole = in.stream && readItem(in, c) && readItem(in, n) && readItem(in, s);
    if (!whole) c = Orv3dPoint(), n = 0, s = 0;
    build(c, n, s);
}
