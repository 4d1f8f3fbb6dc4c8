#pragma once

#include <string>
#include <vector>

class kaAnimationStrip;

#pragma GCC visibility push(default)
namespace ka::motion {

/// A copy of a clip with everything in it, registered, its blocks listed on the nodes that they move: for
/// operations that are to leave the clip itself as it is. The copy animates the same fields.
/// @param clip  null gives null. @param name  of the copy, UTF-8.
kaAnimationStrip* copyClip(kaAnimationStrip* clip, const std::string& name);

/// Copies several; the second and later ones have " 2", " 3" and so on after the name.
/// @return the ids of the copies, as a selection takes them.
std::vector<std::string> copyClips(const std::vector<kaAnimationStrip*>& clips, const std::string& name);

} // namespace ka::motion
#pragma GCC visibility pop
