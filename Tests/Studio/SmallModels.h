#pragma once

#include <string>

namespace ka::studio::testing {

// Models of a few corners, as glTF with everything in the one file. Units are the scene's; +Z is towards the front view.

/// A square of 2 by 2 units around the origin, facing +Z, on a node "board". Its picture has a red, a green, a blue and a
/// yellow quarter: upper left, upper right, lower left, lower right.
std::string picturedBoard();

/// A green square of 2 by 2 units around the origin, bound to a joint "hand" alone, which hangs from a joint "root". In
/// one second the hand goes 10 units along X. The node of the square stands far away, which must not count.
std::string boundBoard();

/// A blue square of 2 by 2 units around the origin on a node "board", which a morph target "aside" takes 10 units along
/// Y. Its weight goes from 0 to 1 in one second.
std::string morphedBoard();

/// A grey square of 2 by 2 units around the origin, facing +Z, on a node "board"; a node "sun" 3 units along +Z from
/// which a directional light shines towards -Z, or the other way, so that it falls on the back; and a node "camera" 10
/// units along +Z that looks at it and sees 90 degrees from below to above.
std::string litBoard(bool fromTheFront);

} // namespace ka::studio::testing
