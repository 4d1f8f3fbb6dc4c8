#pragma once

#include "References.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ka::python {

// What several groups of functions take from Python or hand on for it, checked in one place.

using Path = std::filesystem::path;
using OptionalObjects = std::optional<std::vector<ObjectReference>>;
using OptionalFrame = std::optional<double>;

/// The objects that are meant. @throws GoneError for one that is no more.
std::vector<kaAnimationObject*> objectsOf(const std::vector<ObjectReference>& references);

/// The same; all that plays where none were given.
std::vector<kaAnimationObject*> objectsOrPlayable(const SessionPtr& session, const OptionalObjects& objects);

/// The objects of one class.
template <class Object>
std::vector<Object*> objectsOf(const std::vector<ReferenceTo<Object>>& references) {
    std::vector<Object*> objects;
    objects.reserve(references.size());
    for (const ReferenceTo<Object>& reference : references)
        objects.push_back(&reference.get());
    return objects;
}

/// A begin and an end, those of the objects where they were not given.
/// @throws ValueError for what is not finite, UsageError for a begin behind the end.
std::pair<float, float> rangeOf(const std::vector<kaAnimationObject*>& objects, OptionalFrame begin,
                                OptionalFrame end);

/// @throws ValueError unless the number is above 0 and below a million.
double positive(double number, const char* what);

/// Replaces a file as a whole or not at all. @throws OutputError.
void writeFile(const Path& path, const std::string& bytes);

} // namespace ka::python
