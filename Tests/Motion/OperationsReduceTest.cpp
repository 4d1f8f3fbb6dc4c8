#include "Impatient.h"
#include "MotionTesting.h"
#include "OperationsCurve.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaMotion/ClipCopy.h>
#include <kaMotion/MotionSelection.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <kaMotion/Reduce.h>
#include <map>

namespace ka::motion {
namespace {

using ::testing::HasSubstr;
using testing::Impatient;

/// The first frames of a real capture.
class ReduceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ProjectFiles files;
        files.file = _folder.put("walk.bvh", testing::shortCapture(240));
        _project = std::make_unique<Project>(files);
        for (kaAnimationCurve2D* curve : allCurves())
            _before[curve->getId()] = plainKeys(*curve);
    }

    std::vector<std::vector<std::array<float, 3>>> positions() const {
        std::vector<std::vector<std::array<float, 3>>> all;
        const auto objects = _project->playable("");
        for (float frame = 0; frame <= 49.5F; frame += 0.25F) {
            evaluate(objects, frame);
            all.emplace_back();
            for (const NodePose& pose : readPose(_project->placedNodes()))
                all.back().push_back(pose.position);
        }
        return all;
    }

    testing::TemporaryFolder _folder;
    std::unique_ptr<Project> _project;
    std::map<kaUID, std::vector<PlainKey>> _before;
};

TEST_F(ReduceTest, EveryCurveOfACaptureStaysWithinItsBound) {
    const OperationReport report = reduce(allCurves(), _project->root(), {});
    EXPECT_EQ(report.curves, _before.size());
    std::size_t keys = 0;
    double turned = 0.0, moved = 0.0;
    for (const kaAnimationCurve2D* curve : allCurves()) {
        const std::vector<PlainKey> after = plainKeys(*curve);
        keys += after.size();
        const double apart = testing::slowDifference(_before[curve->getId()], after);
        const bool turns = curveLabel(curve).find("rotation") != std::string::npos;
        EXPECT_LE(apart, turns ? 0.5 : 0.1) << curveLabel(curve);
        (turns ? turned : moved) = std::max(turns ? turned : moved, apart);
        EXPECT_EQ(after.front().x, _before[curve->getId()].front().x);
        EXPECT_EQ(after.back().y, _before[curve->getId()].back().y);
    }
    EXPECT_EQ(report.keysAfter, keys);
    EXPECT_LT(keys, report.keysBefore / 5);
    ASSERT_EQ(report.measures.size(), 2U);
    EXPECT_NEAR(report.measures[0].value, turned, 1e-4);
    EXPECT_NEAR(report.measures[1].value, moved, 1e-4);
    EXPECT_THAT(report.text(), HasSubstr("reduce: "));
    EXPECT_THAT(report.json(), HasSubstr("\"allowed\": 0.5"));
}

TEST_F(ReduceTest, NoNodeMovesFurtherInTheWorldThanAsked) {
    const auto before = positions();
    ReduceOptions options;
    options.world = 0.3;
    const OperationReport report = reduce(allCurves(), _project->root(), options);
    const auto after = positions();
    double worst = 0.0;
    for (std::size_t i = 0; i < before.size(); ++i)
        for (std::size_t node = 0; node < before[i].size(); ++node)
            worst = std::max(worst, std::hypot(static_cast<double>(before[i][node][0] - after[i][node][0]),
                                               static_cast<double>(before[i][node][1] - after[i][node][1]),
                                               static_cast<double>(before[i][node][2] - after[i][node][2])));
    EXPECT_LE(worst, 0.3 + 1e-4); // the scene holds floats
    EXPECT_GT(worst, 0.15);
    EXPECT_TRUE(report.faults.empty());
    EXPECT_NEAR(report.measures.front().value, worst, 1e-3);
    EXPECT_LT(report.keysAfter, report.keysBefore / 4);
}

TEST_F(ReduceTest, ChangesNothingWhenItIsDryOrCancelled) {
    ReduceOptions dry;
    dry.isDry = true;
    EXPECT_LT(reduce(allCurves(), _project->root(), dry).keysAfter, 5000U);
    Impatient impatient(4);
    EXPECT_TRUE(reduce(allCurves(), _project->root(), {}, impatient).isCancelled);
    for (const kaAnimationCurve2D* curve : allCurves()) {
        const std::vector<PlainKey> now = plainKeys(*curve);
        ASSERT_EQ(now.size(), _before[curve->getId()].size());
        EXPECT_EQ(now.back().inY, _before[curve->getId()].back().inY);
    }
}

TEST_F(ReduceTest, LeavesTheClipAloneWhenItWorksOnACopy) {
    const std::vector<std::string> ids = copyClips(selectedClips({}), "thin");
    ASSERT_EQ(ids.size(), 1U);
    MotionSelection selection;
    selection.clips = ids;
    const CurveList curves = selectedCurves(selection);
    ASSERT_EQ(curves.size(), _before.size());
    reduce(curves, _project->root(), {});
    for (const auto& [id, keys] : _before)
        EXPECT_EQ(kaAnimationManager::the()->getCurve2D(id)->getChildCount(), keys.size());
    EXPECT_LT(curves.front()->getChildCount(), _before.begin()->second.size());
}

TEST_F(ReduceTest, DropsOnlyConstantCurvesThatTheSceneHolds) {
    // A joint that stands still at what the scene holds, and one at another value.
    const CurveList curves = chooseCurves(allCurves(), {"Head.rotationX", "Neck.rotationX"});
    ASSERT_EQ(curves.size(), 2U);
    for (kaAnimationCurve2D* curve : curves)
        for (const kaUID id : curve->getChildIDs()) {
            kaControlPoint2D* key = kaAnimationManager::the()->getPoint2D(id);
            const float value = curve == curves[0] ? 0.0F : 12.0F;
            key->setPosition(key->getPosition()[0], value);
            key->getInTangent()->setPosition(key->getInTangent()->getPosition()[0], value);
            key->getOutTangent()->setPosition(key->getOutTangent()->getPosition()[0], value);
        }
    const kaUID gone = curves[0]->getId(), kept = curves[1]->getId();
    ReduceOptions options;
    options.dropsConstant = true;
    const OperationReport report = reduce(curves, _project->root(), options);
    EXPECT_EQ(kaAnimationManager::the()->getCurve2D(gone), nullptr);
    ASSERT_NE(kaAnimationManager::the()->getCurve2D(kept), nullptr);
    EXPECT_EQ(kaAnimationManager::the()->getCurve2D(kept)->getChildCount(), 2U);
    EXPECT_THAT(report.notes, ::testing::ElementsAre("1 constant curve left out"));
}

TEST_F(ReduceTest, SaysWhatMayHaveBeenMeant) {
    const auto said = [](const MotionSelection& selection) {
        return testing::failureOf([&] { selectedCurves(selection); });
    };
    EXPECT_EQ(said({{}, {"hip"}, {}}), "no animated node is called 'hip' (did you mean 'Hips'?)");
    EXPECT_EQ(said({{}, {}, {"Hips.rotatonX"}}),
              "no curve is called 'Hips.rotatonX' (did you mean 'Hips.rotationX'?)");
    EXPECT_EQ(said({{"xyzzy"}, {}, {}}), "no clip is called 'xyzzy'");
    EXPECT_EQ(selectedCurves({{}, {"Hips"}, {"rotation*"}}).size(), 3U);
}

TEST(Reduce, OfNothingIsNothing) {
    const OperationReport report = reduce({nullptr}, osg::NodePtr(), {});
    EXPECT_EQ(report.curves, 0U);
    EXPECT_FALSE(report.isCancelled);
}

} // namespace
} // namespace ka::motion
