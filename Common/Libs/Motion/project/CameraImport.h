#pragma once

#include <OpenSG/OSGMaterialFields.h>
#include <OpenSG/OSGNode.h>
#include <kaMotion/Motion.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace ka::motion {

/// The fields that stand for one component of a property of a motion: on these nodes, under this attribute.
struct PropertyFields {
    std::vector<osg::NodePtr> nodes; ///< one for each place that has the property
    std::string attribute;           ///< as the module calls it, "diffuseR"
    double factor = 1.0;             ///< the field holds factor * value + offset
    double offset = 0.0;
};

/// The fields of each component, by property and owner.
using Properties = std::map<std::pair<MotionProperty, std::uint32_t>, std::vector<PropertyFields>>;

/// Builds the cameras and lights of a motion, already checked, into the scene, as `importMotion` documents, and what
/// carries animated materials.
/// @param nodes  those of the scene, for each of the motion's.
/// @param materials  those of the scene, for each of the motion's; null for those that nothing shows.
/// @param lossy  set when a name has no Latin-1 form.
Properties buildCameras(const Motion& motion, const std::vector<osg::NodePtr>& nodes,
                        const osg::NodePtr& root, const std::vector<osg::MaterialPtr>& materials,
                        bool& lossy);

} // namespace ka::motion
