#pragma once

#include "compare/Matching.h"

#include <string>
#include <vector>

namespace ka::tools {

/// What two projects do not have in common.
struct Comparison {
    /// Something that one of them lacks or has otherwise.
    struct Difference {
        std::string element; ///< "node", "clip", "curve"
        std::string name;
        std::string what; ///< "range", or "presence"
        std::string a, b; ///< how it stands in each; empty where it is missing
    };

    /// How far two curves are apart, at their worst.
    struct CurveError {
        std::string node, attribute;
        float frame = 0.0F;
        double error = 0.0; ///< infinite where one has a value and the other has none
        std::string a, b;   ///< the two values; "none"
    };

    std::vector<Difference> structure;
    std::vector<CurveError> values; ///< one for each pair of curves, the largest error first
    std::size_t samples = 0;

    /// Whether anything differs by more than `tolerance`, by which values were compared.
    bool isEmpty(double tolerance) const {
        return structure.empty() && (values.empty() || !(values.front().error > tolerance));
    }
};

/// Compares first what there is, then the values of every pair of curves at every whole frame and every key
/// of either, each held at its own ends. Nodes are compared where both have a scene.
/// @param tolerance  by which ranges and the placing of nodes may differ.
Comparison compare(const ProjectSummary& a, const ProjectSummary& b, double tolerance);

} // namespace ka::tools
