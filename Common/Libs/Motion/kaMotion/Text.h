#pragma once

#include <optional>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)
namespace ka::motion {

/// `value` as C's `%.<digits>g` prints it in the "C" locale, whatever locale is set.
std::string formatNumber(double value, int digits = 9);

/// The double nearest to `formatNumber(value)`. Gives JSON the digits that a float really has.
double shortened(double value);

/// The number that the whole of `text` spells, in the "C" locale; "nan" and "inf" count as numbers, and a
/// value too large for a double is none.
std::optional<double> parseNumber(std::string_view text);

/// "1 key", "2 keys".
std::string counted(std::size_t count, const std::string& noun);

/// `text` of unknown origin, a name of a file or of something in it, fit to be printed: one line of UTF-8
/// without anything that a terminal would take for a command or that would turn other text around.
///
/// Control characters (C0, DEL, C1), line and paragraph separators, marks of direction (embeddings,
/// overrides, isolates), invisible fillers and tags become one blank for each row of them, bytes that are no
/// UTF-8 the replacement character U+FFFD. Every message goes through here; JSON and CSV hold texts as they
/// are.
/// @param text  of any origin, any bytes.
/// @param limit  bytes at most, before the "..." of a text that is cut. It is cut between characters as a
///               reader sees them: no accent, no part of an emblem goes alone.
std::string oneLine(std::string_view text, std::size_t limit = 200);

/// oneLine() for the path of a file, which would tell little without its end.
std::string printedPath(std::string_view path);

/// Names inside the animation are Latin-1 bytes, files and terminals speak UTF-8.
/// @param text  UTF-8.
/// @param lossy  set when a character has no Latin-1 form (it becomes '?'); never cleared.
std::string latin1FromUtf8(std::string_view text, bool& lossy);
std::string utf8FromLatin1(std::string_view text);

/// Letters of ASCII in the other case, in every locale: Turkish, for one, has another capital of "i".
constexpr char lowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char upperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// The last suffix of a file name in lower case, without its dot; empty when there is none.
std::string extensionOf(const std::string& path);

} // namespace ka::motion
#pragma GCC visibility pop
