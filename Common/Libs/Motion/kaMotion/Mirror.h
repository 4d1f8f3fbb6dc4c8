#pragma once

#include <OpenSG/OSGNode.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Listener.h>
#include <kaMotion/OperationReport.h>
#include <string>
#include <utility>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// What belongs to the two sides of a figure, by name.
struct MirrorOptions {
    /// Parts of names that stand for left and right. Of three letters and more they may stand anywhere in a
    /// name; shorter ones at its begin or its end.
    std::vector<std::pair<std::string, std::string>> sides{
        {"Left", "Right"}, {"left", "right"}, {"LEFT", "RIGHT"}, {"_L", "_R"}, {"_l", "_r"},
        {".L", ".R"},      {".l", ".r"},      {"L_", "R_"},      {"l_", "r_"}};
    int axis = 0; ///< the world's axis that left and right lie along: 0, 1, 2 for X, Y, Z
};

/// The name on the other side, by the first pair of `sides` that is in it; `name` itself when none is.
std::string mirroredName(const std::string& name, const MirrorOptions& options);

/// Mirrors a motion in the plane through the origin across `axis`: what the left arm does the right one does
/// then.
///
/// Where the nodes' axes at rest are mirror images of each other, as in captures, curves change places and
/// signs and stay exact. Otherwise the nodes' rotations and positions are mirrored in the world at every key
/// of any of the curves, and the curves get straight keys there; a node keeps how its axes stand to those of
/// its rest. The rest is what the scene holds when this is called.
///
/// The report says which way it took and how many nodes changed sides. A node whose other side is missing, or
/// is not animated in the same channels, is a note; it is mirrored by itself.
/// @param root  of the scene.
/// @param root  of the scene.
/// @param options  how.
/// @param listener  may cancel, which changes nothing.
OperationReport mirror(const CurveList& curves, const osg::NodePtr& root, const MirrorOptions& options,
                       Listener& listener = Listener::none());

} // namespace ka::motion
#pragma GCC visibility pop
