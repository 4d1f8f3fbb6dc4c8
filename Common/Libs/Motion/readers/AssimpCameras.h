#pragma once

#include <kaMotion/Motion.h>

struct aiScene;

namespace ka::motion {

struct AssimpPlaces;

/// Appends the cameras and lights of a scene; what it has that cannot be carried over is told in the notes.
void readAssimpCameras(const aiScene& scene, const AssimpPlaces& places, Motion& motion);

} // namespace ka::motion
