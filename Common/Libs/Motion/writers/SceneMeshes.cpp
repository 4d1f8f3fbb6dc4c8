#include "writers/SceneMeshes.h"

#include "readers/ConfinedFolder.h"

#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMorphTarget.h>
#include <OpenSG/OSGPicture.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSkin.h>
#include <algorithm>
#include <kaMotion/Failure.h>
#include <kaMotion/Project.h>
#include <kaMotion/Text.h>
#include <map>
#include <optional>

namespace ka::motion {

namespace {

// What the graphics library calls them.
constexpr unsigned triangles = 4, strip = 5, fan = 6;

template <class List>
std::vector<float> numbersOf(const List& list, unsigned width) {
    std::vector<float> numbers;
    for (const auto& row : list)
        for (unsigned i = 0; i < width; ++i)
            numbers.push_back(row[i]);
    return numbers;
}

class MeshDescriber {
  public:
    MeshDescriber(const SceneNodes& scene, Motion& motion) : _scene(scene), _motion(motion) {}

    MorphPlaces run(const osg::NodePtr& root) {
        struct Pending {
            osg::NodePtr node;
            std::int32_t place; ///< of the nearest described node at or above it
        };
        std::vector<Pending> pending{{root, MotionNode::noParent}};
        while (!pending.empty()) {
            Pending next = pending.back();
            pending.pop_back();
            const auto own = _scene.places.find(next.node.getFieldContainerId());
            if (own != _scene.places.end())
                next.place = static_cast<std::int32_t>(own->second);
            const osg::GeometryPtr geometry = osg::GeometryPtr::dcast(next.node->getCore());
            if (geometry != osg::NullFC) {
                add(next.node, geometry, next.place);
                continue;
            }
            for (osg::UInt32 i = next.node->getNChildren(); i-- > 0;)
                if (next.node->getChild(i) != osg::NullFC)
                    pending.push_back({next.node->getChild(i), next.place});
        }
        if (_left > 0)
            _motion.notes.push_back("left out " + counted(_left, "part") +
                                    " of meshes that are not triangles");
        return std::move(_morphs);
    }

  private:
    void add(const osg::NodePtr& node, const osg::GeometryPtr& geometry, std::int32_t place) {
        MotionMesh mesh;
        if (!readTriangles(geometry, mesh))
            return void(++_left);
        const osg::Char8* name = osg::getName(geometry);
        mesh.name = name == nullptr ? std::string() : utf8FromLatin1(name);
        if (geometry->getNormals() != osg::NullFC)
            mesh.normals = numbersOf(*geometry->getNormals()->getMFNormals(), 3);
        if (geometry->getColors() != osg::NullFC)
            mesh.colors = numbersOf(*geometry->getColors()->getMFColors(), 4);
        if (geometry->getTexCoords() != osg::NullFC)
            mesh.texCoords = numbersOf(*geometry->getTexCoords()->getMFTexCoords(), 2);
        mesh.material = materialOf(geometry->getMaterial());
        readSkin(node, mesh);
        std::vector<osg::UInt32> shapes;
        for (osg::UInt32 i = 0; i < node->getNChildren(); ++i) {
            const osg::MorphTargetPtr target = osg::MorphTargetPtr::dcast(node->getChild(i)->getCore());
            if (target == osg::NullFC)
                continue;
            shapes.push_back(node->getChild(i).getFieldContainerId());
            mesh.morphs.push_back(
                {nodeName(node->getChild(i)), target->getWeight(), numbersOf(*target->getMFOffsets(), 3)});
        }
        if (place == MotionNode::noParent) { // a skin, or a geometry that nothing places
            _motion.nodes.push_back({mesh.name.empty() ? "mesh" : mesh.name,
                                     MotionNode::noParent,
                                     {0, 0, 0},
                                     {},
                                     {1, 1, 1},
                                     sceneOrder});
            place = static_cast<std::int32_t>(_motion.nodes.size() - 1);
        }
        mesh.nodes.push_back(static_cast<std::uint32_t>(place));
        for (std::size_t i = 0; i < shapes.size(); ++i)
            _morphs[shapes[i]] = {static_cast<std::uint32_t>(place), i, mesh.morphs[i].weight};
        _motion.meshes.push_back(std::move(mesh));
    }

    static bool readTriangles(const osg::GeometryPtr& geometry, MotionMesh& mesh) {
        if (geometry->getPositions() == osg::NullFC || geometry->getTypes() == osg::NullFC ||
            geometry->getLengths() == osg::NullFC)
            return false;
        mesh.positions = numbersOf(*geometry->getPositions()->getMFPositions(), 3);
        const auto& types = *geometry->getTypes()->getMFTypes();
        const auto& lengths = *geometry->getLengths()->getMFLengths();
        std::size_t at = 0;
        for (std::size_t i = 0; i < types.size() && i < lengths.size(); ++i, at += lengths[i - 1]) {
            const unsigned type = types[i];
            if (type != triangles && type != strip && type != fan)
                return false;
            const std::size_t step = type == triangles ? 3 : 1;
            for (std::size_t j = 0; j + 3 <= lengths[i]; j += step) {
                const std::size_t first = type == fan ? at : at + j;
                const bool isTurned = type == strip && j % 2 == 1;
                mesh.indices.push_back(cornerAt(geometry, isTurned ? at + j + 1 : first));
                mesh.indices.push_back(cornerAt(geometry, isTurned ? at + j : at + j + 1));
                mesh.indices.push_back(cornerAt(geometry, at + j + 2));
            }
        }
        return !mesh.indices.empty();
    }

    static std::uint32_t cornerAt(const osg::GeometryPtr& geometry, std::size_t place) {
        if (geometry->getIndices() == osg::NullFC)
            return static_cast<std::uint32_t>(place);
        const auto& indices = *geometry->getIndices()->getMFIndices();
        return place < indices.size() ? indices[place] : 0xFFFFFFFF; // refused by the check
    }

    std::int32_t materialOf(const osg::MaterialPtr& source) {
        const osg::SimpleMaterialPtr simple = osg::SimpleMaterialPtr::dcast(source);
        if (simple == osg::NullFC)
            return MotionMesh::none;
        const auto [known, isNew] = _materials.try_emplace(
            simple.getFieldContainerId(), static_cast<std::int32_t>(_motion.materials.size()));
        if (!isNew)
            return known->second;
        MotionMaterial material;
        const osg::Char8* name = osg::getName(simple);
        material.name = name == nullptr ? std::string() : utf8FromLatin1(name);
        const osg::Color3f &color = simple->getDiffuse(), &glow = simple->getEmission();
        material.color = {color[0], color[1], color[2], 1.0F - simple->getTransparency()};
        material.emission = {glow[0], glow[1], glow[2]};
        const auto picture = osg::PicturePtr::dcast(simple->findAttachment(osg::Picture::getClassType()));
        if (picture != osg::NullFC) {
            material.pictureFile = picture->getFileName();
            for (const osg::UInt8 byte : *picture->getMFBytes())
                material.picture += static_cast<char>(byte);
        }
        _motion.materials.push_back(std::move(material));
        return known->second;
    }

    void readSkin(const osg::NodePtr& node, MotionMesh& mesh) {
        const auto source = osg::SkinPtr::dcast(node->findAttachment(osg::Skin::getClassType()));
        if (source == osg::NullFC)
            return;
        MotionSkin skin;
        for (const osg::NodePtr& joint : *source->getMFJoints()) {
            const auto place =
                joint == osg::NullFC ? _scene.places.end() : _scene.places.find(joint.getFieldContainerId());
            skin.joints.push_back(place == _scene.places.end() ? 0xFFFFFFFF : place->second);
        }
        for (const osg::Matrix& matrix : *source->getMFInverseBinds())
            for (osg::UInt32 column = 0; column < 4; ++column)
                for (osg::UInt32 row = 0; row < 4; ++row)
                    skin.inverseBinds.push_back(matrix[column][row]);
        for (const osg::UInt32 index : *source->getMFIndices())
            mesh.joints.push_back(index);
        for (const osg::Real32 weight : *source->getMFWeights())
            mesh.weights.push_back(weight);
        mesh.skin = static_cast<std::int32_t>(_motion.skins.size());
        _motion.skins.push_back(std::move(skin));
    }

    const SceneNodes& _scene;
    Motion& _motion;
    std::map<osg::UInt32, std::int32_t> _materials;
    MorphPlaces _morphs;
    std::size_t _left = 0;
};

} // namespace

MorphPlaces describeMeshes(const osg::NodePtr& root, const SceneNodes& scene, Motion& motion) {
    return MeshDescriber(scene, motion).run(root);
}

void readPictures(Motion& motion, const std::string& file) {
    constexpr std::size_t largest = std::size_t{64} << 20;
    for (MotionMaterial& material : motion.materials) {
        if (material.pictureFile.empty() || !material.picture.empty())
            continue;
        std::optional<std::string> bytes;
        try {
            bytes = ConfinedFolder(file).read(material.pictureFile, largest);
        } catch (const Failure&) { // the file has gone, and nobody knows where pictures may be looked for
            bytes = std::nullopt;
        }
        if (bytes)
            material.picture = std::move(*bytes);
        else
            motion.notes.push_back("left out the picture " + printedPath(material.pictureFile) +
                                   ", which is no file of at most 64 MiB in the folder of " +
                                   printedPath(file));
        material.pictureFile.clear();
    }
}

} // namespace ka::motion
