#include <QString>
#include <QVector>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <kaMotion/Text.h>
#include <vector>

namespace ka::motion {

namespace {

/// Invalid bytes become U+FFFD.
QVector<uint> charactersOf(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size())).toUcs4();
}

/// The first `size` bytes, or up to three less so as not to end within a character.
std::string_view beginningOf(std::string_view utf8, std::size_t size) {
    if (utf8.size() <= size)
        return utf8;
    const auto continues = [utf8](std::size_t at) {
        return (static_cast<unsigned char>(utf8[at]) & 0xC0U) == 0x80U;
    };
    for (int i = 0; i < 3 && size > 0 && continues(size); ++i)
        --size;
    return utf8.substr(0, size);
}

std::string utf8Of(const std::vector<uint>& characters) {
    return QString::fromUcs4(characters.data(), static_cast<int>(characters.size())).toStdString();
}

bool isUnprintable(uint character) {
    struct Range {
        uint first, last;
    };
    // Joiners (200C, 200D) are part of words and emblems.
    static constexpr Range ranges[] = {{0x00, 0x1F},     // C0 controls
                                       {0x7F, 0x9F},     // DEL and the C1 controls
                                       {0xAD, 0xAD},     // soft hyphen
                                       {0x61C, 0x61C},   // a mark of direction
                                       {0x180E, 0x180E}, // a separator of no width
                                       {0x200B, 0x200B}, // a blank of no width
                                       {0x200E, 0x200F}, // marks of direction
                                       {0x2028, 0x202E}, // line and paragraph, embeddings and overrides
                                       {0x2060, 0x206F}, // invisible operators, isolates, old format controls
                                       {0xFEFF, 0xFEFF}, // byte order mark
                                       {0xFFF9, 0xFFFB}, // annotations
                                       {0xE0000, 0xE007F}}; // tags
    return std::any_of(std::begin(ranges), std::end(ranges), [character](const Range& range) {
        return character >= range.first && character <= range.last;
    });
}

std::size_t bytesIn(uint character) {
    return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
}

/// Whether it goes with the character before it: accents, signs of vowels, selectors of a form, joiners.
bool isContinuation(uint character) {
    const QChar::Category category = QChar::category(character);
    const bool isSkinTone = character >= 0x1F3FB && character <= 0x1F3FF;
    return category == QChar::Mark_NonSpacing || category == QChar::Mark_SpacingCombining ||
           category == QChar::Mark_Enclosing || character == 0x200C || character == 0x200D || isSkinTone;
}

bool isHalfOfFlag(uint character) {
    return character >= 0x1F1E6 && character <= 0x1F1FF;
}

/// Whether what a reader sees as one character goes on at `place`.
bool isWithinCharacter(const std::vector<uint>& line, std::size_t place) {
    if (isContinuation(line[place]) || line[place - 1] == 0x200D)
        return true;
    std::size_t halves = 0;
    while (halves < place && isHalfOfFlag(line[place - 1 - halves]))
        ++halves;
    return isHalfOfFlag(line[place]) && halves % 2 == 1;
}

/// How many of the characters fit into `limit` bytes without a cut through what a reader sees as one; one
/// that is longer than half of them is cut all the same.
std::size_t fitting(const std::vector<uint>& line, std::size_t limit) {
    std::size_t bytes = 0, count = 0;
    while (count < line.size() && bytes + bytesIn(line[count]) <= limit)
        bytes += bytesIn(line[count++]);
    if (count == line.size())
        return count;
    std::size_t whole = count;
    while (whole > count / 2 && whole > 0 && isWithinCharacter(line, whole))
        --whole;
    return whole > count / 2 ? whole : count;
}

} // namespace

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
    // Enough for `limit` bytes of characters with a few between them that are not printed.
    const std::string_view begin = beginningOf(text, limit * 4);
    const QVector<uint> characters = charactersOf(begin);
    std::vector<uint> line;
    for (const uint character : characters) {
        if (!isUnprintable(character))
            line.push_back(character);
        else if (!line.empty() && line.back() != ' ')
            line.push_back(' ');
    }
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
    const std::size_t kept = fitting(line, limit);
    const bool isCut = kept < line.size() || begin.size() < text.size();
    line.resize(kept);
    return utf8Of(line) + (isCut ? "..." : "");
}

std::string printedPath(std::string_view path) {
    constexpr std::size_t longest = 4096; // that a path can be
    return oneLine(path, longest);
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

} // namespace ka::motion
