#pragma once

#include <kaMotion/CurveChoice.h>
#include <string>
#include <vector>

class kaAnimationStrip;
class kaAnimationUnit;

#pragma GCC visibility push(default)
namespace ka::motion {

/// What an operation is to work on: everything that is registered, less what the lists leave out. Each list
/// holds names or patterns with the wildcards "*", "?" and "[...]", all UTF-8; an empty one leaves nothing
/// out.
struct MotionSelection {
    std::vector<std::string> clips;  ///< clips by name or id
    std::vector<std::string> nodes;  ///< scene nodes by name or by the end of their path ("arm/hand")
    std::vector<std::string> curves; ///< labels ("Hips.translationX"), attributes ("rotation*"), names, ids
};

/// The curves of a selection, each once, ordered by label.
/// @throws Failure (Usage) for an entry of a list that stands for nothing, with the name that comes nearest
/// to it if one does; and when the lists together leave nothing.
CurveList selectedCurves(const MotionSelection& selection);

/// The clips of a selection in ascending order of their ids: those that stand in no other object.
/// @throws Failure (Usage) as above.
std::vector<kaAnimationStrip*> selectedClips(const MotionSelection& selection);

/// Of `names` the one that is nearest to `text`, by the letters that have to be typed, left out or exchanged,
/// with no heed to capitals; empty when none is near: further than a third of its length.
std::string nearestName(const std::string& text, const std::vector<std::string>& names);

/// " (did you mean 'Hips'?)" or nothing: the end of a message about a name that is unknown.
std::string didYouMean(const std::string& text, const std::vector<std::string>& names);

} // namespace ka::motion
#pragma GCC visibility pop
