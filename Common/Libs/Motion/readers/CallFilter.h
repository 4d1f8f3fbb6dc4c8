#pragma once

namespace ka::motion {

/// Takes from the calling process, for good, every system call that reading a file does not need.
///
/// What is left: opening files for reading, reading, looking at them and closing them; memory that cannot be
/// executed; locks, clocks and random numbers; writing to the one descriptor `answer`; signals to itself, and
/// its end. Calls that no reader makes, honest as it may be, end the process with SIGSYS: starting a program,
/// sockets, signals to others, changing files, tracing, asking for other rights. All others fail with EPERM,
/// which a library of a later version may try and do without. So do calls of another architecture's interface
/// than the program's own: they end the process.
/// Under the sanitizers their own calls are left as well: pipes, and writing to any descriptor.
/// @return false, and nothing has changed, where the kernel has no such filters.
bool restrictSystemCalls(int answer);

} // namespace ka::motion
