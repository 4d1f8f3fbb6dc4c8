#pragma once

#include <OpenSG/OSGNode.h>
#include <kaMotion/CurveFit.h>
#include <kaMotion/ImportReport.h>
#include <kaMotion/KeyBudget.h>
#include <kaMotion/Motion.h>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

/// How a motion becomes curves.
struct ImportOptions {
    double framesPerSecond = 25.0;   ///< frames of the scene for a second of the source
    double rotationTolerance = 0.01; ///< degrees that a converted rotation may be off between keys
    KeyBudget budget;                ///< keys that may be built, those that rotations need included
    std::string take;                ///< the one to import by its name; empty for all
    double unit = 1.0;               ///< scene units for a unit of the model
    bool isZUp = false;              ///< the model's Z points up, which is turned to the scene's Y
};

/// Builds a motion, already checked, into the scene and the animation registry.
///
/// Every node becomes a scene node with a Transform3D below `root`. Meshes become Geometry
/// cores of nameless nodes below those that show them, skins and morph targets with them (osg::Skin, osg::MorphTarget;
/// a morph target's weight is animated on its own node). Every take becomes a clip with one block
/// for each node that it moves, on as many tracks as they need; curves are made through the module's
/// interchange and listed, with their block, on their node. Names become Latin-1. Every curve is then
/// sampled against the source.
/// @throws Failure (Unreadable), its text without a file's name, when there would be more keys than allowed;
/// what was built until then stays.
ImportReport importMotion(const Motion& motion, const osg::NodePtr& root, const ImportOptions& options);

} // namespace ka::motion
#pragma GCC visibility pop
