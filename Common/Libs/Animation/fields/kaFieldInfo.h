#pragma once

#include <OpenSG/OSGColor.h>
#include <string>

class kaAnimationField;

/// What the name of a field's attribute tells, and how a field is shown to people.
namespace kaFieldInfo {

/// The component that a letter at the end of an attribute names; none for other letters.
struct ComponentLetter {
    bool found;
    unsigned int component;
    const char* ending; ///< of the attributes "translation" and "rotation"
};
ComponentLetter componentLetter(char letter);

/// The attribute under the name that fields carry: "translateX" and "rotateX" are older spellings of
/// "translationX" and "rotationX", likewise for Y and Z; other names come back as they are.
std::string fullAttributeName(const std::string& attribute);

/// Colour in which a curve of this field is drawn, by the attribute's last letter; black for no letter.
osg::Color3f defaultColor(const kaAnimationField& field);

/// To standard output; nothing for null.
void print(const kaAnimationField* field);

} // namespace kaFieldInfo
