#pragma once

#include <cstddef>
#include <string>

/// How far an exported file, read again, is from what it was made of.
struct RoundTrip {
    std::size_t nodes = 0, clips = 0, frames = 0, channels = 0;
    double size = 0.0;  ///< of the scene: the longest edge of the box around all nodes in all frames
    double worst = 0.0; ///< the largest distance of a node's two places in the world at a whole frame
    std::string where;  ///< which node, when
    std::string fault;  ///< what does not match at all; empty when everything does
    /// The same against what Assimp reads of the file, at keys on whole frames: positions and scales, in
    /// units, and rotations, in degrees.
    double witnessedValue = 0.0, witnessedRotation = 0.0;
    std::size_t witnessedKeys = 0;

    /// With thinning: keys of the model, after thinning, and of what was read again.
    std::size_t keysBefore = 0, keysThinned = 0, keysAgain = 0;

    bool isWithin(double part) const { return fault.empty() && worst <= part * size; }
};

/// Reads a model, exports it to `target`, reads that and compares the places of all nodes in the world at
/// every whole frame of every clip. For glTF, Assimp is the witness of the keys.
/// @param thinning  above 0: between import and export its keys are reduced, so that no node moves further in the world
/// than this part of the scene's size; the comparison is with what was there before, and without the witness.
RoundTrip roundTrip(const std::string& model, const std::string& target, double framesPerSecond = 25.0,
                    double thinning = 0.0);
