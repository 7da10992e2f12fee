// The 4×4 matrix of the 3D side: elementary matrices, products, inversion by
// Gauss-Jordan and decomposition into scale, shear, rotation and translation.
#include "orv/geometry.h"

#include "orv/base.h"

#include <cmath>
#include <cstring>

static const float orvIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

Orv3dMatrix::Orv3dMatrix(unsigned long identity) {
    if (identity)
        std::memcpy(m, orvIdentity, sizeof m);
    else
        std::memset(m, 0, sizeof m);
}

Orv3dMatrix::Orv3dMatrix(const float& m00, const float& m01, const float& m02, const float& m03,
                         const float& m10, const float& m11, const float& m12, const float& m13,
                         const float& m20, const float& m21, const float& m22, const float& m23,
                         const float& m30, const float& m31, const float& m32, const float& m33) {
    m[0] = m00, m[1] = m01, m[2] = m02, m[3] = m03;
    m[4] = m10, m[5] = m11, m[6] = m12, m[7] = m13;
    m[8] = m20, m[9] = m21, m[10] = m22, m[11] = m23;
    m[12] = m30, m[13] = m31, m[14] = m32, m[15] = m33;
}

Orv3dMatrix::Orv3dMatrix(const float* values) {
    std::memcpy(m, values, sizeof m);
}

bool Orv3dMatrix::operator==(const Orv3dMatrix& o) const {
    for (int i = 0; i < 16; i++)
        if (m[i] != o.m[i]) return false;
    return true;
}

void Orv3dMatrix::copy(const float* values) {
    if (values != m) std::memcpy(m, values, sizeof m);
}

void Orv3dMatrix::print() const {
    for (int r = 0; r < 4; r++) {
        for (int c = 0; c < 4; c++) OrvPrint("%f ", (double)m[r * 4 + c]);
        OrvPrint("\n");
    }
    OrvPrint("\n");
}

// Replaces this by e, or puts e after this (e × this).
static void orvSetElementary(Orv3dMatrix& self, const Orv3dMatrix& e, unsigned long accumulate) {
    if (accumulate)
        self = e.multiply(self);
    else
        self = e;
}

// Degrees to radians rounded to float, sine and cosine kept as float.
static void orvSinCos(const double& degrees, float& s, float& c) {
    float rad = (float)(degrees * ORV_DEG_TO_RAD);
    s = (float)std::sin(rad);
    c = (float)std::cos(rad);
}

void Orv3dMatrix::rotateX(const double& degrees, const unsigned long accumulate) {
    float s, c;
    orvSinCos(degrees, s, c);
    Orv3dMatrix e;
    e(1, 1) = c, e(1, 2) = -s, e(2, 1) = s, e(2, 2) = c;
    orvSetElementary(*this, e, accumulate);
}

void Orv3dMatrix::rotateY(const double& degrees, const unsigned long accumulate) {
    float s, c;
    orvSinCos(degrees, s, c);
    Orv3dMatrix e;
    e(0, 0) = c, e(0, 2) = s, e(2, 0) = -s, e(2, 2) = c;
    orvSetElementary(*this, e, accumulate);
}

void Orv3dMatrix::rotateZ(const double& degrees, const unsigned long accumulate) {
    float s, c;
    orvSinCos(degrees, s, c);
    Orv3dMatrix e;
    e(0, 0) = c, e(0, 1) = -s, e(1, 0) = s, e(1, 1) = c;
    orvSetElementary(*this, e, accumulate);
}

void Orv3dMatrix::rotate(const Orv3dPoint& p1, const Orv3dPoint& p2, const double& degrees,
                         const unsigned long accumulate) {
    Orv3dVector v(p1, p2);
    float len = v.length();
    if (len < 1e-6) {
        OrvError("Orv3dMatrix::rotate : Bad axis.");
        return;
    }
    float x = v.x / len, y = v.y / len, z = v.z / len;
    float s, c;
    orvSinCos(degrees, s, c);
    float t = 1 - c;
    Orv3dMatrix e(t * x * x + c, t * x * y - z * s, t * x * z + y * s, 0, t * x * y + z * s,
                  t * y * y + c, t * y * z - x * s, 0, t * x * z - y * s, t * y * z + x * s,
                  t * z * z + c, 0, 0, 0, 0, 1);
    orvSetElementary(*this, e, accumulate);
}

void Orv3dMatrix::translate(const float& x, const float& y, const float& z,
                            const unsigned long accumulate) {
    Orv3dMatrix e;
    e(0, 3) = x, e(1, 3) = y, e(2, 3) = z;
    orvSetElementary(*this, e, accumulate);
}

void Orv3dMatrix::scale(const float& x, const float& y, const float& z,
                        const unsigned long accumulate) {
    Orv3dMatrix e;
    e(0, 0) = x, e(1, 1) = y, e(2, 2) = z;
    orvSetElementary(*this, e, accumulate);
}

void Orv3dMatrix::build(const Orv3dPoint& c, const Orv3dVector& t, const double& rx,
                        const double& ry, const double& rz, const Orv3dVector& s) {
    float sx, cx, sy, cy, sz, cz;
    orvSinCos(rx, sx, cx);
    orvSinCos(ry, sy, cy);
    orvSinCos(rz, sz, cz);
    m[0] = s.x * cz * cy;
    m[1] = s.y * (cz * sx * sy - sz * cx);
    m[2] = s.z * (cz * sy * cx + sz * sx);
    m[4] = s.x * sz * cy;
    m[5] = s.y * (sz * sx * sy + cz * cx);
    m[6] = s.z * (sz * sy * cx - cz * sx);
    m[8] = -s.x * sy;
    m[9] = s.y * cy * sx;
    m[10] = s.z * cy * cx;
    const float tc[3] = {t.x + c.x, t.y + c.y, t.z + c.z};
    for (int r = 0; r < 3; r++) {
        const float* row = m + r * 4;
        m[r * 4 + 3] = tc[r] - (row[0] * c.x + row[1] * c.y + row[2] * c.z);
    }
    m[12] = 0, m[13] = 0, m[14] = 0, m[15] = 1;
}

void Orv3dMatrix::apply(float& x, float& y, float& z) const {
    float nx = m[0] * x + m[1] * y + m[2] * z + m[3];
    float ny = m[4] * x + m[5] * y + m[6] * z + m[7];
    float nz = m[8] * x + m[9] * y + m[10] * z + m[11];
    if (std::fabs((double)m[12]) >= 1e-6 || std::fabs((double)m[13]) >= 1e-6 ||
        std::fabs((double)m[14]) >= 1e-6 || std::fabs((double)m[15] - 1) >= 1e-6) {
        float w = m[12] * x + m[13] * y + m[14] * z + m[15];
        if (std::fabs((double)w) < 1e-6) return;
        nx /= w;
        ny /= w;
        nz /= w;
    }
    x = nx;
    y = ny;
    z = nz;
}

void Orv3dMatrix::apply(Orv4dPoint& p) const {
    float nx = m[0] * p.x + m[1] * p.y + m[2] * p.z + m[3] * p.w;
    float ny = m[4] * p.x + m[5] * p.y + m[6] * p.z + m[7] * p.w;
    float nz = m[8] * p.x + m[9] * p.y + m[10] * p.z + m[11] * p.w;
    float nw = m[12] * p.x + m[13] * p.y + m[14] * p.z + m[15] * p.w;
    p = Orv4dPoint(nx, ny, nz, nw);
}

void Orv3dMatrix::apply(Orv3dVolume& v) const {
    static Orv3dPoint corners[8];
    v.getVertex(corners, *this);
    v = Orv3dVolume(corners[0]);
    for (int i = 1; i < 8; i++) v.extendBy(corners[i]);
}

void Orv3dMatrix::transpose(Orv3dMatrix& out) const {
    if (&out == this) {
        Orv3dMatrix tmp;
        transpose(tmp.m);
        out = tmp;
        return;
    }
    transpose(out.m);
}

void Orv3dMatrix::transpose(float* out) const {
    if (out == m) {
        Orv3dMatrix tmp(*this);
        tmp.transpose(out);
        return;
    }
    for (int r = 0; r < 4; r++)
        for (int c = 0; c < 4; c++) out[c * 4 + r] = m[r * 4 + c];
}

bool Orv3dMatrix::inverse(Orv3dMatrix& out) const {
    float rows[4][8];
    float* p[4];
    for (int r = 0; r < 4; r++) {
        for (int c = 0; c < 4; c++) {
            rows[r][c] = m[r * 4 + c];
            rows[r][c + 4] = r == c ? 1.0f : 0.0f;
        }
        p[r] = rows[r];
    }
    // Forward elimination: the first exactly non-zero entry is the pivot.
    for (int col = 0; col < 4; col++) {
        int piv = col;
        while (piv < 4 && p[piv][col] == 0) piv++;
        if (piv == 4) return false;
        if (piv != col) {
            float* t = p[piv];
            p[piv] = p[col];
            p[col] = t;
        }
        float* pr = p[col];
        for (int r = col + 1; r < 4; r++) {
            float* row = p[r];
            float f = row[col] / pr[col];
            for (int c = col; c < 4; c++) row[c] -= f * pr[c];
            for (int c = 4; c < 8; c++)
                if (pr[c] != 0) row[c] -= f * pr[c];
        }
    }
    // Back substitution, last row first.
    for (int r = 3; r >= 0; r--) {
        float* row = p[r];
        float inv = 1 / row[r];
        for (int c = 0; c < 8; c++) row[c] *= inv;
        for (int u = r - 1; u >= 0; u--) {
            float* up = p[u];
            float f = up[r];
            if (f == 0) continue;
            for (int c = 0; c < 8; c++) up[c] -= f * row[c];
        }
    }
    for (int r = 0; r < 4; r++)
        for (int c = 0; c < 4; c++) out.m[r * 4 + c] = p[r][c + 4];
    return true;
}

bool Orv3dMatrix::inverse(Orv3dPoint& pt) const {
    Orv3dMatrix inv;
    if (!inverse(inv)) return false;
    inv.apply(pt);
    return true;
}

bool Orv3dMatrix::inverse(Orv4dPoint& pt) const {
    Orv3dMatrix inv;
    if (!inverse(inv)) return false;
    inv.apply(pt);
    return true;
}

const Orv3dMatrix& Orv3dMatrix::multiply(const Orv3dMatrix& o) const {
    static Orv3dMatrix result;
    float tmp[16];
    for (int r = 0; r < 4; r++)
        for (int c = 0; c < 4; c++)
            tmp[r * 4 + c] = m[r * 4] * o.m[c] + m[r * 4 + 1] * o.m[4 + c] +
                             m[r * 4 + 2] * o.m[8 + c] + m[r * 4 + 3] * o.m[12 + c];
    std::memcpy(result.m, tmp, sizeof tmp);
    return result;
}

float Orv3dMatrix::det3() const {
    return m[0] * (m[5] * m[10] - m[6] * m[9]) - m[1] * (m[4] * m[10] - m[6] * m[8]) +
           m[2] * (m[4] * m[9] - m[5] * m[8]);
}

// Determinant of the 3×3 minor that leaves out row 0 and column col.
static float orvMinor(const float* m, int col) {
    int c[3], k = 0;
    for (int i = 0; i < 4; i++)
        if (i != col) c[k++] = i;
    const float* r1 = m + 4;
    const float* r2 = m + 8;
    const float* r3 = m + 12;
    return r1[c[0]] * (r2[c[1]] * r3[c[2]] - r2[c[2]] * r3[c[1]]) -
           r1[c[1]] * (r2[c[0]] * r3[c[2]] - r2[c[2]] * r3[c[0]]) +
           r1[c[2]] * (r2[c[0]] * r3[c[1]] - r2[c[1]] * r3[c[0]]);
}

float Orv3dMatrix::det4() const {
    return m[0] * orvMinor(m, 0) - m[1] * orvMinor(m, 1) + m[2] * orvMinor(m, 2) -
           m[3] * orvMinor(m, 3);
}

int Orv3dMatrix::decompose(Orv3dVector& scale, Orv3dVector& shear, double& rx, double& ry,
                           double& rz, Orv3dPoint& translation, Orv4dPoint& perspective) const {
    static Orv3dMatrix work, affine;
    if (std::fabs((double)m[15]) < 1e-6) return 0;
    work = *this;
    if (m[15] != 1)
        for (int i = 0; i < 16; i++) work.m[i] /= m[15];
    affine = work;
    affine.m[12] = 0, affine.m[13] = 0, affine.m[14] = 0, affine.m[15] = 1;
    if (std::fabs((double)affine.det4()) < 1e-6) return 0;

    if (std::fabs((double)work.m[12]) >= 1e-6 || std::fabs((double)work.m[13]) >= 1e-6 ||
        std::fabs((double)work.m[14]) >= 1e-6) {
        perspective = Orv4dPoint(work.m[12], work.m[13], work.m[14], work.m[15]);
        if (!affine.inverse(perspective)) return 0;
        work.m[12] = 0, work.m[13] = 0, work.m[14] = 0, work.m[15] = 1;
    } else {
        perspective = Orv4dPoint(0, 0, 0, 0);
    }

    translation = Orv3dPoint(work.m[3], work.m[7], work.m[11]);
    work.m[3] = 0, work.m[7] = 0, work.m[11] = 0;

    Orv3dVector c0(work.m[0], work.m[4], work.m[8]);
    Orv3dVector c1(work.m[1], work.m[5], work.m[9]);
    Orv3dVector c2(work.m[2], work.m[6], work.m[10]);

    scale.x = c0.normalize();
    shear.x = c1.dot(c0);
    c1 = Orv3dVector(c1.x - shear.x * c0.x, c1.y - shear.x * c0.y, c1.z - shear.x * c0.z);
    scale.y = c1.normalize();
    shear.x /= scale.y;

    shear.y = c2.dot(c0);
    c2 = Orv3dVector(c2.x - shear.y * c0.x, c2.y - shear.y * c0.y, c2.z - shear.y * c0.z);
    shear.z = c2.dot(c1);
    c2 = Orv3dVector(c2.x - shear.z * c1.x, c2.y - shear.z * c1.y, c2.z - shear.z * c1.z);
    scale.z = c2.normalize();
    shear.y /= scale.z;
    shear.z /= scale.z;

    // A left-handed frame: flip everything so that the scale carries the sign.
    if (c0.dot(c1.cross(c2)) < 0) {
        scale = Orv3dVector(-scale.x, -scale.y, -scale.z);
        c0 = Orv3dVector(-c0.x, -c0.y, -c0.z);
        c1 = Orv3dVector(-c1.x, -c1.y, -c1.z);
        c2 = Orv3dVector(-c2.x, -c2.y, -c2.z);
    }

    ry = std::asin((double)-c0.z);
    if (std::cos(ry) == 0) {
        rx = std::atan2((double)c1.x, (double)c1.y);
        rz = 0;
    } else {
        rx = std::atan2((double)c1.z, (double)c2.z);
        rz = std::atan2((double)c0.y, (double)c0.x);
    }
    rx = (double)(float)rx * ORV_RAD_TO_DEG;
    ry = (double)(float)ry * ORV_RAD_TO_DEG;
    rz = (double)(float)rz * ORV_RAD_TO_DEG;
    return 1;
}

Orv3dMatrix OrvCompute3dMatrix(const Orv3dVolume& from, const Orv3dVolume& to, double rx, double ry,
                               double rz) {
    Orv3dVector s(std::fabs((double)from.w) < 1e-6 ? 1.0f : to.w / from.w,
                  std::fabs((double)from.h) < 1e-6 ? 1.0f : to.h / from.h,
                  std::fabs((double)from.d) < 1e-6 ? 1.0f : to.d / from.d);
    Orv3dPoint c = from.center();
    Orv3dPoint tc = to.center();
    Orv3dVector t(c, tc);
    Orv3dMatrix result;
    result.build(c, t, rx, ry, rz, s);
    return result;
}
