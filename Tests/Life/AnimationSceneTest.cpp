#include "LifeFixture.h"
#include "TemporaryFolder.h"
#include "kaAnimationController.h"
#include "kaAnimationScene.h"
#include "kaAnimationStrip.h"
#include "kaNodeUtils.h"

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <OpenSG/OSGUberMaterial.h>
#include <algorithm>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;
using Opening = kaAnimationScene::Opening;

namespace {

/// Scenes that are opened and closed as a whole.
class AnimationScene : public LifeFixture {
  protected:
    /// A clip of that name with one key frame of a node of `scene`.
    static kaAnimationStrip* makeNamedClip(const std::string& name) {
        kaAnimationStrip* clip = makeClip({makeTrack({makeBlock(0.0F, 10.0F)})});
        clip->setName(name);
        return clip;
    }

    /// Writes the scene and what is registered, empties the registry, and returns the names of both files.
    std::pair<QString, QString> saved() {
        const std::string sceneName = folder.at("scene.osg");
        const std::string documentName = folder.at("scene.xml");
        EXPECT_TRUE(osg::SceneFileHandler::the().write(scene.root(), sceneName));
        EXPECT_TRUE(manager().saveAnimations(documentName.c_str()));
        emptyModule();
        return {QString::fromStdString(sceneName), QString::fromStdString(documentName)};
    }

    static std::vector<std::string> names(const std::vector<kaAnimationStrip*>& clips) {
        std::vector<std::string> found;
        for (const kaAnimationStrip* clip : clips)
            found.push_back(clip->getName());
        return found;
    }

    TemporaryFolder folder;
};

TEST_F(AnimationScene, OpensASceneWithItsDocumentAndClosesItToNothing) {
    const osg::NodePtr door = scene.addTransform("door");
    kaAnimationCurve2D* curve = manager().createCurve2D(door, "rotationY");
    manager().createCurvePoint(curve, 0.0F, 0.0F, false, false, false);
    manager().createCurvePoint(curve, 10.0F, 90.0F, false, false, false);
    makeNamedClip("open");
    makeNamedClip("close");
    const auto objects = manager().getObjects().size();
    const auto [file, document] = saved();
    static bool pasteState;
    pasteState = false;
    manager().setUpdatePasteCB([](bool filled) { pasteState = filled; });
    kaAnimationScene opened;
    EXPECT_FALSE(opened.isOpen());
    for (int time = 0; time < 2; ++time) { // the second opening closes what is open
        ASSERT_EQ(opened.open(file, document), Opening::Opened);
        EXPECT_TRUE(opened.isOpen());
        EXPECT_EQ(kaAnimationManager::getSceneRootNode(), opened.root());
        EXPECT_EQ(manager().getObjects().size(), objects);
        EXPECT_THAT(names(kaAnimationScene::clips()), ElementsAre("close", "open"));
    }
    kaAnimationController::the()->addWaitingObject(kaAnimationScene::clips().front());
    kaAnimationController::the()->setObjectID(kaAnimationScene::clips().front()->getId());
    const kaUID clip = kaAnimationScene::clips().front()->getId();
    kaAnimationController::the()->setCurveIDs({clip});
    kaAnimationController::the()->playGlobal(clip, false, true, 0.0F, 10.0F, 0.0F);
    ASSERT_TRUE(manager().copy(kaAnimationScene::clips().front()));
    const osg::UInt32 root = opened.root().getFieldContainerId();
    opened.close();
    EXPECT_FALSE(opened.isOpen());
    EXPECT_THAT(manager().getCopyBuffer(), IsEmpty());
    EXPECT_TRUE(manager().paste(scene.root(), true)) << "an empty buffer, not one of copies that have gone";
    EXPECT_FALSE(pasteState) << "the host has heard that there is nothing to paste";
    EXPECT_THAT(manager().getObjects(), IsEmpty());
    EXPECT_THAT(manager().getFields(), IsEmpty());
    EXPECT_THAT(kaAnimationController::the()->getWaitingObjects(), IsEmpty());
    EXPECT_EQ(kaAnimationController::the()->getObjectID(), 0U);
    EXPECT_THAT(kaAnimationController::the()->getCurveIDs(), IsEmpty());
    EXPECT_FALSE(kaAnimationController::isPlaying());
    EXPECT_TRUE(kaAnimationManager::getSceneRootNode() == osg::NullFC);
    EXPECT_TRUE(osg::FieldContainerFactory::the()->getContainer(root) == osg::NullFC);
    opened.close();
}

TEST_F(AnimationScene, WhatIsRefusedLeavesWhatIsOpen) {
    makeNamedClip("walk");
    const auto [file, document] = saved();
    kaAnimationScene opened;
    ASSERT_EQ(opened.open(file, document), Opening::Opened);
    const osg::UInt32 root = opened.root().getFieldContainerId();
    const kaUID clip = kaAnimationScene::clips().front()->getId();
    EXPECT_EQ(opened.open("no such file.osg", document), Opening::SceneRefused);
    EXPECT_EQ(opened.open(osg::NodePtr(), document), Opening::SceneRefused);
    EXPECT_EQ(opened.open(file, "no such file.xml"), Opening::DocumentRefused);
    EXPECT_EQ(opened.open(file, QString::fromStdString(folder.put("half.xml", "<AnimationPool>"))),
              Opening::DocumentRefused);
    EXPECT_FALSE(kaAnimationManager::getLoadFault().message.empty());
    const auto counted = scene.root().getRefCount();
    EXPECT_EQ(opened.open(scene.root(), "no such file.xml"), Opening::DocumentRefused);
    EXPECT_EQ(scene.root().getRefCount(), counted) << "a root that is refused is not kept";
    EXPECT_EQ(opened.root().getFieldContainerId(), root);
    EXPECT_TRUE(isRegistered(clip));
}

TEST_F(AnimationScene, TakesASceneOfTheHostWithOrWithoutADocument) {
    kaAnimationScene opened;
    const auto counted = scene.root().getRefCount();
    ASSERT_EQ(opened.open(scene.root(), QString()), Opening::Opened);
    EXPECT_EQ(scene.root().getRefCount(), counted + 1);
    makeNamedClip("made while open");
    ASSERT_EQ(opened.open(opened.root(), QString()), Opening::Opened) << "the same root again";
    EXPECT_TRUE(opened.root() == scene.root());
    EXPECT_THAT(kaAnimationScene::clips(), IsEmpty());
    opened.close();
    EXPECT_EQ(scene.root().getRefCount(), counted) << "the host's scene is still there";
}

TEST_F(AnimationScene, ListsClipsByNameAndThoseOfOneNameById) {
    std::vector<kaAnimationStrip*> walks{makeNamedClip("walk"), makeNamedClip("walk"), makeNamedClip("walk")};
    kaAnimationStrip* run = makeNamedClip("run");
    std::sort(walks.begin(), walks.end(), [](auto* a, auto* b) { return a->getId() < b->getId(); });
    EXPECT_THAT(kaAnimationScene::clips(), ElementsAre(run, walks[0], walks[1], walks[2]));
}

TEST_F(AnimationScene, ClosesWhenItGoes) {
    {
        kaAnimationScene opened;
        ASSERT_EQ(opened.open(scene.root(), QString()), Opening::Opened);
        makeNamedClip("walk");
    }
    EXPECT_THAT(manager().getObjects(), IsEmpty());
}

TEST_F(AnimationScene, ClosesWhatNoRootLeadsTo) {
    kaAnimationScene opened;
    ASSERT_EQ(opened.open(scene.root(), QString()), Opening::Opened);
    kaAnimationStreak* a = makeTrack({});
    kaAnimationStreak* b = makeTrack({});
    a->setParent(b->getId()); // a ring that a host has bent
    b->setParent(a->getId());
    makeBlock(0.0F, 1.0F)->setInternal(true);
    opened.close();
    EXPECT_THAT(manager().getObjects(), IsEmpty());
}

/// What has to be drawn anew, by what has changed.
class RedrawAfterChange : public LifeFixture {
  protected:
    void SetUp() override {
        LifeFixture::SetUp();
        kaAnimationManager::setSceneRootNode(scene.root());
        changes().setReadOnly(false);
        changes().clearAll();
    }
    void TearDown() override {
        changes().clearAll();
        LifeFixture::TearDown();
    }
    static osg::ChangeList& changes() { return *osg::PThreadBase::getCurrentChangeList(); }
    static void touch(const osg::FieldContainerPtr& container) { changes().addChanged(container, 1); }
};

TEST_F(RedrawAfterChange, NothingWhereNothingHasChanged) {
    const auto redraw = kaAnimationScene::redraw();
    EXPECT_THAT(redraw.nodes, IsEmpty());
    EXPECT_FALSE(redraw.all);
}

TEST_F(RedrawAfterChange, ANodeByItselfItsCoreAndItsAttachmentOnce) {
    const osg::NodePtr node = scene.addTransform("door");
    const osg::NodePtr other = scene.addTransform("window");
    kaNodeUtils::setTransformNodeRotation(other, 1.0F, 2.0F, 3.0F, -1);
    changes().clearAll();
    for (int time = 0; time < 2; ++time) {
        touch(node);
        touch(node->getCore());
    }
    touch(kaNodeUtils::getTransformAttachment(other));
    const auto redraw = kaAnimationScene::redraw();
    EXPECT_THAT(redraw.nodes, ElementsAre(node, other));
    EXPECT_FALSE(redraw.all);
    EXPECT_FALSE(changes().empty()) << "the host clears it";
}

TEST_F(RedrawAfterChange, EveryNodeThatSharesACoreOrAMaterial) {
    const osg::NodePtr first = scene.add<osg::MaterialGroup>("first");
    const osg::NodePtr second = scene.add<osg::MaterialGroup>("second");
    const osg::NodePtr third = scene.addNode("third", second->getCore());
    const osg::NodePtr bare = scene.add<osg::MaterialGroup>("bare");
    const osg::UberMaterialPtr material = osg::UberMaterial::create();
    const osg::NodePtr unchanged = scene.add<osg::MaterialGroup>("unchanged");
    osg::MaterialGroupPtr::dcast(unchanged->getCore())->setMaterial(osg::UberMaterial::create());
    for (const osg::NodePtr& node : {first, second})
        osg::MaterialGroupPtr::dcast(node->getCore())->setMaterial(material);
    changes().clearAll();
    touch(material);
    const auto redraw = kaAnimationScene::redraw();
    EXPECT_THAT(redraw.nodes, ElementsAre(first, second, third));
    EXPECT_FALSE(redraw.all);
    const osg::TransformAttachmentPtr shared = osg::TransformAttachment::create();
    first->addAttachment(shared);
    bare->addAttachment(shared);
    changes().clearAll();
    touch(shared);
    EXPECT_THAT(kaAnimationScene::redraw().nodes, ElementsAre(first, bare)) << "by their attachment";
    changes().clearAll();
    touch(second->getCore());
    EXPECT_THAT(kaAnimationScene::redraw().nodes, ElementsAre(second, third)) << "by their core alone";
    touch(material);
    touch(bare->getCore());
    EXPECT_THAT(kaAnimationScene::redraw().nodes, ElementsAre(first, second, third, bare));
}

TEST_F(RedrawAfterChange, AShapeByItsOwnMaterial) {
    const osg::NodePtr shape = scene.add<osg::Geometry>("shape");
    scene.add<osg::Geometry>("bare");
    const osg::UberMaterialPtr material = osg::UberMaterial::create();
    osg::GeometryPtr::dcast(shape->getCore())->setMaterial(material);
    changes().clearAll();
    touch(material);
    EXPECT_THAT(kaAnimationScene::redraw().nodes, ElementsAre(shape));
    EXPECT_FALSE(kaAnimationScene::redraw().all);
}

TEST_F(RedrawAfterChange, AllOfThePictureForWhatHangsOnNoNode) {
    const osg::NodePtr node = scene.addTransform("door");
    changes().clearAll();
    touch(osg::CameraSetting::create());
    touch(node);
    const auto redraw = kaAnimationScene::redraw();
    EXPECT_THAT(redraw.nodes, ElementsAre(node));
    EXPECT_TRUE(redraw.all);
}

TEST_F(RedrawAfterChange, PassesOverWhatIsGone) {
    const osg::NodePtr node = scene.addTransform("door");
    changes().clearAll();
    touch(node);
    scene.destroy(node);
    EXPECT_THAT(kaAnimationScene::redraw().nodes, testing::Not(testing::Contains(osg::NodePtr())));
}

TEST_F(RedrawAfterChange, NamesTheNodeThatAFrameMoves) {
    const osg::NodePtr moved = scene.addTransform("moved");
    scene.addTransform("still");
    kaAnimationCurve2D* curve = manager().createCurve2D(moved, "rotationY");
    manager().createCurvePoint(curve, 0.0F, 0.0F, false, false, false);
    manager().createCurvePoint(curve, 10.0F, 90.0F, false, false, false);
    kaAnimationController::the()->setObjectID(curve->getId());
    kaAnimationController::the()->evaluate(1.0F, false);
    changes().clearAll();
    kaAnimationController::the()->evaluate(5.0F, false);
    EXPECT_THAT(kaAnimationScene::redraw().nodes, ElementsAre(moved));
    changes().clearAll();
    kaAnimationController::the()->evaluate(20.0F, false);
    kaAnimationController::the()->evaluate(20.0F, false);
    EXPECT_THAT(kaAnimationScene::redraw().nodes, ElementsAre(moved));
    kaAnimationController::the()->setObjectID(0);
}

} // namespace
