#include "readers/NoteGroups.h"

#include <unordered_map>

namespace ka::motion {

namespace {

/// A note without what tells it from others of its kind.
std::string kindOf(const std::string& note) {
    std::string kind;
    for (std::size_t i = 0; i < note.size(); ++i) {
        const char c = note[i];
        const std::size_t end = c == '\'' ? note.find('\'', i + 1) : std::string::npos;
        if (end != std::string::npos) {
            kind += "''";
            i = end;
        } else if (c >= '0' && c <= '9') {
            if (kind.empty() || kind.back() != '0')
                kind += '0';
        } else {
            kind += c;
        }
    }
    return kind;
}

} // namespace

std::vector<std::string> groupedNotes(const std::vector<std::string>& notes) {
    std::unordered_map<std::string, std::size_t> places;
    std::vector<std::string> lines;
    std::vector<std::size_t> counts;
    for (const std::string& note : notes) {
        const auto [entry, isNew] = places.try_emplace(kindOf(note), lines.size());
        if (isNew) {
            lines.push_back(note);
            counts.push_back(0);
        }
        ++counts[entry->second];
    }
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (counts[i] > 1)
            lines[i] += " (and " + std::to_string(counts[i] - 1) + " more of this kind)";
    return lines;
}

} // namespace ka::motion
