#pragma once

#include <kaMotion/Listener.h>
#include <optional>
#include <string>

namespace ka::tools {

using namespace motion;

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

/// Shows the progress of the library's work as a bar, one for each text, and says its notes.
class Terminal : public Listener {
  public:
    bool progress(const std::string& what, std::size_t done, std::size_t total) override;
    void note(const std::string& line) override;

  private:
    std::string _what;
    std::optional<Progress> _bar;
};

/// Puts a text on standard error at once, as it is.
void toStandardError(const std::string& text);

/// One line of message on standard error, after the program's name; whatever names are in it, one line.
void say(const std::string& line);

} // namespace ka::tools
