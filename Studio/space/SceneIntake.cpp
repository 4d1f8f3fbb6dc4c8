#include "SceneIntake.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGMorphTarget.h>
#include <OpenSG/OSGPicture.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSkin.h>
#include <QDir>
#include <algorithm>
#include <map>

namespace ka::studio {

namespace {

// What the graphics library calls them.
constexpr unsigned Triangles = 4, Strip = 5, Fan = 6, Quads = 7, Polygon = 9;

template <class List>
std::vector<float> numbersOf(const List& list, unsigned width) {
    std::vector<float> numbers;
    numbers.reserve(list.size() * width);
    for (const auto& row : list)
        for (unsigned i = 0; i < width; ++i)
            numbers.push_back(row[i]);
    return numbers;
}

/// The corners of one primitive as triangles.
void addTriangles(unsigned type, const std::vector<std::uint32_t>& corners,
                  std::vector<std::uint32_t>& indices) {
    const auto add = [&](std::size_t a, std::size_t b, std::size_t c) {
        indices.insert(indices.end(), {corners[a], corners[b], corners[c]});
    };
    const std::size_t count = corners.size();
    if (type == Triangles)
        for (std::size_t i = 0; i + 3 <= count; i += 3)
            add(i, i + 1, i + 2);
    else if (type == Strip)
        for (std::size_t i = 0; i + 3 <= count; ++i)
            i % 2 == 0 ? add(i, i + 1, i + 2) : add(i + 1, i, i + 2);
    else if (type == Quads)
        for (std::size_t i = 0; i + 4 <= count; i += 4) {
            add(i, i + 1, i + 2);
            add(i, i + 2, i + 3);
        }
    else if (type == Fan || type == Polygon)
        for (std::size_t i = 1; i + 2 <= count; ++i)
            add(0, i, i + 1);
}

std::array<float, 7> lookOf(const osg::SimpleMaterial& material) {
    const osg::Color3f &color = material.getDiffuse(), &glow = material.getEmission();
    return {color[0], color[1], color[2], 1.0F - material.getTransparency(), glow[0], glow[1], glow[2]};
}

class Intake {
  public:
    Intake(const Figure& figure, const QString& folder, int& left)
        : _figure(figure), _folder(folder), _left(left) {
        _scene.materials.emplace_back();
    }

    SpaceScene run(const osg::NodePtr& root) {
        struct Pending {
            osg::NodePtr node;
            int joint;
            osg::MaterialPtr material; ///< of the group that it is in
        };
        std::vector<Pending> pending{{root, -1, osg::MaterialPtr()}};
        while (!pending.empty()) {
            Pending next = pending.back();
            pending.pop_back();
            if (next.node == osg::NullFC)
                continue;
            const int own = _figure.indexOf(next.node.getFieldContainerId());
            next.joint = own >= 0 ? own : next.joint;
            const osg::NodeCorePtr core = next.node->getCore();
            if (const auto group = osg::MaterialGroupPtr::dcast(core); group != osg::NullFC)
                next.material = group->getMaterial();
            if (const auto geometry = osg::GeometryPtr::dcast(core); geometry != osg::NullFC)
                add(next.node, geometry, next.joint, next.material);
            for (osg::UInt32 i = next.node->getNChildren(); i-- > 0;)
                pending.push_back({next.node->getChild(i), next.joint, next.material});
        }
        return std::move(_scene);
    }

  private:
    void add(const osg::NodePtr& node, const osg::GeometryPtr& geometry, int joint,
             const osg::MaterialPtr& around) {
        SpacePart part;
        part.node = node.getFieldContainerId();
        part.mesh = meshOf(geometry, around);
        if (part.mesh < 0)
            return void(++_left);
        const std::size_t corners = _scene.meshes[static_cast<std::size_t>(part.mesh)].corners();
        part.mover = moverOf(joint);
        if (!readSkin(node, corners, part.skin))
            part.skin = {};
        for (osg::UInt32 i = 0; i < node->getNChildren(); ++i) {
            const osg::NodePtr child = node->getChild(i);
            const auto target =
                child == osg::NullFC ? osg::MorphTargetPtr() : osg::MorphTargetPtr::dcast(child->getCore());
            if (target != osg::NullFC && target->getMFOffsets()->size() == corners)
                part.morphs.push_back({child.getFieldContainerId(), numbersOf(*target->getMFOffsets(), 3)});
        }
        _scene.parts.push_back(std::move(part));
    }

    int moverOf(int joint) {
        if (joint < 0)
            return -1;
        const auto [known, isNew] = _movers.try_emplace(joint, static_cast<int>(_scene.movers.size()));
        if (isNew)
            _scene.movers.push_back(joint);
        return known->second;
    }

    /// -1 for what is no surface.
    int meshOf(const osg::GeometryPtr& geometry, const osg::MaterialPtr& around) {
        const auto [known, isNew] = _meshes.try_emplace(geometry.getFieldContainerId(), -1);
        if (!isNew)
            return known->second;
        SpaceMesh mesh;
        if (!readTriangles(geometry, mesh))
            return -1;
        const auto fits = [&mesh](std::vector<float> numbers, std::size_t width) {
            return numbers.size() == mesh.corners() * width ? numbers : std::vector<float>();
        };
        if (geometry->getNormals() != osg::NullFC)
            mesh.normals = fits(numbersOf(*geometry->getNormals()->getMFNormals(), 3), 3);
        if (geometry->getColors() != osg::NullFC)
            mesh.colors = fits(numbersOf(*geometry->getColors()->getMFColors(), 4), 4);
        if (geometry->getTexCoords() != osg::NullFC)
            mesh.texCoords = fits(numbersOf(*geometry->getTexCoords()->getMFTexCoords(), 2), 2);
        mesh.material = materialOf(geometry->getMaterial() != osg::NullFC ? geometry->getMaterial() : around);
        _scene.meshes.push_back(std::move(mesh));
        return known->second = static_cast<int>(_scene.meshes.size()) - 1;
    }

    static bool readTriangles(const osg::GeometryPtr& geometry, SpaceMesh& mesh) {
        if (geometry->getPositions() == osg::NullFC || geometry->getTypes() == osg::NullFC ||
            geometry->getLengths() == osg::NullFC)
            return false;
        mesh.positions = numbersOf(*geometry->getPositions()->getMFPositions(), 3);
        const bool isIndexed = geometry->getIndices() != osg::NullFC;
        const auto& types = *geometry->getTypes()->getMFTypes();
        const auto& lengths = *geometry->getLengths()->getMFLengths();
        const std::size_t known = isIndexed ? geometry->getIndices()->getMFIndices()->size() : mesh.corners();
        std::size_t at = 0;
        std::vector<std::uint32_t> corners;
        for (std::size_t i = 0; i < types.size() && i < lengths.size(); ++i) {
            if (lengths[i] > known - at)
                return false;
            corners.clear();
            for (const std::size_t end = at + lengths[i]; at < end; ++at)
                corners.push_back(isIndexed ? (*geometry->getIndices()->getMFIndices())[at]
                                            : static_cast<std::uint32_t>(at));
            addTriangles(types[i], corners, mesh.indices);
        }
        return !mesh.indices.empty() && std::all_of(mesh.indices.begin(), mesh.indices.end(),
                                                    [&mesh](std::uint32_t i) { return i < mesh.corners(); });
    }

    int materialOf(const osg::MaterialPtr& source) {
        const osg::SimpleMaterialPtr simple = osg::SimpleMaterialPtr::dcast(source);
        if (simple == osg::NullFC)
            return 0;
        const auto [known, isNew] =
            _materials.try_emplace(simple.getFieldContainerId(), static_cast<int>(_scene.materials.size()));
        if (!isNew)
            return known->second;
        SpaceMaterial material;
        material.source = simple.getFieldContainerId();
        const std::array<float, 7> look = lookOf(*simple);
        std::copy(look.begin(), look.begin() + 4, material.color.begin());
        std::copy(look.begin() + 4, look.end(), material.glow.begin());
        const auto picture = osg::PicturePtr::dcast(simple->findAttachment(osg::Picture::getClassType()));
        if (picture != osg::NullFC) {
            for (const osg::UInt8 byte : *picture->getMFBytes())
                material.picture += static_cast<char>(byte);
            if (material.picture.isEmpty() && !picture->getFileName().empty())
                material.pictureFile =
                    QDir(_folder).absoluteFilePath(QString::fromStdString(picture->getFileName()));
        }
        material.hasNoColor = (!material.picture.isEmpty() || !material.pictureFile.isEmpty()) &&
                              look[0] == 0.0F && look[1] == 0.0F && look[2] == 0.0F;
        _scene.materials.push_back(std::move(material));
        return known->second;
    }

    bool readSkin(const osg::NodePtr& node, std::size_t corners, SpaceSkin& skin) {
        const auto source = osg::SkinPtr::dcast(node->findAttachment(osg::Skin::getClassType()));
        if (source == osg::NullFC)
            return false;
        const std::size_t joints = source->getMFJoints()->size();
        if (joints == 0 || source->getMFInverseBinds()->size() != joints ||
            source->getMFIndices()->size() != 4 * corners || source->getMFWeights()->size() != 4 * corners)
            return false;
        skin.indices.assign(source->getMFIndices()->begin(), source->getMFIndices()->end());
        skin.weights.assign(source->getMFWeights()->begin(), source->getMFWeights()->end());
        if (std::any_of(skin.indices.begin(), skin.indices.end(), [joints](auto i) { return i >= joints; }))
            return false;
        for (const osg::NodePtr& joint : *source->getMFJoints()) {
            const int index = joint == osg::NullFC ? -1 : _figure.indexOf(joint.getFieldContainerId());
            if (index < 0)
                return false;
            skin.movers.push_back(moverOf(index));
        }
        for (const osg::Matrix& matrix : *source->getMFInverseBinds())
            skin.inverseBinds.insert(skin.inverseBinds.end(), matrix.getValues(), matrix.getValues() + 16);
        return true;
    }

    const Figure& _figure;
    QString _folder;
    int& _left;
    SpaceScene _scene;
    std::map<int, int> _movers;
    std::map<osg::UInt32, int> _meshes, _materials;
};

} // namespace

SpaceScene takeInMeshes(const osg::NodePtr& root, const Figure& figure, const QString& folder, int& left) {
    left = 0;
    return Intake(figure, folder, left).run(root);
}

SpacePose poseOf(const SpaceScene& scene, const Figure& figure) {
    const auto* factory = osg::FieldContainerFactory::the();
    SpacePose pose;
    pose.worlds.resize(scene.movers.size());
    for (std::size_t i = 0; i < scene.movers.size(); ++i) {
        const float* numbers = figure.worldOf(scene.movers[i]).constData();
        std::copy(numbers, numbers + 16, pose.worlds[i].begin());
    }
    for (const SpacePart& part : scene.parts) {
        for (const SpaceMorph& morph : part.morphs) {
            const auto node = osg::NodePtr::dcast(factory->getContainer(morph.node));
            const auto target =
                node == osg::NullFC ? osg::MorphTargetPtr() : osg::MorphTargetPtr::dcast(node->getCore());
            pose.weights.push_back(target == osg::NullFC ? 0.0F : target->getWeight());
        }
        const auto node = osg::NodePtr::dcast(factory->getContainer(part.node));
        const bool isBelowHidden =
            part.mover >= 0 && figure.isHidden(scene.movers[static_cast<std::size_t>(part.mover)]);
        pose.isHidden.push_back(isBelowHidden || node == osg::NullFC || !node->getActive() ? 1 : 0);
    }
    for (const SpaceMaterial& material : scene.materials) {
        const auto source = osg::SimpleMaterialPtr::dcast(factory->getContainer(material.source));
        const auto& color = material.color;
        const auto& glow = material.glow;
        std::array<float, 7> look = {color[0], color[1], color[2], color[3], glow[0], glow[1], glow[2]};
        if (source != osg::NullFC)
            look = lookOf(*source);
        if (material.hasNoColor)
            std::fill_n(look.begin(), 3, 1.0F);
        pose.looks.push_back(look);
    }
    return pose;
}

} // namespace ka::studio
