#pragma once

#include "readers/GltfOutline.h"

#include <cstdint>
#include <kaMotion/KeyBudget.h>
#include <string>
#include <vector>

namespace tinygltf {
class Model;
}

namespace ka::motion {

/// Reads one animation of a file.
/// @param index  which one.
/// @param withoutNode  its channels that the third-party reader keeps to itself.
/// @param places  the place in `Motion::nodes` of each node of the file.
/// @param notes  get what cannot be carried over.
/// @throws Failure (Unreadable).
MotionTake readGltfTake(const tinygltf::Model& model, std::size_t index,
                        const GltfOutline::Channels& withoutNode, const std::vector<std::uint32_t>& places,
                        KeyBudget& budget, std::vector<std::string>& notes);

} // namespace ka::motion
