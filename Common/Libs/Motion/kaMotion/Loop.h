#pragma once

#include <OpenSG/OSGNode.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Listener.h>
#include <kaMotion/OperationReport.h>

#pragma GCC visibility push(default)
namespace ka::motion {

/// What becomes of the way that a motion covers.
enum class RootMotion : unsigned char {
    Closed,  ///< its root comes back to where it began, as everything else does
    Kept,    ///< the root goes on: the curves that move it are left alone
    TakenOut ///< the root stays in place: the even part of its way is taken out of every frame
};

/// How a motion is made to repeat.
struct LoopOptions {
    double seam = 10.0; ///< frames before the end over which the seam is closed, above 0
    RootMotion rootMotion = RootMotion::Closed; ///< of the topmost node that is moved
};

/// Makes a motion end as it begins, so that it repeats without a jump: over the last `seam` frames every
/// curve is led to the value and the slope that it has at the first frame of all curves. Rotations that
/// differ by whole turns already meet. Before the seam nothing changes; in it there are smooth keys at every
/// whole frame and every key there was. A curve that only steps gets the first value at its last key. Curves
/// end at one frame then.
///
/// The report says how far values were apart at worst.
/// @param curves  of the registry, of one clip; nulls and curves of fewer than two keys are left alone.
/// @param root  of the scene, to find the topmost node; null: that of the first curve that moves one.
/// @param options  how.
/// @param listener  may cancel, which changes nothing.
/// @throws Failure (Usage) when the seam is not above 0 or longer than the motion.
OperationReport loop(const CurveList& curves, const osg::NodePtr& root, const LoopOptions& options,
                     Listener& listener = Listener::none());

} // namespace ka::motion
#pragma GCC visibility pop
