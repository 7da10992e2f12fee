// Value types of all coordinates: integer screen points and rectangles,
// float world points, vectors, rectangles, volumes and planes, and the 2D and
// 3D matrices. Plain values without virtual operations, copied bit by bit.
#ifndef ORV_GEOMETRY_H
#define ORV_GEOMETRY_H

#include <cmath>
#include <cstdint>

// Integer rounding of the whole library: half away from zero. The value is
// widened to double first, so a float is rounded exactly as it stands.
inline int32_t OrvRound(double v) {
    return v >= 0 ? (int32_t)(long)(v + 0.5) : (int32_t)(long)(v - 0.5);
}

// A constructor that sets the fields one by one names each parameter after
// its field, with a 0 appended.

// Conversion factors between degrees and radians at interfaces.
#define ORV_DEG_TO_RAD 0.017453292519943295
#define ORV_RAD_TO_DEG 57.29577951308232

// ---------------------------------------------------------------------------
// Integer screen space
// ---------------------------------------------------------------------------

struct Orv2dPoint {
    int32_t x, y;

    Orv2dPoint() : x(0), y(0) {}
    Orv2dPoint(int32_t x0, int32_t y0) : x(x0), y(y0) {}

    bool operator==(const Orv2dPoint& p) const { return x == p.x && y == p.y; }
    bool operator!=(const Orv2dPoint& p) const { return x != p.x || y != p.y; }
};

// Covers x to x+w and y to y+h, both ends included by contains. Sums are
// taken in 64 bits so that a negative origin plus an unsigned size stays signed.
struct Orv2dRect {
    int32_t x, y;
    uint32_t w, h;

    Orv2dRect() : x(0), y(0), w(0), h(0) {}
    Orv2dRect(int32_t x0, int32_t y0, uint32_t w0, uint32_t h0) : x(x0), y(y0), w(w0), h(h0) {}

    Orv2dPoint origin() const { return Orv2dPoint(x, y); }
    int64_t right() const { return (int64_t)x + w; }
    int64_t bottom() const { return (int64_t)y + h; }

    bool operator==(const Orv2dRect& r) const {
        return x == r.x && y == r.y && w == r.w && h == r.h;
    }
    bool operator!=(const Orv2dRect& r) const { return !(*this == r); }

    bool contains(const Orv2dPoint& p) const {
        return x <= p.x && p.x <= right() && y <= p.y && p.y <= bottom();
    }
    bool contains(const Orv2dRect& r) const {
        return x <= r.x && r.x <= right() && y <= r.y && r.y <= bottom() && r.right() <= right() &&
               r.bottom() <= bottom();
    }
    // Rectangles that only touch do not intersect.
    bool intersects(const Orv2dRect& r) const {
        return x < r.right() && r.x < right() && y < r.bottom() && r.y < bottom();
    }
    // In place. An empty overlap keeps the larger origins and a zero size.
    void intersection(const Orv2dRect& r) {
        int64_t nx = x > r.x ? x : r.x;
        int64_t ny = y > r.y ? y : r.y;
        int64_t rr = right() < r.right() ? right() : r.right();
        int64_t rb = bottom() < r.bottom() ? bottom() : r.bottom();
        x = (int32_t)nx;
        y = (int32_t)ny;
        w = rr > nx ? (uint32_t)(rr - nx) : 0;
        h = rb > ny ? (uint32_t)(rb - ny) : 0;
    }
    // A zero width marks an empty box: an empty argument changes nothing and
    // an empty receiver becomes the argument, which starts a bounding box.
    void extendBy(const Orv2dRect& r) {
        if (r.w == 0) return;
        if (w == 0) {
            *this = r;
            return;
        }
        int64_t nx = x < r.x ? x : r.x;
        int64_t ny = y < r.y ? y : r.y;
        int64_t rr = right() > r.right() ? right() : r.right();
        int64_t rb = bottom() > r.bottom() ? bottom() : r.bottom();
        x = (int32_t)nx;
        y = (int32_t)ny;
        w = (uint32_t)(rr - nx);
        h = (uint32_t)(rb - ny);
    }
    // Moves the sides just far enough to take the point in; no emptiness test.
    void extendBy(const Orv2dPoint& p) {
        if (p.x < x) {
            w = (uint32_t)(right() - p.x);
            x = p.x;
        } else if (p.x > right()) {
            w = (uint32_t)((int64_t)p.x - x);
        }
        if (p.y < y) {
            h = (uint32_t)(bottom() - p.y);
            y = p.y;
        } else if (p.y > bottom()) {
            h = (uint32_t)((int64_t)p.y - y);
        }
    }
};

// ---------------------------------------------------------------------------
// Float world space
// ---------------------------------------------------------------------------

struct Orv4dPoint;

struct Orv3dPoint {
    float x, y, z;

    Orv3dPoint() : x(0), y(0), z(0) {}
    Orv3dPoint(float x0, float y0, float z0) : x(x0), y(y0), z(z0) {}

    bool operator==(const Orv3dPoint& p) const { return x == p.x && y == p.y && z == p.z; }
    bool operator!=(const Orv3dPoint& p) const { return !(*this == p); }

    inline Orv4dPoint to4dPoint() const;
    // Truncates toward zero, unlike the rounding of the 2D matrix.
    Orv2dPoint to2dPoint() const { return Orv2dPoint((int32_t)(long)x, (int32_t)(long)y); }
};

struct Orv3dVector {
    float x, y, z;

    Orv3dVector() : x(0), y(0), z(0) {}
    Orv3dVector(float x0, float y0, float z0) : x(x0), y(y0), z(z0) {}
    // The vector from a to b.
    Orv3dVector(const Orv3dPoint& a, const Orv3dPoint& b)
        : x(b.x - a.x), y(b.y - a.y), z(b.z - a.z) {}

    bool operator==(const Orv3dVector& v) const { return x == v.x && y == v.y && z == v.z; }
    bool operator!=(const Orv3dVector& v) const { return !(*this == v); }

    float dot(const Orv3dVector& v) const { return x * v.x + y * v.y + z * v.z; }
    Orv3dVector cross(const Orv3dVector& v) const {
        return Orv3dVector(y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x);
    }
    float length() const { return (float)std::sqrt((double)(x * x + y * y + z * z)); }
    // Divides by the length unless it is exactly 0; returns the old length.
    float normalize() {
        float l = length();
        if (l != 0) {
            x /= l;
            y /= l;
            z /= l;
        }
        return l;
    }

    // Angles in degrees: azimuth in the x-y plane from x, polar from z.
    void setSpherical(const double& azimuth, const double& polar, const float& radius);
    void getSpherical(double& azimuth, double& polar, float& radius) const;
};

// Homogeneous point.
struct Orv4dPoint {
    float x, y, z, w;

    Orv4dPoint() : x(0), y(0), z(0), w(0) {}
    Orv4dPoint(float x0, float y0, float z0, float w0) : x(x0), y(y0), z(z0), w(w0) {}

    bool operator==(const Orv4dPoint& p) const {
        return x == p.x && y == p.y && z == p.z && w == p.w;
    }

    // A vanishing w is replaced by 1e-6: the result is large but finite.
    Orv3dPoint to3dPoint() const {
        float q = std::fabs(w) < 1e-6 ? 1e-6f : w;
        return Orv3dPoint(x / q, y / q, z / q);
    }
};

inline Orv4dPoint Orv3dPoint::to4dPoint() const {
    return Orv4dPoint(x, y, z, 1);
}

struct Orv3dRect {
    float x, y, w, h;

    Orv3dRect() : x(0), y(0), w(0), h(0) {}
    Orv3dRect(float x0, float y0, float w0, float h0) : x(x0), y(y0), w(w0), h(h0) {}

    bool operator==(const Orv3dRect& r) const {
        return x == r.x && y == r.y && w == r.w && h == r.h;
    }

    bool contains(const float& px, const float& py) const {
        return x <= px && px <= x + w && y <= py && py <= y + h;
    }
    bool contains(const Orv3dRect& r) const {
        return contains(r.x, r.y) && contains(r.x + r.w, r.y + r.h);
    }
    void extendBy(const float& px, const float& py);
    void extendBy(const Orv3dRect& r);
    // Empty overlap gives zero extents.
    void intersection(const Orv3dRect& r);
    // Square of the same centre; side is the smaller extent when inner is
    // non-zero, the larger otherwise.
    void square(unsigned long inner);
};

struct Orv3dMatrix;

// Origin corner and extents. A zero-extent volume is a point and takes part
// in unions like any other.
struct Orv3dVolume {
    float x, y, z, w, h, d;

    Orv3dVolume() : x(0), y(0), z(0), w(0), h(0), d(0) {}
    Orv3dVolume(float x0, float y0, float z0, float w0, float h0, float d0)
        : x(x0), y(y0), z(z0), w(w0), h(h0), d(d0) {}
    explicit Orv3dVolume(const Orv3dPoint& p) : x(p.x), y(p.y), z(p.z), w(0), h(0), d(0) {}

    bool operator==(const Orv3dVolume& v) const {
        return x == v.x && y == v.y && z == v.z && w == v.w && h == v.h && d == v.d;
    }

    Orv3dPoint center() const { return Orv3dPoint(x + w / 2, y + h / 2, z + d / 2); }

    bool contains(const Orv3dPoint& p) const {
        return x <= p.x && p.x <= x + w && y <= p.y && p.y <= y + h && z <= p.z && p.z <= z + d;
    }
    bool contains(const Orv3dVolume& v) const;
    void extendBy(const Orv3dPoint& p);
    void extendBy(const Orv3dVolume& v);
    // The eight corners, each through m.apply, bottom face (z) first.
    void getVertex(Orv3dPoint* eight, const Orv3dMatrix& m) const;
};

// a·x + b·y + c·z + d = 0.
struct Orv3dPlane {
    enum {
        OrvPlaneAbove = 0x1000,
        OrvPlaneOn = 0x2000,
        OrvPlaneBelow = 0x4000,
        OrvPlaneAboveToBelow = 0x8000,
        OrvPlaneBelowToAbove = 0x10000
    };

    float a, b, c, d;

    Orv3dPlane() : a(0), b(0), c(0), d(0) {}
    Orv3dPlane(float a0, float b0, float c0, float d0) : a(a0), b(b0), c(c0), d(d0) {}

    float evaluate(const Orv3dPoint& p) const { return a * p.x + b * p.y + c * p.z + d; }
    // Through three points; collinear points leave a zero normal and d = 0.
    void build(const Orv3dPoint& p1, const Orv3dPoint& p2, const Orv3dPoint& p3);
    unsigned long whichSide(const Orv3dPoint& p) const {
        float f = evaluate(p);
        if (f < -1e-6) return OrvPlaneBelow;
        if (f > 1e-6) return OrvPlaneAbove;
        return OrvPlaneOn;
    }
    unsigned long whichSide(const Orv3dPoint& p1, const Orv3dPoint& p2) const;
    // 0x2000 means no usable intersection; p1 and p2 are treated unlike on purpose.
    unsigned long lineIntersection(Orv3dPoint& out, const Orv3dPoint& p1,
                                   const Orv3dPoint& p2) const;
};

// ---------------------------------------------------------------------------
// 2D matrix: floats that map integer points to integer points
// ---------------------------------------------------------------------------

// x' = a·x + b·y + tx, y' = c·x + d·y + ty. det and the two flags are derived
// from the floats whenever they change, so that apply tests a flag only.
struct Orv2dMatrix {
    float a, b, c, d, tx, ty;
    double det;
    uint32_t unit;      // diagonal, with a and d within 0.0001 of 1
    uint32_t diagonal;  // b and c below 1e-12

    Orv2dMatrix() : a(1), b(0), c(0), d(1), tx(0), ty(0), det(1), unit(1), diagonal(1) {}
    // Rotation about a point by degrees, built with 3.14 for pi on purpose.
    Orv2dMatrix(const Orv2dPoint& center, float angle);
    // Scale, about a centre when one is given.
    Orv2dMatrix(float sx, float sy, Orv2dPoint* center = nullptr);
    explicit Orv2dMatrix(const Orv2dPoint& translation)
        : a(1), b(0), c(0), d(1), tx((float)translation.x), ty((float)translation.y) {
        updateFlags();
    }
    Orv2dMatrix(float a0, float b0, float c0, float d0, float tx0, float ty0)
        : a(a0), b(b0), c(c0), d(d0), tx(tx0), ty(ty0) {
        updateFlags();
    }

    void updateFlags() {
        det = (double)(a * d - b * c);
        diagonal = std::fabs((double)b) < 1e-12 && std::fabs((double)c) < 1e-12;
        unit = diagonal && std::fabs((double)a - 1) < 0.0001 && std::fabs((double)d - 1) < 0.0001;
    }

    void setValues(float ntx, float nty) {
        tx = ntx;
        ty = nty;
        updateFlags();
    }
    // Leaves the translation alone.
    void setValues(float na, float nb, float nc, float nd) {
        a = na;
        b = nb;
        c = nc;
        d = nd;
        updateFlags();
    }
    void setValues(float na, float nb, float nc, float nd, float ntx, float nty) {
        a = na;
        b = nb;
        c = nc;
        d = nd;
        tx = ntx;
        ty = nty;
        updateFlags();
    }
    void getValues(float& otx, float& oty) const {
        otx = tx;
        oty = ty;
    }
    void getValues(float& oa, float& ob, float& oc, float& od) const {
        oa = a;
        ob = b;
        oc = c;
        od = d;
    }
    void getValues(float& oa, float& ob, float& oc, float& od, float& otx, float& oty) const {
        getValues(oa, ob, oc, od);
        getValues(otx, oty);
    }

    bool isBad() const { return std::fabs(det) < 1e-12; }
    bool isIdentity() const {
        return unit && std::fabs((double)tx) < 1e-12 && std::fabs((double)ty) < 1e-12;
    }

    // Products in single precision, each result rounded half away from zero.
    void apply(Orv2dPoint& p) const {
        float fx = (float)p.x, fy = (float)p.y;
        if (diagonal) {
            float nx = a * fx + tx;
            float ny = d * fy + ty;
            p.x = OrvRound(nx);
            p.y = OrvRound(ny);
        } else {
            float nx = a * fx + b * fy + tx;
            float ny = c * fx + d * fy + ty;
            p.x = OrvRound(nx);
            p.y = OrvRound(ny);
        }
    }
    // Without the translation, for sizes and offsets; nothing at all when unit.
    void deltaApply(Orv2dPoint& p) const {
        if (unit) return;
        float fx = (float)p.x, fy = (float)p.y;
        if (diagonal) {
            float nx = a * fx;
            float ny = d * fy;
            p.x = OrvRound(nx);
            p.y = OrvRound(ny);
        } else {
            float nx = a * fx + b * fy;
            float ny = c * fx + d * fy;
            p.x = OrvRound(nx);
            p.y = OrvRound(ny);
        }
    }
    // The box of the two mapped corners only: under rotation this is not the
    // true bounding box, and callers rely on that.
    void apply(Orv2dRect& r) const {
        Orv2dPoint p1(r.x, r.y);
        Orv2dPoint p2((int32_t)r.right(), (int32_t)r.bottom());
        apply(p1);
        apply(p2);
        setFromCorners(r, p1, p2);
    }

    // this := m after this.
    void compose(const Orv2dMatrix& m);
    // False, out unchanged, when the determinant is below 1e-12.
    bool computeInverse(Orv2dMatrix& out) const;
    bool inverse(Orv2dPoint& p) const;
    bool inverse(Orv2dRect& r) const;

    static void setFromCorners(Orv2dRect& r, const Orv2dPoint& p1, const Orv2dPoint& p2) {
        int32_t x0 = p1.x < p2.x ? p1.x : p2.x, x1 = p1.x < p2.x ? p2.x : p1.x;
        int32_t y0 = p1.y < p2.y ? p1.y : p2.y, y1 = p1.y < p2.y ? p2.y : p1.y;
        r.x = x0;
        r.y = y0;
        r.w = (uint32_t)((int64_t)x1 - x0);
        r.h = (uint32_t)((int64_t)y1 - y0);
    }
};

// The matrix that maps from on to; a zero source width or height scales by 1.
Orv2dMatrix OrvCompute2dMatrix(const Orv2dRect& from, const Orv2dRect& to);

// ---------------------------------------------------------------------------
// 3D matrix: row-major, column vectors, translation in elements 3, 7, 11
// ---------------------------------------------------------------------------

struct Orv3dMatrix {
    float m[16];

    Orv3dMatrix() : Orv3dMatrix(1ul) {}
    // Identity when non-zero, all zeros when zero. The int form keeps a
    // literal 0 from being read as a null float array.
    explicit Orv3dMatrix(unsigned long identity);
    explicit Orv3dMatrix(int identity) : Orv3dMatrix((unsigned long)(identity != 0)) {}
    Orv3dMatrix(const float& m00, const float& m01, const float& m02, const float& m03,
                const float& m10, const float& m11, const float& m12, const float& m13,
                const float& m20, const float& m21, const float& m22, const float& m23,
                const float& m30, const float& m31, const float& m32, const float& m33);
    explicit Orv3dMatrix(const float* values);

    float& operator()(int row, int col) { return m[row * 4 + col]; }
    float operator()(int row, int col) const { return m[row * 4 + col]; }
    bool operator==(const Orv3dMatrix& o) const;

    // Sixteen floats, row-major; nothing when the pointer is this matrix.
    void copy(const float* values);
    void print() const;

    // With accumulate zero the matrix is replaced by the elementary one,
    // otherwise it becomes elementary × this: the step comes after.
    void rotateX(const double& degrees, const unsigned long accumulate = 0);
    void rotateY(const double& degrees, const unsigned long accumulate = 0);
    void rotateZ(const double& degrees, const unsigned long accumulate = 0);
    // About the direction p1→p2 through the origin; p1's position is not used.
    void rotate(const Orv3dPoint& p1, const Orv3dPoint& p2, const double& degrees,
                const unsigned long accumulate = 0);
    void translate(const float& x, const float& y, const float& z,
                   const unsigned long accumulate = 0);
    void scale(const float& x, const float& y, const float& z, const unsigned long accumulate = 0);
    // T(t + c) · Rz · Ry · Rx · S · T(−c), angles in degrees.
    void build(const Orv3dPoint& c, const Orv3dVector& t, const double& rx, const double& ry,
               const double& rz, const Orv3dVector& s);

    // Divides by w when the last row is not 0, 0, 0, 1; a vector is
    // translated like a point.
    void apply(float& x, float& y, float& z) const;
    void apply(Orv3dPoint& p) const { apply(p.x, p.y, p.z); }
    void apply(Orv3dVector& v) const { apply(v.x, v.y, v.z); }
    void apply(Orv4dPoint& p) const;
    // Bounding volume of the eight mapped corners.
    void apply(Orv3dVolume& v) const;

    void transpose(Orv3dMatrix& out) const;
    void transpose(float* out) const;

    // Gauss-Jordan without pivot search; false, out untouched, when singular.
    bool inverse(Orv3dMatrix& out) const;
    bool inverse(Orv3dPoint& p) const;
    bool inverse(Orv4dPoint& p) const;

    // this × o in a static shared by all calls: copy the result at once.
    const Orv3dMatrix& multiply(const Orv3dMatrix& o) const;
    Orv3dMatrix operator*(const Orv3dMatrix& o) const { return multiply(o); }
    Orv3dMatrix& operator*=(const Orv3dMatrix& o) {
        *this = multiply(o);
        return *this;
    }

    // Inverse of build for a matrix without perspective; non-zero on success.
    int decompose(Orv3dVector& scale, Orv3dVector& shear, double& rx, double& ry, double& rz,
                  Orv3dPoint& translation, Orv4dPoint& perspective) const;

    float det3() const;
    float det4() const;
};

Orv3dMatrix OrvCompute3dMatrix(const Orv3dVolume& from, const Orv3dVolume& to, double rx, double ry,
                               double rz);

#endif
