#pragma once

#include <QString>
#include <kaMotion/DocumentOutline.h>
#include <string>

namespace ka::motion {

/// What is wrong with one attribute of an element, in words: that no reader knows it, that its value does not
/// parse, stands for nothing or gets lost; empty when it is fine.
std::string attributeFault(Kind kind, const QString& name, const QString& value);

/// What is wrong with a value that is to be an id; empty when it is fine.
/// @param id  set to what a reader makes of it, 0 where that is nothing.
std::string idFault(const QString& name, const QString& value, kaUID& id);

/// The same for the text of a key's position or handle, "12.000000 0.500000".
std::string placeFault(const QString& text, std::array<float, 2>& place);

/// The number that a reader takes for a small number: `otherwise` where the text does not parse.
unsigned int smallNumber(const QString& value, unsigned int otherwise);

/// The beginning of a text of the document, short enough for a message; with quotes around it.
std::string excerpt(const QString& text);
std::string quoted(const QString& text);

} // namespace ka::motion
