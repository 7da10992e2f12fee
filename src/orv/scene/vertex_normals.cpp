// Normal arithmetic on raw vertex arrays: Newell's normal of a polygon,
// normals of strips, fans and quadrilateral meshes, and the convexity test.
#include "orv/vertex.h"

#include <cmath>

// Vertex k of the arrays, through the index when there is one.
static inline Orv3dPoint at(const Orv3dPoint* points, const Orv4dPoint* points4d,
                            const unsigned* index, unsigned k) {
    unsigned i = index ? index[k] : k;
    return points4d ? points4d[i].to3dPoint() : points[i];
}

unsigned long OrvVertexData::computeNormal(unsigned count, const Orv3dPoint* points,
                                           const Orv4dPoint* points4d, const unsigned* index,
                                           Orv3dVector& result) {
    if (count < 3 || (!points && !points4d)) return 0;
    double x = 0, y = 0, z = 0;
    Orv3dPoint a = at(points, points4d, index, 0);
    for (unsigned i = 0; i < count; i++) {
        unsigned j = i + 1 == count ? 0 : i + 1;
        Orv3dPoint b = at(points, points4d, index, j);
        // A repeated index adds nothing but rounding: it is skipped.
        if (!index || index[i] != index[j]) {
            x += ((double)a.y - b.y) * ((double)a.z + b.z);
            y += ((double)a.z - b.z) * ((double)a.x + b.x);
            z += ((double)a.x - b.x) * ((double)a.y + b.y);
        }
        a = b;
    }
    double length = std::sqrt(x * x + y * y + z * z);
    if (length < 1e-6) {
        result = Orv3dVector((float)x, (float)y, (float)z);
        return 0;
    }
    result = Orv3dVector((float)(x / length), (float)(y / length), (float)(z / length));
    return 1;
}

unsigned OrvVertexData::computeTriangleNormals(unsigned count, const Orv3dPoint* points,
                                               const Orv4dPoint* points4d, const unsigned* index,
                                               unsigned normalCount, Orv3dVector* normals,
                                               unsigned long fan) {
    if (count < 3 || (!points && !points4d) || !normals) return 0;
    unsigned written = 0;
    for (unsigned t = 0; t + 2 < count; t++) {
        if (written == normalCount) {
            OrvError("OrvVertexData::computeTriangleStripNormals :");
            OrvError(" Bad number of normals.\n");
            return written;
        }
        Orv3dPoint p0 = at(points, points4d, index, fan ? 0 : t);
        Orv3dPoint p1 = at(points, points4d, index, t + 1);
        Orv3dPoint p2 = at(points, points4d, index, t + 2);
        Orv3dVector e1(p0, p1), e2(p0, p2);
        // Every other triangle of a strip turns the other way round: its
        // edges are swapped so that all normals face one way. The triangles
        // of a fan all turn alike.
        Orv3dVector n = (!fan && (t & 1)) ? e2.cross(e1) : e1.cross(e2);
        n.normalize();
        normals[written++] = n;
    }
    return written;
}

unsigned OrvVertexData::computeQuadrilateralMeshNormals(unsigned columns, unsigned rows,
                                                        const Orv3dPoint* points,
                                                        const Orv4dPoint* points4d,
                                                        const unsigned* index, unsigned normalCount,
                                                        Orv3dVector* normals) {
    if ((!points && !points4d) || !normals) return 0;
    unsigned written = 0;
    for (unsigned r = 0; r < rows; r++)
        for (unsigned c = 0; c < columns; c++) {
            if (written == normalCount) {
                OrvError("OrvVertexData::computeQuadrilateralMeshNormals :");
                OrvError(" Bad number of normals.\n");
                return written;
            }
            // (r, c), (r, c + 1), (r + 1, c + 1), (r + 1, c).
            unsigned a = r * (columns + 1) + c;
            unsigned cell[4] = {a, a + 1, a + columns + 2, a + columns + 1};
            if (index)
                for (unsigned& k : cell) k = index[k];
            Orv3dVector n;
            computeNormal(4, points, points4d, cell, n);
            normals[written++] = n;
        }
    return written;
}

unsigned long OrvVertexData::isConvex(unsigned count, const Orv3dPoint* points,
                                      const Orv4dPoint* points4d, const unsigned* index) {
    if (count < 4) return 1;
    if (!points && !points4d) return 0;
    Orv3dVector reference;
    bool found = false;
    // The corners at vertices 1 to count - 2, then the two that wrap round
    // to the first vertex.
    for (unsigned i = 0; i < count; i++) {
        Orv3dPoint a = at(points, points4d, index, i);
        Orv3dPoint b = at(points, points4d, index, (i + 1) % count);
        Orv3dPoint c = at(points, points4d, index, (i + 2) % count);
        Orv3dVector e1(a, b), e2(b, c);
        Orv3dVector turn = e1.cross(e2);
        double size = (double)turn.dot(turn);
        // A straight corner, or a repeated point, says nothing.
        if (size <= 1e-12 * (double)e1.dot(e1) * (double)e2.dot(e2)) continue;
        if (!found) {
            reference = turn;
            found = true;
        } else if (turn.dot(reference) < 0) {
            return 0;
        }
    }
    return 1;
}
