#include "ImportFixture.h"
#include "OlderAnimation.h"
#include "kaAnimationController.h"

#include <OpenSG/OSGFieldContainerFactory.h>

namespace {

using namespace ka_test;

/// Values span 50 and are floats.
constexpr float TOLERANCE = 1e-4F;

/// An imported scene plays as its older containers say, worked out from them alone.
class ImportPlayback : public ImportFixture {
  protected:
    void SetUp() override {
        ImportFixture::SetUp();
        manager().addAnimationAttributes("translation,scale");
    }

    static float sceneValue(const ka_older::Address& address) {
        const auto found = osg::FieldContainerFactory::the()->getContainer(address.first);
        return kaAnimationUtils::getOSGFieldValue(
            manager().getField(osg::NodePtr::dcast(found), address.second));
    }

    static void expectSceneShows(const ka_older::Values& expected, float frame) {
        for (const auto& [address, value] : expected) {
            ASSERT_NEAR(sceneValue(address), static_cast<float>(value), TOLERANCE)
                << address.second << " of node " << address.first << " at frame " << frame;
        }
    }

    /// Evaluates `object` over `frames` frames and a little around them, and compares the scene with
    /// `expected`.
    template <class Container>
    static void playAndCompare(kaAnimationObject* object, const Container& older) {
        ASSERT_NE(object, nullptr);
        for (float frame = -3.5F; frame < object->getEnd() + 5.0F; frame += 0.5F) {
            kaAnimationController::the()->evaluateObject(object, frame, false);
            expectSceneShows(ka_older::evaluate(older, static_cast<long double>(frame)), frame);
        }
    }

    static osg::AnimationBlockPtr olderBlockOf(const osg::NodePtr& node) {
        return ka_older::attachmentOf(node)->getBlocks()[0];
    }
};

TEST_F(ImportPlayback, OfEveryTangentTypeBetweenManyKeys) {
    for (unsigned int code = ka_older::Collapsed; code <= ka_older::User; ++code) {
        std::vector<ka_older::Key> keys;
        for (const auto& [x, y] :
             {std::pair<float, float>{0.0F, 1.0F}, {8.0F, 5.0F}, {12.0F, -3.0F}, {30.0F, 4.0F}})
            keys.push_back({{x, y}, code, {x - 2.0F, y + 1.0F}, {x + 2.0F, y - 1.0F}});
        const auto older = ka_older::makeBlock("block", {ka_older::makeCurve("rotateX", keys, node)}, node);
        SCOPED_TRACE(code);
        playAndCompare(manager().importBlock(older, nullptr), older);
    }
}

TEST_F(ImportPlayback, OfARepeatingBlock) {
    const auto older = ka_older::makeBlock(
        "block", {ka_older::makeCurve("rotateX", {{{2.0F, 0.0F}}, {{6.0F, 5.0F}}, {{12.0F, 1.0F}}}, node)},
        node);
    older->setRepeating(true);
    playAndCompare(manager().importBlock(older, nullptr), older);
}

struct ShapeRow {
    const char* name;
    ka_older::Shape shape;
};

class ImportPlaybackOfScene : public ImportPlayback, public testing::WithParamInterface<ShapeRow> {
  protected:
    void SetUp() override {
        ImportPlayback::SetUp();
        root = ka_older::makeScene(GetParam().shape);
        osg::addRefCP(root);
    }
    void TearDown() override {
        for (const osg::FieldContainerPtr& container : kept)
            osg::subRefCP(container);
        osg::subRefCP(root);
        ImportPlayback::TearDown();
    }

    /// The import takes the older containers off the scene; the comparison still needs them.
    template <class Ptr>
    Ptr keep(const Ptr& container) {
        osg::addRefCP(container);
        kept.push_back(container);
        return container;
    }

    osg::NodePtr root;
    std::vector<osg::FieldContainerPtr> kept;
};

TEST_P(ImportPlaybackOfScene, FrameByFrame) {
    std::vector<osg::AnimationBlockPtr> blocks;
    std::vector<osg::AnimationClipPtr> clips;
    for (osg::UInt32 i = 0; i < root->getNChildren(); ++i)
        blocks.push_back(keep(olderBlockOf(root->getChild(i))));
    for (const osg::AnimationClipPtr& clip : ka_older::attachmentOf(root)->getClips())
        clips.push_back(keep(clip));

    manager().importORVAAnimations(root, node, ka_older::countNodes(root));
    EXPECT_EQ(kaAnimationManager::getImportReport().leftOutCount, 0U);

    for (osg::UInt32 i = 0; i < root->getNChildren(); ++i) {
        const auto objects = kaAnimationUtils::getAnimationObjects(root->getChild(i));
        ASSERT_EQ(objects.size(), 1U);
        playAndCompare(objects.front(), blocks[i]);
    }
    std::map<std::string, kaAnimationStrip*> imported;
    for (kaAnimationStrip* clip : manager().getSceneStrips())
        imported[clip->getName()] = clip;
    ASSERT_EQ(imported.size(), clips.size());
    for (const osg::AnimationClipPtr& clip : clips)
        playAndCompare(imported[clip->getName()], clip);
}

INSTANTIATE_TEST_SUITE_P(Shapes, ImportPlaybackOfScene,
                         testing::Values(ShapeRow{"one_curve", {1, 1, 2, 0, 0, 1}},
                                         ShapeRow{"nine_curves", {1, 9, 20, 0, 0, 2}},
                                         ShapeRow{"clips", {5, 3, 6, 3, 0, 3}},
                                         ShapeRow{"nested_clips", {4, 4, 5, 2, 6, 4}},
                                         ShapeRow{"thousand_nodes", {1000, 2, 3, 1, 2, 5}}),
                         [](const auto& row) { return std::string(row.param.name); });

/// The loop and the activity of what is nested are decided further out.
TEST_F(ImportPlayback, OfFlagsThatReachDown) {
    for (const bool repeating : {false, true}) {
        for (const bool active : {false, true}) {
            const auto block = ka_older::makeBlock("block", {turning(node)}, node);
            block->setRepeating(!repeating);
            const auto innerTrack = ka_older::makeTrack({block});
            innerTrack->setActive(!active);
            const auto inner = ka_older::makeClip("inner", {innerTrack});
            const auto outerTrack = ka_older::makeTrack({});
            outerTrack->addEntry(inner);
            outerTrack->setActive(active);
            const auto outer = ka_older::makeClip("outer", {outerTrack});
            outer->setRepeating(repeating);
            SCOPED_TRACE(testing::Message() << "repeating " << repeating << " active " << active);
            playAndCompare(manager().importClip(outer, nullptr), outer);
            EXPECT_EQ(ka_older::evaluate(outer, 5.0L).empty(), !active);
        }
    }
}

} // namespace
