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
#include <string>

using namespace ka_test;

namespace {

class ElementReaders : public RegistryFixture {
  protected:
    static kaAnimationManager& manager() { return *kaAnimationManager::the(); }

    QDomElement element(const char* text) {
        EXPECT_TRUE(_document.setContent(QString::fromLatin1(text))) << text;
        return _document.documentElement();
    }

    QDomDocument _document;
};

void expectAt(const kaControlPoint2D* point, float x, float y) {
    EXPECT_EQ(point->getPosition()[0], x);
    EXPECT_EQ(point->getPosition()[1], y);
}

} // namespace

TEST_F(ElementReaders, AField) {
    const kaAnimationField* field = manager().readFieldDomElement(element(
        "<field id='7' typeID='-1' fcID='412' name='scale' attribute='scaleY' value='2.5' valuePos='1' "
        "dirty='1'/>"));
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(manager().getField(7), field);
    EXPECT_EQ(field->getId(), 7U);
    EXPECT_EQ(field->fcID, 412U);
    EXPECT_EQ(field->nodeID, 0U);
    EXPECT_EQ(field->name, "scale");
    EXPECT_EQ(field->attribute, "scaleY");
    EXPECT_EQ(field->value, 2.5F);
    EXPECT_EQ(field->valuePos, 1U);
    EXPECT_TRUE(field->dirty);
}

TEST_F(ElementReaders, AFieldsDefaults) {
    const kaAnimationField* field = manager().readFieldDomElement(element("<field id='7' typeID='-1'/>"));
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->fcID, 0U);
    EXPECT_EQ(field->name, "unnamed");
    EXPECT_EQ(field->attribute, "undefined");
    EXPECT_EQ(field->value, 0.0F);
    EXPECT_EQ(field->valuePos, 0U);
    EXPECT_FALSE(field->dirty);
}

TEST_F(ElementReaders, AContainerIdBeyond32BitsDoesNotLoad) {
    const kaAnimationField* field =
        manager().readFieldDomElement(element("<field id='7' typeID='-1' fcID='4294967296'/>"));
    EXPECT_EQ(field->fcID, 0U);
}

TEST_F(ElementReaders, APointWithItsHandles) {
    const kaControlPoint2D* point = manager().readPointDomElement(
        element("<point id='11' typeID='1' tangentType='16' tangentLengthMode='32'>"
                "<outTangent>7 8</outTangent><ignored>9 9</ignored><position>1.5 -2</position>"
                "<inTangent>0.5\n3</inTangent></point>"));
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(manager().getPoint2D(11), point);
    expectAt(point, 1.5F, -2.0F);
    expectAt(point->getInTangent(), 0.5F, 3.0F);
    expectAt(point->getOutTangent(), 7.0F, 8.0F);
    EXPECT_EQ(point->getTangentType(), 16U);
    EXPECT_EQ(point->getTangentLengthMode(), 32U);
    EXPECT_EQ(point->getName(), "Point");
}

TEST_F(ElementReaders, AMissingHandleStandsAtTheOriginNotAtThePoint) {
    const kaControlPoint2D* point = manager().readPointDomElement(
        element("<point id='11' typeID='1'><position>5 6</position><outTangent>7 8</outTangent></point>"));
    expectAt(point, 5.0F, 6.0F);
    expectAt(point->getInTangent(), 0.0F, 0.0F);
    expectAt(point->getOutTangent(), 7.0F, 8.0F);
}

TEST_F(ElementReaders, APointsDefaults) {
    const kaControlPoint2D* point = manager().readPointDomElement(element("<point id='11' typeID='1'/>"));
    expectAt(point, 0.0F, 0.0F);
    EXPECT_EQ(point->getTangentType(), 2U);
    EXPECT_EQ(point->getTangentLengthMode(), 64U);
}

TEST_F(ElementReaders, AnyTangentTypeIsStored) {
    const kaControlPoint2D* point = manager().readPointDomElement(
        element("<point id='11' typeID='1' tangentType='99' tangentLengthMode='4294967295'/>"));
    EXPECT_EQ(point->getTangentType(), 99U);
    EXPECT_EQ(point->getTangentLengthMode(), 4294967295U);
}

/// A tangent type that no `int` holds is written as a negative number.
TEST_F(ElementReaders, ATangentTypeWrittenAsANegativeNumberComesBack) {
    for (const unsigned int type : {4294967295U, 2147483648U, 2147483647U}) {
        kaControlPoint2D* point = manager().createPoint2D(0);
        point->setTangentType(type);
        point->setTangentLengthMode(type - 1U);
        const QDomElement written = manager().createPointDomElement(_document, point);
        manager().destroyPoint2D(point);
        const kaControlPoint2D* read = manager().readPointDomElement(written);
        EXPECT_EQ(read->getTangentType(), type);
        EXPECT_EQ(read->getTangentLengthMode(), type - 1U);
    }
}

TEST_F(ElementReaders, NegativeTextCountsDownFromTheTypesEnd) {
    const kaAnimationField* field = manager().readFieldDomElement(
        element("<field id='-1' typeID='-1' fcID='-2' valuePos=' -3' dirty='-1'/>"));
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->getId(), 18446744073709551615ULL);
    EXPECT_EQ(field->fcID, 4294967294U);
    EXPECT_EQ(field->valuePos, 4294967293U);
    EXPECT_TRUE(field->dirty);
}

struct PlaceRow {
    const char* name;
    const char* text;
    float x;
    float y;
};

class PlaceReading : public ElementReaders, public testing::WithParamInterface<PlaceRow> {};

TEST_P(PlaceReading, StopsAtWhatDoesNotParse) {
    const std::string text =
        std::string("<point id='11' typeID='1'><position>") + GetParam().text + "</position></point>";
    expectAt(manager().readPointDomElement(element(text.c_str())), GetParam().x, GetParam().y);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PlaceReading,
    testing::Values(PlaceRow{"two_numbers", "1 2", 1, 2}, PlaceRow{"spaces", "\n 1\t\n2 ", 1, 2},
                    PlaceRow{"one_number", "1", 1, 0}, PlaceRow{"none", "", 0, 0},
                    PlaceRow{"second_unfit", "1 x", 1, 0}, PlaceRow{"first_unfit", "x 2", 0, 0},
                    PlaceRow{"text_between", "1mm 2", 1, 0}, PlaceRow{"comma", "1,5 2", 1, 0},
                    PlaceRow{"more_numbers", "1 2 3", 1, 2}, PlaceRow{"not_finite", "nan 2", 0, 0},
                    PlaceRow{"second_not_finite", "1 inf", 1, 0}, PlaceRow{"joined_by_sign", "1-2", 1, -2}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(ElementReaders, ACurveWithItsField) {
    kaAnimationField* field = manager().createField(7);
    field->attribute = "scaleX";
    const kaAnimationCurve2D* curve = manager().readCurveDomElement(
        element("<curve id='21' typeID='2' name='scaleX' field='7' active='0' repeating='0' flipped='0' "
                "motionBlur='0' parentNodeID='9'/>"));
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(manager().getCurve2D(21), curve);
    EXPECT_EQ(curve->getName(), "scaleX");
    EXPECT_EQ(curve->getField(), 7U);
    EXPECT_FLOAT_EQ(curve->getColor()[0], 0.898F);
    EXPECT_FALSE(curve->isActive());
    EXPECT_FALSE(curve->isRepeating());
    EXPECT_FALSE(curve->isFlipped());
    EXPECT_FALSE(curve->isMotionBlur());
    EXPECT_EQ(manager().getFields().size(), 1U);
}

TEST_F(ElementReaders, ACurveWithoutItsFieldGetsAnEmptyOneAndAllFlags) {
    const kaAnimationCurve2D* curve =
        manager().readCurveDomElement(element("<curve id='21' typeID='2' field='7'/>"));
    EXPECT_EQ(curve->getName(), "");
    EXPECT_NE(curve->getField(), 7U);
    EXPECT_NE(manager().getField(curve->getField()), nullptr);
    EXPECT_TRUE(curve->isActive());
    EXPECT_TRUE(curve->isRepeating());
    EXPECT_TRUE(curve->isFlipped());
    EXPECT_TRUE(curve->isMotionBlur());
}

TEST_F(ElementReaders, ABlockWithoutFlagsHasThemAll) {
    const kaAnimationUnit* unit =
        manager().readBlockDomElement(element("<block id='31' typeID='3' name='b'/>"));
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(manager().getUnit(31), unit);
    EXPECT_EQ(unit->getName(), "b");
    EXPECT_TRUE(unit->isActive());
    EXPECT_TRUE(unit->isRepeating());
    EXPECT_TRUE(unit->isFlipped());
    EXPECT_TRUE(unit->isMotionBlur());
}

TEST_F(ElementReaders, AFlagIsSetByAnyNumberButZero) {
    const kaAnimationUnit* unit = manager().readBlockDomElement(
        element("<block id='31' typeID='3' active='0' repeating='2' flipped='no' motionBlur='-1'/>"));
    EXPECT_FALSE(unit->isActive());
    EXPECT_TRUE(unit->isRepeating());
    EXPECT_TRUE(unit->isFlipped()) << "text that is no number leaves the default";
    EXPECT_TRUE(unit->isMotionBlur()) << "a negative number leaves the default";
}

TEST_F(ElementReaders, ATrackKeepsTheNumberOfItsMaking) {
    const kaAnimationStreak* streak =
        manager().readTrackDomElement(element("<track id='41' typeID='4' name='t' number='5' active='1' "
                                              "repeating='0' flipped='0' motionBlur='0'/>"));
    ASSERT_NE(streak, nullptr);
    EXPECT_EQ(manager().getStreak(41), streak);
    EXPECT_EQ(streak->getName(), "t");
    EXPECT_EQ(streak->getIndex(), 0U);
}

TEST_F(ElementReaders, AClip) {
    const kaAnimationStrip* strip =
        manager().readClipDomElement(element("<clip id='51' typeID='5' name='c' repeating='0'/>"));
    ASSERT_NE(strip, nullptr);
    EXPECT_EQ(manager().getStrip(51), strip);
    EXPECT_EQ(strip->getName(), "c");
    EXPECT_FALSE(strip->isRepeating());
}

TEST_F(ElementReaders, ASequence) {
    const kaAnimationSequence* sequence = manager().readSequenceDomElement(
        element("<field id='61' typeID='6' name='door' active='0' begin='12.5' end='1e+06'/>"));
    ASSERT_NE(sequence, nullptr);
    EXPECT_EQ(manager().getSequence(61), sequence);
    EXPECT_EQ(sequence->getName(), "door");
    EXPECT_FALSE(sequence->isActive());
    EXPECT_EQ(sequence->getBegin(), 12.5F);
    EXPECT_EQ(sequence->getEnd(), 1e6F);
    EXPECT_TRUE(sequence->isArmed());
}

TEST_F(ElementReaders, ASequencesDefaults) {
    const kaAnimationSequence* sequence =
        manager().readSequenceDomElement(element("<field id='61' typeID='6'/>"));
    EXPECT_EQ(sequence->getName(), "");
    EXPECT_TRUE(sequence->isActive());
    EXPECT_EQ(sequence->getBegin(), 0.0F);
    EXPECT_EQ(sequence->getEnd(), 0.0F);
}

TEST_F(ElementReaders, AnotherTypeGivesNull) {
    const QDomElement clip = element("<clip id='51' typeID='5'/>");
    EXPECT_EQ(manager().readFieldDomElement(clip), nullptr);
    EXPECT_EQ(manager().readPointDomElement(clip), nullptr);
    EXPECT_EQ(manager().readCurveDomElement(clip), nullptr);
    EXPECT_EQ(manager().readBlockDomElement(clip), nullptr);
    EXPECT_EQ(manager().readTrackDomElement(clip), nullptr);
    EXPECT_EQ(manager().readSequenceDomElement(clip), nullptr);
    EXPECT_EQ(manager().readClipDomElement(element("<clip id='51'/>")), nullptr)
        << "a missing type counts as -1";
    EXPECT_TRUE(manager().getObjects().empty());
    EXPECT_TRUE(manager().getFields().empty());
}

TEST_F(ElementReaders, ANullElementGivesNull) {
    const QDomElement none;
    EXPECT_EQ(manager().readFieldDomElement(none), nullptr);
    EXPECT_EQ(manager().readPointDomElement(none), nullptr);
    EXPECT_EQ(manager().readCurveDomElement(none), nullptr);
    EXPECT_EQ(manager().readBlockDomElement(none), nullptr);
    EXPECT_EQ(manager().readTrackDomElement(none), nullptr);
    EXPECT_EQ(manager().readClipDomElement(none), nullptr);
    EXPECT_EQ(manager().readSequenceDomElement(none), nullptr);
    manager().readChildren(none);
    EXPECT_TRUE(manager().getObjects().empty());
    EXPECT_TRUE(manager().getFields().empty());
}

TEST_F(ElementReaders, TheTagDoesNotMatter) {
    EXPECT_NE(manager().readSequenceDomElement(element("<anything id='61' typeID='6'/>")), nullptr);
    EXPECT_NE(manager().readBlockDomElement(element("<field id='31' typeID='3'/>")), nullptr);
}

TEST_F(ElementReaders, ANameComesBackAsTheLatin1BytesItWas) {
    const kaAnimationUnit* unit =
        manager().readBlockDomElement(element("<block id='31' typeID='3' name='caf\xe9'/>"));
    EXPECT_EQ(unit->getName(), "caf\xe9");
}

TEST_F(ElementReaders, WithoutAnIdAFreshOneIsDrawn) {
    const kaUID expected = IdSequence().next();
    EXPECT_EQ(manager().readBlockDomElement(element("<block typeID='3'/>"))->getId(), expected);
}

TEST_F(ElementReaders, AnIdInUseIsReplacedByTheNextDrawn) {
    manager().createField(31);
    const kaUID expected = IdSequence().next();
    const kaAnimationUnit* unit = manager().readBlockDomElement(element("<block id='31' typeID='3'/>"));
    EXPECT_EQ(unit->getId(), expected);
    EXPECT_EQ(manager().getUnit(expected), unit);
    EXPECT_EQ(manager().getObject(31), nullptr);
}

// Connecting.

TEST_F(ElementReaders, ChildrenAreFoundByIdWhateverTheirTag) {
    kaAnimationUnit* unit = manager().createUnit("b", 31);
    manager().createCurve2D(nullptr, "c", 21, false);
    manager().createCurve2D(nullptr, "d", 22, false);
    manager().readChildren(
        element("<x id='31' typeID='3'><y id='21'/><block id='22'/><z/><block id='99'/></x>"));
    EXPECT_EQ(unit->getChildIDs(), (std::vector<kaUID>{21, 22}));
}

TEST_F(ElementReaders, WithoutATypeNothingIsConnected) {
    kaAnimationUnit* unit = manager().createUnit("b", 31);
    manager().createCurve2D(nullptr, "c", 21, false);
    manager().readChildren(element("<block id='31'><block id='21'/></block>"));
    EXPECT_FALSE(unit->hasChildren());
}

TEST_F(ElementReaders, TheContainerDecidesWhatItTakes) {
    kaAnimationUnit* unit = manager().createUnit("b", 31);
    manager().createPoint2D(11);
    manager().createUnit("other", 32);
    manager().readChildren(element("<block id='31' typeID='3'><a id='11'/><a id='32'/></block>"));
    EXPECT_FALSE(unit->hasChildren());
}

TEST_F(ElementReaders, ACurveTakesItsFieldColourAndKeys) {
    kaAnimationCurve2D* curve = manager().createCurve2D(nullptr, "c", 21, false);
    manager().createField(7)->attribute = "scaleZ";
    manager().createPoint2D(25.0F, 1.0F, 12);
    manager().createPoint2D(5.0F, 1.0F, 11);
    manager().createUnit("no key", 31);
    manager().readChildren(
        element("<curve id='21' typeID='2' field='7'><p id='12'/><p id='31'/><p id='11'/></curve>"));
    EXPECT_EQ(curve->getField(), 7U);
    EXPECT_FLOAT_EQ(curve->getColor()[2], 0.816F);
    EXPECT_EQ(curve->getChildIDs(), (std::vector<kaUID>{11, 12}));
    EXPECT_EQ(curve->getBegin(), 5.0F);
    EXPECT_EQ(curve->getEnd(), 25.0F);
}

TEST_F(ElementReaders, ACurveWithoutReferencesKeepsItsKeys) {
    kaAnimationCurve2D* curve = manager().createCurve2D(nullptr, "c", 21, false);
    curve->addObject(manager().createPoint2D(5.0F, 1.0F, 11));
    manager().readChildren(element("<curve id='21' typeID='2'/>"));
    EXPECT_EQ(curve->getChildIDs(), (std::vector<kaUID>{11}));
}

TEST_F(ElementReaders, HandSetHandlesSurviveConnectingAndComputedOnesAreComputed) {
    manager().createCurve2D(nullptr, "c", 21, false);
    const kaControlPoint2D* user = manager().readPointDomElement(element(
        "<point id='11' typeID='1' tangentType='16'><position>0 0</position><inTangent>-3 1</inTangent>"
        "<outTangent>3 1</outTangent></point>"));
    const kaControlPoint2D* flat = manager().readPointDomElement(element(
        "<point id='12' typeID='1' tangentType='2'><position>10 5</position><inTangent>-3 1</inTangent>"
        "<outTangent>3 1</outTangent></point>"));
    manager().readChildren(element("<curve id='21' typeID='2'><p id='11'/><p id='12'/></curve>"));
    expectAt(user->getInTangent(), -3.0F, 1.0F);
    expectAt(user->getOutTangent(), 3.0F, 1.0F);
    expectAt(flat->getInTangent(), 5.0F, 5.0F);
    expectAt(flat->getOutTangent(), 15.0F, 5.0F);
}
