#include "Documents.h"

#include "CapturedOutput.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationUnit.h"

#include <QString>
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <locale>
#include <regex>
#include <sstream>
#include <stdlib.h>

namespace ka_test {

namespace {

void put(std::ostream& out, const kaControlPoint2D& point) {
    out << " at " << point.getPosition()[0] << ' ' << point.getPosition()[1] << " modes "
        << point.getTangentType() << ' ' << point.getTangentLengthMode();
    for (const kaControlPoint2D* handle : {point.getInTangent(), point.getOutTangent()})
        if (handle)
            out << " handle " << handle->getPosition()[0] << ' ' << handle->getPosition()[1];
}

void put(std::ostream& out, const kaAnimationCurve2D& curve) {
    out << " field " << curve.getField() << " colour " << curve.getColor()[0] << ' ' << curve.getColor()[1]
        << ' ' << curve.getColor()[2];
}

void put(std::ostream& out, const char* what, const std::set<kaUID>& ids) {
    out << ' ' << what;
    for (kaUID id : ids)
        out << ' ' << id;
}

void put(std::ostream& out, const kaAnimationObject& object) {
    out << object.getId() << " type " << object.getTypeID() << " parent " << object.getParent() << " '"
        << object.getName() << "' " << object.getBegin() << ' ' << object.getEnd() << ' '
        << object.getMinimum() << ' ' << object.getMaximum() << " flags " << object.isActive()
        << object.isRepeating() << object.isFlipped() << object.isMotionBlur() << object.isPlaying()
        << object.isTrimmed() << object.isSelected() << object.isLocked() << " children";
    for (kaUID id : object.getChildIDs())
        out << ' ' << id;
    put(out, "curves", object.getCurveIDs());
    put(out, "sequences", object.getSequenceIDs());
    if (object.getTypeID() == KA_TYPE_POINT)
        put(out, static_cast<const kaControlPoint2D&>(object));
    if (object.getTypeID() == KA_TYPE_CURVE)
        put(out, static_cast<const kaAnimationCurve2D&>(object));
    if (object.getTypeID() == KA_TYPE_UNIT)
        out << " node " << static_cast<const kaAnimationUnit&>(object).getNodeID();
    if (object.getTypeID() == KA_TYPE_STREAK)
        out << " number " << static_cast<const kaAnimationStreak&>(object).getIndex();
    out << '\n';
}

bool contains(const std::vector<kaUID>& ids, kaUID id) {
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

void expectNamedBothWays(const kaAnimationObject& object) {
    const kaAnimationManager* manager = kaAnimationManager::the();
    for (kaUID id : object.getChildIDs()) {
        const kaAnimationObject* child = manager->getObject(id);
        const bool isListedKey =
            child && child->getTypeID() == KA_TYPE_POINT && object.getTypeID() <= KA_TYPE_CURVE;
        if (child && !isListedKey) {
            EXPECT_EQ(child->getParent(), object.getId()) << "of child " << id;
        }
    }
    const kaAnimationObject* parent = object.getParentObject();
    if (parent) {
        EXPECT_TRUE(contains(parent->getChildIDs(), object.getId()))
            << parent->getId() << " does not list its child " << object.getId();
    }
}

void expectOutsideItself(const kaAnimationObject& object) {
    const kaAnimationObject* ancestor = object.getParentObject();
    for (unsigned int level = 0; ancestor && level <= KA_MAX_DEPTH; ++level) {
        ASSERT_NE(ancestor, &object);
        ancestor = ancestor->getParentObject();
    }
    EXPECT_EQ(ancestor, nullptr) << "above " << object.getId();
}

} // namespace

std::string documentOf(const std::string& elements) {
    return "<!DOCTYPE ORVA>\n<AnimationPool objects=\"1\">\n" + elements + "</AnimationPool>\n";
}

std::string pointElement(const std::string& id, float x, float y) {
    std::ostringstream at;
    at.imbue(std::locale::classic());
    at << x << ' ' << y;
    return " <point id=\"" + id + "\" typeID=\"1\" tangentType=\"16\" tangentLengthMode=\"64\"><position>" +
           at.str() + "</position><inTangent>" + at.str() + "</inTangent><outTangent>" + at.str() +
           "</outTangent></point>\n";
}

std::string containerElement(const std::string& tag, int typeID, const std::string& id,
                             const std::string& attributes, const std::vector<std::string>& references) {
    std::string element =
        " <" + tag + " id=\"" + id + "\" typeID=\"" + std::to_string(typeID) + "\" " + attributes + ">";
    for (const std::string& reference : references)
        element += "<ref id=\"" + reference + "\"/>";
    return element + "</" + tag + ">\n";
}

bool load(const std::string& latin1) {
    const CapturedOutput swallowed;
    return kaAnimationManager::the()->loadAnimations(
        QString::fromLatin1(latin1.data(), static_cast<int>(latin1.size())), false);
}

std::string saved() {
    const CapturedOutput swallowed;
    const QByteArray latin1 = kaAnimationManager::the()->createAnimationXML().toLatin1();
    return std::string(latin1.constData(), static_cast<std::size_t>(latin1.size()));
}

std::string stateOfRegistry() {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.precision(9);
    for (const auto& [id, field] : kaAnimationManager::the()->getFields())
        out << id << " field " << field->fcID << ' ' << field->nodeID << " '" << field->name << "' '"
            << field->attribute << "' " << field->value << ' ' << field->valuePos << ' ' << field->dirty
            << '\n';
    for (const auto& [id, object] : kaAnimationManager::the()->getObjects()) {
        EXPECT_EQ(id, object->getId());
        put(out, *object);
    }
    return out.str();
}

std::string withSortedAttributes(const std::string& xml) {
    static const std::regex attribute(R"re( ([A-Za-z]+="[^"]*"))re");
    std::istringstream lines(xml);
    std::string result;
    for (std::string line; std::getline(lines, line); result += line + '\n') {
        std::vector<std::string> attributes{
            std::sregex_token_iterator(line.begin(), line.end(), attribute, 1), {}};
        std::sort(attributes.begin(), attributes.end());
        for (const std::string& text : attributes) {
            const std::size_t at = line.find(' ' + text);
            line.erase(at, text.size() + 1);
        }
        for (const std::string& text : attributes)
            line += '|' + text;
    }
    return result;
}

void expectSoundRegistry() {
    kaAnimationManager* manager = kaAnimationManager::the();
    for (const auto& entry : manager->getObjects()) {
        expectNamedBothWays(*entry.second);
        expectOutsideItself(*entry.second);
    }
    manager->destroyAllObjects(true);
    EXPECT_LE(manager->getObjects().size(), 1U);
}

std::filesystem::path testFile(const std::string& name) {
    return std::filesystem::path(KA_TEST_FILES) / name;
}

} // namespace ka_test
