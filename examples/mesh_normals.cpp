// A faceted mesh smoothed by crease angle: a 24-sided prism with bevelled
// ends, every face on one shared array of points. At 30 degrees the sides
// (15 degrees apart) blend into a round body while the bevels and the end
// caps (45 degrees off) keep their edges. The mesh is saved as .orv text,
// read back, and the counts go to a summary.
//
//   mesh_normals [OUT.orv [SUMMARY.txt]]
#include <orv/orvis.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

static const unsigned sides = 24;

// Rings from the bottom: the bevel's inner edge, the body's two edges, the
// top bevel's inner edge.
static OrvFaceSet* prism(OrvShare*& points) {
    const float radius[4] = {0.8f, 1, 1, 0.8f};
    const float height[4] = {0, 0.2f, 1.8f, 2};
    Orv3dPoint* p = new Orv3dPoint[4 * sides];
    for (unsigned ring = 0; ring < 4; ring++)
        for (unsigned k = 0; k < sides; k++) {
            double a = 2 * M_PI * k / sides;
            p[ring * sides + k] = Orv3dPoint((float)(radius[ring] * std::cos(a)),
                                             (float)(radius[ring] * std::sin(a)), height[ring]);
        }
    points = new OrvShare(4 * sides, p, 0, 1);
    points->lock();
    OrvFaceSet* set = new OrvFaceSet(0);
    auto face = [&](const std::vector<unsigned>& index) {
        OrvFace* f = new OrvFace;
        f->setIndexed(points, nullptr, nullptr, nullptr, nullptr);
        f->setIndex(0, (unsigned)index.size(), index.data(), nullptr, nullptr, nullptr, nullptr);
        set->add(f);
    };
    // Three bands of quads, counter-clockwise seen from outside.
    for (unsigned band = 0; band < 3; band++)
        for (unsigned k = 0; k < sides; k++) {
            unsigned next = (k + 1) % sides;
            face({band * sides + k, band * sides + next, (band + 1) * sides + next,
                  (band + 1) * sides + k});
        }
    // The caps: the bottom seen from below, the top from above.
    std::vector<unsigned> bottom, top;
    for (unsigned k = 0; k < sides; k++) {
        bottom.push_back(sides - 1 - k);
        top.push_back(3 * sides + k);
    }
    face(bottom);
    face(top);
    return set;
}

struct Counts {
    unsigned faces = 0, points = 0, slots = 0, normals = 0;
};

static Counts count(const OrvFaceSet& set) {
    Counts c;
    c.faces = set.faceCardinal();
    for (OrvLink* l = set.faces.first; l; l = l->next) {
        const OrvFace* f = (const OrvFace*)l->value;
        c.slots += f->vertexCardinal();
        c.points = f->vertexPointsCardinal();
        c.normals = f->vertexNormalsCardinal();
    }
    return c;
}

static std::string text(const OrvFaceSet& set) {
    std::ostringstream out;
    OrvOStream writer(out);
    set.write(writer);
    return out.str();
}

int main(int argc, char** argv) {
    const char* file = argc > 1 ? argv[1] : "mesh_normals.orv";
    const char* summary = argc > 2 ? argv[2] : "mesh_normals.txt";

    OrvShare* points = nullptr;
    OrvFaceSet* mesh = prism(points);
    mesh->computeFacesNormals();
    if (!mesh->computeVerticeNormals(30)) return 1;
    Counts made = count(*mesh);

    {
        std::ofstream out(file);
        OrvOStream writer(out);
        writer.header(0);
        mesh->write(writer);
        writer.eof();
        if (!out) {
            fprintf(stderr, "mesh_normals: cannot write %s\n", file);
            return 1;
        }
    }
    OrvFaceSet* back = nullptr;
    {
        std::ifstream in(file);
        OrvIStream reader(nullptr, in);
        if (reader.header(0)) back = OrvFaceSet::read(reader);
    }
    if (!back) {
        fprintf(stderr, "mesh_normals: cannot read %s back\n", file);
        return 1;
    }
    Counts read = count(*back);
    bool same = text(*mesh) == text(*back);

    char report[1024];
    snprintf(report, sizeof report,
             "24-sided prism with bevelled ends, smoothed at 30 degrees\n"
             "made:      %u faces, %u points, %u vertex slots, %u distinct normals\n"
             "read back: %u faces, %u points, %u vertex slots, %u distinct normals\n"
             "written again: %s\n",
             made.faces, made.points, made.slots, made.normals, read.faces, read.points, read.slots,
             read.normals, same ? "identical" : "DIFFERENT");
    fputs(report, stdout);
    FILE* out = fopen(summary, "w");
    if (out) {
        fputs(report, out);
        fclose(out);
    }
    delete mesh;
    delete back;
    points->unLock();
    return same && made.normals == read.normals ? 0 : 1;
}
