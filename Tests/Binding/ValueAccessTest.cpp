#include "CapturedOutput.h"
#include "RegistryFixture.h"
#include "Rig.h"
#include "TestScene.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSpotLight.h>
#include <OpenSG/OSGThread.h>
#include <limits>

namespace {

using namespace binding_test;
using Entries = std::vector<std::pair<osg::UInt32, osg::BitVector>>;

constexpr unsigned int SCALAR = 0; // any position addresses it

/// The stored component of a member.
template <auto Member>
float stored(Rig& rig, unsigned int component) {
    return (rig.*Member).getValue()[component];
}
template <auto Member>
void store(Rig& rig, unsigned int component, float value) {
    (rig.*Member).getValue()[component] = value;
}
template <auto Member>
float storedScalar(Rig& rig, unsigned int) {
    return static_cast<float>((rig.*Member).getValue());
}
template <auto Member>
void storeScalar(Rig& rig, unsigned int, float value) {
    (rig.*Member).getValue() = value;
}

struct Kind {
    const char* name;
    unsigned int components; ///< `SCALAR` or how many there are
    float (*stored)(Rig& rig, unsigned int component);
    void (*store)(Rig& rig, unsigned int component, float value);

    unsigned int last() const { return components == SCALAR ? 0 : components - 1; }
};

template <auto Member>
Kind tuple(const char* name, unsigned int components) {
    return {name, components, &stored<Member>, &store<Member>};
}
template <auto Member>
Kind scalar(const char* name) {
    return {name, SCALAR, &storedScalar<Member>, &storeScalar<Member>};
}

auto plainTuples() {
    return testing::Values(tuple<&Rig::vec3f>("vec3f", 3), tuple<&Rig::vec2f>("vec2f", 2),
                           tuple<&Rig::color4f>("color4f", 4), tuple<&Rig::color3f>("color3f", 3),
                           tuple<&Rig::pnt4f>("pnt4f", 4), tuple<&Rig::pnt3f>("pnt3f", 3),
                           tuple<&Rig::pnt2f>("pnt2f", 2), tuple<&Rig::vec4f>("vec4f", 4));
}

std::string nameOf(const testing::TestParamInfo<Kind>& row) {
    return row.param.name;
}

class ValueAccess : public ka_test::RegistryFixture, public testing::WithParamInterface<Kind> {
  protected:
    void SetUp() override {
        RegistryFixture::SetUp();
        watch() = Watch();
        recorder.take();
    }

    osg::BitVector maskOf(const char* name) const {
        return rig->getType().findFieldDescription(name)->getFieldMask();
    }
    void expectAnnounced(const char* name) {
        EXPECT_EQ(recorder.take(), (Entries{{rig.getFieldContainerId(), maskOf(name)}}));
        EXPECT_EQ(watch().calls, (std::vector<Watch::Call>{{rig.getFieldContainerId(), maskOf(name), 1}}));
        watch().calls.clear();
    }
    void expectSilence() {
        EXPECT_EQ(recorder.take(), Entries());
        EXPECT_TRUE(watch().calls.empty());
    }

    RigPtr rig = Rig::create();
    Kept kept{rig};
    Recorder recorder;
};

using PlainComponents = ValueAccess;

TEST_P(PlainComponents, AreWrittenWhereTheyDifferAndAnnouncedOnce) {
    for (unsigned int component = 0; component <= GetParam().last(); ++component) {
        for (unsigned int i = 0; i <= GetParam().last(); ++i)
            GetParam().store(*rig, i, 10.0F + static_cast<float>(i));
        kaAnimationField* field = makeField(rig, GetParam().name, component);

        EXPECT_TRUE(write(field, 2.5F));
        expectAnnounced(GetParam().name);
        for (unsigned int i = 0; i <= GetParam().last(); ++i)
            EXPECT_EQ(GetParam().stored(*rig, i), i == component ? 2.5F : 10.0F + static_cast<float>(i));

        EXPECT_TRUE(write(field, 2.5F));
        expectSilence();
        EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 2.5F);
    }
}

INSTANTIATE_TEST_SUITE_P(Tuples, PlainComponents, plainTuples(), nameOf);
INSTANTIATE_TEST_SUITE_P(Scalars, PlainComponents,
                         testing::Values(scalar<&Rig::real32>("real32"), scalar<&Rig::real64>("real64")),
                         nameOf);

using PositionsBeyondTheLast = ValueAccess;

TEST_P(PositionsBeyondTheLast, AreIgnoredAndReadAsZero) {
    for (unsigned int i = 0; i < GetParam().components; ++i)
        GetParam().store(*rig, i, 1.0F);
    for (const unsigned int beyond : {GetParam().components, 4294967295U}) {
        kaAnimationField* field = makeField(rig, GetParam().name, beyond);
        EXPECT_TRUE(write(field, 2.5F));
        expectSilence();
        for (unsigned int i = 0; i < GetParam().components; ++i)
            EXPECT_EQ(GetParam().stored(*rig, i), 1.0F);
        EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F);
    }
}

INSTANTIATE_TEST_SUITE_P(Tuples, PositionsBeyondTheLast, plainTuples(), nameOf);

using AngleComponents = ValueAccess;

TEST_P(AngleComponents, AreDegreesOutsideAndRadiansInTheScene) {
    struct {
        float degrees, radians;
    } const rows[] = {{90.0F, 1.5707964F},   {180.0F, 3.1415927F}, {360.0F, 6.2831855F},
                      {-30.0F, -0.5235988F}, {45.0F, 0.78539819F}, {0.0F, 0.0F}};
    for (unsigned int component = 0; component <= GetParam().last(); ++component) {
        kaAnimationField* field = makeField(rig, GetParam().name, component);
        for (const auto& row : rows) {
            GetParam().store(*rig, component, 1.0F);
            EXPECT_TRUE(write(field, row.degrees));
            expectAnnounced(GetParam().name);
            EXPECT_FLOAT_EQ(GetParam().stored(*rig, component), row.radians) << row.degrees;
            GetParam().store(*rig, component, row.radians);
            EXPECT_FLOAT_EQ(kaAnimationUtils::getOSGFieldValue(field), row.degrees);
        }
    }
}

TEST_P(AngleComponents, AreComparedAsStoredBeforeTheyAreConverted) {
    kaAnimationField* field = makeField(rig, GetParam().name, GetParam().last());
    GetParam().store(*rig, GetParam().last(), 1.0F);
    EXPECT_TRUE(write(field, 1.0F)); // one degree against one radian: the same number
    expectSilence();
    EXPECT_EQ(GetParam().stored(*rig, GetParam().last()), 1.0F);

    EXPECT_TRUE(write(field, 90.0F));
    expectAnnounced(GetParam().name);
    EXPECT_TRUE(write(field, 90.0F)); // the same angle in two units: another number
    expectAnnounced(GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(
    Types, AngleComponents,
    testing::Values(tuple<&Rig::rotateVec3f>("rotateVec3f", 3), tuple<&Rig::rotateVec2f>("rotateVec2f", 2),
                    scalar<&Rig::rotateReal32>("rotateReal32"),
                    tuple<&Rig::rotateColor4f>("rotateColor4f", 4),
                    tuple<&Rig::rotateColor3f>("rotateColor3f", 3),
                    tuple<&Rig::rotatePnt4f>("rotatePnt4f", 4), tuple<&Rig::rotatePnt3f>("rotatePnt3f", 3),
                    tuple<&Rig::rotatePnt2f>("rotatePnt2f", 2), tuple<&Rig::rotateVec4f>("rotateVec4f", 4),
                    scalar<&Rig::rotateReal64>("rotateReal64"), scalar<&Rig::fieldOfView>("fieldOfView")),
    nameOf);

TEST_F(ValueAccess, AQuarterTurnReadsAsExactlyNinety) {
    rig->rotateReal32.setValue(1.5707964F);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(makeField(rig, "rotateReal32")), 90.0F);
    rig->rotateReal64.setValue(1.5707963267948966);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(makeField(rig, "rotateReal64")), 90.0F);
}

TEST_F(ValueAccess, AScalarIsAddressedByAnyPosition) {
    kaAnimationField* field = makeField(rig, "real32", 3);
    EXPECT_TRUE(write(field, 4.0F));
    EXPECT_EQ(rig->real32.getValue(), 4.0F);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 4.0F);
    field = makeField(rig, "real64", 3);
    EXPECT_TRUE(write(field, 4.0F));
    EXPECT_EQ(rig->real64.getValue(), 4.0);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 4.0F);
}

TEST_F(ValueAccess, ADoubleIsComparedInDoublePrecision) {
    rig->real64.setValue(0.1); // not the double that the float 0.1 is
    kaAnimationField* field = makeField(rig, "real64");
    EXPECT_TRUE(write(field, 0.1F));
    EXPECT_EQ(rig->real64.getValue(), static_cast<double>(0.1F));
    expectAnnounced("real64");
}

TEST_F(ValueAccess, NotANumberIsNeverEqual) {
    kaAnimationField* field = makeField(rig, "real32");
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(write(field, std::numeric_limits<float>::quiet_NaN()));
        expectAnnounced("real32");
    }
}

TEST_F(ValueAccess, OtherTypesGoThroughTheirText) {
    // Row by row, so that the fourth number is the first of the translation.
    kaAnimationField* field = makeField(rig, "matrix", 3);
    EXPECT_TRUE(write(field, 7.5F));
    expectAnnounced("matrix");
    EXPECT_EQ(rig->matrix.getValue()[3][0], 7.5F);
    EXPECT_EQ(rig->matrix.getValue()[0][0], 1.0F);
    EXPECT_EQ(rig->matrix.getValue()[3][1], 0.0F);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 7.5F);
    EXPECT_TRUE(write(field, 7.5F));
    expectSilence();
}

TEST_F(ValueAccess, AnAngleInATextFormIsConvertedToo) {
    kaAnimationField* field = makeField(rig, "rotateMatrix", 7);
    EXPECT_TRUE(write(field, 180.0F));
    expectAnnounced("rotateMatrix");
    EXPECT_FLOAT_EQ(rig->rotateMatrix.getValue()[3][1], 3.1415927F);
    rig->rotateMatrix.getValue()[3][1] = 0.5F;
    EXPECT_FLOAT_EQ(kaAnimationUtils::getOSGFieldValue(field), 28.64789F);
}

TEST_F(ValueAccess, TextFormsIgnoreWhatIsBeyondTheirNumbers) {
    kaAnimationField* field = makeField(rig, "matrix", 16);
    EXPECT_TRUE(write(field, 7.5F));
    expectSilence();
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F);
}

TEST_F(ValueAccess, WholeNumbersTakeTheWholePart) {
    struct {
        float value;
        int stored;
    } const rows[] = {{3.7F, 3}, {-3.7F, -3}, {100000.0F, 100000}, {0.00001F, 0}, {16777216.0F, 16777216}};
    kaAnimationField* field = makeField(rig, "int32");
    for (const auto& row : rows) {
        rig->int32.setValue(77);
        EXPECT_TRUE(write(field, row.value));
        expectAnnounced("int32");
        EXPECT_EQ(rig->int32.getValue(), row.stored) << row.value;
        EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), static_cast<float>(row.stored));
    }
    kaAnimationField* byte = makeField(rig, "uint8");
    EXPECT_TRUE(write(byte, 200.0F));
    EXPECT_EQ(rig->uint8.getValue(), 200);
}

TEST_F(ValueAccess, ABoolHasNoNumberToWrite) {
    rig->flag.setValue(true);
    kaAnimationField* field = makeField(rig, "flag");
    EXPECT_TRUE(write(field, 0.0F));
    expectSilence();
    EXPECT_TRUE(rig->flag.getValue());
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F);
}

TEST_F(ValueAccess, AMultiFieldIsReadAsOneListAndNeverGrows) {
    rig->reals.push_back(1.0F);
    rig->reals.push_back(2.0F);
    rig->vectors.push_back(osg::Vec3f(1.0F, 2.0F, 3.0F));
    rig->vectors.push_back(osg::Vec3f(4.0F, 5.0F, 6.0F));
    kaAnimationField* real = makeField(rig, "reals", 1);
    kaAnimationField* vector = makeField(rig, "vectors", 4);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(real), 2.0F);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(vector), 5.0F);
    EXPECT_TRUE(write(real, 9.0F));
    EXPECT_TRUE(write(vector, 9.0F));
    expectSilence();
    EXPECT_EQ(rig->reals.size(), 2U);
    EXPECT_EQ(rig->vectors.size(), 2U);
    EXPECT_EQ(rig->vectors[1], osg::Vec3f(4.0F, 5.0F, 6.0F));
}

/// A handle is written as an address, attachments as their number: neither is read back.
TEST_F(ValueAccess, WhatCannotBeReadFromTextIsLeftAloneInSilence) {
    const osg::SpotLightPtr light = osg::SpotLight::create();
    const Kept keptLight(light);
    const osg::NodePtr beacon = osg::Node::create();
    const Kept keptBeacon(beacon);
    const osg::MaterialGroupPtr group = osg::MaterialGroup::create();
    const Kept keptGroup(group);
    osg::setName(light, "lamp");
    light->setBeacon(beacon);
    recorder.take();
    for (const auto& [container, name] : {std::pair<osg::FieldContainerPtr, const char*>(light, "beacon"),
                                          {light, "attachments"},
                                          {group, "material"}}) {
        kaAnimationField* field = makeField(container, name);
        const ka_test::CapturedOutput output;
        testing::internal::CaptureStderr();
        EXPECT_TRUE(write(field, 2.5F)) << name;
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << name;
        EXPECT_EQ(output.text(), "") << name;
        EXPECT_EQ(recorder.take(), Entries()) << name;
    }
    EXPECT_EQ(light->getBeacon(), beacon);
    EXPECT_STREQ(osg::getName(light), "lamp");
}

TEST_F(ValueAccess, NullIsRefused) {
    EXPECT_FALSE(kaAnimationUtils::setOSGFieldValue(nullptr));
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(nullptr), 0.0F);
}

TEST_F(ValueAccess, AMissingContainerIsRefused) {
    kaAnimationField* field = makeField(rig, "real32");
    for (const kaUID id : {kaUID(0), kaUID(4000000000U), kaUID(1) << 32}) {
        field->fcID = id;
        EXPECT_FALSE(write(field, 1.0F)) << id;
        EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F) << id;
    }
    expectSilence();
}

TEST_F(ValueAccess, AContainerIsFoundByTheLowHalfOfTheId) {
    kaAnimationField* field = makeField(rig, "real32");
    field->fcID |= kaUID(5) << 32;
    EXPECT_TRUE(write(field, 1.5F));
    EXPECT_EQ(rig->real32.getValue(), 1.5F);
    EXPECT_TRUE(write(field, 1.5F));
}

TEST_F(ValueAccess, IgnoredChangesAreRecordedButNotNotified) {
    osg::FieldContainerPtr::_ignore_change = true;
    EXPECT_TRUE(write(makeField(rig, "real32"), 1.5F));
    osg::FieldContainerPtr::_ignore_change = false;
    EXPECT_EQ(recorder.take(), (Entries{{rig.getFieldContainerId(), maskOf("real32")}}));
    EXPECT_TRUE(watch().calls.empty());
}

TEST_F(ValueAccess, WithoutChangeListTheContainerIsStillNotified) {
    osg::ChangeList* former = osg::PThreadBase::getCurrentChangeList();
    osg::PThreadBase::setCurrentChangeList(nullptr);
    EXPECT_TRUE(write(makeField(rig, "real32"), 1.5F));
    osg::PThreadBase::setCurrentChangeList(former);
    EXPECT_EQ(watch().calls.size(), 1U);
    EXPECT_EQ(rig->real32.getValue(), 1.5F);
}

TEST_F(ValueAccess, TheRecordItselfStaysAsItIs) {
    kaAnimationField* field = makeField(rig, "vec3f", 1);
    EXPECT_TRUE(write(field, 1.5F));
    EXPECT_EQ(field->value, 1.5F);
    EXPECT_TRUE(field->dirty);
    rig->vec3f.getValue()[1] = 9.0F;
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 9.0F);
    EXPECT_EQ(field->value, 1.5F);
}

} // namespace
