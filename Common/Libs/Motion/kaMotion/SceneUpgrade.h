#pragma once

#include <OpenSG/OSGNode.h>
#include <cstddef>
#include <kaImportReport.h>
#include <kaMotion/Listener.h>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// The older animation containers of a scene, each counted once however often it is referred to.
struct OlderContent {
    std::size_t nodes = 0;     ///< that carry any
    std::size_t clips = 0;     ///< containers of clips
    std::size_t tracks = 0;    ///< containers of tracks
    std::size_t blocks = 0;    ///< containers of blocks
    std::size_t sequences = 0; ///< containers of sequences
    std::size_t curves = 0;    ///< containers of curves
    std::size_t points = 0;    ///< containers of keys
    std::size_t overlaid =
        0; ///< of the points: on the frame of a later one of their curve, which replaces them
};

/// What animates one node after the upgrade.
struct UpgradedNode {
    std::string path;       ///< from the scene's root, UTF-8
    std::size_t blocks = 0; ///< that the node lists
    std::size_t curves = 0; ///< in those blocks and in clips
    std::size_t keys = 0;   ///< of those curves
};

/// What upgradeScene() found and made.
struct UpgradeReport {
    OlderContent found;              ///< in the scene
    kaImportReport made;             ///< what the module tells of its import
    std::vector<UpgradedNode> nodes; ///< in the scene's order, only those that are animated
    std::string camera;              ///< path of the node that took the camera's animation; empty for none
};

/// Converts the animation containers that an older scene carries into registered objects and takes them off
/// the scene. Every attribute that a curve of the scene names counts as animatable.
/// @param root    what the host would give the module as the scene's root.
/// @param camera  receives the root's own blocks; null for none.
/// @param listener  hears how far it is.
UpgradeReport upgradeScene(const osg::NodePtr& root, const osg::NodePtr& camera,
                           Listener& listener = Listener::none());

/// The first camera setting of the scene, else its first camera of any kind, else null.
osg::NodePtr firstCamera(const osg::NodePtr& root);

} // namespace ka::motion
#pragma GCC visibility pop
