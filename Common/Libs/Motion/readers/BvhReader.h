#pragma once

#include <kaMotion/KeyBudget.h>
#include <string>
#include <string_view>

namespace ka::motion {

/// Reads a BVH motion-capture file, text of a hierarchy followed by one line of channel values per frame.
///
/// A joint's rotation channels become angles in the order the file lists them; its position channels replace
/// the offset on their axes. End sites become nodes without channels, named after their joint with "_End".
/// The motion is one take named `take`, with a key per frame.
/// @param text  the whole file.
/// @param name  the file as the user named it, for messages.
/// @param budget  keys that the motion may have; more are refused.
/// @throws Failure (Unreadable) with "name:line:column: what is wrong". Numbers of the motion may be "nan" or
/// "inf":
///         they are left for `checkMotion` to find.
/// Cost: linear in the text, whatever counts the file states.
Motion readBvh(std::string_view text, const std::string& name, const std::string& take,
               KeyBudget budget = KeyBudget());

} // namespace ka::motion
