#include "cli/LiveLine.h"

#include "cli/Progress.h"

#include <unistd.h>

namespace ka::tools {

namespace {

constexpr std::chrono::milliseconds shortest(30);

} // namespace

LiveLine::LiveLine(bool wanted) : _isShown(wanted && isatty(STDERR_FILENO) == 1) {}

LiveLine::~LiveLine() {
    if (_text.empty())
        return;
    show();
    toStandardError("\n");
}

void LiveLine::set(const std::string& text) {
    if (!_isShown)
        return;
    _text = text;
    const auto now = std::chrono::steady_clock::now();
    if (now < _next)
        return;
    _next = now + shortest;
    show();
}

void LiveLine::show() {
    if (_text == _shown)
        return;
    _shown = _text;
    toStandardError("\r" + _text + "\033[K");
}

} // namespace ka::tools
