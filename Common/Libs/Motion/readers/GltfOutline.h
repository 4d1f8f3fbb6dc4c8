#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ka::motion {

/// What a glTF file says that the third-party reader passes over.
struct GltfOutline {
    /// The extensions that a reader must know to make anything of the file.
    std::vector<std::string> required;

    /// A channel of the extension KHR_animation_pointer.
    struct Pointer {
        std::string path; ///< what it animates, "/materials/0/emissiveFactor"
        int sampler = -1; ///< of the animation
    };

    /// Channels of one animation that no node is the target of.
    struct Channels {
        std::size_t withoutTarget = 0;
        std::vector<Pointer> pointers;
    };
    std::vector<Channels> animations; ///< one for each of the file's
};

/// @param bytes  a .gltf or .glb file. Of one that is not well-formed the outline is empty. Only what the
///               outline needs is held while it is read.
GltfOutline outlineOfGltf(const std::string& bytes);

/// The first of the required extensions without which the motion would be read wrong; empty when there is
/// none. Extensions that concern meshes, pictures, materials or lights alone do no harm.
std::string unknownExtension(const GltfOutline& outline);

} // namespace ka::motion
