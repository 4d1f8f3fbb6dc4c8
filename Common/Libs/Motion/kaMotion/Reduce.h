#pragma once

#include <OpenSG/OSGNode.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Listener.h>
#include <kaMotion/OperationReport.h>
#include <optional>

#pragma GCC visibility push(default)
namespace ka::motion {

/// How far a thinned motion may be from the one it was made of. All bounds are above 0, in the unit of the
/// curve.
struct ReduceOptions {
    double rotation = 0.5;    ///< degrees, of every curve that turns a node
    double translation = 0.1; ///< in the scene's unit, of every curve that moves one
    double scale = 0.001;     ///< of factors
    double value = 0.001;     ///< of everything else
    /// No node's origin may move further than this in the world, in the scene's unit, at any frame. Bounds of
    /// the single curves are then chosen for it, at most ten times those above.
    std::optional<double> world;
    bool allowsCorners = false; ///< `--broken`: keys need not be smooth where the motion is
    bool dropsConstant = false; ///< leave out curves that only repeat what the scene holds
    double shortestHold = 5.0;  ///< frames from which on a standing value stays exactly as it is
    bool isDry = false;         ///< work everything out and change nothing
};

/// Thins the keys of curves to few that stay within the bounds.
///
/// The bounds hold at every quarter frame, at frames closer together for curves shorter than 64 frames, and
/// at every key there was: measured by the module's own sampler on the numbers that a document holds, with
/// its six decimals. First and last keys stay where they are. Handles of the new keys may have any length in
/// time and stay between their keys. Steps stay steps, values that stand stay as they are, and keys at which
/// the motion turns so sharply that rounding it off would use up a tenth of the bound may stay corners; all
/// other new keys are smooth. A curve that never changes keeps two keys, for one of a single key has no
/// value.
///
/// With `dropsConstant` a curve whose value never changes is destroyed where the scene holds that very value,
/// nothing else animates it and its block or parent goes on without it.
///
/// @param curves  of the registry; nulls and curves of fewer than three keys stay as they are.
/// @param root  of the scene, for `world` and `dropsConstant`; may be null, which leaves these two out.
/// @param options  the bounds.
/// @param listener  may cancel, which changes nothing.
/// @return what was done, with the place where each kind of bound is tightest. Its fault is a
/// `world` bound that could not be kept to.
/// Cost: some 7 microseconds for each key on each of up to four threads; with `world` several times that.
OperationReport reduce(const CurveList& curves, const osg::NodePtr& root, const ReduceOptions& options,
                       Listener& listener = Listener::none());

} // namespace ka::motion
#pragma GCC visibility pop
