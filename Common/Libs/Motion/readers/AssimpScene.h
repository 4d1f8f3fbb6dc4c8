#pragma once

// What all who read the library's scenes include, with its headers' warnings kept to themselves.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wshadow"
#include <assimp/material.h>
#include <assimp/scene.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <kaMotion/Rotation.h>
#include <string>
#include <unordered_map>
#include <vector>

namespace ka::motion {

inline std::string text(const aiString& name) {
    return {name.data, strnlen(name.data, std::min<std::size_t>(name.length, sizeof name.data))};
}

inline Vec3 vec(const aiVector3D& v) {
    return {static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
}

/// Where the library's nodes stand in `Motion::nodes`: bones, cameras, lights and channels name them.
struct AssimpPlaces {
    std::unordered_map<std::string, std::uint32_t> byName; ///< the first of each name
    std::vector<std::vector<std::uint32_t>> nodesOfMeshes; ///< for each mesh those that show it
};

} // namespace ka::motion
