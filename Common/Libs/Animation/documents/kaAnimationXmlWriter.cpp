#include "kaAnimationXmlWriter.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaAnimationXmlNumber.h"
#include "kaAnimationXmlOutput.h"
#include "kaControlPoint2D.h"
#include "kaObjectRegistry.h"

#include <string>

namespace {

using kaAnimationXmlNumber::Text;

const char* flag(bool value) {
    return value ? "1" : "0";
}

/// Signed decimal, as the small enumerations are written: a value that no `int` holds comes out negative.
std::string signedText(unsigned int value) {
    return std::to_string(static_cast<int>(value));
}

/// Describes an element with what `content` describes. Not a guard that ends the element as its scope is
/// left: ending writes, and what a destructor cannot write ends the process.
template <class Content>
void element(kaAnimationXmlOutput& output, const char* tag, Content&& content) {
    output.beginElement(tag);
    content();
    output.endElement();
}

} // namespace

void kaAnimationXmlWriter::identity(const kaAnimationObject& object) {
    _output.attribute("id", Text(object.getId()));
    _output.attribute("typeID", Text(static_cast<kaUID>(object.getTypeID())));
}

void kaAnimationXmlWriter::flags(const kaAnimationObject& object) {
    _output.attribute("active", flag(object.isActive()));
    _output.attribute("repeating", flag(object.isRepeating()));
    _output.attribute("flipped", flag(object.isFlipped()));
    _output.attribute("motionBlur", flag(object.isMotionBlur()));
}

void kaAnimationXmlWriter::place(const char* tag, const kaControlPoint2D& point) {
    element(_output, tag, [&] { _output.text(Text(point.getPosition()[0], point.getPosition()[1])); });
}

void kaAnimationXmlWriter::reference(const char* tag, const kaAnimationObject& object) {
    element(_output, tag, [&] { _output.attribute("id", Text(object.getId())); });
}

void kaAnimationXmlWriter::field(const kaAnimationField* field) {
    element(_output, "field", [&] {
        if (!field)
            return;
        _output.attribute("id", Text(field->getId()));
        _output.attribute("typeID", "-1");
        _output.attribute("fcID", Text(field->fcID));
        _output.attribute("name", field->name);
        _output.attribute("attribute", field->attribute);
        _output.attribute("value", Text(field->value));
        _output.attribute("valuePos", Text(static_cast<kaUID>(field->valuePos)));
        _output.attribute("dirty", flag(field->dirty));
    });
}

void kaAnimationXmlWriter::point(const kaControlPoint2D* point) {
    element(_output, "point", [&] {
        if (!point)
            return;
        identity(*point);
        _output.attribute("tangentType", signedText(point->getTangentType()));
        _output.attribute("tangentLengthMode", signedText(point->getTangentLengthMode()));
        place("position", *point);
        place("inTangent", point->getInTangent() ? *point->getInTangent() : *point);
        place("outTangent", point->getOutTangent() ? *point->getOutTangent() : *point);
    });
}

void kaAnimationXmlWriter::curve(const kaAnimationCurve2D* curve) {
    element(_output, "curve", [&] {
        const kaAnimationField* field =
            curve ? kaObjectRegistry::the().findField(curve->getField()) : nullptr;
        if (!field)
            return;
        identity(*curve);
        _output.attribute("name", curve->getName());
        _output.attribute("field", Text(field->getId()));
        flags(*curve);
        const osg::NodePtr node = curve->getParentOSGNode();
        const kaUID nodeID = node == osg::NullFC ? 0 : node.getFieldContainerId();
        _output.attribute("parentNodeID", Text(nodeID));
        for (const auto& entry : curve->getPoints())
            reference("point", *entry.second);
    });
}

void kaAnimationXmlWriter::block(const kaAnimationUnit* unit) {
    element(_output, "block", [&] {
        if (!unit)
            return;
        identity(*unit);
        _output.attribute("name", unit->getName());
        flags(*unit);
        for (const kaAnimationCurve2D* curve : unit->getCurves())
            reference("block", *curve);
    });
}

void kaAnimationXmlWriter::track(const kaAnimationStreak* streak) {
    element(_output, "track", [&] {
        if (!streak)
            return;
        identity(*streak);
        _output.attribute("name", streak->getName());
        _output.attribute("number", Text(static_cast<kaUID>(streak->getIndex())));
        flags(*streak);
        for (const kaAnimationObject* object : streak->getObjects())
            reference("obj", *object);
    });
}

void kaAnimationXmlWriter::clip(const kaAnimationStrip* strip) {
    element(_output, "clip", [&] {
        if (!strip)
            return;
        identity(*strip);
        _output.attribute("name", strip->getName());
        flags(*strip);
        for (const auto& entry : strip->getStreaks())
            reference("track", *entry.second);
    });
}

void kaAnimationXmlWriter::sequence(const kaAnimationSequence* sequence) {
    element(_output, "field", [&] {
        if (!sequence)
            return;
        identity(*sequence);
        _output.attribute("name", sequence->getName());
        _output.attribute("active", flag(sequence->isActive()));
        _output.attribute("begin", Text(sequence->getBegin()));
        _output.attribute("end", Text(sequence->getEnd()));
    });
}

/// The order of the document.
void kaAnimationXmlWriter::pool() {
    static_assert(KA_TYPE_COUNT == 7,
                  "every class is written: six, and the base, of which no object is made");
    const kaObjectRegistry& registry = kaObjectRegistry::the();
    element(_output, "AnimationPool", [&] {
        _output.attribute("objects", Text(static_cast<kaUID>(registry.size() + registry.fieldCount())));
        for (const auto& entry : registry.fields())
            field(entry.second);
        for (const auto& entry : registry.ofType(kaControlPoint2D::_typeID))
            point(static_cast<const kaControlPoint2D*>(entry.second));
        for (const auto& entry : registry.byType(kaAnimationCurve2D::_typeID))
            curve(static_cast<const kaAnimationCurve2D*>(entry.second));
        blocks();
        for (const auto& entry : registry.byType(kaAnimationSequence::_typeID))
            sequence(static_cast<const kaAnimationSequence*>(entry.second));
        clips(true);
        for (const auto& entry : registry.byType(kaAnimationStreak::_typeID))
            track(static_cast<const kaAnimationStreak*>(entry.second));
        clips(false);
    });
}

void kaAnimationXmlWriter::blocks() {
    for (const auto& entry : kaObjectRegistry::the().byType(kaAnimationUnit::_typeID))
        if (!entry.second->isInternal())
            block(static_cast<const kaAnimationUnit*>(entry.second));
}

void kaAnimationXmlWriter::clips(bool nested) {
    for (const auto& entry : kaObjectRegistry::the().byType(kaAnimationStrip::_typeID))
        if ((entry.second->getParentObject() != nullptr) == nested)
            clip(static_cast<const kaAnimationStrip*>(entry.second));
}
