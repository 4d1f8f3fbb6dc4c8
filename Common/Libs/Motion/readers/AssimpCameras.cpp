#include "readers/AssimpCameras.h"

#include "readers/AssimpScene.h"
#include "readers/LeftOut.h"

#include <cmath>

namespace ka::motion {

namespace {

constexpr double degreesPerRadian = 180.0 / 3.14159265358979323846;

class CameraReader {
  public:
    CameraReader(const AssimpPlaces& places, Motion& motion) : _places(places), _motion(motion) {}

    void read(const aiScene& scene) {
        for (unsigned i = 0; i < scene.mNumCameras; ++i)
            readCamera(*scene.mCameras[i]);
        for (unsigned i = 0; i < scene.mNumLights; ++i)
            readLight(*scene.mLights[i]);
        LeftOut rest;
        rest.add(_homelessCameras, "camera without a node", "cameras without a node");
        rest.add(_homelessLights, "light without a node", "lights without a node");
        rest.add(_otherLights, "ambient or area light", "ambient or area lights");
        if (const std::string note = rest.note(); !note.empty())
            _motion.notes.push_back(note);
    }

  private:
    void readCamera(const aiCamera& source) {
        const auto place = _places.byName.find(text(source.mName));
        if (place == _places.byName.end())
            return void(++_homelessCameras);
        MotionCamera camera;
        camera.name = text(source.mName);
        camera.nodes = {place->second};
        camera.position = vec(source.mPosition);
        camera.direction = vec(source.mLookAt);
        camera.up = vec(source.mUp);
        // The library gives the whole angle from left to right, whatever its documentation says, and 0 for an unknown
        // shape of the picture.
        constexpr double usualAspect = 4.0 / 3.0;
        const auto given = static_cast<double>(source.mAspect);
        const double aspect = given > 0.0 ? given : usualAspect;
        const double across = std::tan(static_cast<double>(source.mHorizontalFOV) / 2.0);
        camera.fieldOfView = 2.0 * std::atan(across / aspect) * degreesPerRadian;
        _motion.cameras.push_back(std::move(camera));
    }

    void readLight(const aiLight& source) {
        const auto place = _places.byName.find(text(source.mName));
        if (place == _places.byName.end())
            return void(++_homelessLights);
        MotionLight light;
        switch (source.mType) {
        case aiLightSource_DIRECTIONAL:
            light.kind = LightKind::Directional;
            break;
        case aiLightSource_POINT:
            light.kind = LightKind::Point;
            break;
        case aiLightSource_SPOT:
            light.kind = LightKind::Spot;
            break;
        default:
            return void(++_otherLights);
        }
        light.name = text(source.mName);
        light.nodes = {place->second};
        const aiColor3D& color = source.mColorDiffuse;
        light.color = {static_cast<double>(color.r), static_cast<double>(color.g),
                       static_cast<double>(color.b)};
        light.position = vec(source.mPosition);
        light.direction = vec(source.mDirection);
        if (light.kind == LightKind::Spot) {
            light.innerCone = static_cast<double>(source.mAngleInnerCone) / 2.0 * degreesPerRadian;
            light.outerCone = static_cast<double>(source.mAngleOuterCone) / 2.0 * degreesPerRadian;
        }
        light.attenuation = {static_cast<double>(source.mAttenuationConstant),
                             static_cast<double>(source.mAttenuationLinear),
                             static_cast<double>(source.mAttenuationQuadratic)};
        if (light.attenuation == std::array<double, 3>{0, 0, 0})
            light.attenuation = {1, 0, 0};
        _motion.lights.push_back(std::move(light));
    }

    const AssimpPlaces& _places;
    Motion& _motion;
    std::size_t _homelessCameras = 0, _homelessLights = 0, _otherLights = 0;
};

} // namespace

void readAssimpCameras(const aiScene& scene, const AssimpPlaces& places, Motion& motion) {
    CameraReader(places, motion).read(scene);
}

} // namespace ka::motion
