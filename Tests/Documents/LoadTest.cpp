#include "CapturedOutput.h"
#include "Documents.h"
#include "RegistryFixture.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaAnimationUtils.h"

#include <QString>
#include <string>
#include <vector>

using namespace ka_test;

namespace {

class Loading : public RegistryFixture {
  protected:
    static kaAnimationManager& manager() { return *kaAnimationManager::the(); }
};

using Ids = std::vector<kaUID>;

} // namespace

TEST_F(Loading, TheExampleIsReadAsItStands) {
    ASSERT_TRUE(load(contentOf(testFile("example.xml"))));
    EXPECT_EQ(manager().getObjects().size(), 6U);
    ASSERT_EQ(manager().getFields().size(), 1U);

    const kaAnimationField* field = manager().getField(7);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->fcID, 412U);
    EXPECT_EQ(field->name, "translation");
    EXPECT_EQ(field->attribute, "X");
    EXPECT_FALSE(field->dirty);

    const kaAnimationCurve2D* curve = manager().getCurve2D(21);
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(curve->getName(), "translationX");
    EXPECT_EQ(curve->getField(), 7U);
    EXPECT_EQ(curve->getChildIDs(), (Ids{11, 12}));
    EXPECT_EQ(curve->getBegin(), 0.0F);
    EXPECT_EQ(curve->getEnd(), 25.0F);
    EXPECT_EQ(curve->getMaximum(), 10.0F);
    EXPECT_FALSE(curve->isRepeating());

    // Flat handles reach half way to the only neighbour, whatever the document says.
    EXPECT_EQ(manager().getPoint2D(11)->getOutTangent()->getPosition(), osg::Pnt2f(12.5F, 0.0F));
    EXPECT_EQ(manager().getPoint2D(12)->getInTangent()->getPosition(), osg::Pnt2f(12.5F, 10.0F));

    EXPECT_EQ(manager().getUnit(31)->getChildIDs(), (Ids{21}));
    EXPECT_EQ(manager().getStreak(41)->getChildIDs(), (Ids{31}));
    EXPECT_EQ(manager().getStrip(51)->getChildIDs(), (Ids{41}));
    EXPECT_EQ(manager().getStrip(51)->getCurveIDs(), (std::set<kaUID>{21}));
    EXPECT_EQ(manager().getStrip(51)->getEnd(), 25.0F);
    EXPECT_EQ(manager().getObject(31)->getParent(), 41U);
}

TEST_F(Loading, NothingIsRefusedQuietly) {
    const CapturedOutput output;
    EXPECT_FALSE(manager().loadAnimations(QString(), false));
    EXPECT_FALSE(manager().loadAnimations(QString(), true));
    EXPECT_FALSE(manager().loadAnimations("/no/such/file.xml", true));
    EXPECT_FALSE(manager().loadAnimations("<AnimationPool objects=\"1\">", false));
    EXPECT_EQ(output.text(), "");
}

TEST_F(Loading, AFileIsReadByItsName) {
    EXPECT_TRUE(manager().loadAnimations(QString::fromStdString(testFile("example.xml").string()), true));
    EXPECT_EQ(manager().getObjects().size(), 6U);
}

TEST_F(Loading, AFileOverTheLimitIsRefused) {
    const QString file = QString::fromStdString(testFile("example.xml").string());
    const auto limit = kaAnimationManager::getMaximumFileSize();
    EXPECT_EQ(limit, 1ULL << 30);
    kaAnimationManager::setMaximumFileSize(100);
    EXPECT_FALSE(manager().loadAnimations(file, true));
    EXPECT_TRUE(manager().getObjects().empty());
    kaAnimationManager::setMaximumFileSize(limit);
    EXPECT_TRUE(manager().loadAnimations(file, true));
}

TEST_F(Loading, TheRootsTagAndDocumentTypeDoNotMatter) {
    EXPECT_TRUE(load("<anything><x id=\"31\" typeID=\"3\"/></anything>"));
    EXPECT_NE(manager().getUnit(31), nullptr);
}

TEST_F(Loading, ACommentBetweenElementsIsNothing) {
    EXPECT_TRUE(
        load(documentOf("<block id=\"31\" typeID=\"3\"/><!-- note -->text<block id=\"32\" typeID=\"3\"/>")));
    EXPECT_EQ(manager().getObjects().size(), 2U);
}

TEST_F(Loading, ASequenceIsToldFromAFieldByItsType) {
    EXPECT_TRUE(
        load(documentOf("<field id=\"61\" typeID=\"6\" name=\"door\"/><field id=\"7\" typeID=\"-1\"/>")));
    EXPECT_NE(manager().getSequence(61), nullptr);
    EXPECT_EQ(manager().getField(61), nullptr);
    EXPECT_NE(manager().getField(7), nullptr);
}

TEST_F(Loading, UnknownTypesAndNoTypeMakeNothing) {
    EXPECT_TRUE(
        load(documentOf("<a id=\"1\" typeID=\"0\"/><a id=\"2\" typeID=\"7\"/><a id=\"3\" typeID=\"-2\"/>"
                        "<a id=\"4\"/><a id=\"5\" typeID=\"\"/>")));
    EXPECT_TRUE(manager().getObjects().empty());
    EXPECT_TRUE(manager().getFields().empty());
}

TEST_F(Loading, ATypeThatIsNoNumberCountsAsAField) {
    EXPECT_TRUE(load(documentOf("<a id=\"7\" typeID=\"block\"/>")));
    EXPECT_NE(manager().getField(7), nullptr);
}

TEST_F(Loading, ABareCurveIsLost) {
    EXPECT_TRUE(load(documentOf("<curve/>")));
    EXPECT_TRUE(manager().getObjects().empty());
}

TEST_F(Loading, AFieldDefinedAfterItsCurveReachesItInTheSecondPass) {
    EXPECT_TRUE(load(documentOf("<curve id=\"21\" typeID=\"2\" field=\"7\"/>"
                                "<field id=\"7\" typeID=\"-1\" attribute=\"scaleY\"/>")));
    const kaAnimationCurve2D* curve = manager().getCurve2D(21);
    EXPECT_EQ(curve->getField(), 7U);
    EXPECT_EQ(curve->getColor(), kaAnimationUtils::getDefaultCurveColor(manager().getField(7)));
    EXPECT_EQ(manager().getFields().size(), 2U) << "the one that the curve was made with stays";
}

TEST_F(Loading, AKeyUnderTwoCurvesGoesToBoth) {
    EXPECT_TRUE(
        load(documentOf(pointElement("11", 0, 0) + pointElement("12", 5, 0) + pointElement("13", 9, 0) +
                        containerElement("curve", 2, "21", "", {"11", "12"}) +
                        containerElement("curve", 2, "22", "", {"12", "13"}))));
    EXPECT_EQ(manager().getCurve2D(21)->getChildIDs(), (Ids{11, 12}));
    EXPECT_EQ(manager().getCurve2D(22)->getChildIDs(), (Ids{12, 13}));
    EXPECT_EQ(manager().getObject(12)->getParent(), 22U);
    expectSoundRegistry();
}

TEST_F(Loading, LoadedTwiceTheSecondSetHasNewIdsAndReferencesMeanTheFirst) {
    const std::string text = contentOf(testFile("example.xml"));
    ASSERT_TRUE(load(text));
    const std::string first = stateOfRegistry();
    ASSERT_TRUE(load(text));
    const auto objects = manager().getObjects();
    EXPECT_EQ(objects.size(), 12U);
    EXPECT_EQ(manager().getFields().size(), 2U);
    for (const auto& [id, object] : objects)
        if (id > 51 && object->getTypeID() != KA_TYPE_POINT) {
            EXPECT_FALSE(object->hasChildren()) << id;
        }
    for (const kaUID id : {21, 31, 41, 51}) {
        EXPECT_EQ(manager().getObject(id)->getChildCount(), id == 21 ? 2U : 1U);
    }
    for (const auto& [id, object] : objects)
        if (id > 51)
            manager().destroyObject(object);
    for (const auto& [id, field] : manager().getFields())
        if (id > 51)
            manager().destroyField(field);
    EXPECT_EQ(stateOfRegistry(), first);
}

TEST_F(Loading, TheSecondSetsCurveAnimatesTheFieldAsWritten) {
    const std::string text = contentOf(testFile("example.xml"));
    ASSERT_TRUE(load(text));
    ASSERT_TRUE(load(text));
    for (const auto& [id, object] : manager().getObjects())
        if (object->getTypeID() == KA_TYPE_CURVE) {
            EXPECT_EQ(static_cast<const kaAnimationCurve2D*>(object)->getField(), 7U) << id;
        }
}

TEST_F(Loading, FreshIdsAreDrawnInOrderOfTheDocument) {
    manager().createUnit("taken", 31);
    manager().createField(32);
    IdSequence ids;
    const kaUID first = ids.next();
    const kaUID second = ids.next();
    EXPECT_TRUE(
        load(documentOf("<b id=\"31\" typeID=\"3\" name=\"one\"/><b id=\"32\" typeID=\"3\" name=\"two\"/>"
                        "<b id=\"33\" typeID=\"3\" name=\"three\"/>")));
    EXPECT_EQ(manager().getObject(first)->getName(), "one");
    EXPECT_EQ(manager().getObject(second)->getName(), "two");
    EXPECT_EQ(manager().getObject(33)->getName(), "three");
}

TEST_F(Loading, AnElementWithoutIdGetsAFreshOneAndIsNotConnected) {
    const kaUID fresh = IdSequence().next();
    EXPECT_TRUE(load(documentOf("<curve id=\"21\" typeID=\"2\"/><b typeID=\"3\"><b id=\"21\"/></b>")));
    kaAnimationUnit* unit = nullptr;
    for (const auto& entry : manager().getObjects())
        if (entry.second->getTypeID() == KA_TYPE_UNIT)
            unit = static_cast<kaAnimationUnit*>(entry.second);
    ASSERT_NE(unit, nullptr);
    EXPECT_NE(unit->getId(), 0U);
    EXPECT_NE(unit->getId(), fresh) << "the curve's own field was drawn first";
    EXPECT_FALSE(unit->hasChildren());
}

TEST_F(Loading, WhatIsRegisteredStays) {
    kaAnimationUnit* unit = manager().createUnit("mine", 99);
    ASSERT_TRUE(load(contentOf(testFile("example.xml"))));
    EXPECT_EQ(manager().getUnit(99), unit);
    EXPECT_EQ(manager().getObjects().size(), 7U);
}

TEST_F(Loading, AClipGivesLooseObjectsTracksOfTheirOwn) {
    EXPECT_TRUE(
        load(documentOf("<b id=\"31\" typeID=\"3\"/>" + containerElement("clip", 5, "51", "", {"31"}))));
    const kaAnimationStrip* clip = manager().getStrip(51);
    ASSERT_EQ(clip->getChildCount(), 1U);
    EXPECT_EQ(manager().getStreak(clip->getChildIDs()[0])->getChildIDs(), (Ids{31}));
}

TEST_F(Loading, TracksAreNumberedInTheOrderOfTheDocument) {
    EXPECT_TRUE(
        load(documentOf("<t id=\"41\" typeID=\"4\" number=\"7\"/><t id=\"42\" typeID=\"4\" number=\"3\"/>" +
                        containerElement("clip", 5, "51", "", {"41", "42"}))));
    EXPECT_EQ(manager().getStreak(41)->getIndex(), 0U);
    EXPECT_EQ(manager().getStreak(42)->getIndex(), 1U);
}

TEST_F(Loading, PrintsTheCountAsTheDocumentStatesIt) {
    const CapturedOutput output;
    EXPECT_TRUE(manager().loadAnimations("<a objects=\" 12 and more\"/>", false));
    EXPECT_EQ(output.text(), "loading animation elements:  12 and more\n");
}

TEST_F(Loading, WithoutACountNothingIsPrinted) {
    const CapturedOutput output;
    EXPECT_TRUE(manager().loadAnimations("<a/>", false));
    EXPECT_TRUE(manager().loadAnimations("<a objects=\"\"/>", false));
    EXPECT_EQ(output.text(), "");
}

TEST_F(Loading, ANameWithAnAccentSurvivesAFile) {
    const TemporaryFolder folder;
    const std::string file = folder.at("a.xml");
    manager().createUnit("\xc9t\xe9", 31);
    const CapturedOutput swallowed;
    ASSERT_TRUE(manager().saveAnimations(file.c_str()));
    manager().destroyObject(manager().getObject(31));
    ASSERT_TRUE(manager().loadAnimations(QString::fromStdString(file), true));
    EXPECT_EQ(manager().getUnit(31)->getName(), "\xc9t\xe9");
}

TEST_F(Loading, AnyByteInANameSurvivesAFile) {
    std::string name;
    for (int byte = 1; byte < 256; ++byte)
        name += static_cast<char>(byte);
    const TemporaryFolder folder;
    const std::string file = folder.at("a.xml");
    manager().createUnit(name, 31);
    const CapturedOutput swallowed;
    ASSERT_TRUE(manager().saveAnimations(file.c_str()));
    manager().destroyObject(manager().getObject(31));
    ASSERT_TRUE(manager().loadAnimations(QString::fromStdString(file), true));
    EXPECT_EQ(manager().getUnit(31)->getName(), name);
}
