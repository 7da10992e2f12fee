// What a scene offers its actors while a frame is drawn: points, markers,
// lines, boxes, rectangles, polygons, face sets, series and shadows, the
// hand-made cull test of faces drawn in immediate mode, the level of detail
// of an actor, and the material the scene keeps in force between make-ups.
#include "orv/director.h"
#include "orv/scene.h"
#include "orv/view.h"

#include <GL/gl.h>
#include <cmath>

// Matrices go to GL through this one array, so that no frame allocates.
static float matrixValues[16];

// The make-up the operations draw in: the shadow's while a shadow is drawn.
static const OrvMakeUp* inForce(const OrvScene* scene, const OrvMakeUp* makeUp) {
    if (scene->shadowMakeUp) return scene->shadowMakeUp;
    return makeUp ? makeUp : scene->makeUp;
}

static void sendRGB(GLenum face, GLenum name, const OrvRGB& c, float alpha) {
    float v[4] = {c.red, c.green, c.blue, alpha};
    glMaterialfv(face, name, v);
}

static void vertex(const Orv3dPoint& p) {
    glVertex3f(p.x, p.y, p.z);
}

// ---------------------------------------------------------------------------
// Colours of faces: repeats are skipped, and the material the make-up set is
// put back once the faces are drawn
// ---------------------------------------------------------------------------

namespace {
struct ColorRun {
    const OrvScene* scene;
    bool lit;
    OrvRGB last;
    const OrvColor* lastColor;
    bool used;

    ColorRun(const OrvScene* s, bool l)
        : scene(s), lit(l), last(-1, -1, -1), lastColor(nullptr), used(false) {}

    // A face's own colour: lit, a material of that diffuse over the
    // director's defaults, with the default emission; unlit, the colour.
    void apply(const OrvRGB& c) {
        if (std::fabs(c.red - last.red) < 1e-6f && std::fabs(c.green - last.green) < 1e-6f &&
            std::fabs(c.blue - last.blue) < 1e-6f)
            return;
        last = c;
        lastColor = nullptr;
        used = true;
        if (!lit) {
            glColor3f(c.red, c.green, c.blue);
            return;
        }
        const OrvDirector* d = scene->makeUp->director;
        sendRGB(GL_FRONT_AND_BACK, GL_DIFFUSE, c, 1);
        sendRGB(GL_FRONT_AND_BACK, GL_AMBIENT, d->defaultAmbientColor(), 1);
        sendRGB(GL_FRONT_AND_BACK, GL_SPECULAR, d->defaultSpecularColor(), 1);
        sendRGB(GL_FRONT_AND_BACK, GL_EMISSION, d->defaultEmissiveColor(), 1);
        glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, d->defaultShininess() * 128);
    }

    // A face's OrvColor: a material sends its four colours, a plain colour is its RGB.
    void apply(const OrvColor* color) {
        if (!color->isMaterial()) {
            apply(OrvRGB(color->red, color->green, color->blue));
            return;
        }
        if (color == lastColor) return;
        lastColor = color;
        last = OrvRGB(-1, -1, -1);
        used = true;
        OrvRGB c;
        float alpha = color->transparency();
        color->diffuse(c.red, c.green, c.blue);
        if (!lit) {
            glColor3f(c.red, c.green, c.blue);
            return;
        }
        sendRGB(GL_FRONT_AND_BACK, GL_DIFFUSE, c, alpha);
        color->ambient(c.red, c.green, c.blue);
        sendRGB(GL_FRONT_AND_BACK, GL_AMBIENT, c, alpha);
        color->specular(c.red, c.green, c.blue);
        sendRGB(GL_FRONT_AND_BACK, GL_SPECULAR, c, alpha);
        color->emissive(c.red, c.green, c.blue);
        sendRGB(GL_FRONT_AND_BACK, GL_EMISSION, c, alpha);
        glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, color->shininess() * 128);
    }
};

// The arrays of one vertex data and the mode that says which of them each
// vertex issues: colour 4, normal 2, edge 1.
struct Vertices {
    const Orv3dPoint* p3;
    const Orv4dPoint* p4;
    const OrvRGB* colors;
    const Orv3dVector* normals;
    const OrvEdge* edges;
    const OrvTextureUV* textures;
    const unsigned *pi, *ci, *ni, *ei, *ti;
    unsigned count, mode;
    bool indexed;

    // The points, their count and their index block (null without an index).
    void takePoints(const OrvVertexData* data) {
        p3 = data->vertexPoints();
        p4 = p3 ? nullptr : data->vertexPoints4d();
        count = data->vertexCardinal();
        indexed = data->isIndexed() != 0;
        pi = indexed ? data->vertexPointsIndex() : nullptr;
    }

    // The other arrays, after takePoints; 0 after the internal error message
    // when an array of the mode cannot be read for every vertex.
    unsigned long takeRest(const OrvVertexData* data, unsigned long withTextures) {
        colors = data->vertexColors();
        normals = data->vertexNormals();
        edges = data->vertexEdges();
        textures = withTextures ? data->vertexTextures() : nullptr;
        mode = (colors ? 4 : 0) | (normals ? 2 : 0) | (edges ? 1 : 0);
        if (indexed) {
            // Only the blocks the mode reads: a face asks for them on every frame.
            ci = (mode & 4) ? data->vertexColorsIndex() : nullptr;
            ni = (mode & 2) ? data->vertexNormalsIndex() : nullptr;
            ei = (mode & 1) ? data->vertexEdgesIndex() : nullptr;
            ti = textures ? data->vertexTexturesIndex() : nullptr;
            if (!pi || ((mode & 4) && !ci) || ((mode & 2) && !ni) || ((mode & 1) && !ei) ||
                (textures && !ti))
                return OrvError("OrvScene::polygon : Internal error (2).\n");
        } else {
            ci = ni = ei = ti = nullptr;
            if (((mode & 4) && data->vertexColorsCardinal() < count) ||
                ((mode & 2) && data->vertexNormalsCardinal() < count) ||
                ((mode & 1) && data->vertexEdgesCardinal() < count) ||
                (textures && data->vertexTexturesCardinal() < count))
                return OrvError("OrvScene::polygon : Internal error (1).\n");
        }
        return 1;
    }

    unsigned long take(const OrvVertexData* data, unsigned long withTextures) {
        takePoints(data);
        return takeRest(data, withTextures);
    }

    // Colour, normal, edge flag, texture coordinate, then the point; with an
    // index each array goes through its own block.
    void emit(unsigned k) const {
        unsigned p = k, c = k, n = k, e = k, t = k;
        if (indexed) {
            p = pi[k];
            if (mode & 4) c = ci[k];
            if (mode & 2) n = ni[k];
            if (mode & 1) e = ei[k];
            if (textures) t = ti[k];
        }
        if (mode & 4) glColor3f(colors[c].red, colors[c].green, colors[c].blue);
        if (mode & 2) glNormal3f(normals[n].x, normals[n].y, normals[n].z);
        if (mode & 1) glEdgeFlag(edges[e] ? GL_TRUE : GL_FALSE);
        if (textures) glTexCoord2f(textures[t].u, textures[t].v);
        if (p3)
            glVertex3f(p3[p].x, p3[p].y, p3[p].z);
        else
            glVertex4f(p4[p].x, p4[p].y, p4[p].z, p4[p].w);
    }
};

// One face of the polygon path: the polygon, its colour and its normal.
struct FaceWords {
    const OrvPolygon* polygon;
    const OrvRGB* color;
    const Orv3dVector* normal;
};
}  // namespace

// Vertex colours under lighting colour the diffuse through glColorMaterial,
// over the default emission so that a plain make-up colour does not wash them out.
static void beginColorMaterial(const OrvScene* scene) {
    glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE);
    scene->restoreCurrentEmissiveMaterial();
    glEnable(GL_COLOR_MATERIAL);
}

// The polygon path: each face culled by hand when closed, coloured by its
// own colour unless its vertices have colours, drawn as quads, triangles or a
// polygon (a line strip when open). Faces of three or four vertices in a row
// share one glBegin: GL takes their colours and normals between vertices
// alike, and one primitive a face costs far more, in a list as in immediate
// mode, than the vertices themselves.
static void drawPolygons(const OrvScene* scene, unsigned n, OrvCullingMode cull,
                         const FaceWords* faces, unsigned long closed, unsigned long filled,
                         const OrvMakeUp* makeUp) {
    makeUp->render(scene, filled ? 0 : 1);
    bool lit = glIsEnabled(GL_LIGHTING) != 0;
    unsigned long withTextures = scene->renderTextureCoordinate(makeUp);
    ColorRun run(scene, lit);
    bool restore = false;
    GLenum open = 0;  // the primitive begun and still open, 0 for none
    bool openColors = false;
    auto end = [&]() {
        if (!open) return;
        glEnd();
        if (openColors && lit) glDisable(GL_COLOR_MATERIAL);
        open = 0;
    };
    for (unsigned i = 0; i < n; i++) {
        const OrvPolygon* polygon = faces[i].polygon;
        if (!polygon) continue;
        Vertices v;
        v.takePoints(polygon);
        if (!v.p3 && !v.p4) {
            OrvError("OrvScene::polygon : No point available (%d). \n", (int)i);
            continue;
        }
        unsigned count = v.count;
        if (scene->meterCounting && count > 2) scene->meterTriangles += count - 2;
        if (closed && !scene->renderFace(cull, v.p3, v.p4, v.pi, count)) continue;
        if (!v.takeRest(polygon, withTextures)) continue;
        GLenum primitive = !closed      ? GL_LINE_STRIP
                           : count == 4 ? GL_QUADS
                           : count == 3 ? GL_TRIANGLES
                                        : GL_POLYGON;
        bool colors = v.colors != nullptr;
        if (open && (open != primitive || primitive == GL_POLYGON || primitive == GL_LINE_STRIP ||
                     colors != openColors))
            end();
        if (!open) {
            if (colors) {
                restore = true;
                if (lit) beginColorMaterial(scene);
            }
            glBegin(primitive);
            open = primitive;
            openColors = colors;
        }
        if (!colors && faces[i].color) run.apply(*faces[i].color);
        if (faces[i].normal && !v.normals)
            glNormal3f(faces[i].normal->x, faces[i].normal->y, faces[i].normal->z);
        for (unsigned k = 0; k < count; k++) v.emit(k);
        if (primitive == GL_POLYGON || primitive == GL_LINE_STRIP) end();
    }
    end();
    if (run.used || restore) scene->restoreCurrentMaterial();
}

// ---------------------------------------------------------------------------
// Family 5
// ---------------------------------------------------------------------------

void OrvScene::points(const OrvMakeUp* look, unsigned count, const Orv3dPoint* p,
                      const unsigned* index) const {
    if (!p) return;
    inForce(this, look)->render(this, 1);
    glBegin(GL_POINTS);
    for (unsigned i = 0; i < count; i++) vertex(p[index ? index[i] : i]);
    glEnd();
}

void OrvScene::markers(const OrvMakeUp* look, unsigned count, const Orv3dPoint* p,
                       const unsigned* index) const {
    if (!p) return;
    const OrvMakeUp* m = inForce(this, look);
    m->render(this, 1);
    const OrvDirector* d = m->director;
    OrvMarkerType type = m->markerType();
    unsigned short scale = m->markerScale();
    unsigned list = d->marker(type, scale);
    for (unsigned i = 0; i < count; i++) {
        const Orv3dPoint& q = p[index ? index[i] : i];
        glRasterPos3f(q.x, q.y, q.z);
        if (isOffScreenRenderer())
            d->immediateMarker(type, scale);
        else if (list)
            glCallList(list);
    }
}

void OrvScene::line(const OrvMakeUp* look, const Orv3dPoint& from, const Orv3dPoint& to) const {
    inForce(this, look)->render(this, 1);
    glBegin(GL_LINES);
    vertex(from);
    vertex(to);
    glEnd();
}

void OrvScene::polyLine(const OrvMakeUp* look, unsigned count, const Orv3dPoint* p,
                        unsigned indexCount, const unsigned* index) const {
    if (!p || !count) return;
    // Read-only shares that borrow the caller's arrays; held here so that
    // they go with this call whatever the polygon took.
    OrvShare* points = new OrvShare(count, const_cast<Orv3dPoint*>(p), 1, 0);
    OrvShare* indices =
        index ? new OrvShare(indexCount, const_cast<unsigned*>(index), 1, 0) : nullptr;
    points->lock();
    if (indices) indices->lock();
    {
        OrvPolygon polygon;
        if (indices ? polygon.setIndexed(points, nullptr, nullptr, nullptr, nullptr) &&
                          polygon.setIndex(indices)
                    : polygon.setNonIndexed(points, nullptr, nullptr, nullptr, nullptr)) {
            const OrvMakeUp* m = inForce(this, look);
            FaceWords face = {&polygon, nullptr, nullptr};
            drawPolygons(this, 1, m->cull(), &face, 0, 0, m);
        }
    }
    if (indices) indices->unLock();
    points->unLock();
}

void OrvScene::box(const OrvMakeUp* look, const Orv3dVolume& v) const {
    inForce(this, look)->render(this, 1);
    float x1 = v.x + v.w, y1 = v.y + v.h, z1 = v.z + v.d;
    const Orv3dPoint loop[10] = {{v.x, v.y, v.z}, {x1, v.y, v.z}, {x1, y1, v.z}, {v.x, y1, v.z},
                                 {v.x, v.y, v.z}, {v.x, v.y, z1}, {x1, v.y, z1}, {x1, y1, z1},
                                 {v.x, y1, z1},   {v.x, v.y, z1}};
    glBegin(GL_LINE_STRIP);
    for (const Orv3dPoint& p : loop) vertex(p);
    glEnd();
    glBegin(GL_LINES);
    for (int i = 1; i < 4; i++) {
        vertex(loop[i]);
        vertex(loop[i + 5]);
    }
    glEnd();
}

void OrvScene::rectangle(const OrvMakeUp* look, const Orv3dPoint& p1, const Orv3dPoint& p2,
                         const Orv3dPoint& p3, const Orv3dPoint& p4, unsigned long filled) const {
    inForce(this, look)->render(this, filled ? 0 : 1);
    if (filled && meterCounting) meterTriangles += 2;
    glBegin(filled ? GL_POLYGON : GL_LINE_LOOP);
    vertex(p1);
    vertex(p2);
    vertex(p3);
    vertex(p4);
    glEnd();
}

void OrvScene::polygon(const OrvMakeUp* look, const OrvPolygon* p, const OrvRGB* color,
                       const Orv3dVector* normal, unsigned long closed) const {
    if (!p) return;
    const OrvMakeUp* m = inForce(this, look);
    FaceWords face = {p, color, normal};
    drawPolygons(this, 1, m->cull(), &face, closed, closed, m);
}

void OrvScene::polygon(const OrvMakeUp* look, const OrvFaceSet* set, unsigned long closed) const {
    if (!set) return;
    // Three words a face, grown by doubling and never shrunk.
    static FaceWords* faceWords = nullptr;
    static unsigned faceWordsSize = 0;
    unsigned n = set->faceCardinal();
    if (n > faceWordsSize) {
        unsigned size = faceWordsSize ? faceWordsSize : n + 1;
        while (size < n) size *= 2;
        delete[] faceWords;
        faceWords = new FaceWords[size];
        faceWordsSize = size;
    }
    unsigned i = 0;
    for (const OrvLink* l = set->faces.first; l && i < n; l = l->next, i++) {
        const OrvFace* face = (const OrvFace*)l->value;
        faceWords[i].polygon = face;
        faceWords[i].color = face ? face->color() : nullptr;
        faceWords[i].normal = face ? face->normal() : nullptr;
    }
    const OrvMakeUp* m = inForce(this, look);
    drawPolygons(this, i, m->cull(), faceWords, closed, closed, m);
}

namespace {
// Face attributes of a series, issued before the vertex that completes the face.
struct SeriesFaces {
    ColorRun run;
    const Orv3dVector* normals;
    unsigned normalCount;
    const OrvRGB* colors;
    const OrvColor* const* materials;
    unsigned count;

    SeriesFaces(const OrvScene* scene, bool lit) : run(scene, lit) {}
    void face(unsigned f) {
        if (f >= count) return;
        if (normals && f < normalCount) glNormal3f(normals[f].x, normals[f].y, normals[f].z);
        if (materials && materials[f])
            run.apply(materials[f]);
        else if (colors)
            run.apply(colors[f]);
    }
};
}  // namespace

void OrvScene::series(const OrvMakeUp* look, const OrvSeries* s, const OrvRGB* faceColors,
                      const OrvColor* const* faceMaterials) const {
    if (!s) return;
    const OrvMakeUp* m = inForce(this, look);
    m->render(this, 0);
    if (!s->vertexPoints() && !s->vertexPoints4d()) return;
    Vertices v;
    if (!v.take(s, renderTextureCoordinate(m))) return;
    bool lit = glIsEnabled(GL_LIGHTING) != 0;
    SeriesFaces faces(this, lit);
    faces.count = s->faceCardinal();
    faces.normals = nullptr;
    faces.normalCount = 0;
    if (!v.normals && s->faceNormals && s->faceNormals->normals()) {
        faces.normals = s->faceNormals->normals();
        faces.normalCount = s->faceNormals->cardinal;
    }
    // Vertex colours turn the face colours off.
    faces.colors = v.colors ? nullptr : faceColors;
    faces.materials = v.colors ? nullptr : faceMaterials;
    unsigned perFace = s->vertexPerFace();
    if (meterCounting && perFace > 2) meterTriangles += faces.count * (perFace - 2);
    if (v.colors && lit) beginColorMaterial(this);

    unsigned n = v.count;
    switch (s->kind) {
        case OrvQuadMesh: {
            // One strip a row; at each column the vertex of the row above
            // comes first, so that the strip's quads turn like the faces.
            unsigned rows = s->data1, columns = s->data2, width = columns + 1;
            if ((rows + 1) * width > n) break;
            for (unsigned r = 0; r < rows; r++) {
                glBegin(GL_QUAD_STRIP);
                for (unsigned c = 0; c <= columns; c++) {
                    faces.face(r * columns + (c ? c - 1 : 0));
                    v.emit((r + 1) * width + c);
                    v.emit(r * width + c);
                }
                glEnd();
            }
            break;
        }
        case OrvTriStrip:
        case OrvTriFan:
            glBegin(s->kind == OrvTriStrip ? GL_TRIANGLE_STRIP : GL_TRIANGLE_FAN);
            for (unsigned k = 0; k < n; k++) {
                faces.face(k < 2 ? 0 : k - 2);
                v.emit(k);
            }
            glEnd();
            break;
        case OrvRowsTriStrip: {
            unsigned start = 0, face = 0;
            for (unsigned row = 0; row < s->rows(); row++) {
                unsigned length = s->vertexInTriangleStrip(row);
                if (start + length > n) break;
                glBegin(GL_TRIANGLE_STRIP);
                for (unsigned k = 0; k < length; k++) {
                    faces.face(face + (k < 2 ? 0 : k - 2));
                    v.emit(start + k);
                }
                glEnd();
                start += length;
                if (length > 2) face += length - 2;
            }
            break;
        }
        case OrvFaces: {
            if (!perFace) break;
            unsigned count = faces.count;
            if (count * perFace > n) count = n / perFace;
            if (perFace == 3 || perFace == 4) glBegin(perFace == 4 ? GL_QUADS : GL_TRIANGLES);
            for (unsigned f = 0; f < count; f++) {
                if (perFace != 3 && perFace != 4) glBegin(GL_POLYGON);
                faces.face(f);
                for (unsigned k = 0; k < perFace; k++) v.emit(f * perFace + k);
                if (perFace != 3 && perFace != 4) glEnd();
            }
            if (perFace == 3 || perFace == 4) glEnd();
            break;
        }
    }
    if (v.colors && lit) glDisable(GL_COLOR_MATERIAL);
    if (faces.run.used || v.colors) restoreCurrentMaterial();
}

void OrvScene::bitblit(const OrvMakeUp* look, const OrvCanvas*, const Orv2dRect&,
                       const Orv2dPoint&) const {
    inForce(this, look)->render(this, 0);
}

// The projection along `d` onto the plane: p - d (P.p) / (n.d), where P is
// the plane and n its normal; 0 when the direction runs along the plane.
static unsigned long shadowMatrix(Orv3dMatrix& m, const Orv3dPlane& plane, const Orv3dVector& d) {
    float nd = plane.a * d.x + plane.b * d.y + plane.c * d.z;
    if (std::fabs(nd) < 1e-6f) return 0;
    const float p[4] = {plane.a, plane.b, plane.c, plane.d};
    const float dir[3] = {d.x, d.y, d.z};
    m = Orv3dMatrix(1ul);
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 4; j++) m(i, j) -= dir[i] * p[j] / nd;
    return 1;
}

void OrvScene::shadow(const OrvMakeUp* look, const OrvActor* actor, const Orv3dPlane& plane,
                      const Orv3dVector& light) const {
    if (!actor) return;
    Orv3dMatrix m;
    if (!shadowMatrix(m, plane, light)) return;
    const Orv3dMatrix* own = actor->to3dWorld();
    if (own) m = m * *own;
    m.transpose(matrixValues);
    unsigned long invariant = actor->isInvariant();
    OrvPushModelView();
    if (invariant)
        glLoadMatrixf(matrixValues);
    else
        glMultMatrixf(matrixValues);
    if (invariant) {
        OrvPushProjection();
        glMatrixMode(GL_PROJECTION);
        _invariantProjection.transpose(matrixValues);
        glLoadMatrixf(matrixValues);
        glMatrixMode(GL_MODELVIEW);
    }
    shadowMakeUp = look ? look : makeUp;
    actor->draw3d(this);
    shadowMakeUp = nullptr;
    if (invariant) OrvPopProjection();
    OrvPopModelView();
}

// ---------------------------------------------------------------------------
// Family 7: what the scene answers about faces and actors
// ---------------------------------------------------------------------------

void OrvScene::levelOfDetail(const OrvActor* actor, float& onScreen, float& visible) const {
    onScreen = 0;
    visible = 0;
    if (!drawingCanvas() || !actor || !interior) return;
    Orv2dRegion region;
    actor->bboxToScene(region, actor->isInvariant() ? &invariantToScene : &worldToScene, 0);
    Orv2dRect window(0, 0, (uint32_t)interior->width, (uint32_t)interior->height);
    if (!region.intersects(window)) return;
    Orv2dRect i = region.bbox;
    i.intersection(window);
    if (!window.w || !window.h || !i.w || !i.h) return;
    double area = (double)i.w * i.h;
    onScreen = (float)(area / ((double)window.w * window.h));
    visible = (float)(area / ((double)region.bbox.w * region.bbox.h));
}

unsigned long OrvScene::renderFace(OrvCullingMode mode, const Orv3dPoint* points3d,
                                   const Orv4dPoint* points4d, const unsigned* index,
                                   unsigned count) const {
    if (!renderFaceFlag || mode == OrvCullNone) return 1;
    if (mode == OrvCullBoth) return 0;
    if (count < 3 || (!points3d && !points4d)) return 1;
    if (!cullValid || cullSource != renderMatrix || cullInvariant != renderInvariant) {
        cullMatrix = renderInvariant ? invariantToScene : worldToScene;
        if (renderMatrix) cullMatrix = cullMatrix * *renderMatrix;
        cullSource = renderMatrix;
        cullInvariant = renderInvariant;
        cullValid = 1;
    }
    Orv3dPoint q[3];
    for (unsigned k = 0; k < 3; k++) {
        unsigned at = index ? index[k] : k;
        q[k] = points3d ? points3d[at] : points4d[at].to3dPoint();
        cullMatrix.apply(q[k]);
    }
    float s = q[0].x * q[1].y - q[1].x * q[0].y + q[1].x * q[2].y - q[2].x * q[1].y +
              q[2].x * q[0].y - q[0].x * q[2].y;
    if (mode == OrvCullBack) return s >= 0 ? 0 : 1;
    if (mode == OrvCullFront) return s <= 0 ? 0 : 1;
    return 1;
}

// ---------------------------------------------------------------------------
// The material in force, as the make-up last set it
// ---------------------------------------------------------------------------

void OrvScene::restoreCurrentMaterial() const {
    static const GLenum names[4] = {GL_DIFFUSE, GL_AMBIENT, GL_SPECULAR, GL_EMISSION};
    if (!colorInMaterial) glColor3f(material[0].red, material[0].green, material[0].blue);
    if (!materialTwoSided) {
        for (int i = 0; i < 4; i++) {
            sendRGB(GL_FRONT, names[i], material[i], frontAlpha);
            sendRGB(GL_BACK, names[i], material[4 + i], backAlpha);
        }
        glMaterialf(GL_FRONT, GL_SHININESS, frontShininess * 128);
        glMaterialf(GL_BACK, GL_SHININESS, backShininess * 128);
    } else {
        for (int i = 0; i < 4; i++) sendRGB(GL_FRONT_AND_BACK, names[i], material[i], frontAlpha);
        glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, frontShininess * 128);
    }
}

void OrvScene::restoreCurrentEmissiveMaterial() const {
    if (emissiveSet)
        sendRGB(GL_FRONT_AND_BACK, GL_EMISSION, makeUp->director->defaultEmissiveColor(), 1);
}
