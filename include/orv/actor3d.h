// 3D actors: an actor with a matrix and a display list, and the two that draw
// the vertex data (a face set, a series with face colours and materials).
#ifndef ORV_ACTOR3D_H
#define ORV_ACTOR3D_H

#include "orv/actor.h"
#include "orv/vertex.h"

class Orv3dActor : public OrvActor {
public:
    unsigned displayList;  // 0 when none
    Orv3dMatrix* matrix;   // owned; null is the identity

    Orv3dActor(OrvDirector* director, OrvMakeUp* look = nullptr);
    // Copies the matrix, never the display list.
    Orv3dActor(const Orv3dActor& source);
    ORV_PERSISTENT_ACTOR(Orv3dActor)
    ~Orv3dActor() override;

    // Compiles draw3d into a list once, then calls it under the actor's matrix.
    void drawStructure(const OrvScene* scene) override;
    // Drops the display list: the next frame compiles a new one.
    void takeAPicture() override;
    // Sets the flag and drops the list when it changes (textureOn drops it
    // through the base's change protocol).
    void immediate(unsigned long on) override;
    void notifyOnMakeUpChanged() override;
    const Orv3dMatrix* to3dWorld() const override;
    void to3dWorld(const Orv3dMatrix* matrix) override;
    void rotateX(const double& degrees, unsigned long accumulate) override;
    void rotateY(const double& degrees, unsigned long accumulate) override;
    void rotateZ(const double& degrees, unsigned long accumulate) override;
    void rotate(const Orv3dPoint& p1, const Orv3dPoint& p2, const double& degrees,
                unsigned long accumulate) override;
    void translate(const float& x, const float& y, const float& z,
                   unsigned long accumulate) override;
    void scale(const float& x, const float& y, const float& z, unsigned long accumulate) override;
    void build3dMatrix(const Orv3dPoint& centre, const Orv3dVector& translation, const double& rx,
                       const double& ry, const double& rz, const Orv3dVector& scale,
                       unsigned long accumulate) override;

protected:
    // Runs one matrix step inside beginDrawing(1)/flushDrawing(1).
    void changeMatrix(void (*step)(Orv3dMatrix&, const void*), const void* data);
};

// A face set, owned, drawn through OrvScene::polygon.
class Orv3dActorFaceSet : public Orv3dActor {
public:
    OrvFaceSet* faces;

    Orv3dActorFaceSet(OrvDirector* director, OrvFaceSet* faceSet, OrvMakeUp* look = nullptr);
    Orv3dActorFaceSet(const Orv3dActorFaceSet& source);
    ORV_PERSISTENT_ACTOR(Orv3dActorFaceSet)
    ~Orv3dActorFaceSet() override;

    // Replaces the face set (deleting the old one) and drops the display list.
    void faceSet(OrvFaceSet* faceSet);
    OrvFaceSet* getFaceSet() const { return faces; }
    void draw3d(const OrvScene* scene) const override;
    Orv3dVolume bbox3d(unsigned long world) const override;
    // The face set's pick.
    unsigned long contains3d(const Orv2dPoint& point, const OrvScene* scene) const override;
    // Also forgets the face set's pick hierarchy: its geometry changed.
    void takeAPicture() override;
    // A new make-up drops the display list but keeps the pick hierarchy.
    void notifyOnMakeUpChanged() override;
};

// A series, owned, with an optional colour a face (a locked share) and an
// optional material a face (counted), drawn through OrvScene::series.
class Orv3dShape : public Orv3dActor {
public:
    OrvSeries* series_;
    OrvShare* colors_;
    OrvColor** materials_;   // faceCardinal entries, each counted; may be null
    unsigned materialCount;  // entries of materials_: the faces when it was set

    Orv3dShape(OrvDirector* director, OrvSeries* series, OrvShare* colors, OrvColor** materials,
               OrvMakeUp* look = nullptr);
    Orv3dShape(const Orv3dShape& source);
    ORV_PERSISTENT_ACTOR(Orv3dShape)
    ~Orv3dShape() override;

    // Replaces the three; nulls mean none.
    void series(OrvSeries* series, OrvShare* colors, OrvColor** materials);
    void colors(OrvShare* colors);
    // Copies the array (faceCardinal entries).
    void materials(OrvColor** materials);
    OrvSeries* getSeries() const { return series_; }
    void draw3d(const OrvScene* scene) const override;
    Orv3dVolume bbox3d(unsigned long world) const override;
    // The series' pick.
    unsigned long contains3d(const Orv2dPoint& point, const OrvScene* scene) const override;
    // Also forgets the series' pick hierarchy: its geometry changed.
    void takeAPicture() override;
    // A new make-up drops the display list but keeps the pick hierarchy.
    void notifyOnMakeUpChanged() override;
};

ORV_DECLARE_CLASS_INIT(Orv3dActor)
ORV_DECLARE_CLASS_INIT(Orv3dActorFaceSet)
ORV_DECLARE_CLASS_INIT(Orv3dShape)

#endif
