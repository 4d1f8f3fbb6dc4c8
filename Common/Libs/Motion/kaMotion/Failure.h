#pragma once

#include <stdexcept>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

/// What the program tells its caller when it ends.
enum class ExitCode : int {
    Fine = 0,
    Findings = 1,    ///< the work was done, and a check found something to report
    Usage = 2,       ///< the command line itself is wrong
    Unreadable = 3,  ///< an input is missing, damaged or of no known kind
    OutputFailed = 4 ///< a result could not be written in full
};

/// Ends a command: one line for the user and the exit code that goes with it. Thrown anywhere below a
/// command, caught once in the program's main function.
class Failure : public std::runtime_error {
  public:
    /// @param code  what kind of failure it is.
    /// @param line  for the user: one line, without the name of a program.
    Failure(ExitCode code, const std::string& line) : std::runtime_error(line), _code(code) {}
    /// What kind of failure it is.
    ExitCode code() const { return _code; }

  private:
    ExitCode _code;
};

/// The failure that every reader throws: `file` as the user named it, then what is wrong with it.
inline Failure unreadable(const std::string& file, const std::string& reason) {
    return {ExitCode::Unreadable, file + ": " + reason};
}

} // namespace ka::motion
#pragma GCC visibility pop
