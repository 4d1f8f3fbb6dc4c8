#pragma once

namespace ka::tools {

/// From now on Ctrl-C, a request to end (SIGTERM), a terminal that goes away (SIGHUP) and Ctrl-\ (SIGQUIT)
/// remove what files are half written before they end the program as they always do. One that the caller has
/// had ignored stays ignored (`nohup`).
void endCleanlyOnSignals();

/// What such a signal does; its default where endCleanlyOnSignals() was not called. To be called in a handler
/// for it: the program ends when that returns.
void endBy(int signal);

} // namespace ka::tools
