#pragma once

#include <cstddef>
#include <vector>

namespace tinygltf {
class Model;
}

namespace ka::motion {

/// The elements of a glTF accessor as doubles, `components` a row: integers that stand for fractions are
/// turned into these, sparse replacements are applied.
/// @throws Failure (Unreadable) when the accessor is of another width or reaches beyond its buffer. The
/// third-party reader checks none of this.
std::vector<double> readGltfAccessor(const tinygltf::Model& model, int accessor, std::size_t components);

} // namespace ka::motion
