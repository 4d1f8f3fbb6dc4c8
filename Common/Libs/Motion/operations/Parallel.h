#pragma once

#include <cstddef>
#include <functional>
#include <kaMotion/Listener.h>
#include <string>

namespace ka::motion {

/// Asks whether to go on: false once the work is to be given up.
using GoesOn = std::function<bool()>;

/// Does `count` independent pieces of work on as many threads as the machine has processors, four at most.
/// The listener is told on the calling thread, which works as well.
/// @param what  is being done, for the listener.
/// @param work  gets a piece's number, below `count`, and what to ask now and then. It must touch nothing
///              that is registered.
/// @return false when the listener asked to give up; some of the work is undone then.
/// Whatever a piece throws is thrown here, once all have ended.
bool doAll(std::size_t count, Listener& listener, const std::string& what,
           const std::function<void(std::size_t, const GoesOn&)>& work);

} // namespace ka::motion
