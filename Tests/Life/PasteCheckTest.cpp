#include "LifeFixture.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSwitch.h>

namespace {

using namespace ka_test;

class PasteCheck : public LifeFixture {
  protected:
    static osg::UInt32 coreID(const osg::NodePtr& node) { return node->getCore().getFieldContainerId(); }

    static bool accepts(const osg::NodePtr& node, kaAnimationObject* object) {
        return kaAnimationUtils::checkPasteTo(node, object);
    }
    static bool acceptsAll(const osg::NodePtr& node, const std::vector<kaAnimationObject*>& objects) {
        return kaAnimationUtils::checkPasteTo(node, objects);
    }
    static kaAnimationUnit* blockOn(osg::UInt32 fcID) {
        return makeBlock({makeBoundCurve(makeField("scaleX", fcID))});
    }

    osg::NodePtr source = scene.addTransform("source");
    osg::NodePtr target = scene.addTransform("target");
    osg::NodePtr other = scene.add<osg::Switch>("other");
};

TEST_F(PasteCheck, AcceptsTheSameTypeGroup) {
    EXPECT_TRUE(accepts(target, blockOn(coreID(source))));
    EXPECT_TRUE(accepts(target, makeBoundCurve(makeField("scaleX", coreID(source)))));
}

TEST_F(PasteCheck, RefusesAnotherTypeGroup) {
    EXPECT_FALSE(accepts(other, blockOn(coreID(source))));
}

TEST_F(PasteCheck, AcceptsWhatAddressesANodeAnywhere) {
    EXPECT_TRUE(accepts(other, blockOn(source.getFieldContainerId())));
}

TEST_F(PasteCheck, RefusesForOneCurveAmongMany) {
    kaAnimationUnit* block = blockOn(source.getFieldContainerId());
    EXPECT_TRUE(accepts(other, block));
    block->addObject(makeBoundCurve(makeField("scaleX", coreID(source))));
    EXPECT_FALSE(accepts(other, block));
    EXPECT_TRUE(accepts(target, block));
}

TEST_F(PasteCheck, RefusesACurveWithoutField) {
    kaAnimationUnit* block = blockOn(coreID(source));
    manager().destroyField(manager().getField(block->getCurves().front()->getField()));
    EXPECT_FALSE(accepts(target, block));
}

TEST_F(PasteCheck, RefusesAFieldWhoseContainerIsGoneOrNeverWas) {
    EXPECT_FALSE(accepts(target, blockOn(0)));
    EXPECT_FALSE(accepts(target, blockOn(4000000000U)));
    const osg::NodePtr passing = scene.addTransform("passing");
    kaAnimationUnit* block = blockOn(coreID(passing));
    EXPECT_TRUE(accepts(target, block));
    scene.destroy(passing);
    EXPECT_FALSE(accepts(target, block));
}

TEST_F(PasteCheck, LooksAtTheLowerHalfOfTheContainerId) {
    kaAnimationField* field = makeField("scaleX", 0);
    field->fcID = (1ULL << 40) + coreID(source);
    EXPECT_TRUE(accepts(target, makeBoundCurve(field)));
}

TEST_F(PasteCheck, RefusesNullAndNodesWithoutCore) {
    kaAnimationUnit* block = blockOn(coreID(source));
    EXPECT_FALSE(accepts(osg::NodePtr(), block));
    EXPECT_FALSE(accepts(scene.addNode("bare", osg::NodeCorePtr()), block));
    EXPECT_FALSE(accepts(target, nullptr));
}

TEST_F(PasteCheck, AcceptsWhatHasNoCurves) {
    EXPECT_TRUE(accepts(other, makeBlock(std::vector<kaAnimationCurve2D*>{})));
    EXPECT_TRUE(accepts(other, makeSequence("bell", 0.0F, 1.0F)));
}

/// The curve addresses the material, the node's core is the group that holds it: their type groups differ.
TEST_F(PasteCheck, RefusesAMaterialsCurveEvenOnItsOwnNode) {
    const osg::MaterialGroupPtr group = osg::MaterialGroup::create();
    const osg::SimpleMaterialPtr material = osg::SimpleMaterial::create();
    group->setMaterial(material);
    const osg::NodePtr painted = scene.addNode("painted", group);
    EXPECT_FALSE(accepts(painted, blockOn(material.getFieldContainerId())));
}

TEST_F(PasteCheck, OfAListNeedsEveryObjectButNulls) {
    kaAnimationUnit* fitting = blockOn(coreID(source));
    kaAnimationUnit* unfitting = blockOn(coreID(other));
    EXPECT_TRUE(acceptsAll(target, {}));
    EXPECT_TRUE(acceptsAll(target, {nullptr, fitting, nullptr}));
    EXPECT_FALSE(acceptsAll(target, {fitting, unfitting}));
}

class Retargeting : public PasteCheck {
  protected:
    static bool retarget(kaAnimationObject* object, const osg::NodePtr& node) {
        return kaAnimationUtils::changeObjectReferenceFields(object, node);
    }
    kaAnimationField* offer(const std::string& attribute, unsigned int valuePos) {
        kaAnimationField* field = makeField(attribute, coreID(target), valuePos);
        listField(target, field->getId());
        return field;
    }
};

TEST_F(Retargeting, RefusesNullAndNodesWithoutCore) {
    kaAnimationUnit* block = blockOn(coreID(source));
    EXPECT_FALSE(retarget(nullptr, target));
    EXPECT_FALSE(retarget(block, osg::NodePtr()));
    EXPECT_FALSE(retarget(block, scene.addNode("bare", osg::NodeCorePtr())));
    EXPECT_EQ(block->getNodeID(), 0U);
}

TEST_F(Retargeting, TakesTheLastFieldOfTheSameAttributeAndComponent) {
    kaAnimationCurve2D* curve = makeBoundCurve(makeField("scaleX", coreID(source), 1));
    offer("scaleX", 1);
    kaAnimationField* last = offer("scaleX", 1);
    offer("scaleX", 0);
    offer("scalex", 1);
    offer("scaleXY", 1);
    EXPECT_TRUE(retarget(curve, target));
    EXPECT_EQ(curve->getField(), last->getId());
}

TEST_F(Retargeting, GivesTheColourOfTheNewField) {
    kaAnimationCurve2D* curve = makeBoundCurve(makeField("scaleY", coreID(source)));
    curve->setColor(osg::Color3f(0.0F, 0.0F, 0.0F));
    kaAnimationField* field = offer("scaleY", 0);
    EXPECT_TRUE(retarget(curve, target));
    EXPECT_EQ(curve->getColor(), kaAnimationUtils::getDefaultCurveColor(field));
}

TEST_F(Retargeting, LeavesCurvesWithoutMatchOrFieldAlone) {
    kaAnimationField* unmatched = makeField("distance", coreID(source));
    kaAnimationCurve2D* first = makeBoundCurve(unmatched);
    kaAnimationCurve2D* second = makeBoundCurve(makeField("scaleX", coreID(source)));
    const kaUID gone = second->getField();
    manager().destroyField(manager().getField(gone));
    offer("scaleX", 0);
    EXPECT_TRUE(retarget(makeBlock({first, second}), target));
    EXPECT_EQ(first->getField(), unmatched->getId());
    EXPECT_EQ(second->getField(), gone);
}

TEST_F(Retargeting, MakesNoFieldsAndNoAttachment) {
    EXPECT_TRUE(retarget(blockOn(coreID(source)), other));
    EXPECT_EQ(kaAnimationUtils::getAnimationAttachment(other), osg::NullFC);
}

TEST_F(Retargeting, ReachesTheCurvesOfAContainerButOnlyABlockTakesTheNode) {
    kaAnimationUnit* inside = blockOn(coreID(source));
    inside->setNodeID(77);
    kaAnimationField* field = offer("scaleX", 0);
    EXPECT_TRUE(retarget(makeTrack({inside}), target));
    EXPECT_EQ(inside->getCurves().front()->getField(), field->getId());
    EXPECT_EQ(inside->getNodeID(), 77U);
    EXPECT_TRUE(retarget(inside, target));
    EXPECT_EQ(inside->getNodeID(), target.getFieldContainerId());
}

} // namespace
