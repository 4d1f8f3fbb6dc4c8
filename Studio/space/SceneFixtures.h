#pragma once

#include "Figure.h"
#include "SpaceScene.h"
#include "Viewpoint.h"

namespace ka::studio {

/// A camera of the scene.
struct SceneCamera {
    unsigned int setting = 0; ///< container id of the node with the camera
    unsigned int carrier =
        0; ///< of the placed node that it hangs from, which a click on it picks; 0 for none
    QString name;
};

/// A light of the scene.
struct SceneLight {
    unsigned int node = 0; ///< container id of the node with the light
    unsigned int carrier =
        0; ///< of the placed node that it hangs from, which a click on it picks; 0 for none
    QString name;
};

/// The cameras and lights of a scene.
class SceneFixtures {
  public:
    void takeIn(const osg::NodePtr& root, const Figure& figure);

    const std::vector<SceneCamera>& cameras() const { return _cameras; }
    const std::vector<SceneLight>& lights() const { return _lights; }

    /// From where a camera looks now; none where it has gone or is nowhere.
    /// @param distance  of what is looked at, where the camera itself does not say.
    static std::optional<Viewpoint> viewpointOf(const SceneCamera& camera, float distance);
    /// What shines now, of those that are on; their colours scaled by the exposure.
    std::vector<SpaceLight> shining() const;
    /// Where a light stands now.
    static std::optional<QVector3D> placeOf(const SceneLight& light);

    /// Chooses the exposure, so that what stands at a place is lit well by the lights as they are now.
    void expose(const QVector3D& place);

  private:
    std::vector<SceneCamera> _cameras;
    std::vector<SceneLight> _lights;
    float _exposure = 1.0F;
};

} // namespace ka::studio
