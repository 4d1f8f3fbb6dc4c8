#include "CapturedOutput.h"
#include "Documents.h"
#include "RegistryFixture.h"
#include "TestScene.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationUnit.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <memory>
#include <string>
#include <vector>

using namespace ka_test;

namespace {

using Ids = std::vector<kaUID>;

/// A scene with one node that lists field 7 and block 31.
class DocumentAndScene : public RegistryFixture {
  protected:
    void SetUp() override {
        RegistryFixture::SetUp();
        _scene = std::make_unique<TestScene>();
        _node = _scene->addTransform("node");
        osg::AnimAttachmentPtr attachment =
            osg::AnimAttachmentPtr::dcast(kaAnimationUtils::createAnimationAttachment(_node, false));
        attachment->getFieldIDs().push_back(7);
        attachment->getObjectIDs().push_back(31);
        kaAnimationManager::setSceneRootNode(_scene->root());
    }
    void TearDown() override {
        RegistryFixture::TearDown();
        _scene.reset();
    }

    static kaAnimationManager& manager() { return *kaAnimationManager::the(); }
    osg::AnimAttachmentPtr attachment() const {
        return osg::AnimAttachmentPtr::dcast(kaAnimationUtils::getAnimationAttachment(_node));
    }
    Ids listedObjects() const {
        const auto& ids = attachment()->getObjectIDs();
        return Ids(ids.begin(), ids.end());
    }
    Ids listedFields() const {
        const auto& ids = attachment()->getFieldIDs();
        return Ids(ids.begin(), ids.end());
    }

    std::unique_ptr<TestScene> _scene;
    osg::NodePtr _node;
};

} // namespace

TEST_F(DocumentAndScene, LoadedFieldsAndBlocksFindTheirNode) {
    ASSERT_TRUE(load(contentOf(testFile("example.xml"))));
    EXPECT_EQ(manager().getField(7)->nodeID, _node.getFieldContainerId());
    EXPECT_EQ(manager().getField(7)->fcID, _node->getCore().getFieldContainerId());
    EXPECT_EQ(manager().getUnit(31)->getNodeID(), _node.getFieldContainerId());
    EXPECT_TRUE(manager().getCurve2D(21)->getParentOSGNode() == _node);
}

TEST_F(DocumentAndScene, ACurveIsWrittenWithTheIdOfItsNode) {
    ASSERT_TRUE(load(contentOf(testFile("example.xml"))));
    const std::string expected = "parentNodeID=\"" + std::to_string(_node.getFieldContainerId()) + "\"";
    EXPECT_NE(saved().find(expected), std::string::npos);
}

TEST_F(DocumentAndScene, WithoutASceneRootFieldsHaveNoNode) {
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    ASSERT_TRUE(load(contentOf(testFile("example.xml"))));
    EXPECT_EQ(manager().getField(7)->nodeID, 0U);
    EXPECT_EQ(manager().getUnit(31)->getNodeID(), 0U);
}

TEST_F(DocumentAndScene, ReplacedIdsDoNotReachTheScene) {
    ASSERT_TRUE(load(contentOf(testFile("example.xml"))));
    ASSERT_TRUE(load(contentOf(testFile("example.xml"))));
    EXPECT_EQ(listedObjects(), (Ids{31}));
    EXPECT_EQ(listedFields(), (Ids{7}));
}

TEST_F(DocumentAndScene, ARefusedDocumentDoesNotTouchTheScene) {
    ASSERT_TRUE(load(contentOf(testFile("example.xml"))));
    manager().getField(7)->nodeID = 0;
    ASSERT_FALSE(load("<a><b></a>"));
    EXPECT_EQ(manager().getField(7)->nodeID, 0U);
}
