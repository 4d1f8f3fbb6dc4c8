#pragma once

#include <kaMotion/DocumentOutline.h>
#include <kaMotion/Finding.h>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Reads an animation document element by element, each judged by itself: attributes that do not parse,
/// unknown tags, a count that disagrees. The document is never in memory as a whole.
/// @param path      the file, UTF-8.
/// @param outline   what it holds; as far as reading came where it is not well-formed.
/// @param findings  gets what is wrong, in document order.
/// @throws Failure (Unreadable) when there is no reading it at all, an empty file included.
void readOutline(const std::string& path, DocumentOutline& outline, FindingList& findings);

} // namespace ka::motion
#pragma GCC visibility pop
