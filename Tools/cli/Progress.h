#pragma once

#include <string>

namespace ka::tools {

/// A bar on standard error while something takes long; nothing at all where that is no terminal. It goes when
/// the object does.
class Progress {
  public:
    explicit Progress(std::string what);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Redraws only when the whole percentage changes.
    void set(std::size_t done, std::size_t of);
    void setPercent(unsigned int percent);

  private:
    std::string _what;
    bool _isShown;
    int _percent = -1;
};

/// Puts a text on standard error at once, as it is.
void toStandardError(const std::string& text);

/// One line of message on standard error, after the program's name; whatever names are in it, one line.
void say(const std::string& line);

} // namespace ka::tools
