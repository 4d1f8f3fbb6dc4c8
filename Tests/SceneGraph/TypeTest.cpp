#include "ContainerLife.h"
#include "HostType.h"

#include <OpenSG/OSGAnimationClip.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFieldFactory.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera2.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSpotLight.h>
#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGUberMaterial.h>
#include <gtest/gtest.h>
#include <set>

namespace {

osg::FieldContainerFactory* factory() {
    return osg::FieldContainerFactory::the();
}

struct ParentRow {
    const char* type;
    const char* parent;
    bool isAbstract;
};

class LibraryType : public testing::TestWithParam<ParentRow> {};

TEST_P(LibraryType, HasItsParentAndKind) {
    osg::FieldContainerType* type = factory()->findType(GetParam().type);
    ASSERT_NE(nullptr, type);
    EXPECT_STREQ(GetParam().parent, type->getCParentName());
    EXPECT_EQ(factory()->findType(GetParam().parent), type->getParent());
    EXPECT_EQ(GetParam().isAbstract, type->isAbstract());
    EXPECT_EQ(type, factory()->findType(type->getId()));
    EXPECT_EQ(GetParam().isAbstract, factory()->createFieldContainer(GetParam().type) == osg::NullFC);
}

INSTANTIATE_TEST_SUITE_P(
    All, LibraryType,
    testing::Values(
        ParentRow{"AttachmentContainer", "FieldContainer", true},
        ParentRow{"Attachment", "FieldContainer", true}, ParentRow{"Node", "AttachmentContainer", false},
        ParentRow{"NodeCore", "AttachmentContainer", true}, ParentRow{"Group", "NodeCore", false},
        ParentRow{"Transform", "Group", false}, ParentRow{"Transform3D", "Transform", false},
        ParentRow{"ComponentTransform", "Transform", false}, ParentRow{"Switch", "Group", false},
        ParentRow{"MaterialGroup", "Group", false}, ParentRow{"Light", "Group", true},
        ParentRow{"PointLight", "Light", false}, ParentRow{"SpotLight", "PointLight", false},
        ParentRow{"DirectionalLight", "Light", false}, ParentRow{"Drawable", "NodeCore", true},
        ParentRow{"MaterialDrawable", "Drawable", true}, ParentRow{"Geometry", "MaterialDrawable", false},
        ParentRow{"CameraSetting", "NodeCore", false}, ParentRow{"Material", "AttachmentContainer", true},
        ParentRow{"SimpleMaterial", "Material", false}, ParentRow{"UberMaterial", "Material", false},
        ParentRow{"Camera", "AttachmentContainer", true}, ParentRow{"PerspectiveCamera", "Camera", false},
        ParentRow{"PerspectiveCamera2", "PerspectiveCamera", false}, ParentRow{"Name", "Attachment", false},
        ParentRow{"AnimAttachment", "Attachment", false},
        ParentRow{"TransformAttachment", "Attachment", false},
        ParentRow{"AnimationAttachment", "Attachment", false},
        ParentRow{"AnimationClip", "AttachmentContainer", false},
        ParentRow{"AnimationTrack", "AttachmentContainer", false},
        ParentRow{"AnimationBlock", "AttachmentContainer", false},
        ParentRow{"AnimationCurve", "AttachmentContainer", false},
        ParentRow{"AnimationControlPoint", "AttachmentContainer", false},
        ParentRow{"GeoProperty", "Attachment", true}, ParentRow{"GeoPositions3f", "GeoProperty", false}),
    [](const auto& row) { return std::string(row.param.type); });

TEST(Type, DescribesEveryFieldWithConsecutiveIdsAndFindsItAgain) {
    int types = 0;
    for (auto entry = factory()->beginTypes(); entry != factory()->endTypes(); ++entry, ++types) {
        osg::FieldContainerType& type = *entry->second;
        SCOPED_TRACE(type.getCName());
        EXPECT_EQ(nullptr, type.getFieldDescription(0));
        EXPECT_EQ(nullptr, type.getFieldDescription(type.getNumFieldDescs() + 1));
        std::set<std::string> names;
        for (osg::UInt32 id = 1; id <= type.getNumFieldDescs(); ++id) {
            const osg::FieldDescription* description = type.getFieldDescription(id);
            ASSERT_NE(nullptr, description);
            EXPECT_EQ(id, description->getFieldId());
            EXPECT_EQ(osg::BitVector(1) << id, description->getFieldMask());
            EXPECT_EQ(description, type.findFieldDescription(description->getCName()));
            EXPECT_TRUE(names.insert(description->getCName()).second) << description->getName();
            if (type.isAbstract())
                continue;
            osg::FieldContainer& container = *type.getPrototype();
            const osg::Field* field = container.getField(id);
            ASSERT_NE(nullptr, field);
            EXPECT_EQ(field, container.getField(description->getCName()));
            EXPECT_EQ(field, description->getField(container));
            EXPECT_EQ(field->getType(), description->getFieldType());
            EXPECT_EQ(field->getType().getId(), description->getTypeId());
        }
    }
    EXPECT_EQ(static_cast<osg::UInt32>(types), factory()->getNumTypes());
}

struct FieldRow {
    const char* type;
    const char* field;
    osg::UInt32 id;
    const char* fieldType;
};

class PublishedField : public testing::TestWithParam<FieldRow> {};

TEST_P(PublishedField, HasItsIdAndType) {
    const osg::FieldDescription* description =
        factory()->findType(GetParam().type)->findFieldDescription(GetParam().field);
    ASSERT_NE(nullptr, description);
    EXPECT_EQ(GetParam().id, description->getFieldId());
    EXPECT_STREQ(GetParam().fieldType, description->getFieldType().getCName());
}

INSTANTIATE_TEST_SUITE_P(
    Ids, PublishedField,
    testing::Values(
        FieldRow{"Node", "attachments", 1, "SFAttachmentMap"},
        FieldRow{"Node", "volume", 2, "SFDynamicVolume"}, FieldRow{"Node", "travMask", 3, "SFUInt32"},
        FieldRow{"Node", "parent", 4, "SFNodePtr"}, FieldRow{"Node", "children", 5, "MFNodePtr"},
        FieldRow{"Node", "core", 6, "SFNodeCorePtr"}, FieldRow{"Transform", "matrix", 3, "SFMatrix"},
        FieldRow{"Switch", "choice", 3, "SFInt32"}, FieldRow{"MaterialGroup", "material", 3, "SFMaterialPtr"},
        FieldRow{"ComponentTransform", "center", 4, "SFVec3f"},
        FieldRow{"ComponentTransform", "rotation", 5, "SFQuaternion"},
        FieldRow{"ComponentTransform", "translation", 8, "SFVec3f"},
        FieldRow{"PointLight", "ambient", 3, "SFColor4f"}, FieldRow{"PointLight", "beacon", 6, "SFNodePtr"},
        FieldRow{"PointLight", "on", 7, "SFBool"}, FieldRow{"PointLight", "position", 13, "SFPnt3f"},
        FieldRow{"SpotLight", "direction", 14, "SFVec3f"},
        FieldRow{"SpotLight", "spotCutOff", 16, "SFReal32"},
        FieldRow{"DirectionalLight", "direction", 13, "SFVec3f"},
        FieldRow{"PerspectiveCamera", "fov", 5, "SFReal32"}, FieldRow{"Name", "name", 3, "SFString"},
        FieldRow{"AnimAttachment", "objectIDs", 3, "MFUInt64"},
        FieldRow{"AnimAttachment", "fieldIDs", 4, "MFUInt64"},
        FieldRow{"CameraSetting", "from", 3, "SFPnt3f"},
        FieldRow{"CameraSetting", "fieldOfView", 7, "SFReal32"},
        FieldRow{"GeoPositions3f", "positions", 3, "MFPnt3f"}),
    [](const auto& row) { return std::string(row.param.type) + "_" + row.param.field; });

TEST(Type, FindsNoFieldByAWrongOrMissingName) {
    osg::FieldContainerType& type = osg::Transform::getClassType();
    EXPECT_EQ(nullptr, type.findFieldDescription("Matrix"));
    EXPECT_EQ(nullptr, type.findFieldDescription(""));
    EXPECT_EQ(nullptr, type.findFieldDescription(nullptr));
    osg::FieldContainerPtr container = osg::Transform::create();
    EXPECT_EQ(nullptr, container->getField("Matrix"));
    EXPECT_EQ(nullptr, container->getField(0U));
    EXPECT_EQ(nullptr, container->getField(99U));
    osg::subRefCP(container);
}

TEST(Type, DerivesFromItselfAndItsAncestorsOnly) {
    const osg::FieldContainerType& spot = osg::SpotLight::getClassType();
    EXPECT_TRUE(spot.isDerivedFrom(spot));
    EXPECT_TRUE(spot.isDerivedFrom(osg::PointLight::getClassType()));
    EXPECT_TRUE(spot.isDerivedFrom(osg::Light::getClassType()));
    EXPECT_TRUE(spot.isDerivedFrom(osg::NodeCore::getClassType()));
    EXPECT_TRUE(spot.isDerivedFrom(osg::FieldContainer::getClassType()));
    EXPECT_FALSE(spot.isDerivedFrom(osg::Transform::getClassType()));
    EXPECT_FALSE(osg::Light::getClassType().isDerivedFrom(spot));
    EXPECT_FALSE(spot.isDerivedFrom(static_cast<const osg::TypeBase&>(spot)));
}

TEST(Type, IsAGroupOfItsOwn) {
    const osg::UInt16 transform = osg::Transform::getClassType().getGroupId();
    EXPECT_NE(0, transform);
    EXPECT_NE(transform, osg::Transform3D::getClassType().getGroupId());
    EXPECT_NE(transform, osg::Group::getClassType().getGroupId());
    EXPECT_EQ(transform, factory()->findGroupId("Transform"));
    EXPECT_STREQ("Transform", factory()->findGroupName(transform));
    EXPECT_EQ(osg::Name::getClassType().getGroupId(), factory()->findGroupId("name"));
    EXPECT_EQ(osg::GeoPositions3f::getClassType().getGroupId(), factory()->findGroupId("GeoPositions"));
    EXPECT_EQ(0, factory()->findGroupId("nothing"));
    EXPECT_EQ(0, factory()->findGroupId(nullptr));
    EXPECT_EQ(nullptr, factory()->findGroupName(0));
    EXPECT_EQ(nullptr, factory()->findGroupName(0xFFFF));
}

TEST(Factory, CreatesByNameOnlyWhatIsOfThatKind) {
    const osg::NodeRefPtr node = factory()->createNode("Node");
    const osg::NodeCoreRefPtr core = factory()->createNodeCore("Transform");
    const osg::AttachmentRefPtr attachment = factory()->createAttachment("Name");
    EXPECT_TRUE(node != osg::NullFC);
    EXPECT_TRUE(core != osg::NullFC);
    EXPECT_TRUE(attachment != osg::NullFC);
    EXPECT_TRUE(factory()->createNode("Transform") == osg::NullFC);
    EXPECT_TRUE(factory()->createNodeCore("Node") == osg::NullFC);
    EXPECT_TRUE(factory()->createAttachment("Group") == osg::NullFC);
    EXPECT_TRUE(factory()->createNodeCore("Light") == osg::NullFC) << "abstract";
    EXPECT_TRUE(factory()->createFieldContainer("Nothing") == osg::NullFC);
    EXPECT_TRUE(factory()->createFieldContainer(nullptr) == osg::NullFC);
    EXPECT_TRUE(factory()->createFieldContainer("") == osg::NullFC);
    EXPECT_EQ(nullptr, factory()->findType(static_cast<const char*>(nullptr)));
    EXPECT_EQ(nullptr, factory()->findType(0U));
}

TEST(Prototype, IsWhatNewContainersAreCopiesOf) {
    osg::FieldContainerType& type = osg::Switch::getClassType();
    const osg::FieldContainerPtr before = type.getPrototype();
    const osg::RefPtr<osg::FieldContainerPtr> kept = before;
    const osg::SwitchPtr prototype = osg::Switch::create();
    const ka_test::ContainerLife prototypeLife(prototype);
    prototype->setChoice(7);
    type.setPrototype(prototype);
    osg::SwitchPtr made = osg::Switch::create();
    osg::SwitchPtr empty = osg::Switch::createEmpty();
    EXPECT_EQ(7, made->getChoice());
    EXPECT_EQ(osg::Switch::NONE, empty->getChoice());
    type.setPrototype(osg::NullFC);
    type.setPrototype(osg::Node::getClassType().getPrototype());
    EXPECT_TRUE(type.getPrototype() == prototype) << "only containers of the type can be its prototype";
    type.setPrototype(before);
    EXPECT_TRUE(prototypeLife.isOver());
    osg::subRefCP(made);
    osg::subRefCP(empty);
}

TEST(HostType, IsDeclaredByAClassAndATableOfFields) {
    const osg::FieldContainerType& type = ka_test::Wind::getClassType();
    EXPECT_EQ(&type, factory()->findType("Wind"));
    EXPECT_TRUE(type.isAttachment());
    EXPECT_FALSE(type.isNode());
    EXPECT_EQ(ka_test::Wind::StrengthFieldId, type.findFieldDescription("strength")->getFieldId());
    EXPECT_EQ(3U, ka_test::Wind::StrengthFieldId) << "after the two fields of every attachment";

    ka_test::WindPtr wind = ka_test::Wind::create();
    ASSERT_TRUE(wind != osg::NullFC);
    EXPECT_STREQ("Wind", wind->getTypeName());
    osg::FieldContainerPtr generic = wind;
    auto* field = dynamic_cast<osg::SFReal32*>(generic->getField("strength"));
    ASSERT_NE(nullptr, field);
    field->setValue(2.5F);
    EXPECT_EQ(2.5F, wind->getStrength());
    osg::subRefCP(wind);
}

TEST(HostType, MayOverrideChanged) {
    ka_test::WindPtr wind = ka_test::Wind::create();
    osg::FieldContainerPtr generic = wind;
    generic->changed(ka_test::Wind::StrengthFieldMask, osg::ChangedOrigin::External);
    EXPECT_EQ(ka_test::Wind::StrengthFieldMask, wind->lastChange);
    osg::subRefCP(wind);
}

TEST(FieldAddress, StaysAsLongAsTheContainer) {
    const osg::Transform3DPtr transform = osg::Transform3D::create();
    const osg::Field* field = transform->getField("translation");
    std::vector<osg::NodeRefPtr> others;
    for (int i = 0; i < 1000; ++i)
        others.emplace_back(osg::Node::create());
    EXPECT_EQ(field, transform->getField("translation"));
    EXPECT_EQ(field, transform->getSFTranslation());
    osg::releaseRefCP(transform);
}

TEST(ShallowCopy, HasTheSameValuesAndAnIdOfItsOwn) {
    const osg::UberMaterialPtr material = osg::UberMaterial::create();
    material->setShininess(17.0F);
    osg::UberMaterialPtr copy = osg::UberMaterialPtr::dcast(material->shallowCopy());
    ASSERT_TRUE(copy != osg::NullFC);
    EXPECT_EQ(17.0F, copy->getShininess());
    EXPECT_NE(material.getFieldContainerId(), copy.getFieldContainerId());
    EXPECT_EQ(0, copy.getRefCount());
    osg::subRefCP(copy);
    osg::releaseRefCP(material);
}

TEST(FieldFactory, FindsTypesAndMakesFields) {
    osg::FieldFactory& fields = osg::FieldFactory::the();
    osg::SFVec3f::getClassType();
    const osg::FieldType* type = fields.getFieldType("SFVec3f");
    ASSERT_NE(nullptr, type);
    EXPECT_EQ(type, fields.getFieldType(type->getId()));
    EXPECT_EQ(osg::FieldType::SINGLE_FIELD, type->getCardinality());
    EXPECT_STREQ("Vec3f", type->getContentType().getCName());
    const auto field = fields.createField("SFVec3f");
    EXPECT_NE(nullptr, dynamic_cast<osg::SFVec3f*>(field.get()));
    EXPECT_EQ(nullptr, fields.createField("SFNothing"));
    EXPECT_EQ(nullptr, fields.getFieldType(static_cast<const char*>(nullptr)));
}

} // namespace
