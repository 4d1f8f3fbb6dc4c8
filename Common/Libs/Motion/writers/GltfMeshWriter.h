#pragma once

#include "writers/GltfBuffer.h"

#include <kaMotion/Motion.h>
#include <map>

namespace ka::motion {

/// Writes the meshes, materials and skins of a motion into the parts of a glTF document. Parts that stand at the same
/// nodes become one mesh.
class GltfMeshWriter {
  public:
    GltfMeshWriter(const Motion& motion, GltfBuffer& buffer) : _motion(motion), _buffer(buffer) {}

    /// Adds to the document's lists, and to `nodes` which mesh and skin each shows.
    void write(nlohmann::ordered_json& document, nlohmann::ordered_json& nodes);

    /// The node of the document that shows the shapes of a node, and how many; none for a node without.
    const std::map<std::uint32_t, std::pair<std::size_t, std::size_t>>& shapes() const { return _shapes; }

  private:
    nlohmann::ordered_json primitiveOf(const MotionMesh& mesh);
    nlohmann::ordered_json materialOf(const MotionMaterial& material, nlohmann::ordered_json& document);
    nlohmann::ordered_json skinOf(const MotionSkin& skin);

    const Motion& _motion;
    GltfBuffer& _buffer;
    std::map<std::uint32_t, std::pair<std::size_t, std::size_t>> _shapes;
    std::map<std::int32_t, std::size_t> _plain; ///< materials once more, without their pictures
};

} // namespace ka::motion
