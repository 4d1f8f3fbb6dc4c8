#include "writers/SceneCameras.h"

#include "kaMotion/Project.h"
#include "kaMotion/Text.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGSpotLight.h>
#include <algorithm>
#include <cmath>

namespace ka::motion {

namespace {

constexpr double degreesPerRadian = 180.0 / 3.14159265358979323846;

template <class Triple>
Vec3 vec(const Triple& v) {
    return {static_cast<double>(v[0]), static_cast<double>(v[1]), static_cast<double>(v[2])};
}

Vec3 cross(const Vec3& a, const Vec3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double length(const Vec3& v) {
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

/// The rotation that takes -Z to `direction` and +Y as near to `up` as that leaves it.
Quaternion looking(const Vec3& direction, const Vec3& up) {
    const double size = length(direction);
    if (!(size > 0.0))
        return {};
    const Vec3 back{-direction[0] / size, -direction[1] / size, -direction[2] / size};
    Vec3 right = cross(up, back);
    if (length(right) < 1e-6 * length(up) || !(length(up) > 0.0))
        right = std::abs(back[0]) < 0.9 ? cross({1, 0, 0}, back) : cross({0, 1, 0}, back);
    const double across = length(right);
    right = {right[0] / across, right[1] / across, right[2] / across};
    const Vec3 above = cross(back, right);
    return quaternionFromMatrix(
        {{{right[0], above[0], back[0]}, {right[1], above[1], back[1]}, {right[2], above[2], back[2]}}});
}

class CameraDescriber {
  public:
    CameraDescriber(const SceneNodes& scene, Motion& motion) : _scene(scene), _motion(motion) {}

    void run(const osg::NodePtr& root) {
        struct Pending {
            osg::NodePtr node;
            std::int32_t place; ///< of the nearest described node at or above it
        };
        std::vector<Pending> pending{{root, MotionNode::noParent}};
        while (!pending.empty()) {
            Pending next = pending.back();
            pending.pop_back();
            if (next.node == osg::NullFC)
                continue;
            next.place = placeOf(next.node, next.place);
            add(next.node, next.place);
            for (osg::UInt32 i = next.node->getNChildren(); i-- > 0;)
                pending.push_back({next.node->getChild(i), next.place});
        }
        if (_otherFading > 0)
            _motion.notes.push_back(counted(_otherFading, "light") +
                                    " that fade otherwise than with the square of the distance");
    }

  private:
    std::int32_t placeOf(const osg::NodePtr& node, std::int32_t otherwise) const {
        const auto own =
            node == osg::NullFC ? _scene.places.end() : _scene.places.find(node.getFieldContainerId());
        return own == _scene.places.end() ? otherwise : static_cast<std::int32_t>(own->second);
    }

    void add(const osg::NodePtr& node, std::int32_t place) {
        const osg::CameraSettingPtr camera = osg::CameraSettingPtr::dcast(node->getCore());
        const osg::LightPtr light = osg::LightPtr::dcast(node->getCore());
        if (camera != osg::NullFC)
            addCamera(node, *camera, place);
        else if (light != osg::NullFC)
            addLight(node, light, placeOf(light->getBeacon(), place));
    }

    /// The node at `place`, or one below it that stands and looks as asked.
    std::uint32_t carrier(const osg::NodePtr& node, std::int32_t place, const Vec3& position,
                          const Quaternion& turn) {
        const bool isPlain = length(position) == 0.0 && std::abs(turn.w) > 1.0 - 1e-12;
        if (isPlain && place != MotionNode::noParent)
            return static_cast<std::uint32_t>(place);
        _motion.nodes.push_back({nodeName(node), place, position, turn, {1, 1, 1}, sceneOrder, true});
        return static_cast<std::uint32_t>(_motion.nodes.size() - 1);
    }

    void addCamera(const osg::NodePtr& node, const osg::CameraSetting& source, std::int32_t place) {
        MotionCamera camera;
        camera.name = nodeName(node);
        camera.fieldOfView = static_cast<double>(source.getFieldOfView()) * degreesPerRadian;
        const Vec3 from = vec(source.getFrom()), at = vec(source.getAt());
        camera.nodes = {
            carrier(node, place, from,
                    looking({at[0] - from[0], at[1] - from[1], at[2] - from[2]}, vec(source.getUp())))};
        _motion.cameras.push_back(std::move(camera));
    }

    void addLight(const osg::NodePtr& node, const osg::LightPtr& source, std::int32_t place) {
        MotionLight light;
        light.name = nodeName(node);
        const osg::Color4f& color = source->getDiffuse();
        light.color = {static_cast<double>(color[0]), static_cast<double>(color[1]),
                       static_cast<double>(color[2])};
        const osg::DirectionalLightPtr sun = osg::DirectionalLightPtr::dcast(source);
        const osg::PointLightPtr point = osg::PointLightPtr::dcast(source);
        const osg::SpotLightPtr spot = osg::SpotLightPtr::dcast(source);
        if (sun == osg::NullFC && point == osg::NullFC)
            return;
        Vec3 direction{0, 0, -1};
        if (sun != osg::NullFC) {
            light.kind = LightKind::Directional;
            direction = vec(sun->getDirection());
        } else if (spot != osg::NullFC) {
            light.kind = LightKind::Spot;
            direction = vec(spot->getDirection());
            light.outerCone = static_cast<double>(spot->getSpotCutOff()) * degreesPerRadian;
            light.innerCone = innerCone(static_cast<double>(spot->getSpotExponent()), light.outerCone);
        }
        if (point != osg::NullFC)
            takeFading(*source, light);
        light.nodes = {carrier(node, place, point != osg::NullFC ? vec(point->getPosition()) : Vec3{0, 0, 0},
                               looking(direction, {0, 1, 0}))};
        _motion.lights.push_back(std::move(light));
    }

    /// The other way round than importing does: half the light is in the middle between both cones.
    static double innerCone(double exponent, double outerCone) {
        if (!(exponent > 0.0))
            return outerCone * (1.0 - 1e-6);
        const double middle = std::acos(std::pow(0.5, 1.0 / exponent)) * degreesPerRadian;
        return std::clamp(2.0 * middle - outerCone, 0.0, outerCone * (1.0 - 1e-6));
    }

    void takeFading(const osg::Light& source, MotionLight& light) {
        light.attenuation = {0, 0, 1};
        const auto square = static_cast<double>(source.getQuadraticAttenuation());
        if (source.getConstantAttenuation() != 0.0F || source.getLinearAttenuation() != 0.0F ||
            !(square > 0.0))
            return void(++_otherFading);
        for (double& part : light.color)
            part /= square;
    }

    const SceneNodes& _scene;
    Motion& _motion;
    std::size_t _otherFading = 0;
};

} // namespace

void describeCameras(const osg::NodePtr& root, const SceneNodes& scene, Motion& motion) {
    CameraDescriber(scene, motion).run(root);
}

} // namespace ka::motion
