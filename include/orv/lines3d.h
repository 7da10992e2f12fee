// 3D actors made of lines: a segment, a polyline, a Catmull-Rom path through
// control points, a path of cubic Bézier segments, a square grid on one axis
// plane and the three grids that meet at a corner. None of them is lit: a
// line has no normal of its own to light it by.
#ifndef ORV_LINES3D_H
#define ORV_LINES3D_H

#include "orv/actor3d.h"

// One segment, drawn through OrvScene::line, picked as a line.
class Orv3dLine : public Orv3dActor {
public:
    Orv3dPoint from, to;

    Orv3dLine(OrvDirector* director, const Orv3dPoint& from, const Orv3dPoint& to,
              OrvMakeUp* look = nullptr);
    Orv3dLine(const Orv3dLine& source);
    ORV_PERSISTENT_ACTOR(Orv3dLine)

    // Moves both ends through the change protocol and drops the display list.
    void setLine(const Orv3dPoint& from, const Orv3dPoint& to);
    void draw3d(const OrvScene* scene) const override;
    Orv3dVolume bbox3d(unsigned long world) const override;
    unsigned long contains3d(const Orv2dPoint& point, const OrvScene* scene) const override;
};

// An open polyline: an OrvPolygon of its points, drawn through
// OrvScene::polyLine and picked segment by segment (the first segment hit wins).
// Given no make-up, it takes the director's default one in the line style "dash".
class Orv3dPolyline : public Orv3dActor {
public:
    Orv3dPolyline(OrvDirector* director, unsigned count, const Orv3dPoint* points,
                  OrvMakeUp* look = nullptr);
    Orv3dPolyline(const Orv3dPolyline& source);
    ORV_PERSISTENT_ACTOR(Orv3dPolyline)
    ~Orv3dPolyline() override;

    // Replaces the points (copied) through the change protocol.
    void setPoints(unsigned count, const Orv3dPoint* points);
    // The points drawn: count() of them, null when there are none.
    unsigned count() const { return count_; }
    const Orv3dPoint* points() const { return points_; }
    // The same points as a polygon (without a layout when there are none).
    const OrvPolygon* polygon() const { return polygon_; }

    void draw3d(const OrvScene* scene) const override;
    Orv3dVolume bbox3d(unsigned long world) const override;
    unsigned long contains3d(const Orv2dPoint& point, const OrvScene* scene) const override;

protected:
    // For the paths: no points yet, and the make-up as given (the paths are
    // not dashed by default).
    Orv3dPolyline(OrvDirector* director, OrvMakeUp* look, int);
    // For the paths' readers: the actor's items only.
    Orv3dPolyline(OrvIStream& in, int);
    // Installs a copy of the points, without the change protocol.
    void install(unsigned count, const Orv3dPoint* points);

private:
    // The array is the actor's own; the polygon borrows it through a read-only
    // share, so that the scene may borrow it again to draw without a warning.
    Orv3dPoint* points_;
    unsigned count_;
    OrvPolygon* polygon_;  // owned
};

// A uniform Catmull-Rom curve through the control points: `segments`
// straight pieces between each pair of neighbours, each end point standing
// in for its own missing neighbour. A segments value of 0 is taken as 1.
class Orv3dSplinePath : public Orv3dPolyline {
public:
    Orv3dSplinePath(OrvDirector* director, unsigned count, const Orv3dPoint* controls,
                    unsigned segments, OrvMakeUp* look = nullptr);
    Orv3dSplinePath(const Orv3dSplinePath& source);
    ORV_PERSISTENT_ACTOR(Orv3dSplinePath)
    ~Orv3dSplinePath() override;

    // Replaces the control points (copied) and computes the path again,
    // through the change protocol.
    void setControlPoints(unsigned count, const Orv3dPoint* controls);
    unsigned controlCount() const { return controlCount_; }
    const Orv3dPoint* controlPoints() const { return controls_; }
    unsigned segments() const { return segments_; }

protected:
    unsigned controlCount_;
    Orv3dPoint* controls_;  // owned, null when there are none
    unsigned segments_;

    // For the Bézier path, which stores its own controls (its virtuals are
    // not reached from this class's constructors).
    Orv3dSplinePath(OrvDirector* director, unsigned segments, OrvMakeUp* look);
    Orv3dSplinePath(OrvIStream& in, int);
    // The controls to keep of those given (a class may drop some, and say so).
    virtual unsigned usable(unsigned count) const;
    // The points of the path from the controls.
    virtual void computePath();
    // Stores the usable controls and computes the path, without the protocol.
    void assign(unsigned count, const Orv3dPoint* controls);
    // The saved items shared by both paths, after the class's comment.
    void writeControls(OrvOStream& out, const char* comment) const;
    // Reads what writeControls wrote; 0 after a message.
    unsigned long readControls(OrvIStream& in);
};

// Cubic Bézier segments sharing their ends (controls 0-3, 3-6, ...), each in
// `segments` straight pieces. Of a count that is not 3k + 1, the first 3k + 1
// controls are kept and the rest dropped with a message.
class Orv3dCurvePath : public Orv3dSplinePath {
public:
    Orv3dCurvePath(OrvDirector* director, unsigned count, const Orv3dPoint* controls,
                   unsigned segments, OrvMakeUp* look = nullptr);
    Orv3dCurvePath(const Orv3dCurvePath& source);
    ORV_PERSISTENT_ACTOR(Orv3dCurvePath)

protected:
    unsigned usable(unsigned count) const override;
    void computePath() override;
};

// The plane a wall stands in: OrvWallX is the plane x = corner.x, its cells
// along y and z; OrvWallY the plane y = corner.y (x and z); OrvWallZ the
// plane z = corner.z (x and y).
enum OrvWallAxis {
    OrvWallX = 0,
    OrvWallY = 1,
    OrvWallZ = 2
};

// A square grid of cells x cells squares of side `size`, from the corner
// towards the positive side of its two axes (negative sizes go the other way),
// drawn as cells + 1 lines each way through OrvScene::line. An axis out of
// range is said and taken as OrvWallX.
class Orv3dWall : public Orv3dActor {
public:
    Orv3dPoint corner;
    unsigned cells;
    float size;
    OrvWallAxis axis;

    Orv3dWall(OrvDirector* director, const Orv3dPoint& corner, unsigned cells, const float& size,
              OrvWallAxis axis, OrvMakeUp* look = nullptr);
    Orv3dWall(const Orv3dWall& source);
    ORV_PERSISTENT_ACTOR(Orv3dWall)

    // The ends of grid line i (0 to 2 * cells + 1): the first cells + 1 lines
    // run along the second axis of the plane, the others along the first.
    // 0 for a number out of range.
    unsigned long gridLine(unsigned i, Orv3dPoint& start, Orv3dPoint& end) const;
    unsigned gridLines() const { return cells ? 2 * (cells + 1) : 0; }
    // The grid in that make-up; picked as the actor given (whose matrix and
    // make-up the pick uses): what the three walls share with one wall.
    void drawGrid(const OrvScene* scene, const OrvMakeUp* look) const;
    unsigned long pickGrid(const Orv2dPoint& point, const OrvScene* scene,
                           const OrvActor* as) const;
    // The grid's volume in its own coordinates.
    Orv3dVolume gridVolume() const;

    void draw3d(const OrvScene* scene) const override;
    Orv3dVolume bbox3d(unsigned long world) const override;
    unsigned long contains3d(const Orv2dPoint& point, const OrvScene* scene) const override;
};

// The three walls that meet at the corner, one on each axis plane, drawn in
// this actor's make-up and moved by its matrix.
class Orv3dWalls : public Orv3dActor {
public:
    Orv3dWall* walls[3];  // owned, in axis order

    Orv3dWalls(OrvDirector* director, const Orv3dPoint& corner, unsigned cells, const float& size,
               OrvMakeUp* look = nullptr);
    Orv3dWalls(const Orv3dWalls& source);
    ORV_PERSISTENT_ACTOR(Orv3dWalls)
    ~Orv3dWalls() override;

    const Orv3dPoint& corner() const { return walls[0]->corner; }
    unsigned cells() const { return walls[0]->cells; }
    float size() const { return walls[0]->size; }

    void draw3d(const OrvScene* scene) const override;
    Orv3dVolume bbox3d(unsigned long world) const override;
    unsigned long contains3d(const Orv2dPoint& point, const OrvScene* scene) const override;

private:
    void build(const Orv3dPoint& corner, unsigned cells, float size);
};

ORV_DECLARE_CLASS_INIT(Orv3dLine)
ORV_DECLARE_CLASS_INIT(Orv3dPolyline)
ORV_DECLARE_CLASS_INIT(Orv3dSplinePath)
ORV_DECLARE_CLASS_INIT(Orv3dCurvePath)
ORV_DECLARE_CLASS_INIT(Orv3dWall)
ORV_DECLARE_CLASS_INIT(Orv3dWalls)

#endif
