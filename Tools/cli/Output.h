#pragma once

#include <string>
#include <string_view>

namespace ka::tools {

/// Standard output, for data only. While one exists, whatever else prints to standard output goes to standard
/// error, so that nothing mixes with the data.
///
/// Every write is checked. A reader that closed the pipe ends the command with exit code 4 like any other
/// failure.
class Output {
  public:
    Output();
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// @throws Failure (OutputFailed).
    void write(std::string_view text);
    /// Sends what is still held back. Call it last: the destructor sends nothing.
    /// @throws Failure (OutputFailed).
    void finish();
    /// Whether the data goes to a terminal.
    bool isTerminal() const;

  private:
    int _descriptor;
    std::string _pending;
};

/// Writes a file as a whole; one that was there before stays as it was when that fails.
/// What the new file could not keep of its rights is said on standard error.
/// @throws Failure (OutputFailed).
void replaceFile(const std::string& path, std::string_view bytes);

} // namespace ka::tools
