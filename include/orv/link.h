// Links: actors that join two other actors and follow them, as a straight
// line, a line with one bend or a line with two bends, and the producers that
// make them with the mouse. A link has no geometry of its own: its shape is
// computed from the boxes of its two ends at each use.
#ifndef ORV_LINK_H
#define ORV_LINK_H

#include "orv/actor.h"
#include "orv/producer.h"

class OrvLinkImage : public OrvActor {
public:
    OrvActor* from;          // start; not owned
    OrvActor* to;            // end; not owned
    unsigned long oriented;  // 1 when an arrow head is drawn
    float position;          // where the head stands on the last segment

    // Turns off resizeable and moveable and marks the actor as a link (bit 7).
    OrvLinkImage(OrvDirector* director, OrvActor* fromActor, OrvActor* toActor,
                 unsigned long isOriented = 1, float headPosition = 1.0f,
                 OrvMakeUp* look = nullptr);
    OrvLinkImage(const OrvLinkImage& source);
    ORV_PERSISTENT_ACTOR(OrvLinkImage)

    // The points of the path (and of the head, for the two-bend link) in the
    // shared buffer of OrvAllocLinkPoints: valid until the next link is asked.
    // A count of 0 when an end is missing.
    virtual Orv2dPoint* getLink2dPoints(unsigned int& count, const Orv2dMatrix* matrix) const;

    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    // The handles first, then the arrow head, then each segment.
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;
    // Calls the function on from, then on to.
    void map(void (*function)(OrvActor*, void*), void* data) override;
    void mapReferences(void (*function)(OrvActor*, void*), void* data) override;
    // A link's shape follows its ends: it has no geometry of its own to take.
    unsigned long copyGeometry(const OrvActor&) override { return 1; }

    // Each repaints when the value changes; the stage's link tables keep the
    // old ends (OrvStage::addLink and removeLink maintain those).
    void setFrom(OrvActor* actor);
    void setTo(OrvActor* actor);
    void setOriented(unsigned long on);
    void setPosition(float where);
    // Whether both ends are there; a stage reads no link that misses one.
    bool hasEnds() const { return from && to; }

protected:
    // The path's segment count (1, 2 or 3) and, for the arrow, the segment it sits on.
    virtual unsigned int pathPoints() const { return 2; }
    // The arrow's three points for the path p of pathPoints() points.
    virtual void arrowPoints(const Orv2dPoint* p, Orv2dPoint* arrow) const;
    // Copies the path (and arrow when oriented) into out; false when an end is missing.
    bool shape(const Orv2dMatrix* matrix, Orv2dPoint* path, unsigned int& n,
               Orv2dPoint* arrow) const;
};

// A link with one right-angled bend; horizontal first unless orientation is 1.
class OrvOneLinkImage : public OrvLinkImage {
public:
    unsigned long orientation;  // 1 vertical first, 0 horizontal first

    OrvOneLinkImage(OrvDirector* director, OrvActor* fromActor, OrvActor* toActor,
                    unsigned long isOriented = 1, float headPosition = 1.0f,
                    OrvMakeUp* look = nullptr);
    OrvOneLinkImage(const OrvOneLinkImage& source);
    ORV_PERSISTENT_ACTOR(OrvOneLinkImage)

    Orv2dPoint* getLink2dPoints(unsigned int& count, const Orv2dMatrix* matrix) const override;
    // OrvVertical (64) or OrvHorizontal (32); repaints when it changes.
    void setOrientation(OrvPosition direction);

protected:
    unsigned int pathPoints() const override { return 3; }
};

// A link with two bends; its arrow head has the fixed size of
// Orvarrow_deltax by Orvarrow_deltay.
class OrvDoubleLinkImage : public OrvLinkImage {
public:
    OrvDoubleLinkImage(OrvDirector* director, OrvActor* fromActor, OrvActor* toActor,
                       unsigned long isOriented = 1, float headPosition = 1.0f,
                       OrvMakeUp* look = nullptr);
    OrvDoubleLinkImage(const OrvDoubleLinkImage& source);
    ORV_PERSISTENT_ACTOR(OrvDoubleLinkImage)

    // Seven points: the four of the path, then the three of the head.
    Orv2dPoint* getLink2dPoints(unsigned int& count, const Orv2dMatrix* matrix) const override;
    // Whether the boxes of from and to overlap in both x and y.
    unsigned long isDirect(const Orv2dMatrix* matrix) const;

protected:
    unsigned int pathPoints() const override { return 4; }
    void arrowPoints(const Orv2dPoint* p, Orv2dPoint* arrow) const override;
};

ORV_DECLARE_CLASS_INIT(OrvLinkImage)
ORV_DECLARE_CLASS_INIT(OrvOneLinkImage)
ORV_DECLARE_CLASS_INIT(OrvDoubleLinkImage)

// Makes a link by a drag from one actor to another, with the button of the
// producer; the ends are selected while the drag goes on.
class OrvMakeLinkProducer : public OrvProducer {
public:
    OrvActor* from;
    OrvActor* to;
    Orv2dPoint start, current;
    unsigned long ghostErased;
    unsigned short button;  // 1, 2, 4 or 8
    OrvMakeUp* makeUp;      // of the links made; counted

    explicit OrvMakeLinkProducer(OrvStage* forStage, OrvProducer* previousProducer = nullptr,
                                 unsigned short withButton = 1, OrvMakeUp* look = nullptr);
    ~OrvMakeLinkProducer() override;
    int input2d(const OrvEvent& event) override;
    void expose2d(const Orv2dRegion* region) override;
    void abort() override;
    void init() override;
    const char* className() const override { return "MakeLink"; }
    unsigned long isActive() const override { return from != nullptr; }

    // The line from start to current in the make-up given (in exclusive or).
    virtual void ghost2d(const OrvMakeUp* look, const Orv2dPoint& a, const Orv2dPoint& b);
    // Makes the link and appends it to the stage; each subclass its own class.
    virtual void activate2d(OrvActor* fromActor, OrvActor* toActor);
    // Whether an actor may start or end a link; both accept any by default.
    virtual unsigned long acceptFrom(OrvActor* actor);
    virtual unsigned long acceptTo(OrvActor* actor);

protected:
    // The selectable actor under a point, or null.
    OrvActor* pick(const Orv2dPoint& point) const;
};

class OrvMakeOneLinkProducer : public OrvMakeLinkProducer {
public:
    using OrvMakeLinkProducer::OrvMakeLinkProducer;
    const char* className() const override { return "MakeOneLink"; }
    void activate2d(OrvActor* fromActor, OrvActor* toActor) override;
};

class OrvMakeDoubleLinkProducer : public OrvMakeLinkProducer {
public:
    using OrvMakeLinkProducer::OrvMakeLinkProducer;
    const char* className() const override { return "MakeDoubleLink"; }
    void activate2d(OrvActor* fromActor, OrvActor* toActor) override;
};

#endif
