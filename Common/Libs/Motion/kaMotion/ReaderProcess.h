#pragma once

#include <functional>
#include <kaMotion/Motion.h>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

class ConfinedFolder;

/// What a reader may use up before it is stopped, and when it may read at all.
struct ReaderLimits {
    std::size_t megabytes = 2048; ///< of memory: about 3.3 million keys
    double seconds = 30.0;        ///< of time, whether it computes or waits
    /// To read even where the system cannot take from the reader what it could do harm with.
    bool unconfined = false;
};

/// How far the system holds a reader to reading.
enum class Confinement : char {
    Whole = 'W',     ///< nothing but reading, and that below the model's folder
    CallsOnly = 'C', ///< nothing but reading, of any file that its user may read: there is no Landlock
    None = 'N'       ///< there are no filters of system calls: it can do whatever its user can
};

/// What `readInChild` brings back.
struct ReaderResult {
    Motion motion; ///< as the reader gave it, not checked
    /// How far the system held it.
    Confinement confinement = Confinement::None;
};

/// Runs a reader in a process of its own: whatever a hostile file makes it do, this process and its files
/// stay whole.
///
/// Before it sees the file, the child gives up everything but reading: the kernel holds it to the model's
/// folder, and lets it open files for reading, use memory, write its answer and end, and nothing else (see
/// `restrictSystemCalls`). It has no descriptor but its answer's, and uses up no more than `limits`. It dies
/// with its parent, whatever the moment, and by an alarm of its own should the parent stand still. Where the
/// system has no filters of system calls, it reads nothing unless `limits` says so.
/// @param folder  the model's folder.
/// @param name  the model, as its user named it.
/// @param limits  what the reader may use up.
/// @param read  runs in the child; a Failure that it throws is thrown here again with `name` before it. One
///              whose text begins with a colon goes on from the name: ":3:14: ..." for line and column.
/// @throws Failure (Unreadable) with one line, `name` first, when the reader fails, crashes, hangs, asks for
/// too much memory, tries to do more than read, or answers with anything but a motion.
/// Call it before threads are started: the child is a fork.
ReaderResult readInChild(const ConfinedFolder& folder, const std::string& name, const ReaderLimits& limits,
                         const std::function<Motion()>& read);

} // namespace ka::motion
#pragma GCC visibility pop
