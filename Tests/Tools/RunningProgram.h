#pragma once

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace ka::tools::testing {

/// A `ka-anim` that runs while the test watches what it prints.
class RunningProgram {
  public:
    enum class Streams {
        Pipe,    ///< standard output is a pipe, standard error is dropped
        Terminal ///< all three are a terminal
    };

    RunningProgram(const std::vector<std::string>& arguments, const std::string& folder, Streams streams);
    /// Kills it when it still runs.
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /// Reads on until `isEnough` of all that was printed so far, or the end.
    void readUntil(const std::function<bool(const std::string& seen)>& isEnough);
    /// What Ctrl-C would send.
    void interrupt() const;
    /// As if typed on its terminal.
    void type(const std::string& keys) const;
    /// Reads to the end.
    /// @return the exit code; -1 when it did not end by itself.
    int finish();

    const std::string& seen() const { return _seen; }

  private:
    pid_t _child = -1;
    int _stream = -1;
    std::string _seen;
};

} // namespace ka::tools::testing
