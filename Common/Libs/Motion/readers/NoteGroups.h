#pragma once

#include <string>
#include <vector>

namespace ka::motion {

/// Makes one line of all notes of a kind: those that differ in nothing but names, in quotation marks, and numbers. The
/// line is the first of them, with how many more there are. Order stays.
std::vector<std::string> groupedNotes(const std::vector<std::string>& notes);

} // namespace ka::motion
