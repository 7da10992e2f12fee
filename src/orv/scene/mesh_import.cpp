// Mesh files people have (Wavefront OBJ, PLY, STL, glTF 2.0 and the rest
// that assimp reads) as one indexed face set on one array of points. The
// parsing is assimp's; this file only turns its scene into faces.
#include "orv/vertex.h"

#ifdef ORV_WITH_ASSIMP

#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <vector>

namespace {

// A mesh of the scene with the transform of the node that places it; a
// mesh placed by several nodes comes once for each.
struct Placed {
    const aiMesh* mesh;
    aiMatrix4x4 transform;
};

void place(const aiScene* scene, const aiNode* node, const aiMatrix4x4& parent,
           std::vector<Placed>& out) {
    aiMatrix4x4 transform = parent * node->mTransformation;
    for (unsigned i = 0; i < node->mNumMeshes; i++)
        if (node->mMeshes[i] < scene->mNumMeshes)
            out.push_back(Placed{scene->mMeshes[node->mMeshes[i]], transform});
    for (unsigned i = 0; i < node->mNumChildren; i++)
        place(scene, node->mChildren[i], transform, out);
}

// An owned share of the values, or null when there are none.
template <class T>
OrvShare* shareOf(std::vector<T>& values) {
    if (values.empty()) return nullptr;
    T* array = new T[values.size()];
    for (size_t i = 0; i < values.size(); i++) array[i] = values[i];
    OrvShare* share = new OrvShare((unsigned)values.size(), array, 0, 1);
    share->lock();
    return share;
}

}  // namespace

OrvFaceSet* OrvImportMesh(const char* file, double creaseAngle) {
    if (!file || !*file) {
        OrvError("OrvImportMesh : No file.\n");
        return nullptr;
    }
    Assimp::Importer importer;
    // Vertices equal in every attribute become one point, so that faces
    // share their points and normals can be smoothed across them.
    const aiScene* scene = importer.ReadFile(file, aiProcess_JoinIdenticalVertices);
    if (!scene || (scene->mFlags & AI_SCENE_FLAGS_INCOMPLETE) || !scene->mRootNode) {
        OrvError("OrvImportMesh : %s : %s\n", file,
                 scene ? "The scene is incomplete." : importer.GetErrorString());
        return nullptr;
    }
    std::vector<Placed> meshes;
    place(scene, scene->mRootNode, aiMatrix4x4(), meshes);
    // An attribute is kept when every mesh has it.
    bool normals = !meshes.empty(), colors = !meshes.empty(), textures = !meshes.empty();
    for (const Placed& p : meshes) {
        normals = normals && p.mesh->HasNormals();
        colors = colors && p.mesh->HasVertexColors(0);
        textures = textures && p.mesh->HasTextureCoords(0);
    }
    std::vector<Orv3dPoint> point;
    std::vector<Orv3dVector> normal;
    std::vector<OrvRGB> color;
    std::vector<OrvTextureUV> texture;
    std::vector<std::vector<unsigned>> faces;
    for (const Placed& p : meshes) {
        const aiMesh* m = p.mesh;
        unsigned base = (unsigned)point.size();
        // Normals go through the inverse transpose of the transform.
        aiMatrix3x3 turn(p.transform);
        turn.Inverse().Transpose();
        for (unsigned v = 0; v < m->mNumVertices; v++) {
            aiVector3D q = p.transform * m->mVertices[v];
            point.push_back(Orv3dPoint(q.x, q.y, q.z));
            if (normals) {
                aiVector3D n = turn * m->mNormals[v];
                Orv3dVector on(n.x, n.y, n.z);
                on.normalize();
                normal.push_back(on);
            }
            if (colors) {
                const aiColor4D& c = m->mColors[0][v];
                color.push_back(OrvRGB(c.r, c.g, c.b));
            }
            if (textures) {
                const aiVector3D& t = m->mTextureCoords[0][v];
                texture.push_back(OrvTextureUV(t.x, t.y));
            }
        }
        // Points and lines are not faces.
        for (unsigned f = 0; f < m->mNumFaces; f++) {
            const aiFace& face = m->mFaces[f];
            if (face.mNumIndices < 3) continue;
            std::vector<unsigned> index(face.mNumIndices);
            bool inside = true;
            for (unsigned k = 0; k < face.mNumIndices; k++) {
                inside = inside && face.mIndices[k] < m->mNumVertices;
                index[k] = base + face.mIndices[k];
            }
            if (inside) faces.push_back(std::move(index));
        }
    }
    if (faces.empty()) {
        OrvError("OrvImportMesh : %s : No faces.\n", file);
        return nullptr;
    }
    OrvShare* shares[4] = {shareOf(point), shareOf(color), shareOf(normal), shareOf(texture)};
    OrvFaceSet* set = new OrvFaceSet(0);
    // Every block of a face is the point block: the arrays are parallel.
    for (const std::vector<unsigned>& index : faces) {
        OrvFace* face = new OrvFace;
        face->setIndexed(shares[0], shares[1], shares[2], shares[3], nullptr);
        const unsigned* v = index.data();
        face->setIndex(0, (unsigned)index.size(), v, shares[1] ? v : nullptr,
                       shares[2] ? v : nullptr, nullptr, shares[3] ? v : nullptr);
        set->add(face);
    }
    for (OrvShare* s : shares)
        if (s) s->unLock();
    set->computeFacesNormals();
    if (!normals && creaseAngle >= 0) set->computeVerticeNormals(creaseAngle);
    return set;
}

#else

OrvFaceSet* OrvImportMesh(const char* file, double) {
    OrvError("OrvImportMesh : %s : This library was built without mesh import (assimp).\n",
             file ? file : "");
    return nullptr;
}

#endif
