#pragma once

#include <cstddef>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// What became of a model.
struct ImportReport {
    double framesPerSecond = 0.0; ///< of the scene, for a second of the model; 0 where none was read
    std::size_t nodes = 0;        ///< of the scene, its root and what shows meshes included
    std::size_t meshes = 0;       ///< of one material each
    std::size_t triangles = 0;    ///< in all meshes
    std::size_t cameras = 0;      ///< nodes that carry one
    std::size_t lights = 0;       ///< nodes that carry one
    std::size_t clips = 0;        ///< one for each take
    std::size_t blocks = 0;       ///< one for each moved node of each take
    std::size_t curves = 0;       ///< in all blocks
    std::size_t keys = 0;         ///< on all curves
    std::size_t addedKeys =
        0; ///< that the source does not have, for rotations to keep their way between keys
    std::size_t mergedKeys = 0; ///< left out because a document cannot tell their frames apart

    /// The largest difference between a curve and its source, as a part of the curve's range of values, that
    /// the digits of a document do not explain; which curve's it is, and where.
    double worstDifference = 0.0;
    std::string worstCurve;  ///< empty when there is no difference
    double worstFrame = 0.0; ///< where on that curve
    /// The largest difference, in degrees, between a converted rotation and its source anywhere between keys.
    double worstRotation = 0.0;
    std::string worstRotationNode;     ///< which node's that is; empty when there is none
    double rotationTolerance = 0.0;    ///< degrees, the difference that was asked for
    std::size_t unreachedSegments = 0; ///< beyond that tolerance, because they cannot be split further

    std::vector<std::string> notes;  ///< what could not be carried over
    std::size_t findings = 0;        ///< how many of the notes are damage in the file
    std::vector<std::string> faults; ///< curves that do not do what is promised, a line for each
};

} // namespace ka::motion
#pragma GCC visibility pop
