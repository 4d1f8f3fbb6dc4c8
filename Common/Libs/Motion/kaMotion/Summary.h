#pragma once

#include <kaAnimationTypes.h>
#include <kaMotion/PlainCurve.h>
#include <kaMotion/Pose.h>
#include <limits>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

class Project;

/// What a project holds, as plain data that outlives it: there is one project at a time, and whoever compares
/// two needs the first while reading the second. Names are UTF-8.
struct ProjectSummary {
    /// Stands for no node, no object.
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    /// A node of the scene; parents come before children.
    struct Node {
        std::string name;          ///< may be empty
        std::size_t parent = none; ///< index in `nodes`
        bool isPlaced = false;     ///< whether `pose` means anything
        NodePose pose;             ///< as the scene holds it
    };

    /// Everything registered but keys and fields.
    struct Object {
        unsigned int type = KA_TYPE_OBJECT; ///< KA_TYPE_CURVE and the others
        kaUID id = 0;                       ///< of the registry
        std::string name;                   ///< may be empty
        float begin = 0.0F;                 ///< frame
        float end = 0.0F;                   ///< frame
        bool active = false;                ///< as the object says
        bool repeating = false;             ///< as the object says
        bool flipped = false;               ///< as the object says
        bool motionBlur = false;            ///< as the object says
        std::size_t parent = none;          ///< index in `objects`
        std::vector<std::size_t> children;  ///< none for curves: keys are plain
        // Of curves alone.
        std::string label;                      ///< `curveLabel`
        std::size_t node = none;                ///< that the curve moves
        kaUID field = 0;                        ///< 0 when it is not registered
        unsigned int container = 0;             ///< number of the container that the field is in
        std::string attribute;                  ///< of the field, with its component
        std::vector<PlainKey> keys;             ///< by ascending frame
        std::vector<unsigned int> tangentTypes; ///< one for each key
    };

    std::vector<Node> nodes;     ///< parents before their children
    std::vector<Object> objects; ///< parents before their children
    std::size_t keys = 0;        ///< registered, those of no curve included
    std::size_t fields = 0;      ///< registered

    /// Objects of a type, KA_TYPE_CURVE for one.
    std::size_t count(unsigned int type) const;
};

/// Describes everything registered. Cost: O(n log n); changes nothing.
ProjectSummary summarize(const Project& project);

/// "clip", "track", "block", "curve", "sequence"; "object" for anything else.
const char* typeName(unsigned int type);

} // namespace ka::motion
#pragma GCC visibility pop
