#pragma once

#include "scene/PlainCurve.h"
#include "scene/Pose.h"

#include <kaAnimationTypes.h>
#include <limits>
#include <string>
#include <vector>

namespace ka::tools {

class Project;

/// What a project holds, as plain data that outlives it: there is one project at a time, and whoever compares
/// two needs the first while reading the second. Names are UTF-8.
struct ProjectSummary {
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    /// A node of the scene; parents come before children.
    struct Node {
        std::string name;
        std::size_t parent = none;
        bool isPlaced = false; ///< whether `pose` means anything
        NodePose pose;
    };

    /// Everything registered but keys and fields.
    struct Object {
        unsigned int type = KA_TYPE_OBJECT;
        kaUID id = 0;
        std::string name;
        float begin = 0.0F, end = 0.0F;
        bool active = false, repeating = false, flipped = false, motionBlur = false;
        std::size_t parent = none;
        std::vector<std::size_t> children; ///< none for curves: keys are plain
        // Of curves alone.
        std::string label;          ///< `curveLabel`
        std::size_t node = none;    ///< that the curve moves
        kaUID field = 0;            ///< 0 when it is not registered
        unsigned int container = 0; ///< number of the container that the field is in
        std::string attribute;
        std::vector<PlainKey> keys;
        std::vector<unsigned int> tangentTypes; ///< one for each key
    };

    std::vector<Node> nodes;
    std::vector<Object> objects;
    std::size_t keys = 0;   ///< registered, those of no curve included
    std::size_t fields = 0; ///< registered

    std::size_t count(unsigned int type) const;
};

/// Describes everything registered. Cost: O(n log n); changes nothing.
ProjectSummary summarize(const Project& project);

/// "clip", "track", "block", "curve", "sequence"; "object" for anything else.
const char* typeName(unsigned int type);

} // namespace ka::tools
