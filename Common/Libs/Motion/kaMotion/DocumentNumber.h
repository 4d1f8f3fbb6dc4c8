#pragma once

#pragma GCC visibility push(default)
namespace ka::motion {

/// Coordinates stand in documents with six digits after the point. Not every float survives that: below 16,
/// where floats lie closer than the digits reach, writing and reading moves them.

/// The distance of neighbouring numbers that a document can tell apart, where floats do not lie further apart
/// themselves.
constexpr double documentStep = 1e-6;

/// Of the floats that writing and reading leave as they are the one nearest to `value`; the largest of them
/// for what no float can hold. What a document gives back of a float is `documentFloat` of it.
float documentFloat(double value);

/// The float `steps` steps above (below, for negative ones) a float of that kind, each step as short as a
/// document can tell.
float documentNeighbour(float value, int steps);

} // namespace ka::motion
#pragma GCC visibility pop
