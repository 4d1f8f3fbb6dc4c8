#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;

namespace {

int askedCamera = 0;
osg::Pnt3f camFrom;
osg::Pnt3f camAt;
osg::Vec3f camUp;
float camRoll = 0.0F;
std::vector<kaAnimationCurve2D*> shown;
std::vector<unsigned int> progress;
std::vector<bool> paste;

class HostCallback : public TimeFixture {
  protected:
    const osg::Pnt3f one{1.0F, 2.0F, 3.0F};
    const osg::Pnt3f two{4.0F, 5.0F, 6.0F};
    const osg::Vec3f three{7.0F, 8.0F, 9.0F};
};

TEST_F(HostCallback, WithoutOneTheCameraIsAllZeros) {
    osg::Pnt3f from = one;
    osg::Pnt3f at = two;
    osg::Vec3f up = three;
    float roll = 5.0F;
    manager->getFromAtUp(from, at, up);
    manager->getRoll(roll);
    EXPECT_EQ(from, osg::Pnt3f(0.0F, 0.0F, 0.0F));
    EXPECT_EQ(at, osg::Pnt3f(0.0F, 0.0F, 0.0F));
    EXPECT_EQ(up, osg::Vec3f(0.0F, 0.0F, 0.0F));
    EXPECT_EQ(roll, 0.0F);
    manager->setFromAtUp(one, two, three);
    manager->setRoll(1.0F);
    manager->showCurves({});
    manager->setFileIOProgress(50);
    manager->updatePaste(true);
}

TEST_F(HostCallback, TheCameraGoesToAndComesFromTheActiveOne) {
    Manager::setFromAtUpCB(
        [](int camera, const osg::Pnt3f& from, const osg::Pnt3f& at, const osg::Vec3f& up) {
            askedCamera = camera;
            camFrom = from;
            camAt = at;
            camUp = up;
        });
    Manager::setGetFromAtUpCB([](int camera, osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up) {
        askedCamera = camera;
        from = camFrom;
        at = camAt;
        up = camUp;
    });
    manager->setFromAtUp(one, two, three);
    EXPECT_EQ(askedCamera, -1);
    osg::Pnt3f from;
    osg::Pnt3f at;
    osg::Vec3f up;
    askedCamera = 0;
    manager->getFromAtUp(from, at, up);
    EXPECT_EQ(askedCamera, -1);
    EXPECT_EQ(from, one);
    EXPECT_EQ(at, two);
    EXPECT_EQ(up, three);
}

TEST_F(HostCallback, TheRollGoesToAndComesFromTheActiveCamera) {
    Manager::setRollCB([](int camera, const float& roll) {
        askedCamera = camera;
        camRoll = roll;
    });
    Manager::setGetRollCB([](int camera) {
        askedCamera = camera;
        return camRoll * 2.0F;
    });
    askedCamera = 0;
    manager->setRoll(1.5F);
    EXPECT_EQ(askedCamera, -1);
    EXPECT_EQ(camRoll, 1.5F);
    float roll = 0.0F;
    askedCamera = 0;
    manager->getRoll(roll);
    EXPECT_EQ(askedCamera, -1);
    EXPECT_EQ(roll, 3.0F);
}

TEST_F(HostCallback, CurvesProgressAndPasteStateAreHandedOn) {
    Manager::setShowCurvesCB([](const std::vector<kaAnimationCurve2D*>& curves) { shown = curves; });
    Manager::setFileIOProgressCB([](unsigned int percent) { progress.push_back(percent); });
    Manager::setUpdatePasteCB([](bool filled) { paste.push_back(filled); });
    progress.clear();
    paste.clear();
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    manager->showCurves({nullptr, curve});
    manager->setFileIOProgress(40);
    manager->updatePaste(true);
    manager->updatePaste(false);
    EXPECT_THAT(shown, ElementsAre(nullptr, curve));
    EXPECT_THAT(progress, ElementsAre(40U));
    EXPECT_THAT(paste, ElementsAre(true, false));
}

} // namespace
