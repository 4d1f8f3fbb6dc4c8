#include "cli/Progress.h"

#include <algorithm>
#include <cstdio>
#include <kaMotion/Text.h>
#include <unistd.h>

namespace ka::tools {

using namespace motion;

namespace {

constexpr int barWidth = 30;

} // namespace

Progress::Progress(std::string what) : _what(std::move(what)), _isShown(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
    if (_isShown && _percent >= 0)
        toStandardError("\r\033[K");
}

void Progress::set(std::size_t done, std::size_t of) {
    setPercent(of == 0
                   ? 100U
                   : static_cast<unsigned int>(static_cast<double>(done) * 100.0 / static_cast<double>(of)));
}

void Progress::setPercent(unsigned int percent) {
    const int whole = static_cast<int>(std::min(percent, 100U));
    if (!_isShown || whole == _percent)
        return;
    _percent = whole;
    const auto filled = static_cast<std::size_t>(whole * barWidth / 100);
    toStandardError("\r" + _what + " [" + std::string(filled, '=') + std::string(barWidth - filled, ' ') +
                    "] " + std::to_string(whole) + " %\033[K");
}

bool Terminal::progress(const std::string& what, std::size_t done, std::size_t total) {
    if (!_bar || what != _what)
        _bar.emplace(_what = what);
    _bar->set(done, total);
    if (done >= total)
        _bar.reset();
    return true;
}

void Terminal::note(const std::string& line) {
    _bar.reset();
    say(line);
}

void toStandardError(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

void say(const std::string& line) {
    constexpr std::size_t longest = 16384; // room for two paths and the words around them
    toStandardError("ka-anim: " + oneLine(line, longest) + "\n");
}

} // namespace ka::tools
