#include "project/MeshImport.h"

#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMorphTarget.h>
#include <OpenSG/OSGPicture.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSkin.h>
#include <algorithm>
#include <kaMotion/Text.h>

namespace ka::motion {

namespace {

constexpr osg::UInt8 triangles = 4; // what the graphics library calls them

/// Numbers as the rows of a property.
template <class List, class Make>
void fill(List& list, const std::vector<float>& numbers, std::size_t width, const Make& make) {
    list.reserve(numbers.size() / width);
    for (std::size_t i = 0; i + width <= numbers.size(); i += width)
        list.push_back(make(numbers.data() + i));
}

template <class List, class Values>
void append(List& list, const Values& values) {
    list.reserve(values.size());
    for (const auto value : values)
        list.push_back(static_cast<typename List::value_type>(value));
}

class MeshBuilder {
  public:
    MeshBuilder(const Motion& motion, const std::vector<osg::NodePtr>& nodes, const osg::NodePtr& root,
                bool& lossy)
        : _motion(motion), _nodes(nodes), _root(root), _lossy(lossy) {}

    BuiltMeshes run() {
        _materials.resize(_motion.materials.size());
        for (const MotionMesh& mesh : _motion.meshes)
            build(mesh);
        _built.materials = std::move(_materials);
        return std::move(_built);
    }

  private:
    osg::MaterialPtr materialOf(const MotionMaterial& source) {
        const osg::SimpleMaterialPtr material = osg::SimpleMaterial::create();
        osg::beginEditCP(material);
        const osg::Color3f color(source.color[0], source.color[1], source.color[2]);
        material->setAmbient(color);
        material->setDiffuse(color);
        material->setEmission(osg::Color3f(source.emission[0], source.emission[1], source.emission[2]));
        material->setTransparency(1.0F - source.color[3]);
        if (!source.name.empty())
            osg::setName(material, latin1FromUtf8(source.name, _lossy));
        if (!source.pictureFile.empty() || !source.picture.empty()) {
            const osg::PicturePtr picture = osg::Picture::create();
            osg::beginEditCP(picture);
            picture->setFileName(source.pictureFile);
            append(*picture->editMFBytes(), source.picture);
            osg::endEditCP(picture);
            material->addAttachment(picture);
        }
        osg::endEditCP(material);
        return material;
    }

    void build(const MotionMesh& mesh) {
        ++_built.meshes;
        _built.triangles += mesh.indices.size() / 3;
        osg::GeometryPtr core;
        for (const std::uint32_t place : mesh.nodes) {
            if (core == osg::NullFC || !mesh.morphs.empty())
                core = geometryOf(mesh);
            const osg::NodePtr node = osg::Node::create();
            osg::beginEditCP(node);
            node->setCore(core);
            if (mesh.skin != MotionMesh::none)
                node->addAttachment(skinOf(mesh));
            osg::endEditCP(node);
            addMorphs(mesh, place, node);
            const osg::NodePtr parent = mesh.skin != MotionMesh::none ? _root : _nodes[place];
            osg::beginEditCP(parent, osg::Node::ChildrenFieldMask);
            parent->addChild(node);
            osg::endEditCP(parent, osg::Node::ChildrenFieldMask);
        }
    }

    osg::GeometryPtr geometryOf(const MotionMesh& mesh) {
        const osg::GeometryPtr core = osg::Geometry::create();
        osg::beginEditCP(core);
        const osg::GeoPTypesUI8Ptr types = osg::GeoPTypesUI8::create();
        types->editMFTypes()->push_back(triangles);
        core->setTypes(types);
        const osg::GeoPLengthsUI32Ptr lengths = osg::GeoPLengthsUI32::create();
        lengths->editMFLengths()->push_back(static_cast<osg::UInt32>(mesh.indices.size()));
        core->setLengths(lengths);
        const osg::GeoIndicesUI32Ptr indices = osg::GeoIndicesUI32::create();
        append(*indices->editMFIndices(), mesh.indices);
        core->setIndices(indices);
        const osg::GeoPositions3fPtr positions = osg::GeoPositions3f::create();
        fill(*positions->editMFPositions(), mesh.positions, 3,
             [](const float* v) { return osg::Pnt3f(v[0], v[1], v[2]); });
        core->setPositions(positions);
        addLooks(mesh, core);
        if (!mesh.name.empty())
            osg::setName(core, latin1FromUtf8(mesh.name, _lossy));
        osg::endEditCP(core);
        return core;
    }

    void addLooks(const MotionMesh& mesh, const osg::GeometryPtr& core) {
        if (!mesh.normals.empty()) {
            const osg::GeoNormals3fPtr normals = osg::GeoNormals3f::create();
            fill(*normals->editMFNormals(), mesh.normals, 3,
                 [](const float* v) { return osg::Vec3f(v[0], v[1], v[2]); });
            core->setNormals(normals);
        }
        if (!mesh.colors.empty()) {
            const osg::GeoColors4fPtr colors = osg::GeoColors4f::create();
            fill(*colors->editMFColors(), mesh.colors, 4,
                 [](const float* v) { return osg::Color4f(v[0], v[1], v[2], v[3]); });
            core->setColors(colors);
        }
        if (!mesh.texCoords.empty()) {
            const osg::GeoTexCoords2fPtr places = osg::GeoTexCoords2f::create();
            fill(*places->editMFTexCoords(), mesh.texCoords, 2,
                 [](const float* v) { return osg::Vec2f(v[0], v[1]); });
            core->setTexCoords(places);
        }
        if (mesh.material == MotionMesh::none)
            return;
        const auto place = static_cast<std::size_t>(mesh.material);
        if (_materials[place] == osg::NullFC) // those that nothing shows are left out
            _materials[place] = materialOf(_motion.materials[place]);
        core->setMaterial(_materials[place]);
    }

    osg::SkinPtr skinOf(const MotionMesh& mesh) const {
        const MotionSkin& source = _motion.skins[static_cast<std::size_t>(mesh.skin)];
        const osg::SkinPtr skin = osg::Skin::create();
        osg::beginEditCP(skin);
        for (const std::uint32_t joint : source.joints)
            skin->editMFJoints()->push_back(_nodes[joint]);
        for (std::size_t i = 0; i + 16 <= source.inverseBinds.size(); i += 16) {
            osg::Matrix matrix;
            for (osg::UInt32 column = 0; column < 4; ++column)
                for (osg::UInt32 row = 0; row < 4; ++row)
                    matrix[column][row] = source.inverseBinds[i + 4 * column + row];
            skin->editMFInverseBinds()->push_back(matrix);
        }
        append(*skin->editMFIndices(), mesh.joints);
        append(*skin->editMFWeights(), mesh.weights);
        osg::endEditCP(skin);
        return skin;
    }

    void addMorphs(const MotionMesh& mesh, std::uint32_t place, const osg::NodePtr& geometry) {
        auto* known = mesh.morphs.empty() ? nullptr : &_built.morphs[place];
        for (std::size_t i = 0; i < mesh.morphs.size(); ++i) {
            const MotionMorph& source = mesh.morphs[i];
            const osg::MorphTargetPtr core = osg::MorphTarget::create();
            osg::beginEditCP(core);
            core->setWeight(source.weight);
            fill(*core->editMFOffsets(), source.offsets, 3,
                 [](const float* v) { return osg::Vec3f(v[0], v[1], v[2]); });
            osg::endEditCP(core);
            const osg::NodePtr node = osg::Node::create();
            osg::beginEditCP(node);
            node->setCore(core);
            osg::setName(node, latin1FromUtf8(source.name, _lossy));
            osg::endEditCP(node);
            osg::beginEditCP(geometry, osg::Node::ChildrenFieldMask);
            geometry->addChild(node);
            osg::endEditCP(geometry, osg::Node::ChildrenFieldMask);
            known->resize(std::max(known->size(), i + 1));
            (*known)[i].push_back(node);
        }
    }

    const Motion& _motion;
    const std::vector<osg::NodePtr>& _nodes;
    const osg::NodePtr& _root;
    bool& _lossy;
    std::vector<osg::MaterialPtr> _materials;
    BuiltMeshes _built;
};

} // namespace

BuiltMeshes buildMeshes(const Motion& motion, const std::vector<osg::NodePtr>& nodes,
                        const osg::NodePtr& root, bool& lossy) {
    return MeshBuilder(motion, nodes, root, lossy).run();
}

} // namespace ka::motion
