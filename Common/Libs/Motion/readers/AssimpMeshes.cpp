#include "readers/AssimpMeshes.h"

#include "kaMotion/Text.h"
#include "readers/AssimpScene.h"
#include "readers/ConfinedFolder.h"

#include <algorithm>

namespace ka::motion {

namespace {

std::vector<float> triples(const aiVector3D* vectors, unsigned count) {
    std::vector<float> list;
    if (vectors != nullptr)
        for (unsigned i = 0; i < count; ++i)
            list.insert(list.end(), {vectors[i].x, vectors[i].y, vectors[i].z});
    return list;
}

class MeshReader {
  public:
    MeshReader(const aiScene& scene, const AssimpPlaces& places, const ConfinedFolder& folder, Motion& motion)
        : _scene(scene), _places(places), _folder(folder), _motion(motion) {}

    void read() {
        for (unsigned i = 0; i < _scene.mNumMaterials; ++i)
            _motion.materials.push_back(materialOf(*_scene.mMaterials[i]));
        for (unsigned i = 0; i < _scene.mNumMeshes; ++i) {
            MotionMesh mesh = meshOf(*_scene.mMeshes[i]);
            mesh.nodes = _places.nodesOfMeshes[i];
            if (mesh.indices.empty())
                ++_withoutTriangles;
            else
                _motion.meshes.push_back(std::move(mesh));
        }
        if (_withoutTriangles > 0)
            _motion.notes.push_back("left out " + counted(_withoutTriangles, "part") +
                                    " of meshes: points or lines");
        if (_lostPictures > 0)
            _motion.notes.push_back("left out " + counted(_lostPictures, "picture") +
                                    " that is not in the model's folder");
    }

  private:
    MotionMaterial materialOf(const aiMaterial& source) {
        MotionMaterial material;
        aiString name;
        aiColor3D color(1, 1, 1), emission(0, 0, 0);
        if (source.Get(AI_MATKEY_NAME, name) == AI_SUCCESS)
            material.name = text(name);
        source.Get(AI_MATKEY_COLOR_DIFFUSE, color);
        source.Get(AI_MATKEY_COLOR_EMISSIVE, emission);
        float opacity = 1.0F;
        source.Get(AI_MATKEY_OPACITY, opacity);
        material.color = {color.r, color.g, color.b, opacity};
        material.emission = {emission.r, emission.g, emission.b};
        aiString path;
        for (const aiTextureType type : {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE})
            if (source.GetTexture(type, 0, &path) == AI_SUCCESS)
                return readPicture(text(path), material), material;
        return material;
    }

    void readPicture(std::string path, MotionMaterial& material) {
        const aiTexture* inside = _scene.GetEmbeddedTexture(path.c_str());
        if (inside != nullptr) {
            if (inside->mHeight == 0) // bytes of a file; else colours, which no viewer takes as they are
                material.picture.assign(reinterpret_cast<const char*>(inside->pcData), inside->mWidth);
            return;
        }
        std::replace(path.begin(), path.end(), '\\', '/');
        // Paths of the machine on which a model was made end in a name that may lie beside the model.
        for (const std::string& tried : {path, path.substr(path.rfind('/') + 1)})
            if (const auto file = _folder.resolve(tried)) {
                material.pictureFile = *file;
                return;
            }
        ++_lostPictures;
    }

    MotionMesh meshOf(const aiMesh& source) {
        MotionMesh mesh;
        mesh.name = text(source.mName);
        mesh.material = static_cast<std::int32_t>(source.mMaterialIndex);
        const unsigned corners = source.mNumVertices;
        mesh.positions = triples(source.mVertices, corners);
        mesh.normals = triples(source.mNormals, corners);
        if (const aiColor4D* colors = source.mColors[0])
            for (unsigned i = 0; i < corners; ++i)
                mesh.colors.insert(mesh.colors.end(), {colors[i].r, colors[i].g, colors[i].b, colors[i].a});
        if (const aiVector3D* places = source.mTextureCoords[0])
            for (unsigned i = 0; i < corners; ++i) // the library's origin is the lower left
                mesh.texCoords.insert(mesh.texCoords.end(), {places[i].x, 1.0F - places[i].y});
        for (unsigned i = 0; i < source.mNumFaces; ++i)
            if (const aiFace& face = source.mFaces[i]; face.mNumIndices == 3)
                mesh.indices.insert(mesh.indices.end(), face.mIndices, face.mIndices + 3);
        if (source.HasBones())
            readBones(source, mesh);
        for (unsigned i = 0; i < source.mNumAnimMeshes; ++i)
            readMorph(*source.mAnimMeshes[i], i, mesh);
        return mesh;
    }

    void readBones(const aiMesh& source, MotionMesh& mesh) {
        MotionSkin skin;
        mesh.joints.assign(4 * std::size_t{source.mNumVertices}, 0);
        mesh.weights.assign(4 * std::size_t{source.mNumVertices}, 0.0F);
        for (unsigned i = 0; i < source.mNumBones; ++i) {
            const aiBone& bone = *source.mBones[i];
            const auto place = _places.byName.find(text(bone.mName));
            skin.joints.push_back(place == _places.byName.end() ? 0xFFFFFFFF : place->second);
            const aiMatrix4x4& m = bone.mOffsetMatrix;
            skin.inverseBinds.insert(skin.inverseBinds.end(),
                                     {m.a1, m.b1, m.c1, m.d1, m.a2, m.b2, m.c2, m.d2, m.a3, m.b3, m.c3, m.d3,
                                      m.a4, m.b4, m.c4, m.d4});
            for (unsigned j = 0; j < bone.mNumWeights; ++j)
                bind(bone.mWeights[j], i, mesh);
        }
        for (std::size_t corner = 0; corner < source.mNumVertices; ++corner) {
            float sum = 0.0F;
            for (std::size_t j = 0; j < 4; ++j)
                sum += mesh.weights[4 * corner + j];
            for (std::size_t j = 0; j < 4 && sum > 0.0F; ++j)
                mesh.weights[4 * corner + j] /= sum;
        }
        mesh.skin = static_cast<std::int32_t>(_motion.skins.size());
        _motion.skins.push_back(std::move(skin));
    }

    /// Keeps the four largest weights of a corner.
    static void bind(const aiVertexWeight& weight, std::uint32_t joint, MotionMesh& mesh) {
        if (weight.mVertexId >= mesh.corners())
            return;
        const auto first =
            mesh.weights.begin() + static_cast<std::ptrdiff_t>(4 * std::size_t{weight.mVertexId});
        const auto least = std::min_element(first, first + 4);
        if (!(weight.mWeight > *least))
            return;
        *least = weight.mWeight;
        mesh.joints[static_cast<std::size_t>(least - mesh.weights.begin())] = joint;
    }

    static void readMorph(const aiAnimMesh& source, unsigned index, MotionMesh& mesh) {
        MotionMorph morph;
        morph.name = source.mName.length > 0 ? text(source.mName) : "shape " + std::to_string(index + 1);
        morph.weight =
            source.mWeight == 1.0F ? 0.0F : source.mWeight; // 1 is what the library says of no weight
        morph.offsets = triples(source.mVertices, source.mNumVertices);
        if (morph.offsets.size() == mesh.positions.size())
            for (std::size_t i = 0; i < morph.offsets.size(); ++i)
                morph.offsets[i] -= mesh.positions[i];
        else if (morph.offsets.empty())
            morph.offsets.resize(mesh.positions.size());
        mesh.morphs.push_back(std::move(morph));
    }

    const aiScene& _scene;
    const AssimpPlaces& _places;
    const ConfinedFolder& _folder;
    Motion& _motion;
    std::size_t _withoutTriangles = 0, _lostPictures = 0;
};

} // namespace

void readAssimpMeshes(const aiScene& scene, const AssimpPlaces& places, const ConfinedFolder& folder,
                      Motion& motion) {
    MeshReader(scene, places, folder, motion).read();
}

} // namespace ka::motion
