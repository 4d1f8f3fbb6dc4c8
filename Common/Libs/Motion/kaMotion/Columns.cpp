#include <algorithm>
#include <kaMotion/Columns.h>

namespace ka::motion {

namespace {

/// Characters, not bytes.
std::size_t widthOf(const std::string& utf8) {
    return static_cast<std::size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

} // namespace

std::string Columns::text(std::size_t indent) const {
    std::vector<std::size_t> widths;
    for (const auto& line : _lines) {
        widths.resize(std::max(widths.size(), line.size()));
        for (std::size_t i = 0; i < line.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(line[i]));
    }
    std::string text;
    for (const auto& line : _lines) {
        std::string row(indent, ' ');
        for (std::size_t i = 0; i < line.size(); ++i) {
            const std::string blanks(widths[i] - widthOf(line[i]), ' ');
            const bool isRight = i < _alignment.size() && _alignment[i] == 'r';
            row += (i > 0 ? "  " : "") + (isRight ? blanks + line[i] : line[i] + blanks);
        }
        row.erase(row.find_last_not_of(' ') + 1);
        text += row + "\n";
    }
    return text;
}

} // namespace ka::motion
