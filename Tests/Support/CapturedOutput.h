#pragma once

#include <string>

namespace ka_test {

/// Collects what the process writes to standard output, through `printf` or `std::cout`, while the object
/// lives.
///
/// Captures nest: an inner one takes its share away from the outer one.
class CapturedOutput {
  public:
    CapturedOutput();
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;
    ~CapturedOutput();

    /// What was written so far. Capturing goes on.
    std::string text() const;

  private:
    int _saved;
    int _file;
};

} // namespace ka_test
