#pragma once

#include <OpenSG/OSGNode.h>
#include <kaMotion/CurveFit.h>
#include <kaMotion/ImportReport.h>
#include <kaMotion/KeyBudget.h>
#include <kaMotion/Listener.h>
#include <kaMotion/Motion.h>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

/// How a motion becomes curves.
struct ImportOptions {
    double framesPerSecond = 25.0;   ///< frames of the scene for a second of the source; 0: see `ownRate`
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
/// a morph target's weight is animated on its own node).
///
/// A camera becomes a child, with a CameraSetting core, of each node that carries it. `from`, `at` and `up` are in the
/// axes of that node, so that a viewer takes them through `node->getToWorld()`; `fieldOfView`, in radians, spans the
/// picture from its lower to its upper edge (its curves are in degrees). A light becomes a child with a
/// DirectionalLight, PointLight or SpotLight core, its beacon the node that carries it: position and direction, the way
/// the light goes, are in the axes of the beacon. It lights the whole scene. `diffuse` and `specular` are colour times
/// intensity (of glTF candela, or lux where directional), often above 1, and decrease with the light's attenuations, at
/// distances in scene units: a viewer scales by an exposure of its own. A spot ends at `spotCutOff` radians from its
/// axis, and the cosine to the power of `spotExponent` makes it fade. Of materials that are animated, a MaterialGroup
/// without children, below `root`, carries the fields: its material is the one of the geometries. Nodes that are hidden
/// have an empty traversal mask ("visible").
///
/// Every take becomes a clip with one block
/// for each node that it moves, on as many tracks as they need; curves are made through the module's
/// interchange and listed, with their block, on their node. Names become Latin-1. Every curve is then
/// sampled against the source.
/// @throws Failure (Unreadable), its text without a file's name, when there would be more keys than allowed;
/// what was built until then stays. The listener hears of every track, as "building animation".
ImportReport importMotion(const Motion& motion, const osg::NodePtr& root, const ImportOptions& options,
                          Listener& listener = Listener::none());

} // namespace ka::motion
#pragma GCC visibility pop
