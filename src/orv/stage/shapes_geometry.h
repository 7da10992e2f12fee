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

// The rectangle grown by margin on every side.
Orv2dRect OrvGrowRect(const Orv2dRect& r, int margin);

// Half the make-up's line width: how far a stroke reaches past its path.
int OrvHalfLineWidth(const OrvMakeUp* makeUp);

// Maps a point through the matrix when there is one.
inline Orv2dPoint OrvMapPoint(const Orv2dPoint& p, const Orv2dMatrix* m) {
    Orv2dPoint q = p;
    if (m) m->apply(q);
    return q;
}

// Whether the matrix keeps axis-aligned shapes axis-aligned.
inline bool OrvKeepsAxes(const Orv2dMatrix* m) { return !m || m->diagonal; }

// Points along the ellipse in rect from start to end degrees (counter-clockwise
// on a y-down screen), mapped; with pie, the centre closes the path.
Orv2dPoint* OrvEllipsePoints(const Orv2dRect& rect, float start, float end, unsigned long pie,
                             const Orv2dMatrix* m, unsigned& count);

#endif
