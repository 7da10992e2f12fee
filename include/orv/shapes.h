// The basic shapes: rectangles, lines and arrows, polylines and polygons,
// ellipses and arcs, labels and icons. Each is an ordinary actor with its look
// in its shared make-up: outlines in the foreground, with the line width and
// style; fills in the foreground too, with the pattern and fill style.
//
// Geometry is kept in the actor's own coordinates. A transformer maps it for
// drawing and hit testing: points are mapped one by one, so a rotated
// rectangle is hit and drawn as the rotated quadrilateral; ellipses and arcs
// under rotation are tested in their own space and drawn as polygons.
#ifndef ORV_SHAPES_H
#define ORV_SHAPES_H

#include "orv/actor.h"

class OrvBitmap;

// ---------------------------------------------------------------------------
// Rectangles
// ---------------------------------------------------------------------------

class OrvRectangle : public OrvActor {
public:
    Orv2dRect rect;
    unsigned short radius;  // of the rounded corners; 0 for square ones

    OrvRectangle(OrvDirector* director, const Orv2dRect& box, OrvMakeUp* look = nullptr,
                 unsigned short cornerRadius = 0);
    OrvRectangle(const OrvRectangle& source);
    ORV_PERSISTENT_ACTOR(OrvRectangle)
    unsigned long copyGeometry(const OrvActor& source) override;

    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void apply2d(const Orv2dMatrix& matrix) override;
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;

    // Moves and sizes through the change protocol.
    void setRect(const Orv2dRect& rect);
    void setRadius(unsigned short radius);
    virtual unsigned long isFilled() const { return 0; }

protected:
    // The outline as a closed path, mapped: 4 corners, or the flattened
    // rounded outline. Valid until the next call.
    Orv2dPoint* outline(const Orv2dMatrix* matrix, unsigned& count) const;
};

class OrvFilledRectangle : public OrvRectangle {
public:
    OrvFilledRectangle(OrvDirector* director, const Orv2dRect& box, OrvMakeUp* look = nullptr,
                       unsigned short cornerRadius = 0);
    OrvFilledRectangle(const OrvFilledRectangle& source);
    ORV_PERSISTENT_ACTOR(OrvFilledRectangle)

    unsigned long isFilled() const override { return 1; }
};

// ---------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------

class OrvLine : public OrvActor {
public:
    Orv2dPoint from, to;

    OrvLine(OrvDirector* director, const Orv2dPoint& fromPoint, const Orv2dPoint& toPoint,
            OrvMakeUp* look = nullptr);
    OrvLine(const OrvLine& source);
    ORV_PERSISTENT_ACTOR(OrvLine)
    unsigned long copyGeometry(const OrvActor& source) override;

    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void apply2d(const Orv2dMatrix& matrix) override;
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;

    void setPoints(const Orv2dPoint& from, const Orv2dPoint& to);
};

// Which ends of an arrow line carry a head.
enum {
    OrvArrowAtEnd = 1,
    OrvArrowAtStart = 2
};

class OrvArrowLine : public OrvLine {
public:
    unsigned long arrows;  // OrvArrowAtEnd, OrvArrowAtStart or both

    OrvArrowLine(OrvDirector* director, const Orv2dPoint& fromPoint, const Orv2dPoint& toPoint,
                 OrvMakeUp* look = nullptr, unsigned long arrowEnds = OrvArrowAtEnd);
    OrvArrowLine(const OrvArrowLine& source);
    ORV_PERSISTENT_ACTOR(OrvArrowLine)
    unsigned long copyGeometry(const OrvActor& source) override;

    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;

    // The three points of the head at the end (at 1) or at the start (at 0),
    // in mapped space: tip first.
    void head(unsigned long atEnd, const Orv2dMatrix* matrix, Orv2dPoint out[3]) const;
};

// ---------------------------------------------------------------------------
// Polylines and polygons
// ---------------------------------------------------------------------------

class Orv2dPolyline : public OrvActor {
public:
    unsigned int count;
    Orv2dPoint* points;  // owned

    Orv2dPolyline(OrvDirector* director, unsigned int pointCount, const Orv2dPoint* vertices,
                  OrvMakeUp* look = nullptr);
    Orv2dPolyline(const Orv2dPolyline& source);
    ORV_PERSISTENT_ACTOR(Orv2dPolyline)
    unsigned long copyGeometry(const OrvActor& source) override;
    ~Orv2dPolyline() override;

    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void apply2d(const Orv2dMatrix& matrix) override;
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;

    // One handle per vertex, so the default eight do not apply.
    Orv2dPoint* draggerVertex2d(unsigned int& count, const Orv2dMatrix* matrix) override;
    Orv2dDragger* dragger2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;

    // Replaces the points through the change protocol.
    void setPoints(unsigned int count, const Orv2dPoint* points);
    // Moves one vertex through the change protocol.
    void setPoint(unsigned int index, const Orv2dPoint& point);

protected:
    // The points mapped, in the shared scratch array of OrvAllocPoints.
    Orv2dPoint* mapped(const Orv2dMatrix* matrix) const;
};

class Orv2dPolygon : public Orv2dPolyline {
public:
    unsigned long filled;

    Orv2dPolygon(OrvDirector* director, unsigned int pointCount, const Orv2dPoint* vertices,
                 unsigned long solid = 0, OrvMakeUp* look = nullptr);
    Orv2dPolygon(const Orv2dPolygon& source);
    ORV_PERSISTENT_ACTOR(Orv2dPolygon)

    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;

    void setFilled(unsigned long on);
};

// ---------------------------------------------------------------------------
// Ellipses and arcs
// ---------------------------------------------------------------------------

class OrvEllipse : public OrvActor {
public:
    Orv2dRect rect;  // the box of the whole ellipse

    OrvEllipse(OrvDirector* director, const Orv2dRect& box, OrvMakeUp* look = nullptr);
    OrvEllipse(const OrvEllipse& source);
    ORV_PERSISTENT_ACTOR(OrvEllipse)
    unsigned long copyGeometry(const OrvActor& source) override;

    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void apply2d(const Orv2dMatrix& matrix) override;
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;

    void setRect(const Orv2dRect& rect);
    virtual unsigned long isFilled() const { return 0; }
    // Angles in degrees, counter-clockwise from three o'clock; end is absolute.
    virtual float startAngle() const { return 0; }
    virtual float endAngle() const { return 360; }
};

class OrvFilledEllipse : public OrvEllipse {
public:
    OrvFilledEllipse(OrvDirector* director, const Orv2dRect& box, OrvMakeUp* look = nullptr);
    OrvFilledEllipse(const OrvFilledEllipse& source);
    ORV_PERSISTENT_ACTOR(OrvFilledEllipse)

    unsigned long isFilled() const override { return 1; }
};

// A part of an ellipse; filled, it is a pie slice or a chord by the make-up's arc mode.
class OrvArc : public OrvEllipse {
public:
    float start, end;
    unsigned long filled;

    OrvArc(OrvDirector* director, const Orv2dRect& box, float startDegrees, float endDegrees,
           unsigned long solid = 0, OrvMakeUp* look = nullptr);
    OrvArc(const OrvArc& source);
    ORV_PERSISTENT_ACTOR(OrvArc)
    unsigned long copyGeometry(const OrvActor& source) override;

    unsigned long isFilled() const override { return filled; }
    float startAngle() const override { return start; }
    float endAngle() const override { return end; }

    void setAngles(float start, float end);
};

// ---------------------------------------------------------------------------
// Text and pictures
// ---------------------------------------------------------------------------

// A line of text in the make-up's font. The point is where the alignment
// puts it: left (1), right (2) or centre (16) across; top (4), bottom (8) or,
// with neither, the baseline down.
class OrvLabel : public OrvActor {
public:
    char* text;  // owned
    Orv2dPoint point;
    OrvPosition alignment;

    OrvLabel(OrvDirector* director, const char* caption, const Orv2dPoint& at,
             OrvPosition align = OrvLeft, OrvMakeUp* look = nullptr);
    OrvLabel(const OrvLabel& source);
    ORV_PERSISTENT_ACTOR(OrvLabel)
    unsigned long copyGeometry(const OrvActor& source) override;
    ~OrvLabel() override;

    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void apply2d(const Orv2dMatrix& matrix) override;
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;

    void notifyOnMakeUpChanged() override;

    // Change the text through setText: the label keeps the measure of its text.
    void setText(const char* text);
    void setAlignment(OrvPosition alignment);

protected:
    // The text's box in mapped space, and its baseline origin.
    Orv2dRect textBox(const Orv2dMatrix* matrix, Orv2dPoint* baseline) const;

private:
    // Measuring text asks the font, which costs more than the rest of a box:
    // the extent is kept for the text and make-up it was taken with.
    mutable Orv2dRect extent;
    mutable const char* extentText;
    mutable const OrvMakeUp* extentMakeUp;
    Orv2dRect textExtent() const;
};

// A bitmap at a point, drawn through its mask when it has one; only the
// pixels of the mask are hit.
class OrvIcon : public OrvActor {
public:
    OrvBitmap* bitmap;  // locked
    Orv2dPoint point;   // top left

    OrvIcon(OrvDirector* director, OrvBitmap* image, const Orv2dPoint& at,
            OrvMakeUp* look = nullptr);
    OrvIcon(const OrvIcon& source);
    ORV_PERSISTENT_ACTOR(OrvIcon)
    unsigned long copyGeometry(const OrvActor& source) override;
    ~OrvIcon() override;

    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void apply2d(const Orv2dMatrix& matrix) override;
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;

    void setBitmap(OrvBitmap* bitmap);

private:
    // The mask's bits, read once per bitmap: one X round trip, not one per hit.
    unsigned char* maskBits;
    unsigned long maskBytesPerLine;
    void readMask();
};

ORV_DECLARE_CLASS_INIT(OrvRectangle)
ORV_DECLARE_CLASS_INIT(OrvFilledRectangle)
ORV_DECLARE_CLASS_INIT(OrvLine)
ORV_DECLARE_CLASS_INIT(OrvArrowLine)
ORV_DECLARE_CLASS_INIT(Orv2dPolyline)
ORV_DECLARE_CLASS_INIT(Orv2dPolygon)
ORV_DECLARE_CLASS_INIT(OrvEllipse)
ORV_DECLARE_CLASS_INIT(OrvFilledEllipse)
ORV_DECLARE_CLASS_INIT(OrvArc)
ORV_DECLARE_CLASS_INIT(OrvLabel)
ORV_DECLARE_CLASS_INIT(OrvIcon)

#endif
