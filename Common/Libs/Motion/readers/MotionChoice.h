#pragma once

#include <kaMotion/Motion.h>

namespace ka::motion {

/// Keeps the takes of that name alone.
/// @throws Failure (Usage), which names those that there are, when there is none.
void keepTake(Motion& motion, const std::string& name);

/// Makes every length `factor` times as long: places of nodes and corners, keys, what binds skins, and the distances
/// at which lights fade.
void scaleLengths(Motion& motion, double factor);

/// How many keys a second the motion has: of the channel with most of them, where all stand at whole multiples of one
/// distance. 0 where there is no such channel.
double ownRate(const Motion& motion);

/// Turns a motion whose Z points up so that Y does, by a node "z_up" above everything.
void turnZUp(Motion& motion);

} // namespace ka::motion
