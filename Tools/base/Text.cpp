#include "base/Text.h"

#include <QString>
#include <algorithm>
#include <charconv>
#include <filesystem>

namespace ka::tools {

std::string formatNumber(double value, int digits) {
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits);
    return std::string(buffer, end.ptr);
}

double shortened(double value) {
    return parseNumber(formatNumber(value)).value_or(value);
}

std::optional<double> parseNumber(std::string_view text) {
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = !text.empty() && end == text.data() + text.size();
    if (!whole)
        return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // Too small to tell from zero is a fine zero; the largest double is at least 1e308.
        const bool tiny = text.find("e-") != text.npos || text.find("E-") != text.npos;
        return tiny ? std::optional<double>(0.0) : std::nullopt;
    }
    return error == std::errc() ? std::optional<double>(value) : std::nullopt;
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string oneLine(std::string_view text, std::size_t limit) {
    std::string line;
    for (const char c : text.substr(0, limit)) {
        const bool control = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
        if (!control)
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
    return text.size() > limit ? line + "..." : line;
}

std::string latin1FromUtf8(std::string_view text, bool& lossy) {
    const QString wide = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    lossy = lossy || std::any_of(wide.begin(), wide.end(), [](QChar c) { return c.unicode() > 0xFF; });
    return wide.toLatin1().toStdString();
}

std::string utf8FromLatin1(std::string_view text) {
    return QString::fromLatin1(text.data(), static_cast<int>(text.size())).toStdString();
}

std::string extensionOf(const std::string& path) {
    std::string suffix = std::filesystem::path(path).extension().string();
    suffix.erase(0, 1);
    for (char& c : suffix)
        c = lowerCase(c);
    return suffix;
}

} // namespace ka::tools
