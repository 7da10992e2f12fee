// Helpers shared by the basic shapes: mapping points, boxes of point sets and
// one growing scratch array of points for mapped outlines.
#ifndef ORV_STAGE_SHAPES_GEOMETRY_H
#define ORV_STAGE_SHAPES_GEOMETRY_H

#include "orv/geometry.h"

class OrvMakeUp;

// A growing array of points for mapped outlines, valid until the next call.
// It is the shapes' own, so that the canvas's and the curves' buffers stay free.
Orv2dPoint* OrvShapePoints(unsigned n);

// The box that holds the points; a zero width or height stays zero.
Orv2dRect OrvPointsBox(unsigned n, const Orv2dPoint* points);

// The box of a segment's two ends, inline: lines ask it at every repaint.
inline Orv2dRect OrvSegmentBox(const Orv2dPoint& a, const Orv2dPoint& b) {
    int32_t x0 = a.x < b.x ? a.x : b.x, x1 = a.x < b.x ? b.x : a.x;
    int32_t y0 = a.y < b.y ? a.y : b.y, y1 = a.y < b.y ? b.y : a.y;
    return Orv2dRect(x0, y0, (uint32_t)((int64_t)x1 - x0), (uint32_t)((int64_t)y1 - y0));
}

// The rectangle grown by margin on every side.
inline Orv2dRect OrvGrowRect(const Orv2dRect& r, int margin) {
    return Orv2dRect(r.x - margin, r.y - margin, r.w + 2 * margin, r.h + 2 * margin);
}

// Half the make-up's line width: how far a stroke reaches past its path.
int OrvHalfLineWidth(const OrvMakeUp* makeUp);

// Maps a point through the matrix when there is one.
inline Orv2dPoint OrvMapPoint(const Orv2dPoint& p, const Orv2dMatrix* m) {
    Orv2dPoint q = p;
    if (m) m->apply(q);
    return q;
}

// Whether the matrix keeps axis-aligned shapes axis-aligned.
inline bool OrvKeepsAxes(const Orv2dMatrix* m) {
    return !m || m->diagonal;
}

// Points along the ellipse in rect from start to end degrees (counter-clockwise
// on a y-down screen), mapped; with pie, the centre closes the path.
Orv2dPoint* OrvEllipsePoints(const Orv2dRect& rect, float start, float end, unsigned long pie,
                             const Orv2dMatrix* m, unsigned& count);

#endif
