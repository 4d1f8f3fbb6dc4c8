#include "kaAnimationXmlOutput.h"

#include <QLatin1String>

namespace {

constexpr std::size_t PieceSize = std::size_t{1} << 18;

QString fromLatin1(std::string_view text) {
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

} // namespace

// DOM.

void kaAnimationXmlDomOutput::beginElement(const char* tag) {
    _open.push_back(_document.createElement(QLatin1String(tag)));
}

void kaAnimationXmlDomOutput::attribute(const char* name, std::string_view value) {
    _open.back().setAttribute(QLatin1String(name), fromLatin1(value));
}

void kaAnimationXmlDomOutput::text(std::string_view text) {
    _open.back().appendChild(_document.createTextNode(fromLatin1(text)));
}

void kaAnimationXmlDomOutput::endElement() {
    _ended = _open.back();
    _open.pop_back();
    if (!_open.empty())
        _open.back().appendChild(_ended);
}

// Text.

void kaAnimationXmlTextOutput::documentType(const char* name) {
    _buffer += "<!DOCTYPE ";
    _buffer += name;
    _buffer += ">\n";
}

void kaAnimationXmlTextOutput::beginElement(const char* tag) {
    if (_last == Last::StartTag)
        _buffer += ">\n";
    indent();
    _buffer += '<';
    _buffer += tag;
    _open.push_back(tag);
    _last = Last::StartTag;
}

void kaAnimationXmlTextOutput::attribute(const char* name, std::string_view value) {
    _buffer += ' ';
    _buffer += name;
    _buffer += "=\"";
    appendEscaped(value, true);
    _buffer += '"';
}

void kaAnimationXmlTextOutput::text(std::string_view text) {
    _buffer += '>';
    appendEscaped(text, false);
    _last = Last::Text;
}

void kaAnimationXmlTextOutput::endElement() {
    const char* tag = _open.back();
    _open.pop_back();
    if (_last == Last::StartTag) {
        _buffer += "/>\n";
    } else {
        if (_last == Last::Line)
            indent();
        _buffer += "</";
        _buffer += tag;
        _buffer += ">\n";
    }
    _last = Last::Line;
    if (_open.empty() || _buffer.size() >= PieceSize)
        flush();
}

/// White space other than the blank would come back from an attribute as blanks, so it goes in as numbers;
/// text keeps it, but for the carriage return, which every reader takes for a line's end.
void kaAnimationXmlTextOutput::appendEscaped(std::string_view text, bool isAttribute) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '<')
            _buffer += "&lt;";
        else if (c == '&')
            _buffer += "&amp;";
        else if (c == '"' && isAttribute)
            _buffer += "&quot;";
        else if (c == '>' && i >= 2 && text[i - 1] == ']' && text[i - 2] == ']')
            _buffer += "&gt;";
        else if (c == '\r')
            _buffer += "&#xd;";
        else if (c == '\n' && isAttribute)
            _buffer += "&#xa;";
        else if (c == '\t' && isAttribute)
            _buffer += "&#x9;";
        else
            _buffer += c;
    }
}

void kaAnimationXmlTextOutput::indent() {
    _buffer.append(_open.size(), ' ');
}

void kaAnimationXmlTextOutput::flush() {
    _sink(_buffer);
    _buffer.clear();
}
