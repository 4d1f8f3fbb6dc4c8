#pragma once

#include "TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <vector>

namespace ka_test {

/// A document around these elements, as the writer frames it, but for the count.
std::string documentOf(const std::string& elements);

/// A point element; its handles stand on the key.
std::string pointElement(const std::string& id, float x, float y);

/// An element of that tag and type with these references.
std::string containerElement(const std::string& tag, int typeID, const std::string& id,
                             const std::string& attributes, const std::vector<std::string>& references);

/// Loads a document from text; what it prints is swallowed.
bool load(const std::string& latin1);

/// The registry as a document, in Latin-1; what it prints is swallowed.
std::string saved();

/// Everything that can be asked of the registry's objects and fields, one a line, in ascending id order.
std::string stateOfRegistry();

/// The text with the attributes of every tag in alphabetical order.
std::string withSortedAttributes(const std::string& xml);

/// Fails the test unless parents and children name each other (a key may be listed by curves that it no
/// longer belongs to), no object contains itself, and every object can be destroyed once.
void expectSoundRegistry();

/// A file of this folder.
std::filesystem::path testFile(const std::string& name);

} // namespace ka_test
