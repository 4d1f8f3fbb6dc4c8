#pragma once

#include <kaMotion/Summary.h>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Which objects of two projects are the same ones.
struct Matching {
    std::vector<std::size_t> ofA; ///< for each object of A its partner in B, or `ProjectSummary::none`
    std::vector<std::size_t> ofB; ///< the same for each object of B
};

/// Pairs objects of one type from the roots down: among siblings by name (curves: by node and attribute) and
/// id, then by name and order, then by id, then clips, tracks and blocks by the curves below them (nodes and
/// attributes that they drive) and order; what is left anywhere after that by id. So renamed and moved
/// objects keep their partner, and two imports of one model match although every id is another.
Matching matchObjects(const ProjectSummary& a, const ProjectSummary& b);

/// The same for nodes, by name and order below paired parents. Where each has a single node at the top the
/// two are partners, whatever their names.
Matching matchNodes(const ProjectSummary& a, const ProjectSummary& b);

} // namespace ka::motion
#pragma GCC visibility pop
