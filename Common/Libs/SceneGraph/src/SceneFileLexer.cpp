#include "SceneFileLexer.h"

#include <algorithm>
#include <array>

namespace osg {

namespace {

bool isSeparator(char c) {
    return c == ' ' || c == ',' || (c >= '\t' && c <= '\r');
}

bool isSpecial(char c) {
    constexpr std::string_view SPECIAL = "\"#',.[]\\{}";
    return SPECIAL.find(c) != std::string_view::npos;
}

/// Control characters stand in strings only.
bool isIdChar(char c) {
    return !isSpecial(c) && static_cast<unsigned char>(c) > ' ' && c != '\x7f';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool startsNumber(char c) {
    return isDigit(c) || c == '+' || c == '-' || c == '.';
}

constexpr std::array<std::string_view, 14> RESERVED = {
    "DEF",     "USE",      "IS",           "ROUTE", "TO",   "PROTO", "EXTERNPROTO",
    "eventIn", "eventOut", "exposedField", "field", "NULL", "TRUE",  "FALSE"};

} // namespace

SceneFileLexer::SceneFileLexer(std::string_view text) : _text(text) {
    advance();
}

SceneFileLexer::Token SceneFileLexer::next() {
    const Token token = _token;
    advance();
    return token;
}

void SceneFileLexer::skipSeparators() {
    while (_position < _text.size()) {
        const char c = _text[_position];
        if (c == '#') {
            _position = std::min(_text.find('\n', _position), _text.size());
            continue;
        }
        if (!isSeparator(c))
            return;
        _line += c == '\n' ? 1 : 0;
        ++_position;
    }
}

std::size_t SceneFileLexer::endOfRun(std::size_t from) const {
    while (from < _text.size() && (isIdChar(_text[from]) || _text[from] == '.'))
        ++from;
    return from;
}

void SceneFileLexer::scanString() {
    const std::size_t start = ++_position;
    while (_position < _text.size() && _text[_position] != '"') {
        if (_text[_position] == '\\' && _position + 1 < _text.size())
            ++_position;
        _line += _text[_position] == '\n' ? 1 : 0;
        ++_position;
    }
    _token.text = _text.substr(start, _position - start);
    _token.kind = _position < _text.size() ? Kind::String : Kind::Unfinished;
    _position = std::min(_position + 1, _text.size());
}

void SceneFileLexer::advance() {
    skipSeparators();
    _token = {Kind::End, {}, _line};
    if (_position == _text.size())
        return;
    const char c = _text[_position];
    if (c == '"') {
        scanString();
        return;
    }
    std::size_t end = _position + 1;
    if (startsNumber(c)) {
        _token.kind = Kind::Number;
        end = endOfRun(end);
    } else if (isIdChar(c)) {
        _token.kind = Kind::Id;
        while (end < _text.size() && isIdChar(_text[end]))
            ++end;
    } else {
        constexpr std::string_view BRACKETS = "{}[]";
        constexpr Kind KINDS[] = {Kind::OpenBrace, Kind::CloseBrace, Kind::OpenBracket, Kind::CloseBracket};
        const std::size_t bracket = BRACKETS.find(c);
        _token.kind = bracket == std::string_view::npos ? Kind::Stray : KINDS[bracket];
    }
    _token.text = _text.substr(_position, end - _position);
    _position = end;
}

std::string SceneFileLexer::unescape(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape =
            text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == '"' || text[i + 1] == '\\');
        result += text[isEscape ? ++i : i];
    }
    return result;
}

void SceneFileLexer::appendQuoted(std::string_view text, std::string& out) {
    out += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    out += '"';
}

bool SceneFileLexer::isLegalId(std::string_view text) {
    if (text.empty() || startsNumber(text.front()) || !std::all_of(text.begin(), text.end(), isIdChar))
        return false;
    const std::string_view head = text.substr(0, 2); // SFVec3f and the like
    return head != "SF" && head != "MF" &&
           std::find(RESERVED.begin(), RESERVED.end(), text) == RESERVED.end();
}

bool SceneFileLexer::isWord(std::string_view text, std::string_view upperCase) {
    const auto same = [](char a, char b) {
        return (a >= 'a' && a <= 'z' ? static_cast<char>(a - 'a' + 'A') : a) == b;
    };
    return text.size() == upperCase.size() && std::equal(text.begin(), text.end(), upperCase.begin(), same);
}

} // namespace osg
