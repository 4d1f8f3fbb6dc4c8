#pragma once

#include <chrono>
#include <string>

namespace ka::tools {

/// One line on standard error that is written over again and again; nothing at all where that is no terminal.
/// The last text stays, with its line ended, when the object goes.
class LiveLine {
  public:
    /// @param wanted  false for a line that is never shown.
    explicit LiveLine(bool wanted);
    ~LiveLine();
    LiveLine(const LiveLine&) = delete;
    LiveLine& operator=(const LiveLine&) = delete;

    bool isShown() const { return _isShown; }
    /// Shows the text, unless the last one was shown a moment ago: no eye follows more.
    void set(const std::string& text);

  private:
    void show();

    bool _isShown;
    std::string _text, _shown;
    std::chrono::steady_clock::time_point _next{};
};

} // namespace ka::tools
