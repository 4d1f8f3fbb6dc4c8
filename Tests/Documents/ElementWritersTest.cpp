#include "Documents.h"
#include "RegistryFixture.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"

#include <QDomDocument>
#include <limits>
#include <string>

using namespace ka_test;

namespace {

class ElementWriters : public RegistryFixture {
  protected:
    static kaAnimationManager& manager() { return *kaAnimationManager::the(); }

    /// The element as text, its attributes in alphabetical order.
    std::string textOf(const QDomElement& element) {
        QDomDocument document;
        document.appendChild(document.importNode(element, true));
        return withSortedAttributes(document.toString(1).toLatin1().toStdString());
    }

    kaAnimationField* makeField(kaUID id) {
        kaAnimationField* field = manager().createField(id);
        field->name = "translation";
        field->attribute = "translationX";
        return field;
    }

    QDomDocument _document;
};

} // namespace

TEST_F(ElementWriters, AField) {
    kaAnimationField* field = makeField(7);
    field->fcID = 18446744073709551615ULL;
    field->value = 0.1F;
    field->valuePos = 2;
    EXPECT_EQ(textOf(manager().createFieldDomElement(_document, field)),
              withSortedAttributes(
                  "<field id=\"7\" typeID=\"-1\" fcID=\"18446744073709551615\" name=\"translation\" "
                  "attribute=\"translationX\" value=\"0.1\" valuePos=\"2\" dirty=\"1\"/>\n"));
}

TEST_F(ElementWriters, APointsCoordinatesHaveSixDecimals) {
    kaControlPoint2D* point = manager().createPoint2D(12.0F, 0.1F, 11);
    point->getInTangent()->setPosition(-1.5F, 1e6F);
    point->getOutTangent()->setPosition(0.0F, 2.0F);
    point->setTangentType(kaControlPoint2D::TANGENT_USER);
    point->setTangentLengthMode(kaControlPoint2D::LENGTH_FIXED);
    EXPECT_EQ(
        textOf(manager().createPointDomElement(_document, point)),
        withSortedAttributes("<point id=\"11\" typeID=\"1\" tangentType=\"16\" tangentLengthMode=\"32\">\n"
                             " <position>12.000000 0.100000</position>\n"
                             " <inTangent>-1.500000 1000000.000000</inTangent>\n"
                             " <outTangent>0.000000 2.000000</outTangent>\n"
                             "</point>\n"));
}

TEST_F(ElementWriters, APointWithoutHandlesWritesItsOwnPositionForThem) {
    kaControlPoint2D* point = manager().createPoint2D(3.0F, 4.0F, 11);
    manager().destroyPoint2D(point->getInTangent());
    manager().destroyPoint2D(point->getOutTangent());
    const QDomElement element = manager().createPointDomElement(_document, point);
    EXPECT_EQ(element.firstChildElement("inTangent").text().toStdString(), "3.000000 4.000000");
    EXPECT_EQ(element.firstChildElement("outTangent").text().toStdString(), "3.000000 4.000000");
}

TEST_F(ElementWriters, TangentModesAreSigned) {
    kaControlPoint2D* point = manager().createPoint2D(0.0F, 0.0F, 11);
    point->setTangentType(4294967295U);
    EXPECT_EQ(manager().createPointDomElement(_document, point).attribute("tangentType").toStdString(), "-1");
}

TEST_F(ElementWriters, ACoordinateThatIsNotFiniteIsWrittenAsPrintfWrites) {
    const float infinity = std::numeric_limits<float>::infinity();
    kaControlPoint2D* point = manager().createPoint2D(-infinity, std::numeric_limits<float>::quiet_NaN(), 11);
    const QDomElement element = manager().createPointDomElement(_document, point);
    EXPECT_EQ(element.firstChildElement("position").text().toStdString(), "-inf nan");
}

TEST_F(ElementWriters, ACurveListsItsKeysInOrderOfFrame) {
    kaAnimationCurve2D* curve = manager().createCurve2D(makeField(7), "translationX", 21, false);
    curve->addObject(manager().createPoint2D(25.0F, 1.0F, 11));
    curve->addObject(manager().createPoint2D(5.0F, 1.0F, 12));
    curve->setRepeating(true);
    EXPECT_EQ(
        textOf(manager().createCurveDomElement(_document, curve)),
        withSortedAttributes("<curve id=\"21\" typeID=\"2\" name=\"translationX\" field=\"7\" active=\"1\" "
                             "repeating=\"1\" flipped=\"0\" motionBlur=\"0\" parentNodeID=\"0\">\n"
                             " <point id=\"12\"/>\n"
                             " <point id=\"11\"/>\n"
                             "</curve>\n"));
}

TEST_F(ElementWriters, OfTwoKeysAtOneFrameOneIsListed) {
    kaAnimationCurve2D* curve = manager().createCurve2D(makeField(7), "curve", 21, false);
    curve->setPoints({manager().createPoint2D(5.0F, 1.0F, 11), manager().createPoint2D(5.0F, 2.0F, 12)});
    const QDomElement element = manager().createCurveDomElement(_document, curve);
    EXPECT_EQ(element.childNodes().count(), 1);
    EXPECT_EQ(element.firstChildElement().attribute("id").toStdString(), "11");
}

TEST_F(ElementWriters, ACurveWithoutItsFieldIsBare) {
    kaAnimationField* field = makeField(7);
    kaAnimationCurve2D* curve = manager().createCurve2D(field, "curve", 21, false);
    curve->addObject(manager().createPoint2D(1.0F, 1.0F, 11));
    manager().destroyField(field);
    EXPECT_EQ(textOf(manager().createCurveDomElement(_document, curve)), "<curve/>\n");
}

TEST_F(ElementWriters, ABlockListsItsCurvesInOrderOfId) {
    kaAnimationUnit* unit = manager().createUnit("Block", 31);
    unit->addObject(manager().createCurve2D(makeField(7), "second", 22, false));
    unit->addObject(manager().createCurve2D(makeField(8), "first", 21, false));
    unit->setActive(false);
    unit->setFlipped(true);
    EXPECT_EQ(
        textOf(manager().createBlockDomElement(_document, unit)),
        withSortedAttributes("<block id=\"31\" typeID=\"3\" name=\"Block\" active=\"0\" repeating=\"0\" "
                             "flipped=\"1\" motionBlur=\"0\">\n"
                             " <block id=\"21\"/>\n"
                             " <block id=\"22\"/>\n"
                             "</block>\n"));
}

TEST_F(ElementWriters, ATrackListsItsObjectsAsTheyStand) {
    kaAnimationStreak* streak = manager().createStreak("Track", 41);
    streak->setIndex(3);
    kaAnimationSequence* late = manager().createSequence("late", 61);
    late->setBegin(10.0F);
    late->setEnd(20.0F);
    kaAnimationSequence* early = manager().createSequence("early", 62);
    early->setBegin(0.0F);
    early->setEnd(5.0F);
    streak->addObject(late);
    streak->addObject(early);
    streak->setMotionBlur(true);
    EXPECT_EQ(textOf(manager().createTrackDomElement(_document, streak)),
              withSortedAttributes("<track id=\"41\" typeID=\"4\" name=\"Track\" number=\"3\" active=\"1\" "
                                   "repeating=\"0\" flipped=\"0\" motionBlur=\"1\">\n"
                                   " <obj id=\"62\"/>\n"
                                   " <obj id=\"61\"/>\n"
                                   "</track>\n"));
}

TEST_F(ElementWriters, AClipListsItsTracksByNumber) {
    kaAnimationStrip* strip = manager().createStrip("Clip", 51);
    kaAnimationStreak* first = manager().createStreak("first", 42);
    kaAnimationStreak* second = manager().createStreak("second", 41);
    strip->addObject(first);
    strip->addObject(second);
    EXPECT_EQ(textOf(manager().createClipDomElement(_document, strip)),
              withSortedAttributes("<clip id=\"51\" typeID=\"5\" name=\"Clip\" active=\"1\" repeating=\"0\" "
                                   "flipped=\"0\" motionBlur=\"0\">\n"
                                   " <track id=\"42\"/>\n"
                                   " <track id=\"41\"/>\n"
                                   "</clip>\n"));
}

TEST_F(ElementWriters, ASequenceHasTheTagOfAField) {
    kaAnimationSequence* sequence = manager().createSequence("door <opens>", 61);
    sequence->setBegin(12.5F);
    sequence->setEnd(1e6F);
    sequence->setActive(false);
    EXPECT_EQ(textOf(manager().createSequenceDomElement(_document, sequence)),
              withSortedAttributes("<field id=\"61\" typeID=\"6\" name=\"door &lt;opens>\" active=\"0\" "
                                   "begin=\"12.5\" end=\"1e+06\"/>\n"));
}

TEST_F(ElementWriters, NullGivesTheBareElement) {
    EXPECT_EQ(textOf(manager().createFieldDomElement(_document, nullptr)), "<field/>\n");
    EXPECT_EQ(textOf(manager().createPointDomElement(_document, nullptr)), "<point/>\n");
    EXPECT_EQ(textOf(manager().createCurveDomElement(_document, nullptr)), "<curve/>\n");
    EXPECT_EQ(textOf(manager().createBlockDomElement(_document, nullptr)), "<block/>\n");
    EXPECT_EQ(textOf(manager().createTrackDomElement(_document, nullptr)), "<track/>\n");
    EXPECT_EQ(textOf(manager().createClipDomElement(_document, nullptr)), "<clip/>\n");
    EXPECT_EQ(textOf(manager().createSequenceDomElement(_document, nullptr)), "<field/>\n");
}

TEST_F(ElementWriters, TheElementIsAttachedToNothing) {
    const QDomElement element = manager().createFieldDomElement(_document, makeField(7));
    EXPECT_TRUE(element.parentNode().isNull());
    EXPECT_TRUE(element.ownerDocument() == _document);
}
