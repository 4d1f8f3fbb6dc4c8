#pragma once

#include <kaMotion/Matching.h>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// What two projects do not have in common.
struct Comparison {
    /// Something that one of them lacks or has otherwise.
    struct Difference {
        std::string element; ///< "node", "clip", "curve"
        std::string name;    ///< UTF-8
        std::string what;    ///< "range", or "presence"
        std::string a;       ///< how it stands in the first; empty where it is missing
        std::string b;       ///< the same for the second
    };

    /// How far two curves are apart, at their worst.
    struct CurveError {
        std::string node;      ///< the animated node, UTF-8
        std::string attribute; ///< the animated field or component
        float frame = 0.0F;    ///< where they are furthest apart
        double error = 0.0;    ///< infinite where one has a value and the other has none
        std::string a;         ///< the value of the first; "none"
        std::string b;         ///< the value of the second; "none"
    };

    std::vector<Difference> structure; ///< clips, tracks, blocks, curves and nodes
    std::vector<CurveError> values;    ///< one for each pair of curves, the largest error first
    std::size_t samples = 0;           ///< pairs of values compared

    /// Whether anything differs by more than `tolerance`, by which values were compared.
    bool isEmpty(double tolerance) const {
        return structure.empty() && (values.empty() || !(values.front().error > tolerance));
    }
};

/// Compares first what there is, then the values of every pair of curves at every whole frame and every key
/// of either, each held at its own ends. Nodes are compared where both have a scene.
/// @param a  the one project.
/// @param b  the other.
/// @param tolerance  by which ranges and the placing of nodes may differ.
Comparison compare(const ProjectSummary& a, const ProjectSummary& b, double tolerance);

} // namespace ka::motion
#pragma GCC visibility pop
