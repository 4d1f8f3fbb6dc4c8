#include "ImportFixture.h"
#include "kaAnimationController.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <sstream>

namespace {

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// Scene files of older versions, read from disk and imported.
class ImportFiles : public ImportFixture {
  protected:
    void TearDown() override {
        osg::subRefCP(root);
        ImportFixture::TearDown();
    }

    /// Reads a file and imports from its first top-level node.
    const kaImportReport& importFile(const std::string& name) {
        root = osg::SceneFileHandler::the().read((std::string(KA_LIFE_DATA) + "/" + name).c_str());
        EXPECT_NE(root, osg::NullFC) << name;
        return importRead();
    }
    const kaImportReport& importRead() {
        osg::addRefCP(root);
        manager().importORVAAnimations(top(), find("camera"), 1);
        return kaAnimationManager::getImportReport();
    }
    osg::NodePtr top() { return root->getChild(0); }

    osg::NodePtr find(const std::string& name) {
        std::vector<osg::NodePtr> pending{root};
        while (!pending.empty()) {
            osg::NodePtr current = pending.back();
            pending.pop_back();
            const osg::Char8* found = osg::getName(current);
            if (found && name == found)
                return current;
            for (osg::UInt32 i = 0; i < current->getNChildren(); ++i)
                pending.push_back(current->getChild(i));
        }
        return osg::NodePtr();
    }
    static float valueAt(kaAnimationObject* object, float frame) {
        kaAnimationController::the()->evaluateObject(object, frame, false);
        return manager().getField(object->getCurves().front()->getField())->value;
    }

    osg::NodePtr root;
};

TEST_F(ImportFiles, OneCurve) {
    const kaImportReport& report = importFile("one_curve.osg");
    EXPECT_EQ(report.curves, 1U);
    EXPECT_EQ(report.leftOutCount, 0U);
    const auto objects = kaAnimationUtils::getAnimationObjects(find("door"));
    ASSERT_THAT(objects, SizeIs(1));
    EXPECT_EQ(objects.front()->getName(), "open");
    EXPECT_EQ(valueAt(objects.front(), 0.0F), 0.0F);
    EXPECT_NEAR(valueAt(objects.front(), 25.0F), 45.0F, 1e-4F) << "half way, by symmetry";
    EXPECT_EQ(valueAt(objects.front(), 50.0F), 90.0F);
    EXPECT_FALSE(hasOlderAttachment(find("door")));
}

TEST_F(ImportFiles, CameraClipsTracksAndEvents) {
    const kaImportReport& report = importFile("camera_and_clips.osg");
    EXPECT_EQ(report.clips, 2U);
    EXPECT_EQ(report.tracks, 2U);
    EXPECT_EQ(report.cameraBlocks, 1U);
    EXPECT_EQ(report.sequences, 1U);
    EXPECT_EQ(report.leftOutCount, 0U);
    const auto clips = manager().getSceneStrips();
    ASSERT_THAT(clips, SizeIs(1));
    EXPECT_EQ(clips.front()->getName(), "walk");
    EXPECT_TRUE(clips.front()->isRepeating());
    EXPECT_EQ(clips.front()->getBegin(), 0.0F);
    EXPECT_EQ(clips.front()->getEnd(), 40.0F);
    const auto sequences = clips.front()->getSequencesRecursive();
    ASSERT_THAT(sequences, SizeIs(1));
    EXPECT_EQ(sequences.front()->getName(), "doors \"A\"");
    EXPECT_EQ(sequences.front()->getBegin(), 10.0F);
    EXPECT_EQ(sequences.front()->getEnd(), 20.0F);
    const auto camera = kaAnimationUtils::getAnimationObjects(find("camera"));
    ASSERT_THAT(camera, SizeIs(1));
    EXPECT_EQ(camera.front()->getName(), "zoom");
    EXPECT_EQ(valueAt(camera.front(), 10.0F), 85.0F);
}

TEST_F(ImportFiles, EveryTangentCode) {
    importFile("tangent_codes.osg");
    std::vector<unsigned int> types;
    for (const kaControlPoint2D* key : keysOf(*all<kaAnimationCurve2D>(KA_TYPE_CURVE).front()))
        types.push_back(key->getTangentType());
    EXPECT_THAT(types, ElementsAre(2, 0, 1, 4, 2, 8, 16, 2));
}

TEST_F(ImportFiles, WhatCannotBeImportedIsLeftOut) {
    const kaImportReport& report = importFile("left_out.osg");
    std::vector<kaImportReport::Reason> reasons;
    for (const kaImportReport::LeftOut& entry : report.leftOut)
        reasons.push_back(entry.reason);
    using Reason = kaImportReport::Reason;
    EXPECT_THAT(reasons, ElementsAre(Reason::NotAClip, Reason::Ring, Reason::OnInnerNode, Reason::NoAttribute,
                                     Reason::NoNode));
    EXPECT_EQ(report.curves, 1U);
    EXPECT_EQ(report.clips, 1U);
}

/// What the generator makes goes through a file and comes back as the same animation.
TEST_F(ImportFiles, AGeneratedSceneComesBackFromItsFile) {
    manager().addAnimationAttributes("translation,scale");
    const ka_older::Shape shape{20, 5, 4, 3, 4, 11};
    osg::NodePtr written = ka_older::makeScene(shape);
    osg::addRefCP(written);
    std::stringstream file;
    ASSERT_TRUE(osg::SceneFileHandler::the().write(written, file, "osg"));
    manager().importORVAAnimations(written, osg::NodePtr(), 1);
    const kaImportReport direct = kaAnimationManager::getImportReport();
    root = osg::SceneFileHandler::the().read(file, "osg");
    ASSERT_NE(root, osg::NullFC);
    const kaImportReport& report = importRead();
    EXPECT_EQ(report.nodes, direct.nodes);
    EXPECT_EQ(report.clips, direct.clips);
    EXPECT_EQ(report.tracks, direct.tracks);
    EXPECT_EQ(report.blocks, direct.blocks);
    EXPECT_EQ(report.sequences, direct.sequences);
    EXPECT_EQ(report.curves, direct.curves);
    EXPECT_EQ(report.keys, direct.keys);
    EXPECT_EQ(report.leftOutCount, 0U);
    osg::subRefCP(written);
}

} // namespace
