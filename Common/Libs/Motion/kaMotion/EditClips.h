#pragma once

#include <OpenSG/OSGNode.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Listener.h>
#include <kaMotion/OperationReport.h>
#include <string>
#include <vector>

class kaAnimationStrip;

#pragma GCC visibility push(default)
namespace ka::motion {

// Operations on whole clips and on names. A listener may cancel, which changes nothing.

/// How `merge` puts clips together.
struct MergeOptions {
    double crossFade = 0.0;      ///< frames in which one clip passes over into the next, 0 or more
    std::string name = "merged"; ///< of the new clip, UTF-8
    bool removesSources = false; ///< destroy the clips that it was made of
};

/// Makes a new clip that plays clips one after the other, from the first one's first frame on. With a
/// cross-fade the end of one and the begin of the next overlap by so many frames, in which every value passes
/// over evenly and without a corner; rotations take the shorter way round. Without, the next begins a frame
/// later. What one of the clips does not animate holds the value it had. The new clip has a block for each
/// node, listed there.
/// @param clips  at least two, in order; nulls are left out.
/// @param options  how.
/// @param listener  may cancel.
/// @throws Failure (Usage) for fewer, and a cross-fade longer than one of the clips.
OperationReport merge(const std::vector<kaAnimationStrip*>& clips, const MergeOptions& options,
                      Listener& listener = Listener::none());

/// Cuts a clip at frames into clips that each begin at frame 0, called `clip 1`, `clip 2` and so on after it.
/// The clip itself goes unless `keepsSource`.
/// @param clip  what is cut.
/// @param frames  ascending, at least one within the clip.
/// @param keepsSource  whether the clip stays beside its parts.
/// @param listener  may cancel.
/// @throws Failure (Usage) when there is none, and for frames that do not ascend.
OperationReport split(kaAnimationStrip* clip, const std::vector<double>& frames, bool keepsSource,
                      Listener& listener = Listener::none());

/// Renames scene nodes at and below `root`, and with them the blocks that are called after their node.
/// @param root  where renaming begins.
/// @param match  a name or a pattern of which each "*" and "?" stands for a text, such as "mixamorig:*".
/// @param to  the new name; its first "*" or "?" stands for what the first of the pattern stood for, and so
/// on.
/// @return how many, and as notes the first names before and after.
/// @param listener  may cancel, which renames nothing.
/// @throws Failure (Usage) when no node matches, and when `to` has more wildcards than `match`.
OperationReport rename(const osg::NodePtr& root, const std::string& match, const std::string& to,
                       Listener& listener = Listener::none());

/// What the pattern makes of a name: `to` with its wildcards filled in. Nothing where the name does not
/// match.
std::string renamed(const std::string& name, const std::string& match, const std::string& to, bool& isMatch);

/// Destroys curves, then blocks, tracks and clips that have nothing left in them.
/// @param listener  may cancel, which destroys nothing.
OperationReport removeCurves(const CurveList& curves, Listener& listener = Listener::none());

/// Destroys clips with everything in them.
/// @param listener  may cancel, which destroys nothing.
OperationReport removeClips(const std::vector<kaAnimationStrip*>& clips,
                            Listener& listener = Listener::none());

} // namespace ka::motion
#pragma GCC visibility pop
