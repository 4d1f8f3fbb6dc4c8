#pragma once

namespace ka::studio {

/// What the process that draws does: reads messages from standard input until it ends, and draws what they ask for into
/// the shared pictures behind a descriptor. On standard output it says "ready" with the driver's name, or "without" with
/// what is missing, then "drawn" with place, width and height for each frame. @return the exit code.
int runDrawing(int descriptor);

} // namespace ka::studio
