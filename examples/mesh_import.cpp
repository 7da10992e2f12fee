// Imports a mesh file (OBJ, PLY, STL, glTF and the other formats assimp
// reads), smooths its normals by crease angle when the file has none, and
// saves it as .orv text.
//
//   mesh_import FILE OUT.orv [CREASE_DEGREES]
#include <orv/orvis.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

int main(int argc, char** argv) {
    if (argc < 3) {
        fprintf(stderr, "usage: mesh_import FILE OUT.orv [CREASE_DEGREES]\n");
        return 2;
    }
    double crease = argc > 3 ? atof(argv[3]) : 30;
    OrvFaceSet* mesh = OrvImportMesh(argv[1], crease);
    if (!mesh) return 1;
    unsigned slots = 0, points = 0, normals = 0;
    for (OrvLink* l = mesh->faces.first; l; l = l->next) {
        const OrvFace* f = (const OrvFace*)l->value;
        slots += f->vertexCardinal();
        points = f->vertexPointsCardinal();
        normals = f->vertexNormalsCardinal();
    }
    std::ofstream out(argv[2]);
    OrvOStream writer(out);
    writer.header(0);
    mesh->write(writer);
    writer.eof();
    out.close();
    Orv3dVolume box = mesh->bbox3d();
    printf("%s: %u faces, %u points, %u vertex slots, %u normals, box %g %g %g + %g %g %g\n",
           argv[1], mesh->faceCardinal(), points, slots, normals, box.x, box.y, box.z, box.w, box.h,
           box.d);
    printf("saved as %s\n", argv[2]);
    delete mesh;
    return out ? 0 : 1;
}
