// Float rectangles, volumes, planes, spherical vectors and the 2D matrix.
#include "orv/geometry.h"

#include "orv/base.h"

#include <cmath>
#include <cstdint>

// ---------------------------------------------------------------------------
// Orv3dVector
// ---------------------------------------------------------------------------

void Orv3dVector::setSpherical(const double& azimuth, const double& polar, const float& radius) {
    double az = azimuth * ORV_DEG_TO_RAD;
    double po = polar * ORV_DEG_TO_RAD;
    x = (float)(radius * std::sin(po) * std::cos(az));
    y = (float)(radius * std::sin(po) * std::sin(az));
    z = (float)(radius * std::cos(po));
}

void Orv3dVector::getSpherical(double& azimuth, double& polar, float& radius) const {
    if (std::fabs(x) > 1e-6) {
        azimuth = std::atan((double)y / (double)x);
        if (x < 0)
            azimuth += M_PI;
        else if (y < 0)
            azimuth += 2 * M_PI;
    } else if (std::fabs(y) > 1e-6) {
        azimuth = M_PI / 2;
        if (y < 0) azimuth += M_PI;
    } else {
        azimuth = 0;
    }
    radius = (float)std::sqrt((double)x * x + (double)y * y + (double)z * z);
    if (std::fabs(radius) > 1e-6) {
        // The radius was rounded to float, so the ratio can pass 1 by an ulp.
        double ratio = std::sqrt((double)x * x + (double)y * y) / radius;
        polar = std::asin(ratio > 1.0 ? 1.0 : ratio < -1.0 ? -1.0 : ratio);
    } else
        polar = 0;
    if (z < 0) polar = M_PI - polar;
    azimuth *= ORV_RAD_TO_DEG;
    polar *= ORV_RAD_TO_DEG;
}

// ---------------------------------------------------------------------------
// Orv3dRect
// ---------------------------------------------------------------------------

void Orv3dRect::extendBy(const float& px, const float& py) {
    if (px < x) {
        w += x - px;
        x = px;
    } else if (px > x + w) {
        w = px - x;
    }
    if (py < y) {
        h += y - py;
        y = py;
    } else if (py > y + h) {
        h = py - y;
    }
}

void Orv3dRect::extendBy(const Orv3dRect& r) {
    extendBy(r.x, r.y);
    extendBy(r.x + r.w, r.y + r.h);
}

void Orv3dRect::intersection(const Orv3dRect& r) {
    float nx = x > r.x ? x : r.x;
    float ny = y > r.y ? y : r.y;
    float rr = x + w < r.x + r.w ? x + w : r.x + r.w;
    float rb = y + h < r.y + r.h ? y + h : r.y + r.h;
    x = nx;
    y = ny;
    w = rr > nx ? rr - nx : 0;
    h = rb > ny ? rb - ny : 0;
}

void Orv3dRect::square(unsigned long inner) {
    float side;
    if (inner)
        side = w < h ? w : h;
    else
        side = w > h ? w : h;
    float cx = x + w / 2, cy = y + h / 2;
    x = cx - side / 2;
    y = cy - side / 2;
    w = side;
    h = side;
}

// ---------------------------------------------------------------------------
// Orv3dVolume
// ---------------------------------------------------------------------------

bool Orv3dVolume::contains(const Orv3dVolume& v) const {
    return contains(Orv3dPoint(v.x, v.y, v.z)) && contains(Orv3dPoint(v.x, v.y + v.h, v.z)) &&
           contains(Orv3dPoint(v.x + v.w, v.y + v.h, v.z)) &&
           contains(Orv3dPoint(v.x + v.w, v.y, v.z)) && contains(Orv3dPoint(v.x, v.y, v.z + v.d)) &&
           contains(Orv3dPoint(v.x, v.y + v.h, v.z + v.d)) &&
           contains(Orv3dPoint(v.x + v.w, v.y + v.h, v.z + v.d)) &&
           contains(Orv3dPoint(v.x + v.w, v.y, v.z + v.d));
}

void Orv3dVolume::extendBy(const Orv3dPoint& p) {
    extendBy(Orv3dVolume(p));
}

void Orv3dVolume::extendBy(const Orv3dVolume& v) {
    float x0 = x < v.x ? x : v.x;
    float y0 = y < v.y ? y : v.y;
    float z0 = z < v.z ? z : v.z;
    float x1 = x + w > v.x + v.w ? x + w : v.x + v.w;
    float y1 = y + h > v.y + v.h ? y + h : v.y + v.h;
    float z1 = z + d > v.z + v.d ? z + d : v.z + v.d;
    x = x0;
    y = y0;
    z = z0;
    w = x1 - x0;
    h = y1 - y0;
    d = z1 - z0;
}

void Orv3dVolume::getVertex(Orv3dPoint* p, const Orv3dMatrix& mat) const {
    p[0] = Orv3dPoint(x, y, z);
    p[1] = Orv3dPoint(x, y + h, z);
    p[2] = Orv3dPoint(x + w, y + h, z);
    p[3] = Orv3dPoint(x + w, y, z);
    p[4] = Orv3dPoint(x, y, z + d);
    p[5] = Orv3dPoint(x, y + h, z + d);
    p[6] = Orv3dPoint(x + w, y + h, z + d);
    p[7] = Orv3dPoint(x + w, y, z + d);
    for (int i = 0; i < 8; i++) mat.apply(p[i]);
}

// ---------------------------------------------------------------------------
// Orv3dPlane
// ---------------------------------------------------------------------------

void Orv3dPlane::build(const Orv3dPoint& p1, const Orv3dPoint& p2, const Orv3dPoint& p3) {
    Orv3dVector n = Orv3dVector(p1, p2).cross(Orv3dVector(p1, p3));
    n.normalize();
    a = n.x;
    b = n.y;
    c = n.z;
    d = -(p1.x * n.x + p1.y * n.y + p1.z * n.z);
}

unsigned long Orv3dPlane::whichSide(const Orv3dPoint& p1, const Orv3dPoint& p2) const {
    unsigned long s1 = whichSide(p1), s2 = whichSide(p2);
    if (s1 == s2) return s1;
    if (s1 == OrvPlaneOn) return s2;
    if (s2 == OrvPlaneOn) return s1;
    return s1 == OrvPlaneAbove ? OrvPlaneAboveToBelow : OrvPlaneBelowToAbove;
}

unsigned long Orv3dPlane::lineIntersection(Orv3dPoint& out, const Orv3dPoint& p1,
                                           const Orv3dPoint& p2) const {
    unsigned long s1 = whichSide(p1);
    if (s1 == OrvPlaneOn) return OrvPlaneOn;
    unsigned long s2 = whichSide(p2);
    if (s2 == OrvPlaneOn) {
        out = p2;
        return s1;
    }
    if (s1 == s2) return OrvPlaneOn;
    Orv3dVector v(p1, p2);
    float den = a * v.x + b * v.y + c * v.z;
    if (std::fabs(den) < 1e-6) return OrvPlaneOn;
    float t = -evaluate(p1) / den;
    out = Orv3dPoint(p1.x + t * v.x, p1.y + t * v.y, p1.z + t * v.z);
    return s1;
}

// ---------------------------------------------------------------------------
// Orv2dMatrix
// ---------------------------------------------------------------------------

Orv2dMatrix::Orv2dMatrix(const Orv2dPoint& center, float angle) {
    // 3.14 rather than pi: stored pictures depend on these exact values.
    double rad = angle * 3.14 / 180;
    float cs = (float)std::cos(rad);
    float sn = (float)std::sin(rad);
    float cx = (float)center.x, cy = (float)center.y;
    a = cs;
    b = -sn;
    c = sn;
    d = cs;
    tx = cx * (1 - cs) + sn * cy;
    ty = cy * (1 - cs) - cx * sn;
    updateFlags();
}

Orv2dMatrix::Orv2dMatrix(float sx, float sy, Orv2dPoint* center)
    : a(sx), b(0), c(0), d(sy), tx(0), ty(0) {
    if (center) {
        float cx = (float)center->x, cy = (float)center->y;
        tx = cx - sx * cx;
        ty = cy - sy * cy;
    }
    updateFlags();
}

void Orv2dMatrix::compose(const Orv2dMatrix& o) {
    float na = o.a * a + o.b * c;
    float nb = o.a * b + o.b * d;
    float nc = o.c * a + o.d * c;
    float nd = o.c * b + o.d * d;
    float ntx = o.a * tx + o.b * ty + o.tx;
    float nty = o.c * tx + o.d * ty + o.ty;
    a = na;
    b = nb;
    c = nc;
    d = nd;
    tx = ntx;
    ty = nty;
    updateFlags();
}

bool Orv2dMatrix::computeInverse(Orv2dMatrix& out) const {
    if (std::fabs(det) < 1e-12) return false;
    out.a = (float)(d / det);
    out.b = (float)(-b / det);
    out.c = (float)(-c / det);
    out.d = (float)(a / det);
    float ntx = b * ty - d * tx;
    float nty = c * tx - a * ty;
    out.tx = (float)(ntx / det);
    out.ty = (float)(nty / det);
    out.det = 1 / det;
    out.diagonal = std::fabs((double)out.b) < 1e-12 && std::fabs((double)out.c) < 1e-12;
    out.unit = out.diagonal && std::fabs((double)out.a - 1) < 0.0001 &&
               std::fabs((double)out.d - 1) < 0.0001;
    return true;
}

// The identity of a matrix in messages is its address, cut to the width of %x.
static unsigned orvMatrixId(const Orv2dMatrix* m) {
    return (unsigned)(uintptr_t)m;
}

bool Orv2dMatrix::inverse(Orv2dPoint& p) const {
    if (std::fabs(det) < 1e-12)
        return OrvError("Orv2dMatrix::inverse(Orv2dPoint&): bad transformer %x", orvMatrixId(this));
    float dx = (float)p.x - tx;
    float dy = (float)p.y - ty;
    if (diagonal) {
        float nx = dx * d;
        float ny = dy * a;
        p.x = OrvRound(nx / det);
        p.y = OrvRound(ny / det);
    } else {
        float nx = dx * d - dy * b;
        float ny = dy * a - dx * c;
        p.x = OrvRound(nx / det);
        p.y = OrvRound(ny / det);
    }
    return true;
}

bool Orv2dMatrix::inverse(Orv2dRect& r) const {
    if (std::fabs(det) < 1e-12)
        return OrvError("Orv2dMatrix::inverse(Orv2dRect&): bad transformer %x", orvMatrixId(this));
    Orv2dPoint p1(r.x, r.y);
    Orv2dPoint p2((int32_t)r.right(), (int32_t)r.bottom());
    inverse(p1);
    inverse(p2);
    setFromCorners(r, p1, p2);
    return true;
}

Orv2dMatrix OrvCompute2dMatrix(const Orv2dRect& from, const Orv2dRect& to) {
    float sx = from.w ? (float)to.w / (float)from.w : 1.0f;
    float sy = from.h ? (float)to.h / (float)from.h : 1.0f;
    return Orv2dMatrix(sx, 0, 0, sy, (float)to.x - sx * (float)from.x,
                       (float)to.y - sy * (float)from.y);
}
