#include "SceneFileLog.h"

#include <algorithm>

namespace osg {

namespace {

constexpr std::size_t MESSAGE_LIMIT = 1000;

const char* nameOf(SceneFileMessage::Severity severity) {
    switch (severity) {
    case SceneFileMessage::Warning:
        return "warning";
    case SceneFileMessage::Error:
        return "error";
    case SceneFileMessage::Fatal:
        break;
    }
    return "refused";
}

} // namespace

std::string SceneFileMessage::toString() const {
    std::string result = file.empty() ? "scene" : file;
    if (line > 0)
        result += ':' + std::to_string(line);
    return result + ": " + nameOf(severity) + ": " + text;
}

void SceneFileLog::add(SceneFileMessage::Severity severity, UInt32 line, std::string text) {
    // The verdict on the file is worth more than another fault of the same kind.
    if (_messages.size() >= MESSAGE_LIMIT && severity != SceneFileMessage::Fatal) {
        if (!_isFull)
            _messages.push_back({SceneFileMessage::Error, _file, line, "further messages are left out"});
        _isFull = true;
        return;
    }
    _messages.push_back({severity, _file, line, std::move(text)});
}

bool SceneFileLog::fatal(UInt32 line, std::string text) {
    add(SceneFileMessage::Fatal, line, std::move(text));
    return false;
}

void SceneFileLog::clear() {
    _messages.clear();
    _isFull = false;
}

std::string quotedForMessage(std::string_view text) {
    constexpr std::size_t LONGEST = 40;
    constexpr char DIGITS[] = "0123456789abcdef";
    std::string result = "\"";
    for (const char c : text.substr(0, std::min(text.size(), LONGEST))) {
        if (c >= ' ' && c < '\x7f') {
            result += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        result += "\\x";
        result += DIGITS[byte >> 4U];
        result += DIGITS[byte & 15U];
    }
    return result + (text.size() > LONGEST ? "...\"" : "\"");
}

} // namespace osg
