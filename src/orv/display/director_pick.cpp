// The director's pick record: what the last pick of any scene found.
#include "orv/director.h"

void OrvDirector::setPick3dRecord(const OrvScene* scene, OrvPickType type, OrvActor* actor,
                                  const OrvPolygon* polygon, const Orv3dPoint* point,
                                  long vertexIndex, long edgeIndex) {
    pickRecord.scene = scene;
    pickRecord.type = type;
    pickRecord.actor = actor;
    pickRecord.polygon = polygon;
    pickRecord.point = point ? *point : Orv3dPoint();
    pickRecord.vertexIndex = vertexIndex;
    pickRecord.edgeIndex = edgeIndex;
}

void OrvDirector::clearPick3dRecord() {
    pickRecord = OrvPick3dRecord();
}
