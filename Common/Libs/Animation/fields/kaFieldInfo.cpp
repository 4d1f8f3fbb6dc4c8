#include "kaFieldInfo.h"

#include "kaAnimationField.h"
#include "kaPlainOutput.h"

kaFieldInfo::ComponentLetter kaFieldInfo::componentLetter(char letter) {
    switch (letter) {
    case 'X':
    case 'R':
        return {true, 0, "ionX"};
    case 'Y':
    case 'G':
        return {true, 1, "ionY"};
    case 'Z':
    case 'B':
        return {true, 2, "ionZ"};
    default:
        return {false, 0, ""};
    }
}

std::string kaFieldInfo::fullAttributeName(const std::string& attribute) {
    for (const char* legacy : {"translateX", "translateY", "translateZ", "rotateX", "rotateY", "rotateZ"})
        if (attribute == legacy)
            return attribute.substr(0, attribute.size() - 2) + componentLetter(attribute.back()).ending;
    return attribute;
}

osg::Color3f kaFieldInfo::defaultColor(const kaAnimationField& field) {
    if (field.attribute.empty())
        return {0.0F, 0.0F, 0.0F};
    switch (field.attribute.back()) {
    case 'R':
    case 'X':
        return {0.898F, 0.298F, 0.298F};
    case 'G':
    case 'Y':
        return {0.298F, 0.898F, 0.298F};
    case 'B':
    case 'Z':
        return {0.4F, 0.624F, 0.816F};
    case 'A':
    case 'I':
    case 'W':
        return {0.898F, 0.827F, 0.298F};
    default:
        return {0.953F, 0.557F, 0.271F};
    }
}

void kaFieldInfo::print(const kaAnimationField* field) {
    if (!field)
        return;
    kaPlainOutput out;
    out << "Field Info:" << std::endl;
    out << "\tid " << field->getId() << std::endl;
    out << "\tname " << field->name << std::endl;
    out << "\tattribute " << field->attribute << std::endl;
    out << "\tfcID " << field->fcID << std::endl;
    out << "\tnodeID " << field->nodeID << std::endl;
    out << "\tvalue " << field->value << std::endl;
    out << "\tvaluePos " << field->valuePos << std::endl;
    out << "\tdirty " << field->dirty << std::endl;
}
