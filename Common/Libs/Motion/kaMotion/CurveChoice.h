#pragma once

#include <string>
#include <vector>

class kaAnimationCurve2D;
class kaAnimationObject;

#pragma GCC visibility push(default)
namespace ka::motion {

/// The name of the node that a curve moves and the attribute it sets there, "Hips.translationX"; the curve's
/// own name where the node is not known. UTF-8.
std::string curveLabel(const kaAnimationCurve2D* curve);

/// The unit in which a curve's values are read: "degrees" for rotations, "units" for lengths, "" for plain
/// numbers.
std::string curveUnit(const kaAnimationCurve2D* curve);

using CurveList = std::vector<kaAnimationCurve2D*>;

/// All registered curves, ordered by label.
CurveList allCurves();

/// The curves at or below the objects, ordered by label.
CurveList curvesBelow(const std::vector<kaAnimationObject*>& objects);

/// Those of `curves` that the names stand for, each once, in the order of the names. A name is an id, a
/// curve's or an attribute's name ("translationX"), a label ("Hips.translationX") or a node's name.
/// @throws Failure (Usage) for a name that stands for none.
CurveList chooseCurves(const CurveList& curves, const std::vector<std::string>& names);

/// A few of `curves` that show a motion at a glance: the translation of the node that moves furthest and
/// rotations that turn furthest, wrapped angles counted on and noise left aside.
CurveList tellingCurves(const CurveList& curves);

} // namespace ka::motion
#pragma GCC visibility pop
