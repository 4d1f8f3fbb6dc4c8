#include "project/CameraImport.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSpotLight.h>
#include <cmath>
#include <kaMotion/Text.h>

namespace ka::motion {

namespace {

constexpr double radiansPerDegree = 3.14159265358979323846 / 180.0;

osg::Vec3f vector(const Vec3& v) {
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

osg::Pnt3f point(const Vec3& v) {
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

/// The exponent with which a spot is half as bright in the middle between its inner and outer cone as on its axis.
double spotExponent(const MotionLight& light) {
    const double middle = std::cos((light.innerCone + light.outerCone) / 2.0 * radiansPerDegree);
    return light.innerCone < light.outerCone && middle > 0.0 && middle < 1.0
               ? std::log(0.5) / std::log(middle)
               : 0.0;
}

class CameraBuilder {
  public:
    CameraBuilder(const Motion& motion, const std::vector<osg::NodePtr>& nodes, const osg::NodePtr& root,
                  bool& lossy)
        : _motion(motion), _nodes(nodes), _root(root), _lossy(lossy) {}

    Properties run(const std::vector<osg::MaterialPtr>& materials) {
        for (std::uint32_t i = 0; i < _motion.cameras.size(); ++i)
            buildCamera(i);
        for (std::uint32_t i = 0; i < _motion.lights.size(); ++i)
            buildLight(i);
        for (const MotionTake& take : _motion.takes)
            for (const MotionPropertyTrack& track : take.properties)
                if (track.property == MotionProperty::MaterialColor ||
                    track.property == MotionProperty::MaterialGlow)
                    carryMaterial(track.owner, materials[track.owner]);
                else if (track.property == MotionProperty::Visible)
                    _properties[{track.property, track.owner}] = {{{_nodes[track.owner]}, "visible"}};
        return std::move(_properties);
    }

  private:
    osg::NodePtr addNode(const osg::NodePtr& parent, const osg::NodeCorePtr& core, const std::string& name) {
        const osg::NodePtr node = osg::Node::create();
        osg::beginEditCP(node);
        node->setCore(core);
        osg::setName(node, latin1FromUtf8(name, _lossy));
        osg::endEditCP(node);
        osg::beginEditCP(parent, osg::Node::ChildrenFieldMask);
        parent->addChild(node);
        osg::endEditCP(parent, osg::Node::ChildrenFieldMask);
        return node;
    }

    void buildCamera(std::uint32_t index) {
        const MotionCamera& source = _motion.cameras[index];
        PropertyFields field{{}, "fieldOfView"};
        for (const std::uint32_t place : source.nodes) {
            const osg::CameraSettingPtr core = osg::CameraSetting::create();
            osg::beginEditCP(core);
            Vec3 at = source.position;
            for (std::size_t axis = 0; axis < 3; ++axis)
                at[axis] += source.direction[axis];
            core->setFrom(point(source.position));
            core->setAt(point(at));
            core->setUp(vector(source.up));
            core->setFieldOfView(static_cast<float>(source.fieldOfView * radiansPerDegree));
            osg::endEditCP(core);
            field.nodes.push_back(addNode(_nodes[place], core, source.name.empty() ? "camera" : source.name));
        }
        _properties[{MotionProperty::FieldOfView, index}] = {field};
    }

    osg::LightPtr makeLight(const MotionLight& source) const {
        if (source.kind == LightKind::Directional) {
            const osg::DirectionalLightPtr core = osg::DirectionalLight::create();
            core->setDirection(vector(source.direction));
            return core;
        }
        const bool isSpot = source.kind == LightKind::Spot;
        const osg::SpotLightPtr spot = isSpot ? osg::SpotLight::create() : osg::SpotLightPtr();
        const osg::PointLightPtr core = isSpot ? osg::PointLightPtr(spot) : osg::PointLight::create();
        core->setPosition(point(source.position));
        core->setConstantAttenuation(static_cast<float>(source.attenuation[0]));
        core->setLinearAttenuation(static_cast<float>(source.attenuation[1]));
        core->setQuadraticAttenuation(static_cast<float>(source.attenuation[2]));
        if (isSpot) {
            spot->setDirection(vector(source.direction));
            spot->setSpotCutOff(static_cast<float>(source.outerCone * radiansPerDegree));
            spot->setSpotExponent(static_cast<float>(spotExponent(source)));
        }
        return core;
    }

    void buildLight(std::uint32_t index) {
        const MotionLight& source = _motion.lights[index];
        std::vector<osg::NodePtr> nodes;
        for (const std::uint32_t place : source.nodes) {
            const osg::LightPtr core = makeLight(source);
            const osg::Color4f color(static_cast<float>(source.color[0]), static_cast<float>(source.color[1]),
                                     static_cast<float>(source.color[2]), 1.0F);
            osg::beginEditCP(core);
            core->setDiffuse(color);
            core->setSpecular(color);
            // Not through the setter, which counts: a light that counts what it hangs on would never go away.
            if (auto* beacon = dynamic_cast<osg::SFNodePtr*>(core->getField("beacon")))
                beacon->setValue(_nodes[place]);
            osg::endEditCP(core);
            nodes.push_back(addNode(_nodes[place], core, source.name.empty() ? "light" : source.name));
        }
        _properties[{MotionProperty::LightColor, index}] = {
            {nodes, "diffuseR"}, {nodes, "diffuseG"}, {nodes, "diffuseB"}};
        if (source.kind == LightKind::Spot)
            _properties[{MotionProperty::LightCone, index}] = {{nodes, "spotCutOff", radiansPerDegree}};
    }

    /// Fields of materials belong to the nodes of material groups.
    void carryMaterial(std::uint32_t index, const osg::MaterialPtr& material) {
        const auto known = _properties.find({MotionProperty::MaterialColor, index});
        if (known != _properties.end() || material == osg::NullFC)
            return;
        const osg::MaterialGroupPtr core = osg::MaterialGroup::create();
        osg::beginEditCP(core);
        core->setMaterial(material);
        osg::endEditCP(core);
        const std::string& name = _motion.materials[index].name;
        const std::vector<osg::NodePtr> node{addNode(_root, core, name.empty() ? "material" : name)};
        _properties[{MotionProperty::MaterialColor, index}] = {
            {node, "diffuseR"}, {node, "diffuseG"}, {node, "diffuseB"}, {node, "transparency", -1.0, 1.0}};
        _properties[{MotionProperty::MaterialGlow, index}] = {
            {node, "emissionR"}, {node, "emissionG"}, {node, "emissionB"}};
    }

    const Motion& _motion;
    const std::vector<osg::NodePtr>& _nodes;
    const osg::NodePtr& _root;
    bool& _lossy;
    Properties _properties;
};

} // namespace

Properties buildCameras(const Motion& motion, const std::vector<osg::NodePtr>& nodes,
                        const osg::NodePtr& root, const std::vector<osg::MaterialPtr>& materials,
                        bool& lossy) {
    return CameraBuilder(motion, nodes, root, lossy).run(materials);
}

} // namespace ka::motion
