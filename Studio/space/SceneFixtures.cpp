#include "SceneFixtures.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSpotLight.h>
#include <QtMath>
#include <algorithm>
#include <cmath>
#include <kaMotion/Project.h>

namespace ka::studio {

namespace {

osg::NodePtr nodeWithId(unsigned int id) {
    return osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(id));
}

QMatrix4x4 worldOf(const osg::NodePtr& node) {
    return QMatrix4x4(node->getToWorld().getValues()).transposed(); // it takes rows
}

template <class Three>
QVector3D vectorOf(const Three& three) {
    return {three[0], three[1], three[2]};
}

bool isFinite(const QVector3D& v) {
    return std::isfinite(v.x()) && std::isfinite(v.y()) && std::isfinite(v.z());
}

std::array<float, 3> arrayOf(const QVector3D& v) {
    return {v.x(), v.y(), v.z()};
}

/// Of the node itself, else of what it hangs from.
QString nameOf(const osg::NodePtr& node, const osg::NodePtr& carrier) {
    const std::string own = ka::motion::nodeName(node);
    return QString::fromStdString(own.empty() && carrier != osg::NullFC ? ka::motion::nodeName(carrier)
                                                                        : own);
}

std::optional<SpaceLight> lightOf(const SceneLight& source) {
    const osg::NodePtr node = nodeWithId(source.node);
    const osg::LightPtr light = node == osg::NullFC ? osg::LightPtr() : osg::LightPtr::dcast(node->getCore());
    if (light == osg::NullFC || !light->getOn())
        return std::nullopt;
    const osg::NodePtr beacon = light->getBeacon();
    const QMatrix4x4 world = worldOf(beacon != osg::NullFC ? beacon : node);
    SpaceLight result;
    QVector3D place, way(0, 0, -1);
    if (const auto directional = osg::DirectionalLightPtr::dcast(light); directional != osg::NullFC) {
        way = vectorOf(directional->getDirection());
    } else if (const auto point = osg::PointLightPtr::dcast(light); point != osg::NullFC) {
        result.kind = SpaceLight::Kind::Point;
        place = vectorOf(point->getPosition());
        if (const auto spot = osg::SpotLightPtr::dcast(light); spot != osg::NullFC) {
            result.kind = SpaceLight::Kind::Spot;
            result.cone = std::cos(std::clamp(spot->getSpotCutOff(), 0.0F, static_cast<float>(M_PI)));
            way = vectorOf(spot->getDirection());
        }
    }
    place = world.map(place);
    way = world.mapVector(way).normalized();
    const QVector3D color = vectorOf(light->getDiffuse());
    if (!isFinite(place) || !isFinite(way) || !isFinite(color))
        return std::nullopt;
    result.place = arrayOf(place);
    result.direction = arrayOf(way);
    result.color = arrayOf(color);
    result.attenuation = {light->getConstantAttenuation(), light->getLinearAttenuation(),
                          light->getQuadraticAttenuation()};
    return result;
}

} // namespace

void SceneFixtures::takeIn(const osg::NodePtr& root, const Figure& figure) {
    _cameras.clear();
    _lights.clear();
    _exposure = 1.0F;
    std::vector<osg::NodePtr> pending{root};
    while (!pending.empty()) {
        const osg::NodePtr node = pending.back();
        pending.pop_back();
        if (node == osg::NullFC)
            continue;
        const bool isCamera = osg::CameraSettingPtr::dcast(node->getCore()) != osg::NullFC;
        const bool isLight = osg::LightPtr::dcast(node->getCore()) != osg::NullFC;
        if (isCamera || isLight) {
            osg::NodePtr carrier = node;
            while (carrier != osg::NullFC && figure.indexOf(carrier.getFieldContainerId()) < 0)
                carrier = carrier->getParent();
            const unsigned int id = node.getFieldContainerId();
            const unsigned int above = carrier == osg::NullFC ? 0 : carrier.getFieldContainerId();
            if (isCamera)
                _cameras.push_back({id, above, nameOf(node, carrier)});
            else
                _lights.push_back({id, above, nameOf(node, carrier)});
        }
        for (osg::UInt32 i = node->getNChildren(); i-- > 0;)
            pending.push_back(node->getChild(i));
    }
}

std::optional<Viewpoint> SceneFixtures::viewpointOf(const SceneCamera& camera, float distance) {
    const osg::NodePtr node = nodeWithId(camera.setting);
    const auto setting =
        node == osg::NullFC ? osg::CameraSettingPtr() : osg::CameraSettingPtr::dcast(node->getCore());
    if (setting == osg::NullFC)
        return std::nullopt;
    const QMatrix4x4 world = worldOf(node);
    const QVector3D from = world.map(vectorOf(setting->getFrom())),
                    at = world.map(vectorOf(setting->getAt()));
    const QVector3D up = world.mapVector(vectorOf(setting->getUp()));
    const QVector3D way = at - from;
    if (!isFinite(from) || !isFinite(way) || !isFinite(up) || way.isNull() ||
        QVector3D::crossProduct(way, up).isNull())
        return std::nullopt;
    QMatrix4x4 view;
    view.rotate(-qRadiansToDegrees(setting->getRoll()), 0, 0, 1);
    view.lookAt(from, at, up);
    return Viewpoint(view, qRadiansToDegrees(setting->getFieldOfView()) / 2, distance);
}

std::vector<SpaceLight> SceneFixtures::shining() const {
    std::vector<SpaceLight> shining;
    for (const SceneLight& source : _lights)
        if (std::optional<SpaceLight> light = lightOf(source)) {
            for (float& part : light->color)
                part *= _exposure;
            shining.push_back(*light);
        }
    return shining;
}

std::optional<QVector3D> SceneFixtures::placeOf(const SceneLight& source) {
    const std::optional<SpaceLight> light = lightOf(source);
    if (!light.has_value())
        return std::nullopt;
    if (light->kind != SpaceLight::Kind::Directional)
        return vectorOf(light->place);
    const QVector3D stand =
        worldOf(nodeWithId(source.node)).column(3).toVector3D(); // it shines from everywhere
    return isFinite(stand) ? std::optional<QVector3D>(stand) : std::nullopt;
}

void SceneFixtures::expose(const QVector3D& place) {
    _exposure = 1.0F;
    float sum = 0.0F;
    for (const SpaceLight& light : shining()) {
        const float far = (vectorOf(light.place) - place).length();
        const auto& fade = light.attenuation;
        const float weaker = light.kind == SpaceLight::Kind::Directional
                                 ? 1.0F
                                 : fade[0] + fade[1] * far + fade[2] * far * far;
        sum += std::max({light.color[0], light.color[1], light.color[2]}) / std::max(weaker, 1e-4F);
    }
    if (sum > 0.0F && std::isfinite(sum))
        _exposure = 0.8F / sum;
}

} // namespace ka::studio
