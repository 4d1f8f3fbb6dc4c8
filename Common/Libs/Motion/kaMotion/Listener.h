#pragma once

#include <cstddef>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Hears how far work has come and what its user ought to know. Calls come on the thread that works, from the
/// middle of the work: they must not touch what is worked on.
class Listener {
  public:
    virtual ~Listener() = default;

    /// @param what  what is being done, such as "reading animation"; the same text until it is finished.
    /// @param done  steps that are finished; not every one need be reported.
    /// @param total  steps in all, which `done` reaches at the end.
    /// @return false to ask for the work to be given up. Work that can be given up says so; other work goes
    /// on.
    virtual bool progress(const std::string& what, std::size_t done, std::size_t total) {
        static_cast<void>(what), static_cast<void>(done), static_cast<void>(total);
        return true;
    }

    /// One line, without a line break, that the user ought to see though nothing failed.
    virtual void note(const std::string& line) { static_cast<void>(line); }

    /// One that takes no notice of anything.
    static Listener& none();
};

} // namespace ka::motion
#pragma GCC visibility pop
